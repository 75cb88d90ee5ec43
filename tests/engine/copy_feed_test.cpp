#include "runs/engine/copy_feed.h"

#include "base/runtime_error.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace vardelin::engine {
namespace {

ChosenFolder folderOf(const std::string& name, std::size_t copies, std::uint64_t sizeBytes)
{
    ChosenFolder folder{"D:\\store\\Work\\C\\" + name + "\\", "C:\\" + name + "\\", {}, false};
    for (std::size_t i = 0; i < copies; ++i) {
        ChosenCopy copy;
        copy.fileName = std::to_string(i);
        copy.sizeBytes = sizeBytes;
        folder.copies.push_back(copy);
    }
    return folder;
}

// The batches of one folder as (first, count).
std::vector<std::pair<std::size_t, std::size_t>> batchesOf(const ChosenFolder& folder)
{
    bool given = false;
    CopyFeed feed([&]() -> std::optional<ChosenFolder> {
        if (std::exchange(given, true))
            return std::nullopt;
        return folder;
    });
    std::vector<std::pair<std::size_t, std::size_t>> result;
    while (const auto batch = feed.next())
        result.emplace_back(batch->first, batch->count);
    return result;
}

TEST(CopyFeed, CutsAFolderIntoBatchesByNumberAndSize)
{
    using Batches = std::vector<std::pair<std::size_t, std::size_t>>;
    constexpr std::uint64_t kMebibyte = 1024 * 1024;
    EXPECT_EQ(batchesOf(folderOf("a", 64, 1)), (Batches{{0, 64}}));
    EXPECT_EQ(batchesOf(folderOf("a", 65, 1)), (Batches{{0, 64}, {64, 1}}));
    EXPECT_EQ(batchesOf(folderOf("a", 5, 4 * kMebibyte)), (Batches{{0, 2}, {2, 2}, {4, 1}}));
    EXPECT_EQ(batchesOf(folderOf("a", 2, 900 * kMebibyte)), (Batches{{0, 1}, {1, 1}}))
        << "one copy is a batch however large it is";
}

TEST(CopyFeed, GivesAnEmptyFolderOnlyWhereItWasAskedForAsOne)
{
    ChosenFolder folder = folderOf("a", 0, 0);
    EXPECT_TRUE(batchesOf(folder).empty());
    folder.whole = true;
    EXPECT_EQ(batchesOf(folder), (std::vector<std::pair<std::size_t, std::size_t>>{{0, 0}}));
}

TEST(CopyFeed, TakesTheNextFolderOnlyWhenTheOneBeforeIsGivenOut)
{
    int made = 0;
    CopyFeed feed(
        [&]() -> std::optional<ChosenFolder> { return folderOf(std::to_string(++made), 100, 1); });
    std::vector<CopyBatch> held;
    for (int folder = 1; folder <= 3; ++folder) {
        for (int batch = 0; batch < 2; ++batch) {
            held.push_back(feed.next().value());
            EXPECT_EQ(made, folder);
        }
    }
    const std::weak_ptr<const ChosenFolder> first = held.front().folder;
    held.erase(held.begin(), held.begin() + 2);
    EXPECT_TRUE(first.expired()) << "a folder goes when its last batch is done";
}

TEST(CopyFeed, HandsOnWhatTheSourceRaises)
{
    CopyFeed feed([]() -> std::optional<ChosenFolder> {
        throw base::RuntimeError(base::error_number::kDeviceIo, "D:\\store", "bad disk");
    });
    EXPECT_THROW(feed.next(), base::RuntimeError);
}

} // namespace
} // namespace vardelin::engine
