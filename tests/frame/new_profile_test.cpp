#include "editor/password_page.h"
#include "frame_rig.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using platform::Answer;
using test::FrameRig;
using Texts = std::vector<std::string>;

TEST(NewCommand, ShowsAnEmptyEditor)
{
    FrameRig rig;
    rig.mainForm.Picture2Visible = true;
    rig.frame.BL_First_Run = true;
    mnuNew_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "N");
    EXPECT_EQ(rig.enabled(), "01100 01100");
    EXPECT_TRUE(rig.mainForm.mnuExpand.enabled);
    EXPECT_TRUE(rig.mainForm.mnuCollapse.enabled);
    EXPECT_EQ(rig.leaving(), "111");
    EXPECT_EQ(rig.mainForm.Toolbar1(1).toolTip, "New");
    EXPECT_EQ(rig.formWindow.caption, "New Profile");
    EXPECT_TRUE(rig.formWindow.loaded);
    EXPECT_TRUE(rig.formWindow.visible);
    EXPECT_EQ(rig.windows.calls, (Texts{"unloadLogs", "unloadReview", "showEditor"}));
    EXPECT_EQ(rig.frame.panel1.text, "New Profile Window");
    EXPECT_FALSE(rig.frame.BL_First_Run);
    EXPECT_FALSE(rig.mainForm.Picture2Visible);
    EXPECT_TRUE(rig.messages().empty());
}

TEST(NewCommand, KeepsNothingOfTheFormerProfile)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.frame.BL_Recent_Found = true;
    rig.frame.ST_Remote_Name = "Far.vdp";
    rig.frame.ST_Remote_Path = "E:\\Far.vdp";
    rig.frame.bPwdChangeMode = rig.frame.bPwdConfirmMode = rig.frame.bPwdDialogCancelled = true;
    rig.frame.bPwdReviewMode = rig.frame.bPwdPassed = true;
    rig.frame.sGatePassword = rig.frame.sHintQuestion = rig.frame.sHintAnswer = "x";
    rig.frame.sOldIdleTime = "15";
    rig.frame.BL_Dest_Moved = true;
    rig.record.txtPassWord.text = rig.record.txtHintAns.text = "x";
    rig.record.txtInclNames.text = rig.record.txtExclNames.text = "x";
    rig.pagesForm.otherdata.loaded = true;
    rig.store.scalars.bProfileHasPassword = true;
    rig.store.scalars.sProfilePassword = "secret";
    rig.store.scalars.bEncryptFiles = true;
    rig.store.scalars.bOptionsLoaded = true;
    rig.store.scalars.bHaveIncluded = true;
    rig.store.scalars.bDestinationChanged = true;
    rig.store.scalars.sBackupPackageFolder = "E:\\Packages";
    rig.store.save.clxnExcluded.add(".doc", ".doc");
    rig.store.save.clxnFolderNames.add("Data");
    for (base::TextCollection* const each :
         {&rig.store.opened.clxnOpenedSources, &rig.store.opened.clxnOpenedExcluded,
          &rig.store.opened.clxnOpenedIncluded, &rig.store.opened.clxnOpenedOtherData})
        each->add("x", "x");
    mnuNew_Click(rig.commands);

    state::FrameState& frame = rig.frame;
    EXPECT_FALSE(frame.bPwdChangeMode || frame.bPwdConfirmMode || frame.bPwdDialogCancelled ||
                 frame.bPwdReviewMode || frame.bPwdPassed);
    EXPECT_FALSE(frame.BL_Dest_Moved || frame.BL_Recent_Found);
    for (std::string* const text :
         {&frame.sGatePassword, &frame.sHintQuestion, &frame.sHintAnswer, &frame.sOldIdleTime,
          &frame.ST_Current_Profile, &frame.ST_Current_Profile_Path, &frame.ST_Last_Saved_Profile,
          &frame.ST_Remote_Name, &frame.ST_Remote_Path, &rig.record.txtPassWord.text,
          &rig.record.txtHintAns.text, &rig.record.txtInclNames.text, &rig.record.txtExclNames.text,
          &rig.store.scalars.sProfilePassword, &rig.store.scalars.sPreviousDestination,
          &rig.record.txtDestLoc.text})
        EXPECT_EQ(*text, "");
    const state::ProfileScalars& scalars = rig.store.scalars;
    EXPECT_FALSE(scalars.bProfileHasPassword || scalars.bEncryptFiles || scalars.bOptionsLoaded ||
                 scalars.bHaveIncluded || scalars.bDestinationChanged);
    EXPECT_EQ(scalars.sBackupPackageFolder, "E:\\Packages");
    EXPECT_EQ(rig.record.chkPassword.value, 0);
    EXPECT_TRUE(rig.record.Frame14.visible);
    EXPECT_FALSE(rig.pagesForm.otherdata.loaded);
    for (const base::TextCollection* const each :
         {&rig.store.opened.clxnOpenedSources, &rig.store.opened.clxnOpenedExcluded,
          &rig.store.opened.clxnOpenedIncluded, &rig.store.opened.clxnOpenedOtherData,
          &rig.store.save.clxnExcluded, &rig.store.save.clxnFolderNames})
        EXPECT_EQ(each->count(), 0U);
}

