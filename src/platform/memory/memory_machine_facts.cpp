#include "platform/memory/memory_machine_facts.h"

namespace vardelin::platform {

std::string MemoryMachineFacts::userName()
{
    script().enter("facts.userName", {});
    return user;
}

std::string MemoryMachineFacts::computerName()
{
    script().enter("facts.computerName", {});
    return computer;
}

bool MemoryMachineFacts::isNtPlatform()
{
    script().enter("facts.isNtPlatform", {});
    return nt;
}

std::string MemoryMachineFacts::executableName()
{
    script().enter("facts.executableName", {});
    return executable;
}

std::string MemoryMachineFacts::windowsFolder()
{
    script().enter("facts.windowsFolder", {});
    return windows;
}

std::string MemoryMachineFacts::longPathName(std::string_view path)
{
    script().enter("facts.longPathName", path);
    const auto hit = longNames.find(std::string(path));
    return hit == longNames.end() ? std::string() : hit->second;
}

std::optional<HostAddress> MemoryMachineFacts::hostAddress(std::string_view name)
{
    script().enter("facts.hostAddress", name);
    const auto hit = hosts.find(std::string(name));
    return hit == hosts.end() ? std::nullopt : std::optional(hit->second);
}

} // namespace vardelin::platform
