#include "test_worlds.h"

#include "base/runtime_error.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

// What every implementation of the file system has in common.
namespace vardelin::platform {
namespace {

using base::RuntimeError;
using test::errorOf;
using test::World;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

struct Kind {
    std::string name;
    std::function<std::unique_ptr<World>()> make;
};

class EveryFileSystem : public testing::TestWithParam<Kind> {
protected:
    std::unique_ptr<World> m_world = GetParam().make();
    FileSystem& m_fs = m_world->fileSystem();
    std::unique_ptr<Folder> m_root = m_fs.openFolder("T:\\");

    void put(std::string_view name, std::string_view text, Folder* folder = nullptr)
    {
        const auto file =
            (folder == nullptr ? *m_root : *folder).open(name, OpenMode::CreateOrTruncate);
        file->write(asBytes(text));
        file->close();
    }
    std::vector<std::string> names(Folder& folder)
    {
        std::vector<std::string> result;
        for (const auto& entry : folder.list())
            result.push_back(entry.name);
        std::sort(result.begin(), result.end());
        return result;
    }
    static std::string textOf(File& file)
    {
        std::string text(100, '\0');
        text.resize(file.read(std::as_writable_bytes(std::span(text))));
        return text;
    }
};

INSTANTIATE_TEST_SUITE_P(
    Implementations, EveryFileSystem,
    testing::Values(Kind{"Linux", [] { return std::make_unique<test::LinuxWorld>(); }},
                    Kind{"Memory", [] { return std::make_unique<test::MemoryWorld>(); }},
                    Kind{"Scripted", [] { return std::make_unique<test::ScriptedWorld>(); }},
                    Kind{"PowerCut", [] { return std::make_unique<test::PowerCutWorld>(); }}),
    [](const auto& one) { return one.param.name; });

TEST_P(EveryFileSystem, ListsNamesAndKindsWithoutTheDots)
{
    put("file", "abc");
    m_root->createFolder("folder");
    m_root->createLink("link", "file");
    std::vector<std::string> seen;
    for (const auto& entry : m_root->list())
        seen.push_back(entry.name + std::to_string(static_cast<int>(entry.kind)));
    EXPECT_THAT(seen, UnorderedElementsAre("file0", "folder1", "link2"));
}

TEST_P(EveryFileSystem, VisitsWhatItListsUntilTheVisitorHasEnough)
{
    for (const char* name : {"a", "b", "c"})
        put(name, "");
    m_root->createFolder("d");
    std::vector<std::string> listed;
    for (const auto& entry : m_root->list())
        listed.push_back(entry.name + std::to_string(static_cast<int>(entry.kind)));
    std::vector<std::string> visited;
    m_root->visit([&](FolderEntry entry) {
        visited.push_back(entry.name + std::to_string(static_cast<int>(entry.kind)));
        return true;
    });
    EXPECT_EQ(visited, listed);
    std::size_t calls = 0;
    m_root->visit([&](const FolderEntry&) { return ++calls < 2; });
    EXPECT_EQ(calls, 2U);
}

TEST_P(EveryFileSystem, ListsAgainFromTheStart)
{
    put("a", "");
    EXPECT_EQ(m_root->list().size(), 1U);
    put("b", "");
    EXPECT_EQ(m_root->list().size(), 2U);
    EXPECT_EQ(m_root->listWithInfo().size(), 2U);
}

TEST_P(EveryFileSystem, ListsThousandsOfEntriesOnceEach)
{
    for (int i = 0; i < 3000; ++i)
        put("a rather long name to fill the blocks with " + std::to_string(i), "");
    auto all = names(*m_root);
    EXPECT_EQ(all.size(), 3000U);
    EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
}

TEST_P(EveryFileSystem, GivesTheDetailsOfEachEntry)
{
    put("file", "abc");
    m_root->createFolder("folder");
    m_root->createLink("link", "missing target");
    for (const auto& entry : m_root->listWithInfo()) {
        const auto found = m_root->find(entry.name);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->inode, entry.info.inode);
        EXPECT_EQ(found->modifiedNs, entry.info.modifiedNs);
        EXPECT_EQ(found->mode, entry.info.mode);
        EXPECT_EQ(entry.info.sizeBytes, entry.name == "file" ? 3U : 0U) << entry.name;
        EXPECT_EQ(entry.info.kind, entry.name == "file"     ? FileKind::Regular
                                   : entry.name == "folder" ? FileKind::Folder
                                                            : FileKind::SymbolicLink);
        EXPECT_EQ(entry.info.device, m_root->info().device);
        EXPECT_GT(entry.info.createdNs, 0);
    }
    EXPECT_EQ(m_root->info().kind, FileKind::Folder);
}

TEST_P(EveryFileSystem, FindsNothingWhereThereIsNothing)
{
    EXPECT_FALSE(m_root->find("none"));
}

TEST_P(EveryFileSystem, TellsThePathAFolderWasOpenedBy)
{
    m_root->createFolder("a");
    EXPECT_EQ(m_root->path(), "T:\\");
    EXPECT_EQ(m_fs.openFolder("T:")->path(), "T:\\");
    EXPECT_EQ(m_fs.openFolder("T:\\a\\")->path(), "T:\\a");
    EXPECT_EQ(m_root->openFolder("a")->path(), "T:\\a");
}

TEST_P(EveryFileSystem, OpensFoldersOnlyWhereThereAreSome)
{
    put("file", "");
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("T:\\none"); }), 76);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("T:\\none\\deeper"); }), 76);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("T:\\file"); }), 75);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("T:\\file\\deeper"); }), 75);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("Q:\\"); }), 76);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("file"); }), 76);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder(""); }), 76);
    EXPECT_EQ(errorOf([&] { m_root->openFolder("none"); }), 76);
    EXPECT_EQ(errorOf([&] { m_root->openFolder("file"); }), 75);
}

