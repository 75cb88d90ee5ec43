#include "editor_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCaptureError =
    "GettingChkedItems: While processing the File (or) Folder name string, Error has identified.";

class SourceCapture : public testing::Test, public test::EditorRig {
protected:
    void build(std::initializer_list<std::string_view> paths)
    {
        put(paths);
        newMode();
        BuildDriveList(editing);
        expand("D:\\");
    }
    // The tree as a view starts with it.
    void view(std::initializer_list<std::string_view> opened)
    {
        frame.BL_Open_Mode = true;
        for (const std::string_view line : opened)
            store.opened.clxnOpenedSources.add(std::string(line), line);
        state::TreeNode& drive = tree.add(nullptr, {"D:\\", "D:", 1});
        drive.checked = true;
        drive.foreColor = state::kWhollySelectedColor;
        tree.add(&drive, {});
    }
};

TEST_F(SourceCapture, AnUnreadDriveGivesWhatStandsOnItAndNoLineOfItsOwn)
{
    put({"E:\\b\\x", "E:\\A\\", "E:\\f"});
    newMode();
    BuildDriveList(editing);
    tick("E:\\");
    EXPECT_THAT(capture(), ElementsAre("E:\\A\\", "E:\\b\\", "E:\\f"));
    EXPECT_DOUBLE_EQ(frame.pb.value, 24.999999) << "25 divided by three and cut to 6 places";
}

TEST_F(SourceCapture, AnUnreadDriveThatIsNotGreenGivesNothing)
{
    put({"E:\\a"});
    newMode();
    BuildDriveList(editing);
    at("E:\\").checked = true;
    at("E:\\").foreColor = state::kPartlySelectedColor;
    EXPECT_THAT(capture(), IsEmpty());
}

TEST_F(SourceCapture, AReadDriveGivesItsFirstLevel)
{
    build({"D:\\A\\x", "D:\\B\\x", "D:\\f", "D:\\g"});
    tick("D:\\");
    EXPECT_THAT(capture(), ElementsAre("D:\\A\\", "D:\\B\\", "D:\\f", "D:\\g"));
    untick("D:\\A\\");
    untick("D:\\g");
    EXPECT_THAT(capture(), ElementsAre("D:\\B\\", "D:\\f"));
}

TEST_F(SourceCapture, ADriveWithOneEntryListsItOnceAndStopsNothing)
{
    build({"D:\\only\\x", "E:\\a", "E:\\b"});
    tick("D:\\");
    collapse("D:\\");
    expand("E:\\");
    tick("E:\\b");
    EXPECT_THAT(capture(), ElementsAre("D:\\only\\", "E:\\b"));
    EXPECT_THAT(errorsShown(), IsEmpty());
}

TEST_F(SourceCapture, APartlySelectedFolderGivesWhatIsSelectedBelow)
{
    build({"D:\\P\\S\\x", "D:\\P\\S\\y", "D:\\P\\G\\1", "D:\\P\\G\\2", "D:\\P\\f", "D:\\P\\g"});
    expand("D:\\P\\");
    expand("D:\\P\\S\\");
    tick("D:\\P\\S\\y");
    tick("D:\\P\\G\\");
    tick("D:\\P\\f");
    EXPECT_THAT(capture(), ElementsAre("D:\\P\\G\\", "D:\\P\\S\\y", "D:\\P\\f"));
    EXPECT_THAT(errorsShown(), IsEmpty());
}

TEST_F(SourceCapture, ASingleTickedLeafIsListedItselfAtTheFirstLevelAndItsFolderBelow)
{
    build({"D:\\one\\leaf", "D:\\P\\deep\\leaf", "D:\\P\\other"});
    expand("D:\\one\\");
    tick("D:\\one\\leaf");
    EXPECT_THAT(capture(), ElementsAre("D:\\one\\leaf"));
    expand("D:\\P\\");
    expand("D:\\P\\deep\\");
    tick("D:\\P\\deep\\leaf");
    EXPECT_THAT(capture(), ElementsAre("D:\\one\\leaf", "D:\\P\\deep\\"));
}

TEST_F(SourceCapture, ASingleLeafThatIsAFolderIsListedWithoutItsBackslash)
{
    build({"D:\\one\\leaf\\"});
    expand("D:\\one\\");
    expand("D:\\one\\leaf\\"); // empty: no child any more
    tick("D:\\one\\leaf\\");
    EXPECT_THAT(capture(), ElementsAre("D:\\one\\leaf"));
}

