#pragma once

#include "platform/machine.h"
#include "trace/error_tail.h"

#include <string>
#include <string_view>

// The three programs that work in the background (changed files, idle time, schedules) and the file
// that says that they were started once:
//
//   <application folder>\ServiceActive.reg     text with CR LF, in the form of registry_text.h
//
// While the file stands they are left alone: they live on their own from then on. Deleting it makes
// the next start of the window start them anew.
namespace vardelin::background {

// What activation works on; holds references only.
struct ActivationContext {
    const platform::Machine& machine;
    trace::TraceContext& trace;
};

// Where services are installed on this machine. Found out and kept; nothing is installed by it.
struct ServicePlace {
    std::string windowsFolder;    // no backslash at its end
    std::string serviceInstaller; // full path
    std::string computerName;     // empty where the system does not say
};

// `appPath` is the application folder without a backslash at its end, here and below.
bool isActivated(const ActivationContext& context, std::string_view appPath);

// Starts the programs, writes ServiceActive.reg and brings it into the registry. Raises 53 or 70
// with the program as subject for one that cannot be started; those before it run, and no file is
// written, so that the next start tries again. A file that cannot be brought into the registry is
// no failure.
void activateMonitors(ActivationContext& context, std::string_view appPath, bool isNt,
                      ServicePlace& place);

// Writes ServiceActive.reg, all of it or nothing: half of it would count as the whole. An error
// ends in the error dialog.
void DynRegFileCr(ActivationContext& context, std::string_view appPath, bool isNt,
                  std::string_view windowsFolder);

} // namespace vardelin::background
