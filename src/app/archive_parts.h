#pragma once

#include "app/archive_windows.h"
#include "app/handler_runner.h"
#include "archive/review.h"
#include "editor/pages_context.h"
#include "frame/archive_commands.h"
#include "frame/frame_context.h"
#include "logs/log_view.h"
#include "runs/restore_dialog.h"
#include "state/log_form.h"
#include "state/restore_forms.h"
#include "state/review_form.h"
#include "ui/main_window.h"

#include <QWidget>

namespace vardelin::ui {
class LogView;
class ReviewView;
} // namespace vardelin::ui

namespace vardelin::app {

// What the program has beside the editor: the review of an archive with its restore and its
// deletion, and the logs. Owns their records and ties them to their views, which the window's area
// holds. For the thread of the user interface.
//
// What a person does in the review counts as a command of the main frame: none begins while another
// one runs, since it would take the rows away from under it.
class ArchiveParts {
public:
    // All outlive this object.
    ArchiveParts(profile::ProfileContext& profiles, ui::MainWindow& window,
                 ui::QtEditorWindow& editorWindow, HandlerRunner& runner,
                 state::MainFrameForm& mainFrame);
    ArchiveParts(const ArchiveParts&) = delete;
    ArchiveParts& operator=(const ArchiveParts&) = delete;

    // Before the first command; the contexts outlive this object.
    void attach(frame::FrameContext& frame, editor::PagesContext& pages);

    // The commands of the main frame. While another one runs they do nothing.
    void mnuBkpSto_Click();
    void mnuBackLog_Click();
    void mnuRestLog_Click();
    void mnudispQ_Click();

    // Where another profile takes the place of the one that they show.
    void unloadReview();
    void unloadLogs();

    // The views show their records, behind a handler and while one lets events through.
    void showRecords();
    void showProgress();

    archive::ReviewState review;
    state::frmVDStorage storage;
    state::frmRestLocation restoreLocation;
    state::frmByDate byDate;
    runs::RestoreState restore;
    state::frmLog logForm;
    bool reviewIsOpen = false;

private:
    void emptyReview();
    void loadReview();
    void closeReview();
    void closeLogs();
    void showEditor();
    void close(void (ArchiveParts::*form)());
    // A handler of the views, unless a command or another one runs.
    void runAlone(const char* name, const ui::Handler& body);
    void showForms();
    void enableReview();
    template <typename Command>
    void runLogs(Command command);

    profile::ProfileContext& m_profiles;
    ui::MainWindow& m_window;
    HandlerRunner& m_runner;
    ArchiveWindows m_windows;
    archive::ReviewContext m_review;
    runs::RestoreContext m_restore;
    frame::ReviewCommandContext m_reviewCommand;
    logs::LogViewContext m_logs;
    frame::FrameContext* m_frame = nullptr;

    ui::ReviewView* m_reviewView; // the window's area owns both
    ui::LogView* m_logView;
    bool m_reviewHadFocus = false; // when the frame was closed
};

} // namespace vardelin::app
