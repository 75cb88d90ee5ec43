#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

// Random tests that can be replayed: each prints its seed and takes it from VARDELIN_SEED.
namespace vardelin::proofs {

// A count from the environment, for the soak script; `usual` keeps the test script short.
inline std::size_t countFrom(const char* variable, std::size_t usual)
{
    const char* const text = std::getenv(variable);
    return text == nullptr ? usual : static_cast<std::size_t>(std::strtoull(text, nullptr, 10));
}

// SplitMix64: small, and the same numbers on every machine.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next()
    {
        m_state += 0x9e3779b97f4a7c15U;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
        z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
        return z ^ (z >> 31U);
    }
    // From 0 to bound - 1.
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(next() % bound); }
    bool chance(std::size_t percent) { return below(100) < percent; }
    template <typename List>
    const auto& oneOf(const List& list)
    {
        return list[below(list.size())];
    }
    // Half noise, half text, so that it packs to about a half.
    std::string bytes(std::size_t count)
    {
        std::string text;
        text.reserve(count + 16);
        while (text.size() < count) {
            std::uint64_t noise = next();
            for (int i = 0; i < 8; ++i, noise >>= 8U)
                text += static_cast<char>(noise & 0xffU);
            text += "the same";
        }
        text.resize(count);
        return text;
    }

private:
    std::uint64_t m_state;
};

// The seed of one test, printed so that a failure can be replayed.
inline std::uint64_t seedOf(const char* test)
{
    const char* const text = std::getenv("VARDELIN_SEED");
    const std::uint64_t seed =
        text == nullptr ? std::random_device{}() : std::strtoull(text, nullptr, 10);
    std::cout << test << ": VARDELIN_SEED=" << seed << "\n";
    return seed;
}

} // namespace vardelin::proofs
