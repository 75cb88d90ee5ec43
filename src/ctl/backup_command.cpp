#include "base/runtime_error.h"
#include "base/text.h"
#include "ctl/commands.h"
#include "ctl/outcome_text.h"
#include "ctl/progress.h"
#include "ctl/text_forms.h"
#include "runs/engine/engine.h"

#include <optional>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

std::string logPath(const Session& session, const std::string& fileName)
{
    return session.appPath() + "\\Log\\Backup\\" + fileName.substr(0, fileName.size() - 4) + ".txt";
}

Json objectOf(const Session& session, const engine::BackupReport& report,
              const std::string& fileName)
{
    Json object{{"type", "backup"}};
    putText(object, "profile", fileName);
    putOutcome(object, report.outcome, report.failure);
    object["full"] = report.full;
    object["filesScanned"] = report.filesScanned;
    object["copiesWritten"] = report.copiesWritten;
    object["fullCopies"] = report.fullCopies;
    object["versions"] = report.versions;
    object["renewed"] = report.renewed;
    object["pruned"] = report.pruned;
    object["prunedBytes"] = report.prunedBytes;
    object["skippedSpecial"] = report.skippedSpecial;
    object["bytesRead"] = report.bytesRead;
    object["bytesStored"] = report.bytesStored;
    object["missed"] = gapsOf(report.missed);
    object["settingsSaved"] = report.settingsSaved;
    putText(object, "missedReport",
            report.missedReportPath.empty() ? "" : session.shown(report.missedReportPath));
    putText(object, "archive", session.shown(report.archiveRoot));
    putText(object, "log", session.shown(logPath(session, fileName)));
    return object;
}

void noteLine(const Session& session, std::string_view name, std::string_view text)
{
    session.output.note(fmt::format("  {:<9}{}", name, visibleText(text)));
}

std::string_view headline(engine::Outcome outcome)
{
    switch (outcome) {
    case engine::Outcome::Complete:
        return "backup complete";
    case engine::Outcome::CompleteWithGaps:
        return "backup complete, with missed files";
    case engine::Outcome::NothingToDo:
        return "nothing is new or changed";
    case engine::Outcome::Cancelled:
        return "cancelled, what was saved stays";
    case engine::Outcome::Failed:
        return "failed, what was saved stays";
    }
    return {};
}

void summarize(const Session& session, const engine::BackupReport& report,
               const std::string& fileName, std::chrono::nanoseconds elapsed)
{
    const std::string name = visibleText(fileName.substr(0, fileName.size() - 4));
    const bool nothing = report.outcome == engine::Outcome::NothingToDo;
    session.output.note(fmt::format("{}: {} ({} in {})", name, headline(report.outcome),
                                    countText(report.filesScanned, "file", "files"),
                                    durationText(elapsed)));
    if (report.copiesWritten > 0 || !nothing) {
        noteLine(session, "copies",
                 fmt::format("{} ({} full, {})", report.copiesWritten, report.fullCopies,
                             countText(report.versions, "version", "versions")));
        noteLine(session, "read", sizeText(report.bytesRead));
        noteLine(session, "stored", sizeText(report.bytesStored));
    }
    if (report.renewed > 0)
        noteLine(session, "touched",
                 countText(report.renewed, "file", "files") + " without a change of content");
    if (report.pruned > 0)
        noteLine(session, "pruned",
                 fmt::format("{}, {} freed", countText(report.pruned, "version", "versions"),
                             sizeText(report.prunedBytes)));
    if (report.skippedSpecial > 0)
        noteLine(session, "skipped",
                 countText(report.skippedSpecial, "socket, pipe or device",
                           "sockets, pipes or devices"));
    for (const std::string& group : report.settingsSaved)
        noteLine(session, "settings", group);
    if (!report.missed.empty()) {
        noteLine(session, "missed", countText(report.missed.size(), "file", "files"));
        for (const engine::Gap& gap : report.missed)
            session.output.note(
                fmt::format("    {}: {}", visibleText(gap.path), visibleText(gap.reason)));
    }
    if (!report.missedReportPath.empty())
        noteLine(session, "report", session.shown(report.missedReportPath));
    if (!nothing) {
        noteLine(session, "log", session.shown(logPath(session, fileName)));
        noteLine(session, "archive", session.shown(report.archiveRoot));
    }
}

int dryRun(Session& session, const std::string& fileName)
{
    const engine::BackupPlan plan =
        engine::planBackup(session.machine, session.appPath(), session.profilePath(fileName));
    for (const std::string& warning : plan.warnings)
        session.output.warning(warning);
    std::uint64_t bytes = 0;
    Table table({Align::Left, Align::Right, Align::Left});
    table.add({"Copy", "Size", "Source"});
    for (const engine::PlannedCopy& copy : plan.copies) {
        bytes += copy.sizeBytes;
        table.add({copy.version == 0 ? "full" : fmt::format("version {}", copy.version),
                   sizeText(copy.sizeBytes), visibleText(copy.path)});
        Json object{{"type", "plannedCopy"}};
        putText(object, "path", copy.path);
        object["version"] = copy.version;
        object["sizeBytes"] = copy.sizeBytes;
        session.output.object(object);
    }
    if (table.hasRows())
        session.output.result(table.text());
    for (const engine::Gap& gap : plan.missed)
        session.output.warning(fmt::format("would miss {}: {}", gap.path, gap.reason));
    session.output.object(Json{{"type", "plan"},
                               {"filesScanned", plan.filesScanned},
                               {"copies", plan.copies.size()},
                               {"bytes", bytes},
                               {"missed", gapsOf(plan.missed)}});
    session.output.note(fmt::format("{} of {} would be saved, {} to read",
                                    countText(plan.copies.size(), "file", "files"),
                                    plan.filesScanned, sizeText(bytes)));
    return exitCodeOf(
        engine::outcomeOf({.gaps = !plan.missed.empty(), .anything = !plan.copies.empty()}));
}

} // namespace

int runBackup(Session& session, const BackupCommand& command)
{
    const std::string fileName = savedProfile(session, command.name);
    if (command.dryRun)
        return dryRun(session, fileName);
    RunProgress progress(session.terminal, session.output, session.machine.clock);
    engine::Engine objBackUp(session.machine, session.appPath(), progress);
    progress.follow(objBackUp);
    engine::TruthValue success = engine::kFalse;
    std::optional<base::RuntimeError> failure;
    try {
        objBackUp.EngineBackup(session.profilesFolder() + "\\", fileName, success);
    } catch (const base::RuntimeError& error) {
        failure = error;
    }
    progress.clear();
    const engine::BackupReport& report = objBackUp.backupReport();
    for (const std::string& warning : report.warnings)
        session.output.warning(warning);
    session.output.object(objectOf(session, report, fileName));
    if (!failure || report.copiesWritten > 0)
        summarize(session, report, fileName, progress.elapsed());
    if (failure)
        throw base::RuntimeError(*failure);
    return exitCodeOf(report.outcome);
}

} // namespace vardelin::ctl
