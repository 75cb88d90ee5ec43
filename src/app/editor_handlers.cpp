#include "app/editor_handlers.h"

#include "editor/destination.h"
#include "editor/extension_lists.h"
#include "editor/life_cycle.h"
#include "editor/options_page.h"
#include "editor/other_data_form.h"
#include "editor/password_page.h"
#include "editor/schedule_page.h"
#include "editor/source_tree.h"

#include <array>
#include <cstddef>

namespace vardelin::app {
namespace {

using editor::PagesContext;
using ui::ProfileFormHandlers;
using ui::TextHandlers;

constexpr int kRightButton = 2;

// Makes the views' handlers out of the editor's functions.
class Maker {
public:
    Maker(PagesContext& pages, HandlerRunner& runner) : m_pages(pages), m_runner(runner) {}

    using Click = void (*)(PagesContext&);
    using RowClick = void (*)(PagesContext&, std::size_t);
    using Key = int (*)(int);

    ui::Handler click(const char* name, Click function) const
    {
        return [name, function, pages = &m_pages, runner = &m_runner] {
            runner->run(name, [&] { function(*pages); });
        };
    }
    ui::RowHandler row(const char* name, RowClick function) const
    {
        return [name, function, pages = &m_pages, runner = &m_runner](std::size_t at) {
            runner->run(name, [&] { function(*pages, at); });
        };
    }
    std::function<void(int)> column(const char* name, RowClick function) const
    {
        return [name, function, pages = &m_pages, runner = &m_runner](int at) {
            runner->run(name, [&] { function(*pages, static_cast<std::size_t>(at)); });
        };
    }
    // A control that does nothing but note that it was changed.
    ui::Handler change(const char* name) const
    {
        return [name, pages = &m_pages, runner = &m_runner] {
            runner->run(name, [&] { editor::noteChange(pages->frame); });
        };
    }
    ui::KeyFilter key(const char* name, Key function) const
    {
        return keyOf(name, [function](PagesContext&, int code) { return function(code); });
    }
    ui::KeyFilter key(const char* name, int (*function)(PagesContext&, int)) const
    {
        return keyOf(name, function);
    }
    // A box for a count, none of which begins with a zero.
    ui::KeyFilter countKey(const char* name, state::TextBox& box) const
    {
        return keyOf(name,
                     [&box](PagesContext&, int code) { return editor::countKeyPress(box, code); });
    }
    ui::Handler rightButton(const char* name) const
    {
        return [name, pages = &m_pages, runner = &m_runner] {
            runner->run(name, [&] { editor::digitBoxMouseDown(*pages, kRightButton); });
        };
    }

private:
    template <typename Function>
    ui::KeyFilter keyOf(const char* name, Function function) const
    {
        return [name, function, pages = &m_pages, runner = &m_runner](int code) {
            int typed = 0; // nothing is typed where the handler failed
            runner->run(name, [&] { typed = function(*pages, code); });
            return typed;
        };
    }

