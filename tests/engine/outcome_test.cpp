#include "base/runtime_error.h"
#include "engine/engine_world.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace vardelin::engine {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(Outcome, FollowsFromWhatHappened)
{
    struct Row {
        RunFacts facts;
        Outcome outcome;
        std::string_view name;
        bool toItsEnd;
        bool recorded;       // where something was saved or restored
        bool recordedIfBare; // where nothing was
    };
    for (const Row& row : {
             Row{{.anything = true}, Outcome::Complete, "complete", true, true, true},
             Row{{.gaps = true, .anything = true},
                 Outcome::CompleteWithGaps,
                 "gaps",
                 true,
                 true,
                 true},
             Row{{.gaps = true}, Outcome::CompleteWithGaps, "gaps", true, true, true},
             Row{{}, Outcome::NothingToDo, "nothing", true, false, false},
             Row{{.cancelled = true}, Outcome::Cancelled, "cancelled", false, true, true},
             Row{{.cancelled = true, .gaps = true, .anything = true},
                 Outcome::Cancelled,
                 "cancelled",
                 false,
                 true,
                 true},
             Row{{.failed = true}, Outcome::Failed, "failed", false, true, false},
             Row{{.failed = true, .cancelled = true, .gaps = true, .anything = true},
                 Outcome::Failed,
                 "failed",
                 false,
                 true,
                 false},
         }) {
        const Outcome outcome = outcomeOf(row.facts);
        EXPECT_EQ(outcome, row.outcome);
        EXPECT_EQ(outcomeName(outcome), row.name);
        EXPECT_EQ(cameToItsEnd(outcome), row.toItsEnd) << row.name;
        EXPECT_EQ(leavesLogRecord(outcome, true), row.recorded) << row.name;
        EXPECT_EQ(leavesLogRecord(outcome, false), row.recordedIfBare) << row.name;
    }
}

TEST(Outcome, IsFailedUntilARunHasComeToAnotherEnd)
{
    EXPECT_EQ(BackupReport().outcome, Outcome::Failed);
    EXPECT_EQ(RestoreReport().outcome, Outcome::Failed);
    EXPECT_EQ(VerifyReport().outcome, Outcome::Failed);
}

// A backup that may raise; gives the error's number, 0 for none.
int backupInto(World& world, BackupResult& result)
{
    Engine engine(world.machine, kApp, world.events);
    result.success = kTrue;
    int number = 0;
    try {
        engine.EngineBackup(kProfiles, "Work.vdp", result.success);
    } catch (const base::RuntimeError& error) {
        number = error.number();
    }
    result.noFiles = engine.NoFilesIdentified();
    result.missed = engine.MissedFiles();
    result.report = engine.backupReport();
    return number;
}

TEST(FailedBackup, ThatSavedNothingLeavesAReportAndNoRecord)
{
    World world;
    world.write("a", "x");
    world.ports.fileSystem.removeTree("D:\\store");
    BackupResult result;
    EXPECT_EQ(backupInto(world, result), base::error_number::kPathNotFound);
    EXPECT_EQ(result.report.outcome, Outcome::Failed);
    EXPECT_EQ(result.success, kFalse);
    EXPECT_EQ(result.noFiles, kFalse);
    ASSERT_TRUE(result.report.failure.has_value());
    EXPECT_EQ(result.report.failure->number, base::error_number::kPathNotFound);
    EXPECT_EQ(result.report.failure->subject, "D:\\store");
    EXPECT_EQ(result.report.failure->reason, "the destination does not exist");
    EXPECT_FALSE(world.exists("C:\\app\\Log\\Backup\\Work.txt"));
}

TEST(FailedBackup, WithoutAProfileSaysSoInItsReport)
{
    World world;
    world.ports.fileSystem.removeFile(kProfiles + "Work.vdp");
    BackupResult result;
    EXPECT_EQ(backupInto(world, result), base::error_number::kFileNotFound);
    EXPECT_EQ(result.report.outcome, Outcome::Failed);
    EXPECT_EQ(result.report.failure->number, base::error_number::kFileNotFound);
}

// The disk fills at every write of the archive in turn: what the report and the log claim is what
// the archive holds.
TEST(FailedBackup, ClaimsWhatItSavedUntilThenAndNoMore)
{
    bool savedSome = false;
    bool savedNone = false;
    for (std::size_t room = 0;; room += 100) {
        World world;
        for (int i = 0; i < 5; ++i)
            world.write("f" + std::to_string(i), std::string(10, static_cast<char>('a' + i)));
        world.ports.fileSystem.setCapacity('D', room);
        BackupResult result;
        const int number = backupInto(world, result);
        if (number == 0) {
            EXPECT_EQ(result.report.outcome, Outcome::Complete);
            EXPECT_EQ(result.success, kTrue);
            break;
        }
        ASSERT_EQ(number, base::error_number::kDiskFull) << room;
        EXPECT_EQ(result.report.outcome, Outcome::Failed);
        EXPECT_EQ(result.success, kFalse);
        EXPECT_EQ(world.copies().size(), result.report.copiesWritten) << room;
        const bool hasRecord = world.exists("C:\\app\\Log\\Backup\\Work.txt");
        EXPECT_EQ(hasRecord, result.report.copiesWritten > 0) << room;
        (hasRecord ? savedSome : savedNone) = true;
        if (!hasRecord)
            continue;
        const std::string line = world.read("C:\\app\\Log\\Backup\\Work.txt");
        EXPECT_THAT(line, HasSubstr("||" + std::to_string(result.report.copiesWritten) + "||0||"));
        EXPECT_THAT(line, EndsWith(result.report.missedReportPath + "\r\n"));
        EXPECT_THAT(world.read(result.report.missedReportPath),
                    HasSubstr(kRoot + "\tthe run failed: Disk full"));
    }
    EXPECT_TRUE(savedSome);
    EXPECT_TRUE(savedNone);
}