TEST_F(SourceCapture, AnEmptyFolderIsKnownByItsNameAndSoIsAFileOfThatName)
{
    build({"D:\\void\\", "D:\\P\\void\\", "D:\\P\\file", "D:\\file2", "D:\\Q\\file2\\"});
    expand("D:\\void\\");
    tick("D:\\void\\");
    EXPECT_THAT(capture(), ElementsAre("D:\\void\\"));
    expand("D:\\P\\");
    expand("D:\\P\\void\\");
    tick("D:\\P\\void\\");
    EXPECT_THAT(capture(), ElementsAre("D:\\P\\void\\", "D:\\void\\"));
    tick("D:\\file2");
    expand("D:\\Q\\"); // a folder of the file's name is known from here on
    EXPECT_THAT(capture(), ElementsAre("D:\\P\\void\\", "D:\\void\\", "D:\\file2\\"));
}

TEST_F(SourceCapture, NothingTickedLeavesTheListEmptyAndIsReported)
{
    build({"D:\\a"});
    EXPECT_THAT(capture(), IsEmpty());
    EXPECT_THAT(errorsShown(), ElementsAre(kCaptureError));
    EXPECT_EQ(errors.LG_Err_Number, 11);
}

TEST_F(SourceCapture, ALineThatIsThereAlreadyEndsThePassAtTheNextFirstLevelNode)
{
    build({"D:\\a", "D:\\b", "D:\\c"});
    tick("D:\\a");
    tick("D:\\b");
    tick("D:\\c");
    store.save.clxnSources.add("D:\\b", "D:\\b");
    GettingChkedItems(editing);
    EXPECT_THAT(store.save.clxnSources.items(), ElementsAre("D:\\b", "D:\\a"));
    EXPECT_THAT(errorsShown(), ElementsAre(kCaptureError));
    EXPECT_EQ(errors.LG_Err_Number, 457);
}

TEST_F(SourceCapture, ADriveThatCannotBeReadIsReported)
{
    put({"E:\\a"});
    newMode();
    BuildDriveList(editing);
    tick("E:\\");
    disk.setUnreadable("E:\\");
    EXPECT_THAT(capture(), IsEmpty());
    EXPECT_EQ(errorsShown().front(), kCaptureError);
}

TEST_F(SourceCapture, EditingReadsDrivesThatWereNotOpenedAndKeepsEveryLine)
{
    put({"D:\\all\\x", "D:\\P\\A\\a1", "D:\\P\\A\\a2", "D:\\P\\B\\b1", "D:\\P\\B\\b2", "D:\\P\\f",
         "D:\\P\\g", "D:\\z\\1", "E:\\m", "E:\\n"});
    edit({"D:\\", "D:\\all\\*", "D:\\P\\", "D:\\P\\A\\", "D:\\P\\A\\a1", "D:\\P\\B\\",
          "D:\\P\\B\\b2", "D:\\P\\f", "D:\\z\\*", "E:\\", "E:\\n"});
    // Reading folders on the way shortens the tree below the walk; no line may come twice for it,
    // since that would cost every line behind it.
    EXPECT_THAT(capture(), ElementsAre("D:\\all\\", "D:\\P\\A\\a1", "D:\\P\\B\\b2", "D:\\P\\f",
                                       "D:\\z\\", "E:\\n"));
    EXPECT_THAT(errorsShown(), IsEmpty());
    EXPECT_FALSE(at("D:\\").expanded);
    EXPECT_FALSE(at("D:\\P\\A\\").expanded);
    EXPECT_THAT(capture(), testing::SizeIs(6)) << "and again, with everything read";
    EXPECT_THAT(errorsShown(), IsEmpty());
}

TEST_F(SourceCapture, AWhollySelectedDriveComesBackPurpleAndKeepsItsLines)
{
    put({"D:\\A\\x", "D:\\f"});
    edit({"D:\\", "D:\\A\\*", "D:\\f"});
    EXPECT_EQ(look("D:\\"), "+p");
    EXPECT_THAT(capture(), ElementsAre("D:\\A\\", "D:\\f"));
}

TEST_F(SourceCapture, AFolderThatVanishedWhileItsContentsAreTakenIsReported)
{
    put({"D:\\P\\S\\a", "D:\\P\\S\\b", "D:\\z"});
    edit({"D:\\", "D:\\P\\", "D:\\P\\S\\", "D:\\P\\S\\a", "D:\\z"});
    expand("D:\\");
    expand("D:\\P\\");
    disk.removeTree("D:\\P\\S");
    EXPECT_THAT(capture(), ElementsAre("D:\\z"));
    EXPECT_THAT(errorsShown(), ElementsAre("tvwDirectory_Expand: Error occured while expanding the "
                                           "tree view node process"));
}

