#include "proofs/disk_world.h"
#include "proofs/seed.h"
#include "proofs/snapshot.h"

#include "runs/engine/content_hash.h"
#include "runs/engine/copy_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>

// Whatever the entries, the archive and the target hold, before the run or from its midst on: a
// restore changes nothing outside the folder that it was told.
namespace vardelin::proofs {
namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;

// A world with something outside that is worth attacking: the same names as the sources have.
class RestoreStaysInside : public testing::Test {
protected:
    RestoreStaysInside()
    {
        for (const char* name :
             {"a.txt", "sub/b.txt", "sub/deep/c.txt", "C/data/a.txt", "C/data/sub/b.txt",
              "C/data/sub/deep/c.txt", "data/a.txt", "deep/c.txt", "b.txt", "c.txt"})
            world.folder.write(std::string("outside/") + name, "precious");
        // A folder that takes everything and must get nothing.
        fs::create_directories(world.outside() + "/bait");
    }

    void usualSources() const
    {
        world.write("data/a.txt", "of a");
        world.write("data/sub/b.txt", "of b");
        world.write("data/sub/deep/c.txt", "of c");
    }

    // Puts a file into the archive as it stands.
    void plant(const std::string& below, std::string_view bytes) const
    {
        world.write("store/Work/" + below, bytes);
    }
    static std::string packed(const std::string& path, engine::ItemKind kind, std::string_view text)
    {
        engine::CopyWriter writer(3);
        engine::CopyHeader header;
        header.kind = kind;
        header.path = path;
        header.mode = 0644;
        header.savedNs = 1;
        if (kind == engine::ItemKind::SymbolicLink) {
            header.linkTarget = text;
            header.contentHash = engine::hashOf(platform::asBytes(text));
            const auto bytes = writer.packEmpty(header);
            return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
        }
        const auto bytes = writer.packWhole(header, platform::asBytes(text));
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    // The name of a copy that is stored as it is, which holds no path that could be compared.
    static std::string storedName(const std::string& source, std::string_view content)
    {
        const archive::CopyMeta meta{content.size(), 1, 1,
                                     engine::hashOf(platform::asBytes(content))};
        return archive::copyName(source, 0, meta, archive::Form::Stored).value();
    }
    std::set<std::string> temporaries(const std::string& folder) const
    {
        std::set<std::string> result;
        if (!fs::exists(folder))
            return result;
        for (const auto& [path, seen] : snapshotOf(folder)) {
            if (path.ends_with(".tmp") || path.ends_with(".link"))
                result.insert(path);
        }
        return result;
    }

    DiskWorld world;
};

TEST_F(RestoreStaysInside, WhateverTheEntriesSay)
{
    usualSources();
    world.backup();
    // Another archive beside it, with copies that would fit where the steps upwards lead.
    const std::string evil = "evil";
    world.write("store/Other/C/data/" + storedName("evil.txt", evil), evil);
    world.write("store/Other/C/" + storedName("evil.txt", evil), evil);
    world.write("store/" + storedName("evil.txt", evil), evil);
    const Snapshot outside = snapshotOf(world.outside());
    const std::vector<std::string> entries{
        "C:\\..\\evil.txt_000",
        "C:\\..\\..\\evil.txt_000",
        "C:\\..\\..\\Other\\C\\evil.txt_000",
        "C:\\..\\..\\Other\\C\\data\\evil.txt_000",
        "C:\\data\\..\\..\\..\\Other\\C\\data\\evil.txt_000",
        "C:\\data\\..\\..\\..\\Other\\C\\data\\",
        "C:\\..\\..\\Other\\",
        "C:\\..\\..\\Other\\C\\",
        "C:\\..\\",
        "C:\\..\\..\\",
        "C:\\data\\..\\..\\",
        "C:\\data\\.\\",
        "C:\\data\\.\\a.txt_000",
        "C:\\data\\sub\\..\\a.txt_000",
        "C:\\data\\sub\\..\\",
        "C:\\data/../../Other/C/data/evil.txt_000",
        "C:\\data/sub\\b.txt_000",
        "C:/data/a.txt_000",
        "C:\\..\xef\x80\xae\\evil.txt_000",
        "C:\\.\xef\x80\xae\\evil.txt_000",
        "C:\\data\\.\xef\x80\xae\\",
        "C:\\\xef\x80\xae\\a.txt_000",
        "/etc/passwd_000",
        "\\\\server\\share\\evil.txt_000",
        "..\\evil.txt_000",
        "C:..\\evil.txt_000",
        "C:",
        "C",
        "",
        "\\",
        "Z:\\",
        "1:\\data\\a.txt_000",
        std::string("C:\\data\\a.txt\0_000", 17),
    };
    for (const std::string& location : {std::string("C:\\back"), std::string()}) {
        for (const std::string& entry : entries) {
            const Snapshot before = snapshotOf(world.native("data"));
            const auto done = world.restore({entry}, location);
            EXPECT_EQ(done.report.filesRestored, 0U) << entry;
            EXPECT_EQ(done.report.lost.size(), 1U) << entry << " to " << location;
            EXPECT_TRUE(done.lostFlag) << entry;
            EXPECT_FALSE(done.raised) << entry << " " << done.raised->what();
            EXPECT_EQ(differenceOf(outside, snapshotOf(world.outside())), "") << entry;
            EXPECT_EQ(differenceOf(before, snapshotOf(world.native("data"))), "") << entry;
            EXPECT_FALSE(fs::exists(world.native("Other"))) << entry;
            EXPECT_FALSE(fs::exists(world.native("evil.txt"))) << entry;
            EXPECT_TRUE(!fs::exists(world.native("back")) || fs::is_empty(world.native("back")))
                << entry;
        }
    }
    // One bad entry costs the others nothing.
    const auto done = world.restore({entries[0], "C:\\data\\a.txt_000", entries[5]}, "C:\\back");
    EXPECT_EQ(done.report.filesRestored, 1U);
    EXPECT_EQ(world.read("back/C/data/a.txt"), "of a");
}

TEST_F(RestoreStaysInside, WhateverPathAHeaderNames)
{
    usualSources();
    world.backup();
    const std::vector<std::string> paths{"C:\\..\\..\\outside\\a.txt",
                                         "C:\\data\\..\\..\\outside\\a.txt",
                                         "C:\\a.txt",
                                         "C:\\data\\sub\\evil.txt",
                                         "C:\\data\\evil.tx",
                                         "/outside/a.txt",
                                         "..\\..\\outside\\a.txt",
                                         world.outside() + "/a.txt",
                                         "",
                                         "D:\\data\\evil.txt",
                                         "c:\\data\\evil.txt",
                                         "C:\\data\\\\evil.txt"};
    const Snapshot outside = snapshotOf(world.outside());
    int run = 0;
    for (const std::string& path : paths) {
        for (const auto kind : {engine::ItemKind::File, engine::ItemKind::SymbolicLink,
                                engine::ItemKind::Folder, engine::ItemKind::Settings}) {
            plant("C/data/evil.txt_FULL_4-1-1.zst", packed(path, kind, "evil"));
            const std::string back = "back" + std::to_string(++run);
            const auto done = world.restore({"C:\\data\\"}, "C:\\" + back);
            ASSERT_EQ(done.report.lost.size(), 1U) << path << " kind " << static_cast<int>(kind);
            EXPECT_EQ(done.report.lost[0].path, "C:\\data\\evil.txt");
            EXPECT_EQ(done.report.filesRestored, 3U);
            EXPECT_FALSE(fs::exists(world.native(back + "/C/data/evil.txt")));
            EXPECT_THAT(temporaries(world.native(back)), IsEmpty());
            const auto checked = world.verify();
            ASSERT_EQ(checked.damaged.size(), 1U) << path << " kind " << static_cast<int>(kind);
            EXPECT_THAT(checked.damaged[0].path, testing::HasSubstr("evil.txt_FULL"));
        }
    }
    EXPECT_EQ(differenceOf(outside, snapshotOf(world.outside())), "");
}

// Names in the archive that turn into steps, roots or paths where somebody maps them without care.
TEST_F(RestoreStaysInside, WhateverTheArchivesFoldersAndFilesAreCalled)
{
    usualSources();
    world.backup();
    const std::string evil = "evil";
    const std::string dot = "\xef\x80\xae";       // a mapped dot, here as the disk's own character
    const std::string backslash = "\xef\x81\x9c"; // likewise a backslash
    const std::vector<std::string> folders{
        "C/data/..\\..\\..\\outside",
        "C/data/" + dot,
        "C/data/." + dot,
        "C/data/.." + dot,
        "C/data/C:\\x",
        "C/data/.." + backslash + "x",
        "C/data/...",
        "C/data/\xef\x83\xbf" + dot,
        "C/data/ ",
        "C/..\\..\\outside",
        "CC/data",
        "C:/data",
        "\\/data",
        "outside",
        "c/data",
    };
    for (const std::string& folder : folders) {
        for (const std::string& name :
             {std::string("evil.txt"), std::string("."), std::string(".."), dot, "." + dot,
              std::string("..\\..\\evil"), std::string("C:\\evil"), std::string("...")})
            plant(folder + "/" + storedName(name, evil), evil);
    }
    for (const std::string& name : {std::string("."), std::string(".."), dot, "." + dot,
                                    std::string("..\\..\\a.txt"), std::string("C:\\evil")}) {
        plant("C/data/" + storedName(name, evil), evil);
        plant("C/data/" + name + "_FULL_4-1-1.zst",
              packed("C:\\data\\" + name, engine::ItemKind::File, evil));
    }
    const Snapshot outside = snapshotOf(world.outside());
    const Snapshot store = snapshotOf(world.native("store"));
    world.restore({"C:\\"}, "C:\\back");
    EXPECT_EQ(differenceOf(outside, snapshotOf(world.outside())), "");
    EXPECT_EQ(differenceOf(store, snapshotOf(world.native("store"))), "");
    EXPECT_EQ(world.read("back/C/data/a.txt"), "of a") << "the others are restored";
    for (const auto& [path, seen] : snapshotOf(world.native("")))
        EXPECT_TRUE(path == "." || path.starts_with("back") || path.starts_with("store") ||
                    path.starts_with("data") || path.starts_with("app"))
            << path;
    EXPECT_THAT(temporaries(world.native("back")), IsEmpty());

    fs::remove_all(world.native("data"));
    world.restore({"C:\\"}, "");
    EXPECT_EQ(differenceOf(outside, snapshotOf(world.outside())), "");
    EXPECT_EQ(differenceOf(store, snapshotOf(world.native("store"))), "");
    EXPECT_EQ(world.read("data/a.txt"), "of a");
}

struct Trap {
    const char* what;
    std::function<void(const std::string& place, const std::string& outside)> set;
};

const std::vector<Trap>& traps()
{
    static const std::vector<Trap> all{
        {"a link to a folder outside",
         [](const auto& place, const auto& outside) {
             fs::create_symlink(outside + "/bait", place);
         }},
        {"a link to a folder outside that has the same names",
         [](const auto& place, const auto& outside) { fs::create_symlink(outside, place); }},
        {"a link up and out",
         [](const auto& place, const auto&) {
             fs::create_symlink("../../../../../outside/bait", place);
         }},
        {"a link to a file outside",
         [](const auto& place, const auto& outside) {
             fs::create_symlink(outside + "/a.txt", place);
         }},
        {"a link to what does not exist outside",
         [](const auto& place, const auto& outside) {
             fs::create_symlink(outside + "/bait/new", place);
         }},
        {"a link to the same folder",
         [](const auto& place, const auto&) { fs::create_symlink(".", place); }},
        {"a link to itself",
         [](const auto& place, const auto&) {
             fs::create_symlink(fs::path(place).filename(), place);
         }},
        {"a link to the root",
         [](const auto& place, const auto&) { fs::create_symlink("/", place); }},
    };
    return all;
}

TEST_F(RestoreStaysInside, WhateverLinksLieInTheTargetBefore)
{
    usualSources();
    world.backup();
    const std::vector<std::string> levels{"C",
                                          "C/data",
                                          "C/data/sub",
                                          "C/data/sub/deep",
                                          "C/data/a.txt",
                                          "C/data/sub/b.txt",
                                          "C/data/sub/deep/c.txt"};
    const Snapshot outside = snapshotOf(world.outside());
    int run = 0;
    for (const Trap& trap : traps()) {
        for (const std::string& level : levels) {
            const std::string what = std::string(trap.what) + " at " + level;
            const std::string back = "back" + std::to_string(++run);
            const fs::path place = world.native(back + "/" + level);
            fs::create_directories(place.parent_path());
            trap.set(place, world.outside());
            const auto done = world.restore({"C:\\data\\"}, "C:\\" + back);
            EXPECT_EQ(differenceOf(outside, snapshotOf(world.outside())), "") << what;
            EXPECT_THAT(temporaries(world.native(back)), IsEmpty()) << what;
            const bool isFile = level.ends_with(".txt");
            if (isFile) {
                // The link itself gives way to the file.
                EXPECT_FALSE(done.raised) << what;
                EXPECT_EQ(done.report.filesRestored, 3U) << what;
                EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(place))) << what;
            } else {
                EXPECT_TRUE(done.raised) << what;
                EXPECT_EQ(done.report.failed.size() + done.report.filesRestored, 3U) << what;
                EXPECT_GE(done.report.failed.size(), 1U) << what;
                EXPECT_TRUE(fs::is_symlink(place)) << what;
            }
        }
    }
}

