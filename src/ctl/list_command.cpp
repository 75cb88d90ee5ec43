#include "archive/catalog.h"
#include "base/dates.h"
#include "base/text.h"
#include "ctl/archive_entries.h"
#include "ctl/commands.h"
#include "ctl/outcome_text.h"
#include "ctl/progress.h"
#include "ctl/secrets.h"
#include "ctl/text_forms.h"
#include "runs/engine/engine.h"

#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

using engine::CopyRecord;

class PatternTest {
public:
    PatternTest(const Session& session, std::string_view pattern)
        : m_session(session), m_pattern(pattern)
    {
    }

    // Of the whole path, in either form, or of the name alone.
    bool operator()(std::string_view path) const
    {
        if (m_pattern.empty())
            return true;
        const bool exact = m_session.files().isCaseSensitive();
        return matchesGlob(path, m_pattern, exact) ||
               matchesGlob(platform::leafOf(path), m_pattern, exact) ||
               matchesGlob(m_session.shown(path), m_pattern, exact);
    }

private:
    const Session& m_session;
    std::string_view m_pattern;
};

Json objectOf(const Session& session, const CopyRecord& copy)
{
    Json object{{"type", "copy"}};
    putText(object, "line", std::string(archive::kFilesGroup) + "\\" + copy.entry);
    putText(object, "entry", copy.entry);
    putText(object, "path", copy.sourcePath);
    putText(object, "nativePath", session.shown(copy.sourcePath));
    object["version"] = copy.version;
    object["form"] = copy.form == archive::Form::Compressed  ? "compressed"
                     : copy.form == archive::Form::Encrypted ? "encrypted"
                                                             : "stored";
    object["sizeBytes"] = copy.sizeBytes;
    object["storedBytes"] = copy.storedBytes;
    putInstant(object, "modified", copy.modifiedNs);
    putInstant(object, "saved", copy.savedNs);
    putText(object, "archiveFile", session.shown(copy.archivePath));
    return object;
}

// A source's copies stand together, and its path only in front of the first.
void addRow(const Session& session, Table& table, const CopyRecord& copy, bool isFirst)
{
    const auto date = [&](std::int64_t ns) {
        return base::isoDateTime(session.machine.clock.toLocal(ns));
    };
    table.add({isFirst ? visibleText(copy.sourcePath) : "",
               copy.version == 0 ? "full" : fmt::format("{}", copy.version),
               sizeText(copy.sizeBytes), sizeText(copy.storedBytes), date(copy.modifiedNs),
               date(copy.savedNs)});
}

} // namespace

int runList(Session& session, const ListCommand& command)
{
    const std::string profilePath = session.profilePath(savedProfile(session, command.name));
    const PatternTest matches(session, command.pattern);
    std::vector<CopyRecord> ofTable;
    bool any = false;
    engine::listCopies(session.machine, profilePath, [&](const CopyRecord& copy) {
        if (!matches(copy.sourcePath))
            return !session.terminal.interrupted();
        any = true;
        if (session.output.json())
            session.output.object(objectOf(session, copy));
        else if (command.versions)
            ofTable.push_back(copy);
        else
            session.output.result(
                fmt::format("{}\\{}\n", archive::kFilesGroup, visibleText(copy.entry)));
        return !session.terminal.interrupted();
    });
    if (session.terminal.interrupted())
        return kExitCancelled;
    if (!ofTable.empty()) {
        Table table(
            {Align::Left, Align::Right, Align::Right, Align::Right, Align::Left, Align::Left});
        table.add({"Source", "Version", "Size", "Stored", "Modified", "Saved"});
        // The full copy first, then the versions by number, whatever the folder's order is.
        std::vector<const CopyRecord*> order;
        order.reserve(ofTable.size());
        for (const CopyRecord& copy : ofTable)
            order.push_back(&copy);
        std::stable_sort(order.begin(), order.end(), [](const auto* a, const auto* b) {
            if (a->sourcePath != b->sourcePath)
                return base::naturalLess(a->sourcePath, b->sourcePath);
            return a->version < b->version;
        });
        const CopyRecord* former = nullptr;
        for (const CopyRecord* copy : order) {
            addRow(session, table, *copy,
                   former == nullptr || former->sourcePath != copy->sourcePath);
            former = copy;
        }
        session.output.result(table.text());
    }
    for (const std::string& group :
         savedGroups(session, engine::archiveRootOf(session.machine, profilePath))) {
        if (!matches(group))
            continue;
        any = true;
        session.output.result(fmt::format("{}\\{}\n", kSettingsHeading, group));
        session.output.object(Json{{"type", "settings"}, {"group", group}});
    }
    return any ? kExitDone : kExitNothing;
}

