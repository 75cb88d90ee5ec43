#include "editor/extension_lists.h"

#include "base/text.h"
#include "editor/include_texts.h"
#include "editor/other_data_form.h"
#include "editor/source_tree.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace vardelin::editor {
namespace {

namespace texts = include_texts;
using base::equalsIgnoringCase;
using base::TextCollection;
using base::trim;
using state::ListBox;
using state::ListRow;

// The place of the first row with this text, from 0.
std::optional<std::size_t> findRow(const ListBox& list, std::string_view extension)
{
    for (std::size_t i = 0; i < list.rows.size(); ++i) {
        if (equalsIgnoringCase(trim(list.rows[i].text), trim(extension)))
            return i;
    }
    return std::nullopt;
}

ListRow& addExtension(PagesContext& context, ListBox& list, std::string_view extension)
{
    platform::Shell& shell = context.machine.shell;
    const std::string_view text = TrimNull(extension);
    std::string type = shell.typeName(text);
    std::string icon = shell.iconName(text);
    ListRow& row = list.addItem(text);
    row.sub = std::move(type);
    row.icon = std::move(icon);
    return row;
}

void removeExtension(ListBox& list, std::string_view extension)
{
    if (const auto at = findRow(list, extension))
        list.rows.erase(list.rows.begin() + static_cast<std::ptrdiff_t>(*at));
}

void removeEntry(TextCollection& extensions, std::string_view extension)
{
    for (std::size_t i = 1; i <= extensions.count(); ++i) {
        if (equalsIgnoringCase(extensions.item(i), trim(extension))) {
            extensions.remove(i);
            return;
        }
    }
}

const std::string& cell(const ListRow& row, int column)
{
    return column == 0 ? row.text : row.sub;
}

void sort(ListBox& list, const ColumnSort& by)
{
    std::stable_sort(list.rows.begin(), list.rows.end(), [&](const ListRow& a, const ListRow& b) {
        const int order = base::compareIgnoringCase(cell(a, by.SortKey), cell(b, by.SortKey));
        return by.descending ? order > 0 : order < 0;
    });
}

void LoadFileExtIcons(PagesContext& context, ListBox& list, const TextCollection& saved,
                      ColumnSort& order, std::string_view sentence)
{
    runHandler(context, "LoadFileExtIcons", sentence, [&] {
        const Hourglass hourglass(context.form);
        list.clear();
        context.machine.messageLoop.yield();
        for (const std::string& extension : context.machine.shell.extensions()) {
            if (!extension.starts_with('.'))
                continue;
            if (addExtension(context, list, extension).sub.empty())
                list.rows.pop_back();
        }
        if (context.frame.BL_Edit_Mode) {
            for (const std::string& extension : saved.items()) {
                if (!findRow(list, extension))
                    addExtension(context, list, extension);
            }
        }
        if (list.rows.empty())
            return;
        order = {};
        order.Sorted = true;
        sort(list, order);
        list.rows.front().selected = true;
    });
}

// One of the two lists with its opposite and the extensions that are ticked in it.
struct Side {
    ListBox& list;
    ListBox& opposite;
    TextCollection& ticked;
};

Side includeSide(PagesContext& context)
{
    return {context.editor.lstInclude, context.editor.lstExclude, context.store.save.clxnIncluded};
}

Side excludeSide(PagesContext& context)
{
    return {context.editor.lstExclude, context.editor.lstInclude, context.store.save.clxnExcluded};
}

void moveBetween(PagesContext& context, const Side& side, const ListRow& row)
{
    if (row.text.empty())
        return;
    if (row.checked) {
        removeExtension(side.opposite, row.text);
        side.ticked.tryAdd(row.text, row.text);
    } else {
        addExtension(context, side.opposite, row.text);
        removeEntry(side.ticked, row.text);
    }
}

void checkInclude(PagesContext& context, std::size_t row)
{
    ListRow& item = context.editor.lstInclude.rows.at(row);
    if (context.frame.BL_Open_Mode) {
        item.checked = item.checked || !item.text.empty();
        return;
    }
    // The tick needs the list on the other form to take the extension from.
    loadOtherdata(context);
    moveBetween(context, includeSide(context), item);
}

// A tick anywhere in the tree; one that is no longer there does not count against it here.
void lookForSources(PagesContext& context)
{
    const state::TreeView& tree = context.editor.tvwDirectory;
    for (std::size_t i = 1; i <= tree.count(); ++i) {
        if (tree.node(i).checked && !tree.node(i).text.empty())
            context.store.scalars.SourceChecked = true;
    }
}

// False where the tick was refused.
bool checkExclude(PagesContext& context, std::size_t row)
{
    ListBox& list = context.editor.lstExclude;
    ListRow& item = list.rows.at(row);
    state::ProfileScalars& scalars = context.store.scalars;
    lookForSources(context);
    if (context.store.opened.clxnOpenedExcluded.count() != list.rows.size() && item.checked &&
        !scalars.SourceChecked) {
        tell(context, texts::kSelectSources);
        context.store.save.clxnExcluded.clear();
        item.checked = false;
        scalars.SourceChecked = false;
        return false;
    }
    // The default profile with an exclusion is the person's own profile.
    context.frame.BL_First_Run = false;
    if (context.frame.BL_Open_Mode) {
        ListRow& first = list.rows.front();
        first.checked = first.checked || !first.text.empty();
    } else {
        moveBetween(context, excludeSide(context), item);
    }
    return true;
}

void columnClick(PagesContext& context, ListBox& list, ColumnSort& order, std::size_t column,
                 std::string_view name)
{
    std::string& tag = order.Tag.at(column);
    order.descending = std::abs(base::val(tag)) != 0;
    tag = order.descending ? "0" : "1";
    order.SortKey = static_cast<int>(column);
    order.Sorted = true;
    sort(list, order);
    ++context.editor.revision;
    context.window.ensureVisible(name);
}

} // namespace

