#include "profile/profile_lists.h"

namespace vardelin::profile {
namespace {

constexpr std::string_view kModule = "modPrSaveOpen";

void dropWhatASaveGathered(state::ProfileStore& store)
{
    store.save.clxnSources.clear();
    store.save.clxnOtherData.clear();
    store.save.clxnSchedule.clear();
    store.save.clxnExtraSourcesA.clear();
    store.save.clxnDroppedSources.clear();
    store.save.clxnExtraSourcesB.clear();
    store.scalars.bHaveSources = false;
    store.scalars.bHaveOtherData = false;
    store.scalars.bHaveDestination = false;
}

} // namespace

void ClearCollections(ProfileContext& context)
{
    trace::runTraced(context.trace, "ClearCollections", kModule, "ClearCollections", [&] {
        context.store.save.clxnFolderNames.clear();
        context.store.save.clxnExcluded.clear();
        context.store.save.clxnIncluded.clear();
        dropWhatASaveGathered(context.store);
    });
}

void ClearCollectionsForSave(ProfileContext& context)
{
    trace::runTraced(context.trace, "ClearCollectionsForSave", kModule, "ClearCollectionsForSave",
                     [&] { dropWhatASaveGathered(context.store); });
}

void GettingOtherBackUp(ProfileContext& context)
{
    trace::runTraced(context.trace, "GettingOtherBackUp", kModule, "GettingOtherBackUp", [&] {
        for (const state::ListRow& row : context.editor.lstOtherData.rows) {
            if (row.selected)
                context.store.save.clxnOtherData.add(row.text);
        }
    });
}

} // namespace vardelin::profile
