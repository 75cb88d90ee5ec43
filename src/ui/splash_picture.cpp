#include "ui/splash_picture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QPainter>
#include <QSvgRenderer>

namespace vardelin::ui {
namespace {

constexpr int kSide = 148; // device-independent pixels
constexpr int kFrameMs = 33;
constexpr int kTurnMs = 1600; // of the ring
constexpr int kMarks = 16;
constexpr double kSign = 0.54; // the sign's share of the side
constexpr double kRing = 0.46; // the ring's radius, likewise
constexpr double kMark = 0.032;

} // namespace

SplashPicture::SplashPicture(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(QStringLiteral("Vardelin"));
    m_since.start();
    m_frames.setInterval(kFrameMs);
    connect(&m_frames, &QTimer::timeout, this, qOverload<>(&QWidget::update));
}

QSize SplashPicture::sizeHint() const
{
    return {kSide, kSide};
}

void SplashPicture::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_frames.start();
}

void SplashPicture::hideEvent(QHideEvent* event)
{
    m_frames.stop();
    QWidget::hideEvent(event);
}

void SplashPicture::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = std::min(width(), height());
    const QPointF centre(width() / 2.0, height() / 2.0);
    const double turn = static_cast<double>(m_since.elapsed() % kTurnMs) / kTurnMs;
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < kMarks; ++i) {
        const double place = static_cast<double>(i) / kMarks;
        // The marks fade behind the one that leads.
        double behind = turn - place;
        behind -= std::floor(behind);
        QColor colour(0x2d, 0xd4, 0xbf);
        colour.setAlphaF(static_cast<float>(0.12 + 0.88 * std::pow(1 - behind, 2.2)));
        painter.setBrush(colour);
        const double angle = place * 2 * std::numbers::pi - std::numbers::pi / 2;
        const QPointF at = centre + QPointF(std::cos(angle), std::sin(angle)) * (side * kRing);
        const double radius = side * kMark * (0.7 + 0.3 * (1 - behind));
        painter.drawEllipse(at, radius, radius);
    }
    QRectF sign(0, 0, side * kSign, side * kSign);
    sign.moveCenter(centre);
    QSvgRenderer(QStringLiteral(":/icons/vardelin.svg")).render(&painter, sign);
}

} // namespace vardelin::ui