TEST_F(RestoreStaysInside, WhateverLinksLieAtTheOriginalPlaceBefore)
{
    usualSources();
    world.backup();
    const Snapshot outside = snapshotOf(world.outside());
    for (const Trap& trap : traps()) {
        for (const char* level : {"sub", "sub/deep", "a.txt", "sub/b.txt", "sub/deep/c.txt"}) {
            const std::string what = std::string(trap.what) + " at " + level;
            const fs::path place = world.native(std::string("data/") + level);
            fs::remove_all(place);
            fs::create_directories(place.parent_path());
            trap.set(place, world.outside());
            const auto done = world.restore({"C:\\data\\"}, "");
            EXPECT_EQ(differenceOf(outside, snapshotOf(world.outside())), "") << what;
            EXPECT_THAT(temporaries(world.native("data")), IsEmpty()) << what;
            if (std::string(level).ends_with(".txt")) {
                EXPECT_EQ(done.report.filesRestored, 3U) << what;
            } else {
                EXPECT_GE(done.report.failed.size(), 1U) << what;
            }
            fs::remove_all(place);
            const auto again = world.restore({"C:\\data\\"}, "");
            EXPECT_EQ(again.report.filesRestored, 3U) << what;
        }
    }
}

// At each call of a small restore a folder of the target becomes a link to one outside that has the
// same names. The restore replaces files, makes folders, joins hard links and sets folder rights.
TEST_F(RestoreStaysInside, WhateverFolderBecomesALinkDuringTheRun)
{
    usualSources();
    world.write("data/sub/twin1", "twin");
    fs::create_hard_link(world.native("data/sub/twin1"), world.native("data/sub/deep/twin2"));
    fs::create_directories(world.native("data/sub/empty"));
    fs::permissions(world.native("data/sub/deep"), fs::perms::owner_all);
    world.backup();
    for (const char* name : {"twin1", "sub/twin1", "C/data/sub/twin1", "sub/deep/twin2",
                             "C/data/sub/deep/twin2", "deep/twin2", "twin2"})
        world.folder.write(std::string("outside/") + name, "precious twin");
    for (const char* name : {"sub/empty", "empty", "C/data/sub/empty"})
        fs::create_directories(world.folder / ("outside/" + std::string(name)));

    struct Swap {
        const char* level;
        std::string target;
    };
    const std::vector<Swap> swaps{{"", world.outside()},
                                  {"/C", world.outside() + "/C"},
                                  {"/C/data", world.outside() + "/C/data"},
                                  {"/C/data/sub", world.outside() + "/C/data/sub"},
                                  {"/C/data/sub/deep", world.outside() + "/C/data/sub/deep"},
                                  {"/C/data/sub/empty", world.outside() + "/C/data/sub/empty"}};
    const Snapshot outside = snapshotOf(world.outside());
    // Every call where VARDELIN_SWAP_STEP is 1; else one in so many, at other ones each time.
    const std::uint64_t seed = seedOf("WhateverFolderBecomesALinkDuringTheRun");
    Random random(seed);
    const std::size_t step = countFrom("VARDELIN_SWAP_STEP", 8);
    std::size_t runs = 0;
    // Until the run has opened the folder that it was told, what the folder's name leads to is the
    // person's own choice.
    world.script.reset();
    world.restore({"C:\\data\\"}, "C:\\back");
    const auto calls = world.script.calls();
    std::size_t chosen = 0;
    while (calls.at(chosen).name != "folder.info" || calls.at(chosen).subject != "C:\\back")
        ++chosen;
    fs::remove_all(world.native("back"));
    for (const Swap& swap : swaps) {
        for (std::size_t call = *swap.level == '\0' ? chosen + 1 : 1;; call += step) {
            if (runs % 5 == 0)
                call += random.below(step);
            world.write("back/C/data/sub/deep/c.txt", "older c");
            world.write("back/C/data/sub/twin1", "older twin");
            const std::string place = world.native("back" + std::string(swap.level));
            bool swapped = false;
            world.script.reset();
            world.script.delayCall(call, [&](const platform::CallScript::Call&) {
                std::error_code error;
                fs::rename(place, world.folder / "parked", error);
                if (error)
                    return;
                // Another worker may have made the folder anew in this very moment.
                fs::create_symlink(swap.target, place, error);
                swapped = !error;
            });
            world.restore({"C:\\data\\"}, "C:\\back");
            const bool reached = world.script.callCount() >= call;
            world.script.reset();
            ++runs;
            ASSERT_EQ(differenceOf(outside, snapshotOf(world.outside())), "")
                << "call " << call << " at back" << swap.level;
            if (swapped)
                fs::remove(place);
            fs::remove_all(world.folder / "parked");
            fs::remove_all(world.native("back"));
            if (!reached)
                break;
        }
    }
    std::cout << "ran: folder exchanged during a restore: " << runs << ", seed " << seed << "\n";
    EXPECT_GT(runs * step, 300U);
}

