#include "runs/engine/archive_header.h"
#include "runs/engine/chunker.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/copy_writer.h"

#include "engine/plain_reader.h"

#include "base/runtime_error.h"
#include "platform/linux/linux_file_system.h"
#include "platform/memory/memory_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using platform::OpenMode;

std::string noise(std::size_t bytes, std::uint64_t seed = 1)
{
    std::string text;
    text.reserve(bytes);
    std::uint64_t state = seed;
    while (text.size() < bytes) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        // Half of the bytes are noise, so that a frame gets smaller and still holds something.
        text += static_cast<char>(state >> 56U);
        text += static_cast<char>('a' + (text.size() / 64) % 16);
    }
    text.resize(bytes);
    return text;
}

CopyHeader someHeader()
{
    CopyHeader header;
    header.modifiedNs = -3;
    header.accessedNs = 5;
    header.createdNs = 7;
    header.savedNs = 11;
    header.mode = 0755;
    header.ownerId = 1000;
    header.groupId = 100;
    header.version = 13;
    header.path = "C:\\dir\\file";
    header.linkTarget = "../elsewhere";
    header.linkGroup = "8:1f";
    header.attributes = {{"user.a", std::string("\0\xff", 2)}, {"user.b", ""}};
    return header;
}

class ArchiveFile : public testing::Test {
protected:
    ArchiveFile() : folder(files.openFolder("C:\\")) {}

    std::unique_ptr<platform::File> put(const std::string& name, std::string_view bytes)
    {
        auto file = folder->open(name, OpenMode::CreateOrTruncate);
        file->write(platform::asBytes(bytes));
        return folder->open(name, OpenMode::Update);
    }
    std::string content(platform::File& file)
    {
        std::string text;
        last = reader.read(file, [&](std::span<const std::byte> piece) {
            text.append(reinterpret_cast<const char*>(piece.data()), piece.size());
        });
        return text;
    }
    // Packs a source and gives the archive file, open.
    std::unique_ptr<platform::File> pack(const std::string& name, std::string_view bytes,
                                         const EarlierBody* earlier = nullptr)
    {
        const auto source = put("source", bytes);
        auto target = folder->open(name, OpenMode::CreateNew);
        CopyHeader header = someHeader();
        EXPECT_TRUE(writer.packLarge(header, *source, *target, earlier, {}));
        target->close();
        return folder->open(name, OpenMode::Update);
    }

    platform::MemoryFileSystem files;
    std::unique_ptr<platform::Folder> folder;
    CopyWriter writer{3};
    CopyReader reader;
    CopyHeader last;
};

TEST_F(ArchiveFile, HeaderReadsBackWhole)
{
    CopyHeader header = someHeader();
    header.kind = ItemKind::SymbolicLink;
    header.sparse = true;
    header.sizeBytes = 17;
    header.bodyBytes = 19;
    header.frameCount = 23;
    header.bodyHash = 29;
    header.contentHash = hashOf(platform::asBytes("x"));
    const std::string frame = encodeHeader(header);
    EXPECT_EQ(headerFrameBytes(platform::asBytes(frame).first(8)), frame.size());
    const CopyHeader back = decodeHeader(platform::asBytes(frame));
    EXPECT_EQ(encodeHeader(back), frame);
    EXPECT_EQ(back.path, header.path);
    EXPECT_EQ(back.linkTarget, header.linkTarget);
    EXPECT_EQ(back.linkGroup, header.linkGroup);
    EXPECT_EQ(back.attributes, header.attributes);
    EXPECT_EQ(back.modifiedNs, -3);
    EXPECT_EQ(back.version, 13U);
}

TEST_F(ArchiveFile, EveryFlippedBitAndEveryCutOfAHeaderIsRefused)
{
    const std::string frame = encodeHeader(someHeader());
    for (std::size_t at = 0; at < frame.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string damaged = frame;
            damaged[at] = static_cast<char>(damaged[at] ^ (1 << bit));
            EXPECT_THROW(decodeHeader(platform::asBytes(damaged)), RuntimeError) << at;
        }
        EXPECT_THROW(decodeHeader(platform::asBytes(frame.substr(0, at))), RuntimeError) << at;
    }
}

TEST_F(ArchiveFile, TheDocumentedExampleIsWhatIsWritten)
{
    CopyHeader header;
    header.path = "C:\\a";
    header.mode = 0644;
    const auto bytes = writer.packWhole(header, {});
    const std::string head(reinterpret_cast<const char*>(bytes.data()), 16);
    EXPECT_EQ(head, std::string("\x56\x2a\x4d\x18\x76\x00\x00\x00VDA1\x01\x00\x00\x00", 16));
    EXPECT_EQ(headerFrameBytes(bytes.first(8)), 126U);
}

