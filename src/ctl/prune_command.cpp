#include "base/dates.h"
#include "ctl/commands.h"
#include "ctl/outcome_text.h"
#include "ctl/progress.h"
#include "ctl/text_forms.h"
#include "runs/engine/engine.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

void tell(const Session& session, const engine::PruneDecision& decision, Table& table)
{
    const engine::CopyRecord& copy = decision.copy;
    table.add({visibleText(copy.entry), sizeText(copy.storedBytes),
               base::isoDateTime(session.machine.clock.toLocal(copy.savedNs)), decision.reason});
    Json object{{"type", "pruneDecision"}};
    putText(object, "entry", copy.entry);
    putText(object, "path", copy.sourcePath);
    object["version"] = copy.version;
    object["storedBytes"] = copy.storedBytes;
    putInstant(object, "saved", copy.savedNs);
    object["keep"] = decision.keep;
    object["reason"] = decision.reason;
    session.output.object(object);
}

Json objectOf(const std::string& fileName, bool dryRun, const engine::PruneReport& report)
{
    Json object{{"type", "prune"}};
    putText(object, "profile", fileName);
    object["dryRun"] = dryRun;
    putOutcome(object, report.outcome, report.failure);
    object["removed"] = report.removed;
    object["removedBytes"] = report.removedBytes;
    object["failed"] = gapsOf(report.failed);
    return object;
}

int dryRun(Session& session, const std::string& fileName)
{
    engine::PruneReport report;
    Table table({Align::Left, Align::Right, Align::Left, Align::Left});
    table.add({"Entry", "Stored", "Saved", "Why it goes"});
    engine::planPrune(session.machine, session.profilePath(fileName),
                      [&](const engine::PruneDecision& decision) {
                          if (!decision.keep) {
                              ++report.removed;
                              report.removedBytes += decision.copy.storedBytes;
                              tell(session, decision, table);
                          }
                          return !session.terminal.interrupted();
                      });
    report.outcome = engine::outcomeOf({.failed = false,
                                        .cancelled = session.terminal.interrupted(),
                                        .gaps = false,
                                        .anything = report.removed > 0});
    if (table.hasRows())
        session.output.result(table.text());
    session.output.object(objectOf(fileName, true, report));
    session.output.note(fmt::format("{} would go, {}", countText(report.removed, "copy", "copies"),
                                    sizeText(report.removedBytes)));
    return exitCodeOf(report.outcome);
}

} // namespace

int runPrune(Session& session, const PruneCommand& command)
{
    const std::string fileName = savedProfile(session, command.name);
    if (command.dryRun)
        return dryRun(session, fileName);
    engine::PruneReport report;
    {
        ProgressLine line(session.terminal, session.machine.clock,
                          !session.output.json() && !session.output.quiet());
        std::uint64_t count = 0;
        report =
            engine::pruneArchive(session.machine, session.appPath(), session.profilePath(fileName),
                                 [&](std::string_view entry) {
                                     ++count;
                                     if (line.isDue())
                                         line.draw(countText(count, "copy  ", "copies  "), entry);
                                     return !session.terminal.interrupted();
                                 });
    }
    for (const engine::Gap& gap : report.failed)
        session.output.result(fmt::format("kept  {}: {}\n", visibleText(session.shown(gap.path)),
                                          visibleText(gap.reason)));
    session.output.object(objectOf(fileName, false, report));
    session.output.note(fmt::format(
        "{}: {} removed, {} freed", visibleText(fileName.substr(0, fileName.size() - 4)),
        countText(report.removed, "copy", "copies"), sizeText(report.removedBytes)));
    return exitCodeOf(report.outcome);
}

} // namespace vardelin::ctl
