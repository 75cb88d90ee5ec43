#include "ui/missed_files_view.h"

#include "base/text.h"
#include "ui/shown_text.h"
#include "ui/tick_table.h"
#include "ui/widgets.h"

#include <algorithm>
#include <vector>

#include <QAbstractTableModel>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kLetters = 110;      // the width of the window, in letters
constexpr int kRows = 18;          // that are seen at once
constexpr int kReasonLetters = 36; // the width of the second column
constexpr double kOfScreen = 0.85; // the most of its width

class ReportModel final : public QAbstractTableModel {
public:
    ReportModel(std::string_view report, QObject* parent) : QAbstractTableModel(parent)
    {
        for (std::string_view line : base::split(report, "\n")) {
            if (line.ends_with('\r'))
                line.remove_suffix(1);
            if (!line.empty())
                m_lines.emplace_back(line);
        }
    }

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : 2;
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
            return {};
        const std::string_view line = m_lines[static_cast<std::size_t>(index.row())];
        const std::size_t tab = std::min(line.find('\t'), line.size());
        const std::string_view reason = line.substr(std::min(tab + 1, line.size()));
        const QString text = shown(index.column() == 0 ? line.substr(0, tab) : reason);
        return role == Qt::ToolTipRole ? plainToolTip(text) : text;
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return {};
        return section == 0 ? QStringLiteral("File") : QStringLiteral("Reason");
    }

private:
    std::vector<std::string> m_lines;
};

void copySelected(const QTreeView& table)
{
    QModelIndexList rows = table.selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex& row : rows)
        lines +=
            row.data().toString() + QLatin1Char('\t') + row.siblingAtColumn(1).data().toString();
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

} // namespace

MissedFilesView::MissedFilesView(const QString& title, std::string_view report, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmMissedFiles"));
    setWindowTitle(title);
    auto* table = named<TickTable>("lstMissed");
    auto* model = new ReportModel(report, table);
    table->setAccessibleName(tr("Missed files"));
    table->setModel(model);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setMinimumHeight(table->fontMetrics().lineSpacing() * kRows);
    table->header()->setStretchLastSection(false);
    table->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    table->header()->resizeSection(1, table->fontMetrics().averageCharWidth() * kReasonLetters);
    table->header()->setSectionsClickable(false);
    auto* count = named<QLabel>("lblMissed");
    count->setTextFormat(Qt::PlainText);
    count->setText(model->rowCount() == 1
                       ? tr("1 file was not saved.")
                       : tr("%1 files were not saved.").arg(QLocale().toString(model->rowCount())));
    count->setBuddy(table);
    auto* close = named<QPushButton>("cmdClose", tr("&Close"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto* copy = new QShortcut(QKeySequence::Copy, table);
    copy->setContext(Qt::WidgetShortcut);
    connect(copy, &QShortcut::activated, table, [table] { copySelected(*table); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(count);
    layout->addWidget(table, 1);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(close);
    layout->addSpacing(layout->spacing());
    layout->addLayout(row);
    table->setFocus();
    const int most = static_cast<int>(screen()->availableGeometry().width() * kOfScreen);
    resize(sizeHint().expandedTo({std::min(fontMetrics().averageCharWidth() * kLetters, most), 0}));
}

} // namespace vardelin::ui
