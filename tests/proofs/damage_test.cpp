#include "proofs/seed.h"

#include "engine/engine_world.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>

// Damage of archive files: every flipped bit and every cut is found, by name, by verify and by
// restore; no wrong byte comes to a name of the person's, and the other files come back.
namespace vardelin::proofs {
namespace {

using engine::kRoot;
using engine::kTrue;
using testing::IsEmpty;

class Damage : public testing::Test {
protected:
    // The one archive file whose source has this name.
    std::string copyOf(const std::string& name)
    {
        return world.copies().at("C:\\data\\" + name + "_000").archivePath;
    }
    void flip(const std::string& path, std::size_t bit)
    {
        const auto file = world.ports.fileSystem.open(path, platform::OpenMode::Update);
        std::byte byte{};
        file->readAt(bit / 8, std::span(&byte, 1));
        byte ^= static_cast<std::byte>(1U << (bit % 8));
        file->writeAt(bit / 8, std::span(&byte, 1));
    }

    // `source` is damaged; everything else must come back, and nothing else be named.
    void expectFound(const std::string& path, const std::string& source, const std::string& what)
    {
        const auto checked = engine::verifyArchive(world.machine, engine::kProfiles + "Work.vdp",
                                                   100, [](std::string_view) { return true; });
        ASSERT_EQ(checked.damaged.size(), 1U) << what;
        EXPECT_EQ(checked.damaged[0].path, path) << what;
        EXPECT_FALSE(checked.damaged[0].reason.empty()) << what;
        EXPECT_THAT(checked.foreign, IsEmpty()) << what;

        const auto back = world.restore({"C:\\data\\"}, "D:\\back");
        EXPECT_EQ(back.lost, kTrue) << what;
        EXPECT_EQ(back.mismatch, engine::kFalse) << what;
        EXPECT_EQ(back.report.outcome, engine::Outcome::CompleteWithGaps) << what;
        ASSERT_EQ(back.report.lost.size(), 1U) << what;
        EXPECT_EQ(back.report.lost[0].path, source) << what;
        EXPECT_THAT(back.report.failed, IsEmpty()) << what;
        auto expected = whole;
        expected.erase(source.substr(std::string("C:\\data\\").size()));
        const auto found = world.tree("D:\\back\\C\\data");
        EXPECT_TRUE(found == expected) << what << ": " << found.size() << " files";
        world.ports.fileSystem.removeTree("D:\\back");
        world.ports.fileSystem.script().reset();
    }
    void remember() { whole = world.tree("C:\\data"); }

