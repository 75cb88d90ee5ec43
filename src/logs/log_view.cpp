#include "logs/log_view.h"

#include "base/dates.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "logs/log_texts.h"
#include "logs/run_records.h"

#include <optional>
#include <utility>
#include <vector>

namespace vardelin::logs {
namespace {

using platform::FileSystem;

constexpr std::string_view kModule = "frmLog";

void tell(const LogViewContext& context, std::string_view text)
{
    context.machine.messageBoxes.show(text, texts::kTitle);
}

template <typename Body>
void traced(LogViewContext& context, std::string_view procedure, std::string_view sentence,
            Body&& body)
{
    trace::runTraced(context.trace, procedure, kModule, sentence, std::forward<Body>(body));
}

// The trace of the rows of one file: an entry is a write to the disk, and a queue may have 100,000
// rows, so there is one for all of them when the last one is there.
class RowTrace {
public:
    RowTrace(trace::RunTrace& trace, std::string_view procedure)
        : m_trace(trace), m_procedure(procedure)
    {
    }
    RowTrace(const RowTrace&) = delete;
    RowTrace& operator=(const RowTrace&) = delete;
    ~RowTrace()
    {
        try {
            m_trace.WriteRunTraceTimes(m_procedure, "End", m_entries);
        } catch (...) { // NOLINT(bugprone-empty-catch): a trace never stops what it follows
        }
    }

