#pragma once

#include "app/handler_runner.h"
#include "editor/window_ports.h"
#include "platform/machine.h"

#include <functional>

#include <QElapsedTimer>

// The ports behind which an event loop runs while a handler waits: while it does, other handlers
// run, and one of them may have ended the program. Each of these passes a call on and unwinds then.
namespace vardelin::app {

class UnwindingMessageBoxes final : public platform::MessageBoxes {
public:
    UnwindingMessageBoxes(platform::MessageBoxes& boxes, HandlerRunner& runner,
                          std::function<void()> showViews)
        : m_boxes(boxes), m_runner(runner), m_showViews(std::move(showViews))
    {
    }
    platform::Answer show(std::string_view text, std::string_view title, platform::Buttons buttons,
                          platform::Icon icon) override;

private:
    platform::MessageBoxes& m_boxes;
    HandlerRunner& m_runner;
    std::function<void()> m_showViews; // what stands behind the box is as the handler left it
};

// Lets the views show how far the work is before input is handled, as often as a person can see:
// a run yields for each file, and laying out its name takes longer than saving a small one.
class UnwindingMessageLoop final : public platform::MessageLoop {
public:
    // `isUrgent` tells that a whole window has to come or go, which does not wait.
    UnwindingMessageLoop(platform::MessageLoop& loop, HandlerRunner& runner,
                         std::function<void()> showViews, std::function<bool()> isUrgent)
        : m_loop(loop), m_runner(runner), m_showViews(std::move(showViews)),
          m_isUrgent(std::move(isUrgent))
    {
    }
    void yield() override;

private:
    platform::MessageLoop& m_loop;
    HandlerRunner& m_runner;
    std::function<void()> m_showViews;
    std::function<bool()> m_isUrgent;
    QElapsedTimer m_sinceShown;
};

} // namespace vardelin::app
