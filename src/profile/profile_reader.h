#pragma once

#include "profile/profile_context.h"

#include <string_view>

namespace vardelin::profile {

// Reads the plain copy `folder` + `name` of a profile into the editor's record, the opened lists
// and the scalars, and deletes it. `name` is `U<profile's name>.txt`; `folder` ends in a backslash.
// ST_Current_Profile must be the profile's file name by then: chkPrimary follows from it.
//
// What the file does not mention stays as it was, apart from the password, the extension lists, the
// schedule check and lists; the opened lists are added to. The option frames end up disabled: the
// profile is for viewing until the editor is told otherwise. No handler of a control runs. Yields
// to the message loop while it reads lists, and takes `pb` to its maximum and back to 0.
//
// A file of any shape is read to its end: an unknown line counts as the retention line and takes
// the next two with it, and a section that never closes ends with the file. Three failures are
// reported in the error dialog, with everything left as far as it came and the plain copy still on
// the disk: the file cannot be opened, it ends inside the source files, or a source cannot be
// added. False after a failure: the editor may hold less than the file does.
bool ActivateOpenProfile(ProfileContext& context, std::string_view name, std::string_view folder);

// Takes the retention from the text behind the `=` of its line: the first character chooses the
// option (1 to 8, others change nothing), and for 6 and 8 the text behind the first `?` is the
// count. Empties txtLatestVer first and disables Frame2.
void Versioncheck(ProfileContext& context, std::string_view value);

} // namespace vardelin::profile