TEST_P(EveryFileSystem, TakesDriveLettersInAnyCaseAndDoubledBackslashes)
{
    m_root->createFolder("a");
    m_fs.openFolder("t:\\a")->createFolder("b");
    EXPECT_TRUE(m_fs.folderExists("T:\\\\a\\\\b"));
}

TEST_P(EveryFileSystem, NamesTheThingAndTheReasonInAnError)
{
    try {
        m_root->open("none", OpenMode::Read);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 53);
        EXPECT_EQ(error.subject(), "T:\\none");
        EXPECT_THAT(error.reason(), HasSubstr("No such file"));
    }
}

struct OpenRow {
    OpenMode mode;
    int missing;            // the error where there is no file
    int present;            // the error where there is one
    std::string afterWrite; // what a file of "12345" holds after writing "ab"
};

TEST_P(EveryFileSystem, OpensByMode)
{
    const std::vector<OpenRow> rows{
        {OpenMode::CreateNew, 0, 58, ""},    {OpenMode::CreateOrTruncate, 0, 0, "ab"},
        {OpenMode::Append, 0, 0, "12345ab"}, {OpenMode::ReadWrite, 0, 0, "ab345"},
        {OpenMode::Update, 53, 0, "ab345"},
    };
    for (const OpenRow& row : rows) {
        SCOPED_TRACE(static_cast<int>(row.mode));
        EXPECT_EQ(errorOf([&] { m_root->open("missing", row.mode); }), row.missing);
        EXPECT_EQ(m_root->find("missing").has_value(), row.missing == 0);
        if (row.missing == 0)
            m_root->removeFile("missing");
        put("present", "12345");
        EXPECT_EQ(errorOf([&] { m_root->open("present", row.mode); }), row.present);
        if (row.present == 0) {
            put("present", "12345");
            m_root->open("present", row.mode)->write(asBytes("ab"));
            EXPECT_EQ(m_fs.readAll("T:\\present"), row.afterWrite);
        }
    }
    EXPECT_EQ(errorOf([&] { m_root->open("missing", OpenMode::Read); }), 53);
}

TEST_P(EveryFileSystem, OpensNoFolderAsAFile)
{
    m_root->createFolder("folder");
    for (const OpenMode mode : {OpenMode::Read, OpenMode::Append, OpenMode::CreateOrTruncate})
        EXPECT_EQ(errorOf([&] { m_root->open("folder", mode); }), 75);
    EXPECT_EQ(errorOf([&] { m_root->open("folder", OpenMode::CreateNew); }), 58);
}

TEST_P(EveryFileSystem, RefusesWhatIsNoNameOfAChild)
{
    m_root->createFolder("folder");
    const auto folder = m_root->openFolder("folder");
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("a/b"),
          std::string("..\\a"), std::string("a\0b", 3), std::string(256, 'n'),
          std::string("\xEF\x80\xAE\xEF\x80\xAE")}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorOf([&] { folder->open(name, OpenMode::CreateOrTruncate); }), 75);
        EXPECT_EQ(errorOf([&] { folder->createFolder(name); }), 75);
        EXPECT_EQ(errorOf([&] { folder->openFolder(name); }), 75);
        EXPECT_EQ(errorOf([&] { folder->createLink(name, "x"); }), 75);
    }
    EXPECT_THAT(names(*m_root), ElementsAre("folder"));
}

