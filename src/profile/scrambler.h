#pragma once

#include "profile/profile_context.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Profile files on the disk, to and from the form of scramble_text.h. All on the thread of the user
// interface; an error ends in the error dialog, and the caller goes on.
namespace vardelin::profile {

struct ScrambleResult {
    bool done = false;
    // Lines, from 1, of the plain file that will not come back as they were; the trace names them,
    // too. A person should know them by number only: one may be the password.
    std::vector<std::size_t> lossyLines;
};

// Scrambles `folder\name` in place by way of the temporary file `folder\U<name>`; `folder` has no
// backslash at its end. The temporary file's data is on the disk before the profile is deleted, so
// a crash leaves the plain profile, the scrambled one, or, between the deletion and the copy, the
// scrambled data under the temporary name alone.
//
// A profile that has the temporary file's name is moved aside meanwhile, to `~U<name>.kept`. Where
// a crash kept it there, finishInterruptedScramble() brings it back.
ScrambleResult PrFileEncrypt(ProfileContext& context, std::string_view folder,
                             std::string_view name);

// Writes the plain form of `folder + name` to `folder + U<name less its last four characters>.txt`,
// replacing one that is there; `folder` ends in a backslash. Nobody but the owner may read the
// plain form, which can hold a password. The profile stays as it is. A profile that cannot be found
// sets bDecryptFileMissing of the frame, which nobody clears here. False after a failure, which was
// shown.
bool PrFileDecrypt(ProfileContext& context, std::string_view folder, std::string_view name);

// The line's bytes in the opposite order.
std::string LineReverse(ProfileContext& context, std::string_view line);

// Where scrambling `name` was cut off while another profile was moved aside for it: completes the
// profile from the temporary file if it has none, and gives the other profile its name back. Both
// procedures above do it first. Raises what the file system raises.
void finishInterruptedScramble(platform::FileSystem& fileSystem, std::string_view folder,
                               std::string_view name);

} // namespace vardelin::profile