TEST_F(RestoreStaysInside, AHardLinkedTargetIsReplacedAndNotWrittenThrough)
{
    usualSources();
    world.backup();
    for (const bool original : {true, false}) {
        const std::string tree = original ? "data/" : "back/C/data/";
        for (const char* name : {"a.txt", "sub/b.txt"}) {
            const fs::path place = world.native(tree + name);
            fs::create_directories(place.parent_path());
            fs::remove(place);
            fs::create_hard_link(world.outside() + "/a.txt", place);
        }
        Snapshot before = snapshotOf(world.outside());
        const auto done = world.restore({"C:\\data\\"}, original ? "" : "C:\\back");
        EXPECT_EQ(done.report.filesRestored, 3U);
        Snapshot after = snapshotOf(world.outside());
        // The name that went was one of the file's: that alone may show.
        for (Snapshot* const snapshot : {&before, &after}) {
            snapshot->at("a.txt").links = 0;
            snapshot->at("a.txt").changedNs = 0;
        }
        EXPECT_EQ(differenceOf(before, after), "");
        EXPECT_EQ(world.read(tree + "a.txt"), "of a");
        EXPECT_EQ(world.read(tree + "sub/b.txt"), "of b");
    }
}

TEST_F(RestoreStaysInside, ARestoredLinkIsNotFollowedByALaterEntry)
{
    usualSources();
    world.backup();
    // `trap` was a link when it was saved, and a folder another time.
    plant("C/data/trap_FULL_0-1-1.zst",
          packed("C:\\data\\trap", engine::ItemKind::SymbolicLink, world.outside()));
    plant("C/data/trap/" + storedName("a.txt", "evil"), "evil");
    plant("C/data/trap/sub/" + storedName("b.txt", "evil"), "evil");
    const Snapshot outside = snapshotOf(world.outside());
    for (int run = 0; run < 20; ++run) {
        const std::string back = "back" + std::to_string(run);
        const auto done = world.restore({"C:\\data\\"}, "C:\\" + back);
        EXPECT_EQ(differenceOf(outside, snapshotOf(world.outside())), "");
        // Whichever came first, the other is reported, and the rest is there.
        EXPECT_GE(done.report.failed.size(), 1U);
        EXPECT_EQ(world.read(back + "/C/data/a.txt"), "of a");
        EXPECT_EQ(world.read(back + "/C/data/sub/deep/c.txt"), "of c");
        EXPECT_THAT(temporaries(world.native(back)), IsEmpty());
        // Once more over what lies there now.
        world.restore({"C:\\data\\"}, "C:\\" + back);
        EXPECT_EQ(differenceOf(outside, snapshotOf(world.outside())), "");
    }
}

