#include "ui/source_tree_view.h"

#include "ui/shown_text.h"
#include "ui/tree_delegate.h"
#include "ui/tree_legend.h"
#include "ui/widgets.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kNumericPadStar = 106;
constexpr int kLeastRows = 8;                   // that are seen at once
constexpr int kNameLetters = 16;                // of the deepest name that are seen at least
constexpr std::chrono::milliseconds kWatch{90}; // between two looks at a reading

// The classic code of a key, as far as the tree's handler could tell keys apart; 0 for others.
int keyCodeOf(const QKeyEvent& event)
{
    const int key = event.key();
    if (event.modifiers().testFlag(Qt::KeypadModifier) && key == Qt::Key_Asterisk)
        return kNumericPadStar;
    const bool isPlain = key == Qt::Key_Space || (key >= Qt::Key_0 && key <= Qt::Key_9) ||
                         (key >= Qt::Key_A && key <= Qt::Key_Z);
    return isPlain ? key : 0;
}

// Input of the person; the end of a press is let through, so that no button stays down.
bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

// ---- the widget

DirectoryTree::DirectoryTree(QWidget* parent) : QTreeView(parent)
{
    setObjectName(QStringLiteral("tvwDirectory"));
    setAccessibleName(tr("Drives, folders and files"));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setEditTriggers(EditKeyPressed);
    setTextElideMode(Qt::ElideMiddle);
    setItemDelegate(new TreeDelegate(this));
    const int letter = fontMetrics().height();
    setIconSize({letter, letter});
    setMinimumHeight(fontMetrics().height() * kLeastRows);
}

bool DirectoryTree::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    if (trigger == EditKeyPressed) {
        int cancel = 0;
        emit beforeLabelEdit(cancel);
        if (cancel != 0)
            return false;
    }
    return QTreeView::edit(index, trigger, event);
}

void DirectoryTree::keyPressEvent(QKeyEvent* event)
{
    const int before = keyCodeOf(*event);
    int code = before;
    emit keyDown(code);
    if (code == 0 && before != 0)
        return;
    // Qt would expand everything below; only the numeric pad's star ever meant that here.
    if (event->key() == Qt::Key_Asterisk && before != kNumericPadStar)
        keyboardSearch(event->text());
    else
        QTreeView::keyPressEvent(event);
}

void DirectoryTree::mouseReleaseEvent(QMouseEvent* event)
{
    QTreeView::mouseReleaseEvent(event);
    emit clickedAnywhere();
}

void DirectoryTree::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTreeView::currentChanged(current, previous);
    emit moved(current);
}

// ---- the view

SourceTreeView::SourceTreeView(state::ProfileEditorState& record, SourceTreeHandlers handlers,
                               std::function<void(const Handler&)> run, QWidget* parent)
    : QWidget(parent), m_record(record), m_handlers(std::move(handlers)), m_run(std::move(run)),
      m_icons(m_handlers.shell)
{
    if (!m_run) {
        m_run = [this](const Handler& handler) {
            handler();
            showRecord();
        };
    }
    m_watch.setInterval(kWatch);
    connect(&m_watch, &QTimer::timeout, this, &SourceTreeView::showReading);
    build();
    m_model->ticked = [this](state::TreeNode& node) {
        m_run([&] {
            if (m_handlers.tvwDirectory_NodeCheck)
                m_handlers.tvwDirectory_NodeCheck(node);
        });
    };
    connect(m_tree, &QTreeView::expanded, this, &SourceTreeView::expandedByPerson);
    connect(m_tree, &QTreeView::collapsed, this, [this](const QModelIndex& index) {
        if (!m_showing)
            m_model->setExpanded(index, false);
    });
    connect(m_tree, &DirectoryTree::moved, this, [this](const QModelIndex& current) {
        if (!m_showing && !isReading())
            m_record.tvwDirectory.select(m_model->nodeAt(current));
    });
    connect(m_tree, &DirectoryTree::clickedAnywhere, this, [this] {
        if (m_handlers.tvwDirectory_Click && !isReading())
            m_run(m_handlers.tvwDirectory_Click);
    });
    connect(m_tree, &DirectoryTree::keyDown, this, [this](int& keyCode) {
        if (m_handlers.tvwDirectory_KeyDown)
            m_handlers.tvwDirectory_KeyDown(keyCode);
    });
    connect(m_tree, &DirectoryTree::beforeLabelEdit, this, [this](int& cancel) {
        if (m_handlers.tvwDirectory_BeforeLabelEdit)
            m_handlers.tvwDirectory_BeforeLabelEdit(cancel);
    });
    showRecord();
}

SourceTreeView::~SourceTreeView()
{
    endReading();
}

