#include "platform/linux/linux_drives.h"

#include "platform/memory/memory_registry.h"
#include "test_worlds.h"

#include <gmock/gmock.h>

#include <fstream>

namespace vardelin::platform {
namespace {

constexpr std::string_view kMounts =
    "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
    "27 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n"
    "30 27 8:17 / /media/me/My\\040Stick rw shared:2 master:1 - vfat /dev/sdb1 rw\n"
    "31 27 0:50 / /net/work rw - cifs //server/share/sub rw\n"
    "32 27 0:51 / /home/me/far rw - fuse.sshfs me@far.example:/srv/x rw\n"
    "33 27 11:0 / /mnt/disc ro - iso9660 /dev/sr0 ro\n"
    "34 27 0:52 / /mnt/ram rw - tmpfs tmpfs rw\n"
    "35 27 0:53 / /srv/other rw - ext4 /dev/sdc1 rw\n"
    "garbage\n"
    "36 27 0:54 / rw - cut\n";

TEST(MountInfo, ReadsLinesWithEscapesAndOptionalFields)
{
    const auto mounts = parseMountInfo(kMounts);
    ASSERT_EQ(mounts.size(), 8U);
    EXPECT_EQ(mounts[2], (Mount{"8:17", "/media/me/My Stick", "vfat", "/dev/sdb1"}));
    EXPECT_EQ(mounts[3].source, "//server/share/sub");
}

TEST(MountInfo, GivesOnlyTheMountOnTop)
{
    const auto mounts = parseMountInfo("1 0 8:1 / /mnt/a rw - ext4 /dev/a rw\n"
                                       "2 0 8:2 / /mnt/a rw - xfs /dev/b rw\n");
    ASSERT_EQ(mounts.size(), 1U);
    EXPECT_EQ(mounts[0].type, "xfs");
}

TEST(MountInfo, SurvivesAnyCutOfALine)
{
    for (std::size_t length = 0; length <= kMounts.size(); ++length)
        EXPECT_LE(parseMountInfo(kMounts.substr(0, length)).size(), 9U);
}

struct ShareRow {
    std::string source;
    std::string share;
};

TEST(MountInfo, NamesTheShareOfASource)
{
    const std::vector<ShareRow> rows{
        {"//server/share", "\\\\server\\share"},
        {"//server/share/sub folder/", "\\\\server\\share\\sub folder"},
        {"server:/export/home", "\\\\server\\export\\home"},
        {"me@far.example:/srv/x", "\\\\far.example\\srv\\x"},
        {"me@far.example:", "\\\\far.example"},
        {"[fe80::1]:/export", "\\\\[fe80\xEF\x80\xBA\xEF\x80\xBA"
                              "1]\\export"},
        {"remote:bucket", "\\\\remote\\bucket"},
        {"alone", "\\\\alone"},
    };
    for (const ShareRow& row : rows)
        EXPECT_EQ(shareNameOf({"0:1", "/x", "nfs4", row.source}), row.share);
}

TEST(MountInfo, LettersMediaFoldersAndNetworkMounts)
{
    const auto lettered = [](const std::string& root, const std::string& type) {
        return hasDriveLetter({"8:1", root, type, "source"});
    };
    EXPECT_TRUE(lettered("/mnt/a", "ext4"));
    EXPECT_TRUE(lettered("/media/me/b", "exfat"));
    EXPECT_TRUE(lettered("/run/media/me/c", "ntfs3"));
    for (const char* type : {"cifs", "nfs", "nfs4", "fuse.sshfs", "fuse.rclone"})
        EXPECT_TRUE(lettered("/anywhere", type)) << type;
    EXPECT_FALSE(lettered("/", "nfs4"));
    EXPECT_FALSE(lettered("/home", "ext4"));
    EXPECT_FALSE(lettered("/mnt", "ext4"));
    EXPECT_FALSE(lettered("/mntx/a", "ext4"));
    EXPECT_FALSE(lettered("/mnt/a", "tmpfs"));
    EXPECT_FALSE(lettered("/run/media/me", "autofs"));
}

class LinuxDrivesTest : public testing::Test {
protected:
    LinuxDrivesTest() { mounts(kMounts); }

    void mounts(std::string_view text)
    {
        std::ofstream(m_sources.mountInfo, std::ios::binary | std::ios::trunc) << text;
    }
    static std::string lettersOf(Drives& drives)
    {
        std::string letters;
        for (const Drive& drive : drives.list())
            letters += drive.letter;
        return letters;
    }
    static std::string rootOf(Drives& drives, char letter)
    {
        for (const Drive& drive : drives.list()) {
            if (drive.letter == letter)
                return drive.nativeRoot;
        }
        return {};
    }

