#include "runs/engine/restore_run.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "logs/run_records.h"
#include "platform/registry_text.h"
#include "runs/engine/archive_place.h"
#include "runs/engine/committer.h"
#include "runs/engine/copy_feed.h"
#include "runs/engine/copy_restorer.h"
#include "runs/engine/encrypted_copy.h"
#include "runs/engine/event_queue.h"
#include "runs/engine/folder_rights.h"
#include "runs/engine/restore_plan.h"
#include "runs/engine/settings_groups.h"
#include "runs/engine/target_folders.h"
#include "runs/engine/workers.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using platform::Folder;

constexpr double kWholeRestore = 100; // the increments of a restore add up to this
class RestoreRun {
public:
    RestoreRun(const platform::Machine& machine, const std::string& appPath,
               const RestoreRequest& request, const RunLink& link, RestoreReport& report,
               RestoreFlags& flags)
        : m_machine(machine), m_files(machine.fileSystem), m_appPath(appPath), m_request(request),
          m_link(link), m_report(report), m_flags(flags), m_startNs(machine.clock.nowNs()),
          m_place(openPlace(machine, request.profileFolder + request.profileFileName)),
          m_ring(request.password.value_or(m_place.profile.password)),
          m_serial(TargetFolders::firstSerialOf(m_place.root))
    {
        wipe(m_place.profile.password);
        m_place.ring = &m_ring;
    }

    // Whatever ends the run early, what it restored until then is counted, logged and reported.
    void run(const base::TextCollection& entries)
    {
        try {
            work(entries);
        } catch (const RuntimeError&) {
            m_failure = std::current_exception();
        }
        conclude(entries);
        if (m_failure)
            std::rethrow_exception(m_failure);
        if (m_firstFailed)
            throw RuntimeError(*m_firstFailed);
    }

private:
    void work(const base::TextCollection& entries)
    {
        std::optional<base::Date> asOf;
        if (m_request.date != "NULL") {
            asOf = base::parseDate(m_request.date);
            if (!asOf)
                throw RuntimeError(base::error_number::kInvalidCall, m_request.date,
                                   "not a date in the form D/M/YYYY");
        }
        const auto lock = lockArchive();
        RestorePlan plan = planRestore(m_machine, m_place, entries, asOf);
        m_report.lost = std::move(plan.lost);
        m_report.notMatched = std::move(plan.notMatched);
        m_flags.dateNotMatched = asOf && plan.anyFileEntry && !plan.anyMatched;

        std::vector<RestorePlan> settings;
        std::uint64_t steps = plan.copies;
        for (const std::string& group : plan.settingsGroups) {
            settings.push_back(planSettingsGroup(m_machine, m_place, group));
            steps += settings.back().copies;
        }
        m_unit = steps == 0 ? 0 : kWholeRestore / static_cast<double>(steps);
        if (steps == 0)
            m_link.onProgress(kWholeRestore);

        if (!m_request.location.empty())
            m_files.createFolders(m_request.location);
        restoreFiles(plan, m_request.location);
        for (std::size_t i = 0; i < settings.size() && !m_cancelled; ++i)
            restoreGroup(plan.settingsGroups[i], settings[i]);
    }

    std::unique_ptr<platform::FolderLock> lockArchive()
    {
        // Without an archive every entry is lost, and that is told by the flag.
        return m_files.folderExists(m_place.root) ? m_files.lockFolder(m_place.root) : nullptr;
    }

