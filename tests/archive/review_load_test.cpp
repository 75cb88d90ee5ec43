#include "review_rig.h"

#include "archive/review_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace vardelin::archive {
namespace {

using test::ReviewRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kReviewFiles = "C:\\App\\Data\\ReviewFiles.txt";

TEST(ReviewLoad, ShowsTheGroupsOfAnArchiveClosed)
{
    ReviewRig rig;
    rig.put({"Work.vdp", "C\\work\\a.txt_FULL_1", "OtherData\\IE Favorites\\"});

    rig.load();

    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders", "+Other Data & Settings"));
    EXPECT_EQ(rig.form.lstRestore[0].key, "Files And Folders");
    EXPECT_EQ(rig.form.lstRestore[1].key, "Other Data & Settings");
    EXPECT_TRUE(rig.form.loaded);
    EXPECT_FALSE(rig.form.busy);
    EXPECT_FALSE(rig.form.hourglass);
    EXPECT_EQ(rig.state.sStoreRoot, "D:\\Backup\\Work\\");
    EXPECT_TRUE(rig.state.bTopLevel);
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
    EXPECT_THAT(rig.messageBoxes.texts(), IsEmpty());
}

TEST(ReviewLoad, ShowsFilesAlone)
{
    ReviewRig rig;
    rig.put({"C\\work\\a.txt_FULL_1"});
    rig.load();
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
}

TEST(ReviewLoad, ShowsSettingsAlone)
{
    ReviewRig rig;
    rig.put({"OtherData\\IE Favorites\\"});
    rig.load();
    EXPECT_THAT(rig.shown(), ElementsAre("+Other Data & Settings"));
    EXPECT_FALSE(rig.state.bFilesExist);
}

TEST(ReviewLoad, ShowsNoRowForAnArchiveWithTheProfilesCopyAlone)
{
    ReviewRig rig;
    rig.put({"Work.vdp"});
    rig.load();
    EXPECT_THAT(rig.shown(), IsEmpty());
    EXPECT_TRUE(rig.form.loaded);
    EXPECT_EQ(rig.model(), "");
}

TEST(ReviewLoad, SaysWhatThePanelOfHelpSays)
{
    ReviewRig rig;
    rig.put({"Work.vdp"});
    rig.load();
    EXPECT_EQ(rig.form.caption, "Vardelin Storage");
    EXPECT_EQ(rig.form.Label33.caption,
              "Restores the compressed data where you can review the backup files and select files "
              "to be restored. ");
    EXPECT_EQ(rig.form.Label34.caption, "Displays a list of compressed files, which have been "
                                        "backed up for the profile till date. ");
    EXPECT_EQ(rig.form.Label35.caption,
              "After selecting the desired drive,folders/files which are to be restored.");
    EXPECT_EQ(rig.form.Label36.caption,
              "Restore can be done by right-clicking on the selected file[s] which displays a "
              "popup window to select the original location or to alternate location.");
    EXPECT_EQ(rig.form.Label37.caption, "Delete option is used to delete the selected "
                                        "files/folders from the backup data .");
}

// Blocks of one folder stay together and tags come 000, 001, 010, whatever order the walk has.
TEST(ReviewLoad, WritesTheLinesSortedByTheirBytes)
{
    ReviewRig rig;
    rig.put({"C\\work\\a.txt_Ver10_1", "C\\work\\a.txt_Ver2_1", "C\\work\\a.txt_FULL_1",
             "C\\Work\\z.txt_FULL_1", "C\\Zoo\\a.txt_FULL_1", "C\\work\\sub\\b.txt_FULL_1"});
    rig.load();
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\Work\\z.txt_000\r\n"
                           "Files And Folders\\C:\\Zoo\\a.txt_000\r\n"
                           "Files And Folders\\C:\\work\\a.txt_000\r\n"
                           "Files And Folders\\C:\\work\\a.txt_002\r\n"
                           "Files And Folders\\C:\\work\\a.txt_010\r\n"
                           "Files And Folders\\C:\\work\\sub\\b.txt_000\r\n");
}

