#include "power_cut_rig.h"
#include "profile/interrupted_saves.h"
#include "profile/profile_change.h"
#include "profile/profile_writer.h"
#include "profile/scramble_text.h"
#include "profile/scrambler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace vardelin::profile {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Files = std::map<std::string, std::string>;

constexpr std::string_view kFolder = "C:\\Profiles";

std::string plainOf(std::string_view name, std::string_view source = "D:\\Data\\")
{
    return test::OpeningRig::plainText(name, source);
}

// The folder after finishing what is in it.
struct Folder {
    platform::MemoryFileSystem disk;
    std::vector<FinishedSave> finished;

    explicit Folder(const Files& files)
    {
        disk.createFolder(kFolder);
        for (const auto& [name, bytes] : files)
            disk.replaceFile(platform::joinPath(kFolder, name), bytes);
        finished = finishInterruptedSaves(disk, kFolder);
    }
    Files files()
    {
        Files found;
        for (const auto& entry : disk.list(kFolder))
            found[entry.name] = disk.readAll(platform::joinPath(kFolder, entry.name));
        return found;
    }
};

TEST(WholePlainProfile, IsToldByItsFirstAndItsLastLine)
{
    const std::string whole = plainOf("Work.vdp");
    EXPECT_EQ(wholePlainProfile(whole), "Work.vdp");
    EXPECT_EQ(wholePlainProfile(plainOf("Old.vdp")), "Old.vdp");
    for (std::size_t cut = 0; cut < whole.size(); ++cut)
        ASSERT_EQ(wholePlainProfile(whole.substr(0, cut)), std::nullopt) << cut;
    std::string zeros = whole;
    zeros.replace(zeros.size() / 2, 3, 3, '\0');
    EXPECT_EQ(wholePlainProfile(zeros), std::nullopt);
    EXPECT_EQ(wholePlainProfile("[a]\r\n[End of a]\r\n"), std::nullopt);
    EXPECT_EQ(wholePlainProfile("[a]\r\n{End Of Source files}\r\n{Source files}\r\n[End of a]\r\n"),
              std::nullopt);
}

// Were one taken for plain, it would be scrambled twice and could not be read again.
TEST(WholePlainProfile, IsNeverAScrambledOne)
{
    for (std::size_t length = 1; length <= 250; ++length) {
        const std::string scrambled = scrambleText(plainOf(std::string(length, 'n') + ".vdp"));
        ASSERT_NE(scrambled.front(), '[') << length;
        ASSERT_EQ(wholePlainProfile(scrambled), std::nullopt);
    }
}

TEST(InterruptedSaves, ScramblesAWholePlainProfile)
{
    const std::string plain = plainOf("Work.vdp");
    Folder folder({{"Work.vdp", plain},
                   {"~Work.vdp.old", scrambleText(plainOf("Work.vdp", "D:\\Former\\"))},
                   {"~Work.vdp.tmp", plain}});
    EXPECT_THAT(folder.files(), ElementsAre(Pair("Work.vdp", scrambleText(plain))));
    ASSERT_EQ(folder.finished.size(), 1U);
    EXPECT_EQ(folder.finished[0].name, "Work.vdp");
    EXPECT_EQ(lossyLinesText(folder.finished[0]), "");
}

TEST(InterruptedSaves, GivesTheOldProfileThePlaceOfOneThatWasCut)
{
    const std::string plain = plainOf("Work.vdp");
    const std::string old = scrambleText(plainOf("Work.vdp", "D:\\Former\\"));
    for (const std::string& cut : {plain.substr(0, plain.size() - 1), std::string()}) {
        Folder folder({{"Work.vdp", cut}, {"~Work.vdp.old", old}});
        EXPECT_THAT(folder.files(), ElementsAre(Pair("Work.vdp", old)));
        EXPECT_THAT(folder.finished, IsEmpty());
    }
}

