#pragma once

#include "state/log_form.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>

namespace vardelin::ui {

// What the texts of a column stand for, by which they are sorted.
enum class LogSort : std::uint8_t {
    Text,   // without regard to case, runs of digits as numbers
    Size,   // `1023B`, `1.12KB`, `3MB`
    Moment, // `7/3/2003 9:05:03 AM`: month, day, year
};

struct LogColumn {
    std::string_view heading;
    LogSort sort = LogSort::Text;
    bool figures = false; // stand at the right
};

// A list of the log as Qt's views take it. The record must outlive the model.
class LogModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    LogModel(const state::LogList& list, std::span<const LogColumn> columns, QObject* parent);

    // The record was written: all rows are new.
    void refresh();

    const state::LogRow* rowAt(int row) const;
    LogSort sortOf(int column) const { return m_columns[static_cast<std::size_t>(column)].sort; }
    const std::string& textAt(int row, int column) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const state::LogList& m_list;
    std::vector<LogColumn> m_columns;
    int m_shownRows;
};

// Sorts the list on show alone; without a column it stands as the record has it.
class LogSorter final : public QSortFilterProxyModel {
    Q_OBJECT

public:
    explicit LogSorter(LogModel& model);

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    const LogModel& m_model;
};

// Whether one cell's text stands before another's.
bool logLess(std::string_view a, std::string_view b, LogSort sort);

} // namespace vardelin::ui
