#pragma once

#include "platform/machine.h"
#include "platform/memory/scripted_double.h"

#include <map>

namespace vardelin::platform {

// Facts that the test sets. For one thread.
class MemoryMachineFacts final : public MachineFacts, public ScriptedDouble {
public:
    std::string user = "anna";
    std::string computer = "STUDY";
    bool nt = true;
    std::string executable = "Vardelin";
    std::string windows = "C:\\WINDOWS";
    std::map<std::string, std::string> longNames; // long form by path; others are missing
    std::map<std::string, HostAddress> hosts;     // by exact name; others are not known

    std::string userName() override;
    std::string computerName() override;
    bool isNtPlatform() override;
    std::string executableName() override;
    std::string windowsFolder() override;
    std::string longPathName(std::string_view path) override;
    std::optional<HostAddress> hostAddress(std::string_view name) override;
};

} // namespace vardelin::platform
