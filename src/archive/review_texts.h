#pragma once

#include <string_view>

// The texts of the archive's review and of deletion from it, to the letter: misspellings, double
// blanks and capitals are part of them.
namespace vardelin::archive::review_texts {

inline constexpr std::string_view kTitle = "Vardelin"; // of every message box
inline constexpr std::string_view kModule = "frmVDStorage";

// ---- rows
inline constexpr std::string_view kOtherDataGroup = "Other Data & Settings";
inline constexpr std::string_view kVersion = "Version ";
inline constexpr std::string_view kModified = "True"; // of every file: a constant, and meant
inline constexpr std::string_view kOriginal = "_Org"; // instead of a full copy's tag
inline constexpr std::string_view kFolderColumn = "Folders And Files";
inline constexpr std::string_view kVersionColumn = "Version";
inline constexpr std::string_view kModifiedColumn = "Modified";
inline constexpr std::string_view kSizeColumn = "Size";
inline constexpr std::string_view kCreatedColumn = "Created On";

// ---- the pop-up menu
inline constexpr std::string_view kRestoreMenu = "&Restore";
inline constexpr std::string_view kByDateMenu = "ByDate";
inline constexpr std::string_view kByFileMenu = "By File\\Folder";
inline constexpr std::string_view kDeleteMenu = "&Delete";

// ---- messages; the first two differ in their capitals
inline constexpr std::string_view kNoArchive =
    "Backup does not exist for this Profile. Execute BackUp for This Profile to view BackUpStorage";
inline constexpr std::string_view kEmptyArchive =
    "Backup does not exist for this profile. Execute Backup for this profile to view BackupStorage";
inline constexpr std::string_view kSelectSomething =
    "Select any Files\\Folders [or] Settings to restore";
inline constexpr std::string_view kDeleteQuestion = "Do you want to delete the selected item?";
inline constexpr std::string_view kArchiveInUse =
    "This archive is in use by a backup or a restore that runs now. Nothing was deleted; try again "
    "when it has ended.";

// ---- help, in Label33 to Label37
inline constexpr std::string_view kHelp33 =
    "Restores the compressed data where you can review the backup files and select files to be "
    "restored. ";
inline constexpr std::string_view kHelp34 =
    "Displays a list of compressed files, which have been backed up for the profile till date. ";
inline constexpr std::string_view kHelp35 =
    "After selecting the desired drive,folders/files which are to be restored.";
inline constexpr std::string_view kHelp36 =
    "Restore can be done by right-clicking on the selected file[s] which displays a popup window "
    "to select the original location or to alternate location.";
inline constexpr std::string_view kHelp37 =
    "Delete option is used to delete the selected files/folders from the backup data .";

// ---- sentences of the error dialog; the numbers are those of trace/messages.h
inline constexpr int kLoadNoFile = 40050;
inline constexpr int kLoadFileOpen = 40051;
inline constexpr int kLoadPastEnd = 40052;
inline constexpr int kLoadFailed = 40053;
inline constexpr int kOpeningFailed = 40054;
inline constexpr int kOpeningPastEnd = 40055;
inline constexpr std::string_view kOpeningNoFile = "Error Occurred while Opening the File";
inline constexpr int kAddingFailed = 40056;
inline constexpr int kRemovingFailed = 40057;
inline constexpr int kDeletionFailed = 40060;
inline constexpr int kSizeFailed = 40064;

// ---- the same of the two filters; the file's name stands behind the first four and before those
// of the steps
inline constexpr std::string_view kFilterFolderNoFile =
    "The File entry Does Not Exist while trying to delete the Folder";
inline constexpr std::string_view kFilterFolderOpen =
    "The File is already Open while trying to delete  the Folder";
inline constexpr std::string_view kFilterFilesNoFile =
    "The file Does Not Exist while trying to delete the file";
inline constexpr std::string_view kFilterFilesOpen =
    "The File is already Open while trying to delete  the File";
inline constexpr int kFilterCopyFailed = 40058;
inline constexpr int kFilterKillFailed = 40059;
inline constexpr int kFilterFolderFailed = 40061;
inline constexpr int kFilterPastEnd = 40062;
inline constexpr int kFilterFilesFailed = 40063;

} // namespace vardelin::archive::review_texts
