#include "platform/name_mapping.h"

#include <array>
#include <cstddef>

namespace vardelin::platform {
namespace {

// U+F000 plus a code below 128 in UTF-8: EF, 80 or 81, 80 to BF. The escape U+F0FF is EF 83 BF.
constexpr unsigned char kLead = 0xEF;
constexpr std::string_view kEscape = "\xEF\x83\xBF";
constexpr std::size_t kMappedBytes = 3;

constexpr std::array<bool, 256> makeForbidden()
{
    std::array<bool, 256> table{};
    for (std::size_t code = 1; code < 32; ++code)
        table[code] = true;
    for (const char c : std::string_view("\\:*?\"<>|"))
        table[static_cast<unsigned char>(c)] = true;
    return table;
}

constexpr std::array<bool, 256> kForbidden = makeForbidden();

unsigned char byteAt(std::string_view text, std::size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

// The code that stands at `at` in its mapped form; -1 where none does.
int mappedCodeAt(std::string_view text, std::size_t at)
{
    if (text.size() - at < kMappedBytes || byteAt(text, at) != kLead)
        return -1;
    const int high = byteAt(text, at + 1) - 0x80;
    const int low = byteAt(text, at + 2) - 0x80;
    if (high < 0 || high > 1 || low < 0 || low > 0x3F)
        return -1;
    const int code = high * 0x40 + low;
    const bool inUse = kForbidden[static_cast<std::size_t>(code)] || code == ' ' || code == '.';
    return inUse ? code : -1;
}

bool isEscapeAt(std::string_view text, std::size_t at)
{
    return text.substr(at, kMappedBytes) == kEscape;
}

void appendMapped(std::string& out, unsigned char code)
{
    out += static_cast<char>(kLead);
    out += static_cast<char>(0x80 + (code >> 6));
    out += static_cast<char>(0x80 + (code & 0x3F));
}

bool needsMapping(std::string_view diskName)
{
    if (diskName.empty())
        return false;
    for (const char c : diskName) {
        const auto byte = static_cast<unsigned char>(c);
        if (kForbidden[byte] || byte == kLead)
            return true;
    }
    return diskName.back() == ' ' || diskName.back() == '.';
}

} // namespace

std::string nameFromDisk(std::string_view diskName)
{
    if (!needsMapping(diskName))
        return std::string(diskName);
    std::string result;
    result.reserve(diskName.size() + 4 * kMappedBytes);
    for (std::size_t at = 0; at < diskName.size();) {
        if (isEscapeAt(diskName, at) || mappedCodeAt(diskName, at) >= 0) {
            result += kEscape;
            result += diskName.substr(at, kMappedBytes);
            at += kMappedBytes;
            continue;
        }
        const unsigned char byte = byteAt(diskName, at);
        const bool last = at + 1 == diskName.size();
        if (kForbidden[byte] || (last && (byte == ' ' || byte == '.')))
            appendMapped(result, byte);
        else
            result += diskName[at];
        ++at;
    }
    return result;
}

std::string nameToDisk(std::string_view name)
{
    if (name.find(static_cast<char>(kLead)) == std::string_view::npos)
        return std::string(name);
    std::string result;
    result.reserve(name.size());
    for (std::size_t at = 0; at < name.size();) {
        const std::size_t next = at + kMappedBytes;
        if (isEscapeAt(name, at) && next <= name.size() &&
            (isEscapeAt(name, next) || mappedCodeAt(name, next) >= 0)) {
            result += name.substr(next, kMappedBytes);
            at = next + kMappedBytes;
        } else if (const int code = mappedCodeAt(name, at); code >= 0) {
            result += static_cast<char>(code);
            at = next;
        } else {
            result += name[at++];
        }
    }
    return result;
}

} // namespace vardelin::platform