// The list of the walk is whole on the disk before anything reads it, and gone before the model is
// written anew.
TEST(ReviewLoad, WorksInItsOrder)
{
    ReviewRig rig;
    rig.put({"C\\a.txt_FULL_1"});
    rig.putFile("C:\\App\\Model.txt", "of another profile"); // one file, whatever the capitals
    std::vector<std::string> order;
    const auto note = [&](const platform::CallScript::Call& call) {
        if (call.subject.find("C:\\App") == 0)
            order.push_back(call.name + " " + std::string(platform::leafOf(call.subject)));
    };
    rig.script.onCallsNamed("folder.open", note);
    rig.script.onCallsNamed("folder.removeFile", note);

    rig.load();

    EXPECT_THAT(order,
                ElementsAre("folder.open ReviewFiles.txt", "folder.open ReviewFiles.txt",
                            "folder.removeFile ReviewFiles.txt", "folder.removeFile Model.txt",
                            "folder.open model.txt", "folder.open model.txt"));
    EXPECT_FALSE(rig.disk.fileExists(kReviewFiles));
    EXPECT_FALSE(rig.disk.fileExists("C:\\App\\Model.txt"));
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\a.txt_000\r\n");
    EXPECT_EQ(rig.state.clxnArchiveFiles.count(), 0U);
}

TEST(ReviewLoad, IsRefusedWhereThereIsNoArchive)
{
    for (const std::string_view destination : {"D:\\Elsewhere", ""}) {
        ReviewRig rig;
        rig.profile.sDestinationPath = destination;
        rig.load();
        EXPECT_THAT(rig.messageBoxes.texts(),
                    ElementsAre("Backup does not exist for this Profile. Execute BackUp for This "
                                "Profile to view BackUpStorage"));
        EXPECT_EQ(rig.boxes().front().title, "Vardelin");
        EXPECT_FALSE(rig.form.loaded);
        EXPECT_FALSE(rig.disk.fileExists("C:\\App\\model.txt"));
        EXPECT_THAT(rig.errorsShown(), IsEmpty());
    }
}

TEST(ReviewLoad, DeletesAnArchiveWithNothingInIt)
{
    ReviewRig rig;
    rig.load();
    EXPECT_THAT(rig.messageBoxes.texts(),
                ElementsAre("Backup does not exist for this profile. Execute Backup for this "
                            "profile to view BackupStorage"));
    EXPECT_FALSE(rig.form.loaded);
    EXPECT_FALSE(rig.inStore(""));
    EXPECT_TRUE(rig.disk.folderExists("D:\\Backup"));
}

// A network drive keeps the file by which a run had locked the folder.
TEST(ReviewLoad, DeletesAnArchiveWithTheFileOfItsLockAlone)
{
    for (const bool before : {true, false}) {
        ReviewRig rig;
        const std::string lockFile = ReviewRig::inArchive(platform::kLockFileName);
        if (before)
            rig.putFile(lockFile, "");
        else
            rig.script.onCallsNamed("fs.lockFolder", [&](const platform::CallScript::Call&) {
                rig.putFile(lockFile, "");
            });
        rig.load();
        EXPECT_EQ(rig.messageBoxes.texts().size(), 1U) << before;
        EXPECT_FALSE(rig.form.loaded) << before;
        EXPECT_FALSE(rig.inStore("")) << before;
        EXPECT_THAT(rig.errorsShown(), IsEmpty()) << before;
    }
}

