#include "ui/look.h"

#include <algorithm>

#include <QAbstractItemView>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

namespace vardelin::ui {
namespace {

constexpr double kBorderShare = 0.6;  // of the text's colour in a box's border
constexpr double kDimmedShare = 0.35; // where it is disabled
constexpr double kFrameShare = 0.3;   // in the frame of a line or a list
constexpr double kBoxShare = 0.85;    // of a line's height
constexpr int kRowRoom = 4;           // pixels that a row has beside its text
constexpr int kDarkBelow = 128;       // the lightness of a window
constexpr int kButtonRoom = 12;       // likewise a button
constexpr int kCellRoom = 5;          // at each side of a cell's text, and of its heading

QColor mixed(const QColor& back, const QColor& front, double share)
{
    const auto part = [&](int from, int to) {
        return static_cast<int>(from + (to - from) * share);
    };
    return {part(back.red(), front.red()), part(back.green(), front.green()),
            part(back.blue(), front.blue())};
}

// The style underneath draws the borders of boxes darker than the window, which nobody sees on a
// dark one.
class FormStyle final : public QProxyStyle {
public:
    FormStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        switch (element) {
        case PE_IndicatorCheckBox:
        case PE_IndicatorItemViewItemCheck:
            drawBox(*option, *painter, false);
            return;
        case PE_IndicatorRadioButton:
            drawBox(*option, *painter, true);
            return;
        default:
            break;
        }
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        const bool isFocused = option->state.testFlag(State_HasFocus);
        if (element == PE_Frame || (element == PE_FrameLineEdit && !isFocused))
            drawOutline(*option, *painter);
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (element != CE_MenuItem || item == nullptr || item->icon.isNull() ||
            !item->state.testFlag(State_Selected) || !item->state.testFlag(State_Enabled)) {
            QProxyStyle::drawControl(element, option, painter, widget);
            return;
        }
        // Our icons have the colours for a menu's ground, not for that of its selected entry.
        QStyleOptionMenuItem readable = *item;
        readable.icon = inOneColour(item->icon, pixelMetric(PM_SmallIconSize, option, widget),
                                    item->palette.color(QPalette::HighlightedText), *painter);
        QProxyStyle::drawControl(element, &readable, painter, widget);
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        switch (hint) {
        case SH_DialogButtonBox_ButtonsHaveIcons:
            return 0; // a desktop's pictures on OK and Cancel are of another make than ours
        case SH_DialogButtonLayout:
            return QDialogButtonBox::WinLayout; // the order of our own forms
        default:
            return QProxyStyle::styleHint(hint, option, widget, data);
        }
    }

    // In our icons' style, in place of pictures that come with the toolkit.
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option,
                       const QWidget* widget) const override
    {
        switch (picture) {
        case SP_MessageBoxQuestion:
            return QIcon(QStringLiteral(":/icons/message-question.svg"));
        case SP_MessageBoxInformation:
            return QIcon(QStringLiteral(":/icons/message-information.svg"));
        case SP_MessageBoxWarning:
            return QIcon(QStringLiteral(":/icons/message-warning.svg"));
        case SP_MessageBoxCritical:
            return QIcon(QStringLiteral(":/icons/message-critical.svg"));
        default:
            return QProxyStyle::standardIcon(picture, option, widget);
        }
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        const int size = QProxyStyle::pixelMetric(metric, option, widget);
        switch (metric) {
        case PM_IndicatorWidth:
        case PM_IndicatorHeight:
        case PM_ExclusiveIndicatorWidth:
        case PM_ExclusiveIndicatorHeight: {
            const int line = widget != nullptr ? widget->fontMetrics().height()
                                               : QFontMetrics(QApplication::font()).height();
            return std::max(size, static_cast<int>(line * kBoxShare));
        }
        case PM_HeaderMargin:
            return std::max(size, kCellRoom);
        case PM_FocusFrameHMargin: // a pixel less than what the style leaves beside a cell's text
            return qobject_cast<const QAbstractItemView*>(widget) != nullptr
                       ? std::max(size, kCellRoom - 1)
                       : size;
        default:
            return size;
        }
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override
    {
        QSize whole = QProxyStyle::sizeFromContents(type, option, size, widget);
        if (type == CT_ItemViewItem)
            whole.rheight() += kRowRoom;
        if (type == CT_PushButton && size.width() > 0)
            whole.rwidth() = std::max(whole.width(), size.width() + kButtonRoom * 2);
        return whole;
    }

private:
    static QIcon inOneColour(const QIcon& icon, int side, const QColor& colour,
                             const QPainter& target)
    {
        QPixmap picture = icon.pixmap(QSize(side, side), target.device()->devicePixelRatioF());
        QPainter painter(&picture);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(picture.rect(), colour);
        painter.end();
        return picture;
    }

    // The style's own frames are darker than the window as well.
    static void drawOutline(const QStyleOption& option, QPainter& painter)
    {
        if (option.palette.color(QPalette::Window).lightness() >= kDarkBelow)
            return;
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(mixed(option.palette.color(QPalette::Window),
                             option.palette.color(QPalette::WindowText), kFrameShare));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
        painter.restore();
    }

    static void drawBox(const QStyleOption& option, QPainter& painter, bool isRound)
    {
        const bool enabled = option.state.testFlag(State_Enabled);
        const auto group = enabled ? QPalette::Active : QPalette::Disabled;
        const QColor back = option.palette.color(group, QPalette::Base);
        const QColor text = option.palette.color(group, QPalette::Text);
        const bool hot = enabled && (option.state.testFlag(State_MouseOver) ||
                                     option.state.testFlag(State_HasFocus));
        const int side = std::min(option.rect.width(), option.rect.height()) - 1;
        QRectF box(0, 0, side, side);
        box.moveCenter(QRectF(option.rect).center());

        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(hot ? option.palette.color(QPalette::Highlight)
                                : mixed(back, text, enabled ? kBorderShare : kDimmedShare),
                            hot ? 1.6 : 1.2));
        painter.setBrush(option.state.testFlag(State_Sunken) ? mixed(back, text, 0.15) : back);
        if (isRound)
            painter.drawEllipse(box);
        else
            painter.drawRoundedRect(box, 2.5, 2.5);
        drawMark(option, painter, box, text, isRound);
        painter.restore();
    }

    static void drawMark(const QStyleOption& option, QPainter& painter, const QRectF& box,
                         const QColor& colour, bool isRound)
    {
        const double inner = box.width() * 0.27;
        if (option.state.testFlag(State_NoChange)) {
            painter.fillRect(box.adjusted(inner, inner, -inner, -inner), colour);
        } else if (option.state.testFlag(State_On) && isRound) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(colour);
            painter.drawEllipse(box.adjusted(inner, inner, -inner, -inner));
        } else if (option.state.testFlag(State_On)) {
            painter.setPen(
                QPen(colour, box.width() * 0.15, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            const auto at = [&](double x, double y) {
                return QPointF(box.left() + box.width() * x, box.top() + box.height() * y);
            };
            painter.drawPolyline(QPolygonF({at(0.24, 0.53), at(0.43, 0.72), at(0.77, 0.29)}));
        }
    }
};

} // namespace

void applyLook(QApplication& application)
{
    application.setStyle(new FormStyle);
}

QColor linkColour(const QPalette& palette)
{
    const QColor link = palette.color(QPalette::Link);
    const bool isDark = palette.color(QPalette::Window).lightness() < kDarkBelow;
    constexpr int kReadable = 160;
    return isDark && link.lightness() < kReadable ? mixed(link, Qt::white, 0.6) : link;
}

} // namespace vardelin::ui
