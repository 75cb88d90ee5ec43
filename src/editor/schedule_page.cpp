#include "editor/schedule_page.h"

#include "editor/schedule_texts.h"

#include <array>
#include <vector>

namespace vardelin::editor {
namespace {

namespace texts = schedule_texts;
using state::ListBox;
using state::ListRow;

enum class Pattern : std::size_t { Daily, Weekly, Monthly, Yearly };

// One pattern's page. Yearly has two lists, daily none.
struct PatternPage {
    state::OptionButton& option;
    state::TextBox& recurrence;
    state::TimePicker& time;
    std::vector<ListBox*> lists;
};

std::array<PatternPage, 4> pagesOf(state::ProfileEditorState& e)
{
    return {{
        {e.optDaily, e.txtDailyRecur, e.dtpDaily, {}},
        {e.optWeekly, e.txtWeeklyRecur, e.dtpWeekly, {&e.lstWeekDays}},
        {e.optMonthly, e.txtMonthlyRecur, e.dtpMonthly, {&e.lstMonthDate}},
        {e.optYearly, e.txtYearlyRecur, e.dtpYearly, {&e.lstMonth, &e.lstYearDate}},
    }};
}

// What each pattern leaves to choose from.
struct RetentionRule {
    std::string_view handler;
    std::string_view enabled;
};
// E is enabled, D disabled: optVer1 to optVer8, then Label4 after the blank.
constexpr std::array<RetentionRule, 4> kRetentionRules{{
    {"optDaily_Click", "EEDDDEEE E"},
    {"optWeekly_Click", "DDEDDEED D"},
    {"optMonthly_Click", "DDDEDEED D"},
    {"optYearly_Click", "DDDDEEED D"},
}};
constexpr std::size_t kLabel4Column = 9;
constexpr int kRetainLastVersions = 6;

// The hour, minute and second of now, without a date.
base::DateTime timeOfNow(PagesContext& context)
{
    return {{}, context.machine.clock.now().time};
}

void resetPage(const PatternPage& page)
{
    page.recurrence.text = "1";
    for (ListBox* const list : page.lists) {
        for (ListRow& row : list->rows)
            row.selected = false;
    }
}

void patternClick(PagesContext& context, Pattern pattern)
{
    const auto index = static_cast<std::size_t>(pattern);
    const RetentionRule& rule = kRetentionRules.at(index);
    runHandler(context, rule.handler, [&] {
        state::ProfileEditorState& editor = context.editor;
        state::showPatternPage(editor, static_cast<int>(index) + 1);
        pagesOf(editor).at(index).time.value = timeOfNow(context);
        editor.dtpStTime.value = timeOfNow(context);
        const auto options = editor.retentionOptions();
        for (std::size_t i = 0; i < options.size(); ++i)
            options[i]->enabled = rule.enabled.at(i) == 'E';
        editor.Label4.enabled = rule.enabled.at(kLabel4Column) == 'E';
        state::choose(options, kRetainLastVersions);
        if (pattern == Pattern::Weekly)
            editor.txtLatestDaysVer.enabled = false;
        noteChange(context.frame);
    });
}

void switchOn(PagesContext& context)
{
    state::ProfileEditorState& editor = context.editor;
    editor.Frame4.enabled = true;
    editor.Frame5.enabled = true;
    editor.Frame3.enabled = true;
    state::showPatternPage(editor, 1);
    state::choose(editor.patternOptions(), 1);
    optDaily_Click(context);
    editor.dtpStDate.value = {context.machine.clock.now().date, {}};
    editor.dtpStTime.value = timeOfNow(context);
}

void switchOff(PagesContext& context)
{
    state::ProfileEditorState& editor = context.editor;
    editor.Frame4.enabled = false;
    editor.Frame5.enabled = false;
    editor.Frame3.enabled = false;
    DeselectOpt(context);
    // A pattern that was tried before the last one kept its choice; the next timetable starts with
    // every page empty.
    for (const PatternPage& page : pagesOf(editor))
        resetPage(page);
}

void rowChecked(PagesContext& context, std::string_view handler, ListBox& list, std::size_t row)
{
    runHandler(context, handler, [&] {
        if (context.frame.BL_Open_Mode)
            list.rows.at(row).selected = true;
        noteChange(context.frame);
    });
}

} // namespace

void chkAutoSched_Click(PagesContext& context)
{
    runHandler(context, "chkAutoSched_Click", [&] {
        if (context.editor.chkAutoSched.value == 0)
            switchOff(context);
        else
            switchOn(context);
        noteChange(context.frame);
    });
}

void optDaily_Click(PagesContext& context)
{
    patternClick(context, Pattern::Daily);
}

void optWeekly_Click(PagesContext& context)
{
    patternClick(context, Pattern::Weekly);
}

void optMonthly_Click(PagesContext& context)
{
    patternClick(context, Pattern::Monthly);
}

void optYearly_Click(PagesContext& context)
{
    patternClick(context, Pattern::Yearly);
}

void DeselectOpt(PagesContext& context)
{
    runHandler(context, "DeselectOpt", trace::message(texts::kDeselectFailed), [&] {
        for (const PatternPage& page : pagesOf(context.editor)) {
            if (page.option.value) {
                page.option.value = false;
                resetPage(page);
            }
        }
    });
}

void dtpStDate_Change(PagesContext& context)
{
    runHandler(context, "dtpStDate_Change", [&] {
        noteChange(context.frame);
        base::Date& date = context.editor.dtpStDate.value.date;
        const base::Date& saved = context.store.scalars.dStartDate;
        // A profile without a saved start has the zero date, which no picked date goes below.
        if (date < context.machine.clock.now().date && date <= saved) {
            tell(context, texts::kStartTooEarly);
            date = saved;
        }
    });
}

void lstWeekDays_ItemCheck(PagesContext& context, std::size_t row)
{
    rowChecked(context, "lstWeekDays_ItemCheck", context.editor.lstWeekDays, row);
}

void lstMonthDate_ItemCheck(PagesContext& context, std::size_t row)
{
    rowChecked(context, "lstMonthDate_ItemCheck", context.editor.lstMonthDate, row);
}

void lstMonth_ItemCheck(PagesContext& context, std::size_t row)
{
    rowChecked(context, "lstMonth_ItemCheck", context.editor.lstMonth, row);
}

void lstYearDate_ItemCheck(PagesContext& context, std::size_t row)
{
    rowChecked(context, "lstYearDate_ItemCheck", context.editor.lstYearDate, row);
}

int recurrenceKeyPress(int key)
{
    return digitsOnly(key);
}

} // namespace vardelin::editor
