#include "ui/archive_form_handlers.h"

#include "archive/deletion.h"

#include <utility>

namespace vardelin::ui {
namespace {

constexpr int kRightButton = 2;

// A key's filter by way of `through`; a key that the handler could not look at is dropped.
KeyFilter filter(const Through& through, const char* name, KeyFilter body)
{
    return [through, name, body = std::move(body)](int code) {
        int typedCode = 0;
        through(name, [&] { typedCode = body(code); })();
        return typedCode;
    };
}

} // namespace

CancelHandlers cancelHandlers(runs::BackupContext& context, HandlerRun run)
{
    const Through through{std::move(run)};
    CancelHandlers handlers;
    handlers.cmdCancel_Click =
        through("cmdCancel_Click", [&context] { runs::cmdCancel_Click(context); });
    handlers.Form_QueryUnload = [&context, through] {
        bool goes = false;
        through("Form_QueryUnload", [&] { goes = runs::Form_QueryUnload(context); })();
        return goes;
    };
    return handlers;
}

ReviewHandlers reviewHandlers(archive::ReviewContext& review, runs::RestoreContext& restore,
                              HandlerRun run)
{
    const Through through{std::move(run)};
    ReviewHandlers handlers;
    handlers.rowButtonClicked = [&review, through](std::size_t row) {
        through("lstRestore_MouseDown", [&] { archive::rowButtonClicked(review, row); })();
    };
    handlers.rowsRightClicked = [&review, through] {
        bool opens = false;
        through("lstRestore_MouseDown", [&] { opens = archive::rowsRightClicked(review); })();
        return opens;
    };
    handlers.mnuByDate_Click =
        through("mnuByDate_Click", [&restore] { runs::mnuByDate_Click(restore); });
    handlers.mnuAsOf_Click = through("mnuAsOf_Click", [&restore] { runs::mnuAsOf_Click(restore); });
    handlers.mnuDel_Click = through("mnuDel_Click", [&review] { archive::mnuDel_Click(review); });
    return handlers;
}

RestoreLocationHandlers restoreLocationHandlers(runs::RestoreContext& context, HandlerRun run)
{
    const Through through{std::move(run)};
    RestoreLocationHandlers handlers;
    handlers.cmbRestLoc.click =
        through("cmbRestLoc_Click", [&context] { runs::cmbRestLoc_Click(context); });
    handlers.cmbRestLoc.keyPress = runs::cmbRestLoc_KeyPress;
    handlers.cmbRestLoc.keyDown = runs::cmbRestLoc_KeyDown;
    handlers.txtRestLoc.keyPress = filter(through, "txtRestLoc_KeyPress", [&context](int key) {
        return runs::txtRestLoc_KeyPress(context, key);
    });
    handlers.txtRestLoc.rightButton = through(
        "txtRestLoc_MouseDown", [&context] { runs::txtRestLoc_MouseDown(context, kRightButton); });
    handlers.cmdBrowse_Click =
        through("cmdBrowse_Click", [&context] { runs::cmdBrowse_Click(context); });
    handlers.cmdOK_Click = through("cmdOk_Click", [&context] { runs::restoreOk_Click(context); });
    handlers.cmdCancel_Click =
        through("cmdCancel_Click", [&context] { runs::restoreCancel_Click(context); });
    return handlers;
}

ByDateHandlers byDateHandlers(runs::RestoreContext& context, HandlerRun run)
{
    const Through through{std::move(run)};
    ByDateHandlers handlers;
    handlers.cmdOk_Click = through("cmdOk_Click", [&context] { runs::byDateOk_Click(context); });
    handlers.cmdCancel_Click =
        through("cmdCancel_Click", [&context] { runs::byDateCancel_Click(context); });
    return handlers;
}

LogHandlers logHandlers(logs::LogViewContext& context, HandlerRun run)
{
    const Through through{std::move(run)};
    LogHandlers handlers;
    handlers.lstBackupLog_DblClick = [&context, through](const state::LogRow& row) {
        std::string report;
        through("lstBackupLog_DblClick", [&] { report = logs::missedReportText(context, row); })();
        return report;
    };
    return handlers;
}

PasswordHandlers reviewPasswordHandlers(runs::PasswordGateContext& gate, state::frmResPwd& form,
                                        Handler cmdCancel_Click, HandlerRun run)
{
    const Through through{std::move(run)};
    PasswordHandlers handlers;
    handlers.cmdOk_Click = through("cmdOk_Click", [&] { runs::cmdOk_Click(gate, form); });
    handlers.lblForgotPwd_Click =
        through("lblForgotPwd_Click", [&] { runs::lblForgotPwd_Click(gate, form); });
    handlers.cmdCancel_Click = through("cmdCancel_Click", std::move(cmdCancel_Click));
    return handlers;
}

} // namespace vardelin::ui
