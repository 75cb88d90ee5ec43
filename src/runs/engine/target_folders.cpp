#include "runs/engine/target_folders.h"

#include "archive/entry_names.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/archive_header.h"

#include <utility>

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

std::unique_ptr<platform::Folder> TargetFolders::open(const std::string& sourceFolder)
{
    const std::string base = baseOf(sourceFolder);
    std::string reached = base;
    if (!reached.ends_with('\\'))
        reached += '\\';
    const std::string whole = pathOf(sourceFolder);
    auto folder = m_files.openFolder(base);
    for (const std::string_view name :
         base::split(std::string_view(whole).substr(reached.size()), "\\")) {
        if (name.empty())
            continue;
        bool isNew = false;
        if (!folder->find(name)) {
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
            // The source folder that stands at the same depth.
            const std::string source =
                sourceFolder.substr(0, sourceFolder.size() - (whole.size() - reached.size()));
            const std::lock_guard lock(m_mutex);
            m_made.insert(source);
        }
    }
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

std::vector<std::string> TargetFolders::made() const
{
    const std::lock_guard lock(m_mutex);
    return {m_made.begin(), m_made.end()};
}

} // namespace vardelin::engine
