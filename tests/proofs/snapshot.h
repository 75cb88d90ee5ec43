#pragma once

#include <array>
#include <cstdint>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

// What lies in a folder of the machine's disk, down to times and modes. Goes by open folders, so
// that paths may be of any length.
namespace vardelin::proofs {

struct Seen {
    mode_t mode = 0; // with the kind
    uid_t owner = 0;
    gid_t group = 0;
    nlink_t links = 0;
    std::int64_t modifiedNs = 0;
    std::int64_t changedNs = 0; // tells every change, also one that was undone
    std::string content;        // of a file, or a link's target
    friend bool operator==(const Seen&, const Seen&) = default;
};
using Snapshot = std::map<std::string, Seen>; // by path below the folder

inline std::string readWhole(int folder, const char* name)
{
    const int fd = ::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return "(unreadable)";
    std::string text;
    std::array<char, 65536> buffer{};
    for (ssize_t got = 0; (got = ::read(fd, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(got));
    ::close(fd);
    return text;
}

inline Seen lookAt(int folder, const char* name)
{
    struct stat details {};
    if (::fstatat(folder, name, &details, AT_SYMLINK_NOFOLLOW) != 0)
        throw std::runtime_error(std::string("vanished: ") + name);
    const auto ns = [](const timespec& time) {
        return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
    };
    Seen seen{details.st_mode,
              details.st_uid,
              details.st_gid,
              details.st_nlink,
              ns(details.st_mtim),
              ns(details.st_ctim),
              {}};
    if (S_ISREG(details.st_mode)) {
        seen.content = readWhole(folder, name);
    } else if (S_ISLNK(details.st_mode)) {
        std::array<char, 4096> target{};
        const ssize_t got = ::readlinkat(folder, name, target.data(), target.size());
        seen.content.assign(target.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
    }
    return seen;
}

inline void lookInto(int folder, const std::string& below, Snapshot& into)
{
    DIR* const list = ::fdopendir(::dup(folder));
    if (list == nullptr)
        throw std::runtime_error("cannot list " + below);
    ::rewinddir(list);
    while (const dirent* const entry = ::readdir(list)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const Seen seen = lookAt(folder, name.c_str());
        into.emplace(below + name, seen);
        if (S_ISDIR(seen.mode)) {
            const int child = ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
            lookInto(child, below + name + "/", into);
            ::close(child);
        }
    }
    ::closedir(list);
}

inline Snapshot snapshotOf(const std::string& folder)
{
    Snapshot result;
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd < 0)
        throw std::runtime_error("no folder " + folder);
    result.emplace(".", lookAt(fd, "."));
    lookInto(fd, "", result);
    ::close(fd);
    return result;
}

// The first difference in words, empty where both are alike.
inline std::string differenceOf(const Snapshot& before, const Snapshot& after)
{
    for (const auto& [path, seen] : before) {
        const auto hit = after.find(path);
        if (hit == after.end())
            return path + " is gone";
        if (hit->second.content != seen.content)
            return path + " has another content";
        if (hit->second.modifiedNs != seen.modifiedNs)
            return path + " has another time";
        if (hit->second.mode != seen.mode)
            return path + " has another mode";
        if (hit->second != seen)
            return path + " was changed";
    }
    for (const auto& [path, seen] : after) {
        if (!before.contains(path))
            return path + " is new";
    }
    return {};
}

} // namespace vardelin::proofs
