#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Dates and times as the person's own calendar and clock show them, without a time zone; the clock
// port converts between these and UTC. All texts are fixed forms, independent of the locale.
namespace vardelin::base {

struct Date {
    int year = 1899;
    int month = 12; // 1 to 12
    int day = 30;   // 1 to 31

    friend auto operator<=>(const Date&, const Date&) = default;
};

struct TimeOfDay {
    int hour = 0;   // 0 to 23
    int minute = 0; // 0 to 59
    int second = 0; // 0 to 59

    friend auto operator<=>(const TimeOfDay&, const TimeOfDay&) = default;
};

// The default value is the zero date of the date type, 30 December 1899, midnight.
struct DateTime {
    Date date;
    TimeOfDay time;

    friend auto operator<=>(const DateTime&, const DateTime&) = default;
};

bool isValid(const Date& date);
bool isValid(const TimeOfDay& time);
// Days since 1 January 1970, negative before it; and back.
std::int64_t daysSinceEpoch(const Date& date);
Date dateFromDays(std::int64_t days);
// 0 is Sunday, 6 is Saturday.
int weekday(const Date& date);
// Within the day: past midnight it starts again at 0:00:00.
TimeOfDay addMinutes(const TimeOfDay& time, int minutes);

std::string dayMonthYear(const Date& date);     // 3/7/2003: D/M/YYYY, no leading zeros
std::string monthDayYear(const Date& date);     // 07/03/2003: MM/DD/YYYY
std::string dayMonthYear2(const Date& date);    // 03/07/2003: DD/MM/YYYY
std::string traceDate(const Date& date);        // 07-03-2003: MM-DD-YYYY
std::string isoDate(const Date& date);          // 2003-07-03
std::string clockTime(const TimeOfDay& time);   // 09:05:03, 24 hours
std::string timeText(const TimeOfDay& time);    // 9:05:03 AM, the default text form of a time
std::string timeText2(const TimeOfDay& time);   // 09:05:03 AM, the form "HH:MM:SS AMPM"
std::string isoDateTime(const DateTime& value); // 2003-07-03 09:05:03
std::string generalDate(const DateTime& value); // 7/3/2003 9:05:03 AM: M/D/YYYY and timeText

// A date written with slashes or dashes, year last and four digits. The first number is the day and
// the second the month, unless the second is above 12: then it is the day. No date gives nullopt.
std::optional<Date> parseDate(std::string_view text);
// H:MM or H:MM:SS, with AM or PM in any case or neither; blanks around are skipped.
std::optional<TimeOfDay> parseTime(std::string_view text);

} // namespace vardelin::base
