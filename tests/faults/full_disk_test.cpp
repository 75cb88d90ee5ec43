#include "faults/fault_world.h"

#include "base/runtime_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

namespace vardelin::faults {
namespace {

using testing::IsEmpty;
namespace number = base::error_number;

constexpr std::size_t kPoints = 4; // of each test, where nothing else is asked for
constexpr Size kSmall{40, 1};
const std::string kPlace = "D:\\place";

std::size_t points()
{
    return setting("VARDELIN_FAULT_POINTS", kPoints);
}

int raisedBy(const std::function<void()>& action)
{
    try {
        action();
        return 0;
    } catch (const base::RuntimeError& error) {
        return error.number();
    }
}

// Two rounds done and a third to do.
std::unique_ptr<FaultWorld> thirdRound()
{
    auto world = std::make_unique<FaultWorld>();
    world->makeSources(kSmall, seed());
    for (int round = 1; round < 3; ++round) {
        world->backup();
        world->editSources(seed());
    }
    return world;
}

// Behind a run that failed, before and after the next one, which nothing hinders.
void expectWhole(FaultWorld& world, const std::string& label)
{
    world.expectNoDamage(label);
    world.expectRound(1, 1, label);
    world.expectRound(2, 2, label);
    world.expectRound(3, 2, label);
    world.expectSettings(2, label);
    world.expectLog(2, label);
    world.expectCountedCopies(label);
    EXPECT_EQ(world.flagsOfFailure.noFiles, engine::kFalse) << label;
    EXPECT_EQ(world.flagsOfFailure.missed, engine::kFalse) << label;

    world.backup();
    world.expectNoDamage(label + ", next run");
    EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
    world.expectNewest(label);
    world.expectSettings(3, label + ", next run");
}

struct Failing {
    std::string name;
    int error;
    FaultWorld::Which (*which)(std::string place);
};

class FailingArchive : public testing::TestWithParam<Failing> {};

INSTANTIATE_TEST_SUITE_P(Errors, FailingArchive,
                         testing::Values(Failing{"DiskFull", number::kDiskFull, growsIn},
                                         Failing{"InputOutput", number::kDeviceIo, changesIn}),
                         [](const auto& one) { return one.param.name; });

TEST_P(FailingArchive, EndsTheRunWithItsErrorAndNothingHalf)
{
    const Failing& failing = GetParam();
    Tally tally("failing changes of the archive, " + failing.name);
    const auto start = thirdRound();
    const auto which = failing.which("D:\\store");
    const std::size_t calls = start->countOf(which, [](FaultWorld& world) { world.backup(); });
    FaultWorld world;
    for (const std::size_t call : pointsOf(calls, points())) {
        world.become(*start);
        const bool forGood = call % 2 == 0;
        world.failAt(which, call, failing.error, forGood);
        const int raised = raisedBy([&] { world.backup(); });
        world.script.reset();
        const std::string label =
            fmt::format("call {} of {}{}, {}", call, calls, forGood ? " and all behind it" : "",
                        world.failedSubject());
        if (world.failedSubject().empty())
            continue; // the order of two threads made the run shorter this time
        tally.add();
        EXPECT_EQ(raised, failing.error) << label;
        expectWhole(world, label);
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(FullDisk, EndsTheRunAtAnySizeAndTheNextOneGoesOnWhereThereIsRoom)
{
    Tally tally("sizes of a full archive disk");
    const auto start = thirdRound();
    const auto space = start->tree.space("D:\\");
    const std::uint64_t used = space.totalBytes - space.freeBytes;
    FaultWorld done;
    done.become(*start);
    done.backup();
    const auto after = done.tree.space("D:\\");
    const std::size_t needed = after.totalBytes - after.freeBytes - used;
    FaultWorld world;
    for (const std::size_t room : pointsOf(needed, setting("VARDELIN_DISK_SIZES", kPoints))) {
        const std::string label = fmt::format("room for {} of {} bytes", room - 1, needed);
        world.become(*start);
        world.tree.setCapacity('D', used + room - 1);
        EXPECT_EQ(raisedBy([&] { world.backup(); }), number::kDiskFull) << label;
        world.tree.setCapacity('D', space.totalBytes);
        tally.add();
        expectWhole(world, label);
        if (testing::Test::HasFailure())
            return;
    }
}

// Two rounds done, and the first one restored to a place where the second one is to go.
std::unique_ptr<FaultWorld> restoreOver()
{
    auto world = std::make_unique<FaultWorld>();
    world->makeSources(kSmall, seed());
    world->backup();
    world->editSources(seed());
    world->backup();
    world->restore(kPlace, FaultWorld::dateOf(1));
    return world;
}

void expectOldOrNew(FaultWorld& world, const std::string& label)
{
    const Contents found = world.look(kPlace + "\\C\\data", "C:\\data");
    for (const auto& [path, content] : found) {
        const auto old = world.truth(1).find(path);
        const auto now = world.truth(2).find(path);
        EXPECT_TRUE((old != world.truth(1).end() && old->second == content) ||
                    (now != world.truth(2).end() && now->second == content))
            << label << ": " << path;
    }
    for (const auto& [path, content] : world.truth(1))
        EXPECT_TRUE(found.contains(path)) << label << ": " << path;
    world.restore(kPlace);
    EXPECT_EQ(world.look(kPlace + "\\C\\data", "C:\\data"), world.truth(2)) << label;
    EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
    world.expectNoDamage(label);
}

TEST(FullDisk, EndsARestoreAtEachWriteWithOldOrNewFiles)
{
    Tally tally("failing writes of a restore");
    const auto start = restoreOver();
    const auto which = growsIn(kPlace);
    const auto again = [](FaultWorld& world) { world.restore(kPlace); };
    const std::size_t calls = start->countOf(which, again);
    FaultWorld world;
    for (const std::size_t call : pointsOf(calls, points())) {
        world.become(*start);
        world.failAt(which, call, number::kDiskFull, call % 2 == 0);
        const int raised = raisedBy([&] { again(world); });
        world.script.reset();
        if (world.failedSubject().empty())
            continue;
        const std::string label =
            fmt::format("call {} of {}, {}", call, calls, world.failedSubject());
        tally.add();
        EXPECT_EQ(raised, number::kDiskFull) << label;
        expectOldOrNew(world, label);
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(FullDisk, EndsARestoreAtAnySizeWithOldOrNewFiles)
{
    Tally tally("sizes of a full target disk");
    const auto start = restoreOver();
    const auto space = start->tree.space("D:\\");
    const std::uint64_t used = space.totalBytes - space.freeBytes;
    // Old and new files stand side by side until the new ones are flushed.
    std::uint64_t needed = 0;
    for (const auto& [path, content] : start->truth(2))
        needed += content.starts_with('=') ? content.size() - 1 : 0;
    FaultWorld world;
    for (const std::size_t room : pointsOf(needed / 2, setting("VARDELIN_DISK_SIZES", kPoints))) {
        const std::string label = fmt::format("room for {} bytes", room);
        world.become(*start);
        world.tree.setCapacity('D', used + room);
        EXPECT_EQ(raisedBy([&] { world.restore(kPlace); }), number::kDiskFull) << label;
        world.tree.setCapacity('D', space.totalBytes);
        tally.add();
        expectOldOrNew(world, label);
        if (testing::Test::HasFailure())
            return;
    }
}

} // namespace
} // namespace vardelin::faults
