#include "profile/file_list.h"

#include "store_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

using test::StoreRig;
using testing::ElementsAre;
using testing::IsEmpty;

class FileListTest : public testing::Test {
protected:
    FileListTest()
    {
        rig.disk.createFolders("C:\\Tree\\b10\\deep");
        rig.disk.createFolders("C:\\Tree\\b9");
        for (const char* const name :
             {"C:\\Tree\\z.vdp", "C:\\Tree\\A_Ver12_.vdp", "C:\\Tree\\a_Ver1_.vdp",
              "C:\\Tree\\note.txt", "C:\\Tree\\b10\\x.VDP", "C:\\Tree\\b10\\deep\\y.vdp",
              "C:\\Tree\\b9\\w.vdp"})
            rig.putFile(name, "");
    }
    std::size_t load(std::string_view pattern, bool recurse)
    {
        std::size_t count = 99;
        files.LoadFiles(pattern, recurse, count);
        EXPECT_EQ(count, files.count());
        return count;
    }
    std::vector<std::string> paths() const
    {
        std::vector<std::string> result;
        for (std::size_t i = 1; i <= files.count(); ++i)
            result.push_back(files.Item(i).sFilename());
        return result;
    }

    StoreRig rig;
    ListingState listing;
    ListingContext context{rig.files, rig.ownContext, rig.frame, listing};
    clsFiles files{context};
};

TEST_F(FileListTest, ListsTheMatchesOfAFolderInTheFoldersOrder)
{
    EXPECT_EQ(load("C:\\Tree\\*.vdp", false), 3U);
    EXPECT_THAT(paths(),
                ElementsAre("C:\\Tree\\a_Ver1_.vdp", "C:\\Tree\\A_Ver12_.vdp", "C:\\Tree\\z.vdp"));
}

TEST_F(FileListTest, FilesOfSubfoldersComeFirst)
{
    EXPECT_EQ(load("C:\\Tree\\*.vdp", true), 6U);
    EXPECT_THAT(paths(), ElementsAre("C:\\Tree\\b9\\w.vdp", "C:\\Tree\\b10\\deep\\y.vdp",
                                     "C:\\Tree\\b10\\x.VDP", "C:\\Tree\\a_Ver1_.vdp",
                                     "C:\\Tree\\A_Ver12_.vdp", "C:\\Tree\\z.vdp"));
    EXPECT_EQ(listing.depth, 0);
}

TEST_F(FileListTest, SecondListingStartsEmpty)
{
    load("C:\\Tree\\*.vdp", true);
    EXPECT_EQ(load("C:\\Tree\\*.txt", true), 1U);
    EXPECT_THAT(paths(), ElementsAre("C:\\Tree\\note.txt"));
}

