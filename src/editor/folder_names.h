#pragma once

#include "platform/file_system.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::editor {

// What stands in one folder, each list without regard to ASCII case, then by bytes.
struct FolderNames {
    std::vector<std::string> folders;
    std::vector<std::string> files; // all that is no folder, links included
};

// Reads the folder's names and nothing else of its entries. Folders that only show the running
// system are left out. `goOn` is asked for every entry, and between the steps of the sorting: the
// caller may do other work in it, and none come back where it gives false. Raises what opening and
// listing raise.
std::optional<FolderNames> readFolderNames(platform::FileSystem& fileSystem, std::string_view path,
                                           const std::function<bool()>& goOn);

// The same without a break.
FolderNames readFolderNames(platform::FileSystem& fileSystem, std::string_view path);

} // namespace vardelin::editor
