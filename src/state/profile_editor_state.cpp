#include "state/profile_editor_state.h"

#include "state/name_tables.h"

namespace vardelin::state {
namespace {

template <std::size_t N>
void fill(ListBox& list, const std::array<std::string_view, N>& names)
{
    list.clear();
    for (const std::string_view name : names)
        list.addItem(name);
}

template <std::size_t N>
std::vector<std::string> texts(const std::array<std::string_view, N>& names)
{
    return {names.begin(), names.end()};
}

} // namespace

void fillDayNames(ListBox& list)
{
    fill(list, kDayNames);
}

void fillMonthNames(ListBox& list)
{
    fill(list, kMonthNames);
}

void fillMonthDates(ListBox& list)
{
    list.clear();
    for (int date = 1; date <= kDatesInMonthList; ++date)
        list.addItem(std::to_string(date));
}

ProfileEditorState::ProfileEditorState()
{
    fill(lstOtherData, kOtherDataNames);
    cmbHintQues.items = texts(kHintQuestions);
    cmbSizeOfBkp.items = texts(kSizeUnits);
    // A unit stands there from the start: a size without one would refuse every first save.
    cmbSizeOfBkp.text = "MB";
    for (TextBox* const recurrence :
         {&txtDailyRecur, &txtWeeklyRecur, &txtMonthlyRecur, &txtYearlyRecur})
        recurrence->text = "1";
    fillDayNames(lstWeekDays);
    fillMonthDates(lstMonthDate);
    fillMonthNames(lstMonth);
    fillMonthDates(lstYearDate);
    Label4.caption = "Days";
}

std::array<OptionButton*, 4> ProfileEditorState::patternOptions()
{
    return {&optDaily, &optWeekly, &optMonthly, &optYearly};
}

std::array<const OptionButton*, 4> ProfileEditorState::patternOptions() const
{
    return {&optDaily, &optWeekly, &optMonthly, &optYearly};
}

std::array<OptionButton*, 8> ProfileEditorState::retentionOptions()
{
    return {&optVer1, &optVer2, &optVer3, &optVer4, &optVer5, &optVer6, &optVer7, &optVer8};
}

std::array<const OptionButton*, 8> ProfileEditorState::retentionOptions() const
{
    return {&optVer1, &optVer2, &optVer3, &optVer4, &optVer5, &optVer6, &optVer7, &optVer8};
}

std::array<Frame*, 4> ProfileEditorState::patternPages()
{
    return {&Frame6, &Frame7, &Frame8, &Frame9};
}

void showPatternPage(ProfileEditorState& editor, int pattern)
{
    const auto pages = editor.patternPages();
    for (std::size_t i = 0; i < pages.size(); ++i)
        pages.at(i)->visible = static_cast<int>(i) + 1 == pattern;
}

} // namespace vardelin::state