TEST_F(FileListTest, NoMatchIsACountOfZeroAndNoError)
{
    EXPECT_EQ(load("C:\\Tree\\*.doc", false), 0U);
    EXPECT_EQ(load("C:\\Nowhere\\*.vdp", true), 0U);
    EXPECT_EQ(load("Q:\\*.vdp", false), 0U);
    EXPECT_EQ(load("*.vdp", true), 0U);
    EXPECT_EQ(load("", true), 0U);
    rig.disk.setUnreadable("C:\\Tree");
    EXPECT_EQ(load("C:\\Tree\\*.vdp", true), 0U);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST_F(FileListTest, LinkToAFileIsAFileAndLinkToAFolderIsNothing)
{
    const auto folder = rig.disk.openFolder("C:\\Tree");
    folder->createLink("file_link.vdp", "z.vdp");
    folder->createLink("folder_link.vdp", "b9");
    folder->createLink("circle", ".");
    folder->createLink("dangling.vdp", "none");
    EXPECT_EQ(load("C:\\Tree\\*.vdp", false), 4U);
    EXPECT_THAT(paths(), testing::Contains("C:\\Tree\\file_link.vdp"));
    EXPECT_EQ(load("C:\\Tree\\*.vdp", true), 7U);
}

TEST_F(FileListTest, EntriesAnswerForTheirParts)
{
    rig.disk.setNow(1'057'224'303'000'000'000);
    rig.putFile("C:\\Tree\\new.txt", "");
    load("C:\\Tree\\n*.txt", false);
    const clsFiles& entry = files.Item(1);
    EXPECT_EQ(entry.sFilename(), "C:\\Tree\\new.txt");
    EXPECT_EQ(entry.sName(), "new");
    EXPECT_EQ(entry.sExtension(), "txt");
    EXPECT_EQ(entry.sNameAndExtension(), "new.txt");
    EXPECT_EQ(entry.sPath(), "C:\\Tree\\");
    EXPECT_EQ(entry.dCreated(), (base::DateTime{{2003, 7, 3}, {9, 25, 3}}));
}

TEST_F(FileListTest, CreationDateOfAFileThatCannotBeOpenedIsTheFirstDayOf1601)
{
    EXPECT_EQ(files.add("C:\\Tree\\none").dCreated(), (base::DateTime{{1601, 1, 1}, {}}));
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST_F(FileListTest, CollectionTakesKeysAndIndexes)
{
    files.add("C:\\1").sFilename("C:\\one");
    files.add("C:\\2", "second");
    files.add("C:\\3");
    EXPECT_EQ(files.Item("second").sFilename(), "C:\\2");
    EXPECT_THROW(files.add("C:\\4", "second"), base::RuntimeError);
    EXPECT_THROW(files.Item("third"), base::RuntimeError);
    EXPECT_THROW(files.Item(4), base::RuntimeError);
    files.Remove("second");
    files.Remove(1);
    EXPECT_THAT(paths(), ElementsAre("C:\\3"));
    files.Clear();
    EXPECT_EQ(files.count(), 0U);
}

TEST_F(FileListTest, DotsOfTheSavingTextRunFromThreeToSevenAndBack)
{
    std::vector<int> steps;
    for (int i = 0; i < 6; ++i) {
        load("C:\\Tree\\*.vdp", false);
        steps.push_back(listing.SaveProgressStep);
    }
    EXPECT_THAT(steps, ElementsAre(4, 5, 6, 7, 3, 4));
    rig.frame.bListingProfiles = true;
    load("C:\\Tree\\*.vdp", true);
    EXPECT_EQ(listing.SaveProgressStep, 4);
}

TEST_F(FileListTest, BarCreepsWithEachEntryBelowItsBounds)
{
    load("C:\\Tree\\*.vdp", false);
    EXPECT_NEAR(rig.frame.pb.value, 3 * 0.00005, 1e-12);
    rig.frame.pb.value = 0;
    // 6 entries of C:\Tree, 2 of b10 and its subfolder, 1 each of b9 and deep; and 6 matches.
    load("C:\\Tree\\*.vdp", true);
    EXPECT_NEAR(rig.frame.pb.value, 16 * 0.00005, 1e-12);
    rig.frame.pb.value = 49.99999;
    load("C:\\Tree\\*.vdp", false);
    EXPECT_EQ(rig.frame.pb.value, 49.99999);
    rig.frame.pb.value = 64.99999;
    load("C:\\Tree\\*.vdp", true);
    EXPECT_EQ(rig.frame.pb.value, 64.99999);
}

TEST_F(FileListTest, DepthIsBackAtZeroWhenAnExceptionLeaves)
{
    rig.script.killAtCall(3);
    std::size_t count = 0;
    EXPECT_THROW(files.LoadFiles("C:\\Tree\\*.vdp", true, count), platform::Killed);
    EXPECT_EQ(listing.depth, 0);
    rig.script.reset();
    EXPECT_EQ(load("C:\\Tree\\*.vdp", false), 3U);
    EXPECT_EQ(load("C:\\Tree\\*.vdp", false), 3U);
}

TEST_F(FileListTest, TracesItsLevelsAndKeepsTheHelpersOfAFileOutOfTheLog)
{
    load("C:\\Tree\\*.vdp", false);
    EXPECT_THAT(rig.ownEntries(), ElementsAre("LoadFiles End 2"));
}

} // namespace
} // namespace vardelin::profile
