#pragma once

#include <string_view>

// The texts of frmResPwd as the profile editor uses it, to the letter. The refusals look alike and
// differ in case and wording from those of the archive's review.
namespace vardelin::editor::password_texts {

// ---- captions while a password is changed
inline constexpr std::string_view kEnterOld = "Enter Old password:";
inline constexpr std::string_view kEnterNew = "Enter New password:";
inline constexpr std::string_view kConfirmNew = "Confirm New password :";

// ---- messages
inline constexpr std::string_view kInvalid = "Invalid password";
inline constexpr std::string_view kNotSame = "Both the new passwords are not same";
// Six characters pass, whatever it says.
inline constexpr std::string_view kTooShort =
    "Password length should be greater than six characters";

} // namespace vardelin::editor::password_texts
