#pragma once

#include "platform/file_system.h"
#include "platform/linux/drive_map.h"

#include <memory>
#include <mutex>

namespace vardelin::platform {

// The machine's own file system through the drives of a map. Paths may be longer than the system
// takes in one call. A folder lock on a network file system that locks no folders puts the file
// `.vardelin-lock` into the folder.
class LinuxFileSystem final : public FileSystem {
public:
    explicit LinuxFileSystem(std::shared_ptr<const DriveMap> drives);

    // From now on. Folders that are open stay what they are.
    void useDrives(std::shared_ptr<const DriveMap> drives);

    std::unique_ptr<Folder> openFolder(std::string_view path) override;
    std::unique_ptr<FolderLock> lockFolder(std::string_view path) override;
    Space space(std::string_view path) override;
    bool isCaseSensitive() const override { return true; }
    // A file system in memory counts only below /dev, /proc, /run and /sys: elsewhere, as in /tmp,
    // a person keeps files in it.
    bool isPseudo(std::string_view path) override;
    std::string toNative(std::string_view path) const override;
    std::string fromNative(std::string_view native) const override;
    std::string canonical(std::string_view path) override;

private:
    std::shared_ptr<const DriveMap> drives() const;

    mutable std::mutex m_mutex; // for m_drives
    std::shared_ptr<const DriveMap> m_drives;
};

// Whether a file system of this type (f_type of statfs) at a resolved native path only shows the
// running system.
bool isPseudoType(std::uint64_t type, std::string_view native);

} // namespace vardelin::platform
