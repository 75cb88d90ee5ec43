#pragma once

#include "frame/frame_context.h"
#include "ui/name_dialog_view.h"
#include "ui/open_profile_view.h"

// The handlers of the main frame's modal forms, as their views take them. What is handed over must
// outlive the handlers.
namespace vardelin::ui {

OpenProfileHandlers openProfileHandlers(profile::OpeningContext& context, HandlerRun run = {});
NameDialogHandlers nameDialogHandlers(frame::FrameContext& context, state::frmRestDialog& form,
                                      HandlerRun run = {});

} // namespace vardelin::ui
