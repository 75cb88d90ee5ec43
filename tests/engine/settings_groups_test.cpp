#include "runs/engine/settings_groups.h"

#include "base/runtime_error.h"
#include "platform/memory/memory_machine.h"
#include "platform/registry_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {
namespace {

using platform::RegistryRoot;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

struct Desktop : platform::MemoryMachine {
    platform::MemoryFileSystem& files = fileSystem;
    platform::Machine ports = machine();

    void put(std::string_view path, std::string_view bytes = "x")
    {
        files.createFolders(platform::parentOf(path));
        const auto file = files.open(path, platform::OpenMode::CreateOrTruncate);
        file->write(platform::asBytes(bytes));
        file->close();
    }
};

std::vector<std::string> pathsOf(const std::vector<SettingsItem>& items)
{
    std::vector<std::string> paths;
    paths.reserve(items.size());
    for (const SettingsItem& item : items)
        paths.push_back(item.sourcePath);
    return paths;
}

TEST(SettingsGroups, HaveTheNamesOfTheListInItsOrder)
{
    EXPECT_THAT(kSettingsGroups, ElementsAre("Registry Settings", "Desktop Settings",
                                             "IE Favorites", "Outlook Settings"));
    EXPECT_EQ(settingsGroup("OUTLOOK settings"), "Outlook Settings");
    EXPECT_EQ(settingsGroup("Other"), "");
    EXPECT_EQ(settingsGroup(""), "");
}

TEST(SettingsGroups, AreTheFilesAtAndBelowTheirPaths)
{
    Desktop desktop;
    desktop.put("C:\\home\\ann\\Desktop\\b10.txt", "12345");
    desktop.put("C:\\home\\ann\\Desktop\\B9.txt");
    desktop.put("C:\\home\\ann\\Desktop\\b9a\\c.txt"); // between the two by name
    desktop.put("C:\\home\\ann\\.config\\look.conf");
    desktop.put("C:\\home\\ann\\not asked for.txt");
    desktop.files.createFolders("C:\\home\\ann\\Desktop\\empty");
    desktop.shell.settings["Desktop Settings"] = {"C:\\home\\ann\\Desktop",
                                                  "C:\\home\\ann\\.config\\look.conf"};

    const auto items = collectSettings(desktop.ports, "desktop settings");

    EXPECT_THAT(pathsOf(items),
                ElementsAre("C:\\home\\ann\\Desktop\\b9a\\c.txt", "C:\\home\\ann\\Desktop\\B9.txt",
                            "C:\\home\\ann\\Desktop\\b10.txt",
                            "C:\\home\\ann\\.config\\look.conf"));
    EXPECT_EQ(items[2].relativeName, "C\\home\\ann\\Desktop\\b10.txt");
    EXPECT_EQ(items[2].info.sizeBytes, 5U);
    EXPECT_THAT(items[2].bytes, IsEmpty());
}

TEST(SettingsGroups, TakeEachFileOnceWherePathsOverlap)
{
    Desktop desktop;
    desktop.put("C:\\d\\a");
    desktop.put("C:\\d\\s\\b");
    desktop.shell.settings["IE Favorites"] = {"C:\\d\\s", "C:\\d\\", "C:\\d", "C:\\d\\a"};

    EXPECT_THAT(pathsOf(collectSettings(desktop.ports, "IE Favorites")),
                ElementsAre("C:\\d\\s\\b", "C:\\d\\a"));
}

TEST(SettingsGroups, TakeLinksThemselvesAndNeverFollowThem)
{
    Desktop desktop;
    desktop.put("C:\\elsewhere\\a");
    desktop.files.createFolders("C:\\d");
    desktop.files.openFolder("C:\\d")->createLink("folder link", "/elsewhere");
    desktop.files.openFolder("C:\\d")->createLink("dangling", "/nowhere");
    desktop.shell.settings["IE Favorites"] = {"C:\\d"};

    const auto items = collectSettings(desktop.ports, "IE Favorites");

    ASSERT_THAT(pathsOf(items), ElementsAre("C:\\d\\dangling", "C:\\d\\folder link"));
    EXPECT_EQ(items[0].info.kind, platform::FileKind::SymbolicLink);
    EXPECT_EQ(items[1].info.kind, platform::FileKind::SymbolicLink);
}

TEST(SettingsGroups, TellWhatCannotBeListedAndCollectTheRest)
{
    Desktop desktop;
    desktop.put("C:\\d\\closed\\a");
    desktop.put("C:\\d\\open\\b");
    desktop.files.setUnreadable("C:\\d\\closed");
    desktop.shell.settings["Outlook Settings"] = {"C:\\d", "C:\\gone"};

    std::vector<Gap> missed;
    const auto items = collectSettings(desktop.ports, "Outlook Settings", &missed);

    EXPECT_THAT(pathsOf(items), ElementsAre("C:\\d\\open\\b"));
    ASSERT_EQ(missed.size(), 1U); // what is gone meanwhile is none of the machine's settings
    EXPECT_EQ(missed[0].path, "C:\\d\\closed");
    EXPECT_THAT(missed[0].reason, Not(IsEmpty()));
    EXPECT_EQ(collectSettings(desktop.ports, "Outlook Settings").size(), 1U);
}

TEST(SettingsGroups, AreEmptyWhereTheMachineHasNothingOfThem)
{
    Desktop desktop;
    EXPECT_THAT(collectSettings(desktop.ports, "Outlook Settings"), IsEmpty());
    EXPECT_THAT(collectSettings(desktop.ports, "No Such Group"), IsEmpty());
}

TEST(RegistrySettings, AreOneTextThatPutsTheRegistryBack)
{
    Desktop desktop;
    desktop.registry.setString(RegistryRoot::CurrentUser, "Software\\Tool", "Name", "a \"b\" \\c");
    desktop.registry.setString(RegistryRoot::ClassesRoot, ".vdp", "", "vdpfile");
    desktop.registry.setString(RegistryRoot::LocalMachine, "SOFTWARE\\Tool", "Path", "C:\\x");

    const auto items = collectSettings(desktop.ports, "Registry Settings");

    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].sourcePath, "");
    EXPECT_EQ(items[0].relativeName, "registry.reg");
    EXPECT_THAT(items[0].bytes, StartsWith("REGEDIT4\r\n"));
    EXPECT_EQ(items[0].bytes.find("REGEDIT4", 1), std::string::npos);

    platform::MemoryRegistry other;
    platform::applyRegistryChanges(other, platform::parseRegistryText(items[0].bytes));
    EXPECT_EQ(other.stringValue(RegistryRoot::CurrentUser, "Software\\Tool", "Name"),
              "a \"b\" \\c");
    EXPECT_EQ(other.stringValue(RegistryRoot::ClassesRoot, ".vdp", ""), "vdpfile");
    EXPECT_EQ(other.stringValue(RegistryRoot::LocalMachine, "SOFTWARE\\Tool", "Path"), "C:\\x");
}

