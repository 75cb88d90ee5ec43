#include "ui/compress_picture.h"

#include <algorithm>

#include <QPainter>

namespace vardelin::ui {
namespace {

constexpr int kFrameMs = 40;
constexpr int kWayMs = 2400; // of one file
constexpr int kFiles = 4;    // on their way at once
constexpr double kLines = 3.2;
constexpr double kWide = 5.5;    // the whole, in heights
constexpr double kFirst = 0.62;  // a file's size where it sets out, in heights
constexpr double kLast = 0.22;   // and where it arrives
constexpr double kFading = 0.12; // of its way, at either end

} // namespace

CompressPicture::CompressPicture(QWidget* parent)
    : QWidget(parent), m_folder(QStringLiteral(":/icons/folder-open.svg")),
      m_file(QStringLiteral(":/icons/file.svg")), m_archive(QStringLiteral(":/icons/vardelin.svg"))
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("The backup is running"));
    m_since.start();
    m_frames.setInterval(kFrameMs);
    connect(&m_frames, &QTimer::timeout, this, qOverload<>(&QWidget::update));
}

QSize CompressPicture::sizeHint() const
{
    const double side = fontMetrics().height() * kLines;
    return {static_cast<int>(side * kWide), static_cast<int>(side)};
}

void CompressPicture::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_frames.start();
}

void CompressPicture::hideEvent(QHideEvent* event)
{
    m_frames.stop();
    QWidget::hideEvent(event);
}

void CompressPicture::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = height();
    const QRectF from(0, 0, side, side);
    const QRectF to(width() - side, 0, side, side);
    m_folder.render(&painter, from);
    const double turn = static_cast<double>(m_since.elapsed() % kWayMs) / kWayMs;
    for (int i = 0; i < kFiles; ++i) {
        double way = turn + static_cast<double>(i) / kFiles;
        way -= way >= 1 ? 1 : 0;
        const double size = side * (kFirst + (kLast - kFirst) * way);
        QRectF place(0, 0, size, size);
        place.moveCenter({from.center().x() + side * 0.35 +
                              (to.center().x() - from.center().x() - side * 0.75) * way,
                          side / 2});
        painter.setOpacity(std::clamp(std::min(way, 1 - way) / kFading, 0.0, 1.0));
        m_file.render(&painter, place);
    }
    painter.setOpacity(1);
    m_archive.render(&painter, to.adjusted(side * 0.08, side * 0.08, -side * 0.08, -side * 0.08));
}

} // namespace vardelin::ui
