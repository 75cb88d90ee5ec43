#include "ui/review_view.h"

#include "archive/review.h"
#include "archive/review_texts.h"
#include "ui/form_heading.h"
#include "ui/help_panel.h"
#include "ui/review_list.h"
#include "ui/review_model.h"
#include "ui/shown_text.h"
#include "ui/widgets.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QItemSelection>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QScopedValueRollback>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

namespace texts = archive::review_texts;

constexpr int kWatchMs = 60;
constexpr int kBarLetters = 28; // the width of the bar, in letters
constexpr int kBarSteps = 10000;

// First and last row of blocks of selected ones, in order, none touching the next.
using Blocks = std::vector<std::pair<int, int>>;

Blocks blocksOf(const std::vector<state::ReviewRow>& rows)
{
    Blocks blocks;
    bool open = false;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto row = static_cast<int>(i);
        if (rows[i].selected && open)
            blocks.back().second = row;
        else if (rows[i].selected)
            blocks.emplace_back(row, row);
        open = rows[i].selected;
    }
    return blocks;
}

Blocks blocksOf(const QItemSelection& selection)
{
    Blocks all;
    for (const QItemSelectionRange& range : selection)
        all.emplace_back(range.top(), range.bottom());
    std::sort(all.begin(), all.end());
    Blocks blocks;
    for (const auto& [top, bottom] : all) {
        if (!blocks.empty() && top <= blocks.back().second + 1)
            blocks.back().second = std::max(blocks.back().second, bottom);
        else
            blocks.emplace_back(top, bottom);
    }
    return blocks;
}

} // namespace

ReviewView::ReviewView(state::frmVDStorage& form, const state::ProgressBar& progress,
                       ReviewHandlers handlers, platform::Shell* shell, QWidget* parent)
    : QWidget(parent), m_form(form), m_progress(progress), m_handlers(std::move(handlers)),
      m_watch(this), m_countLater(this)
{
    setObjectName(QStringLiteral("frmVDStorage"));
    build(shell);
    buildMenu();
    m_watch.setInterval(kWatchMs);
    connect(&m_watch, &QTimer::timeout, this, &ReviewView::showRecord);
    m_countLater.setSingleShot(true);
    connect(&m_countLater, &QTimer::timeout, this,
            [this] { m_selected->setText(shown(archive::selectionText(m_form))); });
    connect(m_list, &ReviewList::buttonClicked, this, &ReviewView::openOrClose);
    connect(m_list, &ReviewList::menuWanted, this, &ReviewView::openMenu);
    connect(m_list, &ReviewList::deletionWanted, this, &ReviewView::remove);
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ReviewView::selectionChanged);
    m_binder.also([this] { showAll(); });
    m_binder.show();
}

void ReviewView::build(platform::Shell* shell)
{
    m_heading = new FormHeading(*this);
    m_list = new ReviewList(m_form);
    m_list->setObjectName(QStringLiteral("lstRestore"));
    m_list->setAccessibleName(tr("Folders and files in the archive"));
    m_model = new ReviewModel(m_form, shell, m_list);
    m_list->setModel(m_model);

    const auto help = [this](const char* name, state::Label& record) {
        auto* label = named<QLabel>(name);
        m_binder.label(*label, record);
        return label;
    };
    auto* panel = new HelpPanel({help("Label33", m_form.Label33), help("Label34", m_form.Label34),
                                 help("Label35", m_form.Label35), help("Label36", m_form.Label36),
                                 help("Label37", m_form.Label37)});
    auto* middle = new QHBoxLayout;
    middle->addWidget(m_list, 1);
    middle->addWidget(panel);

    m_selected = named<QLabel>("lblSelected");
    m_selected->setTextFormat(Qt::PlainText);
    m_bar = named<QProgressBar>("pbReview");
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(tr("Rows are being read"));
    m_bar->setFixedWidth(m_bar->fontMetrics().averageCharWidth() * kBarLetters);
    QSizePolicy keepsRoom = m_bar->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    m_bar->setSizePolicy(keepsRoom);
    auto* foot = new QHBoxLayout;
    foot->addWidget(m_selected, 1);
    foot->addWidget(m_bar);

    auto* layout = new QVBoxLayout(this);
    // The keyboard comes to the list first.
    layout->addLayout(middle, 1);
    layout->addLayout(foot);
    layout->insertWidget(0, m_heading);
    setFocusProxy(m_list);
}

void ReviewView::buildMenu()
{
    const auto add = [this](QMenu& menu, const char* name, std::string_view caption,
                            Handler& handler) {
        QAction* action = menu.addAction(shown(caption));
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, [this, &handler] { run(handler); });
        return action;
    };
    m_menu = new QMenu(this);
    m_menu->setObjectName(QStringLiteral("mnuStoOptions"));
    QMenu* restore = m_menu->addMenu(shown(texts::kRestoreMenu));
    restore->setObjectName(QStringLiteral("mnuRest"));
    add(*restore, "mnuByDate", texts::kByDateMenu, m_handlers.mnuByDate_Click);
    add(*restore, "mnuAsOf", texts::kByFileMenu, m_handlers.mnuAsOf_Click);
    QAction* remove = add(*m_menu, "mnuDel", texts::kDeleteMenu, m_handlers.mnuDel_Click);
    // Shown there; the list hears of the key itself.
    remove->setShortcut(Qt::Key_Delete);
    remove->setShortcutVisibleInContextMenu(true);
}

