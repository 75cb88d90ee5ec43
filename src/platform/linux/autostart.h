#pragma once

#include "platform/file_system.h"
#include "platform/registry.h"

#include <string>

namespace vardelin::platform {

// Makes the desktop start what the registry's Run keys name (the machine's and the user's): one
// `<configFolder>/autostart/vardelin-<value name>.desktop` for each string value, of which the
// user's wins over the machine's of the same name. Files of that form that no value stands for any
// more are deleted; other files in the folder are left alone.
//
// A value is a program's path in drive form, quoted or not, with words behind it where it is
// quoted; an ending `.exe` is left out. One that no drive reaches is passed over, as is a value
// without a name. `configFolder` is in the machine's own form; folders are made where an entry is
// written. Raises 70 or 57, with the file as subject, where an entry cannot be written or deleted.
void mirrorRunKey(Registry& registry, const FileSystem& fileSystem,
                  const std::string& configFolder);

} // namespace vardelin::platform
