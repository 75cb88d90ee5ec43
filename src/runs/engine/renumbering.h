#pragma once

#include "platform/file_system.h"
#include "runs/engine/retention.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vardelin::engine {

// A version tag has three digits, so numbers end at 999. When a file has reached it, its versions
// are numbered anew from 1 in the order of their numbers. The number that a copy was saved under,
// its serial number, stands in its header and from then on in its name.

// So many versions stay at the most when a file is numbered anew.
inline constexpr std::size_t kMostRenumbered = 990;

struct Renumbered {
    int highest = 0;          // version of the newest copy now
    std::uint32_t serial = 0; // of the newest copy
    std::string newestName;   // its file name
    std::uint64_t removed = 0;
    std::uint64_t removedBytes = 0;
};

// Numbers the versions of one source of an open archive folder anew, after removing what `rule`
// does not keep and the oldest beyond kMostRenumbered. Goes from the lowest number up, one rename
// each, so that no name is ever taken twice and a crash leaves an archive in the right order. The
// names are on the disk when this comes back. None where a copy's name has no room for its serial
// number; nothing was touched then. Raises what the port raises.
std::optional<Renumbered> renumberVersions(platform::Folder& archive, std::string_view sourceName,
                                           RetentionRule rule, std::int64_t nowNs,
                                           const LocalDate& localDate);

} // namespace vardelin::engine
