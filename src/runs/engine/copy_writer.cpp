#include "runs/engine/copy_writer.h"

#include "runs/engine/chunker.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>

#include <zstd.h>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

// Large enough that a hole is worth a frame of its own, and one frame's largest size.
constexpr std::uint32_t kHoleBytes = kLargestFrame;
constexpr std::size_t kPlainBlock = 1024 * 1024;

void check(std::size_t code)
{
    if (ZSTD_isError(code) != 0)
        throw RuntimeError(base::error_number::kDeviceIo, {}, ZSTD_getErrorName(code));
}

std::span<const std::byte> view(const std::string& text)
{
    return platform::asBytes(text);
}

struct HashKey {
    std::size_t operator()(const archive::ContentHash& hash) const noexcept
    {
        std::size_t value = 0;
        std::memcpy(&value, hash.data(), sizeof value);
        return value;
    }
};

constexpr std::size_t kSealedBlock = 1024 * 1024;

// The body of the archive file that is being written, sealed on its way where there is a key.
class BodyOutput {
public:
    BodyOutput(platform::File& target, const SecretKey* fileKey) : m_target(target)
    {
        if (fileKey != nullptr)
            m_sealer.emplace(*fileKey);
    }

    void write(std::span<const std::byte> bytes)
    {
        if (!m_sealer) {
            m_target.write(bytes);
            return;
        }
        m_sealer->add(bytes, m_sealed);
        if (m_sealed.size() >= kSealedBlock)
            flush();
    }
    // Bytes that lie in another archive file; `bytes` are the same, read already.
    void take(platform::File& source, std::uint64_t offset, std::span<const std::byte> bytes)
    {
        if (m_sealer)
            write(bytes);
        else
            m_target.appendRange(source, offset, bytes.size());
    }
    void finish()
    {
        if (!m_sealer)
            return;
        m_sealer->finish(m_sealed);
        flush();
    }

private:
    void flush()
    {
        m_target.write(m_sealed);
        m_sealed.clear();
    }

    platform::File& m_target;
    std::optional<BodySealer> m_sealer;
    std::vector<std::byte> m_sealed;
};

// Where an earlier copy's frames lie, by content.
class FrameMap {
public:
    explicit FrameMap(const EarlierBody* earlier) : m_earlier(earlier)
    {
        if (earlier == nullptr)
            return;
        std::uint64_t offset = earlier->bodyOffset;
        for (const BodyFrame& frame : earlier->frames) {
            m_places[frame.rawHash].push_back({offset, frame});
            offset += frame.packedBytes;
        }
    }

    // Appends the frame to `output` where the earlier copy holds it whole: one that was damaged on
    // the disk is never taken over, since the source can still give it anew.
    std::optional<BodyFrame> take(const archive::ContentHash& hash, std::size_t rawBytes,
                                  BodyOutput& output, std::vector<std::byte>& buffer)
    {
        const Place* const place = find(hash);
        if (place == nullptr || place->frame.rawBytes != rawBytes)
            return std::nullopt;
        if (buffer.size() < place->frame.packedBytes)
            buffer.resize(place->frame.packedBytes);
        const auto packed = std::span(buffer).first(place->frame.packedBytes);
        if (!readWhole(place->offset, packed) || packedHashOf(packed) != place->frame.packedHash)
            return std::nullopt;
        if (m_earlier->opener != nullptr)
            output.write(packed);
        else
            output.take(m_earlier->file, place->offset, packed);
        return place->frame;
    }

private:
    struct Place {
        std::uint64_t offset = 0;
        BodyFrame frame;
    };

    // The first place of a content; in a sealed body the first that is not passed yet.
    const Place* find(const archive::ContentHash& hash) const
    {
        const auto hit = m_places.find(hash);
        if (hit == m_places.end() || m_isBroken)
            return nullptr;
        const std::vector<Place>& places = hit->second;
        if (m_earlier->opener == nullptr)
            return &places.front();
        const auto next = std::lower_bound(
            places.begin(), places.end(), m_earlier->opener->position(),
            [](const Place& place, std::uint64_t at) { return place.offset < at; });
        return next == places.end() ? nullptr : &*next;
    }