TEST(InterruptedSaves, KeepsACutProfileThatNothingElseHolds)
{
    const std::string plain = plainOf("Work.vdp");
    const std::string cut = plain.substr(0, plain.size() - 1);
    for (const std::string& old : {std::string(), scrambleText(cut)}) {
        const Files files{{"Work.vdp", cut}, {"~Work.vdp.old", old}};
        EXPECT_EQ(Folder(files).files(), files);
    }
}

TEST(InterruptedSaves, GivesAProfileUnderItsTemporaryNameItsOwn)
{
    const std::string scrambled = scrambleText(plainOf("Work.vdp"));
    const std::string old = scrambleText(plainOf("Work.vdp", "D:\\Former\\"));
    for (const std::string& kept : {std::string(), old}) {
        Folder folder({{"UWork.vdp", scrambled}, {"~Work.vdp.old", kept}});
        EXPECT_THAT(folder.files(), ElementsAre(Pair("Work.vdp", scrambled)));
    }
}

TEST(InterruptedSaves, LeavesAProfileOfTheTemporaryNameAlone)
{
    const std::string mine = scrambleText(plainOf("UWork.vdp"));
    const std::string work = scrambleText(plainOf("Work.vdp"));
    const Files both{{"UWork.vdp", mine}, {"Work.vdp", work}};
    Files marked = both;
    marked["~Work.vdp.old"] = work;
    EXPECT_EQ(Folder(both).files(), both);
    EXPECT_EQ(Folder(marked).files(), both);
    // A copy that a person made: nothing says that a save was cut off.
    const Files copies{{"UWork.vdp", work}, {"Work.vdp", work}};
    EXPECT_EQ(Folder(copies).files(), copies);
    const Files renamed{{"UWork.vdp", work}};
    EXPECT_EQ(Folder(renamed).files(), renamed);
}

// It was moved aside while the other one was scrambled.
TEST(InterruptedSaves, GivesAProfileThatWasMovedAsideItsNameBack)
{
    const std::string mine = scrambleText(plainOf("UWork.vdp"));
    const std::string plain = plainOf("Work.vdp");
    Folder folder({{"Work.vdp", plain},
                   {"UWork.vdp", scrambleText(plain).substr(0, 40)},
                   {"~UWork.vdp.kept", mine},
                   {"~Work.vdp.old", ""}});
    EXPECT_THAT(folder.files(),
                ElementsAre(Pair("UWork.vdp", mine), Pair("Work.vdp", scrambleText(plain))));
}

TEST(InterruptedSaves, PutsBackTheOldProfileWhereThereIsNone)
{
    const std::string old = scrambleText(plainOf("Work.vdp"));
    EXPECT_THAT(Folder(Files{{"~Work.vdp.old", old}}).files(), ElementsAre(Pair("Work.vdp", old)));
    EXPECT_THAT(Folder(Files{{"~Work.vdp.old", ""}}).files(), IsEmpty());
}

TEST(InterruptedSaves, LeavesWhatItDoesNotKnow)
{
    const std::string work = scrambleText(plainOf("Work.vdp"));
    const Files files{{"Work.vdp", work},
                      {"Notes.vdp", "my notes"},
                      {"Empty.vdp", ""},
                      {"~Work.vdp.tmp", work},
                      {"~Letter.old", "a backup"},
                      {"plain.txt", plainOf("plain.txt")},
                      {"List.vdp", "[1] first\r\n"}};
    EXPECT_EQ(Folder(files).files(), files);
}

TEST(InterruptedSaves, TellsTheLinesThatWereLostByNumber)
{
    // A line of 169 bytes is shifted by 9: its byte 0xF8 would come to 257.
    const std::string source = "D:\\" + std::string(164, 'x') + "\xF8\\";
    Folder folder(Files{{"Work.vdp", plainOf("Work.vdp", source)}});
    ASSERT_EQ(folder.finished.size(), 1U);
    EXPECT_EQ(lossyLinesText(folder.finished[0]),
              "The saving of Work.vdp was cut off and is finished now, but line 3 of it cannot be "
              "kept exactly. Open the profile and check it.");
}

