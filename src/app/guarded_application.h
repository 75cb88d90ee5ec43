#pragma once

#include "app/handler_runner.h"

#include <QApplication>

namespace vardelin::app {

// The toolkit's application, with a net under everything that it delivers: what a view throws by
// itself, outside of the handlers that HandlerRunner runs, goes the same way as theirs.
class GuardedApplication final : public QApplication {
public:
    using QApplication::QApplication;

    // Nothing is caught without a runner. It must be taken away again before it goes.
    void setRunner(HandlerRunner* runner) { m_runner = runner; }

    bool notify(QObject* receiver, QEvent* event) override;

private:
    HandlerRunner* m_runner = nullptr;
};

} // namespace vardelin::app
