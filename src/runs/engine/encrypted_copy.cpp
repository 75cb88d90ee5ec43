#include "runs/engine/encrypted_copy.h"

#include "runs/engine/frame_codec.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <sodium.h>

namespace vardelin::engine {
namespace {

constexpr std::string_view kName = "VDE1";
constexpr std::uint16_t kVersion = 1;
constexpr char kContext[] = "VDAfile_"; // of the key derivation, eight letters
constexpr std::size_t kNonceBytes = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr std::size_t kSealBytes = crypto_aead_xchacha20poly1305_ietf_ABYTES;
constexpr std::size_t kStreamHeadBytes = crypto_secretstream_xchacha20poly1305_HEADERBYTES;
constexpr std::size_t kChunkSealBytes = crypto_secretstream_xchacha20poly1305_ABYTES;
constexpr std::size_t kSealedChunkBytes = kChunkBytes + kChunkSealBytes;
constexpr std::size_t kChunksPerRead = 4;
// Head, name, version and two bytes that are zero.
constexpr std::size_t kFixedBytes = kFrameHeadBytes + 4 + 2 + 2;
constexpr std::size_t kInFrontOfSeal = kFixedBytes + kSlotBytes + kWrappedKeyBytes + kNonceBytes;

// Numbers of the keys below a file's key.
enum class Purpose : std::uint8_t { Header = 1, Body = 2, Index = 3 };

SecretKey subkey(const SecretKey& fileKey, Purpose purpose)
{
    SecretKey key;
    crypto_kdf_derive_from_key(key.data(), SecretKey::size(), static_cast<std::uint64_t>(purpose),
                               kContext, fileKey.data());
    return key;
}

const std::uint8_t* raw(std::string_view text)
{
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

const std::uint8_t* raw(std::span<const std::byte> bytes)
{
    return reinterpret_cast<const std::uint8_t*>(bytes.data());
}

// The plain bytes of a nonce and what is sealed under it.
std::string openSealed(std::span<const std::byte> nonce, std::span<const std::byte> sealed,
                       std::span<const std::byte> bound, const SecretKey& key, const char* refusal)
{
    if (sealed.size() < kSealBytes)
        frame::refuse(refusal);
    std::string plain(sealed.size() - kSealBytes, '\0');
    if (crypto_aead_xchacha20poly1305_ietf_decrypt(
            reinterpret_cast<std::uint8_t*>(plain.data()), nullptr, nullptr, raw(sealed),
            sealed.size(), raw(bound), bound.size(), raw(nonce), key.data()) != 0)
        frame::refuse(refusal);
    return plain;
}

// Appends a nonce and the plain text sealed under it and `out` as far as it stands.
void appendSealed(std::string& out, std::string_view plain, const SecretKey& key)
{
    std::array<std::uint8_t, kNonceBytes> nonce{};
    fillRandom(nonce);
    frame::putBytes(out, nonce);
    const std::size_t bound = out.size();
    out.resize(bound + plain.size() + kSealBytes);
    crypto_aead_xchacha20poly1305_ietf_encrypt(
        reinterpret_cast<std::uint8_t*>(out.data()) + bound, nullptr, raw(plain), plain.size(),
        raw(std::string_view(out)), bound, nullptr, nonce.data(), key.data());
}

// The fields of an outer header, after its checksum.
struct Outer {
    KeySlot slot;
    WrappedKey wrapped{};
    std::span<const std::byte> nonce;
    std::span<const std::byte> sealed;
};

Outer outerOf(std::span<const std::byte> bytes)
{
    frame::Cursor cursor = frame::payloadOf(bytes, kHeaderMagic, kName);
    if (cursor.take<std::uint16_t>() != kVersion)
        frame::refuse("it was made by a later version");
    cursor.take<std::uint16_t>();
    Outer outer;
    outer.slot = decodeSlot(cursor.takeBytes(kSlotBytes));
    outer.wrapped = cursor.takeArray<kWrappedKeyBytes>();
    outer.nonce = cursor.takeBytes(kNonceBytes);
    outer.sealed = cursor.rest();
    return outer;
}

} // namespace

PasswordError::PasswordError()
    : RuntimeError(base::error_number::kPermissionDenied, {}, "it was saved under another password")
{
}

bool isEncrypted(std::span<const std::byte> head)
{
    return head.size() >= kFrameHeadBytes + kName.size() &&
           std::memcmp(head.data() + kFrameHeadBytes, kName.data(), kName.size()) == 0;
}

std::size_t outerHeaderBytes(std::size_t plainHeaderBytes)
{
    return kInFrontOfSeal + plainHeaderBytes + kSealBytes + frame::kChecksumBytes;
}

std::string encodeOuterHeader(const CopyHeader& header, const WriteKey& key,
                              const SecretKey& fileKey)
{
    std::string plain = encodeHeader(header);
    std::string bytes = frame::open(kHeaderMagic, kName);
    // The length is bound by the seal, so it stands before the rest is known.
    std::string length;
    frame::put(length,
               static_cast<std::uint32_t>(outerHeaderBytes(plain.size()) - kFrameHeadBytes));
    bytes.replace(4, length.size(), length);
    frame::put(bytes, kVersion);
    frame::put(bytes, std::uint16_t{0});
    bytes += encodeSlot(key.slot);
    frame::putBytes(bytes, key.ring->wrap(key.slot, fileKey));
    appendSealed(bytes, plain, subkey(fileKey, Purpose::Header));
    frame::close(bytes);
    return bytes;
}

KeySlot slotOfOuterHeader(std::span<const std::byte> bytes)
{
    return outerOf(bytes).slot;
}

OpenedHeader openOuterHeader(std::span<const std::byte> bytes, const KeyRing& ring)
{
    const Outer outer = outerOf(bytes);
    if (!ring.opens(outer.slot))
        throw PasswordError();
    OpenedHeader opened;
    opened.fileKey = ring.unwrap(outer.slot, outer.wrapped);
    const auto bound = bytes.first(kInFrontOfSeal);
    const std::string plain =
        openSealed(outer.nonce, outer.sealed, bound, subkey(opened.fileKey, Purpose::Header),
                   "its header is damaged or was changed");
    opened.header = decodeHeader(platform::asBytes(plain));
    opened.header.slot = outer.slot;
    return opened;
}

std::string sealIndex(const std::string& indexFrame, const SecretKey& fileKey)
{
    std::string sealed;
    appendSealed(sealed, indexFrame, subkey(fileKey, Purpose::Index));
    return sealed;
}

std::string openIndex(std::span<const std::byte> sealed, const SecretKey& fileKey)
{
    constexpr const char* kRefusal = "its index is damaged or was changed";
    if (sealed.size() < kNonceBytes)
        frame::refuse(kRefusal);
    const auto nonce = sealed.first(kNonceBytes);
    return openSealed(nonce, sealed.subspan(kNonceBytes), nonce, subkey(fileKey, Purpose::Index),
                      kRefusal);
}

std::uint64_t sealedBodyBytes(std::uint64_t bodyBytes)
{
    if (bodyBytes == 0)
        return 0;
    return kStreamHeadBytes + bodyBytes +
           (bodyBytes / kChunkBytes + (bodyBytes % kChunkBytes != 0 ? 1 : 0)) * kChunkSealBytes;
}

std::uint64_t sealedIndexBytes(std::uint64_t indexFrameBytes)
{
    return kNonceBytes + indexFrameBytes + kSealBytes;
}

struct BodySealer::State {
    crypto_secretstream_xchacha20poly1305_state stream{};
    std::array<std::uint8_t, kStreamHeadBytes> head{};
    bool headGiven = false;
    std::vector<std::byte> waiting; // at most one chunk: only the last one may be short

