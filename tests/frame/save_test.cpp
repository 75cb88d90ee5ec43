#include "frame_rig.h"
#include "profile/list_file.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using platform::Answer;
using test::FrameRig;
using Texts = std::vector<std::string>;

constexpr const char* kPrimaryQuestion = "Do You want to Set this Profile as Primary Profile?";

TEST(SaveCommand, ANewProfileIsSavedUnderTheNameThatIsEntered)
{
    FrameRig rig;
    rig.newProfile();
    rig.enterName("Work");
    mnuSave_Click(rig.commands);
    EXPECT_NE(rig.saved("Work.vdp").find("{Source files}\r\nD:\\Data\\\r\n"), std::string::npos);
    EXPECT_EQ(rig.saved("Work.vdp").substr(0, 12), "[Work.vdp]\r\n");
    EXPECT_EQ(rig.names("C:\\App\\Profiles"), Texts{"Work.vdp"});
    EXPECT_EQ(rig.modes(), "E");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Work.vdp");
    EXPECT_EQ(rig.frame.ST_Last_Saved_Profile, "Work.vdp");
    EXPECT_EQ(rig.formWindow.caption, "Work Profile");
    EXPECT_EQ(rig.enabled(), "01111 01111");
    EXPECT_EQ(rig.mainForm.Toolbar1(4).toolTip, "Save");
    EXPECT_FALSE(rig.record.Frame14.visible);
    EXPECT_EQ(rig.frame.panel1.text, "");
    EXPECT_EQ(rig.messages(), Texts{kPrimaryQuestion});
    EXPECT_EQ(rig.boxes().front().title, "Vardelin");
    EXPECT_EQ(rig.boxes().front().buttons, platform::Buttons::YesNo);
    EXPECT_TRUE(rig.dialog.shown.empty());
    EXPECT_FALSE(rig.mainForm.hourglass);
}

TEST(SaveCommand, EveryProcedureOnTheWayIsTraced)
{
    FrameRig rig;
    rig.newProfile();
    rig.enterName("Work");
    mnuSave_Click(rig.commands);
    const Texts entries = rig.entries();
    for (const char* expected : {"mnuSave_Click Start 1", "SaveProfile Start 1",
                                 "PrSaveNameIp Start 1", "cmdProfileOK_Click End 2",
                                 "PrSaveNameIp End 1", "SaveProfile End 1", "mnuSave_Click End 1"})
        EXPECT_NE(std::find(entries.begin(), entries.end(), expected), entries.end()) << expected;
}

TEST(SaveCommand, ShowsHowFarItHasCome)
{
    FrameRig rig;
    rig.newProfile();
    rig.enterName("Work");
    Texts shown;
    rig.messageLoop.onYield = [&] {
        shown.push_back(rig.frame.panel1.text);
        EXPECT_TRUE(rig.mainForm.hourglass);
    };
    SaveProfile(rig.commands);
    EXPECT_EQ(shown, (Texts{"Saving Profile...", "Saving Profile....", "Saving Profile.....",
                            "Saving Profile.....", "Saving Profile......"}));
    EXPECT_EQ(rig.frame.panel1.text, "Profile Saved");
}

TEST(SaveCommand, TheFileIsPlainWhileTheScheduleIsRegisteredAndTheMarkersComeLast)
{
    FrameRig rig;
    rig.newProfile();
    rig.record.chkAutoSched.value = 1;
    rig.record.optDaily.value = true;
    rig.record.txtDailyRecur.text = "1";
    rig.record.dtpStDate.value = rig.clock.now();
    rig.enterName("Work");
    bool plainAtImport = false;
    rig.registry.script().onCallsNamed("registry.setValue", [&](const auto&) {
        plainAtImport = rig.disk.readAll(FrameRig::pathOf("Work.vdp")).starts_with("[Work.vdp]");
        EXPECT_EQ(rig.list(), "");
    });
    rig.answer({Answer::Yes});
    mnuSave_Click(rig.commands);
    EXPECT_TRUE(plainAtImport);
    EXPECT_FALSE(rig.disk.readAll(FrameRig::pathOf("Work.vdp")).starts_with("[Work.vdp]"));
    EXPECT_EQ(rig.list(), "[Primary Profile]\r\nWork.vdp\r\n");
}

