#include "archive/line_files.h"
#include "archive/review.h"
#include "archive/review_columns.h"
#include "archive/review_texts.h"
#include "archive/review_work.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "trace/messages.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace vardelin::archive {
namespace {

using base::RuntimeError;
using state::frmVDStorage;
using state::ReviewRow;
using state::RowButton;
namespace texts = review_texts;

constexpr std::size_t kTagWithUnderscore = 4;

ReviewRow& rowAt(frmVDStorage& form, std::size_t row)
{
    if (row < 1 || row > form.lstRestore.size())
        throw RuntimeError(base::error_number::kSubscript, std::to_string(row));
    return form.lstRestore[row - 1];
}

// Where the block of rows below a row ends: the last row of a deeper level.
std::size_t lastBelow(const frmVDStorage& form, std::size_t row)
{
    const std::uint16_t level = form.lstRestore[row - 1].level;
    std::size_t last = row;
    while (last < form.lstRestore.size() && form.lstRestore[last].level > level)
        ++last;
    return last;
}

// A child's item, `report.doc_007?`, `README_000|?` or `work`, taken apart. One mark of each at
// most is taken off: a name may end in the same characters.
struct ChildItem {
    std::string_view name;
    bool file = false;
};

ChildItem childItem(std::string_view item)
{
    ChildItem child{item, false};
    if (child.name.ends_with('?')) {
        child.name.remove_suffix(1);
        child.file = true;
        if (child.name.ends_with('|'))
            child.name.remove_suffix(1);
    }
    return child;
}

ReviewRow fileRow(std::string_view name, std::string_view key)
{
    ReviewRow row;
    row.file = true;
    row.key = key;
    row.text = name;
    if (name.ends_with("_000")) {
        row.text.resize(row.text.size() - kTagWithUnderscore);
        row.text += texts::kOriginal;
    }
    return row;
}

// A row that comes from a list of names: groups, drives and settings groups.
ReviewRow namedRow(const ReviewContext& context, std::string_view name, const ReviewRow* parent)
{
    ReviewRow row;
    row.text = row.key = name;
    if (parent == nullptr) {
        // A catalog line among the groups is one that could not be read: nothing opens there.
        const bool isGroup = name.find('\\') == std::string_view::npos;
        row.button = isGroup ? RowButton::Plus : RowButton::None;
    } else if (!context.review.bTopLevel) {
        row.key += '\\';
        row.button = RowButton::Plus;
    }
    return row;
}

// What opening a row finds in the lines of model.txt.
class Opening {
public:
    Opening(ReviewContext& context, const ReviewRow& row)
        : m_context(context), m_review(context.review), m_key(row.key),
          m_isGroup(row.level == 0 && row.text == kFilesGroup)
    {
    }

    // Raises what reading raises. `isOpen` tells whether the file could be opened.
    void read(bool& isOpen)
    {
        PacedLoop loop(m_context.machine.messageLoop, m_context.machine.clock);
        LineReader lines(m_context.machine.fileSystem, modelPath(m_context.frame.ST_App_Path));
        isOpen = true;
        const bool anyDeleted = m_review.bDeleteDone && !m_review.clxnDeleted.empty();
        while (const auto line = lines.next()) {
            loop.step();
            if (anyDeleted && m_review.clxnDeleted.contains(*line))
                continue;
            take(base::afterFirst(*line, "\\"));
        }
    }

    const std::string& names() const { return m_names; }
    bool isFromNames() const { return m_isGroup; }

private:
    void take(std::string_view entry)
    {
        if (m_isGroup)
            takeDrive(entry.substr(0, 2));
        else
            takeChild(entry);
    }

    void takeDrive(std::string_view drive)
    {
        if (drive.size() < 2 || drive == m_lastDrive)
            return;
        m_lastDrive = drive;
        const bool known = std::find(m_drives.begin(), m_drives.end(), drive) != m_drives.end();
        if (known)
            return;
        m_drives.emplace_back(drive);
        m_names.append(m_names.empty() ? "" : ",").append(drive);
    }

    void takeChild(std::string_view entry)
    {
        const std::size_t at = entry.find(m_key);
        if (at == std::string_view::npos)
            return;
        const std::string_view rest = entry.substr(at + m_key.size());
        const std::size_t end = rest.find('\\');
        if (end == std::string_view::npos) {
            std::string item(rest);
            item += rest.find('.') == std::string_view::npos ? "|?" : "?";
            m_review.clxnChildren.add(std::move(item));
            m_review.clxnChildKeys.add(std::string(entry));
            return;
        }
        // The lines of a folder are adjacent, so most repetitions are told at a glance.
        const std::string_view folder = rest.substr(0, end);
        if (folder == m_lastFolder)
            return;
        m_lastFolder = folder;
        if (m_review.clxnChildren.tryAdd(m_lastFolder, m_lastFolder))
            m_review.clxnChildKeys.add(m_key + m_lastFolder + "\\");
    }

