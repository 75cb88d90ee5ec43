#include "engine/engine_world.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/copy_writer.h"
#include "runs/engine/run_keys.h"

#include "base/runtime_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <string>
#include <vector>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kFolder = kRoot + "C\\data\\";
const std::string kPath = kProfiles + "Work.vdp";

ProfileText encrypted(const std::string& password = "secret")
{
    ProfileText text;
    text.encrypt = true;
    text.password = password;
    return text;
}

ProfileText underPassword(const std::string& password)
{
    ProfileText text;
    text.password = password;
    return text;
}

VerifyReport verify(World& world, const std::optional<std::string>& password = std::nullopt)
{
    return verifyArchive(
        world.machine, kPath, 100, [](std::string_view) { return true; }, password);
}

std::vector<std::string> namesIn(World& world, const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : world.ports.fileSystem.list(folder)) {
        if (entry.info.kind == platform::FileKind::Regular)
            names.push_back(entry.name);
    }
    return names;
}

std::string nameStarting(World& world, const std::string& start,
                         const std::string& folder = kFolder)
{
    for (const std::string& name : namesIn(world, folder)) {
        if (name.starts_with(start))
            return name;
    }
    ADD_FAILURE() << "nothing begins with " << start;
    return {};
}

std::vector<std::string> pathsOf(const std::vector<Gap>& gaps)
{
    std::vector<std::string> paths;
    paths.reserve(gaps.size());
    for (const Gap& gap : gaps)
        paths.push_back(gap.path);
    std::sort(paths.begin(), paths.end());
    return paths;
}

KeySlot slotOf(World& world, const std::string& name)
{
    CopyReader reader;
    return reader.readSlot(*world.ports.fileSystem.open(kFolder + name, platform::OpenMode::Read));
}

TEST(Encryption, EveryCopyIsEncryptedAndComesBack)
{
    World world;
    world.setProfile(encrypted());
    world.write("report.doc", "a well-known text");
    world.write("sub\\other.txt", "another");
    world.backup();
    for (const auto& [path, bytes] : world.tree(kRoot)) {
        if (path == "Work.vdp")
            continue;
        EXPECT_TRUE(path.ends_with(".vda")) << path;
        for (const char* text : {"well-known", "report", "data", "another"})
            EXPECT_EQ(bytes.find(text), std::string::npos) << path;
    }
    const RestoreResult result = world.restore({"C:\\data\\"}, "D:\\out");
    EXPECT_EQ(result.mismatch, kFalse);
    EXPECT_EQ(result.lost, kFalse);
    EXPECT_EQ(world.read("D:\\out\\C\\data\\report.doc"), "a well-known text");
    EXPECT_EQ(world.read("D:\\out\\C\\data\\sub\\other.txt"), "another");
}

TEST(Encryption, HoldsWithCompressionOffToo)
{
    World world;
    ProfileText text = encrypted();
    text.compress = false;
    world.setProfile(text);
    world.write("a.txt", "a well-known text");
    world.backup();
    EXPECT_TRUE(nameStarting(world, "a.txt_FULL").ends_with(".vda"));
    EXPECT_EQ(world.backup().noFiles, kTrue);
    world.restore({"C:\\data\\a.txt_000"}, "D:\\out");
    EXPECT_EQ(world.read("D:\\out\\C\\data\\a.txt"), "a well-known text");
}

TEST(Encryption, WithoutAPasswordOpensWithoutOneAndDerivesNothing)
{
    World world;
    world.setProfile(encrypted(""));
    world.write("a.txt", "a well-known text");
    EXPECT_EQ(world.backup().report.keyDerivations, 0U);
    EXPECT_EQ(world.read(kFolder + nameStarting(world, "a.txt")).find("well-known"),
              std::string::npos);
    EXPECT_EQ(world.backup().noFiles, kTrue);
    const RestoreResult result = world.restore({"C:\\data\\"}, "D:\\out");
    EXPECT_EQ(result.report.keyDerivations, 0U);
    EXPECT_EQ(world.read("D:\\out\\C\\data\\a.txt"), "a well-known text");
    EXPECT_THAT(verify(world).mismatched, IsEmpty());
}

