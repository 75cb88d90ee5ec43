#include "platform/linux/linux_clock.h"

#include <ctime>

namespace vardelin::platform {
namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;
constexpr std::int64_t kSecondsPerDay = 86'400;

std::int64_t secondsOf(std::int64_t ns)
{
    return ns / kNsPerSecond - (ns % kNsPerSecond < 0 ? 1 : 0);
}

std::tm brokenDown(std::int64_t seconds)
{
    const std::time_t time = seconds;
    std::tm parts{};
    localtime_r(&time, &parts);
    return parts;
}

base::DateTime localAt(std::int64_t seconds)
{
    const std::tm parts = brokenDown(seconds);
    // A leap second, where the system's zone files count them, shows as the last regular one.
    const int second = parts.tm_sec > 59 ? 59 : parts.tm_sec;
    return {{parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday},
            {parts.tm_hour, parts.tm_min, second}};
}

} // namespace

LinuxClock::LinuxClock()
{
    tzset();
}

std::int64_t LinuxClock::nowNs()
{
    std::timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return std::int64_t{now.tv_sec} * kNsPerSecond + now.tv_nsec;
}

std::chrono::nanoseconds LinuxClock::steady()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

base::DateTime LinuxClock::toLocal(std::int64_t ns)
{
    return localAt(secondsOf(ns));
}

std::int64_t LinuxClock::fromLocal(const base::DateTime& local)
{
    const std::int64_t wall = base::daysSinceEpoch(local.date) * kSecondsPerDay +
                              std::int64_t{local.time.hour} * 3600 +
                              std::int64_t{local.time.minute} * 60 + local.time.second;
    // Zones change their distance from UTC at most once within two days, so the distances a day
    // before and a day behind are the only ones in question; the one before gives the earlier
    // instant.
    const std::int64_t before = wall - brokenDown(wall - kSecondsPerDay).tm_gmtoff;
    const std::int64_t behind = wall - brokenDown(wall + kSecondsPerDay).tm_gmtoff;
    if (localAt(before) != local && localAt(behind) == local)
        return behind * kNsPerSecond;
    return before * kNsPerSecond;
}

} // namespace vardelin::platform
