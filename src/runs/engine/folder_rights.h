#pragma once

#include "platform/file_system.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/key_slot.h"
#include "runs/engine/outcome.h"
#include "runs/engine/target_folders.h"

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {

// Gives the folders that a restore made their rights, owner and times back: from the folder's own
// record in the archive at `root`, and the rights of the nearest folder above where it has none.
// An encrypted record of another password gives what its name holds, without the attributes.
// Goes from the deepest up, so that a read-only folder is closed only when all in it is done. Gives
// the folders whose own record is damaged: their rights still come from the record's name.
std::vector<Gap> applyFolderRights(platform::FileSystem& files, const std::string& root,
                                   const KeyRing& ring, TargetFolders& targets);

// Reads a folder's own record in its archive folder and gives its attributes. Raises 57 with the
// cause where it is damaged or says something else than its name and place.
std::vector<platform::ExtendedAttribute> readFolderRecord(platform::Folder& archive,
                                                          std::string_view fileName,
                                                          const std::string& sourceFolder,
                                                          CopyReader& reader);

} // namespace vardelin::engine
