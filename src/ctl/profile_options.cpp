#include "ctl/profile_options.h"

#include "base/dates.h"
#include "base/text.h"
#include "ctl/session.h"
#include "state/name_tables.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

namespace vardelin::ctl {
namespace {

using base::trim;
using state::ListBox;

constexpr std::size_t kShortestPassword = 6;
constexpr std::size_t kShortestName = 3; // of a day or month: `Mon`, `Jan`

std::uint64_t positive(std::string_view option, std::string_view text)
{
    std::uint64_t number = 0;
    if (!base::parseUnsigned(trim(text), number) || number == 0 || number > 99999)
        throw UsageError(
            fmt::format("{} takes a number from 1 to 99999, not \"{}\"", option, text));
    return number;
}

void addKeyed(base::TextCollection& list, const std::string& text)
{
    list.tryAdd(text, text);
}

std::string extension(std::string_view option, std::string_view text)
{
    const std::string_view bare = trim(text);
    const bool bad =
        bare.empty() || bare == "." || bare.find_first_of("\\/:*?\"<>|\r\n") != bare.npos;
    if (bad)
        throw UsageError(
            fmt::format("{} takes an extension such as .doc, not \"{}\"", option, text));
    return bare.front() == '.' ? std::string(bare) : "." + std::string(bare);
}

// A line of the file cannot hold a line end.
const std::string& oneLine(std::string_view option, const std::string& text)
{
    if (text.find_first_of("\r\n") != std::string::npos)
        throw UsageError(fmt::format("{}: a line end cannot be saved", option));
    return text;
}

void selectRow(ListBox& list, std::size_t index)
{
    list.rows.at(index).selected = true;
}

void selectNone(ListBox& list)
{
    for (state::ListRow& row : list.rows)
        row.selected = false;
}

// The first row whose text begins with the name, of which three letters are enough.
bool selectByName(ListBox& list, std::string_view name)
{
    if (name.size() < kShortestName)
        return false;
    for (state::ListRow& row : list.rows) {
        if (base::startsWithIgnoringCase(row.text, name)) {
            row.selected = true;
            return true;
        }
    }
    return false;
}

bool selectByNumber(ListBox& list, std::string_view text)
{
    std::uint64_t number = 0;
    if (!base::parseUnsigned(text, number) || number < 1 || number > list.rows.size())
        return false;
    selectRow(list, number - 1);
    return true;
}

void applyLists(profile::ProfileContext& context, const ProfileOptions& options,
                const ResolvedOptions& resolved)
{
    state::SaveLists& save = context.store.save;
    if (options.sources) {
        save.clxnSources.clear();
        for (const std::string& source : resolved.sources)
            addKeyed(save.clxnSources, oneLine("--source", source));
    }
    if (options.includeExtensions) {
        save.clxnIncluded.clear();
        for (const std::string& text : *options.includeExtensions)
            addKeyed(save.clxnIncluded, extension("--include-ext", text));
    }
    if (options.excludeExtensions) {
        save.clxnExcluded.clear();
        for (const std::string& text : *options.excludeExtensions)
            addKeyed(save.clxnExcluded, extension("--exclude-ext", text));
    }
    if (options.includeNames)
        context.editor.txtInclNames.text = oneLine("--include-names", *options.includeNames);
    if (options.excludeNames)
        context.editor.txtExclNames.text = oneLine("--exclude-names", *options.excludeNames);
    if (options.otherData) {
        ListBox& list = context.editor.lstOtherData;
        selectNone(list);
        for (const std::string& group : *options.otherData) {
            const auto row = std::find_if(list.rows.begin(), list.rows.end(), [&](const auto& r) {
                return base::equalsIgnoringCase(r.text, trim(group));
            });
            if (row == list.rows.end())
                throw UsageError(fmt::format("--other takes one of \"{}\", not \"{}\"",
                                             fmt::join(state::kOtherDataNames, "\", \""), group));
            row->selected = true;
        }
    }
}

void applyDestination(state::ProfileEditorState& editor, const ProfileOptions& options,
                      const ResolvedOptions& resolved)
{
    if (!options.destination)
        return;
    editor.txtDestLoc.text = oneLine("--dest", resolved.destination);
    editor.CmbDestDrives.text = base::beforeFirst(resolved.destination, "\\");
}

void applySecurity(profile::ProfileContext& context, const ProfileOptions& options,
                   const ResolvedOptions& resolved)
{
    state::ProfileEditorState& editor = context.editor;
    if (options.compress)
        editor.chkCompress.value = *options.compress ? 1 : 0;
    if (options.encrypt)
        editor.chkEncrypt.value = *options.encrypt ? 1 : 0;
    const int given = (options.passwordFile ? 1 : 0) + (options.hintQuestion ? 1 : 0) +
                      (options.hintAnswerFile ? 1 : 0);
    if (given == 0)
        return;
    if (given != 3)
        throw UsageError("--password-file, --hint-question and --hint-answer-file belong together");
    if (options.passwordFile == "-" && options.hintAnswerFile == "-")
        throw UsageError(
            "only one of the password and the answer can come from the standard input");
    if (context.store.scalars.bProfileHasPassword)
        throw UsageError("the profile has a password already, which this version cannot change");
    if (resolved.password.size() < kShortestPassword)
        throw UsageError(fmt::format("a password has at least {} characters", kShortestPassword));
    if (trim(resolved.hintAnswer).empty() || trim(*options.hintQuestion).empty())
        throw UsageError("the hint question and its answer may not be empty");
    editor.chkPassword.value = 1;
    editor.txtPassWord.text = resolved.password;
    editor.cmbHintQues.text = oneLine("--hint-question", *options.hintQuestion);
    editor.txtHintAns.text = resolved.hintAnswer;
}

void applyNumbers(profile::ProfileContext& context, const ProfileOptions& options)
{
    state::ProfileEditorState& editor = context.editor;
    const auto apply = [](const std::optional<std::string>& option, std::string_view name,
                          state::CheckBox& check, state::TextBox& box) {
        if (!option)
            return;
        check.value = option->empty() ? 0 : 1;
        box.text = option->empty() ? "" : std::to_string(positive(name, *option));
    };
    if (options.idle && editor.chkIdle.value == 1)
        context.frame.sOldIdleTime = editor.txtIdleTime.text; // leaves its place with the save
    apply(options.idle, "--idle", editor.chkIdle, editor.txtIdleTime);
    apply(options.queue, "--queue", editor.chkQueueThrld, editor.txtQueueThrld);
    if (options.warn) {
        std::string_view percent = trim(*options.warn);
        if (percent.ends_with('%'))
            percent.remove_suffix(1);
        editor.chkWarn.value = options.warn->empty() ? 0 : 1;
        editor.txtWarn.text =
            options.warn->empty() ? "" : std::to_string(positive("--warn", percent));
        if (!options.warn->empty() && positive("--warn", percent) > 100)
            throw UsageError("--warn takes a number from 1 to 100");
    }
    if (options.confirmSize) {
        const std::string_view text = trim(*options.confirmSize);
        editor.chkSizeOfBkp.value = text.empty() ? 0 : 1;
        if (text.empty())
            return;
        const std::string unit =
            base::upperAscii(text.size() > 2 ? text.substr(text.size() - 2) : "");
        if (std::find(state::kSizeUnits.begin(), state::kSizeUnits.end(), unit) ==
            state::kSizeUnits.end())
            throw UsageError("--confirm-size takes a size such as \"500 MB\" in KB, MB or GB");
        editor.txtSizeOfBkp.text =
            std::to_string(positive("--confirm-size", text.substr(0, text.size() - 2)));
        editor.cmbSizeOfBkp.text = unit;
    }
}

void applyRetention(state::ProfileEditorState& editor, const std::optional<std::string>& retention)
{
    if (!retention)
        return;
    const std::string_view number = trim(base::beforeFirst(*retention, ":"));
    const std::string_view count = trim(base::afterFirst(*retention, ":"));
    if (number.size() != 1 || number[0] < '1' || number[0] > '8')
        throw UsageError(fmt::format("--retention takes 1 to 8, not \"{}\"", *retention));
    const int option = number[0] - '0';
    const bool takesCount = option == 6 || option == 8;
    if (takesCount == count.empty())
        throw UsageError(takesCount ? fmt::format("--retention {0} takes a count, as {0}:7", option)
                                    : fmt::format("--retention {} takes no count", option));
    state::choose(editor.retentionOptions(), option);
    if (takesCount)
        (option == 6 ? editor.txtLatestVer : editor.txtLatestDaysVer).text =
            std::to_string(positive("--retention", count));
}

// The interval, the time and the lists of each pattern, 1 standing at index 0.
struct PatternPage {
    state::TextBox& recur;
    state::TimePicker& time;
};

PatternPage pageOf(state::ProfileEditorState& editor, int pattern)
{
    switch (pattern) {
    case 2:
        return {editor.txtWeeklyRecur, editor.dtpWeekly};
    case 3:
        return {editor.txtMonthlyRecur, editor.dtpMonthly};
    case 4:
        return {editor.txtYearlyRecur, editor.dtpYearly};
    default:
        return {editor.txtDailyRecur, editor.dtpDaily};
    }
}

void selectDays(state::ProfileEditorState& editor, int pattern, std::string_view list)
{
    if (pattern == 1)
        throw UsageError("--on does not go with a daily schedule");
    for (ListBox* const rows :
         {&editor.lstWeekDays, &editor.lstMonthDate, &editor.lstMonth, &editor.lstYearDate})
        selectNone(*rows);
    for (const std::string_view piece : base::split(list, ",")) {
        const std::string_view text = trim(piece);
        const bool known = pattern == 2   ? selectByName(editor.lstWeekDays, text)
                           : pattern == 3 ? selectByNumber(editor.lstMonthDate, text)
                                          : selectByName(editor.lstMonth, text) ||
                                                selectByNumber(editor.lstYearDate, text);
        if (!known)
            throw UsageError(fmt::format("--on: \"{}\" is no {}", text,
                                         pattern == 2   ? "day of the week"
                                         : pattern == 3 ? "date from 1 to 31"
                                                        : "month and no date from 1 to 31"));
    }
}

bool anySelected(const ListBox& list)
{
    return std::any_of(list.rows.begin(), list.rows.end(),
                       [](const state::ListRow& row) { return row.selected; });
}

void requireDays(const state::ProfileEditorState& editor, int pattern)
{
    if (pattern == 2 && !anySelected(editor.lstWeekDays))
        throw UsageError("a weekly schedule needs its days: --on Mon,Thu");
    if (pattern == 3 && !anySelected(editor.lstMonthDate))
        throw UsageError("a monthly schedule needs its dates: --on 1,15");
    if (pattern == 4 && (!anySelected(editor.lstMonth) || !anySelected(editor.lstYearDate)))
        throw UsageError("a yearly schedule needs months and dates: --on January,July,1");
}

void applyTimes(profile::ProfileContext& context, const ProfileOptions& options, int pattern,
                bool isNew)
{
    state::ProfileEditorState& editor = context.editor;
    const PatternPage page = pageOf(editor, pattern);
    if (options.every)
        page.recur.text = std::to_string(positive("--every", *options.every));
    if (options.at) {
        const auto time = base::parseTime(*options.at);
        if (!time)
            throw UsageError(
                fmt::format("--at takes a time such as 18:30 or 6:30 PM, not \"{}\"", *options.at));
        page.time.value.time = *time;
    }
    const base::DateTime now = context.machine.clock.now();
    if (options.start) {
        const auto date = base::parseDate(*options.start);
        if (!date)
            throw UsageError(
                fmt::format("--start takes a date as D/M/YYYY, not \"{}\"", *options.start));
        editor.dtpStDate.value = {*date, {}};
        editor.dtpStTime.value = {*date, {}};
    } else if (isNew) {
        editor.dtpStDate.value = {now.date, {}};
    }
    // Today's schedule begins now and not at a midnight that has passed.
    if ((options.start || isNew) && editor.dtpStDate.value.date == now.date)
        editor.dtpStTime.value = now;
}

void applySchedule(profile::ProfileContext& context, const ProfileOptions& options)
{
    state::ProfileEditorState& editor = context.editor;
    const bool details = options.every || options.at || options.start || options.on;
    if (options.schedule && options.schedule->empty()) {
        if (details)
            throw UsageError("--no-schedule goes with no other option of a schedule");
        editor.chkAutoSched.value = 0;
        return;
    }
    const bool had = editor.chkAutoSched.value == 1;
    int pattern = had ? state::chosen(std::as_const(editor).patternOptions()) : 0;
    const int former = pattern;
    if (options.schedule) {
        constexpr std::array<std::string_view, 4> kPatterns{"daily", "weekly", "monthly", "yearly"};
        const auto hit = std::find(kPatterns.begin(), kPatterns.end(),
                                   base::lowerAscii(trim(*options.schedule)));
        if (hit == kPatterns.end())
            throw UsageError(fmt::format("--schedule takes {}, not \"{}\"",
                                         fmt::join(kPatterns, ", "), *options.schedule));
        pattern = static_cast<int>(hit - kPatterns.begin()) + 1;
    } else if (!details) {
        return;
    }
    if (pattern == 0)
        throw UsageError("--every, --at, --start and --on belong to --schedule");
    if (pattern != former && !options.at)
        throw UsageError("a schedule needs its time of day: --at TIME");
    editor.chkAutoSched.value = 1;
    state::choose(editor.patternOptions(), pattern);
    applyTimes(context, options, pattern, !had);
    if (options.on)
        selectDays(editor, pattern, *options.on);
    requireDays(editor, pattern);
}

// The lists of a saved schedule, ticked in full lists.
void fillSchedule(state::ProfileEditorState& editor, const engine::ProfileSchedule& saved)
{
    editor.chkAutoSched.value = 1;
    state::choose(editor.patternOptions(), saved.pattern);
    if (const auto date = base::parseDate(saved.startDate))
        editor.dtpStDate.value = {*date, {}};
    if (const auto time = base::parseTime(saved.startTime))
        editor.dtpStTime.value = {editor.dtpStDate.value.date, *time};
    if (saved.pattern == 0)
        return;
    const PatternPage page = pageOf(editor, saved.pattern);
    page.recur.text = saved.recur;
    if (const auto time = base::parseTime(saved.timeAt))
        page.time.value.time = *time;
    for (std::size_t i = 0; i < saved.days.size() && i < editor.lstWeekDays.rows.size(); ++i)
        editor.lstWeekDays.rows[i].selected = saved.days[i] == 'S';
    for (const std::string_view date : base::split(saved.dates, ","))
        selectByNumber(editor.lstMonthDate, trim(date));
    for (const std::string_view month : base::split(saved.months, ","))
        selectByName(editor.lstMonth, trim(month));
    for (const std::string_view date : base::split(saved.yearDates, ","))
        selectByNumber(editor.lstYearDate, trim(date));
}

void fillPassword(profile::ProfileContext& context, const engine::EngineProfile& saved)
{
    context.store.scalars.bProfileHasPassword = saved.hasPassword;
    context.store.scalars.sProfilePassword = saved.hasPassword ? saved.password : "";
    if (!saved.hasPassword)
        return;
    context.editor.chkPassword.value = 1;
    context.editor.txtPassWord.text = saved.password;
    context.editor.cmbHintQues.text = saved.hintQuestion;
    context.editor.txtHintAns.text = saved.hintAnswer;
}

} // namespace

void fillEditor(profile::ProfileContext& context, const engine::EngineProfile& saved)
{
    state::ProfileEditorState& editor = context.editor;
    state::SaveLists& save = context.store.save;
    for (const std::string& source : saved.sources)
        addKeyed(save.clxnSources, source);
    for (const std::string& text : saved.excludedExtensions)
        addKeyed(save.clxnExcluded, text);
    for (const std::string& text : saved.includedExtensions)
        addKeyed(save.clxnIncluded, text);
    for (state::ListRow& row : editor.lstOtherData.rows)
        row.selected = std::any_of(
            saved.otherData.begin(), saved.otherData.end(),
            [&](const std::string& group) { return base::equalsIgnoringCase(group, row.text); });
    editor.txtInclNames.text = base::join(saved.includeNames, ",");
    editor.txtExclNames.text = base::join(saved.excludeNames, ",");
    editor.txtDestLoc.text = saved.destination;
    editor.CmbDestDrives.text = base::beforeFirst(saved.destination, "\\");
    fillPassword(context, saved);
    editor.chkCompress.value = saved.compress ? 1 : 0;
    editor.chkEncrypt.value = saved.encrypt ? 1 : 0;
    editor.chkWarn.value = saved.warnPercent ? 1 : 0;
    editor.txtWarn.text = saved.warnPercent.value_or("");
    editor.chkIdle.value = saved.idleMinutes ? 1 : 0;
    editor.txtIdleTime.text = saved.idleMinutes.value_or("");
    editor.chkQueueThrld.value = saved.queueCount ? 1 : 0;
    editor.txtQueueThrld.text = saved.queueCount.value_or("");
    editor.chkSizeOfBkp.value = saved.confirmSize ? 1 : 0;
    if (saved.confirmSize) {
        editor.txtSizeOfBkp.text = saved.confirmSize->size;
        editor.cmbSizeOfBkp.text = saved.confirmSize->unit;
    }
    if (saved.schedule)
        fillSchedule(editor, *saved.schedule);
    state::choose(editor.retentionOptions(), saved.retentionOption);
    const std::string count =
        saved.retentionCount > 0 ? std::to_string(saved.retentionCount) : std::string();
    if (saved.retentionOption == 6)
        editor.txtLatestVer.text = count;
    if (saved.retentionOption == 8)
        editor.txtLatestDaysVer.text = count;
}

void applyOptions(profile::ProfileContext& context, const ProfileOptions& options,
                  const ResolvedOptions& resolved)
{
    applyLists(context, options, resolved);
    applyDestination(context.editor, options, resolved);
    applySecurity(context, options, resolved);
    applyNumbers(context, options);
    applyRetention(context.editor, options.retention);
    applySchedule(context, options);
    context.editor.chkPrimary.value = options.primary ? 1 : 0;
}

void requireSaveable(profile::ProfileContext& context)
{
    state::ProfileScalars& scalars = context.store.scalars;
    const ListBox& groups = context.editor.lstOtherData;
    scalars.bHaveSources = !context.store.save.clxnSources.empty();
    scalars.bHaveOtherData = anySelected(groups);
    scalars.bHaveIncluded = !context.store.save.clxnIncluded.empty();
    scalars.bHaveDestination = !trim(context.editor.txtDestLoc.text).empty();
    if (!scalars.bHaveSources && !scalars.bHaveOtherData && !scalars.bHaveIncluded)
        throw UsageError("a profile needs something to save: --source, --other or --include-ext "
                         "(names alone select nothing)");
    if (!scalars.bHaveDestination)
        throw UsageError("a profile needs a destination: --dest DIR");
}

} // namespace vardelin::ctl
