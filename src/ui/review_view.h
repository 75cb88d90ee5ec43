#pragma once

#include "platform/machine.h"
#include "state/review_form.h"
#include "ui/form_binder.h"

#include <cstddef>
#include <functional>
#include <optional>

#include <QTimer>
#include <QWidget>

class QItemSelection;
class QLabel;
class QMenu;
class QProgressBar;

namespace vardelin::ui {

class FormHeading;
class ReviewList;
class ReviewModel;

// What the form's logic does about its controls, under the names of the handlers. Rows have numbers
// from 1 there.
struct ReviewHandlers {
    RowHandler rowButtonClicked;
    std::function<bool()> rowsRightClicked; // whether the pop-up menu may open
    Handler mnuByDate_Click;
    Handler mnuAsOf_Click;
    Handler mnuDel_Click;
    Handler Form_Unload; // the person closes the form, which is not busy; lets `loaded` fall
};

// frmVDStorage: what an archive holds, as a tree in the list lstRestore, with its pop-up menu
// mnuStoOptions, its help, and a line below that tells how many rows there are and what of them is
// selected. It stands in the main frame's area.
//
// What a person selects goes into `selected` of the rows at once, row by row of what changed; what
// the record says is selected shows again after each handler. While the form is busy the pointer
// and a bar tell so, the list refuses clicks and the form refuses to close.
class ReviewView final : public QWidget {
    Q_OBJECT

public:
    // `progress` is the frame's bar, which the making of rows moves. The records and the shell,
    // which may be null, must outlive the view.
    ReviewView(state::frmVDStorage& form, const state::ProgressBar& progress,
               ReviewHandlers handlers, platform::Shell* shell, QWidget* parent = nullptr);

    // Shows the record as it stands.
    void showRecord() { m_binder.show(); }
    // The same while a handler of whatever form lets events through, many times in a second: what
    // is selected shows behind it, since to see that takes a look at every row.
    void showProgress();

    ReviewList& list() { return *m_list; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void build(platform::Shell* shell);
    void buildMenu();
    void run(const Handler& handler);
    void openOrClose(int row);
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected);
    void openMenu();
    void remove();
    bool mayAct();
    void showAll();
    void showSelection();
    void showView();
    void showBusy();

    state::frmVDStorage& m_form;
    const state::ProgressBar& m_progress;
    ReviewHandlers m_handlers;
    FormBinder m_binder;
    QTimer m_watch;      // while a handler works
    QTimer m_countLater; // what is selected is counted once, however many changes came together
    FormHeading* m_heading = nullptr;
    ReviewList* m_list = nullptr;
    ReviewModel* m_model = nullptr;
    QMenu* m_menu = nullptr;
    QLabel* m_selected = nullptr;
    QProgressBar* m_bar = nullptr;
    std::optional<std::size_t> m_acted; // the row, from 0, that is being opened or closed
    bool m_showing = false;
    bool m_inProgress = false;
};

} // namespace vardelin::ui
