#include "profile/scramble_text.h"

#include "base/text.h"

#include <algorithm>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kHighestCode = 255;
constexpr std::size_t kLinesTold = 20; // more would fill the screen

std::size_t code(char c)
{
    return static_cast<unsigned char>(c);
}

template <typename Transform>
std::string transformText(std::string_view text, Transform transform)
{
    std::string result;
    result.reserve(text.size() + kLineEnd.size());
    for (const std::string_view line : fileLines(text))
        result.append(transform(line)).append(kLineEnd);
    return result;
}

bool comesBack(std::string_view line)
{
    const std::string scrambled = scrambleLine(line);
    return scrambled.find(kLineEnd) == std::string::npos && unscrambleLine(scrambled) == line;
}

} // namespace

std::size_t lineShift(std::size_t length)
{
    const std::size_t shift = length % 10;
    return shift == 0 ? length / 10 : shift;
}

std::string shiftedUp(std::string_view reversedLine)
{
    const std::size_t shift = lineShift(reversedLine.size());
    std::string result(reversedLine);
    for (char& c : result)
        c = static_cast<char>(std::min(code(c) + shift, kHighestCode));
    return result;
}

std::string shiftedDown(std::string_view reversedLine)
{
    const std::size_t shift = lineShift(reversedLine.size());
    std::string result;
    result.reserve(reversedLine.size());
    for (const char c : reversedLine) {
        if (code(c) >= shift)
            result += static_cast<char>(code(c) - shift);
    }
    return result;
}

std::string scrambleLine(std::string_view line)
{
    return shiftedUp(base::reversed(line));
}

std::string unscrambleLine(std::string_view line)
{
    return shiftedDown(base::reversed(line));
}

std::string scrambleText(std::string_view plainText)
{
    return transformText(plainText, scrambleLine);
}

std::string unscrambleText(std::string_view scrambledText)
{
    return transformText(scrambledText, unscrambleLine);
}

std::vector<std::string_view> fileLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find(kLineEnd);
        lines.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            break;
        text.remove_prefix(end + kLineEnd.size());
    }
    return lines;
}

std::vector<std::size_t> lossyLines(std::string_view plainText)
{
    std::vector<std::size_t> lossy;
    std::size_t number = 0;
    for (const std::string_view line : fileLines(plainText)) {
        ++number;
        if (!comesBack(line))
            lossy.push_back(number);
    }
    return lossy;
}

std::string lineNumbersText(std::span<const std::size_t> numbers)
{
    const auto told = numbers.first(std::min(numbers.size(), kLinesTold));
    const std::size_t more = numbers.size() - told.size();
    return fmt::format("{} {}{}", numbers.size() == 1 ? "line" : "lines", fmt::join(told, ", "),
                       more > 0 ? fmt::format(" and {} more", more) : std::string());
}

} // namespace vardelin::profile