TEST(Encryption, LinksTimesModesAndAttributesAreInsideTheSeal)
{
    World world;
    world.setProfile(encrypted());
    world.write("file", "content");
    const auto data = world.ports.fileSystem.openFolder("C:\\data");
    data->setExtendedAttribute("file", {"user.note", "a private remark"});
    data->setMode("file", 0640);
    data->setTimes("file", 11, 13);
    data->createLink("link", "a private target");
    data->createHardLink("second", *data, "file");
    data->createFolder("empty");
    data->openFolder("empty")->setOwnMode(0700);
    world.backup();
    for (const auto& [path, bytes] : world.tree(kRoot)) {
        EXPECT_EQ(bytes.find("private"), std::string::npos) << path;
        if (path != "Work.vdp") {
            EXPECT_TRUE(path.ends_with(".vda")) << path;
        }
    }
    world.restore({"C:\\data\\"}, "D:\\out");
    const auto out = world.ports.fileSystem.openFolder("D:\\out\\C\\data");
    EXPECT_THAT(out->extendedAttributes("file"),
                ElementsAre(platform::ExtendedAttribute{"user.note", "a private remark"}));
    EXPECT_EQ(out->find("file")->mode, 0640U);
    EXPECT_EQ(out->find("file")->modifiedNs, 13);
    EXPECT_EQ(out->readLink("link"), "a private target");
    EXPECT_EQ(out->find("file")->linkCount, 2U);
    EXPECT_EQ(out->find("empty")->mode, 0700U);
    EXPECT_EQ(world.backup().noFiles, kTrue) << "folder records count as up to date";
}

TEST(Encryption, SettingsAreEncryptedToo)
{
    World world;
    world.writeRaw("C:\\home\\Desktop\\icon.desktop", "a private icon");
    world.ports.shell.settings["Desktop Settings"] = {"C:\\home\\Desktop"};
    world.ports.registry.setString(platform::RegistryRoot::CurrentUser, "Software\\Mine", "name",
                                   "a private value");
    ProfileText text = encrypted();
    text.sources = {};
    text.otherData = {"Desktop Settings", "Registry Settings"};
    world.setProfile(text);
    world.backup();
    for (const auto& [path, bytes] : world.tree(kRoot + "OtherData")) {
        EXPECT_TRUE(path.ends_with(".vda")) << path;
        EXPECT_EQ(bytes.find("private"), std::string::npos) << path;
    }
    EXPECT_EQ(world.backup().noFiles, kTrue);
    EXPECT_THAT(verify(world).damaged, IsEmpty());

    world.ports.fileSystem.removeTree("C:\\home");
    world.ports.registry.deleteKey(platform::RegistryRoot::CurrentUser, "Software\\Mine");
    const std::vector<std::string> groups{"Desktop Settings", "Registry Settings"};
    world.setProfile(underPassword("another"));
    const RestoreResult refused = world.restore(groups, "");
    EXPECT_EQ(refused.mismatch, kTrue);
    EXPECT_EQ(refused.lost, kFalse);
    EXPECT_THAT(refused.report.mismatched, SizeIs(2));
    EXPECT_THAT(refused.report.settingsRestored, IsEmpty());
    EXPECT_FALSE(world.exists("C:\\home\\Desktop\\icon.desktop"));

    world.setProfile(text);
    world.restore(groups, "");
    EXPECT_EQ(world.read("C:\\home\\Desktop\\icon.desktop"), "a private icon");
    EXPECT_EQ(world.ports.registry.stringValue(platform::RegistryRoot::CurrentUser,
                                               "Software\\Mine", "name"),
              "a private value");

    // After a change of password the newest copies, which alone are kept, are under the new one.
    text.password = "another";
    world.setProfile(text);
    EXPECT_THAT(world.backup().report.settingsSaved, SizeIs(2));
    EXPECT_EQ(world.restore(groups, "").mismatch, kFalse);
}

