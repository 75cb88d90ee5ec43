#include "ui/tree_legend.h"

#include "ui/selection_look.h"

#include <algorithm>
#include <array>

#include <QPainter>
#include <QStyle>

namespace vardelin::ui {
namespace {

constexpr std::array kStates{Selection::Wholly, Selection::Partly, Selection::None};
constexpr int kBoxGap = 6;   // between a box and its words
constexpr int kGap = 18;     // between two states
constexpr int kLineRoom = 6; // above and below a line together

QFont fontOf(QFont font, Selection selection)
{
    font.setItalic(selection == Selection::Partly);
    return font;
}

} // namespace

TreeLegend::TreeLegend(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("treeLegend"));
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setAccessibleName(tr("Legend of the tree"));
    QStringList words;
    for (const Selection state : kStates)
        words += wordsOf(state);
    setAccessibleDescription(words.join(QStringLiteral(", ")));
}

int TreeLegend::boxSize() const
{
    return style()->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, this);
}

int TreeLegend::lineHeight() const
{
    return std::max(fontMetrics().height(), boxSize()) + kLineRoom;
}

std::vector<QRect> TreeLegend::places(int width) const
{
    std::vector<QRect> found;
    int left = 0;
    int top = 0;
    for (const Selection state : kStates) {
        const QFontMetrics metrics(fontOf(font(), state));
        const int needed = boxSize() + kBoxGap + metrics.horizontalAdvance(wordsOf(state)) + 2;
        if (left > 0 && left + needed > width) {
            left = 0;
            top += lineHeight();
        }
        found.emplace_back(left, top, needed, lineHeight());
        left += needed + kGap;
    }
    return found;
}

QSize TreeLegend::sizeHint() const
{
    const auto line = places(QWIDGETSIZE_MAX);
    return {line.back().right() + 1, lineHeight()};
}

QSize TreeLegend::minimumSizeHint() const
{
    int widest = 0;
    for (const QRect& place : places(QWIDGETSIZE_MAX))
        widest = std::max(widest, place.width());
    return {widest, lineHeight()};
}

int TreeLegend::heightForWidth(int width) const
{
    return places(width).back().bottom() + 1;
}

void TreeLegend::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const auto where = places(width());
    for (std::size_t i = 0; i < kStates.size(); ++i) {
        const Selection state = kStates[i];
        const QRect& place = where[i];
        const int box = boxSize();
        drawBox(painter, {place.left(), place.top() + (place.height() - box) / 2, box, box}, state,
                palette());
        painter.setFont(fontOf(font(), state));
        painter.setPen(textColorOf(state, palette().color(QPalette::Window),
                                   palette().color(QPalette::WindowText)));
        painter.drawText(place.adjusted(box + kBoxGap, 0, kGap, 0),
                         Qt::AlignVCenter | Qt::TextSingleLine, wordsOf(state));
    }
}

} // namespace vardelin::ui
