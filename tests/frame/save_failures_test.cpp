#include "frame_rig.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using platform::Answer;
using test::FrameRig;
using Texts = std::vector<std::string>;

// A disk that fails once, or one that has run full and takes nothing more.
enum class Failing { Once, FullFromThenOn };

void failAt(FrameRig& rig, std::size_t call, Failing failing)
{
    constexpr int kDiskFull = base::error_number::kDiskFull;
    rig.script.reset();
    if (failing == Failing::Once)
        rig.script.failCall(call, kDiskFull);
    else
        rig.script.delayCall(
            call, [&](const auto&) { rig.script.failCallsNamed("file.write", kDiskFull); });
}

// Whatever call fails, the profile can be read and is the old one or the new one, and the editor
// knows which.
void failEveryCall(Failing failing)
{
    FrameRig rig;
    rig.savedProfile("Work");
    const std::string oldBytes = rig.disk.readAll(FrameRig::pathOf("Work.vdp"));
    std::size_t oldOnes = 0;
    std::size_t newOnes = 0;
    for (std::size_t call = 1;; ++call) {
        for (const std::string& name : rig.names("C:\\App\\Profiles"))
            rig.disk.removeFile(FrameRig::pathOf(name));
        rig.putFile(FrameRig::pathOf("Work.vdp"), oldBytes);
        rig.putFile(FrameRig::kList, "[Primary Profile]\r\nWork.vdp\r\n");
        rig.record.txtInclNames.text = "*.new";
        rig.frame.BL_Edit_Changed = true;
        rig.frame.BL_Save_Blocked = false;
        rig.dialog.shown.clear();
        failAt(rig, call, failing);
        mnuSave_Click(rig.commands);
        const bool reached = rig.script.callCount() >= call;
        rig.script.reset();

        ASSERT_TRUE(rig.isSaved("Work.vdp")) << call;
        const std::string text = rig.saved("Work.vdp");
        const bool isNew = text.find("*.new") != std::string::npos;
        ASSERT_TRUE(text.starts_with("[Work.vdp]\r\n") && text.ends_with("[End of Work.vdp]\r\n"))
            << call << text;
        // A save that went through although a step behind it failed may say so.
        if (!isNew) {
            EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), oldBytes) << call;
            EXPECT_TRUE(rig.frame.BL_Edit_Changed) << call;
            EXPECT_FALSE(rig.dialog.shown.empty()) << call;
            ++oldOnes;
        } else {
            EXPECT_FALSE(rig.frame.BL_Edit_Changed) << call;
            ++newOnes;
        }
        EXPECT_FALSE(rig.frame.BL_Save_Blocked);
        EXPECT_FALSE(rig.mainForm.commandRunning);
        EXPECT_FALSE(rig.mainForm.hourglass);
        EXPECT_EQ(rig.store.save.clxnSources.count(), 0U);
        if (!reached)
            break;
    }
    EXPECT_GT(oldOnes, 5U);
    EXPECT_GT(newOnes, 1U);
}

TEST(SaveFailures, OneFailingCallLeavesTheOldOrTheNewProfile)
{
    failEveryCall(Failing::Once);
}

TEST(SaveFailures, AFullDiskLeavesTheOldOrTheNewProfile)
{
    failEveryCall(Failing::FullFromThenOn);
}

