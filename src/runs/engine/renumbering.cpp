#include "runs/engine/renumbering.h"

#include "archive/entry_names.h"
#include "runs/engine/archive_folder.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace vardelin::engine {
namespace {

struct Rename {
    std::string from;
    std::string to;
};

std::uint32_t serialOf(const ListedCopy& copy)
{
    return copy.meta && copy.meta->serial != 0 ? copy.meta->serial
                                               : static_cast<std::uint32_t>(copy.version);
}

} // namespace

std::optional<Renumbered> renumberVersions(platform::Folder& archive, std::string_view sourceName,
                                           RetentionRule rule, std::int64_t nowNs,
                                           const LocalDate& localDate)
{
    const ArchiveFolder listing(archive.list());
    std::vector<const ListedCopy*> copies;
    for (const ListedCopy& copy : listing.copies()) {
        if (copy.sourceName == sourceName)
            copies.push_back(&copy);
    }
    std::sort(copies.begin(), copies.end(),
              [](const ListedCopy* a, const ListedCopy* b) { return a->version < b->version; });
    std::vector<RetainedVersion> versions;
    for (const ListedCopy* copy : copies) {
        versions.push_back({copy->version, {}});
        if (copy->meta)
            versions.back().savedNs = copy->meta->savedNs;
    }
    rule.mostVersions = kMostRenumbered;
    const std::vector<Verdict> verdicts = judgeVersions(versions, rule, nowNs, localDate);

    std::vector<const ListedCopy*> dropped;
    std::vector<Rename> renames;
    Renumbered result;
    for (std::size_t i = 0; i < copies.size(); ++i) {
        const ListedCopy& copy = *copies[i];
        if (copy.version == 0)
            continue;
        if (!verdicts[i].keeps) {
            dropped.push_back(&copy);
            continue;
        }
        ++result.highest;
        result.serial = serialOf(copy);
        result.newestName = copy.fileName;
        if (copy.version == result.highest)
            continue;
        if (!copy.meta)
            return std::nullopt;
        archive::CopyMeta meta = *copy.meta;
        meta.serial = result.serial;
        const auto name = archive::copyName(archive::parseCopyName(copy.fileName)->sourceName,
                                            result.highest, meta, copy.form);
        if (!name || archive::parseCopyName(*name)->meta != meta)
            return std::nullopt;
        renames.push_back({std::string(copy.fileName), *name});
        result.newestName = *name;
    }
    for (const ListedCopy* copy : dropped) {
        const auto info = archive.find(copy->fileName);
        archive.removeFile(copy->fileName);
        ++result.removed;
        result.removedBytes += info ? info->sizeBytes : 0;
    }
    for (const Rename& rename : renames)
        archive.rename(rename.from, rename.to);
    archive.flush();
    return result;
}

} // namespace vardelin::engine
