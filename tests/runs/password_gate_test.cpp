#include "runs/password_gate.h"

#include "profile/scramble_text.h"
#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::runs {
namespace {

using test::ProfileRig;
using testing::ElementsAre;
using testing::IsEmpty;

// Answers the dialog as a person would, by a script, and keeps what was shown.
class ScriptedWindow final : public PasswordWindow {
public:
    std::function<void(state::frmResPwd&)> person = [](state::frmResPwd&) {};
    int shown = 0;
    std::vector<std::string> focused;

    void showReviewPassword(PasswordGateContext&, state::frmResPwd& form) override
    {
        ++shown;
        person(form);
    }
    void setFocus(std::string_view control) override { focused.emplace_back(control); }
};

struct PasswordGate : testing::Test, ProfileRig {
    static constexpr std::string_view kProfile = "C:\\App\\Profiles\\Work.vdp";
    static constexpr std::string_view kPlain = "C:\\App\\Profiles\\UWork.txt";

    ScriptedWindow window;
    PasswordGateContext gate{profiles, window, kProfile};
    bool found = false;

    PasswordGate()
    {
        disk.createFolders("C:\\Dest\\Work\\C");
        putFile("C:\\Dest\\Work\\C\\a_FULL_x.zst", "x");
        putProfile("True\r\nsecret\r\nPet?\r\nrex\r\n");
    }
    static std::string text(std::string_view password)
    {
        return "[Work.vdp]\r\n{Source files}\r\nC:\\secret\\\r\nsecret\r\n{End Of Source files}\r\n"
               "{Destination path}\r\nC:\\Dest\r\n{End Of Destination path}\r\n{Password}\r\n" +
               std::string(password) + "{End Of Password}\r\n[End of Work.vdp]\r\n";
    }
    void putProfile(std::string_view password)
    {
        putFile(kProfile, profile::scrambleText(text(password)));
    }
    void check() { PwdCheck(gate, found); }
    // What stands in the box when the button is pressed.
    void enter(state::frmResPwd& form, std::string_view first, std::string_view second = {})
    {
        form.txtRespwd.text = first;
        form.txtconfirm.text = second;
        cmdOk_Click(gate, form);
    }
    bool plainCopyIsThere() { return disk.fileExists(kPlain); }
};

TEST_F(PasswordGate, OpensToTheExactPasswordAlone)
{
    window.person = [&](state::frmResPwd& form) {
        EXPECT_TRUE(frame.bPwdReviewMode);
        EXPECT_EQ(form.caption, "Password to Review Archive");
        EXPECT_EQ(form.Label1.caption, "Enter the &Password :");
        EXPECT_TRUE(form.lblForgotPwd.visible);
        EXPECT_FALSE(form.lblNewPass.visible || form.txtNewPass.visible);
        EXPECT_FALSE(form.lblconfirm.visible || form.txtconfirm.visible);
        for (const std::string_view wrong : {"", "Secret", "secret ", "secre", "x"}) {
            enter(form, wrong);
            EXPECT_TRUE(form.loaded);
            EXPECT_EQ(form.txtRespwd.text, "");
            EXPECT_FALSE(frame.bPwdPassed);
        }
        EXPECT_TRUE(plainCopyIsThere());
        enter(form, "secret");
        EXPECT_FALSE(form.loaded);
    };
    check();

    EXPECT_TRUE(found);
    EXPECT_TRUE(frame.bPwdPassed);
    EXPECT_EQ(window.shown, 1);
    EXPECT_FALSE(plainCopyIsThere());
    EXPECT_THAT(messageBoxes.texts(),
                ElementsAre("Invalid Password", "Invalid Password", "Invalid Password",
                            "Invalid Password", "Invalid Password"));
    EXPECT_EQ(window.focused, std::vector<std::string>(5, "txtRespwd"));
    EXPECT_EQ(frame.pb.value, 0);
    for (const test::ShownBox& box : boxes()) {
        EXPECT_EQ(box.title, "Vardelin");
        EXPECT_EQ(box.buttons, platform::Buttons::Ok);
    }
}

// The profile editor uses the same form: behind the gate it must look as the editor needs it, and
// nothing of the section is left in memory for another profile.
TEST_F(PasswordGate, NothingOfTheGateIsLeftBehindIt)
{
    const std::function<void(state::frmResPwd&)> persons[] = {
        [&](state::frmResPwd& form) { enter(form, "secret"); },
        [&](state::frmResPwd& form) { form.loaded = false; },
    };
    for (const auto& person : persons) {
        window.person = [&](state::frmResPwd& form) {
            EXPECT_TRUE(frame.bPwdReviewMode);
            EXPECT_EQ(frame.sGatePassword + frame.sHintQuestion + frame.sHintAnswer,
                      "secretPet?rex");
            person(form);
        };
        check();
        EXPECT_FALSE(frame.bPwdReviewMode);
        EXPECT_EQ(frame.sGatePassword + frame.sHintQuestion + frame.sHintAnswer, "");
    }
}

// A form that was shown for a profile without the section would compare with the former one.
TEST_F(PasswordGate, AFormerProfilesPasswordOpensNothing)
{
    check();
    putFile(kProfile, profile::scrambleText("{Destination path}\r\nC:\\Dest\r\n"));
    window.person = [&](state::frmResPwd& form) {
        enter(form, "secret");
        EXPECT_TRUE(form.loaded);
    };
    check();
    EXPECT_EQ(window.shown, 2);
    EXPECT_FALSE(frame.bPwdPassed);
}

// One that an earlier Cancel left says what was then.
TEST_F(PasswordGate, AnOldPlainCopyOpensNothingWhereTheProfileCannotBeRead)
{
    putFile(kPlain, text("False\r\n"));
    script.failCallsNamed("folder.open", base::error_number::kPermissionDenied, "Work.vdp");
    check();
    EXPECT_FALSE(found);
    EXPECT_FALSE(frame.bPwdPassed);
    EXPECT_EQ(window.shown, 0);
    EXPECT_EQ(dialog.shown.size(), 1U);
}

TEST_F(PasswordGate, AsksNothingWhereTheProfileHasNoPassword)
{
    putProfile("False\r\n");
    check();
    EXPECT_TRUE(found);
    EXPECT_TRUE(frame.bPwdPassed);
    EXPECT_FALSE(frame.bPwdReviewMode);
    EXPECT_EQ(window.shown, 0);
    EXPECT_FALSE(plainCopyIsThere());
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
}

TEST_F(PasswordGate, SaysThatThereIsNoBackup)
{
    disk.removeTree("C:\\Dest\\Work\\C");
    check(); // an archive without a byte counts as none
    disk.createFolders("C:\\Dest\\Work\\C\\deep");
    putFile("C:\\Dest\\Work\\C\\deep\\empty", "");
    check();
    disk.removeTree("C:\\Dest\\Work");
    check();
    putProfile("False\r\n");
    check();

    EXPECT_THAT(messageBoxes.texts(), ElementsAre("Backup does not exist for this profile",
                                                  "Backup does not exist for this profile",
                                                  "Backup does not exist for this profile",
                                                  "Backup does not exist for this profile"));
    EXPECT_FALSE(found);
    EXPECT_FALSE(frame.bPwdPassed);
    EXPECT_EQ(window.shown, 0);
    EXPECT_FALSE(plainCopyIsThere());
}

TEST_F(PasswordGate, CountsAByteDeepInTheArchive)
{
    disk.removeTree("C:\\Dest\\Work\\C");
    disk.createFolders("C:\\Dest\\Work\\C\\deep\\er");
    putFile("C:\\Dest\\Work\\C\\deep\\er\\a_FULL_x", "1");
    check();
    EXPECT_TRUE(found);
}

TEST_F(PasswordGate, StaysShutForAProfileThatSaysNothingOfAPassword)
{
    putFile(kProfile, profile::scrambleText("[Work.vdp]\r\nsomething else\r\n"));
    check();
    EXPECT_FALSE(found);
    EXPECT_FALSE(frame.bPwdPassed);
    EXPECT_EQ(window.shown, 0);
    EXPECT_FALSE(plainCopyIsThere());

    putFile(kProfile, profile::scrambleText("{Destination path}\r\nC:\\Dest\r\n{Password}\r\n"));
    check(); // ends inside the section
    EXPECT_FALSE(frame.bPwdPassed);
    EXPECT_EQ(window.shown, 0);
    EXPECT_EQ(dialog.shown.size(), 1U);
}

TEST_F(PasswordGate, StaysShutForAProfileThatIsGone)
{
    disk.removeFile(kProfile);
    check();
    EXPECT_FALSE(frame.bPwdPassed);
    EXPECT_FALSE(frame.bDecryptFileMissing);
    EXPECT_EQ(window.shown, 0);
}

TEST_F(PasswordGate, ReportsAPathThatIsNone)
{
    gate.profilePath = "Work.vdp";
    check();
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text,
              "Before decrypting the profile, String operation leads the error  when checking the "
              "Password");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "MDIForm");
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "PwdCheck");
    EXPECT_FALSE(frame.bPwdPassed);
    EXPECT_THAT(entries(), testing::Contains(testing::StartsWith("PwdCheck Error")));
}

