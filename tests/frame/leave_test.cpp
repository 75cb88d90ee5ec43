#include "editor/options_page.h"
#include "frame_rig.h"
#include "profile/list_file.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using platform::Answer;
using test::FrameRig;
using Texts = std::vector<std::string>;

constexpr const char* kSaveQuestion = "Do you want to Save the Profile?";
constexpr const char* kExitQuestion = "Do you want to really exit the application?";

TEST(ConfirmSave, SavesAnEditedProfileAndMakesItTheRecentOne)
{
    for (const bool recentFound : {true, false}) {
        FrameRig rig;
        rig.savedProfile("Work");
        rig.putFile(FrameRig::kList, "[Primary Profile]\r\nWork.vdp\r\n"
                                     "[Recent Profile]\r\nWork.vdp\r\n");
        rig.record.chkPrimary.value = 0;
        rig.frame.ST_Primary_Profile = "Other.vdp";
        rig.frame.BL_Recent_Found = recentFound;
        rig.change();
        rig.answer({Answer::Yes});
        Texts states;
        rig.messageLoop.onYield = [&] { states.push_back(rig.frame.panel3.text); };
        ConfirmSave(rig.commands);
        EXPECT_EQ(rig.messages(), Texts{kSaveQuestion});
        EXPECT_EQ(rig.boxes().front().title, "Vardelin");
        EXPECT_EQ(rig.boxes().front().icon, platform::Icon::Question);
        ASSERT_FALSE(states.empty());
        EXPECT_EQ(states.front(), "Saving Profile");
        EXPECT_EQ(rig.frame.panel3.text, " ");
        EXPECT_EQ(rig.modes(), "E");
        EXPECT_FALSE(rig.frame.BL_Confirm_Save_Running);
        EXPECT_EQ(rig.list(), "[Primary Profile]\r\nWork.vdp\r\n[Recent Profile]\r\nWork.vdp\r\n");
    }
}

TEST(ConfirmSave, WithoutARecentEntryOneIsMade)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.change();
    rig.answer({Answer::Yes});
    ConfirmSave(rig.commands);
    EXPECT_TRUE(rig.list().ends_with("[Recent Profile]\r\nWork.vdp\r\n"));
}

TEST(ConfirmSave, NoForgetsTheChangesOfANewProfileOnly)
{
    FrameRig rig;
    rig.newProfile();
    rig.frame.BL_Edit_Changed = true;
    rig.frame.BL_Save_Blocked = true;
    rig.answer({Answer::No});
    ConfirmSave(rig.commands);
    EXPECT_FALSE(rig.frame.BL_New_Changed);
    EXPECT_TRUE(rig.frame.BL_Edit_Changed);
    EXPECT_FALSE(rig.frame.BL_Save_Blocked);
    EXPECT_EQ(rig.frame.panel3.text, " ");
    EXPECT_TRUE(rig.names("C:\\App\\Profiles").empty());
}

TEST(ConfirmSave, ASaveThatDoesNotGoThroughTellsTheCaller)
{
    enum class Why { Cancelled, Extension, Sources, Destination, Validation };
    for (const Why why :
         {Why::Cancelled, Why::Extension, Why::Sources, Why::Destination, Why::Validation}) {
        FrameRig rig;
        rig.newProfile();
        rig.answer({Answer::Yes});
        if (why == Why::Cancelled)
            rig.cancelName();
        else
            rig.enterName(why == Why::Extension ? ".vdp" : "Work");
        if (why == Why::Sources)
            rig.untick("D:\\Data\\");
        if (why == Why::Destination)
            rig.record.txtDestLoc.text.clear();
        if (why == Why::Validation)
            rig.record.chkIdle.value = 1;
        ConfirmSave(rig.commands);
        EXPECT_TRUE(rig.frame.BL_Save_Blocked) << static_cast<int>(why);
        EXPECT_FALSE(rig.frame.BL_Name_Cancelled);
        EXPECT_EQ(rig.modes(), "Nn");
    }
}

// The entry of a profile that was never saved is taken away and not replaced: the next start shows
// the default profile.
TEST(ConfirmSave, ACancelledNewProfileCostsTheRecentEntry)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.newProfile();
    rig.putFile(FrameRig::kList, "[Recent Profile]\r\nWork.vdp\r\n");
    rig.answer({Answer::Yes});
    rig.cancelName();
    ConfirmSave(rig.commands);
    EXPECT_EQ(rig.list(), "");
}

