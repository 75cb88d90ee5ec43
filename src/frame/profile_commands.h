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

// Asks whether to save, and saves. BL_Save_Blocked tells that the caller must stop.
void ConfirmSave(FrameContext& context);
void CreateNewProfile(FrameContext& context);

// Save under a name that is asked for, and under the name that the profile has, which is a file
// name in Profiles. True where the profile is on the disk. Otherwise the person was told why,
// everything in the editor still counts as changed, and the file is the old one. A save that comes
// in while a folder of the tree is being read is refused: the folder's lines would be missing.
bool SaveProfile(FrameContext& context);
bool EditSaveMode(FrameContext& context, std::string_view name);

// Asks for a name; it comes in ST_Current_Profile_Path, as it was entered, or BL_Name_Cancelled is
// set. A dialog that could not be shown leaves the path empty.
void PrSaveNameIp(FrameContext& context);

// A profile from backup media is left: it stays on this machine or goes back to where it came from,
// and the local profile that it hid comes back unless the person gives it up. Raises what the file
// system raises; nothing is lost then, and the same question can be asked again. A profile that
// went back has no name in the editor any more.
void copyBackRemoteProfile(FrameContext& context);

// Handlers of frmRestDialog.
void cmdProfileOK_Click(FrameContext& context, state::frmRestDialog& form);
void cmdResCancel_Click(FrameContext& context, state::frmRestDialog& form);
int txtProfileName_KeyPress(FrameContext& context, state::frmRestDialog& form, int key);
// The right button (2) empties the clipboard.
void txtProfileName_MouseDown(FrameContext& context, int button);

} // namespace vardelin::frame
