#include "platform/linux/mount_info.h"

#include "base/text.h"
#include "platform/name_mapping.h"

#include <algorithm>
#include <array>
#include <optional>

namespace vardelin::platform {
namespace {

constexpr std::array<std::string_view, 9> kNetworkTypes{
    "cifs", "smb3", "smbfs", "nfs", "nfs4", "fuse.sshfs", "fuse.rclone", "davfs", "9p"};
constexpr std::array<std::string_view, 20> kPseudoTypes{
    "proc",    "sysfs",  "devtmpfs", "devpts", "cgroup",     "cgroup2",   "debugfs",
    "tracefs", "pstore", "bpf",      "mqueue", "securityfs", "hugetlbfs", "configfs",
    "autofs",  "ramfs",  "efivarfs", "nsfs",   "fusectl",    "tmpfs"};
constexpr std::array<std::string_view, 3> kMediaFolders{"/mnt/", "/media/", "/run/media/"};

template <typename List>
bool isOneOf(const List& list, std::string_view text)
{
    return std::find(list.begin(), list.end(), text) != list.end();
}

// The kernel writes blank, tab, line end and backslash as three octal digits behind a backslash.
std::string unescaped(std::string_view field)
{
    const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    std::string result;
    for (std::size_t at = 0; at < field.size(); ++at) {
        const bool escape = field[at] == '\\' && field.size() - at > 3 && isOctal(field[at + 1]) &&
                            isOctal(field[at + 2]) && isOctal(field[at + 3]);
        if (!escape) {
            result += field[at];
            continue;
        }
        const int code =
            (field[at + 1] - '0') * 64 + (field[at + 2] - '0') * 8 + (field[at + 3] - '0');
        result += static_cast<char>(code);
        at += 3;
    }
    return result;
}

std::optional<Mount> parseLine(std::string_view line)
{
    // 36 35 98:0 /root /mount/point options [optional fields] - type source super-options
    const auto fields = base::split(line, " ");
    const auto dash = std::find(fields.begin(), fields.end(), "-");
    if (fields.size() < 6 || dash - fields.begin() < 6 || fields.end() - dash < 3)
        return std::nullopt;
    Mount mount{std::string(fields[2]), unescaped(fields[4]), unescaped(dash[1]),
                unescaped(dash[2])};
    if (!mount.nativeRoot.starts_with('/'))
        return std::nullopt;
    return mount;
}

} // namespace

std::vector<Mount> parseMountInfo(std::string_view text)
{
    std::vector<Mount> mounts;
    for (const std::string_view line : base::split(text, "\n")) {
        auto mount = parseLine(line);
        if (!mount)
            continue;
        std::erase_if(mounts,
                      [&](const Mount& other) { return other.nativeRoot == mount->nativeRoot; });
        mounts.push_back(std::move(*mount));
    }
    return mounts;
}

bool isNetworkMount(const Mount& mount)
{
    return isOneOf(kNetworkTypes, mount.type);
}

bool hasDriveLetter(const Mount& mount)
{
    if (mount.nativeRoot == "/")
        return false; // C: already
    if (isNetworkMount(mount))
        return true;
    return !isOneOf(kPseudoTypes, mount.type) &&
           std::any_of(kMediaFolders.begin(), kMediaFolders.end(),
                       [&](auto folder) { return mount.nativeRoot.starts_with(folder); });
}

std::string shareNameOf(const Mount& mount)
{
    // //server/share, server:/export, user@server:folder, remote:folder
    std::string_view source = mount.source;
    std::string_view server;
    std::string_view rest;
    if (source.starts_with("//")) {
        source.remove_prefix(2);
        server = base::beforeFirst(source, "/");
        rest = base::afterFirst(source, "/");
    } else {
        // An IPv6 address stands in brackets and holds colons itself.
        const std::size_t from = source.find(']') == std::string_view::npos ? 0 : source.find(']');
        const std::size_t colon = source.find(':', from);
        server = source.substr(0, colon);
        rest = colon == std::string_view::npos ? std::string_view{} : source.substr(colon + 1);
    }
    server = base::afterLast(server, "@");
    std::string name = "\\\\" + nameFromDisk(server);
    for (const std::string_view piece : base::split(rest, "/")) {
        if (!piece.empty())
            name += '\\' + nameFromDisk(piece);
    }
    return name;
}

} // namespace vardelin::platform
