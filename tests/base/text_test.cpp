#include "base/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace vardelin::base {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Trim, TakesBlanksAndNothingElse)
{
    EXPECT_EQ(trim("  a b  "), "a b");
    EXPECT_EQ(trim("\ta\t"), "\ta\t") << "a tab is no blank";
    EXPECT_EQ(trim("   "), "");
    EXPECT_EQ(trimStart("  a "), "a ");
    EXPECT_EQ(trimEnd(" a  "), " a");
}

TEST(CaseRules, TouchAsciiLettersAlone)
{
    EXPECT_EQ(upperAscii("aZ\xc3\xa4"), "AZ\xc3\xa4") << "the bytes of UTF-8 pass through";
    EXPECT_EQ(lowerAscii("AZ\xc3\x84"), "az\xc3\x84");
    EXPECT_TRUE(equalsIgnoringCase("AbC", "aBc"));
    EXPECT_FALSE(equalsIgnoringCase("abc", "abcd"));
    EXPECT_LT(compareIgnoringCase("abc", "ABD"), 0);
    EXPECT_LT(compareIgnoringCase("abc", "ABCD"), 0);
    EXPECT_GT(compareIgnoringCase("\xff", "a"), 0) << "bytes compare without a sign";
    EXPECT_TRUE(containsIgnoringCase("report.VDP", ".vdp"));
    EXPECT_FALSE(containsIgnoringCase("report", ".vdp"));
    EXPECT_TRUE(endsWithIgnoringCase("a.VDP", ".vdp"));
    EXPECT_TRUE(startsWithIgnoringCase("HKEY_X", "hkey"));
}

TEST(Split, GivesOnePieceMoreThanSeparators)
{
    EXPECT_THAT(split("a,b,,c,", ","), ElementsAre("a", "b", "", "c", ""));
    EXPECT_THAT(split("abc", ","), ElementsAre("abc"));
    EXPECT_THAT(split("", ","), IsEmpty());
    EXPECT_THAT(split("x||y|z||", "||"), ElementsAre("x", "y|z", ""));
}

TEST(Pieces, OfATextAroundAMark)
{
    EXPECT_EQ(beforeFirst("my.back.vdp", "."), "my");
    EXPECT_EQ(beforeLast("my.back.vdp", "."), "my.back");
    EXPECT_EQ(afterFirst("k= a=b", "="), " a=b");
    EXPECT_EQ(afterLast("C:\\a\\b", "\\"), "b");
    EXPECT_EQ(beforeFirst("none", "."), "none");
    EXPECT_EQ(beforeLast("none", "."), "none");
    EXPECT_EQ(afterFirst("none", "="), "");
    EXPECT_EQ(afterLast("none", "\\"), "none");
    EXPECT_EQ(join({"a", "b", "c"}, ", "), "a, b, c");
    EXPECT_EQ(replaceAll("a**b***", "**", "*"), "a*b**");
    EXPECT_EQ(reversed("abc"), "cba");
    EXPECT_EQ(padded("ab", 4), "ab  ");
    EXPECT_EQ(padded("abcdef", 4), "abcd");
}

TEST(Val, TakesTheNumberAtTheStart)
{
    const std::vector<std::pair<std::string, double>> rows{
        {"500 ", 500}, {"  12MB", 12}, {"10%", 10},     {"-3.5x", -3.5}, {"1.2.3", 1.2}, {"", 0},
        {"abc", 0},    {"+7", 7},      {"1 234", 1234}, {".5", 0.5},     {"1e5", 1},     {"-", 0},
    };
    for (const auto& [text, value] : rows)
        EXPECT_DOUBLE_EQ(val(text), value) << text;
}

