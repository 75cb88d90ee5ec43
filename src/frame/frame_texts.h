#pragma once

#include <string_view>

// What the commands of the main frame say, to the letter: misspellings and double blanks are part
// of the texts.
namespace vardelin::frame::frame_texts {

inline constexpr std::string_view kTitle = "Vardelin"; // of every message box

// ---- questions
inline constexpr std::string_view kSaveQuestion = "Do you want to Save the Profile?";
inline constexpr std::string_view kExitQuestion = "Do you want to really exit the application?";
inline constexpr std::string_view kPrimaryQuestion =
    "Do You want to Set this Profile as Primary Profile?";
inline constexpr std::string_view kCopyQuestionStart = "Do you want to copy the profile ";
inline constexpr std::string_view kCopyQuestionEnd = " to Local system?";
inline constexpr std::string_view kOverwriteQuestion =
    "This profile name already exists in the local system\r\n"
    "Do you want to overwrite the old one?";

// ---- messages
inline constexpr std::string_view kNotApplicable = "The Profile Name .vdp is not applicable one";
inline constexpr std::string_view kNameStart = "The Profile name ";
inline constexpr std::string_view kNameTaken = " already exists. Enter Other name for the Profile";
inline constexpr std::string_view kNameUnusable =
    " holds characters that no name can have. Enter Other name for the Profile";
inline constexpr std::string_view kNameMissing = "Enter the Profile Name";
inline constexpr std::string_view kNoLocalProfile =
    "There is No Profile in the Local System\r\nSelect Profiles from Backup media";
inline constexpr std::string_view kStillReading =
    "A folder is still being read, so the profile is not saved yet. Save it when the folder is "
    "there, or stop the reading with Esc in the tree.";
inline constexpr std::string_view kBackUpAgain =
    "It is advisable to execute the backup to save the latest changed Profile.";
// Lines of a profile's file whose bytes the scrambled form cannot hold.
inline constexpr std::string_view kLossyStart = "The profile is saved, but ";
inline constexpr std::string_view kLossyEnd =
    " of its file cannot be kept exactly. Open the profile again and check it.";
inline constexpr std::string_view kHelpMissingStart = "The help file ";
inline constexpr std::string_view kHelpMissingEnd =
    " is missing. Install Vardelin anew to get it back; your profiles and logs stay as they are.";
inline constexpr std::string_view kNoHelpViewer =
    "No program was found that shows the help. Open this file in a web browser: "; // and its path

// ---- panel 1
inline constexpr std::string_view kNewWindow = "New Profile Window";
inline constexpr std::string_view kScanning =
    "Please Wait... Scanning the System to get .vdp Files";
inline constexpr std::string_view kDisplayingStart = "Displaying '";
inline constexpr std::string_view kDisplayingEnd = "' Profile";
inline constexpr std::string_view kEditing = "Editing Profile...";
inline constexpr std::string_view kSave = "Save Profile..";
inline constexpr std::string_view kSaveAs = "Save As...";
inline constexpr std::string_view kSaving3 = "Saving Profile...";
inline constexpr std::string_view kSaving4 = "Saving Profile....";
inline constexpr std::string_view kSaving5 = "Saving Profile.....";
inline constexpr std::string_view kSaving6 = "Saving Profile......";
inline constexpr std::string_view kSaved = "Profile Saved";
inline constexpr std::string_view kCopyingBackup = "Copying the backup to the new location ...";
inline constexpr std::string_view kExiting = "Exiting the Application";

// ---- panel 3
inline constexpr std::string_view kSavingState = "Saving Profile";
inline constexpr std::string_view kSavingAtClose = "Saving when Closing Profile";
inline constexpr std::string_view kIdleState = " ";

// ---- start-up
inline constexpr std::string_view kAlreadyOpen = "Vardelin Application is already Open";
inline constexpr std::string_view kDisplayingDefault = "Displaying the Default profile"; // panel 1
inline constexpr std::string_view kDisplayingRecentStart = "Displaying ";                // panel 1
inline constexpr std::string_view kDisplayingRecentEnd = " Profile...";

// ---- captions of frmProfile
inline constexpr std::string_view kDefaultCaption = "Default Profile";
inline constexpr std::string_view kNewCaption = "New Profile";
inline constexpr std::string_view kProfileCaption = " Profile"; // behind the name
inline constexpr std::string_view kNamelessCaption = "Profile Manager";

// ---- tool tips of the buttons, which a command gives its own button
inline constexpr std::string_view kNewTip = "New";
inline constexpr std::string_view kOpenTip = "Open";
inline constexpr std::string_view kEditTip = "Edit";
inline constexpr std::string_view kSaveTip = "Save";
inline constexpr std::string_view kSaveAsTip = "Save As";

} // namespace vardelin::frame::frame_texts
