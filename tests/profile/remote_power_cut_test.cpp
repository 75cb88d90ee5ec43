#include "power_cut_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

constexpr std::string_view kLocal = "C:\\App\\Profiles\\Home.vdp";
constexpr std::string_view kRemote = "D:\\Media\\Home.vdp";

// The open dialog on a disk that keeps for certain only what was flushed.
struct OpeningPowerCut : test::PowerCutRig {
    clsFiles found{{files, rig.ownContext, rig.frame, rig.listing}};
    OpeningContext opening{profiles, rig.form,    rig.window,         rig.listing,
                           found,    rig.chooser, rig.bProfileOpened, rig.lastSelected};

    void put(std::string_view path, std::string_view bytes)
    {
        disk.createFolders(platform::parentOf(path));
        disk.replaceFile(path, bytes);
    }
    std::string content(std::string_view path)
    {
        return disk.fileExists(path) ? disk.readAll(path) : "absent";
    }
};

TEST(RemotePowerCut, LeavesTheLocalProfileAtOneOfItsTwoPlaces)
{
    const std::string local = scrambleText(test::OpeningRig::plainText("Home.vdp", "D:\\Local\\"));
    const std::string remote =
        scrambleText(test::OpeningRig::plainText("Home.vdp", "D:\\Remote\\"));
    constexpr std::uint64_t kCuts = 3; // each decides otherwise about what was not flushed
    std::size_t aside = 0;
    bool finished = false;
    for (std::size_t call = 1; !finished; ++call) {
        for (std::uint64_t seed = 1; seed <= kCuts; ++seed) {
            OpeningPowerCut world;
            world.put(kLocal, local);
            world.put(kRemote, remote);
            world.disk.createFolders("C:\\App\\Data");
            world.disk.settle();
            world.script.killAtCall(call);
            try {
                PrCopyFromDest(world.opening, kRemote, true);
                finished = true;
            } catch (const platform::Killed&) { // NOLINT(bugprone-empty-catch): the cut follows
            }
            world.disk.cut(seed * 1000 + call);
            const std::string atHome = world.content(kLocal);
            const bool isAside = world.content(stashPath(world.rig.frame)) == local;
            ASSERT_TRUE(atHome == local || isAside) << "call " << call << " seed " << seed;
            ASSERT_EQ(world.content(kRemote), remote);
            aside += atHome == local ? 0U : 1U;
        }
    }
    EXPECT_GT(aside, 0U);
}

} // namespace
} // namespace vardelin::profile
