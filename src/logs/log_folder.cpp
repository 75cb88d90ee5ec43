#include "logs/log_folder.h"

#include <cstddef>

namespace vardelin::logs {

std::string makeLogFolder(platform::FileSystem& fileSystem, std::string_view appPath,
                          std::string_view logFolder)
{
    std::string folder = platform::joinPath(appPath, logFolder);
    if (fileSystem.folderExists(folder))
        return folder;
    fileSystem.createFolders(folder);
    // Up to the application folder, which was there before.
    const std::size_t top = platform::joinPath(appPath, "").size();
    std::string_view above = platform::parentOf(folder);
    while (above.size() > top) {
        fileSystem.openFolder(above)->flush();
        above = platform::parentOf(above);
    }
    fileSystem.openFolder(appPath)->flush();
    return folder;
}

} // namespace vardelin::logs