TEST(Encryption, ARunDerivesOneKeyAndReusesTheArchivesSalt)
{
    World world;
    world.setProfile(encrypted());
    world.write("a.txt", "one");
    world.write("b.txt", "one");
    EXPECT_EQ(world.backup().report.keyDerivations, 1U);
    world.write("a.txt", "two");
    const BackupResult second = world.backup();
    EXPECT_EQ(second.report.keyDerivations, 1U);
    EXPECT_EQ(second.report.copiesWritten, 1U);
    EXPECT_EQ(slotOf(world, nameStarting(world, "a.txt_FULL")),
              slotOf(world, nameStarting(world, "a.txt_Ver1")));
    const BackupResult unchanged = world.backup();
    EXPECT_EQ(unchanged.noFiles, kTrue);
    EXPECT_EQ(unchanged.report.keyDerivations, 1U);
    EXPECT_EQ(world.restore({"C:\\data\\"}, "D:\\out").report.keyDerivations, 1U);
}

TEST(Encryption, NothingIsDerivedWhereNothingNeedsIt)
{
    World plain;
    plain.write("a.txt", "a");
    EXPECT_EQ(plain.backup().report.keyDerivations, 0U);
    EXPECT_EQ(plain.backup().report.keyDerivations, 0U);
    EXPECT_EQ(plain.restore({"C:\\data\\"}, "D:\\out").report.keyDerivations, 0U);
    World empty;
    ProfileText text = encrypted();
    text.sources = {"C:\\nothing\\"};
    empty.setProfile(text);
    const BackupResult nothing = empty.backup();
    EXPECT_EQ(nothing.noFiles, kTrue);
    EXPECT_EQ(nothing.report.keyDerivations, 0U);
}

TEST(Encryption, ATouchedFileIsOnlyRenamed)
{
    World world;
    world.setProfile(encrypted());
    world.write("a.txt", "same");
    world.backup();
    world.ports.fileSystem.openFolder("C:\\data")->setTimes("a.txt", 5'000'000, 7'000'000);
    const BackupResult touched = world.backup();
    EXPECT_EQ(touched.report.renewed, 1U);
    EXPECT_EQ(touched.report.copiesWritten, 0U);
    EXPECT_EQ(world.backup().report.renewed, 0U);
    world.restore({"C:\\data\\a.txt_000"}, "D:\\out");
    EXPECT_EQ(world.read("D:\\out\\C\\data\\a.txt"), "same");
    EXPECT_EQ(world.ports.fileSystem.find("D:\\out\\C\\data\\a.txt")->modifiedNs, 7'000'000);
}

TEST(Encryption, TurningItOnSavesEverythingOnceMoreAndTurningItOffNothing)
{
    World world;
    world.setProfile(underPassword("secret"));
    world.write("a.txt", "a");
    world.backup();
    world.setProfile(encrypted());
    EXPECT_EQ(world.backup().report.versions, 1U);
    EXPECT_EQ(world.backup().noFiles, kTrue);
    world.setProfile(underPassword("secret"));
    EXPECT_EQ(world.backup().noFiles, kTrue);
}

TEST(Encryption, NamesTooLongForTheirTagAreToldByTheirHeaders)
{
    World world;
    world.setProfile(encrypted());
    const std::string name(230, 'n');
    world.write(name, "content");
    world.backup();
    EXPECT_EQ(nameStarting(world, name), name + "_FULL_.vda");
    EXPECT_EQ(world.backup().noFiles, kTrue);
    EXPECT_EQ(world.copies().begin()->second.sizeBytes, 7U);
    world.restore({"C:\\data\\"}, "D:\\out");
    EXPECT_EQ(world.read("D:\\out\\C\\data\\" + name), "content");
    // Without the password it is in the list all the same, and counts as changed.
    world.setProfile(encrypted("another"));
    EXPECT_THAT(world.entries(), SizeIs(1));
    EXPECT_EQ(world.copies().begin()->second.savedNs, 0);
    EXPECT_EQ(world.backup().report.versions, 1U);
    EXPECT_EQ(world.backup().noFiles, kTrue);
}

