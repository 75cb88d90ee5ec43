#include "review_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vardelin::archive {
namespace {

using state::ReviewRow;
using test::ReviewRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kFiles = "Files And Folders";
constexpr std::string_view kOther = "Other Data & Settings";

TEST(ReviewRows, OpenLevelByLevel)
{
    ReviewRig rig;
    rig.put({"C\\work\\report.doc_FULL_1", "C\\work\\report.doc_Ver7_1",
             "C\\work\\sub\\x.txt_FULL_1", "C\\on drive.txt_FULL_1", "D\\b\\y.txt_Ver12_1"});
    rig.load();

    rig.click({kFiles});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  +C:", "  +D:"));
    EXPECT_EQ(rig.form.lstRestore[1].key, "C:\\");

    rig.click({"C:\\", "C:\\work\\", "C:\\work\\sub\\"});
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "     on drive.txt_Org", "    -work",
                            "       report.doc_Org", "       report.doc_007", "      -sub",
                            "         x.txt_Org", "  +D:"));
    EXPECT_EQ(rig.row("C:\\work\\report.doc_007").text, "report.doc_007");
    EXPECT_TRUE(rig.row("C:\\work\\report.doc_000").file);
    EXPECT_FALSE(rig.row("C:\\work\\").file);
    EXPECT_FALSE(rig.state.bTopLevel);
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

TEST(ReviewRows, CloseWithAllThatStandsBelow)
{
    ReviewRig rig;
    rig.put({"C\\a\\x_FULL_1", "C\\a\\b\\y_FULL_1", "D\\z_FULL_1"});
    rig.load();
    rig.click({kFiles, "C:\\", "C:\\a\\", "C:\\a\\b\\"});

    const auto revision = rig.form.rowsRevision;
    rig.click({"C:\\"});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  +C:", "  +D:"));
    EXPECT_GT(rig.form.rowsRevision, revision);

    rig.click({"C:\\"});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "    +a", "  +D:"));
    rig.click({kFiles});
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
}

TEST(ReviewRows, ShowTheSettingsGroupsOfTheArchive)
{
    ReviewRig rig;
    rig.put({"OtherData\\Registry Settings\\", "OtherData\\Desktop Settings\\", "OtherData\\a file",
             "C\\a_FULL_1"});
    rig.load();
    rig.click({kOther});
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders", "-Other Data & Settings",
                                         "   Desktop Settings", "   Registry Settings"));
    EXPECT_EQ(rig.form.lstRestore[2].key, "Desktop Settings");
    EXPECT_TRUE(rig.state.bTopLevel);

    rig.click({"Desktop Settings"}); // has no state icon
    EXPECT_EQ(rig.form.lstRestore.size(), 4U);
    rig.click({kOther});
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders", "+Other Data & Settings"));
}

TEST(ReviewRows, OfASourceFolderNamedLikeAGroupAreFolders)
{
    ReviewRig rig;
    rig.put({"C\\Files And Folders\\a_FULL_1", "C\\Other Data & Settings\\b_FULL_1"});
    rig.load();
    rig.click({kFiles, "C:\\", "C:\\Files And Folders\\", "C:\\Other Data & Settings\\"});
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "    -Files And Folders", "       a_Org",
                            "    -Other Data & Settings", "       b_Org"));
}

// A name of the same start is another folder, and so is one in other letters where the disk says
// so.
TEST(ReviewRows, HoldTheirOwnChildrenAlone)
{
    ReviewRig rig;
    rig.put({"C\\work\\a_FULL_1", "C\\workshop\\b_FULL_1", "C\\Work\\c_FULL_1",
             "C\\x\\work\\d_FULL_1"});
    rig.load();
    rig.click({kFiles, "C:\\", "C:\\work\\", "C:\\Work\\"});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "    -Work", "       c_Org",
                                         "    -work", "       a_Org", "    +workshop", "    +x"));
}

