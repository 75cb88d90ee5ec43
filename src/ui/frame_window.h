#pragma once

#include "editor/editor_context.h"
#include "frame/frame_context.h"
#include "state/main_frame_form.h"
#include "state/profile_form.h"
#include "ui/busy_pointer.h"
#include "ui/editor_window.h"
#include "ui/name_dialog_view.h"
#include "ui/open_profile_view.h"

namespace vardelin::ui {

class MainWindow;

// The forms that the main frame's commands open: what each is to do, asked for when it is opened.
struct FrameForms {
    std::function<OpenProfileHandlers(profile::OpeningContext&)> openProfile;
    std::function<NameDialogHandlers(state::frmRestDialog&)> nameDialog;
    Handler unloadReview;
    Handler unloadLogs;
};

// The window as the main frame's commands see it. Keeps the window true to the records: the title
// and the place of frmProfile, and the hourglass.
class QtFrameWindow final : public frame::FrameWindow {
public:
    struct Parts {
        MainWindow& window;
        QWidget& editorForm; // frmProfile, which the window's area holds
        const state::ProfileFormState& profileForm;
        const state::MainFrameForm& mainFrame;
        const editor::SourceTreeForm& tree;
    };
    // All parts must outlive this, and the window must not show records once this is gone.
    QtFrameWindow(const Parts& parts, WindowHooks hooks);

    // Before a command runs.
    void attach(FrameForms forms) { m_forms = std::move(forms); }

    void showRestDialog(state::frmRestDialog& form) override;
    void showOpenProfile(profile::OpeningContext& opening) override;
    void showAbout() override;
    void unloadReview() override;
    void unloadLogs() override;
    void showEditor() override;
    void endApplication() override;

private:
    void showRecords();
    void cameBack();

    Parts m_parts;
    WindowHooks m_hooks;
    FrameForms m_forms;
    BusyPointer m_pointer;
};

} // namespace vardelin::ui
