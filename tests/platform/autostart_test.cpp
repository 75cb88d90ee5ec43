#include "base/runtime_error.h"
#include "platform/linux/autostart.h"
#include "platform/memory/memory_file_system.h"
#include "platform/memory/memory_registry.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace vardelin::platform {
namespace {

class Autostart : public testing::Test {
protected:
    test::TempFolder config;
    MemoryFileSystem fileSystem;
    MemoryRegistry registry;

    void mirror() { mirrorRunKey(registry, fileSystem, config.path()); }
    std::string entry(const std::string& name)
    {
        return test::TempFolder::read(config / ("autostart/" + name));
    }
    bool exists(const std::string& name)
    {
        return std::filesystem::exists(config / ("autostart/" + name));
    }
};

TEST_F(Autostart, WritesAnEntryForEachProgramOfTheRunKeys)
{
    registry.setString(RegistryRoot::LocalMachine, kRunKey, "VDSysTray", "C:\\App\\VDSysTray.exe");
    registry.setString(RegistryRoot::CurrentUser, kRunKey, "Vardelin",
                       "\"D:\\My App\\Vardelin.exe\" --quiet 50%");
    mirror();
    EXPECT_EQ(entry("vardelin-vdsystray.desktop"), "[Desktop Entry]\n"
                                                   "Type=Application\n"
                                                   "Name=VDSysTray\n"
                                                   "TryExec=/App/VDSysTray\n"
                                                   "Exec=\"/App/VDSysTray\"\n"
                                                   "Terminal=false\n");
    EXPECT_EQ(entry("vardelin-vardelin.desktop"),
              "[Desktop Entry]\n"
              "Type=Application\n"
              "Name=Vardelin\n"
              "TryExec=/mnt/d/My App/Vardelin\n"
              "Exec=\"/mnt/d/My App/Vardelin\" \"--quiet\" \"50%%\"\n"
              "Terminal=false\n");
}

TEST_F(Autostart, DeletesItsOwnEntryWithTheValueAndNobodyElses)
{
    const std::string theirs = config.write("autostart/other.desktop", "theirs");
    registry.setString(RegistryRoot::LocalMachine, kRunKey, "Vardelin", "C:\\App\\Vardelin.exe");
    mirror();
    ASSERT_TRUE(exists("vardelin-vardelin.desktop"));
    registry.deleteValue(RegistryRoot::LocalMachine, kRunKey, "Vardelin");
    mirror();
    EXPECT_FALSE(exists("vardelin-vardelin.desktop"));
    EXPECT_EQ(test::TempFolder::read(theirs), "theirs");
}

TEST_F(Autostart, MakesNoFolderWhereNothingIsToStart)
{
    mirror();
    EXPECT_FALSE(std::filesystem::exists(config / "autostart"));
}

TEST_F(Autostart, PassesOverAProgramThatNoDriveReaches)
{
    registry.setString(RegistryRoot::LocalMachine, kRunKey, "Gone", "X:\\App\\Gone.exe");
    registry.setString(RegistryRoot::LocalMachine, kRunKey, "", "C:\\App\\NoName.exe");
    registry.setString(RegistryRoot::LocalMachine, kRunKey, "Here", "C:\\App\\Here.exe");
    mirror();
    EXPECT_FALSE(exists("vardelin-gone.desktop"));
    EXPECT_TRUE(exists("vardelin-here.desktop"));
}

TEST_F(Autostart, LetsNoNameOrPathBreakOutOfItsLineOrFolder)
{
    registry.setString(RegistryRoot::LocalMachine, kRunKey, "../x\nExec=evil", "C:\\App\\$HOME`x`");
    mirror();
    EXPECT_EQ(entry("vardelin-.._x_exec_evil.desktop"), "[Desktop Entry]\n"
                                                        "Type=Application\n"
                                                        "Name=../x\\nExec=evil\n"
                                                        "TryExec=/App/$HOME`x`\n"
                                                        "Exec=\"/App/\\\\$HOME\\\\`x\\\\`\"\n"
                                                        "Terminal=false\n");
}

// A desktop looks for the program before it takes the doubled `%` for one.
TEST_F(Autostart, StartsAProgramWithAPercentSignInItsPath)
{
    registry.setString(RegistryRoot::LocalMachine, kRunKey, "Vardelin", "\"C:\\50%\\Vardelin\" -q");
    mirror();
    EXPECT_EQ(
        entry("vardelin-vardelin.desktop"),
        "[Desktop Entry]\n"
        "Type=Application\n"
        "Name=Vardelin\n"
        "TryExec=/50%/Vardelin\n"
        "Exec=/bin/sh -c \"exec \\\\\"\\\\$0\\\\\" \\\\\"\\\\$@\\\\\"\" \"/50%%/Vardelin\" \"-q\"\n"
        "Terminal=false\n");
}

TEST_F(Autostart, NamesTheFolderThatItCannotMake)
{
    config.write("autostart", "a file in the way");
    registry.setString(RegistryRoot::LocalMachine, kRunKey, "Vardelin", "C:\\App\\Vardelin.exe");
    try {
        mirror();
        FAIL() << "no error";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), base::error_number::kDeviceIo);
        EXPECT_EQ(error.subject(), config / "autostart");
    }
}

} // namespace
} // namespace vardelin::platform