// A line counts wherever the key stands in it; only a list that somebody wrote has such lines.
TEST(ReviewRows, HoldWhatStandsBehindTheirKeyInALine)
{
    ReviewRig rig;
    rig.profile.bCompressFiles = false;
    rig.putFile("C:\\App\\Data\\ReviewFiles.txt", "Files And Folders\\C:\\a_000\r\n"
                                                  "Files And Folders\\D:\\x\\C:\\b_000\r\n");
    rig.load();
    rig.click({kFiles, "C:\\"});
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "     a_Org", "     b_Org", "  +D:"));
    EXPECT_EQ(rig.form.lstRestore[3].key, "D:\\x\\C:\\b_000");
}

// The marks on the items tell files from folders, with or without a dot in the name.
TEST(ReviewRows, TellFilesFromFoldersWhateverTheirNames)
{
    ReviewRig rig;
    rig.put({"C\\README_FULL_1", "C\\my.folder\\a.b_FULL_1", "C\\v1.2_FULL_1", "C\\_FULL_1",
             "C\\.profile_FULL_1"});
    rig.load();
    rig.click({kFiles, "C:\\"});
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "     .profile_Org", "     README_Org",
                            "     _Org", "    +my.folder", "     v1.2_Org"));
}

// Only the marks that were put there are taken off, never a name's own characters.
TEST(ReviewRows, KeepQuestionMarksAndBarsOfNames)
{
    ReviewRig rig;
    rig.put({"C\\x_FULL_1"});
    rig.load();
    rig.putFile("C:\\App\\model.txt", "Files And Folders\\C:\\d?|\\e_000\r\n");
    rig.click({kFiles});
    rig.state.clxnChildKeys.add("C:\\q?|_000");
    base::TextCollection items;
    items.add("q?|_000|?");
    std::size_t index = 1;
    std::size_t after = 1;
    AddChildItems(rig.review, index, after, 1, true, {}, items);
    EXPECT_EQ(rig.form.lstRestore[1].text, "q?|_Org");
    EXPECT_EQ(after, 2U);
    EXPECT_EQ(index, 1U);
}

TEST(ReviewRows, TakeANewLookAtTheModelEachTime)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    rig.load();
    rig.putFile("C:\\App\\model.txt", "Files And Folders\\E:\\b_000\r\n"
                                      "Files And Folders\\F:\\b_000\n"
                                      "Files And Folders\\E:\\c_000\r\n"
                                      "Files And Folders\\F:\\c_000");
    rig.click({kFiles});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  +E:", "  +F:"));
}

TEST(ReviewRows, LeaveOutWhatWasDeletedSinceTheReviewWasOpened)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1", "C\\a_Ver1_1", "C\\ab_Ver1_1"});
    rig.load();
    const std::string line = "Files And Folders\\C:\\a_001";
    rig.state.clxnDeleted.add(line, line);
    rig.click({kFiles, "C:\\"});
    EXPECT_EQ(rig.form.lstRestore.size(), 5U) << "no deletion was asked for";

    rig.click({"C:\\"});
    rig.state.bDeleteDone = true;
    rig.click({"C:\\"});
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "     a_Org", "     ab_001"));
}

// ---- columns

TEST(ReviewColumns, TellVersionSizeAndDate)
{
    ReviewRig rig;
    rig.put({"C\\w\\a.txt_FULL_1", "C\\w\\a.txt_Ver7_1"});
    rig.putFile(ReviewRig::inArchive("C\\w\\a.txt_Ver7_1"), std::string(2047, 'x'));
    rig.load();
    rig.click({kFiles, "C:\\", "C:\\w\\"});

    const ReviewRow& full = rig.row("C:\\w\\a.txt_000");
    EXPECT_EQ(versionText(full), "Version Org");
    EXPECT_EQ(modifiedText(full), "True");
    EXPECT_EQ(full.size, "3 B");
    EXPECT_EQ(full.sizeBytes, 3U);
    EXPECT_EQ(full.createdOn, "1/1/2026 12:00:00 AM");
    const ReviewRow& version = rig.row("C:\\w\\a.txt_007");
    EXPECT_EQ(versionText(version), "Version 007");
    EXPECT_EQ(version.size, "1 KB");
    const ReviewRow& folder = rig.row("C:\\w\\");
    EXPECT_EQ(versionText(folder), "");
    EXPECT_EQ(modifiedText(folder), "");
    EXPECT_EQ(folder.size + folder.createdOn, "");
}