TEST(Encryption, ALargeFilesNextVersionTakesItsFramesOver)
{
    World world;
    world.setProfile(encrypted());
    std::string text;
    std::uint64_t state = 7;
    while (text.size() < 12'000'000) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        text += static_cast<char>(state >> 56U);
        text += 'a';
    }
    world.write("large", text);
    world.backup();
    text.replace(6'000'000, 4, "EDIT");
    world.write("large", text);
    EXPECT_EQ(world.backup().report.versions, 1U);
    const auto framesOf = [&](const std::string& name) {
        const KeyRing ring("secret");
        CopyReader reader(&ring);
        const auto file = world.ports.fileSystem.open(kFolder + name, platform::OpenMode::Read);
        const CopyHeader header = reader.readHeader(*file);
        return readIndex(*file, header, reader.bodyOffset(), reader.fileKey());
    };
    std::set<std::uint64_t> before;
    for (const BodyFrame& frame : framesOf(nameStarting(world, "large_FULL")))
        before.insert(frame.packedHash);
    std::size_t same = 0;
    for (const BodyFrame& frame : framesOf(nameStarting(world, "large_Ver1")))
        same += before.contains(frame.packedHash) ? 1U : 0U;
    EXPECT_GE(same + 2, before.size());
    world.restore({"C:\\data\\large_000", "C:\\data\\large_001"}, "D:\\out");
    EXPECT_TRUE(world.read("D:\\out\\C\\data\\large") == text);
    EXPECT_THAT(verify(world).damaged, IsEmpty());
}

// ---- passwords ---------------------------------------------------------------------------------

struct Change {
    const char* what;
    ProfileText before;
    ProfileText after;
};

std::vector<Change> changes()
{
    ProfileText plainStored;
    plainStored.compress = false;
    return {{"set", {}, underPassword("new")},
            {"changed", underPassword("old"), underPassword("new")},
            {"removed", underPassword("old"), {}},
            {"set, encrypted", encrypted(""), encrypted("new")},
            {"changed, encrypted", encrypted("old"), encrypted("new")},
            {"removed, encrypted", encrypted("old"), encrypted("")}};
}

TEST(Password, AChangeSavesEverythingAgainAndOldCopiesNeedTheOldOne)
{
    for (const Change& change : changes()) {
        SCOPED_TRACE(change.what);
        World world;
        world.setProfile(change.before);
        world.write("a.txt", "a");
        world.write("b.txt", "b");
        world.backup();
        world.setProfile(change.after);
        const BackupResult next = world.backup();
        EXPECT_EQ(next.report.versions, 2U);
        EXPECT_EQ(world.backup().noFiles, kTrue);

        const bool opens = change.before.password.empty();
        const RestoreResult old =
            world.restore({"C:\\data\\a.txt_000", "C:\\data\\b.txt_000"}, "D:\\old");
        EXPECT_EQ(old.mismatch, opens ? kFalse : kTrue);
        EXPECT_EQ(old.lost, kFalse);
        EXPECT_EQ(world.exists("D:\\old\\C\\data\\a.txt"), opens);
        if (!opens) {
            EXPECT_THAT(pathsOf(old.report.mismatched),
                        ElementsAre("C:\\data\\a.txt", "C:\\data\\b.txt"));
        }
        EXPECT_EQ(world.restore({"C:\\data\\"}, "D:\\new").mismatch, kFalse);
        EXPECT_EQ(world.read("D:\\new\\C\\data\\b.txt"), "b");

        world.rescuePassword = change.before.password;
        EXPECT_EQ(world.restore({"C:\\data\\a.txt_000"}, "D:\\rescued").mismatch, kFalse);
        EXPECT_EQ(world.read("D:\\rescued\\C\\data\\a.txt"), "a");
    }
}

TEST(Password, GoingBackToAnEarlierOneStartsANewSalt)
{
    World world;
    world.write("a.txt", "a");
    for (const char* password : {"one", "two", "one"}) {
        world.setProfile(encrypted(password));
        EXPECT_EQ(world.backup().report.copiesWritten, 1U) << password;
    }
    EXPECT_EQ(world.restore({"C:\\data\\a.txt_000"}, "D:\\out").mismatch, kFalse)
        << "the first copy is under the same password, if not the same salt";
    EXPECT_EQ(world.restore({"C:\\data\\a.txt_001"}, "D:\\out").mismatch, kTrue);
    EXPECT_NE(slotOf(world, nameStarting(world, "a.txt_FULL")).salt,
              slotOf(world, nameStarting(world, "a.txt_Ver2")).salt);
}

