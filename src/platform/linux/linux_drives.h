#pragma once

#include "platform/drives.h"
#include "platform/linux/drive_map.h"
#include "platform/linux/mount_info.h"
#include "platform/registry.h"

#include <memory>
#include <mutex>

namespace vardelin::platform {

// Where the system tells of its mounts and disks; tests put their own in place.
struct MountSources {
    std::string mountInfo = "/proc/self/mountinfo";
    std::string sysDevBlock = "/sys/dev/block"; // major:minor -> the block device's folder
    std::string diskByLabel = "/dev/disk/by-label";
};

// C: is `/`. Letters from D: on go to mounts under /mnt, /media and /run/media and to network
// mounts. A letter is kept for its mount for good: as a string value `\DosDevices\D:` with the
// native root, under SYSTEM\MountedDevices of the machine. When the letters run out, further mounts
// have none and are reached through C:. A registry that cannot be written gives letters for this
// process alone.
//
// May be used by several threads if the registry may.
class LinuxDrives final : public Drives {
public:
    // The registry must outlive this.
    explicit LinuxDrives(Registry& registry, MountSources sources = {});

    std::vector<Drive> list() override;
    // What LinuxFileSystem takes: C: and every drive that is mounted now.
    std::shared_ptr<const DriveMap> map();

private:
    struct Lettered {
        char letter;
        Mount mount;
    };
    std::vector<Lettered> lettered();
    std::vector<DriveRoot> storedLetters();
    void store(char letter, const std::string& nativeRoot);
    DriveType typeOfMount(const Mount& mount) const;
    bool isRemovable(const Mount& mount) const;
    std::string labelOf(const Mount& mount) const;

    Registry& m_registry;
    MountSources m_sources;
    std::mutex m_mutex; // for m_unstored, and while letters are given
    std::vector<DriveRoot> m_unstored;
};

} // namespace vardelin::platform