    ReviewContext& m_context;
    ReviewState& m_review;
    std::string m_key;
    bool m_isGroup;
    std::string m_names;
    std::string m_lastDrive;
    std::string m_lastFolder;
    std::vector<std::string> m_drives;
};

// The subfolders of OtherData, comma-separated, in the folder's order.
std::string settingsGroups(const ReviewContext& context)
{
    auto entries = context.machine.fileSystem
                       .openFolder(context.review.sStoreRoot + std::string(kOtherDataFolder))
                       ->list();
    std::sort(entries.begin(), entries.end(),
              [](const auto& a, const auto& b) { return base::naturalLess(a.name, b.name); });
    std::string names;
    for (const platform::FolderEntry& entry : entries) {
        if (entry.kind == platform::FileKind::Folder)
            names.append(names.empty() ? "" : ",").append(entry.name);
    }
    return names;
}

void openRow(ReviewContext& context, std::size_t index, bool& isOpen)
{
    ReviewState& review = context.review;
    const ReviewRow& row = rowAt(context.form, index);
    review.bTopLevel = false;
    review.clxnChildren.clear();
    review.clxnChildKeys.clear();
    const bool isSettings = row.level == 0 && row.text == texts::kOtherDataGroup;
    Opening opening(context, row);
    // The settings have no lines there, but without the list there is no review either.
    opening.read(isOpen);
    std::string names = opening.names();
    if (isSettings && review.bOtherDataExists) {
        review.bTopLevel = true;
        names = settingsGroups(context);
    }
    const bool fromNames = isSettings || opening.isFromNames();
    const std::size_t count =
        fromNames ? base::split(names, ",").size() : review.clxnChildren.count();
    std::size_t parent = index;
    std::size_t insertAfter = index;
    AddChildItems(context, parent, insertAfter, count, !fromNames, names, review.clxnChildren);
    rowAt(context.form, index).button = RowButton::Minus;
    ++context.form.rowsRevision;
    // They were for the rows alone and can be large.
    review.clxnChildren.clear();
    review.clxnChildKeys.clear();
}

} // namespace

void rowButtonClicked(ReviewContext& context, std::size_t row)
{
    frmVDStorage& form = context.form;
    if (form.busy || row < 1 || row > form.lstRestore.size())
        return;
    constexpr std::string_view kName = "lstRestore_MouseDown";
    bool isOpen = true;
    base::PendingError failure;
    failure.attempt([&] {
        const trace::TraceScope scope(context.trace.trace, kName);
        const ReviewWork work(form);
        switch (form.lstRestore[row - 1].button) {
        case RowButton::Plus:
            isOpen = false;
            openRow(context, row, isOpen);
            break;
        case RowButton::Minus:
            RemoveChildItems(context, row, form.lstRestore.size());
            form.lstRestore[row - 1].button = RowButton::Plus;
            ++form.rowsRevision;
            break;
        case RowButton::None:
            break;
        }
    });
    const std::string_view sentence = !isOpen ? texts::kOpeningNoFile
                                      : failure.number == base::error_number::kPastEnd
                                          ? trace::message(texts::kOpeningPastEnd)
                                          : trace::message(texts::kOpeningFailed);
    trace::errorTail(context.trace, {kName, kName, texts::kModule, sentence}, failure);
}

std::size_t parentRow(const frmVDStorage& form, std::size_t row)
{
    if (row < 1 || row > form.lstRestore.size())
        return 0;
    const std::uint16_t level = form.lstRestore[row - 1].level;
    while (--row > 0) {
        if (form.lstRestore[row - 1].level < level)
            return row;
    }
    return 0;
}

bool rowsRightClicked(ReviewContext& context)
{
    if (context.form.busy)
        return false;
    bool anything = false;
    bool group = false;
    for (const ReviewRow& row : context.form.lstRestore) {
        if (!row.selected)
            continue;
        anything = true;
        // By the text, wherever in the tree: a file of that name has no menu either.
        group = group || row.text.find(kFilesGroup) != std::string::npos ||
                row.text.find(texts::kOtherDataGroup) != std::string::npos;
    }
    if (anything && !group)
        return true;
    context.machine.messageBoxes.show(texts::kSelectSomething, texts::kTitle);
    return false;
}

