#include "ui/editor_form_handlers.h"

#include "editor/extension_lists.h"
#include "editor/other_data_form.h"
#include "editor/password_page.h"

#include <utility>

namespace vardelin::ui {

OtherDataHandlers otherDataHandlers(editor::PagesContext& context, HandlerRun run)
{
    const Through through{std::move(run)};
    TextHandlers names;
    names.change = through("txtNames_Change", [&context] { editor::noteChange(context.frame); });
    names.keyPress = editor::namesKeyPress;
    OtherDataHandlers handlers;
    handlers.lstExclude_ItemCheck = [&context, through](std::size_t row) {
        through("lstExclude_ItemCheck", [&] { editor::lstExclude_ItemCheck(context, row); })();
    };
    handlers.lstExclude_ColumnClick = [&context, through](std::size_t column) {
        through("lstExclude_ColumnClick",
                [&] { editor::lstExclude_ColumnClick(context, column); })();
    };
    handlers.txtInclNames = names;
    handlers.txtExclNames = names;
    handlers.cmdSetOK_Click =
        through("cmdSetOK_Click", [&context] { editor::cmdSetOK_Click(context); });
    handlers.cmdCancel_Click =
        through("cmdCancel_Click", [&context] { editor::cmdCancel_Click(context); });
    // "&Clear" would throw away what the person leaves; patterns that do not fit must not stay.
    handlers.close = handlers.cmdSetOK_Click;
    return handlers;
}

PasswordHandlers editorPasswordHandlers(editor::PagesContext& context, state::frmResPwd& form,
                                        HandlerRun run)
{
    const Through through{std::move(run)};
    PasswordHandlers handlers;
    handlers.cmdOk_Click = through("cmdOk_Click", [&] { editor::cmdOk_Click(context, form); });
    handlers.cmdCancel_Click =
        through("cmdCancel_Click", [&] { editor::cmdCancel_Click(context, form); });
    return handlers;
}

} // namespace vardelin::ui
