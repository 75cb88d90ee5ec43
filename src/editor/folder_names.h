#pragma once

#include "platform/file_system.h"

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
// system are left out. Raises what opening and listing raise.
FolderNames readFolderNames(platform::FileSystem& fileSystem, std::string_view path);

} // namespace vardelin::editor
