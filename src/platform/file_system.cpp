#include "platform/file_system.h"

#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace vardelin::platform {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

constexpr std::size_t kReadBlockBytes = std::size_t{64} * 1024;
constexpr std::size_t kCopyBlockBytes = std::size_t{256} * 1024;
// Leaves room for the marks of a temporary name within the 255 bytes that a name may have.
constexpr std::size_t kTemporaryStemBytes = 240;

std::string_view withoutEnd(std::string_view path)
{
    while (path.size() > 3 && path.back() == '\\')
        path.remove_suffix(1);
    return path;
}

std::string_view parentOrThrow(std::string_view path)
{
    const std::string_view parent = parentOf(path);
    if (parent.empty())
        throw RuntimeError(error_number::kPathNotFound, std::string(path), "no folder");
    return parent;
}

// Goes down by open folders, so that a link that appears meanwhile is removed and never entered.
void removeContents(Folder& folder)
{
    for (const FolderEntry& entry : folder.list()) {
        if (entry.kind == FileKind::Folder) {
            removeContents(*folder.openFolder(entry.name));
            folder.removeFolder(entry.name);
        } else {
            folder.removeFile(entry.name);
        }
    }
}

} // namespace

std::span<const std::byte> asBytes(std::string_view text)
{
    return std::as_bytes(std::span(text.data(), text.size()));
}

bool isDriveRoot(std::string_view path)
{
    const bool drive = path.size() >= 2 && path[1] == ':' &&
                       std::isalpha(static_cast<unsigned char>(path[0])) != 0;
    return drive && (path.size() == 2 || (path.size() == 3 && path[2] == '\\'));
}

std::string_view parentOf(std::string_view path)
{
    path = withoutEnd(path);
    if (isDriveRoot(path))
        return {};
    const std::size_t at = path.rfind('\\');
    return at == std::string_view::npos ? std::string_view{} : path.substr(0, at + 1);
}

std::string_view leafOf(std::string_view path)
{
    path = withoutEnd(path);
    const std::size_t at = path.rfind('\\');
    return at == std::string_view::npos ? path : path.substr(at + 1);
}

std::string joinPath(std::string_view folder, std::string_view name)
{
    std::string result(folder);
    if (!result.empty() && result.back() != '\\')
        result += '\\';
    return result.append(name);
}

void Folder::visit(const std::function<bool(FolderEntry entry)>& visit)
{
    for (FolderEntry& entry : list()) {
        if (!visit(std::move(entry)))
            return;
    }
}

std::optional<FileInfo> FileSystem::find(std::string_view path)
{
    try {
        if (isDriveRoot(path))
            return openFolder(path)->info();
        const auto parent = openFolder(parentOrThrow(path));
        auto info = parent->find(leafOf(path));
        if (info && info->kind == FileKind::SymbolicLink) {
            // Whoever looks by path means what the link leads to.
            try {
                info = parent->openFolder(leafOf(path), Links::Follow)->info();
            } catch (const RuntimeError&) {
                info = parent->open(leafOf(path), OpenMode::Read, Links::Follow)->info();
            }
        }
        return info;
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

bool FileSystem::fileExists(std::string_view path)
{
    const auto info = find(path);
    return info && info->kind == FileKind::Regular;
}

bool FileSystem::folderExists(std::string_view path)
{
    const auto info = find(path);
    return info && info->kind == FileKind::Folder;
}

std::unique_ptr<File> FileSystem::open(std::string_view path, OpenMode mode)
{
    return openFolder(parentOrThrow(path))->open(leafOf(path), mode, Links::Follow);
}

void FileSystem::createFolder(std::string_view path)
{
    openFolder(parentOrThrow(path))->createFolder(leafOf(path));
}

void FileSystem::createFolders(std::string_view path)
{
    if (isDriveRoot(path) || folderExists(path))
        return;
    createFolders(parentOrThrow(path));
    try {
        createFolder(path);
    } catch (const RuntimeError& error) {
        // Somebody else may have made it between the look and the call.
        if (error.number() != error_number::kFileExists || !folderExists(path))
            throw;
    }
}

void FileSystem::removeFile(std::string_view path)
{
    openFolder(parentOrThrow(path))->removeFile(leafOf(path));
}

void FileSystem::removeFolder(std::string_view path)
{
    openFolder(parentOrThrow(path))->removeFolder(leafOf(path));
}

void FileSystem::removeTree(std::string_view path)
{
    const auto parent = openFolder(parentOrThrow(path));
    const std::string_view leaf = leafOf(path);
    const auto info = parent->find(leaf);
    if (info && info->kind == FileKind::SymbolicLink) {
        parent->removeFile(leaf);
        return;
    }
    removeContents(*parent->openFolder(leaf));
    parent->removeFolder(leaf);
}

void FileSystem::rename(std::string_view from, std::string_view to)
{
    const auto source = openFolder(parentOrThrow(from));
    const auto target = openFolder(parentOrThrow(to));
    source->moveTo(leafOf(from), *target, leafOf(to));
}

void FileSystem::copyFile(std::string_view from, std::string_view to)
{
    const auto source = open(from, OpenMode::Read);
    const FileInfo original = source->info();
    const auto present = find(to);
    if (present && present->device == original.device && present->inode == original.inode)
        throw RuntimeError(error_number::kPermissionDenied, std::string(to),
                           "a file cannot be copied onto itself");
    const auto target = open(to, OpenMode::CreateOrTruncate);
    std::vector<std::byte> block(kCopyBlockBytes);
    while (const std::size_t n = source->read(block))
        target->write(std::span(block).first(n));
    target->flush();
    target->close();
}

std::vector<FolderEntryInfo> FileSystem::list(std::string_view path)
{
    auto entries = openFolder(path)->listWithInfo();
    std::sort(entries.begin(), entries.end(),
              [](const auto& a, const auto& b) { return base::naturalLess(a.name, b.name); });
    return entries;
}

std::string FileSystem::readAll(std::string_view path)
{
    const auto file = open(path, OpenMode::Read);
    std::string text;
    std::array<std::byte, kReadBlockBytes> block{};
    while (const std::size_t n = file->read(block))
        text.append(reinterpret_cast<const char*>(block.data()), n);
    return text;
}

void FileSystem::replaceFile(std::string_view path, std::string_view bytes)
{
    const auto folder = openFolder(parentOrThrow(path));
    const std::string leaf(leafOf(path));
    const std::string temporary = "~" + leaf.substr(0, kTemporaryStemBytes) + ".tmp";
    try {
        const auto file = folder->open(temporary, OpenMode::CreateOrTruncate);
        file->write(asBytes(bytes));
        file->flush();
        file->close();
        folder->rename(temporary, leaf);
    } catch (const RuntimeError&) {
        base::PendingError ignored; // the first error is the one to report
        ignored.attempt([&] { folder->removeFile(temporary); });
        throw;
    }
    folder->flush();
}

} // namespace vardelin::platform
