#include "ui/password_view.h"

#include "editor/pages_rig.h"
#include "editor/password_page.h"
#include "ui/editor_form_handlers.h"

#include "offscreen.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace vardelin::ui {
namespace {

class PasswordForm : public testing::Test, protected test::PagesRig {
protected:
    PasswordForm() { store.scalars.sProfilePassword = "secret"; }

    static std::vector<std::string> seen(const PasswordView& view)
    {
        std::vector<std::string> names;
        for (const char* name : {"lblNewPass", "txtNewPass", "Label1", "txtRespwd", "lblconfirm",
                                 "txtconfirm", "lblForgotPwd"}) {
            if (control<QWidget>(view, name).isVisible())
                names.emplace_back(name);
        }
        return names;
    }

    state::frmResPwd passwords;
};

TEST_F(PasswordForm, ShowsTheBoxesOfEachUse)
{
    const std::vector<std::string> change = {"lblNewPass", "txtNewPass", "Label1",
                                             "txtRespwd",  "lblconfirm", "txtconfirm"};
    const std::vector<std::string> confirm = {"Label1", "txtRespwd"};
    const std::vector<std::string> review = {"Label1", "txtRespwd", "lblForgotPwd"};
    for (const std::vector<std::string>* const use : {&change, &confirm, &review}) {
        frame.bPwdChangeMode = use == &change;
        frame.bPwdConfirmMode = use == &confirm;
        frame.bPwdReviewMode = use == &review;
        editor::Form_Load(passwords, frame);
        PasswordView view(passwords, editorPasswordHandlers(pages, passwords));
        present(view);
        EXPECT_EQ(seen(view), *use);
        for (const char* box : {"txtNewPass", "txtRespwd", "txtconfirm"})
            EXPECT_EQ(control<QLineEdit>(view, box).echoMode(), QLineEdit::Password);
    }
}

TEST_F(PasswordForm, TheOldPasswordStandsAboveTheNewOne)
{
    frame.bPwdChangeMode = true;
    editor::Form_Load(passwords, frame);
    PasswordView view(passwords, editorPasswordHandlers(pages, passwords));
    present(view);
    EXPECT_EQ(control<QLabel>(view, "lblNewPass").text(), "Enter Old password:");
    EXPECT_EQ(control<QLabel>(view, "Label1").text(), "Enter New password:");
    const auto top = [&](const char* name) { return control<QWidget>(view, name).y(); };
    EXPECT_LT(top("txtNewPass"), top("txtRespwd"));
    EXPECT_LT(top("txtRespwd"), top("txtconfirm"));
    EXPECT_EQ(view.focusWidget(), &control<QLineEdit>(view, "txtNewPass"));
    QTest::keyClick(view.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(view.focusWidget(), &control<QLineEdit>(view, "txtRespwd"));
}

TEST_F(PasswordForm, APasswordIsChangedAndRefused)
{
    frame.bPwdChangeMode = true;
    editor::Form_Load(passwords, frame);
    PasswordView view(passwords, editorPasswordHandlers(pages, passwords));
    present(view);
    auto& old = control<QLineEdit>(view, "txtNewPass");
    QTest::keyClicks(&old, "wrong");
    QTest::keyClick(&old, Qt::Key_Return);
    EXPECT_EQ(messages(), std::vector<std::string>{"Invalid password"});
    EXPECT_EQ(old.text(), "");
    EXPECT_TRUE(view.isVisible());
    QTest::keyClicks(&old, "secret");
    QTest::keyClicks(&control<QLineEdit>(view, "txtRespwd"), "newer1");
    QTest::keyClicks(&control<QLineEdit>(view, "txtconfirm"), "newer1");
    control<QPushButton>(view, "cmdOk").click();
    EXPECT_EQ(store.scalars.sProfilePassword, "newer1");
    EXPECT_FALSE(view.isVisible());
}

TEST_F(PasswordForm, CancelIsToldAndEscapeLeavesItToWhoAsked)
{
    frame.bPwdConfirmMode = true;
    editor::Form_Load(passwords, frame);
    PasswordView view(passwords, editorPasswordHandlers(pages, passwords));
    present(view);
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(passwords.loaded);
    present(view);
    control<QPushButton>(view, "cmdCancel").click();
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(frame.bPwdDialogCancelled);
}

TEST_F(PasswordForm, AForgottenPasswordIsAskedForByMouseAndByKey)
{
    frame.bPwdReviewMode = true;
    editor::Form_Load(passwords, frame);
    PasswordHandlers handlers;
    int asked = 0;
    handlers.lblForgotPwd_Click = [&] {
        ++asked;
        passwords.Label1.caption = "<b>Favorite</b> Past-time ?:";
        if (asked == 1) {
            for (int i = 0; i < 40; ++i)
                passwords.Label1.caption += " and more";
        }
    };
    PasswordView view(passwords, handlers);
    present(view);
    auto& link = control<QPushButton>(view, "lblForgotPwd");
    QTest::mouseClick(&link, Qt::LeftButton);
    QTest::qWait(1);
    EXPECT_EQ(clippedIn(view), "") << "the window grows with a long question";
    link.setFocus();
    QTest::keyClick(&link, Qt::Key_Space);
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(control<QLabel>(view, "Label1").textFormat(), Qt::PlainText);
    EXPECT_EQ(control<QLabel>(view, "Label1").text(), "<b>Favorite</b> Past-time ?:");
}

} // namespace
} // namespace vardelin::ui
