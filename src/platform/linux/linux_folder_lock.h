#pragma once

#include "platform/file_system.h"
#include "platform/linux/unique_fd.h"

namespace vardelin::platform {

// Locks an open folder for one holder among all processes; raises 70 while it is held elsewhere.
// Network file systems that lock no folders get the lock on a file in it instead, which stays
// there.
std::unique_ptr<FolderLock> lockOpenFolder(UniqueFd folder, const std::string& path);
// That second way by itself. All programs choose the same way on the same file system.
std::unique_ptr<FolderLock> lockByFile(const UniqueFd& folder, const std::string& path);

} // namespace vardelin::platform
