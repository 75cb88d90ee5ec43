#include "engine/engine_world.h"

#include "base/runtime_error.h"
#include "platform/linux/linux_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kEntry = "C:\\data\\report.doc";

// Three copies, saved on the 3rd, 5th and 7th of July 2003.
void threeVersions(World& world)
{
    int day = 3;
    for (const char* text : {"third", "fifth", "seventh"}) {
        world.ports.clock.setLocal({{2003, 7, day}, {9, 5, 3}});
        world.write("report.doc", text);
        world.backup();
        day += 2;
    }
}

TEST(Restore, TheEntrysTagSelectsTheVersion)
{
    World world;
    threeVersions(world);
    const std::vector<std::pair<std::string, std::string>> cases{
        {"_000", "third"}, {"_001", "fifth"}, {"_002", "seventh"}};
    for (const auto& [tag, text] : cases) {
        world.restore({kEntry + tag}, "D:\\back");
        EXPECT_EQ(world.read("D:\\back\\C\\data\\report.doc"), text);
    }
}

TEST(Restore, GoesBackToItsPlaceWithTimesAndMode)
{
    World world;
    world.write("sub\\report.doc", "text");
    const auto folder = world.ports.fileSystem.openFolder("C:\\data\\sub");
    folder->setMode("report.doc", 0640);
    folder->setTimes("report.doc", 1'000'000'001, 2'000'000'002);
    world.backup();
    world.ports.fileSystem.removeTree("C:\\data\\sub");
    const RestoreResult result = world.restore({"C:\\data\\sub\\report.doc_000"}, "");
    EXPECT_EQ(result.report.filesRestored, 1U);
    EXPECT_EQ(world.read("C:\\data\\sub\\report.doc"), "text");
    const auto info = world.ports.fileSystem.find("C:\\data\\sub\\report.doc");
    EXPECT_EQ(info->mode, 0640U);
    EXPECT_EQ(info->modifiedNs, 2'000'000'002);
}

TEST(Restore, ByDateTakesTheNewestCopyOfThatDayOrBefore)
{
    const std::vector<std::pair<std::string, std::string>> cases{
        {"3/7/2003", "third"}, {"4/7/2003", "third"},   {"5/7/2003", "fifth"},
        {"6/7/2003", "fifth"}, {"7/7/2003", "seventh"}, {"1/1/2010", "seventh"},
    };
    World world;
    threeVersions(world);
    for (const auto& [date, text] : cases) {
        // The entry's own tag does not decide.
        const RestoreResult result = world.restore({kEntry + "_001"}, "D:\\back", date);
        EXPECT_EQ(world.read("D:\\back\\C\\data\\report.doc"), text) << date;
        EXPECT_EQ(result.dateNotMatched, kFalse);
    }
}

TEST(Restore, DateNotMatchedMeansThatNoEntryHasACopyForIt)
{
    World world;
    threeVersions(world);
    const RestoreResult before = world.restore({kEntry + "_000"}, "D:\\back", "2/7/2003");
    EXPECT_EQ(before.dateNotMatched, kTrue);
    EXPECT_EQ(before.lost, kFalse);
    EXPECT_FALSE(world.exists("D:\\back\\C"));

    world.ports.clock.setLocal({{2003, 7, 1}, {9, 0, 0}});
    world.write("old.txt", "old");
    world.backup();
    const RestoreResult some =
        world.restore({kEntry + "_000", "C:\\data\\old.txt_000"}, "D:\\back", "2/7/2003");
    EXPECT_EQ(some.dateNotMatched, kFalse) << "one of them matched";
    EXPECT_THAT(some.report.notMatched, ElementsAre(kEntry + "_000"));
    EXPECT_EQ(world.read("D:\\back\\C\\data\\old.txt"), "old");
}

TEST(Restore, WithoutADateDateNotMatchedStaysFalse)
{
    World world;
    threeVersions(world);
    EXPECT_EQ(world.restore({"C:\\data\\nothing_000"}, "D:\\back").dateNotMatched, kFalse);
}

TEST(Restore, AMissingArchiveFileSetsTheFlagAndTheOthersAreRestored)
{
    World world;
    world.write("a.txt", "a");
    world.write("b.txt", "b");
    world.backup();
    world.ports.fileSystem.removeFile(world.copies().at("C:\\data\\a.txt_000").archivePath);
    const RestoreResult result =
        world.restore({"C:\\data\\a.txt_000", "C:\\data\\b.txt_000"}, "D:\\back");
    EXPECT_EQ(result.lost, kTrue);
    EXPECT_EQ(result.mismatch, kFalse);
    EXPECT_EQ(result.report.filesRestored, 1U);
    EXPECT_EQ(world.read("D:\\back\\C\\data\\b.txt"), "b");
    EXPECT_FALSE(world.exists("D:\\back\\C\\data\\a.txt"));
}

TEST(Restore, ADamagedArchiveFileIsLostAndWritesNoByte)
{
    World world;
    world.write("a.txt", "some text that is worth keeping");
    world.backup();
    const std::string path = world.copies().at("C:\\data\\a.txt_000").archivePath;
    const std::string whole = world.read(path);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
        world.writeRaw(path, damaged);
        const RestoreResult result = world.restore({"C:\\data\\a.txt_000"}, "D:\\back");
        EXPECT_EQ(result.lost, kTrue) << "bit at byte " << at;
        EXPECT_TRUE(world.tree("D:\\back\\C").empty()) << "bit at byte " << at;
    }
    for (std::size_t length = 0; length < whole.size(); ++length) {
        world.writeRaw(path, whole.substr(0, length));
        EXPECT_EQ(world.restore({"C:\\data\\a.txt_000"}, "D:\\back").lost, kTrue) << length;
    }
}

