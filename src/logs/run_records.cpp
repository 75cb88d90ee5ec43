#include "logs/run_records.h"

#include "base/keyed_collection.h"
#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <span>

#include <fmt/format.h>

namespace vardelin::logs {
namespace {

using base::RuntimeError;
using platform::FileSystem;
using platform::OpenMode;
namespace error_number = base::error_number;

constexpr std::string_view kBackupFolder = "Log\\Backup";
constexpr std::string_view kRestoreFolder = "Log\\Restore";
constexpr std::string_view kQueueFile = "Queue\\ChngFilesQueue.txt";
constexpr std::string_view kLineEnd = "\r\n";

// The lines of a text, whichever of CR LF and LF ends them: no field holds either.
std::vector<std::string_view> linesOf(std::string_view text)
{
    std::vector<std::string_view> lines = base::split(text, "\n");
    for (std::string_view& line : lines) {
        if (line.ends_with('\r'))
            line.remove_suffix(1);
    }
    return lines;
}

std::string readAt(platform::File& file, std::uint64_t offset, std::size_t count)
{
    std::string bytes(count, '\0');
    std::size_t done = 0;
    while (done < count) {
        const std::size_t n =
            file.readAt(offset + done, std::as_writable_bytes(std::span(bytes).subspan(done)));
        if (n == 0)
            break;
        done += n;
    }
    bytes.resize(done);
    return bytes;
}

// What a log file ends in behind its last line end; empty for a file that is whole or missing.
std::string unfinishedLine(FileSystem& fileSystem, const std::string& path)
{
    constexpr std::uint64_t kTailBytes = 65'536; // longer than any line that we write
    if (!fileSystem.fileExists(path))
        return {};
    const auto file = fileSystem.open(path, OpenMode::Read);
    const std::uint64_t size = file->info().sizeBytes;
    const std::uint64_t count = std::min(size, kTailBytes);
    const std::string tail = readAt(*file, size - count, static_cast<std::size_t>(count));
    return std::string(base::afterLast(tail, "\n"));
}

void appendLine(FileSystem& fileSystem, std::string_view appPath, std::string_view logFolder,
                std::string_view stem, std::string_view line, std::size_t fields)
{
    const std::string folder = platform::joinPath(appPath, logFolder);
    fileSystem.createFolders(folder);
    const std::string path = platform::joinPath(folder, std::string(stem).append(".txt"));
    std::string bytes;
    const std::string unfinished = unfinishedLine(fileSystem, path);
    if (unfinished.ends_with('\r')) {
        bytes.append("\n");
    } else if (!unfinished.empty()) {
        const std::size_t there = base::split(unfinished, kFieldSeparator).size();
        for (std::size_t i = there; i < fields; ++i)
            bytes.append(kFieldSeparator);
        bytes.append(kLineEnd);
    }
    bytes.append(line).append(kLineEnd);
    const auto file = fileSystem.open(path, OpenMode::Append);
    file->write(platform::asBytes(bytes));
    file->flush();
    file->close();
}

// The fields of a line, at least `count` of them.
std::vector<std::string_view> fieldsOf(std::string_view line, std::size_t count)
{
    std::vector<std::string_view> fields = base::split(line, kFieldSeparator);
    if (fields.size() < count)
        throw RuntimeError(error_number::kSubscript, std::string(line),
                           fmt::format("{} of {} fields", fields.size(), count));
    return fields;
}

template <typename Line>
void readLogFile(FileSystem& fileSystem, const std::string& path, Line (*parse)(std::string_view),
                 Log<Line>& log)
{
    std::size_t number = 0;
    try {
        const std::string text = fileSystem.readAll(path);
        for (const std::string_view line : linesOf(text)) {
            ++number;
            if (!line.empty())
                log.lines.push_back(parse(line));
        }
    } catch (const RuntimeError& error) {
        log.faults.push_back(
            {path, number,
             error.reason().empty() ? std::string(error.description()) : error.reason()});
    }
}

template <typename Line>
Log<Line> readLog(FileSystem& fileSystem, std::string_view appPath, std::string_view logFolder,
                  Line (*parse)(std::string_view))
{
    Log<Line> log;
    const std::string folder = platform::joinPath(appPath, logFolder);
    log.folderExists = fileSystem.folderExists(folder);
    if (!log.folderExists)
        return log;
    for (const platform::FolderEntryInfo& entry : fileSystem.list(folder)) {
        if (entry.info.kind == platform::FileKind::Regular)
            readLogFile(fileSystem, platform::joinPath(folder, entry.name), parse, log);
    }
    return log;
}

} // namespace

std::string fieldText(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        if (c != '\r' && c != '\n')
            result += c;
    }
    // What is left on both sides of a separator may make another one.
    while (result.find(kFieldSeparator) != std::string::npos)
        result = base::replaceAll(result, kFieldSeparator, "");
    // At an end a single one would run together with the separator behind or in front of it.
    if (result.starts_with('|'))
        result.erase(0, 1);
    if (result.ends_with('|'))
        result.pop_back();
    return result;
}

