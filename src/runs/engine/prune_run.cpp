#include "runs/engine/prune_run.h"

#include "archive/catalog.h"
#include "base/runtime_error.h"
#include "runs/engine/archive_walk.h"
#include "runs/engine/engine.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

constexpr int kLastCount = 6; // the options that go by a count
constexpr int kLastDays = 8;

Gap gapOf(std::string path, const RuntimeError& error)
{
    return {std::move(path),
            error.reason().empty() ? std::string(error.description()) : error.reason()};
}

} // namespace

Pruner::Pruner(const platform::Machine& machine, const ArchivePlace& place, std::int64_t nowNs)
    : m_machine(machine),
      m_place(place), m_rule{place.profile.retentionOption, place.profile.retentionCount, 0},
      m_nowNs(nowNs)
{
}

bool Pruner::keepsEverything() const
{
    constexpr int kFirst = 1;
    constexpr int kLast = 8;
    const bool counted = m_rule.option == kLastCount || m_rule.option == kLastDays;
    return m_rule.option < kFirst || m_rule.option > kLast || (counted && m_rule.count <= 0);
}

std::vector<Verdict>
Pruner::verdicts(const std::vector<const ListedCopy*>& copies,
                 const std::function<std::int64_t(const ListedCopy&)>& savedNsOf) const
{
    std::map<std::string_view, std::vector<std::size_t>> bySource;
    for (std::size_t i = 0; i < copies.size(); ++i)
        bySource[copies[i]->sourceName].push_back(i);
    std::vector<Verdict> result(copies.size());
    const LocalDate localDate = [&](std::int64_t ns) { return m_machine.clock.toLocal(ns).date; };
    for (const auto& [source, places] : bySource) {
        std::vector<RetainedVersion> file;
        for (const std::size_t place : places) {
            const std::int64_t savedNs = savedNsOf(*copies[place]);
            file.push_back({copies[place]->version, {}});
            if (savedNs != 0)
                file.back().savedNs = savedNs;
        }
        std::vector<Verdict> judged = judgeVersions(file, m_rule, m_nowNs, localDate);
        for (std::size_t i = 0; i < places.size(); ++i)
            result[places[i]] = std::move(judged[i]);
    }
    return result;
}

bool Pruner::finds(const ArchiveFolder& listing) const
{
    if (keepsEverything())
        return false;
    // Most files have one copy or two, and of those nothing ever goes.
    std::vector<const ListedCopy*> copies;
    for (const ListedCopy& copy : listing.copies()) {
        const ListedCopy* newest = listing.newest(copy.sourceName);
        if (newest->version >= 2)
            copies.push_back(&copy);
    }
    if (copies.empty())
        return false;
    const auto judged =
        verdicts(copies, [](const ListedCopy& copy) { return copy.meta ? copy.meta->savedNs : 0; });
    return std::any_of(judged.begin(), judged.end(),
                       [](const Verdict& verdict) { return !verdict.keeps; });
}

std::vector<JudgedCopy> Pruner::judge(CatalogFolder& folder) const
{
    const std::vector<const ListedCopy*> copies = folder.inOrder();
    std::vector<Verdict> judged =
        verdicts(copies, [&](const ListedCopy& copy) { return folder.metaOf(copy).savedNs; });
    std::vector<JudgedCopy> result;
    for (std::size_t i = 0; i < copies.size(); ++i)
        result.push_back({copies[i], std::move(judged[i])});
    return result;
}

void Pruner::prune(const std::string& archivePath, PruneReport& report,
                   const std::function<bool(std::string_view)>& proceed)
{
    try {
        const ArchiveFolder listing(m_machine.fileSystem.openFolder(archivePath)->list());
        prune(archivePath, listing, report, proceed);
    } catch (const RuntimeError& error) {
        if (error.number() != base::error_number::kPathNotFound)
            report.failed.push_back(gapOf(archivePath, error));
    }
}

void Pruner::pruneTree(const std::string& archivePath, PruneReport& report,
                       const std::function<bool(std::string_view)>& proceed)
{
    try {
        ArchiveWalk walk(m_machine.fileSystem, m_place.root, archivePath);
        while (const ArchiveFolder* listing = walk.next()) {
            prune(walk.path(), *listing, report, proceed);
            if (m_stopped)
                return;
        }
    } catch (const RuntimeError& error) {
        report.failed.push_back(gapOf(archivePath, error));
    }
}

void Pruner::prune(const std::string& archivePath, const ArchiveFolder& listing,
                   PruneReport& report, const std::function<bool(std::string_view)>& proceed)
{
    if (m_stopped || keepsEverything())
        return;
    CopyReader reader(&m_ring);
    CatalogFolder folder(m_machine.fileSystem, m_place.root, archivePath, listing, reader);
    std::unique_ptr<platform::Folder> open;
    for (const JudgedCopy& judged : judge(folder)) {
        if (judged.verdict.keeps)
            continue;
        const std::string path = archivePath + std::string(judged.copy->fileName);
        if (proceed && !proceed(folder.entryOf(*judged.copy).value_or(path))) {
            m_stopped = true;
            return;
        }
        try {
            if (!open)
                open = m_machine.fileSystem.openFolder(archivePath);
            const auto info = open->find(judged.copy->fileName);
            open->removeFile(judged.copy->fileName);
            ++report.removed;
            report.removedBytes += info ? info->sizeBytes : 0;
        } catch (const RuntimeError& error) {
            report.failed.push_back(gapOf(path, error));
        }
    }
}

namespace {

ArchivePlace placeWithArchive(const platform::Machine& machine, std::string_view profilePath)
{
    ArchivePlace place = openPlace(machine, profilePath);
    if (!machine.fileSystem.folderExists(place.root))
        throw RuntimeError(base::error_number::kPathNotFound, place.root,
                           "the profile has no archive yet");
    return place;
}

} // namespace

void planPrune(const platform::Machine& machine, std::string_view profilePath,
               const std::function<bool(const PruneDecision&)>& each)
{
    const ArchivePlace place = placeWithArchive(machine, profilePath);
    const Pruner pruner(machine, place, machine.clock.nowNs());
    const KeyRing ring(place.profile.password);
    CopyReader reader(&ring);
    ArchiveWalk walk(machine.fileSystem, place.root, place.root);
    while (const ArchiveFolder* listing = walk.next()) {
        CatalogFolder folder(machine.fileSystem, place.root, walk.path(), *listing, reader);
        for (JudgedCopy& judged : pruner.judge(folder)) {
            auto record = folder.recordOf(*judged.copy);
            if (record &&
                !each({std::move(*record), judged.verdict.keeps, std::move(judged.verdict.reason)}))
                return;
        }
    }
}

PruneReport pruneArchive(const platform::Machine& machine, std::string_view appPath,
                         std::string_view profilePath,
                         const std::function<bool(std::string_view entry)>& proceed)
{
    const ArchivePlace place = placeWithArchive(machine, profilePath);
    const auto lock = machine.fileSystem.lockFolder(place.root);
    Pruner pruner(machine, place, machine.clock.nowNs());
    PruneReport report;
    bool cancelled = false;
    pruner.pruneTree(place.root, report, [&](std::string_view entry) {
        cancelled = !proceed(entry);
        return !cancelled;
    });
    // The list of stored copies must not name what is gone.
    if (report.removed > 0 && !place.profile.compress)
        archive::writeReviewFiles(machine.fileSystem, appPath, place.root);
    report.outcome = outcomeOf({.failed = false,
                                .cancelled = cancelled,
                                .gaps = !report.failed.empty(),
                                .anything = report.removed > 0});
    return report;
}

} // namespace vardelin::engine
