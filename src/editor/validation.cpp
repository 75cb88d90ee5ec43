#include "editor/validation.h"

#include "base/text.h"
#include "editor/password_page.h"
#include "editor/validation_texts.h"
#include "profile/file_details.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace vardelin::editor {
namespace {

namespace texts = validation_texts;
using base::equalsIgnoringCase;
using base::trim;
using state::ListBox;
using state::ListRow;

constexpr std::string_view kModule = "modPrSaveOpen";
constexpr std::string_view kName = "FrmLevelValidation";
constexpr std::string_view kHostNotExist = "NotExist";
constexpr std::string_view kNetworkPath = "\\\\";
constexpr int kOptionsTab = 2;
constexpr int kScheduleTab = 3;

constexpr std::array<std::string_view, 7> kLongMonths{"January", "March",   "May",     "July",
                                                      "August",  "October", "December"};
constexpr std::array<std::string_view, 4> kShortMonths{"April", "June", "September", "November"};

bool isEmptyOrZero(const std::string& text)
{
    return text.empty() || base::val(text) == 0;
}

bool hasSelected(const ListBox& list)
{
    return std::any_of(list.rows.begin(), list.rows.end(),
                       [](const ListRow& row) { return row.selected; });
}

bool isSelected(const ListBox& list, std::string_view text)
{
    return std::any_of(list.rows.begin(), list.rows.end(),
                       [&](const ListRow& row) { return row.selected && row.text == text; });
}

template <std::size_t N>
bool isOneOf(const std::array<std::string_view, N>& names, std::string_view text)
{
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view name) { return equalsIgnoringCase(name, text); });
}

// One run of the rules. Each rule tells whether it refused; the first refusal ends the run.
class Validation {
public:
    explicit Validation(PagesContext& context) : m_context(context), m_editor(context.editor) {}

    void run(base::PendingError& error);

private:
    bool password();
    bool destination();
    bool names();
    bool numbers();
    bool intervals();
    bool startDate();
    bool sizeUnit();
    bool retentionCounts();
    bool patternLists();
    bool yearlyDates();

    bool networkPath();
    bool localPath();
    bool offerFolder(std::string_view failureText);
    bool makeDestination();
    bool yearlyMonth(const std::string& month);

    std::optional<std::string> lettered(std::string_view path);
    bool folderExists(std::string_view path);
    bool driveExists(std::string_view root);

    bool refuse(std::string_view message, int tab);
    bool refuseDestination(std::string_view message);
    bool stopAtDestination();

    PagesContext& m_context;
    state::ProfileEditorState& m_editor;
};

void Validation::run(base::PendingError& error)
{
    m_context.frame.BL_Save_Blocked = false;
    constexpr std::array<bool (Validation::*)(), 10> kRules{
        &Validation::password,   &Validation::destination,     &Validation::names,
        &Validation::numbers,    &Validation::intervals,       &Validation::startDate,
        &Validation::sizeUnit,   &Validation::retentionCounts, &Validation::patternLists,
        &Validation::yearlyDates};
    for (const auto rule : kRules) {
        bool refused = false;
        // A rule that cannot be tested is passed over and the error told at the end.
        error.attempt([&] { refused = (this->*rule)(); });
        if (refused)
            return;
    }
}

bool Validation::refuse(std::string_view message, int tab)
{
    tell(m_context, message);
    m_context.frame.BL_Save_Blocked = true;
    m_context.store.scalars.iValidationTab = tab;
    return true;
}

bool Validation::stopAtDestination()
{
    m_context.frame.BL_Save_Blocked = true;
    m_context.store.scalars.bHaveDestination = false;
    m_context.store.scalars.iValidationTab = kOptionsTab;
    return true;
}

bool Validation::refuseDestination(std::string_view message)
{
    tell(m_context, message);
    return stopAtDestination();
}

