#include "app/archive_parts.h"

#include "archive/paced_loop.h"
#include "base/runtime_error.h"
#include "frame/command.h"
#include "frame/window_commands.h"
#include "platform/path_rule.h"
#include "ui/archive_form_handlers.h"
#include "ui/log_view.h"
#include "ui/review_view.h"

#include <utility>

namespace vardelin::app {
ArchiveParts::ArchiveParts(profile::ProfileContext& profiles, ui::MainWindow& window,
                           ui::QtEditorWindow& editorWindow, HandlerRunner& runner,
                           state::MainFrameForm& mainFrame)
    : review(platform::pathRule(profiles.machine.fileSystem)), m_profiles(profiles),
      m_window(window), m_runner(runner),
      m_windows(window, editorWindow, runner, mainFrame), m_review{profiles.machine,
                                                                   profiles.trace,
                                                                   profiles.frame,
                                                                   profiles.store.scalars,
                                                                   storage,
                                                                   review},
      m_restore{profiles,
                review,
                storage,
                restoreLocation,
                byDate,
                restore,
                m_windows,
                [&profiles](const runs::RestoreRequest& request, const auto& proStatus) {
                    // The application folder is known by now.
                    return runs::engineRestore(profiles.machine,
                                               profiles.frame.ST_App_Path)(request, proStatus);
                }},
      m_reviewCommand{m_windows,
                      storage,
                      review,
                      [this] { loadReview(); },
                      [this] { m_window.raiseForm(*m_reviewView); },
                      reviewIsOpen},
      m_logs{profiles.machine, profiles.trace, profiles.frame, logForm}
{
    // As the commands of the main frame: none inside another one. Rows that a restore goes through,
    // or that are being made, must not go away meanwhile, and a backup has the archive to itself.
    ui::ReviewHandlers rows =
        ui::reviewHandlers(m_review, m_restore, [this](const char* name, const ui::Handler& body) {
            runAlone(name, body);
        });
    rows.Form_Unload = [this] { close(&ArchiveParts::closeReview); };
    m_reviewView =
        new ui::ReviewView(storage, profiles.frame.pb, std::move(rows), &profiles.machine.shell);
    ui::LogHandlers records = ui::logHandlers(
        m_logs, [this](const char* name, const ui::Handler& body) { m_runner.run(name, body); });
    records.Form_Unload = [this] { close(&ArchiveParts::closeLogs); };
    m_logView = new ui::LogView(logForm, std::move(records));
    for (QWidget* const view :
         {static_cast<QWidget*>(m_reviewView), static_cast<QWidget*>(m_logView)})
        window.addForm(view);
}

void ArchiveParts::runAlone(const char* name, const ui::Handler& body)
{
    if (m_frame->main.commandRunning)
        return;
    m_runner.run(name, [&] {
        const frame::CommandRun run(m_frame->main);
        body();
    });
}

// Closing leads to a command of the main frame, and so is none itself.
void ArchiveParts::close(void (ArchiveParts::*form)())
{
    if (!m_frame->main.commandRunning)
        m_runner.run("Form_Unload", [this, form] { (this->*form)(); });
}

void ArchiveParts::attach(frame::FrameContext& frame, editor::PagesContext& pages)
{
    m_frame = &frame;
    m_windows.attach(pages, m_restore);
}

void ArchiveParts::mnuBkpSto_Click()
{
    if (m_frame->main.commandRunning)
        return;
    frame::mnuBkpSto_Click(*m_frame, m_reviewCommand);
}

// The list of an uncompressed archive is written by a backup and used up by a look at it, and it
// may be another profile's: it is written anew for this one.
void ArchiveParts::loadReview()
{
    emptyReview();
    if (!m_profiles.store.scalars.bCompressFiles) {
        archive::PacedLoop loop(m_profiles.machine.messageLoop, m_profiles.machine.clock);
        base::PendingError noList; // the load says that there is none
        noList.attempt([&] {
            archive::writeReviewFiles(
                m_profiles.machine.fileSystem, m_profiles.frame.ST_App_Path,
                archive::archiveRoot(m_profiles.store.scalars.sDestinationPath,
                                     m_profiles.frame.ST_Current_Profile),
                [&] { loop.step(); });
        });
    }
    archive::frmVDStorage_Load(m_review);
}

template <typename Command>
void ArchiveParts::runLogs(Command command)
{
    if (m_frame->main.commandRunning)
        return;
    command(m_logs);
    m_window.raiseForm(*m_logView);
}

void ArchiveParts::mnuBackLog_Click()
{
    runLogs(&logs::mnuBackLog_Click);
}

void ArchiveParts::mnuRestLog_Click()
{
    runLogs(&logs::mnuRestLog_Click);
}

void ArchiveParts::mnudispQ_Click()
{
    runLogs(&logs::mnudispQ_Click);
}

void ArchiveParts::emptyReview()
{
    const std::uint64_t revision = storage.rowsRevision;
    storage = {};
    storage.rowsRevision = revision + 1;
    review = archive::ReviewState(platform::pathRule(m_profiles.machine.fileSystem));
}

void ArchiveParts::unloadReview()
{
    emptyReview();
    reviewIsOpen = false;
}

void ArchiveParts::unloadLogs()
{
    const std::uint64_t revision = logForm.revision;
    logForm = {};
    logForm.revision = revision + 1;
}

void ArchiveParts::closeReview()
{
    unloadReview();
    showEditor();
}

void ArchiveParts::closeLogs()
{
    unloadLogs();
    showEditor();
}

void ArchiveParts::showEditor()
{
    m_profiles.frame.panel1.text.clear();
    frame::mnuProfile_Click(*m_frame);
}

void ArchiveParts::showRecords()
{
    showForms();
    m_reviewView->showRecord();
    m_logView->showRecord();
}

void ArchiveParts::showProgress()
{
    showForms();
    m_reviewView->showProgress();
    m_logView->showRecord();
}

void ArchiveParts::showForms()
{
    m_window.showForm(*m_reviewView, storage.loaded && storage.visible);
    m_window.showForm(*m_logView, logForm.loaded && logForm.visible);
    enableReview();
}

// With the frame, of whose commands a run leaves none. The keyboard comes back to the rows.
void ArchiveParts::enableReview()
{
    const bool active = m_frame == nullptr || m_frame->main.editorEnabled;
    if (m_reviewView->isEnabled() == active)
        return;
    if (!active)
        m_reviewHadFocus = m_reviewView->isAncestorOf(m_window.focusWidget());
    m_reviewView->setEnabled(active);
    if (active && m_reviewHadFocus)
        m_reviewView->setFocus();
}

} // namespace vardelin::app
