#pragma once

#include "archive/catalog.h"
#include "frame/frame_context.h"
#include "runs/backup_run.h"
#include "runs/password_gate.h"
#include "state/review_form.h"

#include <functional>

// The commands of the main frame that lead to an archive: a backup, and the review.
namespace vardelin::frame {

// Backup Now: saves pending changes, warns on free space, and runs the engine on the profile that
// is saved. The frame is closed while it runs; frmCancel alone can be used.
void mnuBackup_Click(FrameContext& context, runs::BackupContext& backup);

// Holds references only, as FrameContext does.
struct ReviewCommandContext {
    runs::PasswordWindow& passwords;
    state::frmVDStorage& storage;
    const archive::ReviewState& review; // whose archive `storage` shows
    std::function<void()>
        frmVDStorage_Load;            // fills both; unloads the form where there is no backup
    std::function<void()> showReview; // brings the form to the front
    bool& reviewIsOpen;
};

// Review and Restore: asks for the password where the profile has one, and opens the archive. A
// review that is open comes to the front and is not built anew, as long as the profile has the
// archive that it shows: after a Save As, or with another destination, it is another one.
void mnuBkpSto_Click(FrameContext& context, ReviewCommandContext& review);

} // namespace vardelin::frame