bool Validation::password()
{
    if (m_editor.chkPassword.value != 1)
        return false;
    std::string& text = m_editor.txtPassWord.text;
    if (text.empty())
        return refuse(texts::kEnterPassword, kOptionsTab);
    if (text.size() < kShortestPassword) {
        text.clear();
        return refuse(texts::kShortPassword, kOptionsTab);
    }
    if (m_editor.cmbHintQues.text.empty())
        return refuse(texts::kSelectHintQuestion, kOptionsTab);
    return m_editor.txtHintAns.text.empty() && refuse(texts::kEnterHintAnswer, kOptionsTab);
}

bool Validation::destination()
{
    const std::string& path = m_editor.txtDestLoc.text;
    if (path.empty())
        return false; // whether a destination is needed at all is asked elsewhere
    return path.starts_with(kNetworkPath) ? networkPath() : localPath();
}

// A share is reached through the drive that it is mounted as.
std::optional<std::string> Validation::lettered(std::string_view path)
{
    for (const platform::Drive& drive : m_context.machine.drives.list()) {
        const std::string& share = drive.shareName;
        if (drive.type != platform::DriveType::Remote || share.empty() ||
            !base::startsWithIgnoringCase(path, share))
            continue;
        const std::string_view rest = path.substr(share.size());
        if (rest.empty() || rest.starts_with('\\'))
            return fmt::format("{}:{}", drive.letter, rest.empty() ? "\\" : rest);
    }
    return std::nullopt;
}

bool Validation::folderExists(std::string_view path)
{
    if (!path.starts_with(kNetworkPath))
        return m_context.machine.fileSystem.folderExists(path);
    const auto local = lettered(path);
    return local && m_context.machine.fileSystem.folderExists(*local);
}

bool Validation::driveExists(std::string_view root)
{
    return root.size() == 3 && platform::isDriveRoot(root) &&
           m_context.machine.drives.exists(root.front());
}

// Each level of the path from the machine down; a missing folder is offered to be made, which makes
// the whole path, so that no level asks again.
bool Validation::networkPath()
{
    const std::string rest = m_editor.txtDestLoc.text.substr(kNetworkPath.size());
    const std::string_view machine = base::beforeFirst(rest, "\\");
    if (GetHostAddress(m_context, machine) == kHostNotExist)
        return refuseDestination(texts::kNetworkPathRefused);
    const auto pieces = base::split(rest, "\\");
    std::string path = std::string(kNetworkPath) + std::string(machine);
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        path += '\\';
        path += pieces[i];
        if (folderExists(path))
            continue;
        if (i < 2)
            return refuseDestination(texts::kNetworkPathRefused);
        if (offerFolder(texts::kAccessDenied))
            return true;
    }
    return false;
}

bool Validation::localPath()
{
    std::string& path = m_editor.txtDestLoc.text;
    const std::string trimmed(trim(path));
    const bool hasEnd = trimmed.ends_with('\\');
    const std::string root = hasEnd ? trimmed.substr(0, trimmed.find('\\') + 1)
                                    : trimmed.substr(0, trimmed.find(':') + 1) + "\\";
    if (hasEnd)
        path.pop_back(); // in any case: the profile holds the path without it
    // A destination that nobody touched is not refused for a drive that is away today.
    if (!m_context.store.scalars.bDestinationChanged ||
        !(m_context.frame.BL_New_Mode || m_context.frame.BL_Edit_Mode))
        return false;
    if (!driveExists(root))
        return refuse(texts::kDriveRefused, kOptionsTab);
    if (folderExists(path))
        return false;
    tell(m_context, texts::kNotExisting);
    return offerFolder(texts::kLocalPathRefused);
}

bool Validation::offerFolder(std::string_view failureText)
{
    if (!ask(m_context, texts::kCreateFolder))
        return stopAtDestination();
    return !makeDestination() && refuseDestination(failureText);
}