    engine::World world;
    std::map<std::string, std::string> whole;
};

struct Small {
    const char* what;
    const char* name;
    bool compress;
    std::function<void(engine::World&)> make;
    bool encrypt = false;
    const char* password = "";
};

const std::vector<Small>& smallFiles()
{
    static const std::vector<Small> all{
        {"a file", "victim.txt", true,
         [](engine::World& w) { w.write("victim.txt", "some text that is worth keeping"); }},
        {"an empty file", "victim.txt", true, [](engine::World& w) { w.write("victim.txt", ""); }},
        {"a file with attributes and another name", "victim.txt", true,
         [](engine::World& w) {
             w.write("victim.txt", std::string(2000, 'x'));
             const auto folder = w.ports.fileSystem.openFolder("C:\\data");
             folder->setExtendedAttribute("victim.txt", {"user.comment", "mine"});
             folder->createHardLink("twin.txt", *folder, "victim.txt");
         }},
        {"a link", "victim.txt", true,
         [](engine::World& w) {
             w.ports.fileSystem.openFolder("C:\\data")->createLink("victim.txt", "other.txt");
         }},
        {"a file stored as it is", "victim.txt", false,
         [](engine::World& w) { w.write("victim.txt", "some text that is worth keeping"); }},
        {"a link beside files stored as they are", "victim.txt", false,
         [](engine::World& w) {
             w.ports.fileSystem.openFolder("C:\\data")->createLink("victim.txt", "other.txt");
         }},
        {"a file under a password", "victim.txt", true,
         [](engine::World& w) { w.write("victim.txt", "some text that is worth keeping"); }, false,
         "secret"},
        {"an encrypted file", "victim.txt", true,
         [](engine::World& w) { w.write("victim.txt", "some text that is worth keeping"); }, true,
         "secret"},
        {"an encrypted file without a password", "victim.txt", true,
         [](engine::World& w) { w.write("victim.txt", "some text that is worth keeping"); }, true},
        {"an encrypted link", "victim.txt", true,
         [](engine::World& w) {
             w.ports.fileSystem.openFolder("C:\\data")->createLink("victim.txt", "other.txt");
         },
         true, "secret"},
    };
    return all;
}

class SmallDamage : public Damage, public testing::WithParamInterface<std::size_t> {
protected:
    void arrange()
    {
        const Small& small = smallFiles()[GetParam()];
        SCOPED_TRACE(small.what);
        engine::ProfileText text;
        text.compress = small.compress;
        text.encrypt = small.encrypt;
        text.password = small.password;
        world.setProfile(text);
        world.write("other.txt", "other");
        world.write("sub\\third.txt", "third");
        small.make(world);
        ASSERT_EQ(world.backup().success, kTrue);
        remember();
        path = copyOf(small.name);
        bytes = world.read(path);
        source = std::string("C:\\data\\") + small.name;
    }

