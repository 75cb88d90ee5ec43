#include "base/runtime_error.h"
#include "monitors/monitor.h"
#include "platform/memory/memory_instance_lock.h"
#include "platform/memory/memory_machine.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace vardelin::monitors {
namespace {

constexpr auto kMachine = platform::RegistryRoot::LocalMachine;
constexpr std::string_view kKey = "SOFTWARE\\Vardelin\\Monitors\\VDFileMon";
constexpr std::string_view kLog = "C:\\App\\Log\\VDFileMon.log";

struct MonitorRig {
    platform::MemoryMachine memory;
    platform::FileSystem& disk = memory.fileSystem;
    platform::MemoryInstanceLock lock;
    MonitorContext context{memory.fileSystem, memory.registry, memory.clock, lock, "C:\\App", 4711};
    int waits = 0;
    std::optional<std::int64_t> registeredWhileWaiting;

    MonitorRig()
    {
        disk.createFolders("C:\\App\\Log");
        memory.clock.setLocal({{2026, 3, 10}, {9, 5, 3}});
    }
    int run()
    {
        return runMonitor(context, "VDFileMon", [this] {
            ++waits;
            registeredWhileWaiting = registeredProcess(memory.registry, "VDFileMon");
            memory.clock.setLocal({{2026, 3, 10}, {17, 0, 0}});
            return std::string("SIGTERM");
        });
    }
    std::string log() { return disk.fileExists(kLog) ? disk.readAll(kLog) : "absent"; }
};

TEST(Monitor, IsRegisteredWhileItRunsAndNotBehindIt)
{
    MonitorRig rig;
    EXPECT_EQ(registeredProcess(rig.memory.registry, "VDFileMon"), std::nullopt);
    EXPECT_EQ(rig.run(), kEnded);
    EXPECT_EQ(rig.registeredWhileWaiting, 4711);
    EXPECT_FALSE(rig.memory.registry.keyExists(kMachine, kKey));
    EXPECT_EQ(rig.log(), "2026-03-10 09:05:03 started, process 4711\r\n"
                         "2026-03-10 17:00:00 ended by SIGTERM\r\n");
}

TEST(Monitor, EndsAtOnceBesideAnotherInstanceAndTouchesNothing)
{
    MonitorRig rig;
    rig.lock.heldElsewhere = true;
    EXPECT_EQ(rig.run(), kEnded);
    EXPECT_EQ(rig.waits, 0);
    EXPECT_FALSE(rig.memory.registry.keyExists(kMachine, kKey));
    EXPECT_EQ(rig.log(), "absent");
}

TEST(Monitor, ReplacesTheEntryOfOneThatWasKilled)
{
    MonitorRig rig;
    rig.memory.registry.setValue(kMachine, kKey,
                                 {"ProcessId", platform::RegistryType::DWord, "\x01\x02\x03\x04"});
    EXPECT_EQ(registeredProcess(rig.memory.registry, "VDFileMon"), 0x04030201);
    rig.run();
    EXPECT_EQ(rig.registeredWhileWaiting, 4711);
}

TEST(Monitor, EndsWithTheReasonWhereItCannotBeRegistered)
{
    MonitorRig rig;
    rig.memory.registry.script().failCallsNamed("registry.setValue",
                                                base::error_number::kPermissionDenied);
    EXPECT_EQ(rig.run(), kNotRegistered);
    EXPECT_EQ(rig.waits, 0);
    EXPECT_TRUE(rig.log().starts_with("2026-03-10 09:05:03 cannot run: Permission denied"))
        << rig.log();
}

TEST(Monitor, EndsWithTheReasonWhereThereCanBeNoLock)
{
    MonitorRig rig;
    rig.lock.script().failCallsNamed("lock.acquire", base::error_number::kPathNotFound);
    EXPECT_EQ(rig.run(), kNotRegistered);
    EXPECT_FALSE(rig.memory.registry.keyExists(kMachine, kKey));
    EXPECT_TRUE(rig.log().starts_with("2026-03-10 09:05:03 cannot run: Path not found"))
        << rig.log();
}

TEST(Monitor, SaysWhereItsEntryStays)
{
    MonitorRig rig;
    rig.memory.registry.script().failCallsNamed("registry.deleteKey",
                                                base::error_number::kPermissionDenied);
    EXPECT_EQ(rig.run(), kEnded);
    EXPECT_NE(
        rig.log().find("ended by SIGTERM; its entry in the registry stays: Permission denied"),
        std::string::npos)
        << rig.log();
}

TEST(Monitor, RunsWithoutALog)
{
    MonitorRig rig;
    rig.disk.removeFolder("C:\\App\\Log");
    EXPECT_EQ(rig.run(), kEnded);
    EXPECT_EQ(rig.registeredWhileWaiting, 4711);
    EXPECT_FALSE(rig.memory.registry.keyExists(kMachine, kKey));
}

TEST(Monitor, TakesAnEntryOfAnotherShapeForNone)
{
    MonitorRig rig;
    rig.memory.registry.setString(kMachine, kKey, "ProcessId", "4711");
    EXPECT_EQ(registeredProcess(rig.memory.registry, "VDFileMon"), std::nullopt);
}

} // namespace
} // namespace vardelin::monitors
