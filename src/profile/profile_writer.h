#pragma once

#include "profile/profile_context.h"

#include <string_view>

namespace vardelin::profile {

// Writes the profile in the editor as plain text to `folder`\`name`, replacing what is there;
// `name` has its extension, `folder` no backslash at the end. Reads the editor's record and the
// save lists and sets sDestinationPath, iRetentionOption, bCompressFiles, sProfilePassword,
// bProfileHasPassword and clxnSchedule. With chkAutoSched at 0 the profile's schedule record is
// dropped. A start time that has passed today becomes the present time, in the editor, too.
// Advances `pb` to below 99.
//
// A file that cannot be written is reported in the error dialog, and the old one stays. The result
// tells whether the new one is there: whoever goes on to scramble must look at it, because an old
// file is scrambled already.
bool CreatingVdpFile(ProfileContext& context, std::string_view name, std::string_view folder);

} // namespace vardelin::profile