// The same password under two salts: one file was left out while it was another one.
TEST(Password, EverySaltOfTodaysPasswordIsRight)
{
    World world;
    world.write("a.txt", "one");
    world.write("b.txt", "two");
    world.setProfile(encrypted("first"));
    world.backup();
    ProfileText without = encrypted("second");
    without.excludeNames = "a.txt";
    world.setProfile(without);
    EXPECT_EQ(world.backup().report.copiesWritten, 1U);
    without.password = "first";
    world.setProfile(without);
    EXPECT_EQ(world.backup().report.copiesWritten, 1U);
    world.setProfile(encrypted("first"));
    EXPECT_EQ(world.backup().noFiles, kTrue);
    world.write("c.txt", "three");
    EXPECT_EQ(world.backup().report.copiesWritten, 1U);
    EXPECT_EQ(world.restore({"C:\\data\\"}, "C:\\out").report.filesRestored, 3U);
}

TEST(Password, AnArchiveOfTwoPasswordsFindsTodaysAmongThem)
{
    World world;
    world.setProfile(encrypted("old"));
    world.write("a.txt", "a");
    world.write("b.txt", "b");
    world.write("c.txt", "c");
    world.backup();
    // A run under the new password that saved one file alone, as a cancelled one does.
    world.setProfile(encrypted("new"));
    ProfileText one = encrypted("new");
    one.sources = {"C:\\data\\b.txt"};
    world.setProfile(one);
    EXPECT_EQ(world.backup().report.versions, 1U);
    world.setProfile(encrypted("new"));
    const BackupResult rest = world.backup();
    EXPECT_EQ(rest.report.versions, 2U);
    EXPECT_EQ(rest.report.keyDerivations, 2U) << "one for each salt, whatever the order";
    EXPECT_EQ(slotOf(world, nameStarting(world, "a.txt_Ver1")),
              slotOf(world, nameStarting(world, "b.txt_Ver1")));
    EXPECT_EQ(world.backup().noFiles, kTrue);
}

TEST(Password, MismatchedAndLostEntriesAreToldApartAndTheOthersRestored)
{
    World world;
    world.setProfile(encrypted("old"));
    world.write("old.txt", "old");
    world.backup();
    world.ports.fileSystem.removeFile("C:\\data\\old.txt");
    world.setProfile(encrypted("new"));
    world.write("good.txt", "good");
    world.write("gone.txt", "gone");
    world.backup();
    world.ports.fileSystem.removeFile(kFolder + nameStarting(world, "gone.txt"));
    const RestoreResult result = world.restore(
        {"C:\\data\\old.txt_000", "C:\\data\\good.txt_000", "C:\\data\\gone.txt_000"}, "D:\\out");
    EXPECT_EQ(result.mismatch, kTrue);
    EXPECT_EQ(result.lost, kTrue);
    EXPECT_THAT(pathsOf(result.report.mismatched), ElementsAre("C:\\data\\old.txt"));
    EXPECT_THAT(pathsOf(result.report.lost), ElementsAre("C:\\data\\gone.txt_000"));
    EXPECT_EQ(world.tree("D:\\out").size(), 1U);
    EXPECT_EQ(world.read("D:\\out\\C\\data\\good.txt"), "good");
}