TEST(CloseCommand, LeavesNoProfileAndNoForm)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.store.save.clxnFolderNames.add("Data");
    mnuClose_Click(rig.commands);
    EXPECT_TRUE(rig.messages().empty());
    EXPECT_EQ(rig.modes(), "");
    EXPECT_EQ(rig.leaving(), "000");
    EXPECT_EQ(rig.enabled(), "00000 00000");
    EXPECT_FALSE(rig.mainForm.mnuExpand.enabled);
    EXPECT_FALSE(rig.mainForm.mnuCollapse.enabled);
    EXPECT_TRUE(rig.mainForm.mnuNew.enabled);
    EXPECT_TRUE(rig.mainForm.mnuOpen.enabled);
    EXPECT_FALSE(rig.formWindow.loaded);
    EXPECT_TRUE(rig.windows.called("unloadReview"));
    EXPECT_TRUE(rig.windows.called("unloadLogs"));
    EXPECT_EQ(rig.frame.ST_Last_Saved_Profile, "");
    EXPECT_EQ(rig.frame.panel1.text, "");
    EXPECT_EQ(rig.store.save.clxnFolderNames.count(), 0U);
}

TEST(CloseCommand, AsksInAPanelTextOfItsOwn)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.change();
    std::string state;
    rig.messageBoxes.script().onCallsNamed("boxes.show",
                                           [&](const auto&) { state = rig.frame.panel3.text; });
    rig.answer({Answer::Yes});
    mnuClose_Click(rig.commands);
    EXPECT_EQ(rig.messages(), Texts{kSaveQuestion});
    EXPECT_EQ(state, "Saving when Closing Profile");
    EXPECT_EQ(rig.frame.panel3.text, " ");
    EXPECT_TRUE(rig.list().ends_with("[Recent Profile]\r\nWork.vdp\r\n"));
    EXPECT_EQ(rig.modes(), "");
}

TEST(CloseCommand, NoClosesWithoutASave)
{
    for (const bool isNew : {true, false}) {
        FrameRig rig;
        if (isNew) {
            rig.newProfile();
        } else {
            rig.savedProfile("Work");
            rig.change();
        }
        rig.answer({Answer::No});
        mnuClose_Click(rig.commands);
        EXPECT_EQ(rig.messages(), Texts{kSaveQuestion});
        EXPECT_EQ(rig.modes(), "");
        EXPECT_FALSE(rig.formWindow.loaded);
    }
}

TEST(CloseCommand, ARefusedSaveKeepsTheProfileAndItsTabAndStopsNothingElse)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.change();
    rig.record.chkIdle.value = 1;
    rig.record.txtIdleTime.text.clear();
    rig.answer({Answer::Yes});
    mnuClose_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "Ee");
    EXPECT_TRUE(rig.formWindow.loaded);
    EXPECT_EQ(rig.formWindow.SSTab1, 1);
    rig.answer({Answer::No});
    mnuClose_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "");
}

TEST(ExitCommand, AsksWhetherToLeave)
{
    FrameRig rig;
    rig.savedProfile("Work");
    std::string shown;
    rig.messageLoop.onYield = [&] { shown = rig.frame.panel1.text; };
    rig.answer({Answer::Yes});
    EXPECT_TRUE(mnuExit_Click(rig.commands));
    EXPECT_EQ(shown, "Exiting the Application");
    EXPECT_EQ(rig.messages(), Texts{kExitQuestion});
    EXPECT_EQ(rig.boxes().front().buttons, platform::Buttons::YesNo);
    EXPECT_FALSE(rig.formWindow.loaded);
    EXPECT_EQ(rig.windows.calls, (Texts{"unloadReview", "unloadLogs", "endApplication"}));
    EXPECT_TRUE(rig.list().ends_with("[Recent Profile]\r\nWork.vdp\r\n"));
}

TEST(ExitCommand, OnNoTheApplicationStays)
{
    FrameRig rig;
    rig.savedProfile("Work");
    const std::string list = rig.list();
    rig.answer({Answer::No});
    EXPECT_FALSE(mnuExit_Click(rig.commands));
    EXPECT_TRUE(rig.formWindow.loaded);
    EXPECT_FALSE(rig.windows.called("endApplication"));
    EXPECT_EQ(rig.list(), list);
    EXPECT_EQ(rig.frame.panel1.text, "");
}

