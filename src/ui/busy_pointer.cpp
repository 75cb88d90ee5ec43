#include "ui/busy_pointer.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QWidget>

namespace vardelin::ui {

BusyPointer::BusyPointer(QWidget& window)
{
    window.installEventFilter(this);
}

BusyPointer::~BusyPointer()
{
    show(false);
}

void BusyPointer::show(bool busy)
{
    m_busy = busy;
    apply();
}

void BusyPointer::apply()
{
    const bool wanted = m_busy && !m_asking;
    if (wanted == m_shown)
        return;
    m_shown = wanted;
    if (wanted)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

bool BusyPointer::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowBlocked || event->type() == QEvent::WindowUnblocked) {
        m_asking = event->type() == QEvent::WindowBlocked;
        apply();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vardelin::ui
