#pragma once

#include "profile/profile_context.h"

namespace vardelin::profile {

// Empties the save lists and clears bHaveSources, bHaveOtherData and bHaveDestination, for a new or
// a closed profile. bHaveIncluded stays as it is.
void ClearCollections(ProfileContext& context);

// The same after a save, but clxnExcluded, clxnIncluded and clxnFolderNames stay: they follow the
// editor's lists as the person changes them and are not gathered again for the next save.
void ClearCollectionsForSave(ProfileContext& context);

// Adds the text of each selected row of lstOtherData to clxnOtherData, in the order of the list.
void GettingOtherBackUp(ProfileContext& context);

} // namespace vardelin::profile
