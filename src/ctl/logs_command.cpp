#include "base/dates.h"
#include "base/text.h"
#include "ctl/commands.h"
#include "ctl/text_forms.h"
#include "logs/log_texts.h"
#include "logs/run_records.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

int finish(const Session& session, const Table& table, const std::vector<logs::LogFault>& faults,
           std::string_view emptyText)
{
    if (table.hasRows())
        session.output.result(table.text());
    for (const logs::LogFault& fault : faults)
        session.output.warning(fmt::format("{}, line {}: {}", session.shown(fault.path),
                                           fault.lineNumber, fault.reason));
    if (!faults.empty())
        return kExitGaps;
    if (table.hasRows())
        return kExitDone;
    session.output.note(emptyText);
    return kExitNothing;
}

int showBackups(const Session& session)
{
    const auto log = logs::readBackupLog(session.files(), session.appPath());
    Table table({Align::Left, Align::Left, Align::Left, Align::Right, Align::Right, Align::Left});
    table.add({"Profile Name", "BackUp Type", "LastRun Date", "Number Of Files", "Skipped Files",
               "Report"});
    for (const logs::BackupLine& line : log.lines) {
        const std::string report =
            line.missedReport.empty() ? "" : session.shown(line.missedReport);
        table.add({visibleText(line.profileName), visibleText(line.type), visibleText(line.date),
                   visibleText(line.files), visibleText(line.skipped), visibleText(report)});
        Json object{{"type", "backupLog"}};
        putText(object, "profile", line.profileName);
        putText(object, "run", line.type);
        putText(object, "date", line.date);
        putText(object, "files", line.files);
        putText(object, "skipped", line.skipped);
        putText(object, "missedReport", report);
        session.output.object(object);
    }
    return finish(session, table, log.faults,
                  log.folderExists ? logs::texts::kNoBackupFiles : logs::texts::kNoBackupFolder);
}

int showRestores(const Session& session)
{
    const auto log = logs::readRestoreLog(session.files(), session.appPath());
    Table table({Align::Left, Align::Left, Align::Left, Align::Right});
    table.add({"Profile Name", "Destination", "Last Restored Date", "No Of Files"});
    for (const logs::RestoreLine& line : log.lines) {
        table.add({visibleText(line.profileName), visibleText(line.restoredPath),
                   visibleText(line.date), visibleText(line.files)});
        Json object{{"type", "restoreLog"}};
        putText(object, "profile", line.profileName);
        putText(object, "to", line.restoredPath);
        putText(object, "date", line.date);
        putText(object, "files", line.files);
        session.output.object(object);
    }
    return finish(session, table, log.faults,
                  log.folderExists ? logs::texts::kNoRestoreFiles : logs::texts::kNoRestoreFolder);
}

// A path whose file has gone is left out.
int showQueue(const Session& session)
{
    const logs::Queue queue = logs::readQueue(session.files(), session.appPath());
    Table table({Align::Left, Align::Left, Align::Left, Align::Right});
    table.add({"File Name", "File Path", "File Modified Date", "File Size"});
    for (const logs::QueuedFile& file : queue.files) {
        if (!file.exists)
            continue;
        table.add({visibleText(base::afterLast(file.path, "\\")),
                   visibleText(platform::parentOf(file.path)),
                   base::isoDateTime(session.machine.clock.toLocal(file.modifiedNs)),
                   sizeText(file.sizeBytes)});
        Json object{{"type", "queuedFile"}};
        putText(object, "path", file.path);
        object["sizeBytes"] = file.sizeBytes;
        putInstant(object, "modified", file.modifiedNs);
        session.output.object(object);
    }
    return finish(session, table, {},
                  queue.fileExists ? logs::texts::kNoQueueFiles : logs::texts::kNoQueueFile);
}

} // namespace

int runLogs(Session& session, const LogsCommand& command)
{
    session.requireApplicationFolder();
    switch (command.kind) {
    case LogKind::Backup:
        return showBackups(session);
    case LogKind::Restore:
        return showRestores(session);
    case LogKind::Queue:
        return showQueue(session);
    }
    return kExitFailed;
}

} // namespace vardelin::ctl
