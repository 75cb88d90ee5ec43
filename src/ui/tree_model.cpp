#include "ui/tree_model.h"

#include "base/runtime_error.h"
#include "editor/editor_context.h"
#include "ui/shown_text.h"

#include <algorithm>
#include <utility>

#include <QLocale>

namespace vardelin::ui {

using state::TreeNode;

namespace {

// Beyond so many folders with new or lost rows, telling the view of each costs more than to begin
// anew: each call moves all that the view remembers of rows.
constexpr std::size_t kMostChangedFolders = 64;

// A name without a blank is broken in the tool tip after so many letters.
constexpr qsizetype kTipLetters = 80;

// The children of a node that are rows, the roots for null. The one without a text that stands for
// contents not read yet comes first where there is one.
class Children {
public:
    Children(const state::TreeView& tree, const TreeNode* parent)
        : m_tree(tree), m_parent(parent),
          m_skipped(parent != nullptr && parent->child() != nullptr && parent->child()->text.empty()
                        ? 1
                        : 0)
    {
    }
    std::size_t count() const
    {
        return m_parent == nullptr ? m_tree.roots().size() : m_parent->children() - m_skipped;
    }
    const TreeNode& at(std::size_t place) const
    {
        return m_parent == nullptr ? *m_tree.roots()[place] : *m_parent->childAt(place + m_skipped);
    }

private:
    const state::TreeView& m_tree;
    const TreeNode* m_parent;
    std::size_t m_skipped;
};

QString kindOf(const TreeNode& node)
{
    switch (node.image) {
    case editor::kDriveImage:
        return TreeModel::tr("Drive");
    case editor::kFolderImage:
        return TreeModel::tr("Folder");
    default:
        return TreeModel::tr("File");
    }
}

bool isFile(const TreeNode& node)
{
    return node.image != editor::kDriveImage && node.image != editor::kFolderImage;
}

// As rich text, so that a name that looks like markup stays a name and long lines wrap.
QString breakable(const QString& name)
{
    QString text;
    for (qsizetype at = 0; at < name.size(); at += kTipLetters) {
        if (at > 0)
            text += QChar(0x200B); // a place for a line's end, without width
        text += name.mid(at, kTipLetters);
    }
    return text.toHtmlEscaped();
}

} // namespace

struct TreeModel::Row {
    std::uint64_t serial = 0; // 0 for the root, and for the row of the reading
    Row* parent = nullptr;
    const TreeNode* node = nullptr; // as of the last refresh
    std::size_t place = 0;
    bool expandable = false;
    bool expanded = false; // as the view was told last
    bool isReading = false;
    std::vector<std::unique_ptr<Row>> rows{};
};

TreeModel::TreeModel(state::TreeView& tree, TreeIcons& icons, platform::FileSystem* fileSystem,
                     QObject* parent)
    : QAbstractItemModel(parent), m_tree(tree), m_icons(icons), m_fileSystem(fileSystem),
      m_root(std::make_unique<Row>())
{
    refresh();
}

TreeModel::~TreeModel() = default;

// ---- bringing the rows to the record

void TreeModel::build(Row& parent, const TreeNode* node, std::size_t place) const
{
    auto added = std::make_unique<Row>();
    added->serial = node->serial();
    added->parent = &parent;
    added->node = node;
    added->place = place;
    added->expandable = node->children() > 0;
    const Children children(m_tree, node);
    added->rows.reserve(children.count());
    for (std::size_t i = 0; i < children.count(); ++i)
        build(*added, &children.at(i), i);
    parent.rows.push_back(std::move(added));
}

TreeModel::Changes TreeModel::refresh()
{
    Changes changes;
    if (m_revision == m_tree.structureRevision())
        return changes;
    hideReading();
    m_revision = 0; // no pointer holds before the end
    if (needsReset()) {
        beginResetModel();
        m_root->rows.clear();
        const Children roots(m_tree, nullptr);
        for (std::size_t i = 0; i < roots.count(); ++i)
            build(*m_root, &roots.at(i), i);
        m_revision = m_tree.structureRevision();
        endResetModel();
        changes.reset = true;
    } else {
        reconcile(*m_root, nullptr, changes);
        m_revision = m_tree.structureRevision();
    }
    return changes;
}

bool TreeModel::needsReset() const
{
    const Children roots(m_tree, nullptr);
    const bool sameStart = !m_root->rows.empty() && roots.count() > 0 &&
                           m_root->rows.front()->serial == roots.at(0).serial();
    std::size_t changed = 0;
    return !sameStart || differsMuch(*m_root, nullptr, changed);
}

// Nodes come at the end only, so the rows that stay are a part of the new ones in their order.
bool TreeModel::differsMuch(const Row& row, const TreeNode* parent, std::size_t& changed) const
{
    const Children children(m_tree, parent);
    const auto& rows = row.rows;
    const bool same =
        rows.size() == children.count() &&
        (rows.empty() || rows.back()->serial == children.at(children.count() - 1).serial());
    if (!same && ++changed > kMostChangedFolders)
        return true;
    std::size_t old = 0;
    for (std::size_t i = 0; i < children.count() && old < rows.size(); ++i) {
        const TreeNode& child = children.at(i);
        while (old < rows.size() && rows[old]->serial < child.serial())
            ++old;
        if (old == rows.size())
            break;
        if (rows[old]->serial != child.serial())
            return true; // another tree
        if ((child.children() > 0 || !rows[old]->rows.empty()) &&
            differsMuch(*rows[old], &child, changed))
            return true;
        ++old;
    }
    return false;
}

void TreeModel::reconcile(Row& row, const TreeNode* parent, Changes& changes)
{
    const Children children(m_tree, parent);
    auto& rows = row.rows;
    std::vector<std::pair<std::size_t, std::size_t>> gone; // first and last place
    std::size_t next = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (next < children.count() && rows[i]->serial == children.at(next).serial()) {
            rows[i]->node = &children.at(next++);
        } else if (!gone.empty() && gone.back().second + 1 == i) {
            gone.back().second = i;
        } else {
            gone.emplace_back(i, i);
        }
    }
    for (auto range = gone.rbegin(); range != gone.rend(); ++range) {
        const auto [first, last] = *range;
        beginRemoveRows(indexOf(row), static_cast<int>(first), static_cast<int>(last));
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(first),
                   rows.begin() + static_cast<std::ptrdiff_t>(last) + 1);
        for (std::size_t i = first; i < rows.size(); ++i)
            rows[i]->place = i;
        endRemoveRows();
        changes.rows = true;
    }
    const std::size_t kept = rows.size();
    if (parent != nullptr && row.expandable != (parent->children() > 0)) {
        row.expandable = parent->children() > 0;
        changes.expanders = true;
    }
    if (kept < children.count()) {
        beginInsertRows(indexOf(row), static_cast<int>(kept),
                        static_cast<int>(children.count()) - 1);
        rows.reserve(children.count());
        for (std::size_t i = kept; i < children.count(); ++i)
            build(row, &children.at(i), i);
        endInsertRows();
        changes.rows = true;
    }
    for (std::size_t i = 0; i < kept; ++i) {
        Row& each = *rows[i];
        if (each.expandable || each.node->children() > 0 || !each.rows.empty())
            reconcile(each, each.node, changes);
    }
}

