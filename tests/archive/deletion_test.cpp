#include "archive/deletion.h"

#include "review_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vardelin::archive {
namespace {

using platform::Answer;
using test::ReviewRig;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::string_view kFiles = "Files And Folders";
constexpr std::string_view kOther = "Other Data & Settings";
constexpr std::string_view kTail = "Error Occurred while restore delete option in Storage Form";

// The review of an archive, loaded, with these rows open.
struct DeletionRig : ReviewRig {
    void open(std::initializer_list<std::string_view> archiveFiles,
              std::initializer_list<std::string_view> keys)
    {
        put(archiveFiles);
        load();
        click(keys);
    }
    void erase(std::initializer_list<std::string_view> keys)
    {
        select(keys);
        messageBoxes.answers = {Answer::Yes};
        mnuDel_Click(review);
    }
    // Paths of all files of the archive, below its root.
    std::vector<std::string> stored() { return below(""); }

private:
    std::vector<std::string> below(const std::string& folder)
    {
        std::vector<std::string> paths;
        for (const auto& entry : disk.list(inArchive(folder))) {
            std::string path = folder;
            path += entry.name;
            if (entry.info.kind == platform::FileKind::Folder) {
                for (std::string& each : below(path + "\\"))
                    paths.push_back(std::move(each));
            } else {
                paths.push_back(std::move(path));
            }
        }
        return paths;
    }
};

// ---- the command

TEST(DeleteCommand, AsksBeforeItDeletes)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1"}, {kFiles, "C:\\"});
    rig.select({"C:\\a_000"});
    rig.messageBoxes.answers = {Answer::No};
    mnuDel_Click(rig.review);

    ASSERT_EQ(rig.boxes().size(), 1U);
    EXPECT_EQ(rig.boxes().front().text, "Do you want to delete the selected item?");
    EXPECT_EQ(rig.boxes().front().title, "Vardelin");
    EXPECT_EQ(rig.boxes().front().buttons, platform::Buttons::YesNo);
    EXPECT_TRUE(rig.inStore("C\\a_FULL_1"));
    EXPECT_EQ(rig.form.lstRestore.size(), 3U);
    EXPECT_TRUE(rig.state.bDeleteDone); // already: with nothing in clxnDeleted it hides nothing
    EXPECT_TRUE(rig.state.clxnDeleted.empty());
}

TEST(DeleteCommand, DoesNothingWhileRowsAreMade)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1"}, {kFiles, "C:\\"});
    rig.form.busy = true;
    rig.erase({"C:\\a_000"});
    EXPECT_THAT(rig.boxes(), IsEmpty());
    EXPECT_TRUE(rig.inStore("C\\a_FULL_1"));
}

TEST(DeleteCommand, DeletesNothingWithoutASelection)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1"}, {kFiles, "C:\\"});
    rig.erase({});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a_FULL_1"));
    EXPECT_EQ(rig.form.lstRestore.size(), 3U);
}

// ---- versions

TEST(Deletion, TakesOneVersionAndLeavesTheOthers)
{
    DeletionRig rig;
    rig.open({"C\\w\\a.txt_FULL_1", "C\\w\\a.txt_Ver1_1", "C\\w\\a.txt_Ver2_1"},
             {kFiles, "C:\\", "C:\\w\\"});
    const std::string model = rig.model();

    rig.erase({"C:\\w\\a.txt_001"});

    EXPECT_THAT(rig.stored(), ElementsAre("C\\w\\a.txt_FULL_1", "C\\w\\a.txt_Ver2_1"));
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "    -w",
                                         "       a.txt_Org", "       a.txt_002"));
    // The line lives on in the list; what was deleted since the load keeps it out of the rows.
    EXPECT_EQ(rig.model(), model);
    EXPECT_TRUE(rig.state.clxnDeleted.contains("Files And Folders\\C:\\w\\a.txt_001"));
    rig.click({"C:\\w\\", "C:\\w\\"});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "    -w",
                                         "       a.txt_Org", "       a.txt_002"));
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
    EXPECT_FALSE(rig.form.busy);

    rig.load();
    EXPECT_THAT(rig.model(), Not(testing::HasSubstr("a.txt_001")));
}

