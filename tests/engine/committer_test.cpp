#include "runs/engine/committer.h"

#include "base/runtime_error.h"
#include "platform/memory/memory_file_system.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace vardelin::engine {
namespace {

PendingCopy pending(platform::MemoryFileSystem& files, int number)
{
    const std::string folder = "C:\\d" + std::to_string(number % 7);
    files.createFolders(folder);
    const std::string temporary = "~" + std::to_string(number) + ".tmp";
    files.openFolder(folder)->open(temporary, platform::OpenMode::CreateNew);
    return {folder, temporary, "f" + std::to_string(number), {}};
}

TEST(Committer, NamesCountOnlyBehindAFlush)
{
    platform::MemoryFileSystem files;
    Committer committer(files);
    for (int i = 0; i < 10; ++i)
        committer.add(pending(files, i));
    EXPECT_EQ(files.script().countOf("folder.rename"), 0U);
    bool flushed = false;
    files.script().onCallsNamed("folder.flushFileSystem",
                                [&](const platform::CallScript::Call&) { flushed = true; });
    bool early = false;
    files.script().onCallsNamed(
        "folder.rename", [&](const platform::CallScript::Call&) { early = early || !flushed; });
    committer.finish();
    EXPECT_FALSE(early);
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(files.fileExists("C:\\d" + std::to_string(i % 7) + "\\f" + std::to_string(i)));
    // Once before the renames and once behind them.
    EXPECT_EQ(files.script().countOf("folder.flushFileSystem"), 2U);
}

TEST(Committer, GroupsOfManyThreadsAllComeToTheirNames)
{
    platform::MemoryFileSystem files;
    Committer committer(files, 1500);
    std::vector<PendingCopy> copies;
    copies.reserve(8000);
    for (int i = 0; i < 8000; ++i)
        copies.push_back(pending(files, i));
    std::thread other([&] {
        for (std::size_t i = 0; i < 4000; ++i)
            committer.add(copies[i]);
    });
    for (std::size_t i = 4000; i < 8000; ++i)
        committer.add(copies[i]);
    other.join();
    committer.finish();
    std::size_t found = 0;
    for (int folder = 0; folder < 7; ++folder) {
        for (const auto& entry : files.list("C:\\d" + std::to_string(folder)))
            found += entry.name.starts_with("f") ? 1U : 0U;
    }
    EXPECT_EQ(found, 8000U);
}

TEST(Committer, AFailedGroupIsRaisedAtTheLatestByFinish)
{
    platform::MemoryFileSystem files;
    Committer committer(files, 5);
    std::vector<PendingCopy> copies;
    copies.reserve(5);
    for (int i = 0; i < 5; ++i)
        copies.push_back(pending(files, i));
    files.script().failCallsNamed("folder.flushFileSystem", base::error_number::kDeviceIo);
    for (PendingCopy& copy : copies)
        committer.add(copy);
    EXPECT_THROW(committer.finish(), base::RuntimeError);
    EXPECT_FALSE(files.fileExists("C:\\d0\\f0")) << "what is not flushed gets no name";
}

} // namespace
} // namespace vardelin::engine
