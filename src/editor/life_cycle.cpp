#include "editor/life_cycle.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "editor/destination.h"
#include "editor/extension_lists.h"
#include "editor/other_data_form.h"
#include "editor/quick_help_texts.h"
#include "editor/source_capture.h"
#include "editor/source_tree.h"
#include "state/name_tables.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vardelin::editor {
namespace {

using base::PendingError;
using state::ListBox;
using state::ListRow;

constexpr std::string_view kModule = "frmProfile";
constexpr std::string_view kLoadFailed = "Error ocurred While Loading profile form";
constexpr std::string_view kEditFailed = "Error while editing the already saved profiles";
constexpr int kFixedImages = 5; // of the tree; icons of files come behind them
constexpr double kIncludedShare = 50;
constexpr double kListsShare = 100;

void showHelp(state::ProfileFormState& window, std::size_t tab)
{
    window.Label35 = quick_help::kTabs.at(tab);
    window.highlightedLabel = quick_help::kLabels.at(tab);
}

void helpClicked(EditorFormContext& context, std::string_view procedure, std::size_t tab)
{
    trace::runTraced(context.tree.trace, procedure, kModule, procedure,
                     [&] { showHelp(context.window, tab); });
}

// A box is written in where its tick stands. The ticks of a profile come without their handlers,
// and the boxes are as the profile before it left them.
void fitBoxesToChecks(state::ProfileEditorState& editor)
{
    const auto fit = [](const state::CheckBox& check, state::TextBox& box) {
        box.locked = check.value == 0;
        if (box.locked)
            box.text.clear();
    };
    fit(editor.chkIdle, editor.txtIdleTime);
    fit(editor.chkQueueThrld, editor.txtQueueThrld);
    fit(editor.chkSizeOfBkp, editor.txtSizeOfBkp);
    fit(editor.chkWarn, editor.txtWarn);
    fit(editor.chkPassword, editor.txtPassWord);
    fit(editor.chkPassword, editor.txtHintAns);
}

void setUp(EditorFormContext& context)
{
    state::ProfileEditorState& editor = context.tree.editor;
    const base::DateTime now = context.tree.machine.clock.now();
    for (state::Frame* const frame : {&editor.Frame3, &editor.Frame4, &editor.Frame5})
        frame->enabled = false;
    state::showPatternPage(editor, 1);
    fitBoxesToChecks(editor);
    context.tree.form.imageIndex = kFixedImages;
    editor.dtpStDate.value = now;
    editor.dtpStTime.value = now;
    context.window.Label37 = quick_help::kWhatAProfileIs;
    context.window.Label35 = quick_help::kTabs[0];
    context.window.highlightedLabel = 31; // of another tab than the one that shows
    BuildDriveList(context.tree);
    NetworkDriveList(context.pages);
    editor.lstInclude.clear();
    ListInclForFileExt(context.pages);
    context.window.SSTab1 = 0;
    context.tree.form.mousePointer = MousePointer::Default;
    context.tree.store.scalars.SourceChecked = false;
    // Nothing else takes it back, and the next save would ask about a move that is over.
    context.tree.store.scalars.bDestinationChanged = false;
    editor.dtpDaily.value = now;
}

// The drives on which the opened profile has sources and that are not there: at the next save their
// lines would be gone, so that somebody who looks for them finds a word in the trace.
void traceAbsentDrives(EditorFormContext& context)
{
    const state::ProfileStore& store = context.tree.store;
    for (const std::string& source : store.opened.clxnOpenedSources.items()) {
        if (source.size() == 3 && source.ends_with(":\\") &&
            context.tree.editor.tvwDirectory.find(source) == nullptr)
            context.tree.trace.trace.WriteRunTrace("Drive is gone: " + source, "Error", true);
    }
}

// Ticks the rows of a full list that the profile was saved with.
template <typename Replay>
void replayTicks(EditorFormContext& context, ListBox& list, const base::TextCollection& saved,
                 double bound, Replay&& replay)
{
    if (list.rows.empty())
        return;
    state::ProgressBar& bar = context.tree.frame.pb;
    const double step = base::round(kIncludedShare / static_cast<double>(list.rows.size()), 6);
    for (std::size_t row = 0; row < list.rows.size(); ++row) {
        list.rows[row].checked = saved.contains(base::trim(list.rows[row].text));
        if (list.rows[row].checked)
            replay(row);
        if (bar.value + step < bound)
            bar.value += step;
    }
}

void selectSettingsGroups(EditorFormContext& context)
{
    ListBox& list = context.tree.editor.lstOtherData;
    list.clear();
    for (const std::string_view name : state::kOtherDataNames)
        list.addItem(name).selected = context.tree.store.opened.clxnOpenedOtherData.contains(name);
}

void enableAll(EditorFormContext& context)
{
    state::ProfileEditorState& editor = context.tree.editor;
    editor.chkAutoSched.enabled = true;
    for (state::Frame* const frame :
         {&editor.Frame1, &editor.Frame2, &editor.Frame10, &editor.Frame4, &editor.Frame5,
          &editor.Frame12, &editor.Frame13})
        frame->enabled = true;
    for (state::OptionButton* const option : editor.patternOptions())
        option->enabled = true;
    editor.Frame3.enabled = editor.chkAutoSched.value == 1;
    // A save takes the password's boxes away; whoever edits again must find them.
    editor.Frame14.visible = true;
    editor.Frame14.enabled = editor.chkPassword.value == 1;
    editor.txtPassWord.enabled = true;
    fitBoxesToChecks(editor);
    editor.txtLatestDaysVer.enabled = editor.optVer8.enabled;
    editor.Label4.enabled = editor.optVer8.enabled;
}

std::vector<std::string> textsOf(const ListBox& list)
{
    std::vector<std::string> texts;
    texts.reserve(list.rows.size());
    for (const ListRow& row : list.rows)
        texts.push_back(row.text);
    return texts;
}

void selectTexts(ListBox& list, const std::vector<std::string>& texts)
{
    for (ListRow& row : list.rows)
        row.selected = std::find(texts.begin(), texts.end(), row.text) != texts.end();
}

// Dates compare by value: ` 7` and `07` are 7.
void selectDates(ListBox& list, const std::vector<std::string>& texts)
{
    for (ListRow& row : list.rows) {
        row.selected = std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
            return base::val(text) == base::val(row.text);
        });
    }
}

