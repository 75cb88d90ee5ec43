#include "base/dates.h"

#include "base/text.h"

#include <array>

#include <fmt/format.h>

namespace vardelin::base {
namespace {

constexpr int kMinutesPerDay = 24 * 60;

int daysInMonth(int year, int month)
{
    constexpr std::array<int, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

int hour12(int hour)
{
    const int h = hour % 12;
    return h == 0 ? 12 : h;
}

const char* half(int hour)
{
    return hour < 12 ? "AM" : "PM";
}

std::optional<int> smallNumber(std::string_view text)
{
    std::uint64_t value = 0;
    if (text.size() > 4 || !parseUnsigned(text, value))
        return std::nullopt;
    return static_cast<int>(value);
}

} // namespace

bool isValid(const Date& date)
{
    return date.year >= 100 && date.year <= 9999 && date.month >= 1 && date.month <= 12 &&
           date.day >= 1 && date.day <= daysInMonth(date.year, date.month);
}

bool isValid(const TimeOfDay& time)
{
    return time.hour >= 0 && time.hour < 24 && time.minute >= 0 && time.minute < 60 &&
           time.second >= 0 && time.second < 60;
}

std::int64_t daysSinceEpoch(const Date& date)
{
    // The civil-from-days arithmetic on years that begin in March, in eras of 400 years.
    const std::int64_t year = date.month <= 2 ? date.year - 1 : date.year;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t month = date.month > 2 ? date.month - 3 : date.month + 9;
    const std::int64_t dayOfYear = (153 * month + 2) / 5 + date.day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

Date dateFromDays(std::int64_t days)
{
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t month = (5 * dayOfYear + 2) / 153;
    Date date;
    date.day = static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1);
    date.month = static_cast<int>(month < 10 ? month + 3 : month - 9);
    date.year = static_cast<int>(yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0));
    return date;
}

int weekday(const Date& date)
{
    // 1 January 1970 was a Thursday.
    const std::int64_t day = (daysSinceEpoch(date) + 4) % 7;
    return static_cast<int>(day < 0 ? day + 7 : day);
}

TimeOfDay addMinutes(const TimeOfDay& time, int minutes)
{
    int total = (time.hour * 60 + time.minute + minutes) % kMinutesPerDay;
    if (total < 0)
        total += kMinutesPerDay;
    return {total / 60, total % 60, time.second};
}

std::string dayMonthYear(const Date& date)
{
    return fmt::format("{}/{}/{}", date.day, date.month, date.year);
}

std::string monthDayYear(const Date& date)
{
    return fmt::format("{:02}/{:02}/{:04}", date.month, date.day, date.year);
}

std::string dayMonthYear2(const Date& date)
{
    return fmt::format("{:02}/{:02}/{:04}", date.day, date.month, date.year);
}

std::string traceDate(const Date& date)
{
    return fmt::format("{:02}-{:02}-{:04}", date.month, date.day, date.year);
}

std::string isoDate(const Date& date)
{
    return fmt::format("{:04}-{:02}-{:02}", date.year, date.month, date.day);
}

std::string clockTime(const TimeOfDay& time)
{
    return fmt::format("{:02}:{:02}:{:02}", time.hour, time.minute, time.second);
}

std::string timeText(const TimeOfDay& time)
{
    return fmt::format("{}:{:02}:{:02} {}", hour12(time.hour), time.minute, time.second,
                       half(time.hour));
}

std::string timeText2(const TimeOfDay& time)
{
    return fmt::format("{:02}:{:02}:{:02} {}", hour12(time.hour), time.minute, time.second,
                       half(time.hour));
}

std::string isoDateTime(const DateTime& value)
{
    return isoDate(value.date) + " " + clockTime(value.time);
}

std::string generalDate(const DateTime& value)
{
    return std::to_string(value.date.month) + '/' + std::to_string(value.date.day) + '/' +
           std::to_string(value.date.year) + ' ' + timeText(value.time);
}

std::optional<Date> parseDate(std::string_view text)
{
    const std::string unified = replaceAll(trim(text), "-", "/");
    const auto pieces = split(unified, "/");
    if (pieces.size() != 3 || pieces[2].size() != 4)
        return std::nullopt;
    const auto first = smallNumber(pieces[0]);
    const auto second = smallNumber(pieces[1]);
    const auto year = smallNumber(pieces[2]);
    if (!first || !second || !year)
        return std::nullopt;
    const Date date = *second > 12 ? Date{*year, *first, *second} : Date{*year, *second, *first};
    return isValid(date) ? std::optional(date) : std::nullopt;
}

std::optional<TimeOfDay> parseTime(std::string_view text)
{
    text = trim(text);
    bool afternoon = false;
    bool halved = false;
    if (endsWithIgnoringCase(text, "AM") || endsWithIgnoringCase(text, "PM")) {
        halved = true;
        afternoon = endsWithIgnoringCase(text, "PM");
        text = trim(text.substr(0, text.size() - 2));
    }
    const auto pieces = split(text, ":");
    if (pieces.size() != 2 && pieces.size() != 3)
        return std::nullopt;
    const auto hour = smallNumber(pieces[0]);
    const auto minute = smallNumber(pieces[1]);
    const auto second = pieces.size() == 3 ? smallNumber(pieces[2]) : std::optional(0);
    if (!hour || !minute || !second)
        return std::nullopt;
    if (halved && (*hour < 1 || *hour > 12))
        return std::nullopt;
    TimeOfDay time{*hour, *minute, *second};
    if (halved)
        time.hour = *hour % 12 + (afternoon ? 12 : 0);
    return isValid(time) ? std::optional(time) : std::nullopt;
}

} // namespace vardelin::base
