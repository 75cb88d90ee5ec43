#include "editor/life_cycle.h"
#include "frame/frame_texts.h"
#include "frame/main_frame.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"
#include "profile/profile_lists.h"

namespace vardelin::frame {

using state::FrameState;

namespace {

namespace texts = frame_texts;

void unloadForms(FrameContext& context)
{
    context.window.unloadReview();
    context.window.unloadLogs();
    editor::unloadProfileForm(context.form);
    context.form.window.visible = false;
}

// The question of Close tells in panel 3 why it is asked.
void confirmClose(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    frame.panel3.text = texts::kSavingAtClose;
    if (ask(context, texts::kSaveQuestion))
        saveOnConfirmation(context);
    else
        frame.BL_New_Changed = false;
    frame.panel3.text = texts::kIdleState;
}

// A list that cannot be written must not keep anybody from leaving: what is in it repairs itself.
void noteRecentAtExit(FrameContext& context)
{
    base::PendingError error;
    error.attempt([&] { noteRecentProfile(context, true); });
    constexpr std::string_view kName = "mnuExit_Click";
    trace::errorTail(context.profiles.trace, {kName, kName, kModule, trace::customMessage(kName)},
                     error);
}

// True where the person leaves the program.
bool leave(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    frame.panel1.text = texts::kExiting;
    context.profiles.machine.messageLoop.yield();
    const bool newChanged = frame.BL_New_Changed;
    if (!frame.BL_Open_Mode && !confirmed(context))
        return false;
    if (!ask(context, texts::kExitQuestion)) {
        // A "No" to the save counts for this leaving alone.
        frame.BL_New_Changed = newChanged && frame.BL_New_Mode;
        return false;
    }
    noteRecentAtExit(context);
    copyBackRemoteProfile(context);
    unloadForms(context);
    context.window.endApplication();
    return true;
}

// No form, no mode, no command that needs a profile.
void closeEditor(FrameContext& context)
{
    constexpr std::size_t kCloseButton = 6;
    FrameState& frame = context.profiles.frame;
    context.main.Toolbar1(kCloseButton).enabled = false;
    context.main.mnuClose.enabled = false;
    context.main.mnuProfile.enabled = false;
    unloadForms(context);
    frame.ST_Last_Saved_Profile.clear();
    frame.BL_Open_Mode = false;
    frame.BL_Edit_Mode = false;
    frame.BL_New_Mode = false;
    frame.BL_Edit_Changed = false;
    frame.panel1.text.clear();
    forgetProfile(context);
    profile::ClearCollections(context.profiles);
    DisAbleMenu(context.main);
}

} // namespace

void mnuClose_Click(FrameContext& context)
{
    runCommand(context, "mnuClose_Click", [&] {
        if (needsSave(context.profiles.frame))
            confirmClose(context);
        if (!mayGoOn(context))
            return;
        copyBackRemoteProfile(context);
        closeEditor(context);
    });
}

bool mnuExit_Click(FrameContext& context)
{
    bool leaves = false;
    runCommand(context, "mnuExit_Click", [&] {
        leaves = leave(context);
        if (!leaves)
            context.profiles.frame.panel1.text.clear();
    });
    return leaves;
}

} // namespace vardelin::frame