// The lists of the chosen pattern hold the saved values alone; they become whole again, with the
// saved ones selected. The three other patterns begin anew.
void restorePattern(EditorFormContext& context)
{
    state::ProfileEditorState& editor = context.tree.editor;
    const auto refresh = [&](bool daily, bool weekly, bool monthly, bool yearly) {
        context.lists.Refreshlist(daily, weekly, monthly, yearly);
    };
    const auto enable = [](state::TextBox& recurrence, state::TimePicker& time) {
        recurrence.enabled = true;
        time.enabled = true;
    };
    switch (state::chosen(std::as_const(editor).patternOptions())) {
    case 1:
        enable(editor.txtDailyRecur, editor.dtpDaily);
        refresh(false, true, true, true);
        break;
    case 2: {
        enable(editor.txtWeeklyRecur, editor.dtpWeekly);
        const std::vector<std::string> saved = textsOf(editor.lstWeekDays);
        state::fillDayNames(editor.lstWeekDays);
        selectTexts(editor.lstWeekDays, saved);
        refresh(true, false, true, true);
        break;
    }
    case 3: {
        enable(editor.txtMonthlyRecur, editor.dtpMonthly);
        const std::vector<std::string> saved = textsOf(editor.lstMonthDate);
        state::fillMonthDates(editor.lstMonthDate);
        selectDates(editor.lstMonthDate, saved);
        refresh(true, true, false, true);
        break;
    }
    case 4: {
        enable(editor.txtYearlyRecur, editor.dtpYearly);
        const std::vector<std::string> months = textsOf(editor.lstMonth);
        const std::vector<std::string> dates = textsOf(editor.lstYearDate);
        state::fillMonthNames(editor.lstMonth);
        selectTexts(editor.lstMonth, months);
        refresh(true, true, true, false);
        // Every refresh fills these dates anew, whatever it is told.
        state::fillMonthDates(editor.lstYearDate);
        selectDates(editor.lstYearDate, dates);
        break;
    }
    default:
        break;
    }
}

void openCommands(state::MainFrameForm& main)
{
    main.Toolbar1(4).enabled = true;
    main.Toolbar1(5).enabled = true;
    main.Toolbar1(3).enabled = false;
    main.mnuSaveAs.enabled = true;
    main.mnuSave.enabled = true;
    main.mnuEdit.enabled = false;
}

} // namespace

