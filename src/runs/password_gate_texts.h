#pragma once

#include <string_view>

// The texts of the password gate, to the letter.
namespace vardelin::runs::gate_texts {

inline constexpr std::string_view kNoBackup = "Backup does not exist for this profile";
inline constexpr std::string_view kInvalidPassword = "Invalid Password";
inline constexpr std::string_view kInvalidAnswer = "Invalid Hint Answer";
inline constexpr std::string_view kCannotRetrieve = " Sorry Cannot retrieve the Backup ";
inline constexpr std::string_view kTooShort = "Enter minimum of six characters";
inline constexpr std::string_view kNotSame = "Both the given passwords should be same";

// Captions of Label1: each stands for a step, and the OK button reads the step from it.
inline constexpr std::string_view kEnterPassword = "Enter the &Password :";
inline constexpr std::string_view kConfirmNew = "Confirm New Password :";

// For the error dialog.
inline constexpr std::string_view kSplitFailed =
    "Before decrypting the profile, String operation leads the error  when checking the Password";
inline constexpr std::string_view kNameFailed =
    "String operation leads the error when checking the Password";
inline constexpr std::string_view kPlainCopyMissing = "The decrypted profile is not available";

} // namespace vardelin::runs::gate_texts
