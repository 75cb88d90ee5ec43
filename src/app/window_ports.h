#pragma once

#include "app/handler_runner.h"
#include "editor/window_ports.h"
#include "platform/machine.h"

#include <functional>

// The ports behind which an event loop runs while a handler waits: while it does, other handlers
// run, and one of them may have ended the program. Each of these passes a call on and unwinds then.
namespace vardelin::app {

class UnwindingMessageBoxes final : public platform::MessageBoxes {
public:
    UnwindingMessageBoxes(platform::MessageBoxes& boxes, HandlerRunner& runner)
        : m_boxes(boxes), m_runner(runner)
    {
    }
    platform::Answer show(std::string_view text, std::string_view title, platform::Buttons buttons,
                          platform::Icon icon) override;

private:
    platform::MessageBoxes& m_boxes;
    HandlerRunner& m_runner;
};

// Lets the views show how far the work is before input is handled.
class UnwindingMessageLoop final : public platform::MessageLoop {
public:
    UnwindingMessageLoop(platform::MessageLoop& loop, HandlerRunner& runner,
                         std::function<void()> showViews)
        : m_loop(loop), m_runner(runner), m_showViews(std::move(showViews))
    {
    }
    void yield() override;

private:
    platform::MessageLoop& m_loop;
    HandlerRunner& m_runner;
    std::function<void()> m_showViews;
};

} // namespace vardelin::app