TEST_F(RestoreStaysInside, AFolderInAFilesPlaceCostsThatFileAlone)
{
    usualSources();
    world.write("data/sub/d.txt", "of d");
    world.backup();
    fs::create_directories(world.native("back/C/data/sub/b.txt/full"));
    world.write("back/C/data/sub/d.txt", "older d");
    world.write("back/C/data/a.txt", "older a");
    const auto done = world.restore({"C:\\data\\"}, "C:\\back");
    ASSERT_EQ(done.report.failed.size(), 1U);
    EXPECT_EQ(done.report.failed[0].path, "C:\\data\\sub\\b.txt");
    ASSERT_TRUE(done.raised);
    EXPECT_EQ(done.raised->subject(), "C:\\data\\sub\\b.txt");
    EXPECT_EQ(done.report.filesRestored, 3U);
    EXPECT_EQ(world.read("back/C/data/a.txt"), "of a");
    EXPECT_EQ(world.read("back/C/data/sub/d.txt"), "of d");
    EXPECT_EQ(world.read("back/C/data/sub/deep/c.txt"), "of c");
    EXPECT_TRUE(fs::is_directory(world.native("back/C/data/sub/b.txt/full")));
    EXPECT_THAT(temporaries(world.native("back")), IsEmpty());
    EXPECT_THAT(world.read("app/Log/Restore/Work.txt"), testing::HasSubstr("||3"));
}

