#pragma once

#include <cstddef>
#include <fstream>
#include <string>
#include <sys/resource.h>

// What the benchmarks tell of their own process.
namespace vardelin::bench {

// Seconds of a processor that this process has used, for itself and in the system: what a busy
// machine does not change.
inline double cpuSeconds()
{
    struct rusage used {};
    ::getrusage(RUSAGE_SELF, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

// The most memory that this process ever held, in MiB; 0 where the system does not tell.
inline std::size_t peakMebibytes()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        std::size_t kibibytes = 0;
        if (word == "VmHWM:" && status >> kibibytes)
            return kibibytes / 1024;
    }
    return 0;
}

} // namespace vardelin::bench
