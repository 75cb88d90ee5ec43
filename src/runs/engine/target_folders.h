#pragma once

#include "platform/file_system.h"

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {

// Opens the folders that a restore writes into, and makes the missing ones.
//
// Every step below the base goes by an open folder and one name, and never through a symbolic link,
// so nothing that was planted in the tree, before the run or during it, leads outside.
class TargetFolders {
public:
    // With a location everything goes below it, as `<location>\<letter>\<folders>`. Without one,
    // files go back to their places; links are then followed only in the part of a path that a
    // source line of the profile names, since the person chose that path with its links.
    TargetFolders(platform::FileSystem& files, std::string location,
                  std::vector<std::string> sources);

    // From any thread. `sourceFolder` is `C:\dir\`. Raises 70 where a link is in the way, and what
    // the port raises.
    std::unique_ptr<platform::Folder> open(const std::string& sourceFolder);
    // The path of the same folder, with a backslash at its end.
    std::string pathOf(std::string_view sourceFolder) const;
    // Source folders whose targets this run made, parents first.
    std::vector<std::string> made() const;

private:
    std::string baseOf(std::string_view sourceFolder) const;

    platform::FileSystem& m_files;
    std::string m_location;
    std::vector<std::string> m_sources; // folders that source lines name, each ends in a backslash
    mutable std::mutex m_mutex;         // guards m_made
    std::set<std::string> m_made;
};

} // namespace vardelin::engine
