#pragma once

#include "platform/file_system.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vardelin::engine {

// Opens the folders that a restore writes into, and makes the missing ones.
//
// Every step below the base goes by an open folder and one name, and never through a symbolic link,
// and the base itself stays the folder that it was at its first use; so nothing that was planted in
// the tree, before the run or during it, leads outside. Whatever a restore does to its target goes
// by these functions and never by a path.
class TargetFolders {
public:
    // With a location everything goes below it, as `<location>\<letter>\<folders>`. Without one,
    // files go back to their places; links are then followed only in the part of a path that a
    // source line of the profile names, since the person chose that path with its links.
    //
    // `firstSerial` is where the run's temporary names begin, from firstSerialOf(): what an earlier
    // restore from the same archive left when it died is taken out of each folder that this opens.
    TargetFolders(platform::FileSystem& files, std::string location,
                  std::vector<std::string> sources, std::uint64_t firstSerial);

    // From any thread. `sourceFolder` is `C:\dir\`. Raises 70 or 75 where a link is in the way or
    // the base was exchanged, and what the port raises. Makes what is missing.
    std::unique_ptr<platform::Folder> open(const std::string& sourceFolder);
    // The same again once the files are written: nothing is made, 76 where it is gone.
    std::unique_ptr<platform::Folder> reopen(const std::string& sourceFolder);
    // The path of the same folder, with a backslash at its end.
    std::string pathOf(std::string_view sourceFolder) const;
    // Calls `use` for each folder that this run made and that still is the one it made, the deepest
    // first, with the source folder, the open folder above the target and the target's name in it.
    // What a folder raises is its own loss alone.
    void eachMade(const std::function<void(const std::string& sourceFolder, platform::Folder& above,
                                           std::string_view name)>& use);

    // Temporary names of restores begin with a number of their archive's own. Since one run at a
    // time holds an archive, such a name that a run finds belongs to a dead one and not to a
    // restore from another archive that goes on beside it.
    static std::uint64_t firstSerialOf(std::string_view archiveRoot);

private:
    using FileId = std::pair<std::uint64_t, std::uint64_t>; // device and inode

    std::string baseOf(std::string_view sourceFolder) const;
    void clearOnce(platform::Folder& folder, const std::string& sourceFolder);
    std::unique_ptr<platform::Folder> openBase(const std::string& base);
    // Goes down from the base; `make` makes what is missing, `leave` leaves out so many names at
    // the end.
    std::unique_ptr<platform::Folder> walk(const std::string& sourceFolder, bool make,
                                           std::size_t leave);

    platform::FileSystem& m_files;
    std::string m_location;
    std::vector<std::string> m_sources; // folders that source lines name, each ends in a backslash
    std::string m_temporaries;          // how the names of an earlier run's temporaries begin
    std::mutex m_mutex;                 // guards what follows
    std::map<std::string, FileId> m_bases;
    std::map<std::string, FileId> m_made; // by source folder
    std::set<std::string> m_cleared;      // found there, and without temporaries of a dead run
};

} // namespace vardelin::engine
