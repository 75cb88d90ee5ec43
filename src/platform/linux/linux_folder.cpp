#include "platform/linux/linux_folder.h"

#include "base/runtime_error.h"
#include "platform/linux/drive_map.h"
#include "platform/linux/errno_error.h"
#include "platform/linux/linux_file.h"
#include "platform/linux/linux_file_info.h"
#include "platform/name_mapping.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

namespace vardelin::platform {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

// Holds about a thousand entries: one call for most folders.
constexpr std::size_t kListBlockBytes = std::size_t{32} * 1024;
constexpr mode_t kNewFileMode = 0666; // less the person's mask
constexpr mode_t kNewFolderMode = 0777;

int flagsOf(OpenMode mode)
{
    switch (mode) {
    case OpenMode::Read:
        return O_RDONLY;
    case OpenMode::CreateNew:
        return O_WRONLY | O_CREAT | O_EXCL;
    case OpenMode::CreateOrTruncate:
        return O_WRONLY | O_CREAT | O_TRUNC;
    case OpenMode::Append:
        return O_WRONLY | O_CREAT | O_APPEND;
    case OpenMode::ReadWrite:
        return O_RDWR | O_CREAT;
    case OpenMode::Update:
        return O_RDWR;
    }
    return O_RDONLY;
}

FileKind kindOfType(unsigned char type)
{
    return kindOfMode(static_cast<std::uint32_t>(DTTOIF(type)));
}

bool isDots(const char* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// Network and user-space file systems that cannot flush a folder say so with one of these; there is
// nothing more to be had from them.
bool cannotFlush(int systemError)
{
    return systemError == EINVAL || systemError == EOPNOTSUPP || systemError == ENOSYS;
}

} // namespace

OpenedFolder openFolderAt(int at, const char* diskName, int flags)
{
    const int common = O_DIRECTORY | O_CLOEXEC | flags;
    const int fd = retried([&] { return ::openat(at, diskName, O_RDONLY | common); });
    if (fd >= 0 || errno != EACCES)
        return {UniqueFd(fd), true};
    OpenedFolder passing{UniqueFd(retried([&] { return ::openat(at, diskName, O_PATH | common); })),
                         false};
    // That much is granted to everybody; whether the folder may be passed shows at the first look.
    if (passing.fd && ::faccessat(passing.fd.get(), ".", F_OK, 0) != 0) {
        passing.fd.reset();
        errno = EACCES;
    }
    return passing;
}

LinuxFolder::LinuxFolder(UniqueFd fd, bool readable, std::string path)
    : m_fd(std::move(fd)), m_readable(readable), m_path(std::move(path))
{
}

std::string LinuxFolder::disk(std::string_view name) const
{
    return childToDisk(m_path, name);
}

std::string LinuxFolder::procPath(std::string_view name) const
{
    std::string path = "/proc/self/fd/" + std::to_string(m_fd.get());
    return name.empty() ? path : path + '/' + disk(name);
}

void LinuxFolder::fail(int systemError, std::string_view name, bool folder) const
{
    throwSystemError(systemError, name.empty() ? m_path : joinPath(m_path, name),
                     folder ? Missing::Folder : Missing::File);
}

template <typename Use>
void LinuxFolder::eachEntry(Use&& use)
{
    if (!m_readable)
        fail(EACCES, {});
    if (::lseek(m_fd.get(), 0, SEEK_SET) < 0)
        fail(errno, {});
    alignas(dirent64) std::array<char, kListBlockBytes> block;
    for (;;) {
        const ssize_t got =
            retried([&] { return ::getdents64(m_fd.get(), block.data(), block.size()); });
        // A folder that was removed while it is open has no entries any more.
        if (got == 0 || (got < 0 && errno == ENOENT))
            return;
        if (got < 0)
            fail(errno, {});
        for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
            const auto* entry = reinterpret_cast<const dirent64*>(block.data() + at);
            at += entry->d_reclen;
            if (!isDots(entry->d_name) && !use(*entry))
                return;
        }
    }
}

std::vector<FolderEntry> LinuxFolder::list()
{
    std::vector<FolderEntry> result;
    visit([&](FolderEntry entry) {
        result.push_back(std::move(entry));
        return true;
    });
    return result;
}

