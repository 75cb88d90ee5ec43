#pragma once

#include "platform/file_system.h"
#include "runs/engine/target_folders.h"

#include <string>

namespace vardelin::engine {

// Gives the folders that a restore made their rights, owner and times back: from the folder's own
// record in the archive at `root`, and the rights of the nearest folder above where it has none.
// Goes from the deepest up, so that a read-only folder is closed only when all in it is done.
void applyFolderRights(platform::FileSystem& files, const std::string& root,
                       const TargetFolders& targets);

} // namespace vardelin::engine
