#include "platform/linux/linux_file_system.h"

#include "platform/linux/errno_error.h"
#include "platform/linux/linux_folder_lock.h"
#include "platform/linux/native_path.h"
#include "test_worlds.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <fstream>
#include <thread>

namespace vardelin::platform {
namespace {

using test::errorOf;
using testing::UnorderedElementsAre;

class LinuxFileSystemTest : public testing::Test {
protected:
    std::string native(const std::string& name) { return m_world.nativeRoot() + "/" + name; }

    test::LinuxWorld m_world;
    FileSystem& m_fs = m_world.fileSystem();
    std::unique_ptr<Folder> m_root = m_fs.openFolder("T:\\");
};

struct ErrorRow {
    int systemError;
    int file;
    int folder;
};

TEST(SystemErrors, BecomeTheClassicNumbers)
{
    const std::vector<ErrorRow> rows{
        {ENOENT, 53, 76},      {EACCES, 70, 70},    {EPERM, 70, 70},  {EROFS, 70, 70},
        {EEXIST, 58, 58},      {ENOSPC, 61, 61},    {EDQUOT, 61, 61}, {ENOTDIR, 75, 75},
        {EISDIR, 75, 75},      {ENOTEMPTY, 75, 75}, {ELOOP, 75, 75},  {ENAMETOOLONG, 75, 75},
        {EWOULDBLOCK, 70, 70}, {EIO, 57, 57},       {EMFILE, 57, 57}, {EXDEV, 57, 57},
    };
    for (const ErrorRow& row : rows) {
        EXPECT_EQ(classicNumber(row.systemError), row.file) << row.systemError;
        EXPECT_EQ(classicNumber(row.systemError, Missing::Folder), row.folder) << row.systemError;
    }
}

TEST_F(LinuxFileSystemTest, MapsNamesThatOnlyTheDiskCanHold)
{
    for (const char* name : {"a:b", "back\\slash", "star*?", "dot.", "blank ", "line\nend"})
        std::ofstream(native(name)) << name;
    std::vector<std::string> contents;
    for (const auto& entry : m_root->listWithInfo()) {
        EXPECT_EQ(entry.name.find_first_of("\\:*?\n"), std::string::npos);
        contents.push_back(m_fs.readAll("T:\\" + entry.name));
        m_root->removeFile(entry.name);
    }
    EXPECT_THAT(contents, UnorderedElementsAre("a:b", "back\\slash", "star*?", "dot.", "blank ",
                                               "line\nend"));
    EXPECT_TRUE(m_root->list().empty());
}

TEST_F(LinuxFileSystemTest, NeverWaitsForTheOtherEndOfAPipe)
{
    ASSERT_EQ(::mkfifo(native("pipe").c_str(), 0600), 0);
    EXPECT_EQ(m_root->list().front().kind, FileKind::Other);
    for (const OpenMode mode : {OpenMode::Read, OpenMode::Append, OpenMode::Update})
        EXPECT_EQ(errorOf([&] { m_root->open("pipe", mode); }), 75);
    EXPECT_FALSE(m_fs.fileExists("T:\\pipe"));
}

TEST_F(LinuxFileSystemTest, OpensNoDeviceAsAFile)
{
    EXPECT_EQ(errorOf([&] { m_fs.open("C:\\dev\\null", OpenMode::Read); }), 75);
}

TEST_F(LinuxFileSystemTest, ReachesPathsLongerThanOneCallTakes)
{
    const std::string name(200, 'd');
    std::string path = "T:";
    for (int depth = 0; depth < 60; ++depth)
        path += "\\" + name;
    auto folder = m_fs.openFolder("T:\\");
    for (int depth = 0; depth < 60; ++depth) {
        folder->createFolder(name);
        folder = folder->openFolder(name);
    }
    folder->open("f", OpenMode::CreateNew)->write(asBytes("deep"));
    ASSERT_GT(path.size(), 12'000U);
    EXPECT_EQ(m_fs.readAll(path + "\\f"), "deep");
    EXPECT_EQ(m_fs.canonical(path + "\\.\\f"), path + "\\f");
    EXPECT_GT(m_fs.space(path).totalBytes, 0U);
    EXPECT_FALSE(m_fs.isPseudo(path));
    EXPECT_NO_THROW(m_fs.lockFolder(path));
    EXPECT_EQ(errorOf([&] { m_fs.openFolder(path + "\\none\\x"); }), 76);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("T:\\" + std::string(5000, 'x')); }), 75);
    m_fs.replaceFile(path + "\\g", "x");
    m_fs.removeTree("T:\\" + name);
    EXPECT_TRUE(m_root->list().empty());
}

