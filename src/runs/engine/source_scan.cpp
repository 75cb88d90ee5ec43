#include "runs/engine/source_scan.h"

#include "base/runtime_error.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/missed_reason.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_set>
#include <utility>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using platform::FileInfo;
using platform::FileKind;

struct FileId {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    friend bool operator==(const FileId&, const FileId&) = default;
};

struct FileIdHash {
    std::size_t operator()(const FileId& id) const noexcept
    {
        return static_cast<std::size_t>((id.device * 0x9e3779b97f4a7c15u) ^ id.inode);
    }
};

using FileIds = std::unordered_set<FileId, FileIdHash>;

FileId idOf(const FileInfo& info)
{
    return {info.device, info.inode};
}

// Rights that a folder without a record of its own takes over from the folder above it.
struct Rights {
    std::uint32_t mode = 0;
    std::uint32_t ownerId = 0;
    std::uint32_t groupId = 0;
    friend bool operator==(const Rights&, const Rights&) = default;
};

// A folder that waits for its turn.
struct Waiting {
    std::string path;            // ends in a backslash
    std::uint64_t device = 0;    // of the folder above; 0 for a source itself
    std::optional<Rights> above; // none for a source itself
    bool archiveMayExist = true;
    FileId id{}; // as it was listed; all zero for a source itself
};

class Scanner {
public:
    Scanner(const platform::Machine& machine, const Selection& selection, const ScanScope& scope,
            const std::function<bool(std::string_view)>& proceed,
            const FindsPrunable& findsPrunable)
        : m_machine(machine), m_files(machine.fileSystem), m_selection(selection), m_scope(scope),
          m_proceed(proceed), m_findsPrunable(findsPrunable), m_reader(&scope.keys.ring())
    {
    }

    ScanPlan run()
    {
        gatherForbidden();
        for (const std::string& source : m_selection.folderSources())
            scanFolderSource(source);
        for (const std::string& source : m_selection.fileSources())
            scanFileSource(source);
        // Inside a folder source, and so walked already unless a link or a mount stands between.
        for (const std::string& source : m_selection.nestedSources()) {
            if (source.back() == '\\')
                scanFolderSource(source);
            else
                scanFileSource(source);
        }
        if (m_selection.needsSystemScan()) {
            m_plan.anySourceFound = true;
            for (const platform::Drive& drive : m_machine.drives.list()) {
                if (drive.type == platform::DriveType::Fixed)
                    walk({std::string(1, drive.letter) + ":\\", 0, {}, true, {}}, false);
            }
        }
        return std::move(m_plan);
    }

private:
    // Folders that are never sources: this archive, the other archives beside it, and what the
    // application writes while it runs.
    void gatherForbidden()
    {
        forbid(m_scope.archiveRoot);
        for (const char* folder : {"Log", "Data", "Queue"})
            forbid(platform::joinPath(m_scope.appPath, folder));
        if (const auto info = m_files.find(m_scope.destination))
            m_destination = idOf(*info);
        for (const platform::Drive& drive : m_machine.drives.list())
            m_driveRoots.insert(drive.nativeRoot);
    }

    void forbid(const std::string& path)
    {
        if (const auto info = m_files.find(path))
            m_forbidden.insert(idOf(*info));
    }

    // Whether a path lies at or below a forbidden folder.
    bool liesInForbidden(std::string_view path)
    {
        while (!path.empty()) {
            const auto info = m_files.find(path);
            if (info && m_forbidden.contains(idOf(*info)))
                return true;
            path = platform::parentOf(path);
        }
        return false;
    }

    void scanFolderSource(const std::string& source)
    {
        const auto info = m_files.find(source);
        if (!info) {
            m_plan.vanishedSources.push_back(source);
            return;
        }
        m_plan.anySourceFound = true;
        if (info->kind != FileKind::Folder) {
            m_plan.missed.push_back({source, "it is no folder any more"});
            return;
        }
        if (liesInForbidden(source)) {
            m_plan.missed.push_back({source, "an archive, or a folder of the application itself"});
            return;
        }
        walk({platform::joinPath(source, ""), 0, {}, true, {}}, true);
    }