TEST_P(EveryFileSystem, KeepsEveryByteOfAName)
{
    const std::vector<std::string> all{
        "\xC3\xA9\xE2\x82\xAC", "\xFF\xFE\x80", "with blank", std::string(255, 'n'),
        "\xEF\x80\xBA",         ".hidden",      "~a$&'"};
    for (const std::string& name : all)
        put(name, name);
    for (const std::string& name : all)
        EXPECT_EQ(m_fs.readAll(joinPath("T:\\", name)), name);
    auto sorted = all;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(names(*m_root), sorted);
}

TEST_P(EveryFileSystem, ReadsAndWritesByCursorAndByOffset)
{
    const auto file = m_root->open("f", OpenMode::ReadWrite);
    file->write(asBytes("0123"));
    file->writeAt(1, asBytes("xy"));
    file->write(asBytes("45")); // the cursor has not moved with writeAt
    std::array<std::byte, 3> part{};
    EXPECT_EQ(file->readAt(4, part), 2U);
    EXPECT_EQ(file->readAt(6, part), 0U);
    EXPECT_EQ(file->readAt(100, part), 0U);
    EXPECT_EQ(file->info().sizeBytes, 6U);
    EXPECT_EQ(m_fs.readAll("T:\\f"), "0xy345");
    const auto reader = m_root->open("f", OpenMode::Read);
    EXPECT_EQ(reader->read(part), 3U);
    EXPECT_EQ(textOf(*reader), "345");
    EXPECT_EQ(textOf(*reader), "");
}

TEST_P(EveryFileSystem, FillsWithZerosBehindTheEnd)
{
    const auto file = m_root->open("f", OpenMode::ReadWrite);
    file->writeAt(2, asBytes("a"));
    file->resize(5);
    EXPECT_EQ(m_fs.readAll("T:\\f"), std::string("\0\0a\0\0", 5));
    file->resize(3);
    EXPECT_EQ(m_fs.readAll("T:\\f"), std::string("\0\0a", 3));
}

TEST_P(EveryFileSystem, RefusesToWriteWhatIsOpenForReading)
{
    put("f", "abc");
    const auto file = m_root->open("f", OpenMode::Read);
    EXPECT_NE(errorOf([&] { file->write(asBytes("x")); }), 0);
    EXPECT_EQ(m_fs.readAll("T:\\f"), "abc");
}

TEST_P(EveryFileSystem, RaisesForAClosedFileAndClosesTwiceInPeace)
{
    const auto file = m_root->open("f", OpenMode::ReadWrite);
    file->close();
    EXPECT_EQ(errorOf([&] { file->close(); }), 0);
    EXPECT_EQ(errorOf([&] { file->write(asBytes("x")); }), 57);
    EXPECT_EQ(errorOf([&] { file->info(); }), 57);
}

TEST_P(EveryFileSystem, WalksTheStretchesOfDataWithoutMovingTheCursor)
{
    const auto file = m_root->open("sparse", OpenMode::ReadWrite);
    constexpr std::uint64_t kGap = 1024 * 1024;
    file->writeAt(kGap, asBytes("data"));
    std::uint64_t dataBytes = 0;
    std::uint64_t at = 0;
    while (const auto extent = file->nextData(at)) {
        EXPECT_GE(extent->offset, at);
        EXPECT_GT(extent->length, 0U);
        dataBytes += extent->length;
        at = extent->offset + extent->length;
    }
    EXPECT_EQ(at, kGap + 4);
    EXPECT_GE(dataBytes, 4U);
    EXPECT_FALSE(file->nextData(kGap + 4));
    file->write(asBytes("start"));
    EXPECT_EQ(m_fs.readAll("T:\\sparse").substr(0, 5), "start");
    EXPECT_FALSE(m_root->open("empty", OpenMode::ReadWrite)->nextData(0));
}