TEST(SaveCommand, ANameThatIsTakenInAnyCaseIsAskedForAgain)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.newProfile();
    for (const char* name : {"Work", "WORK.VDP", "work.vdp", "Home"})
        rig.enterName(name);
    mnuSave_Click(rig.commands);
    EXPECT_EQ(
        rig.messages(),
        (Texts{"The Profile name Work.vdp already exists. Enter Other name for the Profile",
               "The Profile name WORK.VDP already exists. Enter Other name for the Profile",
               "The Profile name work.vdp already exists. Enter Other name for the Profile"}));
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Home.vdp");
    EXPECT_TRUE(rig.isSaved("Home.vdp"));
}

TEST(SaveCommand, TheExtensionAloneIsNoName)
{
    for (const char* name : {".vdp", ".VDP", " .Vdp "}) {
        FrameRig rig;
        rig.newProfile();
        rig.enterName(name);
        mnuSave_Click(rig.commands);
        EXPECT_EQ(rig.messages(), Texts{"The Profile Name .vdp is not applicable one"});
        EXPECT_EQ(rig.modes(), "Nn");
        EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "");
        EXPECT_TRUE(rig.names("C:\\App\\Profiles").empty());
    }
}

// What is pasted passes no key handler; a backslash would write the profile elsewhere.
TEST(SaveCommand, APastedNameThatNoFileCanHaveIsAskedForAgain)
{
    FrameRig rig;
    rig.newProfile();
    for (const char* name : {"..\\Data\\Work", "a/b", "a:b", "a*", "a\tb", "my.work"})
        rig.enterName(name);
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.messages().size(), 6U); // five refusals and the primary question
    EXPECT_EQ(rig.messages().front(),
              "The Profile name ..\\Data\\Work.vdp holds characters that no name can have. Enter "
              "Other name for the Profile");
    EXPECT_EQ(rig.names("C:\\App\\Profiles"), Texts{"my.work.vdp"});
}

TEST(SaveCommand, CancellingTheNameLeavesEverythingAsItWas)
{
    FrameRig rig;
    rig.newProfile();
    rig.cancelName();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "Nn");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "");
    EXPECT_FALSE(rig.frame.BL_Name_Cancelled);
    EXPECT_FALSE(rig.frame.BL_Save_Blocked);
    EXPECT_TRUE(rig.messages().empty());
    EXPECT_TRUE(rig.names("C:\\App\\Profiles").empty());
}

TEST(SaveCommand, CancellingTheNameOfACopyKeepsThePathOfTheProfile)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.cancelName();
    mnuSaveAs_Click(rig.commands);
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Work.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
    EXPECT_EQ(rig.frame.panel1.text, "");
}

TEST(SaveCommand, IsSilentWhenNothingChanged)
{
    FrameRig rig;
    rig.savedProfile("Work");
    const std::string before = rig.disk.readAll(FrameRig::pathOf("Work.vdp"));
    rig.formWindow.SSTab1 = 2;
    rig.script.reset();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.script.countOf("file.write"), 0U);
    EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), before);
    EXPECT_TRUE(rig.messages().empty());
    EXPECT_TRUE(rig.windows.calls.empty());
    EXPECT_EQ(rig.formWindow.SSTab1, 2);
}

TEST(SaveCommand, AnEditedProfileIsSavedWithoutAskingForAName)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.record.Frame14.visible = true;
    rig.change();
    rig.formWindow.SSTab1 = 2;
    rig.record.txtInclNames.text = "*.doc";
    mnuSave_Click(rig.commands);
    EXPECT_NE(rig.saved("Work.vdp").find("*.doc"), std::string::npos);
    EXPECT_EQ(rig.modes(), "E");
    EXPECT_TRUE(rig.windows.calls.empty());
    EXPECT_TRUE(rig.messages().empty());
    EXPECT_EQ(rig.formWindow.SSTab1, 0);
    EXPECT_FALSE(rig.record.Frame14.visible);
    EXPECT_EQ(rig.enabled(), "01111 01111");
}

// Only a confirmation blocks a save that lacks sources, so that the plain command takes the branch
// of a save that went through and shows the first tab, whichever tab was named.
TEST(SaveCommand, WithoutSourcesOrDestinationTheFirstTabShows)
{
    for (const bool sources : {false, true}) {
        FrameRig rig;
        mnuNew_Click(rig.commands);
        if (sources)
            rig.fill();
        rig.record.txtDestLoc.text.clear();
        rig.formWindow.SSTab1 = 2;
        mnuSave_Click(rig.commands);
        EXPECT_EQ(rig.messages().back(), sources ? "Select the Backup  Location in Backup Options"
                                                 : "No Files\\Folders selected to Backup");
        EXPECT_EQ(rig.formWindow.SSTab1, 0);
        EXPECT_FALSE(rig.windows.called("showRestDialog"));
        EXPECT_EQ(rig.store.scalars.iValidationTab, 0);
        EXPECT_TRUE(rig.frame.BL_New_Mode);
    }
}