TEST(Restore, ACopyUnderAnotherNameIsRefused)
{
    World world;
    world.write("a.txt", "a");
    world.write("b.txt", "b");
    world.backup();
    const auto copies = world.copies();
    // The two archive files trade their contents: both are whole, and both are wrong.
    const std::string a = world.read(copies.at("C:\\data\\a.txt_000").archivePath);
    const std::string b = world.read(copies.at("C:\\data\\b.txt_000").archivePath);
    world.writeRaw(copies.at("C:\\data\\a.txt_000").archivePath, b);
    world.writeRaw(copies.at("C:\\data\\b.txt_000").archivePath, a);
    const RestoreResult result = world.restore({"C:\\data\\"}, "D:\\back");
    EXPECT_EQ(result.report.lost.size(), 2U);
    EXPECT_THAT(result.report.lost[0].reason, HasSubstr("it holds another file"));
    EXPECT_TRUE(world.tree("D:\\back").empty());
}

TEST(Restore, AFolderKeyTakesTheNewestCopyOfEachFileBelow)
{
    World world;
    world.write("x\\a.txt", "a1");
    world.write("x\\deep\\b.txt", "b1");
    world.write("y\\c.txt", "c1");
    world.backup();
    world.write("x\\a.txt", "a2");
    world.backup();
    const RestoreResult result = world.restore({"C:\\data\\x\\"}, "D:\\back");
    EXPECT_EQ(result.report.filesRestored, 2U);
    EXPECT_EQ(world.read("D:\\back\\C\\data\\x\\a.txt"), "a2");
    EXPECT_EQ(world.read("D:\\back\\C\\data\\x\\deep\\b.txt"), "b1");
    EXPECT_FALSE(world.exists("D:\\back\\C\\data\\y"));
}

TEST(Restore, OfSeveralVersionsOfOneFileTheNewestRequestedEndsUpAtTheTarget)
{
    World world;
    threeVersions(world);
    const RestoreResult result = world.restore({kEntry + "_001", kEntry + "_000"}, "D:\\back");
    EXPECT_EQ(result.report.filesRestored, 1U) << "each target counts once";
    EXPECT_EQ(world.read("D:\\back\\C\\data\\report.doc"), "fifth");
}

TEST(Restore, AFolderAndAnOldVersionOfAFileInItGiveTheNewestOnce)
{
    World world;
    threeVersions(world);
    world.write("other.txt", "other");
    world.backup();
    for (const auto& entries : {std::vector<std::string>{kEntry + "_000", "C:\\data\\"},
                                std::vector<std::string>{"C:\\data\\", kEntry + "_000"}}) {
        const RestoreResult result = world.restore(entries, "D:\\back");
        EXPECT_EQ(result.report.filesRestored, 2U);
        EXPECT_EQ(world.read("D:\\back\\C\\data\\report.doc"), "seventh");
        EXPECT_EQ(world.read("D:\\back\\C\\data\\other.txt"), "other");
    }
}