// The first file of a run comes between the look at the folder and its lock.
TEST(ReviewLoad, LeavesAnArchiveThatIsNotEmptyAnyMore)
{
    ReviewRig rig;
    rig.script.onCallsNamed(
        "fs.lockFolder", [&](const platform::CallScript::Call&) { rig.put({"C\\a.txt_FULL_1"}); });
    rig.load();
    EXPECT_TRUE(rig.inStore("C\\a.txt_FULL_1"));
    EXPECT_FALSE(rig.form.loaded);
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

// A run has made it and looks for its first file, maybe started by a timetable.
TEST(ReviewLoad, LeavesAnEmptyArchiveToTheRunThatHoldsIt)
{
    ReviewRig rig;
    const auto run = rig.disk.lockFolder("D:\\Backup\\Work");
    rig.load();
    EXPECT_EQ(rig.messageBoxes.texts().size(), 1U);
    EXPECT_FALSE(rig.form.loaded);
    EXPECT_TRUE(rig.inStore(""));
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

TEST(ReviewLoad, OpensAnArchiveWithAFolderAlone)
{
    ReviewRig rig;
    rig.put({"C\\"});
    rig.load();
    EXPECT_TRUE(rig.form.loaded);
    EXPECT_THAT(rig.messageBoxes.texts(), IsEmpty());
    EXPECT_TRUE(rig.inStore("C"));
}

// ---- with compression off

TEST(ReviewLoadUncompressed, TakesTheListAsTheBackupLeftIt)
{
    ReviewRig rig;
    rig.profile.bCompressFiles = false;
    rig.put({"C\\walked.txt_FULL_1", "OtherData\\IE Favorites\\"});
    rig.putFile(kReviewFiles, "Files And Folders\\C:\\b.txt_000\r\nFiles And Folders\\C:\\a.txt_"
                              "000\r\n");
    rig.load();
    EXPECT_EQ(rig.model(),
              "Files And Folders\\C:\\a.txt_000\r\nFiles And Folders\\C:\\b.txt_000\r\n");
    // The root is known, so that size and date, the settings and deletion work.
    EXPECT_EQ(rig.state.sStoreRoot, "D:\\Backup\\Work\\");
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders", "+Other Data & Settings"));
}

// A group is what stands in front of the first backslash, in any case; only a list that somebody
// wrote has others than ours.
TEST(ReviewLoadUncompressed, ShowsEachGroupOnceInAnyCase)
{
    ReviewRig rig;
    rig.profile.bCompressFiles = false;
    rig.putFile(kReviewFiles, "MAIL\\C:\\a_000\r\nMail\\C:\\b_000\r\nmail\\C:\\c_000\r\n"
                              "Files And Folders\\C:\\d_000\r\n");
    rig.load();
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders", "+MAIL"));
}

// Without a line that can be read there are no files to show, and the settings stand alone.
TEST(ReviewLoadUncompressed, ShowsSettingsAloneBesideOddLines)
{
    ReviewRig rig;
    rig.profile.bCompressFiles = false;
    rig.put({"OtherData\\IE Favorites\\"});
    rig.putFile(kReviewFiles, "Files And Folders\\C:\\b.txt_1234\r\n");
    rig.load();
    EXPECT_THAT(rig.shown(), ElementsAre("+Other Data & Settings"));
}

TEST(ReviewLoadUncompressed, ShowsNothingForAnEmptyList)
{
    ReviewRig rig;
    rig.profile.bCompressFiles = false;
    rig.putFile(kReviewFiles, "");
    rig.load();
    EXPECT_THAT(rig.shown(), IsEmpty());
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

// The list is gone with the first look, so a second one needs a new backup.
TEST(ReviewLoadUncompressed, EndsInTheErrorPathWithoutTheList)
{
    ReviewRig rig;
    rig.profile.bCompressFiles = false;
    rig.load();
    EXPECT_THAT(rig.errorsShown(),
                ElementsAre("53 frmVDStorage_Load: The File Does Not Exist while loading the "
                            "VDStorage Form"));
    EXPECT_EQ(rig.dialog.shown.front().txtModName.text, "frmVDStorage");
    EXPECT_THAT(rig.shown(), IsEmpty());
    EXPECT_FALSE(rig.form.busy);
}

// ---- odd lines and failures

TEST(ReviewLoad, KeepsTwoOddLinesAsRowsOfTheirOwn)
{
    ReviewRig rig;
    rig.put({"C\\a.txt_FULL_1", "C\\b.txt_Ver1234_1", "C\\c.txt_Ver_1"});
    rig.load();
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders", " Files And Folders\\C:\\b.txt_1234",
                                         " Files And Folders\\C:\\c.txt_"));
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\a.txt_000\r\n");

    rig.click({"Files And Folders\\C:\\b.txt_1234"}); // nothing opens there
    EXPECT_EQ(rig.form.lstRestore.size(), 3U);
}

// The table of odd lines has two places, and such an archive is none of ours.
TEST(ReviewLoad, EndsInTheErrorPathAtTheThirdOddLine)
{
    ReviewRig rig;
    rig.put({"C\\a.txt_FULL_1", "C\\b_Ver1234_1", "C\\c_Ver1234_1", "C\\d_Ver1234_1"});
    rig.load();
    EXPECT_THAT(rig.errorsShown(),
                ElementsAre("9 frmVDStorage_Load: Error While loading the VDStorage Form"));
    EXPECT_THAT(rig.shown(), IsEmpty());
}

TEST(ReviewLoad, ShowsWhatStandsInFrontOfANameThatCannotBeCut)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1", "C\\Version.txt", "C\\z_FULL_1"});
    rig.load();
    EXPECT_THAT(rig.errorsShown(), ElementsAre("5 WritingFileFromClxn: WritingFileFromClxn"));
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\a_000\r\n");
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
}

