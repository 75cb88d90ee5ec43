#include "base/dates.h"
#include "base/runtime_error.h"
#include "ctl/archive_entries.h"
#include "ctl/commands.h"
#include "ctl/outcome_text.h"
#include "ctl/progress.h"
#include "ctl/secrets.h"
#include "ctl/text_forms.h"
#include "runs/engine/engine.h"

#include <optional>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

using base::RuntimeError;

constexpr std::string_view kNoDate = "NULL";

struct Wanted {
    std::vector<std::string> entries; // as the engine takes them, each once
    std::string location;             // empty: each to its own place
    std::optional<base::Date> date;
};

Wanted wantedBy(Session& session, const RestoreCommand& command, const std::string& profilePath)
{
    Wanted wanted;
    if (!command.date.empty()) {
        wanted.date = base::parseDate(command.date);
        if (!wanted.date)
            throw UsageError(
                fmt::format("--date takes a date as D/M/YYYY, not \"{}\"", command.date));
    }
    if (!command.to.empty())
        wanted.location = session.typedPath(command.to);
    const std::string root = engine::archiveRootOf(session.machine, profilePath);
    if (!session.files().folderExists(root))
        throw RuntimeError(base::error_number::kPathNotFound, session.shown(root),
                           "the profile has no archive yet");
    std::vector<std::string> entries;
    if (command.all)
        entries = everything(session, root);
    for (const std::string& entry : command.entries)
        entries.push_back(resolveEntry(session, root, entry));
    for (std::string& entry : entries) {
        if (std::find(wanted.entries.begin(), wanted.entries.end(), entry) == wanted.entries.end())
            wanted.entries.push_back(std::move(entry));
    }
    return wanted;
}

int dryRun(const Session& session, const Wanted& wanted, const std::string& profilePath)
{
    std::optional<std::int64_t> limit;
    if (wanted.date)
        limit = session.machine.clock.fromLocal({*wanted.date, {23, 59, 59}}) + 999'999'999;
    std::uint64_t bytes = 0;
    std::uint64_t count = 0;
    for (const engine::CopyRecord& copy :
         chosenCopies(session, profilePath, wanted.entries, limit)) {
        ++count;
        bytes += copy.sizeBytes;
        session.output.result(visibleText(copy.entry) + "\n");
        Json object{{"type", "plannedRestore"}};
        putText(object, "entry", copy.entry);
        putText(object, "path", copy.sourcePath);
        object["version"] = copy.version;
        object["sizeBytes"] = copy.sizeBytes;
        session.output.object(object);
    }
    for (const std::string& entry : wanted.entries) {
        if (settingsGroup(entry)) {
            ++count;
            session.output.result(entry + "\n");
            session.output.object(Json{{"type", "plannedRestore"}, {"entry", entry}});
        }
    }
    session.output.note(fmt::format("{} would be restored, {}",
                                    countText(count, "entry", "entries"), sizeText(bytes)));
    return exitCodeOf(engine::outcomeOf({.anything = count > 0}));
}

void noteGaps(const Session& session, std::string_view name, const std::vector<engine::Gap>& gaps)
{
    if (gaps.empty())
        return;
    session.output.note(fmt::format("  {:<10}{}", name, gaps.size()));
    for (const engine::Gap& gap : gaps)
        session.output.note(
            fmt::format("    {}: {}", visibleText(gap.path), visibleText(gap.reason)));
}

void tell(const Session& session, const engine::RestoreReport& report, const Wanted& wanted,
          const std::string& fileName, std::chrono::nanoseconds elapsed)
{
    const std::string stem = fileName.substr(0, fileName.size() - 4);
    const std::string log = session.shown(session.appPath() + "\\Log\\Restore\\" + stem + ".txt");
    const std::string to = wanted.location.empty() ? "" : session.shown(wanted.location);
    Json object{{"type", "restore"}};
    putText(object, "profile", fileName);
    putOutcome(object, report.outcome, report.failure);
    object["filesRestored"] = report.filesRestored;
    object["bytesRestored"] = report.bytesRestored;
    putText(object, "to", to);
    object["lost"] = gapsOf(report.lost);
    object["mismatched"] = gapsOf(report.mismatched);
    object["failed"] = gapsOf(report.failed);
    Json notMatched = Json::array();
    for (const std::string& entry : report.notMatched) {
        Json item;
        putText(item, "entry", entry);
        notMatched.push_back(std::move(item));
    }
    object["notMatched"] = std::move(notMatched);
    object["settingsRestored"] = report.settingsRestored;
    putText(object, "log", log);
    session.output.object(object);
    // The error that follows says it all where nothing was done before it.
    if (report.failure && report.filesRestored == 0 && report.failed.empty())
        return;
    session.output.note(fmt::format("{}: {} restored, {} in {}", visibleText(stem),
                                    countText(report.filesRestored, "file", "files"),
                                    sizeText(report.bytesRestored), durationText(elapsed)));
    session.output.note(
        fmt::format("  {:<10}{}", "to", to.empty() ? "their own places" : visibleText(to)));
    for (const std::string& group : report.settingsRestored)
        session.output.note(fmt::format("  {:<10}{}", "settings", group));
    noteGaps(session, "lost", report.lost);
    noteGaps(session, "mismatched", report.mismatched);
    noteGaps(session, "failed", report.failed);
    if (!report.notMatched.empty())
        session.output.note(fmt::format("  {:<10}{}", "no copy", report.notMatched.size()));
    for (const std::string& entry : report.notMatched)
        session.output.note(
            fmt::format("    {}: no copy of that day or before it", visibleText(entry)));
    session.output.note(fmt::format("  {:<10}{}", "log", visibleText(log)));
}

} // namespace

int runRestore(Session& session, const RestoreCommand& command)
{
    const std::string fileName = savedProfile(session, command.name);
    const std::string profilePath = session.profilePath(fileName);
    const Wanted wanted = wantedBy(session, command, profilePath);
    if (command.dryRun)
        return dryRun(session, wanted, profilePath);
    if (!wanted.location.empty())
        session.files().createFolders(wanted.location);

    base::TextCollection clxnRestore(base::KeyRule::Exact);
    for (const std::string& entry : wanted.entries)
        clxnRestore.add(entry, entry);
    RunProgress progress(session.terminal, session.output, session.machine.clock);
    engine::Engine objRestore(session.machine, session.appPath(), progress);
    progress.follow(objRestore);
    if (command.passwordFile)
        objRestore.usePassword(secretFrom(session, *command.passwordFile));
    std::optional<RuntimeError> failure;
    try {
        objRestore.EngineRestore(
            session.profilesFolder() + "\\", fileName, clxnRestore, wanted.location,
            wanted.date ? base::dayMonthYear(*wanted.date) : std::string(kNoDate));
    } catch (const RuntimeError& error) {
        failure = error;
    }
    progress.clear();
    const engine::RestoreReport& report = objRestore.restoreReport();
    // A target that could not be written fails the run, yet the others are done: both are told.
    tell(session, report, wanted, fileName, progress.elapsed());
    if (failure)
        throw RuntimeError(*failure);
    return exitCodeOf(report.outcome);
}

} // namespace vardelin::ctl
