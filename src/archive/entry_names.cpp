#include "archive/entry_names.h"

#include "base/text.h"
#include "platform/name_mapping.h"

#include <charconv>

#include <fmt/format.h>

namespace vardelin::archive {
namespace {

constexpr std::string_view kFullMark = "_FULL";
constexpr std::string_view kVersionMark = "_Ver";
constexpr std::string_view kFolderMark = "~folder_";
constexpr std::size_t kTemporaryDigits = 16;
constexpr std::size_t kHashDigits = 32;
constexpr std::size_t kTagDigits = 12;
constexpr std::size_t kMostSerialDigits = 8;

std::string_view endingOf(Form form)
{
    switch (form) {
    case Form::Compressed:
        return ".zst";
    case Form::Encrypted:
        return ".vda";
    case Form::Stored:
        return "";
    }
    return "";
}

std::string hexOf(const ContentHash& hash)
{
    std::string text;
    for (const std::uint8_t byte : hash)
        text += fmt::format("{:02x}", byte);
    return text;
}

std::string metaText(const CopyMeta& meta, Form form)
{
    std::string text =
        fmt::format("{:x}-{:x}-{:x}", meta.sizeBytes, static_cast<std::uint64_t>(meta.modifiedNs),
                    static_cast<std::uint64_t>(meta.savedNs));
    if (form == Form::Stored && meta.contentHash)
        text += "-" + hexOf(*meta.contentHash);
    if (meta.passwordTag != 0)
        text += fmt::format("-{:012x}", meta.passwordTag);
    if (meta.serial != 0)
        text += fmt::format("-{:x}", meta.serial);
    return text;
}

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
}

// One hexadecimal number in lower case of 1 to 16 digits off the front of `text`.
bool takeHex(std::string_view& text, std::uint64_t& value)
{
    std::size_t n = 0;
    while (n < text.size() && n < 17 && isHexDigit(text[n]))
        ++n;
    if (n == 0 || n > 16)
        return false;
    std::from_chars(text.data(), text.data() + n, value, 16);
    text.remove_prefix(n);
    return true;
}

bool takeDash(std::string_view& text)
{
    if (text.empty() || text.front() != '-')
        return false;
    text.remove_prefix(1);
    return true;
}

std::optional<ContentHash> parseHash(std::string_view text)
{
    ContentHash hash{};
    for (std::size_t i = 0; i < hash.size(); ++i) {
        if (!isHexDigit(text[2 * i]) || !isHexDigit(text[2 * i + 1]))
            return std::nullopt;
        std::from_chars(text.data() + 2 * i, text.data() + 2 * i + 2, hash[i], 16);
    }
    return hash;
}

// One of the parts behind the first three. Each stands once and in its order.
bool takeExtra(std::string_view part, CopyMeta& meta)
{
    if (part.size() == kHashDigits) {
        if (meta.contentHash || meta.passwordTag != 0 || meta.serial != 0)
            return false;
        meta.contentHash = parseHash(part);
        return meta.contentHash.has_value();
    }
    std::uint64_t value = 0;
    const std::size_t digits = part.size();
    const bool leadingZero = part.starts_with('0');
    if (meta.serial != 0 || !takeHex(part, value) || !part.empty() || value == 0)
        return false;
    if (digits == kTagDigits) {
        if (meta.passwordTag != 0)
            return false;
        meta.passwordTag = value;
        return true;
    }
    if (digits > kMostSerialDigits || leadingZero)
        return false;
    meta.serial = static_cast<std::uint32_t>(value);
    return true;
}

std::optional<CopyMeta> parseMeta(std::string_view text)
{
    std::uint64_t size = 0;
    std::uint64_t modified = 0;
    std::uint64_t saved = 0;
    if (!takeHex(text, size) || !takeDash(text) || !takeHex(text, modified) || !takeDash(text) ||
        !takeHex(text, saved))
        return std::nullopt;
    CopyMeta meta{size, static_cast<std::int64_t>(modified), static_cast<std::int64_t>(saved)};
    while (!text.empty()) {
        if (!takeDash(text))
            return std::nullopt;
        const std::string_view part = text.substr(0, text.find('-'));
        text.remove_prefix(part.size());
        if (!takeExtra(part, meta))
            return std::nullopt;
    }
    return meta;
}

// `name` in front of `_Ver<n>` with n from 1 to 999 and no leading zero.
bool splitVersion(std::string_view text, CopyName& result)
{
    const std::size_t at = text.rfind(kVersionMark);
    if (at == std::string_view::npos || at == 0)
        return false;
    const std::string_view digits = text.substr(at + kVersionMark.size());
    std::uint64_t number = 0;
    if (digits.empty() || digits.size() > 3 || digits.front() == '0' ||
        !base::parseUnsigned(digits, number))
        return false;
    result.sourceName = text.substr(0, at);
    result.version = static_cast<int>(number);
    return true;
}

} // namespace

