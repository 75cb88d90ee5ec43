#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::platform {

// One line of /proc/self/mountinfo (proc(5), "/proc/pid/mountinfo").
struct Mount {
    std::string device;     // "major:minor"
    std::string nativeRoot; // where it is mounted
    std::string type;       // ext4, cifs, fuse.sshfs
    std::string source;     // /dev/sdb1, //server/share, server:/export

    friend bool operator==(const Mount&, const Mount&) = default;
};

// Lines that are no mounts are left out. Where several are mounted on one folder, the last one
// hides the others and is the only one given. In the order of the text.
std::vector<Mount> parseMountInfo(std::string_view text);

bool isNetworkMount(const Mount& mount);
// Under /mnt, /media or /run/media and no pseudo file system, or a network mount anywhere.
bool hasDriveLetter(const Mount& mount);
// `\\server\share` of a network mount, with what follows the share: `\\server\share\folder`.
// Without a server in its source, the source stands for it. Names are as paths have them.
std::string shareNameOf(const Mount& mount);

} // namespace vardelin::platform