bool Validation::makeDestination()
{
    const std::string path(trim(m_editor.txtDestLoc.text));
    const auto local = path.starts_with(kNetworkPath) ? lettered(path) : path;
    if (!local)
        return false;
    bool failed = false;
    profile::FolderChk(m_context.trace, m_context.machine.fileSystem, *local, failed);
    // FolderChk tells of missing rights alone; a full disk makes no folder either.
    return !failed && folderExists(path);
}

// The tab stays as it is: the names are on a form of their own.
bool Validation::names()
{
    const bool clash =
        (!trim(m_editor.txtExclNames.text).empty() && !CheckForInclExcl(m_context, false)) ||
        (!trim(m_editor.txtInclNames.text).empty() && !CheckForInclExcl(m_context, true));
    if (clash)
        m_context.frame.BL_Save_Blocked = true;
    return clash;
}

bool Validation::numbers()
{
    struct Row {
        const state::CheckBox& check;
        const state::TextBox& box;
        std::string_view message;
    };
    const std::array<Row, 4> rows{{
        {m_editor.chkSizeOfBkp, m_editor.txtSizeOfBkp, texts::kEnterSize},
        {m_editor.chkWarn, m_editor.txtWarn, texts::kEnterPercentage},
        {m_editor.chkIdle, m_editor.txtIdleTime, texts::kEnterIdleTime},
        {m_editor.chkQueueThrld, m_editor.txtQueueThrld, texts::kEnterQueueFiles},
    }};
    for (const Row& row : rows) {
        if (row.check.value == 1 && isEmptyOrZero(row.box.text))
            return refuse(row.message, kOptionsTab);
    }
    return false;
}

// Whether or not the schedule is on. Other spellings of zero pass.
bool Validation::intervals()
{
    struct Row {
        const state::OptionButton& pattern;
        const state::TextBox& box;
        std::string_view empty;
        std::string_view zero;
    };
    const std::array<Row, 4> rows{{
        {m_editor.optDaily, m_editor.txtDailyRecur, texts::kNoDays, texts::kZeroDays},
        {m_editor.optMonthly, m_editor.txtMonthlyRecur, texts::kNoMonths, texts::kZeroMonths},
        {m_editor.optWeekly, m_editor.txtWeeklyRecur, texts::kNoWeeks, texts::kZeroWeeks},
        {m_editor.optYearly, m_editor.txtYearlyRecur, texts::kNoYears, texts::kZeroYears},
    }};
    for (const Row& row : rows) {
        if (!row.pattern.value)
            continue;
        if (row.box.text.empty())
            return refuse(row.empty, kScheduleTab);
        if (row.box.text == "0" || row.box.text == "00")
            return refuse(row.zero, kScheduleTab);
    }
    return false;
}

// An old profile whose start has gone by stays saveable once anything in it was changed.
bool Validation::startDate()
{
    return m_editor.chkAutoSched.value == 1 &&
           m_editor.dtpStDate.value.date < m_context.machine.clock.now().date &&
           !m_context.frame.BL_Edit_Changed && refuse(texts::kStartTooEarly, kScheduleTab);
}

// Whether or not the option is on.
bool Validation::sizeUnit()
{
    return m_editor.cmbSizeOfBkp.text.empty() && refuse(texts::kNoSizeUnit, kOptionsTab);
}

bool Validation::retentionCounts()
{
    if (m_editor.optVer8.value && m_editor.txtLatestDaysVer.text.empty())
        return refuse(texts::kEnterDaysKept, kScheduleTab);
    return m_editor.optVer6.value && m_editor.txtLatestVer.text.empty() &&
           refuse(texts::kEnterVersionsKept, kScheduleTab);
}

bool Validation::patternLists()
{
    struct Row {
        const state::OptionButton& pattern;
        const ListBox& list;
        std::string_view message;
    };
    const std::array<Row, 4> rows{{
        {m_editor.optWeekly, m_editor.lstWeekDays, texts::kSelectWeekDays},
        {m_editor.optMonthly, m_editor.lstMonthDate, texts::kSelectMonthDate},
        {m_editor.optYearly, m_editor.lstMonth, texts::kSelectMonth},
        {m_editor.optYearly, m_editor.lstYearDate, texts::kSelectYearDate},
    }};
    for (const Row& row : rows) {
        if (row.pattern.value && !hasSelected(row.list))
            return refuse(row.message, kScheduleTab);
    }
    return false;
}

