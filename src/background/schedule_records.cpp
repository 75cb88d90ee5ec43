#include "background/schedule_records.h"

#include "base/dates.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "trace/messages.h"

#include <fmt/format.h>

#include <cstddef>
#include <vector>

namespace vardelin::background {
namespace {

using platform::RegistryRoot;

// The capitals of the text; the registry takes either.
constexpr std::string_view kTextKey =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\MICROSOFT\\WINDOWS\\CurrentVersion\\";
constexpr std::string_view kKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\";

constexpr int kImportMessage = 40094;
constexpr int kDeleteMessage = 40095;
constexpr int kStartMinutes = 1;
constexpr int kDailyMinutes = 5;

std::string valueLine(std::string_view name, std::string_view text)
{
    return fmt::format("\"{}\"=\"{}\"\r\n", name, text);
}

std::string header()
{
    return "REGEDIT4\r\n\r\n";
}

std::string scheduleSection(std::string_view base)
{
    return fmt::format("[{}Vdschld\\{}]\r\n", kTextKey, base) + valueLine("ReadyToProcess", "F");
}

} // namespace

RegistryScheduleRecords::RegistryScheduleRecords(const ScheduleContext& context)
    : m_context(context), m_importer(context.machine)
{
}

void RegistryScheduleRecords::WriteSchedReg(std::string_view name)
{
    const std::string_view base = base::beforeFirst(name, ".");
    std::string text = header();
    if (m_context.editor.chkAutoSched.value == 1)
        text += scheduleText(base);
    if (m_context.editor.chkIdle.value == 1)
        text += idleText(base);
    importText(base, text, true);
}

void RegistryScheduleRecords::WriteDefaultSchedReg(std::string_view name)
{
    const std::string_view base = base::beforeFirst(name, ".");
    const base::DateTime now = m_context.machine.clock.now();
    const auto inMinutes = [&now](int minutes) {
        return base::timeText(base::addMinutes(now.time, minutes));
    };
    importText(
        base,
        header() + scheduleSection(base) + valueLine("StartAtDate", base::dayMonthYear(now.date)) +
            valueLine("StartAtTime", inMinutes(kStartMinutes)) + valueLine("RecPattern", "1") +
            valueLine("RecCycle", "1") + valueLine("SetTime", inMinutes(kDailyMinutes)) +
            valueLine("NextRun", "") + "\r\n\r\n",
        false);
}

bool RegistryScheduleRecords::DeleteSchedKey(std::string_view name)
{
    const std::string_view base = base::beforeLast(name, ".");
    const std::string schedules = std::string(kKey) + "Vdschld";
    platform::Registry& registry = m_context.machine.registry;
    std::vector<std::string> keys;
    base::PendingError unreachable;
    unreachable.attempt([&] {
        if (!registry.keyExists(RegistryRoot::LocalMachine, schedules))
            throw base::RuntimeError(base::error_number::kFileNotFound, schedules);
        keys = registry.subKeys(RegistryRoot::LocalMachine, schedules);
    });
    if (unreachable)
        return false;
    for (const std::string& key : keys) {
        if (!base::equalsIgnoringCase(base::beforeFirst(key, std::string_view("\0", 1)), base))
            continue;
        base::PendingError undeleted; // the answer tells of the way to the keys alone
        undeleted.attempt([&] {
            registry.deleteKey(RegistryRoot::LocalMachine, fmt::format("{}\\{}", schedules, key));
        });
    }
    return true;
}

void RegistryScheduleRecords::importText(std::string_view base, const std::string& text,
                                         bool dropOldIdle)
{
    const std::string path = fmt::format("{}\\{}_Sched.reg", m_context.frame.ST_App_Path, base);
    platform::FileSystem& files = m_context.machine.fileSystem;
    int message = kImportMessage;
    base::PendingError failure;
    failure.attempt([&] {
        const trace::TraceScope scope(m_context.trace.trace, "sPrName");
        base::PendingError unwritten;
        unwritten.attempt([&] {
            const auto file = files.open(path, platform::OpenMode::CreateOrTruncate);
            file->write(platform::asBytes(text));
            file->close();
        });
        // Before the import, which may put the profile at the very same time again.
        if (dropOldIdle)
            dropOldIdleEntry(base);
        // What is on the disk now may be an older text or half of this one.
        if (unwritten)
            throw base::RuntimeError(unwritten.number, unwritten.subject);
        bool imported = false;
        m_importer.WriteToReg(path, imported);
        message = kDeleteMessage;
        files.removeFile(path);
    });
    trace::errorTail(m_context.trace,
                     {"WriteToReg", "sPrName", "modPrSaveOpen", trace::message(message)}, failure);
}

void RegistryScheduleRecords::dropOldIdleEntry(std::string_view base)
{
    std::string& oldTime = m_context.frame.sOldIdleTime;
    const state::FrameState& frame = m_context.frame;
    const bool moved = m_context.editor.chkIdle.value == 1 && frame.BL_Edit_Mode &&
                       frame.BL_Edit_Changed && m_context.editor.txtIdleTime.text != oldTime;
    const bool switchedOff = m_context.editor.chkIdle.value == 0;
    if (oldTime.empty() || (!moved && !switchedOff))
        return;
    base::PendingError undeleted; // a value that is not there or may not be deleted is no failure
    undeleted.attempt([&] {
        m_context.machine.registry.deleteValue(RegistryRoot::LocalMachine,
                                               fmt::format("{}VDIdle\\{}\\", kKey, oldTime), base);
    });
    oldTime.clear();
}

std::string RegistryScheduleRecords::scheduleText(std::string_view base) const
{
    struct Line {
        std::string_view name;
        std::string_view key; // in clxnSchedule
    };
    constexpr Line kAlways[] = {{"StartAtDate", "StDate"},
                                {"StartAtTime", "StTime"},
                                {"RecPattern", "RecOpt"},
                                {"RecCycle", "Recur"},
                                {"SetTime", "SetTime"}};
    std::string text = scheduleSection(base);
    // A value that the save did not gather has no line.
    const auto add = [&](const Line& line) {
        if (const std::string* value = m_context.save.clxnSchedule.find(line.key))
            text += valueLine(line.name, *value);
    };
    for (const Line& line : kAlways)
        add(line);
    text += valueLine("NextRun", "");
    const std::string* pattern = m_context.save.clxnSchedule.find("RecOpt");
    if (pattern != nullptr && *pattern == "2")
        add({"NextRunWDays", "NextRunWDays"});
    if (pattern != nullptr && *pattern == "3")
        add({"NextRunMDates", "NextRunMDates"});
    if (pattern != nullptr && *pattern == "4") {
        add({"NextRunYMths", "NextRunYMths"});
        add({"NextRunYDates", "NextRunYDates"});
    }
    return text + "\r\n\r\n";
}

std::string RegistryScheduleRecords::idleText(std::string_view base) const
{
    return fmt::format("[{}VdIdle\\{}]\r\n", kTextKey, m_context.editor.txtIdleTime.text) +
           valueLine(base, "");
}

} // namespace vardelin::background
