#include "base/dates.h"
#include "ctl/commands.h"
#include "ctl/next_run.h"
#include "ctl/text_forms.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

constexpr std::array<std::string_view, 5> kPatterns{"?", "daily", "weekly", "monthly", "yearly"};

std::string_view patternName(const ScheduleRecord& record)
{
    const bool known =
        record.recPattern.size() == 1 && record.recPattern[0] >= '1' && record.recPattern[0] <= '4';
    return known ? kPatterns.at(static_cast<std::size_t>(record.recPattern[0] - '0'))
                 : kPatterns.front();
}

std::string dayText(const ScheduleRecord& record)
{
    if (!record.yearMonths.empty() || !record.yearDates.empty())
        return record.yearMonths + " / " + record.yearDates;
    return record.weekDays.empty() ? record.monthDates : record.weekDays;
}

void list(const Session& session, const std::vector<ScheduleRecord>& records)
{
    Table table({Align::Left, Align::Left, Align::Right, Align::Right, Align::Left, Align::Left});
    table.add({"Profile", "Pattern", "Every", "At", "From", "On"});
    for (const ScheduleRecord& record : records) {
        table.add({visibleText(record.name), std::string(patternName(record)),
                   visibleText(record.recCycle), visibleText(record.setTime),
                   visibleText(record.startAtDate + " " + record.startAtTime),
                   visibleText(dayText(record))});
        Json object{{"type", "schedule"}};
        putText(object, "profile", record.name);
        object["pattern"] = patternName(record);
        putText(object, "every", record.recCycle);
        putText(object, "at", record.setTime);
        putText(object, "startDate", record.startAtDate);
        putText(object, "startTime", record.startAtTime);
        putText(object, "days", record.weekDays);
        putText(object, "dates", record.monthDates);
        putText(object, "months", record.yearMonths);
        putText(object, "yearDates", record.yearDates);
        session.output.object(object);
    }
    session.output.result(table.text());
}

int next(const Session& session, const std::vector<ScheduleRecord>& records)
{
    int code = kExitDone;
    Table table({Align::Left, Align::Left});
    table.add({"Profile", "Next run"});
    for (const ScheduleRecord& record : records) {
        const auto schedule = scheduleOf(record);
        Json object{{"type", "nextRun"}};
        putText(object, "profile", record.name);
        object["next"] = nullptr;
        std::string text = "never";
        if (!schedule) {
            session.output.warning(
                fmt::format("the schedule of {} cannot be understood", record.name));
            code = kExitGaps;
            text = "?";
        } else if (const auto run = nextRun(*schedule, session.machine.clock.now())) {
            text = base::isoDateTime(*run);
            object["next"] = text;
        }
        table.add({visibleText(record.name), text});
        session.output.object(object);
    }
    session.output.result(table.text());
    return code;
}

} // namespace

int runSchedule(Session& session, const ScheduleCommand& command)
{
    session.requireApplicationFolder();
    const auto records = readScheduleRecords(session.machine.registry);
    if (records.empty()) {
        session.output.note("No profile has a schedule");
        return kExitNothing;
    }
    if (command.next)
        return next(session, records);
    list(session, records);
    return kExitDone;
}

} // namespace vardelin::ctl
