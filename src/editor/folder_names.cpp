#include "editor/folder_names.h"

#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <utility>

namespace vardelin::editor {
namespace {

using GoOn = std::function<bool()>;

constexpr std::size_t kSortedAtOnce = 4096; // names, which takes a few milliseconds

// Tells which folders of one folder only show the running system.
class Hidden {
public:
    Hidden(platform::FileSystem& fileSystem, platform::Folder& folder, std::string_view path)
        : m_fileSystem(fileSystem), m_folder(folder), m_path(path),
          m_device(platform::isDriveRoot(path) ? 0 : folder.info().device)
    {
    }

    // A folder that cannot be looked at is shown: what is wrong with it is told when it is opened.
    bool operator()(const std::string& name)
    {
        bool hidden = false;
        base::PendingError unreadable;
        unreadable.attempt([&] {
            // Below a drive's root such folders begin at another file system only. To look at the
            // device is several times cheaper than to ask for every folder's own file system.
            if (m_device != 0) {
                const auto info = m_folder.find(name);
                if (!info || info->device == m_device)
                    return;
            }
            hidden = m_fileSystem.isPseudo(platform::joinPath(m_path, name));
        });
        return hidden;
    }

private:
    platform::FileSystem& m_fileSystem;
    platform::Folder& m_folder;
    const std::string m_path;
    const std::uint64_t m_device; // 0: ask for each
};

// In pieces that are merged, so that the caller gets its turns.
bool sortNames(std::vector<std::string>& names, const GoOn& goOn)
{
    std::vector<std::pair<std::string, std::string>> keyed; // folded once, compared often
    keyed.reserve(names.size());
    for (std::string& name : names) {
        std::string folded = base::upperAscii(name);
        keyed.emplace_back(std::move(folded), std::move(name));
    }
    const auto at = [&](std::size_t place) {
        return keyed.begin() + static_cast<std::ptrdiff_t>(std::min(place, keyed.size()));
    };
    for (std::size_t from = 0; from < keyed.size(); from += kSortedAtOnce) {
        std::sort(at(from), at(from + kSortedAtOnce));
        if (!goOn())
            return false;
    }
    for (std::size_t width = kSortedAtOnce; width < keyed.size(); width *= 2) {
        for (std::size_t from = 0; from + width < keyed.size(); from += 2 * width) {
            std::inplace_merge(at(from), at(from + width), at(from + 2 * width));
            if (!goOn())
                return false;
        }
    }
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = std::move(keyed[i].second);
    return true;
}

} // namespace

std::optional<FolderNames> readFolderNames(platform::FileSystem& fileSystem, std::string_view path,
                                           const GoOn& goOn)
{
    FolderNames names;
    const auto folder = fileSystem.openFolder(path);
    bool whole = true;
    std::vector<std::string> folders; // looked at once the listing is over
    folder->visit([&](platform::FolderEntry entry) {
        (entry.kind == platform::FileKind::Folder ? folders : names.files)
            .push_back(std::move(entry.name));
        return whole = goOn();
    });
    if (!whole)
        return std::nullopt;
    Hidden hidden(fileSystem, *folder, path);
    for (std::string& name : folders) {
        if (!goOn())
            return std::nullopt;
        if (!hidden(name))
            names.folders.push_back(std::move(name));
    }
    if (!sortNames(names.folders, goOn) || !sortNames(names.files, goOn))
        return std::nullopt;
    return names;
}

FolderNames readFolderNames(platform::FileSystem& fileSystem, std::string_view path)
{
    return *readFolderNames(fileSystem, path, [] { return true; });
}

} // namespace vardelin::editor
