#pragma once

#include "frame/frame_context.h"

// The commands of the main frame beside those of the File menu.
namespace vardelin::frame {

// Brings the editor back and sets the commands by its mode; after Close there is none.
void mnuProfile_Click(FrameContext& context);

// The branch of the source tree that is selected.
void mnuExpand_Click(FrameContext& context);
void mnuCollapse_Click(FrameContext& context);

// Shows the help with the program that the system has for it; a missing file or program is told in
// a message that names the file.
void mnuContents_Click(FrameContext& context);
void mnuAbout_Click(FrameContext& context);

struct FrameSize {
    int height = 0;
    int width = 0;
    friend bool operator==(const FrameSize&, const FrameSize&) = default;
};

// The size that the frame takes after it was resized: the one recorded at load, even maximized. A
// minimized frame is left alone.
FrameSize MDIForm_Resize(trace::WindowState windowState, FrameSize recorded, FrameSize now);

} // namespace vardelin::frame