// ---- what the person does

void ReviewView::run(const Handler& handler)
{
    // Timers run where a handler lets events through, and show how far it is.
    m_watch.start();
    m_binder.run(handler);
}

void ReviewView::openOrClose(int row)
{
    const QScopedValueRollback acted(m_acted, std::optional(static_cast<std::size_t>(row)));
    run([&] {
        if (m_handlers.rowButtonClicked)
            m_handlers.rowButtonClicked(static_cast<std::size_t>(row) + 1);
    });
}

void ReviewView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    if (m_showing || m_form.busy)
        return;
    const auto write = [this](const QItemSelection& selection, bool value) {
        for (const QItemSelectionRange& range : selection) {
            const auto end =
                std::min(static_cast<std::size_t>(range.bottom()) + 1, m_form.lstRestore.size());
            for (auto i = static_cast<std::size_t>(range.top()); i < end; ++i)
                m_form.lstRestore[i].selected = value;
        }
    };
    write(deselected, false);
    write(selected, true);
    m_countLater.start(0);
}

bool ReviewView::mayAct()
{
    bool allowed = m_form.enabled && !m_form.busy;
    if (allowed && m_handlers.rowsRightClicked)
        m_binder.run([&] { allowed = m_handlers.rowsRightClicked(); });
    return allowed;
}

void ReviewView::openMenu()
{
    if (!mayAct())
        return;
    const QModelIndex current = m_list->currentIndex();
    QPoint place = m_list->viewport()->rect().center();
    if (current.isValid()) {
        m_list->scrollTo(current);
        place = m_list->endOf(current.row());
    }
    m_menu->popup(m_list->viewport()->mapToGlobal(place));
}

void ReviewView::remove()
{
    // A group's row is refused with the same words as by the menu.
    if (mayAct())
        run(m_handlers.mnuDel_Click);
}

void ReviewView::closeEvent(QCloseEvent* event)
{
    if (m_form.busy) {
        event->ignore();
        return;
    }
    m_binder.run(m_handlers.Form_Unload);
    event->setAccepted(!m_form.loaded || !m_handlers.Form_Unload);
}

// ---- showing the record

void ReviewView::showProgress()
{
    const QScopedValueRollback inProgress(m_inProgress, true);
    m_binder.show();
}

void ReviewView::showAll()
{
    m_heading->showCaption(m_form.caption);
    showBusy();
    const bool changed = [&] {
        const QScopedValueRollback showing(m_showing, true);
        const int row = m_list->currentIndex().row();
        const bool anyChange = m_model->refresh(m_acted);
        // New rows take the current one away: the keyboard goes on about where it was.
        const int last = m_model->rowCount() - 1;
        if (anyChange && !m_list->currentIndex().isValid() && last >= 0)
            m_list->selectionModel()->setCurrentIndex(
                m_model->index(std::clamp(row, 0, last), ReviewModel::kName),
                QItemSelectionModel::NoUpdate);
        return anyChange;
    }();
    const bool settled = !m_form.busy && !m_inProgress;
    if (settled)
        showSelection();
    showView();
    if (changed || settled)
        m_countLater.start(0);
    if (!m_form.loaded && isVisible())
        hide();
}

void ReviewView::showSelection()
{
    const QScopedValueRollback showing(m_showing, true);
    const Blocks wanted = blocksOf(m_form.lstRestore);
    if (wanted == blocksOf(m_list->selectionModel()->selection()))
        return;
    QItemSelection selection;
    for (const auto& [top, bottom] : wanted)
        selection.append(QItemSelectionRange(m_model->index(top, 0),
                                             m_model->index(bottom, ReviewModel::kColumns - 1)));
    m_list->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void ReviewView::showView()
{
    const int rows = m_model->rowCount();
    if (!m_form.bringIntoView || rows == 0)
        return;
    m_form.bringIntoView = false;
    for (const std::size_t row : {m_form.lastInView, m_form.firstInView})
        m_list->scrollTo(m_model->index(
            static_cast<int>(std::min<std::size_t>(row, static_cast<std::size_t>(rows) - 1)),
            ReviewModel::kName));
}

void ReviewView::showBusy()
{
    if (m_form.busy && !m_watch.isActive())
        m_watch.start();
    else if (!m_form.busy)
        m_watch.stop();
    if (m_form.hourglass)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
    m_bar->setVisible(m_form.busy);
    const bool isKnown = m_progress.maximum > 0 && m_progress.value > 0;
    m_bar->setRange(0, isKnown ? kBarSteps : 0);
    if (isKnown)
        m_bar->setValue(
            static_cast<int>(std::min(m_progress.value / m_progress.maximum, 1.0) * kBarSteps));
}

} // namespace vardelin::ui
