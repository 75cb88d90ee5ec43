#include "app/window_ports.h"

namespace vardelin::app {
namespace {

constexpr qint64 kShowEveryMs = 40;

} // namespace

platform::Answer UnwindingMessageBoxes::show(std::string_view text, std::string_view title,
                                             platform::Buttons buttons, platform::Icon icon)
{
    m_showViews();
    const platform::Answer answer = m_boxes.show(text, title, buttons, icon);
    m_runner.unwindAfterEvents();
    return answer;
}

void UnwindingMessageLoop::yield()
{
    if (!m_sinceShown.isValid() || m_sinceShown.hasExpired(kShowEveryMs) || m_isUrgent()) {
        m_showViews();
        m_sinceShown.start();
    }
    m_loop.yield();
    m_runner.unwindAfterEvents();
}

} // namespace vardelin::app