TEST(Deletion, OfAFullCopyLeavesItsVersions)
{
    DeletionRig rig;
    rig.open({"C\\w\\a.txt_FULL_1", "C\\w\\a.txt_Ver1_1"}, {kFiles, "C:\\", "C:\\w\\"});
    rig.erase({"C:\\w\\a.txt_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\w\\a.txt_Ver1_1"));
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "    -w", "       a.txt_001"));
}

TEST(Deletion, OfTheLastVersionInAFolderTakesTheFolder)
{
    DeletionRig rig;
    rig.open({"C\\w\\a.txt_FULL_1", "C\\x\\b.txt_FULL_1"}, {kFiles, "C:\\", "C:\\w\\"});
    rig.erase({"C:\\w\\a.txt_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\x\\b.txt_FULL_1"));
    EXPECT_FALSE(rig.inStore("C\\w"));
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\x\\b.txt_000\r\n");
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders")); // built anew
    rig.click({kFiles, "C:\\"});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "    +x"));

    rig.load();
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\x\\b.txt_000\r\n");
}

// Nobody misses what a run left that died, nor the rights of a folder that is not there any more.
TEST(Deletion, DoesNotCountTemporaryFilesAndTheFoldersRecordAsFiles)
{
    for (const std::string_view own :
         {"C\\w\\~vd17.tmp", "C\\w\\~0123456789abcdef.tmp", "C\\w\\~folder_1ed-0-0-5.zst"}) {
        DeletionRig rig;
        rig.open({"C\\w\\a.txt_FULL_1", own}, {kFiles, "C:\\", "C:\\w\\"});
        rig.erase({"C:\\w\\a.txt_000"});
        EXPECT_FALSE(rig.inStore("C\\w")) << own;
        EXPECT_EQ(rig.model(), "") << own;
        EXPECT_THAT(rig.shown(), IsEmpty()) << own;
        EXPECT_THAT(rig.errorsShown(), IsEmpty()) << own;
    }
}

TEST(Deletion, LeavesAFolderWithAForeignFile)
{
    DeletionRig rig;
    rig.open({"C\\w\\a.txt_FULL_1", "C\\w\\notes of mine.doc"}, {kFiles, "C:\\", "C:\\w\\"});
    rig.erase({"C:\\w\\a.txt_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\w\\notes of mine.doc"));
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "    -w"));
}

// The folder has no file any more, so its lines go, and by their common start those of its
// subfolders, too; on the disk they stay, and the next load shows them again.
TEST(Deletion, OfTheLastFileOfAFolderWithSubfoldersHidesTheseUntilTheNextLoad)
{
    DeletionRig rig;
    rig.open({"C\\w\\a.txt_FULL_1", "C\\w\\sub\\b.txt_FULL_1", "C\\workshop\\c.txt_FULL_1"},
             {kFiles, "C:\\", "C:\\w\\"});
    rig.erase({"C:\\w\\a.txt_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\w\\sub\\b.txt_FULL_1", "C\\workshop\\c.txt_FULL_1"));
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\workshop\\c.txt_000\r\n");
    rig.load();
    rig.click({kFiles, "C:\\"});
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "    +w", "    +workshop"));
}

TEST(Deletion, OfARowWhoseFileHasVanishedRemovesTheRow)
{
    DeletionRig rig;
    rig.open({"C\\w\\a.txt_FULL_1", "C\\w\\b.txt_FULL_1"}, {kFiles, "C:\\", "C:\\w\\"});
    rig.disk.removeFile(ReviewRig::inArchive("C\\w\\a.txt_FULL_1"));
    rig.erase({"C:\\w\\a.txt_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\w\\b.txt_FULL_1"));
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "    -w", "       b.txt_Org"));
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

