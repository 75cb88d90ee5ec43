#pragma once

#include "platform/desktop_types.h"
#include "platform/registry.h"
#include "profile/profile_context.h"

#include <cstdint>
#include <string>
#include <string_view>

// The binding of profiles (`.vdp`) to the window and of backup packages (`.vdb`) to the direct
// restore, in the registry below HKEY_CLASSES_ROOT. The command that opens a package is not written
// here but with the activation of the monitors.
namespace vardelin::shell {

class FileTypes {
public:
    FileTypes() = default;
    FileTypes(const FileTypes&) = delete;
    FileTypes& operator=(const FileTypes&) = delete;
    virtual ~FileTypes() = default;

    // Binds profiles to the window and backup packages to the direct restore. Its own errors end in
    // the error dialog.
    virtual void ActivateForIcon() = 0;
};

class RegistryFileTypes final : public FileTypes {
public:
    // The context and the desktop outlive this object. `commandLine` is the whole of it as one path
    // in drive form, empty where there are no arguments.
    RegistryFileTypes(profile::ProfileContext& context, platform::DesktopTypes& desktop,
                      std::string commandLine);

    // Runs at every start. A document on the command line is opened under file number 1, stays open
    // until a profile is unscrambled, and is noted among the person's recent documents; one that
    // cannot be opened ends in the error dialog, and nothing is written. `%1` alone, as a broken
    // binding gives it, is no document. Then the classes are written; those that are there already
    // cost no write. Behind them the desktop is told; where that fails, the trace alone says so.
    // Clears BL_Reg_Write_Failed at its end.
    void ActivateForIcon() override;

private:
    void noteDocument();
    void tellDesktop();

    profile::ProfileContext& m_context;
    platform::DesktopTypes& m_desktop;
    std::string m_commandLine;
};

// Write one value; an empty name is the key's default value. Without the right to write they do
// nothing and say nothing. Any other error ends in the error dialog and sets BL_Reg_Write_Failed,
// and while that is set SaveString does nothing: one store that cannot be written is told once.
void SaveString(profile::ProfileContext& context, platform::RegistryRoot root, std::string_view key,
                std::string_view name, std::string_view data);
void SaveDWord(profile::ProfileContext& context, platform::RegistryRoot root, std::string_view key,
               std::string_view name, std::uint32_t number);

} // namespace vardelin::shell
