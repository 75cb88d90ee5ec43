#include "frame/main_frame.h"

#include <array>

namespace vardelin::frame {

using state::FrameState;
using state::MainFrameForm;

namespace {

// The buttons whose enabling follows the mode, in the order of the table's columns.
constexpr std::array<std::size_t, 5> kModeButtons{3, 4, 5, 8, 9};

struct ModeRow {
    std::array<bool, kModeButtons.size()> buttons;
    bool edit;
    bool save;
    bool saveAs;
    bool backup;
    bool review;
};

constexpr ModeRow kEditRow{{false, true, true, true, true}, false, true, true, true, true};
constexpr ModeRow kNewRow{{false, true, true, false, false}, false, true, true, false, false};
constexpr ModeRow kOpenRow{{true, false, false, true, true}, true, false, false, true, true};
constexpr ModeRow kNothingRow{{}, false, false, false, false, false};

void apply(MainFrameForm& form, const ModeRow& row)
{
    for (std::size_t i = 0; i < kModeButtons.size(); ++i)
        form.Toolbar1(kModeButtons[i]).enabled = row.buttons[i];
    form.mnuEdit.enabled = row.edit;
    form.mnuSave.enabled = row.save;
    form.mnuSaveAs.enabled = row.saveAs;
    form.mnuBackup.enabled = row.backup;
    form.mnure.enabled = row.review;
}

} // namespace

bool needsSave(const FrameState& frame)
{
    return (frame.BL_New_Mode && frame.BL_New_Changed) ||
           (frame.BL_Edit_Mode && frame.BL_Edit_Changed);
}

void markChanged(FrameState& frame)
{
    if (frame.BL_Edit_Mode)
        frame.BL_Edit_Changed = true;
    if (frame.BL_New_Mode)
        frame.BL_New_Changed = true;
}

void DisAbleMenu(MainFrameForm& form)
{
    apply(form, kNothingRow);
    form.mnuExpand.enabled = false;
    form.mnuCollapse.enabled = false;
}

void enableByMode(MainFrameForm& form, const FrameState& frame)
{
    form.Toolbar1(6).enabled = true;
    form.mnuClose.enabled = true;
    const bool isNew = frame.BL_New_Mode;
    const bool isOpen = frame.BL_Open_Mode;
    if ((frame.BL_Edit_Mode || frame.BL_First_Run) && !isNew && !isOpen)
        apply(form, kEditRow);
    else if (isNew && !isOpen)
        apply(form, kNewRow);
    else if (isOpen && !isNew)
        apply(form, kOpenRow);
    else
        return;
    // A branch that can be opened can be closed again.
    form.mnuExpand.enabled = true;
    form.mnuCollapse.enabled = true;
}

void MainWndActiveInAct(MainFrameForm& form, bool active)
{
    form.editorEnabled = active;
    form.Toolbar1Enabled = active;
    form.mnuFile.enabled = active;
    form.mnuActions.enabled = active;
    form.mnuTools.enabled = active;
    form.mnuWindow.enabled = active;
    form.mnuHelp.enabled = active;
}

void Toolbar_ButtonClick(MainFrameCommands& commands, std::size_t index)
{
    using Command = void (MainFrameCommands::*)();
    static constexpr std::array<Command, MainFrameForm::kToolbarButtons> kCommands{
        &MainFrameCommands::mnuNew_Click,
        &MainFrameCommands::mnuOpen_Click,
        &MainFrameCommands::mnuEdit_Click,
        &MainFrameCommands::mnuSave_Click,
        &MainFrameCommands::mnuSaveAs_Click,
        &MainFrameCommands::mnuClose_Click,
        nullptr,
        &MainFrameCommands::mnuBackup_Click,
        &MainFrameCommands::mnuBkpSto_Click,
        nullptr,
        &MainFrameCommands::mnuProfile_Click,
        nullptr};
    commands.toolbarClickBegins();
    if (const Command command = kCommands.at(index - 1))
        (commands.*command)();
    commands.toolbarClickEnds();
}

} // namespace vardelin::frame