TEST(Password, CopiesStoredAsTheyAreFollowItToo)
{
    World world;
    ProfileText text = underPassword("secret");
    text.compress = false;
    world.setProfile(text);
    world.write("a.txt", "plain");
    EXPECT_EQ(world.backup().report.fullCopies, 1U);
    EXPECT_EQ(world.read(kFolder + nameStarting(world, "a.txt")), "plain");
    EXPECT_EQ(world.backup().noFiles, kTrue) << "the salt stands beside the profile's copy";
    text.password = "another";
    world.setProfile(text);
    EXPECT_EQ(world.backup().report.versions, 1U);
    EXPECT_EQ(world.backup().noFiles, kTrue);
    // It has no slot that could refuse it.
    EXPECT_EQ(world.restore({"C:\\data\\a.txt_000"}, "D:\\out").mismatch, kFalse);
    // Where the file is gone, the folder's record tells as much, and the next run that writes puts
    // it back; where that is gone too, everything is saved once more, and then no more.
    world.ports.fileSystem.removeFile(kRoot + std::string(kSlotFile));
    EXPECT_EQ(world.backup().noFiles, kTrue);
    EXPECT_TRUE(world.exists(kRoot + std::string(kSlotFile)));
    world.ports.fileSystem.removeFile(kRoot + std::string(kSlotFile));
    world.ports.fileSystem.removeFile(kFolder + nameStarting(world, "~folder"));
    EXPECT_EQ(world.backup().report.versions, 1U);
    EXPECT_EQ(world.backup().noFiles, kTrue);
}

TEST(Password, DamagedCopiesThatShouldGiveTheSaltAreSavedAgain)
{
    World world;
    world.setProfile(encrypted());
    for (const char* name : {"a.txt", "b.txt", "c.txt"})
        world.write(name, name);
    world.backup();
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
        const std::string path = kFolder + nameStarting(world, name);
        std::string bytes = world.read(path);
        bytes[30] = static_cast<char>(bytes[30] ^ 1);
        world.writeRaw(path, bytes);
    }
    const BackupResult result = world.backup();
    EXPECT_EQ(result.report.keyDerivations, 1U);
    EXPECT_EQ(result.report.versions, 3U);
    EXPECT_EQ(slotOf(world, nameStarting(world, "~folder")).salt,
              slotOf(world, nameStarting(world, "a.txt_Ver1")).salt);
    EXPECT_EQ(world.backup().noFiles, kTrue);
}

TEST(Password, ADryRunSaysWhatTheRunWouldDo)
{
    World world;
    world.setProfile(encrypted("old"));
    world.write("a.txt", "a");
    world.backup();
    EXPECT_THAT(planBackup(world.machine, kApp, kPath).copies, IsEmpty());
}

TEST(Password, VerifyTellsOtherPasswordsFromDamage)
{
    World world;
    world.setProfile(encrypted("old"));
    world.write("a.txt", "a");
    world.backup();
    world.setProfile(encrypted("new"));
    world.backup();
    const VerifyReport report = verify(world);
    EXPECT_THAT(report.damaged, IsEmpty());
    EXPECT_THAT(pathsOf(report.mismatched),
                ElementsAre(kFolder + nameStarting(world, "a.txt_FULL")));
    EXPECT_EQ(report.outcome, Outcome::CompleteWithGaps);
    EXPECT_THAT(pathsOf(verify(world, "old").mismatched),
                ElementsAre(kFolder + nameStarting(world, "a.txt_Ver1")));
    EXPECT_THAT(verify(world, "").mismatched, SizeIs(2));
}

TEST(Password, VerifyNeedsNoneForCopiesThatAreNotEncrypted)
{
    World world;
    world.setProfile(underPassword("secret"));
    world.write("a.txt", "a");
    world.backup();
    world.setProfile({});
    const VerifyReport report = verify(world);
    EXPECT_EQ(report.copiesChecked, 1U);
    EXPECT_THAT(report.damaged, IsEmpty());
    EXPECT_THAT(report.mismatched, IsEmpty());
    const std::string path = kFolder + nameStarting(world, "a.txt");
    std::string bytes = world.read(path);
    bytes[bytes.size() - 6] = static_cast<char>(bytes[bytes.size() - 6] ^ 1);
    world.writeRaw(path, bytes);
    EXPECT_THAT(pathsOf(verify(world).damaged), ElementsAre(path));
}

// ---- tampering ---------------------------------------------------------------------------------