TEST(SaveCommand, WhatAStoppedSaveFoundDoesNotCountForTheNextOne)
{
    FrameRig rig;
    rig.newProfile();
    rig.cancelName();
    mnuSave_Click(rig.commands);
    rig.untick("D:\\Data\\");
    rig.windows.calls.clear();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.messages(), Texts{"No Files\\Folders selected to Backup"});
    EXPECT_FALSE(rig.windows.called("showRestDialog"));
}

TEST(SaveCommand, ARefusalShowsTheTabThatItNames)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.record.chkIdle.value = 1; // no minutes
    rig.record.txtIdleTime.text.clear();
    rig.frame.BL_Edit_Changed = true;
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.formWindow.SSTab1, 1);
    EXPECT_FALSE(rig.frame.BL_Save_Blocked);
    EXPECT_EQ(rig.store.scalars.iValidationTab, 0);
    EXPECT_EQ(rig.modes(), "Ee");
}

TEST(SaveCommand, ARefusalWithoutATabLeavesTheTab)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.record.txtExclNames.text = "a.txt";
    rig.store.save.clxnIncluded.add(".txt", ".txt");
    rig.frame.BL_Edit_Changed = true;
    rig.formWindow.SSTab1 = 2;
    mnuSave_Click(rig.commands);
    EXPECT_FALSE(rig.messages().empty());
    EXPECT_EQ(rig.formWindow.SSTab1, 2);
    EXPECT_EQ(rig.modes(), "Ee");
}

TEST(SaveCommand, TheDefaultProfileIsSavedUnderItsName)
{
    FrameRig rig;
    rig.savedProfile("Default");
    rig.frame.BL_First_Run = true;
    rig.frame.ST_Current_Profile = "other";
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_FALSE(rig.frame.BL_First_Run);
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Default.vdp");
    EXPECT_EQ(rig.names("C:\\App\\Profiles"), Texts{"Default.vdp"});
}

// Otherwise later saves would go to the default profile's file.
TEST(SaveCommand, ACopyOfTheDefaultProfileIsTheProfileFromThenOn)
{
    FrameRig rig;
    rig.savedProfile("Default");
    rig.frame.BL_First_Run = true;
    const std::string before = rig.disk.readAll(FrameRig::pathOf("Default.vdp"));
    rig.change();
    rig.enterName("Mine");
    mnuSaveAs_Click(rig.commands);
    EXPECT_FALSE(rig.frame.BL_First_Run);
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Mine.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Mine.vdp");
    EXPECT_EQ(rig.formWindow.caption, "Mine Profile");
    EXPECT_EQ(rig.mainForm.Toolbar1(5).toolTip, "Save As");
    EXPECT_EQ(rig.frame.panel1.text, "Profile Saved");
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Default.vdp")), before);
    EXPECT_EQ(rig.modes(), "E");
}

TEST(SaveCommand, ACopyThatIsRefusedStopsNothingElse)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.record.chkIdle.value = 1;
    rig.record.txtIdleTime.text.clear();
    mnuSaveAs_Click(rig.commands);
    EXPECT_EQ(rig.formWindow.SSTab1, 1);
    EXPECT_FALSE(rig.frame.BL_Save_Blocked);
    mnuNew_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "N");
}

// The engine would otherwise go on running the file in the folder below.
TEST(SaveCommand, AProfileFromAFolderBelowIsSavedIntoProfilesAndIsThatFile)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.frame.ST_Current_Profile_Path = "C:\\App\\Profiles\\Sub\\Work.vdp";
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Work.vdp");
}

struct PrimaryRow {
    const char* list;
    int ticked;
    const char* answer; // y, n, or none where no question comes
    const char* after;
    int tickedAfter;
};

