#include "platform/linux/linux_folder_lock.h"

#include "base/runtime_error.h"
#include "platform/linux/errno_error.h"

#include <fcntl.h>
#include <sys/file.h>

#include <utility>

namespace vardelin::platform {
namespace {

class HeldLock final : public FolderLock {
public:
    explicit HeldLock(UniqueFd fd) : m_fd(std::move(fd)) {}

private:
    UniqueFd m_fd; // the lock goes with it
};

// 0, or the system's error.
int tryLock(int fd)
{
    return retried([&] { return ::flock(fd, LOCK_EX | LOCK_NB); }) == 0 ? 0 : errno;
}

[[noreturn]] void raiseFor(int systemError, const std::string& path)
{
    if (systemError == EWOULDBLOCK)
        throw base::RuntimeError(base::error_number::kPermissionDenied, path,
                                 "another program is using this folder");
    throwSystemError(systemError, path, Missing::Folder);
}

} // namespace

std::unique_ptr<FolderLock> lockByFile(const UniqueFd& folder, const std::string& path)
{
    UniqueFd file(retried([&] {
        return ::openat(folder.get(), kLockFileName, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC,
                        0666);
    }));
    if (!file)
        throwSystemError(errno, path, Missing::Folder);
    if (const int systemError = tryLock(file.get()); systemError != 0)
        raiseFor(systemError, path);
    return std::make_unique<HeldLock>(std::move(file));
}

std::unique_ptr<FolderLock> lockOpenFolder(UniqueFd folder, const std::string& path)
{
    const int systemError = tryLock(folder.get());
    switch (systemError) {
    case 0:
        return std::make_unique<HeldLock>(std::move(folder));
    case EBADF: // NFS locks only what is open for writing, which a folder never is
    case EINVAL:
    case EISDIR:
    case ENOLCK:
    case ENOSYS:
    case EOPNOTSUPP:
        return lockByFile(folder, path);
    default:
        raiseFor(systemError, path);
    }
}

} // namespace vardelin::platform
