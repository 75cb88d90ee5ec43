#include "ui/review_model.h"

#include "archive/review.h"
#include "archive/review_texts.h"
#include "ui/shown_text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vardelin::ui {
namespace {

namespace texts = archive::review_texts;

constexpr std::size_t kTag = 4;      // `_007`, `_Org` behind a file's name
constexpr std::size_t kDriveKey = 3; // `C:\`

QString textOf(const state::ReviewRow& row, int column)
{
    switch (column) {
    case ReviewModel::kName:
        return shown(row.text);
    case ReviewModel::kVersion:
        return shown(archive::versionText(row));
    case ReviewModel::kModified:
        return shown(archive::modifiedText(row));
    case ReviewModel::kSize:
        return shown(row.size);
    case ReviewModel::kCreated:
        return shown(row.createdOn);
    default:
        return {};
    }
}

// A list does not tell who cannot see it what is drawn beside a name.
QString spoken(const state::ReviewRow& row)
{
    QString text = shown(row.text);
    if (row.button == state::RowButton::Plus)
        text += ReviewModel::tr(", closed");
    else if (row.button == state::RowButton::Minus)
        text += ReviewModel::tr(", open");
    return text + ReviewModel::tr(", level %1").arg(row.level + 1);
}

} // namespace

ReviewModel::ReviewModel(const state::frmVDStorage& form, platform::Shell* shell, QObject* parent)
    : QAbstractTableModel(parent), m_form(form), m_icons(shell),
      m_filesGroup(QStringLiteral(":/icons/files-group.svg")),
      m_settings(QStringLiteral(":/icons/settings.svg")),
      m_drive(QStringLiteral(":/icons/drive.svg")), m_folder(QStringLiteral(":/icons/folder.svg")),
      m_openFolder(QStringLiteral(":/icons/folder-open.svg")),
      m_file(QStringLiteral(":/icons/file.svg")), m_shownRows(form.lstRestore.size()),
      m_revision(form.rowsRevision)
{
}

bool ReviewModel::refresh(std::optional<std::size_t> acted)
{
    if (m_revision == m_form.rowsRevision && m_shownRows == m_form.lstRestore.size())
        return false;
    m_revision = m_form.rowsRevision;
    if (acted && refreshBelow(*acted))
        return true;
    beginResetModel();
    m_shownRows = m_form.lstRestore.size();
    endResetModel();
    return true;
}

bool ReviewModel::refreshBelow(std::size_t acted)
{
    const std::size_t rows = m_form.lstRestore.size();
    if (acted >= rows || acted >= m_shownRows)
        return false;
    const auto first = static_cast<int>(acted) + 1;
    if (rows > m_shownRows) {
        const std::size_t more = rows - m_shownRows;
        const int level = m_form.lstRestore[acted].level + 1;
        if (acted + more >= rows || m_form.lstRestore[acted + 1].level != level ||
            m_form.lstRestore[acted + more].level != level)
            return false;
        beginInsertRows({}, first, first + static_cast<int>(more) - 1);
        m_shownRows = rows;
        endInsertRows();
    } else if (rows < m_shownRows) {
        const std::size_t fewer = m_shownRows - rows;
        if (acted + fewer >= m_shownRows)
            return false;
        beginRemoveRows({}, first, first + static_cast<int>(fewer) - 1);
        m_shownRows = rows;
        endRemoveRows();
    }
    emit dataChanged(index(first - 1, 0), index(first - 1, kColumns - 1));
    return true;
}

int ReviewModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shownRows);
}

int ReviewModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : kColumns;
}

QVariant ReviewModel::data(const QModelIndex& index, int role) const
{
    const auto at = static_cast<std::size_t>(index.row());
    if (!index.isValid() || at >= m_form.lstRestore.size())
        return {};
    const state::ReviewRow& row = m_form.lstRestore[at];
    const bool isName = index.column() == kName;
    switch (role) {
    case Qt::DisplayRole:
        return textOf(row, index.column());
    case Qt::ToolTipRole:
        return plainToolTip(isName ? shown(row.key) : textOf(row, index.column()));
    case Qt::DecorationRole:
        return isName ? QVariant(iconOf(row)) : QVariant();
    case Qt::TextAlignmentRole:
        return static_cast<int>(Qt::AlignVCenter |
                                (index.column() == kSize ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::AccessibleTextRole:
        return isName ? spoken(row) : textOf(row, index.column());
    case kLevelRole:
        return isName ? QVariant(static_cast<int>(row.level)) : QVariant();
    case kButtonRole:
        return isName ? QVariant(static_cast<int>(row.button)) : QVariant();
    default:
        return {};
    }
}

QVariant ReviewModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    constexpr std::array<std::string_view, kColumns> kHeadings{
        texts::kFolderColumn, texts::kVersionColumn, texts::kModifiedColumn, texts::kSizeColumn,
        texts::kCreatedColumn};
    if (orientation != Qt::Horizontal || section < 0 || section >= kColumns)
        return {};
    if (role == Qt::DisplayRole)
        return shown(kHeadings[static_cast<std::size_t>(section)]);
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(Qt::AlignVCenter |
                                (section == kSize ? Qt::AlignRight : Qt::AlignLeft));
    return {};
}

Qt::ItemFlags ReviewModel::flags(const QModelIndex&) const
{
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
}

QIcon ReviewModel::iconOf(const state::ReviewRow& row) const
{
    if (row.file) {
        const std::string_view text = row.text;
        return m_icons.ofFile(text.substr(0, text.size() - std::min(text.size(), kTag)));
    }
    const bool opened = row.button == state::RowButton::Minus;
    if (row.key.ends_with('\\')) {
        if (row.level == 1 && row.key.size() == kDriveKey)
            return m_drive;
        return opened ? m_openFolder : m_folder;
    }
    if (row.level == 0 && row.text == archive::kFilesGroup)
        return m_filesGroup;
    // What is left but the settings is a line that could not be read.
    const bool isSettings = row.level > 0 || row.button != state::RowButton::None;
    return isSettings ? m_settings : m_file;
}

} // namespace vardelin::ui
