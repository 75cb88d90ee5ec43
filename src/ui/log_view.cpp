#include "ui/log_view.h"

#include "logs/log_texts.h"
#include "ui/form_heading.h"
#include "ui/help_panel.h"
#include "ui/log_model.h"
#include "ui/missed_files_view.h"
#include "ui/shown_text.h"
#include "ui/tick_table.h"
#include "ui/widgets.h"

#include <algorithm>
#include <utility>

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

namespace texts = logs::texts;

constexpr int kCellRoom = 2;      // pixels that a heading has beside what it needs
constexpr int kNameLetters = 22;  // the width of a first column that does not stretch
constexpr int kLeastLetters = 14; // the least width of the column that stretches
constexpr int kDateColumn = 2;
constexpr int kLeastRows = 10; // that are seen at once

constexpr std::array kBackupColumns{
    LogColumn{texts::kBackupColumns[0]}, LogColumn{texts::kBackupColumns[1]},
    LogColumn{texts::kBackupColumns[2]}, LogColumn{texts::kBackupColumns[3], LogSort::Text, true},
    LogColumn{texts::kBackupColumns[4], LogSort::Text, true}};
constexpr std::array kRestoreColumns{LogColumn{texts::kRestoreColumns[0]},
                                     LogColumn{texts::kRestoreColumns[1]},
                                     LogColumn{texts::kRestoreColumns[2]},
                                     LogColumn{texts::kRestoreColumns[3], LogSort::Text, true}};
constexpr std::array kQueueColumns{LogColumn{texts::kQueueColumns[0]},
                                   LogColumn{texts::kQueueColumns[1]},
                                   LogColumn{texts::kQueueColumns[2], LogSort::Moment},
                                   LogColumn{texts::kQueueColumns[3], LogSort::Size, true}};

} // namespace

LogView::LogView(state::frmLog& form, LogHandlers handlers, QWidget* parent)
    : QWidget(parent), m_form(form), m_handlers(std::move(handlers)), m_revision(form.revision)
{
    setObjectName(QStringLiteral("frmLog"));
    m_lists = {makeList("lstBackupLog", tr("Backups"), form.lstBackupLog, kBackupColumns, 0),
               makeList("lstRestoreLog", tr("Restores"), form.lstRestoreLog, kRestoreColumns, 1),
               makeList("lstQLog", tr("Changed files"), form.lstQLog, kQueueColumns, 1)};
    TickTable* backups = m_lists.front().table;
    backups->letRowsOpen();
    connect(backups, &TickTable::opened, this, &LogView::openReport);

    auto* help = named<QLabel>("lblHelp");
    auto* general = named<QLabel>("lblGeneral");
    m_binder.label(*help, form.lblHelp);
    m_binder.label(*general, form.lblGeneral);
    auto* middle = new QHBoxLayout;
    for (const List& list : m_lists)
        middle->addWidget(list.table, 1);
    middle->addWidget(new HelpPanel({help, general}));
    m_hint = named<QLabel>("lblHint", tr("A double click on a run, or Enter, shows the files that "
                                         "it missed."));
    m_hint->setWordWrap(true);
    QSizePolicy keepsRoom = m_hint->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    m_hint->setSizePolicy(keepsRoom);
    m_heading = new FormHeading(*this);
    auto* layout = new QVBoxLayout(this);
    // The keyboard comes to the list first.
    layout->addLayout(middle, 1);
    layout->addWidget(m_hint);
    layout->insertWidget(0, m_heading);
    m_binder.also([this] { showAll(); });
    m_binder.show();
}

LogView::List LogView::makeList(const char* name, const QString& spoken,
                                const state::LogList& record, std::span<const LogColumn> columns,
                                int stretched)
{
    List list;
    list.record = &record;
    list.table = named<TickTable>(name);
    list.model = new LogModel(record, columns, list.table);
    TickTable& table = *list.table;
    table.setAccessibleName(spoken);
    table.setModel(new LogSorter(*list.model));
    table.setMinimumHeight(table.fontMetrics().lineSpacing() * kLeastRows);
    QHeaderView& header = *table.header();
    header.setSortIndicator(-1, Qt::AscendingOrder);
    header.setSortIndicatorClearable(true);
    table.setSortingEnabled(true);
    header.setStretchLastSection(false);
    const QFontMetrics metrics = table.fontMetrics();
    const int date = metrics.horizontalAdvance(QStringLiteral("8888-88-88 88:88:88 MM"));
    for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
        const int text = i == kDateColumn ? date
                         : i == 0         ? metrics.averageCharWidth() * kNameLetters
                                          : 0;
        header.resizeSection(i, std::max(text, header.sectionSizeHint(i)) + kCellRoom);
    }
    // The column that stretches does not vanish in a narrow window.
    header.setMinimumSectionSize(
        std::max(header.sectionSizeHint(stretched), metrics.averageCharWidth() * kLeastLetters));
    header.setSectionResizeMode(stretched, QHeaderView::Stretch);
    return list;
}

void LogView::openReport(int row)
{
    const List& list = m_lists.front();
    const QModelIndex shownAt = list.table->model()->index(row, 0);
    const auto* sorter = qobject_cast<const LogSorter*>(list.table->model());
    const state::LogRow* found = list.model->rowAt(sorter->mapToSource(shownAt).row());
    if (found == nullptr || !m_handlers.lstBackupLog_DblClick)
        return;
    const state::LogRow kept = *found; // the list may be filled anew meanwhile
    std::string report;
    m_binder.run([&] { report = m_handlers.lstBackupLog_DblClick(kept); });
    if (report.empty())
        return;
    auto* window = new MissedFilesView(
        tr("Missed Files - %1, %2").arg(shown(kept.text), shown(kept.sub[1])), report, this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
}

void LogView::closeEvent(QCloseEvent* event)
{
    m_binder.run(m_handlers.Form_Unload);
    event->setAccepted(!m_form.loaded || !m_handlers.Form_Unload);
}

void LogView::showAll()
{
    m_heading->showCaption(m_form.caption);
    const bool isNew = m_revision != m_form.revision;
    m_revision = m_form.revision;
    bool anyReport = false;
    for (const List& list : m_lists) {
        if (isNew)
            list.model->refresh();
        const bool comes = list.record->visible && list.table->isHidden();
        list.table->setVisible(list.record->visible);
        if (list.record->visible)
            setFocusProxy(list.table);
        // The keyboard may have been in the list that went.
        if (comes)
            list.table->setFocus();
    }
    const state::LogList& backups = m_form.lstBackupLog;
    if (backups.visible)
        anyReport = std::any_of(backups.rows.begin(), backups.rows.end(),
                                [](const state::LogRow& row) { return !row.report.empty(); });
    m_hint->setVisible(anyReport);
    if (!m_form.loaded && isVisible())
        hide();
}

} // namespace vardelin::ui
