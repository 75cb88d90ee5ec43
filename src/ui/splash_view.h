#pragma once

#include "ui/form_binder.h"

#include <chrono>

#include <QTimer>
#include <QWidget>

namespace vardelin::ui {

// The splash as its handlers see it. `loaded` falls when one of them unloads the form, and the view
// closes it then.
struct SplashRecord {
    std::chrono::milliseconds Timer1Interval{800};
    bool loaded = true;
};

struct SplashHandlers {
    Handler Timer1_Timer;
    Handler Form_KeyPress;
};

// frmSplash: the product with its version while the main frame loads, in a window without a frame
// in the middle of the screen. Its timer runs from show() until the form is unloaded, and takes a
// changed interval over after each tick.
class SplashView final : public QWidget {
    Q_OBJECT

public:
    // The record must outlive the window.
    SplashView(SplashRecord& record, SplashHandlers handlers);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void run(const Handler& handler);

    SplashRecord& m_record;
    SplashHandlers m_handlers;
    QTimer m_timer;
};

} // namespace vardelin::ui
