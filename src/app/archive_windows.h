#pragma once

#include "app/handler_runner.h"
#include "editor/pages_context.h"
#include "runs/password_gate.h"
#include "runs/restore_dialog.h"
#include "state/main_frame_form.h"
#include "ui/editor_window.h"

#include <QWidget>

namespace vardelin::app {

// The windows of the archive's password and of a restore, as the logic behind them asks for them.
class ArchiveWindows final : public runs::PasswordWindow, public runs::RestoreWindow {
public:
    // All outlive this object.
    ArchiveWindows(QWidget& window, ui::QtEditorWindow& editorWindow, HandlerRunner& runner,
                   state::MainFrameForm& mainFrame)
        : m_window(window), m_editorWindow(editorWindow), m_runner(runner), m_mainFrame(mainFrame)
    {
    }

    // Before the first window; the contexts outlive this object.
    void attach(editor::PagesContext& pages, runs::RestoreContext& restore)
    {
        m_pages = &pages;
        m_restore = &restore;
    }

    void showReviewPassword(runs::PasswordGateContext& gate, state::frmResPwd& form) override;
    void showRestLocation(state::frmRestLocation& form) override;
    void showByDate(state::frmByDate& form) override;
    void setFrameActive(bool active) override;
    std::string browseForFolder(std::string_view title, std::string_view start) override;
    void setFocus(std::string_view control) override;
    void clearClipboard() override;

private:
    // How the forms run their handlers: an error ends in the error dialog and not in the toolkit.
    ui::HandlerRun handlerRun();

    QWidget& m_window;
    ui::QtEditorWindow& m_editorWindow;
    HandlerRunner& m_runner;
    state::MainFrameForm& m_mainFrame;
    editor::PagesContext* m_pages = nullptr;
    runs::RestoreContext* m_restore = nullptr;
};

} // namespace vardelin::app