TEST_F(LinuxFileSystemTest, ResolvesByWalkingAsTheSystemDoes)
{
    m_fs.createFolders("T:\\a\\b");
    m_fs.replaceFile("T:\\a\\f", "");
    m_root->createLink("rel", "a/./b/..");
    m_root->createLink("abs", native("a/b"));
    m_root->createLink("loop", "loop");
    for (const char* name :
         {"", ".", "a/b", "rel/f", "abs", "abs/../f", "a/b/../../rel/b/", "../../../../..", "none",
          "none/x", "loop", "loop/x", "a/f/x", "a/f/.."}) {
        std::string byTheSystem;
        std::string byWalking;
        const bool resolved = resolveNative(native(name), byTheSystem);
        const int systemError = resolved ? 0 : errno;
        EXPECT_EQ(resolveNativeByWalking(native(name), byWalking), resolved) << name;
        if (!resolved) {
            EXPECT_EQ(errno, systemError) << name;
        }
        EXPECT_EQ(byWalking, byTheSystem) << name;
    }
}

TEST_F(LinuxFileSystemTest, KeepsHolesAndTellsWhereTheyAre)
{
    constexpr std::uint64_t kHole = 8 * 1024 * 1024;
    const auto file = m_root->open("sparse", OpenMode::ReadWrite);
    file->writeAt(kHole, asBytes("data"));
    const FileInfo info = file->info();
    EXPECT_EQ(info.sizeBytes, kHole + 4);
    if (info.allocatedBytes >= info.sizeBytes)
        GTEST_SKIP() << "the temporary folder's file system keeps no holes";
    const auto extent = file->nextData(0);
    ASSERT_TRUE(extent);
    EXPECT_EQ(extent->offset, kHole);
    EXPECT_EQ(extent->length, 4U);
    file->resize(2 * kHole);
    EXPECT_FALSE(file->nextData(kHole + 1024 * 1024));
}

