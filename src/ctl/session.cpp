#include "ctl/session.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "ctl/paths.h"
#include "platform/path_rule.h"
#include "profile/interrupted_saves.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace vardelin::ctl {
namespace {

constexpr std::string_view kExtension = ".vdp";

} // namespace

Session::Session(const platform::Machine& ports, Terminal& streams, Output& out,
                 std::string appPath)
    : machine(ports), terminal(streams), output(out), dialog(out),
      runTrace(ports.fileSystem, ports.clock, ports.messageBoxes, appPath,
               std::string(kProgramName)),
      trace{runTrace, errors, dialog}, store(platform::pathRule(ports.fileSystem)),
      schedules({machine, trace, frame, editor, store.save}),
      editorLists(trace, editor), profiles{machine, trace,     frame,       editor,
                                           store,   schedules, editorLists, fileNumbers}
{
    frame.ST_App_Path = std::move(appPath);
    frame.BL_Is_NT = machine.facts.isNtPlatform();
}

std::string Session::profilePath(std::string_view fileName) const
{
    return platform::joinPath(profilesFolder(), fileName);
}

std::string Session::typedPath(std::string_view typed) const
{
    return drivePath(machine.fileSystem, terminal.workingFolder, typed);
}

std::string Session::shown(std::string_view path) const
{
    return shownPath(machine.fileSystem, path);
}

void Session::requireApplicationFolder() const
{
    if (!files().folderExists(profilesFolder()))
        throw base::RuntimeError(base::error_number::kPathNotFound, shown(appPath()),
                                 "no application folder is laid out here: vardelinctl init DIR");
    for (const profile::FinishedSave& save :
         profile::finishInterruptedSaves(files(), profilesFolder())) {
        // Not among the results: a command may print a profile.
        output.warning(fmt::format("the saving of {} was cut off and is finished now", save.name));
        if (!save.lossyLines.empty())
            output.warning(profile::lossyLinesText(save));
    }
}

std::string profileFileName(std::string_view name)
{
    std::string_view stem = name;
    if (base::endsWithIgnoringCase(stem, kExtension))
        stem.remove_suffix(kExtension.size());
    const bool bad = stem != base::trim(stem) || std::any_of(stem.begin(), stem.end(), [](char c) {
                         return static_cast<unsigned char>(c) < 0x20 ||
                                std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos;
                     });
    if (stem.empty() || stem == "." || stem == ".." || bad)
        throw UsageError(fmt::format("\"{}\" can be no name of a profile: it may hold none of "
                                     "/ \\ : * ? \" < > | and no blanks at its ends",
                                     name));
    return std::string(stem) + std::string(kExtension);
}

std::string savedProfile(const Session& session, std::string_view name)
{
    session.requireApplicationFolder();
    std::string fileName = profileFileName(name);
    if (session.files().fileExists(session.profilePath(fileName)))
        return fileName;
    for (const platform::FolderEntryInfo& entry : session.files().list(session.profilesFolder())) {
        if (entry.info.kind == platform::FileKind::Regular &&
            base::equalsIgnoringCase(entry.name, fileName))
            return entry.name;
    }
    throw base::RuntimeError(base::error_number::kFileNotFound,
                             session.shown(session.profilePath(fileName)),
                             "there is no profile of this name");
}

} // namespace vardelin::ctl