TEST(InterruptedSaves, RaisesNothingWithoutAFolder)
{
    platform::MemoryFileSystem disk;
    EXPECT_THAT(finishInterruptedSaves(disk, kFolder), IsEmpty());
}

// One profile that cannot be read does not keep the others from being finished.
TEST(InterruptedSaves, OneFailingCallLeavesTheRestForTheNextTime)
{
    const std::string plain = plainOf("Work.vdp");
    const std::string other = plainOf("Other.vdp");
    for (std::size_t call = 1;; ++call) {
        Folder folder(Files{{"Empty.vdp", ""}});
        folder.disk.replaceFile("C:\\Profiles\\Work.vdp", plain);
        folder.disk.replaceFile("C:\\Profiles\\Other.vdp", other);
        platform::CallScript script;
        platform::ScriptedFileSystem files(folder.disk, script);
        script.failCall(call, base::error_number::kDeviceIo);
        finishInterruptedSaves(files, kFolder);
        const bool reached = script.callCount() >= call;
        finishInterruptedSaves(folder.disk, kFolder);
        Files wanted{{"Empty.vdp", ""},
                     {"Other.vdp", scrambleText(other)},
                     {"Work.vdp", scrambleText(plain)}};
        ASSERT_EQ(folder.files(), wanted) << call;
        if (!reached)
            break;
    }
}

// Writes and scrambles a profile as the window and vardelinctl do, on a disk that keeps for certain
// only what was flushed.
struct PowerCutSave : test::PowerCutRig {
    void save(std::string_view names)
    {
        const std::string folder(kFolder);
        rig.editor.txtInclNames.text = names;
        rig.editor.txtDestLoc.text = "D:\\Backup";
        ProfileChange change(files, folder, "Work.vdp");
        ASSERT_TRUE(CreatingVdpFile(profiles, "Work.vdp", folder));
        change.plainWritten();
        ASSERT_TRUE(PrFileEncrypt(profiles, folder, "Work.vdp").done);
        change.scrambled();
    }
    std::string saved()
    {
        return unscrambleText(disk.readAll(platform::joinPath(kFolder, "Work.vdp")));
    }
};

TEST(InterruptedSaves, PowerCutsLeaveTheOldOrTheNewProfile)
{
    constexpr std::uint64_t kCuts = 6; // each decides otherwise about what was not flushed
    std::size_t oldOnes = 0;
    std::size_t newOnes = 0;
    bool finished = false;
    for (std::size_t call = 1; !finished; ++call) {
        for (std::uint64_t seed = 1; seed <= kCuts; ++seed) {
            PowerCutSave world;
            world.disk.createFolder(kFolder);
            const std::string other = scrambleText(plainOf("UWork.vdp"));
            world.disk.replaceFile("C:\\Profiles\\UWork.vdp", other);
            world.save("*.old");
            world.disk.settle();
            world.script.reset();
            world.script.killAtCall(call);
            finished = true;
            try {
                world.save("*.new");
            } catch (const platform::Killed&) {
                finished = false;
            }
            world.disk.cut(seed * 1000 + call);
            world.script.reset();
            finishInterruptedSaves(world.disk, kFolder);
            const std::string text = world.saved();
            ASSERT_TRUE(wholePlainProfile(text)) << call << " seed " << seed << "\n" << text;
            const bool isNew = text.find("*.new") != std::string::npos;
            ASSERT_TRUE(isNew || text.find("*.old") != std::string::npos);
            (isNew ? newOnes : oldOnes) += 1U;
            ASSERT_EQ(world.disk.readAll("C:\\Profiles\\UWork.vdp"), other) << call;
        }
    }
    EXPECT_GT(oldOnes, 5U);
    EXPECT_GT(newOnes, 5U);
}

} // namespace
} // namespace vardelin::profile
