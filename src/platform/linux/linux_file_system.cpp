#include "platform/linux/linux_file_system.h"

#include "base/runtime_error.h"
#include "platform/linux/errno_error.h"
#include "platform/linux/linux_folder.h"
#include "platform/linux/linux_folder_lock.h"
#include "platform/linux/native_path.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <utility>

namespace vardelin::platform {
namespace {

// Types that linux/magic.h leaves out, as their own sources in the kernel have them.
constexpr std::uint64_t kMqueueMagic = 0x19800202;
constexpr std::uint64_t kConfigFsMagic = 0x62656570;
constexpr std::uint64_t kFuseControlMagic = 0x65735543;

constexpr std::array<std::uint64_t, 19> kPseudoTypes{
    PROC_SUPER_MAGIC,  SYSFS_MAGIC,     DEVPTS_SUPER_MAGIC, CGROUP_SUPER_MAGIC, CGROUP2_SUPER_MAGIC,
    DEBUGFS_MAGIC,     TRACEFS_MAGIC,   SECURITYFS_MAGIC,   PSTOREFS_MAGIC,     BPF_FS_MAGIC,
    kMqueueMagic,      HUGETLBFS_MAGIC, kConfigFsMagic,     AUTOFS_SUPER_MAGIC, EFIVARFS_MAGIC,
    kFuseControlMagic, BINFMTFS_MAGIC,  NSFS_MAGIC,         SELINUX_MAGIC};

constexpr std::array<std::string_view, 4> kSystemFolders{"/dev", "/proc", "/run", "/sys"};

std::string withoutEnd(std::string_view path)
{
    while (path.size() > 3 && path.back() == '\\')
        path.remove_suffix(1);
    std::string result(path);
    return result.size() == 2 ? result + '\\' : result;
}

} // namespace

bool isPseudoType(std::uint64_t type, std::string_view native)
{
    // The folders of devices are of the type of a file system in memory, too.
    if (type == TMPFS_MAGIC || type == RAMFS_MAGIC)
        return std::any_of(kSystemFolders.begin(), kSystemFolders.end(), [&](auto folder) {
            return native.starts_with(folder) &&
                   (native.size() == folder.size() || native[folder.size()] == '/');
        });
    return std::find(kPseudoTypes.begin(), kPseudoTypes.end(), type) != kPseudoTypes.end();
}

LinuxFileSystem::LinuxFileSystem(std::shared_ptr<const DriveMap> drives)
    : m_drives(std::move(drives))
{
}

void LinuxFileSystem::useDrives(std::shared_ptr<const DriveMap> drives)
{
    const std::lock_guard lock(m_mutex);
    m_drives = std::move(drives);
}

std::shared_ptr<const DriveMap> LinuxFileSystem::drives() const
{
    const std::lock_guard lock(m_mutex);
    return m_drives;
}

std::unique_ptr<Folder> LinuxFileSystem::openFolder(std::string_view path)
{
    auto opened = openNativeFolder(toNative(path));
    if (!opened.fd)
        throwSystemError(errno, std::string(path), Missing::Folder);
    return std::make_unique<LinuxFolder>(std::move(opened.fd), opened.readable, withoutEnd(path));
}

std::unique_ptr<FolderLock> LinuxFileSystem::lockFolder(std::string_view path)
{
    UniqueFd folder = openNative(toNative(path), O_RDONLY | O_DIRECTORY);
    if (!folder)
        throwSystemError(errno, std::string(path), Missing::Folder);
    return lockOpenFolder(std::move(folder), std::string(path));
}

Space LinuxFileSystem::space(std::string_view path)
{
    const UniqueFd place = openNative(toNative(path), O_PATH);
    struct statvfs details;
    if (!place || retried([&] { return ::fstatvfs(place.get(), &details); }) != 0)
        throwSystemError(errno, std::string(path), Missing::Folder);
    return {details.f_blocks * details.f_frsize, details.f_bavail * details.f_frsize};
}

bool LinuxFileSystem::isPseudo(std::string_view path)
{
    const std::string native = toNative(path);
    const UniqueFd place = openNative(native, O_PATH);
    struct statfs details;
    if (!place || retried([&] { return ::fstatfs(place.get(), &details); }) != 0)
        throwSystemError(errno, std::string(path), Missing::Folder);
    const auto type = static_cast<std::uint64_t>(static_cast<std::uint32_t>(details.f_type));
    std::string resolved;
    return isPseudoType(type, resolveNative(native, resolved) ? resolved : native);
}

std::string LinuxFileSystem::toNative(std::string_view path) const
{
    return drives()->toNative(path);
}

std::string LinuxFileSystem::fromNative(std::string_view native) const
{
    return drives()->fromNative(native);
}

std::string LinuxFileSystem::canonical(std::string_view path)
{
    const auto map = drives();
    std::string resolved;
    if (!resolveNative(map->toNative(path), resolved))
        throwSystemError(errno, std::string(path));
    return map->fromNative(resolved);
}

} // namespace vardelin::platform