std::string formatBackupLine(const BackupRecord& record)
{
    return fmt::format("{}||{}||{}||{}||{}||{}", fieldText(record.profileName),
                       fieldText(record.type), fieldText(record.date), record.fileCount,
                       record.skippedCount, fieldText(record.missedReportPath));
}

std::string formatRestoreLine(const RestoreRecord& record)
{
    return fmt::format("{}||{}||{}||{}", fieldText(record.profileName),
                       fieldText(record.restoredPath), fieldText(record.date), record.fileCount);
}

BackupLine parseBackupLine(std::string_view line)
{
    const auto fields = fieldsOf(line, kBackupFields);
    BackupLine result{std::string(fields[0]), std::string(fields[1]), std::string(fields[2]),
                      std::string(fields[3]), std::string(fields[4]), {}};
    if (fields.size() > kBackupFields)
        result.missedReport = fields[kBackupFields];
    return result;
}

RestoreLine parseRestoreLine(std::string_view line)
{
    const auto fields = fieldsOf(line, kRestoreFields);
    return {std::string(fields[0]), std::string(fields[1]), std::string(fields[2]),
            std::string(fields[3])};
}

void appendBackupRecord(FileSystem& fileSystem, std::string_view appPath,
                        const BackupRecord& record)
{
    appendLine(fileSystem, appPath, kBackupFolder, record.profileName, formatBackupLine(record),
               kBackupFields);
}

void appendRestoreRecord(FileSystem& fileSystem, std::string_view appPath,
                         const RestoreRecord& record)
{
    appendLine(fileSystem, appPath, kRestoreFolder, record.profileName, formatRestoreLine(record),
               kRestoreFields);
}

Log<BackupLine> readBackupLog(FileSystem& fileSystem, std::string_view appPath)
{
    return readLog(fileSystem, appPath, kBackupFolder, &parseBackupLine);
}

Log<RestoreLine> readRestoreLog(FileSystem& fileSystem, std::string_view appPath)
{
    return readLog(fileSystem, appPath, kRestoreFolder, &parseRestoreLine);
}

Queue readQueue(FileSystem& fileSystem, std::string_view appPath)
{
    Queue queue;
    const std::string path = platform::joinPath(appPath, kQueueFile);
    queue.fileExists = fileSystem.fileExists(path);
    if (!queue.fileExists)
        return queue;
    base::KeyedCollection<bool> seen(fileSystem.isCaseSensitive() ? base::KeyRule::Exact
                                                                  : base::KeyRule::IgnoreCase);
    const std::string text = fileSystem.readAll(path);
    for (const std::string_view line : linesOf(text)) {
        const std::string_view name = base::trim(line);
        if (name.empty() || !seen.tryAdd(true, name))
            continue;
        QueuedFile file{.path = std::string(name)};
        if (const auto info = fileSystem.find(name);
            info && info->kind == platform::FileKind::Regular) {
            file.exists = true;
            file.sizeBytes = info->sizeBytes;
            file.modifiedNs = info->modifiedNs;
        }
        queue.files.push_back(std::move(file));
    }
    return queue;
}

} // namespace vardelin::logs