    test::TemporaryFolder m_folder;
    MountSources m_sources{m_folder.path() + "/mountinfo", m_folder.path() + "/sys/dev/block",
                           m_folder.path() + "/labels"};
    MemoryRegistry m_registry;
    LinuxDrives m_drives{m_registry, m_sources};
};

TEST_F(LinuxDrivesTest, LetterTheMountsInTheirOrder)
{
    EXPECT_EQ(lettersOf(m_drives), "CDEFG");
    EXPECT_EQ(rootOf(m_drives, 'C'), "/");
    EXPECT_EQ(rootOf(m_drives, 'D'), "/media/me/My Stick");
    EXPECT_EQ(rootOf(m_drives, 'G'), "/mnt/disc");
    EXPECT_TRUE(m_drives.exists('g'));
    EXPECT_FALSE(m_drives.exists('H'));
}

TEST_F(LinuxDrivesTest, TellTypesAndShareNames)
{
    const auto drives = m_drives.list();
    EXPECT_EQ(drives[0].type, DriveType::Fixed);
    EXPECT_EQ(drives[1].type, DriveType::Fixed);
    EXPECT_EQ(drives[2].type, DriveType::Remote);
    EXPECT_EQ(drives[2].shareName, "\\\\server\\share\\sub");
    EXPECT_EQ(drives[3].type, DriveType::Remote);
    EXPECT_EQ(drives[3].shareName, "\\\\far.example\\srv\\x");
    EXPECT_EQ(drives[4].type, DriveType::Optical);
    EXPECT_EQ(drives[4].shareName, "");
}

TEST_F(LinuxDrivesTest, KeepALetterForItsMount)
{
    m_drives.list();
    EXPECT_EQ(m_registry.stringValue(RegistryRoot::LocalMachine, "SYSTEM\\MountedDevices",
                                     "\\DosDevices\\D:"),
              "/media/me/My Stick");
    // The stick is away and another disk comes: it gets a new letter, never the stick's.
    mounts("30 27 8:1 / /mnt/new rw - ext4 /dev/sdd1 rw\n"
           "33 27 11:0 / /mnt/disc ro - iso9660 /dev/sr0 ro\n");
    LinuxDrives afterRestart(m_registry, m_sources);
    EXPECT_EQ(lettersOf(afterRestart), "CGH");
    EXPECT_EQ(rootOf(afterRestart, 'G'), "/mnt/disc");
    EXPECT_EQ(rootOf(afterRestart, 'H'), "/mnt/new");
    mounts(kMounts);
    EXPECT_EQ(rootOf(afterRestart, 'D'), "/media/me/My Stick");
}

TEST_F(LinuxDrivesTest, ReadLettersThatWereWrittenByHand)
{
    const auto key = "SYSTEM\\MountedDevices";
    m_registry.setString(RegistryRoot::LocalMachine, key, "\\dosdevices\\x:", "/mnt/disc");
    m_registry.setString(RegistryRoot::LocalMachine, key, "\\DosDevices\\C:", "/mnt/not for C");
    m_registry.setString(RegistryRoot::LocalMachine, key, "\\DosDevices\\long:", "/net/work");
    m_registry.setString(RegistryRoot::LocalMachine, key, "\\DosDevices\\D:", "");
    EXPECT_EQ(lettersOf(m_drives), "CDEFX");
    EXPECT_EQ(rootOf(m_drives, 'X'), "/mnt/disc");
}

TEST_F(LinuxDrivesTest, LeaveMountsWithoutALetterWhenAllAreTaken)
{
    std::string text;
    for (int i = 0; i < 30; ++i)
        text += "30 27 8:1 / /mnt/m" + std::to_string(i) + " rw - ext4 /dev/x rw\n";
    mounts(text);
    EXPECT_EQ(lettersOf(m_drives), "CDEFGHIJKLMNOPQRSTUVWXYZ");
    EXPECT_EQ(m_drives.map()->fromNative("/mnt/m29/x"), "C:\\mnt\\m29\\x");
}

TEST_F(LinuxDrivesTest, SeeARemovableDiskThroughItsPartition)
{
    namespace fs = std::filesystem;
    const fs::path disk = fs::path(m_folder.path()) / "sys/devices/sdb";
    fs::create_directories(disk / "sdb1");
    fs::create_directories(m_sources.sysDevBlock);
    std::ofstream(disk / "removable") << "1\n";
    fs::create_symlink(disk / "sdb1", fs::path(m_sources.sysDevBlock) / "8:17");
    EXPECT_EQ(m_drives.typeOf('D'), DriveType::Removable);
    std::ofstream(disk / "removable") << "0\n";
    EXPECT_EQ(m_drives.typeOf('D'), DriveType::Fixed);
    // A number that no block device has: the source's name leads there.
    fs::remove(fs::path(m_sources.sysDevBlock) / "8:17");
    std::ofstream(disk / "removable") << "1\n";
    fs::create_directories(fs::path(m_folder.path()) / "sys/class/block");
    fs::create_symlink(disk / "sdb1", fs::path(m_folder.path()) / "sys/class/block/sdb1");
    EXPECT_EQ(m_drives.typeOf('D'), DriveType::Removable);
}

TEST_F(LinuxDrivesTest, TellTheLabelOfADisk)
{
    namespace fs = std::filesystem;
    const fs::path device = fs::path(m_folder.path()) / "sdx1";
    std::ofstream(device) << "";
    fs::create_directories(m_sources.diskByLabel);
    fs::create_symlink("nowhere", fs::path(m_sources.diskByLabel) / "dangling");
    fs::create_symlink(device, fs::path(m_sources.diskByLabel) / "My\\x20Stick");
    mounts("30 27 8:17 / /mnt/a rw - vfat " + device.string() + " rw\n");
    EXPECT_EQ(m_drives.list()[1].volumeLabel, "My Stick");
    EXPECT_EQ(m_drives.list()[0].volumeLabel, "");
}

TEST_F(LinuxDrivesTest, HaveCWhateverTheSystemTells)
{
    LinuxDrives blind(m_registry, {m_folder.path() + "/none", "/none", "/none"});
    EXPECT_EQ(lettersOf(blind), "C");
    EXPECT_EQ(blind.map()->toNative("C:\\a"), "/a");
}

TEST_F(LinuxDrivesTest, HandTheirMapToTheFileSystem)
{
    const auto map = m_drives.map();
    EXPECT_EQ(map->toNative("E:\\x"), "/net/work/x");
    EXPECT_EQ(map->fromNative("/media/me/My Stick/x"), "D:\\x");
    EXPECT_EQ(map->fromNative("/srv/other/x"), "C:\\srv\\other\\x");
}

} // namespace
} // namespace vardelin::platform
