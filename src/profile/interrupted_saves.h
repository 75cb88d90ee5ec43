#pragma once

#include "platform/file_system.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a save that a crash cut off has left in a folder of profiles, and how it is brought to an
// end. A save goes through these states, and each of them can be told from the files alone:
//
//     ~<name>.old   kept first: the old profile, scrambled, or empty where there was none
//     ~<name>.tmp   the plain text before it has its name
//     <name>        the plain text, whole, since it comes to its name in one step
//     U<name>       the scrambled text; then <name> is deleted, made anew from it, U<name> deleted
//     ~<name>.old   deleted last, so that it marks a save that is not over
//
// A save holds the folder's lock, and finishing takes it: nobody finishes what is still under way.
namespace vardelin::profile {

// The name in the first line of a whole plain profile: `[<name>]` first, a closed source section,
// `[End of <name>]` with its line end last, and no zero byte. A profile is written from its first
// byte to its last, so the last line proves the rest. None for a text that was cut, and for a
// scrambled one: its first line ends in the moved bracket and never begins with the plain one.
// The view is one of `text`.
std::optional<std::string_view> wholePlainProfile(std::string_view text);

// `~<name>.old`.
std::string oldProfileName(std::string_view name);

// A profile that was found in plain text and is scrambled now.
struct FinishedSave {
    std::string name;
    std::vector<std::size_t> lossyLines; // as in ScrambleResult
};

// Finishes every save that was cut off in `folder`: a whole plain profile is scrambled, one that
// was cut makes way for the old one, one that has its temporary name alone gets its own, and what
// else the save left is deleted. A file that is none of these stays as it is. Each step leaves a
// state from which the next call goes on.
//
// Raises nothing: where a save is under way, or the disk fails, the next call finishes the rest.
std::vector<FinishedSave> finishInterruptedSaves(platform::FileSystem& fileSystem,
                                                 std::string_view folder);

// The same for one profile, by a caller that holds the folder's lock. Raises what the file system
// raises.
std::optional<FinishedSave> finishInterruptedSave(platform::FileSystem& fileSystem,
                                                  std::string_view folder, std::string_view name);

// One sentence to the person, where scrambling could not keep all lines; by number only, for one of
// them may be the password. Empty where it kept them.
std::string lossyLinesText(const FinishedSave& save);

} // namespace vardelin::profile