TEST_P(EveryFileSystem, AppendsARangeOfAnotherFileAtTheCursor)
{
    const std::string large(700'000, 'x');
    put("source", "ab" + large + "cd");
    const auto source = m_root->open("source", OpenMode::Read);
    const auto target = m_root->open("target", OpenMode::CreateNew);
    target->write(asBytes("<"));
    target->appendRange(*source, 1, large.size() + 2);
    target->write(asBytes(">"));
    EXPECT_EQ(m_fs.readAll("T:\\target"), "<b" + large + "c>");
    EXPECT_EQ(errorOf([&] { target->appendRange(*source, large.size() + 2, 3); }), 57);
    const auto appending = m_root->open("target2", OpenMode::Append);
    appending->write(asBytes("<"));
    appending->appendRange(*source, 0, 2);
    appending->write(asBytes(">"));
    EXPECT_EQ(m_fs.readAll("T:\\target2"), "<ab>");
}

TEST_P(EveryFileSystem, SetsTimesToTheNanosecondAlsoBefore1970)
{
    constexpr std::int64_t kModified = 1'234'567'890'123'456'789;
    const auto file = m_root->open("f", OpenMode::CreateNew);
    file->setTimes(1, kModified);
    EXPECT_EQ(file->info().modifiedNs, kModified);
    EXPECT_EQ(file->info().accessedNs, 1);
    m_root->setTimes("f", -1, -1'500'000'001);
    EXPECT_EQ(m_root->find("f")->modifiedNs, -1'500'000'001);
    EXPECT_EQ(m_root->find("f")->accessedNs, -1);
    m_root->setOwnTimes(5, kModified);
    EXPECT_EQ(m_root->info().modifiedNs, kModified);
}

TEST_P(EveryFileSystem, SetsTheTimesOfALinkAndNotOfItsTarget)
{
    put("file", "");
    m_root->createLink("link", "file");
    m_root->setTimes("link", 7, 8);
    EXPECT_EQ(m_root->find("link")->modifiedNs, 8);
    EXPECT_NE(m_root->find("file")->modifiedNs, 8);
}

TEST_P(EveryFileSystem, SetsTwelveBitsOfMode)
{
    const auto file = m_root->open("f", OpenMode::CreateNew);
    file->setMode(0640);
    EXPECT_EQ(file->info().mode, 0640U);
    m_root->setMode("f", 04755);
    EXPECT_EQ(m_root->find("f")->mode, 04755U);
    m_root->createFolder("d");
    m_root->openFolder("d")->setOwnMode(01700);
    EXPECT_EQ(m_root->find("d")->mode, 01700U);
    m_root->createLink("l", "f");
    EXPECT_EQ(errorOf([&] { m_root->setMode("l", 0600); }), 57);
    EXPECT_EQ(m_root->find("f")->mode, 04755U);
}

TEST_P(EveryFileSystem, SetsTheOwnerThatItHas)
{
    put("f", "");
    const FileInfo before = *m_root->find("f");
    m_root->setOwner("f", before.ownerId, before.groupId);
    m_root->open("f", OpenMode::Update)->setOwner(before.ownerId, before.groupId);
    EXPECT_EQ(m_root->find("f")->ownerId, before.ownerId);
    EXPECT_EQ(errorOf([&] { m_root->setOwner("none", 0, 0); }), 53);
}

TEST_P(EveryFileSystem, KeepsExtendedAttributesOfFilesAndFolders)
{
    put("f", "");
    m_root->createFolder("d");
    const ExtendedAttribute comment{"user.comment", std::string("a\0b", 3)};
    const ExtendedAttribute large{"user.large", std::string(2000, 'v')};
    m_root->setExtendedAttribute("f", comment);
    m_root->open("f", OpenMode::Update)->setExtendedAttribute(large);
    m_root->setExtendedAttribute("d", comment);
    const auto users = [](std::vector<ExtendedAttribute> all) {
        std::erase_if(all, [](const auto& one) { return !one.name.starts_with("user."); });
        return all;
    };
    EXPECT_THAT(users(m_root->extendedAttributes("f")), ElementsAre(comment, large));
    EXPECT_THAT(users(m_root->open("f", OpenMode::Read)->extendedAttributes()),
                ElementsAre(comment, large));
    EXPECT_THAT(users(m_root->extendedAttributes("d")), ElementsAre(comment));
    EXPECT_THAT(users(m_root->openFolder("d")->extendedAttributes()), ElementsAre(comment));
    EXPECT_EQ(errorOf([&] { m_root->extendedAttributes("none"); }), 53);
}

TEST_P(EveryFileSystem, CreatesAndRemovesFolders)
{
    m_root->createFolder("d");
    EXPECT_EQ(errorOf([&] { m_root->createFolder("d"); }), 58);
    const auto folder = m_root->openFolder("d");
    put("f", "", folder.get());
    EXPECT_EQ(errorOf([&] { m_root->removeFolder("d"); }), 75);
    EXPECT_EQ(errorOf([&] { m_root->removeFile("d"); }), 75);
    EXPECT_EQ(errorOf([&] { folder->removeFolder("f"); }), 75);
    folder->removeFile("f");
    m_root->removeFolder("d");
    EXPECT_EQ(errorOf([&] { m_root->removeFolder("d"); }), 76);
    EXPECT_EQ(errorOf([&] { m_root->removeFile("d"); }), 53);
    // The folder that is still open has no place on the disk any more.
    EXPECT_TRUE(folder->list().empty());
    EXPECT_EQ(errorOf([&] { folder->createFolder("x"); }), 76);
    EXPECT_EQ(errorOf([&] { folder->open("x", OpenMode::CreateNew); }), 76);
}

TEST_P(EveryFileSystem, KeepsAFileThatIsOpenWhenItsNameGoes)
{
    put("f", "abc");
    const auto file = m_root->open("f", OpenMode::Read);
    m_root->removeFile("f");
    EXPECT_EQ(textOf(*file), "abc");
}

TEST_P(EveryFileSystem, ReplacesAFileByRenaming)
{
    put("new", "new");
    put("old", "old");
    m_root->rename("new", "old");
    EXPECT_EQ(m_fs.readAll("T:\\old"), "new");
    EXPECT_THAT(names(*m_root), ElementsAre("old"));
    EXPECT_EQ(errorOf([&] { m_root->rename("none", "x"); }), 53);
}

TEST_P(EveryFileSystem, MovesBetweenFolders)
{
    m_root->createFolder("a");
    m_root->createFolder("b");
    const auto a = m_root->openFolder("a");
    const auto b = m_root->openFolder("b");
    put("f", "text", a.get());
    a->moveTo("f", *b, "g");
    EXPECT_EQ(m_fs.readAll("T:\\b\\g"), "text");
    EXPECT_TRUE(a->list().empty());
    // Folders move with what is in them.
    m_root->moveTo("b", *a, "c");
    EXPECT_EQ(m_fs.readAll("T:\\a\\c\\g"), "text");
    EXPECT_EQ(m_fs.canonical("T:\\a\\c\\g"), "T:\\a\\c\\g");
}

TEST_P(EveryFileSystem, RefusesToRenameAcrossKinds)
{
    put("file", "");
    m_root->createFolder("empty");
    m_root->createFolder("full");
    put("x", "", m_root->openFolder("full").get());
    EXPECT_EQ(errorOf([&] { m_root->rename("file", "empty"); }), 75);
    EXPECT_EQ(errorOf([&] { m_root->rename("empty", "file"); }), 75);
    EXPECT_EQ(errorOf([&] { m_root->rename("empty", "full"); }), 75);
    EXPECT_EQ(errorOf([&] { m_root->moveTo("full", *m_root->openFolder("full"), "in"); }), 57);
    m_root->rename("full", "empty");
    EXPECT_THAT(names(*m_root), ElementsAre("empty", "file"));
}

TEST_P(EveryFileSystem, KeepsTheBytesOfALinkAsTheyStand)
{
    const std::string target = "../some where/\\x:y\xFF" + std::string(900, 't');
    m_root->createLink("link", target);
    EXPECT_EQ(m_root->readLink("link"), target);
    EXPECT_EQ(errorOf([&] { m_root->createLink("link", "x"); }), 58);
    EXPECT_EQ(errorOf([&] { m_root->readLink("none"); }), 53);
    put("file", "");
    EXPECT_EQ(errorOf([&] { m_root->readLink("file"); }), 75);
    m_root->removeFile("link");
    EXPECT_FALSE(m_root->find("link"));
}

TEST_P(EveryFileSystem, FollowsLinksOnlyWhereAsked)
{
    m_root->createFolder("d");
    put("f", "text", m_root->openFolder("d").get());
    m_root->createLink("toFile", "d/f");
    m_root->createLink("toFolder", "d");
    m_root->createLink("dangling", "d/made");
    m_root->createLink("loop", "loop");
    EXPECT_EQ(errorOf([&] { m_root->open("toFile", OpenMode::Read); }), 70);
    EXPECT_EQ(errorOf([&] { m_root->open("toFile", OpenMode::CreateOrTruncate); }), 70);
    EXPECT_EQ(errorOf([&] { m_root->openFolder("toFolder"); }), 75);
    EXPECT_EQ(textOf(*m_root->open("toFile", OpenMode::Read, Links::Follow)), "text");
    EXPECT_EQ(m_root->openFolder("toFolder", Links::Follow)->list().size(), 1U);
    EXPECT_EQ(m_fs.readAll("T:\\toFolder\\f"), "text");
    EXPECT_EQ(errorOf([&] { m_root->open("dangling", OpenMode::Read, Links::Follow); }), 53);
    EXPECT_EQ(errorOf([&] { m_root->openFolder("dangling", Links::Follow); }), 76);
    EXPECT_EQ(errorOf([&] { m_root->open("loop", OpenMode::Read, Links::Follow); }), 75);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("T:\\loop\\x"); }), 75);
    m_root->open("dangling", OpenMode::CreateOrTruncate, Links::Follow)->write(asBytes("made"));
    EXPECT_EQ(m_fs.readAll("T:\\d\\made"), "made");
    EXPECT_EQ(errorOf([&] { m_root->open("toFile", OpenMode::CreateNew, Links::Follow); }), 58);
}

