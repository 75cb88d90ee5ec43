#include "ui/list_model.h"

#include "ui/shown_text.h"

#include <utility>

namespace vardelin::ui {
namespace {

const std::string& cell(const state::ListRow& row, int column)
{
    return column == 0 ? row.text : column == 1 ? row.sub : row.third;
}

} // namespace

ListModel::ListModel(state::ListBox& list, Tick tick, QStringList columns,
                     std::function<void(std::size_t)> ticked, QObject* parent)
    : QAbstractTableModel(parent), m_list(list), m_tick(tick), m_columns(std::move(columns)),
      m_ticked(std::move(ticked)), m_shownRows(static_cast<qsizetype>(list.rows.size()))
{
}

void ListModel::refresh()
{
    const auto rows = static_cast<qsizetype>(m_list.rows.size());
    if (rows != m_shownRows) {
        beginResetModel();
        m_shownRows = rows;
        endResetModel();
    } else if (rows > 0) {
        emit dataChanged(index(0, 0), index(static_cast<int>(rows) - 1, columnCount() - 1));
    }
}

int ListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shownRows);
}

int ListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant ListModel::data(const QModelIndex& index, int role) const
{
    const auto at = static_cast<std::size_t>(index.row());
    if (!index.isValid() || at >= m_list.rows.size())
        return {};
    const state::ListRow& row = m_list.rows[at];
    switch (role) {
    case Qt::DisplayRole:
        return shown(cell(row, index.column()));
    case Qt::ToolTipRole:
        return plainToolTip(shown(cell(row, index.column())));
    case Qt::CheckStateRole:
        if (index.column() == 0)
            return row.*m_tick ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::DecorationRole:
        if (index.column() == 0 && !row.icon.empty())
            return iconOf(row.icon);
        return {};
    default:
        return {};
    }
}

QIcon ListModel::iconOf(const std::string& name) const
{
    const auto [place, isNew] = m_icons.try_emplace(name);
    if (isNew)
        place->second = QIcon::fromTheme(shown(name));
    return place->second;
}

bool ListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const auto at = static_cast<std::size_t>(index.row());
    if (role != Qt::CheckStateRole || at >= m_list.rows.size())
        return false;
    m_list.rows[at].*m_tick = value.toInt() == Qt::Checked;
    m_ticked(at);
    return true;
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_columns.value(section);
    return {};
}

Qt::ItemFlags ListModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (m_list.enabled)
        flags |= Qt::ItemIsEnabled;
    if (index.column() == 0)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

} // namespace vardelin::ui
