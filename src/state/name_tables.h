#pragma once

#include <array>
#include <string_view>

// Names that stand in lists and in profile files. They are data: never translated, never changed.
namespace vardelin::state {

inline constexpr std::array<std::string_view, 7> kDayNames{
    "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

inline constexpr std::array<std::string_view, 12> kMonthNames{
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};

// The settings groups, in the order of their list.
inline constexpr std::array<std::string_view, 4> kOtherDataNames{
    "Registry Settings", "Desktop Settings", "IE Favorites", "Outlook Settings"};

inline constexpr std::array<std::string_view, 4> kHintQuestions{
    "Father's Middle Name ?", "Favorite Past-time ?", "Favorite Pet's Name?",
    "Favorite Sports Team?"};

inline constexpr std::array<std::string_view, 3> kSizeUnits{"KB", "MB", "GB"};

inline constexpr int kDatesInMonthList = 31;

} // namespace vardelin::state
