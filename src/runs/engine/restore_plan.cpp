#include "runs/engine/restore_plan.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/name_mapping.h"
#include "runs/engine/settings_groups.h"
#include "runs/engine/settings_store.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <map>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace vardelin::engine {
namespace {

constexpr std::size_t kTagBytes = 3;
constexpr std::int64_t kNoLimit = std::numeric_limits<std::int64_t>::max();

ChosenCopy chosen(const ListedCopy& copy)
{
    ChosenCopy result;
    result.fileName = copy.fileName;
    result.version = static_cast<std::int16_t>(copy.version);
    result.form = copy.form;
    result.outOfOrder = copy.outOfOrder;
    if (const auto name = archive::parseCopyName(copy.fileName))
        result.nameBytes = static_cast<std::uint16_t>(name->sourceName.size());
    if (copy.meta) {
        result.sizeBytes = copy.meta->sizeBytes;
        result.modifiedNs = copy.meta->modifiedNs;
        result.contentHash = copy.meta->contentHash;
    }
    return result;
}

bool isSavedBefore(CatalogFolder& folder, const ListedCopy& copy, std::int64_t limitNs)
{
    return limitNs == kNoLimit || folder.metaOf(copy).savedNs <= limitNs;
}

// Of each file the newest copy that was saved up to the limit.
ChosenFolder newestCopies(CatalogFolder& folder, const std::string& archivePath,
                          const ArchiveFolder& listing, std::int64_t limitNs)
{
    std::vector<const ListedCopy*> candidates;
    candidates.reserve(listing.copies().size());
    for (const ListedCopy& copy : listing.copies()) {
        if (isSavedBefore(folder, copy, limitNs) && folder.entryOf(copy))
            candidates.push_back(&copy);
    }
    std::sort(candidates.begin(), candidates.end(), [](const ListedCopy* a, const ListedCopy* b) {
        return std::tie(a->sourceName, a->version) < std::tie(b->sourceName, b->version);
    });
    ChosenFolder result{archivePath, folder.sourcePath(), {}, true};
    result.copies.reserve(candidates.size());
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const bool isLast = i + 1 == candidates.size() ||
                            candidates[i + 1]->sourceName != candidates[i]->sourceName;
        if (isLast)
            result.copies.push_back(chosen(*candidates[i]));
    }
    return result;
}

// A drive letter and a colon begin every file entry, and no part of it may lead elsewhere: anything
// else names no file of this archive.
bool isPlainPath(std::string_view entry)
{
    if (entry.size() < 3 || std::isalpha(static_cast<unsigned char>(entry[0])) == 0 ||
        entry[1] != ':' || entry[2] != '\\' || entry.find('/') != std::string_view::npos ||
        entry.find('\0') != std::string_view::npos)
        return false;
    const auto parts = base::split(entry.substr(3), "\\");
    return std::none_of(parts.begin(), parts.end(), [](std::string_view part) {
        const std::string name = platform::nameToDisk(part);
        return name == "." || name == "..";
    });
}

class Planner {
    using Targets = std::unordered_map<std::string, std::size_t>; // name to place in the folder

public:
    Planner(const platform::Machine& machine, const ArchivePlace& place,
            std::optional<base::Date> asOf)
        : m_files(machine.fileSystem), m_place(place), m_reader(place.ring)
    {
        if (asOf) {
            const base::Date next = base::dateFromDays(base::daysSinceEpoch(*asOf) + 1);
            m_plan.limitNs = machine.clock.fromLocal({next, {}}) - 1;
            m_byDate = true;
        }
    }

    void addEntry(const std::string& entry)
    {
        for (const std::string_view group : kSettingsGroups) {
            if (base::equalsIgnoringCase(entry, group)) {
                m_plan.settingsGroups.emplace_back(group);
                return;
            }
        }
        m_plan.anyFileEntry = true;
        if (!isPlainPath(entry))
            m_plan.lost.push_back({entry, "the archive holds no such entry"});
        else if (entry.back() == '\\')
            addFolder(entry);
        else
            addFile(entry);
    }

