#include "editor/options_page.h"

#include "base/text.h"
#include "editor/options_texts.h"

namespace vardelin::editor {
namespace {

namespace texts = options_texts;
using base::trim;
using state::TextBox;

constexpr std::size_t kSizeUnitEntry = 1; // of cmbSizeOfBkp's list from 0: MB

void emptyAndLock(TextBox& box)
{
    box.text.clear();
    box.locked = true;
}

// A check with a box behind it. True where the box was armed and its default may go in.
bool checkBoxClick(PagesContext& context, const state::CheckBox& check, TextBox& box,
                   std::string_view boxName)
{
    if (check.value == 0) {
        emptyAndLock(box);
        return false;
    }
    box.locked = false;
    if (context.store.scalars.bOptionsLoaded)
        return false;
    context.window.setFocus(boxName);
    return true;
}

// The threshold of the default profile is not the person's own value yet.
void noteQueueChange(state::FrameState& frame)
{
    if (!frame.BL_First_Run)
        noteChange(frame);
}

// Empties the boxes that do not go with the chosen retention option.
void retentionClick(PagesContext& context, std::string_view handler, bool days)
{
    runHandler(context, handler, [&] {
        context.editor.txtLatestVer.text.clear();
        if (days)
            context.editor.txtLatestDaysVer.text.clear();
        noteChange(context.frame);
    });
}

} // namespace

void chkIdle_Click(PagesContext& context)
{
    runHandler(context, "chkIdle_Click", texts::kIdleFailed, [&] {
        TextBox& box = context.editor.txtIdleTime;
        // The schedule's records still stand under the former minutes and are found by them.
        if (context.editor.chkIdle.value == 0 && !box.text.empty())
            context.frame.sOldIdleTime = box.text;
        if (checkBoxClick(context, context.editor.chkIdle, box, "txtIdleTime"))
            box.text = texts::kIdleMinutes;
        noteChange(context.frame);
    });
}

void chkQueueThrld_Click(PagesContext& context)
{
    runHandler(context, "chkQueueThrld_Click", texts::kQueueFailed, [&] {
        TextBox& box = context.editor.txtQueueThrld;
        if (checkBoxClick(context, context.editor.chkQueueThrld, box, "txtQueueThrld"))
            box.text = texts::kQueueFiles;
        noteQueueChange(context.frame);
    });
}

void chkSizeOfBkp_Click(PagesContext& context)
{
    runHandler(context, "chkSizeOfBkp_Click", texts::kSizeFailed, [&] {
        TextBox& box = context.editor.txtSizeOfBkp;
        if (checkBoxClick(context, context.editor.chkSizeOfBkp, box, "txtSizeOfBkp")) {
            box.text = texts::kBackupSize;
            state::ComboBox& unit = context.editor.cmbSizeOfBkp;
            unit.text = unit.items.at(kSizeUnitEntry);
        }
        noteChange(context.frame);
    });
}

void chkWarn_Click(PagesContext& context)
{
    runHandler(context, "chkWarn_Click", texts::kWarnFailed, [&] {
        checkBoxClick(context, context.editor.chkWarn, context.editor.txtWarn, "txtWarn");
        noteChange(context.frame);
    });
}

void txtIdleTime_GotFocus(PagesContext& context)
{
    const std::string& text = context.editor.txtIdleTime.text;
    if (context.frame.sOldIdleTime.empty() && !text.empty())
        context.frame.sOldIdleTime = trim(text);
}

void txtQueueThrld_Change(PagesContext& context)
{
    noteQueueChange(context.frame);
}

void txtWarn_GotFocus(PagesContext& context)
{
    context.editor.txtWarn.maxLength = 2;
    ++context.editor.revision;
}

void txtWarn_LostFocus(PagesContext& context)
{
    std::string& text = context.editor.txtWarn.text;
    if (text.empty() || text.ends_with('%'))
        return;
    text += '%';
    noteChange(context.frame);
    ++context.editor.revision;
}

int countKeyPress(TextBox& box, int key)
{
    if (key != '0' || base::val(trim(box.text)) != 0)
        return digitsOnly(key);
    box.text.clear();
    return 0;
}

int txtWarn_KeyPress(int key)
{
    return digitsOnly(key);
}

void chkCompress_Click(PagesContext& context)
{
    runHandler(context, "chkCompress_Click", [&] {
        context.editor.chkCompress.value = 1;
        noteChange(context.frame);
    });
}

void chkEncrypt_Click(PagesContext& context)
{
    runHandler(context, "chkEncrypt_Click", [&] { noteChange(context.frame); });
}

void chkPrimary_Click(PagesContext& context)
{
    runHandler(context, "chkPrimary_Click", [&] { noteChange(context.frame); });
}

void optVer1_Click(PagesContext& context)
{
    retentionClick(context, "optVer1_Click", true);
}

void optVer2_Click(PagesContext& context)
{
    retentionClick(context, "optVer2_Click", true);
}

void optVer3_Click(PagesContext& context)
{
    retentionClick(context, "optVer3_Click", false);
}

void optVer4_Click(PagesContext& context)
{
    retentionClick(context, "optVer4_Click", false);
}

void optVer5_Click(PagesContext& context)
{
    retentionClick(context, "optVer5_Click", false);
}

void optVer6_Click(PagesContext& context)
{
    runHandler(context, "optVer6_Click", [&] {
        state::ProfileEditorState& editor = context.editor;
        if (!context.store.scalars.bOptionsLoaded) {
            if (editor.txtLatestVer.enabled)
                context.window.setFocus("txtLatestVer");
            editor.txtLatestVer.locked = false;
            editor.txtLatestDaysVer.text.clear();
        }
        noteChange(context.frame);
    });
}

void optVer7_Click(PagesContext& context)
{
    retentionClick(context, "optVer7_Click", true);
}

void optVer8_Click(PagesContext& context)
{
    runHandler(context, "optVer8_Click", [&] {
        state::ProfileEditorState& editor = context.editor;
        if (!context.store.scalars.bOptionsLoaded) {
            editor.txtLatestDaysVer.locked = false;
            editor.txtLatestVer.text.clear();
            editor.txtLatestDaysVer.enabled = true;
            editor.Label4.enabled = true;
            context.window.setFocus("txtLatestDaysVer");
        }
        noteChange(context.frame);
    });
}

void txtLatestVer_GotFocus(PagesContext& context)
{
    if (context.editor.optVer6.value)
        context.editor.txtLatestVer.locked = false;
    ++context.editor.revision;
}

void txtLatestVer_LostFocus(PagesContext& context)
{
    context.editor.txtLatestVer.locked = true;
    ++context.editor.revision;
}

void txtLatestDaysVer_GotFocus(PagesContext& context)
{
    if (context.editor.optVer8.value)
        context.editor.txtLatestDaysVer.locked = false;
    ++context.editor.revision;
}

void txtLatestDaysVer_LostFocus(PagesContext& context)
{
    context.editor.txtLatestDaysVer.locked = true;
    ++context.editor.revision;
}

} // namespace vardelin::editor
