#include "profile/profile_lists.h"

#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

using test::ProfileRig;
using testing::ElementsAre;

class ProfileListsTest : public testing::Test {
protected:
    ProfileListsTest()
    {
        for (base::TextCollection* const list : allLists())
            list->add("item", "key");
        scalars.bHaveSources = true;
        scalars.bHaveOtherData = true;
        scalars.bHaveIncluded = true;
        scalars.bHaveDestination = true;
    }

    std::vector<base::TextCollection*> allLists()
    {
        return {&save.clxnSources,       &save.clxnFolderNames,   &save.clxnExcluded,
                &save.clxnIncluded,      &save.clxnOtherData,     &save.clxnSchedule,
                &save.clxnExtraSourcesA, &save.clxnExtraSourcesB, &save.clxnDroppedSources};
    }
    void expectFlagsCleared()
    {
        EXPECT_FALSE(scalars.bHaveSources);
        EXPECT_FALSE(scalars.bHaveOtherData);
        EXPECT_FALSE(scalars.bHaveDestination);
        // Neither operation touches this one: it never falls back.
        EXPECT_TRUE(scalars.bHaveIncluded);
    }

    ProfileRig rig;
    state::SaveLists& save = rig.store.save;
    state::ProfileScalars& scalars = rig.store.scalars;
};

TEST_F(ProfileListsTest, ClearCollectionsEmptiesEveryList)
{
    ClearCollections(rig.profiles);
    for (const base::TextCollection* const list : allLists())
        EXPECT_TRUE(list->empty());
    expectFlagsCleared();
    EXPECT_THAT(rig.entries(), ElementsAre("ClearCollections End 2"));
}

TEST_F(ProfileListsTest, ClearCollectionsForSaveKeepsWhatFollowsTheEditorsLists)
{
    ClearCollectionsForSave(rig.profiles);
    for (base::TextCollection* const list : allLists()) {
        const bool stays = list == &save.clxnExcluded || list == &save.clxnIncluded ||
                           list == &save.clxnFolderNames;
        EXPECT_EQ(list->count(), stays ? 1U : 0U);
    }
    expectFlagsCleared();
    EXPECT_THAT(rig.entries(), ElementsAre("ClearCollectionsForSave End 2"));
}

TEST_F(ProfileListsTest, EmptiedListsCanBeFilledAtOnce)
{
    ClearCollections(rig.profiles);
    ClearCollections(rig.profiles);
    save.clxnSources.add("item", "key");
    EXPECT_EQ(save.clxnSources.count(), 1U);
}

TEST_F(ProfileListsTest, GettingOtherBackUpTakesTheSelectedRowsInOrder)
{
    save.clxnOtherData.clear();
    test::select(rig.editor.lstOtherData, {"Outlook Settings", "Registry Settings"});
    GettingOtherBackUp(rig.profiles);
    EXPECT_THAT(save.clxnOtherData.items(), ElementsAre("Registry Settings", "Outlook Settings"));
    EXPECT_THAT(rig.entries(), ElementsAre("GettingOtherBackUp End 2"));
}

struct RefreshCase {
    std::string_view name;
    bool daily, weekly, monthly, yearly;
};

TEST(Refreshlist, BringsTheMarkedPagesToLife)
{
    for (const RefreshCase& pages : {RefreshCase{"daily", true, false, false, false},
                                     RefreshCase{"weekly", false, true, false, false},
                                     RefreshCase{"monthly", false, false, true, false},
                                     RefreshCase{"yearly", false, false, false, true},
                                     RefreshCase{"none", false, false, false, false}}) {
        SCOPED_TRACE(pages.name);
        ProfileRig rig;
        state::ProfileEditorState& editor = rig.editor;
        for (state::TextBox* const box : {&editor.txtDailyRecur, &editor.txtWeeklyRecur,
                                          &editor.txtMonthlyRecur, &editor.txtYearlyRecur})
            box->enabled = false;
        for (state::TimePicker* const picker :
             {&editor.dtpDaily, &editor.dtpWeekly, &editor.dtpMonthly, &editor.dtpYearly})
            picker->enabled = false;
        for (state::ListBox* const list :
             {&editor.lstWeekDays, &editor.lstMonthDate, &editor.lstMonth, &editor.lstYearDate}) {
            list->clear();
            list->addItem("saved").selected = true;
        }

        rig.lists.Refreshlist(pages.daily, pages.weekly, pages.monthly, pages.yearly);

        EXPECT_EQ(editor.txtDailyRecur.enabled, pages.daily);
        EXPECT_EQ(editor.dtpDaily.enabled, pages.daily);
        EXPECT_EQ(editor.txtWeeklyRecur.enabled, pages.weekly);
        EXPECT_EQ(editor.dtpWeekly.enabled, pages.weekly);
        EXPECT_EQ(editor.txtMonthlyRecur.enabled, pages.monthly);
        EXPECT_EQ(editor.dtpMonthly.enabled, pages.monthly);
        EXPECT_EQ(editor.txtYearlyRecur.enabled, pages.yearly);
        EXPECT_EQ(editor.dtpYearly.enabled, pages.yearly);
        EXPECT_EQ(editor.lstWeekDays.rows.size(), pages.weekly ? 7U : 1U);
        EXPECT_EQ(editor.lstMonthDate.rows.size(), pages.monthly ? 31U : 1U);
        EXPECT_EQ(editor.lstMonth.rows.size(), pages.yearly ? 12U : 1U);
        EXPECT_EQ(editor.lstYearDate.rows.size(), 31U) << "in every call";
        EXPECT_TRUE(test::selectedOf(editor.lstYearDate).empty());
        EXPECT_THAT(rig.entries(), ElementsAre("Refreshlist End 2"));
    }
}

} // namespace
} // namespace vardelin::profile