void AddChildItems(ReviewContext& context, std::size_t& index, std::size_t& insertAfter,
                   std::size_t count, bool fromCollection, std::string_view names,
                   const base::TextCollection& collection)
{
    constexpr std::string_view kName = "AddChildItems";
    frmVDStorage& form = context.form;
    state::ProgressBar& bar = context.frame.pb;
    trace::runTraced(
        context.trace, kName, texts::kModule, trace::message(texts::kAddingFailed), [&] {
            const ReviewRow* parent = index == 0 ? nullptr : &rowAt(form, index);
            const auto level =
                static_cast<std::uint16_t>(parent == nullptr ? 0 : parent->level + 1);
            const std::vector<std::string_view> list =
                fromCollection ? std::vector<std::string_view>{} : base::split(names, ",");
            ColumnFiller columns(context);
            PacedLoop loop(context.machine.messageLoop, context.machine.clock);
            std::vector<ReviewRow> rows;
            rows.reserve(count);
            bar.maximum = std::max(static_cast<double>(count), 1.0);
            bar.value = 0;
            for (std::size_t i = 1; i <= count; ++i) {
                ReviewRow row;
                if (!fromCollection) {
                    row = namedRow(context, list[i - 1], parent);
                } else if (const ChildItem child = childItem(collection.item(i)); child.file) {
                    row = fileRow(child.name, context.review.clxnChildKeys.item(i));
                    columns.fill(row, child.name);
                } else {
                    row.text = child.name;
                    row.key = context.review.clxnChildKeys.item(i);
                    row.button = RowButton::Plus;
                }
                row.level = level;
                rows.push_back(std::move(row));
                bar.value = static_cast<double>(i);
                loop.step();
            }
            if (insertAfter > form.lstRestore.size()) // the form was unloaded meanwhile
                throw RuntimeError(base::error_number::kSubscript, std::to_string(insertAfter));
            // All at once, so that the rows behind move once and a failure leaves no half folder.
            const auto at = form.lstRestore.begin() + static_cast<std::ptrdiff_t>(insertAfter);
            form.lstRestore.insert(at, std::make_move_iterator(rows.begin()),
                                   std::make_move_iterator(rows.end()));
            insertAfter += count;
            ++form.rowsRevision;
            if (count > 0) {
                form.bringIntoView = true;
                form.firstInView = index == 0 ? 0 : index - 1;
                form.lastInView = insertAfter - 1;
            }
        });
    bar.maximum = 100;
    bar.value = 0;
}

void RemoveChildItems(ReviewContext& context, std::size_t index, std::size_t last)
{
    trace::runTraced(context.trace, "RemoveChildItems", texts::kModule,
                     trace::message(texts::kRemovingFailed), [&] {
                         frmVDStorage& form = context.form;
                         rowAt(form, index);
                         const std::size_t end = std::min(last, lastBelow(form, index));
                         if (end <= index)
                             return;
                         const auto first = form.lstRestore.begin();
                         form.lstRestore.erase(first + static_cast<std::ptrdiff_t>(index),
                                               first + static_cast<std::ptrdiff_t>(end));
                         ++form.rowsRevision;
                     });
}

SelectionTotals selectionTotals(const frmVDStorage& form)
{
    SelectionTotals totals;
    for (const ReviewRow& row : form.lstRestore) {
        if (!row.selected)
            continue;
        ++totals.rows;
        totals.files += row.file ? 1U : 0U;
        totals.bytes += row.sizeBytes;
    }
    return totals;
}

std::string selectionText(const frmVDStorage& form)
{
    constexpr std::array<std::string_view, 5> kUnits{"B", "KB", "MB", "GB", "TB"};
    const std::size_t rows = form.lstRestore.size();
    std::string text = fmt::format("{} {}", rows, rows == 1 ? "row" : "rows");
    const SelectionTotals totals = selectionTotals(form);
    if (totals.rows == 0)
        return text;
    text += fmt::format(", {} selected", totals.rows);
    if (totals.files == 0)
        return text;
    auto size = static_cast<double>(totals.bytes);
    std::size_t unit = 0;
    for (; size >= 1024 && unit + 1 < kUnits.size(); ++unit)
        size /= 1024;
    return text + fmt::format(", {} {}", base::numberText(base::round(size, 1)), kUnits[unit]);
}

} // namespace vardelin::archive