int runVerify(Session& session, const VerifyCommand& command)
{
    const std::string fileName = savedProfile(session, command.name);
    std::optional<std::string> password;
    if (command.passwordFile)
        password = secretFrom(session, *command.passwordFile);
    const auto start = session.machine.clock.steady();
    engine::VerifyReport report;
    std::optional<base::RuntimeError> failure;
    {
        ProgressLine line(session.terminal, session.machine.clock,
                          !session.output.json() && !session.output.quiet());
        std::uint64_t count = 0;
        try {
            report = engine::verifyArchive(
                session.machine, session.profilePath(fileName), command.samplePercent,
                [&](std::string_view entry) {
                    ++count;
                    if (line.isDue())
                        line.draw(countText(count, "copy  ", "copies  "), entry);
                    return !session.terminal.interrupted();
                },
                password);
        } catch (const base::RuntimeError& error) {
            failure = error;
            report.failure = engine::failureOf(error);
        }
    }
    for (const engine::Gap& gap : report.damaged)
        session.output.result(
            fmt::format("damaged  {}: {}\n", visibleText(gap.path), visibleText(gap.reason)));
    for (const engine::Gap& gap : report.mismatched)
        session.output.result(
            fmt::format("unread   {}: {}\n", visibleText(gap.path), visibleText(gap.reason)));
    Json foreign = Json::array();
    for (const std::string& path : report.foreign) {
        session.output.note(fmt::format("foreign  {}", visibleText(session.shown(path))));
        Json item;
        putText(item, "path", path);
        foreign.push_back(std::move(item));
    }
    Json object{{"type", "verify"}};
    putText(object, "profile", fileName);
    putOutcome(object, report.outcome, report.failure);
    object["copiesChecked"] = report.copiesChecked;
    object["bytesChecked"] = report.bytesChecked;
    object["damaged"] = gapsOf(report.damaged);
    object["mismatched"] = gapsOf(report.mismatched);
    object["foreign"] = std::move(foreign);
    session.output.object(object);
    if (failure)
        throw base::RuntimeError(*failure);
    session.output.note(
        fmt::format("{}: {} checked, {}, {} damaged, {} of another password, {} ({})",
                    visibleText(fileName.substr(0, fileName.size() - 4)),
                    countText(report.copiesChecked, "copy", "copies"),
                    sizeText(report.bytesChecked), report.damaged.size(), report.mismatched.size(),
                    countText(report.foreign.size(), "foreign file", "foreign files"),
                    durationText(session.machine.clock.steady() - start)));
    return exitCodeOf(report.outcome);
}

int runReview(Session& session, const ReviewCommand& command)
{
    const std::string fileName = savedProfile(session, command.name);
    engine::rebuildReviewFiles(session.machine, session.appPath(), session.profilePath(fileName));
    const std::string path = session.shown(archive::reviewFilesPath(session.appPath()));
    Json object{{"type", "review"}};
    putText(object, "path", path);
    session.output.object(object);
    session.output.note(fmt::format("Wrote {}", visibleText(path)));
    return kExitDone;
}

} // namespace vardelin::ctl