TEST(Deletion, OfARowWhoseFolderHasVanishedRemovesTheLinesOfTheFolder)
{
    DeletionRig rig;
    rig.open({"C\\w\\a.txt_FULL_1", "C\\x\\b.txt_FULL_1"}, {kFiles, "C:\\", "C:\\w\\"});
    rig.disk.removeTree(ReviewRig::inArchive("C\\w"));
    rig.erase({"C:\\w\\a.txt_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\x\\b.txt_FULL_1"));
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\x\\b.txt_000\r\n");
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

// Two texts are looked for anywhere in a name, so the search can meet another version first. The
// folder's order counts numbers, which makes that rare; here version 1 is gone already.
TEST(Deletion, MayMeetAnotherVersionFirst)
{
    DeletionRig rig;
    rig.open({"C\\a.txt_Ver1_1", "C\\a.txt_Ver12_1", "C\\z_FULL_1"}, {kFiles, "C:\\"});
    rig.erase({"C:\\a.txt_001"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a.txt_Ver12_1", "C\\z_FULL_1"));

    DeletionRig without;
    without.open({"C\\a.txt_Ver1_1", "C\\a.txt_Ver12_1", "C\\z_FULL_1"}, {kFiles, "C:\\"});
    without.disk.removeFile(ReviewRig::inArchive("C\\a.txt_Ver1_1"));
    without.erase({"C:\\a.txt_001"});
    EXPECT_THAT(without.stored(), ElementsAre("C\\z_FULL_1"));
}

// The text in front of the first underscore is all that is known of the name.
TEST(Deletion, MayMeetAnotherFileFirst)
{
    DeletionRig rig;
    rig.open({"C\\my_letter.txt_FULL_1", "C\\my_books.txt_FULL_1"}, {kFiles, "C:\\"});
    rig.erase({"C:\\my_letter.txt_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\my_letter.txt_FULL_1"));
}

TEST(Deletion, LooksForNamesInAnyCase)
{
    DeletionRig rig;
    rig.open({"C\\Data.TXT_full_1", "C\\z_FULL_1"}, {kFiles, "C:\\"});
    rig.row("C:\\Data.TXT_000").text = "dAta.txt_Org";
    rig.erase({"C:\\Data.TXT_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\z_FULL_1"));
}

// Without a text in front of the underscore any file would do.
TEST(Deletion, PassesOverANameThatBeginsWithAnUnderscore)
{
    DeletionRig rig;
    rig.open({"C\\_notes_FULL_1", "C\\a_FULL_1"}, {kFiles, "C:\\"});
    rig.erase({"C:\\_notes_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a_FULL_1", "C\\_notes_FULL_1"));
    EXPECT_EQ(rig.form.lstRestore.size(), 4U);
    // It counts as deleted until the next load all the same.
    EXPECT_TRUE(rig.state.clxnDeleted.contains("Files And Folders\\C:\\_notes_000"));
}

// A source folder can be called like the row of a version.
TEST(Deletion, OfAVersionNeverTakesAFolderOfTheSameName)
{
    DeletionRig rig;
    rig.open({"C\\a.txt_FULL_1", "C\\a.txt_Ver1_1", "C\\a.txt_001\\treasure_FULL_1"},
             {kFiles, "C:\\"});
    rig.erase({"C:\\a.txt_001"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a.txt_001\\treasure_FULL_1", "C\\a.txt_FULL_1"));
}

// ---- folders

TEST(Deletion, OfAFolderTakesItWithItsContent)
{
    DeletionRig rig;
    rig.open({"C\\w\\a.txt_FULL_1", "C\\w\\sub\\b.txt_Ver1_1", "C\\w\\stray", "C\\W\\c.txt_FULL_1",
              "C\\workshop\\d.txt_FULL_1"},
             {kFiles, "C:\\"});
    rig.erase({"C:\\w\\"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\W\\c.txt_FULL_1", "C\\workshop\\d.txt_FULL_1"));
    // Lines are compared in upper case, so those of the other `W` hide until the next load.
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\workshop\\d.txt_000\r\n");
    EXPECT_TRUE(rig.state.clxnDeleted.contains("Files And Folders\\C:\\w\\"));
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
    EXPECT_EQ(rig.model().find("\\w\\"), std::string::npos);
}

TEST(Deletion, OfADriveLeavesTheArchiveAndItsProfile)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "C\\w\\b_FULL_1", "Work.vdp", "OtherData\\IE Favorites\\x"}, {kFiles});
    rig.erase({"C:\\"});
    EXPECT_THAT(rig.stored(), ElementsAre("OtherData\\IE Favorites\\x", "Work.vdp"));
    EXPECT_EQ(rig.model(), "");
    EXPECT_FALSE(rig.state.bFilesExist);
    EXPECT_THAT(rig.shown(), ElementsAre("+Other Data & Settings"));
}

TEST(Deletion, OfAFolderAndItsRowsTakesBoth)
{
    DeletionRig rig;
    rig.open({"C\\w\\a_FULL_1", "C\\w\\b_FULL_1", "C\\x\\c_FULL_1"}, {kFiles, "C:\\", "C:\\w\\"});
    rig.erase({"C:\\w\\", "C:\\w\\a_000", "C:\\w\\b_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\x\\c_FULL_1"));
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\x\\c_000\r\n");
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

// Its name ends like a version's row, and its parent has that version.
TEST(Deletion, OfAFolderThatHasVanishedTakesNoFileForIt)
{
    DeletionRig rig;
    rig.open({"C\\x_12\\a_FULL_1", "C\\x_Ver12_1"}, {kFiles, "C:\\"});
    rig.disk.removeTree(ReviewRig::inArchive("C\\x_12"));
    rig.erase({"C:\\x_12\\"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\x_Ver12_1"));
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\x_012\r\n");
}

TEST(Deletion, DoesNotFollowALinkThatStandsForAFolder)
{
    DeletionRig rig;
    rig.open({"C\\w\\a_FULL_1", "C\\z_FULL_1"}, {kFiles, "C:\\"});
    rig.disk.createFolders("D:\\precious");
    rig.putFile("D:\\precious\\only copy", "x");
    rig.disk.removeTree(ReviewRig::inArchive("C\\w"));
    rig.disk.openFolder(ReviewRig::inArchive("C"))->createLink("w", "/mnt/d/precious");
    rig.erase({"C:\\w\\"});
    EXPECT_TRUE(rig.disk.fileExists("D:\\precious\\only copy"));
    EXPECT_FALSE(rig.inStore("C\\w"));
}

TEST(Deletion, GoesOverManyRowsOfManyFolders)
{
    DeletionRig rig;
    rig.open({"C\\a\\1_FULL_1", "C\\a\\2_FULL_1", "C\\a\\3_FULL_1", "C\\b\\1_FULL_1", "D\\1_FULL_1",
              "D\\2_FULL_1"},
             {kFiles, "C:\\", "C:\\a\\", "C:\\b\\", "D:\\"});
    rig.erase({"C:\\a\\1_000", "C:\\a\\3_000", "D:\\2_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a\\2_FULL_1", "C\\b\\1_FULL_1", "D\\1_FULL_1"));
    EXPECT_THAT(rig.shown(), ElementsAre("-Files And Folders", "  -C:", "    -a", "       2_Org",
                                         "    -b", "       1_Org", "  -D:", "     1_Org"));
}

TEST(Deletion, ListsAFolderOnceForAllOfItsRows)
{
    DeletionRig rig;
    for (int i = 0; i < 20; ++i)
        rig.put({"C\\w\\" + std::to_string(i) + "x_FULL_1"});
    rig.load();
    rig.click({kFiles, "C:\\", "C:\\w\\"});
    rig.script.reset();
    for (state::ReviewRow& row : rig.form.lstRestore)
        row.selected = row.file && row.text != "19x_Org";
    rig.messageBoxes.answers = {Answer::Yes};
    mnuDel_Click(rig.review);
    EXPECT_EQ(rig.script.countOf("folder.list"), 1U);
    EXPECT_THAT(rig.stored(), ElementsAre("C\\w\\19x_FULL_1"));
}

// ---- settings groups

TEST(Deletion, OfASettingsGroupLeavesTheOthers)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "OtherData\\IE Favorites\\x", "OtherData\\Desktop Settings\\y"},
             {kOther});
    const std::string model = rig.model();
    rig.erase({"IE Favorites"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a_FULL_1", "OtherData\\Desktop Settings\\y"));
    EXPECT_EQ(rig.model(), model);
    EXPECT_THAT(rig.shown(),
                ElementsAre("+Files And Folders", "-Other Data & Settings", "   Desktop Settings"));
    EXPECT_TRUE(rig.state.bOtherDataExists);
}

TEST(Deletion, OfTheLastSettingsGroupTakesTheGroupRowToo)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "OtherData\\IE Favorites\\x", "OtherData\\~vd1.tmp"}, {kOther});
    const std::string model = rig.model();
    rig.erase({"IE Favorites"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a_FULL_1"));
    EXPECT_FALSE(rig.inStore("OtherData"));
    EXPECT_EQ(rig.model(), model); // the catalog is not touched
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
    EXPECT_FALSE(rig.state.bOtherDataExists);
}

TEST(Deletion, OfAllSettingsGroupsOfAnArchiveWithoutFilesLeavesNoRow)
{
    DeletionRig rig;
    rig.open({"OtherData\\IE Favorites\\x", "OtherData\\Outlook Settings\\y", "Work.vdp"},
             {kOther});
    rig.erase({"IE Favorites", "Outlook Settings"});
    EXPECT_THAT(rig.stored(), ElementsAre("Work.vdp"));
    EXPECT_THAT(rig.shown(), IsEmpty());
}

TEST(Deletion, OfOneOfTwoSettingsGroupsWithoutFilesClosesTheGroup)
{
    DeletionRig rig;
    rig.open({"OtherData\\IE Favorites\\x", "OtherData\\Outlook Settings\\y"}, {kOther});
    rig.erase({"IE Favorites"});
    EXPECT_THAT(rig.shown(), ElementsAre("+Other Data & Settings"));
    rig.click({kOther});
    EXPECT_THAT(rig.shown(), ElementsAre("-Other Data & Settings", "   Outlook Settings"));
}

TEST(Deletion, OfASettingsGroupThatHasVanishedRemovesItsRows)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "OtherData\\IE Favorites\\x", "OtherData\\Outlook Settings\\y"},
             {kOther});
    rig.disk.removeTree(ReviewRig::inArchive("OtherData\\IE Favorites"));
    rig.disk.removeTree(ReviewRig::inArchive("OtherData\\Outlook Settings"));
    rig.erase({"Outlook Settings"});
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
    EXPECT_FALSE(rig.inStore("OtherData"));
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

TEST(Deletion, OfTheLastSettingsGroupLeavesAForeignFileBesideIt)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "OtherData\\IE Favorites\\x", "OtherData\\mine.doc"}, {kOther});
    rig.erase({"IE Favorites"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a_FULL_1", "OtherData\\mine.doc"));
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders"));
}

// A person's folder may be called like a settings group; its row is a folder's.
TEST(Deletion, OfASourceFolderNamedLikeASettingsGroupTakesTheFolder)
{
    DeletionRig rig;
    rig.open({"C\\IE Favorites\\a_FULL_1", "C\\z_FULL_1", "OtherData\\IE Favorites\\x"},
             {kFiles, "C:\\"});
    rig.erase({"C:\\IE Favorites\\"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\z_FULL_1", "OtherData\\IE Favorites\\x"));
    EXPECT_THAT(rig.shown(), ElementsAre("+Files And Folders", "+Other Data & Settings"));
}

TEST(Deletion, OfFilesAndSettingsTogetherTakesBoth)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "C\\w\\b_FULL_1", "OtherData\\IE Favorites\\x"},
             {kOther, kFiles, "C:\\"});
    rig.erase({"C:\\a_000", "C:\\w\\", "IE Favorites"});
    EXPECT_THAT(rig.stored(), IsEmpty());
    EXPECT_THAT(rig.shown(), IsEmpty());
    EXPECT_EQ(rig.model(), "");
}

// ---- what is never touched

TEST(Deletion, NeverTouchesTheArchiveRootOrAnythingOutsideIt)
{
    for (const std::string_view key :
         {"", "\\", "C", "Files And Folders", "Other Data & Settings", "C:", "C:\\..\\",
          "C:\\..\\..\\", "C:\\..\\..\\Other\\x_000", "C:.\\", "Other\\x_000", ".:\\", ".:.\\",
          ".:.\\Other\\", ".:.\\Other\\x_000", "\\:\\", "C:\\\\..\\", "C:\\.\\", "C:x_000"}) {
        DeletionRig rig;
        rig.open({"C\\a_FULL_1", "Work.vdp"}, {kFiles, "C:\\"});
        rig.disk.createFolders("D:\\Backup\\Other");
        rig.putFile("D:\\Backup\\Other\\x_FULL_1", "x");
        rig.putFile(ReviewRig::inArchive("x_FULL.vdp"), "a file of the root itself");
        state::ReviewRow& row = rig.row("C:\\a_000");
        row.key = key;
        row.text = "x_Org";
        rig.erase({key});
        EXPECT_THAT(rig.stored(), Contains("Work.vdp")) << key;
        EXPECT_THAT(rig.stored(), Contains("x_FULL.vdp")) << key;
        EXPECT_THAT(rig.stored(), Contains("C\\a_FULL_1")) << key;
        EXPECT_TRUE(rig.disk.fileExists("D:\\Backup\\Other\\x_FULL_1")) << key;
    }
}

TEST(Deletion, PassesOverGroupRows)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "OtherData\\IE Favorites\\x", "Files And Folders\\b_FULL_1"}, {});
    rig.erase({kFiles, kOther});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a_FULL_1", "Files And Folders\\b_FULL_1",
                                          "OtherData\\IE Favorites\\x"));
    EXPECT_EQ(rig.form.lstRestore.size(), 2U);
}

