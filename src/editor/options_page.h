#pragma once

#include "editor/pages_context.h"

// The options on the editor's second page and the retention options of the third: what starts a
// backup by itself, what warns before one, and how many versions stay. The destination and the
// password have headers of their own. While a profile's options count as loaded (bOptionsLoaded) a
// handler neither moves the focus nor puts a default in.
namespace vardelin::editor {

// On unlocks the box and arms it with its default: 15 minutes, 100 files, 50 MB; the percentage has
// none. Off empties and locks it. The queue's option notes no change while the default profile is
// on show, as one of that profile's own values.
void chkIdle_Click(PagesContext& context);
void chkQueueThrld_Click(PagesContext& context);
void chkSizeOfBkp_Click(PagesContext& context);
void chkWarn_Click(PagesContext& context);

void txtIdleTime_GotFocus(PagesContext& context);
void txtQueueThrld_Change(PagesContext& context);
void txtWarn_GotFocus(PagesContext& context);
void txtWarn_LostFocus(PagesContext& context); // adds the percent sign

// Keys of txtIdleTime, txtQueueThrld, txtSizeOfBkp, txtLatestVer and txtLatestDaysVer: digits and
// backspace, but no zero where the box is empty or holds the value 0; it empties the box instead.
int countKeyPress(state::TextBox& box, int key);
int txtWarn_KeyPress(int key);

// Compression cannot be switched off: the tick comes back.
void chkCompress_Click(PagesContext& context);
void chkEncrypt_Click(PagesContext& context);
void chkPrimary_Click(PagesContext& context);

// A retention option was chosen: what another one counts goes.
void optVer1_Click(PagesContext& context);
void optVer2_Click(PagesContext& context);
void optVer3_Click(PagesContext& context);
void optVer4_Click(PagesContext& context);
void optVer5_Click(PagesContext& context);
void optVer6_Click(PagesContext& context);
void optVer7_Click(PagesContext& context);
void optVer8_Click(PagesContext& context);

// The boxes of options 6 and 8 take typing under their option alone.
void txtLatestVer_GotFocus(PagesContext& context);
void txtLatestVer_LostFocus(PagesContext& context);
void txtLatestDaysVer_GotFocus(PagesContext& context);
void txtLatestDaysVer_LostFocus(PagesContext& context);

} // namespace vardelin::editor
