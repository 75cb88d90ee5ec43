#pragma once

#include "platform/file_system.h"

#include <cstdint>
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
    //
    // `firstSerial` is where the run's temporary names begin, from firstSerialOf(): what an earlier
    // restore from the same archive left when it died is taken out of each folder that this opens.
    TargetFolders(platform::FileSystem& files, std::string location,
                  std::vector<std::string> sources, std::uint64_t firstSerial);

    // From any thread. `sourceFolder` is `C:\dir\`. Raises 70 where a link is in the way, and what
    // the port raises.
    std::unique_ptr<platform::Folder> open(const std::string& sourceFolder);
    // The path of the same folder, with a backslash at its end.
    std::string pathOf(std::string_view sourceFolder) const;
    // Source folders whose targets this run made, parents first.
    std::vector<std::string> made() const;

    // Temporary names of restores begin with a number of their archive's own. Since one run at a
    // time holds an archive, such a name that a run finds belongs to a dead one and not to a
    // restore from another archive that goes on beside it.
    static std::uint64_t firstSerialOf(std::string_view archiveRoot);

private:
    std::string baseOf(std::string_view sourceFolder) const;
    void clearOnce(platform::Folder& folder, const std::string& sourceFolder);

    platform::FileSystem& m_files;
    std::string m_location;
    std::vector<std::string> m_sources; // folders that source lines name, each ends in a backslash
    std::string m_temporaries;          // how the names of an earlier run's temporaries begin
    mutable std::mutex m_mutex;         // guards the two below
    std::set<std::string> m_made;
    std::set<std::string> m_cleared; // found there, and without temporaries of a dead run
};

} // namespace vardelin::engine
