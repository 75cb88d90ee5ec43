#pragma once

#include <array>
#include <string_view>

// The texts of frmLog. People search for them, so their misspellings stay.
namespace vardelin::logs::texts {

inline constexpr std::string_view kTitle = "Vardelin";

// ---- headings
inline constexpr std::array<std::string_view, 5> kBackupColumns{
    "Profile Name", "BackUp Type", "LastRun Date", "Number Of Files", "Skipped Files"};
inline constexpr std::array<std::string_view, 4> kRestoreColumns{
    "Profile Name", "Destination", "Last Restored Date", "No Of Files"};
inline constexpr std::array<std::string_view, 4> kQueueColumns{"File Name", "File Path",
                                                               "File Modified Date", "File Size"};

// ---- messages
inline constexpr std::string_view kNoBackupFolder =
    "Backup Log details are not available to be displayed";
inline constexpr std::string_view kNoBackupFiles =
    "Backup Log Files are not available to be displayed";
inline constexpr std::string_view kNoRestoreFolder =
    "Restore Log details are not available to be displayed";
inline constexpr std::string_view kNoRestoreFiles =
    "Restore Log details are not availabe to be displayed";
inline constexpr std::string_view kNoQueueFile =
    "The Queue file is not existing in the default path";
inline constexpr std::string_view kNoQueueFiles = "Queue files are not available to be displayed";

inline constexpr std::string_view kBackupPanel = "Viewing BackUp Log data... ";
inline constexpr std::string_view kRestorePanel = "Viewing Restore Log data... ";
inline constexpr std::string_view kQueuePanel = "Viewing the details of the Queue";

inline constexpr std::string_view kBackupHelp =
    "Backup Log displays the list of Profiles, and the type of backup whether Full/Incremental and "
    "corresponding backup date, count of files Skipped files during backup process.";
inline constexpr std::string_view kRestoreHelp =
    "Restore Log displays the list of profile names,restored path, Last restored date and number "
    "of "
    "files restored.";
inline constexpr std::string_view kQueueHelp =
    "Queue log displays the file name,file path, file modified date and the size of files based on "
    "the entries made in Queue.";
inline constexpr std::string_view kGeneralHelp =
    "Log displays the status of the backup and restore operations you performed whereas Queue Log "
    "displays the recently modified files.";

// For the error dialog.
inline constexpr std::string_view kLogFailed = "Error in Creating Log File";
inline constexpr std::string_view kListFailed = "Error in Loading the List View";
inline constexpr std::string_view kQueueFailed = "Error in Loading the QFiles to View";

} // namespace vardelin::logs::texts
