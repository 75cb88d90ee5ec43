#include "runs/engine/settings_store.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/settings_groups.h"

#include <memory>
#include <optional>
#include <utility>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

class SettingsPlanner {
public:
    SettingsPlanner(const platform::Machine& machine, const ArchivePlace& place, RunKeys& keys,
                    ScanPlan& plan, std::vector<Gap>& missed)
        : m_machine(machine), m_files(machine.fileSystem), m_place(place), m_keys(keys),
          m_plan(plan), m_missed(missed), m_reader(&keys.ring())
    {
    }

    void planGroup(std::int8_t number)
    {
        const std::string group = settingsGroupName(number);
        const std::string root = settingsFolder(m_place.root, group);
        std::string folderPath;
        std::optional<std::uint32_t> index;
        std::unique_ptr<ArchiveFolder> archive;
        for (SettingsItem& item : collectSettings(m_machine, group, &m_missed)) {
            if (item.sourcePath.empty()) {
                planDump(group, root, item);
                continue;
            }
            const std::string parent(platform::parentOf(item.sourcePath));
            if (parent != folderPath) {
                folderPath = parent;
                index.reset();
                archive = list(archivePathOf(root, parent));
            }
            planFile(number, root, folderPath, item, archive.get(), index);
        }
    }

    std::vector<PlannedDump> takeDumps() { return std::move(m_dumps); }

private:
    void planFile(std::int8_t number, const std::string& root, const std::string& folderPath,
                  const SettingsItem& item, const ArchiveFolder* archive,
                  std::optional<std::uint32_t>& index)
    {
        const std::string_view name = platform::leafOf(item.sourcePath);
        const platform::FileInfo& info = item.info;
        const ListedCopy* newest = archive == nullptr ? nullptr : archive->newest(name);
        if (newest != nullptr && newest->meta && newest->meta->sizeBytes == info.sizeBytes &&
            newest->meta->modifiedNs == info.modifiedNs &&
            accepts(archivePathOf(root, folderPath), *newest))
            return;
        if (!index) {
            index = static_cast<std::uint32_t>(m_plan.folders.size());
            m_plan.folders.push_back({folderPath, archivePathOf(root, folderPath), 0, 0});
        }
        PlannedFile file;
        file.sizeBytes = info.sizeBytes;
        file.name = m_plan.keep(name);
        file.folder = *index;
        file.kind = info.kind;
        file.group = number;
        if (newest != nullptr)
            file.earlierName = m_plan.keep(newest->fileName);
        m_plan.files.push_back(file);
    }

    void planDump(const std::string& group, const std::string& root, SettingsItem& item)
    {
        PlannedDump dump;
        const auto archive = list(root);
        dump.header.kind = ItemKind::Settings;
        dump.header.path = group + '\\' + item.relativeName;
        dump.header.contentHash = hashOf(platform::asBytes(item.bytes));
        dump.header.mode = 0600;
        dump.header.modifiedNs = m_machine.clock.nowNs();
        if (archive) {
            const ListedCopy* newest = archive->newest(item.relativeName);
            if (newest != nullptr && newest->meta && accepts(root, *newest) &&
                isSame(root, *newest, dump.header.contentHash))
                return;
            for (const ListedCopy& copy : archive->copies()) {
                if (copy.sourceName == item.relativeName)
                    dump.oldFiles.emplace_back(copy.fileName);
            }
        }
        dump.name = item.relativeName;
        dump.group = group;
        dump.archivePath = root;
        dump.content = std::move(item.bytes);
        m_dumps.push_back(std::move(dump));
    }

    bool accepts(const std::string& folder, const ListedCopy& copy)
    {
        return m_keys.accepts(copy.meta->passwordTag, copy.form, folder, copy.fileName);
    }

    bool isSame(const std::string& root, const ListedCopy& copy, const archive::ContentHash& hash)
    {
        try {
            const auto file =
                m_files.openFolder(root)->open(copy.fileName, platform::OpenMode::Read);
            return m_reader.readHeader(*file).contentHash == hash;
        } catch (const RuntimeError&) {
            return false; // unreadable: it is written again
        }
    }

    std::unique_ptr<ArchiveFolder> list(const std::string& path)
    {
        if (!m_files.folderExists(path))
            return nullptr;
        return std::make_unique<ArchiveFolder>(m_files.openFolder(path)->list());
    }

    const platform::Machine& m_machine;
    platform::FileSystem& m_files;
    const ArchivePlace& m_place;
    RunKeys& m_keys;
    ScanPlan& m_plan;
    std::vector<Gap>& m_missed;
    CopyReader m_reader;
    std::vector<PlannedDump> m_dumps;
};

} // namespace

std::vector<PlannedDump> planSettings(const platform::Machine& machine, const ArchivePlace& place,
                                      RunKeys& keys, ScanPlan& plan, std::vector<Gap>& missed)
{
    SettingsPlanner planner(machine, place, keys, plan, missed);
    for (std::size_t i = 0; i < kSettingsGroups.size(); ++i) {
        for (const std::string& wanted : place.profile.otherData) {
            if (base::equalsIgnoringCase(wanted, kSettingsGroups[i])) {
                planner.planGroup(static_cast<std::int8_t>(i));
                break;
            }
        }
    }
    return planner.takeDumps();
}

std::string settingsGroupName(std::int8_t group)
{
    return std::string(kSettingsGroups.at(static_cast<std::uint8_t>(group)));
}

std::string settingsFolder(std::string_view archiveRoot, std::string_view group)
{
    return std::string(archiveRoot) + "OtherData\\" + std::string(group) + '\\';
}

} // namespace vardelin::engine
