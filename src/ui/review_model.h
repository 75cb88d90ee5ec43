#pragma once

#include "platform/machine.h"
#include "state/review_form.h"
#include "ui/tree_icons.h"

#include <cstddef>
#include <cstdint>
#include <optional>

#include <QAbstractTableModel>
#include <QIcon>

namespace vardelin::ui {

// The rows of the review as Qt's views take them: five columns, in the record's order, from 0. It
// keeps nothing of its own for a row, and a row costs nothing until it is looked at.
class ReviewModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    // Columns, from 0.
    static constexpr int kName = 0;
    static constexpr int kVersion = 1;
    static constexpr int kModified = 2;
    static constexpr int kSize = 3;
    static constexpr int kCreated = 4;
    static constexpr int kColumns = 5;
    // Roles of the first column.
    static constexpr int kLevelRole = Qt::UserRole;
    static constexpr int kButtonRole = Qt::UserRole + 1;

    // The record must outlive the model, and so must the shell; without one all files have one
    // icon.
    ReviewModel(const state::frmVDStorage& form, platform::Shell* shell, QObject* parent);

    // The record was written: tells the views what changed since the last call. Where `acted`, the
    // row that a person has opened or closed, explains the change, only the rows below it come or
    // go; otherwise all of them are new. True where anything changed.
    bool refresh(std::optional<std::size_t> acted);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    bool refreshBelow(std::size_t acted);
    QIcon iconOf(const state::ReviewRow& row) const;

    const state::frmVDStorage& m_form;
    mutable TreeIcons m_icons; // fills as rows are painted
    QIcon m_filesGroup;
    QIcon m_settings;
    QIcon m_drive;
    QIcon m_folder;
    QIcon m_openFolder;
    QIcon m_file;
    std::size_t m_shownRows;
    std::uint64_t m_revision;
};

} // namespace vardelin::ui
