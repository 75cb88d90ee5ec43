#pragma once

#include "editor/editor_context.h"
#include "editor/window_ports.h"
#include "trace/messages.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

// What the handlers of the editor's three pages and of its two modal forms work on.
//
// Which writes run a handler is one rule for all of them:
//
// - What a person types, ticks or picks stands in the record before its handler runs.
// - Whatever fills the editor (reading a profile, building lists, loading a form, checking before a
//   save) writes the record and runs none.
// - Inside a handler there are three exceptions, each a call that stands in the code: a new text of
//   txtDestLoc runs txtDestLoc_Change, a new text of txtPassWord runs txtPassWord_Change, and
//   switching the schedule on runs optDaily_Click.
namespace vardelin::editor {

inline constexpr std::string_view kTitle = "Vardelin"; // of every message box

// How a list with two columns is sorted by clicks on their headings.
struct ColumnSort {
    bool Sorted = false;
    int SortKey = 0; // column, from 0
    bool descending = false;
    std::array<std::string, 2> Tag; // of each column: "1" where its next click sorts downwards
};

// frmOtherdata beside what of it a profile holds (lstExclude and the two boxes of names are fields
// of the editor's record). Loaded at its first use and then only hidden and shown.
struct frmOtherdata {
    std::string caption = "FileOptions";
    state::Button cmdSetOK{.caption = "&OK"};
    state::Button cmdCancel{.caption = "&Clear"};
    ColumnSort lstExcludeSort;
    bool loaded = false;
    bool visible = false; // the view hides the form when this falls
};

// What the pages keep beside the record of a profile.
struct PagesForm {
    frmOtherdata otherdata;
    ColumnSort lstIncludeSort;

    // The destination's box changes without a question: a handler is rewriting it, the combo
    // beside it had the focus, or a change was accepted.
    bool bDestRevert = false;
    std::string sOldDestination;    // when txtDestLoc got the focus, or at Browse
    bool bPwdPromptRefused = false; // the person would not give the old password
    bool bPwdAskedByTyping = false; // the old password was last asked for by typing
};

// Holds references only, as EditorContext does.
struct PagesContext {
    platform::Machine& machine;
    trace::TraceContext& trace;
    state::FrameState& frame;
    state::ProfileEditorState& editor;
    state::ProfileStore& store;
    SourceTreeForm& form;
    PagesForm& pages;
    EditorWindow& window;
};

// The person changed a value of the profile: what every handler of a saved value does, and all that
// the handlers of most boxes and pickers do. In a view it counts for nothing.
void noteChange(state::FrameState& frame);

// Runs a handler's body as trace::runTraced does, and lets the views show the record again, also
// after an error.
template <typename Body>
void runHandler(PagesContext& context, const trace::TailNames& names, Body&& body)
{
    ++context.editor.revision;
    trace::runTraced(context.trace, names.traceName, names, std::forward<Body>(body));
}

// Without a sentence of its own the error dialog says the procedure's name.
template <typename Body>
void runHandler(PagesContext& context, std::string_view name, std::string_view sentence,
                Body&& body)
{
    runHandler(context, trace::TailNames{name, name, "frmProfile", sentence},
               std::forward<Body>(body));
}

template <typename Body>
void runHandler(PagesContext& context, std::string_view name, Body&& body)
{
    runHandler(context, name, trace::customMessage(name), std::forward<Body>(body));
}

// A message with an OK button; a question with Yes and No, true for Yes.
void tell(const PagesContext& context, std::string_view text);
bool ask(const PagesContext& context, std::string_view text);

// Keys of boxes, by character code. Each gives the code that is typed, 0 for none.
inline constexpr int kBackspaceKey = 8;
int digitsOnly(int key);
// A key under 32, backspace among them, is never in `refused`.
int refuseKeys(int key, std::string_view refused);

// A mouse button went down in a box for digits: the right one (2) empties the clipboard, since the
// box's own menu could paste other text.
void digitBoxMouseDown(PagesContext& context, int button);

} // namespace vardelin::editor