    bool readWhole(std::uint64_t offset, std::span<std::byte> buffer)
    {
        try {
            if (m_earlier->opener != nullptr) {
                m_earlier->opener->skipTo(offset);
                return m_earlier->opener->read(buffer) == buffer.size();
            }
            while (!buffer.empty()) {
                const std::size_t n = m_earlier->file.readAt(offset, buffer);
                if (n == 0)
                    return false;
                offset += n;
                buffer = buffer.subspan(n);
            }
            return true;
        } catch (const RuntimeError&) {
            // A sealed body opens no further behind a damage.
            m_isBroken = m_earlier->opener != nullptr;
            return false;
        }
    }

    const EarlierBody* m_earlier;
    bool m_isBroken = false;
    std::unordered_map<archive::ContentHash, std::vector<Place>, HashKey> m_places;
};

// Walks a file's stretches of data so that large holes can be told from data.
class HoleFinder {
public:
    HoleFinder(platform::File& file, const platform::FileInfo& info)
        : m_file(file), m_size(info.sizeBytes), m_sparse(info.allocatedBytes < info.sizeBytes)
    {
    }

    // How far the data at `offset` reaches; `offset` itself where a large hole begins there.
    std::uint64_t dataEnd(std::uint64_t offset)
    {
        if (!m_sparse)
            return UINT64_MAX;
        std::uint64_t end = offset;
        for (;;) {
            const auto extent = onSource([&] { return m_file.nextData(end); });
            const std::uint64_t begin = extent ? extent->offset : m_size;
            if (begin >= end + kHoleBytes)
                return end;
            if (!extent)
                return UINT64_MAX;
            end = extent->offset + extent->length;
        }
    }

    // The end of the hole that begins at `offset`.
    std::uint64_t holeEnd(std::uint64_t offset)
    {
        const auto extent = onSource([&] { return m_file.nextData(offset); });
        return extent ? extent->offset : m_size;
    }

private:
    platform::File& m_file;
    std::uint64_t m_size;
    bool m_sparse;
};

} // namespace