// What an attacker does with an archive of two files, `a.txt` with a version and `b.txt`, all of
// one size and under one password.
struct Tampering {
    const char* what;
    std::function<void(World&)> act;
    std::vector<std::string> refused; // by entry, as far as it is asked for below
};

void swapBytes(World& world, const std::string& first, const std::string& second)
{
    const std::string one = world.read(kFolder + first);
    const std::string two = world.read(kFolder + second);
    world.writeRaw(kFolder + first, two);
    world.writeRaw(kFolder + second, one);
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    return text.replace(text.find(from), from.size(), to);
}

TEST(Tampering, OfPlacesAndNamesIsRefusedByNameAndWritesNothing)
{
    const auto move = [](World& world, const std::string& from, const std::string& to) {
        world.ports.fileSystem.rename(kFolder + from, kFolder + to);
    };
    const std::vector<Tampering> cases{
        {"two files swapped",
         [](World& w) {
             swapBytes(w, nameStarting(w, "a.txt_FULL"), nameStarting(w, "b.txt_FULL"));
         },
         {"C:\\data\\a.txt_000", "C:\\data\\b.txt_000"}},
        {"two versions swapped",
         [](World& w) {
             swapBytes(w, nameStarting(w, "a.txt_Ver1"), nameStarting(w, "a.txt_FULL"));
         },
         {"C:\\data\\a.txt_000", "C:\\data\\a.txt_001"}},
        {"older bytes under the newer name",
         [](World& w) {
             w.writeRaw(kFolder + nameStarting(w, "a.txt_Ver1"),
                        w.read(kFolder + nameStarting(w, "a.txt_FULL")));
         },
         {"C:\\data\\a.txt_001"}},
        {"renamed to another file",
         [&](World& w) {
             const std::string name = nameStarting(w, "b.txt_FULL");
             move(w, name, replaced(name, "b.txt", "c.txt"));
         },
         {"C:\\data\\c.txt_000"}},
        {"renamed to another version",
         [&](World& w) {
             const std::string name = nameStarting(w, "a.txt_Ver1");
             move(w, name, replaced(name, "Ver1", "Ver2"));
         },
         {"C:\\data\\a.txt_002"}},
        {"a full copy renamed to a version",
         [&](World& w) {
             const std::string name = nameStarting(w, "b.txt_FULL");
             move(w, name, replaced(name, "FULL", "Ver1"));
         },
         {"C:\\data\\b.txt_001"}},
        {"another time of the run in the name",
         [&](World& w) {
             const std::string name = nameStarting(w, "b.txt_FULL");
             auto meta = *archive::parseCopyName(name)->meta;
             ++meta.savedNs;
             move(w, name, *archive::copyName("b.txt", 0, meta, archive::Form::Encrypted));
         },
         {"C:\\data\\b.txt_000"}},
        {"another size in the name",
         [&](World& w) {
             const std::string name = nameStarting(w, "b.txt_FULL");
             auto meta = *archive::parseCopyName(name)->meta;
             ++meta.sizeBytes;
             move(w, name, *archive::copyName("b.txt", 0, meta, archive::Form::Encrypted));
         },
         {"C:\\data\\b.txt_000"}},
        {"moved to another folder",
         [](World& w) {
             const std::string name = nameStarting(w, "b.txt_FULL");
             w.writeRaw(kFolder + "sub\\" + name, w.read(kFolder + name));
         },
         {"C:\\data\\sub\\b.txt_000"}},
    };
    for (const bool encrypt : {true, false}) {
        for (const Tampering& tampering : cases) {
            SCOPED_TRACE(tampering.what);
            World world;
            ProfileText text = encrypted();
            text.encrypt = encrypt;
            world.setProfile(text);
            world.write("a.txt", "one");
            world.write("b.txt", "two");
            world.backup();
            world.write("a.txt", "new");
            world.backup();
            // A plain copy's name says the same with another ending.
            tampering.act(world);
            if (!encrypt) {
                for (const std::string& name : namesIn(world, kFolder)) {
                    if (name.ends_with(".vda") && !name.starts_with("~"))
                        world.ports.fileSystem.rename(kFolder + name,
                                                      kFolder + replaced(name, ".vda", ".zst"));
                }
            }
            const RestoreResult result = world.restore(tampering.refused, "D:\\out");
            EXPECT_EQ(result.lost, kTrue);
            EXPECT_EQ(result.mismatch, kFalse);
            // Of several versions of one file only the newest is read.
            EXPECT_GE(result.report.lost.size(), 1U);
            EXPECT_FALSE(world.exists("D:\\out") && !world.tree("D:\\out").empty());
            std::size_t damaged = 0;
            for (const Gap& gap : verify(world).damaged)
                damaged += gap.reason.starts_with("it holds") ? 1U : 0U;
            EXPECT_EQ(damaged, tampering.refused.size());
        }
    }
}

