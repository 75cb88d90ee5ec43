#include "editor/schedule_page.h"
#include "frame_rig.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using platform::Answer;
using test::FrameRig;
using Texts = std::vector<std::string>;

constexpr const char* kMedia = "E:\\Media\\Far.vdp";

// Two saved profiles, the second one in the editor.
struct TwoProfiles : FrameRig {
    TwoProfiles()
    {
        savedProfile("Home");
        savedProfile("Work");
    }
};

TEST(OpenCommand, ShowsAProfileForViewing)
{
    TwoProfiles rig;
    rig.frame.BL_First_Run = true;
    Texts shown;
    rig.messageLoop.onYield = [&] { shown.push_back(rig.frame.panel1.text); };
    rig.openByDialog("Home.vdp");
    mnuOpen_Click(rig.commands);
    ASSERT_FALSE(shown.empty());
    EXPECT_EQ(shown.front(), "Please Wait... Scanning the System to get .vdp Files");
    EXPECT_EQ(rig.modes(), "O");
    EXPECT_EQ(rig.enabled(), "10011 10011");
    EXPECT_EQ(rig.leaving(), "111");
    EXPECT_EQ(rig.mainForm.Toolbar1(2).toolTip, "Open");
    EXPECT_EQ(rig.formWindow.caption, "Home Profile");
    EXPECT_TRUE(rig.formWindow.visible);
    EXPECT_TRUE(rig.windows.called("showEditor"));
    EXPECT_EQ(rig.frame.panel1.text, "Displaying 'Home' Profile");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Home.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Home.vdp");
    EXPECT_FALSE(rig.frame.BL_First_Run);
    EXPECT_FALSE(rig.frame.bListingProfiles);
    EXPECT_TRUE(rig.messages().empty());
}

// The review that stands open has passed the gate of the former profile's password.
TEST(OpenCommand, TakesTheReviewAndTheLogsOfTheFormerProfileAway)
{
    TwoProfiles rig;
    rig.frame.bPwdPassed = rig.frame.bPwdChangeMode = rig.frame.BL_Dest_Moved = true;
    rig.frame.sOldIdleTime = "15";
    rig.pagesForm.otherdata.loaded = true;
    rig.pagesForm.bDestRevert = true;
    rig.form.clxnDeferredChecks.add("Data");
    rig.form.clxnInheritedNames.add("Data");
    rig.store.save.clxnExcluded.add(".doc", ".doc");
    rig.store.scalars.bDestinationChanged = rig.store.scalars.bHaveIncluded = true;
    rig.record.Frame14.visible = false;
    rig.openByDialog("Home.vdp");
    mnuOpen_Click(rig.commands);
    EXPECT_TRUE(rig.windows.called("unloadReview"));
    EXPECT_TRUE(rig.windows.called("unloadLogs"));
    EXPECT_FALSE(rig.frame.bPwdPassed || rig.frame.bPwdChangeMode || rig.frame.BL_Dest_Moved);
    EXPECT_EQ(rig.frame.sOldIdleTime, "");
    EXPECT_FALSE(rig.pagesForm.otherdata.loaded || rig.pagesForm.bDestRevert);
    EXPECT_EQ(rig.form.clxnDeferredChecks.count() + rig.form.clxnInheritedNames.count(), 0U);
    EXPECT_EQ(rig.store.save.clxnExcluded.count(), 0U);
    EXPECT_FALSE(rig.store.scalars.bDestinationChanged || rig.store.scalars.bHaveIncluded);
    EXPECT_TRUE(rig.record.Frame14.visible);
}

TEST(OpenCommand, LeavingTheDialogLeavesTheProfileAsItWas)
{
    for (const bool byFrame : {true, false}) {
        TwoProfiles rig;
        rig.frame.BL_First_Run = true;
        rig.frame.BL_Recent_Found = true;
        if (!byFrame)
            rig.windows.inOpenProfile = [](profile::OpeningContext& asked) {
                profile::cmdClose_Click(asked);
            };
        rig.store.opened.clxnOpenedSources.add("D:\\Data\\", "D:\\Data\\");
        mnuOpen_Click(rig.commands);
        EXPECT_EQ(rig.modes(), "E");
        EXPECT_TRUE(rig.frame.BL_First_Run);
        EXPECT_TRUE(rig.frame.BL_Recent_Found);
        EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
        EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Work.vdp");
        EXPECT_EQ(rig.frame.ST_Last_Saved_Profile, "Work.vdp");
        // A save takes the sources of drives that were not opened yet from there.
        EXPECT_EQ(rig.store.opened.clxnOpenedSources.count(), 1U);
        EXPECT_EQ(rig.enabled(), "01111 01111");
        EXPECT_FALSE(rig.windows.called("unloadReview"));
        rig.frame.BL_First_Run = false;
        rig.change();
        mnuSave_Click(rig.commands);
        EXPECT_NE(rig.saved("Work.vdp").find("D:\\Data\\"), std::string::npos);
    }
}