    void restoreFiles(RestorePlan& plan, const std::string& location)
    {
        TargetFolders targets(m_files, location, m_place.profile.sources,
                              TargetFolders::firstSerialOf(m_place.root));
        Committer committer(
            m_files, Committer::kGroup,
            {[this](const PendingCopy& copy) { count(copy.bytesRead); },
             [this](const PendingCopy& copy, const RuntimeError& error) {
                 fail(copy.sourcePath, error);
             }},
            [&](const std::string& sourceFolder) { return targets.reopen(sourceFolder); });
        HardLinks links;
        ChosenFolders folders(m_files, m_place.root, plan, &m_ring);
        CopyFeed feed([&] { return folders.next(); });
        const std::size_t count = workerCount(plan.copies);
        {
            EventQueue events;
            Workers workers(m_stop);
            workers.start(count, events, [&] {
                try {
                    CopyRestorer restorer(m_serial, m_ring);
                    while (!m_stop) {
                        const auto batch = feed.next();
                        if (!batch)
                            return;
                        restoreBatch(*batch->folder, *batch, restorer, targets, committer, links,
                                     events);
                    }
                } catch (...) {
                    const std::lock_guard lock(m_mutex);
                    if (!m_failure)
                        m_failure = std::current_exception();
                    m_stop = true;
                }
            });
            events.pump(
                count, [](const std::string&) {},
                [&](double units) {
                    m_link.onProgress(units);
                    if (m_link.cancelled()) {
                        m_cancelled = true;
                        m_stop = true;
                    }
                });
        }
        m_stop = false;
        committer.finish();
        joinHardLinks(targets, links, m_serial);
        for (Gap& gap : applyFolderRights(m_files, m_place.root, m_ring, targets))
            m_report.lost.push_back(std::move(gap));
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

    void restoreBatch(const ChosenFolder& place, const CopyBatch& batch, CopyRestorer& restorer,
                      TargetFolders& targets, Committer& committer, HardLinks& links,
                      EventQueue& events)
    {
        std::unique_ptr<Folder> archive;
        std::unique_ptr<Folder> target;
        try {
            target = targets.open(place.sourcePath);
        } catch (const RuntimeError& error) {
            failAll(place, batch, error);
            events.advance(m_unit * static_cast<double>(batch.count));
            return;
        }
        try {
            archive = m_files.openFolder(place.archivePath);
        } catch (const RuntimeError& error) {
            for (std::size_t i = batch.first; i < batch.first + batch.count; ++i)
                lose(place, place.copies[i], error.what());
            events.advance(m_unit * static_cast<double>(batch.count));
            return;
        }
        for (std::size_t i = batch.first; i < batch.first + batch.count && !m_stop; ++i) {
            const ChosenCopy& copy = place.copies[i];
            try {
                const RestoredCopy done =
                    restorer.restore(*archive, place.sourcePath, copy, *target);
                settle(*target, place.sourcePath, copy.sourceName(), done, committer);
                if (!done.linkGroup.empty()) {
                    const std::lock_guard lock(m_mutex);
                    links[done.linkGroup].push_back(
                        {place.sourcePath, copy.sourceName(), done.inode});
                }
            } catch (const TargetError& error) {
                if (error.number() == base::error_number::kDiskFull)
                    throw;
                fail(place.sourcePath + copy.sourceName(), error);
            } catch (const PasswordError& error) {
                const std::lock_guard lock(m_mutex);
                m_report.mismatched.push_back(
                    {place.sourcePath + copy.sourceName(), error.reason()});
            } catch (const RuntimeError& error) {
                lose(place, copy, error.reason().empty() ? error.what() : error.reason());
            }
            events.advance(m_unit);
        }
    }

    // A file that replaces another one waits until its data is on the disk, so that a power cut
    // leaves the old one or the new one. A new name has nothing to lose that the archive does not
    // still hold, and flushing a whole restore would take longer than writing it.
    void settle(Folder& target, const std::string& sourceFolder, const std::string& name,
                const RestoredCopy& done, Committer& committer)
    {
        try {
            if (target.find(name)) {
                PendingCopy copy;
                copy.folderPath = sourceFolder;
                copy.temporaryName = done.temporaryName;
                copy.finalName = name;
                copy.sourcePath = sourceFolder + name;
                copy.bytesRead = done.bytes;
                committer.add(std::move(copy));
            } else {
                try {
                    target.rename(done.temporaryName, name);
                } catch (const RuntimeError&) {
                    base::PendingError ignored; // the error that led here is the one to tell
                    ignored.attempt([&] { target.removeFile(done.temporaryName); });
                    throw;
                }
                count(done.bytes);
            }
        } catch (const RuntimeError& error) {
            base::PendingError ignored;
            ignored.attempt([&] { target.removeFile(done.temporaryName); });
            throw TargetError(error.number(), error.subject(), error.reason());
        }
    }

    // A file counts when it has its name.
    void count(std::uint64_t bytes)
    {
        const std::lock_guard lock(m_mutex);
        ++m_report.filesRestored;
        m_report.bytesRestored += bytes;
    }

    void failAll(const ChosenFolder& place, const CopyBatch& batch, const RuntimeError& error)
    {
        if (batch.count == 0)
            fail(place.sourcePath, error);
        for (std::size_t i = batch.first; i < batch.first + batch.count; ++i)
            fail(place.sourcePath + place.copies[i].sourceName(), error);
    }

    void fail(std::string path, const RuntimeError& error)
    {
        const std::lock_guard lock(m_mutex);
        if (!m_firstFailed)
            m_firstFailed = RuntimeError(error.number(), path, error.reason());
        m_report.failed.push_back({std::move(path), error.reason().empty()
                                                        ? std::string(error.description())
                                                        : error.reason()});
    }

    void lose(const ChosenFolder& place, const ChosenCopy& copy, std::string reason)
    {
        const std::lock_guard lock(m_mutex);
        m_report.lost.push_back({place.sourcePath + copy.sourceName(), std::move(reason)});
    }

    void restoreGroup(const std::string& group, RestorePlan& settings)
    {
        if (settings.copies == 0) {
            m_report.lost.push_back({group, "the archive holds no such settings"});
            return;
        }
        const auto gapCount = [this] { return m_report.lost.size() + m_report.mismatched.size(); };
        const std::size_t gapsBefore = gapCount();
        const std::uint64_t filesBefore = m_report.filesRestored;
        // What lies right in the group's folder is a text to import; the rest are files.
        if (settings.folders.front().sourcePath.empty()) {
            for (const ChosenCopy& copy : settings.folders.front().copies)
                importText(group, settings.folders.front(), copy);
            settings.folders.erase(settings.folders.begin());
        }
        restoreFiles(settings, {});
        m_report.filesRestored = filesBefore; // the log counts files, and settings are none
        if (gapCount() == gapsBefore)
            m_report.settingsRestored.push_back(group);
    }

    void importText(const std::string& group, const ChosenFolder& place, const ChosenCopy& copy)
    {
        try {
            const auto folder = m_files.openFolder(place.archivePath);
            const std::string text = CopyRestorer(m_serial, m_ring).readText(*folder, copy);
            platform::applyRegistryChanges(m_machine.registry, platform::parseRegistryText(text));
        } catch (const PasswordError& error) {
            m_report.mismatched.push_back({group, error.reason()});
        } catch (const RuntimeError& error) {
            m_report.lost.push_back({group, error.what()});
        }
        m_link.onProgress(m_unit);
    }

    void conclude(const base::TextCollection& entries)
    {
        m_flags.backupFilesLost = !m_report.lost.empty();
        m_report.keyDerivations = m_ring.derivations();
        m_flags.passwordMismatch = !m_report.mismatched.empty();
        const bool gaps = !m_report.lost.empty() || !m_report.mismatched.empty() ||
                          !m_report.failed.empty() || !m_report.notMatched.empty();
        m_report.outcome = outcomeOf({.failed = m_failure || m_firstFailed,
                                      .cancelled = m_cancelled,
                                      .gaps = gaps,
                                      .anything = !entries.empty()});
        const bool restored = m_report.filesRestored > 0 || !m_report.settingsRestored.empty();
        if (!leavesLogRecord(m_report.outcome, restored))
            return;
        logs::RestoreRecord record;
        record.profileName = m_place.stem;
        record.restoredPath = m_request.location.empty() ? "Original Location" : m_request.location;
        record.date = base::isoDateTime(m_machine.clock.toLocal(m_startNs));
        record.fileCount = m_report.filesRestored;
        try {
            logs::appendRestoreRecord(m_files, m_appPath, record);
        } catch (const RuntimeError&) {
            // The first error is the one to tell.
            if (!m_failure && !m_firstFailed)
                m_failure = std::current_exception();
        }
    }

    const platform::Machine& m_machine;
    platform::FileSystem& m_files;
    std::string m_appPath;
    const RestoreRequest& m_request;
    const RunLink& m_link;
    RestoreReport& m_report; // guarded by m_mutex while workers run
    RestoreFlags& m_flags;
    std::int64_t m_startNs;
    ArchivePlace m_place;
    KeyRing m_ring;
    std::atomic<std::uint64_t> m_serial;
    double m_unit = 0;
    bool m_cancelled = false;
    std::atomic<bool> m_stop = false;
    std::mutex m_mutex;
    std::exception_ptr m_failure;              // guarded by m_mutex while workers run
    std::optional<RuntimeError> m_firstFailed; // likewise
};

} // namespace

