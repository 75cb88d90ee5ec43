#include "profile/file_details.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "trace/messages.h"

#include <algorithm>
#include <bit>
#include <memory>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

using base::RuntimeError;
using trace::TraceContext;
namespace error_number = base::error_number;

constexpr std::string_view kModule = "ModFileDet";
constexpr int kInformationMessage = 40065;
constexpr int kFileTimeMessage = 40066;
constexpr int kSystemTimeMessage = 40067;
constexpr int kBufferMessage = 40068;
constexpr int kCreatedMessage = 40069;
constexpr std::string_view kFilenameMessage = "Error while Retrieving the File Informations";
constexpr std::string_view kAppendMessage = "Error Occurred while appending the String";

constexpr std::int64_t kStepsPerSecond = 10'000'000;
constexpr std::int64_t kNsPerStep = 100;
constexpr std::int64_t kSecondsPerHour = 3600;
constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr base::Date kFirstDay{1601, 1, 1};

std::int64_t secondsFrom1601To1970()
{
    return -base::daysSinceEpoch(kFirstDay) * kSecondsPerDay;
}

// The instant that many seconds behind 1 January 1601.
base::DateTime dateAfter(std::int64_t seconds)
{
    const std::int64_t days = seconds / kSecondsPerDay;
    const int rest = static_cast<int>(seconds % kSecondsPerDay);
    return {base::dateFromDays(base::daysSinceEpoch(kFirstDay) + days),
            {rest / 3600, rest / 60 % 60, rest % 60}};
}

std::uint64_t stepsOf(const FileTime& fileTime)
{
    return std::uint64_t{std::bit_cast<std::uint32_t>(fileTime.high)} << 32U |
           std::bit_cast<std::uint32_t>(fileTime.low);
}

// The system's own conversion: none for a time with the highest bit set. What it makes of the years
// behind 9999 is a system time, and no date.
SystemTime systemTimeOf(const FileTime& fileTime)
{
    if (fileTime.high < 0)
        return {};
    const auto seconds = static_cast<std::int64_t>(stepsOf(fileTime)) / kStepsPerSecond;
    const base::DateTime at = dateAfter(seconds);
    return {at.date.year, at.date.month, at.date.day, at.time.hour, at.time.minute, at.time.second};
}

FileInformation informationOf(const platform::FileInfo& info)
{
    FileInformation result;
    result.attributes = info.kind == platform::FileKind::Folder ? kFolderAttribute : 0;
    result.created = fileTimeOf(info.createdNs);
    result.accessed = fileTimeOf(info.accessedNs);
    result.written = fileTimeOf(info.modifiedNs);
    result.volume = static_cast<std::uint32_t>(info.device);
    result.sizeBytes = info.sizeBytes;
    result.links = static_cast<std::uint32_t>(info.linkCount);
    result.index = info.inode;
    return result;
}

std::unique_ptr<platform::File> tryOpen(platform::FileSystem& fileSystem, std::string_view path)
{
    std::unique_ptr<platform::File> file;
    base::PendingError noHandle; // a value here: the callers have a result for it
    noHandle.attempt([&] { file = fileSystem.open(path, platform::OpenMode::Read); });
    return file;
}

// A negative half is its low 31 bits plus 2 to the 31st.
double unsignedHalf(std::int32_t half)
{
    return static_cast<double>(std::bit_cast<std::uint32_t>(half));
}

// Text in front of the last backslash, the final character of the path not counted.
std::string_view parentText(std::string_view path)
{
    if (path.empty())
        return {};
    const std::size_t at = path.substr(0, path.size() - 1).rfind('\\');
    return at == std::string_view::npos ? std::string_view{} : path.substr(0, at);
}

} // namespace

FileTime fileTimeOf(std::int64_t ns)
{
    const std::int64_t offset = secondsFrom1601To1970() * kStepsPerSecond;
    const std::int64_t before = ns < 0 && ns % kNsPerStep != 0 ? 1 : 0;
    const std::int64_t steps = std::max<std::int64_t>(ns / kNsPerStep - before + offset, 0);
    const auto bits = static_cast<std::uint64_t>(steps);
    return {std::bit_cast<std::int32_t>(static_cast<std::uint32_t>(bits & 0xFFFFFFFFU)),
            std::bit_cast<std::int32_t>(static_cast<std::uint32_t>(bits >> 32U))};
}

FileInformation fileInformation(TraceContext& trace, platform::FileSystem& fileSystem,
                                std::string_view path)
{
    FileInformation result;
    trace::runTraced(trace, "fileInformation", kModule, trace::message(kInformationMessage), [&] {
        if (const auto file = tryOpen(fileSystem, path))
            result = informationOf(file->info());
    });
    return result;
}

base::DateTime TimeFileToDate(TraceContext& trace, const FileTime& fileTime)
{
    base::DateTime result;
    trace::runTraced(trace, "timeFileToDate", kModule, trace::message(kFileTimeMessage),
                     [&] { result = TimeSysToDate(trace, systemTimeOf(fileTime)); });
    return result;
}

