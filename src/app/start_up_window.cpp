#include "app/start_up_window.h"

#include <QScreen>

namespace vardelin::app {
namespace {

// Device-independent pixels: all of a page is seen without scrolling, on small screens, too.
constexpr QSize kFrameSize(1180, 690);
// Room for what a window manager draws around the frame.
constexpr QSize kDecoration(8, 36);

} // namespace

ui::Handler QtStartUpWindow::handler(const char* name, void (*function)(frame::StartUpContext&))
{
    return [this, name, function] {
        m_runner.run(name, [&] { function(*m_context); });
        m_record.Timer1Interval = std::chrono::milliseconds(m_context->splash.Timer1.Interval);
    };
}

void QtStartUpWindow::showSplash()
{
    m_record.Timer1Interval = std::chrono::milliseconds(m_context->splash.Timer1.Interval);
    m_record.loaded = true;
    m_splash = std::make_unique<ui::SplashView>(
        m_record, ui::SplashHandlers{handler("Timer1_Timer", frame::Timer1_Timer),
                                     handler("Form_KeyDown", frame::Form_KeyDown)});
    m_splash->show();
}

void QtStartUpWindow::unloadSplash()
{
    m_record.loaded = false; // the view closes behind the handler that is running
}

state::FrameSize QtStartUpWindow::frameSize()
{
    const QSize size = m_window.minimumSizeHint()
                           .expandedTo(kFrameSize)
                           .boundedTo(m_window.screen()->availableSize() - kDecoration);
    return {size.width(), size.height()};
}

void QtStartUpWindow::showMainFrame()
{
    if (m_window.isVisible())
        return;
    const state::FrameSize size = m_context->frame.main.sizeAtLoad;
    m_window.setFixedSize(size.width, size.height);
    m_window.show();
    m_window.activateWindow();
}

} // namespace vardelin::app
