#include "background/activation.h"
#include "base/runtime_error.h"
#include "platform/memory/memory_machine.h"
#include "support/trace_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vardelin::background {
namespace {

using platform::RegistryRoot;
using platform::WindowStyle;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kApp = "C:\\My App";
constexpr std::string_view kFile = "C:\\My App\\ServiceActive.reg";

struct ActivationRig {
    platform::MemoryMachine memory;
    platform::Machine machine = memory.machine();
    test::ScriptedErrorDialog dialog;
    trace::RunTrace runTrace{memory.fileSystem, memory.clock, memory.messageBoxes,
                             std::string(kApp), "Vardelin"};
    trace::ErrorRecord errors;
    trace::TraceContext tracing{runTrace, errors, dialog};
    ActivationContext context{machine, tracing};
    ServicePlace place;

    ActivationRig() { machine.fileSystem.createFolder(kApp); }

    std::string file() { return machine.fileSystem.readAll(kFile); }
    std::vector<std::string> started() const
    {
        std::vector<std::string> paths;
        for (const auto& each : memory.processes.started)
            paths.push_back(each.path);
        return paths;
    }
};

TEST(ServiceActive, DoublesEveryBackslashOfItsPaths)
{
    ActivationRig rig;
    DynRegFileCr(rig.context, kApp, true, "C:\\WINDOWS");
    EXPECT_EQ(rig.file(),
              "REGEDIT4\r\n"
              "\r\n"
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run]\r\n"
              "\"VDUninstall\"=\"C:\\\\WINDOWS\\\\system32\\\\VDUninstall.exe\"\r\n"
              "\r\n"
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App "
              "Paths\\Vardelin]\r\n"
              "@=\"C:\\\\My App\\\\\"\r\n"
              "\r\n"
              "[HKEY_CLASSES_ROOT\\vdbfile\\Shell\\Open\\Command]\r\n"
              "@=\"\\\"C:\\\\My App\\\\VDDirectRestore.exe\\\" %1%\"\r\n");
}

TEST(ServiceActive, NamesTheOlderSystemFolderOffTheNtLine)
{
    ActivationRig rig;
    DynRegFileCr(rig.context, kApp, false, "C:\\WINDOWS");
    EXPECT_THAT(rig.file(), testing::HasSubstr(
                                "\"VDUninstall\"=\"C:\\\\WINDOWS\\\\system\\\\VDUninstall.exe\""));
}

TEST(ServiceActive, IsWrittenWholeEachTime)
{
    ActivationRig rig;
    DynRegFileCr(rig.context, kApp, true, "C:\\WINDOWS");
    const std::string first = rig.file();
    DynRegFileCr(rig.context, kApp, true, "C:\\WINDOWS");
    EXPECT_EQ(rig.file(), first);
}

TEST(ServiceActive, ReportsWhatItCannotBeWrittenFor)
{
    ActivationRig rig;
    rig.memory.fileSystem.setCapacity('C', 0);
    DynRegFileCr(rig.context, kApp, true, "C:\\WINDOWS");
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown[0].txtInf.text,
              "Error in creating the Registry file for activating the Service");
    EXPECT_EQ(rig.dialog.shown[0].txtProcName.text, "DynRegFileCr");
    EXPECT_EQ(rig.errors.LG_Err_Number, base::error_number::kDiskFull);
    EXPECT_FALSE(rig.machine.fileSystem.fileExists(kFile)) << "half a file counts as the whole";
}

