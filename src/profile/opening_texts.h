#pragma once

#include <string_view>

// What is said when a profile is opened and just before one is saved, to the letter: double blanks
// and missing ones are part of the texts.
namespace vardelin::profile::opening_texts {

inline constexpr std::string_view kTitle = "Vardelin"; // of every message box

// ---- the last check before a save
inline constexpr std::string_view kNothingSelected = "No Files\\Folders selected to Backup";
inline constexpr std::string_view kDefaultPathStart =
    "Do you want to save the Backup Package in a Default path ";
inline constexpr std::string_view kDefaultPathEnd = "?";
inline constexpr std::string_view kSelectLocation = "Select the Backup  Location in Backup Options";

// ---- the list of profiles
inline constexpr std::string_view kSelectTheProfile = "Select The Profile :";
inline constexpr std::string_view kListing = "Listing the profiles...";
inline constexpr std::string_view kSelecting = "Selecting the Profile";
inline constexpr std::string_view kOnlyOne = "Only one profile can be selected at a time";

// ---- opening
inline constexpr std::string_view kAlreadyOpenedPanel = "Profile is already opened";
inline constexpr std::string_view kAlreadyOpened = "This profile is already opened";
inline constexpr std::string_view kDisplayingStart = "Displaying ";
inline constexpr std::string_view kDisplayingEnd = " Details ...";
inline constexpr std::string_view kSelectOne = "Please Select any one of the Profile";
inline constexpr std::string_view kStashedStart = "The local profile ";
inline constexpr std::string_view kStashedEnd = " could not be put back. It is kept as ";

inline constexpr std::string_view kLeftStash =
    "A local profile that was put aside before is kept as "; // and its path

// ---- choosing a file
inline constexpr std::string_view kChooserTitle = "Selecting Profiles";
inline constexpr std::string_view kChooserFilter = "(*.vdp)|*.vdp|";
inline constexpr std::string_view kExtension = "VDP"; // upper case, without its dot
inline constexpr std::string_view kNotValidStart = "Selected file, ";
inline constexpr std::string_view kNotValidEnd = " is not a valid Vardelin profile";
inline constexpr std::string_view kSelectExisting = "Select an existing Profile";

// ---- numbers of sentences of the error dialog (trace/messages.h)
inline constexpr int kSaveCheckFailed = 40089;
inline constexpr int kListingFailed = 40101;
inline constexpr int kProfileGone = 40081; // behind the profile's path

} // namespace vardelin::profile::opening_texts
