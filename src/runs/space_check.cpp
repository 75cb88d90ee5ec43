#include "runs/space_check.h"

#include "archive/entry_names.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "runs/engine/committer.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
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
constexpr std::string_view kModule = "MDIForm";
constexpr std::string_view kNotEnoughSpace = "There is no enough space to copy the backup files";
constexpr double kKilobyte = 1024;
constexpr std::uint64_t kSliceBytes = std::uint64_t{8} * 1024 * 1024;
constexpr std::chrono::milliseconds kYieldAfter{50};
constexpr std::uint32_t kOwnerAlone = 0600;

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

// Lets the window live during long work, and shows in panel 1 how far it has come.
class Progress {
public:
    explicit Progress(const SpaceCheckContext& context)
        : m_context(context), m_panel(context.frame.panel1.text),
          m_yielded(context.machine.clock.steady())
    {
    }

    void setTotal(std::uint64_t bytes) { m_totalBytes = bytes; }
    void add(std::uint64_t bytes) { m_doneBytes += bytes; }
    // Often enough for the window, and no more: painting takes longer than copying a small file.
    void yieldNowAndThen()
    {
        const auto now = m_context.machine.clock.steady();
        if (now - m_yielded < kYieldAfter)
            return;
        yield();
        m_yielded = now;
    }
    void yield()
    {
        if (m_totalBytes > 0)
            m_context.frame.panel1.text = fmt::format(
                "{} {} %", m_panel, std::min<std::uint64_t>(100, m_doneBytes * 100 / m_totalBytes));
        m_context.machine.messageLoop.yield();
    }

private:
    const SpaceCheckContext& m_context;
    std::string m_panel;
    std::uint64_t m_totalBytes = 0;
    std::uint64_t m_doneBytes = 0;
    std::chrono::nanoseconds m_yielded;
};

std::uint64_t sizeOf(FileSystem& fileSystem, const std::string& path, Progress& progress)
{
    progress.yieldNowAndThen();
    std::uint64_t bytes = 0;
    const auto folder = fileSystem.openFolder(path);
    for (const platform::FolderEntryInfo& entry : folder->listWithInfo()) {
        if (entry.info.kind == FileKind::Regular)
            bytes += entry.info.sizeBytes;
        else if (entry.info.kind == FileKind::Folder)
            bytes += sizeOf(fileSystem, platform::joinPath(path, entry.name), progress);
    }
    return bytes;
}

// Copies a folder with all that is in it.
class ArchiveCopy {
public:
    ArchiveCopy(FileSystem& fileSystem, Progress& progress)
        : m_fileSystem(fileSystem), m_progress(progress), m_committer(std::in_place, fileSystem)
    {
    }

    void copy(const std::string& from, const std::string& to)
    {
        try {
            copyFolder(from, to);
            commit();
        } catch (const base::RuntimeError&) {
            m_committer.reset(); // it may still be naming files
            removeUnnamed();
            throw;
        }
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

    // The disk may take a while to flush what was written.
    void commit()
    {
        auto running = std::async(std::launch::async, [this] { m_committer->finish(); });
        while (running.wait_for(kYieldAfter) != std::future_status::ready)
            m_progress.yield();
        running.get();
    }

    // Copies that will never get their names would fill a disk that may be full already.
    void removeUnnamed()
    {
        for (const CopiedFolder& copied : m_folders) {
            base::PendingError ignored; // the error that led here is the one to tell
            ignored.attempt([&] {
                const auto folder = m_fileSystem.openFolder(copied.path);
                for (const platform::FolderEntry& entry : folder->list()) {
                    if (archive::isTemporaryName(entry.name))
                        ignored.attempt([&] { folder->removeFile(entry.name); });
                }
            });
        }
    }

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
            else if (entry.kind == FileKind::Regular && !isLeftOver(entry.name))
                copyFile(*source, *target, entry.name);
            else if (entry.kind == FileKind::SymbolicLink)
                copyLink(*source, *target, entry.name);
        }
        for (const std::string& name : subfolders)
            copyFolder(platform::joinPath(from, name), platform::joinPath(to, name));
    }

    // What a run that died left, and the file by which a folder without locks of its own is held:
    // the target has one, and it must stay the one that is held.
    static bool isLeftOver(const std::string& name)
    {
        return archive::isTemporaryName(name) || name == platform::kLockFileName;
    }

    void copyFile(Folder& source, Folder& target, const std::string& name)
    {
        const auto original = source.open(name, OpenMode::Read);
        const FileInfo info = original->info();
        const std::string temporary = archive::temporaryName(++m_serial);
        const auto file = target.open(temporary, OpenMode::CreateOrTruncate);
        base::PendingError unkept; // a disk that keeps no rights keeps the content
        unkept.attempt([&] { file->setMode(kOwnerAlone); }); // until it has its own
        copyBytes(*original, info.sizeBytes, *file);
        unkept.attempt([&] { file->setOwner(info.ownerId, info.groupId); });
        for (const platform::ExtendedAttribute& attribute : original->extendedAttributes())
            unkept.attempt([&] { file->setExtendedAttribute(attribute); });
        // Behind the attributes: nobody may set those of a file that is for reading alone.
        unkept.attempt([&] { file->setMode(info.mode); });
        file->setTimes(info.accessedNs, info.modifiedNs);
        file->close();
        m_progress.yieldNowAndThen();
        m_committer->add({.folderPath = target.path(),
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
                m_progress.add(n);
                m_progress.yieldNowAndThen();
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

    FileSystem& m_fileSystem;
    Progress& m_progress;
    std::optional<engine::Committer> m_committer;
    std::uint64_t m_serial = 0;
    std::vector<CopiedFolder> m_folders;
};

// Raises what the file system raises.
void copyArchive(const SpaceCheckContext& context, std::string_view profileName,
                 std::string_view oldDestination, std::string_view newDestination)
{
    FileSystem& fileSystem = context.machine.fileSystem;
    const std::string from = platform::joinPath(oldDestination, profileName);
    const std::string to = platform::joinPath(newDestination, profileName);
    const auto held = fileSystem.lockFolder(from);
    Progress progress(context);
    const std::uint64_t bytes = sizeOf(fileSystem, from, progress);
    const platform::Space space = spaceOf(context, newDestination, sGetdrivename(newDestination));
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
    progress.setTotal(bytes);
    ArchiveCopy(fileSystem, progress).copy(from, to);
}

} // namespace

std::string sGetdrivename(std::string_view text)
{
    const std::size_t bracket = text.find('[');
    const std::size_t colon = text.find(':');
    // `Local Drives[C]` has its letter behind the bracket, and no colon.
    if (colon == std::string_view::npos && bracket + 2 < text.size() && text[bracket + 2] == ']')
        return std::string(1, text[bracket + 1]) + ":\\";
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
    constexpr std::string_view kName = "CheckspaceFornew";
    base::PendingError failure;
    std::string which;
    try {
        const trace::TraceScope scope(context.trace.trace, kName);
        copyArchive(context, profileName, oldDestination, newDestination);
    } catch (const base::RuntimeError& error) {
        failure.set(error);
        which = fmt::format("{}: {}", kName, error.what()); // the path, too, and the reason
    }
    trace::errorTail(context.trace, {kName, kName, kModule, which}, failure);
}

} // namespace vardelin::runs
