#include "platform/linux/linux_instance_lock.h"

#include "platform/linux/errno_error.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

#include <utility>

namespace vardelin::platform {

LinuxInstanceLock::LinuxInstanceLock(std::string nativePath) : m_nativePath(std::move(nativePath))
{
}

bool LinuxInstanceLock::acquire()
{
    if (m_held)
        return true;
    UniqueFd file(retried([&] {
        return ::open(m_nativePath.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666);
    }));
    if (!file)
        throwSystemError(errno, m_nativePath, Missing::Folder);
    if (retried([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) != 0) {
        if (errno == EWOULDBLOCK)
            return false;
        throwSystemError(errno, m_nativePath, Missing::File);
    }
    m_held = std::move(file);
    return true;
}

std::string windowLockFile(const std::string& nativeAppFolder)
{
    return nativeAppFolder + "/.lock";
}

std::string programLockFile(const std::string& nativeAppFolder, const std::string& name)
{
    return nativeAppFolder + "/.lock-" + name;
}

} // namespace vardelin::platform