TEST(SaveCommand, ANewProfileBecomesPrimaryByItsTickOrByTheAnswer)
{
    const PrimaryRow rows[] = {
        {"", 0, "y", "[Primary Profile]\r\nWork.vdp\r\n", 1},
        {"", 0, "n", "", 0},
        {"", 1, "", "[Primary Profile]\r\nWork.vdp\r\n", 1},
        {"[Primary Profile]\r\nOld.vdp\r\n", 0, "", "[Primary Profile]\r\nOld.vdp\r\n", 0},
        {"[Primary Profile]\r\nOld.vdp\r\n", 1, "", "[Primary Profile]\r\nWork.vdp\r\n", 1},
    };
    for (const PrimaryRow& row : rows) {
        FrameRig rig;
        rig.putFile(FrameRig::pathOf("Old.vdp"), "");
        rig.putFile(FrameRig::kList, row.list);
        rig.newProfile();
        rig.record.chkPrimary.value = row.ticked;
        rig.enterName("Work");
        if (*row.answer != '\0')
            rig.answer({*row.answer == 'y' ? Answer::Yes : Answer::No});
        mnuSave_Click(rig.commands);
        EXPECT_EQ(rig.list(), row.after);
        EXPECT_EQ(rig.record.chkPrimary.value, row.tickedAfter);
        EXPECT_EQ(rig.messages(), *row.answer != '\0' ? Texts{kPrimaryQuestion} : Texts{});
    }
}

TEST(SaveCommand, AnEditedProfileBecomesPrimaryOrGivesItUp)
{
    const PrimaryRow rows[] = {
        {"", 0, "y", "[Primary Profile]\r\nWork.vdp\r\n", 1},
        {"", 0, "n", "", 0},
        {"", 1, "", "[Primary Profile]\r\nWork.vdp\r\n", 1},
        {"[Primary Profile]\r\nOld.vdp\r\n", 0, "", "[Primary Profile]\r\nOld.vdp\r\n", 0},
        {"[Primary Profile]\r\nOld.vdp\r\n", 1, "", "[Primary Profile]\r\nWork.vdp\r\n", 1},
        // Taking the tick away leaves no primary profile, and so the question comes at once.
        {"[Primary Profile]\r\nWork.vdp\r\n", 0, "n", "", 0},
        {"[Primary Profile]\r\nWork.vdp\r\n", 0, "y", "[Primary Profile]\r\nWork.vdp\r\n", 1},
        // The removal cuts the list behind the marker: the recent entry is written by the next
        // exit.
        {"[Primary Profile]\r\nWork.vdp\r\n[Recent Profile]\r\nWork.vdp\r\n", 1, "",
         "[Primary Profile]\r\nWork.vdp\r\n", 1},
    };
    for (const PrimaryRow& row : rows) {
        FrameRig rig;
        rig.savedProfile("Work");
        rig.putFile(FrameRig::pathOf("Old.vdp"), "");
        rig.putFile(FrameRig::kList, row.list);
        bool found = false;
        rig.frame.ST_Primary_Profile.clear();
        profile::IsPrProFileExists(rig.profiles, found);
        rig.record.chkPrimary.value = row.ticked;
        rig.change();
        if (*row.answer != '\0')
            rig.answer({*row.answer == 'y' ? Answer::Yes : Answer::No});
        mnuSave_Click(rig.commands);
        EXPECT_EQ(rig.list(), row.after);
        EXPECT_EQ(rig.record.chkPrimary.value, row.tickedAfter);
        EXPECT_EQ(rig.messages(), *row.answer != '\0' ? Texts{kPrimaryQuestion} : Texts{});
    }
}

TEST(SaveCommand, AProfileThatWasMadePrimaryHereCanGiveItUp)
{
    FrameRig rig;
    rig.savedProfile("Work");
    ASSERT_EQ(rig.list(), "[Primary Profile]\r\nWork.vdp\r\n");
    rig.record.chkPrimary.value = 0;
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.list(), "");
}

TEST(SaveCommand, AMovedDestinationTakesTheArchiveAlong)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.put({"E:\\Backup\\Work\\D\\a.txt_FULL_x.zst"});
    rig.record.txtDestLoc.text = "E:\\Other";
    rig.disk.createFolder("E:\\Other");
    rig.store.scalars.sPreviousDestination = "E:\\Backup";
    rig.frame.BL_Dest_Moved = true;
    rig.store.scalars.bDestinationChanged = true;
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_TRUE(rig.disk.fileExists("E:\\Other\\Work\\D\\a.txt_FULL_x.zst"));
    // The old one stays: it is copied, not moved.
    EXPECT_TRUE(rig.disk.fileExists("E:\\Backup\\Work\\D\\a.txt_FULL_x.zst"));
    EXPECT_FALSE(rig.frame.BL_Dest_Moved);
    EXPECT_FALSE(rig.store.scalars.bDestinationChanged);
    EXPECT_NE(rig.saved("Work.vdp").find("E:\\Other"), std::string::npos);
}

