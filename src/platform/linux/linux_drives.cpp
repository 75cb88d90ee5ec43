#include "platform/linux/linux_drives.h"

#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace vardelin::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kKey = "SYSTEM\\MountedDevices";
constexpr std::string_view kValuePrefix = "\\DosDevices\\";

std::string textOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string valueName(char letter)
{
    return std::string(kValuePrefix) + letter + ':';
}

bool isOptical(const Mount& mount)
{
    return mount.type == "iso9660" || mount.type == "udf";
}

// udev writes what a file name cannot hold as \x and two hexadecimal digits.
std::string decodedLabel(std::string_view name)
{
    std::string label;
    for (std::size_t at = 0; at < name.size(); ++at) {
        const auto isHex = [&](std::size_t i) {
            return i < name.size() && std::isxdigit(static_cast<unsigned char>(name[i])) != 0;
        };
        if (name.substr(at, 2) == "\\x" && isHex(at + 2) && isHex(at + 3)) {
            label += static_cast<char>(std::stoi(std::string(name.substr(at + 2, 2)), nullptr, 16));
            at += 3;
        } else {
            label += name[at];
        }
    }
    return label;
}

} // namespace

LinuxDrives::LinuxDrives(Registry& registry, MountSources sources)
    : m_registry(registry), m_sources(std::move(sources))
{
}

std::vector<Drive> LinuxDrives::list()
{
    std::vector<Drive> drives;
    for (const auto& [letter, mount] : lettered()) {
        Drive drive;
        drive.letter = letter;
        drive.type = letter == 'C' ? DriveType::Fixed : typeOfMount(mount);
        drive.nativeRoot = mount.nativeRoot;
        if (drive.type == DriveType::Remote)
            drive.shareName = shareNameOf(mount);
        else
            drive.volumeLabel = labelOf(mount);
        drives.push_back(std::move(drive));
    }
    return drives;
}

std::shared_ptr<const DriveMap> LinuxDrives::map()
{
    std::vector<DriveRoot> roots;
    for (const auto& [letter, mount] : lettered())
        roots.push_back({letter, mount.nativeRoot});
    return std::make_shared<const DriveMap>(std::move(roots));
}

std::vector<LinuxDrives::Lettered> LinuxDrives::lettered()
{
    const std::lock_guard lock(m_mutex);
    const std::vector<Mount> mounts = parseMountInfo(textOf(m_sources.mountInfo));
    std::vector<DriveRoot> known = storedLetters();
    std::vector<Lettered> result;

    const auto root = std::find_if(mounts.begin(), mounts.end(),
                                   [](const Mount& mount) { return mount.nativeRoot == "/"; });
    result.push_back({'C', root == mounts.end() ? Mount{{}, "/", {}, {}} : *root});
    for (const Mount& mount : mounts) {
        if (!hasDriveLetter(mount))
            continue;
        auto entry = std::find_if(known.begin(), known.end(), [&](const DriveRoot& one) {
            return one.nativeRoot == mount.nativeRoot;
        });
        if (entry == known.end()) {
            // A letter whose mount is away stays taken: it must never come to mean another disk.
            char letter = 'D';
            while (letter <= 'Z' && std::any_of(known.begin(), known.end(), [&](const auto& one) {
                       return one.letter == letter;
                   }))
                ++letter;
            if (letter > 'Z')
                continue;
            store(letter, mount.nativeRoot);
            entry = known.insert(known.end(), {letter, mount.nativeRoot});
        }
        result.push_back({entry->letter, mount});
    }
    std::sort(result.begin(), result.end(),
              [](const Lettered& a, const Lettered& b) { return a.letter < b.letter; });
    return result;
}

std::vector<DriveRoot> LinuxDrives::storedLetters()
{
    std::vector<DriveRoot> letters = m_unstored;
    base::PendingError unreadable; // then this process's own letters have to do
    unreadable.attempt([&] {
        for (const RegistryValue& value : m_registry.values(RegistryRoot::LocalMachine, kKey)) {
            const std::string_view name = value.name;
            if (!base::startsWithIgnoringCase(name, kValuePrefix) ||
                name.size() != kValuePrefix.size() + 2 || name.back() != ':')
                continue;
            const char letter = static_cast<char>(
                std::toupper(static_cast<unsigned char>(name[kValuePrefix.size()])));
            if (letter >= 'D' && letter <= 'Z' && value.data.starts_with('/'))
                letters.push_back({letter, value.data});
        }
    });
    return letters;
}

void LinuxDrives::store(char letter, const std::string& nativeRoot)
{
    base::PendingError unwritable;
    unwritable.attempt([&] {
        m_registry.setString(RegistryRoot::LocalMachine, kKey, valueName(letter), nativeRoot);
    });
    if (unwritable)
        m_unstored.push_back({letter, nativeRoot});
}

DriveType LinuxDrives::typeOfMount(const Mount& mount) const
{
    if (isNetworkMount(mount))
        return DriveType::Remote;
    if (isOptical(mount))
        return DriveType::Optical;
    return isRemovable(mount) ? DriveType::Removable : DriveType::Fixed;
}

bool LinuxDrives::isRemovable(const Mount& mount) const
{
    const fs::path byNumber(m_sources.sysDevBlock);
    std::error_code missing;
    fs::path device = fs::canonical(byNumber / mount.device, missing);
    if (missing) {
        // A file system over several disks has a number of its own; its source names one of them.
        const fs::path byName = byNumber.parent_path().parent_path() / "class" / "block";
        device = fs::canonical(byName / fs::path(mount.source).filename(), missing);
    }
    if (missing)
        return false;
    // A partition has no such file; its disk, the folder above, has.
    for (const fs::path& folder : {device, device.parent_path()}) {
        const std::string text = textOf((folder / "removable").string());
        if (!text.empty())
            return text.front() == '1';
    }
    return false;
}

std::string LinuxDrives::labelOf(const Mount& mount) const
{
    std::error_code failed;
    const fs::path source = fs::canonical(mount.source, failed);
    if (failed)
        return {};
    for (fs::directory_iterator entry(m_sources.diskByLabel, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        std::error_code dangling;
        if (fs::canonical(entry->path(), dangling) == source && !dangling)
            return decodedLabel(entry->path().filename().string());
    }
    return {};
}

} // namespace vardelin::platform
