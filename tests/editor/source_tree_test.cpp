#include "editor_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <iostream>

namespace vardelin::editor {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kExpandError =
    "tvwDirectory_Expand: Error occured while expanding the tree view node process";

class SourceTree : public testing::Test, public test::EditorRig {
protected:
    void build(std::initializer_list<std::string_view> paths)
    {
        put(paths);
        newMode();
        BuildDriveList(editing);
    }
};

// ---- drives

TEST_F(SourceTree, ShowsFixedAndNetworkDrivesByLetterWithoutTheirLabels)
{
    using platform::DriveType;
    drives.drives.clear();
    addDrive('C');
    drives.drives.back().volumeLabel = "system disk";
    addDrive('F', DriveType::Remote);
    drives.drives.back().shareName = "\\\\server\\share";
    addDrive('R', DriveType::Removable);
    addDrive('S', DriveType::Optical);
    addDrive('T', DriveType::Unknown);
    addDrive('U', DriveType::NoRoot);
    addDrive('V', DriveType::Memory);
    store.opened.clxnOpenedSources.add("R:\\", "R:\\"); // a saved drive makes no difference
    BuildDriveList(editing);
    EXPECT_THAT(shown(), ElementsAre("-0 C:", "-0 ", "-0 F:", "-0 "));
    EXPECT_EQ(tree.node(3).key(), "F:\\");
    EXPECT_EQ(tree.node(1).image, 1);
    EXPECT_EQ(tree.selected(), &tree.node(1));
    EXPECT_EQ(form.driDrives[0], "c: [system disk]");
    EXPECT_EQ(form.driDrives[1], "f: [\\\\server\\share]");
    EXPECT_EQ(form.driDrives[2], "r:");
}

TEST_F(SourceTree, ADriveThatCannotBeAddedEndsTheList)
{
    drives.drives.clear();
    addDrive('D');
    addDrive('D');
    addDrive('E');
    BuildDriveList(editing);
    EXPECT_THAT(shown(), ElementsAre("-0 D:", "-0 "));
    EXPECT_THAT(errorsShown(), ElementsAre("BuildDriveList: Error Occurred while loading the "
                                           "drives in the collection"));
}

TEST_F(SourceTree, BuildingAgainStartsAfresh)
{
    build({"D:\\a"});
    expand("D:\\");
    BuildDriveList(editing);
    EXPECT_THAT(shown(), ElementsAre("-0 D:", "-0 ", "-0 E:", "-0 "));
}

// ---- reading

TEST_F(SourceTree, ReadsAFolderAtItsFirstExpansionFoldersFirstInAnyCase)
{
    build({"D:\\b\\x", "D:\\A\\", "D:\\z.txt", "D:\\Y.txt"});
    expand("D:\\");
    EXPECT_THAT(shown(), ElementsAre("-0 D:", "-0 E:", "-0 ", "-0 A", "-0 ", "-0 b", "-0 ",
                                     "-0 Y.txt", "-0 z.txt"));
    EXPECT_EQ(at("D:\\A\\").image, 4);
    EXPECT_EQ(at("D:\\A\\").expandedImage, 5);
    EXPECT_EQ(at("D:\\z.txt").image, 12);
    EXPECT_THAT(icons.asked, ElementsAre("D:\\Y.txt", "D:\\z.txt"));
    EXPECT_EQ(form.imageIndex, 12);
    EXPECT_EQ(form.mousePointer, MousePointer::Default);
    EXPECT_THAT(store.save.clxnFolderNames.items(), ElementsAre("A", "b"));
}

TEST_F(SourceTree, DoesNotTraceEveryEntry)
{
    build({"D:\\a\\", "D:\\b\\", "D:\\c", "D:\\d"});
    expand("D:\\");
    EXPECT_THAT(entries(), ElementsAre("BuildDriveList End 2", "tvwDirectory_Expand End 2"));
}

TEST_F(SourceTree, NamesThatDifferInCaseAndNamesOfOddBytesAreAllThere)
{
    build({"D:\\Docs\\", "D:\\docs\\", "D:\\\xff\xfe", "D:\\caf\xc3\xa9", "D:\\ lead", "D:\\n."});
    expand("D:\\");
    for (const char* key :
         {"D:\\Docs\\", "D:\\docs\\", "D:\\\xff\xfe", "D:\\caf\xc3\xa9", "D:\\ lead", "D:\\n."})
        EXPECT_NE(tree.find(key), nullptr) << key;
    EXPECT_THAT(errorsShown(), IsEmpty());
}

TEST_F(SourceTree, LinksAreFilesAndFoldersOfTheRunningSystemAreLeftOut)
{
    put({"D:\\real\\f", "D:\\proc\\1\\"});
    disk.openFolder("D:\\")->createLink("link", "/mnt/d/real");
    disk.setPseudo("D:\\proc");
    build({});
    expand("D:\\");
    EXPECT_EQ(at("D:\\link").children(), 0U);
    EXPECT_EQ(tree.find("D:\\proc\\"), nullptr);
}

TEST_F(SourceTree, AFolderThatCannotBeReadIsReportedAndCountsAsRead)
{
    build({"D:\\shut\\f", "D:\\other\\"});
    expand("D:\\");
    disk.setUnreadable("D:\\shut");
    expand("D:\\shut\\");
    EXPECT_THAT(errorsShown(), ElementsAre(kExpandError));
    EXPECT_EQ(at("D:\\shut\\").children(), 0U);
    EXPECT_NE(tree.find("D:\\other\\"), nullptr);
    EXPECT_EQ(form.mousePointer, MousePointer::Default);
}

TEST_F(SourceTree, AFolderThatVanishedIsReported)
{
    build({"D:\\gone\\"});
    expand("D:\\");
    disk.removeFolder("D:\\gone");
    expand("D:\\gone\\");
    EXPECT_THAT(errorsShown(), ElementsAre(kExpandError));
    EXPECT_EQ(errors.LG_Err_Number, 76);
}

TEST_F(SourceTree, ANodeThatCannotBeAddedEndsTheReadingWithWhatIsThere)
{
    build({"D:\\a\\", "D:\\b\\", "D:\\c\\"});
    tree.add(nullptr, {"D:\\b\\", "b", 4});
    expand("D:\\");
    EXPECT_NE(tree.find("D:\\a\\"), nullptr);
    EXPECT_EQ(tree.find("D:\\c\\"), nullptr);
    EXPECT_THAT(errorsShown(), ElementsAre(kExpandError));
}

TEST_F(SourceTree, ANewProfilesChildrenTakeOverTheParentsTickPurpleIncluded)
{
    build({"D:\\P\\a", "D:\\P\\F\\"});
    expand("D:\\");
    at("D:\\P\\").checked = true;
    at("D:\\P\\").foreColor = state::kPartlySelectedColor;
    expand("D:\\P\\");
    EXPECT_EQ(look("D:\\P\\a"), "+g");
    EXPECT_EQ(look("D:\\P\\F\\"), "+g");
}

TEST_F(SourceTree, AFolderTickedBeforeItWasReadIsRememberedAndItsChildrenInherit)
{
    build({"D:\\F\\sub\\deep"});
    expand("D:\\");
    tick("D:\\F\\");
    EXPECT_EQ(look("D:\\F\\"), "+g");
    EXPECT_EQ(look(*at("D:\\F\\").child()), "-0") << "the empty child stays as it is";
    EXPECT_THAT(form.clxnDeferredChecks.items(), ElementsAre("F"));
    expand("D:\\F\\");
    EXPECT_EQ(look("D:\\F\\sub\\"), "+g");
    EXPECT_THAT(form.clxnInheritedNames.items(), ElementsAre("sub"));
    expand("D:\\F\\sub\\");
    EXPECT_EQ(look("D:\\F\\sub\\deep"), "+g");
}

TEST_F(SourceTree, OnlyAFirstLevelFolderIsRemembered)
{
    build({"D:\\F\\sub\\deep\\"});
    expand("D:\\");
    expand("D:\\F\\");
    tick("D:\\F\\sub\\");
    EXPECT_THAT(form.clxnDeferredChecks.items(), IsEmpty());
    untick("D:\\F\\sub\\");
    tick("E:\\");
    EXPECT_THAT(form.clxnDeferredChecks.items(), IsEmpty());
}

struct ReloadCase {
    bool checked;
    std::uint32_t colour;
    const char* child;
};

TEST_F(SourceTree, OpeningAgainPassesOnWhatIsWhollyOnOrOff)
{
    build({"D:\\F\\"});
    const std::vector<ReloadCase> rows{
        {true, state::kWhollySelectedColor, "+g"},  {false, state::kUnselectedColor, "-0"},
        {true, state::kPartlySelectedColor, "+w"},  {false, state::kWindowTextColor, "+w"},
        {false, state::kWhollySelectedColor, "+w"}, {true, state::kUnselectedColor, "+w"},
    };
    expand("D:\\");
    for (const ReloadCase& row : rows) {
        collapse("D:\\");
        at("D:\\").checked = row.checked;
        at("D:\\").foreColor = row.colour;
        at("D:\\F\\").checked = true;
        at("D:\\F\\").foreColor = state::kWindowTextColor;
        expand("D:\\");
        EXPECT_EQ(look("D:\\F\\"), row.child);
    }
}

TEST_F(SourceTree, EditingRestoresTheSavedTicksWhileFoldersAreOpened)
{
    put({"D:\\all\\x", "D:\\part\\in", "D:\\part\\out", "D:\\none\\y", "D:\\f", "D:\\g"});
    edit({"D:\\", "D:\\all\\*", "D:\\part\\", "D:\\part\\in", "D:\\f"});
    EXPECT_THAT(shown(), ElementsAre("+p D:", "+p ", "-0 E:", "+p "))
        << "a drive comes back purple, and empty children count as hits";
    expand("D:\\");
    EXPECT_EQ(look("D:\\all\\"), "+g");
    EXPECT_EQ(look("D:\\part\\"), "+p");
    EXPECT_EQ(look("D:\\none\\"), "-0");
    EXPECT_EQ(look("D:\\f"), "+g");
    EXPECT_EQ(look("D:\\g"), "-0");
    expand("D:\\part\\");
    EXPECT_EQ(look("D:\\part\\in"), "+g");
    EXPECT_EQ(look("D:\\part\\out"), "-0");
    expand("D:\\all\\");
    EXPECT_EQ(look("D:\\all\\x"), "+g") << "below a green folder everything is green";
    EXPECT_TRUE(frame.BL_Edit_Mode);
    EXPECT_FALSE(frame.BL_Edit_Changed);
}

TEST_F(SourceTree, AFolderSavedBothWaysIsWhollySelected)
{
    put({"D:\\F\\x"});
    edit({"D:\\", "D:\\F\\*", "D:\\F\\"});
    expand("D:\\");
    EXPECT_EQ(look("D:\\F\\"), "+g");
}

TEST_F(SourceTree, SavedTicksBelowAnUntickedFolderStayOff)
{
    put({"D:\\F\\x", "D:\\F\\S\\"});
    edit({"D:\\", "D:\\F\\", "D:\\F\\x", "D:\\F\\S\\*"});
    expand("D:\\");
    untick("D:\\F\\");
    expand("D:\\F\\");
    EXPECT_EQ(look("D:\\F\\x"), "-0");
    EXPECT_EQ(look("D:\\F\\S\\"), "-0");
}

// ---- ticks

TEST_F(SourceTree, ATickSpreadsDownThroughWhatIsExpanded)
{
    build({"D:\\F\\a", "D:\\F\\S\\b", "D:\\F\\T\\c"});
    expand("D:\\");
    expand("D:\\F\\");
    expand("D:\\F\\S\\");
    tick("D:\\F\\");
    EXPECT_TRUE(frame.BL_New_Changed);
    EXPECT_EQ(look("D:\\F\\S\\b"), "+g");
    EXPECT_EQ(look("D:\\F\\a"), "+g");
    EXPECT_EQ(look(*at("D:\\F\\T\\").child()), "+g") << "the walk takes empty children along";
    EXPECT_EQ(look("D:\\"), "+g") << "its only child is green";
    untick("D:\\F\\");
    EXPECT_EQ(look("D:\\F\\S\\b"), "-0");
    EXPECT_EQ(look("D:\\"), "-0");
    EXPECT_TRUE(store.scalars.AllSourceUnchecked);
    EXPECT_FALSE(store.scalars.SourceChecked);
}

TEST_F(SourceTree, TheFirstSiblingChoosesHowTheParentsAreJudged)
{
    build({"D:\\a", "D:\\b", "D:\\c"});
    expand("D:\\");
    tick("D:\\b"); // branch B: the first one is off
    EXPECT_EQ(look("D:\\"), "+p");
    tick("D:\\a"); // branch A from here on
    EXPECT_EQ(look("D:\\"), "+p");
    tick("D:\\c");
    EXPECT_EQ(look("D:\\"), "+g");
    untick("D:\\b");
    EXPECT_EQ(look("D:\\"), "+p");
    untick("D:\\c");
    untick("D:\\a");
    EXPECT_EQ(look("D:\\"), "-0");
}

TEST_F(SourceTree, EveryLevelAboveIsJudged)
{
    build({"D:\\A\\B\\x", "D:\\A\\B\\y", "D:\\A\\z"});
    expand("D:\\");
    expand("D:\\A\\");
    expand("D:\\A\\B\\");
    tick("D:\\A\\B\\x");
    EXPECT_EQ(look("D:\\A\\B\\"), "+p");
    EXPECT_EQ(look("D:\\A\\"), "+p");
    EXPECT_EQ(look("D:\\"), "+p");
    tick("D:\\A\\B\\y");
    EXPECT_EQ(look("D:\\A\\B\\"), "+g");
    EXPECT_EQ(look("D:\\A\\"), "+p");
    tick("D:\\A\\z");
    EXPECT_EQ(look("D:\\"), "+g");
}

TEST_F(SourceTree, AGreenEmptyChildKeepsAParentTicked)
{
    build({"D:\\F\\S.1\\", "D:\\F\\T\\"});
    expand("D:\\");
    expand("D:\\F\\");
    tick("D:\\F\\");        // makes the empty child between the two green
    untick("D:\\F\\S.1\\"); // which the dot in the name keeps from being walked
    untick("D:\\F\\T\\");
    // Nothing is selected by now, and still: an entry that is not off keeps the parent as it was.
    EXPECT_EQ(look("D:\\F\\"), "+p");
}

TEST_F(SourceTree, AFolderWithADotIsNotWalkedWhenItIsUnticked)
{
    build({"D:\\v1.0\\x", "D:\\plain\\x", "D:\\keep.it"});
    expand("D:\\");
    tick("D:\\keep.it");
    for (const char* folder : {"D:\\v1.0\\", "D:\\plain\\"}) {
        expand(folder);
        tick(folder);
        collapse(folder); // so that only the walk over the block can reach the child
    }
    // An entry behind the last block, or the estimate would run past the end.
    tree.add(nullptr, {"Z:\\", "Z:", 1});
    untick("D:\\v1.0\\");
    untick("D:\\plain\\");
    EXPECT_EQ(look("D:\\v1.0\\x"), "+g") << "its name looks like a file's";
    EXPECT_EQ(look("D:\\plain\\x"), "-0");
}

TEST_F(SourceTree, TheBlockOfAnUntickedFolderIsEstimatedAndEndsTheHandlerPastTheLastNode)
{
    build({"D:\\F\\S\\", "D:\\F\\T\\"});
    expand("D:\\");
    expand("D:\\F\\");
    expand("D:\\F\\S\\"); // empty: its empty child goes, and the estimate is one too long
    expand("D:\\F\\T\\");
    collapse("D:\\F\\");
    at("D:\\F\\").foreColor = state::kWhollySelectedColor;
    at("D:\\").checked = true;
    const auto before = entries().size();
    untick("D:\\F\\");
    EXPECT_EQ(look("D:\\"), "+0") << "the walk up did not come";
    EXPECT_EQ(entries().size(), before + 1);
    EXPECT_EQ(entries().back(), "tvwDirectory_NodeCheck Start 1") << "and no end is traced";
    EXPECT_THAT(errorsShown(), IsEmpty());
}

TEST_F(SourceTree, UntickingADriveUnticksEveryKeyThatHoldsItsText)
{
    build({"D:\\a"});
    expand("D:\\");
    tick("D:\\");
    state::TreeNode& other = tree.add(&at("E:\\"), {"E:\\xD:y", "odd", 6});
    other.checked = true;
    other.foreColor = state::kPartlySelectedColor;
    collapse("D:\\");
    untick("D:\\");
    EXPECT_FALSE(at("D:\\a").checked);
    EXPECT_EQ(look(other), "-p") << "it does not lie on D:, and its colour stays";
}

TEST_F(SourceTree, TheLastTickTakesTheExcludedExtensionsAlong)
{
    build({"D:\\a.x", "D:\\b.x"});
    record.lstExclude.addItem(".tmp").checked = true;
    store.save.clxnExcluded.add(".tmp", ".tmp");
    expand("D:\\");
    tick("D:\\a.x");
    tick("D:\\b.x");
    untick("D:\\a.x");
    EXPECT_TRUE(record.lstExclude.rows[0].checked);
    EXPECT_FALSE(store.scalars.SourceChecked) << "it tells of the newest click alone";
    untick("D:\\b.x");
    EXPECT_FALSE(record.lstExclude.rows[0].checked);
    EXPECT_TRUE(store.save.clxnExcluded.empty());
    EXPECT_TRUE(store.scalars.AllSourceUnchecked);
    tick("E:\\");
    EXPECT_TRUE(store.scalars.SourceChecked);
    tick("D:\\");
    untick("D:\\");
    EXPECT_FALSE(store.scalars.AllSourceUnchecked);
    EXPECT_TRUE(store.scalars.SourceChecked) << "another drive is still ticked";
}

TEST_F(SourceTree, AViewKeepsEveryTickThroughCheckAndClick)
{
    build({"D:\\a"});
    frame.BL_New_Mode = false;
    frame.BL_Open_Mode = true;
    tvwDirectory_Click(editing); // nothing was refused yet
    EXPECT_FALSE(at("D:\\").checked);
    untick("D:\\");
    EXPECT_TRUE(at("D:\\").checked);
    EXPECT_EQ(form.ViewClickIndex, 1U);
    EXPECT_FALSE(frame.BL_New_Changed || frame.BL_Edit_Changed);
    at("D:\\").checked = false;
    tvwDirectory_Click(editing);
    EXPECT_TRUE(at("D:\\").checked);
    form.ViewClickIndex = 99;
    EXPECT_NO_THROW(tvwDirectory_Click(editing));
}

TEST_F(SourceTree, ADeeperNodeWithTheLastSiblingsNameEndsTheWalkDown)
{
    newMode();
    state::TreeNode& top = tree.add(nullptr, {"D:\\", "D:", 1});
    state::TreeNode& first = tree.add(&top, {"D:\\A\\", "A", 4});
    tree.add(&first, {"D:\\A\\z", "z", 6});
    state::TreeNode& last = tree.add(&top, {"D:\\z", "z", 6});
    top.expanded = true;
    top.checked = true;
    ParchildCheck(editing, top);
    EXPECT_EQ(look("D:\\A\\z"), "+g");
    EXPECT_EQ(look(last), "-0") << "texts are compared, not places";
}

TEST_F(SourceTree, NothingSpreadsDownWhileABranchIsExpanded)
{
    build({"D:\\a"});
    expand("D:\\");
    form.ExpandAllActive = true;
    at("D:\\").checked = true;
    ParchildCheck(editing, at("D:\\"));
    EXPECT_EQ(look("D:\\a"), "-0");
}

TEST_F(SourceTree, ATickOnARootThatIsNoDriveIsReported)
{
    newMode();
    tree.add(nullptr, {"odd\\", "odd", 1});
    tick("odd\\");
    EXPECT_THAT(errorsShown(), ElementsAre("tvwDirectory_NodeCheck: Error Occured inChecking if "
                                           "sub node colour gets changed"));
    tree.add(nullptr, {"xy\\", "xy", 1});
    tick("xy\\"); // two characters, but no colon
    EXPECT_EQ(dialog.shown.size(), 2U);
}

TEST_F(SourceTree, EditingSetsItsOwnChangeFlag)
{
    put({"D:\\a"});
    edit({});
    tick("D:\\");
    EXPECT_TRUE(frame.BL_Edit_Changed);
    EXPECT_FALSE(frame.BL_New_Changed);
}

// ---- branches

TEST_F(SourceTree, ExpandBranchOpensEverythingBelow)
{
    build({"E:\\A\\B\\C\\f", "E:\\A\\D\\", "E:\\g"});
    tree.select(&at("E:\\"));
    mnuExpand_Click(editing);
    EXPECT_NE(tree.find("E:\\A\\B\\C\\f"), nullptr);
    EXPECT_TRUE(at("E:\\A\\B\\C\\").expanded);
    EXPECT_EQ(at("E:\\A\\D\\").children(), 0U);
    EXPECT_FALSE(form.ExpandAllActive);
    EXPECT_EQ(frame.panel1.text, "Displaying Profile details");
    mnuCollapse_Click(editing);
    EXPECT_FALSE(at("E:\\").expanded);
    EXPECT_FALSE(at("E:\\A\\B\\").expanded);
    EXPECT_EQ(frame.panel1.text, "Displaying Profile details");
}

TEST_F(SourceTree, DrivesCAndDAreOpenedOneLevelOnly)
{
    build({"D:\\A\\f"});
    tree.select(&at("D:\\"));
    mnuExpand_Click(editing);
    EXPECT_TRUE(at("D:\\").expanded);
    EXPECT_FALSE(at("D:\\A\\").expanded);
    EXPECT_TRUE(at("D:\\A\\").child()->text.empty());
    mnuCollapse_Click(editing);
    EXPECT_FALSE(at("D:\\").expanded);
}

// ---- the smaller ones

TEST_F(SourceTree, TheNumericPadsStarIsSwallowed)
{
    int key = 106;
    tvwDirectory_KeyDown(key);
    EXPECT_EQ(key, 0);
    key = 107;
    tvwDirectory_KeyDown(key);
    EXPECT_EQ(key, 107);
    int cancel = 0;
    tvwDirectory_BeforeLabelEdit(cancel);
    EXPECT_NE(cancel, 0);
}

TEST_F(SourceTree, UncheckNodeSetsTheTickAndReportsABadIndex)
{
    build({});
    UncheckNode(editing, 1, true);
    EXPECT_TRUE(tree.node(1).checked);
    UncheckNode(editing, 1, false);
    EXPECT_FALSE(tree.node(1).checked);
    EXPECT_THROW(UncheckNode(editing, 99, true), base::RuntimeError) << "35600 exceeds 16 bits";
    EXPECT_EQ(errors.ST_Err_Custom_Msg, "Check the unchecked node");
}

TEST(TrimNull, CutsAtTheFirstNul)
{
    EXPECT_EQ(TrimNull(std::string_view("ab\0c\0", 5)), "ab");
    EXPECT_EQ(TrimNull("abc"), "abc");
    EXPECT_EQ(TrimNull(std::string_view("\0", 1)), "");
}

TEST_F(SourceTree, TakesAFolderOfManyEntries)
{
    const char* wanted = std::getenv("VARDELIN_TREE_ENTRIES");
    const int count = wanted == nullptr ? 2000 : std::atoi(wanted);
    disk.createFolders("E:\\big");
    const auto folder = disk.openFolder("E:\\big");
    for (int i = 0; i < count; ++i) {
        if (i % 2 == 0)
            folder->createFolder("folder " + std::to_string(i));
        else
            folder->open("file " + std::to_string(i), platform::OpenMode::CreateNew);
    }
    build({});
    expand("E:\\");
    const auto start = std::chrono::steady_clock::now();
    const auto took = [&] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now() - start)
            .count();
    };
    expand("E:\\big\\");
    std::cout << count << " entries: expanded after " << took() << " ms, ";
    EXPECT_EQ(at("E:\\big\\").children(), static_cast<std::size_t>(count));
    tick("E:\\big\\");
    std::cout << "ticked after " << took() << ", ";
    collapse("E:\\big\\");
    expand("E:\\big\\");
    untick("E:\\big\\folder 0\\");
    std::cout << "opened again and one unticked after " << took() << ", ";
    const auto lines = capture();
    std::cout << "captured after " << took() << " ms\n";
    EXPECT_EQ(lines.size(), static_cast<std::size_t>(count) - 1);
}

} // namespace
} // namespace vardelin::editor
