#include "ctl/text_forms.h"

#include "ctl/output.h"
#include "ctl/paths.h"
#include "ctl/progress.h"
#include "platform/memory/memory_clock.h"
#include "platform/memory/memory_file_system.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace vardelin::test {
namespace {

using namespace ctl;

TEST(TextForms, ShowWhatATerminalMustNotGet)
{
    EXPECT_EQ(visibleText("Gr\xC3\xBC\xC3\x9F"
                          "e"),
              "Gr\xC3\xBC\xC3\x9F"
              "e");
    EXPECT_EQ(visibleText("a\xE9"
                          "b\n\x1B[2J\x7F"),
              "a\\xE9b\\x0A\\x1B[2J\\x7F");
    EXPECT_EQ(visibleText("\xC0\x80"), "\\xC0\\x80");          // overlong
    EXPECT_EQ(visibleText("\xED\xA0\x80"), "\\xED\\xA0\\x80"); // half of a surrogate pair
    EXPECT_EQ(visibleText("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80");
    EXPECT_EQ(replacedText("a\xE9"), "a\xEF\xBF\xBD");
    EXPECT_FALSE(isUtf8("a\xE9"));
}

TEST(TextForms, WriteSizesWithTheirUnit)
{
    const std::pair<std::uint64_t, const char*> cases[] = {
        {0, "0 B"},           {1023, "1023 B"},     {1024, "1.0 KiB"},       {1536, "1.5 KiB"},
        {1048575, "1.0 MiB"}, {1048576, "1.0 MiB"}, {5ULL << 30, "5.0 GiB"}, {~0ULL, "16.0 EiB"},
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(sizeText(bytes), text) << bytes;
}

TEST(TextForms, KeepTheEndOfANameThatIsTooLong)
{
    EXPECT_EQ(elided("short", 5), "short");
    EXPECT_EQ(elided("0123456789abcdef", 10), "012\xE2\x80\xA6"
                                              "abcdef");
    EXPECT_EQ(columnsOf(elided("\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4", 4)), 4U);
    EXPECT_TRUE(isUtf8(elided("\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4", 4)));
}

TEST(TextForms, AlignColumnsByCharactersAndLeaveNoBlanksAtTheEnd)
{
    Table table({Align::Left, Align::Right, Align::Left});
    table.add({"Name", "Size", "Note"});
    table.add({"\xC3\xA4", "1", ""});
    EXPECT_EQ(table.text(), "Name  Size  Note\n\xC3\xA4        1\n");
}

TEST(TextForms, MatchPatterns)
{
    struct Case {
        const char* text;
        const char* pattern;
        bool matches;
    };
    for (const Case& c : {Case{"letter.txt", "*", true}, Case{"letter.txt", "*.txt", true},
                          Case{"letter.txt", "l*r*t", true}, Case{"letter.txt", "letter", false},
                          Case{"letter.txt", "?etter.txt", true}, Case{"\xC3\xA4", "?", true},
                          Case{"aab", "*ab", true}, Case{"", "*", true}, Case{"", "?", false},
                          Case{"Letter", "letter", false}})
        EXPECT_EQ(matchesGlob(c.text, c.pattern, true), c.matches) << c.text << " " << c.pattern;
    EXPECT_TRUE(matchesGlob("Letter", "lETTER", false));
}

TEST(Json, KeepsTheBytesOfANameThatIsNoText)
{
    Json object;
    putText(object, "path", "a\xE9");
    putText(object, "entry", "plain");
    EXPECT_EQ(object.dump(), "{\"path\":\"a\xEF\xBF\xBD\",\"pathBytes\":\"61e9\","
                             "\"entry\":\"plain\"}");
}

TEST(Json, WritesInstantsWithAllTheirDigits)
{
    Json object;
    putInstant(object, "t", 1'057'223'103'123'456'789);
    putInstant(object, "u", -1);
    EXPECT_EQ(object["t"], "2003-07-03T09:05:03.123456789Z");
    EXPECT_EQ(object["u"], "1969-12-31T23:59:59.999999999Z");
}

TEST(Paths, AreTakenInEitherForm)
{
    platform::MemoryFileSystem files;
    struct Case {
        const char* typed;
        const char* path;
    };
    for (const Case& c :
         {Case{"letters", "C:\\home\\letters"}, Case{"./a/../b//c/", "C:\\home\\b\\c"},
          Case{"/", "C:\\"}, Case{"/../x", "C:\\x"}, Case{"/mnt/d/x", "D:\\x"}, Case{"d:", "D:\\"},
          Case{"c:\\a\\..\\b\\", "C:\\b"}, Case{"C:/a/b", "C:\\a\\b"}, Case{"..", "C:\\"}})
        EXPECT_EQ(drivePath(files, "/home", c.typed), c.path) << c.typed;
    EXPECT_EQ(files.toNative(drivePath(files, "/home", "a\\b:c")), "/home/a\\b:c");
    EXPECT_THROW(drivePath(files, "/home", ""), base::RuntimeError);
}

TEST(ProgressLine, IsDrawnTenTimesASecondAtMostAndFitsTheTerminal)
{
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    Terminal terminal{in, out, err};
    terminal.errIsTerminal = true;
    terminal.width = [] { return 40; };
    platform::MemoryClock clock;
    ProgressLine line(terminal, clock, true);
    EXPECT_TRUE(line.isDue());
    clock.advance(std::chrono::milliseconds(99));
    EXPECT_FALSE(line.isDue());
    clock.advance(std::chrono::milliseconds(1));
    EXPECT_TRUE(line.isDue());
    line.draw(" 50 %  ", "C:\\a very long folder name\\a very long file name.txt");
    const std::string drawn = err.str();
    ASSERT_TRUE(drawn.starts_with("\r\x1B[K"));
    EXPECT_EQ(columnsOf(drawn.substr(4)), 39U);
    EXPECT_TRUE(drawn.ends_with("file name.txt"));
    line.clear();
    EXPECT_TRUE(err.str().ends_with("\r\x1B[K"));
}

TEST(ProgressLine, IsNotThereWithoutATerminal)
{
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    Terminal terminal{in, out, err};
    platform::MemoryClock clock;
    ProgressLine line(terminal, clock, true);
    EXPECT_FALSE(line.isDue());
    line.draw("x", "y");
    EXPECT_EQ(err.str(), "");
}

} // namespace
} // namespace vardelin::test
