#include "runs/engine/archive_walk.h"

#include "platform/memory/memory_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vardelin::engine {
namespace {

using testing::ElementsAre;

const std::string kStore = "D:\\store\\Work\\";

void makeCopies(platform::MemoryFileSystem& files, const std::string& folder, int count)
{
    files.createFolders(kStore + folder);
    const auto open = files.openFolder(kStore + folder);
    for (int i = 0; i < count; ++i)
        open->open("f" + std::to_string(i) + "_FULL_1-2-3.zst", platform::OpenMode::CreateNew);
}

std::vector<std::string> walked(platform::MemoryFileSystem& files, const std::string& from)
{
    std::vector<std::string> result;
    ArchiveWalk walk(files, kStore, from);
    while (const ArchiveFolder* const listing = walk.next())
        result.push_back(walk.path().substr(kStore.size()) + " " +
                         std::to_string(listing->copies().size()));
    return result;
}

TEST(ArchiveWalk, GivesSubfoldersFirstInTheirOrderAndListsEachFolderOnce)
{
    platform::MemoryFileSystem files;
    makeCopies(files, "C\\b10\\x", 3);
    makeCopies(files, "C\\b9", 2);
    makeCopies(files, "C\\b10", 1);
    makeCopies(files, "OtherData\\Mail", 5);
    files.script().reset();
    EXPECT_THAT(walked(files, kStore),
                ElementsAre("C\\b9\\ 2", "C\\b10\\x\\ 3", "C\\b10\\ 1", "C\\ 0"));
    EXPECT_EQ(files.script().countOf("folder.list"), 5U);
    EXPECT_THAT(walked(files, kStore + "C\\b10\\"), ElementsAre("C\\b10\\x\\ 3", "C\\b10\\ 1"));
}

TEST(ArchiveWalk, GivesUpALargeListingWhileItGoesThroughTheSubfolders)
{
    platform::MemoryFileSystem files;
    makeCopies(files, "C\\large", 12000);
    makeCopies(files, "C\\large\\below", 2);
    makeCopies(files, "C\\leaf", 12000);
    files.script().reset();
    EXPECT_THAT(walked(files, kStore),
                ElementsAre("C\\large\\below\\ 2", "C\\large\\ 12000", "C\\leaf\\ 12000", "C\\ 0"));
    EXPECT_EQ(files.script().countOf("folder.list"), 6U) << "the large one twice, the leaf once";
}

TEST(ArchiveWalk, GoesOnBehindAListingThatWasLetGo)
{
    platform::MemoryFileSystem files;
    makeCopies(files, "C\\a\\below", 2);
    makeCopies(files, "C\\b", 1);
    ArchiveWalk walk(files, kStore, kStore);
    std::vector<std::string> result;
    while (walk.next() != nullptr) {
        walk.release();
        result.push_back(walk.path().substr(kStore.size()));
    }
    EXPECT_THAT(result, ElementsAre("C\\a\\below\\", "C\\a\\", "C\\b\\", "C\\"));
}

} // namespace
} // namespace vardelin::engine
