#pragma once

#include "base/text.h"

#include <string_view>

// The plain text of a profile file. Lines end in CR LF, and that alone: a lone CR or LF is data.
// Text is bytes; there is no escaping. The first line is `[<name>]` and the last one `[End of
// <name>]`, with the file's own name and extension. Between them stand sections, each opened by its
// name in braces and closed by `{End Of <the same words>}`, then three free lines.
//
// The order is that of the constants. The names and keys are shared with the engine and the
// monitors: never change one. The writer keeps the spacing at each `=`; a reader takes what lies
// behind the first `=` and compares section lines without regard to case.
namespace vardelin::profile::format {

struct Section {
    std::string_view opening;
    std::string_view closing;
};

inline constexpr Section kSourceFiles{"{Source files}", "{End Of Source files}"};
inline constexpr Section kExcludedOptions{"{Excluded options}", "{End Of Excluded options}"};
inline constexpr Section kIncludedOptions{"{Included options}", "{End Of Included options}"};
inline constexpr Section kOtherData{"{Other Data}", "{End Of Other Data}"};
inline constexpr Section kIncludeByNames{"{Include by names}", "{End Of Include by names}"};
inline constexpr Section kExcludeByNames{"{Exclude by names}", "{End Of Exclude by names}"};
inline constexpr Section kDestinationPath{"{Destination path}", "{End Of Destination path}"};
inline constexpr Section kPassword{"{Password}", "{End Of Password}"};
inline constexpr Section kFreeSpaceWarn{"{Free Space Warn}", "{End Of Free Space Warn}"};
inline constexpr Section kSystemIdle{"{System Idle}", "{End Of System Idle}"};
inline constexpr Section kConfirmBackup{"{Confirm Backup}", "{End Of Confirm Backup}"};
inline constexpr Section kThresholdQueue{"{Threshold Queue}", "{End Of Threshold Queue}"};
inline constexpr Section kScheduling{"{Scheduling}", "{End Of Scheduling}"}; // only with a schedule

// The first line of five sections: whether the option is on. Exact case.
inline constexpr std::string_view kTrue = "True";
inline constexpr std::string_view kFalse = "False";

// Keys as the writer prints them, value directly behind.
inline constexpr std::string_view kPercentage = "Percentage = ";    // of the free space, with a %
inline constexpr std::string_view kIdleTime = "Time=";              // minutes
inline constexpr std::string_view kSize = "Size=";                  // `<n> <unit>`
inline constexpr std::string_view kCount = "Count=";                // files
inline constexpr std::string_view kStartDate = "Start Date = ";     // D/M/YYYY
inline constexpr std::string_view kStartTime = "Start Time = ";     // hh:mm:ss AM
inline constexpr std::string_view kPattern = "RecurrencePattern ="; // 1 to 4
inline constexpr std::string_view kRecur = "Recur=";
inline constexpr std::string_view kTimeAt = "TimeAt="; // h:mm:ss AM
inline constexpr std::string_view kDays = "Days=";     // seven letters, Sunday first: S or x
inline constexpr std::string_view kDates = "Dates=";   // comma separated
inline constexpr std::string_view kMonths = "Months="; // comma separated
inline constexpr std::string_view kVersions = "Backup versions ="; // 1 to 8, with ?<n> for 6 and 8
inline constexpr std::string_view kCompress = "Compress = ";       // True or False
inline constexpr std::string_view kEncrypt = "Encrypt=";           // True or False

inline constexpr std::string_view kLineEnd = "\r\n";

// What a line has behind its first `=`, blanks included; nothing where it has none.
inline std::string_view valueOf(std::string_view line)
{
    return base::afterFirst(line, "=");
}

} // namespace vardelin::profile::format
