#pragma once

#include "frame/frame_context.h"

#include <string_view>

// The commands of the File menu: a profile made, opened, edited, saved, closed, and the end of the
// program. A command that meets a refused save stops. While one runs, a second one that comes in
// through the message loop returns at once.
namespace vardelin::frame {

void mnuNew_Click(FrameContext& context);
void mnuOpen_Click(FrameContext& context);
void mnuEdit_Click(FrameContext& context);
void mnuSave_Click(FrameContext& context);
void mnuSaveAs_Click(FrameContext& context);
void mnuClose_Click(FrameContext& context);
// Also the frame's close box. False where the application stays.
bool mnuExit_Click(FrameContext& context);

// Brings the editor back and sets the commands by its mode.
void mnuProfile_Click(FrameContext& context);

// Asks whether to save, and saves. BL_Save_Blocked tells that the caller must stop.
void ConfirmSave(FrameContext& context);
void CreateNewProfile(FrameContext& context);

// Save under a name that is asked for, and under the name that the profile has.
void SaveProfile(FrameContext& context);
void EditSaveMode(FrameContext& context, std::string_view name);

// Asks for a name; it comes in ST_Current_Profile_Path, or BL_Name_Cancelled is set.
void PrSaveNameIp(FrameContext& context);

// A profile from backup media is left: it stays on this machine or goes back to where it came from,
// and the local profile that it hid comes back unless the person gives it up.
void copyBackRemoteProfile(FrameContext& context);

// Handlers of frmRestDialog.
void cmdProfileOK_Click(FrameContext& context, state::frmRestDialog& form);
void cmdResCancel_Click(FrameContext& context, state::frmRestDialog& form);
int txtProfileName_KeyPress(FrameContext& context, state::frmRestDialog& form, int key);
// The right button (2) empties the clipboard.
void txtProfileName_MouseDown(FrameContext& context, int button);

} // namespace vardelin::frame