struct CopyWriter::State {
    State(int level, const WriteKey& writeKey) : key(writeKey), compressor(ZSTD_createCCtx())
    {
        check(ZSTD_CCtx_setParameter(compressor, ZSTD_c_compressionLevel, level));
        check(ZSTD_CCtx_setParameter(compressor, ZSTD_c_checksumFlag, 1));
    }
    ~State() { ZSTD_freeCCtx(compressor); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    // What a header says of the password: an encrypted copy's stands in front of its header.
    KeySlot slotInHeader() const { return key.encrypt ? KeySlot{} : key.slot; }

    // The header of an encrypted copy under a new key, at the beginning of `sealed`.
    void startSealed(const CopyHeader& header, const SecretKey& fileKey)
    {
        const std::string head = encodeOuterHeader(header, key, fileKey);
        sealed.assign(view(head).begin(), view(head).end());
    }

    // Packs one frame into `packed` from `offset` on; gives its length.
    std::size_t pack(std::span<const std::byte> content, std::size_t offset)
    {
        const std::size_t need = offset + ZSTD_compressBound(content.size());
        if (packed.size() < need)
            packed.resize(need);
        const std::size_t n =
            ZSTD_compress2(compressor, packed.data() + offset, packed.size() - offset,
                           content.data(), content.size());
        check(n);
        return n;
    }

    // kHoleBytes zeros and the frame that they give, made when the first hole is met.
    void makeZeros()
    {
        if (!zeros.empty())
            return;
        zeros.resize(kHoleBytes);
        zerosHash = hashOf(zeros);
        const std::size_t n = pack(zeros, 0);
        packedZeros.assign(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(n));
    }

    WriteKey key;
    ZSTD_CCtx* compressor;
    std::vector<std::byte> packed;
    std::vector<std::byte> sealed;
    std::vector<std::byte> raw;
    std::vector<std::byte> zeros;
    std::vector<std::byte> packedZeros;
    archive::ContentHash zerosHash{};
};

CopyWriter::CopyWriter(int compressionLevel, const WriteKey& key)
    : m_state(std::make_unique<State>(compressionLevel, key))
{
}

CopyWriter::~CopyWriter() = default;

std::span<const std::byte> CopyWriter::packWhole(CopyHeader& header,
                                                 std::span<const std::byte> content)
{
    header.sizeBytes = content.size();
    header.contentHash = hashOf(content);
    header.frameCount = 1;
    header.bodyBytes = 0;
    header.slot = m_state->slotInHeader();
    if (m_state->key.encrypt) {
        header.bodyBytes = m_state->pack(content, 0);
        const auto body = std::span<const std::byte>(m_state->packed).first(header.bodyBytes);
        header.bodyHash = packedHashOf(body);
        const SecretKey fileKey = SecretKey::random();
        m_state->startSealed(header, fileKey);
        BodySealer sealer(fileKey);
        sealer.add(body, m_state->sealed);
        sealer.finish(m_state->sealed);
        return m_state->sealed;
    }
    const std::size_t headBytes = encodeHeader(header).size();
    header.bodyBytes = m_state->pack(content, headBytes);
    header.bodyHash = packedHashOf(
        std::span<const std::byte>(m_state->packed).subspan(headBytes, header.bodyBytes));
    const std::string head = encodeHeader(header);
    std::memcpy(m_state->packed.data(), head.data(), head.size());
    return std::span(m_state->packed).first(headBytes + header.bodyBytes);
}

std::span<const std::byte> CopyWriter::packEmpty(CopyHeader header)
{
    header.slot = m_state->slotInHeader();
    if (m_state->key.encrypt) {
        m_state->startSealed(header, SecretKey::random());
        return m_state->sealed;
    }
    const std::string head = encodeHeader(header);
    if (m_state->packed.size() < head.size())
        m_state->packed.resize(head.size());
    std::memcpy(m_state->packed.data(), head.data(), head.size());
    return std::span(m_state->packed).first(head.size());
}

bool CopyWriter::packLarge(CopyHeader& header, platform::File& source, platform::File& target,
                           const EarlierBody* earlier, const Progress& progress)
{
    State& state = *m_state;
    const platform::FileInfo info = onSource([&] { return source.info(); });
    HoleFinder holes(source, info);
    FrameMap earlierFrames(earlier);
    ContentHasher wholeHash;
    std::vector<BodyFrame> frames;
    header.sizeBytes = 0;
    header.bodyBytes = 0;
    header.slot = state.slotInHeader();
    std::optional<SecretKey> fileKey;
    if (state.key.encrypt) {
        // Zeros keep the place: the header is sealed once, when all of it is known.
        fileKey = SecretKey::random();
        target.write(std::vector<std::byte>(outerHeaderBytes(encodeHeader(header).size())));
    } else {
        target.write(view(encodeHeader(header)));
    }
    BodyOutput output(target, fileKey ? &*fileKey : nullptr);

    state.raw.resize(kLargestFrame);
    std::size_t filled = 0;   // bytes of state.raw that wait for a cut
    std::uint64_t readAt = 0; // where the next byte of the source comes from
    std::uint64_t dataEnd = holes.dataEnd(0);
    bool atEnd = false;
    const auto keepFrame = [&](const BodyFrame& frame) {
        frames.push_back(frame);
        header.sizeBytes += frame.rawBytes;
        header.bodyBytes += frame.packedBytes;
    };
    const auto writeFrame = [&](std::span<const std::byte> content,
                                const archive::ContentHash& hash) {
        // Packed before the view is taken: packing may move the buffer.
        const std::size_t packedBytes = state.pack(content, 0);
        const auto packed = std::span<const std::byte>(state.packed).first(packedBytes);
        output.write(packed);
        keepFrame({static_cast<std::uint32_t>(content.size()),
                   static_cast<std::uint32_t>(packed.size()), hash, packedHashOf(packed)});
    };
    for (;;) {
        while (!atEnd && filled < state.raw.size() && readAt < dataEnd) {
            const std::size_t room = static_cast<std::size_t>(
                std::min<std::uint64_t>(state.raw.size() - filled, dataEnd - readAt));
            const std::size_t n = onSource(
                [&] { return source.readAt(readAt, std::span(state.raw).subspan(filled, room)); });
            filled += n;
            readAt += n;
            // Whoever appends faster than this reads must not keep it here for ever.
            atEnd = n == 0 || readAt > info.sizeBytes;
        }
        if (filled > 0) {
            const std::size_t cut = cutLength(std::span(state.raw).first(filled));
            const auto piece = std::span<const std::byte>(state.raw).first(cut);
            wholeHash.add(piece);
            const archive::ContentHash hash = hashOf(piece);
            if (const auto taken = earlierFrames.take(hash, cut, output, state.packed))
                keepFrame(*taken);
            else
                writeFrame(piece, hash);
            std::memmove(state.raw.data(), state.raw.data() + cut, filled - cut);
            filled -= cut;
        } else if (!atEnd && readAt >= dataEnd) {
            const std::uint64_t hole = holes.holeEnd(readAt) - readAt;
            const std::size_t length =
                static_cast<std::size_t>(std::min<std::uint64_t>(hole, kHoleBytes));
            state.makeZeros();
            const auto zeros = std::span<const std::byte>(state.zeros).first(length);
            wholeHash.add(zeros);
            if (length == kHoleBytes) {
                output.write(state.packedZeros);
                keepFrame({kHoleBytes, static_cast<std::uint32_t>(state.packedZeros.size()),
                           state.zerosHash, packedHashOf(state.packedZeros)});
            } else {
                writeFrame(zeros, hashOf(zeros));
            }
            readAt += length;
            if (readAt >= dataEnd && length == hole)
                dataEnd = holes.dataEnd(readAt);
            atEnd = length == 0;
        } else {
            break;
        }
        if (progress && !progress())
            return false;
    }
    if (frames.empty()) {
        // Even an empty body is a frame, so that a decoder has something to begin with.
        writeFrame({}, hashOf({}));
    }
    header.contentHash = wholeHash.result();
    header.frameCount = static_cast<std::uint32_t>(frames.size());
    header.bodyHash = frames.size() == 1 ? frames.front().packedHash : 0;
    output.finish();
    if (frames.size() > 1) {
        const std::string index = encodeIndex(frames);
        target.write(view(fileKey ? sealIndex(index, *fileKey) : index));
    }
    target.writeAt(
        0, view(fileKey ? encodeOuterHeader(header, state.key, *fileKey) : encodeHeader(header)));
    return true;
}

bool CopyWriter::copyPlain(CopyHeader& header, platform::File& source, platform::File& target,
                           const Progress& progress)
{
    State& state = *m_state;
    const platform::FileInfo info = onSource([&] { return source.info(); });
    HoleFinder holes(source, info);
    ContentHasher wholeHash;
    state.raw.resize(std::max(state.raw.size(), kPlainBlock));
    const auto block = std::span(state.raw).first(kPlainBlock);
    std::uint64_t at = 0;
    std::uint64_t dataEnd = holes.dataEnd(0);
    std::uint64_t sinceProgress = 0;
    for (;;) {
        if (at >= dataEnd) {
            const std::uint64_t end = holes.holeEnd(at);
            state.makeZeros();
            for (std::uint64_t left = end - at; left > 0;) {
                const std::size_t n =
                    static_cast<std::size_t>(std::min<std::uint64_t>(left, kHoleBytes));
                wholeHash.add(std::span<const std::byte>(state.zeros).first(n));
                left -= n;
            }
            at = end;
            dataEnd = holes.dataEnd(at);
        }
        const auto room = block.first(
            static_cast<std::size_t>(std::min<std::uint64_t>(block.size(), dataEnd - at)));
        const std::size_t n = onSource([&] { return source.readAt(at, room); });
        if (n == 0)
            break;
        if (at + n > info.sizeBytes) { // it grows; see above
            at += n;
            break;
        }
        wholeHash.add(room.first(n));
        target.writeAt(at, room.first(n));
        at += n;
        sinceProgress += n;
        if (sinceProgress >= kWholeFileBytes) {
            sinceProgress = 0;
            if (progress && !progress())
                return false;
        }
    }
    target.resize(at);
    header.sizeBytes = at;
    header.contentHash = wholeHash.result();
    return true;
}

std::vector<BodyFrame> readIndex(platform::File& file, const CopyHeader& header,
                                 std::uint64_t bodyOffset, const SecretKey* fileKey)
{
    if (header.frameCount <= 1)
        return {};
    const std::uint64_t offset =
        bodyOffset + (fileKey != nullptr ? sealedBodyBytes(header.bodyBytes) : header.bodyBytes);
    const std::uint64_t size = file.info().sizeBytes;
    if (offset >= size || size - offset > kLargestHeader)
        throw RuntimeError(base::error_number::kDeviceIo, {}, "its index is cut off");
    std::vector<std::byte> bytes(static_cast<std::size_t>(size - offset));
    std::size_t have = 0;
    while (have < bytes.size()) {
        const std::size_t n = file.readAt(offset + have, std::span(bytes).subspan(have));
        if (n == 0)
            throw RuntimeError(base::error_number::kDeviceIo, {}, "its index is cut off");
        have += n;
    }
    if (fileKey == nullptr)
        return decodeIndex(bytes);
    const std::string index = openIndex(bytes, *fileKey);
    return decodeIndex(view(index));
}

} // namespace vardelin::engine
