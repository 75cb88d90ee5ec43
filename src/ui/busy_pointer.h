#pragma once

#include <QObject>

class QWidget;

namespace vardelin::ui {

// The hourglass over all windows of the program, as the records say. While a modal window asks the
// person something the pointer is an arrow, whatever goes on behind it. One per program, on the
// thread of the user interface; it takes back what it has set when it goes.
class BusyPointer final : public QObject {
    Q_OBJECT

public:
    // `window` is the main one, which modal windows stand in front of; it must outlive this.
    explicit BusyPointer(QWidget& window);
    ~BusyPointer() override;

    void show(bool busy);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void apply();

    bool m_busy = false;
    bool m_asking = false;
    bool m_shown = false;
};

} // namespace vardelin::ui
