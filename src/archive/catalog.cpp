#include "archive/catalog.h"

#include "archive/line_files.h"
#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace vardelin::archive {
namespace {

using base::RuntimeError;
using platform::FileKind;
using platform::FileSystem;
using platform::FolderEntry;
namespace error_number = base::error_number;

constexpr std::string_view kFullMark = "FULL";
constexpr std::string_view kVersionMark = "VER";
constexpr std::string_view kModule = "frmVDStorage";
constexpr std::size_t kTagLength = 3;
constexpr std::size_t kExtensionLength = 4; // the dot and three letters, whatever they are
constexpr std::size_t kNameBlockBytes = std::size_t{1} << 20U;

// The last place of a mark of capital letters, in any case of the text; npos where there is none.
// Called for each file of an archive, so it copies nothing.
std::size_t findLastMark(std::string_view text, std::string_view mark)
{
    // Without bit 5 the two cases of a letter are one, and no other byte becomes a letter.
    const auto sameLetter = [](char m, char c) { return m == static_cast<char>(c & ~0x20); };
    if (text.size() < mark.size())
        return std::string_view::npos;
    for (std::size_t at = text.size() - mark.size() + 1; at-- > 0;) {
        if (sameLetter(mark.front(), text[at]) &&
            std::equal(mark.begin(), mark.end(), text.substr(at).begin(), sameLetter))
            return at;
    }
    return std::string_view::npos;
}

std::string_view nameOf(std::string_view path)
{
    return base::afterLast(path, "\\");
}

// Source name with its underscore, and tag.
struct NamedCopy {
    std::string_view head;
    std::string_view version; // empty for a full copy
    bool full = false;
};

enum class Naming { NoLine, Malformed, Named };

Naming nameCopy(std::string_view name, NamedCopy& copy)
{
    if (const std::size_t at = findLastMark(name, kFullMark); at != std::string_view::npos) {
        copy = {name.substr(0, at), {}, true};
        return Naming::Named;
    }
    const std::size_t at = findLastMark(name, kVersionMark);
    if (at == std::string_view::npos)
        return Naming::NoLine;
    const std::string_view behind = name.substr(at + kVersionMark.size());
    const std::size_t end = behind.find('_');
    if (end == std::string_view::npos)
        return Naming::Malformed;
    copy = {name.substr(0, at), behind.substr(0, end), false};
    return Naming::Named;
}

void appendTag(std::string& text, const NamedCopy& copy)
{
    if (copy.full) {
        text.append(kFullTag);
        return;
    }
    // Only one and two digits are padded: nothing at all and four digits stay as they are.
    if (copy.version.size() == 1)
        text.append("00");
    else if (copy.version.size() == 2)
        text.append("0");
    text.append(copy.version);
}

// Gives the line of a file, or says why there is none.
Naming makeLine(std::string_view root, std::string_view path, std::string_view group,
                std::string& line)
{
    if (path.size() <= root.size())
        return Naming::NoLine;
    const std::string_view behindRoot = path.substr(root.size());
    // Files right in the root are the copy of the profile and the like, whatever their names: a
    // profile called `Server.vdp` is no version of anything.
    if (behindRoot.find('\\') == std::string_view::npos)
        return Naming::NoLine;
    NamedCopy copy;
    const Naming naming = nameCopy(nameOf(path), copy);
    if (naming != Naming::Named)
        return naming;
    const std::string_view relative = base::trim(behindRoot);
    const std::size_t folderEnd = relative.rfind('\\') + 1;
    line.clear();
    line.reserve(group.size() + folderEnd + copy.head.size() + copy.version.size() + 5);
    if (!group.empty())
        line.append(group).append("\\");
    line.append(relative.substr(0, 1)).append(":");
    if (folderEnd > 1)
        line.append(relative.substr(1, folderEnd - 1));
    line.append(copy.head);
    appendTag(line, copy);
    return Naming::Named;
}

// The entries of a folder in the folder's order. Kinds are enough, so no entry is looked at.
std::vector<FolderEntry> listInOrder(FileSystem& fileSystem, std::string_view folder)
{
    std::vector<FolderEntry> entries = fileSystem.openFolder(folder)->list();
    std::sort(entries.begin(), entries.end(), [](const FolderEntry& a, const FolderEntry& b) {
        return base::naturalLess(a.name, b.name);
    });
    return entries;
}

bool isFile(FileSystem& fileSystem, const FolderEntry& entry, std::string_view path)
{
    switch (entry.kind) {
    case FileKind::Regular:
        return true;
    case FileKind::SymbolicLink:
        return fileSystem.fileExists(path);
    case FileKind::Folder:
    case FileKind::Other:
        return false;
    }
    return false;
}

struct WalkSteps {
    std::function<void(const std::string& folder)> descend;
    std::function<void()> meetOtherData;
    std::function<void(const std::string& path)> each;
    std::function<void()> yield;
};

// One level of the walk. `folder` without a backslash at its end, `root` with it.
void walkLevel(FileSystem& fileSystem, std::string_view root, std::string_view folder,
               const WalkSteps& steps)
{
    const std::vector<FolderEntry> entries = listInOrder(fileSystem, folder);
    const std::string otherData = std::string(root).append(kOtherDataFolder);
    for (const FolderEntry& entry : entries) {
        if (entry.kind != FileKind::Folder)
            continue;
        steps.yield();
        const std::string path = platform::joinPath(folder, entry.name);
        if (base::equalsIgnoringCase(path, otherData))
            steps.meetOtherData();
        else
            steps.descend(path);
    }
    for (const FolderEntry& entry : entries) {
        if (entry.kind == FileKind::Folder)
            continue;
        steps.yield();
        const std::string path = platform::joinPath(folder, entry.name);
        if (isFile(fileSystem, entry, path))
            steps.each(path);
    }
}

std::string_view withoutBackslash(std::string_view folder)
{
    while (!folder.empty() && folder.back() == '\\')
        folder.remove_suffix(1);
    return folder;
}

} // namespace

