#pragma once

#include "platform/file_system.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The records of past runs and the queue of changed files, all plain text with CR LF line ends
// below the application folder:
//
//   Log\Backup\<stem>.txt    profile||type||date||files||skipped||report of missed files
//   Log\Restore\<stem>.txt   profile||path||date||files
//   Queue\ChngFilesQueue.txt one absolute path a line
//
// Each line of a log is one run that did something or was cancelled, with the counts of what it did
// until it ended; each log file one profile, <stem> its name without the extension.
// Type is "Full" or "Incremental", date YYYY-MM-DD HH:MM:SS in local time, the counts are decimal.
// The last field of a backup line may be empty or missing. `||` and line ends are taken out of
// names, since there is no escaping. Nothing locks: writers append whole lines in one write.
namespace vardelin::logs {

inline constexpr std::string_view kFieldSeparator = "||";
inline constexpr std::size_t kBackupFields = 5; // that a line must have
inline constexpr std::size_t kRestoreFields = 4;

inline constexpr std::string_view kFullRun = "Full";               // the archive was empty before
inline constexpr std::string_view kIncrementalRun = "Incremental"; // it was not

// What a run tells of itself. `profileName` is the profile's name without its extension; it is the
// name of the log file, too.
struct BackupRecord {
    std::string profileName;
    std::string type;               // kFullRun or kIncrementalRun
    std::string date;               // base::isoDateTime of the run's start, local
    std::uint64_t fileCount = 0;    // copies written
    std::uint64_t skippedCount = 0; // files missed, not files unchanged
    std::string missedReportPath;   // empty where nothing was missed
};

struct RestoreRecord {
    std::string profileName;
    // The folder that the files went to, or what stands for their own places.
    std::string restoredPath;
    std::string date;
    std::uint64_t fileCount = 0; // files restored
};

// A line read back: texts as they stand, since whoever else writes logs is free in them.
struct BackupLine {
    std::string profileName;
    std::string type;
    std::string date;
    std::string files;
    std::string skipped;
    std::string missedReport;

    friend bool operator==(const BackupLine&, const BackupLine&) = default;
};

struct RestoreLine {
    std::string profileName;
    std::string restoredPath;
    std::string date;
    std::string files;

    friend bool operator==(const RestoreLine&, const RestoreLine&) = default;
};

// A text as it can stand in a field: without `||`, without `|` at either end, and without line
// ends.
std::string fieldText(std::string_view text);

// A line without its end.
std::string formatBackupLine(const BackupRecord& record);
std::string formatRestoreLine(const RestoreRecord& record);
// Further fields are passed over. Raises 9 for a line with too few.
BackupLine parseBackupLine(std::string_view line);
RestoreLine parseRestoreLine(std::string_view line);

// Append one line, which is on the disk when they come back; folders and file are made where they
// are missing. A last line that was cut short by a crash is completed first, so that it cannot end
// the reading of the whole file. Raise the port's errors; then the file may end in a part of the
// line.
void appendBackupRecord(platform::FileSystem& fileSystem, std::string_view appPath,
                        const BackupRecord& record);
void appendRestoreRecord(platform::FileSystem& fileSystem, std::string_view appPath,
                         const RestoreRecord& record);

// Where the reading of one file ended early.
struct LogFault {
    std::string path;
    std::size_t lineNumber = 0; // from 1; 0 where the file could not be read at all
    std::string reason;
};

template <typename Line>
struct Log {
    bool folderExists = false;
    std::vector<Line> lines; // in the order of the files, then of the lines
    std::vector<LogFault> faults;
};

// Read every file right in the log's folder, in the folder's order. A line with too few fields, or
// an error of the port, ends the reading of its file and stands in `faults`; the lines in front of
// it and the other files are read all the same. Empty lines are passed over.
Log<BackupLine> readBackupLog(platform::FileSystem& fileSystem, std::string_view appPath);
Log<RestoreLine> readRestoreLog(platform::FileSystem& fileSystem, std::string_view appPath);

// The files right in a log's folder, in the folder's order; none where the folder is missing.
std::optional<std::vector<std::string>> backupLogFiles(platform::FileSystem& fileSystem,
                                                       std::string_view appPath);
std::optional<std::vector<std::string>> restoreLogFiles(platform::FileSystem& fileSystem,
                                                        std::string_view appPath);

// One file of a log, line by line. Raises 9 for a line with too few fields, once those in front of
// it were handed over, and what the port raises.
void readBackupLogFile(platform::FileSystem& fileSystem, std::string_view path,
                       const std::function<void(const BackupLine&)>& each);
void readRestoreLogFile(platform::FileSystem& fileSystem, std::string_view path,
                        const std::function<void(const RestoreLine&)>& each);

struct QueuedFile {
    std::string path;
    bool exists = false; // a path whose file has gone stays in the queue
    std::uint64_t sizeBytes = 0;
    std::int64_t modifiedNs = 0; // since 1 January 1970 UTC
};

struct Queue {
    bool fileExists = false;
    std::vector<QueuedFile> files; // each path once, at its first place
};

// Lines are trimmed; empty ones are passed over. Two paths are one by the file system's rule of
// case. Raises the port's errors for a queue that cannot be read.
Queue readQueue(platform::FileSystem& fileSystem, std::string_view appPath);

} // namespace vardelin::logs
