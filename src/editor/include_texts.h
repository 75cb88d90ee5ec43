#pragma once

#include <string_view>

// The texts of the extension lists and of frmOtherdata, to the letter: they are searched for as
// they are, so nothing in them is mended.
namespace vardelin::editor::include_texts {

// ---- messages
inline constexpr std::string_view kSelectSources = "Select any Files/Folders to Backup";
inline constexpr std::string_view kAllFilesRefused =
    "*.* option is not applicable for Include\\Exclude Files by names";
inline constexpr std::string_view kStarRefused =
    "* option is not applicable for Include\\Exclude Files by names";
inline constexpr std::string_view kSameEntries =
    "The entries should not be same in include/exclude option";

// ---- sentences of the error dialog
inline constexpr std::string_view kExclListFailed =
    "Error occured in loading the selected file extensions in the open profile mode";
inline constexpr std::string_view kIncludeIconsFailed =
    "Error occured in loading the  file extensions icons";
inline constexpr std::string_view kExcludeIconsFailed =
    "Error occured in loading the  file extensions icon";
inline constexpr int kIncludeFailed = 40036; // numbered texts of trace/messages.h
inline constexpr int kExcludeFailed = 40034;
inline constexpr int kOtherDataFailed = 40037;

// ---- captions on frmOtherdata
inline constexpr std::string_view kExcludeFrame = "Exclude File(s) by File extensions";
inline constexpr std::string_view kNamesFrame = "Include \\ Exclude File(s) by File Names";
inline constexpr std::string_view kInclNamesLabel =
    "Give File Names to be included like, Tech*.*,Inf*.*  :";
inline constexpr std::string_view kExclNamesLabel =
    "Give File Names to be excluded like, Tech*.*,Inf*.* :";
inline constexpr std::string_view kExtensionColumn = "File Extensions";
inline constexpr std::string_view kTypeColumn = "Type";

} // namespace vardelin::editor::include_texts