TEST_F(ArchiveFile, AnySizeComesBackByOurReaderAndByThePlainOne)
{
    for (const std::size_t size :
         {0UL, 1UL, 4095UL, 300'000UL, 1'048'576UL, 1'048'577UL, 5'000'000UL, 30'000'000UL}) {
        const std::string source = noise(size);
        const std::string name = "copy" + std::to_string(size);
        const auto file = pack(name, source);
        EXPECT_EQ(content(*file), source) << size;
        const plain::Copy copy = plain::read(files.readAll("C:\\" + name));
        EXPECT_EQ(copy.content, source) << size;
        EXPECT_EQ(copy.path, "C:\\dir\\file");
        EXPECT_EQ(copy.version, 13U);
        EXPECT_EQ(copy.modifiedNs, -3);

        CopyHeader header = someHeader();
        const auto whole = writer.packWhole(header, platform::asBytes(source));
        const auto direct =
            put("direct", {reinterpret_cast<const char*>(whole.data()), whole.size()});
        EXPECT_EQ(content(*direct), source) << size;
    }
}

TEST_F(ArchiveFile, AnEditInTheMiddlePacksOnlyTheFramesAroundItAgain)
{
    std::string source = noise(40'000'000);
    const auto first = pack("one", source);
    content(*first);
    EarlierBody earlier{*first, encodeHeader(last).size(),
                        readIndex(*first, last, encodeHeader(last).size())};
    ASSERT_GT(earlier.frames.size(), 10U);
    source.replace(20'000'000, 1000, noise(1500, 99));
    files.script().reset();
    const auto second = pack("two", source, &earlier);
    EXPECT_EQ(content(*second), source);
    EXPECT_GE(files.script().countOf("file.appendRange") + 4, earlier.frames.size());
}

TEST_F(ArchiveFile, ADamagedFrameOfTheEarlierCopyIsNeverTakenOver)
{
    const std::string source = noise(10'000'000);
    const auto first = pack("one", source);
    content(*first);
    const std::uint64_t offset = encodeHeader(last).size();
    EarlierBody earlier{*first, offset, readIndex(*first, last, offset)};
    const std::byte bad{0x55};
    first->writeAt(offset + 1000, std::span(&bad, 1));
    const auto second = pack("two", source, &earlier);
    EXPECT_EQ(content(*second), source);
}

TEST_F(ArchiveFile, LargeHolesCostNothing)
{
    // A real disk, since the one in memory keeps no holes.
    std::string place = testing::TempDir() + "vardelin-holes-XXXXXX";
    ASSERT_NE(::mkdtemp(place.data()), nullptr);
    platform::LinuxFileSystem disk(
        std::make_shared<const platform::DriveMap>(std::vector<platform::DriveRoot>{{'T', place}}));
    const auto folderOnDisk = disk.openFolder("T:\\");
    constexpr std::uint64_t kSize = 1024ULL * 1024 * 1024;
    constexpr std::uint64_t kIsland = 700'000'000;
    {
        const auto source = folderOnDisk->open("sparse", OpenMode::CreateNew);
        source->writeAt(kIsland, platform::asBytes("island"));
        source->resize(kSize);
    }
    const auto source = folderOnDisk->open("sparse", OpenMode::Read);
    const auto target = folderOnDisk->open("packed", OpenMode::CreateNew);
    CopyHeader header = someHeader();
    header.sparse = true;
    ASSERT_TRUE(writer.packLarge(header, *source, *target, nullptr, {}));
    EXPECT_EQ(header.sizeBytes, kSize);
    EXPECT_LT(target->info().sizeBytes, 1'000'000U);
    const auto file = folderOnDisk->open("packed", OpenMode::Read);
    std::uint64_t at = 0;
    bool seen = false;
    reader.read(*file, [&](std::span<const std::byte> piece) {
        if (at <= kIsland && at + piece.size() > kIsland)
            seen = piece[kIsland - at] == std::byte{'i'};
        at += piece.size();
    });
    EXPECT_EQ(at, kSize);
    EXPECT_TRUE(seen);
    std::filesystem::remove_all(place);
}

TEST_F(ArchiveFile, RandomDamageOfALargeCopyIsAlwaysFound)
{
    const std::string source = noise(6'000'000);
    pack("large", source);
    const std::string whole = files.readAll("C:\\large");
    std::uint64_t state = 4711;
    for (int i = 0; i < 200; ++i) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        std::string damaged = whole;
        const std::size_t at = (state >> 16U) % damaged.size();
        damaged[at] = static_cast<char>(damaged[at] ^ (1 << (state & 7U)));
        const auto file = put("damaged", damaged);
        EXPECT_THROW(content(*file), RuntimeError) << "byte " << at;
    }
}

TEST_F(ArchiveFile, ProgressStopsALargeFile)
{
    const auto source = put("source", noise(20'000'000));
    const auto target = folder->open("target", OpenMode::CreateNew);
    CopyHeader header = someHeader();
    int calls = 0;
    EXPECT_FALSE(writer.packLarge(header, *source, *target, nullptr, [&] { return ++calls < 3; }));
    EXPECT_EQ(calls, 3);
}

TEST(Chunker, CutsStayWithinTheirBoundsAndMoveOnlyAroundAnEdit)
{
    std::string text = noise(50'000'000);
    const auto cutsOf = [](std::string_view bytes) {
        std::vector<std::size_t> cuts;
        std::size_t at = 0;
        while (at < bytes.size()) {
            const std::size_t n = cutLength(platform::asBytes(bytes.substr(at)));
            EXPECT_LE(n, kLargestFrame);
            if (at + n < bytes.size()) {
                EXPECT_GT(n, kSmallestFrame);
            }
            at += n;
            cuts.push_back(at);
        }
        return cuts;
    };
    const auto before = cutsOf(text);
    EXPECT_GT(before.size(), 10U);
    text.insert(25'000'000, "inserted");
    auto after = cutsOf(text);
    std::size_t same = 0;
    for (const std::size_t cut : after)
        same += static_cast<std::size_t>(
            std::count(before.begin(), before.end(), cut > 25'000'000 ? cut - 8 : cut));
    EXPECT_GE(same + 3, before.size());
}

} // namespace
} // namespace vardelin::engine
