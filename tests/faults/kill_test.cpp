#include "faults/fault_world.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

namespace vardelin::faults {
namespace {

using testing::IsEmpty;

constexpr std::size_t kPoints = 3; // of each run, where nothing else is asked for

std::size_t points()
{
    return setting("VARDELIN_KILL_POINTS", kPoints);
}

// A world in front of the round that dies: the ones before it are done.
std::unique_ptr<FaultWorld> before(int round)
{
    auto world = std::make_unique<FaultWorld>();
    world->makeSources({}, seed());
    for (int done = 1; done < round; ++done) {
        world->backup();
        world->editSources(seed());
    }
    return world;
}

class KilledBackup : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Rounds, KilledBackup, testing::Values(1, 2, 3),
                         [](const auto& one) { return fmt::format("{}", one.param); });

TEST_P(KilledBackup, LeavesEveryFinishedVersionAndTheNextRunCompletes)
{
    const int round = GetParam();
    Tally tally(fmt::format("kills of backup {}", round));
    const auto start = before(round);
    const std::size_t calls = start->callsOf([](FaultWorld& world) { world.backup(); });
    for (const std::size_t call : pointsOf(calls, points())) {
        const std::string label = fmt::format("killed at call {} of {}", call, calls);
        FaultWorld world;
        world.become(*start);
        if (!world.diesAt(call, [&] { world.backup(); }))
            continue; // the order of two threads made the run shorter this time
        tally.add();
        if (world.tree.folderExists(kRoot)) {
            world.expectNoDamage(label);
            for (int done = 1; done < round; ++done)
                world.expectRound(done, done, label);
            if (round > 1) {
                world.expectRound(round, round - 1, label);
                world.expectSettings(round - 1, label);
            }
        }
        world.expectLog(round - 1, label);

        world.backup();
        world.expectNoDamage(label + ", next run");
        EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
        for (int done = 1; done < round; ++done)
            world.expectRound(done, done, label + ", next run");
        world.expectNewest(label);
        world.expectSettings(round, label + ", next run");
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(KilledRestore, LeavesOldOrNewFilesAndTheNextRestoreCompletes)
{
    Tally tally("kills of a restore");
    const auto start = before(2);
    start->backup();
    // Half of the targets hold something else already.
    const std::string place = "D:\\place";
    start->restore(place, FaultWorld::dateOf(1));
    const auto again = [&](FaultWorld& world) { world.restore(place); };
    const std::size_t calls = start->callsOf(again);
    for (const std::size_t call : pointsOf(calls, points())) {
        const std::string label = fmt::format("killed at call {} of {}", call, calls);
        FaultWorld world;
        world.become(*start);
        if (!world.diesAt(call, [&] { again(world); }))
            continue;
        tally.add();
        for (const auto& [path, content] : world.look(place + "\\C\\data", "C:\\data")) {
            if (platform::leafOf(path).starts_with('~'))
                continue;
            const Contents& older = world.truth(1);
            const auto old = older.find(path);
            EXPECT_TRUE(content == world.truth(2).at(path) ||
                        (old != older.end() && old->second == content))
                << label << ": " << path;
        }
        again(world);
        EXPECT_EQ(world.look(place + "\\C\\data", "C:\\data"), world.truth(2)) << label;
        EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
        const auto folder = world.tree.openFolder(place + "\\C\\data");
        EXPECT_EQ(folder->find("twin")->inode,
                  world.tree.find(place + "\\C\\data\\a\\f000.txt").value().inode)
            << label;
        world.expectNoDamage(label);
        if (testing::Test::HasFailure())
            return;
    }
}

// Three rounds of which the middle versions are to go.
TEST(KilledPrune, RemovesVersionsAloneAndTheNextOneCompletes)
{
    Tally tally("kills of a prune");
    const auto start = before(3);
    start->backup();
    start->setProfile("7");
    const auto prune = [](FaultWorld& world) {
        return engine::pruneArchive(world.machine, kApp, kProfiles + "Work.vdp",
                                    [](std::string_view) { return true; });
    };
    std::uint64_t all = 0;
    const std::size_t calls =
        start->callsOf([&](FaultWorld& world) { all = prune(world).removed; });
    ASSERT_GT(all, 0U);
    for (const std::size_t call : pointsOf(calls, points())) {
        const std::string label = fmt::format("killed at call {} of {}", call, calls);
        FaultWorld world;
        world.become(*start);
        if (!world.diesAt(call, [&] { prune(world); }))
            continue;
        tally.add();
        world.expectNoDamage(label);
        world.expectNewest(label);
        world.expectRound(1, 1, label); // the full copies
        EXPECT_LE(prune(world).removed, all) << label;
        EXPECT_EQ(prune(world).removed, 0U) << label;
        EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
        world.expectNewest(label + ", next prune");
        world.expectRound(1, 1, label + ", next prune");
        if (testing::Test::HasFailure())
            return;
    }
}

// A backup that ends with a prune, dying in either.
TEST(KilledBackupWithRetention, KeepsTheNewestAndTheFullCopies)
{
    Tally tally("kills of a backup with retention");
    const auto start = before(3);
    start->setProfile("7");
    const std::size_t calls = start->callsOf([](FaultWorld& world) { world.backup(); });
    for (const std::size_t call : pointsOf(calls, points())) {
        const std::string label = fmt::format("killed at call {} of {}", call, calls);
        FaultWorld world;
        world.become(*start);
        if (!world.diesAt(call, [&] { world.backup(); }))
            continue;
        tally.add();
        world.expectNoDamage(label);
        world.expectRound(1, 1, label);
        world.backup();
        world.expectNoDamage(label + ", next run");
        world.expectNewest(label);
        world.expectRound(1, 1, label + ", next run");
        EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
        if (testing::Test::HasFailure())
            return;
    }
}

} // namespace
} // namespace vardelin::faults
