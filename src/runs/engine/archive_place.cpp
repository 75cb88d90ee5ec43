#include "runs/engine/archive_place.h"

#include "archive/entry_names.h"
#include "base/runtime_error.h"

#include <vector>

namespace vardelin::engine {

using base::RuntimeError;

ArchivePlace openPlace(const platform::Machine& machine, std::string_view profilePath)
{
    constexpr std::size_t kExtension = 4; // the dot and three letters, whatever they are
    ArchivePlace place;
    place.profilePath = profilePath;
    place.profile = readProfile(machine.fileSystem, profilePath);
    const std::string_view leaf = platform::leafOf(profilePath);
    place.stem = leaf.substr(0, leaf.size() > kExtension ? leaf.size() - kExtension : 0);
    place.destination = place.profile.destination;
    if (place.destination.size() == 2 && place.destination[1] == ':')
        place.destination += '\\';
    while (place.destination.size() > 3 && place.destination.back() == '\\')
        place.destination.pop_back();
    if (place.stem.empty() || place.destination.empty())
        throw RuntimeError(base::error_number::kInvalidCall, place.profilePath,
                           "the profile names no destination");
    place.root = platform::joinPath(platform::joinPath(place.destination, place.stem), "");
    return place;
}

void checkWritable(const ArchivePlace& place)
{
    // Otherwise copies that are thought to be under a password would lie open.
    if (place.profile.encrypt && !place.profile.saysPassword)
        throw RuntimeError(base::error_number::kInvalidCall, place.profilePath,
                           "the profile asks for encryption and is damaged: it does not say under "
                           "which password, so nothing is written");
    if (!place.profile.saysEncrypt)
        throw RuntimeError(base::error_number::kInvalidCall, place.profilePath,
                           "the profile is cut short or damaged: it does not say whether to "
                           "encrypt, so nothing is written");
}

void clearTemporaries(platform::FileSystem& files, const std::string& folder)
{
    std::vector<std::string> waiting{folder};
    while (!waiting.empty()) {
        const std::string path = std::move(waiting.back());
        waiting.pop_back();
        const auto open = files.openFolder(path);
        for (const platform::FolderEntry& entry : open->list()) {
            if (entry.kind == platform::FileKind::Folder)
                waiting.push_back(platform::joinPath(path, entry.name));
            else if (archive::isTemporaryName(entry.name))
                open->removeFile(entry.name);
        }
    }
}

} // namespace vardelin::engine