void ListInclForFileExt(PagesContext& context)
{
    runHandler(context, "ListInclForFileExt", [&] {
        LoadFileExtIcons(context, context.editor.lstInclude,
                         context.store.opened.clxnOpenedIncluded, context.pages.lstIncludeSort,
                         texts::kIncludeIconsFailed);
    });
}

void ListExclForFileExt(PagesContext& context)
{
    runHandler(context, "ListExclForFileExt", [&] {
        // Who fills the form has loaded it: loading it later must not empty the list again.
        context.pages.otherdata.loaded = true;
        LoadFileExtIcons(context, context.editor.lstExclude,
                         context.store.opened.clxnOpenedExcluded,
                         context.pages.otherdata.lstExcludeSort, texts::kExcludeIconsFailed);
    });
}

void ExclList(PagesContext& context, const TextCollection& extensions)
{
    runHandler(context, "ExclList", texts::kExclListFailed, [&] {
        ListBox& list = context.editor.lstExclude;
        list.clear();
        for (const std::string& extension : extensions.items())
            addExtension(context, list, extension).checked = true;
    });
}

void lstInclude_ItemCheck(PagesContext& context, std::size_t row)
{
    runHandler(context, "lstInclude_ItemCheck", trace::message(texts::kIncludeFailed), [&] {
        noteChange(context.frame);
        checkInclude(context, row);
    });
}

void InclCheck(PagesContext& context, std::size_t row)
{
    // Known in the trace by the name of the person's tick.
    runHandler(context, "lstInclude_ItemCheck", trace::message(texts::kIncludeFailed),
               [&] { checkInclude(context, row); });
}

void lstExclude_ItemCheck(PagesContext& context, std::size_t row)
{
    runHandler(context, "lstExclude_ItemCheck", trace::message(texts::kExcludeFailed), [&] {
        if (checkExclude(context, row))
            noteChange(context.frame);
    });
}

void ExclCheck(PagesContext& context, std::size_t row)
{
    runHandler(context, "ExclCheck", trace::message(texts::kExcludeFailed),
               [&] { checkExclude(context, row); });
}

void lstOtherData_ItemCheck(PagesContext& context, std::size_t row)
{
    runHandler(context, "lstOtherData_ItemCheck", trace::message(texts::kOtherDataFailed), [&] {
        noteChange(context.frame);
        std::vector<ListRow>& rows = context.editor.lstOtherData.rows;
        if (context.frame.BL_Open_Mode && !rows.front().text.empty())
            rows.at(row).selected = true;
    });
}

void lstInclude_ColumnClick(PagesContext& context, std::size_t column)
{
    columnClick(context, context.editor.lstInclude, context.pages.lstIncludeSort, column,
                "lstInclude");
}

void lstExclude_ColumnClick(PagesContext& context, std::size_t column)
{
    columnClick(context, context.editor.lstExclude, context.pages.otherdata.lstExcludeSort, column,
                "lstExclude");
}

} // namespace vardelin::editor