TEST_P(EveryFileSystem, FollowsAbsoluteLinksInTheMachinesOwnForm)
{
    m_root->createFolder("d");
    put("f", "text", m_root->openFolder("d").get());
    m_root->createLink("absolute", m_fs.toNative("T:\\d\\f"));
    EXPECT_EQ(m_fs.readAll("T:\\absolute"), "text");
    EXPECT_EQ(m_fs.canonical("T:\\absolute"), m_fs.canonical("T:\\d\\f"));
}

TEST_P(EveryFileSystem, GivesASecondNameToAFile)
{
    m_root->createFolder("d");
    const auto folder = m_root->openFolder("d");
    put("f", "text");
    folder->createHardLink("g", *m_root, "f");
    EXPECT_EQ(m_root->find("f")->inode, folder->find("g")->inode);
    EXPECT_EQ(m_root->find("f")->linkCount, 2U);
    m_root->open("f", OpenMode::Append)->write(asBytes("!"));
    EXPECT_EQ(m_fs.readAll("T:\\d\\g"), "text!");
    EXPECT_EQ(errorOf([&] { folder->createHardLink("g", *m_root, "f"); }), 58);
    EXPECT_EQ(errorOf([&] { folder->createHardLink("h", *m_root, "none"); }), 53);
    EXPECT_EQ(errorOf([&] { folder->createHardLink("h", *m_root, "d"); }), 75);
    m_root->removeFile("f");
    EXPECT_EQ(folder->find("g")->linkCount, 1U);
    // Renaming one name of a file to another of the same file leaves both, as the disk does.
    folder->createHardLink("h", *folder, "g");
    folder->rename("g", "h");
    EXPECT_THAT(names(*folder), ElementsAre("g", "h"));
}

