#include "frame_rig.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using test::FrameRig;
using trace::WindowState;

TEST(WindowCommands, TheEditorComesBackWithTheCommandsOfItsMode)
{
    FrameRig rig;
    rig.formWindow.loaded = true;
    rig.frame.BL_Open_Mode = true;
    rig.mainForm.mnuClose.enabled = false;
    mnuProfile_Click(rig.commands);
    EXPECT_TRUE(rig.formWindow.visible);
    EXPECT_EQ(rig.windows.calls, std::vector<std::string>{"showEditor"});
    EXPECT_TRUE(rig.mainForm.mnuEdit.enabled);
    EXPECT_FALSE(rig.mainForm.mnuSave.enabled);
    EXPECT_TRUE(rig.mainForm.mnuClose.enabled);
}

TEST(WindowCommands, AfterCloseThereIsNoEditorToBringBack)
{
    FrameRig rig;
    rig.mainForm.mnuClose.enabled = false;
    mnuProfile_Click(rig.commands);
    EXPECT_TRUE(rig.windows.calls.empty());
    EXPECT_FALSE(rig.formWindow.visible);
    EXPECT_FALSE(rig.mainForm.mnuClose.enabled);
}

TEST(WindowCommands, ABranchIsOpenedAndClosed)
{
    FrameRig rig;
    rig.put({"E:\\Data\\Mail\\"});
    editor::BuildDriveList(rig.editing);
    rig.tree.select(&rig.at("E:\\"));
    mnuExpand_Click(rig.commands);
    EXPECT_EQ(rig.shown(), (std::vector<std::string>{"-0 D:", "-0 ", "-0 E:", "-0 Backup",
                                                     "-0 Data", "-0 Mail"}));
    EXPECT_TRUE(rig.at("E:\\").expanded);
    mnuCollapse_Click(rig.commands);
    EXPECT_FALSE(rig.at("E:\\").expanded);
}

TEST(WindowCommands, TheHelpOpensInTheDesktopsBrowser)
{
    FrameRig rig;
    rig.put({"C:\\App\\Help\\VardelinHelp.html"});
    mnuContents_Click(rig.commands);
    ASSERT_EQ(rig.processes.started.size(), 1U);
    EXPECT_EQ(rig.processes.started.front().path, "xdg-open");
    EXPECT_EQ(rig.processes.started.front().arguments,
              std::vector<std::string>{rig.disk.toNative("C:\\App\\Help\\VardelinHelp.html")});
    EXPECT_TRUE(rig.dialog.shown.empty());
}

TEST(WindowCommands, AMissingHelpFileIsNamed)
{
    FrameRig rig;
    mnuContents_Click(rig.commands);
    EXPECT_TRUE(rig.processes.started.empty());
    EXPECT_EQ(rig.messageBoxes.texts(),
              std::vector<std::string>{"The help file " +
                                       rig.disk.toNative("C:\\App\\Help\\VardelinHelp.html") +
                                       " is missing. Install Vardelin anew to get it back; your "
                                       "profiles and logs stay as they are."});
    EXPECT_TRUE(rig.dialog.shown.empty());
    EXPECT_FALSE(rig.mainForm.commandRunning);
}

TEST(WindowCommands, WithoutABrowserThePersonLearnsWhatToOpen)
{
    FrameRig rig;
    rig.put({"C:\\App\\Help\\VardelinHelp.html"});
    rig.processes.missing.insert("xdg-open");
    mnuContents_Click(rig.commands);
    EXPECT_EQ(rig.messageBoxes.texts(),
              std::vector<std::string>{"No program was found that shows the help. Open this file "
                                       "in a web browser: " +
                                       rig.disk.toNative("C:\\App\\Help\\VardelinHelp.html")});
    EXPECT_TRUE(rig.dialog.shown.empty());
    EXPECT_FALSE(rig.mainForm.commandRunning);
}

TEST(WindowCommands, TheAboutBoxIsShown)
{
    FrameRig rig;
    mnuAbout_Click(rig.commands);
    EXPECT_EQ(rig.windows.calls, std::vector<std::string>{"showAbout"});
}

TEST(WindowCommands, ACommandInsideAnotherOneDoesNothing)
{
    FrameRig rig;
    rig.put({"C:\\App\\Help\\VardelinHelp.html"});
    rig.mainForm.commandRunning = true;
    mnuContents_Click(rig.commands);
    mnuAbout_Click(rig.commands);
    EXPECT_TRUE(rig.processes.started.empty());
    EXPECT_TRUE(rig.windows.calls.empty());
    EXPECT_TRUE(rig.mainForm.commandRunning);
}

TEST(WindowCommands, TheFrameKeepsItsSizeUnlessMinimized)
{
    const FrameSize recorded{768, 1024};
    const FrameSize now{400, 300};
    EXPECT_EQ(MDIForm_Resize(WindowState::Normal, recorded, now), recorded);
    EXPECT_EQ(MDIForm_Resize(WindowState::Maximized, recorded, now), recorded);
    EXPECT_EQ(MDIForm_Resize(WindowState::Minimized, recorded, now), now);
}

} // namespace
} // namespace vardelin::frame
