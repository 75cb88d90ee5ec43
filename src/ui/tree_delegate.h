#pragma once

#include <QStyledItemDelegate>

namespace vardelin::ui {

// Draws the rows of the source tree: the state in the form of the box, in the colour of the name,
// readable on whatever lies behind it, and slanted where it is partly selected. Long names lose
// their middle.
class TreeDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace vardelin::ui
