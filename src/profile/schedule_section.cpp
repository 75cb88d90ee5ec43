#include "profile/schedule_section.h"

#include "base/text.h"
#include "profile/profile_format.h"
#include "state/name_tables.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace vardelin::profile {
namespace {

using base::trim;
using format::valueOf;

// Which of the eight retention options each pattern leaves to choose from.
constexpr std::array<std::array<bool, 8>, 4> kRetentionOfPattern{{
    {true, true, false, false, false, true, true, true},   // daily
    {false, false, true, false, false, true, true, false}, // weekly
    {false, false, false, true, false, true, true, false}, // monthly
    {false, false, false, false, true, true, true, false}, // yearly
}};

void addRow(state::ListBox& list, std::string_view text)
{
    list.addItem(text).selected = true;
}

class ScheduleReader {
public:
    ScheduleReader(LineInput& lines, state::ProfileEditorState& editor, base::Date& startDate)
        : m_lines(lines), m_editor(editor), m_startDate(startDate)
    {
    }

    void read();

private:
    void readPattern(int pattern);
    void readEvery(state::TextBox& interval, state::TimePicker& time);
    void readTime(state::TimePicker& picker);
    void readWeekDays();
    void readRows(state::ListBox& list);

    LineInput& m_lines;
    state::ProfileEditorState& m_editor;
    base::Date& m_startDate;
};

void ScheduleReader::read()
{
    m_editor.chkAutoSched.value = 1;
    while (const auto line = sectionLine(m_lines, format::kScheduling)) {
        m_editor.Frame4.enabled = false;
        // A text that is no date leaves the picker as it is.
        if (const auto date = base::parseDate(valueOf(*line)))
            m_editor.dtpStDate.value = {*date, {}};
        m_startDate = m_editor.dtpStDate.value.date;
        readTime(m_editor.dtpStTime);

        const std::string_view pattern = trim(valueOf(m_lines.next().value_or("")));
        for (state::OptionButton* const option : m_editor.patternOptions())
            option->enabled = false;
        if (pattern.size() == 1 && pattern[0] >= '1' && pattern[0] <= '4')
            readPattern(pattern[0] - '0');
    }
}

void ScheduleReader::readPattern(int pattern)
{
    state::choose(m_editor.patternOptions(), pattern);
    state::showPatternPage(m_editor, pattern);
    const auto& allowed = kRetentionOfPattern.at(static_cast<std::size_t>(pattern) - 1);
    const auto options = m_editor.retentionOptions();
    for (std::size_t i = 0; i < options.size(); ++i)
        options[i]->enabled = allowed[i];

    switch (pattern) {
    case 1:
        readEvery(m_editor.txtDailyRecur, m_editor.dtpDaily);
        break;
    case 2:
        readEvery(m_editor.txtWeeklyRecur, m_editor.dtpWeekly);
        readWeekDays();
        break;
    case 3:
        readEvery(m_editor.txtMonthlyRecur, m_editor.dtpMonthly);
        readRows(m_editor.lstMonthDate);
        break;
    default:
        readEvery(m_editor.txtYearlyRecur, m_editor.dtpYearly);
        readRows(m_editor.lstMonth);
        readRows(m_editor.lstYearDate);
        break;
    }
}

void ScheduleReader::readEvery(state::TextBox& interval, state::TimePicker& time)
{
    interval.text = valueOf(m_lines.next().value_or(""));
    interval.enabled = false;
    readTime(time);
    time.enabled = false;
}

void ScheduleReader::readTime(state::TimePicker& picker)
{
    if (const auto time = base::parseTime(valueOf(m_lines.next().value_or(""))))
        picker.value = {{}, *time};
}

void ScheduleReader::readWeekDays()
{
    const std::string_view letters = valueOf(m_lines.next().value_or(""));
    m_editor.lstWeekDays.clear();
    for (std::size_t day = 0; day < state::kDayNames.size() && day < letters.size(); ++day) {
        if (letters[day] == 'S')
            addRow(m_editor.lstWeekDays, state::kDayNames.at(day));
    }
}

void ScheduleReader::readRows(state::ListBox& list)
{
    const std::string_view values = valueOf(m_lines.next().value_or(""));
    list.clear();
    for (const std::string_view value : base::split(values, ","))
        addRow(list, value);
}

} // namespace

void readScheduleSection(LineInput& lines, state::ProfileEditorState& editor, base::Date& startDate)
{
    ScheduleReader(lines, editor, startDate).read();
}

} // namespace vardelin::profile
