#pragma once

#include "editor/pages_context.h"
#include "state/password_form.h"
#include "ui/other_data_view.h"
#include "ui/password_view.h"

// The handlers of the editor's modal forms, as their views take them. What is handed over must
// outlive the handlers.
namespace vardelin::ui {

OtherDataHandlers otherDataHandlers(editor::PagesContext& context, HandlerRun run = {});

// frmResPwd where the editor changes a password or has it confirmed.
PasswordHandlers editorPasswordHandlers(editor::PagesContext& context, state::frmResPwd& form,
                                        HandlerRun run = {});

} // namespace vardelin::ui
