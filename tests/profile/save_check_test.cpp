#include "opening_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

using platform::Answer;
using platform::Buttons;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kNothing = "No Files\\Folders selected to Backup";
constexpr std::string_view kDefaultPath =
    "Do you want to save the Backup Package in a Default path C:\\App\\BackupPackages?";

class SaveCheckTest : public testing::Test {
protected:
    SaveCheckTest() : editor(rig.editor), scalars(rig.store.scalars)
    {
        editor.txtDestLoc.text = "E:\\Archive";
        editor.lstOtherData.clear();
        rig.window.SSTab1 = 2;
    }
    state::TreeNode& addDrive(bool ticked)
    {
        state::TreeNode& node = editor.tvwDirectory.add(nullptr, {"D:\\", "D:", 1});
        node.checked = ticked;
        return node;
    }
    void check() { ActivateSaveProfile(rig.quiet, rig.window); }
    std::string flags() const
    {
        std::string text;
        text += scalars.bHaveSources ? 'S' : '-';
        text += scalars.bHaveOtherData ? 'O' : '-';
        text += scalars.bHaveIncluded ? 'I' : '-';
        text += scalars.bHaveDestination ? 'D' : '-';
        return text;
    }

    test::OpeningRig rig;
    state::ProfileEditorState& editor;
    state::ProfileScalars& scalars;
};

TEST_F(SaveCheckTest, TickedNodeCountsAsSources)
{
    addDrive(true);
    check();
    EXPECT_EQ(flags(), "S--D");
    EXPECT_THAT(rig.messages(), IsEmpty());
    EXPECT_THAT(rig.ownEntries(), ElementsAre("ActivateSaveProfile End 2"));
}

TEST_F(SaveCheckTest, TickedPlaceholderAloneCountsAsNothing)
{
    state::TreeNode& drive = addDrive(false);
    editor.tvwDirectory.add(&drive, {"", "", 0}).checked = true;
    check();
    EXPECT_EQ(flags(), "----");
    EXPECT_THAT(rig.messages(), ElementsAre(kNothing));
    EXPECT_EQ(rig.boxes().front().title, "Vardelin");
}

TEST_F(SaveCheckTest, SelectedGroupCountsAsOtherData)
{
    editor.lstOtherData.addItem("Registry Settings");
    editor.lstOtherData.addItem("IE Favorites").selected = true;
    check();
    EXPECT_EQ(flags(), "-O-D");
}

TEST_F(SaveCheckTest, IncludedExtensionAloneMakesAProfile)
{
    editor.lstInclude.addItem(".doc");
    editor.lstInclude.addItem(".txt").checked = true;
    check();
    EXPECT_EQ(flags(), "--ID");
    EXPECT_THAT(rig.messages(), IsEmpty());
}

TEST_F(SaveCheckTest, ExtensionsAreNotLookedAtBesideSources)
{
    addDrive(true);
    editor.lstInclude.addItem(".txt").checked = true;
    check();
    EXPECT_EQ(flags(), "S--D");
}

TEST_F(SaveCheckTest, FlagsThatAreSetNeedNoLook)
{
    for (bool* flag : {&scalars.bHaveSources, &scalars.bHaveOtherData}) {
        scalars = {};
        *flag = true;
        check();
        EXPECT_TRUE(*flag);
        EXPECT_TRUE(scalars.bHaveDestination);
        EXPECT_THAT(rig.messages(), IsEmpty());
    }
}

TEST_F(SaveCheckTest, NothingSelectedSendsToTheFirstTabOnlyUnderAConfirmation)
{
    check();
    EXPECT_THAT(rig.messages(), ElementsAre(kNothing));
    EXPECT_FALSE(rig.frame.BL_Save_Blocked);
    EXPECT_EQ(rig.window.SSTab1, 2);
    EXPECT_EQ(scalars.iValidationTab, 1);
    EXPECT_FALSE(scalars.bHaveDestination);

    rig.frame.BL_Confirm_Save_Running = true;
    check();
    EXPECT_TRUE(rig.frame.BL_Save_Blocked);
    EXPECT_EQ(rig.window.SSTab1, 0);
    EXPECT_EQ(scalars.iValidationTab, 1);
}

TEST_F(SaveCheckTest, EmptyDestinationAsksForTheDefaultFolderOncePerSave)
{
    addDrive(true);
    editor.txtDestLoc.text.clear();
    rig.messageBoxes.answers = {Answer::Yes};
    check();
    EXPECT_THAT(rig.messages(), ElementsAre(kDefaultPath));
    EXPECT_EQ(rig.boxes().front().buttons, Buttons::YesNo);
    EXPECT_EQ(editor.txtDestLoc.text, "C:\\App\\BackupPackages");
    EXPECT_EQ(editor.CmbDestDrives.text, "C:");
    EXPECT_EQ(flags(), "S--D");
    check();
    EXPECT_THAT(rig.messages(), ElementsAre(kDefaultPath));
    EXPECT_EQ(rig.messageLoop.yields, 1U);
}

TEST_F(SaveCheckTest, DefaultFolderThatIsKnownStays)
{
    addDrive(true);
    editor.txtDestLoc.text.clear();
    scalars.sBackupPackageFolder = " F:\\Packages ";
    rig.messageBoxes.answers = {Answer::Yes};
    check();
    EXPECT_THAT(
        rig.messages(),
        ElementsAre("Do you want to save the Backup Package in a Default path  F:\\Packages ?"));
    EXPECT_EQ(editor.txtDestLoc.text, " F:\\Packages ");
    EXPECT_EQ(editor.CmbDestDrives.text, "F:");
}

TEST_F(SaveCheckTest, DefaultFolderRefusedSendsToTheOptions)
{
    addDrive(true);
    editor.txtDestLoc.text.clear();
    scalars.bHaveDestination = true; // of the save before
    for (const bool confirming : {false, true}) {
        rig.clearBoxes();
        rig.messageBoxes.answers = {Answer::No};
        rig.frame.BL_Confirm_Save_Running = confirming;
        check();
        EXPECT_THAT(rig.messages(),
                    ElementsAre(kDefaultPath, "Select the Backup  Location in Backup Options"));
        EXPECT_EQ(flags(), "S---");
        EXPECT_EQ(scalars.iValidationTab, 2);
        EXPECT_EQ(rig.frame.BL_Save_Blocked, confirming);
        EXPECT_EQ(rig.window.SSTab1, 2);
        EXPECT_EQ(editor.txtDestLoc.text, "");
    }
}

} // namespace
} // namespace vardelin::profile