std::optional<std::string> copyName(std::string_view sourceName, int version, const CopyMeta& meta,
                                    Form form)
{
    std::string head(sourceName);
    std::string tail;
    if (version == 0) {
        head.append(kFullMark).append("_");
    } else {
        head += fmt::format("{}{}_", kVersionMark, version);
        if (base::containsIgnoringCase(sourceName, "full"))
            tail = kFullMark;
    }
    tail += endingOf(form);
    std::string whole = head + metaText(meta, form) + tail;
    if (whole.size() <= kLongestName)
        return whole;
    whole = head + tail;
    if (form == Form::Stored || whole.size() > kLongestName)
        return std::nullopt;
    return whole;
}

std::optional<CopyName> parseCopyName(std::string_view fileName)
{
    CopyName result;
    std::string_view text = fileName;
    result.form = Form::Stored;
    for (const Form form : {Form::Compressed, Form::Encrypted}) {
        if (text.ends_with(endingOf(form))) {
            result.form = form;
            text.remove_suffix(endingOf(form).size());
            break;
        }
    }
    bool named = false; // a version of a source whose name holds "full"
    if (text.ends_with(kFullMark)) {
        named = true;
        text.remove_suffix(kFullMark.size());
    }
    const std::size_t at = text.rfind('_');
    if (at == std::string_view::npos)
        return std::nullopt;
    const std::string_view metaPart = text.substr(at + 1);
    text = text.substr(0, at);
    if (!metaPart.empty()) {
        result.meta = parseMeta(metaPart);
        if (!result.meta)
            return std::nullopt;
    }
    if (result.form == Form::Stored && (!result.meta || !result.meta->contentHash))
        return std::nullopt;
    if (!named && text.size() > kFullMark.size() && text.ends_with(kFullMark)) {
        result.sourceName = text.substr(0, text.size() - kFullMark.size());
        result.version = 0;
        return !result.meta || result.meta->serial == 0 ? std::optional(result) : std::nullopt;
    }
    if (!splitVersion(text, result) ||
        named != base::containsIgnoringCase(result.sourceName, "full"))
        return std::nullopt;
    // Renumbering only ever makes a number lower.
    if (result.meta && result.meta->serial != 0 &&
        result.meta->serial <= static_cast<std::uint32_t>(result.version))
        return std::nullopt;
    return result;
}

std::string sourceNameOf(std::string_view parsedSourceName)
{
    if (!parsedSourceName.ends_with('.') && !parsedSourceName.ends_with(' '))
        return std::string(parsedSourceName);
    return platform::nameFromDisk(platform::nameToDisk(parsedSourceName));
}

std::string temporaryName(std::uint64_t serial)
{
    return fmt::format("~{:016x}.tmp", serial);
}

bool isTemporaryName(std::string_view fileName)
{
    if (fileName.size() != kTemporaryDigits + 5 || fileName.front() != '~' ||
        !fileName.ends_with(".tmp"))
        return false;
    for (const char c : fileName.substr(1, kTemporaryDigits)) {
        if (!isHexDigit(c))
            return false;
    }
    return true;
}

std::string folderRecordName(const FolderMeta& meta)
{
    std::string name = fmt::format("{}{:x}-{:x}-{:x}-{:x}", kFolderMark, meta.mode, meta.ownerId,
                                   meta.groupId, static_cast<std::uint64_t>(meta.modifiedNs));
    if (meta.passwordTag != 0)
        name += fmt::format("-{:012x}", meta.passwordTag);
    return name.append(endingOf(meta.form));
}

std::optional<FolderMeta> parseFolderRecordName(std::string_view fileName)
{
    Form form = Form::Compressed;
    if (fileName.ends_with(endingOf(Form::Encrypted)))
        form = Form::Encrypted;
    else if (!fileName.ends_with(endingOf(form)))
        return std::nullopt;
    if (!fileName.starts_with(kFolderMark))
        return std::nullopt;
    std::string_view text = fileName.substr(kFolderMark.size());
    text.remove_suffix(endingOf(form).size());
    std::uint64_t mode = 0;
    std::uint64_t owner = 0;
    std::uint64_t group = 0;
    std::uint64_t modified = 0;
    if (!takeHex(text, mode) || !takeDash(text) || !takeHex(text, owner) || !takeDash(text) ||
        !takeHex(text, group) || !takeDash(text) || !takeHex(text, modified))
        return std::nullopt;
    std::uint64_t tag = 0;
    if (!text.empty()) {
        if (!takeDash(text) || text.size() != kTagDigits || !takeHex(text, tag) || !text.empty() ||
            tag == 0)
            return std::nullopt;
    }
    constexpr std::uint64_t kLargest = 0xffffffff;
    if (mode > kLargest || owner > kLargest || group > kLargest)
        return std::nullopt;
    return FolderMeta{static_cast<std::uint32_t>(mode),
                      static_cast<std::uint32_t>(owner),
                      static_cast<std::uint32_t>(group),
                      static_cast<std::int64_t>(modified),
                      tag,
                      form};
}

} // namespace vardelin::archive
