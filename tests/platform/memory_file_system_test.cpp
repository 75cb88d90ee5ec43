#include "platform/memory/memory_file_system.h"

#include "test_worlds.h"

#include <gmock/gmock.h>

#include <thread>

namespace vardelin::platform {
namespace {

using test::errorOf;

TEST(MemoryFileSystem, HasTwoDrivesFromTheStartAndMoreOnDemand)
{
    MemoryFileSystem files;
    EXPECT_TRUE(files.folderExists("C:\\"));
    EXPECT_TRUE(files.folderExists("d:"));
    EXPECT_FALSE(files.folderExists("E:\\"));
    files.addDrive('e');
    files.createFolders("E:\\x");
    const auto open = files.openFolder("E:\\x");
    files.removeDrive('E');
    EXPECT_EQ(errorOf([&] { files.openFolder("E:\\"); }), 76);
    EXPECT_TRUE(open->list().empty());
}

TEST(MemoryFileSystem, KeepsDrivesApart)
{
    MemoryFileSystem files;
    files.replaceFile("C:\\f", "x");
    EXPECT_FALSE(files.fileExists("D:\\f"));
    EXPECT_EQ(errorOf([&] { files.rename("C:\\f", "D:\\f"); }), 57);
    const auto c = files.openFolder("C:\\");
    EXPECT_EQ(errorOf([&] { files.openFolder("D:\\")->createHardLink("f", *c, "f"); }), 57);
    EXPECT_NE(files.find("C:\\")->device, files.find("D:\\")->device);
}

TEST(MemoryFileSystem, HasNativePathsLikeTheMachine)
{
    MemoryFileSystem files;
    EXPECT_EQ(files.toNative("C:\\a\\b"), "/a/b");
    EXPECT_EQ(files.toNative("D:\\a"), "/mnt/d/a");
    EXPECT_EQ(files.fromNative("/mnt/d/a"), "D:\\a");
    files.openFolder("C:\\")->createLink("toD", "/mnt/d");
    files.replaceFile("D:\\f", "on d");
    EXPECT_EQ(files.readAll("C:\\toD\\f"), "on d");
    EXPECT_EQ(files.canonical("C:\\toD\\f"), "D:\\f");
}

TEST(MemoryFileSystem, TakesWhatFitsAndThenIsFull)
{
    MemoryFileSystem files;
    files.setCapacity('C', 10);
    files.replaceFile("C:\\a", "123456");
    EXPECT_EQ(files.space("C:\\").freeBytes, 4U);
    EXPECT_EQ(errorOf([&] { files.replaceFile("C:\\b", "123456"); }), 61);
    EXPECT_FALSE(files.fileExists("C:\\b"));
    const auto file = files.open("C:\\c", OpenMode::CreateNew);
    EXPECT_EQ(errorOf([&] { file->write(asBytes("123456")); }), 61);
    EXPECT_EQ(file->info().sizeBytes, 4U);
    EXPECT_EQ(errorOf([&] { files.open("C:\\a", OpenMode::Update)->resize(11); }), 61);
    // An open file holds its space after its name is gone.
    files.removeFile("C:\\c");
    EXPECT_EQ(files.space("C:\\").freeBytes, 0U);
    file->close();
    EXPECT_EQ(files.space("C:\\").freeBytes, 4U);
    files.open("C:\\a", OpenMode::Update)->resize(1);
    EXPECT_EQ(files.space("C:\\").freeBytes, 9U);
    files.open("C:\\a", OpenMode::CreateOrTruncate)->close();
    EXPECT_EQ(files.space("C:\\").freeBytes, 10U);
    EXPECT_GT(files.space("D:\\").freeBytes, 1'000'000U);
}

TEST(MemoryFileSystem, RefusesToReadWhatIsUnreadable)
{
    MemoryFileSystem files;
    files.createFolders("C:\\d");
    files.replaceFile("C:\\d\\f", "x");
    files.setUnreadable("C:\\d\\f");
    EXPECT_EQ(errorOf([&] { files.readAll("C:\\d\\f"); }), 70);
    EXPECT_EQ(errorOf([&] { files.open("C:\\d\\f", OpenMode::Append); }), 0);
    files.setUnreadable("C:\\d");
    EXPECT_EQ(errorOf([&] { files.list("C:\\d"); }), 70);
    files.setUnreadable("C:\\d\\f", false);
    EXPECT_EQ(files.readAll("C:\\d\\f"), "x");
    EXPECT_EQ(errorOf([&] { files.setUnreadable("C:\\none"); }), 76);
}

TEST(MemoryFileSystem, RefusesEveryChangeBelowWhatIsReadOnly)
{
    MemoryFileSystem files;
    files.createFolders("C:\\d\\e");
    files.replaceFile("C:\\d\\e\\f", "x");
    files.setReadOnly("C:\\d");
    const auto folder = files.openFolder("C:\\d\\e");
    const auto root = files.openFolder("C:\\");
    EXPECT_EQ(errorOf([&] { folder->open("f", OpenMode::Append); }), 70);
    EXPECT_EQ(errorOf([&] { folder->open("g", OpenMode::CreateNew); }), 70);
    EXPECT_EQ(errorOf([&] { folder->createFolder("g"); }), 70);
    EXPECT_EQ(errorOf([&] { folder->createLink("g", "f"); }), 70);
    EXPECT_EQ(errorOf([&] { folder->createHardLink("g", *folder, "f"); }), 70);
    EXPECT_EQ(errorOf([&] { folder->removeFile("f"); }), 70);
    EXPECT_EQ(errorOf([&] { folder->rename("f", "g"); }), 70);
    EXPECT_EQ(errorOf([&] { folder->moveTo("f", *root, "g"); }), 70);
    EXPECT_EQ(errorOf([&] { folder->setTimes("f", 1, 1); }), 70);
    EXPECT_EQ(errorOf([&] { folder->setMode("f", 0); }), 70);
    EXPECT_EQ(errorOf([&] { files.removeFolder("C:\\d\\e"); }), 70);
    EXPECT_EQ(files.readAll("C:\\d\\e\\f"), "x");
    files.setReadOnly("C:\\d", false);
    EXPECT_EQ(errorOf([&] { folder->removeFile("f"); }), 0);
}

TEST(MemoryFileSystem, FindsNamesInAnyCaseWhereToldTo)
{
    MemoryFileSystem files(false);
    EXPECT_FALSE(files.isCaseSensitive());
    files.createFolders("C:\\Docs");
    files.replaceFile("c:\\DOCS\\File", "x");
    EXPECT_EQ(files.readAll("C:\\docs\\FILE"), "x");
    EXPECT_EQ(files.canonical("C:\\docs\\fILE"), "C:\\Docs\\File");
    EXPECT_EQ(errorOf([&] { files.createFolder("C:\\DOCS"); }), 58);
    files.rename("C:\\Docs\\File", "C:\\Docs\\FILE");
    EXPECT_EQ(files.list("C:\\Docs").front().name, "FILE");

    MemoryFileSystem sensitive;
    sensitive.replaceFile("C:\\File", "x");
    EXPECT_FALSE(sensitive.fileExists("C:\\file"));
}

TEST(MemoryFileSystem, StampsChangesWithItsOwnTime)
{
    MemoryFileSystem files;
    files.setNow(1'000);
    files.setTick(10);
    files.replaceFile("C:\\a", "x");
    const FileInfo a = *files.find("C:\\a");
    EXPECT_EQ(a.createdNs, 1'000);
    EXPECT_GT(a.modifiedNs, a.createdNs);
    const std::int64_t before = files.nowNs();
    files.open("C:\\a", OpenMode::Append)->write(asBytes("y"));
    EXPECT_EQ(files.find("C:\\a")->modifiedNs, before);
    EXPECT_EQ(files.nowNs(), before + 10);
    files.setTick(0);
    files.replaceFile("C:\\b", "");
    files.replaceFile("C:\\c", "");
    EXPECT_EQ(files.find("C:\\b")->modifiedNs, files.find("C:\\c")->modifiedNs);
}

TEST(MemoryFileSystem, MarksPseudoFileSystems)
{
    MemoryFileSystem files;
    files.createFolders("C:\\proc\\1");
    files.setPseudo("C:\\proc");
    EXPECT_TRUE(files.isPseudo("C:\\proc"));
    EXPECT_TRUE(files.isPseudo("C:\\proc\\1"));
    EXPECT_FALSE(files.isPseudo("C:\\"));
}

TEST(MemoryFileSystem, GivesNewFilesTheirOwner)
{
    MemoryFileSystem files;
    files.setOwnerOfNew(7, 8);
    files.replaceFile("C:\\f", "");
    EXPECT_EQ(files.find("C:\\f")->ownerId, 7U);
    EXPECT_EQ(files.find("C:\\f")->groupId, 8U);
}

TEST(MemoryFileSystem, PutsEveryPrimitiveThroughItsScript)
{
    MemoryFileSystem files;
    files.replaceFile("C:\\f", "x");
    EXPECT_EQ(files.script().countOf("folder.rename"), 1U);
    files.script().reset();
    files.script().failCallsNamed("file.read", 57);
    EXPECT_EQ(errorOf([&] { files.readAll("C:\\f"); }), 57);
}

TEST(MemoryFileSystem, LosesItsLocksWithTheirHolder)
{
    MemoryFileSystem files;
    files.script().killAtCall(2);
    try {
        const auto lock = files.lockFolder("C:\\");
        files.openFolder("C:\\");
        FAIL();
    } catch (const Killed&) {
    }
    EXPECT_THROW(files.lockFolder("C:\\"), Killed);
    files.script().reset();
    EXPECT_NO_THROW(files.lockFolder("C:\\"));
}

TEST(MemoryFileSystem, ServesSeveralThreads)
{
    MemoryFileSystem files;
    const auto work = [&](char letter) {
        for (int i = 0; i < 200; ++i)
            files.replaceFile(std::string("C:\\") + letter + std::to_string(i), "x");
    };
    std::thread other(work, 'a');
    work('b');
    other.join();
    EXPECT_EQ(files.list("C:\\").size(), 400U);
}

} // namespace
} // namespace vardelin::platform
