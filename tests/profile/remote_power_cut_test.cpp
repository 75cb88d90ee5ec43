#include "opening_rig.h"
#include "platform/memory/power_cut_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

constexpr std::string_view kLocal = "C:\\App\\Profiles\\Home.vdp";
constexpr std::string_view kRemote = "D:\\Media\\Home.vdp";

// The open dialog on a disk that keeps for certain only what was flushed.
struct PowerCutRig {
    platform::MemoryTree tree{true};
    platform::PowerCutFileSystem disk{withDrives(tree)};
    platform::CallScript script;
    platform::ScriptedFileSystem files{disk, script};
    test::OpeningRig rig; // everything but the disk
    platform::Machine machine{files,     rig.drives,      rig.registry,
                              rig.shell, rig.facts,       rig.processes,
                              rig.clock, rig.messageLoop, rig.messageBoxes};
    ProfileContext profiles{machine,   rig.ownContext, rig.frame, rig.editor,
                            rig.store, rig.schedules,  rig.lists, rig.fileNumbers};
    clsFiles found{{files, rig.ownContext, rig.frame, rig.listing}};
    OpeningContext opening{profiles, rig.form,    rig.window,         rig.listing,
                           found,    rig.chooser, rig.bProfileOpened, rig.lastSelected};

    static platform::MemoryTree& withDrives(platform::MemoryTree& tree)
    {
        tree.addDrive('C');
        tree.addDrive('D');
        return tree;
    }
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
            PowerCutRig world;
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
