#pragma once

#include "platform/file_system.h"
#include "platform/machine.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vardelin::trace {

// The run log: `<application folder>\<executable's base name>_Log_File.txt`, fixed records of 128
// bytes, each ending in CR LF, so that it reads as text with lines of equal length. Fields are
// bytes, left-justified, padded with blanks and cut at their width.
//
//   record 1   capacity 10, next record 10, blanks 106, CR LF
//   others     "#<record>#" 8, procedure 40, kind 10, text 38, repeat count 10,
//              date MM-DD-YYYY 12, time HH:MM:SS 8, CR LF
//
// A file never has more records than kLogCapacity; behind the last one the log goes on at record 2.
inline constexpr std::size_t kLogRecordBytes = 128;
inline constexpr std::int32_t kLogCapacity = 25000;

// Writes the trace. Consecutive calls under one procedure name share one record, whose kind is that
// of the last call and whose repeat count grows. The file is opened and closed at every call, so it
// can be read or removed between any two. Not for several threads at once.
class RunTrace {
public:
    // appPath has no backslash at its end; appName is the executable's base name and the title of
    // the message boxes. The ports must outlive this object.
    RunTrace(platform::FileSystem& fileSystem, platform::Clock& clock,
             platform::MessageBoxes& messageBoxes, std::string appPath, std::string appName);

    // Traces one step of a procedure; kind is "Start", "End" or "Error". With `enabled` false
    // nothing is written, yet the name counts as the last one. True when the entry was written or
    // not wanted; after a failure, shown in a message box, false, and the last name stays. Never
    // raises.
    bool WriteRunTrace(std::string_view procedure, std::string_view kind, bool enabled,
                       std::string_view text = {});

    // What `times` calls in a row would leave, the last of them of this kind, with one look at the
    // disk: for a loop over many small steps of one procedure. Does nothing for 0 times.
    bool WriteRunTraceTimes(std::string_view procedure, std::string_view kind, std::int32_t times);

    // Writes record 1 of a new log file, or of one whose record 1 is unusable; other records stay.
    // False after a failure, shown in message boxes. Never raises.
    bool CreateRunLogFile(std::string_view fullName, std::int32_t capacity);

    const std::string& logFileName() const noexcept { return m_fullName; }

private:
    struct Header {
        std::int32_t capacity = 0;
        std::int32_t next = 0;
    };

    bool write(std::string_view procedure, std::string_view kind, std::string_view text,
               std::int32_t times);
    bool readHeader(platform::File& file, Header& header) const;
    void writeEntry(platform::File& file, std::int32_t record, std::string_view procedure,
                    std::string_view kind, std::string_view text);
    void showFailure(std::string_view message);

    platform::FileSystem& m_fileSystem;
    platform::Clock& m_clock;
    platform::MessageBoxes& m_messageBoxes;
    std::string m_appName;
    std::string m_fullName;
    std::string m_lastName;
    std::int32_t m_repeatCount = 0;
};

} // namespace vardelin::trace
