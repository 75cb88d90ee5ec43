#pragma once

#include "state/controls.h"

#include <functional>
#include <string>
#include <unordered_map>

#include <QAbstractTableModel>
#include <QIcon>

namespace vardelin::ui {

// A state::ListBox as Qt's views take it: a box in each row's first column, the texts of its
// further ones behind it. The record must outlive the model.
class ListModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    // What a box stands for: ListRow::checked or ListRow::selected.
    using Tick = bool state::ListRow::*;

    // `columns` are the headings, one to three. `ticked` is called with the row's index when a
    // person has changed its box, the record already changed.
    ListModel(state::ListBox& list, Tick tick, QStringList columns,
              std::function<void(std::size_t)> ticked, QObject* parent);

    // The record was written: tells the views what changed since the last call.
    void refresh();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    QIcon iconOf(const std::string& name) const;

    state::ListBox& m_list;
    Tick m_tick;
    QStringList m_columns;
    std::function<void(std::size_t)> m_ticked;
    qsizetype m_shownRows = 0;
    // A look-up goes through all folders of the theme, and one that finds nothing is not remembered
    // by the toolkit: a thousand kinds of files took half a minute on some desktops.
    mutable std::unordered_map<std::string, QIcon> m_icons;
};

} // namespace vardelin::ui
