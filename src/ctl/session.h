#pragma once

#include "background/schedule_records.h"
#include "ctl/output.h"
#include "ctl/terminal.h"
#include "ctl/terminal_error_dialog.h"
#include "platform/machine.h"
#include "profile/profile_context.h"
#include "trace/run_trace.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace vardelin::ctl {

// The base name of the program: it names the log of its run trace.
inline constexpr std::string_view kProgramName = "vardelinctl";

// An argument that makes no sense on this machine or beside another one.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Everything that one command works on: the same parts that the window has, put together anew.
class Session {
public:
    // `appPath` is the application folder in drive form, without a backslash at its end. The
    // machine, the terminal and the output outlive this object.
    Session(const platform::Machine& ports, Terminal& streams, Output& out, std::string appPath);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    platform::Machine machine;
    Terminal& terminal;
    Output& output;

    TerminalErrorDialog dialog;
    trace::RunTrace runTrace;
    trace::ErrorRecord errors;
    trace::TraceContext trace;
    state::FrameState frame;
    state::ProfileEditorState editor;
    state::ProfileStore store;
    background::RegistryScheduleRecords schedules;
    profile::StateEditorLists editorLists;
    profile::FileNumbers fileNumbers;
    profile::ProfileContext profiles;

    const std::string& appPath() const { return frame.ST_App_Path; }
    platform::FileSystem& files() const { return machine.fileSystem; }
    std::string profilesFolder() const { return appPath() + "\\Profiles"; }
    std::string profilePath(std::string_view fileName) const;

    // A path as it was typed, in drive form.
    std::string typedPath(std::string_view typed) const;
    // A path for messages.
    std::string shown(std::string_view path) const;

    // Raises 76 where no application folder was laid out here. Saves of profiles that a crash cut
    // off are finished, and told.
    void requireApplicationFolder() const;
};

// `NAME` or `NAME.vdp` as a file name with its extension. Raises UsageError for what can be no name
// of a profile.
std::string profileFileName(std::string_view name);
// The saved profile's file name as it stands on the disk, whatever its case there. Raises 53.
std::string savedProfile(const Session& session, std::string_view name);

} // namespace vardelin::ctl
