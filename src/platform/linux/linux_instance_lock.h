#pragma once

#include "platform/instance_lock.h"
#include "platform/linux/unique_fd.h"

#include <string>

namespace vardelin::platform {

// A file that is locked by the kernel; it is made where it is missing and stays, empty, because
// deleting it would let two processes hold two files of its name. Programs that the holder starts
// do not inherit the lock.
class LinuxInstanceLock final : public InstanceLock {
public:
    // The file's path in the machine's own form.
    explicit LinuxInstanceLock(std::string nativePath);

    bool acquire() override;

private:
    std::string m_nativePath;
    UniqueFd m_held; // open while the lock is held
};

// The lock files of the window and of the other programs, `name` being the program's own.
std::string windowLockFile(const std::string& nativeAppFolder);
std::string programLockFile(const std::string& nativeAppFolder, const std::string& name);

} // namespace vardelin::platform