TEST(Deletion, IsRefusedWhileARunHoldsTheArchive)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "C\\w\\b_FULL_1"}, {kFiles, "C:\\"});
    {
        const auto run = rig.disk.lockFolder("D:\\Backup\\Work");
        rig.erase({"C:\\a_000", "C:\\w\\"});
    }
    EXPECT_EQ(rig.boxes().back().text,
              "This archive is in use by a backup or a restore that runs now. Nothing was deleted; "
              "try again when it has ended.");
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a_FULL_1", "C\\w\\b_FULL_1"));
    EXPECT_EQ(rig.form.lstRestore.size(), 4U);
    EXPECT_TRUE(rig.state.clxnDeleted.empty());
    EXPECT_THAT(rig.errorsShown(), IsEmpty());

    rig.erase({"C:\\a_000"});
    EXPECT_THAT(rig.stored(), ElementsAre("C\\w\\b_FULL_1"));
}

TEST(Deletion, HoldsTheArchiveWhileItDeletes)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "C\\b_FULL_1"}, {kFiles, "C:\\"});
    bool held = false;
    rig.script.onCallsNamed("folder.removeFile", [&](const platform::CallScript::Call&) {
        EXPECT_THROW(rig.disk.lockFolder("D:\\Backup\\Work"), base::RuntimeError);
        held = true;
    });
    rig.erase({"C:\\a_000"});
    EXPECT_TRUE(held);
    EXPECT_NO_THROW(rig.disk.lockFolder("D:\\Backup\\Work"));
}

