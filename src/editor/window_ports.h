#pragma once

#include "state/password_form.h"

#include <string>
#include <string_view>

namespace vardelin::editor {

// What the handlers of the editor's pages need of the window around them. A test answers from a
// script. Message boxes are a port of their own, platform::MessageBoxes; the mouse pointer is a
// field of SourceTreeForm.
class EditorWindow {
public:
    EditorWindow() = default;
    EditorWindow(const EditorWindow&) = delete;
    EditorWindow& operator=(const EditorWindow&) = delete;
    virtual ~EditorWindow() = default;

    // Show a modal form and come back when it is hidden, unloaded or closed by the person. The
    // form's own handlers run meanwhile.
    virtual void showOtherdata() = 0;
    virtual void showResPwd(state::frmResPwd& form) = 0;

    // Lets the person choose a folder, beginning at `start`. The folder ends in a backslash; empty
    // where the choice was cancelled.
    virtual std::string browseForFolder(std::string_view title, std::string_view start) = 0;

    // By the control's name. Does nothing while the control cannot take the focus.
    virtual void setFocus(std::string_view control) = 0;
    // Scrolls a list so that its selected row is seen.
    virtual void ensureVisible(std::string_view list) = 0;
    // Empties the clipboard of the whole system.
    virtual void clearClipboard() = 0;
};

} // namespace vardelin::editor