void LinuxFolder::visit(const std::function<bool(FolderEntry entry)>& visit)
{
    eachEntry([&](const dirent64& entry) {
        FileKind kind = kindOfType(entry.d_type);
        if (entry.d_type == DT_UNKNOWN) {
            FileInfo info;
            if (!readInfo(m_fd.get(), entry.d_name, info) && errno == ENOENT)
                return true;
            kind = info.inode == 0 ? FileKind::Other : info.kind;
        }
        return visit({nameFromDisk(entry.d_name), kind});
    });
}

std::vector<FolderEntryInfo> LinuxFolder::listWithInfo()
{
    std::vector<FolderEntryInfo> result;
    eachEntry([&](const dirent64& entry) {
        FolderEntryInfo& added = result.emplace_back();
        if (readInfo(m_fd.get(), entry.d_name, added.info)) {
            added.name = nameFromDisk(entry.d_name);
        } else if (errno == ENOENT) {
            result.pop_back();
        } else {
            // One dead mount must not hide its neighbours: whoever opens it gets the reason.
            added.name = nameFromDisk(entry.d_name);
            added.info.kind = kindOfType(entry.d_type);
        }
        return true;
    });
    return result;
}

std::optional<FileInfo> LinuxFolder::find(std::string_view name)
{
    FileInfo info;
    if (readInfo(m_fd.get(), disk(name).c_str(), info))
        return info;
    if (errno == ENOENT)
        return std::nullopt;
    fail(errno, name);
}

FileInfo LinuxFolder::info()
{
    FileInfo info;
    if (!readInfo(m_fd.get(), "", info))
        fail(errno, {});
    return info;
}

std::vector<ExtendedAttribute> LinuxFolder::extendedAttributes()
{
    return m_readable ? readAttributes(m_fd.get(), m_path)
                      : readAttributes(procPath({}) + "/.", m_path);
}

std::unique_ptr<File> LinuxFolder::open(std::string_view name, OpenMode mode, Links links)
{
    // Without O_NONBLOCK a pipe without a writer would hold the program for ever.
    const int flags = flagsOf(mode) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC |
                      (links == Links::Refuse ? O_NOFOLLOW : 0);
    const std::string diskName = disk(name);
    UniqueFd fd(
        retried([&] { return ::openat(m_fd.get(), diskName.c_str(), flags, kNewFileMode); }));
    if (!fd) {
        if (errno == ELOOP && links == Links::Refuse)
            throw RuntimeError(error_number::kPermissionDenied, joinPath(m_path, name),
                               "a symbolic link is not followed here");
        // Where a file would have been made, it is the folder that is missing.
        fail(errno, name, (flags & O_CREAT) != 0);
    }
    return std::make_unique<LinuxFile>(std::move(fd), joinPath(m_path, name),
                                       mode == OpenMode::Append);
}

std::unique_ptr<Folder> LinuxFolder::openFolder(std::string_view name, Links links)
{
    auto opened =
        openFolderAt(m_fd.get(), disk(name).c_str(), links == Links::Refuse ? O_NOFOLLOW : 0);
    if (!opened.fd)
        fail(errno, name, true);
    return std::make_unique<LinuxFolder>(std::move(opened.fd), opened.readable,
                                         joinPath(m_path, name));
}

void LinuxFolder::createFolder(std::string_view name)
{
    if (::mkdirat(m_fd.get(), disk(name).c_str(), kNewFolderMode) != 0)
        fail(errno, name, true);
}

void LinuxFolder::removeFile(std::string_view name)
{
    if (::unlinkat(m_fd.get(), disk(name).c_str(), 0) != 0)
        fail(errno, name);
}

void LinuxFolder::removeFolder(std::string_view name)
{
    if (::unlinkat(m_fd.get(), disk(name).c_str(), AT_REMOVEDIR) != 0)
        fail(errno == EEXIST ? ENOTEMPTY : errno, name, true);
}

void LinuxFolder::rename(std::string_view from, std::string_view to)
{
    moveTo(from, *this, to);
}

void LinuxFolder::moveTo(std::string_view from, Folder& folder, std::string_view to)
{
    auto* const target = dynamic_cast<LinuxFolder*>(&folder);
    if (target == nullptr)
        fail(EXDEV, from);
    if (::renameat(m_fd.get(), disk(from).c_str(), target->m_fd.get(), target->disk(to).c_str()) !=
        0)
        fail(errno == EEXIST ? ENOTEMPTY : errno, from);
}