base::DateTime TimeSysToDate(TraceContext& trace, const SystemTime& systemTime)
{
    base::DateTime result;
    trace::runTraced(trace, "timeSysToDate", kModule, trace::message(kSystemTimeMessage), [&] {
        const base::Date date{systemTime.year, systemTime.month, systemTime.day};
        const base::TimeOfDay time{systemTime.hour, systemTime.minute, systemTime.second};
        if (!base::isValid(date) || !base::isValid(time))
            throw RuntimeError(error_number::kTypeMismatch,
                               fmt::format("{:02}/{:02}/{:04} {:02}:{:02}:{:02}", date.month,
                                           date.day, date.year, time.hour, time.minute,
                                           time.second));
        result = {date, time};
    });
    return result;
}

base::DateTime FileTimeToDate(TraceContext& trace, const FileTime& fileTime)
{
    constexpr double kHalfRange = 4294967296.0;
    base::DateTime result;
    trace::runTraced(trace, "FileTimeToDate", kModule, trace::message(kCreatedMessage), [&] {
        const double high = unsignedHalf(fileTime.high);
        const double low = unsignedHalf(fileTime.low);
        double seconds = (high * kHalfRange + low) / static_cast<double>(kStepsPerSecond);
        const double hours = base::round(seconds / static_cast<double>(kSecondsPerHour), 0);
        seconds -= hours * static_cast<double>(kSecondsPerHour);
        const auto total = static_cast<std::int64_t>(hours) * kSecondsPerHour +
                           static_cast<std::int64_t>(base::round(seconds, 0));
        const base::DateTime at = dateAfter(total);
        if (!base::isValid(at.date))
            throw RuntimeError(error_number::kInvalidCall, "file time");
        result = at;
    });
    return result;
}

bool GetFileTimes(TraceContext& trace, platform::Machine& machine, std::string_view path,
                  base::DateTime& created, base::DateTime& /*accessed*/,
                  base::DateTime& /*written*/, bool toLocal)
{
    bool success = false;
    trace::runTraced(trace, "GetFileTimes", kModule, trace::customMessage("GetFileTimes"), [&] {
        const auto file = tryOpen(machine.fileSystem, path);
        if (!file)
            return;
        FileTime time = fileTimeOf(file->info().createdNs);
        if (toLocal) {
            const base::DateTime local = machine.clock.toLocal(file->info().createdNs);
            const std::int64_t seconds = base::daysSinceEpoch(local.date) * kSecondsPerDay +
                                         local.time.hour * kSecondsPerHour +
                                         std::int64_t{local.time.minute} * 60 + local.time.second;
            time = fileTimeOf(seconds * kStepsPerSecond * kNsPerStep);
        }
        created = FileTimeToDate(trace, time);
        success = true;
    });
    return success;
}

std::string sNT(TraceContext& trace, std::string_view text)
{
    std::string result;
    trace::runTraced(trace, "sNT", kModule, trace::message(kBufferMessage),
                     [&] { result = text.substr(0, text.find('\0')); });
    return result;
}

std::string sFilename(TraceContext& trace, std::string_view path, int parts)
{
    std::string result;
    trace::runTraced(trace, "sFilename", kModule, kFilenameMessage, [&] {
        const std::size_t nameAt = path.rfind('\\') + 1; // 0 where there is no backslash
        const std::string_view leaf = path.substr(nameAt);
        const std::size_t dot = leaf.rfind('.');
        if ((parts & kFolderPart) != 0)
            result.append(path.substr(0, nameAt));
        if ((parts & kNamePart) != 0)
            result.append(leaf.substr(0, dot));
        if ((parts & kExtensionPart) == 0)
            return;
        if (!result.empty())
            result += '.';
        if (dot != std::string_view::npos)
            result.append(leaf.substr(dot + 1));
    });
    return result;
}

std::string sAppend(TraceContext& trace, std::string_view text, std::string_view tail)
{
    std::string result(text);
    trace::runTraced(trace, "sAppend", kModule, kAppendMessage, [&] {
        if (!result.ends_with(tail))
            result.append(tail);
    });
    return result;
}

namespace {

void ensureFolder(TraceContext& trace, platform::FileSystem& fileSystem, std::string_view path,
                  bool& failed)
{
    trace::runTraced(trace, "FolderChk", "frmRestDialog", trace::customMessage("FolderChk"), [&] {
        // The parent of a drive is not a folder that could be made: the way up ends there.
        const std::string_view parent = parentText(path);
        if (!parent.empty() && !platform::isDriveRoot(parent) && !fileSystem.folderExists(parent))
            ensureFolder(trace, fileSystem, parent, failed);
        base::PendingError error;
        error.attempt([&] { fileSystem.createFolder(path); });
        if (error.number == error_number::kPermissionDenied)
            failed = true;
    });
}

} // namespace

void FolderChk(TraceContext& trace, platform::FileSystem& fileSystem, std::string_view path,
               bool& failed)
{
    failed = false;
    ensureFolder(trace, fileSystem, path, failed);
}

} // namespace vardelin::profile
