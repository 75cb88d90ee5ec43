#include "app/guarded_application.h"

namespace vardelin::app {

bool GuardedApplication::notify(QObject* receiver, QEvent* event)
{
    if (m_runner == nullptr)
        return QApplication::notify(receiver, event);
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        // Nothing is run but the report of what is under way.
        m_runner->run("notify", [] { throw; });
        return false;
    }
}

} // namespace vardelin::app