struct LoadFailure {
    int number;
    std::string_view sentence;
};

TEST(ReviewLoad, SaysByTheNumberWhatFailed)
{
    const LoadFailure cases[] = {
        {53, "The File Does Not Exist while loading the VDStorage Form"},
        {55, "The File associated with the current profile  is already Open when loading the "
             "VDStorage Form"},
        {62, "The File is Reached the End of File while reading to display the VDStorage Form"},
        {70, "Error While loading the VDStorage Form"},
    };
    for (const LoadFailure& one : cases) {
        ReviewRig rig;
        rig.put({"C\\a_FULL_1"});
        rig.script.failCallsNamed("file.read", one.number, "ReviewFiles.txt");
        rig.load();
        EXPECT_THAT(rig.errorsShown(),
                    ElementsAre(std::to_string(one.number) +
                                " frmVDStorage_Load: " + std::string(one.sentence)));
        EXPECT_TRUE(rig.form.loaded);
    }
}

TEST(ReviewLoad, ReportsALockedModel)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    rig.putFile("C:\\App\\model.txt", "old");
    rig.script.failCallsNamed("folder.removeFile", 70, "model.txt");
    rig.load();
    EXPECT_THAT(rig.errorsShown(),
                ElementsAre("70 frmVDStorage_Load: Error While loading the VDStorage Form"));
    EXPECT_THAT(rig.shown(), IsEmpty());
}

// Whichever call fails, the form comes to rest, says so, and a second try shows the archive.
TEST(ReviewLoad, ComesToRestWhateverCallFails)
{
    std::size_t calls = 0;
    for (std::size_t n = 1;; ++n) {
        ReviewRig rig;
        rig.put({"C\\w\\a_FULL_1", "OtherData\\IE Favorites\\"});
        rig.script.failCall(n, 57);
        rig.load();
        calls = rig.script.callCount();
        if (n > calls)
            break;
        EXPECT_FALSE(rig.form.busy) << n;
        rig.script.reset();
        rig.load();
        EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders", "+Other Data & Settings")) << n;
    }
    EXPECT_GT(calls, 10U);
}

TEST(ReviewLoad, ForgetsTheReviewBefore)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1"});
    rig.state.clxnDeleted.add("x", "x");
    rig.state.bDeleteDone = true;
    rig.load();
    rig.load();
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
    EXPECT_TRUE(rig.state.clxnDeleted.empty());
    EXPECT_FALSE(rig.state.bDeleteDone);
}

TEST(ReviewLoad, LetsTheWindowPaintMeanwhile)
{
    ReviewRig rig;
    rig.put({"C\\a_FULL_1", "C\\b_FULL_1"});
    rig.clock.script().onCallsNamed("clock.steady", [&](const platform::CallScript::Call&) {
        rig.clock.advance(std::chrono::milliseconds(60));
    });
    bool busy = true;
    rig.messageLoop.onYield = [&] {
        busy = busy && rig.form.busy;
        rowButtonClicked(rig.review, 1); // a click meanwhile does nothing
        EXPECT_FALSE(rowsRightClicked(rig.review));
    };
    rig.load();
    EXPECT_GT(rig.messageLoop.yields, 8U);
    EXPECT_TRUE(busy);
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
}

} // namespace
} // namespace vardelin::archive
