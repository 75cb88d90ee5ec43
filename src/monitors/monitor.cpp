#include "monitors/monitor.h"

#include "base/dates.h"
#include "base/runtime_error.h"

#include <fmt/format.h>

namespace vardelin::monitors {
namespace {

using platform::RegistryRoot;
using platform::RegistryType;

constexpr std::string_view kMonitorsKey = "SOFTWARE\\Vardelin\\Monitors";
constexpr std::string_view kProcessId = "ProcessId";
constexpr std::size_t kProcessIdBytes = 4;

void log(const MonitorContext& context, std::string_view name, std::string_view text)
{
    base::PendingError unwritten; // a full disk must not end what watches over the files
    unwritten.attempt([&] {
        const auto file =
            context.fileSystem.open(monitorLog(context.appPath, name), platform::OpenMode::Append);
        const std::string line =
            fmt::format("{} {}\r\n", base::isoDateTime(context.clock.now()), text);
        file->write(platform::asBytes(line));
        file->close();
    });
}

// The registry keeps numbers of 32 bits; no system that this runs on has longer process ids.
void enter(const MonitorContext& context, std::string_view name)
{
    std::string bytes;
    for (std::size_t i = 0; i < kProcessIdBytes; ++i)
        bytes += static_cast<char>((context.processId >> (8 * i)) & 0xFF);
    context.registry.setValue(RegistryRoot::LocalMachine, monitorKey(name),
                              {std::string(kProcessId), RegistryType::DWord, bytes});
}

std::string whatFailed(const base::RuntimeError& error)
{
    return fmt::format("cannot run: {}", error.what());
}

} // namespace

int runMonitor(const MonitorContext& context, std::string_view name, const StopWait& waitForStop)
{
    try {
        if (!context.lock.acquire())
            return kEnded;
        enter(context, name);
    } catch (const base::RuntimeError& error) {
        log(context, name, whatFailed(error));
        return kNotRegistered;
    }
    log(context, name, fmt::format("started, process {}", context.processId));
    const std::string reason = waitForStop();
    base::PendingError unremoved;
    unremoved.attempt(
        [&] { context.registry.deleteKey(RegistryRoot::LocalMachine, monitorKey(name)); });
    log(context, name,
        unremoved ? fmt::format("ended by {}; its entry in the registry stays: {}: {}", reason,
                                unremoved.description, unremoved.subject)
                  : fmt::format("ended by {}", reason));
    return kEnded;
}

std::optional<std::int64_t> registeredProcess(platform::Registry& registry, std::string_view name)
{
    const auto value = registry.value(RegistryRoot::LocalMachine, monitorKey(name), kProcessId);
    if (!value || value->type != RegistryType::DWord || value->data.size() != kProcessIdBytes)
        return std::nullopt;
    std::int64_t id = 0;
    for (std::size_t i = kProcessIdBytes; i-- > 0;)
        id = id << 8 | static_cast<unsigned char>(value->data[i]);
    return id;
}

std::string monitorKey(std::string_view name)
{
    return fmt::format("{}\\{}", kMonitorsKey, name);
}

std::string monitorLog(std::string_view appPath, std::string_view name)
{
    return fmt::format("{}\\Log\\{}.log", appPath, name);
}

} // namespace vardelin::monitors