TEST(ReviewColumns, ShowTheDateInThePersonsZone)
{
    ReviewRig rig;
    rig.disk.setNow(1'057'223'103'000'000'000); // 3 July 2003, 9:05:03 UTC
    rig.disk.setTick(0);
    rig.put({"C\\a.txt_FULL_1"});
    rig.clock.setZoneOffset(std::chrono::hours(5));
    rig.load();
    rig.click({kFiles, "C:\\"});
    EXPECT_EQ(rig.row("C:\\a.txt_000").createdOn, "7/3/2003 2:05:03 PM");
}

TEST(ReviewColumns, StayEmptyWithoutTheFile)
{
    ReviewRig rig;
    rig.put({"C\\w\\a.txt_FULL_1", "C\\w\\b.txt_FULL_1", "C\\gone\\c_FULL_1"});
    rig.load();
    rig.disk.removeFile(ReviewRig::inArchive("C\\w\\a.txt_FULL_1"));
    rig.disk.removeTree(ReviewRig::inArchive("C\\gone"));
    rig.click({kFiles, "C:\\", "C:\\w\\", "C:\\gone\\"});
    EXPECT_EQ(rig.row("C:\\w\\a.txt_000").size, "");
    EXPECT_EQ(rig.row("C:\\w\\a.txt_000").createdOn, "");
    EXPECT_EQ(rig.row("C:\\w\\b.txt_000").size, "3 B");
    EXPECT_EQ(rig.row("C:\\gone\\c_000").size, "");
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

// The mark of a version is looked for as text, so the folder's order decides whose size is shown.
TEST(ReviewColumns, TakeTheFirstFileThatHoldsTheMark)
{
    ReviewRig rig;
    rig.put({"C\\a.txt_Ver71_1", "C\\data.txt_Ver7_1"});
    rig.putFile(ReviewRig::inArchive("C\\a.txt_Ver71_1"), std::string(71, 'x'));
    rig.load();
    rig.putFile("C:\\App\\model.txt", "Files And Folders\\C:\\a.txt_007\r\n");
    rig.click({kFiles, "C:\\"});
    EXPECT_EQ(rig.row("C:\\a.txt_007").size, "71 B");

    rig.putFile(ReviewRig::inArchive("C\\A.TXT_vER7_0"), "seven");
    rig.click({"C:\\", "C:\\"});
    EXPECT_EQ(rig.row("C:\\a.txt_007").size, "5 B") << "in any case, and 7 stands before 71";

    rig.disk.removeFile(ReviewRig::inArchive("C\\a.txt_Ver71_1"));
    rig.disk.removeFile(ReviewRig::inArchive("C\\A.TXT_vER7_0"));
    rig.click({"C:\\", "C:\\"});
    EXPECT_EQ(rig.row("C:\\a.txt_007").size, "3 B") << "the other file's name ends in the mark";
}

TEST(ReviewColumns, NeedOneListingAFolder)
{
    ReviewRig rig;
    for (int i = 0; i < 50; ++i)
        rig.put({"C\\w\\file" + std::to_string(i) + "_FULL_1"});
    rig.load();
    rig.click({kFiles, "C:\\"});
    rig.script.reset();
    rig.click({"C:\\w\\"});
    EXPECT_EQ(rig.script.countOf("folder.list"), 1U);
    EXPECT_EQ(rig.form.lstRestore.size(), 53U);
}

struct SizeCase {
    std::uint64_t bytes;
    std::string_view text;
};

TEST(GetFileSize, IsCutAndNeverTellsMegabytes)
{
    const SizeCase cases[] = {
        {0, "0 B"},     {1, "1 B"},     {1023, "1023 B"},     {1024, "1 KB"},
        {2047, "1 KB"}, {2048, "2 KB"}, {1048576, "1024 KB"}, {5'000'000'000, "4882812 KB"}};
    for (const SizeCase& one : cases)
        EXPECT_EQ(sizeText(one.bytes), one.text);
}

TEST(GetFileSize, ReportsAFileThatIsNotThere)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    EXPECT_EQ(GetFileSize(rig.review, ReviewRig::inArchive("C\\a_FULL_1")), "3 B");
    EXPECT_THAT(rig.entries(), ElementsAre("GetFileSize End 2"));
    EXPECT_EQ(GetFileSize(rig.review, ReviewRig::inArchive("C\\b_FULL_1")), "0B");
    EXPECT_THAT(rig.errorsShown(), ElementsAre("53 GetFileSize: Error occurred while getting the "
                                               "File Size to display in the Storage"));
}

// A file that goes between the look at its folder and the look at itself.
TEST(ReviewColumns, ReportAFileThatVanishesMeanwhile)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    rig.load();
    rig.click({kFiles});
    rig.script.onCallsNamed("folder.find", [&](const platform::CallScript::Call& call) {
        if (call.subject.ends_with("a_FULL_1") && rig.inStore("C\\a_FULL_1"))
            rig.disk.removeFile(ReviewRig::inArchive("C\\a_FULL_1"));
    });
    rig.click({"C:\\"});
    EXPECT_EQ(rig.row("C:\\a_000").size, "0B");
    EXPECT_EQ(rig.row("C:\\a_000").createdOn, "");
    EXPECT_EQ(rig.dialog.shown.size(), 1U);
}

// ---- what rows ask of the window

TEST(ReviewRows, AskForTheirLastChildToBeSeen)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1", "C\\b_FULL_1", "D\\c_FULL_1"});
    rig.load();
    EXPECT_TRUE(rig.form.bringIntoView);
    rig.click({kFiles});
    rig.form.bringIntoView = false;
    rig.click({"C:\\"});
    EXPECT_TRUE(rig.form.bringIntoView);
    EXPECT_EQ(rig.form.firstInView, 1U);
    EXPECT_EQ(rig.form.lastInView, 3U);
    EXPECT_EQ(rig.form.lstRestore[3].text, "b_Org");
}

