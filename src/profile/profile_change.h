#pragma once

#include "platform/file_system.h"

#include <memory>
#include <optional>
#include <string>

namespace vardelin::profile {

// One save of a profile, from before its first step until it is scrambled. It holds the lock of the
// folder and keeps the old file beside the new one: a plain profile must not stay, since reading it
// would unscramble it. The old file is kept as a copy, because the disk may be full by the time
// that it is needed, and a rename still works then. After a crash finishInterruptedSaves() does the
// rest.
class ProfileChange {
public:
    // Finishes an earlier save of this profile that was cut off. `folder` has no backslash at its
    // end. Raises 70 while another program saves a profile in this folder, and what the file system
    // raises where the old file cannot be kept.
    ProfileChange(platform::FileSystem& fileSystem, std::string folder, std::string name);
    ProfileChange(const ProfileChange&) = delete;
    ProfileChange& operator=(const ProfileChange&) = delete;
    // Whatever ended the save, the person's wish to leave the program included, the profile is
    // settled. Waits for nothing.
    ~ProfileChange();

    // The plain text stands under the profile's name.
    void plainWritten();
    // The profile stands as it is to stay.
    void scrambled();
    // Something failed: where it came as far as the whole scrambled text, that is the profile;
    // otherwise the old file is, or none. True where the new one stands.
    bool settle();

private:
    void keepOld();
    bool isScrambled();
    void dropTemporary();

    platform::FileSystem& m_files;
    std::string m_folder;
    std::string m_name;
    std::string m_profile; // paths
    std::string m_copy;
    std::unique_ptr<platform::FolderLock> m_lock;
    std::optional<std::string> m_plain;
    bool m_hadOld = false;
    bool m_settled = false;
};

} // namespace vardelin::profile
