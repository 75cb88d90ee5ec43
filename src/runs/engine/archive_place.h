#pragma once

#include "platform/machine.h"
#include "runs/engine/key_slot.h"
#include "runs/engine/profile_reader.h"

#include <string>
#include <string_view>

namespace vardelin::engine {

// A saved profile and where its archive lies.
struct ArchivePlace {
    EngineProfile profile;
    std::string profilePath;
    std::string stem;        // the file's name without its extension
    std::string destination; // without a backslash at its end unless it is a drive's root
    std::string root;        // `<destination>\<stem>\`
    // What opens encrypted copies; null without, and then names alone tell of them.
    const KeyRing* ring = nullptr;
};

// Reads the profile. Raises 53 where it is missing, 5 where it is no profile or names no
// destination.
ArchivePlace openPlace(const platform::Machine& machine, std::string_view profilePath);
// Raises 5 where a backup must not be written: the profile is too damaged to tell whether to
// encrypt, or under which password.
void checkWritable(const ArchivePlace& place);

// The file that a run keeps in the archive root while it writes. Where it is found at the start of
// a run, the one before it died, and what it left is cleared away.
inline constexpr std::string_view kRunMarker = "~run";

// Takes the temporary files of a run that died out of the whole archive.
void clearTemporaries(platform::FileSystem& files, const std::string& folder);

} // namespace vardelin::engine