TEST(Tampering, WithAnyBitOrLengthOfAFileIsRefusedAndWritesNothing)
{
    World world;
    world.setProfile(encrypted());
    world.write("a.txt", "the content of a small file");
    world.write("b.txt", "other");
    world.backup();
    const std::string path = kFolder + nameStarting(world, "a.txt");
    const std::string good = world.read(path);
    const auto refused = [&](const std::string& bytes) {
        world.writeRaw(path, bytes);
        const RestoreResult result =
            world.restore({"C:\\data\\a.txt_000", "C:\\data\\b.txt_000"}, "D:\\out");
        return result.lost == kTrue && result.mismatch == kFalse &&
               pathsOf(result.report.lost) == std::vector<std::string>{"C:\\data\\a.txt"} &&
               world.tree("D:\\out") ==
                   std::map<std::string, std::string>{{"C\\data\\b.txt", "other"}};
    };
    for (std::size_t at = 0; at < good.size(); ++at) {
        std::string bytes = good;
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << (at % 8)));
        ASSERT_TRUE(refused(bytes)) << "bit at byte " << at;
        ASSERT_TRUE(refused(good.substr(0, at))) << "cut at " << at;
    }
    EXPECT_TRUE(refused(good + "x"));
    world.writeRaw(path, good);
    EXPECT_EQ(world.restore({"C:\\data\\a.txt_000"}, "D:\\out").lost, kFalse);
}

TEST(Tampering, WithASettingsTextIsRefused)
{
    World world;
    world.ports.registry.setString(platform::RegistryRoot::CurrentUser, "Software\\Mine", "name",
                                   "old");
    ProfileText text = encrypted();
    text.sources = {};
    text.otherData = {"Registry Settings"};
    world.setProfile(text);
    world.backup();
    const std::string folder = kRoot + "OtherData\\Registry Settings\\";
    const std::string oldBytes = world.read(folder + nameStarting(world, "registry", folder));
    world.ports.registry.setString(platform::RegistryRoot::CurrentUser, "Software\\Mine", "name",
                                   "new");
    world.ports.clock.advance(std::chrono::seconds(1));
    world.backup();
    world.writeRaw(folder + nameStarting(world, "registry", folder), oldBytes);
    EXPECT_EQ(world.restore({"Registry Settings"}, "").lost, kTrue);
    EXPECT_EQ(world.ports.registry.stringValue(platform::RegistryRoot::CurrentUser,
                                               "Software\\Mine", "name"),
              "new");
    EXPECT_THAT(verify(world).damaged, SizeIs(1));
}

TEST(Tampering, WithTheTagInANameOnlySavesTheFileOnceMore)
{
    World world;
    world.setProfile(encrypted());
    for (const char* name : {"a.txt", "b.txt", "c.txt"})
        world.write(name, name);
    world.backup();
    for (const char* name : {"a.txt", "b.txt"}) {
        const std::string old = nameStarting(world, name);
        auto meta = *archive::parseCopyName(old)->meta;
        meta.passwordTag ^= 1U;
        world.ports.fileSystem.rename(
            kFolder + old, kFolder + *archive::copyName(name, 0, meta, archive::Form::Encrypted));
    }
    EXPECT_EQ(world.backup().report.versions, 2U);
    EXPECT_EQ(world.backup().noFiles, kTrue);
}

} // namespace
} // namespace vardelin::engine
