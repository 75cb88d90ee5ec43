#pragma once

#include "app/handler_runner.h"
#include "frame/start_up.h"
#include "ui/main_window.h"
#include "ui/splash_view.h"

#include <memory>

namespace vardelin::app {

// The windows as start-up sees them: the splash, whose timer drives it, and the main frame.
class QtStartUpWindow final : public frame::StartUpWindow {
public:
    // Both outlive this object.
    QtStartUpWindow(ui::MainWindow& window, HandlerRunner& runner)
        : m_window(window), m_runner(runner)
    {
    }

    // Before start-up begins; the context outlives this object.
    void attach(frame::StartUpContext& context) { m_context = &context; }

    void showSplash() override;
    void unloadSplash() override;
    state::FrameSize frameSize() override;
    void placeProgressBar() override {} // the status bar has it from the beginning
    void showMainFrame() override;

private:
    ui::Handler handler(const char* name, void (*function)(frame::StartUpContext&));

    ui::MainWindow& m_window;
    HandlerRunner& m_runner;
    frame::StartUpContext* m_context = nullptr;
    ui::SplashRecord m_record;
    std::unique_ptr<ui::SplashView> m_splash;
};

} // namespace vardelin::app
