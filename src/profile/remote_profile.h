#pragma once

#include "profile/profile_context.h"

#include <string>
#include <string_view>

// A profile from backup media works in a copy in Profiles. A local profile of its name makes way
// and lies at stashPath() meanwhile; whatever fails or whenever the program dies, its whole text is
// at one of the two places.
namespace vardelin::profile {

// Copies the file at `path` to Profiles, sets BL_Remote_Profile and, where a local profile made
// way, BL_Local_Stashed. What lies at stashPath() without BL_Local_Stashed was left by a program
// that died: it is kept under another name, and the person is told.
//
// Raises what the file system raises. The local profile is in its place then and both flags are
// false; where it could not be put back, the person was told where it lies.
void fetchRemoteProfile(ProfileContext& context, const std::string& path, std::string_view name);

// Undoes that: the working copy goes, the local profile comes back.
void dropRemoteProfile(ProfileContext& context, std::string_view name);

} // namespace vardelin::profile