// ---- failures

TEST(Deletion, ReportsAnArchiveThatHasVanished)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1"}, {kFiles, "C:\\"});
    rig.disk.removeTree("D:\\Backup\\Work");
    rig.erase({"C:\\a_000"});
    EXPECT_THAT(rig.errorsShown(), ElementsAre("76 RestoreDel: " + std::string(kTail)));
    EXPECT_EQ(rig.form.lstRestore.size(), 3U);
    EXPECT_FALSE(rig.form.busy);
}

TEST(Deletion, WithoutTheRightsIsReported)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1", "C\\b_FULL_1", "C\\c_FULL_1"}, {kFiles, "C:\\"});
    rig.script.failCallsNamed("folder.removeFile", 70, "b_FULL_1");
    rig.erase({"C:\\a_000", "C:\\b_000", "C:\\c_000"});
    EXPECT_THAT(rig.errorsShown(), ElementsAre("70 RestoreDel: " + std::string(kTail)));
    // From the last row to the first: c is gone and so is its row, b is there and a was not tried.
    EXPECT_THAT(rig.stored(), ElementsAre("C\\a_FULL_1", "C\\b_FULL_1"));
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "     a_Org", "     b_Org"));
    rig.click({"C:\\", "C:\\"});
    EXPECT_THAT(rig.shown(),
                ElementsAre("-Files And Folders", "  -C:", "     a_Org", "     b_Org"));
}

