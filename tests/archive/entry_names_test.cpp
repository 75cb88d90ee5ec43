#include "archive/entry_names.h"

#include "archive/catalog.h"
#include "base/text.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace vardelin::archive {
namespace {

const CopyMeta kMeta{0x1234, 0x18e9f809b00c4a9c, 0x18e9f80efdf32e30, {}};

ContentHash someHash()
{
    ContentHash hash{};
    for (std::size_t i = 0; i < hash.size(); ++i)
        hash[i] = static_cast<std::uint8_t>(17 * i + 3);
    return hash;
}

struct Example {
    const char* source;
    int version;
    Form form;
    const char* name;
    const char* entry; // of a file in C:\dir
};

class Names : public testing::TestWithParam<Example> {};

TEST_P(Names, AreMadeReadBackAndCatalogued)
{
    const Example& example = GetParam();
    CopyMeta meta = kMeta;
    if (example.form == Form::Stored)
        meta.contentHash = someHash();
    const auto name = copyName(example.source, example.version, meta, example.form);
    ASSERT_TRUE(name);
    EXPECT_EQ(*name, example.name);
    const auto back = parseCopyName(*name);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sourceName, example.source);
    EXPECT_EQ(back->version, example.version);
    EXPECT_EQ(back->form, example.form);
    EXPECT_EQ(back->meta, meta);
    EXPECT_EQ(entryOfFile("D:\\s\\W\\", "D:\\s\\W\\C\\dir\\" + *name), example.entry);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Names,
    testing::Values(Example{"report.doc", 0, Form::Compressed,
                            "report.doc_FULL_1234-18e9f809b00c4a9c-18e9f80efdf32e30.zst",
                            "C:\\dir\\report.doc_000"},
                    Example{"report.doc", 7, Form::Compressed,
                            "report.doc_Ver7_1234-18e9f809b00c4a9c-18e9f80efdf32e30.zst",
                            "C:\\dir\\report.doc_007"},
                    Example{"report.doc", 999, Form::Encrypted,
                            "report.doc_Ver999_1234-18e9f809b00c4a9c-18e9f80efdf32e30.vda",
                            "C:\\dir\\report.doc_999"},
                    Example{"noextension", 12, Form::Compressed,
                            "noextension_Ver12_1234-18e9f809b00c4a9c-18e9f80efdf32e30.zst",
                            "C:\\dir\\noextension_012"},
                    // A source whose own name holds a mark keeps well-formed entries.
                    Example{"carefully.txt", 0, Form::Compressed,
                            "carefully.txt_FULL_1234-18e9f809b00c4a9c-18e9f80efdf32e30.zst",
                            "C:\\dir\\carefully.txt_000"},
                    Example{
                        "carefully.txt", 3, Form::Compressed,
                        "carefully.txt_Ver3_1234-18e9f809b00c4a9c-18e9f80efdf32e30_FULL.zst",
                        "C:\\dir\\carefully.txt_Ver3_1234-18e9f809b00c4a9c-18e9f80efdf32e30_000"},
                    Example{"Server_Ver2_x", 4, Form::Compressed,
                            "Server_Ver2_x_Ver4_1234-18e9f809b00c4a9c-18e9f80efdf32e30.zst",
                            "C:\\dir\\Server_Ver2_x_004"},
                    Example{"plain", 1, Form::Stored,
                            "plain_Ver1_1234-18e9f809b00c4a9c-18e9f80efdf32e30-"
                            "031425364758697a8b9cadbecfe0f102",
                            "C:\\dir\\plain_001"}),
    [](const auto& row) { return "case" + std::to_string(row.index); });

TEST(CopyName, LeavesOutItsMetaWhereTheNameWouldBeTooLong)
{
    const std::string source(230, 'n');
    const auto name = copyName(source, 5, kMeta, Form::Compressed);
    ASSERT_TRUE(name);
    EXPECT_EQ(*name, source + "_Ver5_.zst");
    const auto back = parseCopyName(*name);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sourceName, source);
    EXPECT_FALSE(back->meta);
    EXPECT_FALSE(copyName(std::string(250, 'n'), 5, kMeta, Form::Compressed));
    CopyMeta stored = kMeta;
    stored.contentHash = someHash();
    EXPECT_FALSE(copyName(source, 5, stored, Form::Stored)) << "its checksum has no other place";
}

TEST(CopyName, EveryLengthUpToTheLimitReadsBack)
{
    for (std::size_t length = 1; length <= 255; ++length) {
        const std::string source(length, 'q');
        for (const int version : {0, 1, 42, 999}) {
            const auto name = copyName(source, version, kMeta, Form::Compressed);
            if (!name) {
                EXPECT_GT(length, 240U);
                continue;
            }
            EXPECT_LE(name->size(), kLongestName);
            const auto back = parseCopyName(*name);
            ASSERT_TRUE(back) << length;
            EXPECT_EQ(back->sourceName, source);
            EXPECT_EQ(back->version, version);
        }
    }
}

