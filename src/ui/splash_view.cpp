#include "ui/splash_view.h"

#include "ui/about_view.h"
#include "ui/splash_picture.h"
#include "ui/widgets.h"

#include <utility>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

// The splash has colours of its own, the same on light and on dark desktops.
const QColor kTop(0x0f, 0x3d, 0x3a);
const QColor kBottom(0x0b, 0x25, 0x2b);
const QColor kName(0xf8, 0xfa, 0xfc);
const QColor kText(0xb6, 0xd6, 0xd2);

constexpr double kNameSize = 2.8; // of the product's name, in sizes of the text
constexpr int kMargin = 36;       // device-independent pixels
constexpr int kGap = 30;

QLabel* line(const char* name, const QString& text, const QColor& colour, double size, bool bold)
{
    auto* label = named<QLabel>(name, text);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, colour);
    label->setPalette(palette);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * size);
    font.setBold(bold);
    label->setFont(font);
    return label;
}

} // namespace

SplashView::SplashView(SplashRecord& record, SplashHandlers handlers)
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint), m_record(record),
      m_handlers(std::move(handlers)), m_timer(this)
{
    setObjectName(QStringLiteral("frmSplash"));
    setWindowTitle(QStringLiteral("Vardelin"));
    setFocusPolicy(Qt::StrongFocus);
    auto* picture = named<SplashPicture>("Picture1");
    auto* texts = new QVBoxLayout;
    texts->addStretch();
    texts->addWidget(line("lblName", QStringLiteral("Vardelin"), kName, kNameSize, true));
    texts->addWidget(line("lblVersion",
                          QStringLiteral("Version %1").arg(QLatin1String(productVersion())), kText,
                          1.0, false));
    texts->addSpacing(texts->spacing() * 2);
    texts->addWidget(line("lblText",
                          QStringLiteral("Keeps copies and earlier versions of your files."), kText,
                          1.0, false));
    texts->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kGap);
    layout->addWidget(picture);
    layout->addLayout(texts);
    m_timer.setObjectName(QStringLiteral("Timer1"));
    connect(&m_timer, &QTimer::timeout, this, [this] { run(m_handlers.Timer1_Timer); });
}

void SplashView::run(const Handler& handler)
{
    // While the main frame loads, a tick must not come in on top of this one.
    m_timer.stop();
    if (handler)
        handler();
    if (!m_record.loaded)
        close();
    else if (isVisible())
        m_timer.start(m_record.Timer1Interval);
}

void SplashView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    adjustSize();
    move(screen()->availableGeometry().center() - rect().center());
    m_timer.start(m_record.Timer1Interval);
}

void SplashView::hideEvent(QHideEvent* event)
{
    m_timer.stop();
    QWidget::hideEvent(event);
}

void SplashView::keyPressEvent(QKeyEvent*)
{
    run(m_handlers.Form_KeyPress);
}

void SplashView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QLinearGradient shade(0, 0, width(), height());
    shade.setColorAt(0, kTop);
    shade.setColorAt(1, kBottom);
    painter.fillRect(rect(), shade);
}

} // namespace vardelin::ui
