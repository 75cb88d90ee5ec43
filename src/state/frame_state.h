#pragma once

#include "state/controls.h"

#include <string>

namespace vardelin::state {

// The main frame's modes, names and indicators, shared by all subsystems. One instance, owned by
// the application, used on the thread of the user interface.
struct FrameState {
    // At most one mode holds; none after Close.
    bool BL_New_Mode = false;  // a new profile that was never saved
    bool BL_Edit_Mode = false; // a saved profile, open for change
    bool BL_Open_Mode = false; // a profile shown for viewing; changes do not count

    bool BL_First_Run =
        false; // the default profile stands in the editor, never saved by the person
    bool BL_New_Changed = false;
    bool BL_Edit_Changed = false;
    bool BL_Confirm_Save_Running = false; // the save was asked for by a confirmation
    bool BL_Save_Blocked = false; // the last save did not go through; who asked for it must stop
    bool BL_Name_Cancelled = false;
    bool BL_Dest_Moved = false;      // the old archive is to be copied to the new destination
    bool BL_Loading_Profile = false; // start-up has begun to fill the editor

    bool BL_Command_Line_Profile = false;
    bool BL_Is_NT = false;
    bool BL_Recent_Found = false;  // at start-up
    bool BL_Primary_Found = false; // at start-up

    bool BL_Remote_Profile = false; // the profile came from backup media
    bool BL_Local_Stashed = false;  // a local profile of the same name was moved aside for it
    std::string ST_Remote_Name;     // file name
    std::string ST_Remote_Path;     // full path at its source

    bool BL_Reg_Write_Failed = false;
    bool bListingProfiles = false;
    bool bProfileTicked = false;
    bool bDecryptFileMissing = false; // the profile to unscramble was not there
    bool bPwdChangeMode = false;
    bool bPwdConfirmMode = false;
    bool bPwdDialogCancelled = false;
    bool bPwdReviewMode = false; // frmResPwd asks before an archive is reviewed
    bool bPwdPassed = false;     // the review may open

    std::string ST_App_Path;             // application folder, no backslash at the end
    std::string ST_Current_Profile;      // file name of the profile in the editor
    std::string ST_Current_Profile_Path; // its full path, below the application folder's Profiles
    std::string ST_Last_Saved_Profile;   // empty for a new profile
    std::string ST_Recent_Profile;       // file name
    std::string ST_Primary_Profile;      // file name
    std::string sGatePassword;           // what the reviewed profile's password section holds
    std::string sHintQuestion;
    std::string sHintAnswer;
    std::string sOldIdleTime; // idle minutes in force before the person began to change them

    ProgressBar pb; // advanced by all long loops over a profile
    StatusPanel panel1;
    StatusPanel panel2;
    StatusPanel panel3;
};

} // namespace vardelin::state
