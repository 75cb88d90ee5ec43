#pragma once

#include "platform/machine.h"

#include <string>
#include <vector>

namespace vardelin::platform {

// Programs of this machine. A path with a drive letter names one file; a bare name is looked for
// along PATH. Keeps a reference to the file system, which outlives it. May be used by several
// threads.
class LinuxProcesses final : public Processes {
public:
    explicit LinuxProcesses(FileSystem& fileSystem);

    // Programs that have ended but were not waited for are left out.
    std::vector<ProcessInfo> list() override;
    // The program gets a session of its own and no terminal, so that it outlives this one; when it
    // ends first, nothing is left of it. Programs here have no window style. 70 where it may not be
    // run.
    std::int64_t start(std::string_view path, const std::vector<std::string>& arguments,
                       WindowStyle style) override;
    // At once and by force; false where there is none or rights are missing.
    bool terminate(std::int64_t id) override;
    // The standard output; on failure the reason is what stands on the standard error stream.
    std::string run(const std::vector<std::string>& command) override;

private:
    std::string nativeProgram(std::string_view path) const;

    FileSystem& m_fileSystem;
};

} // namespace vardelin::platform
