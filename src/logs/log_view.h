#pragma once

#include "platform/machine.h"
#include "state/frame_state.h"
#include "state/log_form.h"
#include "trace/error_tail.h"

#include <cstdint>
#include <string>
#include <string_view>

// frmLog: the records of past runs and the queue of changed files, for reading only. The formats
// are those of logs/run_records.h. Files are held open only while a list is filled: others append
// to them meanwhile, and nobody locks.
namespace vardelin::logs {

// Holds references only; the application owns the parts.
struct LogViewContext {
    const platform::Machine& machine;
    trace::TraceContext& trace;
    state::FrameState& frame; // ST_App_Path and panel 1
    state::frmLog& form;
};

// The commands of the main frame: each shows its own list alone, filled anew, with its help.
void mnuBackLog_Click(LogViewContext& context);
void mnuRestLog_Click(LogViewContext& context);
void mnudispQ_Click(LogViewContext& context);

// Add the records to their lists. A missing folder, or one without files, is told; a line with too
// few fields is reported and ends its file, whose rows in front of it and the other files show.
void ViewBackUpLog(LogViewContext& context);
void ViewRestoreLog(LogViewContext& context);
// Each path once, at its first place; one whose file has gone is left out.
void ViewQLog(LogViewContext& context);

// One log file, by its path.
void ReadLogFiles(LogViewContext& context, std::string_view fileName);
void ReadResLogFiles(LogViewContext& context, std::string_view fileName);

// Add a row each; LoadQLV is the general form, whose last column is set only where it is not empty.
void LoadBkpLV(LogViewContext& context, std::string_view sFName, std::string_view sBkpTyp,
               std::string_view sBkpDate, std::string_view sNoofFiles, std::string_view sSkipFiles,
               std::string_view report = {});
void LoadResLV(LogViewContext& context, std::string_view sFName, std::string_view sBkpDes,
               std::string_view sBkpDate, std::string_view sNoofFiles);
void LoadQLV(LogViewContext& context, state::LogList& sLvname, std::string_view sGen1,
             std::string_view sGen2, std::string_view sGen3, std::string_view sGen4);

// A length as this form shows it, without a blank before the unit: `1023B`, `1.12KB`, `3MB`. Halves
// of a hundredth go to the even one. `0B` for a file that cannot be measured. The review's own
// GetFileSize has another form.
std::string GetFileSize(platform::FileSystem& fileSystem, std::string_view path);
std::string fileSizeText(std::uint64_t sizeBytes);

// What a double click on a backup's row opens: the names of its missed files with their reasons,
// one a line, a tab between. The report of that name in `Log\Missed` counts, wherever the folder
// was then. Empty where the row has none; one that is gone or cannot be read is reported.
std::string missedReportText(LogViewContext& context, const state::LogRow& row);

} // namespace vardelin::logs