TEST(Round, GoesToTheEvenNeighbourOnATie)
{
    const std::vector<std::tuple<double, int, double>> rows{
        {1.125, 2, 1.12},         {1.375, 2, 1.38},        {2.5, 0, 2}, {3.5, 0, 4}, {-2.5, 0, -2},
        {0.1234567, 6, 0.123457}, {25.0 / 3, 6, 8.333333},
    };
    for (const auto& [value, digits, rounded] : rows)
        EXPECT_DOUBLE_EQ(base::round(value, digits), rounded) << value;
}

TEST(NumberText, HasNoTrailingZerosAndNoExponent)
{
    EXPECT_EQ(numberText(12), "12");
    EXPECT_EQ(numberText(1.12), "1.12");
    EXPECT_EQ(numberText(1.5), "1.5");
    EXPECT_EQ(numberText(-0.25), "-0.25");
    EXPECT_EQ(numberText(0.000001), "0.000001");
    EXPECT_EQ(numberText(1e14), "100000000000000");
}

TEST(ParseUnsigned, TakesDigitsAloneAndNoOverflow)
{
    std::uint64_t value = 99;
    for (const char* bad : {"", " 1", "1 ", "-1", "+1", "1.0", "0x1", "18446744073709551616"})
        EXPECT_FALSE(parseUnsigned(bad, value)) << bad;
    EXPECT_EQ(value, 99U) << "a failure leaves the number as it was";
    EXPECT_TRUE(parseUnsigned("18446744073709551615", value));
    EXPECT_EQ(value, std::numeric_limits<std::uint64_t>::max());
}

TEST(NaturalLess, ComparesRunsOfDigitsAsNumbers)
{
    const std::vector<std::string> ordered{"a_FULL_1", "a_Ver1_x", "a_Ver2_x", "a_Ver12_x",
                                           "B",        "b10",      "b010x",    "c"};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t k = 0; k < ordered.size(); ++k)
            EXPECT_EQ(naturalLess(ordered[i], ordered[k]), i < k)
                << ordered[i] << " " << ordered[k];
    }
}

TEST(NaturalLess, IsAStrictWeakOrderOnAwkwardNames)
{
    const std::vector<std::string> names{"",
                                         "0",
                                         "00",
                                         "01",
                                         "1",
                                         "a",
                                         "A",
                                         "a0",
                                         "a00",
                                         "a1",
                                         "aB",
                                         "Ab",
                                         "a ",
                                         "a.",
                                         "\xff",
                                         "9999999999999999999",
                                         "99999999999999999999"};
    for (const auto& x : names) {
        EXPECT_FALSE(naturalLess(x, x)) << x;
        for (const auto& y : names) {
            EXPECT_FALSE(naturalLess(x, y) && naturalLess(y, x)) << x << " " << y;
            for (const auto& z : names) {
                if (naturalLess(x, y) && naturalLess(y, z)) {
                    EXPECT_TRUE(naturalLess(x, z)) << x << " " << y << " " << z;
                }
            }
        }
    }
}

TEST(MatchesPattern, KnowsStarsAndTheOpenExtension)
{
    const std::vector<std::tuple<const char*, const char*, bool>> rows{
        {"Technical.doc", "Tech*.*", true},
        {"technical", "Tech*.*", true},
        {"atech.doc", "Tech*.*", false},
        {"a.txt", "*.txt", true},
        {"a.txt.bak", "*.txt", false},
        {"abcabd", "*ab*d", true},
        {"readme", "*", true},
        {"", "*", true},
        {"A.B", "a.b", true},
        {"ab", "a*b*c", false},
        {"note", "note.*", true},
        {"note.x", "note.*", true},
        {"noted", "note.*", false},
        {"x*y", "x*y", true},
    };
    for (const auto& [name, pattern, matches] : rows)
        EXPECT_EQ(matchesPattern(name, pattern), matches) << name << " " << pattern;
}

TEST(MatchesPattern, StaysQuickOnPatternsMadeToBeSlow)
{
    const std::string name(20'000, 'a');
    EXPECT_FALSE(matchesPattern(name, "*a*a*a*a*a*a*a*b"));
}

} // namespace
} // namespace vardelin::base