    RestorePlan take()
    {
        // A copy that lies in a chosen folder comes with the folder, and so does a folder.
        std::erase_if(m_plan.folders, [&](const ChosenFolder& folder) {
            return std::any_of(m_trees.begin(), m_trees.end(), [&](const Tree& tree) {
                return folder.archivePath.starts_with(tree.archivePath);
            });
        });
        for (std::size_t i = 0; i < m_trees.size(); ++i) {
            bool isBelow = false;
            for (std::size_t j = 0; j < m_trees.size(); ++j) {
                const bool isSame = m_trees[i].archivePath == m_trees[j].archivePath;
                isBelow = isBelow || (m_trees[i].archivePath.starts_with(m_trees[j].archivePath) &&
                                      (isSame ? j < i : true));
            }
            if (isBelow)
                continue;
            m_plan.copies += m_trees[i].copies;
            m_plan.trees.push_back(m_trees[i].archivePath);
        }
        for (const ChosenFolder& folder : m_plan.folders)
            m_plan.copies += folder.copies.size();
        return std::move(m_plan);
    }

private:
    struct Tree {
        std::string archivePath;
        std::uint64_t copies = 0;
    };

    // The folder whose entries are looked up. Entries of one folder come together, so one is kept.
    struct OpenFolder {
        OpenFolder(platform::FileSystem& files, const std::string& root, const std::string& path,
                   CopyReader& reader)
            : archivePath(path), listing(files.openFolder(path)->list()),
              catalog(files, root, path, listing, reader)
        {
            byEntry.reserve(listing.copies().size());
            for (const ListedCopy& copy : listing.copies()) {
                if (const auto entry = catalog.entryOf(copy))
                    byEntry.emplace_back(std::hash<std::string>()(*entry), &copy);
            }
            std::sort(byEntry.begin(), byEntry.end(), [](const auto& a, const auto& b) {
                return std::tie(a.first, a.second->fileName) <
                       std::tie(b.first, b.second->fileName);
            });
        }

        std::string archivePath;
        ArchiveFolder listing;
        CatalogFolder catalog;
        std::vector<std::pair<std::size_t, const ListedCopy*>> byEntry; // hash of the entry's text
    };

    void addFolder(const std::string& entry)
    {
        const std::string archivePath = archivePathOf(m_place.root, entry);
        if (!m_files.folderExists(archivePath)) {
            m_plan.lost.push_back({entry, "the archive holds no such folder"});
            return;
        }
        Tree tree{archivePath, 0};
        bool anyCopy = false;
        ArchiveWalk walk(m_files, m_place.root, archivePath);
        while (const ArchiveFolder* const listing = walk.next()) {
            CatalogFolder folder(m_files, m_place.root, walk.path(), *listing, m_reader);
            anyCopy = anyCopy || !listing->copies().empty();
            tree.copies +=
                newestCopies(folder, walk.path(), *listing, m_plan.limitNs).copies.size();
        }
        m_plan.anyMatched = m_plan.anyMatched || tree.copies > 0;
        if (m_byDate && anyCopy && tree.copies == 0)
            m_plan.notMatched.push_back(entry);
        m_trees.push_back(std::move(tree));
    }

    void addFile(const std::string& entry)
    {
        m_lateOnly = false;
        OpenFolder* const folder = folderOf(std::string(platform::parentOf(entry)));
        const ListedCopy* best = nullptr;
        if (folder != nullptr)
            best = m_byDate ? newestForDate(*folder, entry) : exactCopy(*folder, entry);
        if (best != nullptr) {
            m_plan.anyMatched = true;
            addCopy(*folder, *best);
        } else if (!m_lateOnly) {
            m_plan.lost.push_back({entry, "the archive holds no such entry"});
        } else {
            m_plan.notMatched.push_back(entry);
        }
    }

