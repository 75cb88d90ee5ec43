#include "engine_world.h"

#include "base/runtime_error.h"
#include "runs/engine/file_saver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <variant>
#include <vector>

namespace vardelin::engine {
namespace {

constexpr std::int64_t kDayNs = std::int64_t{24} * 3600 * 1'000'000'000;

class Pruning : public testing::Test, protected World {
protected:
    void keep(int option, int count)
    {
        ProfileText text;
        text.retention = option;
        text.retentionCount = count;
        setProfile(text);
    }
    void pass(std::int64_t days) { ports.clock.setNowNs(ports.clock.nowNs() + days * kDayNs); }
    // Saves a new version of a file, a day after the one before.
    BackupResult version(const std::string& name = "a.txt")
    {
        pass(1);
        write(name, "content " + std::to_string(++m_edits));
        return backup();
    }
    PruneReport prune(const std::function<bool(std::string_view)>& proceed = [](auto) {
        return true;
    })
    {
        return pruneArchive(machine, kApp, kProfiles + "Work.vdp", proceed);
    }

private:
    int m_edits = 0;
};

TEST_F(Pruning, ABackupEndsWithIt)
{
    keep(6, 2);
    for (int i = 0; i < 5; ++i)
        version();
    EXPECT_EQ(entries(), (std::vector<std::string>{"C:\\data\\a.txt_000", "C:\\data\\a.txt_003",
                                                   "C:\\data\\a.txt_004"}));
    const BackupResult last = version();
    EXPECT_EQ(last.report.pruned, 1U);
    EXPECT_GT(last.report.prunedBytes, 0U);
    EXPECT_EQ(restore({"C:\\data\\a.txt_000"}, "C:\\out").report.filesRestored, 1U);
    EXPECT_EQ(read("C:\\out\\C\\data\\a.txt"), "content 1");
}

TEST_F(Pruning, VersionsAgeInRunsThatSaveNothing)
{
    keep(1, 0);
    version();
    version();
    version();
    EXPECT_EQ(entries().size(), 3U);
    pass(1);
    const BackupResult run = backup();
    EXPECT_EQ(run.noFiles, kTrue);
    EXPECT_EQ(run.report.pruned, 1U);
    EXPECT_EQ(entries(), (std::vector<std::string>{"C:\\data\\a.txt_000", "C:\\data\\a.txt_002"}));
}

TEST_F(Pruning, ReachesFilesWhoseSourceIsGoneAndKeepsTheirNewest)
{
    keep(6, 999);
    for (int i = 0; i < 3; ++i)
        version("sub\\a.txt");
    version("b.txt");
    ports.fileSystem.removeTree("C:\\data\\sub");
    keep(7, 0);
    pass(1);
    EXPECT_EQ(backup().report.pruned, 1U);
    EXPECT_EQ(entries(),
              (std::vector<std::string>{"C:\\data\\b.txt_000", "C:\\data\\sub\\a.txt_000",
                                        "C:\\data\\sub\\a.txt_002"}));
}

TEST_F(Pruning, ComesAfterTheRunsOwnFilesAreSafe)
{
    keep(7, 0);
    version();
    version();
    pass(1);
    write("a.txt", "third");
    ports.fileSystem.script().reset();
    EXPECT_EQ(backup().report.pruned, 1U);
    const auto calls = ports.fileSystem.script().calls();
    const auto removed = std::find_if(calls.begin(), calls.end(), [](const auto& call) {
        return call.name == "folder.removeFile" &&
               call.subject.find("a.txt_Ver1") != std::string::npos;
    });
    ASSERT_NE(removed, calls.end());
    // The new version has its name, and the name is on the disk.
    const auto renamed = std::find_if(calls.begin(), removed, [](const auto& call) {
        return call.name == "folder.rename" && call.subject.find(".tmp") != std::string::npos;
    });
    ASSERT_NE(renamed, removed);
    EXPECT_NE(std::find_if(renamed, removed,
                           [](const auto& call) { return call.name == "folder.flushFileSystem"; }),
              removed);
}

TEST_F(Pruning, NeverComesAfterACancelledRun)
{
    keep(6, 999);
    version();
    version();
    version();
    keep(7, 0);
    pass(1);
    write("b.txt", "new");
    write("c.txt", "new");
    Engine engine(machine, kApp, events);
    events.onFile = [&](std::string_view) { engine.CancelRequested(kTrue); };
    TruthValue success = kFalse;
    engine.EngineBackup(kProfiles, "Work.vdp", success);
    EXPECT_EQ(engine.backupReport().outcome, Outcome::Cancelled);
    EXPECT_EQ(engine.backupReport().pruned, 0U);
    EXPECT_EQ(copies().count("C:\\data\\a.txt_001"), 1U);
}

TEST_F(Pruning, TellsWhatGoesAndWhyAndRemovesNothing)
{
    keep(6, 999);
    for (int i = 0; i < 4; ++i)
        version();
    keep(6, 1);
    std::vector<std::string> told;
    planPrune(machine, kProfiles + "Work.vdp", [&](const PruneDecision& decision) {
        told.push_back(decision.copy.entry + (decision.keep ? " stays: " : " goes: ") +
                       decision.reason);
        return true;
    });
    std::sort(told.begin(), told.end());
    EXPECT_EQ(told, (std::vector<std::string>{
                        "C:\\data\\a.txt_000 stays: the full copy is always kept",
                        "C:\\data\\a.txt_001 goes: not one of the newest 1",
                        "C:\\data\\a.txt_002 goes: not one of the newest 1",
                        "C:\\data\\a.txt_003 stays: the newest copy is always kept"}));
    EXPECT_EQ(entries().size(), 4U);
    const PruneReport report = prune();
    EXPECT_EQ(report.outcome, Outcome::Complete);
    EXPECT_EQ(report.removed, 2U);
    EXPECT_EQ(prune().outcome, Outcome::NothingToDo);
}

TEST_F(Pruning, GoesOnPastWhatCannotBeRemoved)
{
    keep(6, 999);
    for (int i = 0; i < 4; ++i)
        version();
    keep(7, 0);
    ports.fileSystem.script().reset();
    ports.fileSystem.script().failCallsNamed("folder.removeFile",
                                             base::error_number::kPermissionDenied, "_Ver1_");
    const PruneReport report = prune();
    EXPECT_EQ(report.outcome, Outcome::CompleteWithGaps);
    EXPECT_EQ(report.removed, 1U);
    ASSERT_EQ(report.failed.size(), 1U);
    EXPECT_NE(report.failed[0].path.find("a.txt_Ver1_"), std::string::npos);
    EXPECT_EQ(report.failed[0].reason, "failed by the script");
}

TEST_F(Pruning, StopsWhenAsked)
{
    keep(6, 999);
    for (int i = 0; i < 5; ++i)
        version();
    keep(7, 0);
    int asked = 0;
    const PruneReport report = prune([&](std::string_view) { return ++asked < 2; });
    EXPECT_EQ(report.outcome, Outcome::Cancelled);
    EXPECT_EQ(report.removed, 1U);
    EXPECT_EQ(entries().size(), 4U);
}

TEST_F(Pruning, NeedsTheArchiveToItself)
{
    version();
    const auto lock = ports.fileSystem.lockFolder(kRoot);
    try {
        prune();
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), base::error_number::kPermissionDenied);
    }
}

