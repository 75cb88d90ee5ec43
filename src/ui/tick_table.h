#pragma once

#include "ui/form_binder.h"

#include <cstddef>

#include <QTreeView>

namespace vardelin::ui {

// How a table is sorted, for the mark in its headings.
struct SortedBy {
    bool sorted = false;
    int column = 0; // from 0
    bool descending = false;
};

// Rows in columns with a box in front of each. The blank ticks the row that stands out, in whatever
// column that was clicked.
class TickTable final : public QTreeView {
    Q_OBJECT

public:
    explicit TickTable(QWidget* parent = nullptr);

    // A double click beside a row's box, and Enter, emit `opened` from now on. Without this, Enter
    // is the default button's.
    void letRowsOpen();

    // A click on a heading runs `columnClick`; `by` says what the headings show.
    void bindSorting(FormBinder& binder, std::function<void(std::size_t column)> columnClick,
                     std::function<SortedBy()> by);

signals:
    void opened(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_rowsOpen = false;
};

} // namespace vardelin::ui
