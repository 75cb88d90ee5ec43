#include "runs/space_check.h"

#include "archive/entry_names.h"
#include "platform/linux/linux_file_system.h"
#include "support/profile_rig.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::runs {
namespace {

using test::ProfileRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kMegabyte = std::uint64_t{1024} * 1024;

// C: holds the old archive `C:\Old\Work`; D: is an empty disk of its own.
struct SpaceCheck : testing::Test, ProfileRig {
    SpaceCheckContext check{machine, context, frame, editor};

    SpaceCheck()
    {
        drives.drives.clear();
        addDrive('C', platform::DriveType::Fixed);
        addDrive('D', platform::DriveType::Fixed);
        disk.createFolders("C:\\Old\\Work\\C\\data");
        disk.createFolders("C:\\Old\\Work\\OtherData");
        disk.createFolders("D:\\New");
        putFile("C:\\Old\\Work\\Work.vdp", "profile");
        putFile("C:\\Old\\Work\\C\\data\\a_FULL_x.zst", "first");
        putFile("C:\\Old\\Work\\C\\data\\a_Ver1_x.zst", "second");
    }
    void addDrive(char letter, platform::DriveType type)
    {
        platform::Drive drive;
        drive.letter = letter;
        drive.type = type;
        drives.drives.push_back(drive);
    }
    // The room of D: in bytes, and what of it is free.
    void room(std::uint64_t total, std::uint64_t free)
    {
        disk.setCapacity('D', total);
        disk.openFolder("D:\\")
            ->open("used", platform::OpenMode::CreateOrTruncate)
            ->resize(total - free);
    }
    void warnAt(std::string_view percentage)
    {
        editor.chkWarn.value = 1;
        editor.txtWarn.text = percentage;
    }
    void move() { CheckspaceFornew(check, "Work", "C:\\Old", "D:\\New"); }
    std::vector<std::string> treeOf(const std::string& root)
    {
        std::vector<std::string> found;
        walk(root, "", found);
        std::sort(found.begin(), found.end());
        return found;
    }
    void walk(const std::string& root, const std::string& below, std::vector<std::string>& found)
    {
        for (const platform::FolderEntryInfo& entry : disk.list(root + below)) {
            const std::string path = below + "\\" + entry.name;
            if (entry.info.kind == platform::FileKind::Folder) {
                found.push_back(path + "\\");
                walk(root, path, found);
            } else {
                found.push_back(path + " " + std::to_string(entry.info.modifiedNs) + " " +
                                std::to_string(entry.info.mode) + " " + disk.readAll(root + path));
            }
        }
    }
};

// Whether the name and the content, without times and rights between them, are those of the
// original; a folder has neither behind its name.
bool isWhole(const std::string& entry, const std::vector<std::string>& originals)
{
    const auto essence = [](const std::string& text) {
        return text.ends_with('\\') ? text
                                    : text.substr(0, text.find(' ')) + text.substr(text.rfind(' '));
    };
    return std::any_of(originals.begin(), originals.end(), [&](const std::string& original) {
        return essence(original) == essence(entry);
    });
}

TEST(DriveName, IsTheLetterInFrontOfTheFirstColonOrInTheBracket)
{
    EXPECT_EQ(sGetdrivename("Local Drives[C:]"), "C:\\");
    EXPECT_EQ(sGetdrivename("Local Drives[C]"), "C:\\") << "no colon, but a letter in brackets";
    EXPECT_EQ(sGetdrivename("Local Drives["), "");
    EXPECT_EQ(sGetdrivename("Local Drives[CD]"), "");
    EXPECT_EQ(sGetdrivename("Removable Drive[A:]"), "A:\\");
    EXPECT_EQ(sGetdrivename("F: [\\\\SERVER\\SHARE]"), "F:\\");
    EXPECT_EQ(sGetdrivename("C:"), "C:\\");
    EXPECT_EQ(sGetdrivename("D:\\Backups\\x"), "D:\\");
    EXPECT_EQ(sGetdrivename("\\\\server\\share"), "");
    EXPECT_EQ(sGetdrivename(":"), "");
}

TEST_F(SpaceCheck, WarnsBelowTheThresholdAndNotAtIt)
{
    room(100 * kMegabyte, 10 * kMegabyte);
    editor.CmbDestDrives.text = "Local Drives[D:]";
    warnAt("10%");
    Checkspace(check);
    EXPECT_THAT(messageBoxes.texts(), IsEmpty()) << "an exact tie";
    warnAt("11%");
    Checkspace(check);
    EXPECT_THAT(messageBoxes.texts(),
                ElementsAre("Free space available in Backup media is less than 11   percentage"));
    EXPECT_EQ(boxes()[0].title, "Vardelin");
    EXPECT_EQ(boxes()[0].buttons, platform::Buttons::Ok);
}

TEST_F(SpaceCheck, TheValueOfTheBoxIsItsNumber)
{
    room(100 * kMegabyte, 5 * kMegabyte);
    editor.CmbDestDrives.text = "D:";
    struct Row {
        std::string_view box;
        std::string_view value; // empty: no warning
    };
    const Row rows[] = {{"10%", "10"}, {" 10 %", "10"}, {"10", "10"}, {"05%", ""},
                        {"06%", "6"},  {"", ""},        {"%", ""},    {"99%", "99"}};
    for (const Row& row : rows) {
        clearBoxes();
        warnAt(row.box);
        Checkspace(check);
        if (row.value.empty())
            EXPECT_THAT(messageBoxes.texts(), IsEmpty()) << row.box;
        else
            EXPECT_THAT(messageBoxes.texts(),
                        ElementsAre("Free space available in Backup media is less than " +
                                    std::string(row.value) + "   percentage"));
    }
}

// A drive of the destination that is not there, or an entry without one, warns of nothing.
TEST_F(SpaceCheck, AnUnknownDriveGivesNoWarning)
{
    room(100 * kMegabyte, 0);
    for (const std::string_view entry : {"", "\\\\server\\share", "Q:", "Local Drives[Q:]"}) {
        editor.CmbDestDrives.text = entry;
        warnAt("100");
        Checkspace(check);
    }
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
    EXPECT_THAT(dialog.shown, IsEmpty());
}

TEST_F(SpaceCheck, WarnsOnFixedAndRemoteDrivesAlone)
{
    room(100 * kMegabyte, 0);
    editor.CmbDestDrives.text = " D: [\\\\SERVER\\SHARE] ";
    warnAt("100");
    for (const auto type : {platform::DriveType::Removable, platform::DriveType::Optical,
                            platform::DriveType::Memory, platform::DriveType::Unknown}) {
        drives.drives[1].type = type;
        Checkspace(check);
    }
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
    drives.drives[1].type = platform::DriveType::Remote;
    Checkspace(check);
    EXPECT_EQ(messageBoxes.texts().size(), 1U);
}

TEST_F(SpaceCheck, NeverWarnsAtZeroOrWithoutTheTickAndAlwaysAtAHundred)
{
    room(100 * kMegabyte, 0);
    editor.CmbDestDrives.text = "D:";
    warnAt("0");
    Checkspace(check);
    warnAt("50");
    editor.chkWarn.value = 0;
    Checkspace(check);
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
    room(100 * kMegabyte, 100 * kMegabyte - 1);
    warnAt("100");
    Checkspace(check);
    EXPECT_EQ(messageBoxes.texts().size(), 1U);
}

TEST_F(SpaceCheck, CopiesTheWholeArchive)
{
    disk.openFolder("C:\\Old\\Work\\C\\data")->setTimes("a_FULL_x.zst", 5, 1'000'000'007);
    disk.openFolder("C:\\Old\\Work\\C\\data")->setMode("a_Ver1_x.zst", 0640);
    const auto before = treeOf("C:\\Old\\Work");
    disk.createFolders("D:\\New\\Work\\C\\data");
    putFile("D:\\New\\Work\\C\\data\\a_FULL_x.zst", "something older that lay there");
    frame.panel1.text = "Copying the backup to the new location ...";
    move();
    EXPECT_EQ(treeOf("D:\\New\\Work"), before);
    EXPECT_EQ(treeOf("C:\\Old\\Work"), before);
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
    EXPECT_THAT(dialog.shown, IsEmpty());
}

TEST_F(SpaceCheck, CopiesNothingWhereThereIsNoMoreRoomThanTheArchiveTakes)
{
    const std::uint64_t bytes = 7 + 5 + 6;
    room(kMegabyte, bytes);
    move();
    EXPECT_THAT(messageBoxes.texts(),
                ElementsAre("There is no enough space to copy the backup files"));
    EXPECT_THAT(treeOf("D:\\New"), IsEmpty());
}

TEST_F(SpaceCheck, AMissingArchiveIsReported)
{
    CheckspaceFornew(check, "Other", "C:\\Old", "D:\\New");
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtSysErrNo.text, "76");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "MDIForm");
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "CheckspaceFornew");
    EXPECT_THAT(dialog.shown[0].txtInf.text, testing::HasSubstr("C:\\Old\\Other"));
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
}

