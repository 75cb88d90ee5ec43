#include "archive/listed_folder.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "proofs/seed.h"
#include "support/trace_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vardelin::archive {
namespace {

constexpr std::string_view kFolder = "D:\\a";

TEST(MarkOfTag, IsTheTagAsANumber)
{
    EXPECT_EQ(markOfTag("000"), "FULL");
    EXPECT_EQ(markOfTag("007"), "Ver7");
    EXPECT_EQ(markOfTag("070"), "Ver70");
    EXPECT_EQ(markOfTag("999"), "Ver999");
    EXPECT_EQ(markOfTag("x_1"), "Ver0");
    EXPECT_EQ(markOfTag("1.5"), "Ver1.5");
}

struct Folder : test::TraceRig {
    Folder() { disk.createFolders(kFolder); }
    void put(std::string_view name) { putFile(platform::joinPath(kFolder, name), "x"); }
};

// The plain search, in the order that the listing has: what the index must never differ from.
std::optional<std::size_t> search(const ListedFolder& folder, std::string_view part,
                                  std::string_view other)
{
    for (std::size_t file = 0; file < folder.count(); ++file) {
        if (base::containsIgnoringCase(folder.name(file), part) &&
            base::containsIgnoringCase(folder.name(file), other))
            return file;
    }
    return std::nullopt;
}

TEST(ListedFolder, FindsWhatAPlainSearchFinds)
{
    constexpr std::array<std::string_view, 14> kParts{"a",  "B",      "_",  "_Ver",  "ver1",
                                                      "1",  "2",      "07", "_FULL", "full",
                                                      ".x", "_Ver12", "A_", "VER"};
    proofs::Random random(proofs::seedOf("ListedFolder"));
    const auto text = [&](std::size_t longest) {
        std::string made;
        for (std::size_t n = 1 + random.below(longest); n > 0; --n)
            made += random.oneOf(kParts);
        return made;
    };
    std::size_t hits = 0;
    for (int round = 0; round < 10; ++round) {
        Folder rig;
        for (int i = 0; i < 60; ++i)
            rig.put(text(5));
        const ListedFolder folder(rig.disk, kFolder);
        for (int i = 0; i < 300; ++i) {
            const std::string head = text(2);
            const std::string mark =
                random.chance(33) ? "FULL" : "Ver" + std::to_string(random.below(130));
            const auto copy = folder.firstOfCopy(head, mark);
            EXPECT_EQ(copy, search(folder, head + "_" + mark, mark)) << head << " " << mark;
            EXPECT_EQ(folder.firstHolding(head, mark), search(folder, head, mark))
                << head << " " << mark;
            hits += copy ? 1U : 0U;
        }
    }
    EXPECT_GT(hits, 50U);
}

TEST(ListedFolder, FindsMarksOfOtherFormsToo)
{
    Folder rig;
    rig.put("a_Ver1.5_x");
    rig.put("b_Ver1.5_x");
    rig.put("long_Ver1234_x");
    const ListedFolder folder(rig.disk, kFolder);
    EXPECT_EQ(folder.firstOfCopy("b", "Ver1.5"), 1U);
    EXPECT_EQ(folder.firstHolding("b", "Ver1.5"), 1U);
    EXPECT_EQ(folder.firstOfCopy("long", "Ver1234"), 2U);
    EXPECT_EQ(folder.firstOfCopy("c", "Ver1.5"), std::nullopt);
    EXPECT_EQ(folder.firstHolding("c", "Ver1.5"), std::nullopt);
    EXPECT_EQ(folder.firstHolding("a", "Ver9"), std::nullopt);
}

TEST(ListedFolder, ForgetsWhatWasRemoved)
{
    Folder rig;
    rig.put("a_Ver1_1");
    rig.put("a_Ver1_2");
    rig.put("~vd7.tmp");
    ListedFolder folder(rig.disk, kFolder);
    EXPECT_EQ(folder.remainingFiles(), 2U);
    EXPECT_THROW(folder.removeWhole(), base::RuntimeError) << "two files are in it";

    for (const std::size_t expected : {0U, 1U}) {
        ASSERT_EQ(folder.firstOfCopy("a", "Ver1"), expected);
        ASSERT_EQ(folder.firstHolding("a", "Ver1"), expected);
        folder.remove(expected);
    }
    EXPECT_EQ(folder.firstOfCopy("a", "Ver1"), std::nullopt);
    EXPECT_EQ(folder.firstHolding("a", "Ver1"), std::nullopt);
    EXPECT_EQ(folder.remainingFiles(), 0U);
    EXPECT_FALSE(folder.hasSubfolders());
    folder.removeWhole();
    EXPECT_FALSE(rig.disk.folderExists(kFolder));
}

// Names that start alike and go one by one from the last to the first, as a deletion takes them.
TEST(ListedFolder, FindsTheFirstOfManyWhileTheyGo)
{
    Folder rig;
    constexpr std::size_t kFiles = 700;
    for (std::size_t i = 0; i < kFiles; ++i)
        rig.put("IMG_" + std::to_string(1000 + i) + "_FULL_x");
    rig.put("other_FULL_x");
    ListedFolder folder(rig.disk, kFolder);
    for (std::size_t i = 0; i < kFiles; ++i) {
        ASSERT_EQ(folder.firstHolding("img", "FULL"), i);
        folder.remove(i);
    }
    EXPECT_EQ(folder.firstHolding("img", "FULL"), std::nullopt);
    EXPECT_EQ(folder.firstHolding("Other", "FULL"), kFiles);
    EXPECT_EQ(folder.firstHolding("o", "FULL"), kFiles) << "one letter has no pairs";
}

TEST(ListedFolder, FollowsALinkToAFile)
{
    Folder rig;
    rig.putFile("D:\\elsewhere", "four");
    rig.disk.openFolder(kFolder)->createLink("a_FULL_1", "/mnt/d/elsewhere");
    const ListedFolder folder(rig.disk, kFolder);
    ASSERT_EQ(folder.firstOfCopy("a", "FULL"), 0U);
    EXPECT_EQ(folder.info(0)->sizeBytes, 4U);
}

} // namespace
} // namespace vardelin::archive
