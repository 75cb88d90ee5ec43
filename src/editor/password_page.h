#pragma once

#include "editor/pages_context.h"

#include <cstddef>

// The password of a profile on the options page, and frmResPwd as the page uses it: the password of
// a saved profile changes or goes only after the old one was given. The hint's boxes only note a
// change (noteChange).
namespace vardelin::editor {

inline constexpr std::size_t kShortestPassword = 6; // characters; exactly six pass

void chkPassword_Click(PagesContext& context);

void txtPassWord_Change(PagesContext& context);
// A person who declined to give the old password is asked again the next time that they come to
// the box; until then what they type there is taken back without a word.
void passwordBoxEntered(PagesContext& context);

// frmResPwd for the change or the confirmation of a password; where both are set, the change. With
// bPwdReviewMode the form stays as it is drawn, without the boxes for a new password.
void Form_Load(state::frmResPwd& form, const state::FrameState& frame);
// The two modes of the editor. The review has an OK of its own.
void cmdOk_Click(PagesContext& context, state::frmResPwd& form);
// In every mode.
void cmdCancel_Click(PagesContext& context, state::frmResPwd& form);

} // namespace vardelin::editor