TEST_F(SourceCapture, DotsShowThatWalksGoOn)
{
    build({"D:\\a\\1", "D:\\a\\2"});
    expand("D:\\a\\");
    std::vector<std::string> texts;
    form.SaveProgressStep = 4;
    for (int i = 0; i < 5; ++i) {
        SubLevelFolderChkUnExpandedNode(editing, "D:\\a", tree.indexOf(at("D:\\a\\")));
        texts.push_back(frame.panel1.text);
    }
    EXPECT_THAT(texts,
                ElementsAre("Saving Profile....", "Saving Profile.....", "Saving Profile......",
                            "Saving Profile...", "Saving Profile...."));
    tick("D:\\a\\");
    capture();
    EXPECT_EQ(frame.panel1.text, "Saving Profile...") << "nothing was walked";
}

TEST_F(SourceCapture, TheBarNeverLeavesItsRange)
{
    build({"D:\\a"});
    tick("D:\\a");
    frame.pb.value = 90;
    capture();
    EXPECT_EQ(frame.pb.value, 100);
}

TEST_F(SourceCapture, NamesOfOddBytesAreTakenAsTheyAre)
{
    build({"D:\\\xff\xfe", "D:\\caf\xc3\xa9\\x"});
    tick("D:\\");
    EXPECT_THAT(capture(), ElementsAre("D:\\caf\xc3\xa9\\", "D:\\\xff\xfe"));
}

// ---- the view

TEST_F(SourceCapture, AViewShowsWhatWasSelectedAndStopsAtWholeFolders)
{
    view({"D:\\", "D:\\all\\*", "D:\\part\\", "D:\\part\\f", "D:\\g"});
    expand("D:\\");
    EXPECT_THAT(shown(), ElementsAre("+g D:", "+g all", "+0 part", "+p ", "+g g"))
        << "the empty child is purple and not its folder";
    EXPECT_EQ(at("D:\\all\\").children(), 0U) << "it cannot be opened";
    EXPECT_EQ(at("D:\\all\\").image, 4);
    EXPECT_THAT(icons.asked, ElementsAre("D:\\g"));
    expand("D:\\part\\");
    EXPECT_EQ(look("D:\\part\\f"), "+g");
    EXPECT_THAT(errorsShown(), IsEmpty());
    collapse("D:\\");
    expand("D:\\");
    EXPECT_EQ(tree.count(), 5U) << "opened again it adds nothing";
}

TEST_F(SourceCapture, LinesOfOneFolderThatFollowEachOtherGiveOneNode)
{
    view({"D:\\", "D:\\A\\", "D:\\A\\1", "D:\\A\\2", "D:\\B\\*"});
    expand("D:\\");
    EXPECT_THAT(shown(), ElementsAre("+g D:", "+0 A", "+p ", "+g B"));
}

TEST_F(SourceCapture, ALaterLineOfAFolderFailsBehindAnother)
{
    view({"D:\\", "D:\\A\\", "D:\\A\\1", "D:\\B\\*", "D:\\A\\2", "D:\\z"});
    expand("D:\\");
    EXPECT_THAT(errorsShown(), ElementsAre("OpenProf: Error occured while expanding the tree view "
                                           "node process"));
    EXPECT_EQ(tree.find("D:\\z"), nullptr);
}

TEST_F(SourceCapture, AFolderWhoseNameEndsInTheOneBeforeIsNotShown)
{
    // The items are searched for the last name as a text: `MyData\` holds `Data\`.
    view({"D:\\", "D:\\Data\\*", "D:\\MyData\\*", "D:\\Z\\*"});
    expand("D:\\");
    EXPECT_THAT(shown(), ElementsAre("+g D:", "+g Data", "+g Z"));
}

TEST_F(SourceCapture, AnEmptyItemEndsTheView)
{
    view({"D:\\", "D:\\a"});
    store.opened.clxnOpenedSources.add("");
    store.opened.clxnOpenedSources.add("D:\\b", "D:\\b");
    expand("D:\\");
    EXPECT_THAT(shown(), ElementsAre("+g D:", "+g a"));
}

} // namespace
} // namespace vardelin::editor
