#include "base/runtime_error.h"
#include "base/text.h"
#include "ctl/commands.h"
#include "ctl/paths.h"
#include "ctl/profile_options.h"
#include "ctl/secrets.h"
#include "ctl/text_forms.h"
#include "platform/registry.h"
#include "profile/default_profile.h"
#include "profile/list_file.h"
#include "profile/profile_change.h"
#include "profile/profile_lists.h"
#include "profile/profile_writer.h"
#include "profile/scramble_text.h"
#include "profile/scrambler.h"
#include "runs/engine/profile_reader.h"

#include <istream>
#include <iterator>
#include <optional>
#include <ostream>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

constexpr std::string_view kIdleKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\VdIdle";

// A folder gets its backslash, by which a profile tells it from a file.
std::string sourceFrom(const Session& session, const std::string& typed)
{
    const std::string path = session.typedPath(typed);
    const auto info = session.files().find(path);
    const bool isFolder = info ? info->kind == platform::FileKind::Folder : endsInSeparator(typed);
    if (!info && !isFolder)
        throw RuntimeError(error_number::kFileNotFound, session.shown(path),
                           "a source must exist, or end in a separator where it is a folder");
    if (!info)
        session.output.warning(
            fmt::format("the source {} does not exist now", session.shown(path)));
    return isFolder && !path.ends_with('\\') ? path + '\\' : path;
}

void makeDestination(const Session& session, const std::string& path)
{
    if (session.files().folderExists(path))
        return;
    session.files().createFolder(path);
    session.output.note(fmt::format("Made the folder {}", visibleText(session.shown(path))));
}

ResolvedOptions resolve(const Session& session, const ProfileOptions& options)
{
    ResolvedOptions resolved;
    for (const std::string& source : options.sources.value_or(std::vector<std::string>{}))
        resolved.sources.push_back(sourceFrom(session, source));
    if (options.destination)
        resolved.destination = session.typedPath(*options.destination);
    if (options.passwordFile)
        resolved.password = secretFrom(session, *options.passwordFile);
    if (options.hintAnswerFile)
        resolved.hintAnswer = secretFrom(session, *options.hintAnswerFile);
    return resolved;
}

// Lines that do not come back from the disk as they were written: told by number and text, but for
// the lines of the password.
void warnOfLossyLines(const Session& session, const std::vector<std::size_t>& numbers,
                      std::string_view plainText)
{
    const auto lines = profile::fileLines(plainText);
    bool secret = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        secret = (secret || lines[i] == "{Password}") && lines[i] != "{End Of Password}";
        for (const std::size_t number : numbers) {
            if (number != i + 1)
                continue;
            session.output.warning(fmt::format("line {} of the profile cannot be kept as it is{}",
                                               number,
                                               secret ? std::string(" (it belongs to the password)")
                                                      : ": " + std::string(lines[i])));
        }
    }
}

void markProfile(Session& session, const std::string& fileName, bool primary)
{
    if (primary) {
        profile::RemoveVdpName(session.profiles);
        profile::SetPrimaryProfile(session.profiles, fileName);
    }
    profile::RemoveRecVdpName(session.profiles);
    profile::SetRecentProfile(session.profiles, fileName);
}

// Saves what the editor holds, by the procedures and in the order in which the window saves. All
// steps are taken even after a reported failure: a profile must not stay behind in plain text.
int saveProfile(Session& session, const std::string& fileName, bool primary)
{
    const TerminalErrorDialog::Completing completing(session.dialog);
    const std::string folder = session.profilesFolder();
    profile::ProfileChange change(session.files(), folder, fileName);
    profile::GettingOtherBackUp(session.profiles);
    if (!profile::CreatingVdpFile(session.profiles, fileName, folder))
        return kExitFailed;
    change.plainWritten();
    const std::string plainText = session.files().readAll(session.profilePath(fileName));
    session.schedules.WriteSchedReg(fileName);
    const profile::ScrambleResult scrambled =
        profile::PrFileEncrypt(session.profiles, folder, fileName);
    const bool stands = scrambled.done || change.settle();
    if (scrambled.done)
        change.scrambled();
    profile::ClearCollectionsForSave(session.profiles);
    if (!stands)
        return kExitFailed;
    markProfile(session, fileName, primary);
    warnOfLossyLines(session, scrambled.lossyLines, plainText);
    if (completing.failed() || !scrambled.done)
        return kExitFailed;
    return scrambled.lossyLines.empty() ? kExitDone : kExitGaps;
}

