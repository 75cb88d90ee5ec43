#include "runs/engine/restore_plan.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "runs/engine/settings_groups.h"
#include "runs/engine/settings_store.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vardelin::engine {
namespace {

constexpr std::size_t kTagBytes = 3;

ChosenCopy chosen(const CopyRecord& copy)
{
    ChosenCopy result;
    result.fileName = platform::leafOf(copy.archivePath);
    result.sizeBytes = copy.sizeBytes;
    result.modifiedNs = copy.modifiedNs;
    result.version = static_cast<std::int16_t>(copy.version);
    result.form = copy.form;
    if (const auto name = archive::parseCopyName(result.fileName)) {
        result.nameBytes = static_cast<std::uint16_t>(name->sourceName.size());
        if (name->meta)
            result.contentHash = name->meta->contentHash;
    }
    return result;
}

class Planner {
    using Targets = std::unordered_map<std::string, std::size_t>; // name to place in the folder

public:
    Planner(const platform::Machine& machine, const ArchivePlace& place,
            std::optional<base::Date> asOf)
        : m_files(machine.fileSystem), m_place(place)
    {
        if (asOf) {
            const base::Date next = base::dateFromDays(base::daysSinceEpoch(*asOf) + 1);
            m_limitNs = machine.clock.fromLocal({next, {}}) - 1;
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
        // A drive letter and a colon begin every file entry; anything else names no file.
        if (entry.size() < 3 || entry[1] != ':' || entry[2] != '\\')
            m_plan.lost.push_back({entry, "the archive holds no such entry"});
        else if (entry.back() == '\\')
            addFolder(entry);
        else
            addFile(entry);
    }

    RestorePlan take()
    {
        for (auto& folder : m_plan.folders)
            m_plan.copies += folder.copies.size();
        return std::move(m_plan);
    }

private:
    void addFolder(const std::string& entry)
    {
        const std::string archivePath = archivePathOf(m_place.root, entry);
        if (!m_files.folderExists(archivePath)) {
            m_plan.lost.push_back({entry, "the archive holds no such folder"});
            return;
        }
        bool any = false;
        bool anyCopy = false;
        walkArchive(m_files, m_place.root, archivePath, false, [&](const FolderListing& listing) {
            std::unordered_map<std::string_view, const CopyRecord*> newest;
            for (const CopyRecord& copy : listing.copies) {
                anyCopy = true;
                if (copy.savedNs > m_limitNs)
                    continue;
                const CopyRecord*& best = newest[copy.sourcePath];
                if (best == nullptr || copy.version > best->version)
                    best = &copy;
            }
            any = any || !newest.empty();
            ChosenFolder& folder = folderFor(listing);
            const bool wasEmpty = folder.copies.empty();
            folder.whole = true;
            for (const CopyRecord& copy : listing.copies) {
                const auto hit = newest.find(copy.sourcePath);
                if (hit != newest.end() && hit->second == &copy)
                    addCopy(folder, copy, wasEmpty);
            }
            return true;
        });
        m_plan.anyMatched = m_plan.anyMatched || any;
        if (m_byDate && anyCopy && !any)
            m_plan.notMatched.push_back(entry);
    }

    void addFile(const std::string& entry)
    {
        const FolderListing* listing = listingFor(std::string(platform::parentOf(entry)));
        const CopyRecord* best = nullptr;
        if (listing != nullptr)
            best = m_byDate ? newestForDate(*listing, entry) : exactCopy(entry);
        if (best != nullptr) {
            m_plan.anyMatched = true;
            addCopy(folderFor(*listing), *best, false);
        } else if (!m_lateOnly) {
            m_plan.lost.push_back({entry, "the archive holds no such entry"});
        } else {
            m_plan.notMatched.push_back(entry);
        }
    }

    // Several files can carry one entry where names hold marks of their own; the newest counts.
    const CopyRecord* exactCopy(const std::string& entry)
    {
        m_lateOnly = false;
        const CopyRecord* best = nullptr;
        const auto [from, to] = m_byEntry.equal_range(entry);
        for (auto hit = from; hit != to; ++hit) {
            if (best == nullptr || hit->second->savedNs > best->savedNs)
                best = hit->second;
        }
        return best;
    }

    // The entry's tag does not decide: any copy of the same source does.
    const CopyRecord* newestForDate(const FolderListing& listing, const std::string& entry)
    {
        m_lateOnly = false;
        std::string source;
        if (const CopyRecord* own = exactCopy(entry)) {
            source = own->sourcePath;
        } else {
            const std::string_view head =
                std::string_view(entry).substr(0, entry.size() - kTagBytes);
            for (const CopyRecord& copy : listing.copies) {
                if (copy.entry.size() == entry.size() && copy.entry.starts_with(head))
                    source = copy.sourcePath;
            }
        }
        const CopyRecord* best = nullptr;
        for (const CopyRecord& copy : listing.copies) {
            if (source.empty() || copy.sourcePath != source)
                continue;
            m_lateOnly = true;
            if (copy.savedNs <= m_limitNs && (best == nullptr || copy.version > best->version))
                best = &copy;
        }
        return best;
    }

    // Entries of one folder come together, so one listing is kept.
    const FolderListing* listingFor(const std::string& sourceFolder)
    {
        m_lateOnly = false;
        if (m_listing && m_listing->sourcePath == sourceFolder)
            return &*m_listing;
        m_listing.reset();
        m_byEntry.clear();
        const std::string archivePath = archivePathOf(m_place.root, sourceFolder);
        if (!m_files.folderExists(archivePath))
            return nullptr;
        m_listing = listFolder(m_files, m_place.root, archivePath, false, m_reader);
        for (const CopyRecord& copy : m_listing->copies)
            m_byEntry.emplace(copy.entry, &copy);
        return &*m_listing;
    }

    ChosenFolder& folderFor(const FolderListing& listing)
    {
        const auto [place, isNew] = m_index.emplace(listing.archivePath, m_plan.folders.size());
        if (isNew)
            m_plan.folders.push_back(
                {listing.archivePath, listing.sourcePath, listing.folderRecord, {}, false});
        return m_plan.folders[place->second];
    }

    // One target gets one copy: of several versions that were asked for, the newest. `isUnique`
    // says that the folder's other copies come from the same listing, so nothing needs to be looked
    // up; a whole archive would otherwise be held twice.
    void addCopy(ChosenFolder& folder, const CopyRecord& copy, bool isUnique)
    {
        ChosenCopy next = chosen(copy);
        if (isUnique) {
            folder.copies.push_back(std::move(next));
            return;
        }
        Targets& targets = m_targets[folder.archivePath];
        for (std::size_t i = targets.size(); i < folder.copies.size(); ++i)
            targets.emplace(folder.copies[i].sourceName(), i);
        const auto [place, isNew] = targets.emplace(next.sourceName(), folder.copies.size());
        if (isNew) {
            folder.copies.push_back(std::move(next));
            return;
        }
        ChosenCopy& present = folder.copies[place->second];
        if (next.version > present.version)
            present = std::move(next);
    }

    platform::FileSystem& m_files;
    const ArchivePlace& m_place;
    std::int64_t m_limitNs = std::numeric_limits<std::int64_t>::max();
    bool m_byDate = false;
    bool m_lateOnly = false; // the last entry has copies, all of them after the date
    RestorePlan m_plan;
    CopyReader m_reader;
    std::optional<FolderListing> m_listing;
    std::unordered_multimap<std::string_view, const CopyRecord*> m_byEntry;
    std::unordered_map<std::string, std::size_t> m_index;
    std::unordered_map<std::string, Targets> m_targets; // by archive folder
};

void addListing(RestorePlan& plan, const FolderListing& listing)
{
    ChosenFolder folder{listing.archivePath, listing.sourcePath, listing.folderRecord, {}, false};
    for (const CopyRecord& copy : listing.copies)
        folder.copies.push_back(chosen(copy));
    plan.copies += folder.copies.size();
    plan.folders.push_back(std::move(folder));
}

// The newest copy of each file of a settings group: a power cut can leave the one before it, too.
FolderListing newestOf(const FolderListing& listing)
{
    std::map<std::string_view, const CopyRecord*> newest;
    for (const CopyRecord& copy : listing.copies) {
        const CopyRecord*& kept = newest[copy.sourcePath];
        if (kept == nullptr || copy.savedNs > kept->savedNs)
            kept = &copy;
    }
    FolderListing result{
        listing.archivePath, listing.sourcePath, {}, listing.foreign, listing.folderRecord};
    for (const auto& [path, copy] : newest)
        result.copies.push_back(*copy);
    return result;
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
    CopyReader reader;
    ChosenFolder top{root, {}, {}, {}, false};
    const ArchiveFolder names(files.openFolder(root)->list());
    for (const ListedCopy& copy : names.copies()) {
        if (names.newest(copy.sourceName) != &copy)
            continue; // left by a power cut
        CopyRecord record;
        record.archivePath = root + std::string(copy.fileName);
        record.sourcePath = copy.sourceName;
        record.form = copy.form;
        record.sizeBytes = copy.meta ? copy.meta->sizeBytes : 0;
        record.modifiedNs = copy.meta ? copy.meta->modifiedNs : 0;
        top.copies.push_back(chosen(record));
    }
    plan.copies = top.copies.size();
    if (!top.copies.empty())
        plan.folders.push_back(std::move(top));
    walkArchive(files, root, root, false, [&](const FolderListing& listing) {
        if (!listing.copies.empty())
            addListing(plan, newestOf(listing));
        return true;
    });
    return plan;
}

RestorePlan planEverything(const platform::Machine& machine, const ArchivePlace& place,
                           std::vector<std::string>& foreign)
{
    RestorePlan plan;
    platform::FileSystem& files = machine.fileSystem;
    walkArchive(files, place.root, place.root, false, [&](const FolderListing& listing) {
        for (const std::string& name : listing.foreign)
            foreign.push_back(listing.archivePath + name);
        if (!listing.copies.empty())
            addListing(plan, listing);
        return true;
    });
    for (const std::string_view group : kSettingsGroups) {
        RestorePlan settings = planSettingsGroup(machine, place, group);
        plan.copies += settings.copies;
        std::move(settings.folders.begin(), settings.folders.end(),
                  std::back_inserter(plan.folders));
    }
    return plan;
}

} // namespace vardelin::engine
