#include "frame_rig.h"
#include "profile/interrupted_saves.h"

#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using test::FrameRig;

constexpr const char* kProfiles = "C:\\App\\Profiles";

// A file that was being replaced, empty or scrambled, is no profile and holds nothing in plain.
bool isHarmless(FrameRig& rig, const std::string& name)
{
    return name == "~Work.vdp.tmp" && !rig.disk.readAll(FrameRig::pathOf(name)).starts_with("[");
}

void expectNothingElse(FrameRig& rig, std::size_t call, const std::string& wanted)
{
    for (const std::string& name : rig.names(kProfiles))
        EXPECT_TRUE(name == wanted || isHarmless(rig, name)) << call << ": " << name;
}

// Dies at call `call` of a save; false where the save was over before.
bool dies(FrameRig& rig, std::size_t call)
{
    rig.script.reset();
    rig.script.killAtCall(call);
    bool killed = false;
    try {
        mnuSave_Click(rig.commands);
    } catch (const platform::Killed&) {
        killed = true;
    }
    rig.script.reset();
    return killed;
}

TEST(KilledSave, LeavesTheOldOrTheNewProfileOnceItIsFinished)
{
    std::size_t plain = 0;
    std::size_t missing = 0;
    std::size_t oldOnes = 0;
    std::size_t newOnes = 0;
    bool killed = true;
    for (std::size_t call = 1; killed; ++call) {
        FrameRig rig;
        rig.savedProfile("Work");
        const std::string before = rig.disk.readAll(FrameRig::pathOf("Work.vdp"));
        rig.record.txtInclNames.text = "*.new";
        rig.change();
        killed = dies(rig, call);
        missing += rig.isSaved("Work.vdp") ? 0U : 1U;
        plain += rig.isSaved("Work.vdp") &&
                         rig.disk.readAll(FrameRig::pathOf("Work.vdp")).starts_with("[")
                     ? 1U
                     : 0U;

        profile::finishInterruptedSaves(rig.disk, kProfiles);
        ASSERT_TRUE(rig.isSaved("Work.vdp")) << call;
        const std::string text = rig.saved("Work.vdp");
        EXPECT_TRUE(profile::wholePlainProfile(text)) << call << text;
        const bool isNew = text.find("*.new") != std::string::npos;
        if (!isNew) {
            EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), before) << call;
        }
        (isNew ? newOnes : oldOnes) += 1U;
        expectNothingElse(rig, call, "Work.vdp");
    }
    EXPECT_GT(plain, 3U) << "no kill came between the writing and the scrambling";
    EXPECT_GT(missing, 0U) << "no kill came while the profile had its temporary name alone";
    EXPECT_GT(oldOnes, 5U);
    EXPECT_GT(newOnes, 5U);
}

TEST(KilledSave, OfANewProfileLeavesItWholeOrNotAtAll)
{
    std::size_t without = 0;
    std::size_t plain = 0;
    bool killed = true;
    for (std::size_t call = 1; killed; ++call) {
        FrameRig rig;
        rig.newProfile();
        rig.enterName("Work");
        rig.answer({platform::Answer::Yes});
        killed = dies(rig, call);
        if (rig.isSaved("Work.vdp") &&
            rig.disk.readAll(FrameRig::pathOf("Work.vdp")).starts_with("["))
            ++plain;
        profile::finishInterruptedSaves(rig.disk, kProfiles);
        if (rig.isSaved("Work.vdp"))
            EXPECT_TRUE(profile::wholePlainProfile(rig.saved("Work.vdp"))) << call;
        else
            ++without;
        expectNothingElse(rig, call, "Work.vdp");
    }
    EXPECT_GT(plain, 3U);
    EXPECT_GT(without, 5U);
}

// What a crash in the finishing itself leaves is finished by the next one.
TEST(KilledSave, MayBeFinishedInPieces)
{
    bool killed = true;
    for (std::size_t call = 1; killed; ++call) {
        FrameRig rig;
        rig.savedProfile("Work");
        rig.record.txtInclNames.text = "*.new";
        rig.change();
        bool finishKilled = true;
        killed = dies(rig, call);
        const bool hadNew = [&] {
            platform::MemoryFileSystem& disk = rig.disk;
            const std::string path = FrameRig::pathOf("Work.vdp");
            return disk.fileExists(path) && disk.readAll(path).starts_with("[");
        }();
        for (std::size_t step = 1; finishKilled; ++step) {
            rig.script.reset();
            rig.script.killAtCall(step);
            finishKilled = false;
            try {
                profile::finishInterruptedSaves(rig.files, kProfiles);
            } catch (const platform::Killed&) {
                finishKilled = true;
            }
        }
        rig.script.reset();
        ASSERT_TRUE(rig.isSaved("Work.vdp")) << call;
        const std::string text = rig.saved("Work.vdp");
        EXPECT_TRUE(profile::wholePlainProfile(text)) << call;
        EXPECT_TRUE(!hadNew || text.find("*.new") != std::string::npos) << call;
        expectNothingElse(rig, call, "Work.vdp");
    }
}

// The list that a person opens a profile from is made of what is there then.
TEST(KilledSave, IsFinishedBeforeTheProfilesAreListed)
{
    FrameRig rig;
    rig.savedProfile("Work");
    const std::string scrambled = rig.disk.readAll(FrameRig::pathOf("Work.vdp"));
    rig.putFile(FrameRig::pathOf("Work.vdp"), rig.saved("Work.vdp"));
    rig.openByDialog("Work.vdp");
    mnuNew_Click(rig.commands);
    mnuOpen_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "O");
    EXPECT_EQ(rig.record.txtDestLoc.text, "E:\\Backup");
    EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), scrambled);
}

// A plain profile under our feet is one that another program is just about to scramble.
TEST(KilledSave, IsNotFinishedWhileAnotherProgramSaves)
{
    FrameRig rig;
    rig.savedProfile("Work");
    const std::string plain = rig.saved("Work.vdp");
    rig.putFile(FrameRig::pathOf("Work.vdp"), plain);
    const auto held = rig.disk.lockFolder(kProfiles);
    EXPECT_TRUE(profile::finishInterruptedSaves(rig.disk, kProfiles).empty());
    EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), plain);
    rig.change();
    mnuSave_Click(rig.commands);
    EXPECT_EQ(rig.modes(), "Ee") << "two programs must not save at once";
    EXPECT_EQ(rig.errors.LG_Err_Number, base::error_number::kPermissionDenied);
    EXPECT_EQ(rig.disk.readAll(FrameRig::pathOf("Work.vdp")), plain);
}

} // namespace
} // namespace vardelin::frame
