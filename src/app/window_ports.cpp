#include "app/window_ports.h"

namespace vardelin::app {

platform::Answer UnwindingMessageBoxes::show(std::string_view text, std::string_view title,
                                             platform::Buttons buttons, platform::Icon icon)
{
    const platform::Answer answer = m_boxes.show(text, title, buttons, icon);
    m_runner.unwindAfterEvents();
    return answer;
}

void UnwindingMessageLoop::yield()
{
    m_showViews();
    m_loop.yield();
    m_runner.unwindAfterEvents();
}

} // namespace vardelin::app