TEST_P(EveryFileSystem, GivesALinkASecondNameAndNotItsTarget)
{
    put("f", "");
    m_root->createLink("link", "f");
    m_root->createHardLink("second", *m_root, "link");
    EXPECT_EQ(m_root->find("second")->kind, FileKind::SymbolicLink);
}

TEST_P(EveryFileSystem, LocksAFolderForOneHolder)
{
    m_root->createFolder("d");
    auto held = m_fs.lockFolder("T:\\d");
    EXPECT_EQ(errorOf([&] { m_fs.lockFolder("T:\\d\\"); }), 70);
    EXPECT_EQ(errorOf([&] { m_fs.lockFolder("T:\\"); }), 0);
    held.reset();
    EXPECT_EQ(errorOf([&] { m_fs.lockFolder("T:\\d"); }), 0);
    EXPECT_EQ(errorOf([&] { m_fs.lockFolder("T:\\none"); }), 76);
    put("f", "");
    EXPECT_EQ(errorOf([&] { m_fs.lockFolder("T:\\f"); }), 75);
    EXPECT_TRUE(m_fs.openFolder("T:\\d")->list().empty());
}

TEST_P(EveryFileSystem, FlushesFilesFoldersAndTheFileSystem)
{
    const auto file = m_root->open("f", OpenMode::CreateNew);
    file->write(asBytes("x"));
    EXPECT_EQ(errorOf([&] { file->flush(); }), 0);
    EXPECT_EQ(errorOf([&] { m_root->flush(); }), 0);
    EXPECT_EQ(errorOf([&] { m_root->flushFileSystem(); }), 0);
}

TEST_P(EveryFileSystem, TellsTheSpace)
{
    const Space space = m_fs.space("T:\\");
    EXPECT_GT(space.totalBytes, 0U);
    EXPECT_LE(space.freeBytes, space.totalBytes);
    EXPECT_EQ(errorOf([&] { m_fs.space("T:\\none"); }), 76);
}

TEST_P(EveryFileSystem, IsNoPseudoFileSystemInATest)
{
    EXPECT_FALSE(m_fs.isPseudo("T:\\"));
    EXPECT_EQ(errorOf([&] { m_fs.isPseudo("T:\\none"); }), 76);
    EXPECT_TRUE(m_fs.isCaseSensitive());
}