TEST_F(Pruning, RenewsTheListOfStoredCopies)
{
    ProfileText text;
    text.compress = false;
    setProfile(text);
    for (int i = 0; i < 3; ++i)
        version();
    text.retention = 7;
    setProfile(text);
    EXPECT_EQ(prune().removed, 1U);
    EXPECT_EQ(read(kApp + "\\Data\\ReviewFiles.txt").find("a.txt_001"), std::string::npos);
    EXPECT_NE(read(kApp + "\\Data\\ReviewFiles.txt").find("a.txt_002"), std::string::npos);
}

// Numbers end at 999, and a run a minute reaches that in a day.
class Renumbering : public Pruning {
protected:
    // Every run saves a new version; the clock moves a minute.
    BackupResult save()
    {
        nextContent();
        return backup();
    }
    void nextContent()
    {
        ports.clock.setNowNs(ports.clock.nowNs() + std::int64_t{60} * 1'000'000'000);
        write("a.txt", "content " + std::to_string(m_runs++));
    }
    // One real run, and the copies of 999 more without what else a run does.
    void fillUp()
    {
        save();
        const auto source = ports.fileSystem.openFolder("C:\\data");
        const auto archive = ports.fileSystem.openFolder(kRoot + "C\\data");
        std::atomic<std::uint64_t> serial = 0;
        while (m_runs < 1000) {
            nextContent();
            SaveOptions options;
            options.savedNs = ports.clock.nowNs();
            FileSaver saver(options, serial);
            const SaveTask task{*source, *archive,   "a.txt", "C:\\data\\a.txt",
                                {},      m_runs - 1, 0,       platform::FileKind::Regular};
            const SaveResult result = saver.save(task, {});
            const auto& saved = std::get<Saved>(result);
            archive->rename(saved.temporaryName, saved.finalName);
        }
    }
    std::string restored(const std::string& entry)
    {
        const RestoreResult result = restore({entry}, "C:\\out");
        return result.lost == kFalse ? read("C:\\out\\C\\data\\a.txt") : "lost";
    }
    std::string fileOf(const std::string& entry)
    {
        return std::string(platform::leafOf(copies().at(entry).archivePath));
    }

    int m_runs = 0;
};

TEST_F(Renumbering, GoesOnPastTheLastNumber)
{
    keep(6, 999);
    fillUp();
    EXPECT_EQ(entries().size(), 1000U);
    EXPECT_EQ(restored("C:\\data\\a.txt_999"), "content 999");

    const BackupResult run = save();
    EXPECT_EQ(run.report.outcome, Outcome::Complete);
    EXPECT_EQ(run.report.versions, 1U);
    EXPECT_EQ(run.report.pruned, 9U) << "990 stay at the most";
    EXPECT_EQ(entries().size(), 992U);
    EXPECT_EQ(restored("C:\\data\\a.txt_000"), "content 0");
    EXPECT_EQ(restored("C:\\data\\a.txt_001"), "content 10");
    EXPECT_EQ(restored("C:\\data\\a.txt_990"), "content 999");
    EXPECT_EQ(restored("C:\\data\\a.txt_991"), "content 1000");
    EXPECT_TRUE(verifyArchive(machine, kProfiles + "Work.vdp", 100, [](auto) {
                    return true;
                }).damaged.empty());

    // A touched file keeps its serial number, and a new version goes on with it.
    ports.fileSystem.openFolder("C:\\data")->setTimes("a.txt", 1, 2);
    EXPECT_EQ(backup().report.renewed, 1U);
    EXPECT_EQ(restored("C:\\data\\a.txt_991"), "content 1000");
    save();
    EXPECT_EQ(restored("C:\\data\\a.txt_992"), "content 1001");

    // With fewer kept, the next time comes later, and the numbers begin at 1 again.
    keep(6, 3);
    save();
    EXPECT_EQ(entries().size(), 4U);
    EXPECT_EQ(restored("C:\\data\\a.txt_993"), "content 1002");
    EXPECT_EQ(restored("C:\\data\\a.txt_992"), "content 1001");
}

TEST_F(Renumbering, ADeathAtAnyCallLeavesTheOrder)
{
    keep(6, 999);
    fillUp();
    keep(6, 4);
    ASSERT_EQ(entries().size(), 1000U);
    // Of the calls of the run, those from the first removal on.
    for (std::size_t kill = 1;; kill += 53) {
        nextContent();
        ports.fileSystem.script().reset();
        ports.fileSystem.script().killAtCall(kill);
        bool died = false;
        try {
            backup();
        } catch (const platform::Killed&) {
            died = true;
        }
        ports.fileSystem.script().reset();
        const auto report =
            verifyArchive(machine, kProfiles + "Work.vdp", 100, [](auto) { return true; });
        EXPECT_EQ(report.damaged.size(), 0U) << "killed at call " << kill;
        if (!died)
            break;
    }
    save();
    const std::vector<std::string> left = entries();
    EXPECT_EQ(left.size(), 5U);
    EXPECT_EQ(restored(left.back()), "content " + std::to_string(m_runs - 1));
}

TEST_F(Renumbering, ARenamedCopyIsRefusedByName)
{
    keep(6, 999);
    fillUp();
    keep(6, 3);
    save();
    // Versions 1 to 4 are those that were saved as 997 to 1000.
    const auto folder = ports.fileSystem.openFolder("D:\\store\\Work\\C\\data");
    const std::string second = fileOf("C:\\data\\a.txt_002");
    std::string moved = second;
    moved.replace(moved.find("_Ver2_"), 6, "_Ver9_");
    folder->rename(second, moved);
    EXPECT_EQ(restored("C:\\data\\a.txt_009"), "lost");
    const auto report =
        verifyArchive(machine, kProfiles + "Work.vdp", 100, [](auto) { return true; });
    EXPECT_FALSE(report.damaged.empty());
    folder->rename(moved, second);
    EXPECT_EQ(restored("C:\\data\\a.txt_002"), "content 998");
}

} // namespace
} // namespace vardelin::engine
