#include "ui/frame_window.h"

#include "ui/about_view.h"
#include "ui/main_window.h"
#include "ui/shown_text.h"

#include <utility>

#include <QCoreApplication>

namespace vardelin::ui {

QtFrameWindow::QtFrameWindow(const Parts& parts, WindowHooks hooks)
    : m_parts(parts), m_hooks(std::move(hooks)), m_pointer(parts.window)
{
    m_parts.window.also([this] { showRecords(); });
}

void QtFrameWindow::showRecords()
{
    const state::ProfileFormState& form = m_parts.profileForm;
    const bool named = form.visible && !form.caption.empty();
    m_parts.window.setWindowTitle(named ? QStringLiteral("Vardelin - [%1]").arg(shown(form.caption))
                                        : QStringLiteral("Vardelin"));
    m_parts.window.showForm(m_parts.editorForm, form.visible);
    m_pointer.show(m_parts.mainFrame.hourglass ||
                   m_parts.tree.mousePointer == editor::MousePointer::Hourglass);
}

void QtFrameWindow::cameBack()
{
    if (m_hooks.cameBack)
        m_hooks.cameBack();
}

void QtFrameWindow::showRestDialog(state::frmRestDialog& form)
{
    NameDialogView(form, m_forms.nameDialog(form), &m_parts.window).exec();
    cameBack();
}

void QtFrameWindow::showOpenProfile(profile::OpeningContext& opening)
{
    OpenProfileView(opening.form, m_forms.openProfile(opening), &m_parts.window).exec();
    cameBack();
}

void QtFrameWindow::showAbout()
{
    AboutView(&m_parts.window).exec();
    cameBack();
}

void QtFrameWindow::unloadReview()
{
    if (m_forms.unloadReview)
        m_forms.unloadReview();
}

void QtFrameWindow::unloadLogs()
{
    if (m_forms.unloadLogs)
        m_forms.unloadLogs();
}

void QtFrameWindow::showEditor()
{
    m_parts.window.raiseForm(m_parts.editorForm);
}

void QtFrameWindow::endApplication()
{
    // Not quit(), which would close the windows first and so ask the exit command again.
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
}

} // namespace vardelin::ui