TEST_P(EveryFileSystem, ResolvesToOneTextForEachFile)
{
    m_root->createFolder("a");
    m_fs.createFolder("T:\\a\\b");
    put("f", "", m_fs.openFolder("T:\\a\\b").get());
    m_root->createLink("link", "a/b");
    m_root->createLink("up", "a/b/..");
    EXPECT_EQ(m_fs.canonical("t:\\link\\f"), "T:\\a\\b\\f");
    EXPECT_EQ(m_fs.canonical("T:\\a\\.\\b\\..\\b\\f"), "T:\\a\\b\\f");
    EXPECT_EQ(m_fs.canonical("T:\\up"), "T:\\a");
    EXPECT_EQ(m_fs.canonical("T:\\link\\.."), "T:\\a");
    EXPECT_EQ(m_fs.canonical("T:"), "T:\\");
    EXPECT_EQ(errorOf([&] { m_fs.canonical("T:\\none"); }), 53);
    EXPECT_EQ(errorOf([&] { m_fs.canonical("T:\\none\\x"); }), 53);
}

TEST_P(EveryFileSystem, TurnsPathsIntoTheMachinesOwnFormAndBack)
{
    const std::string path = "T:\\a b\\\xEF\x80\xBA\\c";
    const std::string native = m_fs.toNative(path);
    EXPECT_EQ(native, m_fs.toNative("T:\\") + "/a b/:/c");
    EXPECT_EQ(m_fs.fromNative(native), path);
    EXPECT_EQ(m_fs.fromNative(m_fs.toNative("T:\\")), "T:\\");
    EXPECT_EQ(errorOf([&] { m_fs.toNative("Q:\\x"); }), 76);
    EXPECT_EQ(errorOf([&] { m_fs.fromNative("relative"); }), 76);
}

// The path functions.

TEST_P(EveryFileSystem, FindsThroughLinks)
{
    m_root->createFolder("d");
    put("f", "1234", m_root->openFolder("d").get());
    m_root->createLink("toFile", "d/f");
    m_root->createLink("toFolder", "d");
    m_root->createLink("dangling", "nowhere");
    EXPECT_TRUE(m_fs.fileExists("T:\\toFile"));
    EXPECT_EQ(m_fs.find("T:\\toFile")->sizeBytes, 4U);
    EXPECT_TRUE(m_fs.folderExists("T:\\toFolder"));
    EXPECT_FALSE(m_fs.fileExists("T:\\toFolder"));
    EXPECT_FALSE(m_fs.folderExists("T:\\toFile"));
    EXPECT_TRUE(m_fs.fileExists("T:\\toFolder\\f"));
    EXPECT_FALSE(m_fs.find("T:\\dangling"));
    EXPECT_FALSE(m_fs.find("T:\\none\\x"));
    EXPECT_FALSE(m_fs.find("Q:\\"));
    EXPECT_FALSE(m_fs.find(""));
    EXPECT_TRUE(m_fs.folderExists("T:"));
    EXPECT_TRUE(m_fs.folderExists("T:\\d\\"));
}

TEST_P(EveryFileSystem, CreatesFoldersWithTheirParents)
{
    m_fs.createFolders("T:\\a\\b\\c");
    m_fs.createFolders("T:\\a\\b\\c\\");
    m_fs.createFolders("T:\\");
    EXPECT_TRUE(m_fs.folderExists("T:\\a\\b\\c"));
    EXPECT_EQ(errorOf([&] { m_fs.createFolder("T:\\x\\y"); }), 76);
    put("file", "");
    EXPECT_NE(errorOf([&] { m_fs.createFolders("T:\\file\\y"); }), 0);
    EXPECT_EQ(errorOf([&] { m_fs.createFolders("T:\\file"); }), 58);
    EXPECT_EQ(errorOf([&] { m_fs.createFolders("Q:\\x"); }), 76);
}

TEST_P(EveryFileSystem, RemovesATreeButNotWhatItsLinksLeadTo)
{
    m_fs.createFolders("T:\\tree\\deep");
    m_fs.createFolders("T:\\kept");
    m_fs.replaceFile("T:\\kept\\f", "precious");
    m_fs.replaceFile("T:\\tree\\deep\\x", "");
    m_fs.openFolder("T:\\tree")->createLink("link", "../kept");
    m_root->createLink("top", "kept");
    m_fs.removeTree("T:\\tree");
    m_fs.removeTree("T:\\top");
    EXPECT_THAT(names(*m_root), ElementsAre("kept"));
    EXPECT_EQ(m_fs.readAll("T:\\kept\\f"), "precious");
    EXPECT_EQ(errorOf([&] { m_fs.removeTree("T:\\tree"); }), 76);
}

