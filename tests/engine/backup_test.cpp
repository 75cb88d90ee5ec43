#include "engine/engine_world.h"

#include "base/runtime_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

int raisedBy(const std::function<void()>& action)
{
    try {
        action();
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

TEST(Backup, FirstCopyIsFullAndAChangedOneIsAVersion)
{
    World world;
    world.write("report.doc", "one");
    EXPECT_EQ(world.backup().report.fullCopies, 1U);
    EXPECT_THAT(world.entries(), ElementsAre("C:\\data\\report.doc_000"));

    world.write("report.doc", "two");
    const BackupResult second = world.backup();
    EXPECT_EQ(second.report.versions, 1U);
    EXPECT_EQ(second.report.fullCopies, 0U);
    world.write("report.doc", "three");
    world.backup();
    EXPECT_THAT(world.entries(), ElementsAre("C:\\data\\report.doc_000", "C:\\data\\report.doc_001",
                                             "C:\\data\\report.doc_002"));
}

TEST(Backup, SetsNoFilesIdentifiedWhenNothingChanged)
{
    World world;
    world.write("a.txt", "a");
    EXPECT_EQ(world.backup().noFiles, kFalse);
    const BackupResult second = world.backup();
    EXPECT_EQ(second.noFiles, kTrue);
    EXPECT_EQ(second.success, kTrue);
    EXPECT_EQ(second.missed, kFalse);
    EXPECT_EQ(second.report.outcome, Outcome::NothingToDo);
}

TEST(Backup, ChangeDetectionReadsNoFileOfAnUnchangedTree)
{
    World world;
    for (int i = 0; i < 50; ++i)
        world.write("f" + std::to_string(i), "content");
    world.backup();
    world.ports.fileSystem.script().reset();
    world.backup();
    // The profile is the one file that is opened: folder listings tell all the rest.
    EXPECT_EQ(world.ports.fileSystem.script().countOf("folder.open"), 1U);
}

TEST(Backup, ATouchedFileGetsANewTimeInItsNameAndNoVersion)
{
    World world;
    world.write("a.txt", "same");
    world.backup();
    const auto before = world.copies().at("C:\\data\\a.txt_000");
    world.ports.fileSystem.openFolder("C:\\data")->setTimes("a.txt", 5'000'000, 7'000'000);
    const BackupResult touched = world.backup();
    EXPECT_EQ(touched.report.renewed, 1U);
    EXPECT_EQ(touched.report.copiesWritten, 0U);
    EXPECT_EQ(touched.noFiles, kTrue);
    const auto after = world.copies().at("C:\\data\\a.txt_000");
    EXPECT_EQ(after.modifiedNs, 7'000'000);
    EXPECT_EQ(after.savedNs, before.savedNs) << "the content is as old as it was";
    EXPECT_EQ(world.backup().report.renewed, 0U);
    world.restore({"C:\\data\\a.txt_000"}, "D:\\back");
    EXPECT_EQ(world.ports.fileSystem.find("D:\\back\\C\\data\\a.txt")->modifiedNs, 7'000'000);
}

TEST(Backup, WritesOneLogRecordARun)
{
    World world;
    world.write("a.txt", "a");
    world.write("b.txt", "b");
    world.backup();
    world.write("b.txt", "bb");
    world.backup();
    world.backup(); // nothing to do: no record
    EXPECT_EQ(world.read("C:\\app\\Log\\Backup\\Work.txt"),
              "Work||Full||2003-07-03 09:05:03||2||0||\r\n"
              "Work||Incremental||2003-07-03 09:05:03||1||0||\r\n");
}

TEST(Backup, EventsComeForEachFileAndTheIncrementsAddUpToTheTotal)
{
    World world;
    for (int i = 0; i < 10; ++i)
        world.write("f" + std::to_string(i), "x");
    const BackupResult result = world.backup();
    EXPECT_EQ(result.units, 10);
    EXPECT_DOUBLE_EQ(world.events.progress, 10.0);
    for (int i = 0; i < 10; ++i)
        EXPECT_THAT(world.events.files, Contains("C:\\data\\f" + std::to_string(i)));
}

TEST(Backup, CancelStopsTheRunAndKeepsWhatIsWhole)
{
    World world;
    for (int i = 0; i < 2000; ++i)
        world.write("d" + std::to_string(i / 100) + "\\f" + std::to_string(i), "x");
    Engine engine(world.machine, kApp, world.events);
    world.events.onFile = [&](std::string_view) { engine.CancelRequested(kTrue); };
    TruthValue success = kTrue;
    engine.EngineBackup(kProfiles, "Work.vdp", success);
    EXPECT_EQ(success, kFalse);
    EXPECT_EQ(engine.CancelRequested(), kTrue);
    EXPECT_EQ(engine.NoFilesIdentified(), kFalse);
    EXPECT_EQ(engine.MissedFiles(), kFalse) << "a file that was not reached is not a missed one";
    EXPECT_EQ(engine.backupReport().outcome, Outcome::Cancelled);
    EXPECT_LT(engine.backupReport().copiesWritten, 2000U);
    EXPECT_EQ(world.copies().size(), engine.backupReport().copiesWritten);
    EXPECT_THAT(world.read("C:\\app\\Log\\Backup\\Work.txt"), HasSubstr("||Full||"));
    world.events.onFile = nullptr;
    world.backup();
    EXPECT_EQ(world.copies().size(), 2000U);
}

TEST(Backup, ACancelledLargeFileLeavesNothingBehind)
{
    World world;
    world.write("large.bin", std::string(20 * 1024 * 1024, 'x'));
    Engine engine(world.machine, kApp, world.events);
    int seen = 0;
    world.events.onFile = [&](std::string_view) {
        if (++seen == 2) // the second one comes from inside the file
            engine.CancelRequested(kTrue);
    };
    TruthValue success = kFalse;
    engine.EngineBackup(kProfiles, "Work.vdp", success);
    if (engine.backupReport().copiesWritten == 0)
        EXPECT_TRUE(world.tree("D:\\store\\Work").empty());
    else
        EXPECT_EQ(world.copies().size(), 1U);
}

TEST(Backup, MissedFilesAreNamedWithTheirReasonsInAReport)
{
    World world;
    world.write("good.txt", "g");
    world.write("locked.txt", "l");
    world.ports.fileSystem.setUnreadable("C:\\data\\locked.txt");
    const BackupResult result = world.backup();
    EXPECT_EQ(result.missed, kTrue);
    EXPECT_EQ(result.success, kTrue);
    ASSERT_EQ(result.report.missed.size(), 1U);
    EXPECT_EQ(result.report.missed[0].path, "C:\\data\\locked.txt");
    EXPECT_EQ(result.report.missedReportPath, "C:\\app\\Log\\Missed\\Work_20030703090503.txt");
    EXPECT_THAT(world.read(result.report.missedReportPath), HasSubstr("C:\\data\\locked.txt\t"));
    EXPECT_EQ(world.read("C:\\app\\Log\\Backup\\Work.txt"),
              "Work||Full||2003-07-03 09:05:03||1||1||" + result.report.missedReportPath + "\r\n");
    EXPECT_THAT(world.entries(), ElementsAre("C:\\data\\good.txt_000"));
}

TEST(Backup, AFileThatChangesWhileItIsReadIsReadAgainOnce)
{
    World world;
    world.write("busy.txt", "first");
    int changes = 0;
    world.ports.fileSystem.script().onCallsNamed(
        "file.read", [&](const platform::CallScript::Call& call) {
            if (changes == 0 && call.subject.find("busy") != std::string::npos) {
                ++changes;
                world.ports.fileSystem.openFolder("C:\\data")->setTimes("busy.txt", 1, 1);
            }
        });
    const BackupResult result = world.backup();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(result.report.copiesWritten, 1U);
    EXPECT_THAT(result.report.missed, IsEmpty());
}

TEST(Backup, AFileThatKeepsChangingIsMissed)
{
    World world;
    world.write("busy.txt", "first");
    std::int64_t time = 1;
    world.ports.fileSystem.script().onCallsNamed(
        "file.read", [&](const platform::CallScript::Call& call) {
            ++time;
            if (call.subject.find("busy") != std::string::npos)
                world.ports.fileSystem.openFolder("C:\\data")->setTimes("busy.txt", time, time);
        });
    const BackupResult result = world.backup();
    EXPECT_EQ(result.report.copiesWritten, 0U);
    ASSERT_EQ(result.report.missed.size(), 1U);
    EXPECT_THAT(result.report.missed[0].reason, HasSubstr("changed while it was read"));
}

TEST(Backup, WithEverySourceGoneThereIsNothingToDoAndNothingMissed)
{
    World world;
    world.write("a.txt", "a");
    world.backup();
    world.ports.fileSystem.removeTree("C:\\data");
    const BackupResult result = world.backup();
    EXPECT_EQ(result.noFiles, kTrue);
    EXPECT_EQ(result.missed, kFalse);
    EXPECT_EQ(world.read("C:\\app\\Log\\Backup\\Work.txt"),
              "Work||Full||2003-07-03 09:05:03||1||0||\r\n");
}

TEST(Backup, WithOneSourceGoneThatOneIsMissed)
{
    World world;
    world.write("a.txt", "a");
    ProfileText text;
    text.sources = {"C:\\data\\", "C:\\gone\\", "C:\\data2\\lost.txt"};
    world.setProfile(text);
    const BackupResult result = world.backup();
    EXPECT_EQ(result.missed, kTrue);
    ASSERT_EQ(result.report.missed.size(), 2U);
    EXPECT_EQ(result.report.missed[0].path, "C:\\data2\\lost.txt");
    EXPECT_EQ(result.report.missed[1].path, "C:\\gone\\");
    EXPECT_EQ(result.report.copiesWritten, 1U);
}

TEST(Backup, NeverSavesItselfWhenTheDestinationLiesInASource)
{
    World world;
    world.write("a.txt", "a");
    ProfileText text;
    text.sources = {"C:\\"};
    text.destination = "C:\\data\\store";
    world.setProfile(text);
    world.ports.fileSystem.createFolders("C:\\data\\store");
    // Another profile's archive beside this one, and a folder that only looks like one.
    world.write("store\\Other\\Other.vdp", "p");
    world.write("store\\Other\\C\\x_FULL_1-2-3.zst", "copy");
    world.write("store\\Notes\\plain.txt", "n");
    Engine engine(world.machine, kApp, world.events);
    TruthValue success = kFalse;
    engine.EngineBackup(kProfiles, "Work.vdp", success);
    engine.EngineBackup(kProfiles, "Work.vdp", success);
    const auto entries = world.entries();
    EXPECT_THAT(entries, Contains("C:\\data\\a.txt_000"));
    EXPECT_THAT(entries, Contains("C:\\data\\store\\Notes\\plain.txt_000"));
    for (const std::string& entry : entries) {
        EXPECT_THAT(entry, Not(HasSubstr("store\\Work")));
        EXPECT_THAT(entry, Not(HasSubstr("store\\Other")));
        EXPECT_THAT(entry, Not(HasSubstr("app\\Log")));
        EXPECT_THAT(entry, Not(HasSubstr("app\\Data")));
    }
}

TEST(Backup, KeepsTheCopyOfTheProfileInTheArchiveRoot)
{
    World world;
    world.write("a.txt", "a");
    world.backup();
    EXPECT_EQ(world.read(kRoot + "Work.vdp"), world.read(kProfiles + "Work.vdp"));
}

TEST(Backup, ExcludedExtensionsAndNamesApplyLastToSingleFilesToo)
{
    World world;
    for (const char* name : {"a.txt", "b.TMP", "c.bak", "note1.txt", "keep.doc"})
        world.write(name, "x");
    world.writeRaw("C:\\other\\single.tmp", "x");
    ProfileText text;
    text.sources = {"C:\\data\\", "C:\\other\\single.tmp"};
    text.excludedExtensions = {".tmp", ".bak"};
    text.excludeNames = "note*.*, zzz*";
    world.setProfile(text);
    world.backup();
    EXPECT_THAT(world.entries(), ElementsAre("C:\\data\\a.txt_000", "C:\\data\\keep.doc_000"));
}

TEST(Backup, IncludedExtensionsAndNamesTakeFilesFromEveryFixedDrive)
{
    World world;
    world.writeRaw("C:\\here\\deep\\one.doc", "1");
    world.writeRaw("D:\\there\\two.DOC", "2");
    world.writeRaw("D:\\there\\Tech-notes", "3");
    world.writeRaw("D:\\there\\no.txt", "4");
    world.writeRaw("C:\\here\\secret.doc", "5");
    ProfileText text;
    text.sources = {};
    text.includedExtensions = {".doc"};
    text.includeNames = "tech*.*";
    text.excludeNames = "secret*";
    world.setProfile(text);
    world.backup();
    EXPECT_THAT(world.entries(),
                ElementsAre("C:\\here\\deep\\one.doc_000", "D:\\there\\Tech-notes_000",
                            "D:\\there\\two.DOC_000"));
}

TEST(Backup, TakesEachRealFileOnceWhateverTheSourceLinesOverlap)
{
    World world;
    world.write("sub\\a.txt", "a");
    ProfileText text;
    text.sources = {"C:\\data\\sub\\a.txt", "C:\\data\\sub\\", "C:\\data\\", "C:\\data\\"};
    text.includedExtensions = {".txt"};
    world.setProfile(text);
    EXPECT_EQ(world.backup().report.filesScanned, 1U);
    EXPECT_THAT(world.entries(), ElementsAre("C:\\data\\sub\\a.txt_000"));
}

TEST(Backup, VersionsOfSourcesNamedFullStayWellFormedEntries)
{
    World world;
    world.write("carefully.txt", "1");
    world.write("Server.conf", "1");
    world.backup();
    world.write("carefully.txt", "2");
    world.write("Server.conf", "2");
    world.backup();
    world.write("carefully.txt", "3");
    world.backup();
    const auto copies = world.copies();
    ASSERT_EQ(copies.size(), 5U);
    for (const auto& [entry, copy] : copies) {
        EXPECT_EQ(entry[entry.size() - 4], '_') << entry;
        EXPECT_TRUE(copy.sourcePath == "C:\\data\\carefully.txt" ||
                    copy.sourcePath == "C:\\data\\Server.conf");
    }
    const RestoreResult back = world.restore({"C:\\data\\"}, "D:\\back");
    EXPECT_EQ(back.report.filesRestored, 2U);
    EXPECT_EQ(world.read("D:\\back\\C\\data\\carefully.txt"), "3");
    EXPECT_EQ(world.read("D:\\back\\C\\data\\Server.conf"), "2");
}

TEST(Backup, ASecondRunOnTheSameArchiveIsRefusedWhileTheFirstGoesOn)
{
    World world;
    world.write("a.txt", "a");
    int inner = 0;
    world.events.onFile = [&](std::string_view) {
        RecordedEvents others;
        Engine engine(world.machine, kApp, others);
        TruthValue success = kFalse;
        inner = raisedBy([&] { engine.EngineBackup(kProfiles, "Work.vdp", success); });
    };
    world.backup();
    EXPECT_EQ(inner, base::error_number::kPermissionDenied);
}

struct Refused {
    const char* what;
    std::function<void(World&)> arrange;
    int number;
};

TEST(Backup, RefusesWithAnErrorThatNamesTheThing)
{
    namespace number = base::error_number;
    const std::vector<Refused> cases{
        {"missing profile", [](World& w) { w.ports.fileSystem.removeFile(kProfiles + "Work.vdp"); },
         number::kFileNotFound},
        {"empty profile", [](World& w) { w.writeRaw(kProfiles + "Work.vdp", ""); },
         number::kInvalidCall},
        {"no profile at all",
         [](World& w) { w.writeRaw(kProfiles + "Work.vdp", std::string(5000, '\x07')); },
         number::kInvalidCall},
        {"no destination",
         [](World& w) {
             ProfileText text;
             text.destination = "";
             w.setProfile(text);
         },
         number::kInvalidCall},
        {"encryption under an empty password",
         [](World& w) {
             ProfileText text;
             text.encrypt = true;
             text.password = "x";
             std::string plain = text.plain();
             plain.replace(plain.find("True\r\nx"), 7, "True\r\n");
             w.writeRaw(kProfiles + "Work.vdp", profile::scrambleText(plain));
         },
         number::kInvalidCall},
        {"encryption without a word on a password",
         [](World& w) {
             ProfileText text;
             text.encrypt = true;
             std::string plain = text.plain();
             plain.replace(plain.find("{Password}\r\nFalse"), 17, "{Password}\r\nFa");
             w.writeRaw(kProfiles + "Work.vdp", profile::scrambleText(plain));
         },
         number::kInvalidCall},
        {"a profile cut before its end",
         [](World& w) {
             const std::string text = ProfileText{}.plain();
             w.writeRaw(kProfiles + "Work.vdp",
                        profile::scrambleText(text.substr(0, text.find("Encrypt="))));
         },
         number::kInvalidCall},
        {"destination gone", [](World& w) { w.ports.fileSystem.removeTree("D:\\store"); },
         number::kPathNotFound},
        {"read-only destination", [](World& w) { w.ports.fileSystem.setReadOnly("D:\\store"); },
         number::kPermissionDenied},
        {"full destination", [](World& w) { w.ports.fileSystem.setCapacity('D', 1000); },
         number::kDiskFull},
    };
    for (const Refused& refused : cases) {
        World world;
        world.write("a.bin", std::string(100'000, 'a'));
        world.write("b.bin", [] {
            std::string noise;
            std::uint32_t state = 1;
            for (int i = 0; i < 100'000; ++i) {
                state = state * 1664525U + 1013904223U;
                noise += static_cast<char>(state >> 24U);
            }
            return noise;
        }());
        refused.arrange(world);
        EXPECT_EQ(raisedBy([&] { world.backup(); }), refused.number) << refused.what;
        EXPECT_EQ(world.read("C:\\data\\a.bin").size(), 100'000U) << refused.what;
    }
}

TEST(Backup, AFullDestinationKeepsTheCopiesThatAreWholeAndGoesOnLater)
{
    World world;
    std::uint32_t state = 7;
    for (int i = 0; i < 20; ++i) {
        std::string noise;
        for (int k = 0; k < 10'000; ++k) {
            state = state * 1664525U + 1013904223U;
            noise += static_cast<char>(state >> 24U);
        }
        world.write("f" + std::to_string(i), noise);
    }
    world.ports.fileSystem.setCapacity('D', 100'000);
    EXPECT_EQ(raisedBy([&] { world.backup(); }), base::error_number::kDiskFull);
    for (const auto& [name, bytes] : world.tree("D:\\store\\Work"))
        EXPECT_THAT(name, Not(HasSubstr(".tmp")));
    const auto report = verifyArchive(world.machine, kProfiles + "Work.vdp", 100,
                                      [](std::string_view) { return true; });
    EXPECT_THAT(report.damaged, IsEmpty());
    world.ports.fileSystem.setCapacity('D', 100'000'000);
    world.backup();
    world.restore({"C:\\data\\"}, "D:\\back");
    EXPECT_EQ(world.tree("D:\\back\\C\\data"), world.tree("C:\\data"));
}

TEST(Backup, ADeadRunsTemporaryFilesAreClearedAway)
{
    World world;
    world.write("sub\\a.txt", "a");
    world.backup();
    world.writeRaw(kRoot + "C\\data\\sub\\~00000000000000ff.tmp", "half");
    world.writeRaw(kRoot + "~run", "");
    world.backup();
    EXPECT_FALSE(world.exists(kRoot + "C\\data\\sub\\~00000000000000ff.tmp"));
    EXPECT_FALSE(world.exists(kRoot + "~run"));
    EXPECT_THAT(world.entries(), ElementsAre("C:\\data\\sub\\a.txt_000"));
}

TEST(Backup, ARunThatDiesAtAnyCallLeavesWholeCopiesOnly)
{
    for (std::size_t call = 1;; call += 7) {
        World world;
        for (int i = 0; i < 6; ++i)
            world.write("d" + std::to_string(i % 2) + "\\f" + std::to_string(i), "one");
        world.backup();
        for (int i = 0; i < 6; ++i)
            world.write("d" + std::to_string(i % 2) + "\\f" + std::to_string(i), "two two");
        world.ports.fileSystem.script().reset();
        world.ports.fileSystem.script().killAtCall(call);
        try {
            world.backup();
        } catch (const platform::Killed&) {
        }
        const bool died = world.ports.fileSystem.script().wasKilled();
        world.ports.fileSystem.script().reset();
        EXPECT_THAT(verifyArchive(world.machine, kProfiles + "Work.vdp", 100,
                                  [](std::string_view) { return true; })
                        .damaged,
                    IsEmpty())
            << "died at call " << call;
        world.backup();
        world.restore({"C:\\data\\"}, "D:\\new");
        EXPECT_EQ(world.tree("D:\\new\\C\\data"), world.tree("C:\\data")) << call;
        EXPECT_EQ(world.copies().size(), 12U) << "died at call " << call;
        for (const auto& [name, bytes] : world.tree("D:\\store\\Work"))
            EXPECT_THAT(name, Not(HasSubstr(".tmp"))) << "died at call " << call;
        if (!died)
            break;
    }
}

TEST(Backup, WithCompressionOffFilesLieAsTheyAreAndTheReviewListIsWritten)
{
    World world;
    world.write("sub\\a.txt", "plain text");
    ProfileText text;
    text.compress = false;
    world.setProfile(text);
    world.backup();
    const auto copy = world.copies().at("C:\\data\\sub\\a.txt_000");
    EXPECT_EQ(copy.form, archive::Form::Stored);
    EXPECT_EQ(world.read(copy.archivePath), "plain text");
    EXPECT_EQ(world.ports.fileSystem.find(copy.archivePath)->modifiedNs, copy.modifiedNs);
    EXPECT_EQ(world.read("C:\\app\\Data\\ReviewFiles.txt"),
              "Files And Folders\\C:\\data\\sub\\a.txt_000\r\n");
    EXPECT_EQ(world.backup().noFiles, kTrue);
    world.write("sub\\a.txt", "changed");
    world.backup();
    world.restore({"C:\\data\\sub\\a.txt_001"}, "D:\\back");
    EXPECT_EQ(world.read("D:\\back\\C\\data\\sub\\a.txt"), "changed");
}

TEST(Backup, ADryRunTellsAndWritesNothing)
{
    World world;
    world.write("a.txt", "a");
    const BackupPlan plan = planBackup(world.machine, kApp, kProfiles + "Work.vdp");
    ASSERT_EQ(plan.copies.size(), 1U);
    EXPECT_EQ(plan.copies[0].path, "C:\\data\\a.txt");
    EXPECT_FALSE(world.exists("D:\\store\\Work"));
}

} // namespace
} // namespace vardelin::engine
