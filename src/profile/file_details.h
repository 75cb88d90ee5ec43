#pragma once

#include "base/dates.h"
#include "platform/file_system.h"
#include "platform/machine.h"
#include "trace/error_tail.h"

#include <cstdint>
#include <string>
#include <string_view>

// Parts of paths, a file's record and its times. All of these trace, and after an error show it and
// give what they have.
namespace vardelin::profile {

// Steps of 100 nanoseconds since 1 January 1601 UTC, in two halves as the record has them: each
// half holds 32 bits, so one with its highest bit set is negative here.
struct FileTime {
    std::int32_t low = 0;
    std::int32_t high = 0;
    friend bool operator==(const FileTime&, const FileTime&) = default;
};

// Nanoseconds since 1970 as a file time; what lies before 1601 is 0.
FileTime fileTimeOf(std::int64_t ns);

// A calendar date and a clock time; all zero where a file time has none.
struct SystemTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// What the system tells about an open file.
struct FileInformation {
    std::uint32_t attributes = 0; // kFolderAttribute, or 0
    FileTime created;
    FileTime accessed;
    FileTime written;
    std::uint32_t volume = 0;
    std::uint64_t sizeBytes = 0;
    std::uint32_t links = 0;
    std::uint64_t index = 0;
};
inline constexpr std::uint32_t kFolderAttribute = 16;

// All zero for a file that cannot be opened, which is no error.
FileInformation fileInformation(trace::TraceContext& trace, platform::FileSystem& fileSystem,
                                std::string_view path);

// To the second, in UTC; a file time that no calendar has, or a system time that is no date, is
// error 13 and gives the zero date.
base::DateTime TimeFileToDate(trace::TraceContext& trace, const FileTime& fileTime);
base::DateTime TimeSysToDate(trace::TraceContext& trace, const SystemTime& systemTime);
// The same instant by another way, rounded to the nearest second; behind the year 9999 it is
// error 5.
base::DateTime FileTimeToDate(trace::TraceContext& trace, const FileTime& fileTime);

// Whether the file could be opened; only then `created` is set, to local time with `toLocal`. The
// other two stay as they are: nobody asks for them.
bool GetFileTimes(trace::TraceContext& trace, platform::Machine& machine, std::string_view path,
                  base::DateTime& created, base::DateTime& accessed, base::DateTime& written,
                  bool toLocal);

// The text up to its first NUL.
std::string sNT(trace::TraceContext& trace, std::string_view text);

// Parts of a path, by a sum of flags, in this order: the folder with its backslash, the name, the
// extension. The extension is what stands behind the last dot, if that is behind the last
// backslash. Where text stands before the extension its dot comes too, even if there is no
// extension.
inline constexpr int kNamePart = 1;
inline constexpr int kExtensionPart = 2;
inline constexpr int kFolderPart = 4;
std::string sFilename(trace::TraceContext& trace, std::string_view path, int parts);

// `text`, ending in `tail`.
std::string sAppend(trace::TraceContext& trace, std::string_view text, std::string_view tail);

// Makes a folder with its parents. `failed` tells that the rights were missing (70); any other
// error, a folder that exists included, leaves it false.
void FolderChk(trace::TraceContext& trace, platform::FileSystem& fileSystem, std::string_view path,
               bool& failed);

} // namespace vardelin::profile