// It showed when a profile without a password was made after one that had one: the file held the
// former password, and its owner could not open the archive.
TEST(NewCommand, ANewPasswordIsTheNewProfilesOwn)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.store.scalars.bProfileHasPassword = true;
    rig.store.scalars.sProfilePassword = "former-one";
    rig.newProfile();
    rig.record.chkPassword.value = 1;
    editor::chkPassword_Click(rig.pages);
    rig.record.txtPassWord.text = "second-one";
    editor::txtPassWord_Change(rig.pages);
    rig.record.cmbHintQues.text = "Favorite Past-time ?";
    rig.record.txtHintAns.text = "sleep";
    rig.enterName("Home");
    mnuSave_Click(rig.commands);
    EXPECT_TRUE(rig.messages().empty());
    EXPECT_NE(rig.saved("Home.vdp").find("True\r\nsecond-one\r\n"), std::string::npos);
    EXPECT_EQ(rig.saved("Home.vdp").find("former-one"), std::string::npos);
    // Nothing was changed in the saved profile: the next save has no word for its archive.
    rig.put({"E:\\Backup\\Home\\Home.vdp"});
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_TRUE(rig.messages().empty());
}

TEST(NewCommand, AsksToSaveAndGoesOnOnEitherAnswer)
{
    for (const Answer answer : {Answer::Yes, Answer::No}) {
        FrameRig rig;
        rig.savedProfile("Work");
        rig.record.txtInclNames.text = "*.new";
        rig.frame.BL_Edit_Changed = true;
        rig.answer({answer});
        mnuNew_Click(rig.commands);
        EXPECT_EQ(rig.messages(), Texts{"Do you want to Save the Profile?"});
        EXPECT_EQ(rig.saved("Work.vdp").find("*.new") != std::string::npos, answer == Answer::Yes);
        EXPECT_EQ(rig.modes(), "N");
    }
}

TEST(NewCommand, AnUnchangedOrOpenedProfileIsLeftWithoutAQuestion)
{
    FrameRig rig;
    rig.savedProfile("Work");
    mnuNew_Click(rig.commands);
    EXPECT_TRUE(rig.messages().empty());
    EXPECT_EQ(rig.modes(), "N");
}

TEST(NewCommand, ARefusedSaveStopsIt)
{
    FrameRig rig;
    rig.newProfile();
    rig.answer({Answer::Yes});
    rig.cancelName();
    mnuNew_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "Nn");
    EXPECT_EQ(rig.record.txtDestLoc.text, "E:\\Backup");
}

// From the first save on, whole: a name that is taken, another one, a change, a save.
TEST(NewCommand, AProfileIsMadeAndEdited)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.newProfile();
    rig.enterName("work");
    rig.enterName("Home");
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.formWindow.caption, "Home Profile");
    rig.change();
    rig.record.txtExclNames.text = "*.tmp";
    mnuSave_Click(rig.commands);
    EXPECT_NE(rig.saved("Home.vdp").find("*.tmp"), std::string::npos);
    EXPECT_EQ(rig.saved("Work.vdp").find("*.tmp"), std::string::npos);
    rig.answer({Answer::Yes});
    EXPECT_TRUE(mnuExit_Click(rig.commands));
    EXPECT_TRUE(rig.list().ends_with("[Recent Profile]\r\nHome.vdp\r\n"));
}

} // namespace
} // namespace vardelin::frame
