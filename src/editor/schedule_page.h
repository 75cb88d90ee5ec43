#pragma once

#include "editor/pages_context.h"

#include <cstddef>

// The timetable on the editor's third page: when a profile starts to run, and one of four patterns
// by which it goes on, each with a page of its own. The pattern decides which retention options may
// be chosen. The boxes and pickers without a handler here only note a change (noteChange).
// Refreshlist, which fills the pages' lists anew, is profile::EditorLists'.
namespace vardelin::editor {

// On: enables the timetable and begins with a daily one, from now on. Off: disables it and gives up
// what was chosen.
void chkAutoSched_Click(PagesContext& context);

// A pattern was chosen: shows its page, sets its time and the start's to now, and allows the
// retention options that go with it, of which "Retain Last" n versions is chosen.
void optDaily_Click(PagesContext& context);
void optWeekly_Click(PagesContext& context);
void optMonthly_Click(PagesContext& context);
void optYearly_Click(PagesContext& context);

// Switches the chosen pattern off, its interval back to 1, its lists to nothing. What retention
// options are allowed stays.
void DeselectOpt(PagesContext& context);

// The start's date was changed: one before today is refused unless it lies after the start that the
// profile was saved with.
void dtpStDate_Change(PagesContext& context);

// A row was selected or unselected; in a view it is selected again.
void lstWeekDays_ItemCheck(PagesContext& context, std::size_t row);
void lstMonthDate_ItemCheck(PagesContext& context, std::size_t row);
void lstMonth_ItemCheck(PagesContext& context, std::size_t row);
void lstYearDate_ItemCheck(PagesContext& context, std::size_t row);

// txtDailyRecur, txtWeeklyRecur, txtMonthlyRecur and txtYearlyRecur: digits and backspace. A zero
// is refused when the profile is saved.
int recurrenceKeyPress(int key);

} // namespace vardelin::editor