TEST_F(SpaceCheck, AnArchiveUnderAnotherRunIsLeftAlone)
{
    const auto run = disk.lockFolder("C:\\Old\\Work");
    move();
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtSysErrNo.text, "70");
    EXPECT_THAT(treeOf("D:\\New"), IsEmpty());
}

TEST_F(SpaceCheck, ThePlaceItselfAndAPlaceInsideItAreNoTargets)
{
    const auto before = treeOf("C:\\Old\\Work");
    CheckspaceFornew(check, "Work", "C:\\Old", "C:\\Old\\");
    EXPECT_THAT(dialog.shown, IsEmpty());
    disk.createFolders("C:\\Old\\Work\\C");
    CheckspaceFornew(check, "Work", "C:\\Old", "C:\\Old\\Work\\C");
    EXPECT_EQ(dialog.shown.size(), 1U);
    disk.removeTree("C:\\Old\\Work\\C\\Work");
    EXPECT_EQ(treeOf("C:\\Old\\Work"), before);
}

TEST_F(SpaceCheck, TheWindowLivesAndSeesTheShareThatIsDone)
{
    putFile("C:\\Old\\Work\\C\\data\\empty_FULL_x", "");
    const platform::CallScript::Hook later = [&](const platform::CallScript::Call&) {
        clock.advance(std::chrono::seconds(1));
    };
    clock.script().onCallsNamed("clock.steady", later);
    std::vector<std::string> seen;
    messageLoop.onYield = [&] { seen.push_back(frame.panel1.text); };
    frame.panel1.text = "Copying";
    move();
    EXPECT_THAT(seen, testing::Contains("Copying")) << "while the archive is measured";
    EXPECT_THAT(seen, testing::Contains("Copying 38 %")) << "7 of 18 bytes";
    EXPECT_THAT(seen, testing::Contains("Copying 100 %"));
    const auto share = [](const std::string& text) {
        return text == "Copying" ? 0 : std::stoi(text.substr(std::string("Copying ").size()));
    };
    EXPECT_TRUE(
        std::is_sorted(seen.begin(), seen.end(), [&](const std::string& a, const std::string& b) {
            return share(a) < share(b);
        }));
}

