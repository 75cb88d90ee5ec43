#include "profile/scramble_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace vardelin::profile {
namespace {

using testing::IsEmpty;

TEST(ScrambleText, ShiftIsTheLastDigitOfTheLengthOrItsTenth)
{
    struct Row {
        std::size_t length;
        std::size_t shift;
    };
    const Row rows[] = {{0, 0},    {1, 1},      {9, 9},   {10, 1},   {11, 1},
                        {20, 2},   {25, 5},     {30, 3},  {100, 10}, {130, 13},
                        {300, 30}, {1000, 100}, {999, 9}, {255, 5},  {2560, 256}};
    for (const Row& row : rows)
        EXPECT_EQ(lineShift(row.length), row.shift) << row.length;
}

TEST(ScrambleText, TurnsALineAroundAndMovesItsBytesUp)
{
    EXPECT_EQ(scrambleLine("ab"), "dc");
    EXPECT_EQ(unscrambleLine("dc"), "ab");
    EXPECT_EQ(scrambleLine(""), "");
    EXPECT_EQ(unscrambleLine(""), "");
    EXPECT_EQ(scrambleLine("[Default.vdp]"), "`sgy1woxdihG^");
}

TEST(ScrambleText, KeepsTheLinesOfAFile)
{
    EXPECT_EQ(scrambleText("ab\r\n\r\nxyz\r\n"), "dc\r\n\r\n}|{\r\n");
    EXPECT_EQ(unscrambleText("dc\r\n\r\n}|{\r\n"), "ab\r\n\r\nxyz\r\n");
    EXPECT_EQ(scrambleText(""), "");
    EXPECT_EQ(scrambleText("\r\n"), "\r\n");
}

TEST(ScrambleText, PrintsALineEndBehindALastLineThatHasNone)
{
    EXPECT_EQ(scrambleText("x\r\nab"), "y\r\ndc\r\n");
}

TEST(ScrambleText, TakesALoneCrOrLfAsAByteOfItsLine)
{
    EXPECT_EQ(scrambleText("a\nb\r\n"), "e\rd\r\n");
    EXPECT_EQ(unscrambleText("e\rd\r\n"), "a\nb\r\n");
}

TEST(ScrambleText, TabThatBecomesALfComesBack)
{
    for (const std::size_t length : {1U, 10U, 11U, 21U, 31U}) {
        std::string line(length, 'a');
        line.back() = '\t';
        EXPECT_EQ(scrambleLine(line).front(), '\n') << length;
        EXPECT_EQ(unscrambleText(scrambleText(line + "\r\n")), line + "\r\n") << length;
        EXPECT_THAT(lossyLines(line), IsEmpty()) << length;
    }
}

TEST(ScrambleText, ByteAboveTheStopComesBackAs255LessTheShift)
{
    // The stop at 255 is part of the format: other programs write it, too.
    EXPECT_EQ(scrambleLine("\xFE\xFF"), "\xFF\xFF");
    EXPECT_EQ(unscrambleLine("\xFF\xFF"), "\xFD\xFD");
    EXPECT_EQ(unscrambleLine(scrambleLine("a\xFD")), "a\xFD");
}

TEST(ScrambleText, LongLineHasMoreBytesAtTheStop)
{
    std::string line(1000, 'a');
    line[0] = '\x9B'; // 155, the highest byte that a shift of 100 leaves room for
    EXPECT_EQ(unscrambleLine(scrambleLine(line)), line);
    line[0] = '\x9C';
    EXPECT_EQ(unscrambleLine(scrambleLine(line))[0], '\x9B');
    line.assign(300, 'a');
    line[0] = '\x9C';
    EXPECT_EQ(unscrambleLine(scrambleLine(line)), line);
}

TEST(ScrambleText, UnscramblingDropsAByteThatWouldFallBelowZero)
{
    EXPECT_EQ(unscrambleLine("\x01\x03"), "\x01");
    EXPECT_EQ(unscrambleLine(std::string(5, '\0')), "");
}

TEST(ScrambleText, UnscramblingAPlainFileKeepsItsNumberOfLines)
{
    const std::string plain = "[A.vdp]\r\n{Source files}\r\n\r\n\x01\x01\x01\r\n";
    EXPECT_EQ(fileLines(unscrambleText(plain)).size(), fileLines(plain).size());
}

TEST(ScrambleText, NamesTheLinesThatDoNotComeBack)
{
    struct Row {
        const char* why;
        std::string text;
        std::vector<std::size_t> lines;
    };
    std::string accented = std::string(228, 'a') + "\xE9\xA0"; // shift 23: 0xE9 is one too high
    const Row rows[] = {
        {"ASCII", "ab\r\ncd\r\n", {}},
        {"no text", "", {}},
        {"a byte above 255 less the shift, in lines 2 and 4",
         "ab\r\n\xFE\xFE\r\n\r\n\xFFxx\r\nab\r\n",
         {2, 4}},
        {"a last line without a line end", "ab\r\n\xFF", {2}},
        {"a lead byte in a long line", "x\r\n" + accented + "\r\n", {2}},
        {"a shift above 255 stops every byte", std::string(2560, ' '), {1}},
        {"bytes that another shift would turn into a line end", "aa aaaa\x09\x0C\r\n", {}},
        {"the same bytes with a shift of 1: the line would become two",
         "a\x09\x0C"
         "a aaaaaa\r\n",
         {1}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(lossyLines(row.text), row.lines) << row.why;
}

TEST(ScrambleText, LineNumbersReadAsPartOfASentence)
{
    EXPECT_EQ(lineNumbersText(std::vector<std::size_t>{3}), "line 3");
    EXPECT_EQ(lineNumbersText(std::vector<std::size_t>{3, 14}), "lines 3, 14");
    EXPECT_EQ(lineNumbersText(std::vector<std::size_t>(22, 7)),
              "lines 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7 and 2 more");
}

TEST(ScrambleText, RoundTripIsExactForEveryTextThatIsNotNamedLossy)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> lowByte(0, 127);
    std::uniform_int_distribution<std::size_t> length(0, 400);
    std::size_t exact = 0;
    for (int i = 0; i < 3000; ++i) {
        std::string line(length(random), ' ');
        auto& source = i % 2 == 0 ? byte : lowByte;
        for (char& c : line)
            c = static_cast<char>(source(random));
        const auto lines = fileLines(line);
        const auto lossy = lossyLines(line);
        const std::string back = unscrambleText(scrambleText(line));
        if (!lossy.empty()) {
            EXPECT_NE(back, line + "\r\n");
            continue;
        }
        ++exact;
        std::string expected;
        for (const std::string_view piece : lines)
            expected.append(piece).append("\r\n");
        EXPECT_EQ(back, expected);
    }
    EXPECT_GT(exact, 1000U);
}

} // namespace
} // namespace vardelin::profile
