#include "runs/engine/backup_run.h"

#include "archive/catalog.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "logs/missed_report.h"
#include "logs/run_records.h"
#include "runs/engine/archive_place.h"
#include "runs/engine/committer.h"
#include "runs/engine/event_queue.h"
#include "runs/engine/file_saver.h"
#include "runs/engine/missed_reason.h"
#include "runs/engine/prune_run.h"
#include "runs/engine/renumbering.h"
#include "runs/engine/selection.h"
#include "runs/engine/settings_store.h"
#include "runs/engine/source_scan.h"
#include "runs/engine/workers.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using platform::Folder;

constexpr std::size_t kMostUnits = 30000; // the total crosses the interface as 16 bits
constexpr std::size_t kBatchFiles = 64;
constexpr std::uint64_t kBatchBytes = 8 * 1024 * 1024;
constexpr std::chrono::milliseconds kScanTick{50};
constexpr int kNotCounted = -1; // the version of a folder's record

// Consecutive files of one folder that one worker takes together.
struct Batch {
    std::size_t first = 0;
    std::size_t count = 0;
};

std::vector<Batch> batchesOf(const ScanPlan& plan)
{
    std::vector<Batch> batches;
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < plan.files.size(); ++i) {
        const PlannedFile& file = plan.files[i];
        const bool joins = !batches.empty() && batches.back().count < kBatchFiles &&
                           bytes + file.sizeBytes <= kBatchBytes &&
                           plan.files[i - 1].folder == file.folder;
        if (joins) {
            ++batches.back().count;
            bytes += file.sizeBytes;
        } else {
            batches.push_back({i, 1});
            bytes = file.sizeBytes;
        }
    }
    return batches;
}

class BackupRun {
public:
    BackupRun(const platform::Machine& machine, const std::string& appPath,
              std::string_view profileFolder, std::string_view profileFileName, const RunLink& link,
              const KeyCost& keyCost, BackupReport& report)
        : m_machine(machine), m_files(machine.fileSystem), m_appPath(appPath), m_link(link),
          m_report(report), m_startNs(machine.clock.nowNs()),
          m_place(openPlace(machine, std::string(profileFolder) + std::string(profileFileName))),
          m_selection(m_place.profile, machine.fileSystem.isCaseSensitive()), m_keyCost(keyCost),
          m_serial(static_cast<std::uint64_t>(m_startNs))
    {
        report.archiveRoot = m_place.root;
        report.warnings = m_place.profile.problems;
    }

