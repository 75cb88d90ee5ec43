#include "ui/main_window.h"

#include "ui/shown_text.h"

#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>

namespace vardelin::ui {
namespace {

using frame::MainFrameCommands;

constexpr int kIconSize = 24; // device-independent pixels
constexpr int kPanelShares[] = {5, 3, 2};
constexpr int kProgressSteps = 1000; // the record's bar may move by fractions

QIcon iconOf(const char* name)
{
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

struct ButtonRow {
    std::size_t index;
    const char* caption; // below the icon
    const char* toolTip;
    const char* icon;
};

constexpr ButtonRow kButtons[] = {
    {1, "New", "New", "new"},
    {2, "Open", "Open", "open"},
    {3, "Edit", "Edit", "edit"},
    {4, "Save", "Save", "save"},
    {5, "SaveAs", "Save As", "save-as"},
    {6, "Close", "Close", "close"},
    {7, nullptr, nullptr, nullptr},
    {8, "BackupNow", "Backup Now", "backup-now"},
    {9, "Revw Archive", "Review and Restore", "review-restore"},
    {10, nullptr, nullptr, nullptr},
    {11, "Profile Mgr", "Profile Manager", "profile-manager"},
    {12, "Log", "Log Details", "log"},
};

} // namespace

MainWindow::MainWindow(state::MainFrameForm& form, state::FrameState& frame,
                       frame::MainFrameCommands& commands)
    : m_form(form), m_frame(frame), m_commands(commands)
{
    setObjectName(QStringLiteral("MDIForm1"));
    setWindowTitle(QStringLiteral("Vardelin"));
    setWindowIcon(iconOf("vardelin"));
    m_area = new QStackedWidget(this);
    setCentralWidget(m_area);
    buildMenus();
    buildToolbar();
    buildStatusBar();
    showRecords();
}

QMenu* MainWindow::addMenu(const QString& title, const char* name, state::MenuEntry& entry)
{
    QMenu* menu = menuBar()->addMenu(title);
    menu->setObjectName(QLatin1String(name));
    m_shows.emplace_back([menu, &entry] { menu->menuAction()->setEnabled(entry.enabled); });
    return menu;
}

QAction* MainWindow::addEntry(QMenu* menu, const QString& caption, const char* name,
                              state::MenuEntry& entry, Command command, const char* icon)
{
    QAction* action = menu->addAction(caption);
    action->setObjectName(QLatin1String(name));
    if (icon != nullptr)
        action->setIcon(iconOf(icon));
    connect(action, &QAction::triggered, this, [this, command] {
        (m_commands.*command)();
        showRecords();
    });
    m_shows.emplace_back([action, &entry] { action->setEnabled(entry.enabled); });
    return action;
}

void MainWindow::buildMenus()
{
    auto& f = m_form;
    QMenu* file = addMenu(tr("&File"), "mnuFile", f.mnuFile);
    addEntry(file, "&New", "mnuNew", f.mnuNew, &MainFrameCommands::mnuNew_Click, "new")
        ->setShortcut(QKeySequence::New);
    addEntry(file, "&Open", "mnuOpen", f.mnuOpen, &MainFrameCommands::mnuOpen_Click, "open")
        ->setShortcut(QKeySequence::Open);
    addEntry(file, "&Edit", "mnuEdit", f.mnuEdit, &MainFrameCommands::mnuEdit_Click, "edit");
    file->addSeparator();
    addEntry(file, "&Save", "mnuSave", f.mnuSave, &MainFrameCommands::mnuSave_Click, "save")
        ->setShortcut(QKeySequence::Save);
    addEntry(file, "&SaveAs", "mnuSaveAs", f.mnuSaveAs, &MainFrameCommands::mnuSaveAs_Click,
             "save-as");
    file->addSeparator();
    addEntry(file, "&Close", "mnuClose", f.mnuClose, &MainFrameCommands::mnuClose_Click, "close");
    addEntry(file, "E&xit", "mnuExit", f.mnuExit, &MainFrameCommands::mnuExit_Click);

    QMenu* actions = addMenu(tr("&Actions"), "mnuActions", f.mnuActions);
    addEntry(actions, "&BackupNow", "mnuBackup", f.mnuBackup, &MainFrameCommands::mnuBackup_Click,
             "backup-now");
    addEntry(actions, "&Rev Restore", "mnure", f.mnure, &MainFrameCommands::mnuBkpSto_Click,
             "review-restore");
    actions->addSeparator();
    addEntry(actions, "Ex&pand Branch", "mnuExpand", f.mnuExpand,
             &MainFrameCommands::mnuExpand_Click);
    addEntry(actions, "Co&llapse Branch", "mnuCollapse", f.mnuCollapse,
             &MainFrameCommands::mnuCollapse_Click);

    QMenu* tools = addMenu(tr("&Tools"), "mnuTools", f.mnuTools);
    addEntry(tools, "Display Queue", "mnudispQ", f.mnudispQ, &MainFrameCommands::mnudispQ_Click);
    addEntry(tools, "&Backup Log", "mnuBackLog", f.mnuBackLog, &MainFrameCommands::mnuBackLog_Click,
             "log");
    addEntry(tools, "&Restore Log", "mnuRestLog", f.mnuRestLog,
             &MainFrameCommands::mnuRestLog_Click, "log");
    tools->addSeparator();
    addEntry(tools, "Op&tions", "mnuOptions", f.mnuOptions, &MainFrameCommands::mnuOptions_Click);

    QMenu* window = addMenu(tr("&Window"), "mnuWindow", f.mnuWindow);
    addEntry(window, "Profile &Manager", "mnuProfile", f.mnuProfile,
             &MainFrameCommands::mnuProfile_Click, "profile-manager");

    QMenu* help = addMenu(tr("&Help"), "mnuHelp", f.mnuHelp);
    addEntry(help, "&Contents", "mnuContents", f.mnuContents, &MainFrameCommands::mnuContents_Click)
        ->setShortcut(QKeySequence::HelpContents);
    addEntry(help, "&About Vardelin", "mnuAbout", f.mnuAbout, &MainFrameCommands::mnuAbout_Click);

    auto* pcBackup = new QPushButton(iconOf("pc-backup"), QStringLiteral("PC Backup"), menuBar());
    pcBackup->setObjectName(QStringLiteral("cmdPcBackup"));
    pcBackup->setFlat(true);
    connect(pcBackup, &QPushButton::clicked, this, [this] {
        m_commands.cmdPcBackup_Click();
        showRecords();
    });
    menuBar()->setCornerWidget(pcBackup);
}

void MainWindow::buildToolbar()
{
    m_toolbar = addToolBar(QStringLiteral("Toolbar1"));
    m_toolbar->setObjectName(QStringLiteral("Toolbar1"));
    m_toolbar->setMovable(false);
    m_toolbar->setContextMenuPolicy(Qt::PreventContextMenu);
    m_toolbar->setIconSize({kIconSize, kIconSize});
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_shows.emplace_back([this] { m_toolbar->setEnabled(m_form.Toolbar1Enabled); });
    for (const ButtonRow& row : kButtons) {
        if (row.caption == nullptr) {
            m_toolbar->addSeparator();
            continue;
        }
        QAction* action = m_toolbar->addAction(iconOf(row.icon), QLatin1String(row.caption));
        m_shows.emplace_back([this, action, row] {
            const std::string& toolTip = m_form.Toolbar1(row.index).toolTip;
            action->setToolTip(toolTip.empty() ? QLatin1String(row.toolTip) : shown(toolTip));
        });
        action->setObjectName(QStringLiteral("Toolbar1_%1").arg(row.index));
        const std::size_t index = row.index;
        connect(action, &QAction::triggered, this, [this, index] {
            frame::Toolbar_ButtonClick(m_commands, index);
            showRecords();
        });
        m_shows.emplace_back(
            [this, action, index] { action->setEnabled(m_form.Toolbar1(index).enabled); });
    }
    // The drop-down of the last button; a plain click on it does nothing.
    auto* log =
        qobject_cast<QToolButton*>(m_toolbar->widgetForAction(m_toolbar->actions().constLast()));
    auto* menu = new QMenu(log);
    const auto item = [&](const char* caption, const char* tip, Command command) {
        QAction* action = menu->addAction(QLatin1String(caption));
        action->setToolTip(QLatin1String(tip));
        connect(action, &QAction::triggered, this, [this, command] {
            (m_commands.*command)();
            showRecords();
        });
    };
    item("Backup Log", "Backup Logg", &MainFrameCommands::mnuBackLog_Click);
    item("Restore Log", "Restore Logg", &MainFrameCommands::mnuRestLog_Click);
    item("Queue Log", "Queue Log", &MainFrameCommands::mnudispQ_Click);
    menu->setToolTipsVisible(true);
    log->setMenu(menu);
    log->setPopupMode(QToolButton::MenuButtonPopup);
}

void MainWindow::buildStatusBar()
{
    statusBar()->setObjectName(QStringLiteral("StatusBar1"));
    statusBar()->setSizeGripEnabled(false);
    // In line with what stands above.
    const int margin = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    statusBar()->setContentsMargins(margin, 0, margin, 0);
    m_progress = new QProgressBar;
    m_progress->setObjectName(QStringLiteral("pb"));
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(tr("Progress"));
    QSizePolicy keepsRoom = m_progress->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    m_progress->setSizePolicy(keepsRoom);
    for (int i = 0; i < 3; ++i) {
        m_panels[i] = new QLabel;
        m_panels[i]->setObjectName(QStringLiteral("panel%1").arg(i + 1));
        m_panels[i]->setTextFormat(Qt::PlainText);
        m_panels[i]->setMinimumWidth(1);
        // The bar stands in the second panel.
        if (i == 1)
            statusBar()->addWidget(m_progress, kPanelShares[i]);
        else
            statusBar()->addWidget(m_panels[i], kPanelShares[i]);
    }
    m_panels[1]->setParent(m_progress);
    m_panels[1]->hide();
}

void MainWindow::showRecords()
{
    for (const auto& show : m_shows)
        show();
    const state::StatusPanel* const panels[] = {&m_frame.panel1, &m_frame.panel2, &m_frame.panel3};
    for (int i = 0; i < 3; ++i) {
        const QString text = shown(panels[i]->text);
        m_panels[i]->setText(elided(text, m_panels[i]->fontMetrics(), m_panels[i]->width()));
        m_panels[i]->setToolTip(plainToolTip(text));
    }
    double share = m_frame.pb.maximum > 0 ? m_frame.pb.value / m_frame.pb.maximum : 0;
    // What is done leaves its bar full until the next work begins: nobody waits for it any more.
    if (share >= 1 && !m_form.commandRunning)
        share = 0;
    // An empty bar looks like a box to write in.
    m_progress->setVisible(share > 0);
    m_progress->setRange(0, kProgressSteps);
    m_progress->setValue(static_cast<int>(share * kProgressSteps));
}

void MainWindow::addForm(QWidget* form)
{
    m_area->addWidget(form);
    m_area->setCurrentWidget(form);
}

void MainWindow::raiseForm(QWidget& form)
{
    m_area->setCurrentWidget(&form);
}

void MainWindow::showForm(QWidget& form, bool visible)
{
    if (m_area->currentWidget() == &form)
        form.setVisible(visible);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // Whether the program ends is the command's matter.
    event->ignore();
    m_commands.mnuExit_Click();
    showRecords();
}

} // namespace vardelin::ui
