#include "ctl/next_run.h"

#include "base/text.h"
#include "state/name_tables.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace vardelin::ctl {
namespace {

using base::Date;
using base::DateTime;

constexpr std::string_view kSchedules = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Vdschld";
// The calendar repeats after this many years.
constexpr std::int64_t kLongestSearchDays = 146'097;

bool isRunDay(const Schedule& schedule, std::int64_t day)
{
    const std::int64_t first = base::daysSinceEpoch(schedule.start.date);
    const Date date = base::dateFromDays(day);
    const auto dayOfWeek = static_cast<std::size_t>(base::weekday(date));
    const auto dayOfMonth = static_cast<std::size_t>(date.day);
    switch (schedule.pattern) {
    case Pattern::Daily:
        return (day - first) % schedule.every == 0;
    case Pattern::Weekly: {
        const std::int64_t firstSunday = first - base::weekday(schedule.start.date);
        return schedule.days[dayOfWeek] && (day - firstSunday) / 7 % schedule.every == 0;
    }
    case Pattern::Monthly: {
        const int months =
            (date.year - schedule.start.date.year) * 12 + date.month - schedule.start.date.month;
        return schedule.dates[dayOfMonth] && months % schedule.every == 0;
    }
    case Pattern::Yearly:
        return schedule.dates[dayOfMonth] &&
               schedule.months[static_cast<std::size_t>(date.month)] &&
               (date.year - schedule.start.date.year) % schedule.every == 0;
    }
    return false;
}

template <std::size_t N>
void setNumbers(std::bitset<N>& set, std::string_view list)
{
    for (const std::string_view piece : base::split(list, ",")) {
        std::uint64_t number = 0;
        if (base::parseUnsigned(base::trim(piece), number) && number < N)
            set.set(number);
    }
}

} // namespace

std::optional<DateTime> nextRun(const Schedule& schedule, const DateTime& now)
{
    if (schedule.every < 1)
        return std::nullopt;
    const std::int64_t from = base::daysSinceEpoch(std::max(schedule.start.date, now.date));
    // An interval of many years needs a search of as many periods of the calendar.
    const std::int64_t until = from + kLongestSearchDays;
    for (std::int64_t day = from; day <= until; ++day) {
        if (!isRunDay(schedule, day))
            continue;
        const DateTime run{base::dateFromDays(day), schedule.at};
        if (run > now && run >= schedule.start)
            return run;
    }
    return std::nullopt;
}

std::vector<ScheduleRecord> readScheduleRecords(platform::Registry& registry)
{
    constexpr auto kRoot = platform::RegistryRoot::LocalMachine;
    std::vector<ScheduleRecord> records;
    for (const std::string& name : registry.subKeys(kRoot, kSchedules)) {
        const std::string key = std::string(kSchedules) + "\\" + name;
        const auto text = [&](std::string_view value) {
            return registry.stringValue(kRoot, key, value).value_or("");
        };
        records.push_back({name, text("StartAtDate"), text("StartAtTime"), text("RecPattern"),
                           text("RecCycle"), text("SetTime"), text("NextRunWDays"),
                           text("NextRunMDates"), text("NextRunYMths"), text("NextRunYDates")});
    }
    return records;
}

std::optional<Schedule> scheduleOf(const ScheduleRecord& record)
{
    const auto date = base::parseDate(record.startAtDate);
    const auto startTime = base::parseTime(record.startAtTime);
    const auto at = base::parseTime(record.setTime);
    const std::string_view pattern = base::trim(record.recPattern);
    std::uint64_t every = 0;
    if (!date || !startTime || !at || pattern.size() != 1 || pattern[0] < '1' || pattern[0] > '4' ||
        !base::parseUnsigned(base::trim(record.recCycle), every) || every < 1 || every > 99'999)
        return std::nullopt;
    Schedule schedule;
    schedule.pattern = static_cast<Pattern>(pattern[0] - '0');
    schedule.start = {*date, *startTime};
    schedule.at = *at;
    schedule.every = static_cast<int>(every);
    for (std::size_t i = 0; i < record.weekDays.size() && i < schedule.days.size(); ++i)
        schedule.days[i] = record.weekDays[i] == 'S';
    setNumbers(schedule.dates,
               schedule.pattern == Pattern::Yearly ? record.yearDates : record.monthDates);
    for (const std::string_view piece : base::split(record.yearMonths, ",")) {
        for (std::size_t i = 0; i < state::kMonthNames.size(); ++i) {
            if (base::equalsIgnoringCase(base::trim(piece), state::kMonthNames.at(i)))
                schedule.months.set(i + 1);
        }
    }
    return schedule;
}

} // namespace vardelin::ctl