    void scanFileSource(const std::string& source)
    {
        const std::string folderPath(platform::parentOf(source));
        std::optional<FileInfo> info;
        std::unique_ptr<platform::Folder> folder;
        try {
            folder = m_files.openFolder(folderPath);
            info = folder->find(platform::leafOf(source));
        } catch (const RuntimeError&) {
            info.reset();
        }
        if (!info) {
            m_plan.vanishedSources.push_back(source);
            return;
        }
        m_plan.anySourceFound = true;
        // A whole folder was ticked above it: the file is taken already.
        m_current = idOf(folder->info());
        if (m_walked.contains(m_current) || liesInForbidden(folderPath))
            return;
        if (folderPath != m_singleFolder) {
            m_singleFolder = folderPath;
            m_singleArchive = listArchive(folderPath);
            m_singleIndex.reset();
        }
        takeEntry(folderPath, platform::leafOf(source), *info, m_singleArchive.get(),
                  m_singleIndex);
    }

    // Goes through a folder and all below it, without recursion: a tree may be as deep as it likes.
    // `everything` takes all files; else only what the system-wide rules name.
    void walk(Waiting first, bool everything)
    {
        std::vector<Waiting> stack;
        stack.push_back(std::move(first));
        while (!stack.empty()) {
            const Waiting next = std::move(stack.back());
            stack.pop_back();
            if (m_proceed && !m_proceed(next.path))
                return;
            try {
                visit(next, everything, stack);
            } catch (const RuntimeError& error) {
                // A system-wide search passes over what it may not enter and what vanished.
                if (everything)
                    m_plan.missed.push_back({next.path, missedFolderReason(error)});
            }
        }
    }

    void visit(const Waiting& place, bool everything, std::vector<Waiting>& stack)
    {
        const auto folder = m_files.openFolder(place.path);
        const FileInfo own = folder->info();
        // A folder that turned into a link after it was listed leads to what nobody has chosen.
        if (place.id != FileId{} && idOf(own) != place.id) {
            if (everything)
                m_plan.missed.push_back({place.path, kFolderReplaced});
            return;
        }
        if (m_forbidden.contains(idOf(own)))
            return;
        if (place.device != 0 && own.device != place.device && isOtherDrive(place.path))
            return;
        if (own.device != place.device && m_files.isPseudo(place.path))
            return;
        if (!m_walked.insert(idOf(own)).second)
            return;
        m_current = idOf(own);
        if (everything)
            takeFolder(place, own, *folder, stack);
        else
            searchFolder(place, own, *folder, stack);
    }

    bool isOtherDrive(const std::string& path)
    {
        std::string native = m_files.toNative(path);
        while (native.size() > 1 && native.back() == '/')
            native.pop_back();
        return m_driveRoots.contains(native);
    }