TEST(Restore, EntriesThatOverlapRestoreEachFileOnceAndAddUpToAHundred)
{
    World world;
    world.write("x\\a.txt", "a1");
    world.write("x\\deep\\b.txt", "b1");
    world.write("x2\\d.txt", "d1");
    world.write("y\\c.txt", "c1");
    world.backup();
    struct Case {
        std::vector<std::string> entries;
        std::uint64_t files;
    };
    const std::vector<Case> cases{
        {{"C:\\data\\", "C:\\data\\x\\"}, 4},
        {{"C:\\data\\x\\", "C:\\data\\"}, 4},
        {{"C:\\data\\x\\", "C:\\data\\x2\\"}, 3},
        {{"C:\\data\\x\\deep\\b.txt_000", "C:\\data\\x\\"}, 2},
        {{"C:\\data\\x\\", "C:\\data\\y\\c.txt_000", "C:\\data\\x\\a.txt_000"}, 3},
        {{"C:\\data\\y\\c.txt_000", "C:\\data\\x\\a.txt_000", "C:\\data\\y\\"}, 2},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        for (const char* date : {"NULL", "31/12/2090"}) {
            world.events.progress = 0;
            const std::string target = "D:\\back" + std::to_string(i);
            const RestoreResult result = world.restore(cases[i].entries, target, date);
            EXPECT_EQ(result.report.filesRestored, cases[i].files) << "case " << i;
            EXPECT_EQ(world.tree(target).size(), cases[i].files) << "case " << i;
            EXPECT_NEAR(world.events.progress, 100.0, 1e-9) << "case " << i;
            EXPECT_EQ(result.lost, kFalse) << "case " << i;
        }
    }
}

TEST(Restore, AFolderOfManyBatchesComesBackWhole)
{
    World world;
    for (int i = 0; i < 300; ++i)
        world.write((i % 3 == 0 ? "" : "deep\\") + std::to_string(i),
                    "content " + std::to_string(i));
    world.backup();
    world.events.progress = 0;
    const RestoreResult result = world.restore({"C:\\"}, "D:\\back");
    EXPECT_EQ(result.report.filesRestored, 300U);
    EXPECT_EQ(world.tree("D:\\back\\C\\data"), world.tree("C:\\data"));
    EXPECT_NEAR(world.events.progress, 100.0, 1e-9);
}

TEST(Restore, AnEntryNeverStandsForALongerNumber)
{
    World world;
    for (int i = 0; i <= 12; ++i) {
        world.write("a", std::string(static_cast<std::size_t>(i) + 1, 'x'));
        world.backup();
    }
    world.restore({"C:\\data\\a_001"}, "D:\\back");
    EXPECT_EQ(world.read("D:\\back\\C\\data\\a"), "xx");
    world.restore({"C:\\data\\a_012"}, "D:\\back");
    EXPECT_EQ(world.read("D:\\back\\C\\data\\a").size(), 13U);
}

TEST(Restore, IncrementsAddUpToAHundred)
{
    World world;
    for (int i = 0; i < 7; ++i)
        world.write("f" + std::to_string(i), "x");
    world.backup();
    world.events.progress = 0;
    world.restore({"C:\\data\\"}, "D:\\back");
    EXPECT_NEAR(world.events.progress, 100.0, 1e-9);
    world.events.progress = 0;
    world.restore({}, "D:\\back");
    EXPECT_NEAR(world.events.progress, 100.0, 1e-9);
}

TEST(Restore, WritesOneLogRecord)
{
    World world;
    world.write("a.txt", "a");
    world.backup();
    world.restore({"C:\\data\\a.txt_000"}, "D:\\back");
    world.restore({"C:\\data\\a.txt_000"}, "");
    EXPECT_EQ(world.read("C:\\app\\Log\\Restore\\Work.txt"),
              "Work||D:\\back||2003-07-03 09:05:03||1\r\n"
              "Work||Original Location||2003-07-03 09:05:03||1\r\n");
}

TEST(Restore, UnwritableTargetsAreRaisedWhenTheOthersAreDone)
{
    World world;
    world.write("locked\\a.txt", "a");
    world.write("open\\b.txt", "b");
    world.backup();
    world.ports.fileSystem.removeFile("C:\\data\\locked\\a.txt");
    world.ports.fileSystem.removeFile("C:\\data\\open\\b.txt");
    world.ports.fileSystem.setReadOnly("C:\\data\\locked");
    try {
        world.restore({"C:\\data\\locked\\a.txt_000", "C:\\data\\open\\b.txt_000"}, "");
        FAIL() << "the unwritable target was not raised";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), base::error_number::kPermissionDenied);
        EXPECT_EQ(error.subject(), "C:\\data\\locked\\a.txt");
    }
    EXPECT_EQ(world.read("C:\\data\\open\\b.txt"), "b");
}

