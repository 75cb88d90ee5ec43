#include "faults/fault_world.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include <fmt/format.h>

namespace vardelin::faults {
namespace {

using testing::IsEmpty;

constexpr std::uint64_t kCuts = 15; // of each scenario, where nothing else is asked for
constexpr Size kSmall{40, 1};

std::uint64_t cuts()
{
    return setting("VARDELIN_POWER_CUTS", kCuts);
}

// The call before which the power goes, of a run that takes `calls`. The begin and the end of a run
// are where its marker, its names and its record come about, so half of the cuts go there; one in
// ten comes when the run is done.
std::size_t callIn(std::mt19937_64& random, std::size_t calls)
{
    const std::size_t edge = std::max<std::size_t>(calls / 10, 1);
    switch (random() % 10) {
    case 0:
        return calls * 2;
    case 1:
        return 1 + random() % edge;
    case 2:
    case 3:
    case 4:
        return calls - random() % edge;
    default:
        return 1 + random() % calls;
    }
}

// The worlds in front of each round, made once.
class Worlds {
public:
    explicit Worlds(const std::string& retention, bool compress = true)
    {
        for (int round = 1; round <= 3; ++round) {
            auto world = std::make_unique<FaultWorld>(true);
            if (round == 1) {
                world->setProfile(retention, compress);
                world->makeSources(kSmall, seed());
            } else {
                world->become(*m_worlds.back());
                world->backup();
                world->editSources(seed());
            }
            m_calls.push_back(world->callsOf([](FaultWorld& copy) { copy.backup(); }));
            m_worlds.push_back(std::move(world));
        }
    }

    const FaultWorld& before(int round) const { return *m_worlds.at(index(round)); }
    std::size_t callsOf(int round) const { return m_calls.at(index(round)); }

private:
    static std::size_t index(int round) { return static_cast<std::size_t>(round - 1); }

    std::vector<std::unique_ptr<FaultWorld>> m_worlds;
    std::vector<std::size_t> m_calls;
};

struct Layout {
    std::string name;
    std::string retention;
    bool compress;
};

class PowerCutInABackup : public testing::TestWithParam<Layout> {};

INSTANTIATE_TEST_SUITE_P(Profiles, PowerCutInABackup,
                         testing::Values(Layout{"Compressed", "0", true},
                                         Layout{"StoredAsTheyAre", "0", false}),
                         [](const auto& one) { return one.param.name; });

TEST_P(PowerCutInABackup, LeavesEveryFinishedVersionAndTheNextRunCompletes)
{
    Tally tally("power cuts in a backup, " + GetParam().name);
    const Worlds worlds(GetParam().retention, GetParam().compress);
    FaultWorld world(true);
    for (std::uint64_t cut = 1; cut <= cuts(); ++cut) {
        std::mt19937_64 random(seed() * 1'000'003 + cut);
        const int round = 1 + static_cast<int>(random() % 3);
        const std::size_t calls = worlds.callsOf(round);
        const std::size_t call = callIn(random, calls);
        const std::string label =
            fmt::format("cut {} in round {} at call {} of {}", cut, round, call, calls);
        world.become(worlds.before(round));
        const bool died = world.diesAt(call, [&] { world.backup(); });
        world.disk->cut(random());
        tally.add();

        const int finished = died ? round - 1 : round;
        if (world.tree.folderExists(kRoot)) {
            world.expectNoDamage(label);
            for (int done = 1; done <= finished; ++done)
                world.expectRound(done, done, label);
            if (finished >= 1) {
                world.expectRound(round, finished, label);
                world.expectSettings(finished, label);
            }
        } else {
            EXPECT_EQ(finished, 0) << label << ": the archive is gone";
        }
        world.expectLog(finished, label, true);
        const std::string kept = kRoot + "Work.vdp";
        if (finished >= 1 || world.tree.fileExists(kept)) {
            EXPECT_EQ(world.tree.readAll(kept), world.tree.readAll(kProfiles + "Work.vdp"))
                << label << ": the archive's copy of the profile";
        }

        world.backup();
        world.expectNoDamage(label + ", next run");
        EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
        world.expectNewest(label);
        world.expectSettings(round, label + ", next run");
        world.expectLogGoesOn(finished, label + ", one run more");
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(PowerCutInARestore, LeavesTheOldOrTheNewFileWhereOneWasBefore)
{
    Tally tally("power cuts in a restore over files");
    FaultWorld start(true);
    const std::string place = "D:\\place";
    start.makeSources(kSmall, seed());
    start.backup();
    start.editSources(seed());
    start.backup();
    start.restore(place, FaultWorld::dateOf(1));
    start.disk->settle();
    const auto again = [&](FaultWorld& world) { world.restore(place); };
    const std::size_t calls = start.callsOf(again);
    FaultWorld world(true);
    for (std::uint64_t cut = 1; cut <= cuts(); ++cut) {
        std::mt19937_64 random(seed() * 1'000'003 + cut);
        const std::size_t call = callIn(random, calls);
        const std::string label = fmt::format("cut {} at call {} of {}", cut, call, calls);
        world.become(start);
        const bool died = world.diesAt(call, [&] { again(world); });
        world.disk->cut(random());
        tally.add();
        const Contents found = world.look(place + "\\C\\data", "C:\\data");
        for (const auto& [path, content] : world.truth(1)) {
            const auto hit = found.find(path);
            ASSERT_NE(hit, found.end()) << label << ": " << path;
            const bool isNew = hit->second == world.truth(2).at(path);
            EXPECT_TRUE(isNew || (died && hit->second == content)) << label << ": " << path;
        }
        again(world);
        EXPECT_EQ(world.look(place + "\\C\\data", "C:\\data"), world.truth(2)) << label;
        EXPECT_THAT(world.leftovers(), IsEmpty()) << label;
        world.expectNoDamage(label);
        if (testing::Test::HasFailure())
            return;
    }
}

} // namespace
} // namespace vardelin::faults
