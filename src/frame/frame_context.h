#pragma once

#include "background/schedule_records.h"
#include "editor/life_cycle.h"
#include "profile/opening.h"
#include "state/main_frame_form.h"
#include "state/rest_dialog_form.h"

namespace vardelin::frame {

// What the commands of the main frame need of the windows. A test answers from a script. The form
// of the profile follows its record (state::ProfileFormState), and so do the frame's own menus.
class FrameWindow {
public:
    FrameWindow() = default;
    FrameWindow(const FrameWindow&) = delete;
    FrameWindow& operator=(const FrameWindow&) = delete;
    virtual ~FrameWindow() = default;

    // Show a modal form and come back when it is unloaded, or closed by the person as with its
    // Cancel or Close. The form's own handlers run meanwhile.
    virtual void showRestDialog(state::frmRestDialog& form) = 0;
    virtual void showOpenProfile(profile::OpeningContext& opening) = 0;
    virtual void showAbout() = 0;

    // Close the windows of the archive's review and of the logs, which show the profile that is
    // about to go.
    virtual void unloadReview() = 0;
    virtual void unloadLogs() = 0;

    // Brings frmProfile in front of the other forms, maximized.
    virtual void showEditor() = 0;

    // Ends the program once the handler that is running has come back.
    virtual void endApplication() = 0;
};

// What the main frame's procedures work on. Holds references only; the application owns the parts
// and keeps them longer than every procedure that is handed this record.
struct FrameContext {
    profile::ProfileContext& profiles;
    profile::OpeningContext& opening;
    editor::EditorFormContext& form;
    background::RegistryScheduleRecords& schedules;
    state::MainFrameForm& main;
    FrameWindow& window;
};

} // namespace vardelin::frame