    void takeFolder(const Waiting& place, const FileInfo& own, platform::Folder& folder,
                    std::vector<Waiting>& stack)
    {
        const auto entries = folder.listWithInfo();
        const auto archive = place.archiveMayExist ? listArchive(place.path) : nullptr;
        const Rights rights{own.mode, own.ownerId, own.groupId};
        std::optional<std::uint32_t> index;
        const std::size_t firstChild = stack.size();
        std::size_t archived = 0; // subfolders that the archive has, too
        for (const platform::FolderEntryInfo& entry : entries) {
            if (entry.info.kind == FileKind::Folder) {
                std::string path = place.path + entry.name + '\\';
                if (idOf(own) == m_destination && holdsArchive(path, entry.name))
                    continue;
                const bool mayExist = archive && archive->hasSubfolder(entry.name);
                archived += mayExist ? 1 : 0;
                stack.push_back({std::move(path), own.device, rights, mayExist, idOf(entry.info)});
            } else {
                takeEntry(place.path, entry.name, entry.info, archive.get(), index);
            }
        }
        // The stack gives back the last one first; the disk's order reads better and seeks less.
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(firstChild), stack.end());
        const bool plain = place.above && *place.above == rights && !entries.empty() &&
                           folder.extendedAttributes().empty();
        recordFolder(place, own, plain, archive.get(), index);
        if (m_findsPrunable && archive && archived < archive->subfolders().size())
            noteGoneTrees(place.path, entries, *archive);
    }

    // What the archive has of folders that are gone grows no more, but its versions age as well.
    void noteGoneTrees(const std::string& sourceFolder,
                       const std::vector<platform::FolderEntryInfo>& entries,
                       const ArchiveFolder& archive)
    {
        std::unordered_set<std::string_view> present;
        for (const platform::FolderEntryInfo& entry : entries) {
            if (entry.info.kind == FileKind::Folder)
                present.insert(entry.name);
        }
        for (const std::string_view name : archive.subfolders()) {
            if (!present.contains(name))
                m_plan.goneTrees.push_back(archivePathOf(m_scope.archiveRoot, sourceFolder) +
                                           std::string(name) + '\\');
        }
    }

    // Other profiles' archives lie beside this one, each with its profile's copy in its root.
    bool holdsArchive(const std::string& path, const std::string& name)
    {
        return m_files.fileExists(path + name + ".vdp");
    }

    void recordFolder(const Waiting& place, const FileInfo& own, bool plain,
                      const ArchiveFolder* archive, std::optional<std::uint32_t>& index)
    {
        const archive::FolderMeta meta{own.mode, own.ownerId, own.groupId, own.modifiedNs};
        std::vector<std::string> old;
        if (archive != nullptr) {
            // Of two, which a power cut can leave, both go: nothing tells which one counts.
            const auto& records = archive->folderRecords();
            if (records.size() == 1 && isUpToDate(place.path, records.front(), meta))
                return;
            old.assign(records.begin(), records.end());
        }
        if (plain && old.empty())
            return;
        m_plan.folderRecords.push_back({folderIndex(place.path, index), meta, std::move(old)});
    }

    bool isUpToDate(const std::string& folderPath, std::string_view recordName,
                    archive::FolderMeta meta)
    {
        const auto record = archive::parseFolderRecordName(recordName);
        if (!record)
            return false;
        meta.passwordTag = record->passwordTag;
        meta.form = record->form;
        return record == meta &&
               m_scope.keys.accepts(meta.passwordTag, meta.form,
                                    archivePathOf(m_scope.archiveRoot, folderPath), recordName);
    }

    void searchFolder(const Waiting& place, const FileInfo& own, platform::Folder& folder,
                      std::vector<Waiting>& stack)
    {
        std::unique_ptr<ArchiveFolder> archive;
        std::optional<std::uint32_t> index;
        for (const platform::FolderEntry& entry : folder.list()) {
            if (entry.kind == FileKind::Folder) {
                std::string path = place.path + entry.name + '\\';
                if (!(idOf(own) == m_destination && holdsArchive(path, entry.name)))
                    stack.push_back({std::move(path), own.device, {}, true, {}});
                continue;
            }
            if (entry.kind != FileKind::Regular || !m_selection.isIncludedBySystemScan(entry.name))
                continue;
            const auto info = folder.find(entry.name);
            if (!info)
                continue;
            if (!archive)
                archive = listArchive(place.path);
            takeEntry(place.path, entry.name, *info, archive.get(), index);
        }
    }

    std::unique_ptr<ArchiveFolder> listArchive(const std::string& sourceFolder)
    {
        try {
            auto archive = std::make_unique<ArchiveFolder>(
                m_files.openFolder(archivePathOf(m_scope.archiveRoot, sourceFolder))->list());
            m_plan.archiveHasCopies = m_plan.archiveHasCopies || !archive->copies().empty();
            if (m_findsPrunable && m_findsPrunable(*archive))
                m_plan.prunableFolders.push_back(archivePathOf(m_scope.archiveRoot, sourceFolder));
            return archive;
        } catch (const RuntimeError& error) {
            // No folder yet: every file in it is new. Anything else must not look like that.
            if (error.number() != base::error_number::kPathNotFound &&
                error.number() != base::error_number::kFileNotFound)
                throw;
            return nullptr;
        }
    }

    void takeEntry(const std::string& folderPath, std::string_view name, const FileInfo& info,
                   const ArchiveFolder* archive, std::optional<std::uint32_t>& index)
    {
        if (m_selection.isExcluded(name))
            return;
        if (info.kind == FileKind::Other) {
            ++m_plan.skippedSpecial;
            return;
        }
        ++m_plan.filesScanned;
        const ListedCopy* newest = archive == nullptr ? nullptr : archive->newest(name);
        if (newest != nullptr && isUnchanged(folderPath, *newest, info))
            return;
        PlannedFile file;
        file.sizeBytes = info.sizeBytes;
        file.name = m_plan.keep(name);
        file.folder = folderIndex(folderPath, index);
        file.kind = info.kind;
        if (newest != nullptr) {
            file.earlierName = m_plan.keep(newest->fileName);
            file.version = static_cast<std::int16_t>(newest->version + 1);
            if (newest->meta && newest->meta->serial != 0)
                file.serial = newest->meta->serial + 1;
        }
        m_plan.files.push_back(file);
    }

    bool isUnchanged(const std::string& folderPath, const ListedCopy& newest, const FileInfo& info)
    {
        if (newest.meta)
            return newest.meta->sizeBytes == info.sizeBytes &&
                   newest.meta->modifiedNs == info.modifiedNs && accepts(folderPath, newest);
        // The name was too long to tell: the copy's own header does.
        try {
            const auto folder = m_files.openFolder(archivePathOf(m_scope.archiveRoot, folderPath));
            const auto file = folder->open(newest.fileName, platform::OpenMode::Read);
            const CopyHeader header = m_reader.readHeader(*file);
            return header.sizeBytes == info.sizeBytes && header.modifiedNs == info.modifiedNs &&
                   m_scope.keys.acceptsSlot(header.slot, newest.form);
        } catch (const RuntimeError&) {
            return false; // unreadable: better one version more
        }
    }

    bool accepts(const std::string& folderPath, const ListedCopy& copy)
    {
        return m_scope.keys.accepts(copy.meta->passwordTag, copy.form,
                                    archivePathOf(m_scope.archiveRoot, folderPath), copy.fileName);
    }

    std::uint32_t folderIndex(const std::string& folderPath, std::optional<std::uint32_t>& index)
    {
        if (!index) {
            index = static_cast<std::uint32_t>(m_plan.folders.size());
            m_plan.folders.push_back({folderPath, archivePathOf(m_scope.archiveRoot, folderPath),
                                      m_current.device, m_current.inode});
        }
        return *index;
    }

    const platform::Machine& m_machine;
    platform::FileSystem& m_files;
    const Selection& m_selection;
    const ScanScope& m_scope;
    const std::function<bool(std::string_view)>& m_proceed;
    const FindsPrunable& m_findsPrunable;
    ScanPlan m_plan;
    CopyReader m_reader;
    FileIds m_forbidden;
    FileIds m_walked;
    FileId m_current; // the folder whose entries are being taken
    FileId m_destination;
    std::unordered_set<std::string> m_driveRoots;
    // The folder of the single file source before, since single files of one folder come together.
    std::string m_singleFolder;
    std::unique_ptr<ArchiveFolder> m_singleArchive;
    std::optional<std::uint32_t> m_singleIndex;
};

} // namespace

TextRef ScanPlan::keep(std::string_view text)
{
    if (texts.size() + text.size() > UINT32_MAX)
        throw RuntimeError(base::error_number::kOverflow, {}, "too many files in one run");
    const TextRef ref{static_cast<std::uint32_t>(texts.size()),
                      static_cast<std::uint32_t>(text.size())};
    texts.append(text);
    return ref;
}

ScanPlan scanSources(const platform::Machine& machine, const Selection& selection,
                     const ScanScope& scope,
                     const std::function<bool(std::string_view folder)>& proceed,
                     const FindsPrunable& findsPrunable)
{
    return Scanner(machine, selection, scope, proceed, findsPrunable).run();
}

} // namespace vardelin::engine
