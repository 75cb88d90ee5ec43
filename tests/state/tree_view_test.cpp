#include "state/tree_view.h"

#include "base/runtime_error.h"

#include <gtest/gtest.h>

namespace vardelin::state {
namespace {

struct Sample {
    TreeView tree;
    TreeNode& drive = tree.add(nullptr, {"C:\\", "C:", 1});
    TreeNode& mark = tree.add(&drive, {});
    TreeNode& folder = tree.add(&drive, {"C:\\A\\", "A", 4});
    TreeNode& below = tree.add(&folder, {"C:\\A\\b", "b", 7});
    TreeNode& file = tree.add(&drive, {"C:\\z", "z", 6});
};

TEST(TreeView, CountsFromOneInTheOrderOfInsertion)
{
    Sample s;
    EXPECT_EQ(s.tree.count(), 5U);
    EXPECT_EQ(&s.tree.node(1), &s.drive);
    EXPECT_EQ(&s.tree.node(4), &s.below);
    EXPECT_EQ(s.tree.indexOf(s.file), 5U);
    EXPECT_THROW(s.tree.node(0), base::RuntimeError);
    try {
        s.tree.node(6);
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 35600);
    }
}

TEST(TreeView, ARemovalMovesTheIndicesBehindItAndKeepsNodesAndLinks)
{
    Sample s;
    s.tree.remove(s.mark);
    EXPECT_EQ(s.tree.indexOf(s.folder), 2U);
    EXPECT_EQ(s.tree.indexOf(s.file), 4U);
    EXPECT_EQ(s.drive.child(), &s.folder);
    EXPECT_EQ(s.drive.children(), 2U);
    EXPECT_EQ(s.tree.find("C:\\A\\b"), &s.below);
    const TreeNode& last = s.tree.add(&s.drive, {"C:\\a", "a", 6});
    EXPECT_EQ(s.tree.indexOf(last), 5U) << "a new node always comes at the end";
    EXPECT_EQ(&s.tree.lastSibling(s.folder), &last);
    EXPECT_EQ(s.tree.placeOf(last), 2U);
}

TEST(TreeView, ARemovalTakesWhatIsBelow)
{
    Sample s;
    s.tree.select(&s.below);
    const auto serial = s.below.serial();
    s.tree.remove(s.folder);
    EXPECT_EQ(s.tree.count(), 3U);
    EXPECT_EQ(s.tree.find("C:\\A\\b"), nullptr);
    EXPECT_EQ(s.tree.findSerial(serial), nullptr);
    EXPECT_EQ(s.tree.selected(), nullptr);
    EXPECT_NO_THROW(s.tree.add(&s.drive, {"C:\\A\\", "A", 4})) << "the key is free again";
}

TEST(TreeView, TakesAKeyOnceAndAnEmptyOneOften)
{
    Sample s;
    EXPECT_THROW(s.tree.add(&s.drive, {"C:\\z", "z", 6}), base::RuntimeError);
    EXPECT_EQ(s.tree.count(), 5U);
    EXPECT_EQ(s.drive.children(), 3U);
    s.tree.add(&s.drive, {});
    EXPECT_EQ(s.tree.count(), 6U);
}

TEST(TreeView, KeysFollowTheRuleOfTheDisk)
{
    TreeView exact(base::KeyRule::Exact);
    exact.add(nullptr, {"C:\\Docs\\", "Docs", 4});
    EXPECT_NO_THROW(exact.add(nullptr, {"C:\\docs\\", "docs", 4}));
    TreeView folded(base::KeyRule::IgnoreCase);
    folded.add(nullptr, {"C:\\Docs\\", "Docs", 4});
    EXPECT_THROW(folded.add(nullptr, {"C:\\docs\\", "docs", 4}), base::RuntimeError);
}

TEST(TreeView, AFullPathIsTheTextsFromTheRootDown)
{
    Sample s;
    EXPECT_EQ(s.drive.fullPath(), "C:");
    EXPECT_EQ(s.below.fullPath(), "C:\\A\\b");
}

TEST(TreeView, TellsAViewWhenNodesCameOrWent)
{
    Sample s;
    const auto before = s.tree.structureRevision();
    s.file.checked = true;
    EXPECT_EQ(s.tree.structureRevision(), before);
    s.tree.remove(s.mark);
    EXPECT_GT(s.tree.structureRevision(), before);
    s.tree.clear();
    EXPECT_EQ(s.tree.count(), 0U);
    EXPECT_EQ(s.tree.find("C:\\"), nullptr);
}

TEST(TreeView, AssignedAnotherTreeNoSerialAndNoRevisionComesAgain)
{
    TreeView tree;
    tree.add(nullptr, {"a", "a"});
    tree.select(&tree.add(nullptr, {"b", "b"}));
    const std::uint64_t revision = tree.structureRevision();
    tree = TreeView{};
    EXPECT_EQ(tree.count(), 0U);
    EXPECT_EQ(tree.find("a"), nullptr);
    EXPECT_EQ(tree.selected(), nullptr);
    EXPECT_GT(tree.structureRevision(), revision);
    EXPECT_EQ(tree.add(nullptr, {"a", "a"}).serial(), 3U);

    TreeView filled;
    TreeNode& parent = filled.add(nullptr, {"c", "c"});
    filled.add(&parent, {"d", "d"});
    filled.enabled = false;
    tree = std::move(filled);
    EXPECT_EQ(tree.count(), 2U);
    EXPECT_EQ(tree.find("d")->parent(), tree.find("c"));
    EXPECT_EQ(tree.roots().size(), 1U);
    EXPECT_FALSE(tree.enabled);
    EXPECT_EQ(tree.find("a"), nullptr);
}

} // namespace
} // namespace vardelin::state
