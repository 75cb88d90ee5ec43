#include "base/runtime_error.h"
#include "ctl/commands.h"

#include <exception>
#include <string>
#include <type_traits>
#include <variant>

#include <fmt/format.h>

namespace vardelin::ctl {
namespace {

int dispatch(Session& session, const Command& command)
{
    return std::visit(
        [&](const auto& chosen) {
            using Chosen = std::decay_t<decltype(chosen)>;
            if constexpr (std::is_same_v<Chosen, InitCommand>)
                return runInit(session, chosen);
            else if constexpr (std::is_same_v<Chosen, ProfileNewCommand>)
                return runProfileNew(session, chosen);
            else if constexpr (std::is_same_v<Chosen, ProfileSetCommand>)
                return runProfileSet(session, chosen);
            else if constexpr (std::is_same_v<Chosen, ProfileShowCommand>)
                return runProfileShow(session, chosen);
            else if constexpr (std::is_same_v<Chosen, ProfileListCommand>)
                return runProfileList(session);
            else if constexpr (std::is_same_v<Chosen, ProfileDeleteCommand>)
                return runProfileDelete(session, chosen);
            else if constexpr (std::is_same_v<Chosen, ProfileDefaultCommand>)
                return runProfileDefault(session);
            else if constexpr (std::is_same_v<Chosen, ScrambleCommand>)
                return runScramble(session, chosen);
            else if constexpr (std::is_same_v<Chosen, BackupCommand>)
                return runBackup(session, chosen);
            else if constexpr (std::is_same_v<Chosen, ListCommand>)
                return runList(session, chosen);
            else if constexpr (std::is_same_v<Chosen, RestoreCommand>)
                return runRestore(session, chosen);
            else if constexpr (std::is_same_v<Chosen, VerifyCommand>)
                return runVerify(session, chosen);
            else if constexpr (std::is_same_v<Chosen, PruneCommand>)
                return runPrune(session, chosen);
            else if constexpr (std::is_same_v<Chosen, LogsCommand>)
                return runLogs(session, chosen);
            else if constexpr (std::is_same_v<Chosen, ScheduleCommand>)
                return runSchedule(session, chosen);
            else if constexpr (std::is_same_v<Chosen, RegistryCommand>)
                return runRegistry(session, chosen);
            else if constexpr (std::is_same_v<Chosen, DrivesCommand>)
                return runDrives(session);
            else
                return runReview(session, chosen);
        },
        command);
}

// The run trace keeps the cause of a failure; a folder that is none of ours gets no trace file.
void traceFailure(Session& session, std::string_view text)
{
    base::PendingError ignored;
    ignored.attempt([&] {
        if (session.files().folderExists(session.profilesFolder()))
            session.runTrace.WriteRunTrace(kProgramName, "Error", true, text);
    });
}

} // namespace

int runCommand(const CommandLine& commandLine, const platform::Machine& machine, Terminal& terminal,
               std::string_view appPath)
{
    Output output(terminal, commandLine.global);
    Session session(machine, terminal, output, std::string(appPath));
    try {
        return dispatch(session, commandLine.command);
    } catch (const UsageError& error) {
        output.error(error.what());
        return kExitUsage;
    } catch (const trace::ExitRequested&) {
        return kExitFailed; // the dialog has said why
    } catch (const base::RuntimeError& error) {
        output.error(error.what());
        traceFailure(session, error.what());
        return kExitFailed;
    } catch (const std::exception& error) {
        output.error(fmt::format("unexpected failure: {}", error.what()));
        traceFailure(session, error.what());
        return kExitFailed;
    }
}

} // namespace vardelin::ctl
