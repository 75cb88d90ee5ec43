#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include <sodium.h>
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
    bool isLink = false;
    std::string linkTarget;
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
        if (tag == 2)
            copy.linkTarget = file.substr(at + 6, bytes);
        at += 6 + bytes;
    }
    copy.isLink = file[14] == 1;
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
    // What a link leads to stands in for its content.
    const std::string& checked = copy.isLink ? copy.linkTarget : copy.content;
    const XXH128_hash_t hash = XXH3_128bits(checked.data(), checked.size());
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, hash);
    if (copy.content.size() != number(file, 16, 8) ||
        file.substr(72, 16) !=
            std::string_view(reinterpret_cast<const char*>(canonical.digest), 16))
        throw std::runtime_error("content damaged");
    return copy;
}

using Key = std::array<unsigned char, 32>;

inline const unsigned char* bytesOf(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

// Subkey n of a key, as the page spells it out.
inline Key subkey(const Key& key, unsigned char n, std::string_view context)
{
    Key result{};
    unsigned char salt[16] = {n};
    unsigned char personal[16] = {};
    context.copy(reinterpret_cast<char*>(personal), 8);
    crypto_generichash_blake2b_salt_personal(result.data(), result.size(), nullptr, 0, key.data(),
                                             key.size(), salt, personal);
    return result;
}

inline std::string unseal(std::string_view sealed, std::string_view bound, std::string_view nonce,
                          const Key& key)
{
    if (sealed.size() < 16 || nonce.size() != 24)
        throw std::runtime_error("too short");
    std::string plain(sealed.size() - 16, '\0');
    if (crypto_aead_xchacha20poly1305_ietf_decrypt(
            reinterpret_cast<unsigned char*>(plain.data()), nullptr, nullptr, bytesOf(sealed),
            sealed.size(), bytesOf(bound), bound.size(), bytesOf(nonce), key.data()) != 0)
        throw std::runtime_error("not sealed so");
    return plain;
}

// The plain copy that an encrypted one holds: header frame, zstd frames, index frame.
inline std::string decrypt(std::string_view file, const std::string& password)
{
    const std::size_t end = 8 + number(file, 4, 4);
    if (number(file, 0, 4) != 0x184D2A56 || file.substr(8, 4) != "VDE1" ||
        number(file, end - 8, 8) != XXH3_64bits(file.data() + 8, end - 16))
        throw std::runtime_error("no encrypted copy");
    Key fileKey{};
    if (number(file, 16, 4) == 0) {
        file.copy(reinterpret_cast<char*>(fileKey.data()), 32, 84);
    } else {
        Key master{};
        if (crypto_pwhash(master.data(), master.size(), password.data(), password.size(),
                          bytesOf(file.substr(28, 16)), number(file, 20, 4),
                          number(file, 24, 4) * 1024, crypto_pwhash_ALG_ARGON2ID13) != 0)
            throw std::runtime_error("no memory");
        unsigned char verifier[16];
        const Key second = subkey(master, 2, "VDAslot_");
        crypto_generichash(verifier, 16, bytesOf(file.substr(28, 16)), 16, second.data(), 32);
        if (file.substr(44, 16) != std::string_view(reinterpret_cast<char*>(verifier), 16))
            throw std::runtime_error("another password");
        const std::string key = unseal(file.substr(84, 48), file.substr(16, 44),
                                       file.substr(60, 24), subkey(master, 1, "VDAslot_"));
        key.copy(reinterpret_cast<char*>(fileKey.data()), 32);
    }
    std::string plain = unseal(file.substr(156, end - 8 - 156), file.substr(0, 156),
                               file.substr(132, 24), subkey(fileKey, 1, "VDAfile_"));
    std::uint64_t left = number(plain, 88, 8);
    const std::uint64_t frames = number(plain, 96, 4);
    crypto_secretstream_xchacha20poly1305_state stream;
    std::size_t at = end;
    if (left > 0) {
        crypto_secretstream_xchacha20poly1305_init_pull(&stream, bytesOf(file.substr(at, 24)),
                                                        subkey(fileKey, 2, "VDAfile_").data());
        at += 24;
    }
    while (left > 0) {
        const std::size_t n = left < 65536 ? left : 65536;
        std::string chunk(n, '\0');
        unsigned char tag = 0;
        if (at + n + 17 > file.size() ||
            crypto_secretstream_xchacha20poly1305_pull(
                &stream, reinterpret_cast<unsigned char*>(chunk.data()), nullptr, &tag,
                bytesOf(file.substr(at)), n + 17, nullptr, 0) != 0)
            throw std::runtime_error("body damaged");
        if ((tag == crypto_secretstream_xchacha20poly1305_TAG_FINAL) != (n == left))
            throw std::runtime_error("body cut");
        plain += chunk;
        at += n + 17;
        left -= n;
    }
    if (frames > 1) {
        const std::string_view nonce = file.substr(at, 24);
        plain += unseal(file.substr(at + 24), nonce, nonce, subkey(fileKey, 3, "VDAfile_"));
    } else if (at != file.size()) {
        throw std::runtime_error("something follows");
    }
    return plain;
}

} // namespace vardelin::plain