void loadProfileForm(EditorFormContext& context)
{
    if (context.window.loaded)
        return;
    state::ProfileEditorState& editor = context.tree.editor;
    // The tree keeps its rule for names, and both revisions go on: a view that showed the former
    // form must see that this is another one.
    const std::uint64_t revision = editor.revision;
    state::TreeView tree = std::move(editor.tvwDirectory);
    tree.clear();
    editor = state::ProfileEditorState();
    editor.tvwDirectory = std::move(tree);
    editor.revision = revision + 1;
    SourceTreeForm& form = context.tree.form;
    form.ViewClickIndex = 0;
    form.ExpandAllActive = false;
    form.clxnDeferredChecks.clear();
    form.clxnInheritedNames.clear();
    unloadOtherdata(context.pages);
    context.pages.pages = {};
    context.window = {};
    context.window.loaded = true;
    Form_Load(context);
}

void unloadProfileForm(EditorFormContext& context)
{
    unloadOtherdata(context.pages);
    context.window.loaded = false;
    context.window.visible = false;
    ++context.tree.editor.revision;
}

void Form_Load(EditorFormContext& context)
{
    trace::runTraced(context.tree.trace, "frm_profile_load",
                     {"Form_Load", "frm_profile_load", kModule, kLoadFailed},
                     [&] { setUp(context); });
    ++context.tree.editor.revision;
}

void SSTab1_Click(EditorFormContext& context, int tab)
{
    trace::runTraced(context.tree.trace, "SSTab1_Click", kModule, "SSTab1_Click", [&] {
        const auto place = static_cast<std::size_t>(tab);
        if (tab < 0 || place >= quick_help::kTabs.size())
            return;
        context.window.SSTab1 = tab;
        showHelp(context.window, place);
    });
}

void Label31_Click(EditorFormContext& context)
{
    helpClicked(context, "Label31_Click", 2);
}

void Label32_Click(EditorFormContext& context)
{
    helpClicked(context, "Label32_Click", 1);
}

void Label33_Click(EditorFormContext& context)
{
    helpClicked(context, "Label33_Click", 0);
}

void EditProfileChk(EditorFormContext& context)
{
    state::ProfileEditorState& editor = context.tree.editor;
    state::ProfileStore& store = context.tree.store;
    state::FrameState& frame = context.tree.frame;
    PagesContext& pages = context.pages;
    PendingError failure;
    {
        const trace::TraceScope scope(context.tree.trace.trace, "EditProfileChk");
        // One step that fails does not keep the others from being done.
        const auto attempt = [&](auto&& step) { failure.attempt(step); };
        attempt([&] { ListExclForFileExt(pages); });
        attempt([&] { ListInclForFileExt(pages); });
        store.save.clxnIncluded.clear();
        store.save.clxnExcluded.clear();
        pages.pages.bDestRevert = true;
        for (state::Frame* const each : {&editor.fmeExclude, &editor.fmeInclude,
                                         &editor.fmeOtherData, &editor.fmeFilesByNames})
            each->enabled = true;
        store.scalars.bOptionsLoaded = false;
        editor.chkWarn.enabled = true;
        editor.Label9.enabled = true;
        editor.txtWarn.enabled = true;
        openCommands(context.main);
        editor.chkPrimary.enabled = true;
        attempt([&] { BuildDriveList(context.tree); });
        attempt([&] { restoreOpenedDrives(context.tree); });
        attempt([&] { traceAbsentDrives(context); });
        attempt([&] {
            replayTicks(context, editor.lstInclude, store.opened.clxnOpenedIncluded, kIncludedShare,
                        [&](std::size_t row) { InclCheck(pages, row); });
        });
        attempt([&] {
            replayTicks(context, editor.lstExclude, store.opened.clxnOpenedExcluded, kListsShare,
                        [&](std::size_t row) { ExclCheck(pages, row); });
        });
        frame.pb.value = frame.pb.maximum;
        attempt([&] { selectSettingsGroups(context); });
        enableAll(context);
        attempt([&] { restorePattern(context); });
        ++editor.revision;
    }
    trace::errorTail(context.tree.trace, {"EditProfileChk", "EditProfileChk", kModule, kEditFailed},
                     failure);
}

} // namespace vardelin::editor
