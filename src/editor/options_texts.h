#pragma once

#include <string_view>

// The texts of the options page and of the retention frame, to the letter: misspellings and double
// blanks are part of them.
namespace vardelin::editor::options_texts {

// ---- the destination
inline constexpr std::string_view kNewLocation =
    "Changing Backup location leads this profile to refer the new location for Backup and Restore "
    "process";
inline constexpr std::string_view kChangeLocation = "Do you want to change the Backup location?";
inline constexpr std::string_view kCopyBackup =
    "Do you want to copy the existing backup to the new location?";
inline constexpr std::string_view kBrowseTitle = "Select Destination Path";

// ---- the password
inline constexpr std::string_view kGiveOldPassword =
    "To provide the backup security, You need to give the old password. Do you want to continue?";

// ---- sentences of the error dialog
inline constexpr std::string_view kIdleFailed = "Idle Time processing Error";
inline constexpr std::string_view kQueueFailed = "Error Occured in Queuing process";
inline constexpr std::string_view kSizeFailed =
    "Error occured while processing the size of backupfile";
inline constexpr std::string_view kWarnFailed = "Error occured at  process";
inline constexpr std::string_view kPasswordFailed = "Password process error";
inline constexpr int kBrowseFailed = 40031; // numbered texts of trace/messages.h
inline constexpr int kDrivesFailed = 40048;

// ---- armed defaults
inline constexpr std::string_view kIdleMinutes = "15";
inline constexpr std::string_view kBackupSize = "50";
inline constexpr std::string_view kQueueFiles = "100";

// ---- entries of CmbDestDrives, before the drive and behind it
inline constexpr std::string_view kRemovableDrive = "Removable Drive[";
inline constexpr std::string_view kLocalDrive = "Local Drives[";
inline constexpr std::string_view kDriveEnd = "]";

} // namespace vardelin::editor::options_texts
