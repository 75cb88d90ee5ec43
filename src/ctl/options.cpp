#include "ctl/options.h"

#include <algorithm>
#include <memory>

#include <CLI/CLI.hpp>

namespace vardelin::ctl {
namespace {

constexpr const char* kVersion = "vardelinctl 0.1.0";
constexpr const char* kFooter =
    "Exit codes: 0 done, 1 done with missed, lost or mismatched entries, 2 wrong usage, 3 failed, "
    "4 nothing to do, 130 cancelled.\nPaths are taken as the machine writes them or with a drive "
    "letter, NAME with or without .vdp.";

// Every option is bound to a field that lives as long as the parser; the callback of the command
// that was chosen makes the result from them.
struct Fields {
    GlobalOptions global;
    std::optional<Command> chosen;
    ProfileOptions profile;
    std::string name;
    std::string file;
    std::string folder;
    std::vector<std::string> entries;
    RestoreCommand restore;
    ListCommand list;
    bool plain = false;
    bool dryRun = false;
    int samplePercent = 100;
    std::optional<std::string> verifyPasswordFile;
};

CLI::App* addCommand(CLI::App& parent, const std::string& name, const std::string& text)
{
    CLI::App* command = parent.add_subcommand(name, text);
    command->fallthrough(); // the global options stand anywhere
    return command;
}

template <typename Make>
void onChosen(CLI::App* command, Fields& fields, Make make)
{
    command->final_callback([&fields, make] { fields.chosen = make(); });
}

CLI::App* addNamedCommand(CLI::App& parent, Fields& fields, const std::string& name,
                          const std::string& text)
{
    CLI::App* command = addCommand(parent, name, text);
    command->add_option("NAME", fields.name, "The profile")->required();
    return command;
}

void addText(CLI::App& command, const std::string& name, std::optional<std::string>& field,
             const std::string& text, const std::string& placeholder)
{
    command
        .add_option_function<std::string>(
            name, [&field](const std::string& value) { field = value; }, text)
        ->type_name(placeholder);
}

// Each use of the option adds one value.
void addRepeated(CLI::App& command, const std::string& name,
                 std::optional<std::vector<std::string>>& field, const std::string& text,
                 const std::string& placeholder)
{
    command
        .add_option_function<std::vector<std::string>>(
            name,
            [&field](const std::vector<std::string>& values) {
                field.emplace();
                for (const std::string& value : values) {
                    if (!value.empty())
                        field->push_back(value);
                }
            },
            text)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->type_name(placeholder);
}

void addSwitch(CLI::App& command, const std::string& name, std::optional<std::string>& field,
               const std::string& text)
{
    command.add_flag_callback(
        name, [&field] { field.emplace(); }, text);
}

void addProfileOptions(CLI::App& command, ProfileOptions& options, bool changes)
{
    command
        .add_option_function<std::vector<std::string>>(
            "--source",
            [&options](const std::vector<std::string>& values) {
                options.sources.emplace();
                std::copy_if(values.begin(), values.end(), std::back_inserter(*options.sources),
                             [](const std::string& value) { return !value.empty(); });
            },
            "Folders and files to save")
        ->type_name("PATH...");
    addText(command, "--dest", options.destination,
            "Folder that takes the archive; it is made where its parent exists", "DIR");
    addRepeated(command, "--include-ext", options.includeExtensions,
                "Save files of this extension from all drives", ".EXT");
    addRepeated(command, "--exclude-ext", options.excludeExtensions,
                "Leave out files of this extension", ".EXT");
    addText(command, "--include-names", options.includeNames,
            "Save only files of these names, comma separated", "LIST");
    addText(command, "--exclude-names", options.excludeNames,
            "Leave out files of these names, comma separated", "LIST");
    addRepeated(command, "--other", options.otherData,
                "A settings group: \"Registry Settings\", \"Desktop Settings\", \"IE Favorites\", "
                "\"Outlook Settings\"",
                "GROUP");
    addText(command, "--retention", options.retention,
            "Versions to keep: 1 to 8; 6 (versions) and 8 (days) take a count", "N[:COUNT]");
    command.add_flag_callback(
        "--encrypt", [&options] { options.encrypt = true; }, "Encrypt the copies");
    command.add_flag_callback(
        "--no-compress", [&options] { options.compress = false; }, "Store files as they are");
    addText(command, "--password-file", options.passwordFile,
            "Take the password from a file's first line, or from the standard input (-)", "FILE");
    addText(command, "--hint-question", options.hintQuestion, "Asked where the password is lost",
            "TEXT");
    addText(command, "--hint-answer-file", options.hintAnswerFile,
            "Take the answer from a file's first line, or from the standard input (-)", "FILE");
    addText(command, "--schedule", options.schedule, "daily, weekly, monthly or yearly", "PATTERN");
    addText(command, "--every", options.every, "Every N days, weeks, months or years (1)", "N");
    addText(command, "--at", options.at, "Time of day, as 18:30 or 6:30 PM", "TIME");
    addText(command, "--start", options.start, "First day, as D/M/YYYY (today)", "DATE");
    addText(command, "--on", options.on,
            "weekly: days (Mon,Thu); monthly: dates (1,15); yearly: months and dates "
            "(January,July,1)",
            "LIST");
    addText(command, "--idle", options.idle, "Start when the machine is idle for MIN minutes",
            "MIN");
    addText(command, "--queue", options.queue, "Start when more than COUNT files have changed",
            "COUNT");
    addText(command, "--warn", options.warn, "Warn below this share of free space", "PERCENT");
    addText(command, "--confirm-size", options.confirmSize,
            "Ask before a backup larger than this, as \"500 MB\"", "SIZE");
    command.add_flag("--primary", options.primary, "Make it the primary profile");
    if (!changes)
        return;
    command.add_flag_callback(
        "--no-encrypt", [&options] { options.encrypt = false; }, "Do not encrypt the copies");
    command.add_flag_callback(
        "--compress", [&options] { options.compress = true; }, "Compress the copies");
    addSwitch(command, "--no-schedule", options.schedule, "Drop the schedule");
    addSwitch(command, "--no-idle", options.idle, "Do not start when idle");
    addSwitch(command, "--no-queue", options.queue, "Do not start for changed files");
    addSwitch(command, "--no-warn", options.warn, "Do not warn for free space");
    addSwitch(command, "--no-confirm-size", options.confirmSize, "Do not ask for the size");
}

void addProfileCommands(CLI::App& app, Fields& fields)
{
    CLI::App* profile = addCommand(app, "profile", "Make, change and show profiles");
    profile->require_subcommand(1);

    CLI::App* fresh = addNamedCommand(*profile, fields, "new", "Make a profile");
    addProfileOptions(*fresh, fields.profile, false);
    onChosen(fresh, fields, [&fields] { return ProfileNewCommand{fields.name, fields.profile}; });
    CLI::App* change = addNamedCommand(*profile, fields, "set", "Change a profile");
    addProfileOptions(*change, fields.profile, true);
    onChosen(change, fields, [&fields] { return ProfileSetCommand{fields.name, fields.profile}; });
    CLI::App* show = addNamedCommand(*profile, fields, "show", "Show a profile");
    show->add_flag("--plain", fields.plain, "Print the text of the file, the password included");
    onChosen(show, fields, [&fields] { return ProfileShowCommand{fields.name, fields.plain}; });
    onChosen(addCommand(*profile, "list", "List the profiles"), fields,
             [] { return ProfileListCommand{}; });
    onChosen(addNamedCommand(*profile, fields, "delete", "Delete a profile, not its archive"),
             fields, [&fields] { return ProfileDeleteCommand{fields.name}; });
    onChosen(addCommand(*profile, "default", "Make the default profile anew"), fields,
             [] { return ProfileDefaultCommand{}; });
    for (const bool unscramble : {false, true}) {
        CLI::App* command =
            addCommand(*profile, unscramble ? "unscramble" : "scramble",
                       unscramble ? "Print the plain text of a profile file"
                                  : "Print a plain text in the form of a profile file");
        command->add_option("FILE", fields.file, "The file")->required();
        onChosen(command, fields, [&fields, unscramble] {
            return ScrambleCommand{fields.file, unscramble};
        });
    }
}

void addRunCommands(CLI::App& app, Fields& fields)
{
    CLI::App* backup = addNamedCommand(app, fields, "backup", "Run a profile's backup");
    backup->add_flag("--dry-run", fields.dryRun, "Only list what would be saved");
    onChosen(backup, fields, [&fields] { return BackupCommand{fields.name, fields.dryRun}; });

    CLI::App* list = addNamedCommand(app, fields, "list", "List what is in the archive");
    list->add_flag("--versions", fields.list.versions, "A table of files with their versions");
    list->add_option("PATTERN", fields.list.pattern, "Of a source path or name, with * and ?");
    onChosen(list, fields, [&fields] {
        fields.list.name = fields.name;
        return fields.list;
    });

    CLI::App* restore = addNamedCommand(app, fields, "restore", "Bring files back");
    restore
        ->add_option("ENTRY", fields.restore.entries,
                     "A catalog entry or line, a source path, a folder, or a settings group")
        ->type_name(" ");
    restore->add_flag("--all", fields.restore.all, "All files, each in its newest copy");
    restore->add_option("--to", fields.restore.to, "Another folder; it is made where missing")
        ->type_name("DIR");
    restore->add_option("--date", fields.restore.date, "As of the end of a day")
        ->type_name("D/M/YYYY");
    addText(*restore, "--password-file", fields.restore.passwordFile,
            "The password of earlier copies, instead of the profile's (- for standard input)",
            "FILE");
    restore->add_flag("--dry-run", fields.restore.dryRun, "Only list what would be restored");
    onChosen(restore, fields, [&fields] {
        if (fields.restore.all == !fields.restore.entries.empty())
            throw CLI::ValidationError("restore", "takes either entries or --all");
        fields.restore.name = fields.name;
        return fields.restore;
    });

    CLI::App* verify = addNamedCommand(app, fields, "verify",
                                       "Read the archive and compare it "
                                       "with its checksums");
    verify->add_option("--sample", fields.samplePercent, "Share of the copies to read")
        ->check(CLI::Range(1, 100))
        ->type_name("PERCENT");
    addText(*verify, "--password-file", fields.verifyPasswordFile,
            "The password of earlier copies, instead of the profile's (- for standard input)",
            "FILE");
    onChosen(verify, fields, [&fields] {
        return VerifyCommand{fields.name, fields.samplePercent, fields.verifyPasswordFile};
    });

    CLI::App* prune =
        addNamedCommand(app, fields, "prune", "Remove the versions that the profile does not keep");
    prune->add_flag("--dry-run", fields.dryRun, "Only list what would go, and why");
    onChosen(prune, fields, [&fields] { return PruneCommand{fields.name, fields.dryRun}; });
}

void addOtherCommands(CLI::App& app, Fields& fields)
{
    CLI::App* logs = addCommand(app, "logs", "Show past runs and the queue of changed files");
    logs->require_subcommand(1);
    onChosen(addCommand(*logs, "backup", "Past backups"), fields,
             [] { return LogsCommand{LogKind::Backup}; });
    onChosen(addCommand(*logs, "restore", "Past restores"), fields,
             [] { return LogsCommand{LogKind::Restore}; });
    onChosen(addCommand(*logs, "queue", "Changed files that wait"), fields,
             [] { return LogsCommand{LogKind::Queue}; });

    CLI::App* schedule = addCommand(app, "schedule", "Show the schedules");
    schedule->require_subcommand(1);
    onChosen(addCommand(*schedule, "list", "All schedules"), fields,
             [] { return ScheduleCommand{false}; });
    onChosen(addCommand(*schedule, "next", "When each schedule runs next"), fields,
             [] { return ScheduleCommand{true}; });

    CLI::App* registry = addCommand(app, "registry", "Export or import the registry");
    registry->require_subcommand(1);
    for (const bool import : {false, true}) {
        CLI::App* command =
            addCommand(*registry, import ? "import" : "export",
                       import ? "Read REGEDIT4 text into it" : "Print it as REGEDIT4 text");
        command->add_option("FILE", fields.file, "Instead of the standard streams");
        onChosen(command, fields, [&fields, import] {
            return RegistryCommand{import, fields.file};
        });
    }

    onChosen(addCommand(app, "drives", "List the drives"), fields, [] { return DrivesCommand{}; });

    CLI::App* review = addCommand(app, "review", "Work on the list of an archive's copies");
    review->add_option("--rebuild", fields.name, "Write Data\\ReviewFiles.txt from the archive")
        ->required()
        ->type_name("NAME");
    onChosen(review, fields, [&fields] { return ReviewCommand{fields.name}; });
}

// The parser takes `[x]` for a list of values; as a path it is the same behind `./`.
void protectBrackets(std::vector<std::string>& arguments)
{
    bool takesPaths = false;
    for (std::string& argument : arguments) {
        if (argument == "--source" || argument == "restore")
            takesPaths = true;
        else if (argument.starts_with("--"))
            takesPaths = false;
        else if (takesPaths && argument.starts_with('[') && argument.ends_with(']'))
            argument.insert(0, "./");
    }
}

} // namespace

std::variant<CommandLine, ParserText> parseCommandLine(std::vector<std::string> arguments)
{
    Fields fields;
    CLI::App app("Vardelin from the terminal: profiles, backups, restores.", "vardelinctl");
    app.set_version_flag("--version", kVersion);
    app.footer(kFooter);
    app.require_subcommand(1);
    app.add_option("--app", fields.global.app, "Application folder (the program's own)")
        ->type_name("DIR");
    app.add_flag("--json", fields.global.json, "One object a line");
    app.add_flag("--quiet", fields.global.quiet, "No progress and no summary");

    CLI::App* init = addCommand(app, "init", "Lay out an application folder");
    init->add_option("DIR", fields.folder, "The folder")->required();
    onChosen(init, fields, [&fields] { return InitCommand{fields.folder}; });
    addProfileCommands(app, fields);
    addRunCommands(app, fields);
    addOtherCommands(app, fields);

    protectBrackets(arguments);
    std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        return ParserText{app.help(), kExitDone};
    } catch (const CLI::CallForVersion&) {
        return ParserText{std::string(kVersion) + "\n", kExitDone};
    } catch (const CLI::ParseError& error) {
        return ParserText{"vardelinctl: " + std::string(error.what()) +
                              "\nTry `vardelinctl --help`.\n",
                          kExitUsage};
    }
    return CommandLine{std::move(fields.global), std::move(*fields.chosen)};
}

} // namespace vardelin::ctl
