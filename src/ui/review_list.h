#pragma once

#include "state/review_form.h"

#include <QTableView>

namespace vardelin::ui {

// lstRestore: the review's list with the mouse and the keys of a tree.
//
//   plus or minus, double click, Enter   open or close the row
//   Right, +                             open it; Right on an open one goes to its first child
//   Left, -                              close it; Left on another one goes to its parent
//   Home, End                            the first and the last row
//   Delete, menu key, right click        emitted
//
// While the form is busy the list scrolls and takes no other input.
class ReviewList final : public QTableView {
    Q_OBJECT

public:
    // The record must outlive the list.
    explicit ReviewList(const state::frmVDStorage& form, QWidget* parent = nullptr);

    // The room that the columns share out; call when the model is there.
    void fitColumns();

    // Of a row that is in sight: the end of what its first column shows, in the viewport.
    QPoint endOf(int row) const;

signals:
    void buttonClicked(int row); // from 0, and it has one
    void menuWanted();
    void deletionWanted();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    state::RowButton buttonOf(int row) const;
    bool onButton(QPoint place) const;
    void goTo(int row);
    bool opensOrCloses(const QKeyEvent& event, int row);

    const state::frmVDStorage& m_form;
    bool m_onButton = false; // the press that goes on began on a button
};

} // namespace vardelin::ui
