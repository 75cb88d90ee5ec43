#include "base/text.h"

#include <algorithm>
#include <cfenv>
#include <charconv>
#include <cmath>

#include <fmt/format.h>

namespace vardelin::base {
namespace {

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::string_view digitRun(std::string_view text)
{
    std::size_t n = 0;
    while (n < text.size() && isDigit(text[n]))
        ++n;
    return text.substr(0, n);
}

// Compares two runs of digits by value; equal values compare as 0 whatever their leading zeros.
int compareNumbers(std::string_view a, std::string_view b)
{
    a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
    b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}

bool matchesFrom(std::string_view name, std::string_view pattern)
{
    // The usual two-cursor walk: on a mismatch go back to the last star and let it take one more
    // byte.
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos;
    std::size_t starName = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            starName = n;
        } else if (p < pattern.size() && upper(pattern[p]) == upper(name[n])) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

} // namespace

std::string_view trimStart(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text;
}

std::string_view trimEnd(std::string_view text)
{
    const std::size_t last = text.find_last_not_of(' ');
    return last == std::string_view::npos ? std::string_view{} : text.substr(0, last + 1);
}

std::string_view trim(std::string_view text)
{
    return trimEnd(trimStart(text));
}

std::string upperAscii(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

std::string lowerAscii(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

int compareIgnoringCase(std::string_view a, std::string_view b)
{
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        const auto x = static_cast<unsigned char>(upper(a[i]));
        const auto y = static_cast<unsigned char>(upper(b[i]));
        if (x != y)
            return x < y ? -1 : 1;
    }
    if (a.size() == b.size())
        return 0;
    return a.size() < b.size() ? -1 : 1;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && compareIgnoringCase(a, b) == 0;
}

bool containsIgnoringCase(std::string_view text, std::string_view part)
{
    const auto same = [](char x, char y) { return upper(x) == upper(y); };
    return part.empty() ||
           std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

bool endsWithIgnoringCase(std::string_view text, std::string_view tail)
{
    return text.size() >= tail.size() &&
           equalsIgnoringCase(text.substr(text.size() - tail.size()), tail);
}

bool startsWithIgnoringCase(std::string_view text, std::string_view head)
{
    return text.size() >= head.size() && equalsIgnoringCase(text.substr(0, head.size()), head);
}

std::vector<std::string_view> split(std::string_view text, std::string_view separator)
{
    std::vector<std::string_view> pieces;
    if (text.empty())
        return pieces;
    std::size_t from = 0;
    for (;;) {
        const std::size_t at = text.find(separator, from);
        if (at == std::string_view::npos)
            break;
        pieces.push_back(text.substr(from, at - from));
        from = at + separator.size();
    }
    pieces.push_back(text.substr(from));
    return pieces;
}

std::string join(const std::vector<std::string>& pieces, std::string_view separator)
{
    std::string result;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0)
            result += separator;
        result += pieces[i];
    }
    return result;
}

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to)
{
    std::string result;
    std::size_t at = 0;
    for (;;) {
        const std::size_t hit = from.empty() ? std::string_view::npos : text.find(from, at);
        if (hit == std::string_view::npos)
            return result.append(text.substr(at));
        result.append(text.substr(at, hit - at)).append(to);
        at = hit + from.size();
    }
}

std::string_view beforeFirst(std::string_view text, std::string_view mark)
{
    return text.substr(0, text.find(mark));
}

std::string_view afterFirst(std::string_view text, std::string_view mark)
{
    const std::size_t at = text.find(mark);
    return at == std::string_view::npos ? std::string_view{} : text.substr(at + mark.size());
}

std::string_view beforeLast(std::string_view text, std::string_view mark)
{
    return text.substr(0, text.rfind(mark));
}

std::string_view afterLast(std::string_view text, std::string_view mark)
{
    const std::size_t at = text.rfind(mark);
    return at == std::string_view::npos ? text : text.substr(at + mark.size());
}

std::string reversed(std::string_view text)
{
    return {text.rbegin(), text.rend()};
}

std::string padded(std::string_view text, std::size_t width)
{
    std::string result(text.substr(0, width));
    result.resize(width, ' ');
    return result;
}

double val(std::string_view text)
{
    std::string digits;
    bool dot = false;
    for (const char c : text) {
        if (c == ' ')
            continue;
        const bool sign = (c == '-' || c == '+') && digits.empty();
        const bool firstDot = c == '.' && !dot;
        if (!sign && !firstDot && !isDigit(c))
            break;
        dot = dot || firstDot;
        digits += c;
    }
    std::string_view number = digits;
    if (!number.empty() && number.front() == '+')
        number.remove_prefix(1);
    double value = 0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return value;
}

double round(double value, int digits)
{
    // The nearest decimal text decides ties the way a person reading the number would: 0.125 is a
    // tie and goes to 0.12, while 1.005 lies below one and stays 1.
    const double scale = std::pow(10.0, digits);
    const double scaled = value * scale;
    const double floor = std::floor(scaled);
    const double part = scaled - floor;
    double whole = floor;
    if (part > 0.5 || (part == 0.5 && std::fmod(floor, 2.0) != 0.0))
        whole = floor + 1;
    return whole / scale;
}

std::string numberText(double value)
{
    if (value == std::floor(value) && std::fabs(value) < 1e15)
        return fmt::format("{}", static_cast<long long>(value));
    std::string text = fmt::format("{:.15f}", value);
    std::string shortest = fmt::format("{}", value);
    if (shortest.find('e') == std::string::npos)
        return shortest;
    text.erase(text.find_last_not_of('0') + 1);
    return text;
}

bool parseUnsigned(std::string_view text, std::uint64_t& out)
{
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc{} || rest != end)
        return false;
    out = value;
    return true;
}

bool naturalLess(std::string_view a, std::string_view b)
{
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            const std::string_view x = digitRun(a.substr(i));
            const std::string_view y = digitRun(b.substr(j));
            const int order = compareNumbers(x, y);
            if (order != 0)
                return order < 0;
            i += x.size();
            j += y.size();
            continue;
        }
        const auto x = static_cast<unsigned char>(upper(a[i++]));
        const auto y = static_cast<unsigned char>(upper(b[j++]));
        if (x != y)
            return x < y;
    }
    if ((i < a.size()) != (j < b.size()))
        return i >= a.size();
    return a < b;
}

bool matchesPattern(std::string_view name, std::string_view pattern)
{
    if (matchesFrom(name, pattern))
        return true;
    const bool anyExtension = pattern.size() >= 2 && pattern.substr(pattern.size() - 2) == ".*";
    return anyExtension && name.find('.') == std::string_view::npos &&
           matchesFrom(name, pattern.substr(0, pattern.size() - 2));
}

} // namespace vardelin::base
