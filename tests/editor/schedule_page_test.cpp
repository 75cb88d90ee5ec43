#include "editor/schedule_page.h"

#include "pages_rig.h"
#include "profile/editor_lists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::editor {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr base::TimeOfDay kNow{9, 5, 3};

class SchedulePage : public testing::Test, public test::PagesRig {
protected:
    void switchSchedule(int value)
    {
        record.chkAutoSched.value = value;
        chkAutoSched_Click(pages);
    }
    void pick(int pattern)
    {
        static constexpr void (*kHandlers[])(PagesContext&){optDaily_Click, optWeekly_Click,
                                                            optMonthly_Click, optYearly_Click};
        state::choose(record.patternOptions(), pattern);
        kHandlers[pattern - 1](pages);
    }
    std::string retentionEnabled()
    {
        std::string text;
        for (const state::OptionButton* const option : record.retentionOptions())
            text += option->enabled ? 'E' : 'D';
        return text + (record.Label4.enabled ? " E" : " D");
    }
    std::string visiblePages() const
    {
        std::string text;
        for (const auto& [name, page] : {std::pair{'6', &record.Frame6},
                                         {'7', &record.Frame7},
                                         {'8', &record.Frame8},
                                         {'9', &record.Frame9}}) {
            if (page->visible)
                text += name;
        }
        return text;
    }
    int retention() { return state::chosen(std::as_const(record).retentionOptions()); }
    int pattern() { return state::chosen(std::as_const(record).patternOptions()); }
};

// ---- the start

TEST_F(SchedulePage, ANewFormHasADisabledTimetableWithoutAPattern)
{
    EXPECT_EQ(record.chkAutoSched.value, 0);
    EXPECT_FALSE(record.Frame3.enabled || record.Frame4.enabled || record.Frame5.enabled);
    EXPECT_EQ(visiblePages(), "6");
    EXPECT_EQ(pattern(), 0);
    EXPECT_THAT(
        rowTexts(record.lstWeekDays),
        ElementsAre("Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"));
    EXPECT_EQ(record.lstMonthDate.rows.size(), 31U);
    EXPECT_EQ(record.lstYearDate.rows.back().text, "31");
    EXPECT_EQ(record.lstMonth.rows.size(), 12U);
}

TEST_F(SchedulePage, SwitchingOnStartsADailyTimetableNow)
{
    record.dtpStDate.value = {{2020, 1, 1}, {1, 2, 3}};
    switchSchedule(1);
    EXPECT_TRUE(record.Frame3.enabled && record.Frame4.enabled && record.Frame5.enabled);
    EXPECT_EQ(pattern(), 1);
    EXPECT_EQ(visiblePages(), "6");
    EXPECT_EQ(record.dtpStDate.value.date, (base::Date{2026, 3, 10}));
    EXPECT_EQ(record.dtpStTime.value.time, kNow);
    EXPECT_EQ(record.dtpDaily.value.time, kNow);
    EXPECT_EQ(record.txtDailyRecur.text, "1");
    EXPECT_TRUE(changed());
}

// Otherwise the table of the pattern before the last switch would still hold.
TEST_F(SchedulePage, SwitchingOnRunsWhatChoosingDailyDoes)
{
    pick(4);
    state::choose(record.retentionOptions(), 7);
    switchSchedule(1);
    EXPECT_EQ(retentionEnabled(), "EEDDDEEE E");
    EXPECT_EQ(retention(), 6);
    EXPECT_THAT(entries(), Contains(testing::StartsWith("optDaily_Click End")));
}

TEST_F(SchedulePage, SwitchingOffDisablesTheTimetable)
{
    switchSchedule(1);
    changed();
    switchSchedule(0);
    EXPECT_FALSE(record.Frame3.enabled || record.Frame4.enabled || record.Frame5.enabled);
    EXPECT_EQ(pattern(), 0);
    EXPECT_TRUE(changed());
}

// The retention options stay as the last pattern left them: they say nothing without a schedule.
TEST_F(SchedulePage, SwitchingOffLeavesWhatRetentionAllows)
{
    switchSchedule(1);
    pick(2);
    switchSchedule(0);
    EXPECT_EQ(retentionEnabled(), "DDEDDEED D");
    EXPECT_EQ(retention(), 6);
}

