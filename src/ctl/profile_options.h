#pragma once

#include "ctl/options.h"
#include "profile/profile_context.h"
#include "runs/engine/profile_reader.h"

#include <optional>
#include <string>
#include <vector>

namespace vardelin::ctl {

// What stands behind the options that name files and folders.
struct ResolvedOptions {
    std::vector<std::string> sources; // in drive form, folders with a backslash at their end
    std::string destination;          // in drive form, without one unless it is a drive's root
    std::string password;
    std::string hintAnswer;
};

// Fills the editor's record, the save lists and the scalars with a saved profile, as editing does:
// the schedule lists are whole, and the saved rows are selected in them.
void fillEditor(profile::ProfileContext& context, const engine::EngineProfile& saved);

// Puts the options that were given over what the editor holds. Raises UsageError for a value that
// makes no sense; then the record is to be dropped.
void applyOptions(profile::ProfileContext& context, const ProfileOptions& options,
                  const ResolvedOptions& resolved);

// Raises UsageError unless the profile has a destination and at least one of sources, settings
// groups and included extensions: names alone select nothing.
void requireSaveable(profile::ProfileContext& context);

} // namespace vardelin::ctl
