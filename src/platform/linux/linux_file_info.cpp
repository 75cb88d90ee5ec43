#include "platform/linux/linux_file_info.h"

#include "platform/linux/errno_error.h"

#include <fcntl.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace vardelin::platform {
namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;
constexpr std::uint64_t kBlockBytes = 512; // the unit of stx_blocks, whatever the disk's own
constexpr unsigned kWanted = STATX_BASIC_STATS | STATX_BTIME;

// A disk may hold times that 64 bits of nanoseconds do not: before 1677 and after 2262. The last
// one that they do stands for those.
std::int64_t nanoseconds(const struct statx_timestamp& time)
{
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / kNsPerSecond - 1;
    if (time.tv_sec > kMost)
        return std::numeric_limits<std::int64_t>::max();
    if (time.tv_sec < -kMost)
        return std::numeric_limits<std::int64_t>::min();
    return time.tv_sec * kNsPerSecond + static_cast<std::int64_t>(time.tv_nsec);
}

// Calls `read(buffer, size)` with a buffer that grows until the answer fits; -1 with errno set.
template <typename Read>
ssize_t readGrowing(std::string& out, Read&& read)
{
    std::array<char, 1024> small; // most lists and values fit: no second call for the size
    ssize_t got = retried([&] { return read(small.data(), small.size()); });
    if (got >= 0) {
        out.assign(small.data(), static_cast<std::size_t>(got));
        return got;
    }
    while (got < 0 && errno == ERANGE) {
        const ssize_t size = retried([&] { return read(nullptr, std::size_t{0}); });
        if (size < 0)
            return size;
        out.resize(static_cast<std::size_t>(size) + 1);
        got = retried([&] { return read(out.data(), out.size()); });
    }
    if (got >= 0)
        out.resize(static_cast<std::size_t>(got));
    return got;
}

bool hasNoAttributes(int systemError)
{
    return systemError == ENOTSUP || systemError == ENOSYS;
}

bool isGoneOrRefused(int systemError)
{
    return systemError == ENODATA || systemError == EACCES || systemError == EPERM ||
           hasNoAttributes(systemError);
}

template <typename List, typename Get>
std::vector<ExtendedAttribute> readAll(const std::string& subject, List&& list, Get&& get)
{
    std::vector<ExtendedAttribute> result;
    std::string names;
    if (readGrowing(names, list) < 0) {
        if (hasNoAttributes(errno))
            return result;
        throwSystemError(errno, subject);
    }
    for (std::size_t at = 0; at < names.size();) {
        const char* name = names.c_str() + at;
        ExtendedAttribute attribute{name, {}};
        at += attribute.name.size() + 1;
        const ssize_t got = readGrowing(attribute.value, [&](char* buffer, std::size_t size) {
            return get(name, buffer, size);
        });
        if (got >= 0)
            result.push_back(std::move(attribute));
        else if (!isGoneOrRefused(errno))
            throwSystemError(errno, subject);
    }
    std::sort(result.begin(), result.end(),
              [](const auto& a, const auto& b) { return a.name < b.name; });
    return result;
}

} // namespace

FileKind kindOfMode(std::uint32_t mode)
{
    if (S_ISREG(mode))
        return FileKind::Regular;
    if (S_ISDIR(mode))
        return FileKind::Folder;
    return S_ISLNK(mode) ? FileKind::SymbolicLink : FileKind::Other;
}

FileInfo infoOf(const struct statx& details)
{
    FileInfo info;
    info.kind = kindOfMode(details.stx_mode);
    if (info.kind == FileKind::Regular) {
        info.sizeBytes = details.stx_size;
        info.allocatedBytes = details.stx_blocks * kBlockBytes;
    }
    info.modifiedNs = nanoseconds(details.stx_mtime);
    info.accessedNs = nanoseconds(details.stx_atime);
    info.changedNs = nanoseconds(details.stx_ctime);
    info.createdNs = (details.stx_mask & STATX_BTIME) != 0
                         ? nanoseconds(details.stx_btime)
                         : std::min(info.changedNs, info.modifiedNs);
    info.mode = details.stx_mode & 07777U;
    info.ownerId = details.stx_uid;
    info.groupId = details.stx_gid;
    info.device = makedev(details.stx_dev_major, details.stx_dev_minor);
    info.inode = details.stx_ino;
    info.linkCount = details.stx_nlink;
    return info;
}

bool readInfo(int fd, const char* name, FileInfo& info)
{
    struct statx details;
    const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | (*name == '\0' ? AT_EMPTY_PATH : 0);
    if (retried([&] { return ::statx(fd, name, flags, kWanted, &details); }) != 0)
        return false;
    info = infoOf(details);
    return true;
}

timespec timeOf(std::int64_t ns)
{
    // The nanoseconds count upwards from the second below, before 1970 as well.
    std::int64_t seconds = ns / kNsPerSecond;
    std::int64_t rest = ns % kNsPerSecond;
    if (rest < 0) {
        rest += kNsPerSecond;
        --seconds;
    }
    return {static_cast<time_t>(seconds), static_cast<long>(rest)};
}

std::vector<ExtendedAttribute> readAttributes(int fd, const std::string& subject)
{
    return readAll(
        subject, [&](char* buffer, std::size_t size) { return ::flistxattr(fd, buffer, size); },
        [&](const char* name, char* buffer, std::size_t size) {
            return ::fgetxattr(fd, name, buffer, size);
        });
}

std::vector<ExtendedAttribute> readAttributes(const std::string& nativePath,
                                              const std::string& subject)
{
    const char* path = nativePath.c_str();
    return readAll(
        subject, [&](char* buffer, std::size_t size) { return ::llistxattr(path, buffer, size); },
        [&](const char* name, char* buffer, std::size_t size) {
            return ::lgetxattr(path, name, buffer, size);
        });
}

} // namespace vardelin::platform
