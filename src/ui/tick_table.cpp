#include "ui/tick_table.h"

#include <utility>

#include <QHeaderView>
#include <QKeyEvent>

namespace vardelin::ui {

TickTable::TickTable(QWidget* parent) : QTreeView(parent)
{
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setTextElideMode(Qt::ElideMiddle);
    header()->setSectionsClickable(true);
    header()->setSectionsMovable(false);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void TickTable::letRowsOpen()
{
    m_rowsOpen = true;
    connect(this, &QTreeView::activated, this,
            [this](const QModelIndex& index) { emit opened(index.row()); });
}

void TickTable::bindSorting(FormBinder& binder, std::function<void(std::size_t column)> columnClick,
                            std::function<SortedBy()> by)
{
    connect(header(), &QHeaderView::sectionClicked, this,
            [&binder, columnClick = std::move(columnClick)](int column) {
                binder.run([&] {
                    if (columnClick)
                        columnClick(static_cast<std::size_t>(column));
                });
            });
    binder.also([this, by = std::move(by)] {
        const SortedBy sorted = by();
        header()->setSortIndicatorShown(sorted.sorted);
        header()->setSortIndicator(sorted.column,
                                   sorted.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    });
}

void TickTable::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex current = currentIndex();
    if (m_rowsOpen && current.isValid() &&
        (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        // Here and no further: the default button would open the row a second time.
        event->accept();
        emit opened(current.row());
        return;
    }
    if (event->key() == Qt::Key_Space && current.column() > 0)
        setCurrentIndex(current.siblingAtColumn(0));
    QTreeView::keyPressEvent(event);
}

} // namespace vardelin::ui
