#pragma once

#include "editor/pages_context.h"

#include <cstddef>

// The two lists of file extensions, and the list of settings groups. An extension is in one list at
// most: a tick takes it out of the other list, an untick puts it back there, at the end until the
// next sort. clxnIncluded and clxnExcluded follow the ticks. Rows count from 0; where a row is
// handed over, its new state stands in it already.
namespace vardelin::editor {

// Fill lstInclude and lstExclude with every extension that the machine has a type for, sorted,
// nothing ticked. When a profile is edited, the extensions that it was saved with are there in any
// case, or one that this machine does not know would be lost at the next save.
void ListInclForFileExt(PagesContext& context);
void ListExclForFileExt(PagesContext& context);

// Shows these extensions alone in lstExclude, all ticked: the view of an opened profile.
void ExclList(PagesContext& context, const base::TextCollection& extensions);

// The person's tick. In a view it comes back, and nothing else happens.
void lstInclude_ItemCheck(PagesContext& context, std::size_t row);
// Likewise, but an exclusion needs something to exclude from: without a ticked source the tick is
// refused with a message. In a view it is the first row that is ticked again.
void lstExclude_ItemCheck(PagesContext& context, std::size_t row);
// The same for a saved state that is replayed: no change flags.
void InclCheck(PagesContext& context, std::size_t row);
void ExclCheck(PagesContext& context, std::size_t row);

// A settings group was selected or unselected; it is read when the profile is saved.
void lstOtherData_ItemCheck(PagesContext& context, std::size_t row);

// A click on the heading of a column, from 0: sorts by it, upwards at first and then by turns.
void lstInclude_ColumnClick(PagesContext& context, std::size_t column);
void lstExclude_ColumnClick(PagesContext& context, std::size_t column);

} // namespace vardelin::editor
