#pragma once

#include <QRect>
#include <QStyledItemDelegate>

class QFontMetrics;

namespace vardelin::ui {

// Where the parts of a row's first column are.
struct ReviewParts {
    QRect button; // plus or minus; the room for it where the row has none
    QRect icon;
    QRect text;
};

// `cell` is the first column's place. Rows are indented by their level as long as the column has
// room for the start of a name behind that.
ReviewParts partsOf(const QRect& cell, int level, const QFontMetrics& metrics);

// Draws the review: its first column indented, with a plus or minus, an icon and a name that loses
// its middle where it is too long; figures of the others with room behind them.
class ReviewDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

} // namespace vardelin::ui
