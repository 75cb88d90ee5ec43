#include "opening_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OpeningListTest : public testing::Test {
protected:
    std::int64_t at(const base::DateTime& local) { return rig.clock.fromLocal(local); }

    test::OpeningRig rig;
};

TEST_F(OpeningListTest, ListsProfilesOfSubfoldersWithTheirPlaceAndDate)
{
    rig.disk.setNow(at({{2025, 11, 2}, {14, 5, 9}}));
    rig.putProfile("C:\\App\\Profiles\\Home.vdp");
    rig.putProfile("C:\\App\\Profiles\\Old\\Deep\\Work.VDP");
    rig.putFile("C:\\App\\Profiles\\Notes.txt", "x");
    rig.form.cmdOpen.enabled = false;
    rig.list();
    EXPECT_THAT(rig.rows(), ElementsAre("Work.VDP in C:\\App\\Profiles\\Old\\Deep\\",
                                        "Home.vdp in C:\\App\\Profiles\\"));
    EXPECT_EQ(rig.form.lstOpen.rows[1].third, "11/2/2025 2:05:09 PM");
    EXPECT_EQ(rig.form.Label1.caption, "Select The Profile :");
    EXPECT_TRUE(rig.form.cmdOpen.enabled);
    EXPECT_EQ(rig.frame.panel1.text, "Listing the profiles...");
    EXPECT_EQ(rig.frame.pb.value, 0);
}

TEST_F(OpeningListTest, SecondListingReplacesTheFirst)
{
    rig.putProfile("C:\\App\\Profiles\\Home.vdp");
    rig.list();
    rig.list();
    EXPECT_THAT(rig.names(), ElementsAre("Home.vdp"));
    EXPECT_EQ(rig.form.created.size(), 1U);
}

TEST_F(OpeningListTest, RecycleInAPathHidesItsProfilesInAnyCase)
{
    rig.putProfile("C:\\App\\Profiles\\RECYCLER\\A.vdp");
    rig.putProfile("C:\\App\\Profiles\\$Recycle.Bin\\s\\B.vdp");
    rig.putProfile("C:\\App\\Profiles\\my recycled things\\C.vdp");
    rig.putProfile("C:\\App\\Profiles\\recycle.vdp"); // a name is no path
    rig.list();
    EXPECT_THAT(rig.names(), ElementsAre("recycle.vdp"));
}

TEST_F(OpeningListTest, WorkingCopyOfARemoteProfileIsNotOffered)
{
    rig.putProfile("C:\\App\\Profiles\\Home.vdp");
    rig.putProfile("C:\\App\\Profiles\\Work.vdp");
    rig.frame.ST_Remote_Name = "HOME.VDP";
    rig.list();
    EXPECT_THAT(rig.names(), ElementsAre("Home.vdp", "Work.vdp"));
    rig.frame.BL_Remote_Profile = true;
    rig.list();
    EXPECT_THAT(rig.names(), ElementsAre("Work.vdp"));
}

