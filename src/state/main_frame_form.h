#pragma once

#include <array>
#include <cstddef>
#include <string>

// The main frame's menu entries and toolbar buttons, as far as their enabling is decided by what
// the person does. One instance, owned by the application, on the thread of the user interface.
namespace vardelin::state {

struct MenuEntry {
    bool enabled = true;
};

struct ToolButton {
    bool enabled = true;
    std::string toolTip{}; // empty: the button's own
};

// In pixels of the view, which alone reads them.
struct FrameSize {
    int width = 0;
    int height = 0;
    friend bool operator==(const FrameSize&, const FrameSize&) = default;
};

struct MainFrameForm {
    // Buttons have indices from 1; 7 and 10 are separators and 12 has a drop-down.
    static constexpr std::size_t kToolbarButtons = 12;

    MenuEntry mnuFile; // the menus themselves
    MenuEntry mnuActions;
    MenuEntry mnuTools;
    MenuEntry mnuWindow;
    MenuEntry mnuHelp;

    MenuEntry mnuNew;
    MenuEntry mnuOpen;
    MenuEntry mnuEdit;
    MenuEntry mnuSave;
    MenuEntry mnuSaveAs;
    MenuEntry mnuClose;
    MenuEntry mnuExit;
    MenuEntry mnuBackup;
    MenuEntry mnure;
    MenuEntry mnuExpand;
    MenuEntry mnuCollapse;
    MenuEntry mnudispQ;
    MenuEntry mnuBackLog;
    MenuEntry mnuRestLog;
    MenuEntry mnuOptions;
    MenuEntry mnuProfile;
    MenuEntry mnuContents;
    MenuEntry mnuAbout;

    bool loaded = false; // or loading
    FrameSize sizeAtLoad;
    bool commandRunning = false; // another command that is clicked meanwhile does nothing
    bool hourglass = false;
    bool maximizeBox = true;      // taken away while the frame loads and while a run goes on
    bool Picture2Visible = false; // the pane of the whole-PC backup

    bool editorEnabled = true; // frmProfile as a whole
    bool Toolbar1Enabled = true;
    ToolButton& Toolbar1(std::size_t index) { return m_buttons.at(index - 1); }
    const ToolButton& Toolbar1(std::size_t index) const { return m_buttons.at(index - 1); }

private:
    std::array<ToolButton, kToolbarButtons> m_buttons;
};

} // namespace vardelin::state
