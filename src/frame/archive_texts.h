#pragma once

#include <string_view>

// What Backup Now and the review's command say, to the letter.
namespace vardelin::frame::archive_texts {

inline constexpr std::string_view kNotSaved =
    "New Profile (or) Edit Profile hasn't been saved to run Backup";
inline constexpr std::string_view kGoingOn = "Backup is going on...";
inline constexpr std::string_view kCompletedPanel = "Backup is completed";
inline constexpr std::string_view kCompleted = "Backup is completed successfully";
inline constexpr std::string_view kCompletedWithGaps =
    "Backup is completed successfully, But some files are missed during Backup\r\n"
    "This may because of deleting some files\r\n"
    "Check the Backup log to get the missed file names";
inline constexpr std::string_view kNothingToDo = "No files identified to Backup";
inline constexpr std::string_view kBackupTip = "BackupNow";

inline constexpr std::string_view kReviewing = "Reviewing Archive...";
inline constexpr std::string_view kReviewingData = "Reviewing Backup data...";
inline constexpr std::string_view kNotSavedForReview =
    "New Profile (or) Edit Profile hasn't been saved or Backedup to review Archive";
inline constexpr std::string_view kReviewCaption = "Restore";

} // namespace vardelin::frame::archive_texts
