#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The names of archive files. Everything that tells whether a source has changed stands in them, so
// a folder listing of the archive is all that a run needs to read.
//
//   report.doc_FULL_<meta>.zst          the full copy
//   report.doc_Ver7_<meta>.zst          version 7
//   carefully.txt_Ver7_<meta>_FULL.zst  version 7 of a source whose own name holds "full"
//
// `.zst` is a compressed copy, `.vda` an encrypted one, and no ending a copy that is stored as it
// is. <meta> is hexadecimal numbers in lower case, joined by `-`: the source's size in bytes, its
// modification time and the time of the run that saved it, both in nanoseconds since 1970 UTC as
// 64-bit two's complement. Behind them stand, told apart by their lengths and in this order, as far
// as there are any: for copies stored as they are the 128-bit checksum of the content (32 digits),
// the tag of the password that the copy was saved under (12 digits), and the copy's serial number
// where renumbering gave it a lower version (1 to 8 digits). Digits and `a` to `f` can spell
// neither mark. Where the whole name would be longer than a file system allows, <meta> is empty and
// the file's own header tells the same.
namespace vardelin::archive {

inline constexpr std::size_t kLongestName = 255; // bytes, on every file system we know
inline constexpr int kHighestVersion = 999;      // a version tag has three digits
inline constexpr std::uint64_t kLargestPasswordTag = 0xffff'ffff'ffff;

enum class Form : std::uint8_t { Compressed, Encrypted, Stored };

using ContentHash = std::array<std::uint8_t, 16>; // XXH3-128, canonical (big-endian) bytes

struct CopyMeta {
    std::uint64_t sizeBytes = 0;
    std::int64_t modifiedNs = 0;
    std::int64_t savedNs = 0;
    std::optional<ContentHash> contentHash = std::nullopt;
    // Of the password that was in force: 48 bits that only tell one from another. 0 for none.
    std::uint64_t passwordTag = 0;
    // The number that the copy was saved under, which its header holds, where the version in its
    // name is a lower one by now. 0: the version itself.
    std::uint32_t serial = 0;

    friend bool operator==(const CopyMeta&, const CopyMeta&) = default;
};

struct CopyName {
    std::string_view sourceName; // a view into the text that was parsed
    int version = 0;             // 0 is the full copy
    std::optional<CopyMeta> meta;
    Form form = Form::Compressed;
};

// The name of an archive file, or nullopt where even the name without <meta> exceeds 255 bytes. A
// stored copy's name must hold its meta, so for Form::Stored a name too long for that is nullopt
// too.
std::optional<std::string> copyName(std::string_view sourceName, int version, const CopyMeta& meta,
                                    Form form);

// Reads a name back; nullopt for a name that this program did not make.
std::optional<CopyName> parseCopyName(std::string_view fileName);

// The source's name as the file system port gives it. A blank or dot at the end of a name is mapped
// there, and in front of a mark it is not at the end: `dot._FULL_...` is the copy of a source whose
// own name ends in the mapped dot. Other names come back as they are.
std::string sourceNameOf(std::string_view parsedSourceName);

// Files that are still being written, `~` + 16 hexadecimal digits + `.tmp`. They carry no mark and
// are cleared away by the next run.
std::string temporaryName(std::uint64_t serial);
bool isTemporaryName(std::string_view fileName);

// The record of a folder that is empty or whose rights are not the usual ones:
// `~folder_<meta>.zst`, or `.vda` where it is encrypted, with <meta> its mode, owner, group and
// modification time in hexadecimal and, where a password was in force, its tag in 12 digits. It
// carries no mark.
struct FolderMeta {
    std::uint32_t mode = 0;
    std::uint32_t ownerId = 0;
    std::uint32_t groupId = 0;
    std::int64_t modifiedNs = 0;
    std::uint64_t passwordTag = 0; // 0 for none
    Form form = Form::Compressed;  // or Encrypted

    friend bool operator==(const FolderMeta&, const FolderMeta&) = default;
};
std::string folderRecordName(const FolderMeta& meta);
std::optional<FolderMeta> parseFolderRecordName(std::string_view fileName);

} // namespace vardelin::archive
