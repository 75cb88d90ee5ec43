#pragma once

#include "frame/main_frame.h"
#include "state/frame_state.h"
#include "state/main_frame_form.h"

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include <QMainWindow>

class QAction;
class QLabel;
class QProgressBar;
class QStackedWidget;
class QToolButton;

namespace vardelin::ui {

// MDIForm1: the main frame with its menus, Toolbar1, StatusBar1 and the area that holds the forms.
// Shows the records of the frame and runs their commands; decides nothing.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    // All must outlive the window.
    MainWindow(state::MainFrameForm& form, state::FrameState& frame,
               frame::MainFrameCommands& commands);

    // Shows the records as they stand: enabling, panels, progress.
    void showRecords();

    // Shows a form in the frame's area, as large as that is, in front of the others. The area takes
    // the widget over.
    void addForm(QWidget* form);

    // Of a form that the area holds: puts it in front of the others, and shows or hides it where it
    // is in front.
    void raiseForm(QWidget& form);
    void showForm(QWidget& form, bool visible);

    // Runs whenever the records are shown.
    void also(std::function<void()> show) { m_shows.push_back(std::move(show)); }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    using Command = void (frame::MainFrameCommands::*)();

    QMenu* addMenu(const QString& title, const char* name, state::MenuEntry& entry);
    QAction* addEntry(QMenu* menu, const QString& caption, const char* name,
                      state::MenuEntry& entry, Command command, const char* icon = nullptr);
    void buildMenus();
    void buildToolbar();
    void buildStatusBar();

    state::MainFrameForm& m_form;
    state::FrameState& m_frame;
    frame::MainFrameCommands& m_commands;
    QStackedWidget* m_area = nullptr;
    QToolBar* m_toolbar = nullptr;
    QProgressBar* m_progress = nullptr;
    QLabel* m_panels[3] = {};
    std::vector<std::function<void()>> m_shows;
};

} // namespace vardelin::ui
