#include "profile/profile_writer.h"

#include "base/text.h"
#include "profile/profile_format.h"
#include "profile/replacing_file.h"
#include "trace/messages.h"

#include <utility>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

using base::TextCollection;
using base::trim;

constexpr int kUnreachablePath = 40093;
constexpr double kSourcesShare = 25; // of the bar, once for the cleaning and once for the printing
constexpr double kCleaningBound = 75;
constexpr double kPrintingBound = 99;

std::string_view trueOrFalse(bool value)
{
    return value ? format::kTrue : format::kFalse;
}

void addScheduleValue(TextCollection& schedule, std::string value, std::string_view key)
{
    // A value that is there already stays: the list is emptied after each save.
    schedule.tryAdd(std::move(value), key);
}

// Removes from `list` what `other` holds under its text, from the last item to the first.
void removeFound(TextCollection& list, const TextCollection& other)
{
    for (std::size_t i = list.count(); i >= 1; --i) {
        if (other.contains(list.item(i)))
            list.remove(i);
    }
}

class Writer {
public:
    Writer(ProfileContext& context, ReplacingFile& file)
        : m_editor(context.editor), m_save(context.store.save), m_scalars(context.store.scalars),
          m_bar(context.frame.pb), m_clock(context.machine.clock), m_schedules(context.schedules),
          m_file(file)
    {
    }

    void write(std::string_view name);

private:
    void cleanSources();
    void advance(double bound);
    void printSources();
    void printList(const format::Section& section, const TextCollection& list);
    void printNames(const format::Section& section, std::string_view names);
    void printOption(const format::Section& section, bool on, std::string_view line);
    void printDestination();
    void printPassword();
    void printOptions();
    void printSchedule();
    void printPattern(int pattern);
    void printSelectedRows(const state::ListBox& list, std::string_view key, std::string_view name);
    void printWeekDays();
    void printRetention();

    state::ProfileEditorState& m_editor;
    state::SaveLists& m_save;
    state::ProfileScalars& m_scalars;
    state::ProgressBar& m_bar;
    platform::Clock& m_clock;
    ScheduleRecords& m_schedules;
    ReplacingFile& m_file;
    double m_step = 0;
};

void Writer::write(std::string_view name)
{
    cleanSources();
    m_file.print(fmt::format("[{}]", name));
    printSources();
    printList(format::kExcludedOptions, m_save.clxnExcluded);
    printList(format::kIncludedOptions, m_save.clxnIncluded);
    printList(format::kOtherData, m_save.clxnOtherData);
    printNames(format::kIncludeByNames, m_editor.txtInclNames.text);
    printNames(format::kExcludeByNames, m_editor.txtExclNames.text);
    printDestination();
    printPassword();
    printOptions();
    if (m_editor.chkAutoSched.value == 1) {
        printSchedule();
    } else if (m_editor.chkAutoSched.value == 0) {
        base::PendingError unreached; // a profile is saved whether its record can be dropped or not
        unreached.attempt([&] { m_schedules.DeleteSchedKey(name); });
    }
    printRetention();
    m_scalars.bCompressFiles = m_editor.chkCompress.value == 1;
    m_file.print(fmt::format("{}{}", format::kCompress, trueOrFalse(m_scalars.bCompressFiles)));
    m_file.print(
        fmt::format("{}{}", format::kEncrypt, trueOrFalse(m_editor.chkEncrypt.value == 1)));
    m_file.print(fmt::format("[End of {}]", name));
}

void Writer::cleanSources()
{
    removeFound(m_save.clxnExtraSourcesA, m_save.clxnExtraSourcesB);
    removeFound(m_save.clxnExtraSourcesA, m_save.clxnSources);
    removeFound(m_save.clxnExtraSourcesB, m_save.clxnSources);
    TextCollection dropped = m_save.clxnDroppedSources;
    dropped.clear(); // keeps the rule for paths
    for (std::size_t i = 1; i <= m_save.clxnDroppedSources.count(); ++i) {
        const std::string& source = m_save.clxnDroppedSources.item(i);
        dropped.tryAdd(source, source);
    }
    removeFound(m_save.clxnDroppedSources, m_save.clxnExtraSourcesB);
    removeFound(m_save.clxnExtraSourcesB, dropped);

    const std::size_t count = m_save.clxnSources.count();
    if (count > 0)
        m_step = base::round(kSourcesShare / static_cast<double>(count), 6);
    for (std::size_t i = count; i >= 1; --i) {
        if (m_save.clxnDroppedSources.contains(m_save.clxnSources.item(i)))
            m_save.clxnSources.remove(i);
        advance(kCleaningBound);
    }
}

