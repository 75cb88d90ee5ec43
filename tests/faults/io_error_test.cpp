#include "faults/fault_world.h"

#include "base/runtime_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

namespace vardelin::faults {
namespace {

using testing::IsEmpty;
namespace number = base::error_number;

constexpr std::size_t kPoints = 5; // of each test, where nothing else is asked for
constexpr Size kSmall{40, 1};

std::size_t points()
{
    return setting("VARDELIN_FAULT_POINTS", kPoints);
}

// The rounds before this one are done.
std::unique_ptr<FaultWorld> before(int round)
{
    auto world = std::make_unique<FaultWorld>();
    world->makeSources(kSmall, seed());
    for (int done = 1; done < round; ++done) {
        world->backup();
        world->editSources(seed());
    }
    return world;
}

bool isBelow(const std::string& path, const std::vector<engine::Gap>& gaps)
{
    return std::any_of(gaps.begin(), gaps.end(), [&](const engine::Gap& gap) {
        return path == gap.path || (gap.path.ends_with('\\') && path.starts_with(gap.path));
    });
}

bool isAskedTwice(const std::string& archivePath)
{
    return archivePath.find("\\mmmm") != std::string::npos;
}

TEST(UnreadableSource, IsMissedWithItsReasonAndTheOthersAreSaved)
{
    Tally tally("failing reads of the sources");
    const auto start = before(2);
    const auto which = readsIn("C:\\data");
    const std::size_t calls = start->countOf(which, [](FaultWorld& world) { world.backup(); });
    FaultWorld world;
    for (const std::size_t call : pointsOf(calls, points())) {
        world.become(*start);
        world.failAt(which, call, number::kDeviceIo, false);
        const BackupResult result = world.backup();
        world.script.reset();
        if (world.failedSubject().empty())
            continue;
        tally.add();
        const std::string label =
            fmt::format("call {} of {}, {}", call, calls, world.failedSubject());
        EXPECT_EQ(result.success, engine::kTrue) << label;
        EXPECT_EQ(result.missed, engine::kTrue) << label;
        EXPECT_EQ(result.noFiles, engine::kFalse) << label;
        // A folder that cannot be opened costs the files in it, each by its name.
        for (const engine::Gap& gap : result.report.missed) {
            EXPECT_TRUE(gap.path.starts_with(world.failedSubject())) << label << ": " << gap.path;
            EXPECT_THAT(gap.reason, testing::HasSubstr("Input/output error")) << label;
        }
        world.expectNoDamage(label);
        world.expectCountedCopies(label);
        world.restore("D:\\got");
        const Contents got = world.look("D:\\got\\C\\data", "C:\\data");
        for (const auto& [path, content] : world.truth(2)) {
            const auto hit = got.find(path);
            const bool isNew = hit != got.end() && hit->second == content;
            EXPECT_TRUE(isNew || isBelow(path, result.report.missed)) << label << ": " << path;
        }
        const BackupResult next = world.backup();
        EXPECT_EQ(next.missed, engine::kFalse) << label;
        world.expectNewest(label);
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(UnreadableArchive, CostsARestoreThatFileAlone)
{
    Tally tally("failing reads of the archive in a restore");
    const auto start = before(3);
    const auto which = [files = readsIn(kRoot + "C\\")](const platform::CallScript::Call& call) {
        return files(call) && (call.name.starts_with("file.") || call.name == "folder.open") &&
               call.subject.find("\\~folder_") == std::string::npos;
    };
    const auto restoreAll = [](FaultWorld& world) { return world.restore("D:\\got"); };
    const std::size_t calls = start->countOf(which, [&](FaultWorld& world) { restoreAll(world); });
    FaultWorld world;
    for (const std::size_t call : pointsOf(calls, points())) {
        world.become(*start);
        world.failAt(which, call, number::kDeviceIo, false);
        const RestoreResult result = restoreAll(world);
        world.script.reset();
        if (world.failedSubject().empty())
            continue;
        tally.add();
        const std::string label =
            fmt::format("call {} of {}, {}", call, calls, world.failedSubject());
        Contents wanted = world.truth(2);
        // What the name has no room for is looked up in the header while the restore is planned; a
        // disk that gives it at the second try has lost nothing.
        if (result.report.lost.empty() && isAskedTwice(world.failedSubject())) {
            EXPECT_EQ(world.look("D:\\got\\C\\data", "C:\\data"), wanted) << label;
            continue;
        }
        EXPECT_EQ(result.lost, engine::kTrue) << label;
        ASSERT_EQ(result.report.lost.size(), 1U) << label;
        EXPECT_THAT(result.report.lost[0].reason, testing::HasSubstr("Input/output error"));
        const std::string& lost = result.report.lost[0].path;
        EXPECT_THAT(world.failedSubject(),
                    testing::HasSubstr(std::string(platform::leafOf(lost)) + "_"))
            << label;
        EXPECT_EQ(wanted.erase(lost), 1U) << label << ": " << lost;
        EXPECT_EQ(world.look("D:\\got\\C\\data", "C:\\data"), wanted) << label;
        EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(UnreadableArchive, IsNamedByAVerification)
{
    Tally tally("failing reads of the archive in a verification");
    const auto start = before(3);
    const auto which = [files = readsIn(kRoot)](const platform::CallScript::Call& call) {
        return files(call) && (call.name.starts_with("file.") || call.name == "folder.open");
    };
    const auto verify = [](FaultWorld& world) {
        return engine::verifyArchive(world.machine, kProfiles + "Work.vdp", 100,
                                     [](std::string_view) { return true; });
    };
    const std::size_t calls = start->countOf(which, [&](FaultWorld& world) { verify(world); });
    FaultWorld world;
    world.become(*start);
    for (const std::size_t call : pointsOf(calls, points())) {
        world.failAt(which, call, number::kDeviceIo, false);
        const engine::VerifyReport report = verify(world);
        world.script.reset();
        if (world.failedSubject().empty())
            continue;
        const std::string label =
            fmt::format("call {} of {}, {}", call, calls, world.failedSubject());
        tally.add();
        if (report.damaged.empty() && isAskedTwice(world.failedSubject()))
            continue;
        ASSERT_EQ(report.damaged.size(), 1U) << label;
        EXPECT_EQ(report.damaged[0].path, world.failedSubject()) << label;
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(UnreadableArchive, NeverLooksToABackupLikeNoArchive)
{
    Tally tally("failing reads of the archive in a backup");
    const auto start = before(3);
    const auto which = readsIn(kRoot);
    const std::size_t calls = start->countOf(which, [](FaultWorld& world) { world.backup(); });
    FaultWorld world;
    for (const std::size_t call : pointsOf(calls, points())) {
        world.become(*start);
        world.failAt(which, call, number::kDeviceIo, false);
        // A copy that cannot be read is no reason to stop: a new one is written from the source.
        // Files whose archive folder cannot be listed are missed, since nobody knows what it holds.
        int raised = 0;
        std::vector<engine::Gap> missed;
        try {
            missed = world.backup().report.missed;
        } catch (const base::RuntimeError& error) {
            raised = error.number();
        }
        const bool isFile = world.tree.fileExists(world.failedSubject());
        world.script.reset();
        if (world.failedSubject().empty())
            continue;
        tally.add();
        const std::string label =
            fmt::format("call {} of {}, {}", call, calls, world.failedSubject());
        EXPECT_TRUE(raised == 0 || (!isFile && raised == number::kDeviceIo)) << label << raised;
        EXPECT_TRUE(!isFile || missed.empty()) << label;
        if (raised == 0) {
            world.restore("D:\\got");
            const Contents got = world.look("D:\\got\\C\\data", "C:\\data");
            for (const auto& [path, content] : world.truth(3)) {
                const auto hit = got.find(path);
                const bool isNew = hit != got.end() && hit->second == content;
                EXPECT_TRUE(isNew || isBelow(path, missed)) << label << ": " << path;
            }
        }
        world.expectNoDamage(label);
        world.expectRound(1, 1, label);
        world.expectRound(2, 2, label);
        world.expectCountedCopies(label);
        world.backup();
        world.expectNewest(label + ", next run");
        EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
        if (testing::Test::HasFailure())
            return;
    }
}

} // namespace
} // namespace vardelin::faults