TEST(Activation, StartsTheThreeProgramsThenWritesAndMergesTheFile)
{
    ActivationRig rig;
    EXPECT_FALSE(isActivated(rig.context, kApp));
    rig.memory.processes.script().onCallsNamed(
        "processes.start", [&](const auto&) { EXPECT_FALSE(isActivated(rig.context, kApp)); });
    activateMonitors(rig.context, kApp, true, rig.place);

    const auto minimized = [](std::string path) {
        return platform::MemoryProcesses::Started{
            std::move(path), {}, WindowStyle::MinimizedWithFocus};
    };
    EXPECT_THAT(rig.memory.processes.started,
                ElementsAre(minimized("C:\\My App\\VDFileMon.exe"),
                            minimized("C:\\My App\\VDIdleMon.exe"),
                            minimized("C:\\My App\\VDScheduleMon.exe")));
    EXPECT_TRUE(isActivated(rig.context, kApp));
    EXPECT_EQ(rig.memory.registry.stringValue(RegistryRoot::LocalMachine,
                                              "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run",
                                              "VDUninstall"),
              "C:\\WINDOWS\\system32\\VDUninstall.exe");
    EXPECT_EQ(rig.memory.registry.stringValue(
                  RegistryRoot::LocalMachine,
                  "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\Vardelin", ""),
              "C:\\My App\\");
    EXPECT_EQ(rig.memory.registry.stringValue(RegistryRoot::ClassesRoot,
                                              "vdbfile\\Shell\\Open\\Command", ""),
              "\"C:\\My App\\VDDirectRestore.exe\" %1%");
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST(Activation, StartsTheSameProgramsOnEveryPlatform)
{
    ActivationRig nt;
    activateMonitors(nt.context, kApp, true, nt.place);
    ActivationRig other;
    activateMonitors(other.context, kApp, false, other.place);
    EXPECT_EQ(nt.memory.processes.started, other.memory.processes.started);
}

TEST(Activation, KeepsWhereServicesAreInstalled)
{
    const struct {
        std::string computer;
        std::string kept;
    } rows[] = {
        {"STUDY", "STUDY"},
        {"", ""},
        {std::string(254, 'n'), std::string(254, 'n')},
        {std::string(255, 'n'), ""}, // no room for the closing zero
    };
    for (const auto& row : rows) {
        ActivationRig rig;
        rig.memory.facts.computer = row.computer;
        activateMonitors(rig.context, kApp, true, rig.place);
        EXPECT_EQ(rig.place.windowsFolder, "C:\\WINDOWS");
        EXPECT_EQ(rig.place.serviceInstaller, "C:\\My App\\instsrv.exe");
        EXPECT_EQ(rig.place.computerName, row.kept);
    }
}

// The file says that all three were started, so none may be written before they are.
TEST(Activation, RaisesForAProgramThatIsMissingAndWritesNoFile)
{
    const struct {
        std::string missing;
        std::size_t started;
    } rows[] = {{"VDFileMon.exe", 0}, {"VDIdleMon.exe", 1}, {"VDScheduleMon.exe", 2}};
    for (const auto& row : rows) {
        ActivationRig rig;
        rig.memory.processes.missing.insert(std::string(kApp) + "\\" + row.missing);
        try {
            activateMonitors(rig.context, kApp, true, rig.place);
            ADD_FAILURE() << row.missing;
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), base::error_number::kFileNotFound);
            EXPECT_EQ(error.subject(), std::string(kApp) + "\\" + row.missing);
        }
        EXPECT_EQ(rig.started().size(), row.started);
        EXPECT_FALSE(isActivated(rig.context, kApp));
    }
}

TEST(Activation, IsSilentAboutAFailedMerge)
{
    ActivationRig rig;
    rig.memory.registry.script().failCallsNamed("registry.transaction",
                                                base::error_number::kPermissionDenied);
    activateMonitors(rig.context, kApp, true, rig.place);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_TRUE(isActivated(rig.context, kApp));
    EXPECT_FALSE(rig.machine.registry.keyExists(RegistryRoot::ClassesRoot, "vdbfile"));
}

TEST(Activation, GoesOnWhereTheFileCannotBeWritten)
{
    ActivationRig rig;
    rig.memory.fileSystem.setCapacity('C', 0);
    activateMonitors(rig.context, kApp, true, rig.place);
    EXPECT_EQ(rig.started().size(), 3U);
    EXPECT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_FALSE(rig.machine.registry.keyExists(RegistryRoot::ClassesRoot, "vdbfile"));
}

} // namespace
} // namespace vardelin::background
