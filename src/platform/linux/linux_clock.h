#pragma once

#include "platform/machine.h"

namespace vardelin::platform {

// The system's clock in the person's time zone (TZ, else /etc/localtime), which is read once, by
// the constructor. Parts of a second are cut off, towards the past. May be used by several threads.
class LinuxClock final : public Clock {
public:
    LinuxClock();

    std::int64_t nowNs() override;
    std::chrono::nanoseconds steady() override;
    base::DateTime toLocal(std::int64_t ns) override;
    // A wall time that the zone skips gives the instant as far behind the gap's start.
    std::int64_t fromLocal(const base::DateTime& local) override;
};

} // namespace vardelin::platform
