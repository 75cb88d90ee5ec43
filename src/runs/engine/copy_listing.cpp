#include "runs/engine/copy_listing.h"

#include "archive/catalog.h"
#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <utility>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

void fillFromHeader(platform::Folder& folder, CopyReader& reader, const ListedCopy& copy,
                    CopyRecord& record)
{
    try {
        const auto file = folder.open(copy.fileName, platform::OpenMode::Read);
        const CopyHeader header = reader.readHeader(*file);
        record.sizeBytes = header.sizeBytes;
        record.modifiedNs = header.modifiedNs;
        record.savedNs = header.savedNs;
    } catch (const RuntimeError&) {
        // Damaged: it stays in the list, and reading its content tells the cause.
        record.savedNs = 0;
    }
}

} // namespace

FolderListing listFolder(platform::FileSystem& files, std::string_view root,
                         std::string_view archivePath, bool withSizes, CopyReader& reader)
{
    FolderListing listing;
    listing.archivePath = archivePath;
    listing.sourcePath = sourcePathOf(root, archivePath);
    const auto folder = files.openFolder(archivePath);
    const ArchiveFolder names(folder->list());
    std::vector<const ListedCopy*> order;
    for (const ListedCopy& copy : names.copies())
        order.push_back(&copy);
    std::sort(order.begin(), order.end(), [](const ListedCopy* a, const ListedCopy* b) {
        return base::naturalLess(a->fileName, b->fileName);
    });
    listing.copies.reserve(order.size());
    for (const ListedCopy* copy : order) {
        CopyRecord record;
        record.archivePath = listing.archivePath + std::string(copy->fileName);
        auto entry = archive::entryOfFile(root, record.archivePath);
        if (!entry) {
            listing.foreign.emplace_back(copy->fileName);
            continue;
        }
        record.entry = std::move(*entry);
        record.sourcePath = listing.sourcePath + std::string(copy->sourceName);
        record.version = copy->version;
        record.form = copy->form;
        if (copy->meta) {
            record.sizeBytes = copy->meta->sizeBytes;
            record.modifiedNs = copy->meta->modifiedNs;
            record.savedNs = copy->meta->savedNs;
        } else {
            fillFromHeader(*folder, reader, *copy, record);
        }
        if (withSizes) {
            if (const auto info = folder->find(copy->fileName))
                record.storedBytes = info->sizeBytes;
        }
        listing.copies.push_back(std::move(record));
    }
    for (const std::string_view name : names.foreign())
        listing.foreign.emplace_back(name);
    if (!names.folderRecords().empty())
        listing.folderRecord = names.folderRecords().front();
    return listing;
}

bool walkArchive(platform::FileSystem& files, std::string_view root, std::string_view archivePath,
                 bool withSizes, const std::function<bool(const FolderListing&)>& each)
{
    struct Level {
        std::string path;
        std::vector<std::string> subfolders; // the next one at the back
        bool listed = false;
    };
    CopyReader reader;
    const std::string otherData = std::string(root) + "OtherData\\";
    std::vector<Level> stack;
    stack.push_back({std::string(archivePath), {}, false});
    while (!stack.empty()) {
        Level& level = stack.back();
        if (!level.listed) {
            level.listed = true;
            for (const platform::FolderEntry& entry : files.openFolder(level.path)->list()) {
                if (entry.kind == platform::FileKind::Folder)
                    level.subfolders.push_back(entry.name);
            }
            std::sort(level.subfolders.begin(), level.subfolders.end(),
                      [](const auto& a, const auto& b) { return base::naturalLess(b, a); });
        }
        if (!level.subfolders.empty()) {
            std::string next = level.path + level.subfolders.back() + '\\';
            level.subfolders.pop_back();
            if (!base::equalsIgnoringCase(next, otherData))
                stack.push_back({std::move(next), {}, false});
            continue;
        }
        // What lies directly in the root (the profile's copy) is in no catalog.
        if (level.path.size() > root.size() &&
            !each(listFolder(files, root, level.path, withSizes, reader)))
            return false;
        stack.pop_back();
    }
    return true;
}

} // namespace vardelin::engine
