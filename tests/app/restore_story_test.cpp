#include "archive_story.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCalendarWidget>
#include <QDate>

// Getting files back out of a real archive, at the window.
namespace vardelin {
namespace {

using test::treeOf;
using testing::ElementsAre;

constexpr const char* kRestored = "File(s) have been successfully restored";
constexpr const char* kDone = "Backup is completed successfully";

class RestoreStory : public test::ArchiveStory {
protected:
    // Two runs, between which one file changed.
    void twoRuns(std::chrono::hours apart = std::chrono::hours(0))
    {
        begin();
        rig.clock.ahead = -apart;
        ASSERT_THAT(backUp(), ElementsAre(kDone));
        rig.clock.ahead = std::chrono::hours(0);
        rig.folder.write("sources/letters/one.txt", "second one, which is longer\n");
        ASSERT_THAT(backUp(), ElementsAre(kDone));
        openReview();
        openDown({"letters"});
    }
};

TEST_F(RestoreStory, AnOldVersionComesBackInAnotherFolderAndNothingElseIsTouched)
{
    twoRuns();
    EXPECT_THAT(below(source("letters\\")),
                ElementsAre("one.txt_Org", "one.txt_001", "two.txt_Org"));
    const test::Tree sources = treeOf(rig.folder / "sources");
    const test::Tree copies = treeOf(archive());
    select({source("letters\\one.txt_000")});
    restoreTo(test::AppRig::drive(rig.folder / "elsewhere"));
    EXPECT_EQ(lastMessage(), kRestored);
    const std::string place = std::filesystem::path(restored("letters/one.txt"))
                                  .lexically_relative(rig.folder / "elsewhere");
    EXPECT_EQ(treeOf(rig.folder / "elsewhere"), (test::Tree{{place, "first one\n"}}));
    EXPECT_EQ(treeOf(rig.folder / "sources"), sources);
    EXPECT_EQ(treeOf(archive()), copies);
    EXPECT_EQ(errors(), "");
}

TEST_F(RestoreStory, AFolderComesBackToItsPlaceAsItLastWas)
{
    twoRuns();
    const test::Tree sources = treeOf(rig.folder / "sources");
    std::filesystem::remove_all(original("letters"));
    select({source("letters\\")});
    restoreToPlaces();
    EXPECT_EQ(lastMessage(), kRestored);
    EXPECT_EQ(treeOf(rig.folder / "sources"), sources);
    EXPECT_TRUE(treeOf(rig.folder / "elsewhere").empty());
    EXPECT_EQ(errors(), "");
}

class ByDateStory : public RestoreStory {
protected:
    // Restore, ByDate, so many days before today, to the folder `elsewhere`.
    void restoreAsOf(int daysAgo)
    {
        inForm("frmByDate", [this, daysAgo](QWidget& form) {
            auto& calendar = in<QCalendarWidget>(form, "mnvResDate");
            calendar.setSelectedDate(calendar.selectedDate().addDays(-daysAgo));
            inForm("frmRestDialog", [this](QWidget& location) {
                typeLocation(location, test::AppRig::drive(rig.folder / "elsewhere"));
            });
            click(form, "cmdOk");
        });
        run("mnuByDate");
    }
    static constexpr std::chrono::hours kThreeDays{72};
};

TEST_F(ByDateStory, AFileComesBackAsItWasOnADayWhateverVersionIsSelected)
{
    twoRuns(kThreeDays);
    select({source("letters\\one.txt_001")});
    restoreAsOf(3);
    EXPECT_EQ(lastMessage(), kRestored);
    EXPECT_EQ(test::TempFolder::read(restored("letters/one.txt")), "first one\n");
    restoreAsOf(0);
    EXPECT_EQ(test::TempFolder::read(restored("letters/one.txt")), "second one, which is longer\n");
    EXPECT_EQ(errors(), "");
}

TEST_F(ByDateStory, ADayBeforeTheFirstRunBringsNothingBackAndSaysSo)
{
    twoRuns(kThreeDays);
    select({source("letters\\one.txt_001"), source("letters\\")});
    restoreAsOf(4);
    EXPECT_EQ(lastMessage(),
              "File(s) have not been restored successfully because given 'Restore by "
              "date' does not match with any of the files.");
    EXPECT_TRUE(std::filesystem::is_empty(rig.folder / "elsewhere"));
    EXPECT_EQ(treeOf(rig.folder / "sources").size(), 3U);
    EXPECT_EQ(errors(), "");
}

} // namespace
} // namespace vardelin
