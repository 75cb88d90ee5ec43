#include "editor/password_page.h"

#include "base/text.h"
#include "editor/options_texts.h"
#include "editor/password_texts.h"

namespace vardelin::editor {
namespace {

using base::trim;

// Within a handler: a new text runs the box's own handler.
void assignPassword(PagesContext& context, const std::string& text)
{
    if (context.editor.txtPassWord.text == text)
        return;
    context.editor.txtPassWord.text = text;
    txtPassWord_Change(context);
}

void showPasswordForm(PagesContext& context)
{
    state::frmResPwd form;
    Form_Load(form, context.frame);
    // The review of an archive leaves this standing when it was cancelled.
    context.frame.bPwdDialogCancelled = false;
    context.window.showResPwd(form);
    // Closed by its frame: whoever did not press OK has not given the password.
    if (form.loaded)
        cmdCancel_Click(context, form);
}

void emptyAndLockBoxes(PagesContext& context)
{
    assignPassword(context, {});
    context.editor.txtPassWord.locked = true;
    context.editor.txtHintAns.text.clear();
    context.editor.txtHintAns.locked = true;
    context.editor.Frame14.enabled = false;
}

void switchOn(PagesContext& context)
{
    state::FrameState& frame = context.frame;
    frame.bPwdConfirmMode = true;
    for (state::TextBox* const box : {&context.editor.txtPassWord, &context.editor.txtHintAns}) {
        box->locked = false;
        box->enabled = true;
    }
    if (!context.store.scalars.bOptionsLoaded)
        context.window.setFocus("txtPassWord");
    if (!frame.BL_Recent_Found || frame.BL_New_Mode || frame.BL_Edit_Mode)
        context.editor.Frame14.enabled = true;
    context.editor.Frame14.visible = true; // a save has hidden it
}

void stayOn(PagesContext& context)
{
    context.frame.bPwdConfirmMode = false;
    context.editor.chkPassword.value = 1;
    context.editor.Frame14.enabled = false;
}

void switchOff(PagesContext& context)
{
    state::FrameState& frame = context.frame;
    frame.bPwdConfirmMode = false;
    frame.bPwdChangeMode = false;
    if (!context.store.scalars.bProfileHasPassword) {
        frame.bPwdChangeMode = true;
        emptyAndLockBoxes(context);
        return;
    }
    if (!ask(context, options_texts::kGiveOldPassword)) {
        stayOn(context);
        return;
    }
    frame.bPwdConfirmMode = true;
    showPasswordForm(context);
    if (frame.bPwdDialogCancelled) {
        frame.bPwdDialogCancelled = false;
        stayOn(context);
        return;
    }
    frame.bPwdChangeMode = true; // the emptied box asks for nothing
    emptyAndLockBoxes(context);
    context.store.scalars.bProfileHasPassword = false;
}

// Whether the box holds another text than the password that the profile goes by.
bool isGuarded(const PagesContext& context)
{
    const state::FrameState& frame = context.frame;
    return (frame.BL_Edit_Mode || frame.BL_New_Mode) && context.store.scalars.bProfileHasPassword &&
           !frame.bPwdChangeMode && !frame.bPwdDialogCancelled;
}

void askForOldPassword(PagesContext& context)
{
    state::FrameState& frame = context.frame;
    context.pages.bPwdAskedByTyping = true;
    if (ask(context, options_texts::kGiveOldPassword)) {
        frame.bPwdChangeMode = true;
        showPasswordForm(context);
        assignPassword(context, context.store.scalars.sProfilePassword);
        frame.bPwdDialogCancelled = false;
    } else {
        context.pages.bPwdPromptRefused = true;
        frame.bPwdChangeMode = false;
        assignPassword(context, context.store.scalars.sProfilePassword);
    }
}

void changePassword(PagesContext& context, state::frmResPwd& form)
{
    std::string& current = context.store.scalars.sProfilePassword;
    const std::string_view first = trim(form.txtRespwd.text);
    const std::string_view second = trim(form.txtconfirm.text);
    const auto startAnew = [&](std::string_view message) {
        tell(context, message);
        form.txtRespwd.text.clear();
        form.txtconfirm.text.clear();
        context.window.setFocus("txtRespwd");
    };
    if (trim(form.txtNewPass.text) != trim(current)) {
        tell(context, password_texts::kInvalid);
        form.txtNewPass.text.clear();
    } else if (first != second) {
        startAnew(password_texts::kNotSame);
    } else if (first.size() < kShortestPassword || second.size() < kShortestPassword) {
        startAnew(password_texts::kTooShort);
    } else {
        current = form.txtRespwd.text;
        form.loaded = false;
    }
}

void confirmPassword(PagesContext& context, state::frmResPwd& form)
{
    std::string& current = context.store.scalars.sProfilePassword;
    if (trim(form.txtRespwd.text) == trim(current)) {
        current = form.txtRespwd.text;
        form.loaded = false;
    } else {
        tell(context, password_texts::kInvalid);
        form.txtRespwd.text.clear();
    }
}

} // namespace

void chkPassword_Click(PagesContext& context)
{
    runHandler(context, "chkPassword_Click", options_texts::kPasswordFailed, [&] {
        context.pages.bPwdAskedByTyping = false;
        if (context.editor.chkPassword.value == 0)
            switchOff(context);
        else
            switchOn(context);
        if (context.frame.bPwdDialogCancelled)
            context.frame.bPwdConfirmMode = false;
        noteChange(context.frame);
    });
}

void txtPassWord_Change(PagesContext& context)
{
    runHandler(context, "txtPassWord_Change", options_texts::kPasswordFailed, [&] {
        if (isGuarded(context) && !context.pages.bPwdPromptRefused)
            askForOldPassword(context);
        else if (isGuarded(context))
            context.editor.txtPassWord.text = context.store.scalars.sProfilePassword;
        noteChange(context.frame);
        if (context.frame.bPwdDialogCancelled)
            context.frame.bPwdChangeMode = false;
    });
}

void passwordBoxEntered(PagesContext& context)
{
    context.pages.bPwdPromptRefused = false;
    // Left by a cancelled review, it would let a new password pass without the old one.
    context.frame.bPwdDialogCancelled = false;
}

void Form_Load(state::frmResPwd& form, const state::FrameState& frame)
{
    form = {};
    const bool change = frame.bPwdChangeMode && !frame.bPwdReviewMode;
    const bool confirm = frame.bPwdConfirmMode && !frame.bPwdReviewMode;
    form.lblNewPass.visible = form.txtNewPass.visible = change;
    form.lblconfirm.visible = form.txtconfirm.visible = change;
    form.lblForgotPwd.visible = !change && !confirm;
    if (change) {
        form.lblNewPass.caption = password_texts::kEnterOld;
        form.Label1.caption = password_texts::kEnterNew;
        form.lblconfirm.caption = password_texts::kConfirmNew;
    }
}

void cmdOk_Click(PagesContext& context, state::frmResPwd& form)
{
    runHandler(context, trace::TailNames{"cmdOk_Click", "cmdOk_Click", "frmResPwd", "cmdOk_Click"},
               [&] {
                   if (context.frame.bPwdChangeMode)
                       changePassword(context, form);
                   else if (context.frame.bPwdConfirmMode)
                       confirmPassword(context, form);
               });
}

void cmdCancel_Click(PagesContext& context, state::frmResPwd& form)
{
    context.frame.bPwdPassed = false;
    form.loaded = false;
    context.frame.bPwdDialogCancelled = true;
    context.frame.bPwdChangeMode = false;
    context.frame.bPwdConfirmMode = false;
}

} // namespace vardelin::editor
