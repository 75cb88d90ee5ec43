#pragma once

#include "state/cancel_form.h"
#include "ui/form_binder.h"

#include <functional>

#include <QDialog>
#include <QTimer>

class QGridLayout;
class QLabel;
class QProgressBar;

namespace vardelin::ui {

class CompressPicture;
class ElidedLabel;

// What the form's logic does about its controls, under the names of the handlers.
struct CancelHandlers {
    Handler cmdCancel_Click;                // the button, and Esc
    std::function<bool()> Form_QueryUnload; // the close box: whether the form may go
};

// frmCancel: a backup under way. It stands in front of its parent and blocks nobody: the run that
// it shows goes on in a handler that has not come back. While it is on show it looks at the record
// ten times a second, however fast that changes, and it closes when `loaded` falls.
class CancelView final : public QDialog {
    Q_OBJECT

public:
    // The record must outlive the window.
    CancelView(state::frmCancel& form, CancelHandlers handlers, QWidget* parent = nullptr);

    // Shows the record as it stands: for whoever cannot wait for the next look.
    void showRecord();

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void build();
    QLabel* addFact(QGridLayout& grid, const char* name, const QString& caption);
    void showFacts();

    state::frmCancel& m_form;
    CancelHandlers m_handlers;
    FormBinder m_binder;
    QTimer m_watch;
    CompressPicture* m_picture = nullptr;
    ElidedLabel* m_file = nullptr;
    QProgressBar* m_bar = nullptr;
    QLabel* m_files = nullptr;
    QLabel* m_elapsed = nullptr;
    QLabel* m_remaining = nullptr;
};

// A length of time in words, as a person would say it: "5 seconds", "1 minute 5 seconds",
// "2 hours 3 minutes", "3 days 4 hours". Part of a second is cut; below one it is "0 seconds".
QString inWords(double seconds);

// What is left, which is a guess: "a few seconds", "about 20 seconds", "about 3 minutes".
QString aboutInWords(double seconds);

} // namespace vardelin::ui
