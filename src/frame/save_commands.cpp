#include "frame/frame_texts.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"

namespace vardelin::frame {

using state::FrameState;
namespace texts = frame_texts;

void mnuSave_Click(FrameContext& context)
{
    runCommand(context, "mnuSave_Click", [&] {
        FrameState& frame = context.profiles.frame;
        frame.panel1.text = texts::kSave;
        context.main.Toolbar1(4).toolTip = texts::kSaveTip;
        if (frame.BL_First_Run)
            frame.ST_Current_Profile = "Default.vdp";
        if (saveByMode(context) && mayGoOn(context)) {
            if (!frame.BL_New_Mode && frame.ST_Current_Profile_Path.find('\\') != std::string::npos)
                captionEditor(context, currentName(frame));
            context.form.window.SSTab1 = 0;
        }
        context.profiles.store.scalars.iValidationTab = 0;
        frame.panel1.text.clear();
    });
}

void mnuSaveAs_Click(FrameContext& context)
{
    runCommand(context, "mnuSaveAs_Click", [&] {
        FrameState& frame = context.profiles.frame;
        frame.panel1.text = texts::kSaveAs;
        context.main.Toolbar1(5).toolTip = texts::kSaveAsTip;
        copyBackRemoteProfile(context);
        if (SaveProfile(context)) {
            captionEditor(context, currentName(frame));
            frame.ST_Current_Profile = currentName(frame);
        } else {
            frame.panel1.text.clear();
        }
        mayGoOn(context);
        context.profiles.store.scalars.iValidationTab = 0;
    });
}

} // namespace vardelin::frame
