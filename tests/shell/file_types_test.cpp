#include "platform/memory/memory_desktop_types.h"
#include "shell/file_types.h"
#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace vardelin::shell {
namespace {

using platform::RegistryRoot;
using platform::RegistryType;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kClasses = RegistryRoot::ClassesRoot;

struct TypesRig : test::ProfileRig {
    platform::MemoryDesktopTypes desktop;

    void activate(const std::string& commandLine = {})
    {
        RegistryFileTypes(profiles, desktop, commandLine).ActivateForIcon();
    }
    bool isWritten() { return registry.keyExists(kClasses, ".vdp"); }
    std::vector<std::string> dialogs() const
    {
        std::vector<std::string> texts;
        for (const auto& each : dialog.shown)
            texts.push_back(each.txtProcName.text + ": " + each.txtSysErrNo.text);
        return texts;
    }
};

TEST(ActivateForIcon, WritesTheClassesInTheirOrder)
{
    TypesRig rig;
    std::vector<std::string> written;
    rig.registry.script().onCallsNamed("registry.setValue",
                                       [&](const auto& call) { written.push_back(call.subject); });
    rig.activate();

    struct Row {
        std::string key;
        std::string name;
        RegistryType type;
        std::string data;
    };
    const std::vector<Row> rows = {
        {".vdp", "", RegistryType::String, "vdpfile"},
        {".vdb", "", RegistryType::String, "vdbfile"},
        {".vdp", "Content Type", RegistryType::String, "text/plain"},
        {".vdb", "Content Type", RegistryType::String, "text/plain"},
        {"vdpfile", "", RegistryType::String, "Vardelin Profile"},
        {"vdbfile", "", RegistryType::String, "Vardelin Backup"},
        {"vdpfile", "EditFlags", RegistryType::DWord, std::string("\0\0\0\0", 4)},
        {"vdbfile", "EditFlags", RegistryType::DWord, std::string("\4\0\0\0", 4)},
        {"vdpfile\\DefaultIcon", "", RegistryType::String, "C:\\App\\Vardelin.exe,0"},
        {"vdbfile\\DefaultIcon", "", RegistryType::String, "C:\\App\\VDDirectRestore.exe,0"},
        {"vdpfile\\Shell", "", RegistryType::String, ""},
        {"vdbfile\\Shell", "", RegistryType::String, ""},
        {"vdpfile\\Shell\\Open", "", RegistryType::String, ""},
        {"vdbfile\\Shell\\Open", "", RegistryType::String, ""},
        {"vdpfile\\Shell\\Open\\Command", "", RegistryType::String, "C:\\App\\Vardelin.exe %1"},
    };
    ASSERT_EQ(written.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].key + " " + rows[i].name);
        EXPECT_NE(written[i].find(rows[i].key), std::string::npos) << written[i];
        const auto value = rig.registry.value(kClasses, rows[i].key, rows[i].name);
        ASSERT_TRUE(value);
        EXPECT_EQ(value->type, rows[i].type);
        EXPECT_EQ(value->data, rows[i].data);
    }
    EXPECT_FALSE(rig.registry.keyExists(kClasses, "vdbfile\\Shell\\Open\\Command"));
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

// Each write waits for the disk, and this runs at every start.
TEST(ActivateForIcon, WritesNothingThatStandsAlready)
{
    TypesRig rig;
    rig.activate();
    rig.registry.setString(kClasses, "vdpfile", "", "somebody else's");
    rig.registry.script().reset();
    rig.activate();
    EXPECT_EQ(rig.registry.script().countOf("registry.setValue"), 1U);
    EXPECT_EQ(rig.registry.stringValue(kClasses, "vdpfile", ""), "Vardelin Profile");
}

TEST(ActivateForIcon, KeepsTheDocumentOfTheCommandLineOpenAndNotesIt)
{
    TypesRig rig;
    rig.disk.createFolder("C:\\x");
    rig.putFile("C:\\x\\Work.vdp", "text");
    rig.activate("C:\\x\\Work.vdp");
    EXPECT_NE(rig.fileNumbers.fileNumber1, nullptr);
    EXPECT_THAT(rig.shell.recentDocuments, ElementsAre("C:\\x\\Work.vdp"));
    EXPECT_TRUE(rig.isWritten());
}

TEST(ActivateForIcon, TakesNoCommandLineAndABrokenBindingForNoDocument)
{
    for (const char* commandLine : {"", "%1"}) {
        TypesRig rig;
        rig.activate(commandLine);
        EXPECT_EQ(rig.fileNumbers.fileNumber1, nullptr);
        EXPECT_THAT(rig.shell.recentDocuments, IsEmpty());
        EXPECT_THAT(rig.dialog.shown, IsEmpty());
        EXPECT_TRUE(rig.isWritten());
    }
}