    std::string path;
    std::string bytes;
    std::string source;
};

TEST_P(SmallDamage, EveryFlippedBitIsFound)
{
    arrange();
    // All of them where VARDELIN_BIT_STEP is 1; else each byte is met at another bit.
    const std::size_t step = countFrom("VARDELIN_BIT_STEP", 11);
    for (std::size_t bit = 0; bit < bytes.size() * 8; bit += step) {
        flip(path, bit);
        expectFound(path, source, "bit " + std::to_string(bit));
        flip(path, bit);
        if (HasFatalFailure())
            return;
    }
    std::cout << "ran: flipped bits of " << smallFiles()[GetParam()].what << ": "
              << bytes.size() * 8 / step << ", seed 0\n";
    EXPECT_EQ(world.restore({"C:\\data\\"}, "D:\\back").lost, engine::kFalse);
}

TEST_P(SmallDamage, EveryCutAndEveryTrailingByteIsFound)
{
    arrange();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        world.writeRaw(path, bytes.substr(0, length));
        expectFound(path, source, "cut at " + std::to_string(length));
        if (HasFatalFailure())
            return;
    }
    // Garbage behind it, also such as a decoder would take for more content.
    const std::vector<std::string> tails{std::string(1, '\0'),
                                         "x",
                                         std::string(100'000, '\0'),
                                         bytes,
                                         bytes.substr(0, bytes.size() / 2),
                                         std::string("\x50\x2a\x4d\x18\x00\x00\x00\x00", 8)};
    for (const std::string& tail : tails) {
        if (tail.empty())
            continue;
        world.writeRaw(path, bytes + tail);
        expectFound(path, source, "with " + std::to_string(tail.size()) + " bytes more");
    }
    world.writeRaw(path, bytes);
    EXPECT_EQ(world.restore({"C:\\data\\"}, "D:\\back").lost, engine::kFalse);
}

INSTANTIATE_TEST_SUITE_P(Each, SmallDamage, testing::Range<std::size_t>(0, smallFiles().size()));

// Several frames with an index, and the same stored as it is.
TEST_F(Damage, RandomFlippedBitsOfLargeFilesAreFound)
{
    const std::uint64_t seed = seedOf("RandomFlippedBitsOfLargeFilesAreFound");
    Random random(seed);
    const std::size_t flips = countFrom("VARDELIN_FLIPS", 120);
    world.write("packed.bin", random.bytes(6'000'000));
    world.write("other.txt", "other");
    world.backup();
    engine::ProfileText text;
    text.compress = false;
    world.setProfile(text);
    world.write("stored.bin", random.bytes(1'000'000));
    world.backup();
    remember();
    struct Victim {
        std::string source;
        std::string path;
        std::size_t bytes = 0;
    };
    std::vector<Victim> victims;
    for (const char* name : {"packed.bin", "packed.bin", "stored.bin"}) {
        const std::string path = copyOf(name);
        victims.push_back({std::string("C:\\data\\") + name, path,
                           static_cast<std::size_t>(world.ports.fileSystem.find(path)->sizeBytes)});
    }
    ASSERT_GT(victims[0].bytes, 2'000'000U);
    for (std::size_t i = 0; i < flips; ++i) {
        const Victim& victim = victims[i % victims.size()];
        std::size_t bit = random.below(victim.bytes * 8);
        // Header and index are a small share of the file and get a part of their own.
        if (i % 6 == 0)
            bit = random.below(200 * 8);
        else if (i % 6 == 1)
            bit = victim.bytes * 8 - 1 - random.below(300 * 8);
        flip(victim.path, bit);
        expectFound(victim.path, victim.source,
                    victim.source + " bit " + std::to_string(bit) + " of flip " +
                        std::to_string(i));
        flip(victim.path, bit);
        if (HasFailure())
            return;
    }
    std::cout << "ran: flipped bits of large files: " << flips << ", seed " << seed << "\n";
    EXPECT_EQ(world.restore({"C:\\data\\"}, "D:\\back").lost, engine::kFalse);
}

// The same under a password: outer header, sealed frames and sealed index, and every chunk's end.
TEST_F(Damage, RandomFlippedBitsAndCutsOfALargeEncryptedFileAreFound)
{
    const std::uint64_t seed = seedOf("RandomFlippedBitsAndCutsOfALargeEncryptedFileAreFound");
    Random random(seed);
    const std::size_t flips = countFrom("VARDELIN_FLIPS", 60);
    engine::ProfileText text;
    text.encrypt = true;
    text.password = "secret";
    world.setProfile(text);
    world.write("sealed.bin", random.bytes(6'000'000));
    world.write("other.txt", "other");
    world.backup();
    remember();
    const std::string path = copyOf("sealed.bin");
    const std::string source = "C:\\data\\sealed.bin";
    const std::string bytes = world.read(path);
    ASSERT_GT(bytes.size(), 2'000'000U);
    for (std::size_t i = 0; i < flips; ++i) {
        const std::string what = " of flip " + std::to_string(i);
        std::size_t bit = random.below(bytes.size() * 8);
        if (i % 6 == 0)
            bit = random.below(400 * 8);
        else if (i % 6 == 1)
            bit = bytes.size() * 8 - 1 - random.below(300 * 8);
        flip(path, bit);
        expectFound(path, source, "bit " + std::to_string(bit) + what);
        flip(path, bit);
        if (i % 10 == 0) {
            const std::size_t length = random.below(bytes.size());
            world.writeRaw(path, bytes.substr(0, length));
            expectFound(path, source, "cut at " + std::to_string(length) + what);
            world.writeRaw(path, bytes);
        }
        if (HasFailure())
            return;
    }
    std::cout << "ran: flipped bits of a large encrypted file: " << flips << ", seed " << seed
              << "\n";
    EXPECT_EQ(world.restore({"C:\\data\\"}, "D:\\back").lost, engine::kFalse);
}

// A folder's record carries attributes of the folder; its rights stand in its name, too. A damaged
// one is named, and costs the attributes alone.
TEST_F(Damage, EveryFlippedBitAndCutOfAFolderRecordIsFound)
{
    world.write("private\\a.txt", "a");
    const auto data = world.ports.fileSystem.openFolder("C:\\data");
    data->setMode("private", 0700);
    data->setExtendedAttribute("private", {"user.comment", "mine"});
    world.backup();
    remember();
    std::string path;
    for (const auto& entry : world.ports.fileSystem.list(kRoot + "C\\data\\private")) {
        if (entry.name.starts_with("~folder_"))
            path = kRoot + "C\\data\\private\\" + entry.name;
    }
    ASSERT_FALSE(path.empty());
    const std::string bytes = world.read(path);
    const auto expectNamed = [&](const std::string& what) {
        const auto checked = engine::verifyArchive(world.machine, engine::kProfiles + "Work.vdp",
                                                   100, [](std::string_view) { return true; });
        ASSERT_EQ(checked.damaged.size(), 1U) << what;
        EXPECT_EQ(checked.damaged[0].path, path) << what;
        const auto back = world.restore({"C:\\data\\"}, "D:\\back");
        EXPECT_EQ(back.lost, kTrue) << what;
        ASSERT_EQ(back.report.lost.size(), 1U) << what;
        EXPECT_EQ(back.report.lost[0].path, "C:\\data\\private\\") << what;
        EXPECT_EQ(world.tree("D:\\back\\C\\data"), whole) << what;
        const auto restored = world.ports.fileSystem.openFolder("D:\\back\\C\\data");
        EXPECT_EQ(restored->find("private")->mode, 0700U) << what;
        EXPECT_THAT(restored->extendedAttributes("private"), IsEmpty()) << what;
        world.ports.fileSystem.removeTree("D:\\back");
    };
    for (std::size_t bit = 0; bit < bytes.size() * 8; bit += countFrom("VARDELIN_BIT_STEP", 11)) {
        flip(path, bit);
        expectNamed("bit " + std::to_string(bit));
        flip(path, bit);
        if (HasFatalFailure())
            return;
    }
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        world.writeRaw(path, bytes.substr(0, length));
        expectNamed("cut at " + std::to_string(length));
    }
    world.writeRaw(path, bytes + "x");
    expectNamed("with a byte more");
    world.writeRaw(path, bytes);
    EXPECT_EQ(world.restore({"C:\\data\\"}, "D:\\back").lost, engine::kFalse);
}

// A bit of a file's name makes it another file. What such a name then says is never believed where
// it can be compared: a compressed copy names its source and its version itself. The times and the
// size in the name are the label of a touched file and stand nowhere else; they change no byte.
TEST_F(Damage, AFlippedBitOfANameGivesNoWrongContent)
{
    for (const bool compress : {true, false}) {
        engine::World fresh;
        engine::ProfileText text;
        text.compress = compress;
        fresh.setProfile(text);
        fresh.write("victim.txt", "worth keeping");
        fresh.write("other.txt", "other");
        fresh.backup();
        const std::string path = fresh.copies().at("C:\\data\\victim.txt_000").archivePath;
        const std::string folder(platform::parentOf(path));
        const std::string name(platform::leafOf(path));
        std::size_t tried = 0;
        for (std::size_t bit = 0; bit < name.size() * 8; ++bit) {
            std::string other = name;
            other[bit / 8] = static_cast<char>(other[bit / 8] ^ (1 << (bit % 8)));
            try {
                fresh.ports.fileSystem.rename(path, folder + other);
            } catch (const base::RuntimeError&) {
                continue; // no name at all
            }
            ++tried;
            fresh.restore({"C:\\data\\"}, "D:\\back");
            for (const auto& [file, content] : fresh.tree("D:\\back\\C\\data")) {
                const bool isOther = file == "other.txt";
                EXPECT_EQ(content, isOther ? "other" : "worth keeping") << other;
                // Only a copy that is stored as it is has its name in its name alone.
                EXPECT_TRUE(isOther || file == "victim.txt" || !compress) << other;
            }
            EXPECT_EQ(fresh.read("D:\\back\\C\\data\\other.txt"), "other");
            fresh.ports.fileSystem.removeTree("D:\\back");
            fresh.ports.fileSystem.rename(folder + other, path);
        }
        EXPECT_GT(tried, name.size() * 4);
    }
}

} // namespace
} // namespace vardelin::proofs
