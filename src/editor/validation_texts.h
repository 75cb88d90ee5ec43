#pragma once

#include <string_view>

// What is said when a profile cannot be saved as it stands, to the letter: misspellings and blanks
// are part of the texts, and two that look alike are two.
namespace vardelin::editor::validation_texts {

// ---- the password
inline constexpr std::string_view kEnterPassword = "Enter Password";
// Six characters pass, whatever it says.
inline constexpr std::string_view kShortPassword = "Password should be greater than 6 characters ";
inline constexpr std::string_view kSelectHintQuestion = "Select Hint Question for the Password";
inline constexpr std::string_view kEnterHintAnswer = "Enter Hint answer for the Question";

// ---- the destination
inline constexpr std::string_view kNetworkPathRefused =
    "Enter a Accessible path to create Backup location";
inline constexpr std::string_view kLocalPathRefused =
    "Enter a Accessible path create Backup location";
inline constexpr std::string_view kAccessDenied = "Access to create the Folder is denied";
inline constexpr std::string_view kDriveRefused = "Enter the correct Drive name in Backup location";
inline constexpr std::string_view kNotExisting = "Given Backup location is not existing";
inline constexpr std::string_view kCreateFolder = "Do you want to create the folder?";

// ---- names against extensions: behind the extension
inline constexpr std::string_view kInBothOptions = " is given in both include/exclude options";

// ---- numbers
inline constexpr std::string_view kEnterSize = "Enter the Size of Files";
inline constexpr std::string_view kEnterPercentage = "Enter the volume in percentage";
inline constexpr std::string_view kEnterIdleTime = "Enter the time slab  to invoke the Backup";
inline constexpr std::string_view kEnterQueueFiles = "Enter the Maximum Number of Files in a Queue";
inline constexpr std::string_view kNoSizeUnit = "The Storage capacity can't be Empty";

// ---- the schedule
inline constexpr std::string_view kNoDays = "Enter the Recursion values for Days";
inline constexpr std::string_view kZeroDays = "Zero Recursion Values are not allowed for Days";
inline constexpr std::string_view kNoMonths = "Enter the Recursion values for Month";
inline constexpr std::string_view kZeroMonths = "Zero Recursion Values are not allowed for Month";
inline constexpr std::string_view kNoWeeks = "Enter the Recursion values for Weekly";
inline constexpr std::string_view kZeroWeeks = "Zero Recursion Values are not allowed for Weekly ";
inline constexpr std::string_view kNoYears = "Enter the Recursion values for Year";
inline constexpr std::string_view kZeroYears = "Zero Recursion Values are not allowed for Year";
inline constexpr std::string_view kStartTooEarly =
    "The Effective Date should be greater than the current date ";
inline constexpr std::string_view kSelectWeekDays = "Select the Week Days for Weekly Pattern";
inline constexpr std::string_view kSelectMonthDate =
    "Select the Date of the Month for Monthly Pattern";
inline constexpr std::string_view kSelectMonth = "Select the Month for Yearly Pattern";
inline constexpr std::string_view kSelectYearDate =
    "Select the  Date of the Month for Yearly Pattern";
inline constexpr std::string_view kDateNotInMonth =
    "Selected Date is not valid for the selected month";
inline constexpr std::string_view kNoLeapYear =
    "Selected Leap year Date is not valid for the selected month";

// ---- retention
inline constexpr std::string_view kEnterDaysKept =
    "Enter the Maximum Number of Days to be retained as latest versions";
inline constexpr std::string_view kEnterVersionsKept =
    "Enter the Maximum Number of  versions  to be retained as latest one";

// ---- sentences of the error dialog
inline constexpr int kValidationFailed = 40100; // a numbered text of trace/messages.h
inline constexpr std::string_view kCheckFailed = " ";

} // namespace vardelin::editor::validation_texts
