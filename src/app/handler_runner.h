#pragma once

#include "trace/error_tail.h"

#include <exception>
#include <functional>
#include <utility>

namespace vardelin::app {

// The line between the views and the logic: every handler and every command that a view starts runs
// through here. No exception gets out into the toolkit, which could not unwind it:
//
// - ExitRequested is kept, and the program is told to end. While it does, no further handler runs.
// - Any other one ends in the error tail, under the handler's name, and the program goes on.
//
// After every handler the views show the records again. For the thread of the user interface.
class HandlerRunner {
public:
    // `showViews` shows all records; `endProgram` lets the event loops come back. Neither raises.
    HandlerRunner(trace::TraceContext& trace, std::function<void()> showViews,
                  std::function<void()> endProgram);
    HandlerRunner(const HandlerRunner&) = delete;
    HandlerRunner& operator=(const HandlerRunner&) = delete;

    // `name` is that of the handler, for the error dialog. False where an exception ended it.
    template <typename Body>
    bool run(const char* name, Body&& body)
    {
        if (m_exitRequested)
            return false;
        bool done = false;
        try {
            std::forward<Body>(body)();
            done = true;
        } catch (...) {
            report(name, std::current_exception());
        }
        m_showViews();
        return done;
    }

    // The person has ended the program out of the error dialog.
    bool exitRequested() const { return m_exitRequested; }

    // For a procedure that comes back from an event loop of its own, such as a modal form: where
    // the program was ended meanwhile, it must not go on, so this throws ExitRequested again.
    void unwindAfterEvents() const;

private:
    void report(const char* name, const std::exception_ptr& error);

    trace::TraceContext& m_trace;
    std::function<void()> m_showViews;
    std::function<void()> m_endProgram;
    bool m_exitRequested = false;
};

} // namespace vardelin::app
