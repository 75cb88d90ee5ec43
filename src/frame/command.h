#pragma once

#include "frame/frame_context.h"
#include "trace/messages.h"

#include <string_view>
#include <utility>

// How every command of the main frame runs: traced, its errors shown in the error dialog, and never
// inside another one.
namespace vardelin::frame {

inline constexpr std::string_view kModule = "MDIForm"; // of the error dialog

class CommandRun {
public:
    explicit CommandRun(state::MainFrameForm& form) : m_form(form) { m_form.commandRunning = true; }
    CommandRun(const CommandRun&) = delete;
    CommandRun& operator=(const CommandRun&) = delete;
    ~CommandRun() { m_form.commandRunning = false; }

private:
    state::MainFrameForm& m_form;
};

// Runs a command's body. A click that comes in through the message loop while another command runs
// does nothing: half a save must not meet a new profile. Views show the editor again afterwards.
template <typename Body>
void runAlone(FrameContext& context, Body&& body)
{
    if (context.main.commandRunning)
        return;
    const CommandRun run(context.main);
    ++context.profiles.editor.revision;
    std::forward<Body>(body)();
}

// The same for a command whose procedure has no trace and no error tail of its own.
template <typename Body>
void runCommand(FrameContext& context, std::string_view name, Body&& body)
{
    runAlone(context, [&] {
        trace::runTraced(context.profiles.trace, name, kModule, trace::customMessage(name),
                         std::forward<Body>(body));
    });
}

// A procedure that a command calls. True where it came to its end; an error was shown.
template <typename Body>
bool runProcedure(FrameContext& context, std::string_view name, Body&& body)
{
    bool done = false;
    trace::runTraced(context.profiles.trace, name, kModule, trace::customMessage(name), [&] {
        body();
        done = true;
    });
    return done;
}

} // namespace vardelin::frame