// Put back after a disk has changed, the letters would send every path of every profile elsewhere.
TEST(RegistrySettings, LeaveTheDriveLettersOut)
{
    Desktop desktop;
    desktop.registry.setString(RegistryRoot::LocalMachine, "SYSTEM\\MountedDevices", "D:", "uuid");

    EXPECT_THAT(collectSettings(desktop.ports, "Registry Settings")[0].bytes,
                Not(HasSubstr("MountedDevices")));
}

// The saved text is compared with the newest copy, so it may not depend on the order of writing.
TEST(RegistrySettings, AreTheSameTextWhateverTheOrderOfWriting)
{
    Desktop one;
    one.registry.setString(RegistryRoot::CurrentUser, "b", "2", "x");
    one.registry.setString(RegistryRoot::CurrentUser, "b", "1", "y");
    one.registry.setString(RegistryRoot::CurrentUser, "a", "", "z");
    Desktop two;
    two.registry.setString(RegistryRoot::CurrentUser, "a", "", "z");
    two.registry.setString(RegistryRoot::CurrentUser, "b", "1", "y");
    two.registry.setString(RegistryRoot::CurrentUser, "b", "2", "x");

    EXPECT_EQ(collectSettings(one.ports, kRegistryGroup)[0].bytes,
              collectSettings(two.ports, kRegistryGroup)[0].bytes);
}

TEST(SettingsGroups, TellWhereAFileCameFromByItsRelativeName)
{
    EXPECT_EQ(settingsSourcePath("C\\home\\ann\\a.txt"), "C:\\home\\ann\\a.txt");
    EXPECT_EQ(settingsSourcePath("d\\a"), "d:\\a");
    for (const std::string_view name : {"registry.reg", "", "C", "C\\", "1\\a", "\\C\\a", "ab\\c"})
        EXPECT_EQ(settingsSourcePath(name), "") << name;
}

} // namespace
} // namespace vardelin::engine
