#include "profile/line_input.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vardelin::profile {
namespace {

struct LinesCase {
    std::string text;
    std::vector<std::string> lines;
    std::size_t highestIndex;
};

// Only CR LF ends a line: scrambled text holds lone CR and LF bytes that are data.
TEST(LineInput, SplitsAtCrLfAlone)
{
    const std::vector<LinesCase> cases{
        {"", {}, 0},
        {"a", {"a"}, 0},
        {"a\r\n", {"a"}, 1},
        {"a\r\nb", {"a", "b"}, 1},
        {"\r\n\r\n", {"", ""}, 2},
        {"a\nb\rc\r\n\n\r", {"a\nb\rc", "\n\r"}, 1},
        {"a\r\r\n", {"a\r"}, 1},
        {std::string("a\0b\r\n", 5), {std::string("a\0b", 3)}, 1},
    };
    for (const LinesCase& expected : cases) {
        LineInput input(expected.text);
        EXPECT_EQ(input.highestIndex(), expected.highestIndex);
        std::vector<std::string> lines;
        while (const auto line = input.next())
            lines.emplace_back(*line);
        EXPECT_EQ(lines, expected.lines);
        EXPECT_TRUE(input.atEnd());
        EXPECT_FALSE(input.next()) << "the end stays the end";
    }
}

TEST(SectionLine, StopsAtTheClosingLineInAnyCaseAndAtTheEnd)
{
    LineInput closed("a\r\n{END OF other DATA}\r\nb\r\n");
    EXPECT_EQ(sectionLine(closed, format::kOtherData), "a");
    EXPECT_FALSE(sectionLine(closed, format::kOtherData));
    EXPECT_EQ(closed.next(), "b");

    LineInput open("{End Of Other Data} ");
    EXPECT_TRUE(sectionLine(open, format::kOtherData)) << "a blank behind it makes another line";
    EXPECT_FALSE(sectionLine(open, format::kOtherData));
}

} // namespace
} // namespace vardelin::profile