TEST_F(LinuxFileSystemTest, TellsTheBirthTime)
{
    m_root->open("f", OpenMode::CreateNew)->setTimes(1, 1);
    const FileInfo info = *m_root->find("f");
    struct statx details;
    ASSERT_EQ(::statx(AT_FDCWD, native("f").c_str(), 0, STATX_BTIME, &details), 0);
    if ((details.stx_mask & STATX_BTIME) != 0) {
        EXPECT_EQ(info.createdNs / 1'000'000'000, details.stx_btime.tv_sec);
    } else {
        EXPECT_EQ(info.createdNs, 1);
    }
}

TEST_F(LinuxFileSystemTest, CarriesAccessControlLists)
{
    // Version 2, then owner rwx, user 65534 r--, group r--, mask r--, others nothing.
    const std::string acl("\x02\0\0\0"
                          "\x01\0\x07\0\xFF\xFF\xFF\xFF"
                          "\x02\0\x04\0\xFE\xFF\0\0"
                          "\x04\0\x04\0\xFF\xFF\xFF\xFF"
                          "\x10\0\x04\0\xFF\xFF\xFF\xFF"
                          "\x20\0\0\0\xFF\xFF\xFF\xFF",
                          44);
    const ExtendedAttribute attribute{"system.posix_acl_access", acl};
    m_root->open("f", OpenMode::CreateNew)->close();
    if (errorOf([&] { m_root->setExtendedAttribute("f", attribute); }) != 0)
        GTEST_SKIP() << "the temporary folder's file system keeps no access control lists";
    EXPECT_THAT(m_root->extendedAttributes("f"), testing::Contains(attribute));
    EXPECT_THAT(m_root->open("f", OpenMode::Read)->extendedAttributes(),
                testing::Contains(attribute));
}

TEST_F(LinuxFileSystemTest, HasNoAttributesWhereTheSystemKeepsNone)
{
    EXPECT_TRUE(m_fs.openFolder("C:\\proc\\self")->extendedAttributes("status").empty());
}

TEST_F(LinuxFileSystemTest, LeavesOutWhatVanishesBetweenListAndLook)
{
    for (int i = 0; i < 2000; ++i)
        m_root->open("f" + std::to_string(i), OpenMode::CreateNew)->close();
    std::thread remover([&] {
        const auto folder = m_fs.openFolder("T:\\");
        for (int i = 0; i < 2000; ++i)
            folder->removeFile("f" + std::to_string(i));
    });
    for (int round = 0; round < 5; ++round) {
        for (const auto& entry : m_root->listWithInfo()) {
            EXPECT_NE(entry.info.inode, 0U);
        }
    }
    remover.join();
    EXPECT_TRUE(m_root->listWithInfo().empty());
}

TEST_F(LinuxFileSystemTest, CopiesWithinTheKernelAndAcrossDisks)
{
    const std::string text(3'000'000, 'k');
    m_fs.replaceFile("T:\\a", text);
    const auto source = m_root->open("a", OpenMode::Read);
    const auto target = m_root->open("b", OpenMode::CreateNew);
    target->appendRange(*source, 0, text.size());
    target->appendRange(*source, 1, 2);
    EXPECT_EQ(m_fs.readAll("T:\\b"), text + "kk");
    if (!m_fs.folderExists("C:\\dev\\shm"))
        GTEST_SKIP() << "no second file system";
    const std::string elsewhere = "C:\\dev\\shm\\vardelin-test-" + std::to_string(::getpid());
    {
        const auto other = m_fs.open(elsewhere, OpenMode::CreateNew);
        other->appendRange(*source, 0, text.size());
    }
    const std::string copied = m_fs.readAll(elsewhere);
    EXPECT_EQ(errorOf([&] { m_fs.rename("T:\\b", elsewhere); }), 57);
    m_fs.removeFile(elsewhere);
    EXPECT_TRUE(copied == text);
}

TEST_F(LinuxFileSystemTest, LocksAgainstOtherProcessesUntilTheyDie)
{
    m_root->createFolder("d");
    std::array<int, 2> held{};
    std::array<int, 2> go{};
    ASSERT_EQ(::pipe(held.data()), 0);
    ASSERT_EQ(::pipe(go.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const auto lock = m_fs.lockFolder("T:\\d");
        char byte = 'x';
        const bool told = ::write(held[1], &byte, 1) == 1 && ::read(go[0], &byte, 1) == 1;
        ::_exit(told ? 0 : 1); // without releasing anything
    }
    char byte = 0;
    ASSERT_EQ(::read(held[0], &byte, 1), 1);
    EXPECT_EQ(errorOf([&] { m_fs.lockFolder("T:\\d"); }), 70);
    ASSERT_EQ(::write(go[1], "x", 1), 1);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_NO_THROW(m_fs.lockFolder("T:\\d"));
    for (const int fd : {held[0], held[1], go[0], go[1]})
        ::close(fd);
}

TEST_F(LinuxFileSystemTest, LocksByAFileWhereFoldersCannotBeLocked)
{
    const UniqueFd folder(::open(m_world.nativeRoot().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    auto held = lockByFile(folder, "T:\\");
    EXPECT_EQ(errorOf([&] { lockByFile(folder, "T:\\"); }), 70);
    held.reset();
    EXPECT_EQ(errorOf([&] { lockByFile(folder, "T:\\"); }), 0);
    EXPECT_TRUE(m_root->find(kLockFileName));
    // A descriptor that takes no lock at all, as folders of network file systems.
    UniqueFd passing(::open(m_world.nativeRoot().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    held = lockOpenFolder(std::move(passing), "T:\\");
    EXPECT_EQ(errorOf([&] { lockByFile(folder, "T:\\"); }), 70);
}

TEST_F(LinuxFileSystemTest, KnowsThePseudoFileSystems)
{
    EXPECT_TRUE(m_fs.isPseudo("C:\\proc"));
    EXPECT_TRUE(m_fs.isPseudo("C:\\proc\\self"));
    EXPECT_TRUE(m_fs.isPseudo("C:\\dev"));
    EXPECT_TRUE(m_fs.isPseudo("C:\\sys"));
    EXPECT_FALSE(m_fs.isPseudo("C:\\"));
    EXPECT_TRUE(isPseudoType(TMPFS_MAGIC, "/run/user/1000"));
    EXPECT_TRUE(isPseudoType(TMPFS_MAGIC, "/dev"));
    EXPECT_FALSE(isPseudoType(TMPFS_MAGIC, "/tmp"));
    EXPECT_FALSE(isPseudoType(TMPFS_MAGIC, "/running"));
    EXPECT_FALSE(isPseudoType(EXT4_SUPER_MAGIC, "/run/media/me/stick"));
    EXPECT_TRUE(isPseudoType(AUTOFS_SUPER_MAGIC, "/net"));
    EXPECT_TRUE(isPseudoType(CGROUP2_SUPER_MAGIC, "/sys/fs/cgroup"));
}

TEST_F(LinuxFileSystemTest, TakesNewDrivesWhileItRuns)
{
    LinuxFileSystem files(std::make_shared<const DriveMap>(std::vector<DriveRoot>{{'C', "/"}}));
    EXPECT_EQ(errorOf([&] { files.openFolder("T:\\"); }), 76);
    files.useDrives(std::make_shared<const DriveMap>(
        std::vector<DriveRoot>{{'C', "/"}, {'T', m_world.nativeRoot()}}));
    EXPECT_NO_THROW(files.openFolder("T:\\"));
}

TEST_F(LinuxFileSystemTest, RaisesWhereRightsAreMissing)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "nothing is refused to root";
    m_fs.createFolders("T:\\closed\\inner");
    m_fs.replaceFile("T:\\closed\\f", "x");
    m_fs.replaceFile("T:\\secret", "x");
    m_root->setMode("secret", 0);
    EXPECT_EQ(errorOf([&] { m_root->open("secret", OpenMode::Read); }), 70);
    m_root->setMode("closed", 0500);
    EXPECT_EQ(errorOf([&] { m_fs.replaceFile("T:\\closed\\g", ""); }), 70);
    EXPECT_EQ(errorOf([&] { m_fs.createFolder("T:\\closed\\g"); }), 70);
    EXPECT_EQ(errorOf([&] { m_fs.removeFile("T:\\closed\\f"); }), 70);
    m_root->setMode("closed", 0);
    EXPECT_EQ(errorOf([&] { m_fs.openFolder("T:\\closed"); }), 70);
    m_root->setMode("closed", 0700);
}

TEST_F(LinuxFileSystemTest, PassesThroughAFolderThatItMayNotList)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "nothing is refused to root";
    m_fs.createFolders("T:\\passing");
    m_fs.replaceFile("T:\\passing\\f", "x");
    m_root->setMode("passing", 0300);
    EXPECT_EQ(m_fs.readAll("T:\\passing\\f"), "x");
    const auto folder = m_fs.openFolder("T:\\passing");
    EXPECT_EQ(errorOf([&] { folder->list(); }), 70);
    folder->setOwnTimes(1, 2);
    EXPECT_EQ(folder->info().modifiedNs, 2);
    folder->setOwnMode(0700);
    EXPECT_EQ(m_root->find("passing")->mode, 0700U);
}

TEST_F(LinuxFileSystemTest, RaisesWhenTheDeviceIsFull)
{
    if (!m_fs.find("C:\\dev\\full"))
        GTEST_SKIP() << "no device that is always full";
    // Devices are no files here, so the number is looked at through the descriptor alone.
    const UniqueFd full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(::write(full.get(), "x", 1), -1);
    EXPECT_EQ(classicNumber(errno), 61);
}

} // namespace
} // namespace vardelin::platform
