#pragma once

#include "base/dates.h"
#include "base/keyed_collection.h"
#include "platform/machine.h"
#include "runs/engine/archive_place.h"
#include "runs/engine/copy_listing.h"
#include "runs/engine/outcome.h"

#include <cstdint>
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
    std::optional<archive::ContentHash> contentHash; // of a copy that is stored as it is

    std::string sourceName() const
    {
        return archive::sourceNameOf(std::string_view(fileName).substr(0, nameBytes));
    }
};

struct ChosenFolder {
    std::string archivePath;  // ends in a backslash
    std::string sourcePath;   // likewise; where the files came from
    std::string folderRecord; // file name of the folder's own record; may be empty
    std::vector<ChosenCopy> copies;
    bool whole = false; // asked for as a folder: it is made even when it is empty
};

struct RestorePlan {
    std::vector<ChosenFolder> folders;
    std::vector<Gap> lost;
    std::vector<std::string> notMatched;
    std::vector<std::string> settingsGroups; // asked for, in the order of the entries
    std::uint64_t copies = 0;
    bool anyFileEntry = false;
    bool anyMatched = false; // a file entry has a copy for the date
};

// `asOf` is a day: the newest copy saved on it or before it counts. None: what the entries' tags
// say.
RestorePlan planRestore(const platform::Machine& machine, const ArchivePlace& place,
                        const base::TextCollection& entries, std::optional<base::Date> asOf);

// Every copy of the archive, settings included, for a check of all of them.
RestorePlan planEverything(const platform::Machine& machine, const ArchivePlace& place,
                           std::vector<std::string>& foreign);

// The copies of one settings group; empty where nothing was saved.
RestorePlan planSettingsGroup(const platform::Machine& machine, const ArchivePlace& place,
                              std::string_view group);

} // namespace vardelin::engine
