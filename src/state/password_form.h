#pragma once

#include "state/controls.h"

#include <string>

namespace vardelin::state {

// frmResPwd: asks for a password. The flags in FrameState choose one of three uses: the profile
// editor changes a password (bPwdChangeMode) or has it confirmed (bPwdConfirmMode), and the archive
// asks for it before its review (bPwdReviewMode, which goes before the other two). The boxes hide
// what is typed. The defaults are the form as it is drawn.
//
// `loaded` falls when a handler unloads the form, and the view closes it then.
struct frmResPwd {
    std::string caption = "Password to Review Archive";
    Label Label1{.caption = "Enter the &Password :"};
    TextBox txtRespwd{};
    Label lblNewPass{.caption = "&New Password :"};
    TextBox txtNewPass{};
    Label lblconfirm{.caption = "Confirm New Password:"};
    TextBox txtconfirm{};
    Label lblForgotPwd{.caption = "&Forgot Password?"};
    Button cmdOk{.caption = "&Ok"};
    Button cmdCancel{.caption = "&Cancel"};

    int wrongHintAnswers = 0;
    bool loaded = true;
};

} // namespace vardelin::state
