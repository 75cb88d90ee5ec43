#include "archive_story.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLabel>

// The archive of a profile with a password, at the window.
namespace vardelin {
namespace {

using test::treeOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kPassword = "correct horse";
constexpr const char* kNewPassword = "battery staple";
constexpr const char* kDone = "Backup is completed successfully";
constexpr const char* kRestored = "File(s) have been successfully restored";

class PasswordStory : public test::ArchiveStory {
protected:
    void encryptedBackup()
    {
        begin({.encrypt = true, .password = kPassword});
        ASSERT_THAT(backUp(), ElementsAre(kDone)) << "a run asks for no password";
        rig.messageBoxes.shown.clear();
    }
    // What the form says to an answer.
    std::string answer(QWidget& form, const std::string& text)
    {
        type(form, "txtRespwd", text);
        rig.messageBoxes.shown.clear();
        click(form, "cmdOk");
        return lastMessage();
    }
    // Review Archive, and what the person does about the password.
    void review(std::function<void(QWidget&)> act)
    {
        inForm("frmResPwd", std::move(act));
        run("mnure");
    }
    bool isOpen() const { return storage().loaded && storage().visible; }
    bool hasPlainCopy() const
    {
        return std::filesystem::exists(rig.folder / "app/Profiles/UWork.txt");
    }
    // The hint's way to a new password.
    void recover()
    {
        review([this](QWidget& form) {
            click(form, "lblForgotPwd");
            EXPECT_EQ(answer(form, "Rex"), "");
            EXPECT_FALSE(in<QWidget>(form, "lblForgotPwd").isVisible());
            type(form, "txtconfirm", kNewPassword);
            EXPECT_EQ(answer(form, kNewPassword), "");
            EXPECT_FALSE(form.isVisible());
        });
    }
};

TEST_F(PasswordStory, AWrongPasswordEmptiesTheBoxAndTheRightOneOpensTheArchive)
{
    encryptedBackup();
    review([this](QWidget& form) {
        EXPECT_TRUE(hasPlainCopy());
        for (const char* wrong : {"wrong horse", "Correct Horse", "correct horse "}) {
            EXPECT_EQ(answer(form, wrong), "Invalid Password");
            EXPECT_TRUE(form.isVisible());
            EXPECT_EQ(in<QLineEdit>(form, "txtRespwd").text(), "");
        }
        EXPECT_FALSE(isOpen());
        EXPECT_EQ(answer(form, kPassword), "");
    });
    ASSERT_TRUE(isOpen());
    EXPECT_FALSE(hasPlainCopy());
    openDown({"letters"});
    select({source("letters\\two.txt_000")});
    restoreTo(test::AppRig::drive(rig.folder / "elsewhere"));
    EXPECT_EQ(lastMessage(), kRestored);
    EXPECT_EQ(test::TempFolder::read(restored("letters/two.txt")), "first two\n");
    EXPECT_EQ(errors(), "");
}

TEST_F(PasswordStory, TheHintLeadsToANewPasswordThatHoldsFromThenOn)
{
    encryptedBackup();
    const std::string before = test::TempFolder::read(rig.folder / "app/Profiles/Work.vdp");
    review([this](QWidget& form) {
        click(form, "lblForgotPwd");
        EXPECT_EQ(in<QLabel>(form, "Label1").text(), "Your pet's name?:");
        EXPECT_EQ(answer(form, "Rover"), "Invalid Hint Answer");
        EXPECT_EQ(in<QLineEdit>(form, "txtRespwd").text(), "");
        EXPECT_EQ(answer(form, "rex"), "Invalid Hint Answer");
        EXPECT_EQ(answer(form, "Rex"), "");
        type(form, "txtconfirm", "short");
        EXPECT_EQ(answer(form, "short"), "Enter minimum of six characters");
        type(form, "txtconfirm", "long enough");
        EXPECT_EQ(answer(form, kNewPassword), "Both the given passwords should be same");
        EXPECT_EQ(in<QLineEdit>(form, "txtconfirm").text(), "");
        type(form, "txtconfirm", kNewPassword);
        EXPECT_EQ(answer(form, kNewPassword), "");
    });
    ASSERT_TRUE(isOpen());
    EXPECT_FALSE(hasPlainCopy());
    const std::string after = test::TempFolder::read(rig.folder / "app/Profiles/Work.vdp");
    EXPECT_TRUE(after != before);
    EXPECT_TRUE(test::TempFolder::read(archive() / "Work.vdp") == after)
        << "the archive's copy of the profile";

    closeReview();
    review([this](QWidget& form) {
        EXPECT_EQ(answer(form, kPassword), "Invalid Password");
        EXPECT_EQ(answer(form, kNewPassword), "");
    });
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(errors(), "");
}

TEST_F(PasswordStory, CopiesUnderTheFormerPasswordAreToldApartAndTheNextBackupMakesNewOnes)
{
    encryptedBackup();
    recover();
    ASSERT_TRUE(isOpen());
    openDown({"letters"});
    select({source("letters\\one.txt_000")});
    restoreTo(test::AppRig::drive(rig.folder / "elsewhere"));
    EXPECT_EQ(lastMessage(), "Some\\All File(s) have not been successfully restored because of "
                             "password mismatch");
    EXPECT_THAT(treeOf(rig.folder / "elsewhere"), IsEmpty());

    EXPECT_THAT(backUp(), ElementsAre(kDone));
    closeReview();
    review([this](QWidget& form) { answer(form, kNewPassword); });
    openDown({"letters"});
    select({source("letters\\")});
    std::filesystem::remove_all(original("letters"));
    restoreToPlaces();
    EXPECT_EQ(lastMessage(), kRestored);
    EXPECT_EQ(test::TempFolder::read(original("letters/one.txt")), "first one\n");
    EXPECT_EQ(errors(), "");
}

// The editor still shows the profile as it was read.
TEST_F(PasswordStory, ASaveAfterTheHintKeepsTheNewPassword)
{
    encryptedBackup();
    recover();
    ASSERT_TRUE(isOpen());
    closeReview();
    showTab(1);
    rig.find<QAbstractButton>("chkIdle").click();
    run("mnuSave");
    review([this](QWidget& form) {
        EXPECT_EQ(answer(form, kNewPassword), "");
        if (form.isVisible())
            click(form, "cmdCancel");
    });
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(errors(), "");
}

TEST_F(PasswordStory, TheFourthWrongAnswerEndsTheMatterUntilTheNextTry)
{
    encryptedBackup();
    review([this](QWidget& form) {
        click(form, "lblForgotPwd");
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(answer(form, "Rover"), "Invalid Hint Answer");
        EXPECT_TRUE(form.isVisible());
        EXPECT_EQ(answer(form, "Rover"), " Sorry Cannot retrieve the Backup ");
        EXPECT_FALSE(form.isVisible());
    });
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(hasPlainCopy());
    EXPECT_EQ(rig.program->frame.panel1.text, "");
    review([this](QWidget& form) { EXPECT_EQ(answer(form, kPassword), ""); });
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(errors(), "");
}

TEST_F(PasswordStory, CancelAndTheCloseBoxOpenNothing)
{
    encryptedBackup();
    review([](QWidget& form) { click(form, "cmdCancel"); });
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(hasPlainCopy()) << "it stays behind";
    review([](QWidget& form) { form.close(); });
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(lastMessage(), "");
    // Neither is in the way of what comes next.
    EXPECT_THAT(backUp(), Contains(kDone));
    review([this](QWidget& form) { answer(form, kPassword); });
    EXPECT_TRUE(isOpen());
    EXPECT_FALSE(hasPlainCopy());
    EXPECT_EQ(errors(), "");
}

} // namespace
} // namespace vardelin