TEST(ExitCommand, CancellingTheNameInTheConfirmationKeepsTheApplicationRunning)
{
    FrameRig rig;
    rig.newProfile();
    rig.answer({Answer::Yes});
    rig.cancelName();
    EXPECT_FALSE(mnuExit_Click(rig.commands));
    EXPECT_EQ(rig.messages(), Texts{kSaveQuestion});
    EXPECT_EQ(rig.modes(), "Nn");
    EXPECT_FALSE(rig.windows.called("endApplication"));
}

// The "No" to the save was for a leaving that the person then thought better of.
TEST(ExitCommand, AfterTwoNoesTheNewProfileIsStillToBeSaved)
{
    FrameRig rig;
    rig.newProfile();
    rig.answer({Answer::No, Answer::No});
    EXPECT_FALSE(mnuExit_Click(rig.commands));
    EXPECT_EQ(rig.messages(), (Texts{kSaveQuestion, kExitQuestion}));
    EXPECT_EQ(rig.modes(), "Nn");
}

TEST(ExitCommand, AViewAsksForNoSave)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.frame.BL_Open_Mode = true;
    rig.frame.BL_Edit_Changed = true;
    rig.answer({Answer::Yes});
    EXPECT_TRUE(mnuExit_Click(rig.commands));
    EXPECT_EQ(rig.messages(), Texts{kExitQuestion});
}

TEST(ExitCommand, TheDefaultProfilesThresholdIsNoChangeWhileAnotherControlsIs)
{
    for (const bool other : {false, true}) {
        FrameRig rig;
        rig.savedProfile("Default");
        rig.frame.BL_First_Run = true;
        rig.record.chkQueueThrld.value = 1;
        editor::chkQueueThrld_Click(rig.pages);
        if (other) {
            rig.record.chkWarn.value = 1;
            editor::chkWarn_Click(rig.pages);
        }
        rig.answer({Answer::No});
        mnuExit_Click(rig.commands);
        EXPECT_EQ(rig.messages().front(), other ? kSaveQuestion : kExitQuestion);
    }
}

TEST(ExitCommand, BringsTheRecentEntryUpToDate)
{
    struct Row {
        bool foundAtStart;
        const char* path;
        const char* list;
        const char* after;
    };
    const Row rows[] = {
        {true, "C:\\App\\Profiles\\New.vdp", "[Recent Profile]\r\nOld.vdp\r\n",
         "[Recent Profile]\r\nNew.vdp\r\n"},
        {false, "C:\\App\\Profiles\\New.vdp", "[Recent Profile]\r\nOld.vdp\r\n",
         "[Recent Profile]\r\nNew.vdp\r\n"},
        {false, "C:\\App\\Profiles\\New.vdp", "", "[Recent Profile]\r\nNew.vdp\r\n"},
        // Without a profile the entry stays as it is.
        {false, "", "[Recent Profile]\r\nOld.vdp\r\n", "[Recent Profile]\r\nOld.vdp\r\n"},
        {true, "", "[Recent Profile]\r\nOld.vdp\r\n", "[Recent Profile]\r\nOld.vdp\r\n"},
        {false, "", "", ""},
    };
    for (const Row& row : rows) {
        FrameRig rig;
        rig.putFile(FrameRig::pathOf("Old.vdp"), "x");
        rig.frame.BL_Recent_Found = row.foundAtStart;
        rig.frame.ST_Current_Profile_Path = row.path;
        rig.putFile(FrameRig::kList, row.list);
        rig.answer({Answer::Yes});
        EXPECT_TRUE(mnuExit_Click(rig.commands));
        EXPECT_EQ(rig.list(), row.after);
    }
}

TEST(ExitCommand, AListThatCannotBeWrittenKeepsNobodyIn)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.disk.removeTree("C:\\App\\Data");
    rig.answer({Answer::Yes});
    EXPECT_TRUE(mnuExit_Click(rig.commands));
    EXPECT_EQ(rig.errorsShown().back(), "mnuExit_Click: mnuExit_Click");
    EXPECT_TRUE(rig.windows.called("endApplication"));
}

TEST(ExitCommand, ClickedInItsOwnMessageLoopAsksOnce)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.messageLoop.onYield = [&] { EXPECT_FALSE(mnuExit_Click(rig.commands)); };
    rig.answer({Answer::Yes});
    EXPECT_TRUE(mnuExit_Click(rig.commands));
    EXPECT_EQ(rig.messages(), Texts{kExitQuestion});
}

} // namespace
} // namespace vardelin::frame