std::string LinuxFolder::readLink(std::string_view name)
{
    const std::string diskName = disk(name);
    std::string target(256, '\0');
    for (;;) {
        const ssize_t got =
            ::readlinkat(m_fd.get(), diskName.c_str(), target.data(), target.size());
        if (got < 0) {
            if (errno == EINVAL)
                throw RuntimeError(error_number::kPathAccess, joinPath(m_path, name),
                                   "not a symbolic link");
            fail(errno, name);
        }
        if (static_cast<std::size_t>(got) < target.size()) {
            target.resize(static_cast<std::size_t>(got));
            return target;
        }
        target.resize(target.size() * 4);
    }
}

void LinuxFolder::createLink(std::string_view name, std::string_view target)
{
    if (::symlinkat(std::string(target).c_str(), m_fd.get(), disk(name).c_str()) != 0)
        fail(errno, name, true);
}

void LinuxFolder::createHardLink(std::string_view name, Folder& folder, std::string_view existing)
{
    auto* const source = dynamic_cast<LinuxFolder*>(&folder);
    if (source == nullptr)
        fail(EXDEV, name);
    const std::string from = source->disk(existing);
    if (::linkat(source->m_fd.get(), from.c_str(), m_fd.get(), disk(name).c_str(), 0) == 0)
        return;
    const int systemError = errno;
    if (systemError != EPERM)
        fail(systemError, name);
    // The system says the same of a folder and of a disk without hard links.
    FileInfo info;
    if (readInfo(source->m_fd.get(), from.c_str(), info) && info.kind == FileKind::Folder)
        throw RuntimeError(error_number::kPathAccess, joinPath(folder.path(), existing),
                           "a folder has one name only");
    throw RuntimeError(error_number::kDeviceIo, joinPath(m_path, name),
                       "hard links are not possible here");
}

void LinuxFolder::setTimes(std::string_view name, std::int64_t accessedNs, std::int64_t modifiedNs)
{
    const std::array<timespec, 2> times{timeOf(accessedNs), timeOf(modifiedNs)};
    if (::utimensat(m_fd.get(), disk(name).c_str(), times.data(), AT_SYMLINK_NOFOLLOW) != 0)
        fail(errno, name);
}

void LinuxFolder::setMode(std::string_view name, std::uint32_t mode)
{
    if (::fchmodat(m_fd.get(), disk(name).c_str(), mode & 07777U, AT_SYMLINK_NOFOLLOW) != 0)
        fail(errno, name);
}

void LinuxFolder::setOwner(std::string_view name, std::uint32_t ownerId, std::uint32_t groupId)
{
    if (::fchownat(m_fd.get(), disk(name).c_str(), ownerId, groupId, AT_SYMLINK_NOFOLLOW) != 0)
        fail(errno, name);
}

std::vector<ExtendedAttribute> LinuxFolder::extendedAttributes(std::string_view name)
{
    return readAttributes(procPath(name), joinPath(m_path, name));
}

void LinuxFolder::setExtendedAttribute(std::string_view name, const ExtendedAttribute& attribute)
{
    if (::lsetxattr(procPath(name).c_str(), attribute.name.c_str(), attribute.value.data(),
                    attribute.value.size(), 0) != 0)
        fail(errno, name);
}

// Through "." these also work on a folder that was opened for passing alone.
void LinuxFolder::setOwnMode(std::uint32_t mode)
{
    const int failed = m_readable ? ::fchmod(m_fd.get(), mode & 07777U)
                                  : ::fchmodat(m_fd.get(), ".", mode & 07777U, 0);
    if (failed != 0)
        fail(errno, {});
}

void LinuxFolder::setOwnTimes(std::int64_t accessedNs, std::int64_t modifiedNs)
{
    const std::array<timespec, 2> times{timeOf(accessedNs), timeOf(modifiedNs)};
    const int failed = m_readable ? ::futimens(m_fd.get(), times.data())
                                  : ::utimensat(m_fd.get(), ".", times.data(), 0);
    if (failed != 0)
        fail(errno, {});
}

void LinuxFolder::flush()
{
    if (!m_readable)
        fail(EACCES, {});
    if (retried([&] { return ::fsync(m_fd.get()); }) != 0 && !cannotFlush(errno))
        fail(errno, {});
}

void LinuxFolder::flushFileSystem()
{
    if (!m_readable)
        fail(EACCES, {});
    if (::syncfs(m_fd.get()) != 0)
        fail(errno, {});
}

} // namespace vardelin::platform