TEST_F(PasswordGate, ReportsANameThatIsTooShortForAnExtension)
{
    gate.profilePath = "C:\\App\\Profiles\\vdp";
    check();
    ASSERT_FALSE(dialog.shown.empty());
    EXPECT_EQ(dialog.shown.back().txtInf.text,
              "String operation leads the error when checking the Password");
    EXPECT_EQ(dialog.shown.back().txtModName.text, "MDIForm");
    EXPECT_FALSE(frame.bPwdPassed);
}

TEST_F(PasswordGate, ReportsAPlainCopyThatCannotBeRead)
{
    bool written = false;
    script.onCallsNamed("file.write", [&](const platform::CallScript::Call&) { written = true; });
    script.onCallsNamed("folder.open", [&](const platform::CallScript::Call& call) {
        if (written && call.subject == kPlain)
            throw base::RuntimeError(base::error_number::kPermissionDenied, call.subject);
    });
    check();
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text, "The decrypted profile is not available");
    EXPECT_EQ(dialog.shown[0].txtSysErrNo.text, "70");
    EXPECT_EQ(frame.pb.value, 0);
    EXPECT_FALSE(frame.bPwdPassed || found);
    EXPECT_FALSE(plainCopyIsThere());
}

TEST_F(PasswordGate, IsTracedByItsStartAndItsEnd)
{
    check();
    EXPECT_THAT(entries(), testing::Contains(testing::StartsWith("PwdCheck End")));
}

