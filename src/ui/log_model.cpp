#include "ui/log_model.h"

#include "base/dates.h"
#include "base/text.h"
#include "ui/look.h"
#include "ui/shown_text.h"

#include <optional>
#include <string>

#include <QApplication>
#include <QPalette>

namespace vardelin::ui {
namespace {

// In bytes; nothing for a text of another form.
std::optional<double> sizeOf(std::string_view text)
{
    const std::size_t unit = text.find_first_not_of("0123456789.");
    if (unit == 0 || unit == std::string_view::npos)
        return std::nullopt;
    constexpr double kStep = 1024;
    const std::string_view name = text.substr(unit);
    const double factor = name == "B" ? 1 : name == "KB" ? kStep : name == "MB" ? kStep * kStep : 0;
    bool isNumber = false;
    const double number = shown(text.substr(0, unit)).toDouble(&isNumber);
    return isNumber && factor > 0 ? std::optional(number * factor) : std::nullopt;
}

std::optional<base::DateTime> momentOf(std::string_view text)
{
    const std::size_t blank = text.find(' ');
    const auto parts = base::split(text.substr(0, blank), "/");
    if (parts.size() != 3)
        return std::nullopt;
    // The year first, as dates are compared.
    std::uint64_t month = 0;
    std::uint64_t day = 0;
    std::uint64_t year = 0;
    if (!base::parseUnsigned(parts[0], month) || !base::parseUnsigned(parts[1], day) ||
        !base::parseUnsigned(parts[2], year))
        return std::nullopt;
    base::DateTime moment;
    moment.date = {static_cast<int>(year), static_cast<int>(month), static_cast<int>(day)};
    const auto time =
        blank == std::string_view::npos ? std::nullopt : base::parseTime(text.substr(blank + 1));
    moment.time = time.value_or(base::TimeOfDay{});
    return moment;
}

// Texts of another form come last, in their own order.
template <typename Value>
bool lessBy(const std::optional<Value>& a, const std::optional<Value>& b, std::string_view textA,
            std::string_view textB)
{
    if (a && b)
        return *a < *b;
    return a.has_value() == b.has_value() ? base::naturalLess(textA, textB) : a.has_value();
}

} // namespace

bool logLess(std::string_view a, std::string_view b, LogSort sort)
{
    switch (sort) {
    case LogSort::Text:
        break;
    case LogSort::Size:
        return lessBy(sizeOf(a), sizeOf(b), a, b);
    case LogSort::Moment:
        return lessBy(momentOf(a), momentOf(b), a, b);
    }
    return base::naturalLess(a, b);
}

LogModel::LogModel(const state::LogList& list, std::span<const LogColumn> columns, QObject* parent)
    : QAbstractTableModel(parent), m_list(list), m_columns(columns.begin(), columns.end()),
      m_shownRows(static_cast<int>(list.rows.size()))
{
}

void LogModel::refresh()
{
    beginResetModel();
    m_shownRows = static_cast<int>(m_list.rows.size());
    endResetModel();
}

const state::LogRow* LogModel::rowAt(int row) const
{
    const auto at = static_cast<std::size_t>(row);
    return row >= 0 && at < m_list.rows.size() ? &m_list.rows[at] : nullptr;
}

const std::string& LogModel::textAt(int row, int column) const
{
    static const std::string kNone;
    const state::LogRow* found = rowAt(row);
    if (found == nullptr)
        return kNone;
    return column == 0 ? found->text : found->sub.at(static_cast<std::size_t>(column) - 1);
}

int LogModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_shownRows;
}

int LogModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant LogModel::data(const QModelIndex& index, int role) const
{
    const state::LogRow* row = rowAt(index.row());
    if (!index.isValid() || row == nullptr)
        return {};
    const bool leadsOn = !row->report.empty();
    switch (role) {
    case Qt::DisplayRole:
        return shown(textAt(index.row(), index.column()));
    case Qt::ToolTipRole:
        return leadsOn ? tr("A double click shows the files that this run missed.")
                       : plainToolTip(shown(textAt(index.row(), index.column())));
    case Qt::TextAlignmentRole: {
        const bool figures = m_columns[static_cast<std::size_t>(index.column())].figures;
        return static_cast<int>(Qt::AlignVCenter | (figures ? Qt::AlignRight : Qt::AlignLeft));
    }
    case Qt::ForegroundRole:
        if (leadsOn && index.column() + 1 == columnCount())
            return linkColour(QApplication::palette());
        return {};
    default:
        return {};
    }
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    const LogColumn& column = m_columns[static_cast<std::size_t>(section)];
    if (role == Qt::DisplayRole)
        return shown(column.heading);
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(Qt::AlignVCenter |
                                (column.figures ? Qt::AlignRight : Qt::AlignLeft));
    return {};
}

LogSorter::LogSorter(LogModel& model) : QSortFilterProxyModel(&model), m_model(model)
{
    setSourceModel(&model);
}

bool LogSorter::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    return logLess(m_model.textAt(left.row(), left.column()),
                   m_model.textAt(right.row(), right.column()), m_model.sortOf(left.column()));
}

} // namespace vardelin::ui