TEST(Restore, NeverWritesThroughALinkInTheWay)
{
    World world;
    world.write("sub\\deep\\a.txt", "a");
    world.backup();
    world.ports.fileSystem.createFolders("C:\\victim");
    world.ports.fileSystem.createFolders("D:\\back\\C\\data");
    world.ports.fileSystem.openFolder("D:\\back\\C\\data")
        ->createLink("sub", world.ports.fileSystem.toNative("C:\\victim"));
    EXPECT_THROW(world.restore({"C:\\data\\"}, "D:\\back"), RuntimeError);
    EXPECT_TRUE(world.tree("C:\\victim").empty());

    // The same at the original place, below what the profile names.
    world.ports.fileSystem.removeTree("C:\\data\\sub");
    world.ports.fileSystem.openFolder("C:\\data")
        ->createLink("sub", world.ports.fileSystem.toNative("C:\\victim"));
    EXPECT_THROW(world.restore({"C:\\data\\"}, ""), RuntimeError);
    EXPECT_TRUE(world.tree("C:\\victim").empty());
}

TEST(Restore, ReplacesALinkAtTheTargetAndNotWhatItLeadsTo)
{
    World world;
    world.write("a.txt", "mine");
    world.backup();
    world.writeRaw("C:\\victim.txt", "precious");
    world.ports.fileSystem.removeFile("C:\\data\\a.txt");
    world.ports.fileSystem.openFolder("C:\\data")
        ->createLink("a.txt", world.ports.fileSystem.toNative("C:\\victim.txt"));
    world.restore({"C:\\data\\a.txt_000"}, "");
    EXPECT_EQ(world.read("C:\\victim.txt"), "precious");
    EXPECT_EQ(world.ports.fileSystem.openFolder("C:\\data")->find("a.txt")->kind,
              platform::FileKind::Regular);
    EXPECT_EQ(world.read("C:\\data\\a.txt"), "mine");
}

