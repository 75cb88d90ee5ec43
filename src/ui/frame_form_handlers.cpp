#include "ui/frame_form_handlers.h"

#include "frame/profile_commands.h"

#include <utility>

namespace vardelin::ui {
namespace {

constexpr int kRightButton = 2;

} // namespace

OpenProfileHandlers openProfileHandlers(profile::OpeningContext& context, HandlerRun run)
{
    const Through through{std::move(run)};
    OpenProfileHandlers handlers;
    handlers.lstOpen_ItemCheck = [&context, through](std::size_t row) {
        through("lstOpen_ItemCheck", [&] { profile::lstOpen_ItemCheck(context, row); })();
    };
    handlers.lstOpen_ColumnClick = [&context, through](std::size_t column) {
        through("lstOpen_ColumnClick", [&] { profile::lstOpen_ColumnClick(context, column); })();
    };
    handlers.cmdOpen_Click =
        through("cmdOpen_Click", [&context] { profile::cmdOpen_Click(context); });
    handlers.cmdClose_Click =
        through("cmdClose_Click", [&context] { profile::cmdClose_Click(context); });
    handlers.cmdSelProfile_Click =
        through("cmdSelProfile_Click", [&context] { profile::cmdSelProfile_Click(context); });
    return handlers;
}

NameDialogHandlers nameDialogHandlers(frame::FrameContext& context, state::frmRestDialog& form,
                                      HandlerRun run)
{
    const Through through{std::move(run)};
    NameDialogHandlers handlers;
    handlers.txtProfileName.keyPress = [&context, &form, through](int key) {
        int typedKey = 0;
        through("txtProfileName_KeyPress",
                [&] { typedKey = frame::txtProfileName_KeyPress(context, form, key); })();
        return typedKey;
    };
    handlers.txtProfileName.rightButton = through("txtProfileName_MouseDown", [&] {
        frame::txtProfileName_MouseDown(context, kRightButton);
    });
    handlers.cmdProfileOK_Click =
        through("cmdProfileOK_Click", [&] { frame::cmdProfileOK_Click(context, form); });
    handlers.cmdResCancel_Click =
        through("cmdResCancel_Click", [&] { frame::cmdResCancel_Click(context, form); });
    return handlers;
}

} // namespace vardelin::ui
