#include "archive/line_files.h"

#include "base/runtime_error.h"
#include "support/trace_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vardelin::archive {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kPath = "C:\\App\\lines.txt";

struct Lines : test::TraceRig {
    std::vector<std::string> read()
    {
        LineReader reader(disk, kPath);
        std::vector<std::string> lines;
        while (const auto line = reader.next())
            lines.emplace_back(*line);
        EXPECT_FALSE(reader.next()); // the end stays the end
        return lines;
    }
    std::vector<std::string> read(std::string_view text)
    {
        putFile(kPath, text);
        return read();
    }
};

TEST(LineReader, TakesBothKindsOfLineEnds)
{
    Lines lines;
    EXPECT_THAT(lines.read(""), IsEmpty());
    EXPECT_THAT(lines.read("a"), ElementsAre("a"));
    EXPECT_THAT(lines.read("a\r\n"), ElementsAre("a"));
    EXPECT_THAT(lines.read("a\nb\r\n\r\nc\rd"), ElementsAre("a", "b", "", "c\rd"));
    EXPECT_THAT(lines.read("\n\n"), ElementsAre("", ""));
}

// Blocks end anywhere: within a line, between CR and LF, and a line can be longer than one.
TEST(LineFiles, GiveBackLinesOfEveryLength)
{
    Lines lines;
    std::vector<std::string> written;
    for (std::size_t length : {0U, 65'533U, 65'534U, 65'535U, 65'536U, 1U, 200'000U, 3U})
        written.emplace_back(length, static_cast<char>('a' + written.size()));
    for (std::size_t i = 0; i < 10'000; ++i)
        written.push_back("line " + std::to_string(i));
    LineWriter writer(lines.disk, kPath);
    for (const std::string& line : written)
        writer.write(line);
    writer.flushAndClose();
    EXPECT_EQ(lines.read(), written);
}

TEST(LineFiles, RaiseWhatTheDiskRaises)
{
    Lines lines;
    EXPECT_THROW(LineReader(lines.disk, kPath), base::RuntimeError);
    EXPECT_THROW(LineWriter(lines.disk, "C:\\Nowhere\\x.txt"), base::RuntimeError);
}

} // namespace
} // namespace vardelin::archive
