#pragma once

#include "editor/pages_context.h"

// Where a profile's backups go: the media combo, the path's box and Browse. A change away from a
// folder in which an archive of this profile lies is asked about, but only while bDestRevert is
// down: Browse takes it down, while the focus of the combo and an accepted change put it up.
namespace vardelin::editor {

// Fills CmbDestDrives with removable drive A, the fixed and the network drives; the first entry
// shows. Runs no handler.
void NetworkDriveList(PagesContext& context);

// The combo is picked from and takes no typing: no key passes, and of the others (by key code)
// Delete (46) does not.
int CmbDestDrives_KeyPress(int key);
int CmbDestDrives_KeyDown(int keyCode);
void CmbDestDrives_GotFocus(PagesContext& context);
// Empties the box unless its path begins with the picked drive's letter. A fixed drive's entry
// begins with words, so picking one empties the box in any case.
void CmbDestDrives_Click(PagesContext& context);

void cmdBrowse_Click(PagesContext& context);

int txtDestLoc_KeyPress(PagesContext& context, int key);
void txtDestLoc_GotFocus(PagesContext& context);
void txtDestLoc_Change(PagesContext& context);

} // namespace vardelin::editor