TEST(OpenCommand, ADialogThatCannotBeShownLeavesTheProfileAsItWas)
{
    TwoProfiles rig;
    rig.change();
    rig.answer({Answer::No});
    rig.windows.inOpenProfile = [](profile::OpeningContext&) { throw base::RuntimeError(57); };
    mnuOpen_Click(rig.commands);
    EXPECT_EQ(rig.errorsShown(), Texts{"mnuOpen_Click: mnuOpen_Click"});
    EXPECT_EQ(rig.modes(), "Ee");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
}

TEST(OpenCommand, ChangesThatWereNotSavedAreStillThereWhenTheDialogIsLeft)
{
    for (const bool isNew : {true, false}) {
        TwoProfiles rig;
        if (isNew)
            rig.newProfile();
        else
            rig.change();
        rig.answer({Answer::No});
        mnuOpen_Click(rig.commands);
        EXPECT_EQ(rig.messages(), Texts{"Do you want to Save the Profile?"});
        EXPECT_EQ(rig.modes(), isNew ? "Nn" : "Ee");
        EXPECT_EQ(rig.record.txtDestLoc.text, "E:\\Backup");
    }
}

TEST(OpenCommand, ASavedNewProfileIsAnEditedOneWhenTheDialogIsLeft)
{
    TwoProfiles rig;
    rig.newProfile();
    rig.answer({Answer::Yes});
    rig.enterName("Third");
    mnuOpen_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "E");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Third.vdp");
}

TEST(OpenCommand, ARefusedSaveStopsIt)
{
    TwoProfiles rig;
    rig.newProfile();
    rig.answer({Answer::Yes});
    rig.cancelName();
    mnuOpen_Click(rig.commands);
    EXPECT_FALSE(rig.windows.called("showOpenProfile"));
    EXPECT_EQ(rig.modes(), "Nn");
}

TEST(OpenCommand, AProfileThatIsOpenIsNotOpenedAgain)
{
    TwoProfiles rig;
    rig.openByDialog("Work.vdp");
    mnuOpen_Click(rig.commands);
    EXPECT_EQ(rig.messages(), Texts{"This profile is already opened"});
    EXPECT_EQ(rig.modes(), "E");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
    EXPECT_EQ(rig.record.txtDestLoc.text, "E:\\Backup");
}

TEST(OpenCommand, WithoutALocalProfileItPointsToTheMedia)
{
    FrameRig rig;
    mnuOpen_Click(rig.commands);
    EXPECT_EQ(rig.messages(), Texts{"There is No Profile in the Local System\r\n"
                                    "Select Profiles from Backup media"});
    EXPECT_TRUE(rig.windows.called("showOpenProfile"));
}

TEST(OpenCommand, AfterCloseTheEditorComesWithTheProfileOrStaysAway)
{
    for (const bool opens : {true, false}) {
        TwoProfiles rig;
        mnuClose_Click(rig.commands);
        if (opens)
            rig.openByDialog("Home.vdp");
        mnuOpen_Click(rig.commands);
        EXPECT_EQ(rig.formWindow.loaded, opens);
        EXPECT_EQ(rig.leaving(), opens ? "111" : "000");
        EXPECT_EQ(rig.modes(), opens ? "O" : "");
        if (opens) {
            EXPECT_EQ(rig.record.txtDestLoc.text, "E:\\Backup");
        }
    }
}

// A file says nothing of the patterns that it does not use.
TEST(OpenCommand, ATimetableIsNotTakenOverFromTheFormerProfile)
{
    TwoProfiles rig;
    const auto open = [&](const std::string& name) {
        rig.openByDialog(name);
        mnuOpen_Click(rig.commands);
        mnuEdit_Click(rig.commands);
    };
    open("Home.vdp");
    rig.record.chkAutoSched.value = 1;
    editor::chkAutoSched_Click(rig.pages);
    state::choose(rig.record.patternOptions(), 2);
    editor::optWeekly_Click(rig.pages);
    rig.record.txtLatestVer.text = "3";
    rig.record.txtWeeklyRecur.text = "9";
    rig.record.dtpWeekly.value = {{}, {23, 59, 0}};
    rig.record.lstWeekDays.rows[3].selected = true;
    mnuSave_Click(rig.commands);
    ASSERT_EQ(rig.modes(), "E");

    open("Work.vdp");
    EXPECT_EQ(rig.record.chkAutoSched.value, 0);
    EXPECT_EQ(state::chosen(std::as_const(rig.record).patternOptions()), 0);
    EXPECT_TRUE(rig.record.Frame6.visible);
    EXPECT_EQ(rig.record.txtWeeklyRecur.text, "1");
    EXPECT_EQ(rig.record.dtpWeekly.value.time, base::TimeOfDay{});
    EXPECT_EQ(rig.record.dtpStDate.value.date, rig.clock.now().date);
    EXPECT_EQ(rig.store.scalars.dStartDate, base::Date{});

    open("Home.vdp");
    EXPECT_EQ(state::chosen(std::as_const(rig.record).patternOptions()), 2);
    EXPECT_TRUE(rig.record.Frame7.visible);
    EXPECT_EQ(rig.record.txtWeeklyRecur.text, "9");
    EXPECT_EQ(rig.record.dtpWeekly.value.time, (base::TimeOfDay{23, 59, 0}));
    EXPECT_TRUE(rig.record.lstWeekDays.rows[3].selected);
}

