#include "runs/engine/engine.h"

#include "archive/catalog.h"
#include "base/runtime_error.h"
#include "runs/engine/archive_place.h"
#include "runs/engine/backup_run.h"
#include "runs/engine/copy_listing.h"
#include "runs/engine/restore_run.h"
#include "runs/engine/selection.h"
#include "runs/engine/source_scan.h"

#include <utility>

namespace vardelin::engine {
namespace {

TruthValue truth(bool value)
{
    return value ? kTrue : kFalse;
}

} // namespace

Engine::Engine(const platform::Machine& machine, std::string appPath, EngineEvents& events)
    : m_machine(machine), m_appPath(std::move(appPath)), m_events(events)
{
}

void Engine::EngineBackup(std::string_view profileFolder, std::string_view profileFileName,
                          TruthValue& success)
{
    success = kFalse;
    RunLink link;
    link.onFile = [&](std::string_view item) { m_events.FileProStatus(item); };
    link.onProgress = [&](double increment) { m_events.ProStatus(increment); };
    link.onTotal = [&](std::int16_t units) { m_totalUnits = units; };
    link.cancelled = [&] { return m_cancelRequested != kFalse; };
    const auto keepFlags = [&] {
        m_missedFiles = truth(!m_backupReport.missed.empty());
        m_noFilesIdentified = truth(m_backupReport.outcome == Outcome::NothingToDo);
        success = truth(cameToItsEnd(m_backupReport.outcome));
    };
    try {
        runBackup(m_machine, m_appPath, profileFolder, profileFileName, link, m_keyCost,
                  m_backupReport);
    } catch (const base::RuntimeError& error) {
        m_backupReport.outcome = outcomeOf({.failed = true});
        m_backupReport.failure = failureOf(error);
        keepFlags();
        throw;
    }
    keepFlags();
}

void Engine::EngineRestore(std::string_view profileFolder, std::string_view profileFileName,
                           const base::TextCollection& clxnRestore,
                           std::string_view restoreLocation, std::string_view restoreDate)
{
    RunLink link;
    link.onFile = [](std::string_view) {};
    link.onProgress = [&](double increment) { m_events.ProStatus(increment); };
    link.onTotal = [](std::int16_t) {};
    link.cancelled = [&] { return m_cancelRequested != kFalse; };
    RestoreRequest request{std::string(profileFolder), std::string(profileFileName),
                           std::string(restoreLocation), std::string(restoreDate), m_password};
    // Both forms of a folder are taken; a drive's root keeps its backslash.
    while (request.location.size() > 3 && request.location.back() == '\\')
        request.location.pop_back();
    RestoreFlags flags;
    const auto keepFlags = [&] {
        m_backupFilesLost = truth(flags.backupFilesLost);
        m_passwordMismatch = truth(flags.passwordMismatch);
        m_dateNotMatched = truth(flags.dateNotMatched);
    };
    try {
        runRestore(m_machine, m_appPath, request, clxnRestore, link, m_restoreReport, flags);
    } catch (const base::RuntimeError& error) {
        m_restoreReport.outcome = outcomeOf({.failed = true});
        m_restoreReport.failure = failureOf(error);
        keepFlags();
        throw;
    }
    keepFlags();
}

BackupPlan planBackup(const platform::Machine& machine, std::string_view appPath,
                      std::string_view profilePath)
{
    ArchivePlace place = openPlace(machine, profilePath);
    checkWritable(place);
    const Selection selection(place.profile, machine.fileSystem.isCaseSensitive());
    RunKeys keys(machine.fileSystem, place, {});
    const ScanScope scope{place.root, place.destination, std::string(appPath), keys};
    ScanPlan scan;
    do {
        scan = scanSources(machine, selection, scope, {});
    } while (keys.settle());
    BackupPlan plan;
    plan.filesScanned = scan.filesScanned;
    for (const PlannedFile& file : scan.files)
        plan.copies.push_back({scan.pathOf(file), file.version, file.sizeBytes});
    plan.missed = std::move(scan.missed);
    if (scan.anySourceFound) {
        for (std::string& source : scan.vanishedSources)
            plan.missed.push_back({std::move(source), "it does not exist any more"});
    }
    plan.warnings = place.profile.problems;
    return plan;
}

void listCopies(const platform::Machine& machine, std::string_view profilePath,
                const std::function<bool(const CopyRecord&)>& each)
{
    const ArchivePlace place = openPlace(machine, profilePath);
    if (!machine.fileSystem.folderExists(place.root))
        throw base::RuntimeError(base::error_number::kPathNotFound, place.root,
                                 "the profile has no archive yet");
    // Only a copy whose name was too long to tell takes a key.
    const KeyRing ring(place.profile.password);
    eachCopy(machine.fileSystem, place.root, &ring, each);
}

VerifyReport verifyArchive(const platform::Machine& machine, std::string_view profilePath,
                           int samplePercent,
                           const std::function<bool(std::string_view entry)>& progress,
                           const std::optional<std::string>& password)
{
    return runVerify(machine, profilePath, samplePercent, password, progress);
}

std::string archiveRootOf(const platform::Machine& machine, std::string_view profilePath)
{
    return openPlace(machine, profilePath).root;
}

void rebuildReviewFiles(const platform::Machine& machine, std::string_view appPath,
                        std::string_view profilePath)
{
    const ArchivePlace place = openPlace(machine, profilePath);
    if (!machine.fileSystem.folderExists(place.root))
        throw base::RuntimeError(base::error_number::kPathNotFound, place.root,
                                 "the profile has no archive yet");
    archive::writeReviewFiles(machine.fileSystem, appPath, place.root);
}

} // namespace vardelin::engine
