#include "profile/default_profile.h"

#include "base/dates.h"
#include "base/text.h"
#include "profile/file_details.h"
#include "profile/profile_change.h"
#include "profile/profile_format.h"
#include "profile/replacing_file.h"
#include "profile/scrambler.h"
#include "trace/messages.h"

#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

using platform::RegistryRoot;

constexpr std::string_view kName = "Default.vdp";
constexpr std::string_view kModule = "modPrSaveOpen";
constexpr int kMessage = 40040;

constexpr std::string_view kSystemKey = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr std::string_view kSystemValue = "ProductName";
constexpr std::size_t kShortNamePosition = 18; // from 1: the blank behind "Microsoft Windows"
constexpr std::string_view kMailProgramKey =
    "SOFTWARE\\Classes\\CLSID\\{00020D09-0000-0000-C000-000000000046}\\LocalServer32";

constexpr int kStartMinutes = 1;
constexpr int kDailyMinutes = 5;

// Such as `XP`; empty where the system does not say.
std::string shortSystemName(platform::Registry& registry)
{
    const std::string name =
        registry.stringValue(RegistryRoot::LocalMachine, kSystemKey, kSystemValue).value_or("");
    if (name.size() < kShortNamePosition)
        return {};
    return std::string(base::trim(std::string_view(name).substr(kShortNamePosition - 1)));
}

std::vector<std::string> sourceLines(ProfileContext& context)
{
    auto lines = context.machine.shell.defaultDocumentLines();
    if (!lines.empty())
        return lines;
    const std::string system = shortSystemName(context.machine.registry);
    if (system == "95" || system == "98" || system == "ME" || !context.frame.BL_Is_NT)
        return {"C:\\My Documents\\"};
    const std::string documents =
        fmt::format("C:\\Documents and Settings\\{}\\My Documents\\", GetRegUserName(context));
    if (system == "XP")
        return {documents, documents + "My Music\\"};
    return {documents};
}

bool hasMailProgram(platform::Registry& registry)
{
    return !registry.stringValue(RegistryRoot::LocalMachine, kMailProgramKey, "")
                .value_or("")
                .empty();
}

void printSection(ReplacingFile& file, const format::Section& section,
                  const std::vector<std::string>& lines)
{
    file.print(section.opening);
    for (const std::string& line : lines)
        file.print(line);
    file.print(section.closing);
}

void print(ProfileContext& context, ReplacingFile& file)
{
    const base::DateTime now = context.machine.clock.now();
    const auto inMinutes = [&](int minutes) {
        return base::timeText(base::addMinutes(now.time, minutes));
    };
    std::vector<std::string> otherData{"Desktop Settings", "IE Favorites"};
    if (hasMailProgram(context.machine.registry))
        otherData.emplace_back("Outlook Settings");

    file.print(fmt::format("[{}]", kName));
    printSection(file, format::kSourceFiles, sourceLines(context));
    printSection(file, format::kExcludedOptions, {});
    printSection(file, format::kIncludedOptions, {});
    printSection(file, format::kOtherData, otherData);
    printSection(file, format::kDestinationPath, {context.frame.ST_App_Path + "\\BackupPackages"});
    printSection(file, format::kPassword, {"False"});
    printSection(file, format::kFreeSpaceWarn, {"False"});
    printSection(file, format::kSystemIdle, {"False"});
    printSection(file, format::kConfirmBackup, {"False"});
    printSection(file, format::kThresholdQueue, {"True", "Count=50"});
    printSection(file, format::kScheduling,
                 {"Start Date = " + base::monthDayYear(now.date),
                  "Start Time = " + inMinutes(kStartMinutes), "RecurrencePattern = 1", "Recur =1",
                  "TimeAt= " + inMinutes(kDailyMinutes)});
    file.print("Backup versions = 6?7");
    file.print("Compress = True");
    file.print("Encrypt = False");
    file.print(fmt::format("[End of {}]", kName));
}

} // namespace

void DefaultProf(ProfileContext& context)
{
    // Another procedure's name and sentence: people know this error by them.
    const trace::TailNames names{"OpenProf", "DefaultProf", kModule, trace::message(kMessage)};
    trace::runTraced(context.trace, "DefaultProf", names, [&] {
        context.store.scalars.dStartDate = context.machine.clock.now().date;
        const std::string folder = context.frame.ST_App_Path + "\\Profiles";
        ProfileChange change(context.machine.fileSystem, folder, std::string(kName));
        ReplacingFile file(context.machine.fileSystem, folder, kName);
        print(context, file);
        file.commit();
        change.plainWritten();
        if (PrFileEncrypt(context, folder, kName).done)
            change.scrambled();
        else
            change.settle();
        context.schedules.WriteDefaultSchedReg(kName);
    });
}

std::string GetRegUserName(ProfileContext& context)
{
    return sNT(context.trace, context.machine.facts.userName());
}

} // namespace vardelin::profile