    // Several files can carry one entry where names hold marks of their own; the newest counts.
    static const ListedCopy* exactCopy(OpenFolder& folder, const std::string& entry)
    {
        const ListedCopy* best = nullptr;
        const std::size_t hash = std::hash<std::string>()(entry);
        auto hit = std::lower_bound(
            folder.byEntry.begin(), folder.byEntry.end(), hash,
            [](const auto& known, std::size_t value) { return known.first < value; });
        for (; hit != folder.byEntry.end() && hit->first == hash; ++hit) {
            if (folder.catalog.entryOf(*hit->second) != entry)
                continue;
            if (best == nullptr ||
                folder.catalog.metaOf(*hit->second).savedNs > folder.catalog.metaOf(*best).savedNs)
                best = hit->second;
        }
        return best;
    }

    // The entry's tag does not decide: any copy of the same source does.
    const ListedCopy* newestForDate(OpenFolder& folder, const std::string& entry)
    {
        const ListedCopy* const own = exactCopy(folder, entry);
        std::optional<std::string_view> source;
        if (own != nullptr)
            source = own->sourceName;
        const std::string_view head = std::string_view(entry).substr(0, entry.size() - kTagBytes);
        for (const auto& [hash, copy] : folder.byEntry) {
            if (own != nullptr)
                break;
            const auto known = folder.catalog.entryOf(*copy);
            if (known && known->size() == entry.size() && known->starts_with(head))
                source = copy->sourceName;
        }
        const ListedCopy* best = nullptr;
        for (const auto& [hash, copy] : folder.byEntry) {
            if (copy->sourceName != source)
                continue;
            m_lateOnly = true;
            if (isSavedBefore(folder.catalog, *copy, m_plan.limitNs) &&
                (best == nullptr || copy->version > best->version))
                best = copy;
        }
        return best;
    }

    OpenFolder* folderOf(const std::string& sourceFolder)
    {
        const std::string archivePath = archivePathOf(m_place.root, sourceFolder);
        if (m_open && m_open->archivePath == archivePath)
            return m_open.get();
        m_open.reset();
        if (m_files.folderExists(archivePath))
            m_open = std::make_unique<OpenFolder>(m_files, m_place.root, archivePath, m_reader);
        return m_open.get();
    }

    // One target gets one copy: of several versions that were asked for, the newest.
    void addCopy(const OpenFolder& from, const ListedCopy& copy)
    {
        const auto [index, isNewFolder] =
            m_index.emplace(from.archivePath, std::pair(m_plan.folders.size(), Targets()));
        auto& [number, targets] = index->second;
        if (isNewFolder)
            m_plan.folders.push_back({from.archivePath, from.catalog.sourcePath(), {}, false});
        ChosenFolder& folder = m_plan.folders[number];
        const auto [place, isNew] =
            targets.emplace(std::string(copy.sourceName), folder.copies.size());
        if (isNew)
            folder.copies.push_back(chosen(copy));
        else if (copy.version > folder.copies[place->second].version)
            folder.copies[place->second] = chosen(copy);
    }

    platform::FileSystem& m_files;
    const ArchivePlace& m_place;
    bool m_byDate = false;
    bool m_lateOnly = false; // the last entry has copies, all of them after the date
    RestorePlan m_plan;
    std::vector<Tree> m_trees; // as the entries name them
    CopyReader m_reader;
    std::unique_ptr<OpenFolder> m_open;
    // By archive folder: its place in the plan, and what its targets are.
    std::unordered_map<std::string, std::pair<std::size_t, Targets>> m_index;
};

// The newest copy of each file of a settings group: a power cut can leave the one before it, too.
void addSettings(RestorePlan& plan, ChosenFolder folder, const ArchiveFolder& listing)
{
    for (const ListedCopy& copy : listing.copies()) {
        if (listing.newest(copy.sourceName) == &copy)
            folder.copies.push_back(chosen(copy));
    }
    if (folder.copies.empty())
        return;
    plan.copies += folder.copies.size();
    plan.folders.push_back(std::move(folder));
}

} // namespace

