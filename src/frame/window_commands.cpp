#include "frame/window_commands.h"

#include "editor/source_tree.h"
#include "frame/command.h"
#include "frame/main_frame.h"
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
        if (!machine.fileSystem.fileExists(file))
            throw base::RuntimeError(base::error_number::kFileNotFound, file);
        machine.processes.start(viewer.program, {machine.fileSystem.toNative(file)});
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
