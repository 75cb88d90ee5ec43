#pragma once

#include "state/frame_state.h"
#include "state/main_frame_form.h"

#include <cstddef>

// The main frame's rules: which commands are open, and what a toolbar button runs.
namespace vardelin::frame {

// Every command that a menu entry or a button runs. Implemented by the application; a view calls
// nothing else.
class MainFrameCommands {
public:
    MainFrameCommands() = default;
    MainFrameCommands(const MainFrameCommands&) = delete;
    MainFrameCommands& operator=(const MainFrameCommands&) = delete;
    virtual ~MainFrameCommands() = default;

    virtual void mnuNew_Click() = 0;
    virtual void mnuOpen_Click() = 0;
    virtual void mnuEdit_Click() = 0;
    virtual void mnuSave_Click() = 0;
    virtual void mnuSaveAs_Click() = 0;
    virtual void mnuClose_Click() = 0;
    virtual void mnuExit_Click() = 0;
    virtual void mnuBackup_Click() = 0;
    virtual void mnuBkpSto_Click() = 0;
    virtual void mnuExpand_Click() = 0;
    virtual void mnuCollapse_Click() = 0;
    virtual void mnudispQ_Click() = 0;
    virtual void mnuBackLog_Click() = 0;
    virtual void mnuRestLog_Click() = 0;
    virtual void mnuOptions_Click() = 0;
    virtual void mnuProfile_Click() = 0;
    virtual void mnuContents_Click() = 0;
    virtual void mnuAbout_Click() = 0;
    virtual void cmdPcBackup_Click() = 0;

    // Around whatever a toolbar button runs, also around those that run nothing: traced, and an
    // engine stands ready from the first to the second.
    virtual void toolbarClickBegins() = 0;
    virtual void toolbarClickEnds() = 0;
};

// A confirmation is due before what the editor holds goes away.
bool needsSave(const state::FrameState& frame);

// What every handler of a control that edits a value does.
void markChanged(state::FrameState& frame);

// Closes what needs a profile.
void DisAbleMenu(state::MainFrameForm& form);

// The commands that the mode opens when the editor is shown again. A mode that is none of the three
// leaves all but Close as they are.
void enableByMode(state::MainFrameForm& form, const state::FrameState& frame);

// Closes the frame while a long run goes on (`active` false), and opens it again. The editor's form
// follows the record's `editorEnabled`.
void MainWndActiveInAct(state::MainFrameForm& form, bool active);

// Runs what the button stands for. Separators and the button with the drop-down do nothing.
void Toolbar_ButtonClick(MainFrameCommands& commands, std::size_t index);

} // namespace vardelin::frame
