#pragma once

#include <array>
#include <string_view>

// The texts of a restore, to the letter: double blanks and all.
namespace vardelin::runs::restore_texts {

inline constexpr std::string_view kOriginal = "Original Location";
inline constexpr std::string_view kRegistrySettings = "Registry Settings";

inline constexpr std::string_view kOverwriteRegistry =
    "Current system's registry setting will be overwritten with this Backup.Do you want to "
    "continue?";
inline constexpr std::string_view kBrowseTitle = "Select Alternate Destination Location";
inline constexpr std::string_view kLocationMissing =
    "Restore location must be given to restore the source files";
inline constexpr std::string_view kInvalidPath = "Enter a valid path to restore";
inline constexpr std::string_view kNoDrive = "Enter the Existing Drive name to restore";
inline constexpr std::string_view kNoFolder = "Given Restore path is not existing";
inline constexpr std::string_view kCreateFolder = "Do you want to create the folder?";
inline constexpr std::string_view kNotAccessible = "Enter a Accessible path to restore";

// ---- closing messages
inline constexpr std::string_view kDateNotMatched =
    "File(s) have not been restored successfully because given 'Restore by date' does not match "
    "with any of the files.";
inline constexpr std::string_view kSettingsRestored = "Settings have been successfully restored";

// One row for files alone, one for files and settings.
struct Outcomes {
    std::string_view restored;
    std::string_view mismatchAndLoss;
    std::string_view mismatch;
    std::string_view loss;
};
inline constexpr Outcomes kFiles{
    "File(s) have been successfully restored",
    "Some\\All File(s) have not been successfully restored because of password mismatch and loss "
    "of "
    "Backup files",
    "Some\\All File(s) have not been successfully restored because of password mismatch",
    "Some\\All File(s) have not been successfully restored because of  loss of Backup files"};
inline constexpr Outcomes kFilesAndSettings{
    "File(s) and Settings have been successfully restored",
    "Some\\All File(s) and Settings have not been successfully restored because of password "
    "mismatch "
    "and loss of Backup files",
    "Some\\All File(s) and Settings have not been successfully restored because of password "
    "mismatch",
    "Some\\All File(s) and Settings have not been successfully restored because of loss of Backup "
    "files"};

// ---- for the error dialog
inline constexpr std::string_view kCallFailed =
    "Error occured when trying to restore the files\\folders";
inline constexpr std::string_view kBrowseFailed =
    "Error Occurred while Browsing the  Folder for Destination Location";
inline constexpr std::string_view kModelNotOpened =
    "Error while Opening the Profile to be restored";
inline constexpr std::string_view kModelPastEnd =
    "Error Occurred when the  file associated for the VD storage is read after it reaches end of "
    "file";
inline constexpr std::string_view kRestoreFailed = "Error occurred In the restoring process";

} // namespace vardelin::runs::restore_texts
