#pragma once

#include "platform/machine.h"

namespace vardelin::platform {

// Who and where this process is. Keeps a reference to the file system, which outlives it.
class LinuxMachineFacts final : public MachineFacts {
public:
    explicit LinuxMachineFacts(FileSystem& fileSystem);

    // Of the effective user.
    std::string userName() override;
    std::string computerName() override;
    bool isNtPlatform() override;
    // Only an ending `.exe` counts as an extension: programs here have none, and a dot in a name is
    // part of the name.
    std::string executableName() override;
    std::string windowsFolder() override;
    // No path has a short form here, so a path that exists is its own long form.
    std::string longPathName(std::string_view path) override;
    std::optional<HostAddress> hostAddress(std::string_view name) override;

private:
    FileSystem& m_fileSystem;
};

// The file of the running program, in the machine's own form; empty where the system does not say.
std::string executablePath();
// Its folder, without a slash at the end; empty likewise.
std::string executableFolder();

} // namespace vardelin::platform
