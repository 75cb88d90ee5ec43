#pragma once

#include "platform/file_system.h"
#include "platform/machine.h"
#include "profile/editor_lists.h"
#include "profile/schedule_port.h"
#include "state/frame_state.h"
#include "state/profile_editor_state.h"
#include "state/profile_store.h"
#include "trace/error_tail.h"

#include <memory>

namespace vardelin::profile {

// Files that may outlive the procedure that opened them. There is one: a document named on the
// command line stays open under number 1 until a profile is unscrambled.
struct FileNumbers {
    std::unique_ptr<platform::File> fileNumber1;
};

// All that the profile store works on. Holds references only; the application owns the parts and
// keeps them longer than every procedure that is handed this record.
struct ProfileContext {
    platform::Machine& machine;
    trace::TraceContext& trace;
    state::FrameState& frame;
    state::ProfileEditorState& editor;
    state::ProfileStore& store;
    ScheduleRecords& schedules;
    EditorLists& lists;
    FileNumbers& files;
};

} // namespace vardelin::profile
