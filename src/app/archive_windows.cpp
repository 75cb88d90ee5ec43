#include "app/archive_windows.h"

#include "editor/password_page.h"
#include "frame/main_frame.h"
#include "ui/archive_form_handlers.h"

namespace vardelin::app {
void ArchiveWindows::showReviewPassword(runs::PasswordGateContext& gate, state::frmResPwd& form)
{
    {
        ui::PasswordView view(
            form,
            ui::reviewPasswordHandlers(
                gate, form, [&] { editor::cmdCancel_Click(*m_pages, form); }, handlerRun()),
            &m_window);
        view.exec();
    }
    m_runner.unwindAfterEvents();
    if (form.loaded) // closed by its frame: as with Cancel
        editor::cmdCancel_Click(*m_pages, form);
}

void ArchiveWindows::showRestLocation(state::frmRestLocation& form)
{
    {
        ui::RestoreLocationView view(form, ui::restoreLocationHandlers(*m_restore, handlerRun()),
                                     {m_restore->restore.running, m_restore->profiles.frame.pb},
                                     &m_window);
        view.exec();
    }
    m_runner.unwindAfterEvents();
    form.loaded = false;
}

void ArchiveWindows::showByDate(state::frmByDate& form)
{
    {
        ui::ByDateView view(form, ui::byDateHandlers(*m_restore, handlerRun()), &m_window);
        view.exec();
    }
    m_runner.unwindAfterEvents();
    form.loaded = false;
}

ui::HandlerRun ArchiveWindows::handlerRun()
{
    return [this](const char* name, const ui::Handler& body) { m_runner.run(name, body); };
}

void ArchiveWindows::setFrameActive(bool active)
{
    frame::MainWndActiveInAct(m_mainFrame, active);
}

std::string ArchiveWindows::browseForFolder(std::string_view title, std::string_view start)
{
    return m_editorWindow.browseForFolder(title, start);
}

void ArchiveWindows::setFocus(std::string_view control)
{
    m_editorWindow.setFocus(control);
}

void ArchiveWindows::clearClipboard()
{
    m_editorWindow.clearClipboard();
}

} // namespace vardelin::app
