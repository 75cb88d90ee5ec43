#pragma once

#include "platform/file_system.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/outcome.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {

// One folder of an archive with its entries named by the catalog's own rule.
struct FolderListing {
    std::string archivePath;          // ends in a backslash
    std::string sourcePath;           // likewise
    std::vector<CopyRecord> copies;   // in the folder's order
    std::vector<std::string> foreign; // names of files that are no copies
    std::string folderRecord;         // the file name of the folder's own record; may be empty
};

// Lists one folder of the archive at `root` (which ends in a backslash). Copies whose names were
// too long for their meta are looked up in their headers; `storedBytes` is filled when asked for.
FolderListing listFolder(platform::FileSystem& files, std::string_view root,
                         std::string_view archivePath, bool withSizes, CopyReader& reader);

// Goes through the archive below `archivePath`, for each folder its subfolders first, both in the
// folder's order; OtherData is passed over. `each` gives false to stop; so does the result then.
bool walkArchive(platform::FileSystem& files, std::string_view root, std::string_view archivePath,
                 bool withSizes, const std::function<bool(const FolderListing&)>& each);

} // namespace vardelin::engine