TEST(CancelledBackup, IsNoSuccessAndStandsInTheLog)
{
    World world;
    world.write("a", "x");
    Engine engine(world.machine, kApp, world.events);
    engine.CancelRequested(kTrue);
    TruthValue success = kTrue;
    engine.EngineBackup(kProfiles, "Work.vdp", success);
    EXPECT_EQ(success, kFalse);
    EXPECT_EQ(engine.backupReport().outcome, Outcome::Cancelled);
    EXPECT_THAT(world.read("C:\\app\\Log\\Backup\\Work.txt"), HasSubstr("Work||Full||"));
}

TEST(BackupWithNothingToDo, ComesToItsEndAndLeavesNoRecord)
{
    World world;
    world.write("a", "x");
    world.backup();
    const std::string before = world.read("C:\\app\\Log\\Backup\\Work.txt");
    const BackupResult second = world.backup();
    EXPECT_EQ(second.success, kTrue);
    EXPECT_EQ(second.noFiles, kTrue);
    EXPECT_EQ(second.report.outcome, Outcome::NothingToDo);
    EXPECT_EQ(world.read("C:\\app\\Log\\Backup\\Work.txt"), before);
}

// A restore that may raise.
int restoreInto(World& world, const std::string& entry, RestoreReport& report)
{
    base::TextCollection chosen;
    chosen.add(entry, entry);
    Engine engine(world.machine, kApp, world.events);
    int number = 0;
    try {
        engine.EngineRestore(kProfiles, "Work.vdp", chosen, "D:\\out", "NULL");
    } catch (const base::RuntimeError& error) {
        number = error.number();
    }
    report = engine.restoreReport();
    return number;
}

TEST(FailedRestore, CountsAndLogsWhatItRestoredUntilThen)
{
    World world;
    for (int i = 0; i < 5; ++i)
        world.write("f" + std::to_string(i), "x");
    world.backup();
    // One target is taken by a folder: the others are restored, then the run fails.
    world.ports.fileSystem.createFolders("D:\\out\\C\\data\\f2");
    RestoreReport report;
    EXPECT_EQ(restoreInto(world, "C:\\data\\", report), base::error_number::kPathAccess);
    EXPECT_EQ(report.outcome, Outcome::Failed);
    ASSERT_TRUE(report.failure.has_value());
    EXPECT_EQ(report.failure->subject, "C:\\data\\f2");
    EXPECT_EQ(report.filesRestored, 4U);
    EXPECT_EQ(world.tree("D:\\out").size(), 4U);
    EXPECT_THAT(world.read("C:\\app\\Log\\Restore\\Work.txt"), EndsWith("||4\r\n"));
}

TEST(FailedRestore, ThatRestoredNothingLeavesNoRecord)
{
    World world;
    world.write("a", "x");
    world.backup();
    const auto lock = world.ports.fileSystem.lockFolder(kRoot);
    RestoreReport report;
    EXPECT_EQ(restoreInto(world, "C:\\data\\", report), base::error_number::kPermissionDenied);
    EXPECT_EQ(report.outcome, Outcome::Failed);
    EXPECT_FALSE(world.exists("C:\\app\\Log\\Restore\\Work.txt"));
}

TEST(Restore, ThatLostAnEntryHasGaps)
{
    World world;
    world.write("a", "x");
    world.backup();
    EXPECT_EQ(world.restore({"C:\\data\\none_000", "C:\\data\\a_000"}, "D:\\out").report.outcome,
              Outcome::CompleteWithGaps);
    EXPECT_EQ(world.restore({"C:\\data\\a_000"}, "D:\\out").report.outcome, Outcome::Complete);
    EXPECT_EQ(world.restore({}, "D:\\out").report.outcome, Outcome::NothingToDo);
}

TEST(Verify, HasTheOutcomesOfARun)
{
    World world;
    for (int i = 0; i < 5; ++i)
        world.write("f" + std::to_string(i), "x");
    world.backup();
    const auto verify = [&](bool proceed) {
        return verifyArchive(world.machine, kProfiles + "Work.vdp", 100,
                             [&](std::string_view) { return proceed; })
            .outcome;
    };
    EXPECT_EQ(verify(true), Outcome::Complete);
    EXPECT_EQ(verify(false), Outcome::Cancelled);
    const std::string path = world.copies().begin()->second.archivePath;
    std::string bytes = world.read(path);
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    world.writeRaw(path, bytes);
    EXPECT_EQ(verify(true), Outcome::CompleteWithGaps);
    world.ports.fileSystem.removeTree(kRoot + "C");
    EXPECT_EQ(verify(true), Outcome::NothingToDo);
}

} // namespace
} // namespace vardelin::engine
