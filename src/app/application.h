#pragma once

#include "app/commands.h"
#include "app/handler_runner.h"
#include "app/window_ports.h"
#include "background/schedule_records.h"
#include "editor/life_cycle.h"
#include "frame/frame_context.h"
#include "profile/editor_lists.h"
#include "profile/opening.h"
#include "trace/run_trace.h"
#include "ui/main_window.h"
#include "ui/profile_form.h"

#include <memory>
#include <string>

namespace vardelin::app {

// What the program stands on. All references outlive the application.
struct Ports {
    platform::Machine machine;
    trace::ErrorDialog& errorDialog;
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

    // Fills the editor and shows the frame.
    void start();

    // Every view shows its record as it stands now.
    void showRecords();

    ui::MainWindow& window() { return *m_window; }
    HandlerRunner& runner() { return m_runner; }

    // The records, in the order in which they need each other.
    trace::RunTrace runTrace;
    trace::ErrorRecord errors;
    trace::TraceContext trace;
    state::FrameState frame;
    state::MainFrameForm mainFrame;
    state::ProfileEditorState editor;
    state::ProfileStore store;
    state::ProfileFormState profileForm;
    state::frmOpenProfile openForm;
    profile::ListingState listing;
    profile::FileNumbers fileNumbers;
    bool bProfileOpened = false;
    std::string lastSelected;
    editor::SourceTreeForm treeForm;
    editor::PagesForm pagesForm;

private:
    void showFrame();
    // While a handler lets waiting events run: how far it is.
    void showProgress();
    void showCursor();

    HandlerRunner m_runner;
    UnwindingMessageBoxes m_messageBoxes;
    UnwindingMessageLoop m_messageLoop;
    platform::Machine m_machine;
    editor::PlainFileIcons m_icons;
    std::unique_ptr<editor::EditorWindow> m_editorWindow;
    std::unique_ptr<frame::FrameWindow> m_frameWindow;
    std::unique_ptr<profile::FileChooser> m_fileChooser;
    background::RegistryScheduleRecords m_schedules;
    profile::StateEditorLists m_editorLists;
    profile::clsFiles m_profileFiles;

    profile::ProfileContext m_profiles;
    editor::EditorContext m_tree;
    editor::PagesContext m_pages;
    editor::EditorFormContext m_form;
    profile::OpeningContext m_opening;
    frame::FrameContext m_frame;
    Commands m_commands;

    bool m_busyCursor = false;

    // The views, which go first.
    std::unique_ptr<ui::MainWindow> m_window;
    ui::ProfileForm* m_profileView = nullptr; // the window's
};

} // namespace vardelin::app