std::optional<std::string> catalogLine(std::string_view root, std::string_view path)
{
    std::string line;
    switch (makeLine(root, path, kFilesGroup, line)) {
    case Naming::Named:
        return line;
    case Naming::Malformed:
        throw RuntimeError(error_number::kInvalidCall, std::string(path),
                           "no underscore behind the version's number");
    case Naming::NoLine:
        break;
    }
    return std::nullopt;
}

std::optional<std::string> entryOfFile(std::string_view root, std::string_view path)
{
    std::string entry;
    return makeLine(root, path, {}, entry) == Naming::Named ? std::optional(std::move(entry))
                                                            : std::nullopt;
}

std::string entryOf(std::string_view line)
{
    return std::string(base::afterFirst(line, "\\"));
}

CatalogLine parseCatalogLine(std::string_view line)
{
    CatalogLine result;
    const std::size_t tagAt = line.size() - std::min(line.size(), kTagLength);
    result.tag = line.substr(tagAt);
    result.versioned = tagAt > 0 && line[tagAt - 1] == '_';
    const std::size_t first = line.find('\\');
    const std::size_t last = line.rfind('\\');
    if (first == std::string_view::npos) {
        result.name = line;
    } else {
        result.group = line.substr(0, first);
        result.folder = line.substr(first + 1, last - first);
        result.name = line.substr(last + 1);
    }
    if (result.versioned)
        result.name.remove_suffix(std::min(result.name.size(), kTagLength + 1));
    return result;
}

std::string reviewFilesPath(std::string_view appPath)
{
    return platform::joinPath(appPath, "Data\\ReviewFiles.txt");
}

std::string modelPath(std::string_view appPath)
{
    return platform::joinPath(appPath, "model.txt");
}

std::string archiveRoot(std::string_view destination, std::string_view profileFileName)
{
    if (destination.empty() || profileFileName.size() <= kExtensionLength)
        return {};
    profileFileName.remove_suffix(kExtensionLength);
    return platform::joinPath(destination, profileFileName).append("\\");
}

