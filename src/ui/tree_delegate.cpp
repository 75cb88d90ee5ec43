#include "ui/tree_delegate.h"

#include "ui/selection_look.h"
#include "ui/tree_model.h"

#include <algorithm>

#include <QApplication>
#include <QPainter>
#include <QStyle>

namespace vardelin::ui {
namespace {

constexpr int kRoom = 6;             // pixels above and below a name together
constexpr double kGreyedShare = 0.4; // of the ground in the text of a reading

} // namespace

QSize TreeDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(std::max(size.height(), option.fontMetrics.height() + kRoom));
    return size;
}

// The style says where things are, so that the mouse finds the box where it is drawn.
void TreeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& given,
                         const QModelIndex& index) const
{
    QStyleOptionViewItem option = given;
    initStyleOption(&option, index);
    const QWidget* widget = option.widget;
    const QStyle& style = widget != nullptr ? *widget->style() : *QApplication::style();
    const auto group = !option.state.testFlag(QStyle::State_Enabled)  ? QPalette::Disabled
                       : !option.state.testFlag(QStyle::State_Active) ? QPalette::Inactive
                                                                      : QPalette::Active;
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const QColor ground =
        option.palette.color(group, isSelected ? QPalette::Highlight : QPalette::Base);
    const QColor usual =
        option.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    const QVariant kept = index.data(TreeModel::kSelectionRole);
    const bool isNode = kept.isValid();
    const auto selection = isNode ? static_cast<Selection>(kept.toInt()) : Selection::None;

    painter->save();
    style.drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, widget);
    if (option.features.testFlag(QStyleOptionViewItem::HasCheckIndicator)) {
        QPalette palette = option.palette;
        palette.setCurrentColorGroup(group);
        drawBox(*painter,
                style.subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, widget),
                selection, palette);
    }
    option.icon.paint(
        painter, style.subElementRect(QStyle::SE_ItemViewItemDecoration, &option, widget),
        Qt::AlignCenter, group == QPalette::Disabled && isNode ? QIcon::Disabled : QIcon::Normal);

    QFont font = option.font;
    font.setItalic(!isNode || selection == Selection::Partly);
    const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, widget) + 1;
    const QRect place = style.subElementRect(QStyle::SE_ItemViewItemText, &option, widget)
                            .adjusted(margin, 0, -margin, 0);
    painter->setFont(font);
    painter->setPen(
        !isNode
            ? mixed(option.palette.color(QPalette::Active, QPalette::Text), ground, kGreyedShare)
        // On a selected row the box and the slant tell enough: no hue reads well there.
        : group == QPalette::Disabled || isSelected ? usual
                                                    : textColorOf(selection, ground, usual));
    painter->drawText(place,
                      Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                      QFontMetrics(font).elidedText(option.text, Qt::ElideMiddle, place.width()));
    painter->restore();
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect = style.subElementRect(QStyle::SE_ItemViewItemFocusRect, &option, widget);
        focus.backgroundColor = ground;
        focus.state |= QStyle::State_KeyboardFocusChange;
        style.drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, widget);
    }
}

} // namespace vardelin::ui
