#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// The command line of vardelinctl as plain values. Nothing here looks at the machine: paths stand
// as they were typed, names as well.
namespace vardelin::ctl {

// Exit codes of the program; people's scripts depend on them.
inline constexpr int kExitDone = 0;
inline constexpr int kExitGaps = 1; // done, with missed, lost or mismatched entries
inline constexpr int kExitUsage = 2;
inline constexpr int kExitFailed = 3;
inline constexpr int kExitNothing = 4; // nothing to do, or nothing to show
inline constexpr int kExitCancelled = 130;

struct GlobalOptions {
    std::string app; // empty: the folder of the program
    bool json = false;
    bool quiet = false;
};

// What `profile new` and `profile set` take. None: not mentioned, which leaves a saved value as it
// is. An empty text or list takes the option away.
struct ProfileOptions {
    std::optional<std::vector<std::string>> sources; // as typed
    std::optional<std::string> destination;          // as typed
    std::optional<std::vector<std::string>> includeExtensions;
    std::optional<std::vector<std::string>> excludeExtensions;
    std::optional<std::string> includeNames;
    std::optional<std::string> excludeNames;
    std::optional<std::vector<std::string>> otherData;
    std::optional<std::string> retention; // N or N:COUNT
    std::optional<bool> encrypt;
    std::optional<bool> compress;
    std::optional<std::string> passwordFile;
    std::optional<std::string> hintQuestion;
    std::optional<std::string> hintAnswerFile;
    std::optional<std::string> schedule; // daily, weekly, monthly, yearly; empty: none
    std::optional<std::string> every;
    std::optional<std::string> at;
    std::optional<std::string> start;
    std::optional<std::string> on;
    std::optional<std::string> idle;        // minutes
    std::optional<std::string> queue;       // files
    std::optional<std::string> warn;        // percent
    std::optional<std::string> confirmSize; // "N MB"
    bool primary = false;
};

struct InitCommand {
    std::string folder;
};
struct ProfileNewCommand {
    std::string name;
    ProfileOptions options;
};
struct ProfileSetCommand {
    std::string name;
    ProfileOptions options;
};
struct ProfileShowCommand {
    std::string name;
    bool plain = false;
};
struct ProfileListCommand {};
struct ProfileDeleteCommand {
    std::string name;
};
struct ProfileDefaultCommand {};
struct ScrambleCommand {
    std::string file;
    bool unscramble = false;
};
struct BackupCommand {
    std::string name;
    bool dryRun = false;
};
struct ListCommand {
    std::string name;
    bool versions = false;
    std::string pattern; // empty: everything
};
struct RestoreCommand {
    std::string name;
    std::vector<std::string> entries;
    bool all = false;
    std::string to;
    std::string date;
    bool dryRun = false;
    std::optional<std::string> passwordFile; // instead of the profile's password
};
struct VerifyCommand {
    std::string name;
    int samplePercent = 100;
    std::optional<std::string> passwordFile; // likewise
};
struct PruneCommand {
    std::string name;
    bool dryRun = false;
};
enum class LogKind { Backup, Restore, Queue };
struct LogsCommand {
    LogKind kind = LogKind::Backup;
};
struct ScheduleCommand {
    bool next = false; // else list
};
struct RegistryCommand {
    bool import = false; // else export
    std::string file;    // empty: the standard streams
};
struct DrivesCommand {};
struct ReviewCommand {
    std::string name;
};

using Command =
    std::variant<InitCommand, ProfileNewCommand, ProfileSetCommand, ProfileShowCommand,
                 ProfileListCommand, ProfileDeleteCommand, ProfileDefaultCommand, ScrambleCommand,
                 BackupCommand, ListCommand, RestoreCommand, VerifyCommand, PruneCommand,
                 LogsCommand, ScheduleCommand, RegistryCommand, DrivesCommand, ReviewCommand>;

struct CommandLine {
    GlobalOptions global;
    Command command;
};

// The parser's answer where there is no command to run: a text for the standard output with code 0
// (help, version), or one for the standard error stream with code 2.
struct ParserText {
    std::string text;
    int exitCode = kExitDone;
};

// `arguments` are those behind the program's name.
std::variant<CommandLine, ParserText> parseCommandLine(std::vector<std::string> arguments);

} // namespace vardelin::ctl