int finishSave(Session& session, const std::string& fileName, const ProfileOptions& options)
{
    const int code = saveProfile(session, fileName, options.primary);
    if (code == kExitFailed)
        return code;
    // By what the file says, since that is what a run goes by.
    const auto saved = engine::readProfile(session.files(), session.profilePath(fileName));
    if (saved.encrypt && !saved.hasPassword)
        session.output.warning(std::string(kOpenKeyWarning));
    Json object{{"type", "saved"}};
    putText(object, "profile", fileName);
    putText(object, "path", session.shown(session.profilePath(fileName)));
    session.output.object(object);
    session.output.note(
        fmt::format("Saved {}", visibleText(session.shown(session.profilePath(fileName)))));
    return code;
}

void dropIdleEntries(Session& session, std::string_view fileName)
{
    platform::Registry& registry = session.machine.registry;
    constexpr auto kRoot = platform::RegistryRoot::LocalMachine;
    for (const std::string& minutes : registry.subKeys(kRoot, kIdleKey))
        registry.deleteValue(kRoot, fmt::format("{}\\{}", kIdleKey, minutes),
                             base::beforeFirst(fileName, "."));
}

} // namespace

int runProfileNew(Session& session, const ProfileNewCommand& command)
{
    session.requireApplicationFolder();
    const std::string fileName = profileFileName(command.name);
    std::optional<std::string> taken;
    base::PendingError missing;
    missing.attempt([&] { taken = savedProfile(session, fileName); });
    if (taken)
        throw RuntimeError(error_number::kFileExists, session.shown(session.profilePath(*taken)),
                           "change it with vardelinctl profile set");
    applyOptions(session.profiles, command.options, resolve(session, command.options));
    requireSaveable(session.profiles);
    if (command.options.destination)
        makeDestination(session, session.editor.txtDestLoc.text);
    session.frame.BL_New_Mode = true;
    session.frame.ST_Current_Profile = fileName;
    return finishSave(session, fileName, command.options);
}

int runProfileSet(Session& session, const ProfileSetCommand& command)
{
    const std::string fileName = savedProfile(session, command.name);
    const auto saved = engine::readProfile(session.files(), session.profilePath(fileName));
    for (const std::string& problem : saved.problems)
        session.output.warning(problem);
    session.frame.BL_Edit_Mode = true;
    session.frame.BL_Edit_Changed = true;
    session.frame.ST_Current_Profile = fileName;
    fillEditor(session.profiles, saved);
    applyOptions(session.profiles, command.options, resolve(session, command.options));
    requireSaveable(session.profiles);
    if (command.options.destination)
        makeDestination(session, session.editor.txtDestLoc.text);
    return finishSave(session, fileName, command.options);
}

int runProfileDelete(Session& session, const ProfileDeleteCommand& command)
{
    const std::string fileName = savedProfile(session, command.name);
    session.files().removeFile(session.profilePath(fileName));
    session.schedules.DeleteSchedKey(fileName);
    dropIdleEntries(session, fileName);
    // The markers of a profile that is gone repair themselves when they are looked at.
    bool found = false;
    profile::IsRecentProfile(session.profiles, found);
    profile::IsPrProFileExists(session.profiles, found);
    Json object{{"type", "deleted"}};
    putText(object, "profile", fileName);
    session.output.object(object);
    session.output.note(
        fmt::format("Deleted the profile {}; its archive stays", visibleText(fileName)));
    return kExitDone;
}

int runProfileDefault(Session& session)
{
    session.requireApplicationFolder();
    const TerminalErrorDialog::Completing completing(session.dialog);
    profile::DefaultProf(session.profiles);
    if (completing.failed())
        return kExitFailed;
    const std::string path = session.profilePath("Default.vdp");
    Json object{{"type", "saved"}, {"profile", "Default.vdp"}};
    putText(object, "path", session.shown(path));
    session.output.object(object);
    session.output.note(fmt::format("Saved {}", visibleText(session.shown(path))));
    return kExitDone;
}

int runScramble(Session& session, const ScrambleCommand& command)
{
    const std::string text = readFile(session, command.file);
    if (command.unscramble) {
        session.terminal.out << profile::unscrambleText(text);
        return kExitDone;
    }
    const auto lossy = profile::lossyLines(text);
    session.terminal.out << profile::scrambleText(text);
    warnOfLossyLines(session, lossy, text);
    return lossy.empty() ? kExitDone : kExitGaps;
}

} // namespace vardelin::ctl
