#include "editor_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

// Reading a folder gives the window its turns. In these tests each look at the clock takes a
// millisecond, so that a folder of some hundred names is a large one.
namespace vardelin::editor {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::Not;

using Ending = FolderReading::Ending;

constexpr int kFolders = 60;
constexpr int kFiles = 140;
constexpr std::chrono::milliseconds kLongStep{30}; // a turn is due at every look

class FolderReadings : public testing::Test, public test::EditorRig {
protected:
    FolderReadings()
    {
        put({"D:\\big\\", "D:\\small\\a.txt"});
        for (int i = 0; i < kFolders; ++i)
            disk.createFolders("D:\\big\\folder" + std::to_string(i));
        for (int i = 0; i < kFiles; ++i)
            putFile("D:\\big\\file" + std::to_string(i), "x");
        newMode();
        BuildDriveList(editing);
        expand("D:\\");
        clock.script().onCallsNamed(
            "clock.steady", [this](const auto&) { clock.advance(std::chrono::milliseconds(1)); });
    }

    bool isUnread(std::string_view key)
    {
        return at(key).children() == 1 && at(key).child()->text.empty();
    }
};

TEST_F(FolderReadings, GiveTheWindowItsTurnsFromTheFirstNameToTheLastNode)
{
    std::vector<std::size_t> names;
    bool wasActive = true;
    messageLoop.onYield = [&] {
        names.push_back(form.reading.names);
        wasActive = wasActive && form.reading.active &&
                    form.reading.serial == at("D:\\big\\").serial() &&
                    form.mousePointer == MousePointer::Hourglass;
    };
    expand("D:\\big\\");
    EXPECT_TRUE(wasActive);
    EXPECT_THAT(names.size(), Gt(10U)); // every 25 ms of some 500
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_FALSE(form.reading.active);
    EXPECT_EQ(at("D:\\big\\").children(), static_cast<std::size_t>(kFolders + kFiles));
    EXPECT_EQ(form.mousePointer, MousePointer::Default);
}

TEST_F(FolderReadings, AQuickOneTakesNoTurn)
{
    messageLoop.yields = 0;
    expand("D:\\small\\");
    EXPECT_EQ(messageLoop.yields, 0U);
}

TEST_F(FolderReadings, LeaveTheSameTreeAsOneWithoutTurns)
{
    at("D:\\").checked = true;
    tick("D:\\big\\");
    expand("D:\\big\\");
    const auto withTurns = shown();
    clock.script().reset(); // the clock stands still from now on
    form = SourceTreeForm{};
    BuildDriveList(editing);
    expand("D:\\");
    messageLoop.yields = 0;
    tick("D:\\big\\");
    expand("D:\\big\\");
    EXPECT_EQ(messageLoop.yields, 0U);
    EXPECT_EQ(shown(), withTurns);
}

// Given up at each turn that there is, one after the other.
TEST_F(FolderReadings, GivenUpAtAnyTurnTheFolderIsUnreadAsBefore)
{
    at("D:\\big\\").checked = true;
    at("D:\\big\\").foreColor = state::kWhollySelectedColor;
    form.clxnDeferredChecks.add("big");
    const auto before = shown();
    std::size_t turn = 0;
    for (bool whole = false; !whole; ++turn) {
        ASSERT_LT(turn, 1000U);
        std::size_t now = 0;
        messageLoop.onYield = [&] { form.reading.cancelled = now++ == turn; };
        expand("D:\\big\\");
        whole = form.reading.ending == Ending::Whole;
        if (!whole) {
            ASSERT_EQ(form.reading.ending, Ending::Cancelled);
            ASSERT_EQ(shown(), before) << "given up at turn " << turn;
            ASSERT_FALSE(at("D:\\big\\").expanded);
            ASSERT_TRUE(form.clxnInheritedNames.empty());
            ASSERT_THAT(errorsShown(), IsEmpty());
        }
    }
    EXPECT_GT(turn, 10U);
    EXPECT_EQ(at("D:\\big\\").children(), static_cast<std::size_t>(kFolders + kFiles));
    EXPECT_EQ(look("D:\\big\\folder7\\"), "+g");
}

TEST_F(FolderReadings, RefuseWhatThePersonDoesMeanwhile)
{
    const auto ticked = [&] { return look("D:\\small\\"); };
    const auto before = shown();
    frame.BL_New_Changed = false;
    bool refused = true;
    messageLoop.onYield = [&] {
        tick("D:\\small\\");
        refused = refused && ticked() == "-0";
        at("D:\\small\\").expanded = true;
        tvwDirectory_Expand(editing, at("D:\\small\\"));
        refused = refused && !at("D:\\small\\").expanded && isUnread("D:\\small\\");
        refused = refused && !setExpanded(editing, at("D:\\small\\"), true);
        tree.select(&at("D:\\small\\"));
        mnuExpand_Click(editing);
        refused = refused && isUnread("D:\\small\\");
        mnuCollapse_Click(editing);
        refused = refused && at("D:\\").expanded;
    };
    expand("D:\\big\\");
    EXPECT_THAT(messageLoop.yields, Gt(0U));
    EXPECT_TRUE(refused);
    EXPECT_FALSE(frame.BL_New_Changed);
    EXPECT_FALSE(form.reading.active);
    EXPECT_EQ(at("D:\\big\\").children(), static_cast<std::size_t>(kFolders + kFiles));
    EXPECT_THAT(errorsShown(), IsEmpty());
    messageLoop.onYield = nullptr;
    expand("D:\\small\\");
    EXPECT_EQ(at("D:\\small\\").children(), 1U) << "open again to all that the person does";
}

TEST_F(FolderReadings, EndQuietlyWhereTheTreeIsEmptiedMeanwhile)
{
    for (const bool replaced : {false, true}) {
        messageLoop.onYield = [&] {
            messageLoop.onYield = nullptr;
            if (replaced) {
                form = SourceTreeForm{};
                record.tvwDirectory = state::TreeView{};
            }
            BuildDriveList(editing);
        };
        EXPECT_FALSE(setExpanded(editing, at("D:\\big\\"), true));
        EXPECT_EQ(form.reading.ending, Ending::Lost);
        EXPECT_FALSE(form.reading.active);
        EXPECT_THAT(shown(), ElementsAre("-0 D:", "-0 ", "-0 E:", "-0 "));
        EXPECT_THAT(errorsShown(), IsEmpty());
        expand("D:\\");
    }
}

TEST_F(FolderReadings, GivingUpEndsTheExpansionOfAWholeBranch)
{
    put({"E:\\top\\a\\1", "E:\\top\\b\\2", "E:\\top\\c\\3"});
    expand("E:\\");
    tree.select(&at("E:\\top\\"));
    clock.script().onCallsNamed("clock.steady", [this](const auto&) { clock.advance(kLongStep); });
    messageLoop.onYield = [&] {
        const state::TreeNode* second = tree.find("E:\\top\\b\\");
        form.reading.cancelled = second != nullptr && form.reading.serial == second->serial();
    };
    mnuExpand_Click(editing);
    EXPECT_EQ(at("E:\\top\\a\\").children(), 1U);
    EXPECT_TRUE(tree.find("E:\\top\\a\\1") != nullptr);
    EXPECT_TRUE(isUnread("E:\\top\\b\\"));
    EXPECT_FALSE(at("E:\\top\\b\\").expanded);
    EXPECT_TRUE(isUnread("E:\\top\\c\\"));
    EXPECT_FALSE(form.ExpandAllActive);
    EXPECT_EQ(frame.panel1.text, "Displaying Profile details");
}

TEST_F(FolderReadings, ACaptureReadsToTheEnd)
{
    frame.BL_New_Mode = false;
    edit({"D:\\", "D:\\big\\", "D:\\big\\file7"});
    messageLoop.onYield = [&] { form.reading.cancelled = true; };
    messageLoop.yields = 0;
    EXPECT_THAT(capture(), ElementsAre("D:\\big\\file7"));
    EXPECT_THAT(messageLoop.yields, Gt(0U));
    EXPECT_TRUE(form.reading.mayCancel);
}

TEST_F(FolderReadings, AFolderThatVanishesOnTheWayIsReported)
{
    disk.setUnreadable("D:\\big");
    expand("D:\\big\\");
    EXPECT_EQ(errorsShown().size(), 1U);
    EXPECT_FALSE(form.reading.active);
    EXPECT_EQ(at("D:\\big\\").children(), 0U);
    disk.removeTree("D:\\small");
    expand("D:\\small\\");
    EXPECT_EQ(errorsShown().size(), 2U);
    EXPECT_EQ(at("D:\\small\\").children(), 0U);
    EXPECT_EQ(form.mousePointer, MousePointer::Default);
}

} // namespace
} // namespace vardelin::editor
