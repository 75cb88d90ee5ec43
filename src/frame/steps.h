#pragma once

#include "frame/command.h"

#include <string>
#include <string_view>

// Steps that several commands of the main frame share.
namespace vardelin::frame {

// `<application folder>\Profiles`, and a file in it.
std::string profilesFolder(const FrameContext& context);
std::string profilePath(const FrameContext& context, std::string_view name);

// Messages of an outcome and of a refusal; a question with Yes and No, true for Yes.
void tell(const FrameContext& context, std::string_view text);
void refuse(const FrameContext& context, std::string_view text);
bool ask(const FrameContext& context, std::string_view text);

// A profile's name without its extension of four characters.
std::string_view stemOf(std::string_view name);
// The file name of ST_Current_Profile_Path.
std::string_view currentName(const state::FrameState& frame);
// Puts the name of the profile with this file name into the caption of the editor.
void captionEditor(FrameContext& context, std::string_view name);

// Saves what the editor holds, by its mode: an edited profile under its name, another one under a
// name that is asked for. False where nothing was to be saved.
bool saveByMode(FrameContext& context);
// The same as the answer to a confirmation, with the recent entry behind it.
void saveOnConfirmation(FrameContext& context);

// A confirmation where one is due. False where the command must stop: the refused save was told,
// and its flag is taken back, so that it stops nothing else.
bool confirmed(FrameContext& context);
bool mayGoOn(FrameContext& context);
// Turns to the tab that a refused save named, if it named one.
void showRefusedTab(FrameContext& context);

// Writes the recent entry anew for the profile whose path is current, if there is one.
void noteRecentProfile(FrameContext& context, bool onlyWhereNamed);

// What the former profile leaves in the frame: passwords and their modes, a destination that was to
// be moved, an idle time. Nothing of it may reach the next profile.
void forgetProfile(FrameContext& context);

// Close, which Close itself switches off, and the way back to the editor.
void enableLeaving(FrameContext& context);

} // namespace vardelin::frame
