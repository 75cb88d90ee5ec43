#pragma once

#include "state/profile_editor_state.h"
#include "trace/error_tail.h"

namespace vardelin::profile {

// The schedule lists of the editor, as far as reading a profile touches them.
class EditorLists {
public:
    EditorLists() = default;
    EditorLists(const EditorLists&) = delete;
    EditorLists& operator=(const EditorLists&) = delete;
    virtual ~EditorLists() = default;

    // Brings the pages of the patterns marked true to life: enables the recurrence box and the time
    // picker, and fills the page's list anew with nothing selected. The yearly dates are filled
    // anew in every call.
    virtual void Refreshlist(bool daily, bool weekly, bool monthly, bool yearly) = 0;
};

// Works on the state record, which is all there is where no window is.
class StateEditorLists : public EditorLists {
public:
    // Both must outlive this object.
    StateEditorLists(trace::TraceContext& trace, state::ProfileEditorState& editor)
        : m_trace(trace), m_editor(editor)
    {
    }

    void Refreshlist(bool daily, bool weekly, bool monthly, bool yearly) override;

private:
    trace::TraceContext& m_trace;
    state::ProfileEditorState& m_editor;
};

} // namespace vardelin::profile
