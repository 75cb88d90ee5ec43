#pragma once

#include "platform/file_system.h"

#include <string>
#include <string_view>

namespace vardelin::ctl {

// Whether a path was typed with a drive letter: `C:`, `C:\a`, `C:/a`.
bool hasDriveLetter(std::string_view typed);
bool endsInSeparator(std::string_view typed);

// A path as a person typed it, in drive form: absolute, without `.` and `..` and without a
// backslash at its end unless it is a drive's root. A path without a drive letter is one in the
// machine's own form, and a relative one begins at `workingFolder`, which is in that form, too.
// Raises 5 for an empty path and what the port raises for one that no drive reaches.
std::string drivePath(const platform::FileSystem& fileSystem, std::string_view workingFolder,
                      std::string_view typed);

// For messages: in the machine's own form where there is one.
std::string shownPath(const platform::FileSystem& fileSystem, std::string_view path);

} // namespace vardelin::ctl
