#include "ctl/next_run.h"

#include <gtest/gtest.h>

#include <string>

namespace vardelin::test {
namespace {

using namespace ctl;

base::DateTime at(const char* date, const char* time)
{
    return {*base::parseDate(date), *base::parseTime(time)};
}

struct Case {
    const char* what;
    ScheduleRecord record; // name, start date and time, pattern, cycle, time, then the lists
    base::DateTime now;
    const char* next; // empty: never
};

TEST(NextRun, FollowsItsPatternFromItsStart)
{
    const Case cases[] = {
        {"daily, later today",
         {"", "3/7/2026", "12:00:00 AM", "1", "1", "6:30:00 PM", "", "", "", ""},
         at("5/7/2026", "10:00"),
         "2026-07-05 18:30:00"},
        {"daily, today's time is over",
         {"", "3/7/2026", "12:00:00 AM", "1", "1", "6:30:00 PM", "", "", "", ""},
         at("5/7/2026", "18:30"),
         "2026-07-06 18:30:00"},
        {"every third day counts from the start",
         {"", "3/7/2026", "12:00:00 AM", "1", "3", "6:30:00 PM", "", "", "", ""},
         at("4/7/2026", "10:00"),
         "2026-07-06 18:30:00"},
        {"not before the start",
         {"", "24/12/2026", "12:00:00 AM", "1", "1", "6:30:00 PM", "", "", "", ""},
         at("5/7/2026", "10:00"),
         "2026-12-24 18:30:00"},
        {"the start's own time is in force",
         {"", "5/7/2026", "7:00:00 PM", "1", "1", "6:30:00 PM", "", "", "", ""},
         at("5/7/2026", "10:00"),
         "2026-07-06 18:30:00"},
        // 5 July 2026 is a Sunday.
        {"weekly on Monday and Thursday",
         {"", "5/7/2026", "12:00:00 AM", "2", "1", "9:00:00 AM", "xSxxSxx", "", "", ""},
         at("6/7/2026", "9:00"),
         "2026-07-09 09:00:00"},
        {"every second week counts from the Sunday of the start's week",
         {"", "8/7/2026", "12:00:00 AM", "2", "2", "9:00:00 AM", "xSxxxxx", "", "", ""},
         at("8/7/2026", "9:00"),
         "2026-07-20 09:00:00"},
        {"monthly",
         {"", "1/1/2026", "12:00:00 AM", "3", "1", "9:00:00 AM", "", "1,15", "", ""},
         at("15/7/2026", "9:00"),
         "2026-08-01 09:00:00"},
        {"a month without the date is passed over",
         {"", "1/1/2026", "12:00:00 AM", "3", "1", "9:00:00 AM", "", "31", "", ""},
         at("1/2/2026", "9:00"),
         "2026-03-31 09:00:00"},
        {"every third month, over the year's end",
         {"", "1/11/2026", "12:00:00 AM", "3", "3", "9:00:00 AM", "", "1", "", ""},
         at("2/11/2026", "9:00"),
         "2027-02-01 09:00:00"},
        {"yearly",
         {"", "1/1/2026", "12:00:00 AM", "4", "1", "9:00:00 AM", "", "", "January,July", "1,15"},
         at("1/7/2026", "9:00"),
         "2026-07-15 09:00:00"},
        {"every second year",
         {"", "1/1/2026", "12:00:00 AM", "4", "2", "9:00:00 AM", "", "", "July", "1"},
         at("2/7/2026", "9:00"),
         "2028-07-01 09:00:00"},
        {"29 February",
         {"", "1/1/2026", "12:00:00 AM", "4", "1", "9:00:00 AM", "", "", "February", "29"},
         at("1/1/2026", "9:00"),
         "2028-02-29 09:00:00"},
        {"30 February",
         {"", "1/1/2026", "12:00:00 AM", "4", "1", "9:00:00 AM", "", "", "February", "30"},
         at("1/1/2026", "9:00"),
         ""},
        {"weekly without days",
         {"", "1/1/2026", "12:00:00 AM", "2", "1", "9:00:00 AM", "xxxxxxx", "", "", ""},
         at("1/1/2026", "9:00"),
         ""},
    };
    for (const Case& c : cases) {
        const auto schedule = scheduleOf(c.record);
        ASSERT_TRUE(schedule.has_value()) << c.what;
        const auto next = nextRun(*schedule, c.now);
        EXPECT_EQ(next ? base::isoDateTime(*next) : "", c.next) << c.what;
    }
}

TEST(NextRun, TakesNoRecordThatMakesNoSense)
{
    const ScheduleRecord good{"", "3/7/2026", "12:00:00 AM", "1", "1", "6:30:00 PM", "", "",
                              "", ""};
    ASSERT_TRUE(scheduleOf(good).has_value());
    for (auto field :
         {&ScheduleRecord::startAtDate, &ScheduleRecord::startAtTime, &ScheduleRecord::recPattern,
          &ScheduleRecord::recCycle, &ScheduleRecord::setTime}) {
        for (const char* value : {"", "x", "0", "99/99/99"}) {
            ScheduleRecord bad = good;
            bad.*field = value;
            EXPECT_FALSE(scheduleOf(bad).has_value()) << value;
        }
    }
}

} // namespace
} // namespace vardelin::test
