#include "runs/engine/folder_rights.h"

#include "archive/entry_names.h"
#include "base/runtime_error.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/encrypted_copy.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

struct Record {
    archive::FolderMeta meta;
    std::vector<platform::ExtendedAttribute> attributes;
    bool own = false; // of the folder itself, not taken over from above
};

class Records {
public:
    Records(platform::FileSystem& files, const std::string& root, const KeyRing& ring)
        : m_files(files), m_root(root), m_reader(&ring)
    {
    }

    std::vector<Gap> damaged;

    const std::optional<Record>& of(const std::string& sourceFolder)
    {
        const auto known = m_known.find(sourceFolder);
        if (known != m_known.end())
            return known->second;
        std::optional<Record> record = read(sourceFolder);
        const std::string parent(platform::parentOf(sourceFolder));
        if (!record && !parent.empty()) {
            record = of(parent);
            if (record) {
                record->own = false;
                record->attributes.clear();
            }
        }
        return m_known.emplace(sourceFolder, std::move(record)).first->second;
    }

private:
    std::optional<Record> read(const std::string& sourceFolder)
    {
        std::unique_ptr<platform::Folder> folder;
        std::string name;
        try {
            folder = m_files.openFolder(archivePathOf(m_root, sourceFolder));
            const ArchiveFolder names(folder->list());
            if (names.folderRecords().empty())
                return std::nullopt;
            name = names.folderRecords().front();
        } catch (const RuntimeError&) {
            return std::nullopt; // no folder of its own in the archive
        }
        Record record{archive::parseFolderRecordName(name).value(), {}, true};
        try {
            record.attributes = readFolderRecord(*folder, name, sourceFolder, m_reader);
        } catch (const PasswordError&) { // NOLINT(bugprone-empty-catch): the name tells the rest
        } catch (const RuntimeError& error) {
            damaged.push_back(
                {sourceFolder, "the record of its rights: " +
                                   (error.reason().empty() ? error.what() : error.reason())});
        }
        return record;
    }

    platform::FileSystem& m_files;
    const std::string& m_root;
    CopyReader m_reader;
    std::map<std::string, std::optional<Record>> m_known;
};

} // namespace

std::vector<platform::ExtendedAttribute> readFolderRecord(platform::Folder& archive,
                                                          std::string_view fileName,
                                                          const std::string& sourceFolder,
                                                          CopyReader& reader)
{
    const auto refuse = [](const char* reason) {
        throw RuntimeError(base::error_number::kDeviceIo, {}, reason);
    };
    const auto file = archive.open(fileName, platform::OpenMode::Read);
    CopyHeader header = reader.read(*file, [](std::span<const std::byte>) {});
    if (header.kind != ItemKind::Folder || header.path != sourceFolder)
        refuse("it is of another folder");
    const auto named = archive::parseFolderRecordName(fileName);
    if (!named || header.mode != named->mode || header.ownerId != named->ownerId ||
        header.groupId != named->groupId || header.modifiedNs != named->modifiedNs)
        refuse("it says something else than its name");
    return std::move(header.attributes);
}

std::vector<Gap> applyFolderRights(platform::FileSystem& files, const std::string& root,
                                   const KeyRing& ring, TargetFolders& targets)
{
    Records records(files, root, ring);
    targets.eachMade([&](const std::string& sourceFolder, platform::Folder& above,
                         std::string_view name) {
        const std::optional<Record>& record = records.of(sourceFolder);
        if (!record)
            return;
        // Each of these takes rights that the user may lack; the files are there all the same.
        base::PendingError ignored;
        ignored.attempt([&] { above.setOwner(name, record->meta.ownerId, record->meta.groupId); });
        for (const auto& attribute : record->attributes)
            ignored.attempt([&] { above.setExtendedAttribute(name, attribute); });
        ignored.attempt([&] { above.setMode(name, record->meta.mode); });
        if (record->own)
            ignored.attempt(
                [&] { above.setTimes(name, record->meta.modifiedNs, record->meta.modifiedNs); });
    });
    return std::move(records.damaged);
}

} // namespace vardelin::engine
