#include "runs/engine/archive_header.h"

#include "base/runtime_error.h"

#include <algorithm>
#include <string_view>

#include <xxhash.h>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

constexpr std::string_view kHeaderName = "VDA1";
constexpr std::string_view kIndexName = "VDI1";
constexpr std::uint8_t kSparseFlag = 1;
constexpr std::size_t kChecksumBytes = 8;
constexpr std::size_t kIndexEntryBytes = 32;

// Tags of the texts behind the fixed fields; stored by number.
enum class Tag : std::uint16_t { Path = 1, LinkTarget = 2, LinkGroup = 3, Attribute = 4 };

[[noreturn]] void refuse(const char* reason)
{
    throw RuntimeError(base::error_number::kDeviceIo, {}, reason);
}

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

void putField(std::string& out, Tag tag, std::string_view bytes)
{
    put(out, static_cast<std::uint16_t>(tag));
    put(out, static_cast<std::uint32_t>(bytes.size()));
    out.append(bytes);
}

void putHash(std::string& out, const archive::ContentHash& hash)
{
    for (const std::uint8_t byte : hash)
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

    std::span<const std::byte> takeBytes(std::size_t n)
    {
        if (n > m_bytes.size())
            refuse("the header ends too early");
        const auto result = m_bytes.first(n);
        m_bytes = m_bytes.subspan(n);
        return result;
    }

    std::string takeText(std::size_t n)
    {
        const auto bytes = takeBytes(n);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    archive::ContentHash takeHash()
    {
        archive::ContentHash hash{};
        const auto bytes = takeBytes(hash.size());
        std::transform(bytes.begin(), bytes.end(), hash.begin(),
                       [](std::byte b) { return std::to_integer<std::uint8_t>(b); });
        return hash;
    }

    bool empty() const { return m_bytes.empty(); }

private:
    std::span<const std::byte> m_bytes;
};

// Closes a skippable frame: puts the length into its head and the checksum of the payload behind
// it.
void closeFrame(std::string& frame)
{
    const std::uint64_t checksum =
        XXH3_64bits(frame.data() + kFrameHeadBytes, frame.size() - kFrameHeadBytes);
    put(frame, checksum);
    std::string length;
    put(length, static_cast<std::uint32_t>(frame.size() - kFrameHeadBytes));
    frame.replace(4, 4, length);
}

std::string openFrame(std::uint32_t magic, std::string_view name)
{
    std::string frame;
    put(frame, magic);
    put(frame, std::uint32_t{0});
    frame.append(name);
    return frame;
}

// The payload without its checksum, after the checks that header and index share.
Cursor checkedPayload(std::span<const std::byte> frame, std::uint32_t magic, std::string_view name)
{
    Cursor head(frame);
    if (head.take<std::uint32_t>() != magic)
        refuse("it does not begin as an archive file");
    const auto length = head.take<std::uint32_t>();
    if (length != frame.size() - kFrameHeadBytes || length < name.size() + kChecksumBytes)
        refuse("its header has a wrong length");
    const auto payload = frame.subspan(kFrameHeadBytes, length - kChecksumBytes);
    Cursor tail(frame.last(kChecksumBytes));
    if (tail.take<std::uint64_t>() != XXH3_64bits(payload.data(), payload.size()))
        refuse("its header is damaged (checksum)");
    Cursor cursor(payload);
    if (cursor.takeText(name.size()) != name)
        refuse("it does not begin as an archive file");
    return cursor;
}

void takeField(Cursor& cursor, CopyHeader& header)
{
    const auto tag = static_cast<Tag>(cursor.take<std::uint16_t>());
    const std::string bytes = cursor.takeText(cursor.take<std::uint32_t>());
    switch (tag) {
    case Tag::Path:
        header.path = bytes;
        return;
    case Tag::LinkTarget:
        header.linkTarget = bytes;
        return;
    case Tag::LinkGroup:
        header.linkGroup = bytes;
        return;
    case Tag::Attribute: {
        const std::size_t end = bytes.find('\0');
        if (end == std::string::npos)
            refuse("an extended attribute in its header has no name");
        header.attributes.push_back({bytes.substr(0, end), bytes.substr(end + 1)});
        return;
    }
    }
    // A field of a later version that this one can do without.
}

} // namespace

std::uint64_t packedHashOf(std::span<const std::byte> bytes)
{
    return XXH3_64bits(bytes.data(), bytes.size());
}