void Writer::advance(double bound)
{
    if (m_bar.value + m_step < bound)
        m_bar.value += m_step;
}

void Writer::printSources()
{
    m_file.print(format::kSourceFiles.opening);
    for (std::size_t i = 1; i <= m_save.clxnSources.count(); ++i) {
        m_file.print(m_save.clxnSources.item(i));
        advance(kPrintingBound);
    }
    for (const TextCollection* const extra :
         {&m_save.clxnExtraSourcesA, &m_save.clxnExtraSourcesB}) {
        for (std::size_t i = 1; i <= extra->count(); ++i)
            m_file.print(extra->item(i));
    }
    m_file.print(format::kSourceFiles.closing);
}

void Writer::printList(const format::Section& section, const TextCollection& list)
{
    m_file.print(section.opening);
    for (std::size_t i = 1; i <= list.count(); ++i)
        m_file.print(list.item(i));
    m_file.print(section.closing);
}

void Writer::printNames(const format::Section& section, std::string_view names)
{
    m_file.print(section.opening);
    if (!trim(names).empty())
        m_file.print(trim(names));
    m_file.print(section.closing);
}

void Writer::printDestination()
{
    m_file.print(format::kDestinationPath.opening);
    m_file.print(m_editor.txtDestLoc.text);
    m_file.print(format::kDestinationPath.closing);
    m_scalars.sDestinationPath = trim(m_editor.txtDestLoc.text);
}

void Writer::printPassword()
{
    const bool on = m_editor.chkPassword.value == 1;
    m_file.print(format::kPassword.opening);
    m_file.print(trueOrFalse(on));
    if (on) {
        // Once a profile has a password, the one in the box is not it: it changes only where the
        // old one was asked for.
        if (!m_scalars.bProfileHasPassword) {
            m_scalars.sProfilePassword = m_editor.txtPassWord.text;
            m_scalars.bProfileHasPassword = true;
        }
        m_file.print(m_scalars.sProfilePassword);
        m_file.print(m_editor.cmbHintQues.text);
        m_file.print(m_editor.txtHintAns.text);
    } else {
        m_scalars.bProfileHasPassword = false;
    }
    m_file.print(format::kPassword.closing);
}

void Writer::printOption(const format::Section& section, bool on, std::string_view line)
{
    m_file.print(section.opening);
    m_file.print(trueOrFalse(on));
    if (on)
        m_file.print(line);
    m_file.print(section.closing);
}

void Writer::printOptions()
{
    const std::string_view warn = m_editor.txtWarn.text;
    const std::string_view sign = trim(warn).ends_with('%') ? "" : "%";
    printOption(format::kFreeSpaceWarn, m_editor.chkWarn.value == 1,
                fmt::format("{}{}{}", format::kPercentage, warn, sign));
    printOption(format::kSystemIdle, m_editor.chkIdle.value == 1,
                fmt::format("{}{}", format::kIdleTime, m_editor.txtIdleTime.text));
    printOption(format::kConfirmBackup, m_editor.chkSizeOfBkp.value == 1,
                fmt::format("{}{} {}", format::kSize, m_editor.txtSizeOfBkp.text,
                            m_editor.cmbSizeOfBkp.text));
    printOption(format::kThresholdQueue, m_editor.chkQueueThrld.value == 1,
                fmt::format("{}{}", format::kCount, m_editor.txtQueueThrld.text));
}