TEST(ReviewRows, MoveTheFramesBar)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1", "C\\b_FULL_1", "C\\c_FULL_1"});
    rig.load();
    rig.click({kFiles});
    rig.clock.script().onCallsNamed("clock.steady", [&](const platform::CallScript::Call&) {
        rig.clock.advance(std::chrono::milliseconds(60));
    });
    std::vector<double> values;
    rig.messageLoop.onYield = [&] {
        if (rig.frame.pb.maximum < 100)
            values.push_back(rig.frame.pb.value / rig.frame.pb.maximum);
        EXPECT_TRUE(rig.form.hourglass);
    };
    rig.click({"C:\\"});
    EXPECT_THAT(values, ElementsAre(1.0 / 3, 2.0 / 3, 1.0));
    EXPECT_EQ(rig.frame.pb.maximum, 100);
    EXPECT_EQ(rig.frame.pb.value, 0);
    EXPECT_FALSE(rig.form.hourglass);
}

TEST(ReviewRows, AreLeftAloneByAClickWhileOthersAreMade)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1", "D\\b_FULL_1"});
    rig.load();
    rig.click({kFiles});
    rig.clock.script().onCallsNamed("clock.steady", [&](const platform::CallScript::Call&) {
        rig.clock.advance(std::chrono::milliseconds(60));
    });
    rig.messageLoop.onYield = [&] { rowButtonClicked(rig.review, 1); };
    rig.click({"C:\\"});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "     a_Org", "  +D:"));
}

