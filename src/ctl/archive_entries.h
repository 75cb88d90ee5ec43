#pragma once

#include "ctl/session.h"
#include "runs/engine/outcome.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a person may name of an archive, and what the engine takes.
namespace vardelin::ctl {

inline constexpr std::string_view kSettingsHeading = "Other Data & Settings";

// The settings group of this name, in any case and with or without its heading, in its own
// spelling; none where it is no group.
std::optional<std::string> settingsGroup(std::string_view text);

// The groups that the archive holds.
std::vector<std::string> savedGroups(const Session& session, std::string_view root);

// An entry as the engine takes it: a catalog entry, a folder's key with a backslash at its end, or
// a settings group. `typed` is any of
//   a settings group, with or without its heading,
//   a catalog line or an entry (`C:\dir\name.ext_007`), where the archive has it,
//   the path of a source file, in either form: its newest copy,
//   a folder of the archive, in either form.
// What the archive does not hold comes back as a path, so that the engine tells it as lost.
// `root` is the archive root with its backslash.
std::string resolveEntry(const Session& session, std::string_view root, std::string_view typed);

// The keys of all drives in the archive.
std::vector<std::string> everything(const Session& session, std::string_view root);

// Which of all copies a restore of `entries` would take: of each source the newest one not after
// `limitNs`, or with no limit the very copy that an entry names.
std::vector<engine::CopyRecord> chosenCopies(const Session& session, std::string_view profilePath,
                                             const std::vector<std::string>& entries,
                                             std::optional<std::int64_t> limitNs);

} // namespace vardelin::ctl
