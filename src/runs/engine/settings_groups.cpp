#include "runs/engine/settings_groups.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/registry_text.h"

#include <algorithm>
#include <cctype>
#include <unordered_set>
#include <utility>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using platform::FileInfo;
using platform::FileKind;
using platform::FileSystem;
using platform::RegistryRoot;

struct SavedKey {
    RegistryRoot root;
    std::string_view key; // empty: all of the root
};

// Not the machine's drive letters and the like: put back later, they could send every path
// elsewhere.
constexpr std::array kSavedKeys{SavedKey{RegistryRoot::ClassesRoot, ""},
                                SavedKey{RegistryRoot::CurrentUser, ""},
                                SavedKey{RegistryRoot::LocalMachine, "SOFTWARE"}};

class Collector {
public:
    Collector(FileSystem& fileSystem, std::vector<Gap>* missed)
        : m_fileSystem(fileSystem), m_missed(missed)
    {
    }

    // A path that a group begins with, a folder or a file. One that is gone meanwhile is no miss.
    void takePath(std::string_view path)
    {
        const std::string_view parent = platform::parentOf(path);
        if (parent.empty())
            return takeFolder(std::string(path));
        try {
            const auto info = m_fileSystem.openFolder(parent)->find(platform::leafOf(path));
            if (info)
                takeEntry(platform::joinPath(parent, platform::leafOf(path)), *info);
        } catch (const RuntimeError& error) {
            miss(path, error);
        }
    }

    std::vector<SettingsItem> items() { return std::move(m_items); }

private:
    void takeEntry(const std::string& path, const FileInfo& info)
    {
        switch (info.kind) {
        case FileKind::Folder:
            return takeFolder(path);
        case FileKind::Regular:
        case FileKind::SymbolicLink:
            if (m_seen.insert(path).second)
                m_items.push_back({path, relativeNameOf(path), {}, info});
            return;
        case FileKind::Other:
            return;
        }
    }

    void takeFolder(const std::string& path)
    {
        // Groups may name a folder and one inside it; each is walked once.
        if (!m_seen.insert(path).second)
            return;
        std::vector<platform::FolderEntryInfo> entries;
        try {
            entries = m_fileSystem.list(path);
        } catch (const RuntimeError& error) {
            return miss(path, error);
        }
        for (const bool wantFolders : {true, false}) {
            for (const platform::FolderEntryInfo& entry : entries) {
                if ((entry.info.kind == FileKind::Folder) == wantFolders)
                    takeEntry(platform::joinPath(path, entry.name), entry.info);
            }
        }
    }

    static std::string relativeNameOf(std::string_view path)
    {
        // The colon of the drive, or the two backslashes of a network path, cannot be part of a
        // name.
        if (path.size() >= 2 && path[1] == ':')
            return std::string(path.substr(0, 1)).append(path.substr(2));
        return std::string(path.substr(std::min(path.find_first_not_of('\\'), path.size())));
    }

    void miss(std::string_view path, const RuntimeError& error)
    {
        if (m_missed != nullptr)
            m_missed->push_back({std::string(path), error.reason().empty()
                                                        ? std::string(error.description())
                                                        : error.reason()});
    }

    FileSystem& m_fileSystem;
    std::vector<Gap>* m_missed;
    std::vector<SettingsItem> m_items;
    std::unordered_set<std::string> m_seen;
};

// One text for all saved keys.
std::string registryDump(platform::Registry& registry)
{
    std::string dump;
    for (const SavedKey& saved : kSavedKeys) {
        const std::string text = platform::registryText(registry, saved.root, saved.key);
        // Only the first line of the whole text names the format.
        dump.append(dump.empty() ? std::string_view(text) : base::afterFirst(text, "\n"));
    }
    return dump;
}

} // namespace

std::string_view settingsGroup(std::string_view name)
{
    for (const std::string_view group : kSettingsGroups) {
        if (base::equalsIgnoringCase(name, group))
            return group;
    }
    return {};
}

std::vector<SettingsItem> collectSettings(const platform::Machine& machine, std::string_view group,
                                          std::vector<Gap>* missed)
{
    const std::string_view name = settingsGroup(group);
    if (name.empty())
        return {};
    if (name == kRegistryGroup) {
        std::vector<SettingsItem> items;
        items.push_back({{}, std::string(kRegistryDumpName), registryDump(machine.registry), {}});
        return items;
    }
    Collector collector(machine.fileSystem, missed);
    for (const std::string& path : machine.shell.settingsPaths(name))
        collector.takePath(path);
    return collector.items();
}

std::string settingsSourcePath(std::string_view relativeName)
{
    const bool belowDrive = relativeName.size() >= 3 && relativeName[1] == '\\' &&
                            std::isalpha(static_cast<unsigned char>(relativeName[0])) != 0;
    if (!belowDrive)
        return {};
    return std::string(relativeName.substr(0, 1)).append(":").append(relativeName.substr(1));
}

} // namespace vardelin::engine
