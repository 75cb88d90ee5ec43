#include "runs/space_check.h"

#include "archive/entry_names.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "runs/engine/committer.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace vardelin::runs {
namespace {

using platform::DriveType;
using platform::FileInfo;
using platform::FileKind;
using platform::FileSystem;
using platform::Folder;
using platform::OpenMode;

constexpr std::string_view kTitle = "Vardelin";
constexpr std::string_view kModule = "MDIForm1";
constexpr std::string_view kNotEnoughSpace = "There is no enough space to copy the backup files";
constexpr double kKilobyte = 1024;
constexpr std::uint64_t kSliceBytes = std::uint64_t{8} * 1024 * 1024;
constexpr std::chrono::milliseconds kYieldAfter{50};

void tell(const SpaceCheckContext& context, std::string_view text)
{
    context.machine.messageBoxes.show(text, kTitle);
}

// The file system that `folder` lies on, or will: below one letter there may be several.
platform::Space spaceOf(const SpaceCheckContext& context, std::string_view folder,
                        const std::string& drive)
{
    std::string path(folder);
    while (!path.empty() && !context.machine.fileSystem.folderExists(path)) {
        path = platform::parentOf(path);
        if (path.ends_with('\\') && !platform::isDriveRoot(path))
            path.pop_back();
    }
    const bool isOnDrive = !path.empty() && base::startsWithIgnoringCase(path, drive.substr(0, 2));
    return context.machine.fileSystem.space(isOnDrive ? path : drive);
}

std::uint64_t sizeOf(FileSystem& fileSystem, const std::string& path)
{
    std::uint64_t bytes = 0;
    const auto folder = fileSystem.openFolder(path);
    for (const platform::FolderEntryInfo& entry : folder->listWithInfo()) {
        if (entry.info.kind == FileKind::Regular)
            bytes += entry.info.sizeBytes;
        else if (entry.info.kind == FileKind::Folder)
            bytes += sizeOf(fileSystem, platform::joinPath(path, entry.name));
    }
    return bytes;
}

// Copies a folder with all that is in it.
class ArchiveCopy {
public:
    ArchiveCopy(const SpaceCheckContext& context, std::uint64_t totalBytes)
        : m_context(context), m_fileSystem(context.machine.fileSystem), m_totalBytes(totalBytes),
          m_panel(context.frame.panel1.text), m_committer(m_fileSystem),
          m_yielded(context.machine.clock.steady())
    {
    }

    void copy(const std::string& from, const std::string& to)
    {
        copyFolder(from, to);
        m_committer.finish();
        // Making a file in a folder gives the folder a new time.
        for (auto folder = m_folders.rbegin(); folder != m_folders.rend(); ++folder) {
            const auto target = m_fileSystem.openFolder(folder->path);
            base::PendingError unkept;
            unkept.attempt([&] { target->setOwnMode(folder->info.mode); });
            unkept.attempt(
                [&] { target->setOwnTimes(folder->info.accessedNs, folder->info.modifiedNs); });
        }
    }

private:
    struct CopiedFolder {
        std::string path;
        FileInfo info;
    };

    void copyFolder(const std::string& from, const std::string& to)
    {
        m_fileSystem.createFolders(to);
        const auto source = m_fileSystem.openFolder(from);
        const auto target = m_fileSystem.openFolder(to);
        m_folders.push_back({to, source->info()});
        std::vector<std::string> subfolders;
        for (const platform::FolderEntry& entry : source->list()) {
            if (entry.kind == FileKind::Folder)
                subfolders.push_back(entry.name);
            else if (entry.kind == FileKind::Regular)
                copyFile(*source, *target, entry.name);
            else if (entry.kind == FileKind::SymbolicLink)
                copyLink(*source, *target, entry.name);
        }
        for (const std::string& name : subfolders)
            copyFolder(platform::joinPath(from, name), platform::joinPath(to, name));
    }

    void copyFile(Folder& source, Folder& target, const std::string& name)
    {
        const auto original = source.open(name, OpenMode::Read);
        const FileInfo info = original->info();
        const std::string temporary = archive::temporaryName(++m_serial);
        const auto file = target.open(temporary, OpenMode::CreateOrTruncate);
        copyBytes(*original, info.sizeBytes, *file);
        base::PendingError unkept; // a disk that keeps no rights keeps the content
        unkept.attempt([&] { file->setOwner(info.ownerId, info.groupId); });
        unkept.attempt([&] { file->setMode(info.mode); });
        for (const platform::ExtendedAttribute& attribute : original->extendedAttributes())
            unkept.attempt([&] { file->setExtendedAttribute(attribute); });
        file->setTimes(info.accessedNs, info.modifiedNs);
        file->close();
        m_committer.add({.folderPath = target.path(),
                         .temporaryName = temporary,
                         .finalName = name,
                         .replaced = {}});
    }

