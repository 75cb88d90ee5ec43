#include "editor/folder_names.h"

#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <utility>

namespace vardelin::editor {
namespace {

// A folder that cannot be looked at is shown: what is wrong with it is told when it is opened.
bool isHidden(platform::FileSystem& fileSystem, const std::string& path)
{
    bool hidden = false;
    base::PendingError unreadable;
    unreadable.attempt([&] { hidden = fileSystem.isPseudo(path); });
    return hidden;
}

void sortNames(std::vector<std::string>& names)
{
    std::vector<std::pair<std::string, std::string>> keyed; // folded once, compared often
    keyed.reserve(names.size());
    for (std::string& name : names) {
        std::string folded = base::upperAscii(name);
        keyed.emplace_back(std::move(folded), std::move(name));
    }
    std::sort(keyed.begin(), keyed.end());
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = std::move(keyed[i].second);
}

} // namespace

FolderNames readFolderNames(platform::FileSystem& fileSystem, std::string_view path)
{
    FolderNames names;
    for (platform::FolderEntry& entry : fileSystem.openFolder(path)->list()) {
        if (entry.kind != platform::FileKind::Folder)
            names.files.push_back(std::move(entry.name));
        else if (!isHidden(fileSystem, platform::joinPath(path, entry.name)))
            names.folders.push_back(std::move(entry.name));
    }
    sortNames(names.folders);
    sortNames(names.files);
    return names;
}

} // namespace vardelin::editor
