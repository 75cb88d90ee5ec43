#pragma once

#include "base/keyed_collection.h"
#include "platform/machine.h"
#include "runs/engine/backup_run.h"
#include "runs/engine/outcome.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vardelin::engine {

// What a restore found beyond its counts.
struct RestoreFlags {
    bool backupFilesLost = false;
    bool passwordMismatch = false;
    bool dateNotMatched = false;
};

struct RestoreRequest {
    std::string profileFolder; // ends in a backslash
    std::string profileFileName;
    std::string location; // empty: everything goes back to its place
    std::string date;     // "NULL" or D/M/YYYY
    // The password to use; none: the profile's own. An empty one is none.
    std::optional<std::string> password;
};

// Runs one restore up to its log record; fills report and flags as it goes. Targets that cannot be
// written are raised (70 or 75, the first one's path) when all others are done; 5 for a date that
// is none.
void runRestore(const platform::Machine& machine, const std::string& appPath,
                const RestoreRequest& request, const base::TextCollection& entries,
                const RunLink& link, RestoreReport& report, RestoreFlags& flags);

// Reads every `100 / samplePercent`th copy and compares all checksums. `password` as above.
VerifyReport runVerify(const platform::Machine& machine, std::string_view profilePath,
                       int samplePercent, const std::optional<std::string>& password,
                       const std::function<bool(std::string_view entry)>& progress);

} // namespace vardelin::engine
