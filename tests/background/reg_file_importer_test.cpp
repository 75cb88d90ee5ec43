#include "background/reg_file_importer.h"
#include "base/runtime_error.h"
#include "platform/memory/memory_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vardelin::background {
namespace {

constexpr auto kMachine = platform::RegistryRoot::LocalMachine;

struct ImporterRig {
    platform::MemoryMachine memory;
    RegFileImporter importer{memory.machine()};
    bool result = true;

    void put(const std::string& text)
    {
        memory.fileSystem.open("C:\\x.reg", platform::OpenMode::CreateOrTruncate)
            ->write(platform::asBytes(text));
    }
    base::RuntimeError import()
    {
        try {
            importer.WriteToReg("C:\\x.reg", result);
        } catch (const base::RuntimeError& error) {
            return error;
        }
        return base::RuntimeError(0);
    }
};

TEST(WriteToReg, ImportsAFileAndLeavesIt)
{
    ImporterRig rig;
    rig.put("REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\K]\r\n\"v\"=\"C:\\\\x\"\r\n");
    EXPECT_EQ(rig.import().number(), 0);
    EXPECT_TRUE(rig.result);
    EXPECT_EQ(rig.memory.registry.stringValue(kMachine, "K", "v"), "C:\\x");
    EXPECT_TRUE(rig.memory.fileSystem.fileExists("C:\\x.reg"));
}

TEST(WriteToReg, NamesAMissingFile)
{
    ImporterRig rig;
    const base::RuntimeError error = rig.import();
    EXPECT_EQ(error.number(), base::error_number::kFileNotFound);
    EXPECT_EQ(error.subject(), "C:\\x.reg");
    EXPECT_FALSE(rig.result);
}

TEST(WriteToReg, NamesFileLineAndCauseOfAGarbledTextAndAppliesNothing)
{
    ImporterRig rig;
    rig.put("REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\K]\r\nrubbish\r\n");
    const base::RuntimeError error = rig.import();
    EXPECT_EQ(error.number(), base::error_number::kInvalidCall);
    EXPECT_EQ(error.subject(), "C:\\x.reg");
    EXPECT_EQ(error.reason(), "line 3: neither a section nor a value");
    EXPECT_FALSE(rig.result);
    EXPECT_FALSE(rig.memory.registry.keyExists(kMachine, "K"));
}

TEST(WriteToReg, TellsTheShellOfTheProgramsToStart)
{
    const std::string run = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
    const struct {
        std::string section;
        std::size_t told;
    } rows[] = {
        {"[HKEY_LOCAL_MACHINE\\" + run + "]", 1},
        {"[HKEY_CURRENT_USER\\SOFTWARE\\MICROSOFT\\WINDOWS\\CURRENTVERSION\\RUN]", 1},
        {"[-HKEY_LOCAL_MACHINE\\" + run + "]", 1},
        {"[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft]", 1},
        {"[HKEY_LOCAL_MACHINE\\" + run + "Once]", 0},
        {"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft]", 0},
    };
    for (const auto& row : rows) {
        ImporterRig rig;
        rig.put("REGEDIT4\r\n" + row.section + "\r\n");
        EXPECT_EQ(rig.import().number(), 0);
        EXPECT_EQ(rig.memory.shell.script().countOf("shell.runKeyChanged"), row.told)
            << row.section;
    }
}

TEST(WriteToReg, HasImportedEvenWhereTheShellCannotFollow)
{
    ImporterRig rig;
    rig.memory.shell.script().failCallsNamed("shell.runKeyChanged",
                                             base::error_number::kPermissionDenied);
    rig.put(
        "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run]\r\n"
        "\"Vardelin\"=\"C:\\\\App\\\\Vardelin.exe\"\r\n");
    EXPECT_EQ(rig.import().number(), 0);
    EXPECT_TRUE(rig.result);
}

} // namespace
} // namespace vardelin::background
