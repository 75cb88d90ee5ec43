#pragma once

#include "platform/file_system.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <vector>

// What files and folders share: their details, times and extended attributes as the kernel has
// them.
namespace vardelin::platform {

FileKind kindOfMode(std::uint32_t mode);
FileInfo infoOf(const struct statx& details);
// The details of `name` in the folder, links not followed; of the descriptor itself where `name` is
// empty. False, with errno set, where the system refuses.
bool readInfo(int fd, const char* name, FileInfo& info);

// Nanoseconds since 1970 as the pair that the kernel takes, also before 1970.
timespec timeOf(std::int64_t ns);

// Attributes of an open file or folder, or of a path without following a link at its end. What the
// file system does not keep at all, or vanishes or is refused between list and read, is left out.
// Sorted by name.
std::vector<ExtendedAttribute> readAttributes(int fd, const std::string& subject);
std::vector<ExtendedAttribute> readAttributes(const std::string& nativePath,
                                              const std::string& subject);

} // namespace vardelin::platform
