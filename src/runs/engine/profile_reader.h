#pragma once

#include "platform/file_system.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The engine's own view of a profile file. It reads what is there and says what is odd: a profile
// that was cut short or damaged still protects the files that it names, and whoever starts the run
// shows the problems. Nothing here touches a form.
namespace vardelin::engine {

// Texts stand as they do in the file, trimmed; empty where the key is missing.
struct ProfileSchedule {
    std::string startDate; // D/M/YYYY, or MM/DD/YYYY in a profile made at the first start
    std::string startTime; // 09:05:03 AM
    int pattern = 0;       // 1 daily, 2 weekly, 3 monthly, 4 yearly, 0 none of them
    std::string recur;
    std::string timeAt;
    std::string days;      // weekly: seven letters, Sunday first, `S` where selected
    std::string dates;     // monthly: comma separated
    std::string months;    // yearly: month names, comma separated
    std::string yearDates; // yearly: comma separated

    friend bool operator==(const ProfileSchedule&, const ProfileSchedule&) = default;
};

struct ConfirmSize {
    std::string size; // a number as text
    std::string unit; // two letters, such as MB

    friend bool operator==(const ConfirmSize&, const ConfirmSize&) = default;
};

struct EngineProfile {
    // What a backup goes by.
    std::vector<std::string> sources;            // a folder ends in a backslash, a file does not
    std::vector<std::string> excludedExtensions; // with their dot
    std::vector<std::string> includedExtensions; // with their dot
    std::vector<std::string> otherData;          // names of settings groups, in their own spelling
    std::vector<std::string> includeNames;       // patterns, trimmed, none of them empty
    std::vector<std::string> excludeNames;
    std::string destination; // no backslash at the end unless it is a drive's root; may be empty
    bool hasPassword = false;
    // False where it cannot be told whether there is a password, or which.
    bool saysPassword = false;
    std::string password;
    std::string hintQuestion;
    std::string hintAnswer;
    int retentionOption = 0; // 1 to 8, 0 where none is set
    int retentionCount = 0;  // of options 6 and 8; 0 where no count stands there: keep everything
    bool compress = false;
    bool encrypt = false;
    // False where the file does not say whether to encrypt: cut short or damaged before its end.
    bool saysEncrypt = false;

    // What only the front ends and the monitors go by. None: the option is off.
    std::optional<std::string> warnPercent; // with its percent sign, as it stands
    std::optional<std::string> idleMinutes;
    std::optional<ConfirmSize> confirmSize;
    std::optional<std::string> queueCount;
    std::optional<ProfileSchedule> schedule;

    // At least one known section was there; without one a text is no profile at all.
    bool hasSections = false;
    // What was odd, one sentence each, with the line's number where there is one. Never quotes a
    // line: in a damaged file any line may be the password.
    std::vector<std::string> problems;
};

// Reads the plain text of a profile; never fails.
//
// Lines end in CR LF alone; a lone CR or LF is part of its line. Section names and keys are taken
// in any case and with any blanks around. The lines `[<name>]` and `[End of <name>]` need not be
// there. A section without its closing line ends where the next section or one of the three lines
// behind the sections begins, or with the text. A section that occurs again adds to its lists;
// single values are those of the last one. A line that has no place where it stands is passed over.
EngineProfile parseProfile(std::string_view plainText);

// Reads a scrambled profile file. Raises 53 where it is missing, 5 where it is no profile, with the
// cause as the reason, and the port's own errors for the rest.
EngineProfile readProfile(platform::FileSystem& fileSystem, std::string_view path);

} // namespace vardelin::engine