void PathList::add(std::string_view path)
{
    const std::string_view name = nameOf(path);
    const std::string_view folder = path.substr(0, path.size() - name.size());
    if (m_folders.empty() || m_folders.back() != folder)
        m_folders.emplace_back(folder);
    if (m_blocks.empty() || m_blocks.back().size() + name.size() > m_blocks.back().capacity())
        m_blocks.emplace_back().reserve(std::max(kNameBlockBytes, name.size()));
    std::string& block = m_blocks.back();
    m_entries.push_back({static_cast<std::uint32_t>(m_folders.size() - 1),
                         static_cast<std::uint32_t>(m_blocks.size() - 1),
                         static_cast<std::uint32_t>(block.size()),
                         static_cast<std::uint32_t>(name.size())});
    block.append(name);
}

std::string PathList::item(std::size_t index) const
{
    if (index < 1 || index > m_entries.size())
        throw RuntimeError(error_number::kSubscript, std::to_string(index));
    const Entry& entry = m_entries[index - 1];
    return std::string(m_folders[entry.folder])
        .append(m_blocks[entry.block], entry.offset, entry.length);
}

void walkArchive(FileSystem& fileSystem, std::string_view root,
                 const std::function<void(std::string_view path)>& each)
{
    WalkSteps steps;
    steps.meetOtherData = [] {};
    steps.yield = [] {};
    steps.each = each;
    steps.descend = [&](const std::string& folder) { walkLevel(fileSystem, root, folder, steps); };
    walkLevel(fileSystem, root, withoutBackslash(root), steps);
}

void writeReviewFiles(FileSystem& fileSystem, std::string_view appPath, std::string_view root,
                      const std::function<void()>& step)
{
    const std::string path = reviewFilesPath(appPath);
    try {
        fileSystem.createFolders(platform::parentOf(path));
        LineWriter writer(fileSystem, path);
        std::string line;
        walkArchive(fileSystem, root, [&](std::string_view file) {
            if (makeLine(root, file, kFilesGroup, line) == Naming::Named)
                writer.write(line);
            step();
        });
        writer.close();
    } catch (const RuntimeError&) {
        base::PendingError second; // the first error is the one to report
        second.attempt([&] { fileSystem.removeFile(path); });
        throw;
    }
}

void RecursiveCallForSubFolders(const CatalogContext& context, ReviewState& state,
                                std::string_view folder)
{
    constexpr std::string_view kName = "RecursiveCallForSubFolders";
    trace::runTraced(context.trace, kName, kModule, kName, [&] {
        WalkSteps steps;
        steps.descend = [&](const std::string& path) {
            RecursiveCallForSubFolders(context, state, path);
        };
        steps.meetOtherData = [&] { state.bOtherDataExists = true; };
        steps.each = [&](const std::string& path) { state.clxnArchiveFiles.add(path); };
        steps.yield = [&] { context.loop.step(); };
        walkLevel(context.fileSystem, state.sStoreRoot, folder, steps);
    });
}

void WritingFileFromClxn(const CatalogContext& context, ReviewState& state, std::string_view root)
{
    constexpr std::string_view kName = "WritingFileFromClxn";
    trace::runTraced(context.trace, kName, kModule, kName, [&] {
        LineWriter writer(context.fileSystem, reviewFilesPath(context.appPath));
        try {
            for (std::size_t i = 1; i <= state.clxnArchiveFiles.count(); ++i) {
                context.loop.step();
                const auto line = catalogLine(root, state.clxnArchiveFiles.item(i));
                if (!line)
                    continue;
                writer.write(*line);
                state.bFilesExist = true;
            }
        } catch (const RuntimeError&) {
            base::PendingError second; // the first error is the one to report
            second.attempt([&] { writer.close(); });
            throw;
        }
        writer.close();
    });
}

} // namespace vardelin::archive
