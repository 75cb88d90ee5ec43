#pragma once

#include "app/handler_runner.h"
#include "editor/life_cycle.h"
#include "ui/profile_form.h"

namespace vardelin::app {

// The handlers of frmProfile's controls, each the editor's function of its name. All references
// must outlive the handlers.
ui::ProfileFormHandlers editorHandlers(editor::EditorFormContext& context, HandlerRunner& runner);

} // namespace vardelin::app
