#include "app/application.h"

#include "app/editor_handlers.h"
#include "platform/path_rule.h"
#include "ui/archive_form_handlers.h"
#include "ui/frame_form_handlers.h"

#include <QCoreApplication>

namespace vardelin::app {
namespace {

platform::Machine with(platform::Machine machine, platform::MessageLoop& loop,
                       platform::MessageBoxes& boxes)
{
    return {machine.fileSystem, machine.drives, machine.registry,
            machine.shell,      machine.facts,  machine.processes,
            machine.clock,      loop,           boxes};
}

} // namespace

Application::Application(const Ports& ports)
    : runTrace(ports.machine.fileSystem, ports.machine.clock, ports.machine.messageBoxes,
               ports.appPath, ports.machine.facts.executableName()),
      trace{runTrace, errors, ports.errorDialog},
      store(platform::pathRule(ports.machine.fileSystem)),
      treeForm(platform::pathRule(ports.machine.fileSystem)),
      m_runner(
          trace, [this] { showRecords(); }, [] { QCoreApplication::exit(); }),
      m_messageBoxes(ports.machine.messageBoxes, m_runner, [this] { showProgress(); }),
      m_messageLoop(
          ports.machine.messageLoop, m_runner, [this] { showProgress(); },
          [this] { return cancelForm.loaded != (m_cancelView && m_cancelView->isVisible()); }),
      m_machine(with(ports.machine, m_messageLoop, m_messageBoxes)),
      m_commands(m_runner, m_messageBoxes), m_window(mainFrame, frame, m_commands),
      m_editorWindow(m_window, hooks()),
      m_fileChooser({m_machine.fileSystem, m_messageBoxes, trace}),
      m_startUpWindow(m_window, m_runner),
      m_schedules({m_machine, trace, frame, editor, store.save}), m_editorLists(trace, editor),
      m_profileFiles({m_machine.fileSystem, trace, frame, listing}),
      m_profiles{m_machine, trace, frame, editor, store, m_schedules, m_editorLists, fileNumbers},
      m_tree{m_machine, trace, frame, editor, store, treeForm, m_icons},
      m_pages{m_machine, trace, frame, editor, store, treeForm, pagesForm, m_editorWindow},
      m_form{m_tree, m_pages, profileForm, mainFrame, m_editorLists},
      m_opening{m_profiles,     openForm,      profileForm,    listing,
                m_profileFiles, m_fileChooser, bProfileOpened, lastSelected},
      archive(m_profiles, m_window, m_editorWindow, m_runner, mainFrame),
      m_profileView(new ui::ProfileForm(editor, profileForm, editorHandlers(m_form, m_runner))),
      m_frameWindow({m_window, *m_profileView, profileForm, mainFrame, treeForm}, hooks()),
      m_frame{m_profiles, m_opening, m_form, m_schedules, mainFrame, m_frameWindow},
      m_backup{m_machine,  trace,  frame,
               cancelForm, backup, runs::engineBackup(m_machine, ports.appPath)},
      m_startUp{m_frame, splash, ports.instance, m_startUpWindow, services, nullptr, ports.appPath},
      m_desktop(ports.desktop)
{
    m_window.addForm(m_profileView);
    m_commands.attach(m_frame, m_backup, archive);
    archive.attach(m_frame, m_pages);
    m_editorWindow.attach(m_pages);
    m_fileChooser.setParent(&m_window);
    m_frameWindow.attach({.openProfile =
                              [this](profile::OpeningContext& opening) {
                                  return ui::openProfileHandlers(opening, hooks().run);
                              },
                          .nameDialog =
                              [this](state::frmRestDialog& form) {
                                  return ui::nameDialogHandlers(m_frame, form, hooks().run);
                              },
                          .unloadReview = [this] { archive.unloadReview(); },
                          .unloadLogs = [this] { archive.unloadLogs(); }});
    m_startUpWindow.attach(m_startUp);
}

// A window that goes hides what is on it, and views look at their records while that happens: some
// of these go before the window does.
Application::~Application()
{
    m_window.hide();
}

ui::WindowHooks Application::hooks()
{
    return {.run = [this](const char* name, const ui::Handler& body) { m_runner.run(name, body); },
            .showRecords = [this] { showRecords(); },
            .cameBack = [this] { m_runner.unwindAfterEvents(); }};
}

bool Application::start(std::string_view commandLine)
{
    m_fileTypes.emplace(m_profiles, m_desktop, std::string(commandLine));
    m_startUp.fileTypes = &*m_fileTypes;
    bool goesOn = false;
    const bool done = m_runner.run("Main", [&] { goesOn = frame::Main(m_startUp, commandLine); });
    return done && goesOn;
}

void Application::showFrame()
{
    m_window.showRecords();
    // A form that comes up has the keyboard, as its first control.
    const bool shows = m_profileView->isVisibleTo(&m_window);
    if (shows && !m_editorShown)
        m_profileView->setFocus();
    m_editorShown = shows;
    showBackup();
}

// The window comes with its record and closes by itself when that is unloaded.
void Application::showBackup()
{
    // One that is hidden is of a former run and waits for its end.
    if (m_cancelView && !m_cancelView->isHidden()) {
        m_cancelView->showRecord();
        return;
    }
    if (!cancelForm.loaded)
        return;
    m_cancelView =
        new ui::CancelView(cancelForm, ui::cancelHandlers(m_backup, hooks().run), &m_window);
    m_cancelView->setAttribute(Qt::WA_DeleteOnClose);
    m_cancelView->show();
}

void Application::showProgress()
{
    showFrame();
    archive.showProgress();
    m_profileView->showReading();
}

void Application::showRecords()
{
    showFrame();
    archive.showRecords();
    m_profileView->setEnabled(mainFrame.editorEnabled);
    m_profileView->showRecords();
}

} // namespace vardelin::app