// "End" is for a procedure that came to its end: with one there were three entries.
TEST_F(PasswordGate, AFailureIsTracedInPlaceOfTheEnd)
{
    gate.profilePath = "Work.vdp";
    check();
    EXPECT_THAT(entries(), testing::Contains("PwdCheck Error 2"));
}

// Cancelled, the dialog leaves the plain copy; nobody else can read it.
TEST_F(PasswordGate, LeavesThePlainCopyWhereThePersonCancels)
{
    window.person = [&](state::frmResPwd& form) { form.loaded = false; };
    check();
    EXPECT_TRUE(found);
    EXPECT_FALSE(frame.bPwdPassed);
    ASSERT_TRUE(plainCopyIsThere());
    EXPECT_EQ(disk.find(kPlain)->mode & 0777, 0600U);
}

TEST_F(PasswordGate, TheRightAnswerToTheHintLeadsToANewPassword)
{
    window.person = [&](state::frmResPwd& form) {
        lblForgotPwd_Click(gate, form);
        EXPECT_EQ(form.Label1.caption, "Pet?:");
        enter(form, "Rex"); // exactly, or not at all
        EXPECT_EQ(form.wrongHintAnswers, 1);
        enter(form, "rex");
        EXPECT_EQ(form.Label1.caption, "Confirm New Password :");
        EXPECT_TRUE(form.txtconfirm.visible && form.lblconfirm.visible);
        EXPECT_FALSE(form.lblForgotPwd.visible);
        EXPECT_EQ(form.txtRespwd.text, "");
        EXPECT_FALSE(frame.bPwdPassed);

        enter(form, "short", "tiny");
        enter(form, "long enough", "another one");
        EXPECT_EQ(form.txtRespwd.text + form.txtconfirm.text, "");
        // One short entry passes the first test, and the comparison decides.
        enter(form, "short", "long enough");
        EXPECT_TRUE(form.loaded);
        enter(form, "new one", "new one");
        EXPECT_FALSE(form.loaded);
    };
    putFile("C:\\Dest\\Work\\Work.vdp", "old");
    check();

    EXPECT_TRUE(frame.bPwdPassed);
    EXPECT_THAT(messageBoxes.texts(),
                ElementsAre("Invalid Hint Answer", "Enter minimum of six characters",
                            "Both the given passwords should be same",
                            "Both the given passwords should be same"));
    const std::string saved = disk.readAll(kProfile);
    const std::string plain = profile::unscrambleText(saved);
    // Whole lines are replaced, whatever they are: a source path that equals the password, too.
    EXPECT_EQ(plain, "[Work.vdp]\r\n{Source files}\r\nC:\\secret\\\r\nnew one\r\n"
                     "{End Of Source files}\r\n{Destination path}\r\nC:\\Dest\r\n"
                     "{End Of Destination path}\r\n{Password}\r\nTrue\r\nnew one\r\nPet?\r\nrex\r\n"
                     "{End Of Password}\r\n[End of Work.vdp]\r\n");
    EXPECT_EQ(disk.readAll("C:\\Dest\\Work\\Work.vdp"), saved);
    EXPECT_FALSE(plainCopyIsThere());
    EXPECT_THAT(dialog.shown, IsEmpty());
}