TEST_F(SpaceCheck, DoesNotYieldForEverySmallFile)
{
    move(); // the clock stands still
    EXPECT_LE(messageLoop.yields, 2U);
}

// A copy under such a name could take the place of one that waits for its own.
TEST_F(SpaceCheck, LeavesUnfinishedFilesAndTheLocksFileBehind)
{
    const auto before = treeOf("C:\\Old\\Work");
    for (std::uint64_t serial = 1; serial <= 4; ++serial)
        putFile("C:\\Old\\Work\\C\\data\\" + archive::temporaryName(serial), "half");
    putFile(std::string("C:\\Old\\Work\\") + platform::kLockFileName, "");
    move();
    EXPECT_EQ(treeOf("D:\\New\\Work"), before);
    EXPECT_THAT(dialog.shown, IsEmpty());
}

// Whatever call fails, the old archive is whole, and each name in the new one holds a whole file.
TEST_F(SpaceCheck, AnErrorAtAnyCallLeavesWholeFilesAlone)
{
    const auto before = treeOf("C:\\Old\\Work");
    script.reset();
    move();
    const std::size_t calls = script.callCount();
    ASSERT_GT(calls, 20U);
    for (std::size_t call = 1; call <= calls; ++call) {
        if (disk.folderExists("D:\\New\\Work"))
            disk.removeTree("D:\\New\\Work");
        dialog.shown.clear();
        script.reset();
        script.failCall(call, base::error_number::kDiskFull);
        move();
        EXPECT_EQ(treeOf("C:\\Old\\Work"), before) << "call " << call;
        if (disk.folderExists("D:\\New\\Work")) {
            for (const std::string& entry : treeOf("D:\\New\\Work"))
                EXPECT_TRUE(isWhole(entry, before)) << entry << " after call " << call;
        }
    }
}

