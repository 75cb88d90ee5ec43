#pragma once

#include "archive/paced_loop.h"
#include "base/keyed_collection.h"
#include "platform/machine.h"
#include "trace/error_tail.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The catalog of an archive is its folder tree and its file names; nothing else lists what it
// holds. A catalog line stands for one archive file:
//
//   Files And Folders\C:\work\report.doc_007
//
// group, backslash, folder with its drive, source name, underscore, version tag. The tag is three
// digits: `000` is the full copy, anything else a version. An entry is a line without its group.
// Review, restore, deletion and the engine all name an archive file by this one rule.
namespace vardelin::archive {

inline constexpr std::string_view kFilesGroup = "Files And Folders";
inline constexpr std::string_view kOtherDataFolder = "OtherData";
inline constexpr std::string_view kFullTag = "000";

// The catalog line of the archive file `path`; `root` is the archive root with its backslash.
//
// The file name alone decides, in any case: the last `FULL` in it, wherever it stands, makes a full
// copy; else the last `Ver` a version, whose number ends at the next underscore. None for a file
// that is not in the catalog: one without a mark, or one directly in the root. Raises 5 for a `Ver`
// without an underscore behind it.
std::optional<std::string> catalogLine(std::string_view root, std::string_view path);

// The same for whoever must go on past a malformed name: the entry, none where there is no line or
// none can be made.
std::optional<std::string> entryOfFile(std::string_view root, std::string_view path);

// A catalog line without its group.
std::string entryOf(std::string_view line);

// A line taken apart; views into the line. A version above 999 has a tag of four digits, which
// leaves the line unversioned: then `name` is everything behind the last backslash and `tag` its
// last three bytes all the same.
struct CatalogLine {
    std::string_view group;  // empty where the line has no backslash
    std::string_view folder; // `C:\work\`, with its backslash
    std::string_view name;   // of the source file, `report.doc`
    std::string_view tag;    // the line's last three bytes, or all of a shorter one
    bool versioned = false;  // an underscore stands in front of the tag
};
CatalogLine parseCatalogLine(std::string_view line);

// `<application folder>\Data\ReviewFiles.txt`, and `model.txt` in the application folder.
std::string reviewFilesPath(std::string_view appPath);
std::string modelPath(std::string_view appPath);

// `<destination>\<stem>\`, with one backslash behind a destination that is a drive's root. The stem
// is the profile's file name without its last four bytes, its extension. Empty where either is.
std::string archiveRoot(std::string_view destination, std::string_view profileFileName);

// Full paths in the order in which they came. A folder is kept once for all of its files that
// follow one another: an archive has a million of them.
class PathList {
public:
    void add(std::string_view path);
    std::size_t count() const noexcept { return m_entries.size(); }
    // From 1. Raises 9 for an index out of range.
    std::string item(std::size_t index) const;
    void clear() { *this = {}; }

private:
    struct Entry {
        std::uint32_t folder = 0;
        std::uint32_t block = 0;
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
    };

    std::vector<std::string> m_folders; // with their backslash
    std::vector<std::string> m_blocks;  // names without anything between them
    std::vector<Entry> m_entries;
};

// What a review keeps beside what is on show. Lives as long as the review is open; collections of
// paths follow the file system's rule.
struct ReviewState {
    explicit ReviewState(base::KeyRule pathRule = base::KeyRule::Exact)
        : clxnChildren(pathRule), clxnChildKeys(pathRule), clxnDeleted(pathRule)
    {
    }

    std::string sStoreRoot;    // the archive root with its backslash; set before the walk
    PathList clxnArchiveFiles; // in the order of the walk; empty again when the catalog is written
    bool bOtherDataExists = false;
    bool bFilesExist = false;

    bool bTopLevel = false; // the rows being added are groups
    // The children of the row being opened: a folder's name, keyed by itself, or a file's with `?`
    // behind it, and `|` in front of that where the name has no dot. And the row's key of each.
    base::TextCollection clxnChildren;
    base::TextCollection clxnChildKeys;

    // The catalog line of each row that was deleted since the review was opened, keyed by itself;
    // a folder's is the start that its lines had in common.
    base::TextCollection clxnDeleted;
    bool bDeleteDone = false; // a deletion was asked for: opening a row looks into clxnDeleted
};

// The walk of an archive for callers that show no dialog; errors are raised. `each` is given every
// file's full path in the order of RecursiveCallForSubFolders, `OtherData` left out.
void walkArchive(platform::FileSystem& fileSystem, std::string_view root,
                 const std::function<void(std::string_view path)>& each);

// Writes the catalog lines of a whole archive anew to Data\ReviewFiles.txt, which is made with its
// folder. A malformed name has no line here. Keeps one folder's names in memory, not the archive's.
// `step` is called behind each file. After an error there is no list: neither a part of one nor
// that of another archive may pass for it.
void writeReviewFiles(
    platform::FileSystem& fileSystem, std::string_view appPath, std::string_view root,
    const std::function<void()>& step = [] {});

// What the walk that reports its errors needs; holds references only.
struct CatalogContext {
    platform::FileSystem& fileSystem;
    PacedLoop& loop;
    trace::TraceContext& trace;
    std::string_view appPath; // the application folder, no backslash at its end
};

// Adds every file below `folder` (no backslash at its end): in each folder first what is in its
// subfolders, then its own files, both in the folder's order. `OtherData` right below the archive
// root is not entered and sets bOtherDataExists. Each item is a step of the loop. Links to folders
// are not followed. Errors end in the tail, and what was found until then stays.
void RecursiveCallForSubFolders(const CatalogContext& context, ReviewState& state,
                                std::string_view folder);

// Writes the catalog lines of clxnArchiveFiles anew to Data\ReviewFiles.txt and sets bFilesExist
// with the first line. Each item is a step of the loop. A malformed name ends it in the tail (5);
// the lines in front of it stay in the file.
void WritingFileFromClxn(const CatalogContext& context, ReviewState& state, std::string_view root);

} // namespace vardelin::archive