TEST(Deletion, OfAnArchiveThatMayNotBeLockedIsAnErrorAndNoRun)
{
    DeletionRig rig;
    rig.open({"C\\a_FULL_1"}, {kFiles, "C:\\"});
    rig.disk.setUnreadable("D:\\Backup\\Work");
    rig.script.failCallsNamed("fs.lockFolder", 70);
    rig.erase({"C:\\a_000"});
    EXPECT_THAT(rig.errorsShown(), ElementsAre("70 RestoreDel: " + std::string(kTail)));
    EXPECT_EQ(rig.boxes().size(), 1U); // the question
}

TEST(Deletion, WithoutTheModelDeletesAndReports)
{
    DeletionRig rig;
    rig.open({"C\\w\\a_FULL_1", "C\\b_FULL_1"}, {kFiles, "C:\\"});
    rig.disk.removeFile("C:\\App\\model.txt");
    rig.erase({"C:\\w\\"});
    EXPECT_THAT(rig.errorsShown(), ElementsAre("53 ReconstructModelFile: ReconstructModelFile",
                                               "53 RestoreDel: " + std::string(kTail)));
    EXPECT_THAT(rig.stored(), ElementsAre("C\\b_FULL_1"));
    EXPECT_FALSE(rig.disk.fileExists("C:\\App\\ChngModel.txt"));
    rig.load();
    EXPECT_EQ(rig.model(), "Files And Folders\\C:\\b_000\r\n");
}

