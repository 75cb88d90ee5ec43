#pragma once

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/memory/memory_clock.h"
#include "platform/memory/memory_file_system.h"
#include "platform/memory/scripted_file_system.h"
#include "platform/memory/scripted_message_boxes.h"
#include "trace/error_tail.h"
#include "trace/run_trace.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

// A run trace on a machine in memory, for the tests of whatever traces.
namespace vardelin::test {

using ShownBox = platform::ScriptedMessageBoxes::Shown;

// Keeps each form as it was shown and gives the next of `answers`, "&Continue" behind them.
class ScriptedErrorDialog final : public vardelin::trace::ErrorDialog {
public:
    std::vector<vardelin::trace::frmErrLog> shown;
    std::deque<vardelin::trace::ErrorAnswer> answers;
    int raises = 0; // an error number: the dialog fails instead of showing

    void showModal(vardelin::trace::frmErrLog& form) override
    {
        if (raises != 0)
            throw base::RuntimeError(raises);
        shown.push_back(form);
        auto answer = vardelin::trace::ErrorAnswer::Continue;
        if (!answers.empty()) {
            answer = answers.front();
            answers.pop_front();
        }
        if (answer == vardelin::trace::ErrorAnswer::Exit)
            cmdOk_Click(form);
        else
            cmdCancel_Click(form);
    }
};

// Procedure, kind and repeat count of each entry of a run log, in the order of its records.
inline std::vector<std::string> traceEntries(std::string_view log)
{
    using vardelin::trace::kLogRecordBytes;
    std::vector<std::string> entries;
    for (std::size_t at = kLogRecordBytes; at + kLogRecordBytes <= log.size();
         at += kLogRecordBytes) {
        const auto field = [&](std::size_t from, std::size_t width) {
            return std::string(base::trimEnd(log.substr(at + from, width)));
        };
        entries.push_back(field(8, 40) + " " + field(48, 10) + " " + field(96, 10));
    }
    return entries;
}

// The application folder is C:\App, the program Vardelin.
struct TraceRig {
    platform::MemoryFileSystem disk;
    platform::CallScript traceScript; // of the calls that the trace makes
    platform::ScriptedFileSystem traceFiles{disk, traceScript};
    platform::MemoryClock clock;
    platform::ScriptedMessageBoxes messageBoxes;
    vardelin::trace::RunTrace trace{traceFiles, clock, messageBoxes, "C:\\App", "Vardelin"};
    vardelin::trace::ErrorRecord errors;
    ScriptedErrorDialog dialog;
    vardelin::trace::TraceContext context{trace, errors, dialog};

    TraceRig() { disk.createFolder("C:\\App"); }

    // Behind the script: what a test looks at or puts there is no call.
    platform::FileSystem& fileSystem() { return disk; }
    void putFile(std::string_view path, std::string_view bytes)
    {
        const auto file = disk.open(path, platform::OpenMode::CreateOrTruncate);
        file->write(platform::asBytes(bytes));
        file->close();
    }
    std::vector<std::string> entries()
    {
        return disk.fileExists(trace.logFileName())
                   ? traceEntries(disk.readAll(trace.logFileName()))
                   : std::vector<std::string>{};
    }
    const std::vector<ShownBox>& boxes() const { return messageBoxes.shown; }
    void clearBoxes() { messageBoxes.shown.clear(); }
    void setLocalTime(const base::DateTime& local) { clock.setLocal(local); }
    void failTraceCall(int number)
    {
        traceScript.reset();
        traceScript.failCall(static_cast<std::size_t>(number), base::error_number::kDeviceIo);
    }
    void stopFailing() { traceScript.reset(); }
};

} // namespace vardelin::test
