#pragma once

#include "platform/file_system.h"

#include <string>
#include <string_view>

namespace vardelin::logs {

// Makes `<application folder>\<logFolder>` with its parents where it is missing, and gives its path
// without a backslash at the end. What is new has its name on the disk before this comes back: a
// log whose lines are flushed must not be lost with its folder. Raises the port's errors.
std::string makeLogFolder(platform::FileSystem& fileSystem, std::string_view appPath,
                          std::string_view logFolder);

} // namespace vardelin::logs
