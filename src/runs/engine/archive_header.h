#pragma once

#include "archive/entry_names.h"
#include "platform/file_system.h"
#include "runs/engine/content_hash.h"
#include "runs/engine/key_slot.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The frames of our own in an archive file. An archive file is
//
//   header frame | zstd frames with checksums | index frame, only behind two or more zstd frames
//
// Header and index are zstd skippable frames, so every zstd decoder passes over them and gives the
// source's bytes. All numbers are little-endian. docs/archive-format.md has the byte tables.
namespace vardelin::engine {

inline constexpr std::uint32_t kHeaderMagic = 0x184D2A56; // a skippable frame's magic number
inline constexpr std::uint32_t kIndexMagic = 0x184D2A57;
inline constexpr std::size_t kFrameHeadBytes = 8; // magic and length of a skippable frame
inline constexpr std::size_t kLargestHeader = 16 * 1024 * 1024; // bytes; more is refused on reading
inline constexpr std::uint16_t kFormatVersion = 1;

// Stored by number: never renumber.
enum class ItemKind : std::uint8_t { File = 0, SymbolicLink = 1, Folder = 2, Settings = 3 };

struct CopyHeader {
    ItemKind kind = ItemKind::File;
    bool sparse = false;
    std::uint64_t sizeBytes = 0; // of the source's content
    std::int64_t modifiedNs = 0; // times in nanoseconds since 1970 UTC
    std::int64_t accessedNs = 0;
    std::int64_t createdNs = 0;
    std::int64_t savedNs = 0; // start of the run that saved it
    std::uint32_t mode = 0;
    std::uint32_t ownerId = 0;
    std::uint32_t groupId = 0;
    std::uint32_t version = 0; // 0 is the full copy
    archive::ContentHash contentHash{};
    std::uint64_t bodyBytes = 0; // of all zstd frames together
    std::uint32_t frameCount = 0;
    // XXH3-64 of the body where it is one frame; with more the index has one for each.
    std::uint64_t bodyHash = 0;
    std::string path;       // of the source, in drive form
    std::string linkTarget; // of a symbolic link, as it stands
    // Names that are one file share this text; empty for a file with one name.
    std::string linkGroup;
    std::vector<platform::ExtendedAttribute> attributes;
    // Of the password that was in force; an encrypted copy has it in front of the sealed header.
    KeySlot slot;
};

// The whole header frame. Its length depends on the texts and attributes alone, so a header written
// first can be written again over itself when size, checksum and body are known.
std::string encodeHeader(const CopyHeader& header);

// The length of the whole header frame, from its first 8 bytes. Raises 57 with the cause where they
// are no header's or the length is beyond kLargestHeader.
std::size_t headerFrameBytes(std::span<const std::byte> head);
// Reads a whole header frame; raises 57 with the cause in the reason for whatever is not as
// written.
CopyHeader decodeHeader(std::span<const std::byte> frame);

// One zstd frame of a large file's body.
struct BodyFrame {
    std::uint32_t rawBytes = 0;
    std::uint32_t packedBytes = 0;
    archive::ContentHash rawHash{};
    std::uint64_t packedHash = 0; // XXH3-64 of the frame's own bytes
};

// The length of the whole index frame of so many frames.
std::size_t indexFrameBytes(std::size_t count);
std::string encodeIndex(const std::vector<BodyFrame>& frames);
std::vector<BodyFrame> decodeIndex(std::span<const std::byte> frame); // raises 57 likewise

// Of packed bytes. A decoder passes over some flipped bits; this tells every one.
std::uint64_t packedHashOf(std::span<const std::byte> bytes);

} // namespace vardelin::engine