// Whichever call fails: nothing but what was selected is touched, the list of lines is the old one
// or the new one, the form comes to rest, and the next load shows what there is.
TEST(Deletion, LeavesEverythingElseAloneWhateverCallFails)
{
    std::size_t calls = 0;
    for (std::size_t n = 1;; ++n) {
        DeletionRig rig;
        rig.open({"C\\keep_FULL_1", "C\\w\\a_FULL_1", "C\\w\\a_Ver1_1", "C\\x\\b_FULL_1",
                  "OtherData\\IE Favorites\\x", "Work.vdp"},
                 {kOther, kFiles, "C:\\", "C:\\w\\"});
        const std::string old = rig.model();
        rig.script.reset();
        rig.script.failCall(n, 57);
        rig.erase({"C:\\w\\a_000", "C:\\w\\a_001", "C:\\x\\", "IE Favorites"});
        calls = rig.script.callCount();
        if (n > calls)
            break;
        EXPECT_THAT(rig.stored(), testing::IsSupersetOf({"C\\keep_FULL_1", "Work.vdp"})) << n;
        EXPECT_TRUE(rig.model() == old || rig.model().find("keep") != std::string::npos) << n;
        EXPECT_FALSE(rig.form.busy) << n;
        rig.script.reset();
        rig.load();
        EXPECT_THAT(rig.model(), testing::HasSubstr("keep")) << n;
        EXPECT_FALSE(rig.disk.fileExists("C:\\App\\ChngModel.txt")) << n;
    }
    EXPECT_GT(calls, 20U);
}

// ---- model.txt

struct ModelCase {
    std::string_view what;
    std::vector<std::string> drop;
    std::string_view left;
};

