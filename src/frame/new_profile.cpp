#include "editor/life_cycle.h"
#include "frame/frame_texts.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"
#include "profile/profile_lists.h"

#include <utility>

namespace vardelin::frame {

using state::FrameState;

namespace {

namespace texts = frame_texts;

void clearOpenedLists(state::OpenedLists& lists)
{
    lists.clxnOpenedSources.clear();
    lists.clxnOpenedExcluded.clear();
    lists.clxnOpenedIncluded.clear();
    lists.clxnOpenedOtherData.clear();
}

// Nothing of the former profile may reach the new one: with bProfileHasPassword left standing it
// would be saved under the former profile's password.
void clearValues(FrameContext& context)
{
    state::ProfileEditorState& editor = context.profiles.editor;
    state::ProfileStore& store = context.profiles.store;
    forgetProfile(context);
    editor.chkPassword.value = 0;
    editor.txtPassWord.text.clear();
    editor.txtHintAns.text.clear();
    profile::ClearCollections(context.profiles);
    clearOpenedLists(store.opened);
    std::string packages = std::move(store.scalars.sBackupPackageFolder);
    store.scalars = {};
    store.scalars.sBackupPackageFolder = std::move(packages);
    editor.txtInclNames.text.clear();
    editor.txtExclNames.text.clear();
    context.main.Picture2Visible = false;
}

void enableNew(state::MainFrameForm& form)
{
    for (const std::size_t button : {3U, 8U, 9U})
        form.Toolbar1(button).enabled = false;
    for (const std::size_t button : {4U, 5U})
        form.Toolbar1(button).enabled = true;
    for (state::MenuEntry* const entry : {&form.mnuBackup, &form.mnure, &form.mnuEdit})
        entry->enabled = false;
    for (state::MenuEntry* const entry :
         {&form.mnuSave, &form.mnuSaveAs, &form.mnuExpand, &form.mnuCollapse})
        entry->enabled = true;
}

} // namespace

void CreateNewProfile(FrameContext& context)
{
    runProcedure(context, "CreateNewProfile", [&] {
        FrameState& frame = context.profiles.frame;
        clearValues(context);
        editor::unloadProfileForm(context.form);
        context.window.unloadLogs();
        context.window.unloadReview();
        enableNew(context.main);
        enableLeaving(context);
        frame.BL_Open_Mode = false;
        frame.BL_New_Mode = true;
        frame.BL_Edit_Mode = false;
        editor::loadProfileForm(context.form);
        context.form.window.caption = texts::kNewCaption;
        context.form.window.visible = true;
        context.window.showEditor();
        frame.ST_Last_Saved_Profile.clear();
        frame.panel1.text = texts::kNewWindow;
    });
}

void mnuNew_Click(FrameContext& context)
{
    runCommand(context, "mnuNew_Click", [&] {
        FrameState& frame = context.profiles.frame;
        if (!confirmed(context))
            return;
        copyBackRemoteProfile(context);
        frame.ST_Remote_Name.clear();
        frame.ST_Remote_Path.clear();
        context.profiles.store.save.clxnSources.clear();
        context.profiles.store.opened.clxnOpenedSources.clear();
        frame.BL_Recent_Found = false;
        frame.ST_Current_Profile.clear();
        frame.ST_Current_Profile_Path.clear();
        context.main.Toolbar1(1).toolTip = texts::kNewTip;
        frame.BL_New_Changed = false;
        frame.BL_Open_Mode = false;
        frame.BL_Edit_Changed = false;
        CreateNewProfile(context);
        if (frame.BL_New_Mode)
            frame.BL_First_Run = false;
    });
}

} // namespace vardelin::frame
