#pragma once

#include "platform/file_system.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/outcome.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {

// The copies of one archive folder as the catalog names them. It makes their records one at a time,
// since a folder may hold hundreds of thousands.
class CatalogFolder {
public:
    // `listing` and `reader` must outlive this. `root` and `archivePath` end in a backslash.
    CatalogFolder(platform::FileSystem& files, std::string_view root, std::string_view archivePath,
                  const ArchiveFolder& listing, CopyReader& reader);

    // Of the folder that the copies come from; empty below OtherData. Ends in a backslash.
    const std::string& sourcePath() const { return m_sourcePath; }
    // In the folder's order.
    std::vector<const ListedCopy*> inOrder() const;
    // The copy's entry by the catalog's own rule; none where the rule makes none, and the file is
    // foreign then.
    std::optional<std::string> entryOf(const ListedCopy& copy) const;
    // Sizes and times of a copy. Where its name was too long to tell they come from its header, and
    // a damaged header gives zeros: reading the content tells the cause.
    archive::CopyMeta metaOf(const ListedCopy& copy);
    // All that is known of a copy, `storedBytes` too. None for a foreign file.
    std::optional<CopyRecord> recordOf(const ListedCopy& copy);

private:
    platform::Folder& folder();

    platform::FileSystem& m_files;
    std::string m_root;
    std::string m_archivePath;
    std::string m_sourcePath;
    const ArchiveFolder& m_listing;
    CopyReader& m_reader;
    std::unique_ptr<platform::Folder> m_folder; // once it is needed
};

// Tells every copy of the archive at `root` in the catalog's order, settings aside. `each` gives
// false to stop. `ring` opens the headers of encrypted copies whose names tell too little; without
// it such a copy has no size and no times.
void eachCopy(platform::FileSystem& files, std::string_view root, const KeyRing* ring,
              const std::function<bool(const CopyRecord&)>& each);

} // namespace vardelin::engine