void runRestore(const platform::Machine& machine, const std::string& appPath,
                const RestoreRequest& request, const base::TextCollection& entries,
                const RunLink& link, RestoreReport& report, RestoreFlags& flags)
{
    RestoreRun(machine, appPath, request, link, report, flags).run(entries);
}

namespace {

void checkFolderRecord(platform::FileSystem& files, const ChosenFolder& folder, CopyReader& reader,
                       std::vector<Gap>& damaged)
{
    try {
        const auto archive = files.openFolder(folder.archivePath);
        readFolderRecord(*archive, folder.folderRecord, folder.sourcePath, reader);
    } catch (const PasswordError&) { // NOLINT(bugprone-empty-catch): the copies beside it tell
    } catch (const RuntimeError& error) {
        damaged.push_back({folder.archivePath + folder.folderRecord,
                           error.reason().empty() ? error.what() : error.reason()});
    }
}

} // namespace

VerifyReport runVerify(const platform::Machine& machine, std::string_view profilePath,
                       int samplePercent, const std::optional<std::string>& password,
                       const std::function<bool(std::string_view entry)>& progress)
{
    ArchivePlace place = openPlace(machine, profilePath);
    const KeyRing ring(password.value_or(place.profile.password));
    wipe(place.profile.password);
    place.ring = &ring;
    if (!machine.fileSystem.folderExists(place.root))
        throw RuntimeError(base::error_number::kPathNotFound, place.root,
                           "the profile has no archive yet");
    const auto lock = machine.fileSystem.lockFolder(place.root);
    VerifyReport report;
    AllCopies copies(machine, place);
    // The feed's are these three and `share`.
    std::vector<std::string> foreign;
    std::vector<Gap> damagedRecords;
    CopyReader recordReader(&ring);
    // Spread evenly: each copy adds its share, and is read when a whole one has come together.
    int share = 0;
    CopyFeed feed([&] {
        auto folder = copies.next(foreign);
        if (folder && !folder->folderRecord.empty())
            checkFolderRecord(machine.fileSystem, *folder, recordReader, damagedRecords);
        if (folder)
            std::erase_if(folder->copies, [&](const ChosenCopy&) {
                share += std::clamp(samplePercent, 1, 100);
                if (share < 100)
                    return true;
                share -= 100;
                return false;
            });
        return folder;
    });
    bool cancelled = false;
    std::atomic<bool> stop = false;
    std::mutex mutex; // guards report and failure
    std::exception_ptr failure;
    const std::size_t count = workerCount(std::numeric_limits<std::size_t>::max());
    {
        EventQueue events;
        Workers workers(stop);
        const auto checkBatch = [&](const CopyBatch& batch, CopyRestorer& restorer) {
            const ChosenFolder& folder = *batch.folder;
            for (std::size_t i = batch.first; i < batch.first + batch.count && !stop; ++i) {
                const ChosenCopy& copy = folder.copies[i];
                std::string path = folder.archivePath + copy.fileName;
                events.fileBegins(path);
                std::string damage;
                bool mismatched = false;
                std::uint64_t bytes = 0;
                try {
                    const auto archive = machine.fileSystem.openFolder(folder.archivePath);
                    bytes = restorer.check(*archive, folder.sourcePath, copy);
                } catch (const PasswordError& error) {
                    mismatched = true;
                    damage = error.reason();
                } catch (const RuntimeError& error) {
                    damage = error.reason().empty() ? error.what() : error.reason();
                }
                const std::lock_guard guard(mutex);
                ++report.copiesChecked;
                report.bytesChecked += bytes;
                if (!damage.empty())
                    (mismatched ? report.mismatched : report.damaged)
                        .push_back({std::move(path), std::move(damage)});
            }
        };
        workers.start(count, events, [&] {
            try {
                std::atomic<std::uint64_t> none = 0;
                CopyRestorer restorer(none, ring);
                while (!stop) {
                    const auto batch = feed.next();
                    if (!batch)
                        return;
                    checkBatch(*batch, restorer);
                }
            } catch (...) {
                const std::lock_guard guard(mutex);
                if (!failure)
                    failure = std::current_exception();
                stop = true;
            }
        });
        events.pump(
            count,
            [&](const std::string& path) {
                if (!progress(path)) {
                    cancelled = true;
                    stop = true;
                }
            },
            [](double) {});
    }
    if (failure)
        std::rethrow_exception(failure);
    report.foreign = std::move(foreign);
    report.damaged.insert(report.damaged.end(), damagedRecords.begin(), damagedRecords.end());
    for (auto* gaps : {&report.damaged, &report.mismatched})
        std::sort(gaps->begin(), gaps->end(),
                  [](const Gap& a, const Gap& b) { return a.path < b.path; });
    report.outcome = outcomeOf({.failed = false,
                                .cancelled = cancelled,
                                .gaps = !report.damaged.empty() || !report.mismatched.empty(),
                                .anything = report.copiesChecked > 0});
    return report;
}

} // namespace vardelin::engine
