#include "base/dates.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace vardelin::base {
namespace {

TEST(DateTexts, HaveTheirFixedForms)
{
    const Date date{2003, 7, 3};
    EXPECT_EQ(dayMonthYear(date), "3/7/2003");
    EXPECT_EQ(monthDayYear(date), "07/03/2003");
    EXPECT_EQ(dayMonthYear2(date), "03/07/2003");
    EXPECT_EQ(traceDate(date), "07-03-2003");
    EXPECT_EQ(isoDate(date), "2003-07-03");
    EXPECT_EQ(isoDateTime({date, {9, 5, 3}}), "2003-07-03 09:05:03");
    EXPECT_EQ(generalDate({date, {9, 5, 3}}), "7/3/2003 9:05:03 AM");
}

TEST(TimeTexts, RunThroughTheHalvesOfTheDay)
{
    const std::vector<std::tuple<TimeOfDay, const char*, const char*, const char*>> rows{
        {{0, 0, 0}, "12:00:00 AM", "12:00:00 AM", "00:00:00"},
        {{9, 5, 3}, "9:05:03 AM", "09:05:03 AM", "09:05:03"},
        {{12, 0, 0}, "12:00:00 PM", "12:00:00 PM", "12:00:00"},
        {{13, 30, 0}, "1:30:00 PM", "01:30:00 PM", "13:30:00"},
        {{23, 59, 59}, "11:59:59 PM", "11:59:59 PM", "23:59:59"},
    };
    for (const auto& [time, text, padded, clock] : rows) {
        EXPECT_EQ(timeText(time), text);
        EXPECT_EQ(timeText2(time), padded);
        EXPECT_EQ(clockTime(time), clock);
        EXPECT_EQ(parseTime(text), time);
        EXPECT_EQ(parseTime(padded), time);
        EXPECT_EQ(parseTime(clock), time);
    }
}

TEST(ParseDate, IsDayFirstUnlessThatMakesNoDate)
{
    const std::vector<std::pair<const char*, std::optional<Date>>> rows{
        {"3/7/2003", Date{2003, 7, 3}},
        {"03/07/2003", Date{2003, 7, 3}},
        {"07/23/2003", Date{2003, 7, 23}}, // a second number above 12 is the day
        {"23/07/2003", Date{2003, 7, 23}},
        {" 3-7-2003 ", Date{2003, 7, 3}},
        {"29/2/2024", Date{2024, 2, 29}},
        {"29/2/2023", std::nullopt},
        {"31/4/2024", std::nullopt},
        {"0/7/2003", std::nullopt},
        {"3/7/03", std::nullopt},
        {"3/7", std::nullopt},
        {"", std::nullopt},
        {"a/b/2003", std::nullopt},
        {"13/13/2003", std::nullopt},
    };
    for (const auto& [text, date] : rows)
        EXPECT_EQ(parseDate(text), date) << text;
}

TEST(ParseTime, RefusesWhatIsNoTime)
{
    for (const char* text : {"", "24:00", "12", "1:60", "0:30 AM", "13:00 PM", "1:2:3:4", "a:b"})
        EXPECT_FALSE(parseTime(text)) << text;
    EXPECT_EQ(parseTime(" 12:05 am "), (TimeOfDay{0, 5, 0}));
}

TEST(Days, CountFromTheEpochAndBack)
{
    EXPECT_EQ(daysSinceEpoch({1970, 1, 1}), 0);
    EXPECT_EQ(daysSinceEpoch({2000, 3, 1}), 11017);
    EXPECT_EQ(daysSinceEpoch({1601, 1, 1}), -134774);
    EXPECT_EQ(daysSinceEpoch(Date{}), -25569);
    for (std::int64_t day = -200'000; day < 200'000; day += 13) {
        const Date date = dateFromDays(day);
        EXPECT_TRUE(isValid(date)) << day;
        EXPECT_EQ(daysSinceEpoch(date), day);
    }
}

TEST(Weekday, BeginsWithSunday)
{
    EXPECT_EQ(weekday({1970, 1, 1}), 4);
    EXPECT_EQ(weekday({2026, 11, 22}), 0);
    EXPECT_EQ(weekday({1969, 12, 31}), 3);
}

TEST(AddMinutes, WrapsAtMidnightWithoutADate)
{
    EXPECT_EQ(addMinutes({23, 59, 30}, 1), (TimeOfDay{0, 0, 30}));
    EXPECT_EQ(addMinutes({23, 57, 0}, 5), (TimeOfDay{0, 2, 0}));
    EXPECT_EQ(addMinutes({0, 0, 0}, -1), (TimeOfDay{23, 59, 0}));
}

} // namespace
} // namespace vardelin::base
