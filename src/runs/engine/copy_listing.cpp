#include "runs/engine/copy_listing.h"

#include "archive/catalog.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "runs/engine/archive_walk.h"

#include <algorithm>
#include <utility>

namespace vardelin::engine {

using base::RuntimeError;

CatalogFolder::CatalogFolder(platform::FileSystem& files, std::string_view root,
                             std::string_view archivePath, const ArchiveFolder& listing,
                             CopyReader& reader)
    : m_files(files), m_root(root), m_archivePath(archivePath),
      m_sourcePath(sourcePathOf(root, archivePath)), m_listing(listing), m_reader(reader)
{
}

std::vector<const ListedCopy*> CatalogFolder::inOrder() const
{
    std::vector<const ListedCopy*> order;
    order.reserve(m_listing.copies().size());
    for (const ListedCopy& copy : m_listing.copies())
        order.push_back(&copy);
    std::sort(order.begin(), order.end(), [](const ListedCopy* a, const ListedCopy* b) {
        return base::naturalLess(a->fileName, b->fileName);
    });
    return order;
}

std::optional<std::string> CatalogFolder::entryOf(const ListedCopy& copy) const
{
    return archive::entryOfFile(m_root, m_archivePath + std::string(copy.fileName));
}

archive::CopyMeta CatalogFolder::metaOf(const ListedCopy& copy)
{
    if (copy.meta)
        return *copy.meta;
    try {
        const auto file = folder().open(copy.fileName, platform::OpenMode::Read);
        const CopyHeader header = m_reader.readHeader(*file);
        return {header.sizeBytes, header.modifiedNs, header.savedNs};
    } catch (const RuntimeError&) {
        return {};
    }
}

std::optional<CopyRecord> CatalogFolder::recordOf(const ListedCopy& copy)
{
    auto entry = entryOf(copy);
    if (!entry)
        return std::nullopt;
    CopyRecord record;
    record.entry = std::move(*entry);
    record.archivePath = m_archivePath + std::string(copy.fileName);
    record.sourcePath = m_sourcePath + std::string(copy.sourceName);
    record.version = copy.version;
    record.form = copy.form;
    const archive::CopyMeta meta = metaOf(copy);
    record.sizeBytes = meta.sizeBytes;
    record.modifiedNs = meta.modifiedNs;
    record.savedNs = meta.savedNs;
    if (const auto info = folder().find(copy.fileName))
        record.storedBytes = info->sizeBytes;
    return record;
}

platform::Folder& CatalogFolder::folder()
{
    if (!m_folder)
        m_folder = m_files.openFolder(m_archivePath);
    return *m_folder;
}

void eachCopy(platform::FileSystem& files, std::string_view root, const KeyRing* ring,
              const std::function<bool(const CopyRecord&)>& each)
{
    CopyReader reader(ring);
    ArchiveWalk walk(files, root, root);
    while (const ArchiveFolder* const listing = walk.next()) {
        CatalogFolder folder(files, root, walk.path(), *listing, reader);
        for (const ListedCopy* copy : folder.inOrder()) {
            const auto record = folder.recordOf(*copy);
            if (record && !each(*record))
                return;
        }
    }
}

} // namespace vardelin::engine