TEST(Restore, KeepsLinksEmptyFoldersAttributesAndFolderRights)
{
    World world;
    world.write("a.txt", "a");
    world.write("private\\p.txt", "p");
    auto& files = world.ports.fileSystem;
    files.createFolders("C:\\data\\empty");
    const auto data = files.openFolder("C:\\data");
    data->createLink("link", "a.txt");
    data->createHardLink("twin", *data, "a.txt");
    data->setExtendedAttribute("a.txt", {"user.comment", std::string("v\0w", 3)});
    data->setMode("private", 0700);
    data->setTimes("empty", 42'000, 43'000);
    world.backup();
    world.restore({"C:\\data\\"}, "D:\\back");
    const auto back = files.openFolder("D:\\back\\C\\data");
    EXPECT_EQ(back->readLink("link"), "a.txt");
    EXPECT_EQ(back->find("a.txt")->inode, back->find("twin")->inode);
    EXPECT_THAT(back->extendedAttributes("a.txt"),
                ElementsAre(platform::ExtendedAttribute{"user.comment", std::string("v\0w", 3)}));
    EXPECT_EQ(back->find("private")->mode, 0700U);
    ASSERT_TRUE(back->find("empty"));
    EXPECT_EQ(back->find("empty")->modifiedNs, 43'000);
    EXPECT_TRUE(files.list("D:\\back\\C\\data\\empty").empty());
}

// The copies of two names can come from different runs, and then one of them is older.
TEST(Restore, JoinsOnlyNamesOfTheSameContentIntoOneFile)
{
    World world;
    world.write("a.txt", "first");
    auto& files = world.ports.fileSystem;
    files.openFolder("C:\\data")->createHardLink("twin", *files.openFolder("C:\\data"), "a.txt");
    world.backup();
    world.write("a.txt", "second");
    files.script().failCallsNamed("folder.open", base::error_number::kDeviceIo, "data\\a.txt");
    EXPECT_EQ(world.backup().missed, kTrue);
    files.script().reset();
    world.restore({"C:\\data\\"}, "D:\\back");
    EXPECT_EQ(world.read("D:\\back\\C\\data\\a.txt"), "first");
    EXPECT_EQ(world.read("D:\\back\\C\\data\\twin"), "second");
}

// Every byte that a Linux name can hold, and what stands at its end, on the real disk.
TEST(Restore, OddNamesMakeTheRoundTripOnARealDisk)
{
    std::string place = testing::TempDir() + "vardelin-names-XXXXXX";
    ASSERT_NE(::mkdtemp(place.data()), nullptr);
    platform::LinuxFileSystem disk(
        std::make_shared<const platform::DriveMap>(std::vector<platform::DriveRoot>{{'C', place}}));
    World world;
    const platform::Machine machine{disk,
                                    world.ports.drives,
                                    world.ports.registry,
                                    world.ports.shell,
                                    world.ports.facts,
                                    world.ports.processes,
                                    world.ports.clock,
                                    world.ports.messageLoop,
                                    world.ports.messageBoxes};
    for (const char* folder : {"C:\\app\\Profiles", "C:\\store", "C:\\data"})
        disk.createFolders(folder);
    ProfileText text;
    text.destination = "C:\\store";
    disk.replaceFile(kProfiles + "Work.vdp", profile::scrambleText(text.plain()));

    std::vector<std::string> names{"dot.",
                                   "dots..",
                                   "blank ",
                                   " blank",
                                   ". .",
                                   "...",
                                   "full.",
                                   "\xef\x80\xba",
                                   "\xef\x80\xae",
                                   "a\xef\x83\xbf",
                                   std::string(255, 'n'),
                                   std::string(243, 'm')};
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/')
            names.push_back(std::string("b") + static_cast<char>(byte));
    }
    for (const std::string& name : names)
        std::ofstream(place + "/data/" + name, std::ios::binary) << "first of " << name;
    const auto backup = [&] {
        Engine engine(machine, kApp, world.events);
        TruthValue success = kFalse;
        engine.EngineBackup(kProfiles, "Work.vdp", success);
        return engine.backupReport();
    };
    const BackupReport first = backup();
    // A name that leaves no room for a mark cannot be saved, and is named.
    ASSERT_EQ(first.missed.size(), 1U);
    EXPECT_THAT(first.missed[0].reason, HasSubstr("too long"));
    EXPECT_EQ(backup().outcome, Outcome::CompleteWithGaps);
    EXPECT_EQ(backup().copiesWritten, 0U) << "every name was found again";
    for (const std::string& name : names)
        std::ofstream(place + "/data/" + name, std::ios::binary) << "second of " << name << " ";
    EXPECT_EQ(backup().versions, names.size() - 1);

    Engine engine(machine, kApp, world.events);
    base::TextCollection chosen;
    chosen.add("C:\\data\\", "C:\\data\\");
    engine.EngineRestore(kProfiles, "Work.vdp", chosen, "C:\\back", "NULL");
    EXPECT_THAT(engine.restoreReport().lost, IsEmpty());
    for (const std::string& name : names) {
        if (name.size() > 200)
            continue;
        std::ifstream file(place + "/back/C/data/" + name, std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(content, "second of " + name + " ") << name;
    }
    std::filesystem::remove_all(place);
}

TEST(Restore, SettingsGroupsGoBackToTheirPlacesWhateverTheDate)
{
    World world;
    world.writeRaw("C:\\home\\Desktop\\icon.desktop", "icon");
    world.ports.shell.settings["Desktop Settings"] = {"C:\\home\\Desktop"};
    world.ports.registry.setString(platform::RegistryRoot::CurrentUser, "Software\\Mine", "name",
                                   "value");
    ProfileText text;
    text.sources = {};
    text.otherData = {"Desktop Settings", "Registry Settings"};
    world.setProfile(text);
    const BackupResult saved = world.backup();
    EXPECT_THAT(saved.report.settingsSaved,
                testing::UnorderedElementsAre("Desktop Settings", "Registry Settings"));
    EXPECT_THAT(world.entries(), IsEmpty()) << "settings are in no catalog";
    EXPECT_EQ(world.backup().noFiles, kTrue) << "nothing of them changed";

    world.ports.fileSystem.removeTree("C:\\home");
    world.ports.registry.deleteKey(platform::RegistryRoot::CurrentUser, "Software\\Mine");
    const RestoreResult result =
        world.restore({"Desktop Settings", "Registry Settings"}, "", "1/1/1999");
    EXPECT_EQ(result.dateNotMatched, kFalse) << "settings have no date";
    EXPECT_EQ(result.lost, kFalse);
    EXPECT_EQ(world.read("C:\\home\\Desktop\\icon.desktop"), "icon");
    EXPECT_EQ(world.ports.registry.stringValue(platform::RegistryRoot::CurrentUser,
                                               "Software\\Mine", "name"),
              "value");
}

TEST(Restore, AChangedSettingsFileReplacesItsCopy)
{
    World world;
    world.writeRaw("C:\\home\\Desktop\\a", "one");
    world.ports.shell.settings["Desktop Settings"] = {"C:\\home\\Desktop"};
    ProfileText text;
    text.otherData = {"Desktop Settings"};
    world.setProfile(text);
    world.backup();
    world.writeRaw("C:\\home\\Desktop\\a", "two");
    world.backup();
    EXPECT_EQ(world.tree(kRoot + "OtherData").size(), 1U) << "the newest alone is kept";
    world.restore({"Desktop Settings"}, "");
    EXPECT_EQ(world.read("C:\\home\\Desktop\\a"), "two");
}

TEST(Verify, NamesExactlyTheDamagedCopyAndTheForeignFiles)
{
    World world;
    for (int i = 0; i < 5; ++i)
        world.write("f" + std::to_string(i), "content " + std::to_string(i));
    world.backup();
    const std::string path = world.copies().at("C:\\data\\f3_000").archivePath;
    std::string bytes = world.read(path);
    bytes[bytes.size() - 3] = static_cast<char>(bytes[bytes.size() - 3] ^ 1);
    world.writeRaw(path, bytes);
    world.writeRaw(kRoot + "C\\data\\Version.txt", "foreign");
    world.writeRaw(kRoot + "C\\data\\readme", "foreign");
    const VerifyReport report = verifyArchive(world.machine, kProfiles + "Work.vdp", 100,
                                              [](std::string_view) { return true; });
    EXPECT_EQ(report.copiesChecked, 5U);
    ASSERT_EQ(report.damaged.size(), 1U);
    EXPECT_EQ(report.damaged[0].path, path);
    EXPECT_THAT(report.foreign, testing::UnorderedElementsAre(kRoot + "C\\data\\Version.txt",
                                                              kRoot + "C\\data\\readme"));
}

TEST(Verify, RaisesWhatListingTheArchiveRaises)
{
    World world;
    world.write("x\\f", "x");
    world.backup();
    world.ports.fileSystem.script().failCallsNamed("folder.list", base::error_number::kDeviceIo,
                                                   kRoot + "C\\data\\x");
    EXPECT_THROW(verifyArchive(world.machine, kProfiles + "Work.vdp", 100,
                               [](std::string_view) { return true; }),
                 base::RuntimeError);
}

TEST(Verify, ASampleReadsItsShare)
{
    World world;
    for (int i = 0; i < 100; ++i)
        world.write("f" + std::to_string(i), "x");
    world.backup();
    EXPECT_EQ(verifyArchive(world.machine, kProfiles + "Work.vdp", 20,
                            [](std::string_view) { return true; })
                  .copiesChecked,
              20U);
}

TEST(Restore, TakesARenumberedCopyByTheNumberThatItWasSavedUnder)
{
    struct Case {
        std::uint32_t serial;
        bool restores;
    };
    for (const Case& c : {Case{2, true}, Case{3, false}, Case{0, false}}) {
        World world;
        for (const char* content : {"full", "one", "the second"}) {
            world.write("a.txt", content);
            world.backup();
        }
        const std::string folder = kRoot + "C\\data\\";
        for (const auto& entry : world.ports.fileSystem.list(folder)) {
            const auto name = archive::parseCopyName(entry.name);
            if (!name || name->version == 0)
                continue;
            if (name->version == 1) {
                world.ports.fileSystem.removeFile(folder + entry.name);
                continue;
            }
            archive::CopyMeta meta = *name->meta;
            meta.serial = c.serial;
            world.ports.fileSystem.rename(
                folder + entry.name,
                folder + *archive::copyName(name->sourceName, 1, meta, name->form));
        }
        const RestoreResult result = world.restore({"C:\\data\\a.txt_001"}, "D:\\out");
        EXPECT_EQ(result.lost == kFalse, c.restores) << c.serial;
        EXPECT_EQ(world.exists("D:\\out\\C\\data\\a.txt"), c.restores) << c.serial;
        const VerifyReport check = verifyArchive(world.machine, kProfiles + "Work.vdp", 100,
                                                 [](std::string_view) { return true; });
        EXPECT_EQ(check.damaged.empty(), c.restores) << c.serial;
    }
}

} // namespace
} // namespace vardelin::engine
