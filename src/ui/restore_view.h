#pragma once

#include "state/restore_forms.h"
#include "ui/modal_form.h"

#include <QPointer>
#include <QTimer>

class QProgressBar;

namespace vardelin::ui {

// What the form's logic does about its controls, under the names of the handlers.
struct RestoreLocationHandlers {
    ComboHandlers cmbRestLoc;
    TextHandlers txtRestLoc;
    Handler cmdBrowse_Click;
    Handler cmdOK_Click;
    Handler cmdCancel_Click;
};

// The run that the dialog's OK leads to: it goes on inside that handler.
struct RestoreProgress {
    const bool& running;
    const state::ProgressBar& bar;
};

// frmRestDialog where files go back to. While a restore runs the dialog stays, cannot be answered
// or closed, and shows how far the run is.
class RestoreLocationView final : public ModalForm {
    Q_OBJECT

public:
    // The records must outlive the window.
    RestoreLocationView(state::frmRestLocation& form, RestoreLocationHandlers handlers,
                        RestoreProgress progress, QWidget* parent = nullptr);

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void showRun();

    state::frmRestLocation& m_form;
    RestoreProgress m_progress;
    QTimer m_watch;
    QProgressBar* m_bar = nullptr;
    QPointer<QWidget> m_focused; // before the run
};

struct ByDateHandlers {
    Handler cmdOk_Click; // the button, Enter, and a double click on a day
    Handler cmdCancel_Click;
};

// frmByDate: the day whose state a restore brings back. The restore goes on inside the handler of
// its OK; the window closes as soon as the record says so, before that.
class ByDateView final : public ModalForm {
    Q_OBJECT

public:
    // The record must outlive the window.
    ByDateView(state::frmByDate& form, ByDateHandlers handlers, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QTimer m_watch;
};

} // namespace vardelin::ui
