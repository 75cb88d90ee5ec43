#pragma once

#include "archive/review.h"

#include <string_view>

// Deletion of the rows that are selected in the review, for good: there is no undo. Files go from
// the archive at once; model.txt and the list follow.
//
// While a run holds the archive nothing is deleted and a message says so; a run that starts during
// a deletion is refused in its turn.
namespace vardelin::archive {

// The menu's command: asks, and on Yes deletes. From then on opening a row looks into clxnDeleted.
void mnuDel_Click(ReviewContext& context);

// Deletes what is selected, from the last row to the first.
//
// - A folder or a drive goes with all that is in it, a settings group with its folder in OtherData.
// - A file's version is looked for in its archive folder by two texts, the row's up to its first
//   underscore and the version's mark: the first file in the folder's order that holds both, in any
//   case, is deleted. So `Ver1` may meet `Ver12`, and `a` a file `data`; a row that begins with an
//   underscore is passed over. Whoever needs an exact deletion names the entry.
// - A folder that holds no file any more goes, too, unless it has subfolders; its lines, and those
//   of its subfolders, leave model.txt and so the list until the next load.
// - The archive root itself, and anything outside it, is never touched.
//
// Rows leave the list even where their file had vanished. Where a folder was emptied or deleted
// the list is built anew, closed. An error ends the deletion and is reported; what was deleted
// until then stays deleted, and leaves the list.
void RestoreDel(ReviewContext& context);

// Rewrites model.txt without its empty lines and without every line that holds an item of clxnDrop,
// compared in upper case; bFilesExist tells whether a line is left. The new lines are on the disk
// as ChngModel.txt before they take the old ones' place in one step, so a crash leaves either list.
void ReconstructModelFile(ReviewContext& context, const base::TextCollection& clxnDrop);

// Filters of a catalog file under Data\, by way of Data\Tmp<fileName>: one pass over the file for
// each item. The first drops lines that hold the item, the second lines that equal it in any case.
// Nothing calls them yet. After an error, which is reported with the step that met it, a pass may
// have left the temporary file behind.
void RestDelFolder(ReviewContext& context, const base::TextCollection& clxn,
                   std::string_view fileName);
void RestDelFiles(ReviewContext& context, const base::TextCollection& clxn,
                  std::string_view fileName);

} // namespace vardelin::archive
