#pragma once

#include "archive/entry_names.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

// How the engine's own frames are put together: little-endian numbers behind one another in a zstd
// skippable frame that ends in a checksum of its payload. For the writers and readers of frames
// alone. Whatever is not as written raises 57 with the cause as the reason.
namespace vardelin::engine::frame {

inline constexpr std::size_t kChecksumBytes = 8; // XXH3-64 of what lies between head and checksum

[[noreturn]] void refuse(const char* reason);

template <typename Number>
void put(std::string& out, Number value)
{
    using Unsigned = std::make_unsigned_t<Number>;
    auto bits = static_cast<Unsigned>(value);
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        out += static_cast<char>(bits & 0xffU);
        if constexpr (sizeof(Number) > 1)
            bits = static_cast<Unsigned>(bits >> 8U);
    }
}

template <std::size_t Size>
void putBytes(std::string& out, const std::array<std::uint8_t, Size>& bytes)
{
    for (const std::uint8_t byte : bytes)
        out += static_cast<char>(byte);
}

// Reads numbers off the front of a frame; raises where the frame is too short for them.
class Cursor {
public:
    explicit Cursor(std::span<const std::byte> bytes) : m_bytes(bytes) {}

    template <typename Number>
    Number take()
    {
        const auto bytes = takeBytes(sizeof(Number));
        std::make_unsigned_t<Number> value = 0;
        for (std::size_t i = sizeof(Number); i-- > 0;) {
            if constexpr (sizeof(Number) > 1)
                value = static_cast<decltype(value)>(value << 8U);
            value = static_cast<decltype(value)>(value | std::to_integer<std::uint8_t>(bytes[i]));
        }
        return static_cast<Number>(value);
    }

    template <std::size_t Size>
    std::array<std::uint8_t, Size> takeArray()
    {
        std::array<std::uint8_t, Size> result{};
        const auto bytes = takeBytes(Size);
        for (std::size_t i = 0; i < Size; ++i)
            result[i] = std::to_integer<std::uint8_t>(bytes[i]);
        return result;
    }

    std::span<const std::byte> takeBytes(std::size_t n);
    std::string takeText(std::size_t n);
    std::span<const std::byte> rest() const { return m_bytes; }
    bool empty() const { return m_bytes.empty(); }

private:
    std::span<const std::byte> m_bytes;
};

// The beginning of a frame: magic, a length to be filled in, four letters.
std::string open(std::uint32_t magic, std::string_view name);
// Puts the length into a frame's head and the checksum behind its payload.
void close(std::string& frame);
// The payload behind the four letters, without its checksum, of a whole frame.
Cursor payloadOf(std::span<const std::byte> frame, std::uint32_t magic, std::string_view name);

} // namespace vardelin::engine::frame
