#include "runs/engine/encrypted_copy.h"

#include "base/runtime_error.h"
#include "platform/memory/memory_file_system.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/copy_writer.h"

#include "engine/plain_reader.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using platform::OpenMode;

constexpr KeyCost kCheap{1, 8};

std::string noise(std::size_t bytes, std::uint64_t seed = 1)
{
    std::string text;
    std::uint64_t state = seed;
    while (text.size() < bytes) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        text += static_cast<char>(state >> 56U);
        text += static_cast<char>('a' + (text.size() / 64) % 16);
    }
    text.resize(bytes);
    return text;
}

class EncryptedCopy : public testing::Test {
protected:
    EncryptedCopy() : folder(files.openFolder("C:\\")), writer(3, key()) {}

    WriteKey key()
    {
        WriteKey result;
        result.ring = &ring;
        result.slot = ring.newSlot(kCheap);
        result.tag = ring.tagOf(result.slot);
        result.encrypt = true;
        return result;
    }

    void put(const std::string& name, std::string_view bytes)
    {
        folder->open(name, OpenMode::CreateOrTruncate)->write(platform::asBytes(bytes));
    }
    static CopyHeader header()
    {
        CopyHeader result;
        result.path = "C:\\dir\\private name";
        result.linkTarget = "../elsewhere";
        result.attributes = {{"user.a", "private value"}};
        result.version = 3;
        return result;
    }
    std::string whole(std::string_view content)
    {
        CopyHeader h = header();
        const auto bytes = writer.packWhole(h, platform::asBytes(content));
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    void large(const std::string& name, std::string_view content, CopyWriter& by,
               const EarlierBody* earlier = nullptr)
    {
        put("source", content);
        const auto source = folder->open("source", OpenMode::Read);
        const auto target = folder->open(name, OpenMode::CreateNew);
        CopyHeader h = header();
        ASSERT_TRUE(by.packLarge(h, *source, *target, earlier, {}));
    }
    std::string content(const std::string& name, const KeyRing& with)
    {
        CopyReader reader(&with);
        std::string text;
        reader.read(*folder->open(name, OpenMode::Read), [&](std::span<const std::byte> piece) {
            text.append(reinterpret_cast<const char*>(piece.data()), piece.size());
        });
        return text;
    }

    platform::MemoryFileSystem files;
    std::unique_ptr<platform::Folder> folder;
    KeyRing ring{"secret"};
    CopyWriter writer;
};

TEST_F(EncryptedCopy, AnySizeComesBack)
{
    for (const std::size_t size : {0UL, 1UL, 65535UL, 65536UL, 65537UL, 262'144UL, 3'000'000UL}) {
        const std::string source = noise(size);
        put("small", whole(source));
        EXPECT_EQ(content("small", ring), source) << size;
        large("large" + std::to_string(size), source, writer);
        EXPECT_EQ(content("large" + std::to_string(size), ring), source) << size;
    }
    large("frames", noise(9'000'000), writer);
    EXPECT_EQ(content("frames", KeyRing("secret")), noise(9'000'000));
}

TEST_F(EncryptedCopy, TheSecondReaderTakesTheSame)
{
    for (const std::size_t size : {0UL, 1UL, 70'000UL, 300'000UL, 9'000'000UL}) {
        const std::string source = noise(size);
        const std::string name = "large" + std::to_string(size);
        large(name, source, writer);
        const std::string bytes = files.readAll("C:\\" + name);
        for (const std::string& file : {bytes, whole(source)}) {
            const plain::Copy copy = plain::read(plain::decrypt(file, "secret"));
            EXPECT_TRUE(copy.content == source) << size;
            EXPECT_EQ(copy.path, "C:\\dir\\private name");
            EXPECT_EQ(copy.version, 3U);
        }
        EXPECT_THROW(plain::decrypt(bytes, "other"), std::runtime_error);
    }
    WriteKey open;
    const KeyRing none;
    open.ring = &none;
    open.encrypt = true;
    CopyWriter openWriter(3, open);
    CopyHeader h = header();
    const auto bytes = openWriter.packWhole(h, platform::asBytes("content"));
    EXPECT_EQ(
        plain::read(plain::decrypt({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, ""))
            .content,
        "content");
}

TEST_F(EncryptedCopy, ABodyOfWholeChunksComesBack)
{
    // Lengths around whole chunks of sealed body, whatever the compressor makes of a content.
    for (const std::size_t size : {1UL, 65535UL, 65536UL, 65537UL, 131072UL, 327681UL}) {
        const std::string plain = noise(size);
        const SecretKey fileKey = SecretKey::random();
        BodySealer sealer(fileKey);
        std::vector<std::byte> sealed;
        for (std::size_t at = 0; at < size; at += 40000)
            sealer.add(
                platform::asBytes(plain).subspan(at, std::min<std::size_t>(40000, size - at)),
                sealed);
        sealer.finish(sealed);
        ASSERT_EQ(sealed.size(), sealedBodyBytes(size));
        put("body", "head");
        const auto file = folder->open("body", OpenMode::Update);
        file->writeAt(4, sealed);
        std::string back(size + 10, '\0');
        BodyOpener opener(*file, 4, size, fileKey);
        const std::size_t n = opener.read(std::as_writable_bytes(std::span(back)));
        EXPECT_EQ(back.substr(0, n), plain);
        BodyOpener skipping(*file, 4, size, fileKey);
        skipping.skipTo(size - 1);
        EXPECT_EQ(skipping.position(), size - 1);
        EXPECT_EQ(skipping.read(std::as_writable_bytes(std::span(back))), 1U);
        EXPECT_EQ(back.front(), plain.back());
    }
}

TEST_F(EncryptedCopy, NothingOfNameOrContentIsInTheClear)
{
    const std::string bytes = whole("a content that anybody would know");
    for (const char* text : {"private", "elsewhere", "anybody", "user.a"})
        EXPECT_EQ(bytes.find(text), std::string::npos) << text;
}

TEST_F(EncryptedCopy, TheSlotIsReadWithoutAPassword)
{
    put("copy", whole("x"));
    CopyReader reader;
    const KeySlot slot = reader.readSlot(*folder->open("copy", OpenMode::Read));
    EXPECT_TRUE(ring.opens(slot));
    EXPECT_THROW(reader.readHeader(*folder->open("copy", OpenMode::Read)), PasswordError);
}

TEST_F(EncryptedCopy, AnotherPasswordIsToldApartFromDamage)
{
    put("copy", whole("x"));
    EXPECT_THROW(content("copy", KeyRing("other")), PasswordError);
    EXPECT_THROW(content("copy", KeyRing()), PasswordError);
}

TEST_F(EncryptedCopy, EveryFlippedBitAndEveryCutIsDamageAndNoByteComesOut)
{
    const std::string good = whole(noise(600));
    const auto refused = [&](const std::string& bytes) {
        put("copy", bytes);
        CopyReader reader(&ring);
        std::size_t got = 0;
        try {
            reader.read(*folder->open("copy", OpenMode::Read),
                        [&](std::span<const std::byte> piece) { got += piece.size(); });
        } catch (const PasswordError&) {
            return false; // chance is not another password
        } catch (const RuntimeError& error) {
            return got == 0 && !error.reason().empty();
        }
        return false;
    };
    for (std::size_t at = 0; at < good.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string bytes = good;
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
            ASSERT_TRUE(refused(bytes)) << "byte " << at << " bit " << bit;
        }
        ASSERT_TRUE(refused(good.substr(0, at))) << "cut at " << at;
    }
    EXPECT_TRUE(refused(good + "x"));
    EXPECT_TRUE(refused(good + good));
}

TEST_F(EncryptedCopy, PartsOfTwoFilesOfOnePasswordDoNotMix)
{
    const std::string first = whole(noise(600, 1));
    const std::string second = whole(noise(600, 1));
    ASSERT_EQ(first.size(), second.size());
    const std::size_t head = headerFrameBytes(platform::asBytes(first));
    put("copy", first.substr(0, head) + second.substr(head));
    EXPECT_THROW(content("copy", ring), RuntimeError);
}

TEST_F(EncryptedCopy, ChunksThatAreSwappedDoubledOrLeftOutAreRefused)
{
    const std::string source = noise(600'000);
    const std::string good = whole(source);
    const std::size_t body = headerFrameBytes(platform::asBytes(good)) + 24;
    const std::size_t chunk = kChunkBytes + 17;
    ASSERT_GT(good.size(), body + 3 * chunk);
    const std::string a = good.substr(body, chunk);
    const std::string b = good.substr(body + chunk, chunk);
    const std::string rest = good.substr(body + 2 * chunk);
    const std::string head = good.substr(0, body);
    put("copy", head + a + b + rest);
    EXPECT_EQ(content("copy", ring), source);
    for (const std::string& bytes : {head + b + a + rest, head + a + a + rest, head + a + rest,
                                     head + b + rest, head + a + b + a + rest}) {
        put("copy", bytes);
        EXPECT_THROW(content("copy", ring), RuntimeError);
    }
}

TEST_F(EncryptedCopy, ALargeFilesIndexIsAuthentic)
{
    large("good", noise(9'000'000), writer);
    const std::string good = files.readAll("C:\\good");
    EXPECT_EQ(content("good", ring), noise(9'000'000));
    for (std::size_t back = 1; back <= 200; ++back) {
        std::string bytes = good;
        bytes[bytes.size() - back] = static_cast<char>(bytes[bytes.size() - back] ^ 4);
        put("copy", bytes);
        CopyReader reader(&ring);
        const auto file = folder->open("copy", OpenMode::Read);
        const CopyHeader h = reader.readHeader(*file);
        EXPECT_THROW(readIndex(*file, h, reader.bodyOffset(), reader.fileKey()), RuntimeError)
            << back;
    }
}

// A body whose frames are counted as they are taken over.
struct Reuse {
    explicit Reuse(std::unique_ptr<platform::File> opened, const KeyRing& ring)
        : file(std::move(opened)), reader(&ring), header(reader.readHeader(*file))
    {
        auto frames = readIndex(*file, header, reader.bodyOffset(), reader.fileKey());
        if (reader.fileKey() != nullptr) {
            opener.emplace(*file, reader.bodyOffset(), header.bodyBytes, *reader.fileKey());
            body.emplace(EarlierBody{*file, 0, std::move(frames), &*opener});
        } else {
            body.emplace(EarlierBody{*file, reader.bodyOffset(), std::move(frames), nullptr});
        }
    }
    std::unique_ptr<platform::File> file;
    CopyReader reader;
    CopyHeader header;
    std::optional<BodyOpener> opener;
    std::optional<EarlierBody> body;
};

TEST_F(EncryptedCopy, UnchangedFramesAreTakenOverBetweenAllForms)
{
    const std::string before = noise(12'000'000);
    std::string after = before;
    after.replace(6'000'000, 9, "REPLACED!");
    CopyWriter plainWriter(3);
    large("encrypted", before, writer);
    large("plain", before, plainWriter);
    // What is taken over is as it was packed, so another level tells it from what is packed anew.
    CopyWriter otherEncrypted(1, key());
    CopyWriter otherPlain(1);
    for (const char* from : {"encrypted", "plain"}) {
        for (const bool encrypted : {true, false}) {
            const std::string name = std::string(from) + (encrypted ? "-e" : "-p");
            Reuse earlier(folder->open(from, OpenMode::Read), ring);
            large(name, after, encrypted ? otherEncrypted : otherPlain, &*earlier.body);
            EXPECT_EQ(content(name, ring), after) << name;
            const Reuse now(folder->open(name, OpenMode::Read), ring);
            std::size_t same = 0;
            for (const BodyFrame& frame : now.body->frames) {
                for (const BodyFrame& old : earlier.body->frames)
                    same += frame.packedHash == old.packedHash ? 1U : 0U;
            }
            EXPECT_GE(same + 3, earlier.body->frames.size()) << name;
        }
    }
}

TEST_F(EncryptedCopy, ADamagedEarlierBodyIsPackedAnewFromThereOn)
{
    const std::string source = noise(12'000'000);
    large("earlier", source, writer);
    const auto file = folder->open("earlier", OpenMode::Update);
    file->writeAt(files.readAll("C:\\earlier").size() / 2, platform::asBytes("damage"));
    Reuse earlier(folder->open("earlier", OpenMode::Read), ring);
    large("later", source, writer, &*earlier.body);
    EXPECT_EQ(content("later", ring), source);
}

TEST_F(EncryptedCopy, APlainCopyCarriesTheSlotToo)
{
    WriteKey plainKey = key();
    plainKey.encrypt = false;
    CopyWriter plainWriter(3, plainKey);
    CopyHeader h = header();
    const auto bytes = plainWriter.packWhole(h, platform::asBytes("content"));
    put("copy", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    EXPECT_EQ(content("copy", KeyRing()), "content");
    CopyReader reader;
    EXPECT_EQ(reader.readSlot(*folder->open("copy", OpenMode::Read)), plainKey.slot);
}

} // namespace
} // namespace vardelin::engine