// It vanished between its listing and its reading, and by then the editor holds nothing.
TEST(OpenCommand, AProfileThatVanishedBringsTheFormerOneBack)
{
    for (const char* mode : {"E", "O", "N", ""}) {
        TwoProfiles rig;
        if (*mode == 'O') {
            rig.openByDialog("Work.vdp");
            rig.frame.ST_Last_Saved_Profile = "";
            mnuOpen_Click(rig.commands);
        } else if (*mode == 'N') {
            mnuNew_Click(rig.commands);
        } else if (*mode == '\0') {
            mnuClose_Click(rig.commands);
        }
        rig.openByDialog("Home.vdp");
        rig.script.onCallsNamed("folder.open", [&](const auto& call) {
            if (!rig.openForm.lstOpen.rows.empty() && call.subject.ends_with("Home.vdp") &&
                rig.isSaved("Home.vdp"))
                rig.disk.removeFile(FrameRig::pathOf("Home.vdp"));
        });
        rig.dialog.shown.clear();
        mnuOpen_Click(rig.commands);
        EXPECT_FALSE(rig.frame.bDecryptFileMissing);
        EXPECT_FALSE(rig.dialog.shown.empty());
        EXPECT_EQ(rig.modes(), mode);
        if (*mode == 'E' || *mode == 'O') {
            EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
            EXPECT_EQ(rig.formWindow.caption, "Work Profile");
            EXPECT_EQ(rig.record.txtDestLoc.text, "E:\\Backup");
        }
        if (*mode == 'E') {
            rig.change();
            mnuSave_Click(rig.commands);
            EXPECT_NE(rig.saved("Work.vdp").find("D:\\Data\\\r\n"), std::string::npos);
        }
    }
}

TEST(EditCommand, TurnsTheViewIntoAProfileThatMayBeChanged)
{
    TwoProfiles rig;
    rig.openByDialog("Home.vdp");
    mnuOpen_Click(rig.commands);
    rig.frame.BL_Edit_Changed = true;
    mnuEdit_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "E");
    EXPECT_EQ(rig.enabled(), "01111 01111");
    EXPECT_EQ(rig.formWindow.caption, "Home Profile");
    EXPECT_EQ(rig.mainForm.Toolbar1(3).toolTip, "Edit");
    EXPECT_EQ(rig.frame.panel1.text, "Editing Profile...");
    EXPECT_EQ(rig.frame.pb.value, 0);
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_NE(rig.saved("Home.vdp").find("D:\\Data\\\r\n"), std::string::npos);
}

TEST(EditCommand, TheCaptionFollowsTheName)
{
    for (const auto& [name, caption] : {std::pair{" Home.vdp ", "Home Profile"},
                                        {"", "Profile Manager"},
                                        {"  ", "Profile Manager"},
                                        {"a.b.vdp", "a.b Profile"},
                                        {"x", " Profile"}}) {
        FrameRig rig;
        rig.frame.BL_Open_Mode = true;
        rig.frame.ST_Current_Profile = name;
        mnuEdit_Click(rig.commands);
        EXPECT_EQ(rig.formWindow.caption, caption);
    }
}

// The check fills the form from what was opened: in the midst of editing it would take changes
// back.
TEST(EditCommand, OutsideAViewItDoesNothing)
{
    TwoProfiles rig;
    rig.change();
    rig.windows.calls.clear();
    mnuEdit_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "Ee");
    EXPECT_TRUE(rig.windows.calls.empty());
}

TEST(OpenCommand, AProfileFromMediaIsKeptOrGivenBackWhenItIsLeft)
{
    for (const bool keep : {true, false}) {
        FrameRig rig;
        rig.savedProfile("Far");
        rig.disk.createFolder("E:\\Media");
        rig.disk.copyFile(FrameRig::pathOf("Far.vdp"), kMedia);
        rig.disk.removeFile(FrameRig::pathOf("Far.vdp"));
        rig.savedProfile("Work");
        rig.openFromMedia(kMedia);
        mnuOpen_Click(rig.commands);
        ASSERT_TRUE(rig.isSaved("Far.vdp"));
        ASSERT_TRUE(rig.frame.BL_Remote_Profile);
        mnuEdit_Click(rig.commands);
        rig.record.txtInclNames.text = "*.new";
        rig.frame.BL_Edit_Changed = true;
        rig.clearBoxes();
        rig.answer({Answer::Yes, keep ? Answer::Yes : Answer::No});
        mnuClose_Click(rig.commands);
        EXPECT_EQ(rig.messages(),
                  (Texts{"Do you want to Save the Profile?",
                         "Do you want to copy the profile Far.vdp to Local system?"}));
        EXPECT_EQ(rig.isSaved("Far.vdp"), keep);
        const std::string media = profile::unscrambleText(rig.disk.readAll(kMedia));
        EXPECT_EQ(media.find("*.new") != std::string::npos, !keep);
        EXPECT_EQ(rig.modes(), "");
    }
}

} // namespace
} // namespace vardelin::frame
