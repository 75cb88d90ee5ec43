#include "frame/window_commands.h"

#include "base/runtime_error.h"
#include "editor/source_tree.h"
#include "frame/command.h"
#include "frame/frame_texts.h"
#include "frame/main_frame.h"
#include "frame/steps.h"
#include "platform/help_viewer.h"

#include <string>

namespace vardelin::frame {

void mnuProfile_Click(FrameContext& context)
{
    runCommand(context, "mnuProfile_Click", [&] {
        // Its button stays enabled when Close has switched the menu entry off.
        if (!context.form.window.loaded)
            return;
        context.form.window.visible = true;
        context.window.showEditor();
        enableByMode(context.main, context.profiles.frame);
    });
}

void mnuExpand_Click(FrameContext& context)
{
    runAlone(context, [&] { editor::mnuExpand_Click(context.form.tree); });
}

void mnuCollapse_Click(FrameContext& context)
{
    runAlone(context, [&] { editor::mnuCollapse_Click(context.form.tree); });
}

void mnuContents_Click(FrameContext& context)
{
    runCommand(context, "mnuContents_Click", [&] {
        const platform::Machine& machine = context.profiles.machine;
        const platform::HelpViewer viewer = platform::helpViewer();
        const std::string file =
            platform::joinPath(context.profiles.frame.ST_App_Path, viewer.file);
        // The error form would tell neither the file nor what to do about it.
        const std::string native = machine.fileSystem.toNative(file);
        if (!machine.fileSystem.fileExists(file)) {
            refuse(context, std::string(frame_texts::kHelpMissingStart) + native +
                                std::string(frame_texts::kHelpMissingEnd));
            return;
        }
        base::PendingError noViewer;
        if (!noViewer.attempt([&] { machine.processes.start(viewer.program, {native}); }))
            refuse(context, std::string(frame_texts::kNoHelpViewer) + native);
    });
}

void mnuAbout_Click(FrameContext& context)
{
    runCommand(context, "mnuAbout_Click", [&] { context.window.showAbout(); });
}

FrameSize MDIForm_Resize(trace::WindowState windowState, FrameSize recorded, FrameSize now)
{
    return windowState == trace::WindowState::Minimized ? now : recorded;
}

} // namespace vardelin::frame
