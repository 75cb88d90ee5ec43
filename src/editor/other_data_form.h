#pragma once

#include "editor/pages_context.h"

#include <string>

// frmOtherdata, "FileOptions": excluded extensions and the patterns of file names, modal over the
// editor. Patterns are comma-separated, `*` being their only wildcard.
namespace vardelin::editor {

// Loads the form unless it is: outside a view that fills lstExclude.
void loadOtherdata(PagesContext& context);
// Forgets its list and its names, for a profile that takes the former one's place.
void unloadOtherdata(PagesContext& context);

// The two buttons of the editor that open it, each with its own half enabled; in a view neither
// half, nor the lists of the page behind it.
void cmdExclude_Click(PagesContext& context);
void cmdExclInclByNames_Click(PagesContext& context);

// "&OK": tidies the patterns and hides the form, or says what is wrong with them and leaves it
// open.
void cmdSetOK_Click(PagesContext& context);
// "&Clear": empties both boxes and takes all exclusions back, except in a view, and hides the form.
void cmdCancel_Click(PagesContext& context);

// txtInclNames and txtExclNames take no character that a name cannot hold.
int namesKeyPress(int key);

} // namespace vardelin::editor
