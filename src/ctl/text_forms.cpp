#include "ctl/text_forms.h"

#include "base/text.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace vardelin::ctl {
namespace {

// Length of the valid UTF-8 sequence at the start of `text`, 0 where there is none. Overlong forms,
// surrogates and code points above U+10FFFF are none.
std::size_t sequenceLength(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto follows = [&](std::size_t i) {
        return i < text.size() && (byte(i) & 0xC0U) == 0x80U;
    };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return follows(1) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        if (!follows(1) || !follows(2) || (first == 0xE0 && byte(1) < 0xA0) ||
            (first == 0xED && byte(1) > 0x9F))
            return 0;
        return 3;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        if (!follows(1) || !follows(2) || !follows(3) || (first == 0xF0 && byte(1) < 0x90) ||
            (first == 0xF4 && byte(1) > 0x8F))
            return 0;
        return 4;
    }
    return 0;
}

template <typename Valid, typename Invalid>
void eachSequence(std::string_view bytes, Valid valid, Invalid invalid)
{
    while (!bytes.empty()) {
        const std::size_t length = sequenceLength(bytes);
        if (length == 0)
            invalid(static_cast<unsigned char>(bytes.front()));
        else
            valid(bytes.substr(0, length));
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
}

// Bytes of `count` code points from the start.
std::size_t bytesOf(std::string_view utf8, std::size_t count)
{
    std::size_t at = 0;
    for (; count > 0 && at < utf8.size(); --count)
        at += std::max<std::size_t>(sequenceLength(utf8.substr(at)), 1);
    return at;
}

} // namespace

std::string visibleText(std::string_view bytes)
{
    std::string result;
    eachSequence(
        bytes,
        [&](std::string_view sequence) {
            const auto code = static_cast<unsigned char>(sequence.front());
            if (code < 0x20 || code == 0x7F)
                result += fmt::format("\\x{:02X}", code);
            else
                result += sequence;
        },
        [&](unsigned char byte) { result += fmt::format("\\x{:02X}", byte); });
    return result;
}

std::string replacedText(std::string_view bytes)
{
    std::string result;
    eachSequence(
        bytes, [&](std::string_view sequence) { result += sequence; },
        [&](unsigned char) { result += "\xEF\xBF\xBD"; });
    return result;
}

bool isUtf8(std::string_view bytes)
{
    bool valid = true;
    eachSequence(
        bytes, [](std::string_view) {}, [&](unsigned char) { valid = false; });
    return valid;
}

std::size_t columnsOf(std::string_view utf8)
{
    std::size_t columns = 0;
    eachSequence(
        utf8, [&](std::string_view) { ++columns; }, [&](unsigned char) { ++columns; });
    return columns;
}

std::string elided(std::string_view utf8, std::size_t columns)
{
    const std::size_t all = columnsOf(utf8);
    if (all <= columns)
        return std::string(utf8);
    if (columns < 2)
        return std::string(columns, '.');
    // The end of a path says more than its beginning.
    const std::size_t front = (columns - 1) / 3;
    const std::size_t back = columns - 1 - front;
    return std::string(utf8.substr(0, bytesOf(utf8, front))) + "\xE2\x80\xA6" +
           std::string(utf8.substr(bytesOf(utf8, all - back)));
}

std::string sizeText(std::uint64_t bytes)
{
    constexpr std::array<std::string_view, 6> kUnits{"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    if (bytes < 1024)
        return fmt::format("{} B", bytes);
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (value /= 1024; value >= 1023.95 && unit + 1 < kUnits.size(); ++unit)
        value /= 1024; // what would be written as 1024.0 is 1.0 of the next unit
    return fmt::format("{:.1f} {}", value, kUnits[unit]);
}

std::string countText(std::uint64_t count, std::string_view one, std::string_view many)
{
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string Table::text() const
{
    std::vector<std::size_t> widths(m_columns.size(), 0);
    for (const auto& row : m_rows) {
        for (std::size_t i = 0; i < row.size() && i < widths.size(); ++i)
            widths[i] = std::max(widths[i], columnsOf(row[i]));
    }
    std::string result;
    for (const auto& row : m_rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size() && i < widths.size(); ++i) {
            const std::string blanks(widths[i] - columnsOf(row[i]), ' ');
            if (i > 0)
                line += "  ";
            line += m_columns[i] == Align::Right ? blanks + row[i] : row[i] + blanks;
        }
        result += base::trimEnd(line);
        result += '\n';
    }
    return result;
}

bool matchesGlob(std::string_view text, std::string_view pattern, bool caseSensitive)
{
    if (!caseSensitive)
        return matchesGlob(base::upperAscii(text), base::upperAscii(pattern), true);
    // The newest `*` takes one byte more at each dead end; older ones never need to.
    std::size_t at = 0;
    std::size_t next = 0;
    std::size_t star = std::string_view::npos;
    std::size_t taken = 0;
    while (at < text.size()) {
        if (next < pattern.size() && pattern[next] == '*') {
            star = next++;
            taken = at;
        } else if (next < pattern.size() && pattern[next] == '?') {
            at += std::max<std::size_t>(sequenceLength(text.substr(at)), 1);
            ++next;
        } else if (next < pattern.size() && pattern[next] == text[at]) {
            ++at;
            ++next;
        } else if (star != std::string_view::npos) {
            next = star + 1;
            at = ++taken;
        } else {
            return false;
        }
    }
    return pattern.substr(next).find_first_not_of('*') == std::string_view::npos;
}

} // namespace vardelin::ctl
