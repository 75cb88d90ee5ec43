#include "platform/linux/drive_map.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/file_system.h"
#include "platform/name_mapping.h"

#include <cctype>
#include <utility>

namespace vardelin::platform {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

constexpr std::string_view kNoNameBytes("/\0", 2);

char capital(char letter)
{
    return static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
}

// Without the `/` at the end; the root itself is empty, so that `root + "/..."` holds for all.
std::string_view stem(std::string_view root)
{
    return root == "/" ? std::string_view{} : root;
}

bool liesUnder(std::string_view native, std::string_view root)
{
    const std::string_view head = stem(root);
    return native.starts_with(head) && (native.size() == head.size() || native[head.size()] == '/');
}

} // namespace

DriveMap::DriveMap(std::vector<DriveRoot> roots) : m_roots(std::move(roots))
{
    for (DriveRoot& root : m_roots) {
        root.letter = capital(root.letter);
        while (root.nativeRoot.size() > 1 && root.nativeRoot.back() == '/')
            root.nativeRoot.pop_back();
    }
}

std::string DriveMap::toNative(std::string_view path) const
{
    const bool hasLetter =
        path.size() >= 2 && path[1] == ':' && (path.size() == 2 || path[2] == '\\');
    if (!hasLetter)
        throw RuntimeError(error_number::kPathNotFound, std::string(path), "not an absolute path");
    const DriveRoot* root = nullptr;
    for (const DriveRoot& candidate : m_roots) {
        if (candidate.letter == capital(path[0])) {
            root = &candidate;
            break;
        }
    }
    if (root == nullptr)
        throw RuntimeError(error_number::kPathNotFound, std::string(path), "no such drive");

    std::string native(stem(root->nativeRoot));
    native.reserve(native.size() + path.size());
    for (const std::string_view piece : base::split(path.substr(2), "\\")) {
        if (piece.empty() || piece == ".")
            continue;
        const std::string diskName = nameToDisk(piece);
        // A mapped dot must not turn into a step that the path did not have.
        const bool becameStep = piece != ".." && (diskName == "." || diskName == "..");
        if (becameStep || diskName.find_first_of(kNoNameBytes) != std::string::npos)
            throw RuntimeError(error_number::kPathAccess, std::string(path), "not a file name");
        native.append("/").append(diskName);
    }
    return native.empty() ? "/" : native;
}

std::string DriveMap::fromNative(std::string_view native) const
{
    if (!native.starts_with('/'))
        throw RuntimeError(error_number::kPathNotFound, std::string(native),
                           "not an absolute path");
    std::string clean;
    for (const std::string_view piece : base::split(native, "/")) {
        if (!piece.empty() && piece != ".")
            clean.append("/").append(piece);
    }

    const DriveRoot* best = nullptr;
    for (const DriveRoot& root : m_roots) {
        const bool longer =
            best == nullptr || stem(root.nativeRoot).size() > stem(best->nativeRoot).size();
        if (longer && liesUnder(clean, root.nativeRoot))
            best = &root;
    }
    if (best == nullptr)
        throw RuntimeError(error_number::kPathNotFound, std::string(native),
                           "no drive reaches this path");

    std::string path{best->letter, ':', '\\'};
    const std::string_view rest = std::string_view(clean).substr(stem(best->nativeRoot).size());
    for (const std::string_view piece : base::split(rest, "/")) {
        if (!piece.empty())
            path = joinPath(path, piece == ".." ? std::string(piece) : nameFromDisk(piece));
    }
    return path;
}

std::string childToDisk(std::string_view folder, std::string_view name)
{
    std::string diskName = nameToDisk(name);
    const bool isName = !diskName.empty() && diskName != "." && diskName != ".." &&
                        name.find('\\') == std::string_view::npos &&
                        diskName.find_first_of(kNoNameBytes) == std::string::npos;
    if (!isName)
        throw RuntimeError(error_number::kPathAccess, joinPath(folder, name), "not a file name");
    return diskName;
}

} // namespace vardelin::platform
