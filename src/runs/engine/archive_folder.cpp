#include "runs/engine/archive_folder.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace vardelin::engine {
namespace {

bool isNewer(const ListedCopy& one, const ListedCopy& other)
{
    if (one.version != other.version)
        return one.version > other.version;
    return one.meta && (!other.meta || one.meta->savedNs > other.meta->savedNs);
}

} // namespace

ArchiveFolder::ArchiveFolder(std::vector<platform::FolderEntry> entries)
    : m_entries(std::move(entries))
{
    m_copies.reserve(m_entries.size());
    m_newest.reserve(m_entries.size());
    for (const platform::FolderEntry& entry : m_entries) {
        if (entry.kind == platform::FileKind::Folder) {
            m_subfolders.push_back(entry.name);
            continue;
        }
        if (entry.kind == platform::FileKind::Regular) {
            if (const auto name = archive::parseCopyName(entry.name)) {
                std::string_view source = name->sourceName;
                if (source.ends_with('.') || source.ends_with(' '))
                    source = m_mappedNames.emplace_back(archive::sourceNameOf(source));
                m_copies.push_back(
                    {entry.name, source, name->version, name->form, name->meta, false});
                continue;
            }
            if (archive::isTemporaryName(entry.name)) {
                m_temporaries.push_back(entry.name);
                continue;
            }
            if (archive::parseFolderRecordName(entry.name)) {
                m_folderRecords.push_back(entry.name);
                continue;
            }
        }
        m_foreign.push_back(entry.name);
    }
    checkSerials();
    for (std::size_t i = 0; i < m_copies.size(); ++i) {
        const auto [place, isNew] = m_newest.emplace(m_copies[i].sourceName, i);
        if (!isNew && isNewer(m_copies[i], m_copies[place->second]))
            place->second = i;
    }
}

// Serial numbers rise with the versions of a file. Only a file that was numbered anew has any, and
// the header of every other copy is bound to the version itself.
void ArchiveFolder::checkSerials()
{
    std::unordered_map<std::string_view, std::vector<ListedCopy*>> renumbered;
    for (const ListedCopy& copy : m_copies) {
        if (copy.meta && copy.meta->serial != 0)
            renumbered[copy.sourceName];
    }
    if (renumbered.empty())
        return;
    for (ListedCopy& copy : m_copies) {
        const auto hit = renumbered.find(copy.sourceName);
        if (hit != renumbered.end() && copy.version > 0)
            hit->second.push_back(&copy);
    }
    const auto serialOf = [](const ListedCopy& copy) {
        return copy.meta && copy.meta->serial != 0 ? copy.meta->serial
                                                   : static_cast<std::uint32_t>(copy.version);
    };
    for (auto& [source, copies] : renumbered) {
        std::sort(copies.begin(), copies.end(),
                  [](const auto* a, const auto* b) { return a->version < b->version; });
        std::uint32_t highest = 0;
        for (ListedCopy* copy : copies) {
            copy->outOfOrder = serialOf(*copy) <= highest;
            highest = std::max(highest, serialOf(*copy));
        }
        std::uint32_t lowest = UINT32_MAX;
        for (auto copy = copies.rbegin(); copy != copies.rend(); ++copy) {
            (*copy)->outOfOrder = (*copy)->outOfOrder || serialOf(**copy) >= lowest;
            lowest = std::min(lowest, serialOf(**copy));
        }
    }
}

const ListedCopy* ArchiveFolder::newest(std::string_view sourceName) const
{
    const auto hit = m_newest.find(sourceName);
    return hit == m_newest.end() ? nullptr : &m_copies[hit->second];
}

bool ArchiveFolder::hasSubfolder(std::string_view name) const
{
    return std::find(m_subfolders.begin(), m_subfolders.end(), name) != m_subfolders.end();
}

std::string archivePathOf(std::string_view archiveRoot, std::string_view sourceFolder)
{
    std::string path(archiveRoot);
    path += static_cast<char>(std::toupper(static_cast<unsigned char>(sourceFolder.front())));
    path.append(sourceFolder.substr(2));
    return path;
}

std::string sourcePathOf(std::string_view archiveRoot, std::string_view archiveFolder)
{
    if (archiveFolder.size() < archiveRoot.size() + 2)
        return {};
    const std::string_view rest = archiveFolder.substr(archiveRoot.size());
    if (rest[1] != '\\' || std::isalpha(static_cast<unsigned char>(rest[0])) == 0)
        return {};
    std::string path(rest.substr(0, 1));
    path += ':';
    path.append(rest.substr(1));
    return path;
}

} // namespace vardelin::engine
