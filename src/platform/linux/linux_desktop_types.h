#pragma once

#include "platform/desktop_types.h"
#include "platform/linux/linux_shell.h"
#include "platform/machine.h"

#include <string>
#include <string_view>

namespace vardelin::platform {

// In every file that the program gives to a desktop: one that has it not is somebody else's.
inline constexpr std::string_view kDesktopMark = "Written by Vardelin";

// A desktop as freedesktop.org's standards lay it out. Four files of the person's own data folder
// tell it of the program, each with a line that holds kDesktopMark:
//
//   mime/packages/vardelin.xml                       the type application/x-vardelin-profile
//   applications/vardelin.desktop                    the program, by its full path
//   icons/vardelin.svg, icons/application-x-vardelin-profile.svg
//
// A file of these names without that line, a link, a folder: is left alone. Where one of the shared
// data folders has the type, and its entry starts this very program, the person's folder gets
// nothing, unless it has an entry of ours, which would hide the shared one. Nothing is written
// without a home, or by root into a folder of another user.
//
// Behind that update-mime-database and update-desktop-database are started, where their index is
// older than the file or is missing. That they are not installed is no error.
class LinuxDesktopTypes final : public DesktopTypes {
public:
    // `program` is the file to start, absolute and in the machine's own form. Keeps a reference to
    // the processes, which outlive it.
    LinuxDesktopTypes(DesktopFolders folders, std::string program, Processes& processes);

    bool registerProgram() override;

private:
    bool comesFromSharedFolder() const;
    void startIndexer(const char* tool, const std::string& folder, const std::string& source,
                      const std::string& index);

    DesktopFolders m_folders;
    std::string m_program;
    Processes& m_processes;
};

} // namespace vardelin::platform
