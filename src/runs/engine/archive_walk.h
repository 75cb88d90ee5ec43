#pragma once

#include "platform/file_system.h"
#include "runs/engine/archive_folder.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {

// Goes through the archive below a folder, one folder a call: of each folder its subfolders first,
// in the folder's order; OtherData is passed over. Each folder is listed once, except that the
// listing of a large one is given up while its subfolders are gone through: what this holds depends
// on the largest folder, not on the archive.
class ArchiveWalk {
public:
    // `root` and `archivePath` end in a backslash; the port must outlive this.
    ArchiveWalk(platform::FileSystem& files, std::string_view root, std::string_view archivePath);

    // The next folder's listing, which lives until the next call; null at the end. The root itself
    // is not given: what lies directly in it (the profile's copy) is in no catalog. Raises what the
    // port raises; the walk is over then.
    const ArchiveFolder* next();
    // Lets go of the listing that was given last, where it is not needed up to the next call.
    void release() { m_stack.back().listing.reset(); }
    // Of the folder that was given last; ends in a backslash.
    const std::string& path() const { return m_stack.back().path; }

private:
    struct Level {
        std::string path;
        std::vector<std::string> subfolders{};          // the next one at the back
        std::unique_ptr<const ArchiveFolder> listing{}; // null: not read, or given up
        std::size_t kept = 0;                           // entries of the listing that count
        bool entered = false;
    };

    void enter(Level& level);
    void leave();

    platform::FileSystem& m_files;
    std::string m_root;
    std::string m_otherData;
    std::vector<Level> m_stack;
    std::size_t m_kept = 0; // entries of the listings on the stack, the last one's aside
    bool m_given = false;   // the last level is the one that was given
};

} // namespace vardelin::engine
