#include "platform/memory/memory_clock.h"

namespace vardelin::platform {
namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;
constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr base::DateTime kFirstMoment{{2003, 7, 3}, {9, 5, 3}};

// Towards the past, for the instants before 1970, too.
std::int64_t floorDivided(std::int64_t value, std::int64_t by)
{
    return value / by - (value % by < 0 ? 1 : 0);
}

} // namespace

MemoryClock::MemoryClock()
{
    setLocal(kFirstMoment);
}

void MemoryClock::setLocal(const base::DateTime& local)
{
    m_nowNs = instantOf(local);
}

void MemoryClock::advance(std::chrono::nanoseconds duration)
{
    m_nowNs += duration.count();
    m_steady += duration;
}

std::int64_t MemoryClock::nowNs()
{
    script().enter("clock.nowNs", {});
    return m_nowNs;
}

std::chrono::nanoseconds MemoryClock::steady()
{
    script().enter("clock.steady", {});
    return m_steady;
}

base::DateTime MemoryClock::toLocal(std::int64_t ns)
{
    script().enter("clock.toLocal", {});
    const std::int64_t seconds = floorDivided(ns, kNsPerSecond) + m_zoneOffset.count() * 60;
    const std::int64_t days = floorDivided(seconds, kSecondsPerDay);
    const int inDay = static_cast<int>(seconds - days * kSecondsPerDay);
    return {base::dateFromDays(days), {inDay / 3600, inDay / 60 % 60, inDay % 60}};
}

std::int64_t MemoryClock::fromLocal(const base::DateTime& local)
{
    script().enter("clock.fromLocal", {});
    return instantOf(local);
}

std::int64_t MemoryClock::instantOf(const base::DateTime& local) const
{
    const std::int64_t seconds =
        base::daysSinceEpoch(local.date) * kSecondsPerDay + std::int64_t{local.time.hour} * 3600 +
        std::int64_t{local.time.minute} * 60 + local.time.second - m_zoneOffset.count() * 60;
    return seconds * kNsPerSecond;
}

} // namespace vardelin::platform