    PagesContext& m_pages;
    HandlerRunner& m_runner;
};

void filesPage(ProfileFormHandlers& form, const Maker& make)
{
    form.cmdExclude_Click = make.click("cmdExclude_Click", editor::cmdExclude_Click);
    form.cmdExclInclByNames_Click =
        make.click("cmdExclInclByNames_Click", editor::cmdExclInclByNames_Click);
    form.lstInclude_ItemCheck = make.row("lstInclude_ItemCheck", editor::lstInclude_ItemCheck);
    form.lstInclude_ColumnClick =
        make.column("lstInclude_ColumnClick", editor::lstInclude_ColumnClick);
    form.lstOtherData_ItemCheck =
        make.row("lstOtherData_ItemCheck", editor::lstOtherData_ItemCheck);
}

void destinationAndSecurity(ProfileFormHandlers& form, const Maker& make)
{
    form.CmbDestDrives.click = make.click("CmbDestDrives_Click", editor::CmbDestDrives_Click);
    form.CmbDestDrives.gotFocus =
        make.click("CmbDestDrives_GotFocus", editor::CmbDestDrives_GotFocus);
    form.CmbDestDrives.keyPress =
        make.key("CmbDestDrives_KeyPress", editor::CmbDestDrives_KeyPress);
    form.CmbDestDrives.keyDown = make.key("CmbDestDrives_KeyDown", editor::CmbDestDrives_KeyDown);
    form.txtDestLoc.change = make.click("txtDestLoc_Change", editor::txtDestLoc_Change);
    form.txtDestLoc.gotFocus = make.click("txtDestLoc_GotFocus", editor::txtDestLoc_GotFocus);
    form.txtDestLoc.keyPress = make.key("txtDestLoc_KeyPress", editor::txtDestLoc_KeyPress);
    form.cmdBrowse_Click = make.click("cmdBrowse_Click", editor::cmdBrowse_Click);

    form.chkCompress_Click = make.click("chkCompress_Click", editor::chkCompress_Click);
    form.chkEncrypt_Click = make.click("chkEncrypt_Click", editor::chkEncrypt_Click);
    form.chkPassword_Click = make.click("chkPassword_Click", editor::chkPassword_Click);
    form.txtPassWord.change = make.click("txtPassWord_Change", editor::txtPassWord_Change);
    form.txtPassWord.gotFocus = make.click("txtPassWord_GotFocus", editor::passwordBoxEntered);
    form.cmbHintQues_Click = make.change("cmbHintQues_Click");
    form.txtHintAns.change = make.change("txtHintAns_Change");
}

void startUpOptions(ProfileFormHandlers& form, const Maker& make, state::ProfileEditorState& record)
{
    form.chkIdle_Click = make.click("chkIdle_Click", editor::chkIdle_Click);
    form.txtIdleTime.change = make.change("txtIdleTime_Change");
    form.txtIdleTime.gotFocus = make.click("txtIdleTime_GotFocus", editor::txtIdleTime_GotFocus);
    form.txtIdleTime.keyPress = make.countKey("txtIdleTime_KeyPress", record.txtIdleTime);
    form.txtIdleTime.rightButton = make.rightButton("txtIdleTime_MouseDown");

    form.chkSizeOfBkp_Click = make.click("chkSizeOfBkp_Click", editor::chkSizeOfBkp_Click);
    form.txtSizeOfBkp.change = make.change("txtSizeOfBkp_Change");
    form.txtSizeOfBkp.keyPress = make.countKey("txtSizeOfBkp_KeyPress", record.txtSizeOfBkp);
    form.txtSizeOfBkp.rightButton = make.rightButton("txtSizeOfBkp_MouseDown");
    form.cmbSizeOfBkp_Click = make.change("cmbSizeOfBkp_Click");

    form.chkQueueThrld_Click = make.click("chkQueueThrld_Click", editor::chkQueueThrld_Click);
    form.txtQueueThrld.change = make.click("txtQueueThrld_Change", editor::txtQueueThrld_Change);
    form.txtQueueThrld.keyPress = make.countKey("txtQueueThrld_KeyPress", record.txtQueueThrld);
    form.txtQueueThrld.rightButton = make.rightButton("txtQueueThrld_MouseDown");

    form.chkWarn_Click = make.click("chkWarn_Click", editor::chkWarn_Click);
    form.txtWarn.change = make.change("txtWarn_Change");
    form.txtWarn.gotFocus = make.click("txtWarn_GotFocus", editor::txtWarn_GotFocus);
    form.txtWarn.lostFocus = make.click("txtWarn_LostFocus", editor::txtWarn_LostFocus);
    form.txtWarn.keyPress = make.key("txtWarn_KeyPress", editor::txtWarn_KeyPress);
    form.txtWarn.rightButton = make.rightButton("txtWarn_MouseDown");

    form.chkPrimary_Click = make.click("chkPrimary_Click", editor::chkPrimary_Click);
}

void schedulePage(ProfileFormHandlers& form, const Maker& make)
{
    struct Pattern {
        const char* click;
        Maker::Click function;
        const char* change;
        const char* keyPress;
        const char* mouseDown;
        const char* time;
    };
    static constexpr std::array<Pattern, 4> kPatterns{
        Pattern{"optDaily_Click", editor::optDaily_Click, "txtDailyRecur_Change",
                "txtDailyRecur_KeyPress", "txtDailyRecur_MouseDown", "dtpDaily_Change"},
        {"optWeekly_Click", editor::optWeekly_Click, "txtWeeklyRecur_Change",
         "txtWeeklyRecur_KeyPress", "txtWeeklyRecur_MouseDown", "dtpWeekly_Change"},
        {"optMonthly_Click", editor::optMonthly_Click, "txtMonthlyRecur_Change",
         "txtMonthlyRecur_KeyPress", "txtMonthlyRecur_MouseDown", "dtpMonthly_Change"},
        {"optYearly_Click", editor::optYearly_Click, "txtYearlyRecur_Change",
         "txtYearlyRecur_KeyPress", "txtYearlyRecur_MouseDown", "dtpYearly_Change"}};

    form.chkAutoSched_Click = make.click("chkAutoSched_Click", editor::chkAutoSched_Click);
    form.dtpStDate_Change = make.click("dtpStDate_Change", editor::dtpStDate_Change);
    form.dtpStTime_Change = make.change("dtpStTime_Change");
    for (std::size_t i = 0; i < kPatterns.size(); ++i) {
        const Pattern& pattern = kPatterns[i];
        form.optPattern_Click[i] = make.click(pattern.click, pattern.function);
        form.txtRecur[i].change = make.change(pattern.change);
        form.txtRecur[i].keyPress = make.key(pattern.keyPress, editor::recurrenceKeyPress);
        form.txtRecur[i].rightButton = make.rightButton(pattern.mouseDown);
        form.dtpPattern_Change[i] = make.change(pattern.time);
    }
    form.lstWeekDays_ItemCheck = make.row("lstWeekDays_ItemCheck", editor::lstWeekDays_ItemCheck);
    form.lstMonthDate_ItemCheck =
        make.row("lstMonthDate_ItemCheck", editor::lstMonthDate_ItemCheck);
    form.lstMonth_ItemCheck = make.row("lstMonth_ItemCheck", editor::lstMonth_ItemCheck);
    form.lstYearDate_ItemCheck = make.row("lstYearDate_ItemCheck", editor::lstYearDate_ItemCheck);
}

void retentionOptions(ProfileFormHandlers& form, const Maker& make,
                      state::ProfileEditorState& record)
{
    struct Option {
        const char* name;
        Maker::Click function;
    };
    static constexpr std::array<Option, 8> kOptions{
        Option{"optVer1_Click", editor::optVer1_Click}, {"optVer2_Click", editor::optVer2_Click},
        {"optVer3_Click", editor::optVer3_Click},       {"optVer4_Click", editor::optVer4_Click},
        {"optVer5_Click", editor::optVer5_Click},       {"optVer6_Click", editor::optVer6_Click},
        {"optVer7_Click", editor::optVer7_Click},       {"optVer8_Click", editor::optVer8_Click}};
    for (std::size_t i = 0; i < kOptions.size(); ++i)
        form.optVer_Click[i] = make.click(kOptions[i].name, kOptions[i].function);

    TextHandlers& versions = form.txtLatestVer;
    versions.change = make.change("txtLatestVer_Change");
    versions.gotFocus = make.click("txtLatestVer_GotFocus", editor::txtLatestVer_GotFocus);
    versions.lostFocus = make.click("txtLatestVer_LostFocus", editor::txtLatestVer_LostFocus);
    versions.keyPress = make.countKey("txtLatestVer_KeyPress", record.txtLatestVer);
    versions.rightButton = make.rightButton("txtLatestVer_MouseDown");

    TextHandlers& days = form.txtLatestDaysVer;
    days.change = make.change("txtLatestDaysVer_Change");
    days.gotFocus = make.click("txtLatestDaysVer_GotFocus", editor::txtLatestDaysVer_GotFocus);
    days.lostFocus = make.click("txtLatestDaysVer_LostFocus", editor::txtLatestDaysVer_LostFocus);
    days.keyPress = make.countKey("txtLatestDaysVer_KeyPress", record.txtLatestDaysVer);
    days.rightButton = make.rightButton("txtLatestDaysVer_MouseDown");
}

void sourceTree(ProfileFormHandlers& form, editor::EditorContext& tree, HandlerRunner& runner)
{
    form.tree.tvwDirectory_Expand = [&tree, &runner](state::TreeNode& node) {
        runner.run("tvwDirectory_Expand", [&] { editor::tvwDirectory_Expand(tree, node); });
    };
    form.tree.tvwDirectory_NodeCheck = [&tree, &runner](state::TreeNode& node) {
        runner.run("tvwDirectory_NodeCheck", [&] { editor::tvwDirectory_NodeCheck(tree, node); });
    };
    form.tree.tvwDirectory_Click = [&tree, &runner] {
        runner.run("tvwDirectory_Click", [&] { editor::tvwDirectory_Click(tree); });
    };
    form.tree.tvwDirectory_KeyDown = [&runner](int& keyCode) {
        runner.run("tvwDirectory_KeyDown", [&] { editor::tvwDirectory_KeyDown(keyCode); });
    };
    form.tree.tvwDirectory_BeforeLabelEdit = editor::tvwDirectory_BeforeLabelEdit;
    form.tree.form = &tree.form;
    form.tree.fileSystem = &tree.machine.fileSystem;
    form.tree.shell = &tree.machine.shell;
}

void tabs(ProfileFormHandlers& form, editor::EditorFormContext& context, HandlerRunner& runner)
{
    form.SSTab1_Click = [&context, &runner](int tab) {
        runner.run("SSTab1_Click", [&] { editor::SSTab1_Click(context, tab); });
    };
    const auto label = [&](const char* name, void (*function)(editor::EditorFormContext&)) {
        return
            [&context, &runner, name, function] { runner.run(name, [&] { function(context); }); };
    };
    form.Label31_Click = label("Label31_Click", editor::Label31_Click);
    form.Label32_Click = label("Label32_Click", editor::Label32_Click);
    form.Label33_Click = label("Label33_Click", editor::Label33_Click);
}

} // namespace

ui::ProfileFormHandlers editorHandlers(editor::EditorFormContext& context, HandlerRunner& runner)
{
    PagesContext& pages = context.pages;
    const Maker make(pages, runner);
    ProfileFormHandlers form;
    tabs(form, context, runner);
    sourceTree(form, context.tree, runner);
    filesPage(form, make);
    destinationAndSecurity(form, make);
    startUpOptions(form, make, pages.editor);
    schedulePage(form, make);
    retentionOptions(form, make, pages.editor);
    return form;
}

} // namespace vardelin::app