TEST(ReconstructModelFile, DropsTheLinesThatHoldAnItem)
{
    const std::string before = "Files And Folders\\C:\\W\\a_000\r\n"
                               "\r\n"
                               "Files And Folders\\C:\\w\\sub\\b_000\r\n"
                               "Files And Folders\\C:\\work\\c_000\r\n"
                               "Files And Folders\\D:\\w\\d_001\r\n";
    const ModelCase cases[] = {
        {"nothing but empty lines",
         {},
         "Files And Folders\\C:\\W\\a_000\r\nFiles And Folders\\C:\\w\\sub\\b_000\r\n"
         "Files And Folders\\C:\\work\\c_000\r\nFiles And Folders\\D:\\w\\d_001\r\n"},
        {"a folder with its subfolders, in any case",
         {"Files And Folders\\C:\\w\\"},
         "Files And Folders\\C:\\work\\c_000\r\nFiles And Folders\\D:\\w\\d_001\r\n"},
        {"a drive", {"Files And Folders\\C:\\"}, "Files And Folders\\D:\\w\\d_001\r\n"},
        {"several",
         {"Files And Folders\\D:\\", "Files And Folders\\C:\\W\\SUB\\"},
         "Files And Folders\\C:\\W\\a_000\r\nFiles And Folders\\C:\\work\\c_000\r\n"},
        {"anywhere in the line",
         {"k\\C_"},
         "Files And Folders\\C:\\W\\a_000\r\nFiles And Folders\\C:\\w\\sub\\b_000\r\n"
         "Files And Folders\\D:\\w\\d_001\r\n"},
        {"everything", {"Files And Folders\\C:\\", "Files And Folders\\D:\\"}, ""},
    };
    for (const ModelCase& one : cases) {
        ReviewRig rig;
        rig.putFile("C:\\App\\model.txt", before);
        rig.state.bFilesExist = true;
        base::TextCollection drop;
        for (const std::string& item : one.drop)
            drop.add(item, item);
        ReconstructModelFile(rig.review, drop);
        EXPECT_EQ(rig.model(), one.left) << one.what;
        EXPECT_EQ(rig.state.bFilesExist, !one.left.empty()) << one.what;
        EXPECT_FALSE(rig.disk.fileExists("C:\\App\\ChngModel.txt")) << one.what;
        EXPECT_THAT(rig.errorsShown(), IsEmpty()) << one.what;
    }
}

// Only a list that somebody wrote has such lines; they hold a folder's start all the same.
TEST(ReconstructModelFile, DropsLinesOfAnyFormThatHoldAnItem)
{
    ReviewRig rig;
    rig.putFile("C:\\App\\model.txt", "Files And Folders\\D:\\x\\C:\\b_000\r\n"
                                      "A\\files and folders\\d:\\x\\c_000\r\n"
                                      "Files And Folders\\D:\\y\\C:\\b_000\r\n");
    base::TextCollection drop;
    drop.add("Files And Folders\\D:\\x\\");
    ReconstructModelFile(rig.review, drop);
    EXPECT_EQ(rig.model(), "Files And Folders\\D:\\y\\C:\\b_000\r\n");
}

TEST(ReconstructModelFile, LeavesTheOldListWhereItDies)
{
    const std::string before =
        "Files And Folders\\C:\\w\\a_000\r\nFiles And Folders\\D:\\b_000\r\n";
    bool finished = false;
    for (std::size_t n = 1; !finished; ++n) {
        ReviewRig rig;
        rig.putFile("C:\\App\\model.txt", before);
        base::TextCollection drop;
        drop.add("Files And Folders\\C:\\w\\");
        rig.script.killAtCall(n);
        try {
            ReconstructModelFile(rig.review, drop);
            finished = true;
        } catch (const platform::Killed&) {
            EXPECT_GT(n, 0U);
        }
        const std::string after = rig.model();
        EXPECT_TRUE(after == "Files And Folders\\D:\\b_000\r\n" || (!finished && after == before));
    }
}

} // namespace
} // namespace vardelin::archive
