// Any bytes as logs, queue and texts of records: they are read or their faults are told, a record
// that is appended to them is read back, and a report of missed files keeps its form.
#include "base/runtime_error.h"
#include "fuzz/fuzz_input.h"
#include "logs/missed_report.h"
#include "logs/run_records.h"
#include "platform/memory/memory_file_system.h"

#include <algorithm>
#include <array>
#include <string>

using namespace vardelin;

namespace {

constexpr std::string_view kBackupLog = "C:\\app\\Log\\Backup\\Work.txt";
constexpr std::string_view kRestoreLog = "C:\\app\\Log\\Restore\\Work.txt";

bool isPlain(const std::string& field)
{
    return field.find("||") == std::string::npos && field.find('\n') == std::string::npos;
}

void readWhatIsThere(platform::FileSystem& files)
{
    for (const logs::BackupLine& line : logs::readBackupLog(files, "C:\\app").lines)
        test::require(isPlain(line.profileName) && isPlain(line.type) && isPlain(line.date) &&
                          isPlain(line.files) && isPlain(line.skipped) &&
                          isPlain(line.missedReport),
                      "a field holds no separator");
    for (const logs::RestoreLine& line : logs::readRestoreLog(files, "C:\\app").lines)
        test::require(isPlain(line.profileName) && isPlain(line.restoredPath) &&
                          isPlain(line.date) && isPlain(line.files),
                      "a field holds no separator");
    const logs::Queue queue = logs::readQueue(files, "C:\\app");
    for (const logs::QueuedFile& file : queue.files)
        test::require(!file.path.empty() && file.path.find('\n') == std::string::npos,
                      "a path of the queue is one line");
}

void appendAndReadBack(platform::FileSystem& files, const std::array<std::string, 3>& texts)
{
    const auto before = logs::readBackupLog(files, "C:\\app");
    logs::BackupRecord backup;
    backup.profileName = "Work";
    backup.type = texts[0];
    backup.date = texts[1];
    backup.fileCount = texts[0].size();
    backup.missedReportPath = texts[2];
    logs::appendBackupRecord(files, "C:\\app", backup);
    const auto after = logs::readBackupLog(files, "C:\\app");
    if (before.faults.empty() || !after.faults.empty()) {
        test::require(before.faults.empty() == after.faults.empty(),
                      "appending ends no reading that went through before");
    }
    if (after.faults.empty()) {
        test::require(!after.lines.empty() &&
                          after.lines.back() == logs::BackupLine{"Work", logs::fieldText(texts[0]),
                                                                 logs::fieldText(texts[1]),
                                                                 std::to_string(backup.fileCount),
                                                                 "0", logs::fieldText(texts[2])},
                      "the record appended last is read back");
    }
    logs::RestoreRecord restore{"Work", texts[0], texts[1], texts[2].size()};
    logs::appendRestoreRecord(files, "C:\\app", restore);
    const auto restored = logs::readRestoreLog(files, "C:\\app");
    if (restored.faults.empty()) {
        test::require(!restored.lines.empty() &&
                          restored.lines.back() ==
                              logs::RestoreLine{"Work", logs::fieldText(texts[0]),
                                                logs::fieldText(texts[1]),
                                                std::to_string(restore.fileCount)},
                      "the record appended last is read back");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = test::textOfInput(data, size);
    platform::MemoryFileSystem files;
    for (const char* folder : {"C:\\app\\Log\\Backup", "C:\\app\\Log\\Restore", "C:\\app\\Queue"})
        files.createFolders(folder);
    files.replaceFile(kBackupLog, text);
    files.replaceFile(kRestoreLog, text);
    files.replaceFile("C:\\app\\Queue\\ChngFilesQueue.txt", text);
    try {
        readWhatIsThere(files);
    } catch (const base::RuntimeError&) {
        test::require(false, "reading raises nothing that the bytes could bring about");
    }
    const std::size_t third = text.size() / 3;
    const std::array<std::string, 3> texts{std::string(text.substr(0, third)),
                                           std::string(text.substr(third, third)),
                                           std::string(text.substr(2 * third))};
    appendAndReadBack(files, texts);
    const std::array<logs::MissedFile, 2> missed{logs::MissedFile{texts[0], texts[1]},
                                                 logs::MissedFile{texts[1], texts[2]}};
    const std::string path = logs::writeMissedReport(files, "C:\\app", "Work", {}, missed);
    const std::string report = files.readAll(path);
    test::require(std::count(report.begin(), report.end(), '\n') == 2 &&
                      std::count(report.begin(), report.end(), '\t') == 2 &&
                      report.ends_with("\r\n"),
                  "a report is one line a file, path and reason");
    return 0;
}
