#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include <xxhash.h>
#include <zstd.h>

// A second reader of the archive format, written from docs/archive-format.md alone and sharing no
// code with the first: what both agree on is what the page says.
namespace vardelin::plain {

struct Copy {
    std::string path;
    std::string content;
    std::uint32_t version = 0;
    std::int64_t modifiedNs = 0;
};

inline std::uint64_t number(std::string_view bytes, std::size_t at, std::size_t width)
{
    if (at + width > bytes.size())
        throw std::runtime_error("too short");
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
        value |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return value;
}

inline Copy read(std::string_view file)
{
    if (number(file, 0, 4) != 0x184D2A56 || file.substr(8, 4) != "VDA1")
        throw std::runtime_error("no archive file");
    const std::size_t length = number(file, 4, 4);
    if (number(file, length, 8) != XXH3_64bits(file.data() + 8, length - 8))
        throw std::runtime_error("header damaged");
    Copy copy;
    copy.modifiedNs = static_cast<std::int64_t>(number(file, 24, 8));
    copy.version = static_cast<std::uint32_t>(number(file, 68, 4));
    for (std::size_t at = 108; at < length;) {
        const std::uint64_t tag = number(file, at, 2);
        const std::size_t bytes = number(file, at + 2, 4);
        if (tag == 1)
            copy.path = file.substr(at + 6, bytes);
        at += 6 + bytes;
    }
    // The whole file, header and index included, is what any decoder takes.
    ZSTD_DCtx* decoder = ZSTD_createDCtx();
    std::string buffer(1 << 20, '\0');
    ZSTD_inBuffer input{file.data(), file.size(), 0};
    while (input.pos < input.size) {
        ZSTD_outBuffer output{buffer.data(), buffer.size(), 0};
        const std::size_t code = ZSTD_decompressStream(decoder, &output, &input);
        if (ZSTD_isError(code) != 0)
            throw std::runtime_error(ZSTD_getErrorName(code));
        copy.content.append(buffer.data(), output.pos);
    }
    for (;;) {
        ZSTD_outBuffer output{buffer.data(), buffer.size(), 0};
        ZSTD_decompressStream(decoder, &output, &input);
        if (output.pos == 0)
            break;
        copy.content.append(buffer.data(), output.pos);
    }
    ZSTD_freeDCtx(decoder);
    const XXH128_hash_t hash = XXH3_128bits(copy.content.data(), copy.content.size());
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, hash);
    if (copy.content.size() != number(file, 16, 8) ||
        file.substr(72, 16) !=
            std::string_view(reinterpret_cast<const char*>(canonical.digest), 16))
        throw std::runtime_error("content damaged");
    return copy;
}

} // namespace vardelin::plain