TEST_P(EveryFileSystem, CopiesBytesAndReplacesTheTarget)
{
    const std::string text(600'000, 'c');
    m_fs.replaceFile("T:\\a", text);
    m_fs.replaceFile("T:\\b", "older and to be replaced");
    m_fs.copyFile("T:\\a", "T:\\b");
    EXPECT_EQ(m_fs.readAll("T:\\b"), text);
    EXPECT_EQ(errorOf([&] { m_fs.copyFile("T:\\none", "T:\\b"); }), 53);
    EXPECT_EQ(m_fs.readAll("T:\\b"), text);
    EXPECT_EQ(errorOf([&] { m_fs.copyFile("T:\\a", "T:\\none\\b"); }), 76);
}

TEST_P(EveryFileSystem, NeverEmptiesAFileByCopyingItOntoItself)
{
    m_fs.replaceFile("T:\\a", "precious");
    m_root->createLink("same", "a");
    EXPECT_EQ(errorOf([&] { m_fs.copyFile("T:\\a", "T:\\a"); }), 70);
    EXPECT_EQ(errorOf([&] { m_fs.copyFile("T:\\a", "T:\\same"); }), 70);
    EXPECT_EQ(m_fs.readAll("T:\\a"), "precious");
}

TEST_P(EveryFileSystem, ListsAPathInTheFoldersOrder)
{
    for (const char* name : {"x_Ver12_", "B", "x_Ver1_", "a"})
        put(name, "");
    std::vector<std::string> order;
    for (const auto& entry : m_fs.list("T:\\"))
        order.push_back(entry.name);
    EXPECT_THAT(order, ElementsAre("a", "B", "x_Ver1_", "x_Ver12_"));
    EXPECT_EQ(errorOf([&] { m_fs.list("T:\\none"); }), 76);
}

TEST_P(EveryFileSystem, RenamesByPath)
{
    m_fs.createFolders("T:\\d");
    m_fs.replaceFile("T:\\a", "x");
    m_fs.rename("T:\\a", "T:\\d\\b");
    EXPECT_EQ(m_fs.readAll("T:\\d\\b"), "x");
    EXPECT_EQ(errorOf([&] { m_fs.rename("T:\\a", "T:\\c"); }), 53);
    m_fs.removeFile("T:\\d\\b");
    m_fs.removeFolder("T:\\d");
    EXPECT_TRUE(m_root->list().empty());
}

TEST_P(EveryFileSystem, ReplacesAFileOfTheLongestName)
{
    const std::string path = "T:\\" + std::string(255, 'n');
    m_fs.replaceFile(path, "1");
    m_fs.replaceFile(path, "2");
    EXPECT_EQ(m_fs.readAll(path), "2");
    EXPECT_EQ(m_root->list().size(), 1U);
}

TEST_P(EveryFileSystem, LeavesTheOldOrTheNewFileAtEveryFailingCall)
{
    CallScript script;
    ScriptedFileSystem scripted(m_fs, script);
    bool sawOld = false;
    std::size_t failing = 1;
    for (;; ++failing) {
        m_fs.replaceFile("T:\\f", "old");
        script.reset();
        script.failCall(failing, 61);
        const int error = errorOf([&] { scripted.replaceFile("T:\\f", "new"); });
        const std::string text = m_fs.readAll("T:\\f");
        EXPECT_THAT(text, testing::AnyOf("old", "new"));
        EXPECT_THAT(names(*m_root), ElementsAre("f")) << "call " << failing;
        sawOld = sawOld || text == "old";
        if (error == 0) {
            EXPECT_EQ(text, "new");
            break;
        }
        EXPECT_EQ(error, 61);
        ASSERT_LT(failing, 50U);
    }
    EXPECT_TRUE(sawOld);
    EXPECT_GT(failing, 6U); // open folder, open, write, flush, close, rename, flush
}

TEST_P(EveryFileSystem, LeavesTheOldOrTheNewFileWhereverTheProcessDies)
{
    CallScript script;
    ScriptedFileSystem scripted(m_fs, script);
    for (std::size_t last = 1;; ++last) {
        m_fs.replaceFile("T:\\f", "old");
        script.reset();
        script.killAtCall(last);
        bool died = false;
        try {
            scripted.replaceFile("T:\\f", "new");
        } catch (const Killed&) {
            died = true;
        }
        EXPECT_THAT(m_fs.readAll("T:\\f"), testing::AnyOf("old", "new"));
        if (!died) {
            EXPECT_EQ(m_fs.readAll("T:\\f"), "new");
            break;
        }
        ASSERT_LT(last, 50U);
    }
}

} // namespace
} // namespace vardelin::platform
