#pragma once

#include "ctl/options.h"
#include "ctl/session.h"

#include <string_view>

// The commands, each with the exit code as its result. They raise base::RuntimeError and UsageError
// where they cannot go on, and trace::ExitRequested where an error dialog ended them; runCommand()
// makes messages and codes of these.
namespace vardelin::ctl {

int runInit(Session& session, const InitCommand& command);

int runProfileNew(Session& session, const ProfileNewCommand& command);
int runProfileSet(Session& session, const ProfileSetCommand& command);
int runProfileDelete(Session& session, const ProfileDeleteCommand& command);
int runProfileDefault(Session& session);
int runProfileShow(Session& session, const ProfileShowCommand& command);
int runProfileList(Session& session);
int runScramble(Session& session, const ScrambleCommand& command);

int runBackup(Session& session, const BackupCommand& command);
int runList(Session& session, const ListCommand& command);
int runRestore(Session& session, const RestoreCommand& command);
int runVerify(Session& session, const VerifyCommand& command);
int runPrune(Session& session, const PruneCommand& command);
int runReview(Session& session, const ReviewCommand& command);

int runLogs(Session& session, const LogsCommand& command);
int runSchedule(Session& session, const ScheduleCommand& command);
int runRegistry(Session& session, const RegistryCommand& command);
int runDrives(Session& session);

// Runs any command on a machine and gives the exit code of the program. `appPath` is the
// application folder in drive form. Raises nothing.
int runCommand(const CommandLine& commandLine, const platform::Machine& machine, Terminal& terminal,
               std::string_view appPath);

} // namespace vardelin::ctl
