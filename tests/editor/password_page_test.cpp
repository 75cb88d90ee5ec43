#include "editor/password_page.h"

#include "pages_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::editor {
namespace {

using platform::Answer;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kQuestion = "To provide the backup security, You need to give the old "
                                  "password. Do you want to continue?";

class PasswordPage : public testing::Test, public test::PagesRig {
protected:
    std::string& box = record.txtPassWord.text;
    std::string& known = store.scalars.sProfilePassword;

    // An opened profile with the password "secret1" and its hint.
    void withPassword()
    {
        known = box = "secret1";
        store.scalars.bProfileHasPassword = true;
        record.chkPassword.value = 1;
        record.txtHintAns.text = "Rex";
    }
    void switchPassword(int value)
    {
        record.chkPassword.value = value;
        chkPassword_Click(pages);
    }
    void type(const std::string& text)
    {
        box = text;
        txtPassWord_Change(pages);
    }
    // The person fills the boxes of the form and presses OK.
    void giveOld(const std::string& old)
    {
        window.inResPwd = [this, old](state::frmResPwd& asked) {
            asked.txtRespwd.text = old;
            cmdOk_Click(pages, asked);
        };
    }
    void change(const std::string& old, const std::string& first, const std::string& second)
    {
        window.inResPwd = [=, this](state::frmResPwd& asked) {
            asked.txtNewPass.text = old;
            asked.txtRespwd.text = first;
            asked.txtconfirm.text = second;
            cmdOk_Click(pages, asked);
        };
    }
    void cancelForm()
    {
        window.inResPwd = [this](state::frmResPwd& asked) { cmdCancel_Click(pages, asked); };
    }
};

// ---- chkPassword

TEST_F(PasswordPage, SwitchingOnUnlocksTheBoxes)
{
    record.txtPassWord.locked = record.txtHintAns.locked = true;
    record.txtPassWord.enabled = record.txtHintAns.enabled = false;
    record.Frame14.enabled = false;
    pagesForm.bPwdAskedByTyping = true;
    switchPassword(1);
    EXPECT_TRUE(frame.bPwdConfirmMode);
    EXPECT_FALSE(record.txtPassWord.locked || record.txtHintAns.locked);
    EXPECT_TRUE(record.txtPassWord.enabled && record.txtHintAns.enabled);
    EXPECT_TRUE(record.Frame14.enabled);
    EXPECT_FALSE(pagesForm.bPwdAskedByTyping);
    EXPECT_THAT(window.calls, ElementsAre("focus txtPassWord"));
    EXPECT_TRUE(changed());
}

TEST_F(PasswordPage, LoadedOptionsKeepTheFocus)
{
    store.scalars.bOptionsLoaded = true;
    switchPassword(1);
    EXPECT_THAT(window.calls, IsEmpty());
}

TEST_F(PasswordPage, TheFrameStaysDisabledForARecentProfileThatIsNotForChange)
{
    struct Case {
        bool recent, isNew, edit, enabled;
    };
    const Case cases[] = {{true, false, false, false},
                          {false, false, false, true},
                          {true, true, false, true},
                          {true, false, true, true}};
    for (const Case& each : cases) {
        frame.BL_Recent_Found = each.recent;
        frame.BL_New_Mode = each.isNew;
        frame.BL_Edit_Mode = each.edit;
        record.Frame14.enabled = false;
        switchPassword(1);
        EXPECT_EQ(record.Frame14.enabled, each.enabled);
    }
}

TEST_F(PasswordPage, SwitchingOffWithoutASavedPasswordAsksNothing)
{
    frame.bPwdConfirmMode = true;
    box = "typed it";
    record.txtHintAns.text = "Rex";
    switchPassword(0);
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_EQ(box + record.txtHintAns.text, "");
    EXPECT_TRUE(record.txtPassWord.locked && record.txtHintAns.locked);
    EXPECT_FALSE(record.Frame14.enabled);
    EXPECT_TRUE(frame.bPwdChangeMode);
    EXPECT_FALSE(frame.bPwdConfirmMode);
    EXPECT_TRUE(changed());
}

TEST_F(PasswordPage, SwitchingOffASavedPasswordNeedsIt)
{
    withPassword();
    giveOld("secret1");
    messageBoxes.answers = {Answer::Yes};
    switchPassword(0);
    EXPECT_THAT(messages(), ElementsAre(kQuestion)); // once: the emptied box does not ask again
    EXPECT_EQ(boxes()[0].buttons, platform::Buttons::YesNo);
    EXPECT_THAT(window.calls, ElementsAre("showResPwd"));
    EXPECT_EQ(record.chkPassword.value, 0);
    EXPECT_EQ(box + record.txtHintAns.text, "");
    EXPECT_TRUE(record.txtPassWord.locked && record.txtHintAns.locked);
    EXPECT_FALSE(store.scalars.bProfileHasPassword);
    EXPECT_TRUE(frame.bPwdChangeMode);
    EXPECT_FALSE(record.Frame14.enabled);
}

TEST_F(PasswordPage, RefusingToGiveItKeepsTheTickAndThePassword)
{
    withPassword();
    messageBoxes.answers = {Answer::No};
    switchPassword(0);
    EXPECT_EQ(record.chkPassword.value, 1);
    EXPECT_EQ(box, "secret1");
    EXPECT_TRUE(store.scalars.bProfileHasPassword);
    EXPECT_FALSE(frame.bPwdConfirmMode || frame.bPwdChangeMode);
    EXPECT_FALSE(record.Frame14.enabled);
    EXPECT_THAT(window.calls, IsEmpty());
}

TEST_F(PasswordPage, CancellingTheFormKeepsThemToo)
{
    withPassword();
    cancelForm();
    messageBoxes.answers = {Answer::Yes};
    switchPassword(0);
    EXPECT_EQ(record.chkPassword.value, 1);
    EXPECT_EQ(box, "secret1");
    EXPECT_TRUE(store.scalars.bProfileHasPassword);
    EXPECT_FALSE(frame.bPwdConfirmMode || frame.bPwdChangeMode || frame.bPwdDialogCancelled);
    EXPECT_FALSE(record.Frame14.enabled);
}

// Only OK with the right password opens the way; a form closed by its frame said nothing.
TEST_F(PasswordPage, ClosingTheFormByItsFrameCountsAsCancelling)
{
    withPassword();
    messageBoxes.answers = {Answer::Yes};
    switchPassword(0);
    EXPECT_EQ(record.chkPassword.value, 1);
    EXPECT_EQ(box, "secret1");
}

TEST_F(PasswordPage, AFormLeftWithAWrongPasswordDoesNotOpenTheWay)
{
    withPassword();
    giveOld("wrong");
    messageBoxes.answers = {Answer::Yes, Answer::Ok};
    switchPassword(0);
    EXPECT_THAT(messages(), ElementsAre(kQuestion, "Invalid password"));
    EXPECT_EQ(record.chkPassword.value, 1);
    EXPECT_EQ(box, "secret1");
}

TEST_F(PasswordPage, AReviewThatWasCancelledEarlierDoesNotCount)
{
    withPassword();
    frame.bPwdDialogCancelled = true;
    giveOld("secret1");
    messageBoxes.answers = {Answer::Yes};
    switchPassword(0);
    EXPECT_EQ(record.chkPassword.value, 0);
}

TEST_F(PasswordPage, AStandingCancelTakesTheConfirmationBack)
{
    frame.bPwdDialogCancelled = true;
    switchPassword(1);
    EXPECT_FALSE(frame.bPwdConfirmMode);
}

TEST_F(PasswordPage, AFailureHasItsSentence)
{
    withPassword();
    window.inResPwd = [](state::frmResPwd&) { throw base::RuntimeError(5); };
    messageBoxes.answers = {Answer::Yes};
    switchPassword(0);
    EXPECT_THAT(errorsShown(), ElementsAre("chkPassword_Click: Password process error"));
    EXPECT_EQ(box, "secret1");
}

// ---- typing a password

TEST_F(PasswordPage, ANewPasswordIsTypedFreely)
{
    for (const bool isNew : {false, true}) {
        frame.BL_New_Mode = isNew;
        frame.BL_Edit_Mode = !isNew;
        type("abc");
        EXPECT_EQ(box, "abc");
        EXPECT_THAT(messages(), IsEmpty());
        EXPECT_TRUE(changed());
    }
}

TEST_F(PasswordPage, ASavedPasswordIsChangedThroughTheForm)
{
    withPassword();
    change("secret1", "better2", "better2");
    messageBoxes.answers = {Answer::Yes};
    type("secret");
    EXPECT_THAT(messages(), ElementsAre(kQuestion));
    EXPECT_EQ(box, "better2");
    EXPECT_EQ(known, "better2");
    EXPECT_TRUE(pagesForm.bPwdAskedByTyping);
    EXPECT_TRUE(frame.bPwdChangeMode);
    EXPECT_TRUE(changed());
}

TEST_F(PasswordPage, ADeclinedQuestionPutsThePasswordBack)
{
    withPassword();
    messageBoxes.answers = {Answer::No};
    type("secret");
    EXPECT_THAT(messages(), ElementsAre(kQuestion));
    EXPECT_EQ(box, "secret1");
    EXPECT_TRUE(pagesForm.bPwdPromptRefused);
    EXPECT_FALSE(frame.bPwdChangeMode);
    EXPECT_THAT(window.calls, IsEmpty());
}

// One No must not open the way for the next key.
TEST_F(PasswordPage, WhatIsTypedBehindADeclinedQuestionIsTakenBack)
{
    withPassword();
    messageBoxes.answers = {Answer::No};
    type("secret");
    type("secret12");
    EXPECT_EQ(box, "secret1");
    EXPECT_EQ(messages().size(), 1U);
    passwordBoxEntered(pages);
    messageBoxes.answers = {Answer::No};
    type("secret12");
    EXPECT_EQ(messages().size(), 2U);
    EXPECT_EQ(box, "secret1");
}

TEST_F(PasswordPage, ACancelledFormPutsThePasswordBackAndAsksNextTime)
{
    withPassword();
    cancelForm();
    messageBoxes.answers = {Answer::Yes};
    type("secret");
    EXPECT_EQ(box, "secret1");
    EXPECT_EQ(known, "secret1");
    EXPECT_FALSE(frame.bPwdDialogCancelled || frame.bPwdChangeMode || frame.bPwdConfirmMode);
    messageBoxes.answers = {Answer::No};
    type("secret12");
    EXPECT_EQ(messages().size(), 2U);
    EXPECT_EQ(box, "secret1");
}

TEST_F(PasswordPage, AReviewThatWasCancelledEarlierOpensNoWay)
{
    withPassword();
    frame.bPwdDialogCancelled = true;
    passwordBoxEntered(pages);
    messageBoxes.answers = {Answer::No};
    type("other pass");
    EXPECT_THAT(messages(), ElementsAre(kQuestion));
    EXPECT_EQ(box, "secret1");
}

TEST_F(PasswordPage, AfterAGivenPasswordTypingIsFree)
{
    withPassword();
    change("secret1", "better2", "better2");
    messageBoxes.answers = {Answer::Yes};
    type("secret");
    type("better22");
    EXPECT_EQ(box, "better22");
    EXPECT_EQ(messages().size(), 1U);
}

TEST_F(PasswordPage, InAViewNothingIsAsked)
{
    withPassword();
    viewMode();
    type("x");
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_FALSE(changed());
}

// ---- the form

TEST_F(PasswordPage, TheFormAsDrawn)
{
    const state::frmResPwd asked;
    EXPECT_EQ(asked.caption, "Password to Review Archive");
    EXPECT_EQ(asked.Label1.caption, "Enter the &Password :");
    EXPECT_EQ(asked.lblNewPass.caption, "&New Password :");
    EXPECT_EQ(asked.lblconfirm.caption, "Confirm New Password:");
    EXPECT_EQ(asked.lblForgotPwd.caption, "&Forgot Password?");
    EXPECT_EQ(asked.cmdOk.caption, "&Ok");
    EXPECT_EQ(asked.cmdCancel.caption, "&Cancel");
    EXPECT_EQ(asked.wrongHintAnswers, 0);
}

TEST_F(PasswordPage, LoadsByItsModeTheReviewFirstAndTheChangeBeforeTheConfirmation)
{
    struct Case {
        bool review, change, confirm;
        const char* Label1;
        bool newPass, forgot;
    };
    const char* const drawn = "Enter the &Password :";
    const Case cases[] = {
        {true, false, false, drawn, false, true},
        {true, true, true, drawn, false, true},
        {false, true, false, "Enter New password:", true, false},
        {false, false, true, drawn, false, false},
        {false, true, true, "Enter New password:", true, false},
    };
    for (const Case& each : cases) {
        frame.bPwdReviewMode = each.review;
        frame.bPwdChangeMode = each.change;
        frame.bPwdConfirmMode = each.confirm;
        state::frmResPwd asked;
        asked.txtRespwd.text = asked.txtNewPass.text = asked.txtconfirm.text = "left over";
        asked.wrongHintAnswers = 2;
        Form_Load(asked, frame);
        EXPECT_EQ(asked.Label1.caption, each.Label1);
        EXPECT_TRUE(asked.Label1.visible && asked.txtRespwd.visible);
        EXPECT_EQ(asked.lblNewPass.visible, each.newPass);
        EXPECT_EQ(asked.txtNewPass.visible, each.newPass);
        EXPECT_EQ(asked.lblconfirm.visible, each.newPass);
        EXPECT_EQ(asked.txtconfirm.visible, each.newPass);
        EXPECT_EQ(asked.lblForgotPwd.visible, each.forgot);
        EXPECT_EQ(asked.txtRespwd.text + asked.txtNewPass.text + asked.txtconfirm.text, "");
        EXPECT_EQ(asked.wrongHintAnswers, 0);
        if (each.newPass) {
            EXPECT_EQ(asked.lblNewPass.caption, "Enter Old password:");
            EXPECT_EQ(asked.lblconfirm.caption, "Confirm New password :");
        }
    }
}

TEST_F(PasswordPage, ChangesAPassword)
{
    constexpr const char* kInvalid = "Invalid password";
    constexpr const char* kNotSame = "Both the new passwords are not same";
    constexpr const char* kShort = "Password length should be greater than six characters";
    struct Case {
        const char* old;
        const char* first;
        const char* second;
        const char* message; // empty: taken
        const char* known;
    };
    const Case cases[] = {
        {"secret1", "better2", "better2", "", "better2"},
        {" secret1 ", "better2", "better2", "", "better2"},
        {"secret1", "sixsix", "sixsix", "", "sixsix"},      // the message says more than six
        {"secret1", "better2 ", "better2", "", "better2 "}, // compared without blanks, kept with
        {"wrong", "better2", "better2", kInvalid, "secret1"},
        {"SECRET1", "better2", "better2", kInvalid, "secret1"},
        {"wrong", "a", "b", kInvalid, "secret1"},
        {"secret1", "better2", "better3", kNotSame, "secret1"},
        {"secret1", "a", "b", kNotSame, "secret1"}, // compared before they are measured
        {"secret1", "five5", "five5", kShort, "secret1"},
        {"secret1", "", "", kShort, "secret1"},
    };
    for (const Case& each : cases) {
        known = "secret1";
        frame.bPwdChangeMode = true;
        clearBoxes();
        window.calls.clear();
        state::frmResPwd asked;
        Form_Load(asked, frame);
        asked.txtNewPass.text = each.old;
        asked.txtRespwd.text = each.first;
        asked.txtconfirm.text = each.second;
        cmdOk_Click(pages, asked);
        const std::string message = boxes().empty() ? "" : boxes()[0].text;
        EXPECT_EQ(message, each.message) << each.old << each.first << each.second;
        EXPECT_EQ(known, each.known);
        EXPECT_EQ(asked.loaded, !message.empty());
        if (message == kInvalid) {
            EXPECT_EQ(asked.txtNewPass.text, "");
            EXPECT_EQ(asked.txtRespwd.text, each.first);
            EXPECT_THAT(window.calls, IsEmpty());
        } else if (!message.empty()) {
            EXPECT_EQ(asked.txtNewPass.text, each.old);
            EXPECT_EQ(asked.txtRespwd.text + asked.txtconfirm.text, "");
        }
        if (message == kNotSame) {
            EXPECT_THAT(window.calls, ElementsAre("focus txtRespwd"));
        }
    }
}

TEST_F(PasswordPage, ConfirmsAPasswordWithoutRegardToBlanksAroundIt)
{
    known = "secret1";
    frame.bPwdConfirmMode = true;
    state::frmResPwd asked;
    asked.txtRespwd.text = "Secret1";
    cmdOk_Click(pages, asked);
    EXPECT_THAT(messages(), ElementsAre("Invalid password"));
    EXPECT_EQ(asked.txtRespwd.text, "");
    EXPECT_TRUE(asked.loaded);
    asked.txtRespwd.text = " secret1";
    cmdOk_Click(pages, asked);
    EXPECT_EQ(known, " secret1"); // as it was typed
    EXPECT_FALSE(asked.loaded);
}

TEST_F(PasswordPage, WithBothModesOkChanges)
{
    known = "secret1";
    frame.bPwdChangeMode = frame.bPwdConfirmMode = true;
    state::frmResPwd asked;
    asked.txtNewPass.text = "secret1";
    asked.txtRespwd.text = asked.txtconfirm.text = "better2";
    cmdOk_Click(pages, asked);
    EXPECT_EQ(known, "better2");
}

TEST_F(PasswordPage, CancelClearsTheModesAndTheGate)
{
    frame.bPwdChangeMode = frame.bPwdConfirmMode = frame.bPwdPassed = true;
    state::frmResPwd asked;
    cmdCancel_Click(pages, asked);
    EXPECT_FALSE(frame.bPwdChangeMode || frame.bPwdConfirmMode || frame.bPwdPassed);
    EXPECT_TRUE(frame.bPwdDialogCancelled);
    EXPECT_FALSE(asked.loaded);
}

} // namespace
} // namespace vardelin::editor
