#pragma once

#include "platform/linux/linux_folder.h"

#include <string>

// Native paths of any length: the kernel takes up to 4,095 bytes at once, so that longer ones are
// walked in pieces.
namespace vardelin::platform {

// Opens with `flags` added to O_CLOEXEC; empty, with errno set, on failure.
UniqueFd openNative(const std::string& native, int flags);
// Links followed; with the folder's right to be read or passed.
OpenedFolder openNativeFolder(const std::string& native);
// With links, `.` and `..` resolved. False, with errno set, where something on the way is missing.
bool resolveNative(const std::string& native, std::string& resolved);
// The same, always walked name by name; what resolveNative() falls back to for a long path.
bool resolveNativeByWalking(const std::string& native, std::string& resolved);

} // namespace vardelin::platform
