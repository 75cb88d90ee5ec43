#include "trace/run_trace.h"

#include "base/dates.h"
#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>

namespace vardelin::trace {
namespace {

using base::padded;
using base::RuntimeError;
namespace error_number = base::error_number;

constexpr std::size_t kNumberWidth = 10;
constexpr std::size_t kMarkWidth = 8;
constexpr std::size_t kProcedureWidth = 40;
constexpr std::size_t kKindWidth = 10;
constexpr std::size_t kTextWidth = 38;
constexpr std::size_t kDateWidth = 12;
constexpr std::size_t kTimeWidth = 8;
constexpr std::int32_t kFirstEntry = 2;
constexpr std::string_view kLineEnd = "\r\n";

std::optional<std::int32_t> number(std::string_view field)
{
    std::uint64_t value = 0;
    if (!base::parseUnsigned(base::trim(field), value) ||
        value > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        return std::nullopt;
    return static_cast<std::int32_t>(value);
}

std::string headerRecord(std::int32_t capacity, std::int32_t next)
{
    const std::size_t filler = kLogRecordBytes - 2 * kNumberWidth - kLineEnd.size();
    return padded(std::to_string(capacity), kNumberWidth) +
           padded(std::to_string(next), kNumberWidth) + std::string(filler, ' ') +
           std::string(kLineEnd);
}

bool isMissing(const base::PendingError& error)
{
    return error.number == error_number::kFileNotFound ||
           error.number == error_number::kPathNotFound;
}

void writeRecord(platform::File& file, std::int32_t record, std::string_view bytes)
{
    // Record 1 is the header's own; no entry may land there or before it.
    if (record < 1 || bytes.size() != kLogRecordBytes)
        throw RuntimeError(error_number::kDeviceIo, std::to_string(record));
    file.writeAt(static_cast<std::uint64_t>(record - 1) * kLogRecordBytes,
                 platform::asBytes(bytes));
}

} // namespace

RunTrace::RunTrace(platform::FileSystem& fileSystem, platform::Clock& clock,
                   platform::MessageBoxes& messageBoxes, std::string appPath, std::string appName)
    : m_fileSystem(fileSystem), m_clock(clock), m_messageBoxes(messageBoxes),
      m_appName(std::move(appName)),
      m_fullName(std::move(appPath) + "\\" + m_appName + "_Log_File.txt")
{
}

void RunTrace::showFailure(std::string_view message)
{
    m_messageBoxes.show(message, m_appName, platform::Buttons::OkCancel, platform::Icon::Critical);
}

// False where the file has no usable header: too short, no numbers, or a capacity beyond the bound
// that keeps the log small.
bool RunTrace::readHeader(platform::File& file, Header& header) const
{
    std::array<std::byte, 2 * kNumberWidth> bytes{};
    if (file.readAt(0, bytes) != bytes.size())
        return false;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto capacity = number(text.substr(0, kNumberWidth));
    const auto next = number(text.substr(kNumberWidth));
    if (!capacity || !next || *capacity > kLogCapacity)
        return false;
    header = {*capacity, *next};
    return true;
}

void RunTrace::writeEntry(platform::File& file, std::int32_t record, std::string_view procedure,
                          std::string_view kind, std::string_view text)
{
    const base::DateTime now = m_clock.now();
    writeRecord(file, record,
                padded(fmt::format("#{}#", record), kMarkWidth) +
                    padded(procedure, kProcedureWidth) + padded(kind, kKindWidth) +
                    padded(text, kTextWidth) + padded(std::to_string(m_repeatCount), kNumberWidth) +
                    padded(base::traceDate(now.date), kDateWidth) +
                    padded(base::clockTime(now.time), kTimeWidth) + std::string(kLineEnd));
}

bool RunTrace::WriteRunTrace(std::string_view procedure, std::string_view kind, bool enabled,
                             std::string_view text)
{
    if (!enabled) {
        m_lastName = procedure;
        return true;
    }
    return write(procedure, kind, text, 1);
}

bool RunTrace::WriteRunTraceTimes(std::string_view procedure, std::string_view kind,
                                  std::int32_t times)
{
    return times <= 0 || write(procedure, kind, {}, times);
}

bool RunTrace::write(std::string_view procedure, std::string_view kind, std::string_view text,
                     std::int32_t times)
{
    const bool isNew = procedure != m_lastName;
    const std::int32_t before = isNew ? 0 : m_repeatCount;
    m_repeatCount = before + std::min(times, std::numeric_limits<std::int32_t>::max() - before);

    const auto create = [this] {
        if (CreateRunLogFile(m_fullName, kLogCapacity))
            return true;
        // The text is known with the code-like words in it.
        m_messageBoxes.show("Error In Creating Log File: & ST_Log_File_Full_Name, vbOK + "
                            "vbCritical, MV_ST_App_Name",
                            m_appName);
        return false;
    };
    base::PendingError failure;
    std::unique_ptr<platform::File> file;
    const auto open = [&] {
        return failure.attempt(
            [&] { file = m_fileSystem.open(m_fullName, platform::OpenMode::Update); });
    };
    // The same-entry path makes no file: a log that was removed meanwhile comes back with the next
    // new name.
    if (!open() && isNew && isMissing(failure)) {
        if (!create())
            return false;
        failure.clear();
        open();
    }
    if (!file)
        showFailure("Error in opening the log file: " + m_fullName);

    Header header;
    if (file) {
        bool usable = false;
        failure.attempt([&] { usable = readHeader(*file, header); });
        if (!usable && !failure && isNew) {
            // A file cut at birth has to be made anew.
            if (!create())
                return false;
            header = {kLogCapacity, kFirstEntry};
            usable = true;
        }
        failure.attempt([&] {
            if (!usable)
                throw RuntimeError(error_number::kDeviceIo, m_fullName, "unusable header");
            std::int32_t target = isNew ? header.next : header.next - 1;
            if (target > header.capacity)
                target = kFirstEntry;
            if (target < kFirstEntry)
                throw RuntimeError(error_number::kDeviceIo, m_fullName, "record out of range");
            writeEntry(*file, target, procedure, kind, text);
            writeRecord(*file, 1, headerRecord(header.capacity, target + 1));
            file->close();
        });
    }
    if (failure) {
        showFailure("There was an error writing the information to Log File.");
        return false;
    }
    m_lastName = procedure;
    return true;
}

bool RunTrace::CreateRunLogFile(std::string_view fullName, std::int32_t capacity)
{
    base::PendingError failure;
    std::unique_ptr<platform::File> file;
    if (!failure.attempt(
            [&] { file = m_fileSystem.open(fullName, platform::OpenMode::ReadWrite); }))
        showFailure("Error while opening the new log file.");
    if (file) {
        failure.attempt([&] {
            writeRecord(*file, 1, headerRecord(capacity, kFirstEntry));
            file->close();
        });
    }
    if (failure) {
        showFailure("There was an error writing the information to new log File.");
        return false;
    }
    return true;
}

} // namespace vardelin::trace
