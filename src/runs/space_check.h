#pragma once

#include "platform/machine.h"
#include "state/frame_state.h"
#include "state/profile_editor_state.h"
#include "trace/error_tail.h"

#include <string>
#include <string_view>

// What is looked at on the destination's drive before a backup, and before an archive moves.
namespace vardelin::runs {

// Holds references only; the application owns the parts.
struct SpaceCheckContext {
    platform::Machine& machine;
    trace::TraceContext& trace;
    state::FrameState& frame;
    const state::ProfileEditorState& editor; // CmbDestDrives, txtDestLoc, chkWarn, txtWarn
};

// Warns when the destination's drive, fixed or remote, has less than txtWarn percent of its room
// left. Never stops anything: a drive that cannot be looked at gives no warning.
void Checkspace(const SpaceCheckContext& context);

// The drive of an entry of CmbDestDrives or of a path, as `C:\`: the letter in front of the first
// colon, wherever that stands, or without a colon the one in brackets. Empty where there is none.
std::string sGetdrivename(std::string_view text);

// The destination of the profile `profileName` (without its extension) changed: copies the archive
// below the old destination to the new one, over what lies there, when the new drive has more room
// than the archive takes; says so where it has not. Holds both archives against other runs.
//
// Each file comes to its name with its content, its times, its rights and its attributes, and when
// its data is on the disk. The old archive stays as it is, and files that a run left unfinished
// stay behind in it. What fails is reported, with the path, and ends the copying; a later copy, or
// a backup, completes it. Yields while it works and shows the share that is done in panel 1.
void CheckspaceFornew(const SpaceCheckContext& context, std::string_view profileName,
                      std::string_view oldDestination, std::string_view newDestination);

} // namespace vardelin::runs
