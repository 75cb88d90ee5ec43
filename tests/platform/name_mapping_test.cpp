#include "platform/name_mapping.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::platform {
namespace {

struct Row {
    std::string disk;
    std::string name;
};

TEST(NameMapping, MapsWhatAPathCannotHold)
{
    const std::vector<Row> rows{
        {"plain name.txt", "plain name.txt"},
        {"", ""},
        {"a\\b", "a\xEF\x81\x9C"
                 "b"},
        {":", "\xEF\x80\xBA"},
        {"*?\"<>|", "\xEF\x80\xAA\xEF\x80\xBF\xEF\x80\xA2\xEF\x80\xBC\xEF\x80\xBE\xEF\x81\xBC"},
        {"line\nend", "line\xEF\x80\x8A"
                      "end"},
        {"ends in blank ", "ends in blank\xEF\x80\xA0"},
        {"two  ", "two \xEF\x80\xA0"},
        {"ends in dot.", "ends in dot\xEF\x80\xAE"},
        {".", "\xEF\x80\xAE"},
        {".hidden", ".hidden"},
        {"\x7F", "\x7F"},
        // What is mapped already, or is the escape itself, gets the escape in front.
        {"\xEF\x80\xBA", "\xEF\x83\xBF\xEF\x80\xBA"},
        {"\xEF\x83\xBF", "\xEF\x83\xBF\xEF\x83\xBF"},
        {"\xEF\x80\xA0 in the middle", "\xEF\x83\xBF\xEF\x80\xA0 in the middle"},
        // Neighbours in the private area are nobody's, and neither are U+F000 and U+F02F.
        {"\xEF\x80\x80\xEF\x80\xAF\xEF\x80\xA1", "\xEF\x80\x80\xEF\x80\xAF\xEF\x80\xA1"},
        {"\xEF\x82\x80", "\xEF\x82\x80"},
        {"\xEF\x80", "\xEF\x80"},
        {"\xEF", "\xEF"},
        {"\xEF\xBB\xBF", "\xEF\xBB\xBF"},
        {"\xFF\xFE\x80", "\xFF\xFE\x80"},
        // A broken sequence in front of a mapped byte does not swallow it.
        {"\xEF\x80:", "\xEF\x80\xEF\x80\xBA"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(nameFromDisk(row.disk), row.name) << row.disk;
        EXPECT_EQ(nameToDisk(row.name), row.disk) << row.disk;
    }
}

TEST(NameMapping, BringsEverySingleByteAndPairOfBytesBack)
{
    for (int a = 1; a < 256; ++a) {
        const std::string one(1, static_cast<char>(a));
        EXPECT_EQ(nameToDisk(nameFromDisk(one)), one) << a;
        for (int b = 1; b < 256; ++b) {
            const std::string two = one + static_cast<char>(b);
            ASSERT_EQ(nameToDisk(nameFromDisk(two)), two) << a << ' ' << b;
        }
    }
}

bool holdsForbidden(const std::string& name)
{
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 32 || std::string_view("\\:*?\"<>|").find(c) != std::string_view::npos)
            return true;
    }
    return !name.empty() && (name.back() == ' ' || name.back() == '.');
}

TEST(NameMapping, BringsEveryByteStringBack)
{
    EXPECT_TRUE(rc::check([](const std::string& any) {
        std::string disk = any;
        std::erase(disk, '\0');
        const std::string name = nameFromDisk(disk);
        RC_ASSERT(nameToDisk(name) == disk);
        RC_ASSERT(!holdsForbidden(name));
    }));
}

// Random text rarely meets the mapped characters: these pieces do nothing else.
TEST(NameMapping, BringsEveryMixOfMappedCharactersBackAndKeepsNamesApart)
{
    const std::vector<std::string> pieces{":",
                                          ".",
                                          " ",
                                          "a",
                                          "\x01",
                                          "\xEF",
                                          "\x80",
                                          "\x83",
                                          "\xBF",
                                          "\xEF\x80",
                                          "\xEF\x80\xBA",
                                          "\xEF\x83\xBF",
                                          "\xEF\x80\xA0",
                                          "\xEF\x80\xAE",
                                          "\xEF\x83"};
    std::mt19937 random(20261121);
    std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
    std::map<std::string, std::string> seen;
    for (int round = 0; round < 50'000; ++round) {
        std::string disk;
        for (std::size_t n = pick(random) % 7; n > 0; --n)
            disk += pieces[pick(random)];
        const std::string name = nameFromDisk(disk);
        ASSERT_EQ(nameToDisk(name), disk);
        ASSERT_FALSE(holdsForbidden(name));
        ASSERT_EQ(seen.emplace(name, disk).first->second, disk);
    }
}

} // namespace
} // namespace vardelin::platform
