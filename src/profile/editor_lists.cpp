#include "profile/editor_lists.h"

namespace vardelin::profile {
namespace {

void enable(state::TextBox& recurrence, state::TimePicker& time)
{
    recurrence.enabled = true;
    time.enabled = true;
}

} // namespace

void StateEditorLists::Refreshlist(bool daily, bool weekly, bool monthly, bool yearly)
{
    trace::runTraced(m_trace, "Refreshlist", "frmProfile", "Refreshlist", [&] {
        if (daily)
            enable(m_editor.txtDailyRecur, m_editor.dtpDaily);
        if (weekly) {
            enable(m_editor.txtWeeklyRecur, m_editor.dtpWeekly);
            state::fillDayNames(m_editor.lstWeekDays);
        }
        if (monthly) {
            enable(m_editor.txtMonthlyRecur, m_editor.dtpMonthly);
            state::fillMonthDates(m_editor.lstMonthDate);
        }
        if (yearly) {
            enable(m_editor.txtYearlyRecur, m_editor.dtpYearly);
            state::fillMonthNames(m_editor.lstMonth);
        }
        state::fillMonthDates(m_editor.lstYearDate);
        ++m_editor.revision;
    });
}

} // namespace vardelin::profile