    // Whatever ends the run early, what it saved until then is counted, logged and reported.
    void run()
    {
        try {
            work();
        } catch (const RuntimeError&) {
            if (!m_failure)
                m_failure = std::current_exception();
        }
        if (m_keys)
            m_report.keyDerivations = m_keys->ring().derivations();
        conclude();
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

private:
    void work()
    {
        checkWritable(m_place);
        if (!m_files.folderExists(m_place.destination))
            throw RuntimeError(base::error_number::kPathNotFound, m_place.destination,
                               "the destination does not exist");
        const bool isNewArchive = !m_files.folderExists(m_place.root);
        if (isNewArchive)
            m_files.createFolder(m_place.root);
        m_lock = m_files.lockFolder(m_place.root);
        m_report.full = isNewArchive;
        clearAfterCrash();

        m_keys.emplace(m_files, m_place, m_keyCost);
        do {
            scan();
            m_dumps.clear();
            if (!m_cancelled)
                m_dumps = planSettings(m_machine, m_place, *m_keys, m_plan, m_report.missed);
        } while (!m_cancelled && m_keys->settle());
        const bool anything =
            !m_plan.files.empty() || !m_plan.folderRecords.empty() || !m_dumps.empty();
        if (anything && !m_cancelled) {
            m_files.replaceFile(m_place.root + std::string(kRunMarker), {});
            try {
                m_saveOptions = {m_place.profile.compress, m_startNs, &m_machine.clock,
                                 m_keys->writeKey()};
                m_keys->keepSlotFile();
                save();
            } catch (const RuntimeError&) {
                if (!m_failure)
                    m_failure = std::current_exception();
            }
            finish();
        }
        prune();
        if (isNewArchive && !anything) {
            base::PendingError ignored; // an empty folder left behind harms nobody
            ignored.attempt([&] { m_files.removeFolder(m_place.root); });
        }
    }

    void clearAfterCrash()
    {
        const std::string marker = m_place.root + std::string(kRunMarker);
        if (!m_files.fileExists(marker))
            return;
        clearTemporaries(m_files, m_place.root);
        writeCompanions();
        m_files.removeFile(marker);
    }

    void removeMarker()
    {
        try {
            m_files.removeFile(m_place.root + std::string(kRunMarker));
        } catch (const RuntimeError& error) {
            // Somebody tidied up meanwhile; the lock is what holds the archive.
            if (error.number() != base::error_number::kFileNotFound)
                throw;
        }
    }

    // What lies beside the copies: the profile as it was at the last run, and the list for the
    // review where the copies are stored as they are.
    void writeCompanions()
    {
        m_files.replaceFile(m_place.root + std::string(platform::leafOf(m_place.profilePath)),
                            m_files.readAll(m_place.profilePath));
        if (!m_place.profile.compress)
            archive::writeReviewFiles(m_files, m_appPath, m_place.root);
    }

    void scan()
    {
        auto last = m_machine.clock.steady();
        const ScanScope scope{m_place.root, m_place.destination, m_appPath, *m_keys};
        m_plan = scanSources(
            m_machine, m_selection, scope,
            [&](std::string_view folder) {
                const auto now = m_machine.clock.steady();
                if (now - last >= kScanTick) {
                    last = now;
                    tellFile(folder);
                }
                return !m_cancelled;
            },
            [&](const ArchiveFolder& listing) { return m_pruner.finds(listing); });
        m_report.filesScanned = m_plan.filesScanned;
        m_report.skippedSpecial = m_plan.skippedSpecial;
        m_report.missed = std::move(m_plan.missed);
        // With every source gone nothing is missed: there is just nothing to do.
        if (m_plan.anySourceFound) {
            for (std::string& source : m_plan.vanishedSources)
                m_report.missed.push_back({std::move(source), "it does not exist any more"});
        }
    }

    void tellFile(std::string_view item)
    {
        m_link.onFile(item);
        if (m_link.cancelled())
            m_cancelled = true;
    }

    void save()
    {
        m_report.full = !m_plan.archiveHasCopies && !archiveHasCopies();
        renumber();
        const std::size_t steps = m_plan.files.size() + m_dumps.size();
        const std::size_t units = std::min(steps, kMostUnits);
        m_unit = steps == 0 ? 0 : static_cast<double>(units) / static_cast<double>(steps);
        m_link.onTotal(static_cast<std::int16_t>(units));

        const auto batches = batchesOf(m_plan);
        std::atomic<std::size_t> next = 0;
        const std::size_t count = workerCount(batches.size());
        {
            Workers workers(m_stop);
            workers.start(count, m_events, [&] { work(batches, next); });
            m_events.pump(
                count,
                [&](const std::string& path) {
                    tellFile(path);
                    if (m_cancelled)
                        m_stop = true;
                },
                m_link.onProgress);
        }
        if (!m_cancelled && !m_failure)
            saveFolderRecords();
        if (!m_cancelled && !m_failure)
            saveDumps();
    }

    // Files whose version numbers are at their end get new ones before anything is written.
    void renumber()
    {
        const auto isFull = [](const PlannedFile& file) {
            return file.group < 0 && file.version > archive::kHighestVersion;
        };
        const RetentionRule rule{m_place.profile.retentionOption, m_place.profile.retentionCount,
                                 0};
        const LocalDate localDate = [&](std::int64_t ns) {
            return m_machine.clock.toLocal(ns).date;
        };
        for (PlannedFile& file : m_plan.files) {
            if (!isFull(file))
                continue;
            const auto archive = m_files.openFolder(m_plan.folders[file.folder].archivePath);
            const auto done =
                renumberVersions(*archive, m_plan.text(file.name), rule, m_startNs, localDate);
            if (!done) {
                miss(m_plan.pathOf(file), "all 999 version numbers are taken, and its name is too "
                                          "long to number them anew");
                continue;
            }
            file.version = static_cast<std::int16_t>(done->highest + 1);
            file.serial = done->serial + 1;
            file.earlierName = m_plan.keep(done->newestName);
            m_report.pruned += done->removed;
            m_report.prunedBytes += done->removedBytes;
        }
        std::erase_if(m_plan.files, isFull);
    }

    // Whether the archive holds copies outside the folders of today's sources.
    bool archiveHasCopies()
    {
        std::vector<std::string> waiting{m_place.root};
        while (!waiting.empty()) {
            const std::string path = std::move(waiting.back());
            waiting.pop_back();
            for (const platform::FolderEntry& entry : m_files.openFolder(path)->list()) {
                if (entry.kind == platform::FileKind::Folder)
                    waiting.push_back(platform::joinPath(path, entry.name));
                else if (archive::parseCopyName(entry.name))
                    return true;
            }
        }
        return false;
    }

    // One worker's life. The first failure of the archive ends all of them.
    void work(const std::vector<Batch>& batches, std::atomic<std::size_t>& next)
    {
        try {
            FileSaver saver(m_saveOptions, m_serial);
            for (;;) {
                const std::size_t index = next++;
                if (index >= batches.size() || m_stop)
                    return;
                saveBatch(saver, batches[index]);
            }
        } catch (...) {
            const std::lock_guard lock(m_mutex);
            if (!m_failure)
                m_failure = std::current_exception();
            m_stop = true;
        }
    }

    void saveBatch(FileSaver& saver, const Batch& batch)
    {
        const PlannedFolder& place = m_plan.folders[m_plan.files[batch.first].folder];
        std::unique_ptr<Folder> source;
        std::unique_ptr<Folder> archive;
        try {
            source = m_files.openFolder(place.sourcePath);
        } catch (const RuntimeError& error) {
            missAll(batch, missedFolderReason(error));
            return;
        }
        // Below a folder that turned into a link lies what nobody has chosen.
        if (!place.isSame(source->info())) {
            missAll(batch, kFolderReplaced);
            return;
        }
        try {
            archive = openArchiveFolder(place.archivePath);
        } catch (const RuntimeError& error) {
            // A path that is too long for the archive concerns this folder alone.
            if (error.number() != base::error_number::kPathAccess)
                throw;
            missAll(batch, "its folder cannot be made in the archive: " + error.reason());
            return;
        }
        for (std::size_t i = batch.first; i < batch.first + batch.count && !m_stop; ++i)
            saveFile(saver, m_plan.files[i], place, *source, *archive);
    }

    std::unique_ptr<Folder> openArchiveFolder(const std::string& path)
    {
        try {
            return m_files.openFolder(path);
        } catch (const RuntimeError& error) {
            if (error.number() != base::error_number::kPathNotFound &&
                error.number() != base::error_number::kFileNotFound)
                throw;
        }
        m_files.createFolders(path);
        return m_files.openFolder(path);
    }

    void missAll(const Batch& batch, const std::string& reason)
    {
        for (std::size_t i = batch.first; i < batch.first + batch.count; ++i)
            miss(m_plan.pathOf(m_plan.files[i]), reason);
        m_events.advance(m_unit * static_cast<double>(batch.count));
    }

    void miss(std::string path, std::string reason)
    {
        const std::lock_guard lock(m_mutex);
        m_report.missed.push_back({std::move(path), std::move(reason)});
    }

    void saveFile(FileSaver& saver, const PlannedFile& file, const PlannedFolder& place,
                  Folder& source, Folder& archive)
    {
        const std::string path = m_plan.pathOf(file);
        m_events.fileBegins(path);
        const SaveTask task{source,
                            archive,
                            m_plan.text(file.name),
                            path,
                            m_plan.text(file.earlierName),
                            file.version,
                            file.serial,
                            file.kind};
        SaveResult result = saver.save(task, [&] {
            m_events.fileBegins(path);
            return !m_stop;
        });
        if (auto* saved = std::get_if<Saved>(&result)) {
            PendingCopy copy = pending(place.archivePath, *saved);
            copy.version = file.version;
            if (file.group >= 0) {
                copy.settingsGroup = settingsGroupName(file.group);
                if (file.earlierName.length > 0)
                    copy.replaced.emplace_back(m_plan.text(file.earlierName));
            }
            m_committer.add(std::move(copy));
        } else if (const auto* renewed = std::get_if<Renewed>(&result)) {
            if (renewed->oldName != renewed->newName)
                archive.rename(renewed->oldName, renewed->newName);
            const std::lock_guard lock(m_mutex);
            ++m_report.renewed;
        } else if (auto* missed = std::get_if<Missed>(&result)) {
            miss(path, std::move(missed->reason));
        }
        m_events.advance(m_unit);
    }

    static PendingCopy pending(const std::string& archivePath, Saved& saved)
    {
        PendingCopy copy;
        copy.folderPath = archivePath;
        copy.temporaryName = std::move(saved.temporaryName);
        copy.finalName = std::move(saved.finalName);
        copy.bytesRead = saved.bytesRead;
        copy.bytesStored = saved.bytesStored;
        return copy;
    }

    // Only what has its final name counts: a run that fails on the way claims nothing else.
    void count(const PendingCopy& copy)
    {
        if (copy.version == kNotCounted)
            return;
        const std::lock_guard lock(m_mutex);
        m_report.bytesRead += copy.bytesRead;
        m_report.bytesStored += copy.bytesStored;
        if (!copy.settingsGroup.empty()) {
            auto& saved = m_report.settingsSaved;
            if (std::find(saved.begin(), saved.end(), copy.settingsGroup) == saved.end())
                saved.push_back(copy.settingsGroup);
            return;
        }
        ++m_report.copiesWritten;
        ++(copy.version == 0 ? m_report.fullCopies : m_report.versions);
    }

    void saveFolderRecords()
    {
        FileSaver saver(m_saveOptions, m_serial);
        for (PlannedFolderRecord& record : m_plan.folderRecords) {
            const PlannedFolder& place = m_plan.folders[record.folder];
            try {
                const auto attributes = onSource(
                    [&] { return m_files.openFolder(place.sourcePath)->extendedAttributes(); });
                const auto archive = openArchiveFolder(place.archivePath);
                Saved saved =
                    saver.saveFolderRecord(*archive, place.sourcePath, record.meta, attributes);
                PendingCopy copy = pending(place.archivePath, saved);
                copy.version = kNotCounted;
                copy.replaced = std::move(record.oldRecords);
                m_committer.add(std::move(copy));
            } catch (const SourceError& error) {
                miss(place.sourcePath, error.what());
            } catch (const RuntimeError& error) {
                if (error.number() != base::error_number::kPathAccess)
                    throw;
                miss(place.sourcePath, "the folder's own rights could not be saved (" +
                                           std::string(error.what()) + ")");
            }
        }
    }

    void saveDumps()
    {
        FileSaver saver(m_saveOptions, m_serial);
        for (PlannedDump& dump : m_dumps) {
            tellFile(dump.group);
            if (m_cancelled)
                return;
            const auto archive = openArchiveFolder(dump.archivePath);
            Saved saved = saver.saveContent(*archive, dump.header, platform::asBytes(dump.content),
                                            dump.name);
            PendingCopy copy = pending(dump.archivePath, saved);
            copy.settingsGroup = dump.group;
            copy.replaced = std::move(dump.oldFiles);
            m_committer.add(std::move(copy));
            m_link.onProgress(m_unit);
        }
    }

    // What is saved comes to its names even when the run was stopped or failed on the way. The
    // marker goes only after a run that left nothing behind.
    void finish()
    {
        try {
            m_committer.finish();
            if (m_report.copiesWritten > 0 || !m_report.settingsSaved.empty())
                writeCompanions();
            if (!m_failure)
                removeMarker();
        } catch (const RuntimeError&) {
            if (!m_failure)
                m_failure = std::current_exception();
        }
    }

    // Only when all that the run saved is safe under its names, and also after a run that found
    // nothing new: versions age by themselves. Folders whose sources are gone are reached from the
    // folders above them.
    void prune()
    {
        if (m_cancelled || m_failure || m_pruner.keepsEverything())
            return;
        PruneReport pruned;
        const auto proceed = [&](std::string_view entry) {
            tellFile(entry);
            return !m_cancelled;
        };
        // A new version pushes older ones out where the scan saw nothing to go yet.
        for (const PlannedFile& file : m_plan.files) {
            if (file.version >= 2 && file.group < 0)
                m_plan.prunableFolders.push_back(m_plan.folders[file.folder].archivePath);
        }
        auto& folders = m_plan.prunableFolders;
        std::sort(folders.begin(), folders.end());
        folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
        for (const std::string& folder : folders)
            m_pruner.prune(folder, pruned, proceed);
        for (const std::string& tree : m_plan.goneTrees)
            m_pruner.pruneTree(tree, pruned, proceed);
        m_report.pruned += pruned.removed;
        m_report.prunedBytes += pruned.removedBytes;
        for (Gap& gap : pruned.failed)
            m_report.warnings.push_back(gap.path + " could not be removed: " + gap.reason);
        if (pruned.removed > 0 && !m_place.profile.compress)
            archive::writeReviewFiles(m_files, m_appPath, m_place.root);
    }

    void conclude()
    {
        std::sort(m_report.missed.begin(), m_report.missed.end(),
                  [](const Gap& a, const Gap& b) { return a.path < b.path; });
        const bool wrote = m_report.copiesWritten > 0 || !m_report.settingsSaved.empty();
        m_report.outcome = outcomeOf({.failed = m_failure != nullptr,
                                      .cancelled = m_cancelled,
                                      .gaps = !m_report.missed.empty(),
                                      .anything = wrote});
        if (!leavesLogRecord(m_report.outcome, wrote))
            return;
        try {
            writeRecord();
        } catch (const RuntimeError&) {
            // The first error is the one to tell.
            if (!m_failure)
                m_failure = std::current_exception();
        }
    }

    void writeRecord()
    {
        const base::DateTime when = m_machine.clock.toLocal(m_startNs);
        logs::BackupRecord record;
        record.profileName = m_place.stem;
        record.type = m_report.full ? logs::kFullRun : logs::kIncrementalRun;
        record.date = base::isoDateTime(when);
        record.fileCount = m_report.copiesWritten;
        record.skippedCount = m_report.missed.size();
        std::vector<logs::MissedFile> missed;
        for (const Gap& gap : m_report.missed)
            missed.push_back({gap.path, gap.reason});
        // The line of the log has no place for it, so the report tells how the run ended.
        if (m_failure)
            missed.push_back({m_place.root, "the run failed: " + failureText()});
        if (!missed.empty()) {
            m_report.missedReportPath =
                logs::writeMissedReport(m_files, m_appPath, m_place.stem, when, missed);
            record.missedReportPath = m_report.missedReportPath;
        }
        logs::appendBackupRecord(m_files, m_appPath, record);
    }

    std::string failureText() const
    {
        try {
            std::rethrow_exception(m_failure);
        } catch (const std::exception& error) {
            return error.what();
        }
    }

    const platform::Machine& m_machine;
    platform::FileSystem& m_files;
    std::string m_appPath;
    const RunLink& m_link;
    BackupReport& m_report; // counts and gaps are guarded by m_mutex while workers run
    std::int64_t m_startNs;
    ArchivePlace m_place;
    Selection m_selection;
    KeyCost m_keyCost;
    std::optional<RunKeys> m_keys;
    SaveOptions m_saveOptions;
    Pruner m_pruner{m_machine, m_place, m_startNs};
    ScanPlan m_plan;
    std::vector<PlannedDump> m_dumps;
    std::atomic<std::uint64_t> m_serial;
    std::unique_ptr<platform::FolderLock> m_lock; // until the run is concluded
    Committer m_committer{
        m_files, Committer::kGroup, {[this](const PendingCopy& copy) { count(copy); }, {}}};
    EventQueue m_events;
    double m_unit = 0;
    bool m_cancelled = false; // the caller's thread alone
    std::atomic<bool> m_stop = false;
    std::mutex m_mutex;
    std::exception_ptr m_failure; // guarded by m_mutex while workers run
};

} // namespace

void runBackup(const platform::Machine& machine, const std::string& appPath,
               std::string_view profileFolder, std::string_view profileFileName,
               const RunLink& link, const KeyCost& keyCost, BackupReport& report)
{
    BackupRun(machine, appPath, profileFolder, profileFileName, link, keyCost, report).run();
}

} // namespace vardelin::engine