// What only a real disk knows: rights, times below the second, attributes, holes.
TEST_F(SpaceCheck, OnADiskAFileKeepsWhatItIs)
{
    const test::TempFolder folder;
    platform::LinuxFileSystem real(std::make_shared<const platform::DriveMap>(
        std::vector<platform::DriveRoot>{{'C', "/"}, {'T', folder.path()}}));
    platform::Machine onDisk{real,      drives, registry,    shell,       facts,
                             processes, clock,  messageLoop, messageBoxes};
    const SpaceCheckContext there{onDisk, context, frame, editor};
    real.createFolders("T:\\Old\\Work\\C");
    real.createFolders("T:\\New");
    const auto source = real.openFolder("T:\\Old\\Work\\C");
    constexpr std::uint64_t kHoleEnd = kMegabyte;
    {
        const auto file = source->open("a_FULL_x", platform::OpenMode::CreateOrTruncate);
        const std::string bytes = "data";
        file->writeAt(kHoleEnd, std::as_bytes(std::span(bytes)));
        base::PendingError unkept; // a temporary folder may lie where attributes are unknown
        unkept.attempt([&] { file->setExtendedAttribute({"user.note", "kept"}); });
        file->setMode(0440);
        file->setTimes(1'000'000'001, 1'700'000'000'123'456'789);
    }
    source->setOwnMode(0750);
    source->setOwnTimes(5, 1'600'000'000'000'000'007);
    CheckspaceFornew(there, "Work", "T:\\Old", "T:\\New");
    ASSERT_THAT(dialog.shown, IsEmpty());

    const auto target = real.openFolder("T:\\New\\Work\\C");
    EXPECT_EQ(target->info().mode, source->info().mode);
    EXPECT_EQ(target->info().modifiedNs, source->info().modifiedNs);
    const auto original = source->open("a_FULL_x", platform::OpenMode::Read);
    const auto copy = target->open("a_FULL_x", platform::OpenMode::Read);
    EXPECT_EQ(copy->info().sizeBytes, original->info().sizeBytes);
    EXPECT_EQ(copy->info().mode & 0777U, 0440U);
    EXPECT_EQ(copy->info().modifiedNs, 1'700'000'000'123'456'789);
    EXPECT_EQ(copy->extendedAttributes().size(), original->extendedAttributes().size());
    EXPECT_EQ(real.readAll("T:\\New\\Work\\C\\a_FULL_x"),
              real.readAll("T:\\Old\\Work\\C\\a_FULL_x"));
    const auto first = copy->nextData(0);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->offset, original->nextData(0)->offset) << "a hole stays a hole";
    EXPECT_EQ(target->list().size(), 1U);
}

} // namespace
} // namespace vardelin::runs