TEST(CopyName, TimesBeforeTheEpochReadBack)
{
    const CopyMeta meta{0, -1, -1'000'000'000'000, {}};
    const auto name = copyName("a", 0, meta, Form::Compressed);
    EXPECT_EQ(parseCopyName(*name)->meta, meta);
}

TEST(CopyName, MetaCanSpellNoMark)
{
    // Hexadecimal digits hold neither `l` nor `r`; whatever the numbers are, the marks stay unique.
    std::uint64_t state = 1;
    for (int i = 0; i < 10'000; ++i) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        const CopyMeta meta{state, static_cast<std::int64_t>(state * 31), 77, {}};
        const std::string tail = copyName("x", 0, meta, Form::Compressed)->substr(7);
        EXPECT_FALSE(base::containsIgnoringCase(tail, "full"));
        EXPECT_FALSE(base::containsIgnoringCase(tail, "ver"));
    }
}

TEST(CopyName, HoldsPasswordTagAndSerialNumber)
{
    struct Row {
        std::uint64_t tag;
        std::uint32_t serial;
        bool hashed;
        const char* name;
    };
    const std::vector<Row> rows{
        {0xa1b2c3d4e5f6, 0, false, "a_Ver3_1-2-3-a1b2c3d4e5f6.zst"},
        {1, 0, false, "a_Ver3_1-2-3-000000000001.zst"},
        {0, 1000, false, "a_Ver3_1-2-3-3e8.zst"},
        {1, 0xffffffff, false, "a_Ver3_1-2-3-000000000001-ffffffff.zst"},
        {0, 4, true, "a_Ver3_1-2-3-031425364758697a8b9cadbecfe0f102-4"},
        {7, 4, true, "a_Ver3_1-2-3-031425364758697a8b9cadbecfe0f102-000000000007-4"},
    };
    for (const Row& row : rows) {
        CopyMeta meta{1, 2, 3};
        meta.passwordTag = row.tag;
        meta.serial = row.serial;
        if (row.hashed)
            meta.contentHash = someHash();
        EXPECT_EQ(copyName("a", 3, meta, row.hashed ? Form::Stored : Form::Compressed), row.name);
        const auto back = parseCopyName(row.name);
        ASSERT_TRUE(back) << row.name;
        EXPECT_EQ(back->meta, meta) << row.name;
    }
}

TEST(ParseCopyName, RefusesWhatThisProgramDidNotMake)
{
    const std::vector<std::string> foreign{
        "",
        "Version.txt",
        "readme",
        "Work.vdp",
        "~0000000000000001.tmp",
        "~folder_1ed-0-0-0.zst",
        "_FULL_1-2-3.zst",
        "a_FULL_1-2.zst",
        "a_FULL_1-2-3-4.zst",
        "a_FULL_1-2-X.zst",
        // A full copy has no serial number, and a version's is above its number.
        "a_Ver4_1-2-3-4.zst",
        "a_Ver4_1-2-3-05.zst",
        "a_Ver4_1-2-3-123456789.zst",
        "a_Ver4_1-2-3-000000000000.zst",
        "a_Ver4_1-2-3-5-000000000001.zst",
        "a_Ver4_1-2-3-5-6.zst",
        "a_Ver4_1-2-3-.zst",
        "a_Ver4_1-2-3-000000000001-031425364758697a8b9cadbecfe0f102",
        "a_FULL_1-2-3",
        "a_Ver0_1-2-3.zst",
        "a_Ver01_1-2-3.zst",
        "a_Ver1000_1-2-3.zst",
        "a_Ver_1-2-3.zst",
        "a_ver1_1-2-3.zst",
        "a_Ver1_1-2-3_FULL.zst",
        "full_Ver1_1-2-3.zst",
        "a_FULL_11112222333344445-2-3.zst",
    };
    for (const std::string& name : foreign)
        EXPECT_FALSE(parseCopyName(name)) << name;
}

TEST(TemporaryName, IsTold)
{
    EXPECT_EQ(temporaryName(255), "~00000000000000ff.tmp");
    EXPECT_TRUE(isTemporaryName(temporaryName(0xffffffffffffffff)));
    for (const char* other : {"~.tmp", "~00000000000000FF.tmp", "00000000000000ff.tmp",
                              "~00000000000000ff.tm", "~00000000000000ff.tmp2"})
        EXPECT_FALSE(isTemporaryName(other)) << other;
}

TEST(FolderRecordName, ReadsBack)
{
    const FolderMeta meta{01777, 1000, 4294967295U, -5};
    EXPECT_EQ(parseFolderRecordName(folderRecordName(meta)), meta);
    EXPECT_FALSE(parseFolderRecordName("~folder_1-2-3.zst"));
    EXPECT_FALSE(parseFolderRecordName("~folder_1-2-3-4-5.zst"));
    EXPECT_FALSE(parseFolderRecordName("~folder_1ffffffff-2-3-4.zst"));
}

} // namespace
} // namespace vardelin::archive
