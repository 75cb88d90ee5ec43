#include "frame_rig.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using platform::Answer;
using test::FrameRig;
using Texts = std::vector<std::string>;

constexpr const char* kCopyQuestion = "Do you want to copy the profile Work.vdp to Local system?";
constexpr const char* kOverwriteQuestion =
    "This profile name already exists in the local system\r\n"
    "Do you want to overwrite the old one?";
constexpr const char* kMedia = "E:\\Media\\Work.vdp";

// Work.vdp came from E:\Media and was changed here since; a local one may wait in the stash.
struct RemoteRig : FrameRig {
    std::string stash;

    explicit RemoteRig(bool stashed)
    {
        disk.createFolder("E:\\Media");
        putFile(kMedia, "media");
        putFile(pathOf("Work.vdp"), "working");
        frame.BL_Remote_Profile = true;
        frame.BL_Local_Stashed = stashed;
        frame.ST_Remote_Name = "Work.vdp";
        frame.ST_Remote_Path = kMedia;
        frame.ST_Current_Profile = "Work.vdp";
        frame.ST_Current_Profile_Path = pathOf("Work.vdp");
        frame.ST_Last_Saved_Profile = "Work.vdp";
        stash = profile::stashPath(frame);
        if (stashed)
            putFile(stash, "local");
    }
    // Empty where there is none.
    std::string at(const std::string& path)
    {
        return disk.fileExists(path) ? disk.readAll(path) : "";
    }
};

TEST(CopyBack, EveryAnswerPutsEachProfileWhereThePersonWantsIt)
{
    struct Row {
        bool stashed;
        std::vector<Answer> answers;
        const char* media;
        const char* local;
        bool keepsName;
    };
    const Row rows[] = {
        {false, {Answer::Yes}, "media", "working", true},
        {false, {Answer::No}, "working", "", false},
        {true, {Answer::Yes, Answer::Yes}, "media", "working", true},
        {true, {Answer::Yes, Answer::No}, "working", "local", false},
        {true, {Answer::No}, "working", "local", false},
    };
    for (const Row& row : rows) {
        RemoteRig rig(row.stashed);
        for (const Answer each : row.answers)
            rig.answer({each});
        copyBackRemoteProfile(rig.commands);
        EXPECT_EQ(rig.at(kMedia), row.media);
        EXPECT_EQ(rig.at(FrameRig::pathOf("Work.vdp")), row.local);
        EXPECT_FALSE(rig.disk.fileExists(rig.stash));
        EXPECT_FALSE(rig.frame.BL_Remote_Profile);
        EXPECT_FALSE(rig.frame.BL_Local_Stashed);
        EXPECT_EQ(rig.frame.ST_Current_Profile.empty(), !row.keepsName);
        EXPECT_EQ(rig.frame.ST_Current_Profile_Path.empty(), !row.keepsName);
        EXPECT_EQ(rig.messages(), row.answers.size() == 2
                                      ? (Texts{kCopyQuestion, kOverwriteQuestion})
                                      : Texts{kCopyQuestion});
        for (const test::ShownBox& box : rig.boxes()) {
            EXPECT_EQ(box.title, "Vardelin");
            EXPECT_EQ(box.buttons, platform::Buttons::YesNo);
        }
    }
}

TEST(CopyBack, ALocalProfileIsNoMatterOfIt)
{
    RemoteRig rig(false);
    rig.frame.BL_Remote_Profile = false;
    copyBackRemoteProfile(rig.commands);
    EXPECT_TRUE(rig.messages().empty());
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
}

// The media may be gone, full or read-only: whichever call fails, no profile is lost, and the next
// attempt finds everything as it was.
TEST(CopyBack, AFailureLosesNothingAndCanBeTriedAgain)
{
    for (const bool stashed : {false, true}) {
        for (std::size_t call = 1;; ++call) {
            RemoteRig rig(stashed);
            rig.answer({Answer::No, Answer::No});
            rig.script.failCall(call, base::error_number::kDiskFull);
            base::PendingError error;
            error.attempt([&] { copyBackRemoteProfile(rig.commands); });
            if (!error)
                break;
            const bool givenBack = !rig.frame.BL_Remote_Profile;
            rig.script.reset();
            copyBackRemoteProfile(rig.commands);
            EXPECT_EQ(rig.at(kMedia), "working") << call;
            // At worst one copy too many stays.
            if (stashed || !givenBack) {
                EXPECT_EQ(rig.at(FrameRig::pathOf("Work.vdp")), stashed ? "local" : "") << call;
            }
            EXPECT_FALSE(rig.frame.BL_Local_Stashed);
        }
    }
}

TEST(CopyBack, AFailureStopsTheCommand)
{
    for (const int command : {0, 1, 2, 3, 4}) {
        RemoteRig rig(false);
        rig.frame.BL_Edit_Mode = true;
        rig.formWindow.loaded = true;
        rig.answer({Answer::No});
        if (command == 4) {
            rig.messageBoxes.answers.clear();
            rig.answer({Answer::Yes, Answer::No});
        }
        rig.disk.removeTree("E:\\Media");
        switch (command) {
        case 0:
            mnuNew_Click(rig.commands);
            break;
        case 1:
            mnuOpen_Click(rig.commands);
            break;
        case 2:
            mnuSaveAs_Click(rig.commands);
            break;
        case 3:
            mnuClose_Click(rig.commands);
            break;
        default:
            EXPECT_FALSE(mnuExit_Click(rig.commands));
        }
        EXPECT_EQ(rig.errors.LG_Err_Number, 76) << command;
        EXPECT_EQ(rig.modes(), "E") << command;
        EXPECT_EQ(rig.at(FrameRig::pathOf("Work.vdp")), "working");
        EXPECT_TRUE(rig.windows.calls.empty()) << command;
        EXPECT_TRUE(rig.frame.BL_Remote_Profile);
    }
}

// The local profile of the same name has come back: a save under the name would overwrite it.
TEST(CopyBack, AProfileThatWentBackIsSavedUnderANewName)
{
    FrameRig rig;
    rig.savedProfile("Work");
    const std::string local = rig.disk.readAll(FrameRig::pathOf("Work.vdp"));
    rig.putFile(profile::stashPath(rig.frame), "local");
    rig.put({kMedia});
    rig.frame.BL_Remote_Profile = rig.frame.BL_Local_Stashed = true;
    rig.frame.ST_Remote_Name = "Work.vdp";
    rig.frame.ST_Remote_Path = kMedia;
    rig.answer({Answer::No});
    rig.cancelName();
    mnuSaveAs_Click(rig.commands);
    EXPECT_EQ(rig.disk.readAll(kMedia), local);
    rig.change();
    rig.enterName("Work");
    rig.enterName("Mine");
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), "local");
    EXPECT_TRUE(rig.isSaved("Mine.vdp"));
    EXPECT_EQ(rig.modes(), "E");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Mine.vdp");
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "E");
    EXPECT_TRUE(rig.windows.inRestDialog.empty());
}

TEST(CopyBack, ExitAsksBehindTheRecentEntry)
{
    RemoteRig rig(false);
    rig.answer({Answer::Yes, Answer::No});
    EXPECT_TRUE(mnuExit_Click(rig.commands));
    EXPECT_EQ(rig.messages(),
              (Texts{"Do you want to really exit the application?", kCopyQuestion}));
    EXPECT_EQ(rig.list(), "[Recent Profile]\r\nWork.vdp\r\n");
}

} // namespace
} // namespace vardelin::frame
