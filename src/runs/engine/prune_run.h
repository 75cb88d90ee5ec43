#pragma once

#include "platform/machine.h"
#include "runs/engine/archive_folder.h"
#include "runs/engine/archive_place.h"
#include "runs/engine/copy_listing.h"
#include "runs/engine/key_slot.h"
#include "runs/engine/outcome.h"
#include "runs/engine/retention.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {

// One copy of a folder and what becomes of it. The pointer lives as long as the folder's listing.
struct JudgedCopy {
    const ListedCopy* copy = nullptr;
    Verdict verdict;
};

// Applies a retention rule to archive folders, each by itself. Removing is one step for each copy,
// and an archive with some of them gone is as whole as before, so that a crash needs no mending.
class Pruner {
public:
    // `nowNs` is the present for the rule. All must outlive this.
    Pruner(const platform::Machine& machine, const ArchivePlace& place, std::int64_t nowNs);

    bool keepsEverything() const;
    // Whether anything in a folder is to go, as far as names tell: cheap, and nothing is opened.
    bool finds(const ArchiveFolder& listing) const;
    // Every copy of the folder, in the folder's order.
    std::vector<JudgedCopy> judge(CatalogFolder& folder) const;

    // Removes what is to go from one folder, which need not exist any more. What cannot be removed
    // stands in `report` and the rest goes. `proceed` is called with each entry before it goes and
    // gives false to stop, which ends all that follows.
    void prune(const std::string& archivePath, PruneReport& report,
               const std::function<bool(std::string_view entry)>& proceed);
    // The same for a folder and all below it.
    void pruneTree(const std::string& archivePath, PruneReport& report,
                   const std::function<bool(std::string_view entry)>& proceed);

private:
    void prune(const std::string& archivePath, const ArchiveFolder& listing, PruneReport& report,
               const std::function<bool(std::string_view entry)>& proceed);
    // `savedNsOf` gives 0 where a copy does not tell.
    std::vector<Verdict>
    verdicts(const std::vector<const ListedCopy*>& copies,
             const std::function<std::int64_t(const ListedCopy&)>& savedNsOf) const;

    const platform::Machine& m_machine;
    const ArchivePlace& m_place;
    RetentionRule m_rule;
    std::int64_t m_nowNs;
    KeyRing m_ring; // for the headers of copies whose names tell no time
    bool m_stopped = false;
};

} // namespace vardelin::engine
