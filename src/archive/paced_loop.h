#pragma once

#include "platform/machine.h"

#include <chrono>

namespace vardelin::archive {

// Yields to the message loop while a long piece of work goes on, 50 ms apart at the least. A yield
// for each of a million lines would take longer than the lines do, and nobody sees more than twenty
// pictures a second.
class PacedLoop {
public:
    PacedLoop(platform::MessageLoop& messageLoop, platform::Clock& clock)
        : m_messageLoop(messageLoop), m_clock(clock), m_last(clock.steady())
    {
    }

    // One item of the work is done.
    void step()
    {
        const std::chrono::nanoseconds now = m_clock.steady();
        if (now - m_last < kPause)
            return;
        m_messageLoop.yield();
        m_last = m_clock.steady();
    }

    static constexpr std::chrono::milliseconds kPause{50};

private:
    platform::MessageLoop& m_messageLoop;
    platform::Clock& m_clock;
    std::chrono::nanoseconds m_last;
};

} // namespace vardelin::archive
