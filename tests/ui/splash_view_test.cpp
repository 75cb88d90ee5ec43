#include "ui/about_view.h"
#include "ui/splash_view.h"

#include "offscreen.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTimerEvent>

namespace vardelin::ui {
namespace {

using namespace std::chrono_literals;

class Splash : public testing::Test {
protected:
    // The timer's own tick, now.
    static void tick(SplashView& view)
    {
        QTimerEvent due(timer(view).timerId());
        QCoreApplication::sendEvent(&timer(view), &due);
    }
    static QTimer& timer(SplashView& view)
    {
        auto* const found = view.findChild<QTimer*>("Timer1");
        if (found == nullptr)
            throw std::runtime_error("no Timer1");
        return *found;
    }

    SplashRecord record;
    SplashHandlers handlers;
};

TEST_F(Splash, RunsItsTimerAtTheIntervalThatTheHandlerLeaves)
{
    std::vector<int> intervals;
    SplashView* shown = nullptr;
    handlers.Timer1_Timer = [&] {
        intervals.push_back(timer(*shown).interval());
        EXPECT_FALSE(timer(*shown).isActive()) << "no second tick inside the first one";
        if (record.Timer1Interval == 1000ms)
            record.loaded = false;
        record.Timer1Interval = 1000ms;
    };
    SplashView view(record, handlers);
    shown = &view;
    EXPECT_FALSE(timer(view).isActive()) << "before it is shown";
    view.show();
    tick(view);
    EXPECT_TRUE(view.isVisible());
    EXPECT_TRUE(timer(view).isActive());
    tick(view);
    EXPECT_EQ(intervals, (std::vector<int>{800, 1000}));
    EXPECT_FALSE(view.isVisible());
    EXPECT_FALSE(timer(view).isActive()) << "the timer goes with the form";
}

TEST_F(Splash, AKeyUnloadsItAtOnce)
{
    int ticks = 0;
    handlers.Timer1_Timer = [&] { ++ticks; };
    handlers.Form_KeyPress = [&] { record.loaded = false; };
    SplashView view(record, handlers);
    view.show();
    QTest::keyClick(&view, Qt::Key_A);
    EXPECT_FALSE(view.isVisible());
    EXPECT_FALSE(timer(view).isActive());
    EXPECT_EQ(ticks, 0);
}

TEST_F(Splash, ItsPictureMoves)
{
    SplashView view(record, handlers);
    view.show();
    auto& picture = control<QWidget>(view, "Picture1");
    const QImage first = picture.grab().toImage();
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture.grab().toImage() != first; }));
}

TEST(About, TellsTheVersionAndClosesByEscapeAndByItsButton)
{
    AboutView view;
    present(view);
    EXPECT_EQ(control<QLabel>(view, "lblVersion").text().toStdString(),
              "Version " + std::string(productVersion()));
    EXPECT_NE(std::string(productVersion()), "");
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_FALSE(view.isVisible());
    present(view);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_FALSE(view.isVisible());
}

} // namespace
} // namespace vardelin::ui
