#pragma once

#include "platform/file_system.h"
#include "runs/engine/target_folders.h"

#include "runs/engine/key_slot.h"

#include <string>

namespace vardelin::engine {

// Gives the folders that a restore made their rights, owner and times back: from the folder's own
// record in the archive at `root`, and the rights of the nearest folder above where it has none.
// An encrypted record of another password gives what its name holds, without the attributes.
// Goes from the deepest up, so that a read-only folder is closed only when all in it is done.
void applyFolderRights(platform::FileSystem& files, const std::string& root, const KeyRing& ring,
                       const TargetFolders& targets);

} // namespace vardelin::engine