    State() = default;
    ~State() { sodium_memzero(&stream, sizeof stream); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    void seal(std::span<const std::byte> chunk, bool last, std::vector<std::byte>& out)
    {
        if (!headGiven) {
            const auto bytes = std::as_bytes(std::span(head));
            out.insert(out.end(), bytes.begin(), bytes.end());
            headGiven = true;
        }
        const std::size_t at = out.size();
        out.resize(at + chunk.size() + kChunkSealBytes);
        crypto_secretstream_xchacha20poly1305_push(
            &stream, reinterpret_cast<std::uint8_t*>(out.data()) + at, nullptr, raw(chunk),
            chunk.size(), nullptr, 0,
            last ? crypto_secretstream_xchacha20poly1305_TAG_FINAL
                 : crypto_secretstream_xchacha20poly1305_TAG_MESSAGE);
    }
};

BodySealer::BodySealer(const SecretKey& fileKey) : m_state(std::make_unique<State>())
{
    crypto_secretstream_xchacha20poly1305_init_push(&m_state->stream, m_state->head.data(),
                                                    subkey(fileKey, Purpose::Body).data());
}

BodySealer::~BodySealer() = default;

void BodySealer::add(std::span<const std::byte> plain, std::vector<std::byte>& out)
{
    State& state = *m_state;
    // A full chunk goes out when more follows, since the last one is marked.
    while (!plain.empty()) {
        if (state.waiting.size() == kChunkBytes) {
            state.seal(state.waiting, false, out);
            state.waiting.clear();
        }
        if (state.waiting.empty() && plain.size() > kChunkBytes) {
            state.seal(plain.first(kChunkBytes), false, out);
            plain = plain.subspan(kChunkBytes);
            continue;
        }
        const std::size_t n = std::min(plain.size(), kChunkBytes - state.waiting.size());
        state.waiting.insert(state.waiting.end(), plain.begin(),
                             plain.begin() + static_cast<std::ptrdiff_t>(n));
        plain = plain.subspan(n);
    }
}

void BodySealer::finish(std::vector<std::byte>& out)
{
    m_state->seal(m_state->waiting, true, out);
    m_state->waiting.clear();
}

struct BodyOpener::State {
    explicit State(platform::File& source) : file(source) {}
    ~State() { sodium_memzero(&stream, sizeof stream); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    // Reads exactly the buffer from the file.
    void fetch(std::span<std::byte> buffer)
    {
        while (!buffer.empty()) {
            const std::size_t n = file.readAt(offset, buffer);
            if (n == 0)
                frame::refuse("its content is cut off");
            offset += n;
            buffer = buffer.subspan(n);
        }
    }

    // Opens the next chunk into `plain`; there must be one.
    void openNext()
    {
        if (sealedFrom == sealedTo) {
            const std::size_t want = static_cast<std::size_t>(
                std::min<std::uint64_t>(sealedLeft, kChunksPerRead * kSealedChunkBytes));
            sealed.resize(want);
            fetch(sealed);
            sealedFrom = 0;
            sealedTo = want;
            sealedLeft -= want;
        }
        const std::size_t n = std::min(sealedTo - sealedFrom, kSealedChunkBytes);
        const bool last = sealedLeft == 0 && sealedFrom + n == sealedTo;
        plain.resize(kChunkBytes);
        unsigned char tag = 0;
        unsigned long long got = 0;
        if (crypto_secretstream_xchacha20poly1305_pull(
                &stream, reinterpret_cast<std::uint8_t*>(plain.data()), &got, &tag,
                reinterpret_cast<const std::uint8_t*>(sealed.data()) + sealedFrom, n, nullptr,
                0) != 0)
            frame::refuse("its content is damaged or was changed");
        if ((tag == crypto_secretstream_xchacha20poly1305_TAG_FINAL) != last)
            frame::refuse("its content was cut or lengthened");
        sealedFrom += n;
        plainFrom = 0;
        plainTo = static_cast<std::size_t>(got);
    }

    platform::File& file;
    crypto_secretstream_xchacha20poly1305_state stream{};
    std::uint64_t offset = 0;     // of the next sealed byte in the file
    std::uint64_t sealedLeft = 0; // not read yet
    std::uint64_t plainLeft = 0;  // not given yet
    std::uint64_t position = 0;
    std::vector<std::byte> sealed;
    std::size_t sealedFrom = 0;
    std::size_t sealedTo = 0;
    std::vector<std::byte> plain;
    std::size_t plainFrom = 0;
    std::size_t plainTo = 0;
};

BodyOpener::BodyOpener(platform::File& file, std::uint64_t offset, std::uint64_t bodyBytes,
                       const SecretKey& fileKey)
    : m_state(std::make_unique<State>(file))
{
    State& state = *m_state;
    state.offset = offset;
    state.plainLeft = bodyBytes;
    if (bodyBytes == 0)
        return;
    std::array<std::byte, kStreamHeadBytes> head{};
    state.fetch(head);
    state.sealedLeft = sealedBodyBytes(bodyBytes) - kStreamHeadBytes;
    crypto_secretstream_xchacha20poly1305_init_pull(&state.stream, raw(head),
                                                    subkey(fileKey, Purpose::Body).data());
}

BodyOpener::~BodyOpener() = default;

std::uint64_t BodyOpener::position() const
{
    return m_state->position;
}

std::size_t BodyOpener::read(std::span<std::byte> buffer)
{
    State& state = *m_state;
    std::size_t done = 0;
    while (done < buffer.size() && state.plainLeft > 0) {
        if (state.plainFrom == state.plainTo)
            state.openNext();
        const std::size_t n = std::min(buffer.size() - done, state.plainTo - state.plainFrom);
        std::memcpy(buffer.data() + done, state.plain.data() + state.plainFrom, n);
        state.plainFrom += n;
        state.plainLeft -= n;
        state.position += n;
        done += n;
    }
    return done;
}

void BodyOpener::skipTo(std::uint64_t position)
{
    State& state = *m_state;
    while (state.position < position && state.plainLeft > 0) {
        if (state.plainFrom == state.plainTo)
            state.openNext();
        const std::size_t n = static_cast<std::size_t>(
            std::min<std::uint64_t>(position - state.position, state.plainTo - state.plainFrom));
        state.plainFrom += n;
        state.plainLeft -= n;
        state.position += n;
    }
}

} // namespace vardelin::engine
