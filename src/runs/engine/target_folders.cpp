#include "runs/engine/target_folders.h"

#include "archive/entry_names.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/archive_header.h"

#include <algorithm>
#include <cstddef>

namespace vardelin::engine {

using base::RuntimeError;

namespace {

constexpr unsigned kCounterBits = 32; // the archive's number stands in the bits above
constexpr std::size_t kOwnDigits = 9; // with the mark in front

} // namespace

TargetFolders::TargetFolders(platform::FileSystem& files, std::string location,
                             std::vector<std::string> sources, std::uint64_t firstSerial)
    : m_files(files), m_location(std::move(location)),
      m_temporaries(archive::temporaryName(firstSerial).substr(0, kOwnDigits))
{
    for (std::string& source : sources)
        m_sources.push_back(source.ends_with('\\') ? std::move(source)
                                                   : std::string(platform::parentOf(source)));
    // From here on the location is this folder, whatever its name leads to later.
    if (!m_location.empty())
        openBase(m_location);
}

std::string TargetFolders::pathOf(std::string_view sourceFolder) const
{
    if (m_location.empty())
        return std::string(sourceFolder);
    return archivePathOf(platform::joinPath(m_location, ""), sourceFolder);
}

// The part of a target's path that is opened as it stands.
std::string TargetFolders::baseOf(std::string_view sourceFolder) const
{
    if (!m_location.empty())
        return m_location;
    std::string_view base = sourceFolder.substr(0, 3);
    for (const std::string& source : m_sources) {
        if (source.size() > base.size() && sourceFolder.starts_with(source) &&
            m_files.folderExists(source))
            base = source;
    }
    return std::string(base);
}

std::unique_ptr<platform::Folder> TargetFolders::openBase(const std::string& base)
{
    auto folder = m_files.openFolder(base);
    const platform::FileInfo info = folder->info();
    const FileId id{info.device, info.inode};
    const std::lock_guard lock(m_mutex);
    if (m_bases.emplace(base, id).first->second != id)
        throw RuntimeError(base::error_number::kPermissionDenied, base,
                           "it was exchanged for another folder during the run");
    return folder;
}

std::unique_ptr<platform::Folder> TargetFolders::walk(const std::string& sourceFolder, bool make,
                                                      std::size_t leave)
{
    const std::string base = baseOf(sourceFolder);
    std::string reached = base;
    if (!reached.ends_with('\\'))
        reached += '\\';
    const std::string whole = pathOf(sourceFolder);
    std::vector<std::string_view> names;
    for (const std::string_view name :
         base::split(std::string_view(whole).substr(reached.size()), "\\")) {
        if (!name.empty())
            names.push_back(name);
    }
    names.resize(names.size() - std::min(names.size(), leave));
    auto folder = openBase(base);
    for (const std::string_view name : names) {
        bool isNew = false;
        if (make && !folder->find(name)) {
            try {
                folder->createFolder(name);
                isNew = true;
            } catch (const RuntimeError& error) {
                // Another worker made it in the meantime.
                if (error.number() != base::error_number::kFileExists)
                    throw;
            }
        }
        folder = folder->openFolder(name, platform::Links::Refuse);
        reached.append(name).append("\\");
        if (isNew) {
            const platform::FileInfo info = folder->info();
            // The source folder that stands at the same depth.
            const std::string source =
                sourceFolder.substr(0, sourceFolder.size() - (whole.size() - reached.size()));
            const std::lock_guard lock(m_mutex);
            m_made.insert_or_assign(source, FileId{info.device, info.inode});
        }
    }
    if (make)
        clearOnce(*folder, sourceFolder);
    return folder;
}

// Before any worker writes to the folder: the others wait here meanwhile.
void TargetFolders::clearOnce(platform::Folder& folder, const std::string& sourceFolder)
{
    const std::lock_guard lock(m_mutex);
    if (m_made.contains(sourceFolder) || !m_cleared.insert(sourceFolder).second)
        return;
    // A folder that may be written and not listed keeps what it has.
    base::PendingError ignored;
    ignored.attempt([&] {
        for (const platform::FolderEntry& entry : folder.list()) {
            if (entry.name.starts_with(m_temporaries) && archive::isTemporaryName(entry.name) &&
                entry.kind != platform::FileKind::Folder)
                folder.removeFile(entry.name);
        }
    });
}

std::uint64_t TargetFolders::firstSerialOf(std::string_view archiveRoot)
{
    return packedHashOf(platform::asBytes(archiveRoot)) >> kCounterBits << kCounterBits;
}

std::unique_ptr<platform::Folder> TargetFolders::open(const std::string& sourceFolder)
{
    return walk(sourceFolder, true, 0);
}

std::unique_ptr<platform::Folder> TargetFolders::reopen(const std::string& sourceFolder)
{
    return walk(sourceFolder, false, 0);
}

void TargetFolders::eachMade(
    const std::function<void(const std::string& sourceFolder, platform::Folder& above,
                             std::string_view name)>& use)
{
    std::map<std::string, FileId> made;
    {
        const std::lock_guard lock(m_mutex);
        made = m_made;
    }
    for (auto place = made.rbegin(); place != made.rend(); ++place) {
        const std::string& sourceFolder = place->first;
        const FileId& id = place->second;
        base::PendingError ignored;
        ignored.attempt([&] {
            const auto above = walk(sourceFolder, false, 1);
            const std::string path = pathOf(sourceFolder);
            const std::string_view name = platform::leafOf(
                std::string_view(path).substr(0, path.size() - 1)); // without the backslash
            const auto info = above->find(name);
            if (info && info->kind == platform::FileKind::Folder &&
                FileId{info->device, info->inode} == id)
                use(sourceFolder, *above, name);
        });
    }
}

} // namespace vardelin::engine