// Two sets of hard-linked names that had the same number on the disk one after the other must not
// become one file: a number is given out again when its file is gone.
TEST_F(RestoreStaysInside, NamesThatNeverWereOneFileAreNotJoined)
{
    const auto plantTwin = [&](const std::string& name, std::string_view text) {
        engine::CopyWriter writer(3);
        engine::CopyHeader header;
        header.path = "C:\\data\\" + name;
        header.mode = 0644;
        header.linkGroup = "8:1f";
        header.savedNs = 1;
        const auto bytes = writer.packWhole(header, platform::asBytes(text));
        const archive::CopyMeta meta{text.size(), 1, 1};
        plant("C/data/" + archive::copyName(name, 0, meta, archive::Form::Compressed).value(),
              {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    };
    plantTwin("x", "first file");
    plantTwin("y", "first file");
    plantTwin("p", "second file");
    plantTwin("q", "second file");
    const auto done = world.restore({"C:\\data\\"}, "C:\\back");
    EXPECT_EQ(done.report.filesRestored, 4U);
    EXPECT_EQ(world.read("back/C/data/x"), "first file");
    EXPECT_EQ(world.read("back/C/data/y"), "first file");
    EXPECT_EQ(world.read("back/C/data/p"), "second file");
    EXPECT_EQ(world.read("back/C/data/q"), "second file");
    EXPECT_TRUE(fs::equivalent(world.native("back/C/data/x"), world.native("back/C/data/y")));
    EXPECT_TRUE(fs::equivalent(world.native("back/C/data/p"), world.native("back/C/data/q")));
}

} // namespace
} // namespace vardelin::proofs
