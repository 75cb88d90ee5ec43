#include "ui/compress_picture.h"

#include <algorithm>

#include <QPainter>

namespace vardelin::ui {
namespace {

constexpr double kLines = 3.2;
constexpr double kWidest = 8; // in heights: a strange picture does not widen the window

} // namespace

CompressPicture::CompressPicture(const std::string& picture, QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("The backup is running"));
    m_bytes.setData(QByteArray::fromStdString(picture));
    m_bytes.open(QIODevice::ReadOnly);
    // Whatever else the bytes might be read as.
    m_movie.setFormat("gif");
    m_movie.setDevice(&m_bytes);
    connect(&m_movie, &QMovie::updated, this, qOverload<>(&QWidget::update));
    m_plays = m_movie.jumpToFrame(0) && !m_movie.currentImage().isNull();
}

QSize CompressPicture::sizeHint() const
{
    const QSize stored = m_movie.currentImage().size();
    if (!m_plays)
        return {0, 0};
    const double height = fontMetrics().height() * kLines;
    const double wide = static_cast<double>(stored.width()) / stored.height();
    return {static_cast<int>(height * std::min(wide, kWidest)), static_cast<int>(height)};
}

void CompressPicture::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (m_plays)
        m_movie.start();
}

void CompressPicture::hideEvent(QHideEvent* event)
{
    m_movie.stop();
    QWidget::hideEvent(event);
}

void CompressPicture::paintEvent(QPaintEvent*)
{
    const QImage frame = m_movie.currentImage();
    if (!m_plays || frame.isNull())
        return;
    // Scaled by averages, since a painter looks at four pixels only.
    const double ratio = devicePixelRatioF();
    QImage scaled = frame.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                        .scaled(size() * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(ratio);
    QRectF place({0, 0}, scaled.deviceIndependentSize());
    place.moveCenter(QRectF(rect()).center());
    QPainter(this).drawImage(place.topLeft(), scaled);
}

} // namespace vardelin::ui