void Writer::printSchedule()
{
    const base::Date start = m_editor.dtpStDate.value.date;
    base::TimeOfDay& startTime = m_editor.dtpStTime.value.time;
    m_file.print(format::kScheduling.opening);
    m_file.print(fmt::format("{}{}", format::kStartDate, base::dayMonthYear(start)));

    const base::DateTime now = m_clock.now();
    // The two times compare as texts, so 01:00:00 PM counts as before 11:00:00 AM: a start that is
    // moved to the present once too often does no harm, and profiles have always been saved so.
    if (base::monthDayYear(start) == base::monthDayYear(now.date) &&
        base::timeText2(startTime) < base::timeText2(now.time))
        startTime = now.time;
    m_file.print(fmt::format("{}{}", format::kStartTime, base::timeText2(startTime)));
    addScheduleValue(m_save.clxnSchedule, base::dayMonthYear(start), "StDate");
    addScheduleValue(m_save.clxnSchedule, base::timeText(startTime), "StTime");

    const int pattern = state::chosen(std::as_const(m_editor).patternOptions());
    m_file.print(fmt::format("{}{}", format::kPattern, pattern));
    addScheduleValue(m_save.clxnSchedule, std::to_string(pattern), "RecOpt");
    printPattern(pattern);
    m_file.print(format::kScheduling.closing);
}

void Writer::printPattern(int pattern)
{
    const auto printEvery = [this](const state::TextBox& interval, const state::TimePicker& time) {
        m_file.print(fmt::format("{}{}", format::kRecur, interval.text));
        addScheduleValue(m_save.clxnSchedule, std::string(trim(interval.text)), "Recur");
        const std::string at = base::timeText(time.value.time);
        m_file.print(fmt::format("{}{}", format::kTimeAt, at));
        addScheduleValue(m_save.clxnSchedule, at, "SetTime");
    };
    switch (pattern) {
    case 1:
        printEvery(m_editor.txtDailyRecur, m_editor.dtpDaily);
        break;
    case 2:
        printEvery(m_editor.txtWeeklyRecur, m_editor.dtpWeekly);
        printWeekDays();
        break;
    case 3:
        printEvery(m_editor.txtMonthlyRecur, m_editor.dtpMonthly);
        printSelectedRows(m_editor.lstMonthDate, format::kDates, "NextRunMDates");
        break;
    case 4:
        printEvery(m_editor.txtYearlyRecur, m_editor.dtpYearly);
        printSelectedRows(m_editor.lstMonth, format::kMonths, "NextRunYMths");
        printSelectedRows(m_editor.lstYearDate, format::kDates, "NextRunYDates");
        break;
    default:
        break; // no pattern is on: the section has no more lines
    }
}

void Writer::printWeekDays()
{
    std::string letters;
    for (const state::ListRow& row : m_editor.lstWeekDays.rows)
        letters += row.selected ? 'S' : 'x';
    m_file.print(fmt::format("{}{}", format::kDays, letters));
    addScheduleValue(m_save.clxnSchedule, letters, "NextRunWDays");
}

void Writer::printSelectedRows(const state::ListBox& list, std::string_view key,
                               std::string_view name)
{
    std::string collected;
    for (const state::ListRow& row : list.rows) {
        if (row.selected)
            collected.append(row.text).append(",");
    }
    std::string_view value = trim(collected);
    if (!value.empty())
        value.remove_suffix(1);
    m_file.print(fmt::format("{}{}", key, value));
    addScheduleValue(m_save.clxnSchedule, std::string(value), name);
}

void Writer::printRetention()
{
    const int option = state::chosen(std::as_const(m_editor).retentionOptions());
    m_scalars.iRetentionOption = option;
    std::string line = fmt::format("{}{}", format::kVersions, option);
    if (option == 6)
        line.append("?").append(trim(m_editor.txtLatestVer.text));
    else if (option == 8)
        line.append("?").append(trim(m_editor.txtLatestDaysVer.text));
    m_file.print(line);
}

} // namespace

bool CreatingVdpFile(ProfileContext& context, std::string_view name, std::string_view folder)
{
    bool written = false;
    trace::runTraced(context.trace, "CreatingVdpFile", "modPrSaveOpen",
                     trace::message(kUnreachablePath), [&] {
                         ReplacingFile file(context.machine.fileSystem, folder, name);
                         Writer(context, file).write(name);
                         file.commit();
                         written = true;
                     });
    ++context.editor.revision;
    return written;
}

} // namespace vardelin::profile