TEST_F(SchedulePage, OffAndOnGivesDailyWithOneAndNothingSelectedOnAnyPage)
{
    switchSchedule(1);
    record.txtDailyRecur.text = "4";
    for (const int each : {3, 4, 2}) { // the last one is the one that is left
        pick(each);
        record.txtMonthlyRecur.text = record.txtYearlyRecur.text = record.txtWeeklyRecur.text = "5";
        select(record.lstMonthDate, {"3"});
        select(record.lstMonth, {"May"});
        select(record.lstYearDate, {"4"});
        select(record.lstWeekDays, {"Monday"});
    }
    switchSchedule(0);
    switchSchedule(1);
    EXPECT_EQ(pattern(), 1);
    EXPECT_EQ(visiblePages(), "6");
    for (const state::TextBox* const box : {&record.txtDailyRecur, &record.txtWeeklyRecur,
                                            &record.txtMonthlyRecur, &record.txtYearlyRecur})
        EXPECT_EQ(box->text, "1");
    for (const state::ListBox* const list :
         {&record.lstWeekDays, &record.lstMonthDate, &record.lstMonth, &record.lstYearDate})
        EXPECT_THAT(selectedRows(*list), IsEmpty());
}

// ---- the patterns

TEST_F(SchedulePage, EachPatternShowsItsPageAndAllowsItsRetention)
{
    struct Case {
        int pattern;
        const char* page;
        const char* retention; // optVer1 to optVer8, then Label4
    };
    const Case cases[] = {
        {1, "6", "EEDDDEEE E"},
        {2, "7", "DDEDDEED D"},
        {3, "8", "DDDEDEED D"},
        {4, "9", "DDDDEEED D"},
    };
    for (const Case& from : cases) {
        for (const Case& to : cases) {
            pick(from.pattern);
            pick(to.pattern);
            EXPECT_EQ(visiblePages(), to.page);
            EXPECT_EQ(retentionEnabled(), to.retention) << from.pattern << to.pattern;
        }
    }
}

TEST_F(SchedulePage, EachPatternSetsItsTimeAndTheStartsToNow)
{
    const state::TimePicker* const pickers[] = {&record.dtpDaily, &record.dtpWeekly,
                                                &record.dtpMonthly, &record.dtpYearly};
    for (int each = 1; each <= 4; ++each) {
        record.dtpStTime.value = {};
        pick(each);
        EXPECT_EQ(pickers[each - 1]->value.time, kNow);
        EXPECT_EQ(record.dtpStTime.value.time, kNow);
        for (int other = each; other < 4; ++other)
            EXPECT_EQ(pickers[other]->value.time, base::TimeOfDay{}) << other;
        EXPECT_TRUE(changed());
    }
}

// A count of versions means something under every pattern; the former choice may not, so it is
// lost.
TEST_F(SchedulePage, ChangingThePatternMovesRetentionToRetainLast)
{
    for (int each = 1; each <= 4; ++each) {
        state::choose(record.retentionOptions(), 7);
        record.txtLatestDaysVer.text = "9"; // no handler of the option runs
        pick(each);
        EXPECT_EQ(retention(), 6);
        EXPECT_EQ(record.txtLatestDaysVer.text, "9");
    }
}

TEST_F(SchedulePage, WeeklyAloneDisablesTheDaysBoxEvenIfItIsFilled)
{
    record.txtLatestDaysVer.text = "9";
    for (const int each : {1, 3, 4}) {
        pick(each);
        EXPECT_TRUE(record.txtLatestDaysVer.enabled);
    }
    pick(2);
    EXPECT_FALSE(record.txtLatestDaysVer.enabled);
    pick(1);
    EXPECT_FALSE(record.txtLatestDaysVer.enabled); // until its option is chosen
}

TEST_F(SchedulePage, DeselectingTouchesTheChosenPatternAlone)
{
    select(record.lstMonthDate, {"3"});
    select(record.lstMonth, {"May"});
    select(record.lstYearDate, {"4", "5"});
    record.txtYearlyRecur.text = record.txtMonthlyRecur.text = "7";
    state::choose(record.patternOptions(), 4);
    DeselectOpt(pages);
    EXPECT_EQ(pattern(), 0);
    EXPECT_EQ(record.txtYearlyRecur.text, "1");
    EXPECT_THAT(selectedRows(record.lstMonth), IsEmpty());
    EXPECT_THAT(selectedRows(record.lstYearDate), IsEmpty());
    EXPECT_EQ(record.txtMonthlyRecur.text, "7");
    EXPECT_THAT(selectedRows(record.lstMonthDate), ElementsAre("3"));
}

