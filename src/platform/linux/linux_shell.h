#pragma once

#include "platform/linux/mime_types.h"
#include "platform/machine.h"

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::platform {

// Where a person's desktop keeps things, in the machine's own form, without a slash at the end.
struct DesktopFolders {
    std::string home;
    std::string config;            // XDG_CONFIG_HOME, else <home>/.config
    std::vector<std::string> data; // XDG_DATA_HOME, then XDG_DATA_DIRS: most important first

    static DesktopFolders ofThisUser();
};

// The folder of one name of user-dirs.dirs ("DOCUMENTS", "DESKTOP"), in the machine's own form. A
// name that is not configured gives <home>/<fallback>; one that is switched off gives the home
// folder.
std::string userFolder(const DesktopFolders& folders, std::string_view name,
                       std::string_view fallback);

// The desktop as freedesktop.org's standards lay it out. Keeps a reference to the file system,
// which outlives it. For one thread at a time.
class LinuxShell final : public Shell {
public:
    LinuxShell(FileSystem& fileSystem, DesktopFolders folders);

    std::string typeName(std::string_view extension) override;
    std::string iconName(std::string_view extension) override;
    std::vector<std::string> extensions() override;
    // The documents folder, whether it exists yet or not.
    std::vector<std::string> defaultDocumentLines() override;
    // Files and folders of "Desktop Settings", "IE Favorites" (all browsers) and "Outlook Settings"
    // (all mail programs), in any case, sorted within each place. "Registry Settings" has none:
    // they are the registry itself.
    std::vector<std::string> settingsPaths(std::string_view group) override;
    // Keeps the autostart entries like the key (platform/linux/autostart.h).
    void runKeyChanged(Registry& registry) override;
    // In `recently-used.xbel` (platform/linux/recent_documents.h).
    void addRecentDocument(std::string_view path) override;

private:
    FileSystem& m_fileSystem;
    DesktopFolders m_folders;
    MimeTypes m_types;
};

} // namespace vardelin::platform
