#pragma once

#include "app/commands.h"
#include "app/handler_runner.h"
#include "app/window_ports.h"
#include "editor/pages_context.h"
#include "profile/editor_lists.h"
#include "state/main_frame_form.h"
#include "state/profile_form.h"
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
    editor::SourceTreeForm treeForm;
    editor::PagesForm pagesForm;

private:
    void showFrame();

    HandlerRunner m_runner;
    UnwindingMessageBoxes m_messageBoxes;
    UnwindingMessageLoop m_messageLoop;
    platform::Machine m_machine;
    editor::PlainFileIcons m_icons;
    std::unique_ptr<editor::EditorWindow> m_editorWindow;
    editor::EditorContext m_tree;
    editor::PagesContext m_pages;
    Commands m_commands;

    // The views, which go first.
    std::unique_ptr<ui::MainWindow> m_window;
    ui::ProfileForm* m_profileView = nullptr; // the window's
};

} // namespace vardelin::app