TEST_F(SchedulePage, RefreshingFillsThePagesAskedForAndTheYearsDatesAlways)
{
    profile::StateEditorLists lists(context, record);
    select(record.lstYearDate, {"4"});
    select(record.lstWeekDays, {"Monday"});
    record.txtWeeklyRecur.enabled = record.dtpWeekly.enabled = false;
    record.txtDailyRecur.enabled = record.dtpDaily.enabled = false;
    lists.Refreshlist(true, false, false, false);
    EXPECT_TRUE(record.txtDailyRecur.enabled && record.dtpDaily.enabled);
    EXPECT_FALSE(record.txtWeeklyRecur.enabled || record.dtpWeekly.enabled);
    EXPECT_THAT(selectedRows(record.lstWeekDays), ElementsAre("Monday"));
    EXPECT_THAT(selectedRows(record.lstYearDate), IsEmpty());
    lists.Refreshlist(false, true, true, true);
    EXPECT_TRUE(record.txtWeeklyRecur.enabled && record.dtpWeekly.enabled);
    EXPECT_THAT(selectedRows(record.lstWeekDays), IsEmpty());
    EXPECT_FALSE(changed()); // no handler
}

// ---- lists, boxes, the start's date

TEST_F(SchedulePage, ARowIsAChangeAndComesBackInAView)
{
    struct Case {
        void (*handler)(PagesContext&, std::size_t);
        state::ListBox& list;
    };
    const Case cases[] = {{lstWeekDays_ItemCheck, record.lstWeekDays},
                          {lstMonthDate_ItemCheck, record.lstMonthDate},
                          {lstMonth_ItemCheck, record.lstMonth},
                          {lstYearDate_ItemCheck, record.lstYearDate}};
    for (const Case& each : cases) {
        each.handler(pages, 2); // was unselected
        EXPECT_THAT(selectedRows(each.list), IsEmpty());
        EXPECT_TRUE(changed());
    }
    viewMode();
    for (const Case& each : cases) {
        each.handler(pages, 2);
        EXPECT_THAT(selectedRows(each.list), ElementsAre(each.list.rows[2].text));
        EXPECT_FALSE(changed());
    }
}

TEST_F(SchedulePage, IntervalBoxesTakeDigitsAndBackspace)
{
    for (int key = 1; key < 256; ++key) {
        const bool passes = (key >= '0' && key <= '9') || key == 8;
        EXPECT_EQ(recurrenceKeyPress(key), passes ? key : 0) << key;
    }
}

// What the box's own menu could paste is gone then, and with it what another program put there.
TEST_F(SchedulePage, TheRightButtonInABoxForDigitsEmptiesTheClipboard)
{
    digitBoxMouseDown(pages, 1);
    EXPECT_THAT(window.calls, IsEmpty());
    digitBoxMouseDown(pages, 2);
    EXPECT_THAT(window.calls, ElementsAre("clearClipboard"));
}

TEST_F(SchedulePage, AStartBeforeTodayIsRefusedUpToTheSavedOneAndAcceptedBehindIt)
{
    store.scalars.dStartDate = {2026, 3, 3}; // today is the 10th
    struct Case {
        int day;
        int shown;
        bool message;
    };
    const Case cases[] = {{2, 3, true},  {3, 3, true},    {4, 4, false},  {5, 5, false},
                          {9, 9, false}, {10, 10, false}, {11, 11, false}};
    for (const Case& each : cases) {
        clearBoxes();
        record.dtpStDate.value = {{2026, 3, each.day}, {7, 0, 0}};
        dtpStDate_Change(pages);
        EXPECT_EQ(record.dtpStDate.value.date, (base::Date{2026, 3, each.shown})) << each.day;
        EXPECT_EQ(record.dtpStDate.value.time, (base::TimeOfDay{7, 0, 0}));
        if (each.message) {
            EXPECT_THAT(messages(), ElementsAre("Effective start date should be Equal (or) Greater "
                                                "than current date"));
        } else {
            EXPECT_THAT(messages(), IsEmpty()) << each.day;
        }
        EXPECT_TRUE(changed());
    }
}

TEST_F(SchedulePage, WithoutASavedStartEveryDatePasses)
{
    record.dtpStDate.value = {{1999, 1, 1}, {}};
    dtpStDate_Change(pages);
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_EQ(record.dtpStDate.value.date.year, 1999);
}

TEST_F(SchedulePage, ASavedStartInTheFutureLetsNoPastDatePass)
{
    store.scalars.dStartDate = {2026, 4, 1};
    record.dtpStDate.value = {{2026, 3, 9}, {}};
    dtpStDate_Change(pages);
    EXPECT_EQ(record.dtpStDate.value.date, (base::Date{2026, 4, 1}));
    record.dtpStDate.value = {{2026, 3, 10}, {}};
    dtpStDate_Change(pages);
    EXPECT_EQ(record.dtpStDate.value.date, (base::Date{2026, 3, 10}));
}

} // namespace
} // namespace vardelin::editor
