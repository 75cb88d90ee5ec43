#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

// How much the tests of this folder do: little by default, all of it for scripts/soak, which sets
// the variables and reads the lines that begin with `ran:`.
namespace vardelin::faults {

inline std::uint64_t setting(const char* variable, std::uint64_t fallback)
{
    const char* const text = std::getenv(variable);
    return text == nullptr || *text == '\0' ? fallback : std::strtoull(text, nullptr, 10);
}

// The seed of this run; the same seed gives the same run.
inline std::uint64_t seed()
{
    return setting("VARDELIN_SEED", 1);
}

// Begins with the seed, so that what fails can be run again, and ends with what was done.
class Tally {
public:
    explicit Tally(std::string what) : m_what(std::move(what))
    {
        std::printf("%s: VARDELIN_SEED=%llu\n", m_what.c_str(),
                    static_cast<unsigned long long>(seed()));
    }
    Tally(const Tally&) = delete;
    Tally& operator=(const Tally&) = delete;
    ~Tally()
    {
        std::printf("ran: %s: %llu, seed %llu\n", m_what.c_str(),
                    static_cast<unsigned long long>(m_count),
                    static_cast<unsigned long long>(seed()));
    }

    void add() { ++m_count; }

private:
    std::string m_what;
    std::uint64_t m_count = 0;
};

// Which of `total` numbered points to visit: all of them where `wanted` is 0 or more than there
// are, else one in each of `wanted` equal stretches, at a place that the seed chooses. From 1.
inline std::vector<std::size_t> pointsOf(std::size_t total, std::size_t wanted)
{
    std::vector<std::size_t> points;
    if (wanted == 0 || wanted >= total) {
        for (std::size_t point = 1; point <= total; ++point)
            points.push_back(point);
        return points;
    }
    std::mt19937_64 random(seed());
    for (std::size_t i = 0; i < wanted; ++i) {
        const std::size_t begin = total * i / wanted;
        const std::size_t end = total * (i + 1) / wanted;
        points.push_back(begin + random() % (end - begin) + 1);
    }
    return points;
}

} // namespace vardelin::faults