TEST_F(OpeningListTest, NoProfilesMakeAnEmptyList)
{
    rig.list();
    EXPECT_THAT(rig.names(), IsEmpty());
    rig.disk.removeTree("C:\\App\\Profiles");
    rig.list();
    EXPECT_THAT(rig.names(), IsEmpty());
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST_F(OpeningListTest, ProfileThatGoesMeanwhileHasNoDate)
{
    rig.putProfile("C:\\App\\Profiles\\Home.vdp");
    rig.script.onCallsNamed("folder.find", [&](const platform::CallScript::Call&) {
        if (rig.disk.fileExists("C:\\App\\Profiles\\Home.vdp"))
            rig.disk.removeFile("C:\\App\\Profiles\\Home.vdp");
    });
    rig.list();
    ASSERT_THAT(rig.names(), ElementsAre("Home.vdp"));
    EXPECT_EQ(rig.form.lstOpen.rows[0].third, "");
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    lstOpen_ColumnClick(rig.opening, 2);
    EXPECT_THAT(rig.names(), ElementsAre("Home.vdp"));
}

TEST_F(OpeningListTest, OneRowAtMostIsTicked)
{
    rig.putProfile("C:\\App\\Profiles\\A.vdp");
    rig.putProfile("C:\\App\\Profiles\\B.vdp");
    rig.list();

    rig.tick("A.vdp");
    EXPECT_TRUE(rig.frame.bProfileTicked);
    EXPECT_EQ(rig.frame.panel1.text, "Selecting the Profile");
    EXPECT_FALSE(rig.form.cmdClose.enabled);
    EXPECT_FALSE(rig.form.cmdSelProfile.enabled);

    rig.frame.panel1.text.clear();
    rig.tick("B.vdp");
    EXPECT_FALSE(rig.form.lstOpen.rows[1].checked);
    EXPECT_TRUE(rig.form.lstOpen.rows[0].checked);
    EXPECT_TRUE(rig.frame.bProfileTicked); // the tick was taken back without a handler
    EXPECT_THAT(rig.messages(), ElementsAre("Only one profile can be selected at a time"));
    EXPECT_EQ(rig.frame.panel1.text, "");
    EXPECT_FALSE(rig.form.cmdClose.enabled);

    rig.tick("A.vdp", false);
    EXPECT_FALSE(rig.frame.bProfileTicked);
    EXPECT_TRUE(rig.form.cmdClose.enabled);
    EXPECT_TRUE(rig.form.cmdSelProfile.enabled);

    rig.tick("B.vdp");
    EXPECT_TRUE(rig.form.lstOpen.rows[1].checked);
}

TEST_F(OpeningListTest, ColumnsSortUpwardsAndThenByTurns)
{
    rig.disk.setNow(at({{2025, 10, 1}, {9, 0, 0}}));
    rig.putProfile("C:\\App\\Profiles\\p10.vdp");
    rig.disk.setNow(at({{2025, 9, 30}, {9, 0, 0}}));
    rig.putProfile("C:\\App\\Profiles\\P2.vdp");
    rig.disk.setNow(at({{2025, 10, 1}, {13, 0, 0}})); // as texts: 1:00:00 PM before 9:00:00 AM
    rig.putProfile("C:\\App\\Profiles\\z\\a.vdp");
    rig.list();
    rig.tick("P2.vdp");

    lstOpen_ColumnClick(rig.opening, 0);
    EXPECT_THAT(rig.names(), ElementsAre("a.vdp", "P2.vdp", "p10.vdp"));
    EXPECT_TRUE(rig.form.lstOpen.rows[1].checked); // the tick goes with its row
    lstOpen_ColumnClick(rig.opening, 0);
    EXPECT_THAT(rig.names(), ElementsAre("p10.vdp", "P2.vdp", "a.vdp"));
    lstOpen_ColumnClick(rig.opening, 0);
    EXPECT_THAT(rig.names(), ElementsAre("a.vdp", "P2.vdp", "p10.vdp"));

    lstOpen_ColumnClick(rig.opening, 2);
    EXPECT_THAT(rig.names(), ElementsAre("P2.vdp", "p10.vdp", "a.vdp"));
    EXPECT_EQ(rig.form.SortKey, 2);
    EXPECT_FALSE(rig.form.descending);
    lstOpen_ColumnClick(rig.opening, 2);
    EXPECT_THAT(rig.names(), ElementsAre("a.vdp", "p10.vdp", "P2.vdp"));
    EXPECT_TRUE(rig.form.descending);

    lstOpen_ColumnClick(rig.opening, 1);
    EXPECT_THAT(rig.names(), ElementsAre("p10.vdp", "P2.vdp", "a.vdp"));
    EXPECT_EQ(rig.form.lstOpen.rows[2].third, "10/1/2025 1:00:00 PM");
}

} // namespace
} // namespace vardelin::profile
