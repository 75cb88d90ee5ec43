#include "platform/linux/native_path.h"

#include "platform/linux/errno_error.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

namespace vardelin::platform {
namespace {

constexpr std::size_t kPieceBytes = 4000; // below PATH_MAX with its NUL
constexpr int kMostLinks = 40;            // the kernel's own limit

// A folder from which what is left of the path is short enough for one call.
struct Stand {
    UniqueFd fd; // none: the current folder will do, the path is absolute or short
    std::string rest;
};

bool walkFar(const std::string& native, Stand& stand)
{
    std::size_t at = 0;
    while (native.size() - at > kPieceBytes) {
        const std::size_t cut = native.rfind('/', at + kPieceBytes);
        if (cut == std::string::npos || cut <= at) {
            errno = ENAMETOOLONG;
            return false;
        }
        const std::string piece = native.substr(at, cut - at);
        const int from = stand.fd ? stand.fd.get() : AT_FDCWD;
        UniqueFd next(retried(
            [&] { return ::openat(from, piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); }));
        if (!next)
            return false;
        stand.fd = std::move(next);
        at = cut + 1;
    }
    stand.rest = native.substr(at);
    if (stand.rest.empty())
        stand.rest = ".";
    return true;
}

bool readLinkAt(int at, const std::string& name, std::string& target)
{
    std::array<char, PATH_MAX> buffer; // a link's target is never longer
    const ssize_t got = ::readlinkat(at, name.c_str(), buffer.data(), buffer.size());
    if (got < 0)
        return false;
    target.assign(buffer.data(), static_cast<std::size_t>(got));
    return true;
}

// The names of a path in reverse, so that the next one is at the end.
void pushNames(const std::string& path, std::vector<std::string>& names)
{
    std::size_t end = path.size();
    while (end > 0) {
        const std::size_t slash = path.rfind('/', end - 1);
        const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
        if (start < end)
            names.push_back(path.substr(start, end - start));
        end = slash == std::string::npos ? 0 : slash;
    }
}

} // namespace

UniqueFd openNative(const std::string& native, int flags)
{
    Stand stand;
    if (!walkFar(native, stand))
        return {};
    const int from = stand.fd ? stand.fd.get() : AT_FDCWD;
    return UniqueFd(retried([&] { return ::openat(from, stand.rest.c_str(), flags | O_CLOEXEC); }));
}

OpenedFolder openNativeFolder(const std::string& native)
{
    Stand stand;
    if (!walkFar(native, stand))
        return {};
    return openFolderAt(stand.fd ? stand.fd.get() : AT_FDCWD, stand.rest.c_str(), 0);
}

bool resolveNative(const std::string& native, std::string& resolved)
{
    const std::unique_ptr<char, decltype(&std::free)> text(::realpath(native.c_str(), nullptr),
                                                           &std::free);
    if (text != nullptr) {
        resolved = text.get();
        return true;
    }
    return errno == ENAMETOOLONG && resolveNativeByWalking(native, resolved);
}

bool resolveNativeByWalking(const std::string& native, std::string& resolved)
{
    constexpr int kPassing = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    UniqueFd folder(::open("/", kPassing));
    std::string path; // of `folder`, empty for the root
    std::vector<std::string> names;
    pushNames(native, names);
    int links = 0;
    while (!names.empty()) {
        const std::string name = std::move(names.back());
        names.pop_back();
        if (name == ".")
            continue;
        if (name == "..") {
            path.erase(path.empty() ? 0 : path.rfind('/'));
            folder = UniqueFd(::openat(folder.get(), "..", kPassing));
            if (!folder)
                return false;
            continue;
        }
        struct stat details;
        if (::fstatat(folder.get(), name.c_str(), &details, AT_SYMLINK_NOFOLLOW) != 0)
            return false;
        if (S_ISLNK(details.st_mode)) {
            std::string target;
            if (++links > kMostLinks) {
                errno = ELOOP;
                return false;
            }
            if (!readLinkAt(folder.get(), name, target))
                return false;
            if (target.starts_with('/')) {
                folder = UniqueFd(::open("/", kPassing));
                path.clear();
            }
            pushNames(target, names);
            continue;
        }
        path.append("/").append(name);
        if (S_ISDIR(details.st_mode)) {
            folder = UniqueFd(::openat(folder.get(), name.c_str(), kPassing));
            if (!folder)
                return false;
        } else if (!names.empty()) {
            errno = ENOTDIR;
            return false;
        }
    }
    resolved = path.empty() ? "/" : path;
    return true;
}

} // namespace vardelin::platform
