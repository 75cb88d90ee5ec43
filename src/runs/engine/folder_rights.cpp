#include "runs/engine/folder_rights.h"

#include "archive/entry_names.h"
#include "base/runtime_error.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/encrypted_copy.h"

#include <algorithm>
#include <map>
#include <optional>
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
        try {
            const auto folder = m_files.openFolder(archivePathOf(m_root, sourceFolder));
            const ArchiveFolder names(folder->list());
            if (names.folderRecords().empty())
                return std::nullopt;
            const std::string_view name = names.folderRecords().front();
            Record record{archive::parseFolderRecordName(name).value(), {}, true};
            const auto file = folder->open(name, platform::OpenMode::Read);
            try {
                CopyHeader header = m_reader.readHeader(*file);
                if (!isOf(header, sourceFolder, record.meta))
                    return std::nullopt;
                record.attributes = std::move(header.attributes);
            } catch (
                const PasswordError&) { // NOLINT(bugprone-empty-catch): the name tells the rest
            }
            return record;
        } catch (const RuntimeError&) {
            return std::nullopt; // a damaged record costs the rights, never the files
        }
    }

    static bool isOf(const CopyHeader& header, const std::string& sourceFolder,
                     const archive::FolderMeta& meta)
    {
        return header.kind == ItemKind::Folder && header.path == sourceFolder &&
               header.mode == meta.mode && header.ownerId == meta.ownerId &&
               header.groupId == meta.groupId && header.modifiedNs == meta.modifiedNs;
    }

    platform::FileSystem& m_files;
    const std::string& m_root;
    CopyReader m_reader;
    std::map<std::string, std::optional<Record>> m_known;
};

} // namespace

void applyFolderRights(platform::FileSystem& files, const std::string& root, const KeyRing& ring,
                       const TargetFolders& targets)
{
    Records records(files, root, ring);
    auto made = targets.made();
    std::reverse(made.begin(), made.end());
    for (const std::string& sourceFolder : made) {
        const std::optional<Record>& record = records.of(sourceFolder);
        if (!record)
            continue;
        const std::string path = targets.pathOf(sourceFolder);
        // Each of these takes rights that the user may lack; the files are there all the same.
        base::PendingError ignored;
        ignored.attempt([&] {
            const auto parent = files.openFolder(platform::parentOf(path));
            const std::string_view name = platform::leafOf(path);
            ignored.attempt(
                [&] { parent->setOwner(name, record->meta.ownerId, record->meta.groupId); });
            for (const auto& attribute : record->attributes)
                ignored.attempt([&] { parent->setExtendedAttribute(name, attribute); });
            parent->setMode(name, record->meta.mode);
            if (record->own)
                parent->setTimes(name, record->meta.modifiedNs, record->meta.modifiedNs);
        });
    }
}

} // namespace vardelin::engine
