#pragma once

#include "profile/profile_context.h"
#include "state/password_form.h"

#include <string_view>

// The gate in front of the archive's review: a profile with a password opens its archive only to a
// person who knows it, or the answer to its hint. frmResPwd has two more modes, which belong to the
// profile editor; its Cancel is the same in all of them.
//
// While the gate is open, the plain copy of the profile (`U<stem>.txt` beside it) holds the
// password in clear; nobody but the person may read that file. A cancelled dialog leaves it behind.
namespace vardelin::runs {

struct PasswordGateContext;

// What the gate needs of the window.
class PasswordWindow {
public:
    PasswordWindow() = default;
    PasswordWindow(const PasswordWindow&) = delete;
    PasswordWindow& operator=(const PasswordWindow&) = delete;
    virtual ~PasswordWindow() = default;

    // Shows the form modally and comes back when it is unloaded, or closed by the person as with
    // its Cancel. The form's own handlers run meanwhile, on this context.
    virtual void showReviewPassword(PasswordGateContext& gate, state::frmResPwd& form) = 0;
    // A box of the form, by its control's name.
    virtual void setFocus(std::string_view control) = 0;
};

// Holds references only; the application owns the parts.
struct PasswordGateContext {
    profile::ProfileContext& profiles;
    PasswordWindow& window;
    std::string_view profilePath; // of the profile whose archive is to be reviewed
};

// Sets bPwdPassed where the archive may be reviewed: its profile has no password, or the person
// gave it. `found` tells that the archive exists; without one, or with an empty one, a message
// says so. What cannot be read is reported and keeps the gate shut. What the password section holds
// is forgotten again at the end.
void PwdCheck(PasswordGateContext& context, bool& found);

// Handlers of frmResPwd before a review.
void lblForgotPwd_Click(PasswordGateContext& context, state::frmResPwd& form);
void cmdOk_Click(PasswordGateContext& context, state::frmResPwd& form);

// Puts a new password into the profile, out of its plain copy: every line that equals the former
// password is replaced, whatever it is, a source's path included. Scrambles the profile, deletes
// the plain copy, and replaces the archive's copy of the profile; an editor that holds the former
// password gets the new one. A failure is reported; the profile on the disk is the old one or the
// new one.
void WriteTxtForNewProf(PasswordGateContext& context, std::string_view sNewPass);

} // namespace vardelin::runs
