#pragma once

#include "platform/machine.h"

#include <string_view>

namespace vardelin::background {

// Brings the text of a `.reg` file (platform/registry_text.h) into the registry that the monitors
// read. Refers to the machine's ports, which outlive it.
class RegFileImporter {
public:
    explicit RegFileImporter(const platform::Machine& machine) : m_machine(machine) {}

    // Imports the file at `path`, all of it or nothing; `result` tells whether it is in. Raises 53
    // for a missing file, 5 for a line that makes no sense, with the file as subject and the line
    // in the reason, and whatever the file system or the registry raises. The file stays as it is.
    //
    // Where the text touches the key that names the programs to start with the computer, the shell
    // is told; what the shell makes of it does not change the result.
    void WriteToReg(std::string_view path, bool& result);

private:
    platform::Machine m_machine;
};

} // namespace vardelin::background
