#include "platform/memory/power_cut_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

namespace vardelin::platform {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr std::uint64_t kCuts = 400;

// A disk that is cut.
struct Disk {
    Disk()
    {
        tree.addDrive('C');
        files.settle();
    }

    std::unique_ptr<File> put(std::string_view path, std::string_view bytes)
    {
        auto file = files.open(path, OpenMode::CreateOrTruncate);
        file->write(asBytes(bytes));
        return file;
    }
    // What lies in the root: names with their contents, folders with a backslash.
    std::string look()
    {
        std::string result;
        for (const auto& entry : tree.list("C:\\")) {
            result += entry.info.kind == FileKind::Folder
                          ? entry.name + "\\ "
                          : entry.name + "=" + tree.readAll("C:\\" + entry.name) + " ";
        }
        return result;
    }

    MemoryTree tree{true};
    PowerCutFileSystem files{tree};
};

// All that a row of operations can leave, over many cuts.
std::set<std::string> outcomes(const std::function<void(Disk&)>& work)
{
    std::set<std::string> result;
    for (std::uint64_t seed = 1; seed <= kCuts; ++seed) {
        Disk disk;
        work(disk);
        disk.files.cut(seed);
        result.insert(disk.look());
    }
    return result;
}

TEST(PowerCut, TakesNothingThatWasFlushed)
{
    EXPECT_THAT(outcomes([](Disk& disk) {
                    disk.put("C:\\a", "one")->flush();
                    disk.files.openFolder("C:\\")->flush();
                }),
                ElementsAre("a=one "));
    EXPECT_THAT(outcomes([](Disk& disk) {
                    disk.files.createFolder("C:\\d");
                    disk.put("C:\\a", "one");
                    disk.files.rename("C:\\a", "C:\\b");
                    disk.files.openFolder("C:\\d")->flushFileSystem();
                }),
                ElementsAre("b=one d\\ "));
}

TEST(PowerCut, TakesOrKeepsANameThatWasNotFlushed)
{
    EXPECT_THAT(outcomes([](Disk& disk) { disk.put("C:\\a", "one")->flush(); }),
                ElementsAre("", "a=one "))
        << "a flushed file may still be without its name";
}

TEST(PowerCut, DropsCutsZeroesAndGarblesBytesThatWereNotFlushed)
{
    const auto seen = outcomes([](Disk& disk) {
        disk.put("C:\\a", "one");
        disk.files.openFolder("C:\\")->flush();
    });
    for (const char* one : {"a=one ", "a= ", "a=o "})
        EXPECT_THAT(seen, Contains(one));
    EXPECT_THAT(seen, Contains("a=" + std::string(3, '\0') + " "));
    EXPECT_GT(seen.size(), 10U) << "garbled in many ways";
}

TEST(PowerCut, LeavesTheFlushedBytesOfALogAlone)
{
    for (std::uint64_t seed = 1; seed <= kCuts; ++seed) {
        Disk disk;
        disk.put("C:\\log", "first line\n");
        disk.files.openFolder("C:\\")->flushFileSystem();
        disk.files.open("C:\\log", OpenMode::Append)->write(asBytes("second line\n"));
        disk.files.cut(seed);
        EXPECT_TRUE(disk.tree.readAll("C:\\log").starts_with("first line\n")) << seed;
    }
}

TEST(PowerCut, MayKeepARenameWithoutTheBytesOfTheFile)
{
    const auto seen = outcomes([](Disk& disk) {
        disk.put("C:\\a", "old");
        disk.files.openFolder("C:\\")->flushFileSystem();
        disk.put("C:\\t", "new");
        disk.files.rename("C:\\t", "C:\\a");
    });
    EXPECT_THAT(seen, Contains("a=old "));
    EXPECT_THAT(seen, Contains("a=new "));
    EXPECT_THAT(seen, Contains("a= ")) << "the trap of a rename without a flush";
    for (const std::string& one : seen)
        EXPECT_NE(one, "") << "a rename is one operation: the old or the new one has the name";
}

TEST(PowerCut, KeepsTheOrderOfWhatIsDoneToOneName)
{
    const auto seen = outcomes([](Disk& disk) {
        disk.put("C:\\a", "x")->flush();
        disk.files.rename("C:\\a", "C:\\b");
        disk.files.removeFile("C:\\b");
    });
    EXPECT_THAT(seen, ElementsAre("", "a=x ", "b=x "));
}

TEST(PowerCut, MayLoseOneOfTwoNamesInEitherOrder)
{
    const auto seen = outcomes([](Disk& disk) {
        disk.put("C:\\a", "1")->flush();
        disk.put("C:\\b", "2")->flush();
    });
    EXPECT_THAT(seen, ElementsAre("", "a=1 ", "a=1 b=2 ", "b=2 "));
}

TEST(PowerCut, LosesWhatLiesInALostFolder)
{
    const auto work = [](Disk& disk) {
        disk.files.createFolder("C:\\d");
        disk.put("C:\\d\\a", "1")->flush();
        disk.files.openFolder("C:\\d")->flush();
    };
    EXPECT_THAT(outcomes(work), ElementsAre("", "d\\ "));
}

TEST(PowerCut, GivesTheSameDiskForTheSameSeed)
{
    const auto once = [](std::uint64_t seed) {
        Disk disk;
        for (int i = 0; i < 20; ++i)
            disk.put("C:\\f" + std::to_string(i), std::string(10'000, 'x'));
        disk.files.cut(seed);
        return disk.look();
    };
    EXPECT_EQ(once(5), once(5));
    EXPECT_NE(once(5), once(6));
}

} // namespace
} // namespace vardelin::platform