    // Data by data, so that holes stay holes.
    void copyBytes(platform::File& original, std::uint64_t sizeBytes, platform::File& file)
    {
        std::vector<std::byte> block;
        std::uint64_t at = 0;
        while (const auto data = original.nextData(at)) {
            at = data->offset;
            const std::uint64_t end = data->offset + data->length;
            while (at < end) {
                block.resize(static_cast<std::size_t>(std::min(kSliceBytes, end - at)));
                const std::size_t n = original.readAt(at, block);
                if (n == 0)
                    return;
                file.writeAt(at, std::span(block).first(n));
                at += n;
                m_doneBytes += n;
                yield();
            }
        }
        file.resize(sizeBytes);
    }

    static void copyLink(Folder& source, Folder& target, const std::string& name)
    {
        if (target.find(name))
            target.removeFile(name);
        target.createLink(name, source.readLink(name));
    }

    void yield()
    {
        const auto now = m_context.machine.clock.steady();
        if (now - m_yielded < kYieldAfter)
            return;
        m_yielded = now;
        const std::uint64_t share =
            m_totalBytes == 0 ? 100
                              : std::min<std::uint64_t>(100, m_doneBytes * 100 / m_totalBytes);
        m_context.frame.panel1.text = fmt::format("{} {} %", m_panel, share);
        m_context.machine.messageLoop.yield();
    }

    const SpaceCheckContext& m_context;
    FileSystem& m_fileSystem;
    std::uint64_t m_totalBytes;
    std::uint64_t m_doneBytes = 0;
    std::string m_panel;
    engine::Committer m_committer;
    std::chrono::nanoseconds m_yielded;
    std::uint64_t m_serial = 0;
    std::vector<CopiedFolder> m_folders;
};

} // namespace

std::string sGetdrivename(std::string_view text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0)
        return {};
    return std::string(1, text[colon - 1]) + ":\\";
}

void Checkspace(const SpaceCheckContext& context)
{
    trace::runTraced(context.trace, "Checkspace", kModule, "Checkspace", [&] {
        if (context.editor.chkWarn.value != 1)
            return;
        const std::string drive = sGetdrivename(base::trim(context.editor.CmbDestDrives.text));
        if (drive.empty())
            return;
        const DriveType type = context.machine.drives.typeOf(drive.front());
        if (type != DriveType::Fixed && type != DriveType::Remote)
            return;
        base::PendingError unknown;
        platform::Space space;
        if (!unknown.attempt(
                [&] { space = spaceOf(context, context.editor.txtDestLoc.text, drive); }))
            return;
        const double freeMegabytes = static_cast<double>(space.freeBytes) / kKilobyte / kKilobyte;
        const double totalMegabytes = static_cast<double>(space.totalBytes) / kKilobyte / kKilobyte;
        const double percentage = base::val(context.editor.txtWarn.text);
        if (totalMegabytes / 100 * percentage > freeMegabytes)
            tell(context,
                 fmt::format("Free space available in Backup media is less than {}   percentage",
                             base::numberText(percentage)));
    });
}

void CheckspaceFornew(const SpaceCheckContext& context, std::string_view profileName,
                      std::string_view oldDestination, std::string_view newDestination)
{
    trace::runTraced(context.trace, "CheckspaceFornew", kModule, "CheckspaceFornew", [&] {
        FileSystem& fileSystem = context.machine.fileSystem;
        const std::string from = platform::joinPath(oldDestination, profileName);
        const std::string to = platform::joinPath(newDestination, profileName);
        const auto held = fileSystem.lockFolder(from);
        const std::uint64_t bytes = sizeOf(fileSystem, from);
        const platform::Space space =
            spaceOf(context, newDestination, sGetdrivename(newDestination));
        if (space.freeBytes <= bytes) {
            tell(context, kNotEnoughSpace);
            return;
        }
        fileSystem.createFolders(to);
        const std::string former = fileSystem.canonical(from);
        const std::string present = fileSystem.canonical(to);
        if (former == present)
            return; // another way to write the same place
        if (present.starts_with(former + "\\"))
            throw base::RuntimeError(base::error_number::kPathAccess, to,
                                     "it lies inside the archive that is to be copied");
        const auto heldToo = fileSystem.lockFolder(to);
        ArchiveCopy(context, bytes).copy(from, to);
    });
}

} // namespace vardelin::runs
