#include "app/handler_runner.h"

#include "base/runtime_error.h"

#include <string>

namespace vardelin::app {
namespace {

constexpr std::string_view kModule = "vardelin";

// What is known of an exception that got out of a handler. One that carries no number of its own
// counts as an invalid call.
base::PendingError pendingErrorOf(const std::exception_ptr& error)
{
    base::PendingError pending;
    pending.number = base::error_number::kInvalidCall;
    try {
        std::rethrow_exception(error);
    } catch (const base::RuntimeError& known) {
        pending.set(known);
        pending.description = known.what();
    } catch (const std::exception& other) {
        pending.description = other.what();
    } catch (...) {
        pending.description = base::descriptionOf(base::error_number::kInvalidCall);
    }
    return pending;
}

bool isExitRequest(const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const trace::ExitRequested&) {
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace

HandlerRunner::HandlerRunner(trace::TraceContext& trace, std::function<void()> showViews,
                             std::function<void()> endProgram)
    : m_trace(trace), m_showViews(std::move(showViews)), m_endProgram(std::move(endProgram))
{
}

void HandlerRunner::report(const char* name, const std::exception_ptr& error)
{
    bool exit = isExitRequest(error);
    if (!exit) {
        try {
            trace::errorTail(m_trace, {name, name, kModule, name}, pendingErrorOf(error));
        } catch (const trace::ExitRequested&) {
            exit = true;
        } catch (const base::RuntimeError& overflow) {
            // A number that the dialog cannot show is reported as the overflow that it is.
            base::PendingError pending;
            pending.set(overflow);
            try {
                trace::errorTail(m_trace, {name, name, kModule, name}, pending);
            } catch (const trace::ExitRequested&) {
                exit = true;
            }
        }
    }
    if (exit) {
        m_exitRequested = true;
        m_endProgram();
    }
}

void HandlerRunner::unwindAfterEvents() const
{
    if (m_exitRequested)
        throw trace::ExitRequested{};
}

} // namespace vardelin::app
