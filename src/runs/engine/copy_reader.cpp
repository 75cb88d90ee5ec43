#include "runs/engine/copy_reader.h"

#include "base/runtime_error.h"
#include "runs/engine/copy_writer.h"
#include "runs/engine/encrypted_copy.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <xxhash.h>
#include <zstd.h>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

// Most archive files fit in whole, so that one read brings header and body.
constexpr std::size_t kBlockBytes = 256 * 1024;

[[noreturn]] void damaged(const std::string& reason)
{
    throw RuntimeError(base::error_number::kDeviceIo, {}, reason);
}

} // namespace

struct CopyReader::State {
    explicit State(const KeyRing* keys)
        : ring(keys), decoder(ZSTD_createDCtx()), packed(XXH3_createState())
    {
        in.resize(kBlockBytes);
        out.resize(ZSTD_DStreamOutSize() * 4);
    }
    ~State()
    {
        ZSTD_freeDCtx(decoder);
        XXH3_freeState(packed);
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    // Reads the file's beginning into `in`; `headBytes` and `have` tell how much of `in` the header
    // takes and how much there is.
    std::span<const std::byte> head(platform::File& file)
    {
        // The size saves the read that would only find the end.
        fileBytes = file.info().sizeBytes;
        have = fill(file, 0,
                    std::span(in).first(
                        static_cast<std::size_t>(std::min<std::uint64_t>(fileBytes, kBlockBytes))));
        headBytes = headerFrameBytes(std::span(in).first(have));
        if (headBytes > have) {
            in.resize(std::max(in.size(), headBytes));
            have += fill(file, have, std::span(in).subspan(have, headBytes - have));
            if (have < headBytes)
                damaged("its header is cut off");
        }
        return std::span(in).first(headBytes);
    }

    CopyHeader begin(platform::File& file)
    {
        key.reset();
        const auto bytes = head(file);
        if (!isEncrypted(bytes))
            return decodeHeader(bytes);
        if (ring == nullptr) {
            ownRing = std::make_unique<KeyRing>();
            ring = ownRing.get();
        }
        OpenedHeader opened = openOuterHeader(bytes, *ring);
        key = opened.fileKey;
        return std::move(opened.header);
    }

    // Where a whole file ends.
    std::uint64_t endOf(const CopyHeader& header) const
    {
        const std::uint64_t index = header.frameCount > 1 ? indexFrameBytes(header.frameCount) : 0;
        if (!key)
            return headBytes + header.bodyBytes + index;
        return headBytes + sealedBodyBytes(header.bodyBytes) +
               (index > 0 ? sealedIndexBytes(index) : 0);
    }

    // Reads until the buffer is full or the file ends.
    static std::size_t fill(platform::File& file, std::uint64_t offset, std::span<std::byte> buffer)
    {
        std::size_t got = 0;
        while (got < buffer.size()) {
            const std::size_t n = file.readAt(offset + got, buffer.subspan(got));
            if (n == 0)
                break;
            got += n;
        }
        return got;
    }

    void endFrame()
    {
        packedHashes.push_back(XXH3_64bits_digest(packed));
        XXH3_64bits_reset(packed);
    }

    // The frames as they were read against what header and index say of them, and the file's end.
    void checkFrames(platform::File& file, const CopyHeader& header) const
    {
        if (packedHashes.size() != header.frameCount)
            damaged("its content has another number of frames than its header says");
        if (header.frameCount <= 1) {
            if (header.frameCount == 1 && packedHashes.front() != header.bodyHash)
                damaged("its content does not match its checksum");
            return;
        }
        const auto frames = readIndex(file, header, headBytes, key ? &*key : nullptr);
        const bool same = std::equal(
            frames.begin(), frames.end(), packedHashes.begin(), packedHashes.end(),
            [](const BodyFrame& frame, std::uint64_t read) { return frame.packedHash == read; });
        if (!same)
            damaged("its content does not match its index");
    }

    const KeyRing* ring;
    std::unique_ptr<KeyRing> ownRing;
    std::optional<SecretKey> key; // of the file, where it is encrypted
    ZSTD_DCtx* decoder;
    ContentHasher hash;   // of the content
    XXH3_state_t* packed; // of the frame that is being read
    std::vector<std::uint64_t> packedHashes;
    std::vector<std::byte> in;
    std::vector<std::byte> out;
    std::uint64_t fileBytes = 0;
    std::size_t headBytes = 0;
    std::size_t have = 0;
};

CopyReader::CopyReader(const KeyRing* ring) : m_state(std::make_unique<State>(ring)) {}

CopyReader::~CopyReader() = default;

CopyHeader CopyReader::readHeader(platform::File& file)
{
    return m_state->begin(file);
}

KeySlot CopyReader::readSlot(platform::File& file)
{
    const auto bytes = m_state->head(file);
    return isEncrypted(bytes) ? slotOfOuterHeader(bytes) : decodeHeader(bytes).slot;
}

std::uint64_t CopyReader::bodyOffset() const
{
    return m_state->headBytes;
}

const SecretKey* CopyReader::fileKey() const
{
    return m_state->key ? &*m_state->key : nullptr;
}

CopyHeader CopyReader::read(platform::File& file, const ContentSink& sink)
{
    CopyHeader header = readHeader(file);
    readContent(file, header, sink);
    return header;
}

void CopyReader::readContent(platform::File& file, const CopyHeader& header,
                             const ContentSink& sink)
{
    State& state = *m_state;
    state.packedHashes.clear();
    if (state.fileBytes != state.endOf(header))
        damaged("it is shorter or longer than its header says");
    if (header.frameCount == 0) {
        state.checkFrames(file, header);
        return;
    }

    ZSTD_DCtx_reset(state.decoder, ZSTD_reset_session_only);
    state.hash.reset();
    XXH3_64bits_reset(state.packed);
    std::uint64_t fileOffset = state.have; // where the next block comes from
    std::uint64_t bodyLeft = header.bodyBytes;
    std::uint64_t produced = 0;
    std::size_t from = state.headBytes;
    bool frameOpen = true;
    std::optional<BodyOpener> opener;
    if (state.key) {
        opener.emplace(file, state.headBytes, header.bodyBytes, *state.key);
        state.have = state.headBytes; // what lies behind the header in `in` is sealed
    }
    while (bodyLeft > 0) {
        if (from == state.have) {
            const std::size_t want =
                static_cast<std::size_t>(std::min<std::uint64_t>(bodyLeft, kBlockBytes));
            const auto room = std::span(state.in).first(want);
            state.have = opener ? opener->read(room) : State::fill(file, fileOffset, room);
            if (state.have == 0)
                damaged("its content is cut off");
            fileOffset += state.have;
            from = 0;
        }
        const std::size_t take =
            static_cast<std::size_t>(std::min<std::uint64_t>(state.have - from, bodyLeft));
        ZSTD_inBuffer input{state.in.data() + from, take, 0};
        bool full = false; // the decoder holds more than the last output took
        while (input.pos < input.size || full) {
            ZSTD_outBuffer output{state.out.data(), state.out.size(), 0};
            const std::size_t begin = input.pos;
            const std::size_t code = ZSTD_decompressStream(state.decoder, &output, &input);
            if (ZSTD_isError(code) != 0)
                damaged(std::string("its content is damaged: ") + ZSTD_getErrorName(code));
            XXH3_64bits_update(state.packed, state.in.data() + from + begin, input.pos - begin);
            frameOpen = code != 0;
            full = frameOpen && output.pos == output.size;
            if (!frameOpen)
                state.endFrame();
            produced += output.pos;
            // Checked before it goes on: a damaged length must not fill the disk.
            if (produced > header.sizeBytes)
                damaged("its content is longer than its header says");
            const auto piece = std::span<const std::byte>(state.out).first(output.pos);
            state.hash.add(piece);
            if (!piece.empty())
                sink(piece);
        }
        from += take;
        bodyLeft -= take;
    }
    if (frameOpen)
        damaged("its content is cut off");
    if (produced != header.sizeBytes)
        damaged("its content is shorter than its header says");
    if (state.hash.result() != header.contentHash)
        damaged("its content does not match its checksum");
    state.checkFrames(file, header);
}

void CopyReader::readPlain(platform::File& file, const archive::CopyMeta& expected,
                           const ContentSink& sink)
{
    State& state = *m_state;
    state.hash.reset();
    std::uint64_t at = 0;
    for (;;) {
        const std::size_t n = State::fill(file, at, std::span(state.in).first(kBlockBytes));
        if (n == 0)
            break;
        at += n;
        if (at > expected.sizeBytes)
            damaged("its content is longer than its name says");
        const auto piece = std::span<const std::byte>(state.in).first(n);
        state.hash.add(piece);
        sink(piece);
    }
    if (at != expected.sizeBytes)
        damaged("its content is shorter than its name says");
    if (!expected.contentHash || state.hash.result() != *expected.contentHash)
        damaged("its content does not match its checksum");
}

} // namespace vardelin::engine