    void row()
    {
        constexpr std::int32_t kEntriesOfARow = 2; // Start and End
        m_entries += kEntriesOfARow;
    }

private:
    trace::RunTrace& m_trace;
    std::string_view m_procedure;
    std::int32_t m_entries = 0;
};

constexpr std::string_view kBackupRow = "LoadBkpLV";
constexpr std::string_view kRestoreRow = "LoadResLV";
constexpr std::string_view kQueueRow = "LoadQLV";

void addRow(LogViewContext& context, state::LogList& list, state::LogRow row)
{
    list.rows.push_back(std::move(row));
    ++context.form.revision;
}

// The one list that shows, empty.
void showOnly(LogViewContext& context, state::LogList& list, std::string_view help,
              std::string_view panel)
{
    state::frmLog& form = context.form;
    for (state::LogList* each : {&form.lstBackupLog, &form.lstRestoreLog, &form.lstQLog})
        each->visible = each == &list;
    list.rows.clear();
    ++form.revision;
    form.lblHelp.caption = help;
    form.lblGeneral.caption = texts::kGeneralHelp;
    form.loaded = true;
    form.visible = true;
    context.frame.panel1.text = panel;
}

state::LogRow queueRow(std::string_view name, std::string_view second, std::string_view third,
                       std::string_view fourth)
{
    state::LogRow row{std::string(name), {std::string(second), std::string(third)}, {}};
    if (!fourth.empty())
        row.sub[2] = fourth;
    return row;
}

using LogFiles = std::optional<std::vector<std::string>>;

void viewFiles(LogViewContext& context, const LogFiles& files, std::string_view noFolder,
               std::string_view noFiles, void (*read)(LogViewContext&, std::string_view))
{
    if (!files) {
        tell(context, noFolder);
    } else if (files->empty()) {
        tell(context, noFiles);
    } else {
        for (const std::string& path : *files)
            read(context, path);
    }
}

} // namespace

void mnuBackLog_Click(LogViewContext& context)
{
    showOnly(context, context.form.lstBackupLog, texts::kBackupHelp, texts::kBackupPanel);
    ViewBackUpLog(context);
}

void mnuRestLog_Click(LogViewContext& context)
{
    showOnly(context, context.form.lstRestoreLog, texts::kRestoreHelp, texts::kRestorePanel);
    ViewRestoreLog(context);
}

void mnudispQ_Click(LogViewContext& context)
{
    showOnly(context, context.form.lstQLog, texts::kQueueHelp, texts::kQueuePanel);
    ViewQLog(context);
}

void ViewBackUpLog(LogViewContext& context)
{
    traced(context, "ViewBackUpLog", texts::kLogFailed, [&] {
        viewFiles(context, backupLogFiles(context.machine.fileSystem, context.frame.ST_App_Path),
                  texts::kNoBackupFolder, texts::kNoBackupFiles, &ReadLogFiles);
    });
}

void ViewRestoreLog(LogViewContext& context)
{
    traced(context, "ViewRestoreLog", texts::kLogFailed, [&] {
        viewFiles(context, restoreLogFiles(context.machine.fileSystem, context.frame.ST_App_Path),
                  texts::kNoRestoreFolder, texts::kNoRestoreFiles, &ReadResLogFiles);
    });
}

void ReadLogFiles(LogViewContext& context, std::string_view fileName)
{
    traced(context, "ReadLogFiles", texts::kLogFailed, [&] {
        RowTrace rows(context.trace.trace, kBackupRow);
        readBackupLogFile(context.machine.fileSystem, fileName, [&](const BackupLine& line) {
            rows.row();
            addRow(context, context.form.lstBackupLog,
                   {line.profileName,
                    {line.type, line.date, line.files, line.skipped},
                    line.missedReport});
        });
    });
}

void ReadResLogFiles(LogViewContext& context, std::string_view fileName)
{
    traced(context, "ReadResLogFiles", texts::kLogFailed, [&] {
        RowTrace rows(context.trace.trace, kRestoreRow);
        readRestoreLogFile(context.machine.fileSystem, fileName, [&](const RestoreLine& line) {
            rows.row();
            addRow(context, context.form.lstRestoreLog,
                   {line.profileName, {line.restoredPath, line.date, line.files}, {}});
        });
    });
}

void ViewQLog(LogViewContext& context)
{
    traced(context, "ViewQLog", texts::kQueueFailed, [&] {
        FileSystem& files = context.machine.fileSystem;
        const Queue queue = readQueue(files, context.frame.ST_App_Path);
        if (!queue.fileExists) {
            tell(context, texts::kNoQueueFile);
            return;
        }
        RowTrace rows(context.trace.trace, kQueueRow);
        for (const QueuedFile& file : queue.files) {
            if (!file.exists)
                continue;
            rows.row();
            addRow(context, context.form.lstQLog,
                   queueRow(base::afterLast(file.path, "\\"), platform::parentOf(file.path),
                            base::generalDate(context.machine.clock.toLocal(file.modifiedNs)),
                            fileSizeText(file.sizeBytes)));
        }
        // Paths whose files have gone show nothing, but they are in the queue.
        if (queue.files.empty())
            tell(context, texts::kNoQueueFiles);
    });
}

void LoadBkpLV(LogViewContext& context, std::string_view sFName, std::string_view sBkpTyp,
               std::string_view sBkpDate, std::string_view sNoofFiles, std::string_view sSkipFiles,
               std::string_view report)
{
    traced(context, kBackupRow, texts::kListFailed, [&] {
        addRow(context, context.form.lstBackupLog,
               {std::string(sFName),
                {std::string(sBkpTyp), std::string(sBkpDate), std::string(sNoofFiles),
                 std::string(sSkipFiles)},
                std::string(report)});
    });
}

void LoadResLV(LogViewContext& context, std::string_view sFName, std::string_view sBkpDes,
               std::string_view sBkpDate, std::string_view sNoofFiles)
{
    traced(context, kRestoreRow, texts::kListFailed, [&] {
        addRow(context, context.form.lstRestoreLog,
               {std::string(sFName),
                {std::string(sBkpDes), std::string(sBkpDate), std::string(sNoofFiles)},
                {}});
    });
}

void LoadQLV(LogViewContext& context, state::LogList& sLvname, std::string_view sGen1,
             std::string_view sGen2, std::string_view sGen3, std::string_view sGen4)
{
    traced(context, kQueueRow, texts::kListFailed,
           [&] { addRow(context, sLvname, queueRow(sGen1, sGen2, sGen3, sGen4)); });
}

std::string fileSizeText(std::uint64_t sizeBytes)
{
    constexpr std::uint64_t kKilobyte = 1024;
    const auto size = static_cast<double>(sizeBytes);
    if (sizeBytes >= kKilobyte * kKilobyte)
        return base::numberText(base::round(size / kKilobyte / kKilobyte, 2)) + "MB";
    if (sizeBytes >= kKilobyte)
        return base::numberText(base::round(size / kKilobyte, 2)) + "KB";
    return std::to_string(sizeBytes) + "B";
}

std::string GetFileSize(FileSystem& fileSystem, std::string_view path)
{
    base::PendingError failure;
    std::uint64_t size = 0;
    failure.attempt([&] {
        if (const auto info = fileSystem.find(path))
            size = info->sizeBytes;
    });
    return fileSizeText(size);
}

std::string missedReportText(LogViewContext& context, const state::LogRow& row)
{
    std::string text;
    if (row.report.empty())
        return text;
    // The name counts: the application folder may have been moved since, and a log that somebody
    // else wrote leads to no file elsewhere.
    const std::string path = context.frame.ST_App_Path + "\\Log\\Missed\\" +
                             std::string(base::afterLast(row.report, "\\"));
    traced(context, "lstBackupLog_DblClick", texts::kLogFailed,
           [&] { text = context.machine.fileSystem.readAll(path); });
    return text;
}

} // namespace vardelin::logs