void SourceTreeView::build()
{
    m_tree = new DirectoryTree;
    m_model = new TreeModel(m_record.tvwDirectory, m_icons, m_handlers.fileSystem, m_tree);
    m_tree->setModel(m_model);

    auto* reading = named<QWidget>("treeReading");
    auto* bar = named<QProgressBar>("pbReading");
    bar->setRange(0, 0); // how long it takes is not known before the end
    bar->setTextVisible(false);
    bar->setAccessibleName(tr("A folder is being read"));
    bar->setFixedWidth(bar->fontMetrics().averageCharWidth() * kNameLetters);
    m_readingText = named<QLabel>("lblReading");
    m_readingText->setTextFormat(Qt::PlainText);
    m_readingText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* line = new QHBoxLayout(reading);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(bar);
    line->addWidget(m_readingText, 1);

    auto* below = new QWidget;
    m_below = new QStackedLayout(below);
    m_below->addWidget(new TreeLegend);
    m_below->addWidget(reading);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tree, 1);
    layout->addWidget(below);
}

// ---- showing the record

void SourceTreeView::showRecord()
{
    if (isReading()) {
        showReading();
        return;
    }
    endReading();
    const QScopedValueRollback showing(m_showing, true);
    m_tree->setEnabled(m_record.tvwDirectory.enabled);
    const QPersistentModelIndex top = m_tree->indexAt({0, 0});
    const int across = m_tree->horizontalScrollBar()->value();
    const TreeModel::Changes changes = m_model->refresh();
    const bool isNew = changes.reset || changes.rows || changes.expanders;
    // A selected row that is out of sight stays there, and its closed parents stay closed.
    m_tree->setAutoScroll(false);
    if (isNew || m_revision != m_record.revision)
        showExpansions(changes);
    m_revision = m_record.revision;
    showSelected();
    m_tree->setAutoScroll(true);
    if (isNew && top.isValid()) {
        m_tree->layOut();
        if (m_tree->indexAt({0, 0}) != top) {
            m_tree->scrollTo(top, QAbstractItemView::PositionAtTop);
            m_tree->horizontalScrollBar()->setValue(across);
        }
    }
    m_tree->viewport()->update();
}

void SourceTreeView::showExpansions(const TreeModel::Changes& changes)
{
    const auto expansions = m_model->takeExpansions();
    if (changes.expanders || expansions.size() > 1)
        m_tree->layOutLater(); // once for all of them
    for (const TreeModel::Expansion& each : expansions)
        m_tree->setExpanded(each.index, each.expanded);
    widen();
}

void SourceTreeView::showSelected()
{
    const QModelIndex wanted = m_model->indexOf(m_record.tvwDirectory.selected());
    if (wanted == m_tree->currentIndex())
        return;
    if (wanted.isValid())
        m_tree->setCurrentIndex(wanted);
    else
        m_tree->selectionModel()->clear();
}

// Deep folders are indented far: what is left of the column still shows the start of a name.
void SourceTreeView::widen()
{
    const int letters = m_tree->fontMetrics().averageCharWidth() * kNameLetters;
    m_tree->header()->setMinimumSectionSize(m_tree->indentation() * (m_model->depth() + 2) +
                                            letters);
}

// ---- what the person does

void SourceTreeView::expandedByPerson(const QModelIndex& index)
{
    if (m_showing)
        return;
    state::TreeNode* node = m_model->nodeAt(index);
    if (node == nullptr || isReading())
        return;
    m_model->setExpanded(index, true);
    beginReading();
    m_run([&] {
        if (m_handlers.tvwDirectory_Expand)
            m_handlers.tvwDirectory_Expand(*node);
    });
    if (!isReading())
        endReading();
    widen();
}

// ---- a folder is read

bool SourceTreeView::isReading() const
{
    return m_handlers.form != nullptr && m_handlers.form->reading.active;
}

// What is typed or clicked from now on is refused as soon as the reading is under way; the rest
// shows when it takes long enough for a turn.
void SourceTreeView::beginReading()
{
    if (m_handlers.form == nullptr)
        return;
    if (!m_blocking)
        qApp->installEventFilter(this);
    m_blocking = true;
    m_watch.setInterval(std::chrono::milliseconds(0));
    m_watch.start();
}

void SourceTreeView::showReading()
{
    if (!isReading()) {
        if (m_isShown || m_blocking)
            showRecord();
        return;
    }
    if (!m_blocking)
        beginReading(); // begun by a command
    const editor::FolderReading& reading = m_handlers.form->reading;
    if (!m_isShown) {
        m_isShown = true;
        m_watch.setInterval(kWatch);
        QApplication::setOverrideCursor(Qt::BusyCursor);
        m_model->showReading(reading.serial);
        m_below->setCurrentIndex(1);
    }
    const QString hint = reading.mayCancel ? tr(" Esc stops it.") : QString();
    m_readingText->setText(tr("Reading: %L1 names.").arg(reading.names) + hint);
}

void SourceTreeView::endReading()
{
    m_watch.stop();
    if (m_blocking)
        qApp->removeEventFilter(this);
    m_blocking = false;
    if (!m_isShown)
        return;
    m_isShown = false;
    QApplication::restoreOverrideCursor();
    m_model->hideReading();
    m_below->setCurrentIndex(0);
}

bool SourceTreeView::eventFilter(QObject*, QEvent* event)
{
    if (!isReading() || !isInput(event->type()))
        return false;
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
        m_handlers.form->reading.cancelled = true;
    event->setAccepted(event->type() != QEvent::Close);
    if (event->type() == QEvent::Close)
        event->ignore(); // the window stays
    return true;
}

} // namespace vardelin::ui