TEST(ReviewRows, ComeIntoNoListThatWasEmptiedMeanwhile)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1", "D\\b_FULL_1"});
    rig.load();
    rig.clock.script().onCallsNamed("clock.steady", [&](const platform::CallScript::Call&) {
        rig.clock.advance(std::chrono::milliseconds(60));
    });
    rig.messageLoop.onYield = [&] { rig.form.lstRestore.clear(); };
    rig.click({kFiles});
    EXPECT_THAT(rig.shown(), IsEmpty());
    EXPECT_FALSE(rig.form.busy);
    EXPECT_FALSE(rig.errorsShown().empty());
}

TEST(ReviewRows, AreLeftAloneByAClickBesideThem)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    rig.load();
    rowButtonClicked(rig.review, 0);
    rowButtonClicked(rig.review, 2);
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
}

TEST(ReviewRows, KnowWhatTheyStandUnder)
{
    ReviewRig rig;
    rig.put({"C\\w\\a_FULL_1", "C\\z_FULL_1"});
    rig.load();
    rig.click({kFiles, "C:\\", "C:\\w\\"});
    // Files And Folders, C:, w, a_Org, z_Org
    EXPECT_EQ(parentRow(rig.form, 1), 0U);
    EXPECT_EQ(parentRow(rig.form, 2), 1U);
    EXPECT_EQ(parentRow(rig.form, 4), 3U);
    EXPECT_EQ(parentRow(rig.form, 5), 2U);
    EXPECT_EQ(parentRow(rig.form, 6), 0U);
    EXPECT_EQ(parentRow(rig.form, 0), 0U);
}

TEST(RemoveChildItems, StopsBehindTheLastRowThatItIsGiven)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1", "C\\b_FULL_1", "C\\c_FULL_1"});
    rig.load();
    rig.click({kFiles, "C:\\"});
    RemoveChildItems(rig.review, 2, 4);
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "     c_Org"));
    RemoveChildItems(rig.review, 9, 9);
    EXPECT_THAT(rig.errorsShown(), ElementsAre("9 RemoveChildItems: Error occurred when removed "
                                               "the childitems in Storage Form"));
}

// ---- failures

TEST(ReviewRows, StayClosedWithoutTheModel)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    rig.load();
    rig.disk.removeFile("C:\\App\\model.txt");
    rig.click({kFiles});
    EXPECT_THAT(rig.errorsShown(),
                ElementsAre("53 lstRestore_MouseDown: Error Occurred while Opening the File"));
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
    EXPECT_FALSE(rig.form.busy);
}

TEST(ReviewRows, StayClosedWithALockedModel)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    rig.load();
    rig.disk.setUnreadable("C:\\App\\model.txt");
    rig.click({kFiles});
    EXPECT_THAT(rig.errorsShown(),
                ElementsAre("70 lstRestore_MouseDown: Error Occurred while Opening the File"));
    rig.disk.setUnreadable("C:\\App\\model.txt", false);
    rig.click({kFiles});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  +C:"));
}

TEST(ReviewRows, SayWhereReadingStopped)
{
    const std::pair<int, std::string> cases[] = {
        {62, "The File is Reached the End of File while expanding the directory node  to display "
             "the VDStorage Form"},
        {57, "Error occurred while expanding the childitems"},
    };
    for (const auto& [number, sentence] : cases) {
        ReviewRig rig;
        rig.put({"C\\a_FULL_1"});
        rig.load();
        rig.script.failCallsNamed("file.read", number, "model.txt");
        rig.click({kFiles});
        EXPECT_THAT(rig.errorsShown(),
                    ElementsAre(std::to_string(number) + " lstRestore_MouseDown: " + sentence));
        EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
    }
}

