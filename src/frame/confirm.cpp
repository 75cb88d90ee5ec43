#include "base/text.h"
#include "frame/frame_texts.h"
#include "frame/main_frame.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"
#include "profile/list_file.h"

namespace vardelin::frame {

using state::FrameState;

bool saveByMode(FrameContext& context)
{
    const FrameState& frame = context.profiles.frame;
    if (!frame.BL_Edit_Mode) {
        SaveProfile(context);
        return true;
    }
    if (!frame.BL_Edit_Changed)
        return false;
    // A profile that went back to its media has no name here.
    if (frame.ST_Current_Profile.empty())
        SaveProfile(context);
    else
        EditSaveMode(context, std::string(frame.ST_Current_Profile));
    return true;
}

void saveOnConfirmation(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    frame.panel3.text = frame_texts::kSavingState;
    frame.BL_Confirm_Save_Running = true;
    saveByMode(context);
    frame.BL_Confirm_Save_Running = false;
    noteRecentProfile(context, false);
}

bool confirmed(FrameContext& context)
{
    if (needsSave(context.profiles.frame))
        ConfirmSave(context);
    return mayGoOn(context);
}

bool mayGoOn(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    if (!frame.BL_Save_Blocked)
        return true;
    frame.BL_Save_Blocked = false;
    showRefusedTab(context);
    return false;
}

void showRefusedTab(FrameContext& context)
{
    int& tab = context.profiles.store.scalars.iValidationTab;
    if (tab > 0)
        context.form.window.SSTab1 = tab - 1;
    tab = 0;
}

void noteRecentProfile(FrameContext& context, bool onlyWhereNamed)
{
    profile::ProfileContext& profiles = context.profiles;
    const std::string name(currentName(profiles.frame));
    if (profiles.frame.BL_Recent_Found) {
        if (name.empty())
            return;
        profile::RemoveRecVdpName(profiles);
        profile::SetRecentProfile(profiles, name);
        return;
    }
    bool found = false;
    profile::IsRecentProfile(profiles, found);
    if (found && !(onlyWhereNamed && name.empty()))
        profile::RemoveRecVdpName(profiles);
    if (!name.empty())
        profile::SetRecentProfile(profiles, name);
}

void ConfirmSave(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    runProcedure(context, "ConfirmSave", [&] {
        if (ask(context, frame_texts::kSaveQuestion)) {
            saveOnConfirmation(context);
        } else {
            frame.BL_New_Changed = false;
            frame.BL_Save_Blocked = false;
        }
    });
    frame.panel3.text = frame_texts::kIdleState;
}

} // namespace vardelin::frame
