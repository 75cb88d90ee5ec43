#pragma once

#include "app/archive_parts.h"
#include "app/commands.h"
#include "app/handler_runner.h"
#include "app/start_up_window.h"
#include "app/window_ports.h"
#include "background/schedule_records.h"
#include "editor/life_cycle.h"
#include "frame/frame_context.h"
#include "frame/start_up.h"
#include "platform/desktop_types.h"
#include "profile/editor_lists.h"
#include "profile/opening.h"
#include "runs/backup_run.h"
#include "shell/file_types.h"
#include "trace/run_trace.h"
#include "ui/cancel_view.h"
#include "ui/choosers.h"
#include "ui/editor_window.h"
#include "ui/frame_window.h"
#include "ui/main_window.h"
#include "ui/profile_form.h"

#include <optional>
#include <string>
#include <string_view>

#include <QPointer>

namespace vardelin::app {

// What the program stands on. All references outlive the application.
struct Ports {
    platform::Machine machine;
    trace::ErrorDialog& errorDialog;
    platform::InstanceLock& instance;
    platform::DesktopTypes& desktop;
    std::string appPath; // the application folder in drive form, no backslash at the end
};

// Owns every record, port and view of the program and hands them on by reference; has no logic of
// its own. One per process, on the thread of the user interface, younger than the QApplication.
class Application {
public:
    explicit Application(const Ports& ports);
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;
    ~Application();

    // Puts the splash up, from which everything else follows. `commandLine` is one path in drive
    // form, or empty. False where the program is to end at once, of which the person was told.
    bool start(std::string_view commandLine);

    // Every view shows its record as it stands now.
    void showRecords();

    ui::MainWindow& window() { return m_window; }
    HandlerRunner& runner() { return m_runner; }
    frame::StartUpContext& startUp() { return m_startUp; }

    // The records.
    trace::RunTrace runTrace;
    trace::ErrorRecord errors;
    trace::TraceContext trace;
    state::FrameState frame;
    state::MainFrameForm mainFrame;
    state::frmSplash splash;
    state::ProfileEditorState editor;
    state::ProfileStore store;
    state::ProfileFormState profileForm;
    editor::SourceTreeForm treeForm;
    editor::PagesForm pagesForm;
    state::frmOpenProfile openForm;
    profile::ListingState listing;
    profile::FileNumbers fileNumbers;
    background::ServicePlace services;
    state::frmCancel cancelForm;
    runs::BackupState backup;
    bool bProfileOpened = false;
    std::string lastSelected; // folder of the profile opened last from outside of `Profiles`

private:
    ui::WindowHooks hooks();
    void showFrame();
    void showBackup();
    // While a handler lets waiting events run: how far it is.
    void showProgress();

    // Each needs those above it.
    HandlerRunner m_runner;
    UnwindingMessageBoxes m_messageBoxes;
    UnwindingMessageLoop m_messageLoop;
    platform::Machine m_machine;
    Commands m_commands;
    ui::MainWindow m_window;
    ui::QtEditorWindow m_editorWindow;
    ui::QtFileChooser m_fileChooser;
    QtStartUpWindow m_startUpWindow;

    editor::PlainFileIcons m_icons;
    background::RegistryScheduleRecords m_schedules;
    profile::StateEditorLists m_editorLists;
    profile::clsFiles m_profileFiles;
    profile::ProfileContext m_profiles;
    editor::EditorContext m_tree;
    editor::PagesContext m_pages;
    editor::EditorFormContext m_form;
    profile::OpeningContext m_opening;

public:
    // The review, the restore and the logs.
    ArchiveParts archive;

private:
    ui::ProfileForm* m_profileView; // the window's area owns it
    bool m_editorShown = false;
    ui::QtFrameWindow m_frameWindow;
    frame::FrameContext m_frame;
    runs::BackupContext m_backup;
    QPointer<ui::CancelView> m_cancelView; // while a backup is on show
    frame::StartUpContext m_startUp;
    platform::DesktopTypes& m_desktop;
    std::optional<shell::RegistryFileTypes> m_fileTypes; // once the command line is known
};

} // namespace vardelin::app