TEST(ActivateForIcon, WritesNothingBehindADocumentThatCannotBeOpened)
{
    for (const char* commandLine : {"C:\\missing.vdp", "\"C:\\App\\Data\\Other_Dsk.txt\""}) {
        TypesRig rig;
        rig.activate(commandLine);
        ASSERT_EQ(rig.dialog.shown.size(), 1U) << commandLine;
        EXPECT_EQ(rig.dialog.shown[0].txtInf.text, "ActivateForIcon");
        EXPECT_FALSE(rig.isWritten());
        EXPECT_THAT(rig.shell.recentDocuments, IsEmpty());
    }
}

TEST(ActivateForIcon, GoesOnWhereTheDocumentCannotBeNoted)
{
    TypesRig rig;
    rig.shell.script().failCallsNamed("shell.addRecentDocument",
                                      base::error_number::kPermissionDenied);
    rig.activate("C:\\App\\Data\\Other_Dsk.txt");
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_TRUE(rig.isWritten());
}

TEST(ActivateForIcon, SaysNothingWhereItMayNotWrite)
{
    TypesRig rig;
    rig.registry.script().failCallsNamed("registry.setValue",
                                         base::error_number::kPermissionDenied);
    rig.activate();
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_FALSE(rig.isWritten());
    EXPECT_EQ(rig.registry.script().countOf("registry.setValue"), 15U);
}

// The first text that fails stops the texts behind it; numbers do not look at that.
TEST(ActivateForIcon, TellsADamagedStoreOnceForItsTexts)
{
    TypesRig rig;
    rig.registry.script().failCallsNamed("registry.setValue", base::error_number::kDeviceIo);
    rig.activate();
    EXPECT_THAT(rig.dialogs(),
                ElementsAre("ActivateForIcon: 57", "ActivateForIcon: 57", "ActivateForIcon: 57"));
    EXPECT_EQ(rig.registry.script().countOf("registry.setValue"), 3U);
    EXPECT_FALSE(rig.frame.BL_Reg_Write_Failed) << "the next batch begins anew";
}

// Whatever becomes of the desktop, the classes stand by then.
TEST(ActivateForIcon, TellsTheDesktopBehindTheClasses)
{
    TypesRig rig;
    int written = 0;
    rig.desktop.script().onCallsNamed("desktop.registerProgram", [&](const auto&) {
        written = static_cast<int>(rig.registry.script().countOf("registry.setValue"));
    });
    rig.activate();
    EXPECT_EQ(written, 15);
    EXPECT_TRUE(rig.desktop.known);
    EXPECT_EQ(rig.entries().back(), "ActivateForIcon End 1");
}

TEST(ActivateForIcon, TellsTheDesktopThoughTheClassesMayNotBeWritten)
{
    TypesRig rig;
    rig.registry.script().failCallsNamed("registry.setValue",
                                         base::error_number::kPermissionDenied);
    rig.activate();
    EXPECT_TRUE(rig.desktop.known);
}

TEST(ActivateForIcon, TellsTheDesktopNothingBehindADocumentThatCannotBeOpened)
{
    TypesRig rig;
    rig.activate("C:\\missing.vdp");
    EXPECT_FALSE(rig.desktop.known);
}

TEST(ActivateForIcon, LeavesADesktopThatCannotBeToldToTheTrace)
{
    for (const int number :
         {base::error_number::kPermissionDenied, base::error_number::kDeviceIo}) {
        TypesRig rig;
        rig.frame.BL_Reg_Write_Failed = true;
        rig.desktop.script().failCallsNamed("desktop.registerProgram", number);
        rig.activate();
        EXPECT_THAT(rig.dialog.shown, IsEmpty());
        EXPECT_THAT(rig.boxes(), IsEmpty());
        EXPECT_EQ(rig.errors.LG_Err_Number, 0);
        EXPECT_FALSE(rig.frame.BL_Reg_Write_Failed);
        const auto entries = rig.entries();
        ASSERT_GE(entries.size(), 2U);
        EXPECT_EQ(entries[entries.size() - 2], "Desktop: Error 1");
        EXPECT_EQ(entries.back(), "ActivateForIcon End 1");
        EXPECT_NE(rig.disk.readAll(rig.trace.logFileName()).find(base::descriptionOf(number)),
                  std::string::npos);
    }
}

TEST(SaveString, DoesNothingWhileAWriteHasFailed)
{
    TypesRig rig;
    rig.frame.BL_Reg_Write_Failed = true;
    SaveString(rig.profiles, kClasses, "k", "n", "text");
    EXPECT_FALSE(rig.registry.keyExists(kClasses, "k"));
    EXPECT_THAT(rig.entries(), IsEmpty());
    SaveDWord(rig.profiles, kClasses, "k", "n", 0xFFFEFDFCU);
    const auto value = rig.registry.value(kClasses, "k", "n");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->data, "\xFC\xFD\xFE\xFF");
    EXPECT_THAT(rig.entries(), ElementsAre("SaveDWord End 2"));
}

TEST(SaveString, ReplacesAValueOfAnotherType)
{
    TypesRig rig;
    SaveDWord(rig.profiles, kClasses, "k", "", 7);
    SaveString(rig.profiles, kClasses, "k", "", "text");
    EXPECT_EQ(rig.registry.stringValue(kClasses, "k", ""), "text");
}

} // namespace
} // namespace vardelin::shell
