#pragma once

#include "editor/editor_context.h"

#include <cstddef>
#include <string_view>

// How the ticks of the source tree become the source lines of a profile, and the other way round.
// Only the topmost wholly selected folders become lines: `C:\Data\Mail\` is a folder with all below
// it, `C:\Data\a.txt` is one file. A drive is never a line: a wholly selected one gives the lines
// of what stands directly on it.
namespace vardelin::editor {

// Adds the lines of all ticks to clxnSources, in the order of the tree, and moves the progress bar
// by 25 in all. A line that is there already, a drive that cannot be read, or no line at all is
// reported; the lines so far stay and the caller goes on. In edit mode drives that were not opened
// yet are read first, so that what the opened profile holds is there to be taken.
void GettingChkedItems(EditorContext& context);

// Adds the lines of what is ticked below the node with this flat index. Path is for the reader of a
// trace alone.
void SubLevelFolderChkUnExpandedNode(EditorContext& context, std::string_view Path,
                                     std::size_t Index);

// The view's expansion: adds what the opened sources have directly below `Key` and ticks every
// node. A wholly selected folder is green and cannot be opened; a partly selected one keeps the
// plain colour, while its empty child is purple. A name that comes again behind another one fails,
// which is reported and ends the adding.
void OpenProf(EditorContext& context, std::string_view Key);

// Ticks, in a tree of drives not read yet, those that the opened profile has sources on: purple,
// even where all of a drive was selected, for only its expansion tells. Children without a text are
// treated like hits.
void restoreOpenedDrives(EditorContext& context);

} // namespace vardelin::editor
