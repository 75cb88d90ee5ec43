#include "ctl/archive_entries.h"

#include "archive/catalog.h"
#include "archive/entry_names.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "ctl/paths.h"
#include "platform/name_mapping.h"
#include "runs/engine/engine.h"
#include "state/name_tables.h"

#include <algorithm>
#include <map>
#include <set>

namespace vardelin::ctl {
namespace {

std::string_view withoutHeading(std::string_view text, std::string_view heading)
{
    if (base::startsWithIgnoringCase(text, heading) &&
        text.substr(heading.size()).starts_with('\\'))
        text.remove_prefix(heading.size() + 1);
    return text;
}

// `C:\dir` lies in the archive as `<root>C\dir`.
std::string archivePathOf(std::string_view root, std::string_view path)
{
    return std::string(root) + path.front() + std::string(path.substr(2));
}

// The copies of one archive folder that can be meant by a path: the one with this very entry, else
// the newest of the source.
std::optional<std::string> entryInFolder(const Session& session, std::string_view root,
                                         const std::string& path)
{
    const std::string folder = archivePathOf(root, platform::parentOf(path));
    if (!session.files().folderExists(folder))
        return std::nullopt;
    const std::string_view leaf = platform::leafOf(path);
    std::optional<std::string> newest;
    int newestVersion = -1;
    for (const platform::FolderEntry& file : session.files().openFolder(folder)->list()) {
        const auto copy = archive::parseCopyName(file.name);
        if (!copy)
            continue;
        auto entry = archive::entryOfFile(root, platform::joinPath(folder, file.name));
        if (!entry)
            continue;
        if (*entry == path)
            return entry;
        // A dot or blank is another character at a name's end than in front of a mark.
        const std::string source = platform::nameFromDisk(platform::nameToDisk(copy->sourceName));
        if (source == leaf && copy->version > newestVersion) {
            newestVersion = copy->version;
            newest = std::move(entry);
        }
    }
    return newest;
}

} // namespace

std::optional<std::string> settingsGroup(std::string_view text)
{
    const std::string_view name = base::trim(withoutHeading(text, kSettingsHeading));
    const auto& names = state::kOtherDataNames;
    const auto hit = std::find_if(names.begin(), names.end(), [&](std::string_view group) {
        return base::equalsIgnoringCase(group, name);
    });
    return hit == names.end() ? std::nullopt : std::optional(std::string(*hit));
}

std::vector<std::string> savedGroups(const Session& session, std::string_view root)
{
    std::vector<std::string> groups;
    for (const std::string_view group : state::kOtherDataNames) {
        const std::string folder =
            std::string(root) + std::string(archive::kOtherDataFolder) + "\\" + std::string(group);
        if (session.files().folderExists(folder))
            groups.emplace_back(group);
    }
    return groups;
}

std::string resolveEntry(const Session& session, std::string_view root, std::string_view typed)
{
    if (auto group = settingsGroup(typed))
        return *group;
    const std::string_view text = withoutHeading(typed, archive::kFilesGroup);
    std::string path = session.typedPath(text);
    if (endsInSeparator(text) || platform::isDriveRoot(path))
        return path.ends_with('\\') ? path : path + '\\';
    if (auto entry = entryInFolder(session, root, path))
        return *entry;
    if (session.files().folderExists(archivePathOf(root, path)))
        return path + '\\';
    return path;
}

std::vector<std::string> everything(const Session& session, std::string_view root)
{
    std::vector<std::string> keys;
    for (const platform::FolderEntryInfo& entry : session.files().list(root)) {
        if (entry.info.kind == platform::FileKind::Folder && entry.name.size() == 1)
            keys.push_back(entry.name + ":\\");
    }
    return keys;
}

std::vector<engine::CopyRecord> chosenCopies(const Session& session, std::string_view profilePath,
                                             const std::vector<std::string>& entries,
                                             std::optional<std::int64_t> limitNs)
{
    std::vector<std::string> folders;
    std::set<std::string, std::less<>> exact;
    for (const std::string& entry : entries) {
        if (entry.ends_with('\\'))
            folders.push_back(entry);
        else
            exact.insert(entry);
    }
    std::set<std::string> sources; // of the entries, whose tags do not decide with a date
    std::vector<engine::CopyRecord> candidates;
    engine::listCopies(session.machine, profilePath, [&](const engine::CopyRecord& copy) {
        const bool named = exact.contains(copy.entry);
        const bool below = std::any_of(folders.begin(), folders.end(), [&](const auto& folder) {
            return copy.sourcePath.starts_with(folder);
        });
        if (named)
            sources.insert(copy.sourcePath);
        if (named || below || (limitNs && !exact.empty()))
            candidates.push_back(copy);
        return true;
    });
    std::map<std::string, engine::CopyRecord> chosen;
    for (engine::CopyRecord& copy : candidates) {
        const bool below = std::any_of(folders.begin(), folders.end(), [&](const auto& folder) {
            return copy.sourcePath.starts_with(folder);
        });
        const bool meant =
            below || (limitNs ? sources.contains(copy.sourcePath) : exact.contains(copy.entry));
        if (!meant || (limitNs && copy.savedNs > *limitNs))
            continue;
        const auto place = chosen.find(copy.sourcePath);
        if (place == chosen.end())
            chosen.emplace(copy.sourcePath, std::move(copy));
        else if (copy.version > place->second.version)
            place->second = std::move(copy);
    }
    std::vector<engine::CopyRecord> result;
    result.reserve(chosen.size());
    for (auto& [source, copy] : chosen)
        result.push_back(std::move(copy));
    return result;
}

} // namespace vardelin::ctl
