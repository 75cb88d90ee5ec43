#include "ui/review_delegate.h"

#include "state/review_form.h"
#include "ui/review_model.h"
#include "ui/selection_look.h"

#include <algorithm>

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

namespace vardelin::ui {
namespace {

constexpr int kGap = 5;              // pixels between the parts
constexpr double kButton = 0.75;     // of the letters' height
constexpr int kLeastLetters = 14;    // of a name that are seen, however deep it stands
constexpr int kLevels = 12;          // that are told apart in a narrow column
constexpr double kFrameShare = 0.45; // of the ground in a button's frame

void drawButton(QPainter& painter, const QRect& place, state::RowButton button,
                const QPalette& palette)
{
    const QColor ground = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const double unit = place.width() / 11.0;
    const QRectF box = QRectF(place).adjusted(unit / 2, unit / 2, -unit / 2, -unit / 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(mixed(text, ground, kFrameShare), unit));
    painter.setBrush(ground);
    painter.drawRoundedRect(box, 1.5 * unit, 1.5 * unit);
    painter.setPen(QPen(text, 1.4 * unit, Qt::SolidLine, Qt::FlatCap));
    const QPointF centre = box.center();
    const double arm = 2.9 * unit;
    painter.drawLine(centre - QPointF(arm, 0), centre + QPointF(arm, 0));
    if (button == state::RowButton::Plus)
        painter.drawLine(centre - QPointF(0, arm), centre + QPointF(0, arm));
    painter.restore();
}

} // namespace

ReviewParts partsOf(const QRect& cell, int level, const QFontMetrics& metrics)
{
    const int side = static_cast<int>(metrics.height() * kButton);
    const int icon = metrics.height();
    const int fixed = kGap + side + kGap + icon + kGap;
    const int least = metrics.averageCharWidth() * kLeastLetters;
    const int room = std::max(0, cell.width() - fixed - least);
    // In a narrow column the steps are smaller, so that a row is still seen to stand in another.
    const int step = std::min(side + kGap, room / kLevels);
    const int left = cell.left() + kGap + std::min(level * step, room);
    const int middle = cell.top() + cell.height() / 2;
    ReviewParts parts;
    parts.button = {left, middle - side / 2, side, side};
    parts.icon = {parts.button.right() + 1 + kGap, middle - icon / 2, icon, icon};
    const int text = parts.icon.right() + 1 + kGap;
    parts.text = {text, cell.top(), cell.right() - text - kGap, cell.height()};
    return parts;
}

void ReviewDelegate::paint(QPainter* painter, const QStyleOptionViewItem& given,
                           const QModelIndex& index) const
{
    QStyleOptionViewItem option = given;
    initStyleOption(&option, index);
    const QWidget* widget = option.widget;
    const QStyle& style = widget != nullptr ? *widget->style() : *QApplication::style();
    const auto group =
        option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const ReviewParts parts =
        partsOf(option.rect, index.data(ReviewModel::kLevelRole).toInt(), option.fontMetrics);
    const auto button = static_cast<state::RowButton>(index.data(ReviewModel::kButtonRole).toInt());

    painter->save();
    style.drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, widget);
    if (button != state::RowButton::None)
        drawButton(*painter, parts.button, button, option.palette);
    option.icon.paint(painter, parts.icon);
    painter->setFont(option.font);
    painter->setPen(
        option.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(
        parts.text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
        option.fontMetrics.elidedText(option.text, Qt::ElideMiddle, parts.text.width()));
    painter->restore();
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect = parts.text.adjusted(-2, 1, 2, -1);
        focus.backgroundColor =
            option.palette.color(group, isSelected ? QPalette::Highlight : QPalette::Base);
        focus.state |= QStyle::State_KeyboardFocusChange;
        style.drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, widget);
    }
}

} // namespace vardelin::ui
