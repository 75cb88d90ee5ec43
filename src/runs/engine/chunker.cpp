#include "runs/engine/chunker.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace vardelin::engine {
namespace {

// One pseudo-random number a byte value (splitmix64 from a fixed seed). It decides the cuts, and
// with them what later versions can take over, so it never changes.
constexpr std::array<std::uint64_t, 256> kGear = [] {
    std::array<std::uint64_t, 256> table{};
    std::uint64_t state = 0x5eed0fbac4u;
    for (std::uint64_t& entry : table) {
        state += 0x9e3779b97f4a7c15u;
        std::uint64_t z = state;
        z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27U)) * 0x94d049bb133111ebu;
        entry = z ^ (z >> 31U);
    }
    return table;
}();

// The top bits, which the most bytes have gone into.
constexpr std::uint64_t kMask = ~std::uint64_t{0} << (64U - kCutBits);
constexpr std::size_t kWindow = 64; // bytes that the rolling sum still remembers

} // namespace

std::size_t cutLength(std::span<const std::byte> bytes)
{
    const std::size_t end = std::min(bytes.size(), kLargestFrame);
    if (end <= kSmallestFrame)
        return end;
    std::uint64_t sum = 0;
    for (std::size_t i = kSmallestFrame - kWindow; i < kSmallestFrame; ++i)
        sum = (sum << 1U) + kGear[std::to_integer<std::uint8_t>(bytes[i])];
    for (std::size_t i = kSmallestFrame; i < end; ++i) {
        sum = (sum << 1U) + kGear[std::to_integer<std::uint8_t>(bytes[i])];
        if ((sum & kMask) == 0)
            return i + 1;
    }
    return end;
}

} // namespace vardelin::engine
