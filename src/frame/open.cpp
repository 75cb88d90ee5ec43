#include "base/text.h"
#include "editor/life_cycle.h"
#include "frame/frame_texts.h"
#include "frame/main_frame.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"
#include "profile/profile_lists.h"

#include <utility>

#include <fmt/format.h>

namespace vardelin::frame {

using state::FrameState;

namespace {

namespace texts = frame_texts;

// What comes back when the dialog is left without a profile, or fails: a later save must go by
// these.
class Former {
public:
    explicit Former(FrameState& frame)
        : m_frame(frame), m_name(frame.ST_Current_Profile), m_path(frame.ST_Current_Profile_Path),
          m_lastSaved(frame.ST_Last_Saved_Profile), m_newMode(frame.BL_New_Mode),
          m_editMode(frame.BL_Edit_Mode), m_openMode(frame.BL_Open_Mode),
          m_firstRun(frame.BL_First_Run), m_newChanged(frame.BL_New_Changed),
          m_editChanged(frame.BL_Edit_Changed), m_recentFound(frame.BL_Recent_Found)
    {
    }
    Former(const Former&) = delete;
    Former& operator=(const Former&) = delete;
    ~Former()
    {
        if (m_dropped)
            return;
        m_frame.ST_Current_Profile = std::move(m_name);
        m_frame.ST_Current_Profile_Path = std::move(m_path);
        m_frame.ST_Last_Saved_Profile = std::move(m_lastSaved);
        m_frame.BL_New_Mode = m_newMode;
        m_frame.BL_Edit_Mode = m_editMode;
        m_frame.BL_Open_Mode = m_openMode;
        m_frame.BL_First_Run = m_firstRun;
        m_frame.BL_New_Changed = m_newChanged;
        m_frame.BL_Edit_Changed = m_editChanged;
        m_frame.BL_Recent_Found = m_recentFound;
    }
    void drop() { m_dropped = true; }

private:
    FrameState& m_frame;
    std::string m_name;
    std::string m_path;
    std::string m_lastSaved;
    bool m_newMode;
    bool m_editMode;
    bool m_openMode;
    bool m_firstRun;
    bool m_newChanged;
    bool m_editChanged;
    bool m_recentFound;
    bool m_dropped = false;
};

// ST_Last_Saved_Profile stays: the dialog tells by it that a profile is open already, and gives it
// the name of the one that it opens. What the former profile opened stays, too, until then.
void clearForOpen(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    frame.ST_Remote_Name.clear();
    frame.ST_Remote_Path.clear();
    frame.BL_Recent_Found = false;
    frame.ST_Current_Profile.clear();
    frame.BL_New_Changed = false;
    frame.BL_Open_Mode = false;
    frame.BL_Edit_Changed = false;
    context.main.Toolbar1(2).toolTip = texts::kOpenTip;
    frame.BL_First_Run = false;
    frame.BL_New_Mode = false;
    profile::ClearCollectionsForSave(context.profiles);
}

void listProfiles(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    context.opening.form = {};
    frame.bProfileTicked = false;
    frame.panel1.text = texts::kScanning;
    context.profiles.machine.messageLoop.yield();
    frame.bListingProfiles = true;
    profile::GettingVdpFiles(context.opening);
    frame.bListingProfiles = false;
    if (context.opening.form.lstOpen.rows.empty())
        tell(context, texts::kNoLocalProfile);
}

// Everything of the former profile that the reader has not written over.
void dropFormer(FrameContext& context)
{
    forgetProfile(context);
    profile::ClearCollections(context.profiles);
    context.profiles.store.scalars.bHaveIncluded = false;
    context.profiles.store.scalars.bDestinationChanged = false;
    context.window.unloadReview();
    context.window.unloadLogs();
    context.form.pages.pages = {};
    editor::SourceTreeForm& tree = context.form.tree.form;
    tree.clxnDeferredChecks.clear();
    tree.clxnInheritedNames.clear();
    tree.ViewClickIndex = 0;
    // A save hides the frame for as long as its profile is in the editor.
    context.profiles.editor.Frame14.visible = true;
}

void showEditor(FrameContext& context)
{
    enableByMode(context.main, context.profiles.frame);
    enableLeaving(context);
    context.form.window.visible = true;
    context.window.showEditor();
}

void showOpened(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    dropFormer(context);
    captionEditor(context, frame.ST_Current_Profile);
    showEditor(context);
    frame.panel1.text = fmt::format("{}{}{}", texts::kDisplayingStart,
                                    stemOf(frame.ST_Current_Profile), texts::kDisplayingEnd);
}

void open(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    context.opening.bProfileOpened = false;
    const bool newChanged = frame.BL_New_Changed;
    if (!confirmed(context))
        return;
    // A "No" to the save does not make the profile a saved one: it may stay in the editor.
    frame.BL_New_Changed = newChanged && frame.BL_New_Mode;
    copyBackRemoteProfile(context);
    Former former(frame);
    const bool wasLoaded = context.form.window.loaded;
    clearForOpen(context);
    listProfiles(context);
    editor::loadProfileForm(context.form);
    context.window.showOpenProfile(context.opening);
    // Closed by its frame.
    if (context.opening.form.loaded)
        profile::cmdClose_Click(context.opening);
    // Gone before it could be read: that was told, and the former profile is still in the editor.
    const bool missing = std::exchange(frame.bDecryptFileMissing, false);
    if (context.opening.bProfileOpened && !missing) {
        former.drop();
        showOpened(context);
    } else if (!wasLoaded) {
        editor::unloadProfileForm(context.form);
    }
}

} // namespace

void mnuOpen_Click(FrameContext& context)
{
    runCommand(context, "mnuOpen_Click", [&] { open(context); });
}

void mnuEdit_Click(FrameContext& context)
{
    runCommand(context, "mnuEdit_Click", [&] {
        FrameState& frame = context.profiles.frame;
        // In another mode the check would take the person's changes back.
        if (!frame.BL_Open_Mode)
            return;
        const std::string_view name = base::trim(frame.ST_Current_Profile);
        if (name.empty())
            context.form.window.caption = texts::kNamelessCaption;
        else
            captionEditor(context, name);
        context.main.Toolbar1(3).toolTip = texts::kEditTip;
        frame.panel1.text = texts::kEditing;
        frame.BL_Edit_Mode = true;
        frame.BL_New_Mode = false;
        frame.BL_Open_Mode = false;
        editor::EditProfileChk(context.form);
        frame.BL_Edit_Changed = false;
        frame.pb.value = 0;
        showEditor(context);
    });
}

} // namespace vardelin::frame
