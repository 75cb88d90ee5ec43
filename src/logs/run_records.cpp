#include "logs/run_records.h"

#include "base/keyed_collection.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "logs/log_folder.h"
#include "platform/path_rule.h"

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

// The end of a log file, which holds whole what the run before appended.
std::string tailOf(FileSystem& fileSystem, const std::string& path)
{
    constexpr std::uint64_t kTailBytes = 65'536; // longer than any line that we write
    const auto file = fileSystem.open(path, OpenMode::Read);
    const std::uint64_t size = file->info().sizeBytes;
    const std::uint64_t count = std::min(size, kTailBytes);
    std::string tail = readAt(*file, size - count, static_cast<std::size_t>(count));
    // It begins with a line, or with the rest of one that is of no interest any more.
    if (count < size)
        tail.erase(0, tail.find('\n') + 1);
    return tail;
}

bool isShort(std::string_view line, std::size_t fields)
{
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return !line.empty() && base::split(line, kFieldSeparator).size() < fields;
}

// Whether a line that ends in this text has too few fields.
bool holdsShortLine(std::string_view text, std::size_t fields)
{
    const auto lines = base::split(text, "\n");
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        if (isShort(lines[i], fields))
            return true;
    }
    return false;
}

// What a power cut leaves of an append can be any bytes, line ends among them, and a short line
// would hide all that stand behind it. Such lines get the fields that they lack.
void mendShortLines(FileSystem& fileSystem, const std::string& path, std::size_t fields)
{
    const std::string text = fileSystem.readAll(path);
    std::string mended;
    const auto lines = base::split(text, "\n");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string_view line = lines[i];
        const bool isLast = i + 1 == lines.size();
        if (!isLast && isShort(line, fields)) {
            const bool hasReturn = line.ends_with('\r');
            if (hasReturn)
                line.remove_suffix(1);
            mended.append(line);
            for (std::size_t n = base::split(line, kFieldSeparator).size(); n < fields; ++n)
                mended.append(kFieldSeparator);
            mended.append(hasReturn ? "\r" : "");
        } else {
            mended.append(line);
        }
        mended.append(isLast ? "" : "\n");
    }
    fileSystem.replaceFile(path, mended);
}

void appendLine(FileSystem& fileSystem, std::string_view appPath, std::string_view logFolder,
                std::string_view stem, std::string_view line, std::size_t fields)
{
    const std::string folder = makeLogFolder(fileSystem, appPath, logFolder);
    const std::string path = platform::joinPath(folder, std::string(stem).append(".txt"));
    std::string bytes;
    const bool isNew = !fileSystem.fileExists(path);
    const std::string tail = isNew ? std::string() : tailOf(fileSystem, path);
    if (holdsShortLine(tail, fields))
        mendShortLines(fileSystem, path, fields);
    const std::string unfinished(base::afterLast(tail, "\n"));
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
    if (isNew)
        fileSystem.openFolder(folder)->flush();
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

// `number` is the line under way, from 1; 0 while the file is being read.
template <typename Line, typename Each>
void readLines(FileSystem& fileSystem, std::string_view path, Line (*parse)(std::string_view),
               std::size_t& number, Each&& each)
{
    const std::string text = fileSystem.readAll(path);
    for (const std::string_view line : linesOf(text)) {
        ++number;
        if (!line.empty())
            each(parse(line));
    }
}

template <typename Line>
void readLogFile(FileSystem& fileSystem, const std::string& path, Line (*parse)(std::string_view),
                 Log<Line>& log)
{
    std::size_t number = 0;
    try {
        readLines(fileSystem, path, parse, number,
                  [&](Line line) { log.lines.push_back(std::move(line)); });
    } catch (const RuntimeError& error) {
        log.faults.push_back(
            {path, number,
             error.reason().empty() ? std::string(error.description()) : error.reason()});
    }
}

std::optional<std::vector<std::string>> logFiles(FileSystem& fileSystem, std::string_view appPath,
                                                 std::string_view logFolder)
{
    const std::string folder = platform::joinPath(appPath, logFolder);
    if (!fileSystem.folderExists(folder))
        return std::nullopt;
    std::vector<std::string> paths;
    for (const platform::FolderEntryInfo& entry : fileSystem.list(folder)) {
        if (entry.info.kind == platform::FileKind::Regular)
            paths.push_back(platform::joinPath(folder, entry.name));
    }
    return paths;
}

template <typename Line>
Log<Line> readLog(FileSystem& fileSystem, std::string_view appPath, std::string_view logFolder,
                  Line (*parse)(std::string_view))
{
    Log<Line> log;
    const auto paths = logFiles(fileSystem, appPath, logFolder);
    log.folderExists = paths.has_value();
    if (paths) {
        for (const std::string& path : *paths)
            readLogFile(fileSystem, path, parse, log);
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

std::optional<std::vector<std::string>> backupLogFiles(FileSystem& fileSystem,
                                                       std::string_view appPath)
{
    return logFiles(fileSystem, appPath, kBackupFolder);
}

std::optional<std::vector<std::string>> restoreLogFiles(FileSystem& fileSystem,
                                                        std::string_view appPath)
{
    return logFiles(fileSystem, appPath, kRestoreFolder);
}

void readBackupLogFile(FileSystem& fileSystem, std::string_view path,
                       const std::function<void(const BackupLine&)>& each)
{
    std::size_t number = 0;
    readLines(fileSystem, path, &parseBackupLine, number, each);
}

void readRestoreLogFile(FileSystem& fileSystem, std::string_view path,
                        const std::function<void(const RestoreLine&)>& each)
{
    std::size_t number = 0;
    readLines(fileSystem, path, &parseRestoreLine, number, each);
}

Queue readQueue(FileSystem& fileSystem, std::string_view appPath)
{
    Queue queue;
    const std::string path = platform::joinPath(appPath, kQueueFile);
    queue.fileExists = fileSystem.fileExists(path);
    if (!queue.fileExists)
        return queue;
    base::KeyedCollection<bool> seen(platform::pathRule(fileSystem));
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
