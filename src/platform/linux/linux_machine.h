#pragma once

#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_drives.h"
#include "platform/linux/linux_file_system.h"
#include "platform/linux/linux_machine_facts.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/linux_shell.h"
#include "platform/linux/sqlite_registry.h"
#include "platform/machine.h"

#include <string>

namespace vardelin::platform {

// All ports of this Linux machine, for one application folder. The registry is its
// `Data/registry.db`. How the person is asked and how the program yields is the program's own
// choice.
class LinuxMachine {
public:
    // `applicationFolder` is absolute and in the machine's own form. The two ports outlive this
    // object. Raises 76 for a folder that no drive reaches; a registry that is missing or unusable
    // is no error before it is needed.
    LinuxMachine(const std::string& applicationFolder, MessageBoxes& messageBoxes,
                 MessageLoop& messageLoop, DesktopFolders desktop = DesktopFolders::ofThisUser());
    LinuxMachine(const LinuxMachine&) = delete;
    LinuxMachine& operator=(const LinuxMachine&) = delete;

    // Refers to this object's ports and lives no longer than it does.
    Machine machine();
    // The application folder in drive form, without a backslash at its end.
    const std::string& appPath() const { return m_appPath; }
    // Lets the file system reach what was mounted since.
    void refreshDrives();

private:
    // In the order in which they need each other: the drives keep their letters in the registry, so
    // the registry is found by a native path and needs no drive.
    SqliteRegistry m_registry;
    LinuxDrives m_drives;
    LinuxFileSystem m_fileSystem;
    LinuxShell m_shell;
    LinuxMachineFacts m_facts;
    LinuxProcesses m_processes;
    LinuxClock m_clock;
    MessageBoxes& m_messageBoxes;
    MessageLoop& m_messageLoop;
    std::string m_appPath;
};

} // namespace vardelin::platform