std::vector<TreeModel::Expansion> TreeModel::takeExpansions()
{
    std::vector<Expansion> found;
    m_depth = 1;
    collectExpansions(*m_root, 0, true, found);
    return found;
}

void TreeModel::collectExpansions(Row& row, int depth, bool open, std::vector<Expansion>& found)
{
    if (open && !row.rows.empty())
        m_depth = std::max(m_depth, depth + 1);
    for (const auto& each : row.rows) {
        if (!each->expandable || each->isReading)
            continue;
        const TreeNode* node = nodeOf(*each);
        if (node == nullptr)
            continue;
        if (node->expanded != each->expanded) {
            each->expanded = node->expanded;
            found.push_back({indexOf(*each), node->expanded});
        }
        if (!each->rows.empty())
            collectExpansions(*each, depth + 1, open && node->expanded, found);
    }
}

void TreeModel::setExpanded(const QModelIndex& index, bool expanded)
{
    if (TreeNode* node = nodeAt(index)) {
        rowOf(index).expanded = expanded;
        node->expanded = expanded;
    }
}

void TreeModel::showReading(std::uint64_t serial)
{
    const QModelIndex folder = indexOfSerial(serial);
    if (m_reading != nullptr || !folder.isValid())
        return;
    Row& row = rowOf(folder);
    const int place = static_cast<int>(row.rows.size());
    beginInsertRows(folder, place, place);
    auto added = std::make_unique<Row>();
    added->parent = &row;
    added->place = row.rows.size();
    added->isReading = true;
    m_reading = added.get();
    row.rows.push_back(std::move(added));
    endInsertRows();
}

void TreeModel::hideReading()
{
    if (m_reading == nullptr)
        return;
    Row& folder = *m_reading->parent;
    const int place = static_cast<int>(m_reading->place);
    beginRemoveRows(indexOf(folder), place, place);
    m_reading = nullptr;
    folder.rows.pop_back(); // nothing came behind it: a refresh hides it first
    endRemoveRows();
}

// ---- places

TreeModel::Row& TreeModel::rowOf(const QModelIndex& index) const
{
    return index.isValid() ? *static_cast<Row*>(index.internalPointer()) : *m_root;
}

