#pragma once

#include "platform/machine.h"
#include "platform/memory/scripted_double.h"

namespace vardelin::platform {

// A clock that stands still until the test moves it. Begins on 3 July 2003, 9:05:03 in the morning,
// in a zone without summer time, at first UTC. For one thread.
class MemoryClock final : public Clock, public ScriptedDouble {
public:
    MemoryClock();

    // The wall clock alone: set back or on, `steady` does not see it.
    void setLocal(const base::DateTime& local);
    void setNowNs(std::int64_t ns) { m_nowNs = ns; }
    // Both clocks.
    void advance(std::chrono::nanoseconds duration);
    // Local time less UTC. The instant stays, its local time changes.
    void setZoneOffset(std::chrono::minutes offset) { m_zoneOffset = offset; }

    std::int64_t nowNs() override;
    std::chrono::nanoseconds steady() override;
    base::DateTime toLocal(std::int64_t ns) override;
    std::int64_t fromLocal(const base::DateTime& local) override;

private:
    std::int64_t instantOf(const base::DateTime& local) const;

    std::int64_t m_nowNs = 0;
    std::chrono::nanoseconds m_steady{0};
    std::chrono::minutes m_zoneOffset{0};
};

} // namespace vardelin::platform
