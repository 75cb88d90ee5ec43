#pragma once

#include <array>
#include <string_view>

// The quick help of frmProfile, to the letter. Paragraphs are parted by an empty line.
namespace vardelin::editor::quick_help {

inline constexpr std::string_view kWhatAProfileIs =
    "Profile is a set of selected files/folders and settings\r\n"
    "with which a backup can be taken.Profile is created with\r\n"
    "the extension .vdp.";

// By tab.
inline constexpr std::array<std::string_view, 3> kTabs{
    "Vardelin comes with the Default profile with Daily Schedule and Threshold Queue of 50 files "
    "which backups MyDocuments , IE Favorites, Desktop Settings & Outlook Settings by default. You "
    "can create new profiles by changing these settings.\r\n\r\n"
    "On checking Include File[s] by Extensions will include all files from the system with the "
    "selected extensions for backup.\r\n\r\n"
    "On checking Exclude File[s] by Extensions will provide an option to exclude from the current "
    "selections for backup.\r\n\r\n"
    "Include/Exclude by Names provides an option to type in for filenames which exists in system. "
    "(Ex:abc*.*will include or exclude all the files with this name for backup).",

    "Backup media and location can be selected.\r\n\r\n"
    "Options are provided to compress and encrypt data(compression is supported by "
    "default).\r\n\r\n"
    "Options to enter password ,Hint question and answer to secure the backup data.\r\n\r\n"
    "Startup Options will start backup automatically,\r\n\r\n"
    "1.When the system reaches the specified idle time.\r\n\r\n"
    "2.When the profile data exceeds the specified limit.\r\n\r\n"
    "3.When the number of files in Queue reaches the specified limit.\r\n\r\n"
    " \r\n\r\n"
    "Warns the user when the backup data exceeds the destination disk space",

    "Vardelin supports scheduled backup to perform the backup at the specified date and "
    "time.\r\n\r\n"
    "Patterns for the scheduled backup are daily[by default], weekly,monthly and yearly.\r\n\r\n"
    "Based on the selected pattern,user has to enter/select the mandatory fields.\r\n\r\n"
    "Retention options gives you the facility for automatic deletion of backup files which is "
    "maintained as versions.\r\n\r\n"
    "Original version of files option is supported by default which maintains only one level of "
    "version."};

// The heading of each tab: Label33, Label32, Label31.
inline constexpr std::array<int, 3> kLabels{33, 32, 31};

} // namespace vardelin::editor::quick_help