TEST_F(PasswordGate, TheFourthWrongAnswerEndsTheMatter)
{
    frame.panel1.text = "Reviewing Archive...";
    window.person = [&](state::frmResPwd& form) {
        lblForgotPwd_Click(gate, form);
        for (int i = 0; i < 3; ++i) {
            enter(form, "no");
            EXPECT_TRUE(form.loaded);
        }
        messageBoxes.script().onCallsNamed("boxes.show", [&](const platform::CallScript::Call&) {
            EXPECT_FALSE(form.loaded) << "it is told when the form and the plain copy are gone";
            EXPECT_FALSE(plainCopyIsThere());
        });
        enter(form, "no");
        EXPECT_FALSE(form.loaded);
    };
    check();

    EXPECT_FALSE(frame.bPwdPassed);
    EXPECT_THAT(messageBoxes.texts(),
                ElementsAre("Invalid Hint Answer", "Invalid Hint Answer", "Invalid Hint Answer",
                            " Sorry Cannot retrieve the Backup "));
    EXPECT_EQ(frame.panel1.text, "");
    EXPECT_FALSE(plainCopyIsThere());
}

// The folder of the archive is found up to the name's first dot here, and without the last four
// characters where the archive is looked for: the two differ for a name with a dot in it.
TEST_F(PasswordGate, ANewPasswordReachesTheFolderNamedUpToTheFirstDot)
{
    constexpr std::string_view kDotted = "C:\\App\\Profiles\\Work.now.vdp";
    putFile(kDotted, disk.readAll(kProfile));
    disk.createFolders("C:\\Dest\\Work.now\\C");
    putFile("C:\\Dest\\Work.now\\C\\a_FULL_x", "x");
    gate.profilePath = kDotted;
    window.person = [&](state::frmResPwd& form) {
        lblForgotPwd_Click(gate, form);
        enter(form, "rex");
        enter(form, "new one", "new one");
    };
    check();
    EXPECT_TRUE(found);
    EXPECT_TRUE(disk.fileExists("C:\\Dest\\Work\\Work.now.vdp"));
    EXPECT_FALSE(disk.fileExists("C:\\Dest\\Work.now\\Work.now.vdp"));
}

// What the two boxes hold, and what comes of it.
TEST_F(PasswordGate, TheTwoBoxesOfANewPassword)
{
    constexpr std::string_view kShort = "Enter minimum of six characters";
    constexpr std::string_view kNotSame = "Both the given passwords should be same";
    struct Row {
        std::string_view first;
        std::string_view second;
        std::string_view message; // empty: taken
    };
    const Row rows[] = {
        {"", "", kShort},
        {"short", "short", kShort},
        {"short", "", kShort},
        {"short", "sixsix", kNotSame},
        {"sixsix", "short", kNotSame},
        {"", "sixsix", kNotSame},
        {"sixsix", "sixsiX", kNotSame},
        {"sixsix", "sixsix ", kNotSame},
        {"sixsix", "sixsix", ""},
        {"seven77", "seven77", ""},
    };
    for (const Row& row : rows) {
        putProfile("True\r\nsecret\r\nPet?\r\nrex\r\n");
        clearBoxes();
        window.person = [&](state::frmResPwd& form) {
            lblForgotPwd_Click(gate, form);
            enter(form, "rex");
            window.focused.clear();
            enter(form, row.first, row.second);
            EXPECT_EQ(form.loaded, !row.message.empty()) << row.first;
            if (row.message.empty())
                return;
            EXPECT_EQ(form.txtRespwd.text + form.txtconfirm.text, "");
            EXPECT_THAT(window.focused, ElementsAre("txtRespwd"));
        };
        check();
        EXPECT_EQ(frame.bPwdPassed, row.message.empty()) << row.first << "|" << row.second;
        if (row.message.empty())
            EXPECT_THAT(messageBoxes.texts(), IsEmpty());
        else
            EXPECT_THAT(messageBoxes.texts(), ElementsAre(row.message));
    }
}