std::string encodeHeader(const CopyHeader& header)
{
    std::string frame = openFrame(kHeaderMagic, kHeaderName);
    put(frame, kFormatVersion);
    put(frame, static_cast<std::uint8_t>(header.kind));
    put(frame, header.sparse ? kSparseFlag : std::uint8_t{0});
    put(frame, header.sizeBytes);
    put(frame, header.modifiedNs);
    put(frame, header.accessedNs);
    put(frame, header.createdNs);
    put(frame, header.savedNs);
    put(frame, header.mode);
    put(frame, header.ownerId);
    put(frame, header.groupId);
    put(frame, header.version);
    putHash(frame, header.contentHash);
    put(frame, header.bodyBytes);
    put(frame, header.frameCount);
    put(frame, header.bodyHash);
    putField(frame, Tag::Path, header.path);
    if (!header.linkTarget.empty())
        putField(frame, Tag::LinkTarget, header.linkTarget);
    if (!header.linkGroup.empty())
        putField(frame, Tag::LinkGroup, header.linkGroup);
    for (const auto& attribute : header.attributes)
        putField(frame, Tag::Attribute, attribute.name + '\0' + attribute.value);
    closeFrame(frame);
    return frame;
}

std::size_t headerFrameBytes(std::span<const std::byte> head)
{
    if (head.size() < kFrameHeadBytes)
        refuse("it is too short to be an archive file");
    Cursor cursor(head);
    if (cursor.take<std::uint32_t>() != kHeaderMagic)
        refuse("it does not begin as an archive file");
    const std::size_t length = cursor.take<std::uint32_t>();
    if (length > kLargestHeader)
        refuse("its header has a wrong length");
    return length + kFrameHeadBytes;
}

CopyHeader decodeHeader(std::span<const std::byte> frame)
{
    Cursor cursor = checkedPayload(frame, kHeaderMagic, kHeaderName);
    if (cursor.take<std::uint16_t>() != kFormatVersion)
        refuse("it was made by a later version");
    CopyHeader header;
    const auto kind = cursor.take<std::uint8_t>();
    if (kind > static_cast<std::uint8_t>(ItemKind::Settings))
        refuse("its header names an unknown kind");
    header.kind = static_cast<ItemKind>(kind);
    header.sparse = (cursor.take<std::uint8_t>() & kSparseFlag) != 0;
    header.sizeBytes = cursor.take<std::uint64_t>();
    header.modifiedNs = cursor.take<std::int64_t>();
    header.accessedNs = cursor.take<std::int64_t>();
    header.createdNs = cursor.take<std::int64_t>();
    header.savedNs = cursor.take<std::int64_t>();
    header.mode = cursor.take<std::uint32_t>();
    header.ownerId = cursor.take<std::uint32_t>();
    header.groupId = cursor.take<std::uint32_t>();
    header.version = cursor.take<std::uint32_t>();
    header.contentHash = cursor.takeHash();
    header.bodyBytes = cursor.take<std::uint64_t>();
    header.frameCount = cursor.take<std::uint32_t>();
    header.bodyHash = cursor.take<std::uint64_t>();
    while (!cursor.empty())
        takeField(cursor, header);
    return header;
}

std::string encodeIndex(const std::vector<BodyFrame>& frames)
{
    std::string frame = openFrame(kIndexMagic, kIndexName);
    put(frame, static_cast<std::uint32_t>(frames.size()));
    for (const BodyFrame& body : frames) {
        put(frame, body.rawBytes);
        put(frame, body.packedBytes);
        putHash(frame, body.rawHash);
        put(frame, body.packedHash);
    }
    closeFrame(frame);
    return frame;
}

std::vector<BodyFrame> decodeIndex(std::span<const std::byte> frame)
{
    if (frame.size() < kFrameHeadBytes + kIndexName.size() + kChecksumBytes)
        refuse("its index ends too early");
    Cursor cursor = checkedPayload(frame, kIndexMagic, kIndexName);
    const std::size_t count = cursor.take<std::uint32_t>();
    if (count > frame.size() / kIndexEntryBytes)
        refuse("its index has a wrong length");
    std::vector<BodyFrame> frames(count);
    for (BodyFrame& body : frames) {
        body.rawBytes = cursor.take<std::uint32_t>();
        body.packedBytes = cursor.take<std::uint32_t>();
        body.rawHash = cursor.takeHash();
        body.packedHash = cursor.take<std::uint64_t>();
    }
    return frames;
}

} // namespace vardelin::engine
