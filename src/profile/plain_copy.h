#pragma once

#include "platform/file_system.h"

#include <string_view>

namespace vardelin::profile {

// Makes the plain text at `path`, unscrambled from the profile `name`, one that the reader takes
// under this name. A profile whose file was renamed still bears its old name in its first and its
// last line, and the reader would lose what follows them: both get the new one.
//
// False for a text that is no profile, since it has no whole source section: one that was cut would
// lose the lines behind the cut at its next save. The file is deleted then.
// Raises what the file system raises.
bool adoptPlainCopy(platform::FileSystem& fileSystem, std::string_view path, std::string_view name);

} // namespace vardelin::profile
