#include "base/text.h"
#include "ctl/commands.h"
#include "ctl/secrets.h"
#include "ctl/text_forms.h"
#include "profile/list_file.h"
#include "profile/scramble_text.h"
#include "runs/engine/profile_reader.h"

#include <array>
#include <ostream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

constexpr std::array<std::string_view, 5> kPatterns{"none", "daily", "weekly", "monthly", "yearly"};

std::string retentionText(const engine::EngineProfile& profile)
{
    constexpr std::array<std::string_view, 9> kTexts{"not set",
                                                     "changes of yesterday and today",
                                                     "daily versions for the prior 30 days",
                                                     "weekly versions for the prior 4 weeks",
                                                     "monthly versions for the prior 3 months",
                                                     "yearly versions for the prior 3 years",
                                                     "the last {} versions",
                                                     "original version of files",
                                                     "the last {} days"};
    const auto option = static_cast<std::size_t>(profile.retentionOption);
    const std::string count =
        profile.retentionCount > 0 ? std::to_string(profile.retentionCount) : "?";
    return fmt::format("{}: {}", option, base::replaceAll(kTexts.at(option), "{}", count));
}

std::string scheduleText(const engine::ProfileSchedule& schedule)
{
    const auto pattern = static_cast<std::size_t>(schedule.pattern);
    std::string text =
        fmt::format("{}, every {}, at {}, from {} {}", kPatterns.at(pattern), schedule.recur,
                    schedule.timeAt, schedule.startDate, schedule.startTime);
    if (!schedule.days.empty())
        text += fmt::format(", days {}", schedule.days);
    if (!schedule.dates.empty())
        text += fmt::format(", dates {}", schedule.dates);
    if (!schedule.months.empty())
        text += fmt::format(", months {}, dates {}", schedule.months, schedule.yearDates);
    return text;
}

void addLine(std::string& text, std::string_view name, std::string_view value)
{
    text += fmt::format("{:<20}{}\n", name, visibleText(value));
}

void addList(std::string& text, std::string_view name, const std::vector<std::string>& values)
{
    for (const std::string& value : values) {
        addLine(text, name, value);
        name = "";
    }
}

std::string readable(const std::string& fileName, const engine::EngineProfile& profile)
{
    std::string text;
    addLine(text, "Profile", fileName);
    addList(text, "Sources", profile.sources);
    addList(text, "Include extensions", profile.includedExtensions);
    addList(text, "Exclude extensions", profile.excludedExtensions);
    addList(text, "Include names", profile.includeNames);
    addList(text, "Exclude names", profile.excludeNames);
    addList(text, "Settings", profile.otherData);
    addLine(text, "Destination", profile.destination);
    addLine(text, "Versions", retentionText(profile));
    addLine(text, "Compress", profile.compress ? "yes" : "no");
    addLine(text, "Encrypt", profile.encrypt ? "yes" : "no");
    if (profile.encrypt && !profile.hasPassword)
        addLine(text, "", std::string(kOpenKeyWarning));
    addLine(text, "Password",
            profile.hasPassword ? "set, hint: " + profile.hintQuestion : "not set");
    addLine(text, "Schedule", profile.schedule ? scheduleText(*profile.schedule) : "none");
    if (profile.idleMinutes)
        addLine(text, "When idle for", *profile.idleMinutes + " minutes");
    if (profile.queueCount)
        addLine(text, "When changed", "more than " + *profile.queueCount + " files");
    if (profile.warnPercent)
        addLine(text, "Warn below", *profile.warnPercent + " free");
    if (profile.confirmSize)
        addLine(text, "Confirm above", profile.confirmSize->size + " " + profile.confirmSize->unit);
    return text;
}

Json listOf(const std::vector<std::string>& values)
{
    Json list = Json::array();
    for (const std::string& value : values) {
        Json item;
        putText(item, "text", value);
        list.push_back(item.size() == 1 ? item["text"] : item);
    }
    return list;
}

Json objectOf(const std::string& fileName, const engine::EngineProfile& profile)
{
    Json object{{"type", "profile"}};
    putText(object, "profile", fileName);
    object["sources"] = listOf(profile.sources);
    object["includeExtensions"] = listOf(profile.includedExtensions);
    object["excludeExtensions"] = listOf(profile.excludedExtensions);
    object["includeNames"] = listOf(profile.includeNames);
    object["excludeNames"] = listOf(profile.excludeNames);
    object["otherData"] = listOf(profile.otherData);
    putText(object, "destination", profile.destination);
    object["retention"] = profile.retentionOption;
    object["retentionCount"] = profile.retentionCount;
    object["compress"] = profile.compress;
    object["encrypt"] = profile.encrypt;
    object["hasPassword"] = profile.hasPassword;
    if (profile.idleMinutes)
        putText(object, "idleMinutes", *profile.idleMinutes);
    if (profile.queueCount)
        putText(object, "queueCount", *profile.queueCount);
    if (profile.warnPercent)
        putText(object, "warnPercent", *profile.warnPercent);
    if (profile.confirmSize)
        putText(object, "confirmSize", profile.confirmSize->size + " " + profile.confirmSize->unit);
    if (profile.schedule) {
        const engine::ProfileSchedule& saved = *profile.schedule;
        Json schedule{{"pattern", kPatterns.at(static_cast<std::size_t>(saved.pattern))}};
        putText(schedule, "recur", saved.recur);
        putText(schedule, "timeAt", saved.timeAt);
        putText(schedule, "startDate", saved.startDate);
        putText(schedule, "startTime", saved.startTime);
        putText(schedule, "days", saved.days);
        putText(schedule, "dates", saved.dates);
        putText(schedule, "months", saved.months);
        putText(schedule, "yearDates", saved.yearDates);
        object["schedule"] = schedule;
    }
    return object;
}

} // namespace

int runProfileShow(Session& session, const ProfileShowCommand& command)
{
    const std::string fileName = savedProfile(session, command.name);
    const std::string path = session.profilePath(fileName);
    if (command.plain) {
        session.terminal.out << profile::unscrambleText(session.files().readAll(path));
        return kExitDone;
    }
    const engine::EngineProfile saved = engine::readProfile(session.files(), path);
    for (const std::string& problem : saved.problems)
        session.output.warning(problem);
    session.output.result(readable(fileName, saved));
    session.output.object(objectOf(fileName, saved));
    return kExitDone;
}

int runProfileList(Session& session)
{
    session.requireApplicationFolder();
    bool hasRecent = false;
    bool hasPrimary = false;
    profile::IsRecentProfile(session.profiles, hasRecent);
    profile::IsPrProFileExists(session.profiles, hasPrimary);
    bool any = false;
    for (const platform::FolderEntryInfo& entry : session.files().list(session.profilesFolder())) {
        if (entry.info.kind != platform::FileKind::Regular ||
            !base::endsWithIgnoringCase(entry.name, ".vdp"))
            continue;
        any = true;
        const bool primary =
            hasPrimary && base::equalsIgnoringCase(entry.name, session.frame.ST_Primary_Profile);
        const bool recent =
            hasRecent && base::equalsIgnoringCase(entry.name, session.frame.ST_Recent_Profile);
        session.output.result(fmt::format("{}{}{}\n", visibleText(entry.name),
                                          primary ? "  (primary)" : "",
                                          recent ? "  (recent)" : ""));
        Json object{{"type", "profileName"}};
        putText(object, "profile", entry.name);
        object["primary"] = primary;
        object["recent"] = recent;
        session.output.object(object);
    }
    return any ? kExitDone : kExitNothing;
}

} // namespace vardelin::ctl