RestorePlan planRestore(const platform::Machine& machine, const ArchivePlace& place,
                        const base::TextCollection& entries, std::optional<base::Date> asOf)
{
    Planner planner(machine, place, asOf);
    for (std::size_t i = 1; i <= entries.count(); ++i)
        planner.addEntry(entries.item(i));
    return planner.take();
}

RestorePlan planSettingsGroup(const platform::Machine& machine, const ArchivePlace& place,
                              std::string_view group)
{
    RestorePlan plan;
    const std::string root = settingsFolder(place.root, group);
    platform::FileSystem& files = machine.fileSystem;
    if (!files.folderExists(root))
        return plan;
    const ArchiveFolder top(files.openFolder(root)->list());
    addSettings(plan, {root, {}, {}, false}, top);
    ArchiveWalk walk(files, root, root);
    while (const ArchiveFolder* const listing = walk.next())
        addSettings(plan, {walk.path(), sourcePathOf(root, walk.path()), {}, false}, *listing);
    return plan;
}

ChosenFolders::ChosenFolders(platform::FileSystem& files, std::string root, RestorePlan& plan,
                             const KeyRing* ring)
    : m_files(files), m_root(std::move(root)), m_limitNs(plan.limitNs),
      m_folders(std::exchange(plan.folders, {})), m_trees(std::exchange(plan.trees, {})),
      m_reader(ring)
{
    std::reverse(m_folders.begin(), m_folders.end());
    std::reverse(m_trees.begin(), m_trees.end());
}

std::optional<ChosenFolder> ChosenFolders::next()
{
    for (;;) {
        if (m_walk) {
            if (const ArchiveFolder* const listing = m_walk->next()) {
                CatalogFolder folder(m_files, m_root, m_walk->path(), *listing, m_reader);
                ChosenFolder result = newestCopies(folder, m_walk->path(), *listing, m_limitNs);
                m_walk->release();
                return result;
            }
            m_walk.reset();
        }
        if (!m_trees.empty()) {
            m_walk.emplace(m_files, m_root, m_trees.back());
            m_trees.pop_back();
            continue;
        }
        if (m_folders.empty())
            return std::nullopt;
        ChosenFolder folder = std::move(m_folders.back());
        m_folders.pop_back();
        return folder;
    }
}

AllCopies::AllCopies(const platform::Machine& machine, const ArchivePlace& place)
    : m_machine(machine), m_place(place), m_walk(machine.fileSystem, place.root, place.root),
      m_reader(place.ring)
{
}

std::optional<ChosenFolder> AllCopies::next(std::vector<std::string>& foreign)
{
    if (!m_walked) {
        if (const ArchiveFolder* const listing = m_walk.next()) {
            CatalogFolder folder(m_machine.fileSystem, m_place.root, m_walk.path(), *listing,
                                 m_reader);
            ChosenFolder result{m_walk.path(), folder.sourcePath(), {}, false};
            result.copies.reserve(listing->copies().size());
            for (const ListedCopy& copy : listing->copies()) {
                if (folder.entryOf(copy))
                    result.copies.push_back(chosen(copy));
                else
                    foreign.push_back(result.archivePath + std::string(copy.fileName));
            }
            for (const std::string_view name : listing->foreign())
                foreign.push_back(result.archivePath + std::string(name));
            if (!listing->folderRecords().empty())
                result.folderRecord = listing->folderRecords().front();
            m_walk.release();
            return result;
        }
        m_walked = true;
        for (const std::string_view group : kSettingsGroups) {
            RestorePlan settings = planSettingsGroup(m_machine, m_place, group);
            std::move(settings.folders.begin(), settings.folders.end(),
                      std::back_inserter(m_settings));
        }
        std::reverse(m_settings.begin(), m_settings.end());
    }
    if (m_settings.empty())
        return std::nullopt;
    ChosenFolder folder = std::move(m_settings.back());
    m_settings.pop_back();
    return folder;
}

} // namespace vardelin::engine
