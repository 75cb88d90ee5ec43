#include "archive_story.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Deleting from a real archive, at the window.
namespace vardelin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class DeletionStory : public test::ArchiveStory {
protected:
    void twoRuns()
    {
        begin();
        backUp();
        rig.folder.write("sources/letters/one.txt", "second one, which is longer\n");
        backUp();
        ASSERT_THAT(copies(),
                    ElementsAre("one.txt_FULL", "one.txt_Ver1", "plans.doc_FULL", "two.txt_FULL"));
        openReview();
        openDown({"letters"});
    }
    void openAgain()
    {
        closeReview();
        openReview();
    }
};

TEST_F(DeletionStory, AVersionIsGoneFromTheDiskAndFromTheRowsForGood)
{
    twoRuns();
    const std::string key = source("letters\\one.txt_001");
    select({key});
    remove();
    EXPECT_THAT(rig.messageBoxes.texts(), ElementsAre("Do you want to delete the selected item?"));
    EXPECT_THAT(copies(), ElementsAre("one.txt_FULL", "plans.doc_FULL", "two.txt_FULL"));
    EXPECT_THAT(keys(), Not(Contains(key)));
    EXPECT_TRUE(isWhole(3));

    // Its line stands in model.txt until the next load.
    EXPECT_NE(modelText().find(key), std::string::npos);
    goTo("Files And Folders");
    QTest::keyClick(&list(), Qt::Key_Left);
    ASSERT_THAT(keys(), ElementsAre("Files And Folders"));
    openDown({"letters"});
    EXPECT_THAT(keys(), Not(Contains(key)));
    openAgain();
    openDown({"letters"});
    EXPECT_THAT(below(source("letters\\")), ElementsAre("one.txt_Org", "two.txt_Org"));
    EXPECT_EQ(errors(), "");
}

TEST_F(DeletionStory, ANoDeletesNothing)
{
    twoRuns();
    select({source("letters\\one.txt_001")});
    const auto before = keys();
    remove(platform::Answer::No);
    EXPECT_EQ(copies().size(), 4U);
    EXPECT_EQ(keys(), before);
}

TEST_F(DeletionStory, AFolderIsGoneWithItsCopiesAndTheOthersStay)
{
    twoRuns();
    select({source("letters\\")});
    remove();
    EXPECT_THAT(copies(), ElementsAre("plans.doc_FULL"));
    EXPECT_THAT(keys(), ElementsAre("Files And Folders")) << "built anew, closed";
    openDown();
    EXPECT_THAT(below(source("")), ElementsAre("plans.doc_Org"));
    openAgain();
    openDown();
    EXPECT_THAT(below(source("")), ElementsAre("plans.doc_Org"));
    EXPECT_TRUE(isWhole(1));
    EXPECT_EQ(errors(), "");
}

TEST_F(DeletionStory, WithoutAnyCopyTheReviewIsEmptyAndABackupBeginsAnew)
{
    twoRuns();
    select({"C:\\"});
    remove();
    EXPECT_TRUE(copies().empty());
    EXPECT_TRUE(storage().lstRestore.empty());
    openAgain();
    EXPECT_TRUE(storage().lstRestore.empty());
    EXPECT_EQ(errors(), "");
    closeReview();
    backUp();
    EXPECT_THAT(copies(), ElementsAre("one.txt_FULL", "plans.doc_FULL", "two.txt_FULL"));
    EXPECT_TRUE(isWhole(3));
}

} // namespace
} // namespace vardelin
