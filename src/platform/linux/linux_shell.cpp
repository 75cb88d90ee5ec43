#include "platform/linux/linux_shell.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/linux/autostart.h"
#include "platform/linux/native_text.h"
#include "platform/linux/recent_documents.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <utility>

namespace vardelin::platform {
namespace {

namespace fs = std::filesystem;

std::string withoutSlash(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// The names in a folder that match one of the patterns, sorted; none where there is no such folder.
std::vector<std::string> matching(const std::string& folder,
                                  const std::vector<std::string_view>& patterns)
{
    std::vector<std::string> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (std::any_of(patterns.begin(), patterns.end(), [&](std::string_view pattern) {
                return base::matchesPattern(name, pattern);
            }))
            found.push_back(entry.path().string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

// The same, one level below: the profiles of a program.
std::vector<std::string> matchingInProfiles(const std::string& folder,
                                            const std::vector<std::string_view>& patterns)
{
    std::vector<std::string> found;
    for (const std::string& profile : matching(folder, {"*"})) {
        std::vector<std::string> more = matching(profile, patterns);
        found.insert(found.end(), more.begin(), more.end());
    }
    return found;
}

using Paths = std::vector<std::string>;

void add(Paths& paths, const Paths& more)
{
    paths.insert(paths.end(), more.begin(), more.end());
}

void addIfThere(Paths& paths, const std::string& path)
{
    std::error_code error;
    if (fs::exists(path, error))
        paths.push_back(path);
}

Paths desktopSettings(const DesktopFolders& folders)
{
    Paths paths;
    // Switched off, the desktop folder is the home folder: that is no settings folder.
    if (const std::string desktop = userFolder(folders, "DESKTOP", "Desktop");
        desktop != folders.home)
        addIfThere(paths, desktop);
    addIfThere(paths, folders.config + "/dconf/user");
    add(paths,
        matching(folders.config, {"gtk-3.0", "gtk-4.0", "kde*", "plasma*", "xfce4", "autostart"}));
    return paths;
}

Paths favorites(const DesktopFolders& folders)
{
    Paths paths;
    for (const std::string& firefox :
         {folders.home + "/.mozilla/firefox", folders.config + "/mozilla/firefox",
          folders.home + "/snap/firefox/common/.mozilla/firefox"})
        add(paths, matchingInProfiles(firefox, {"places.sqlite", "bookmarkbackups"}));
    for (const char* browser : {"chromium", "google-chrome"})
        add(paths, matchingInProfiles(folders.config + "/" + browser, {"Bookmarks"}));
    return paths;
}

Paths mailSettings(const DesktopFolders& folders)
{
    Paths paths = matchingInProfiles(folders.home + "/.thunderbird", {"prefs.js", "abook*.sqlite"});
    addIfThere(paths, folders.config + "/evolution/sources");
    return paths;
}

} // namespace

DesktopFolders DesktopFolders::ofThisUser()
{
    DesktopFolders folders;
    folders.home = withoutSlash(environmentText("HOME"));
    folders.config = withoutSlash(environmentText("XDG_CONFIG_HOME"));
    if (folders.config.empty())
        folders.config = folders.home + "/.config";
    std::string own = environmentText("XDG_DATA_HOME");
    folders.data.push_back(own.empty() ? folders.home + "/.local/share" : withoutSlash(own));
    std::string shared = environmentText("XDG_DATA_DIRS");
    if (shared.empty())
        shared = "/usr/local/share:/usr/share";
    for (std::string_view folder : base::split(shared, ":")) {
        if (!folder.empty())
            folders.data.push_back(withoutSlash(std::string(folder)));
    }
    return folders;
}

// Lines `XDG_<NAME>_DIR="$HOME/..."` or with an absolute path; the last one of a name counts.
std::string userFolder(const DesktopFolders& folders, std::string_view name,
                       std::string_view fallback)
{
    std::string found = folders.home + "/" + std::string(fallback);
    const std::string wanted = "XDG_" + std::string(name) + "_DIR=";
    const std::string text = readNativeFile(folders.config + "/user-dirs.dirs");
    for (std::string_view line : base::split(text, "\n")) {
        line = base::trim(line);
        if (!line.starts_with(wanted))
            continue;
        const std::string_view value =
            base::beforeLast(base::afterFirst(line.substr(wanted.size()), "\""), "\"");
        constexpr std::string_view kHome = "$HOME";
        if (value.starts_with(kHome))
            found = withoutSlash(folders.home + std::string(value.substr(kHome.size())));
        else if (value.starts_with('/'))
            found = withoutSlash(std::string(value));
    }
    return found;
}

LinuxShell::LinuxShell(FileSystem& fileSystem, DesktopFolders folders)
    : m_fileSystem(fileSystem), m_folders(std::move(folders)), m_types(m_folders.data)
{
}

std::string LinuxShell::typeName(std::string_view extension)
{
    return m_types.comment(m_types.typeOf(extension));
}

std::string LinuxShell::iconName(std::string_view extension)
{
    return m_types.icon(m_types.typeOf(extension));
}

std::vector<std::string> LinuxShell::extensions()
{
    return m_types.extensions();
}

std::vector<std::string> LinuxShell::defaultDocumentLines()
{
    if (m_folders.home.empty())
        return {};
    std::string line = m_fileSystem.fromNative(userFolder(m_folders, "DOCUMENTS", "Documents"));
    if (!line.ends_with('\\'))
        line += '\\';
    return {line};
}

std::vector<std::string> LinuxShell::settingsPaths(std::string_view group)
{
    Paths native;
    if (m_folders.home.empty())
        return native;
    if (base::equalsIgnoringCase(group, "Desktop Settings"))
        native = desktopSettings(m_folders);
    else if (base::equalsIgnoringCase(group, "IE Favorites"))
        native = favorites(m_folders);
    else if (base::equalsIgnoringCase(group, "Outlook Settings"))
        native = mailSettings(m_folders);
    Paths paths;
    paths.reserve(native.size());
    for (const std::string& path : native)
        paths.push_back(m_fileSystem.fromNative(path));
    return paths;
}

void LinuxShell::runKeyChanged(Registry& registry)
{
    if (!m_folders.home.empty())
        mirrorRunKey(registry, m_fileSystem, m_folders.config);
}

void LinuxShell::addRecentDocument(std::string_view path)
{
    if (m_folders.data.empty())
        return;
    const std::string_view name = base::afterLast(path, "\\");
    const std::string type = m_types.typeOf("." + std::string(base::afterLast(name, ".")));
    noteRecentDocument(m_folders.data.front(), m_fileSystem.toNative(path), type,
                       std::time(nullptr));
}

} // namespace vardelin::platform