QModelIndex TreeModel::indexOf(const Row& row) const
{
    return &row == m_root.get() ? QModelIndex() : createIndex(static_cast<int>(row.place), 0, &row);
}

const TreeNode* TreeModel::nodeOf(const Row& row) const
{
    if (row.serial == 0)
        return nullptr;
    return m_revision == m_tree.structureRevision() ? row.node : m_tree.findSerial(row.serial);
}

TreeNode* TreeModel::nodeAt(const QModelIndex& index) const
{
    return index.isValid() ? m_tree.findSerial(rowOf(index).serial) : nullptr;
}

QModelIndex TreeModel::indexOf(const TreeNode* node) const
{
    std::vector<std::uint64_t> way; // from the node up
    for (; node != nullptr; node = node->parent())
        way.push_back(node->serial());
    const Row* row = m_root.get();
    for (auto serial = way.rbegin(); serial != way.rend(); ++serial) {
        // The row of the reading has no serial and is the last one.
        const auto end = row->rows.end() - (m_reading != nullptr && m_reading->parent == row);
        const auto hit = std::lower_bound(
            row->rows.begin(), end, *serial,
            [](const auto& each, std::uint64_t wanted) { return each->serial < wanted; });
        if (hit == end || (*hit)->serial != *serial)
            return {};
        row = hit->get();
    }
    return indexOf(*row);
}

QModelIndex TreeModel::indexOfSerial(std::uint64_t serial) const
{
    return indexOf(m_tree.findSerial(serial));
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const auto& rows = rowOf(parent).rows;
    if (row < 0 || static_cast<std::size_t>(row) >= rows.size() || column != 0)
        return {};
    return createIndex(row, column, rows[static_cast<std::size_t>(row)].get());
}

QModelIndex TreeModel::parent(const QModelIndex& index) const
{
    return index.isValid() ? indexOf(*rowOf(index).parent) : QModelIndex();
}

int TreeModel::rowCount(const QModelIndex& parent) const
{
    return static_cast<int>(rowOf(parent).rows.size());
}

int TreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

bool TreeModel::hasChildren(const QModelIndex& parent) const
{
    const Row& row = rowOf(parent);
    return row.expandable || !row.rows.empty();
}

// ---- what a row shows

QVariant TreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Row& row = rowOf(index);
    if (row.isReading) {
        if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole)
            return tr("Reading...");
        return {};
    }
    const TreeNode* node = nodeOf(row);
    if (node == nullptr)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return shown(node->text);
    case Qt::CheckStateRole:
        return boxOf(selectionOf(*node));
    case Qt::DecorationRole:
        return m_icons.iconOf(*node);
    case Qt::ToolTipRole:
        return tipOf(*node);
    case Qt::AccessibleTextRole:
        return tr("%1, %2").arg(shown(node->text), wordsOf(selectionOf(*node)).toLower());
    case Qt::AccessibleDescriptionRole:
        return tr("%1 %2").arg(kindOf(*node), shown(node->fullPath()));
    case kSelectionRole:
        return static_cast<int>(selectionOf(*node));
    default:
        return {};
    }
}

QString TreeModel::tipOf(const TreeNode& node) const
{
    QString lines = breakable(shown(node.text));
    if (isFile(node) && m_fileSystem != nullptr) {
        // Whatever is wrong with the file, to point at it is no time to tell.
        base::PendingError unreadable;
        unreadable.attempt([&] {
            if (const auto info = m_fileSystem->find(node.key()))
                lines += QStringLiteral("<br>") +
                         QLocale()
                             .formattedDataSize(static_cast<qint64>(info->sizeBytes), 1,
                                                QLocale::DataSizeTraditionalFormat)
                             .toHtmlEscaped();
        });
    }
    lines += QStringLiteral("<br>") + wordsOf(selectionOf(node));
    return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(lines);
}

bool TreeModel::setData(const QModelIndex& index, const QVariant&, int role)
{
    TreeNode* node = nodeAt(index);
    if (role != Qt::CheckStateRole || node == nullptr)
        return false;
    // The box knows ticked and unticked only: a partly selected one loses its tick.
    node->checked = selectionOf(*node) == Selection::None;
    const QPersistentModelIndex place = index; // the handler may change the rows
    if (ticked)
        ticked(*node);
    emit dataChanged(place, place);
    return true;
}

Qt::ItemFlags TreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Row& row = rowOf(index);
    if (row.isReading)
        return Qt::ItemNeverHasChildren;
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
    if (m_tree.enabled)
        flags |= Qt::ItemIsEnabled;
    if (!row.expandable && row.rows.empty())
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

} // namespace vardelin::ui
