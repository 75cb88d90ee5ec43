#include "ui/editor_window.h"

#include "ui/choosers.h"
#include "ui/editor_form_handlers.h"
#include "ui/shown_text.h"

#include <cassert>
#include <utility>

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>

namespace vardelin::ui {
namespace {

// The window in front, where modal ones have their parent.
QWidget* frontOf(QWidget& window)
{
    QWidget* const modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : &window;
}

// A name may stand on several forms: the one in front counts first.
QWidget* find(QWidget& window, const QString& name)
{
    auto* control = frontOf(window)->findChild<QWidget*>(name);
    return control != nullptr ? control : window.findChild<QWidget*>(name);
}

} // namespace

QtEditorWindow::QtEditorWindow(QWidget& window, WindowHooks hooks)
    : m_window(window), m_hooks(std::move(hooks))
{
}

void QtEditorWindow::showOtherdata()
{
    assert(m_context != nullptr);
    {
        OtherDataView view(m_context->editor, m_context->pages.otherdata,
                           otherDataHandlers(*m_context, m_hooks.run), frontOf(m_window));
        view.exec();
    }
    if (m_hooks.cameBack)
        m_hooks.cameBack();
}

void QtEditorWindow::showResPwd(state::frmResPwd& form)
{
    assert(m_context != nullptr);
    {
        PasswordView view(form, editorPasswordHandlers(*m_context, form, m_hooks.run),
                          frontOf(m_window));
        view.exec();
    }
    if (m_hooks.cameBack)
        m_hooks.cameBack();
}

std::string QtEditorWindow::browseForFolder(std::string_view title, std::string_view start)
{
    assert(m_context != nullptr);
    const platform::Machine& machine = m_context->machine;
    std::string folder =
        BrowseForFolder({machine.fileSystem, machine.messageBoxes, m_context->trace},
                        frontOf(m_window), title, start);
    if (m_hooks.cameBack)
        m_hooks.cameBack();
    return folder;
}

void QtEditorWindow::later(std::string_view control, std::function<void(QWidget&)> action)
{
    const QString name = QString::fromUtf8(control.data(), static_cast<qsizetype>(control.size()));
    QMetaObject::invokeMethod(
        &m_later,
        [this, name, action = std::move(action)] {
            if (m_hooks.showRecords)
                m_hooks.showRecords();
            if (QWidget* const widget = find(m_window, name))
                action(*widget);
        },
        Qt::QueuedConnection);
}

void QtEditorWindow::setFocus(std::string_view control)
{
    later(control, [](QWidget& widget) {
        if (widget.isEnabled() && widget.isVisible())
            widget.setFocus(Qt::OtherFocusReason);
    });
}

void QtEditorWindow::ensureVisible(std::string_view list)
{
    later(list, [](QWidget& widget) {
        if (auto* const view = qobject_cast<QAbstractItemView*>(&widget))
            view->scrollTo(view->currentIndex());
    });
}

void QtEditorWindow::clearClipboard()
{
    QGuiApplication::clipboard()->clear();
}

} // namespace vardelin::ui
