#pragma once

#include "platform/machine.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/outcome.h"
#include "runs/engine/run_keys.h"
#include "runs/engine/selection.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Finds what a run has to save: walks the sources, lists the archive folder beside each source
// folder, and compares sizes and times. Nothing is opened but folders, and nothing is written.
namespace vardelin::engine {

// A piece of the plan's text store.
struct TextRef {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;
};

// One file to save. Kept small: a first run over a million files holds a million of these.
struct PlannedFile {
    std::uint64_t sizeBytes = 0;
    TextRef name;
    TextRef earlierName;      // archive file of the newest copy; empty for a first copy
    std::uint32_t folder = 0; // index into ScanPlan::folders
    std::int16_t version = 0; // of the copy to write; 1000 where the numbers are at their end
    // What the copy's header is bound to where versions were numbered anew; 0: the version.
    std::uint32_t serial = 0;
    platform::FileKind kind = platform::FileKind::Regular;
    // Of a settings file, the number of its group; its newest copy alone is kept.
    std::int8_t group = -1;
};

struct PlannedFolder {
    std::string sourcePath;  // ends in a backslash
    std::string archivePath; // likewise
    // Of the folder that was listed; an inode of 0 stands for any.
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    bool isSame(const platform::FileInfo& info) const
    {
        return inode == 0 || (info.device == device && info.inode == inode);
    }
};

// A folder whose record is missing or out of date.
struct PlannedFolderRecord {
    std::uint32_t folder = 0;
    archive::FolderMeta meta;
    std::vector<std::string> oldRecords; // names to take away
};

struct ScanPlan {
    std::vector<PlannedFolder> folders;
    std::vector<PlannedFile> files; // in the order of their folders
    std::vector<PlannedFolderRecord> folderRecords;
    std::string texts;
    std::vector<Gap> missed;
    std::vector<std::string> vanishedSources;
    bool anySourceFound = false; // or a system-wide rule stands in for one
    std::uint64_t filesScanned = 0;
    std::uint64_t skippedSpecial = 0;
    bool archiveHasCopies = false; // seen in the folders that were listed
    // Archive folders that have versions to go, and trees whose sources are gone.
    std::vector<std::string> prunableFolders;
    std::vector<std::string> goneTrees;

    // Keeps a text; raises 6 beyond 4 GB of names.
    TextRef keep(std::string_view text);
    std::string_view text(TextRef ref) const
    {
        return std::string_view(texts).substr(ref.offset, ref.length);
    }
    // `C:\dir\name` of a planned file.
    std::string pathOf(const PlannedFile& file) const
    {
        return folders[file.folder].sourcePath + std::string(text(file.name));
    }
};

struct ScanScope {
    std::string archiveRoot; // ends in a backslash; need not exist
    std::string destination; // the folder that holds the archive root
    std::string appPath;     // the application folder
    RunKeys& keys;           // of the profile's password
};

// Whether an archive folder holds versions that the profile does not keep any more.
using FindsPrunable = std::function<bool(const ArchiveFolder&)>;

// `proceed` is called for each folder and gives false to stop the scan; the plan then holds what
// was found so far. Folders that cannot be read stand in `missed`, sources that do not exist in
// `vanishedSources`.
ScanPlan scanSources(const platform::Machine& machine, const Selection& selection,
                     const ScanScope& scope,
                     const std::function<bool(std::string_view folder)>& proceed,
                     const FindsPrunable& findsPrunable = {});

} // namespace vardelin::engine