// Its next save would bring the forgotten password back.
TEST_F(PasswordGate, AnEditorThatShowsTheProfileGetsTheNewPassword)
{
    const auto recover = [&] {
        window.person = [&](state::frmResPwd& form) {
            lblForgotPwd_Click(gate, form);
            enter(form, "rex");
            enter(form, "new one", "new one");
        };
        check();
    };
    std::string& known = store.scalars.sProfilePassword;
    std::string& box = editor.txtPassWord.text;
    known = box = "secret";
    recover();
    EXPECT_EQ(known, "new one");
    EXPECT_EQ(box, "new one");

    putProfile("True\r\nsecret\r\nPet?\r\nrex\r\n");
    known = box = "typed meanwhile";
    recover();
    EXPECT_EQ(known, "typed meanwhile");
    EXPECT_EQ(box, "typed meanwhile");
}

// Whatever call fails or is the last of the process: the profile is the old one or the new one,
// whole and scrambled.
TEST_F(PasswordGate, ANewPasswordIsThereWholeOrNotAtAll)
{
    const std::string before = disk.readAll(kProfile);
    putFile("C:\\Dest\\Work\\Work.vdp", before);
    std::string after;
    const auto run = [&] {
        putFile(kProfile, before);
        putFile("C:\\Dest\\Work\\Work.vdp", before);
        putFile(kPlain, text("True\r\nsecret\r\nPet?\r\nrex\r\n"));
        frame.sGatePassword = "secret";
        try {
            WriteTxtForNewProf(gate, "new one");
        } catch (const platform::Killed&) {
            return;
        }
    };
    run();
    after = disk.readAll(kProfile);
    ASSERT_NE(after, before);
    EXPECT_EQ(disk.readAll("C:\\Dest\\Work\\Work.vdp"), after);
    script.reset();
    run();
    const std::size_t calls = script.callCount();
    ASSERT_GT(calls, 5U);
    for (const bool killed : {false, true}) {
        for (std::size_t call = 1; call <= calls; ++call) {
            dialog.shown.clear();
            script.reset();
            if (killed)
                script.killAtCall(call);
            else
                script.failCall(call, base::error_number::kDiskFull);
            run();
            for (const std::string_view path :
                 {kProfile, std::string_view("C:\\Dest\\Work\\Work.vdp")}) {
                ASSERT_TRUE(disk.fileExists(path)) << path << " after call " << call;
                const std::string now = disk.readAll(path);
                EXPECT_TRUE(now == before || now == after) << path << " after call " << call;
            }
            if (!dialog.shown.empty()) {
                EXPECT_EQ(dialog.shown[0].txtInf.text, "WriteTxtForNewProf");
                EXPECT_EQ(dialog.shown[0].txtProcName.text, "WriteTxtForNewProf");
            }
        }
    }
}

TEST_F(PasswordGate, AFullDiskKeepsTheOldPassword)
{
    const std::string before = disk.readAll(kProfile);
    window.person = [&](state::frmResPwd& form) {
        lblForgotPwd_Click(gate, form);
        enter(form, "rex");
        script.failCallsNamed("file.write", base::error_number::kDiskFull);
        enter(form, "new one", "new one");
    };
    check();
    EXPECT_EQ(disk.readAll(kProfile), before);
    EXPECT_EQ(dialog.shown.size(), 1U);
    EXPECT_FALSE(plainCopyIsThere());
}

} // namespace
} // namespace vardelin::runs