TEST(ReviewRows, ReportSettingsThatHaveVanished)
{
    ReviewRig rig;
    rig.put({"OtherData\\IE Favorites\\"});
    rig.load();
    rig.disk.removeTree(ReviewRig::inArchive("OtherData"));
    rig.click({kOther});
    EXPECT_THAT(rig.errorsShown(), ElementsAre("76 lstRestore_MouseDown: Error occurred while "
                                               "expanding the childitems"));
    EXPECT_THAT(rig.shown(), ElementsAre("+Other Data & Settings"));
}

TEST(AddChildItems, AddsNothingWhereAnItemIsMissing)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    rig.load();
    base::TextCollection one;
    one.add("a_000?");
    rig.state.clxnChildKeys.add("C:\\a_000");
    std::size_t index = 1;
    std::size_t after = 1;
    AddChildItems(rig.review, index, after, 2, true, {}, one);
    EXPECT_THAT(rig.errorsShown(), ElementsAre("9 AddChildItems: Error Occurred while Loading the "
                                               "Childitems in ListView of VDStorage"));
    EXPECT_EQ(rig.form.lstRestore.size(), 1U);
    EXPECT_EQ(after, 1U);
    EXPECT_EQ(rig.frame.pb.maximum, 100);
}

// ---- the pop-up menu and the status bar

TEST(ReviewMenu, OpensForFilesFoldersAndSettings)
{
    ReviewRig rig;
    rig.put({"C\\w\\a_FULL_1", "OtherData\\IE Favorites\\"});
    rig.load();
    rig.click({kFiles, "C:\\", kOther});
    for (const std::string_view key : {"C:\\", "C:\\w\\", "IE Favorites"}) {
        rig.select({key});
        EXPECT_TRUE(rowsRightClicked(rig.review)) << key;
    }
    EXPECT_THAT(rig.messageBoxes.texts(), IsEmpty());
}

TEST(ReviewMenu, DoesNotOpenForAGroup)
{
    ReviewRig rig;
    rig.put({"C\\my Files And Folders.txt_FULL_1", "C\\b_FULL_1", "OtherData\\IE Favorites\\"});
    rig.load();
    rig.click({kFiles, "C:\\"});
    const auto refused = [&](std::initializer_list<std::string_view> keys) {
        rig.clearBoxes();
        rig.select(keys);
        EXPECT_FALSE(rowsRightClicked(rig.review));
        EXPECT_THAT(rig.messageBoxes.texts(),
                    ElementsAre("Select any Files\\Folders [or] Settings to restore"));
    };
    refused({kFiles});
    refused({kOther});
    refused({"C:\\b_000", kFiles});
    refused({});
    // The text is looked into, wherever it stands.
    refused({"C:\\my Files And Folders.txt_000"});
}

TEST(ReviewStatus, TellsRowsAndTheSizeOfWhatIsSelected)
{
    ReviewRig rig;
    rig.put({"C\\w\\a_FULL_1", "C\\b_FULL_1", "C\\c_FULL_1"});
    rig.putFile(ReviewRig::inArchive("C\\c_FULL_1"), std::string(1'600'000, 'x'));
    rig.load();
    EXPECT_EQ(selectionText(rig.form), "1 row");
    rig.click({kFiles, "C:\\"});
    EXPECT_EQ(selectionText(rig.form), "5 rows");
    rig.select({"C:\\w\\"});
    EXPECT_EQ(selectionText(rig.form), "5 rows, 1 selected");
    rig.select({"C:\\w\\", "C:\\b_000", "C:\\c_000"});
    EXPECT_EQ(selectionText(rig.form), "5 rows, 3 selected, 1.5 MB");
    EXPECT_EQ(selectionTotals(rig.form).bytes, 1'600'003U);
    rig.select({"C:\\b_000"});
    EXPECT_EQ(selectionText(rig.form), "5 rows, 1 selected, 3 B");
}

} // namespace
} // namespace vardelin::archive
