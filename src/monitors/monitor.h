#pragma once

#include "platform/instance_lock.h"
#include "platform/machine.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// What the programs in the background have in common. Each runs once in an application folder, the
// folder of its executable, takes no arguments, stays in the foreground (who starts it detaches
// it), and tells by an entry in the registry that it runs:
//
//   HKEY_LOCAL_MACHINE\SOFTWARE\Vardelin\Monitors\<name>     ProcessId  dword
//
// The entry goes when the program ends by a signal. One that is killed leaves it, so a reader
// believes it only while such a process lives; the next start writes it anew.
//
// `Log\<name>.log` gets a line at each start and end:
//
//   2026-03-10 09:05:03 started, process 4711
namespace vardelin::monitors {

// What a monitor runs on. Holds references only.
struct MonitorContext {
    platform::FileSystem& fileSystem;
    platform::Registry& registry;
    platform::Clock& clock;
    platform::InstanceLock& lock;
    std::string appPath; // the application folder in drive form, no backslash at its end
    std::int64_t processId = 0;
};

// Exit codes.
inline constexpr int kEnded = 0;         // asked to end, or another instance runs
inline constexpr int kNotRegistered = 1; // registry or lock cannot be used; the log says why

// Waits until the program is asked to end and gives the name of what asked.
using StopWait = std::function<std::string()>;

// Runs the monitor of this name from its start to its end. With another instance running it ends at
// once, without a word. Raises nothing; a log that cannot be written stops nothing.
int runMonitor(const MonitorContext& context, std::string_view name, const StopWait& waitForStop);

// The process that the entry names; none where there is no entry. The process may have died since.
std::optional<std::int64_t> registeredProcess(platform::Registry& registry, std::string_view name);

std::string monitorKey(std::string_view name); // below HKEY_LOCAL_MACHINE
std::string monitorLog(std::string_view appPath, std::string_view name);

} // namespace vardelin::monitors
