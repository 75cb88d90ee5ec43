#pragma once

#include "base/dates.h"
#include "platform/registry.h"

#include <bitset>
#include <optional>
#include <string>
#include <vector>

// When a schedule runs next, as the monitors read it.
namespace vardelin::ctl {

enum class Pattern { Daily = 1, Weekly = 2, Monthly = 3, Yearly = 4 };

struct Schedule {
    Pattern pattern = Pattern::Daily;
    base::DateTime start; // nothing runs before it
    base::TimeOfDay at;
    int every = 1;          // days, weeks, months or years, 1 or more
    std::bitset<7> days;    // weekly, Sunday at 0
    std::bitset<32> dates;  // monthly and yearly, 1 to 31
    std::bitset<13> months; // yearly, 1 to 12
};

// The first run behind `now` and not before the start; none where none comes within the next 400
// years (the thirtieth of February).
//
// Intervals count from the start: days from its day, weeks from the Sunday of its week, months and
// years from its own. A date that a month does not have is passed over.
std::optional<base::DateTime> nextRun(const Schedule& schedule, const base::DateTime& now);

// A schedule's record in the registry, values as they stand.
struct ScheduleRecord {
    std::string name; // of the profile, without its extension
    std::string startAtDate;
    std::string startAtTime;
    std::string recPattern;
    std::string recCycle;
    std::string setTime;
    std::string weekDays;
    std::string monthDates;
    std::string yearMonths;
    std::string yearDates;
};

std::vector<ScheduleRecord> readScheduleRecords(platform::Registry& registry);

// None where a value makes no sense.
std::optional<Schedule> scheduleOf(const ScheduleRecord& record);

} // namespace vardelin::ctl
