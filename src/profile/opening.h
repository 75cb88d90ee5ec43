#pragma once

#include "profile/file_list.h"
#include "profile/profile_context.h"
#include "state/open_profile_form.h"
#include "state/profile_form.h"

#include <cstddef>
#include <string>
#include <string_view>

// The last check before a save, and frmOpenProfile: the profiles of this machine and how one of
// them, or one on backup media, comes into the editor for viewing.
namespace vardelin::profile {

// The dialog that chooses a file.
class FileChooser {
public:
    FileChooser() = default;
    FileChooser(const FileChooser&) = delete;
    FileChooser& operator=(const FileChooser&) = delete;
    virtual ~FileChooser() = default;

    // A path in drive form; empty where the choice was cancelled. `filter` is a text and a pattern
    // in turn, parted and ended by bars: `(*.vdp)|*.vdp|`.
    virtual std::string chooseFile(std::string_view title, std::string_view filter,
                                   std::string_view startFolder) = 0;
};

// Holds references only, as ProfileContext does.
struct OpeningContext {
    ProfileContext& profiles;
    state::frmOpenProfile& form;
    state::ProfileFormState& window; // SSTab1
    ListingState& listing;
    clsFiles& clsProfileFiles;
    FileChooser& chooser;
    bool& bProfileOpened;      // a profile came into the editor
    std::string& lastSelected; // the folder of the profile chosen last outside of Profiles
};

// Whether there is something to back up and a place to put it: the outcome stands in bHaveSources,
// bHaveOtherData, bHaveIncluded, bHaveDestination, BL_Save_Blocked (under a confirmation alone) and
// iValidationTab. Offers the default destination where there is none. Runs behind
// editor::FrmLevelValidation.
void ActivateSaveProfile(ProfileContext& context, state::ProfileFormState& window);

// Fills lstOpen with the profiles below `Profiles`, without those in a recycle bin and the working
// copy of a profile from backup media.
void GettingVdpFiles(OpeningContext& context);

// The person ticked or unticked a row, from 0, whose new state stands in it: one at a time.
void lstOpen_ItemCheck(OpeningContext& context, std::size_t row);
// Sorts by the column, from 0, upwards at first and then by turns.
void lstOpen_ColumnClick(OpeningContext& context, std::size_t column);

// Opens the ticked row, or the file that the person chooses. A profile opens for viewing:
// BL_Open_Mode, with bProfileOpened set and the form unloaded. The commands of the main frame are
// the caller's to set.
//
// A file that is gone, cannot be read or is no profile is told, and leaves the editor, the names
// and the modes as they were, the form loaded for another choice. bDecryptFileMissing tells of the
// newest attempt. While one of the three handlers runs, another one that comes in through the
// message loop does nothing.
void cmdOpen_Click(OpeningContext& context);
void cmdSelProfile_Click(OpeningContext& context);
void cmdClose_Click(OpeningContext& context);

// Opens the profile at `path`; one from `outside` is copied into `Profiles` first, where a local
// one of its name makes way (stashPath) and BL_Local_Stashed tells of it. Where the copying fails,
// the local one is in its place again and opens, and the error is told behind it.
void PrCopyFromDest(OpeningContext& context, std::string_view path, bool outside);

// Where a local profile waits while one of its name from backup media stands in its place.
std::string stashPath(const state::FrameState& frame);

} // namespace vardelin::profile
