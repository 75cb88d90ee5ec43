#pragma once

#include "state/controls.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vardelin::state {

// A row of one of the log's lists: the first column and those behind it.
struct LogRow {
    std::string text;
    std::array<std::string, 4> sub;
    std::string report; // of a backup's row: the path of its report of missed files, or empty
};

struct LogList {
    std::vector<LogRow> rows;
    bool visible = false;
};

// frmLog: three lists, of which one shows.
struct frmLog {
    std::string caption = "Backup-Restore Log";
    LogList lstBackupLog;
    LogList lstRestoreLog;
    LogList lstQLog;
    Label lblHelp;    // about the list on show
    Label lblGeneral; // about the form

    std::uint64_t revision = 0; // grows with every change of a list
    bool loaded = false;
    bool visible = false;
};

} // namespace vardelin::state
