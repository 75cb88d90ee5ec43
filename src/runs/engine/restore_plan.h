#pragma once

#include "base/dates.h"
#include "base/keyed_collection.h"
#include "platform/machine.h"
#include "runs/engine/archive_place.h"
#include "runs/engine/archive_walk.h"
#include "runs/engine/copy_listing.h"
#include "runs/engine/outcome.h"

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// Turns the entries that a person chose into the copies to read, each target once.
namespace vardelin::engine {

// One copy to read. The source's name is kept as the beginning of the file name alone: a restore
// may hold a million of these.
struct ChosenCopy {
    std::uint64_t sizeBytes = 0;
    std::int64_t modifiedNs = 0; // of the source, as the name or else the header tells
    std::string fileName;        // in the archive
    std::uint16_t nameBytes = 0; // what it has of the source's name
    std::int16_t version = 0;
    archive::Form form = archive::Form::Compressed;
    bool outOfOrder = false;                         // its serial number says that it was renamed
    std::optional<archive::ContentHash> contentHash; // of a copy that is stored as it is

    std::string sourceName() const
    {
        return archive::sourceNameOf(std::string_view(fileName).substr(0, nameBytes));
    }
};

struct ChosenFolder {
    std::string archivePath; // ends in a backslash
    std::string sourcePath;  // likewise; where the files came from
    std::vector<ChosenCopy> copies;
    bool whole = false;         // asked for as a folder: it is made even when it is empty
    std::string folderRecord{}; // AllCopies: the file name of the folder's own record
};

// What to restore. Single copies are held; what was asked for as a folder is held as its path
// alone, and gone through once for the count here and once for the copies by ChosenFolders.
struct RestorePlan {
    std::vector<ChosenFolder> folders; // of single entries
    std::vector<std::string> trees;    // folders of the archive, none below another one
    std::int64_t limitNs = std::numeric_limits<std::int64_t>::max(); // of the run that saved
    std::vector<Gap> lost;
    std::vector<std::string> notMatched;
    std::vector<std::string> settingsGroups; // asked for, in the order of the entries
    std::uint64_t copies = 0;                // in folders and trees
    bool anyFileEntry = false;
    bool anyMatched = false; // a file entry has a copy for the date
};

// `asOf` is a day: the newest copy saved on it or before it counts. None: what the entries' tags
// say.
RestorePlan planRestore(const platform::Machine& machine, const ArchivePlace& place,
                        const base::TextCollection& entries, std::optional<base::Date> asOf);

// The copies of one settings group; empty where nothing was saved.
RestorePlan planSettingsGroup(const platform::Machine& machine, const ArchivePlace& place,
                              std::string_view group);

// Gives the folders of a plan one after another, those of its trees as the archive lists them now.
class ChosenFolders {
public:
    // The port must outlive this; `plan` gives its folders and trees away.
    // `ring` opens the headers of copies whose names tell too little; null for none.
    ChosenFolders(platform::FileSystem& files, std::string root, RestorePlan& plan,
                  const KeyRing* ring);

    // None at the end. Raises what listing the archive raises.
    std::optional<ChosenFolder> next();

private:
    platform::FileSystem& m_files;
    std::string m_root;
    std::int64_t m_limitNs;
    std::vector<ChosenFolder> m_folders; // the next one at the back
    std::vector<std::string> m_trees;    // likewise
    std::optional<ArchiveWalk> m_walk;
    CopyReader m_reader;
};

// Gives every copy of an archive, settings included, for a check of all of them.
class AllCopies {
public:
    // Both must outlive this.
    AllCopies(const platform::Machine& machine, const ArchivePlace& place);

    // None at the end. Names of files that are no copies are added to `foreign`. Raises what
    // listing the archive raises.
    std::optional<ChosenFolder> next(std::vector<std::string>& foreign);

private:
    const platform::Machine& m_machine;
    const ArchivePlace& m_place;
    ArchiveWalk m_walk;
    CopyReader m_reader;
    bool m_walked = false;
    std::vector<ChosenFolder> m_settings; // the next one at the back
};

} // namespace vardelin::engine