// A profile that was never there is not left behind in part, and not in plain text.
TEST(SaveFailures, ANewProfileIsThereWholeOrNotAtAll)
{
    FrameRig rig;
    rig.newProfile();
    rig.putFile(FrameRig::kList, "[Primary Profile]\r\nOld.vdp\r\n");
    std::size_t without = 0;
    for (std::size_t call = 1;; ++call) {
        for (const std::string& name : rig.names("C:\\App\\Profiles"))
            rig.disk.removeFile(FrameRig::pathOf(name));
        rig.putFile(FrameRig::pathOf("Old.vdp"), "x");
        rig.frame.BL_New_Mode = true;
        rig.frame.BL_Edit_Mode = false;
        rig.frame.BL_New_Changed = true;
        rig.frame.ST_Current_Profile.clear();
        rig.frame.ST_Current_Profile_Path.clear();
        rig.dialog.shown.clear();
        rig.windows.inRestDialog.clear();
        rig.enterName("Work");
        failAt(rig, call, Failing::Once);
        mnuSave_Click(rig.commands);
        const bool reached = rig.script.callCount() >= call;
        rig.script.reset();

        if (rig.isSaved("Work.vdp")) {
            EXPECT_TRUE(rig.saved("Work.vdp").ends_with("[End of Work.vdp]\r\n")) << call;
            EXPECT_EQ(rig.modes(), "E") << call;
        } else {
            EXPECT_EQ(rig.modes(), "Nn") << call;
            EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "") << call;
            EXPECT_FALSE(rig.dialog.shown.empty()) << call;
            ++without;
        }
        if (!reached)
            break;
    }
    EXPECT_GT(without, 5U);
}

TEST(SaveFailures, AProfileThatWasNotWrittenStopsTheCommandThatAskedForIt)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.change();
    rig.answer({Answer::Yes, Answer::Yes});
    rig.script.failCallsNamed("folder.rename", base::error_number::kDiskFull, "Work.vdp");
    EXPECT_FALSE(mnuExit_Click(rig.commands));
    EXPECT_EQ(rig.messages(), Texts{"Do you want to Save the Profile?"});
    EXPECT_EQ(rig.modes(), "Ee");
    EXPECT_FALSE(rig.windows.called("endApplication"));
}

// The process ends at once; the profile that it leaves must be one that can be read.
TEST(SaveFailures, LeavingTheProgramFromTheErrorDialogLeavesNoPlainProfile)
{
    FrameRig rig;
    rig.savedProfile("Work");
    const std::string before = rig.disk.readAll(FrameRig::pathOf("Work.vdp"));
    rig.change();
    rig.script.failCallsNamed("folder.open", base::error_number::kDiskFull, "UWork.vdp");
    rig.dialog.answers = {trace::ErrorAnswer::Exit};
    EXPECT_THROW(mnuSave_Click(rig.commands), trace::ExitRequested);
    EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), before);
    EXPECT_EQ(rig.names("C:\\App\\Profiles"), Texts{"Work.vdp"});
}

// Were the password taken over, the person would be asked for it before it could be corrected.
TEST(SaveFailures, WhatTheProfileIsKnownByStaysThatOfTheFile)
{
    FrameRig rig;
    rig.savedProfile("Work");
    rig.record.chkPassword.value = 1;
    rig.record.txtPassWord.text = "secret-1";
    rig.record.txtHintAns.text = "x";
    rig.record.cmbHintQues.text = "Favorite Past-time ?";
    rig.record.txtDestLoc.text = "E:\\Other";
    rig.change();
    rig.script.failCallsNamed("folder.open", base::error_number::kDiskFull, "UWork.vdp");
    mnuSave_Click(rig.commands);
    EXPECT_FALSE(rig.store.scalars.bProfileHasPassword);
    EXPECT_EQ(rig.store.scalars.sDestinationPath, "E:\\Backup");
    EXPECT_EQ(rig.modes(), "Ee");
    rig.script.reset();
    mnuSave_Click(rig.commands);
    EXPECT_TRUE(rig.store.scalars.bProfileHasPassword);
    EXPECT_EQ(rig.modes(), "E");
}

TEST(SaveFailures, WithoutTheProfilesFolderTheErrorIsShownAndTheStatusLineIsEmpty)
{
    FrameRig rig;
    rig.newProfile();
    rig.disk.removeTree("C:\\App\\Profiles");
    rig.enterName("Work");
    EXPECT_FALSE(SaveProfile(rig.commands));
    EXPECT_EQ(rig.errorsShown(), Texts{"SaveProfile: SaveProfile"});
    EXPECT_EQ(rig.errors.LG_Err_Number, 76);
    EXPECT_EQ(rig.frame.panel1.text, "");
    EXPECT_EQ(rig.modes(), "Nn");
}

