#include "editor/other_data_form.h"

#include "base/text.h"
#include "editor/extension_lists.h"
#include "editor/include_texts.h"

#include <algorithm>

namespace vardelin::editor {
namespace {

namespace texts = include_texts;
using base::equalsIgnoringCase;
using base::trim;

constexpr std::string_view kAllFiles = "*.*";

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

// What stays in a box: runs of stars become one star. Blanks stay, too, unless nothing but `*.*` is
// left without them.
std::string tidied(std::string_view names)
{
    const auto folded = [](std::string text) {
        while (contains(text, "**"))
            text = base::replaceAll(text, "**", "*");
        return text;
    };
    if (folded(base::replaceAll(names, " ", "")) == kAllFiles)
        return std::string(kAllFiles);
    return folded(std::string(names));
}

// `*.*` is all files, which makes no sense as one pattern among others nor alone.
bool isAllFilesAtAnEdge(std::string_view names)
{
    return contains(names, ",*.*,") || trim(names).starts_with(kAllFiles) ||
           trim(names).ends_with(",*.*,") || trim(names).ends_with(",*.*");
}

bool hasAllFilesElement(std::string_view names)
{
    const auto elements = base::split(names, ",");
    return contains(names, ",") &&
           std::find(elements.begin(), elements.end(), kAllFiles) != elements.end();
}

// Elements are compared only where both sides are lists: `doc*,TXT*` against `txt*` is no clash.
bool shareAnEntry(std::string_view incl, std::string_view excl)
{
    if (!contains(incl, ",") || !contains(excl, ","))
        return !incl.empty() && !excl.empty() && equalsIgnoringCase(incl, excl);
    const auto excluded = base::split(excl, ",");
    for (const std::string_view name : base::split(incl, ",")) {
        const auto isSame = [&](std::string_view other) { return equalsIgnoringCase(name, other); };
        if (std::any_of(excluded.begin(), excluded.end(), isSame))
            return true;
    }
    return false;
}

// What is wrong with the patterns; empty where nothing is.
std::string_view refusal(std::string_view incl, std::string_view excl)
{
    if (isAllFilesAtAnEdge(incl) || isAllFilesAtAnEdge(excl))
        return texts::kAllFilesRefused;
    if (hasAllFilesElement(incl) || hasAllFilesElement(excl))
        return texts::kAllFilesRefused;
    if (shareAnEntry(incl, excl))
        return texts::kSameEntries;
    if (incl == "*" || excl == "*")
        return texts::kStarRefused;
    return {};
}

void putText(PagesContext& context, state::TextBox& box, const std::string& text)
{
    if (box.text == text)
        return;
    box.text = text;
    noteChange(context.frame);
}

void openWith(PagesContext& context, bool byExtension)
{
    loadOtherdata(context);
    state::ProfileEditorState& editor = context.editor;
    const bool open = context.frame.BL_Open_Mode;
    editor.fmeExclude.enabled = !open && byExtension;
    editor.fmeFilesByNames.enabled = !open && !byExtension;
    if (open) {
        editor.fmeInclude.enabled = false;
        editor.fmeOtherData.enabled = false;
        ExclList(context, context.store.opened.clxnOpenedExcluded);
    }
    context.pages.otherdata.visible = true;
    context.window.showOtherdata();
    context.pages.otherdata.visible = false;
}

} // namespace

void loadOtherdata(PagesContext& context)
{
    if (context.pages.otherdata.loaded)
        return;
    context.pages.otherdata.loaded = true;
    if (!context.frame.BL_Open_Mode)
        ListExclForFileExt(context);
}

void unloadOtherdata(PagesContext& context)
{
    context.pages.otherdata = {};
    context.editor.lstExclude.clear();
    context.editor.txtInclNames.text.clear();
    context.editor.txtExclNames.text.clear();
    ++context.editor.revision;
}

void cmdExclude_Click(PagesContext& context)
{
    runHandler(context, "cmdExclude_Click", [&] { openWith(context, true); });
}

void cmdExclInclByNames_Click(PagesContext& context)
{
    runHandler(context, "cmdExclInclByNames_Click", [&] { openWith(context, false); });
}

void cmdSetOK_Click(PagesContext& context)
{
    runHandler(context, "cmdSetOK_Click", [&] {
        const std::string incl = tidied(context.editor.txtInclNames.text);
        const std::string excl = tidied(context.editor.txtExclNames.text);
        putText(context, context.editor.txtInclNames, incl);
        putText(context, context.editor.txtExclNames, excl);
        const std::string_view wrong = refusal(incl, excl);
        if (wrong.empty())
            context.pages.otherdata.visible = false;
        else
            tell(context, wrong);
    });
}

void cmdCancel_Click(PagesContext& context)
{
    runHandler(context, "cmdCancel_Click", [&] {
        if (!context.frame.BL_Open_Mode) {
            putText(context, context.editor.txtInclNames, {});
            putText(context, context.editor.txtExclNames, {});
            std::vector<state::ListRow>& rows = context.editor.lstExclude.rows;
            for (std::size_t row = 0; row < rows.size(); ++row) {
                if (rows[row].checked) {
                    rows[row].checked = false;
                    lstExclude_ItemCheck(context, row);
                }
            }
        }
        context.pages.otherdata.visible = false;
    });
}

int namesKeyPress(int key)
{
    return refuseKeys(key, "\\/:?\"<>|");
}

} // namespace vardelin::editor
