#pragma once

#include "platform/machine.h"
#include "runs/engine/key_slot.h"
#include "runs/engine/outcome.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace vardelin::engine {

// How a run reaches its caller; everything is called on the thread that runs it.
struct RunLink {
    std::function<void(std::string_view item)> onFile;
    std::function<void(double increment)> onProgress;
    std::function<void(std::int16_t units)> onTotal;
    std::function<bool()> cancelled; // tested right after onFile
};

// Runs one backup from the saved profile to the log record, and fills `report` as it goes, so that
// it tells what was done even when the run raises. `profileFolder` ends in a backslash. `keyCost`
// is that of a new password's key.
void runBackup(const platform::Machine& machine, const std::string& appPath,
               std::string_view profileFolder, std::string_view profileFileName,
               const RunLink& link, const KeyCost& keyCost, BackupReport& report);

} // namespace vardelin::engine
