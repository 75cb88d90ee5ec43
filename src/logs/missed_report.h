#pragma once

#include "base/dates.h"
#include "platform/file_system.h"

#include <span>
#include <string>
#include <string_view>

namespace vardelin::logs {

// A file that a run could not save, and why; or an archive root and the error that ended its run.
struct MissedFile {
    std::string path; // in drive form
    std::string reason;
};

// Writes `<application folder>\Log\Missed\<stem>_<YYYYMMDDHHMMSS>.txt` for a profile's run that
// began at `when` (local) and gives its path; the backup log's line leads there. One line a file:
// path, tab, reason, CR LF; tabs and line ends inside either are blanks. Where a report of that
// second exists, `_2`, `_3` and so on stand behind its time. The report is whole or not there at
// all. Raises the port's errors.
std::string writeMissedReport(platform::FileSystem& fileSystem, std::string_view appPath,
                              std::string_view stem, const base::DateTime& when,
                              std::span<const MissedFile> missed);

} // namespace vardelin::logs