// A click comes in while a large folder is read: what is in the tree by then is not all of it.
TEST(SaveFailures, AFolderThatIsStillBeingReadIsNotSavedInPart)
{
    FrameRig rig;
    for (int i = 0; i < 40; ++i)
        rig.put({"D:\\Data\\Large\\file" + std::to_string(i)});
    rig.savedProfile("Work");
    const std::string before = rig.disk.readAll(FrameRig::pathOf("Work.vdp"));
    rig.expand("D:\\Data\\");
    rig.change();
    rig.clock.script().onCallsNamed(
        "clock.steady", [&](const auto&) { rig.clock.advance(std::chrono::milliseconds(10)); });
    const std::vector<std::function<void()>> commands{[&] { mnuSave_Click(rig.commands); },
                                                      [&] { mnuSaveAs_Click(rig.commands); },
                                                      [&] {
                                                          rig.answer({Answer::Yes});
                                                          EXPECT_FALSE(mnuExit_Click(rig.commands));
                                                      }};
    std::size_t turn = 0;
    rig.messageLoop.onYield = [&] {
        if (rig.form.reading.active && turn < commands.size())
            commands[turn++]();
    };
    rig.expand("D:\\Data\\Large\\");
    EXPECT_EQ(turn, commands.size());
    const std::string refusal =
        "A folder is still being read, so the profile is not saved yet. Save it when the folder is "
        "there, or stop the reading with Esc in the tree.";
    EXPECT_EQ(rig.messages(),
              (Texts{refusal, refusal, "Do you want to Save the Profile?", refusal}));
    EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), before);
    EXPECT_EQ(rig.modes(), "Ee");
    EXPECT_FALSE(rig.frame.BL_Save_Blocked);
    EXPECT_EQ(rig.form.reading.ending, editor::FolderReading::Ending::Whole);

    rig.untick("D:\\Data\\Large\\file7");
    rig.messageLoop.onYield = nullptr;
    mnuSave_Click(rig.commands);
    const std::string saved = rig.saved("Work.vdp");
    EXPECT_EQ(rig.modes(), "E");
    for (int i = 0; i < 40; ++i) {
        const bool listed = saved.find("file" + std::to_string(i) + "\r\n") != std::string::npos;
        EXPECT_EQ(listed, i != 7) << i;
    }
}

// The menus stay open during a save: a change that comes in through the message loop is too late
// for the file.
TEST(SaveFailures, AChangeInTheMidstOfASaveIsStillToBeSaved)
{
    for (const bool isNew : {true, false}) {
        FrameRig rig;
        if (isNew)
            rig.newProfile();
        else
            rig.savedProfile("Home");
        rig.frame.BL_Edit_Changed = !isNew;
        rig.enterName("Work");
        rig.messageLoop.onYield = [&] {
            if (rig.frame.panel1.text == "Saving Profile......")
                rig.change();
        };
        mnuSave_Click(rig.commands);
        EXPECT_EQ(rig.modes(), "Ee");
        rig.messageLoop.onYield = nullptr;
        mnuSave_Click(rig.commands);
        EXPECT_EQ(rig.modes(), "E");
    }
}

TEST(SaveFailures, ACommandThatComesInDuringASaveDoesNothing)
{
    FrameRig rig;
    rig.newProfile();
    rig.enterName("Work");
    int clicks = 0;
    rig.messageLoop.onYield = [&] {
        ++clicks;
        mnuNew_Click(rig.commands);
        mnuOpen_Click(rig.commands);
        mnuEdit_Click(rig.commands);
        mnuSave_Click(rig.commands);
        mnuSaveAs_Click(rig.commands);
        mnuClose_Click(rig.commands);
        mnuProfile_Click(rig.commands);
        EXPECT_FALSE(mnuExit_Click(rig.commands));
    };
    mnuSave_Click(rig.commands);
    EXPECT_EQ(clicks, 5);
    EXPECT_EQ(rig.modes(), "E");
    EXPECT_TRUE(rig.isSaved("Work.vdp"));
    EXPECT_EQ(std::count(rig.windows.calls.begin(), rig.windows.calls.end(), "showRestDialog"), 1);
    EXPECT_FALSE(rig.windows.called("endApplication"));
}

} // namespace
} // namespace vardelin::frame
