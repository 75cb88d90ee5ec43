#pragma once

#include "archive/review.h"
#include "logs/log_view.h"
#include "runs/backup_run.h"
#include "runs/password_gate.h"
#include "runs/restore_dialog.h"
#include "ui/cancel_view.h"
#include "ui/log_view.h"
#include "ui/password_view.h"
#include "ui/restore_view.h"
#include "ui/review_view.h"

// The handlers of the archive's forms, as their views take them. What is handed over must outlive
// the handlers. What becomes of a form that fills the main frame's area when the person closes it
// is the application's matter: `Form_Unload` stays empty.
namespace vardelin::ui {

CancelHandlers cancelHandlers(runs::BackupContext& context, HandlerRun run = {});
ReviewHandlers reviewHandlers(archive::ReviewContext& review, runs::RestoreContext& restore,
                              HandlerRun run = {});
RestoreLocationHandlers restoreLocationHandlers(runs::RestoreContext& context, HandlerRun run = {});
ByDateHandlers byDateHandlers(runs::RestoreContext& context, HandlerRun run = {});
LogHandlers logHandlers(logs::LogViewContext& context, HandlerRun run = {});

// frmResPwd where the archive asks for its password. Cancel is the same in all uses of the form, so
// it is given.
PasswordHandlers reviewPasswordHandlers(runs::PasswordGateContext& gate, state::frmResPwd& form,
                                        Handler cmdCancel_Click, HandlerRun run = {});

} // namespace vardelin::ui