TEST(SaveCommand, TheArchivesCopyOfTheProfileFollowsThePasswordAndTheEncryption)
{
    struct Row {
        bool change;
        bool confirm;
        int encrypt;
        bool archive;
        bool copies;
    };
    for (const Row& row : {Row{false, false, 0, true, false}, Row{true, false, 0, true, true},
                           Row{false, true, 0, true, true}, Row{true, true, 0, true, true},
                           Row{false, false, 1, true, true}, Row{true, false, 0, false, false}}) {
        FrameRig rig;
        rig.savedProfile("Work");
        if (row.archive)
            rig.put({"E:\\Backup\\Work\\Work.vdp"});
        rig.frame.bPwdChangeMode = row.change;
        rig.frame.bPwdConfirmMode = row.confirm;
        rig.record.chkEncrypt.value = row.encrypt;
        rig.change();
        mnuSave_Click(rig.commands);
        EXPECT_EQ(rig.messages(),
                  row.copies ? Texts{"It is advisable to execute the backup to save the latest "
                                     "changed Profile."}
                             : Texts{});
        EXPECT_FALSE(rig.frame.bPwdChangeMode);
        EXPECT_FALSE(rig.frame.bPwdConfirmMode);
        if (row.archive) {
            EXPECT_EQ(rig.disk.readAll("E:\\Backup\\Work\\Work.vdp") ==
                          rig.disk.readAll(FrameRig::pathOf("Work.vdp")),
                      row.copies);
        } else {
            EXPECT_FALSE(rig.disk.folderExists("E:\\Backup\\Work"));
        }
    }
}

// The profile's own file tells whether this save is the one that changed it.
TEST(SaveCommand, AChangedEncryptionIsToldOnce)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.put({"E:\\Backup\\Work\\Work.vdp"});
    // As the default profile has it.
    rig.putFile(FrameRig::pathOf("Work.vdp"),
                profile::scrambleText(
                    base::replaceAll(rig.saved("Work.vdp"), "Encrypt=False", "Encrypt = False")));
    for (const int encrypt : {1, 1, 0, 0, 1}) {
        const bool isOther = (rig.record.chkEncrypt.value == 1) != (encrypt == 1);
        rig.record.chkEncrypt.value = encrypt;
        rig.change();
        rig.messageBoxes.shown.clear();
        mnuSave_Click(rig.commands);
        EXPECT_EQ(rig.messages().size(), isOther ? 1U : 0U);
    }
    rig.openByDialog("Work.vdp");
    mnuClose_Click(rig.commands);
    mnuOpen_Click(rig.commands);
    mnuEdit_Click(rig.commands);
    rig.messageBoxes.shown.clear();
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.messages(), Texts{});
    EXPECT_EQ(rig.modes(), "E");
}

TEST(SaveCommand, ACopyForTheArchiveThatFailsIsToldAndTheSaveGoesOn)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.put({"E:\\Backup\\Work\\Work.vdp"});
    rig.putFile(FrameRig::kList, "");
    rig.frame.bPwdChangeMode = true;
    rig.change();
    rig.script.failCallsNamed("fs.openFolder", 70, "E:\\Backup\\Work");
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.errors.LG_Err_Number, 70);
    EXPECT_EQ(rig.errors.ST_Err_Custom_Msg,
              "Error occured in Saving the profile by changing the already exsiting values");
    EXPECT_EQ(rig.disk.readAll("E:\\Backup\\Work\\Work.vdp"), "x");
    EXPECT_FALSE(rig.frame.bPwdChangeMode);
    // No word of a copy, and the marker comes all the same.
    EXPECT_EQ(rig.messages(), Texts{});
    EXPECT_EQ(rig.list(), "[Primary Profile]\r\nWork.vdp\r\n");
}

// The scrambled form stops at byte 255. A person must know, and yet the profile is saved.
TEST(SaveCommand, LinesThatCannotBeKeptAreToldByTheirNumbers)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.record.txtInclNames.text = "\xff\xff\xff";
    rig.change();
    mnuSave_Click(rig.commands);
    ASSERT_EQ(rig.messages().size(), 1U);
    const std::string text = rig.messages().front();
    const std::string lines = rig.saved("Work.vdp");
    const std::size_t at = lines.find("{Include by names}");
    ASSERT_NE(at, std::string::npos) << lines;
    const auto before =
        std::count(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    EXPECT_EQ(text,
              "The profile is saved, but line " + std::to_string(before + 2) +
                  " of its file cannot be kept exactly. Open the profile again and check it.");
    EXPECT_EQ(rig.modes(), "E");
}

} // namespace
} // namespace vardelin::frame
