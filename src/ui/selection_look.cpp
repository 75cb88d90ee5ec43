#include "ui/selection_look.h"

#include <algorithm>
#include <cmath>

#include <QCoreApplication>
#include <QPainter>
#include <QPalette>
#include <QPolygonF>

namespace vardelin::ui {
namespace {

constexpr double kReadable = 4.5;
constexpr int kMixSteps = 64;
constexpr qreal kBoxUnits = 14;      // the box is drawn on a raster of so many squares
constexpr double kFrameShare = 0.45; // of the ground in the frame of an empty box

// A record's colours are 0xBBGGRR.
QColor ofRecord(std::uint32_t color)
{
    constexpr std::uint32_t kByte = 0xFF;
    return {static_cast<int>(color & kByte), static_cast<int>((color >> 8U) & kByte),
            static_cast<int>((color >> 16U) & kByte)};
}

double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

} // namespace

Selection selectionOf(const state::TreeNode& node)
{
    if (!node.checked)
        return Selection::None;
    if (node.foreColor == state::kWhollySelectedColor)
        return Selection::Wholly;
    return node.foreColor == state::kPartlySelectedColor ? Selection::Partly : Selection::None;
}

Qt::CheckState boxOf(Selection selection)
{
    switch (selection) {
    case Selection::None:
        return Qt::Unchecked;
    case Selection::Partly:
        return Qt::PartiallyChecked;
    case Selection::Wholly:
        return Qt::Checked;
    }
    return Qt::Unchecked;
}

QString wordsOf(Selection selection)
{
    switch (selection) {
    case Selection::None:
        return QCoreApplication::translate("SourceTree", "Not selected");
    case Selection::Partly:
        return QCoreApplication::translate("SourceTree", "Partly selected");
    case Selection::Wholly:
        return QCoreApplication::translate("SourceTree", "Wholly selected");
    }
    return {};
}

double contrast(const QColor& one, const QColor& other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor mixed(const QColor& color, const QColor& other, double share)
{
    const auto part = [share](int one, int two) {
        return static_cast<int>(std::lround(one + (two - one) * share));
    };
    return {part(color.red(), other.red()), part(color.green(), other.green()),
            part(color.blue(), other.blue())};
}

QColor readableOn(const QColor& color, const QColor& background)
{
    if (contrast(color, background) >= kReadable)
        return color;
    for (int step = 1; step <= kMixSteps; ++step) {
        for (const QColor& other : {QColor(Qt::white), QColor(Qt::black)}) {
            const QColor tried = mixed(color, other, static_cast<double>(step) / kMixSteps);
            if (contrast(tried, background) >= kReadable)
                return tried;
        }
    }
    return color; // not reached: black or white is readable on every colour
}

QColor textColorOf(Selection selection, const QColor& background, const QColor& usual)
{
    switch (selection) {
    case Selection::None:
        return usual;
    case Selection::Partly:
        return readableOn(ofRecord(state::kPartlySelectedColor), background);
    case Selection::Wholly:
        return readableOn(ofRecord(state::kWhollySelectedColor), background);
    }
    return usual;
}

void drawBox(QPainter& painter, const QRect& place, Selection selection, const QPalette& palette)
{
    const QColor ground = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const qreal unit = place.width() / kBoxUnits;
    const QRectF box = QRectF(place).adjusted(unit / 2, unit / 2, -unit / 2, -unit / 2);
    const QColor mark = textColorOf(selection, ground, text);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(
        QPen(selection == Selection::None ? mixed(text, ground, kFrameShare) : mark, unit));
    painter.setBrush(ground);
    painter.drawRoundedRect(box, 2 * unit, 2 * unit);
    const auto at = [&](qreal x, qreal y) {
        return QPointF(place.left() + x * unit, place.top() + y * unit);
    };
    painter.setPen(QPen(mark, 2 * unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (selection == Selection::Partly)
        painter.drawLine(at(4.2, kBoxUnits / 2), at(kBoxUnits - 4.2, kBoxUnits / 2));
    else if (selection == Selection::Wholly)
        painter.drawPolyline(QPolygonF({at(3.6, 7.4), at(6, 9.8), at(10.6, 4.4)}));
    painter.restore();
}

} // namespace vardelin::ui
