#include "frame_rig.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using test::FrameRig;

TEST(NameDialog, SaysWhatItAsksFor)
{
    const state::frmRestDialog form;
    EXPECT_EQ(form.caption, "Vardelin");
    EXPECT_EQ(form.Label2.caption, "&Enter the Name of  Profile :");
    EXPECT_EQ(form.Label3.caption, "(This name will be used for the 'Backup Package name' )");
    EXPECT_EQ(form.cmdProfileOK.caption, "&Ok");
    EXPECT_EQ(form.cmdResCancel.caption, "&Cancel");
    EXPECT_EQ(form.txtProfileName.text, "");
}

TEST(NameDialog, AnEnteredNameGoesWithoutTheBlanksAroundIt)
{
    FrameRig rig;
    rig.enterName("  My Work ");
    PrSaveNameIp(rig.commands);
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "My Work");
    EXPECT_FALSE(rig.frame.BL_Name_Cancelled);
}

TEST(NameDialog, AnEmptyNameIsAskedForAgain)
{
    for (const char* name : {"", "   "}) {
        FrameRig rig;
        state::frmRestDialog form;
        form.txtProfileName.text = name;
        cmdProfileOK_Click(rig.commands, form);
        EXPECT_TRUE(form.loaded);
        EXPECT_EQ(rig.messages(), std::vector<std::string>{"Enter the Profile Name"});
        EXPECT_EQ(rig.boxes().front().title, "Vardelin");
        EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "");
    }
}

TEST(NameDialog, OneCharacterIsAName)
{
    FrameRig rig;
    state::frmRestDialog form;
    form.txtProfileName.text = "a";
    cmdProfileOK_Click(rig.commands, form);
    EXPECT_FALSE(form.loaded);
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "a");
}

TEST(NameDialog, TheEnterKeyIsOk)
{
    FrameRig rig;
    state::frmRestDialog form;
    form.txtProfileName.text = "Work";
    EXPECT_EQ(txtProfileName_KeyPress(rig.commands, form, 13), 0);
    EXPECT_FALSE(form.loaded);
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "Work");
}

TEST(NameDialog, CancelAndTheFrameOfTheDialogGiveNoName)
{
    for (const bool byButton : {true, false}) {
        FrameRig rig;
        rig.frame.ST_Current_Profile_Path = "C:\\App\\Profiles\\Old.vdp";
        if (byButton)
            rig.cancelName();
        PrSaveNameIp(rig.commands);
        EXPECT_TRUE(rig.frame.BL_Name_Cancelled);
        EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "");
    }
}

TEST(NameDialog, SwallowsWhatAFileNameCannotHold)
{
    FrameRig rig;
    state::frmRestDialog form;
    const std::string swallowed = "\"'*,./<>?|:\\";
    for (int key = 1; key < 256; ++key) {
        if (key == 13)
            continue;
        const bool refused =
            key < 128 && swallowed.find(static_cast<char>(key)) != std::string::npos;
        EXPECT_EQ(txtProfileName_KeyPress(rig.commands, form, key), refused ? 0 : key) << key;
    }
    EXPECT_TRUE(form.loaded);
}

// What is pasted passes no key handler, so the right button, whose menu pastes, finds nothing to.
TEST(NameDialog, TheRightButtonEmptiesTheClipboard)
{
    FrameRig rig;
    txtProfileName_MouseDown(rig.commands, 1);
    EXPECT_TRUE(rig.window.calls.empty());
    txtProfileName_MouseDown(rig.commands, 2);
    EXPECT_EQ(rig.window.calls, std::vector<std::string>{"clearClipboard"});
}

} // namespace
} // namespace vardelin::frame
