#include "app/archive_windows.h"

#include "editor/password_page.h"
#include "frame/main_frame.h"
#include "ui/password_view.h"
#include "ui/restore_view.h"

namespace vardelin::app {
namespace {

constexpr int kRightButton = 2;

} // namespace

void ArchiveWindows::showReviewPassword(runs::PasswordGateContext& gate, state::frmResPwd& form)
{
    {
        ui::PasswordView view(
            form,
            {.cmdOk_Click = handler("cmdOk_Click", [&] { runs::cmdOk_Click(gate, form); }),
             .cmdCancel_Click =
                 handler("cmdCancel_Click", [&] { editor::cmdCancel_Click(*m_pages, form); }),
             .lblForgotPwd_Click =
                 handler("lblForgotPwd_Click", [&] { runs::lblForgotPwd_Click(gate, form); })},
            &m_window);
        view.exec();
    }
    m_runner.unwindAfterEvents();
    if (form.loaded) // closed by its frame: as with Cancel
        editor::cmdCancel_Click(*m_pages, form);
}

void ArchiveWindows::showRestLocation(state::frmRestLocation& form)
{
    runs::RestoreContext& restore = *m_restore;
    {
        ui::RestoreLocationView view(
            form,
            {.cmbRestLoc = {.click = handler("cmbRestLoc_Click",
                                             [&] { runs::cmbRestLoc_Click(restore); }),
                            .gotFocus = {},
                            .keyPress = &runs::cmbRestLoc_KeyPress,
                            .keyDown = &runs::cmbRestLoc_KeyDown},
             .txtRestLoc = {.change = {},
                            .gotFocus = {},
                            .lostFocus = {},
                            .keyPress =
                                [&](int key) { return runs::txtRestLoc_KeyPress(restore, key); },
                            .rightButton = handler(
                                "txtRestLoc_MouseDown",
                                [&] { runs::txtRestLoc_MouseDown(restore, kRightButton); })},
             .cmdBrowse_Click = handler("cmdBrowse_Click", [&] { runs::cmdBrowse_Click(restore); }),
             .cmdOK_Click = handler("cmdOk_Click", [&] { runs::restoreOk_Click(restore); }),
             .cmdCancel_Click =
                 handler("cmdCancel_Click", [&] { runs::restoreCancel_Click(restore); })},
            {restore.restore.running, restore.profiles.frame.pb}, &m_window);
        view.exec();
    }
    m_runner.unwindAfterEvents();
    form.loaded = false;
}

void ArchiveWindows::showByDate(state::frmByDate& form)
{
    runs::RestoreContext& restore = *m_restore;
    {
        ui::ByDateView* shown = nullptr;
        ui::ByDateView view(
            form,
            {.cmdOk_Click = handler("cmdOk_Click",
                                    [&] {
                                        shown->hide(); // the next dialog opens in this handler
                                        runs::byDateOk_Click(restore);
                                    }),
             .cmdCancel_Click =
                 handler("cmdCancel_Click", [&] { runs::byDateCancel_Click(restore); })},
            &m_window);
        shown = &view;
        view.exec();
    }
    m_runner.unwindAfterEvents();
    form.loaded = false;
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
