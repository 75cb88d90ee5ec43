#include "runs/engine/archive_header.h"

#include "runs/engine/frame_codec.h"

#include <algorithm>
#include <string_view>

#include <xxhash.h>

namespace vardelin::engine {
namespace {

using frame::Cursor;
using frame::kChecksumBytes;
using frame::put;
using frame::refuse;

constexpr std::string_view kHeaderName = "VDA1";
constexpr std::string_view kIndexName = "VDI1";
constexpr std::uint8_t kSparseFlag = 1;
constexpr std::size_t kIndexEntryBytes = 32;

// Tags of the texts behind the fixed fields; stored by number.
enum class Tag : std::uint16_t {
    Path = 1,
    LinkTarget = 2,
    LinkGroup = 3,
    Attribute = 4,
    KeySlot = 5
};

void putField(std::string& out, Tag tag, std::string_view bytes)
{
    put(out, static_cast<std::uint16_t>(tag));
    put(out, static_cast<std::uint32_t>(bytes.size()));
    out.append(bytes);
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
    case Tag::KeySlot:
        header.slot = decodeSlot(platform::asBytes(bytes));
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
    std::string bytes = frame::open(kHeaderMagic, kHeaderName);
    put(bytes, kFormatVersion);
    put(bytes, static_cast<std::uint8_t>(header.kind));
    put(bytes, header.sparse ? kSparseFlag : std::uint8_t{0});
    put(bytes, header.sizeBytes);
    put(bytes, header.modifiedNs);
    put(bytes, header.accessedNs);
    put(bytes, header.createdNs);
    put(bytes, header.savedNs);
    put(bytes, header.mode);
    put(bytes, header.ownerId);
    put(bytes, header.groupId);
    put(bytes, header.version);
    frame::putBytes(bytes, header.contentHash);
    put(bytes, header.bodyBytes);
    put(bytes, header.frameCount);
    put(bytes, header.bodyHash);
    putField(bytes, Tag::Path, header.path);
    if (!header.linkTarget.empty())
        putField(bytes, Tag::LinkTarget, header.linkTarget);
    if (!header.linkGroup.empty())
        putField(bytes, Tag::LinkGroup, header.linkGroup);
    if (header.slot.kind != KeySlot::Kind::None)
        putField(bytes, Tag::KeySlot, encodeSlot(header.slot));
    for (const auto& attribute : header.attributes)
        putField(bytes, Tag::Attribute, attribute.name + '\0' + attribute.value);
    frame::close(bytes);
    return bytes;
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

CopyHeader decodeHeader(std::span<const std::byte> bytes)
{
    Cursor cursor = frame::payloadOf(bytes, kHeaderMagic, kHeaderName);
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
    header.contentHash = cursor.takeArray<16>();
    header.bodyBytes = cursor.take<std::uint64_t>();
    header.frameCount = cursor.take<std::uint32_t>();
    header.bodyHash = cursor.take<std::uint64_t>();
    while (!cursor.empty())
        takeField(cursor, header);
    return header;
}

std::size_t indexFrameBytes(std::size_t count)
{
    return kFrameHeadBytes + kIndexName.size() + sizeof(std::uint32_t) + count * kIndexEntryBytes +
           kChecksumBytes;
}

std::string encodeIndex(const std::vector<BodyFrame>& frames)
{
    std::string bytes = frame::open(kIndexMagic, kIndexName);
    put(bytes, static_cast<std::uint32_t>(frames.size()));
    for (const BodyFrame& body : frames) {
        put(bytes, body.rawBytes);
        put(bytes, body.packedBytes);
        frame::putBytes(bytes, body.rawHash);
        put(bytes, body.packedHash);
    }
    frame::close(bytes);
    return bytes;
}

std::vector<BodyFrame> decodeIndex(std::span<const std::byte> bytes)
{
    if (bytes.size() < kFrameHeadBytes + kIndexName.size() + kChecksumBytes)
        refuse("its index ends too early");
    Cursor cursor = frame::payloadOf(bytes, kIndexMagic, kIndexName);
    const std::size_t count = cursor.take<std::uint32_t>();
    if (count > bytes.size() / kIndexEntryBytes)
        refuse("its index has a wrong length");
    std::vector<BodyFrame> frames(count);
    for (BodyFrame& body : frames) {
        body.rawBytes = cursor.take<std::uint32_t>();
        body.packedBytes = cursor.take<std::uint32_t>();
        body.rawHash = cursor.takeArray<16>();
        body.packedHash = cursor.take<std::uint64_t>();
    }
    return frames;
}

} // namespace vardelin::engine
