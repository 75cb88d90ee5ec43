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

// Where an earlier copy's frames lie, by content.
class FrameMap {
public:
    explicit FrameMap(const EarlierBody* earlier) : m_earlier(earlier)
    {
        if (earlier == nullptr)
            return;
        std::uint64_t offset = earlier->bodyOffset;
        for (const BodyFrame& frame : earlier->frames) {
            m_offsets.emplace(frame.rawHash, Place{offset, frame});
            offset += frame.packedBytes;
        }
    }

    // Appends the frame to `target` where the earlier copy holds it whole: one that was damaged on
    // the disk is never taken over, since the source can still give it anew.
    std::optional<BodyFrame> take(const archive::ContentHash& hash, std::size_t rawBytes,
                                  platform::File& target, std::vector<std::byte>& buffer) const
    {
        const auto hit = m_offsets.find(hash);
        if (hit == m_offsets.end() || hit->second.frame.rawBytes != rawBytes)
            return std::nullopt;
        const Place& place = hit->second;
        if (buffer.size() < place.frame.packedBytes)
            buffer.resize(place.frame.packedBytes);
        const auto packed = std::span(buffer).first(place.frame.packedBytes);
        if (!readWhole(place.offset, packed) || packedHashOf(packed) != place.frame.packedHash)
            return std::nullopt;
        target.appendRange(m_earlier->file, place.offset, place.frame.packedBytes);
        return place.frame;
    }

private:
    struct Place {
        std::uint64_t offset = 0;
        BodyFrame frame;
    };
    bool readWhole(std::uint64_t offset, std::span<std::byte> buffer) const
    {
        try {
            while (!buffer.empty()) {
                const std::size_t n = m_earlier->file.readAt(offset, buffer);
                if (n == 0)
                    return false;
                offset += n;
                buffer = buffer.subspan(n);
            }
            return true;
        } catch (const RuntimeError&) {
            return false;
        }
    }

    const EarlierBody* m_earlier;
    std::unordered_map<archive::ContentHash, Place, HashKey> m_offsets;
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
    explicit State(int level) : compressor(ZSTD_createCCtx())
    {
        check(ZSTD_CCtx_setParameter(compressor, ZSTD_c_compressionLevel, level));
        check(ZSTD_CCtx_setParameter(compressor, ZSTD_c_checksumFlag, 1));
    }
    ~State() { ZSTD_freeCCtx(compressor); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

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

    ZSTD_CCtx* compressor;
    std::vector<std::byte> packed;
    std::vector<std::byte> raw;
    std::vector<std::byte> zeros;
    std::vector<std::byte> packedZeros;
    archive::ContentHash zerosHash{};
};

CopyWriter::CopyWriter(int compressionLevel) : m_state(std::make_unique<State>(compressionLevel)) {}

CopyWriter::~CopyWriter() = default;

std::span<const std::byte> CopyWriter::packWhole(CopyHeader& header,
                                                 std::span<const std::byte> content)
{
    header.sizeBytes = content.size();
    header.contentHash = hashOf(content);
    header.frameCount = 1;
    header.bodyBytes = 0;
    const std::size_t headBytes = encodeHeader(header).size();
    header.bodyBytes = m_state->pack(content, headBytes);
    header.bodyHash = packedHashOf(
        std::span<const std::byte>(m_state->packed).subspan(headBytes, header.bodyBytes));
    const std::string head = encodeHeader(header);
    std::memcpy(m_state->packed.data(), head.data(), head.size());
    return std::span(m_state->packed).first(headBytes + header.bodyBytes);
}

std::span<const std::byte> CopyWriter::packEmpty(const CopyHeader& header)
{
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
    HoleFinder holes(source, onSource([&] { return source.info(); }));
    const FrameMap earlierFrames(earlier);
    ContentHasher wholeHash;
    std::vector<BodyFrame> frames;
    header.sizeBytes = 0;
    header.bodyBytes = 0;
    target.write(view(encodeHeader(header)));

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
        target.write(packed);
        keepFrame({static_cast<std::uint32_t>(content.size()),
                   static_cast<std::uint32_t>(packed.size()), hash, packedHashOf(packed)});
    };
    for (;;) {
        while (!atEnd && filled < state.raw.size() && readAt < dataEnd) {
            const std::size_t room = static_cast<std::size_t>(
                std::min<std::uint64_t>(state.raw.size() - filled, dataEnd - readAt));
            const std::size_t n = onSource(
                [&] { return source.readAt(readAt, std::span(state.raw).subspan(filled, room)); });
            atEnd = n == 0;
            filled += n;
            readAt += n;
        }
        if (filled > 0) {
            const std::size_t cut = cutLength(std::span(state.raw).first(filled));
            const auto piece = std::span<const std::byte>(state.raw).first(cut);
            wholeHash.add(piece);
            const archive::ContentHash hash = hashOf(piece);
            if (const auto taken = earlierFrames.take(hash, cut, target, state.packed))
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
                target.write(state.packedZeros);
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
    if (frames.size() > 1)
        target.write(view(encodeIndex(frames)));
    target.writeAt(0, view(encodeHeader(header)));
    return true;
}

bool CopyWriter::copyPlain(CopyHeader& header, platform::File& source, platform::File& target,
                           const Progress& progress)
{
    State& state = *m_state;
    HoleFinder holes(source, onSource([&] { return source.info(); }));
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
                                 std::uint64_t bodyOffset)
{
    if (header.frameCount <= 1)
        return {};
    const std::uint64_t offset = bodyOffset + header.bodyBytes;
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
    return decodeIndex(bytes);
}

} // namespace vardelin::engine