// One long month lets every date pass, even with a short month selected beside it.
bool Validation::yearlyDates()
{
    if (!m_editor.optYearly.value)
        return false;
    const auto& months = m_editor.lstMonth.rows;
    if (std::any_of(months.begin(), months.end(), [](const ListRow& row) {
            return row.selected && isOneOf(kLongMonths, row.text);
        }))
        return false;
    return std::any_of(months.begin(), months.end(),
                       [&](const ListRow& row) { return row.selected && yearlyMonth(row.text); });
}

bool Validation::yearlyMonth(const std::string& month)
{
    const ListBox& dates = m_editor.lstYearDate;
    if (equalsIgnoringCase(month, "February")) {
        // In the order of the dates; the year is the present one, whatever year the schedule runs
        // in, and the rule knows no centuries.
        const bool isLeapYear = (m_context.machine.clock.now().date.year & 3) == 0;
        if (isSelected(dates, "29") && !isLeapYear)
            return refuse(texts::kNoLeapYear, kScheduleTab);
        return (isSelected(dates, "30") || isSelected(dates, "31")) &&
               refuse(texts::kDateNotInMonth, kScheduleTab);
    }
    return isOneOf(kShortMonths, month) && isSelected(dates, "31") &&
           refuse(texts::kDateNotInMonth, kScheduleTab);
}

// The extension with its dot; empty where the name has no dot.
std::string_view extensionOf(std::string_view name)
{
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : name.substr(dot);
}

} // namespace

void FrmLevelValidation(PagesContext& context)
{
    ++context.editor.revision;
    context.trace.trace.WriteRunTrace(kName, "Start", true);
    base::PendingError error;
    Validation(context).run(error);
    if (error)
        errorTail(context.trace, {kName, kName, kModule, trace::message(texts::kValidationFailed)},
                  error);
    else
        context.trace.trace.WriteRunTrace(kName, "End", true);
}

bool CheckForInclExcl(PagesContext& context, bool includeSide)
{
    bool noClash = true;
    runTraced(context.trace, "CheckForInclExcl", kModule, texts::kCheckFailed, [&] {
        const auto& extensions =
            includeSide ? context.store.save.clxnExcluded : context.store.save.clxnIncluded;
        const std::string text(trim(includeSide ? context.editor.txtInclNames.text
                                                : context.editor.txtExclNames.text));
        // Names are not trimmed: `a.doc ,b` has the extension `.doc ` and clashes with nothing.
        const auto names = base::split(text, ",");
        for (const std::string& extension : extensions.items()) {
            for (const std::string_view name : names) {
                const std::string_view own = extensionOf(name);
                if (own.empty() || !equalsIgnoringCase(own, extension))
                    continue;
                tell(context, std::string(own) + std::string(texts::kInBothOptions));
                noClash = false;
                return;
            }
        }
    });
    return noClash;
}

std::string GetHostAddress(PagesContext& context, std::optional<std::string_view> machine)
{
    std::string address(kHostNotExist);
    runTraced(context.trace, "GetHostAddress", kModule, "GetHostAddress", [&] {
        const std::string name = machine ? std::string(*machine) : GetMachineName(context);
        if (const auto found = context.machine.facts.hostAddress(name))
            address = FormatHostAddress(*found);
    });
    return address;
}

std::string GetMachineName(PagesContext& context)
{
    std::string name;
    runTraced(context.trace, "GetMachineName", kModule, "GetMachineName",
              [&] { name = context.machine.facts.computerName(); });
    return name;
}

std::string FormatHostAddress(const platform::HostAddress& address)
{
    return fmt::format("{}.{}.{}.{}", address[0], address[1], address[2], address[3]);
}

} // namespace vardelin::editor
