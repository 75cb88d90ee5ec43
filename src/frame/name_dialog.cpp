#include "base/text.h"
#include "editor/pages_context.h"
#include "frame/frame_texts.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"

namespace vardelin::frame {
namespace {

constexpr std::string_view kFormModule = "frmRestDialog";
constexpr std::string_view kRefusedKeys = "\"'*,./<>?|:\\";
constexpr int kEnterKey = 13;

template <typename Body>
void runHandler(FrameContext& context, std::string_view name, Body&& body)
{
    trace::runTraced(context.profiles.trace, name, kFormModule, trace::customMessage(name),
                     std::forward<Body>(body));
}

} // namespace

void PrSaveNameIp(FrameContext& context)
{
    // A dialog that cannot be shown must not leave the former path behind as the new name.
    context.profiles.frame.ST_Current_Profile_Path.clear();
    runProcedure(context, "PrSaveNameIp", [&] {
        state::frmRestDialog form;
        context.window.showRestDialog(form);
        // Closed by its frame: no name was given.
        if (form.loaded)
            cmdResCancel_Click(context, form);
    });
}

void cmdProfileOK_Click(FrameContext& context, state::frmRestDialog& form)
{
    runHandler(context, "cmdProfileOK_Click", [&] {
        const std::string_view name = base::trim(form.txtProfileName.text);
        if (name.empty()) {
            refuse(context, frame_texts::kNameMissing);
            return;
        }
        context.profiles.frame.ST_Current_Profile_Path = name;
        form.loaded = false;
    });
}

void cmdResCancel_Click(FrameContext& context, state::frmRestDialog& form)
{
    runHandler(context, "cmdResCancel_Click", [&] {
        context.profiles.frame.BL_Name_Cancelled = true;
        form.loaded = false;
    });
}

int txtProfileName_KeyPress(FrameContext& context, state::frmRestDialog& form, int key)
{
    if (key == kEnterKey) {
        cmdProfileOK_Click(context, form);
        return 0;
    }
    return editor::refuseKeys(key, kRefusedKeys);
}

void txtProfileName_MouseDown(FrameContext& context, int button)
{
    editor::digitBoxMouseDown(context.form.pages, button);
}

} // namespace vardelin::frame
