#pragma once

#include "state/controls.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <QObject>

class QAbstractButton;
class QAbstractItemView;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QGroupBox;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTimeEdit;

namespace vardelin::ui {

// What a form's logic does about one control. An empty handler is none.
using Handler = std::function<void()>;
using RowHandler = std::function<void(std::size_t row)>;

// Gets the code of a typed character and gives what is typed instead; 0 drops it.
using KeyFilter = std::function<int(int code)>;

// How the handlers of a form are run: the way from the toolkit to the logic, which lets no
// exception out. Where it is empty they are called as they are.
using HandlerRun = std::function<void(const char* name, const Handler& body)>;

// Makes a handler that runs `body` in that way.
struct Through {
    HandlerRun run;
    Handler operator()(const char* name, Handler body) const
    {
        return [run = run, name, body = std::move(body)] { run ? run(name, body) : body(); };
    }
};

// The focus comes from another control or goes to one: a message box, another window or a menu that
// comes in front takes it from no control, and its end gives it to none.
struct TextHandlers {
    Handler change{};
    Handler gotFocus{};
    Handler lostFocus{};
    KeyFilter keyPress{};
    Handler rightButton{}; // pressed in the box
};

struct ComboHandlers {
    Handler click{}; // an entry was picked
    Handler gotFocus{};
    KeyFilter keyPress{};
    KeyFilter keyDown{}; // gets 46 for Delete and no other key
};

// Ties widgets to a form's record of controls. What a person does goes into the record, then the
// control's handler runs, then every widget shows the record again, since a handler may have
// changed any of it. Showing runs no handler. Widgets, records and handlers must outlive the
// binder. For the thread of the user interface.
class FormBinder final : public QObject {
    Q_OBJECT

public:
    explicit FormBinder(QObject* parent = nullptr);
    ~FormBinder() override;

    void button(QAbstractButton& widget, state::Button& record, Handler click);
    void checkBox(QCheckBox& widget, state::CheckBox& record, Handler click);
    // `choose` switches the option on and the others of its group off.
    void optionButton(QRadioButton& widget, state::OptionButton& record, Handler choose,
                      Handler click);
    void textBox(QLineEdit& widget, state::TextBox& record, TextHandlers handlers);
    // A list to pick from; with `editable` text that is not in the list shows, too.
    void comboBox(QComboBox& widget, state::ComboBox& record, ComboHandlers handlers);
    // Boxes for `checked`; the selected row is the one with `selected`.
    void checkList(QAbstractItemView& widget, state::ListBox& record, QStringList columns,
                   RowHandler itemCheck);
    // Boxes for `selected`.
    void selectList(QAbstractItemView& widget, state::ListBox& record, RowHandler itemCheck);
    void datePicker(QDateEdit& widget, state::DatePicker& record, Handler change);
    void timePicker(QTimeEdit& widget, state::TimePicker& record, Handler change);
    void frame(QGroupBox& widget, state::Frame& record);
    void frame(QWidget& widget, state::Frame& record);
    void label(QLabel& widget, state::Label& record);

    // Any other widget: called whenever the form is shown.
    void also(Handler show);

    // Shows the records as they stand.
    void show();

    // Runs a handler of the form from elsewhere and shows what came of it.
    void run(const Handler& handler);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void list(QAbstractItemView& widget, state::ListBox& record, bool state::ListRow::*tick,
              QStringList columns, RowHandler itemCheck);

    // A widget whose focus and keys the logic hears of.
    struct Watched {
        QWidget* widget = nullptr;
        Handler gotFocus;
        Handler lostFocus;
        KeyFilter keyPress;
        KeyFilter keyDown;
        Handler rightButton;
    };
    void watch(Watched watched);
    const Watched* watchedAt(const QObject* widget) const;
    void focusIn(const Watched& watched);
    void focusOut(const Watched& watched, Qt::FocusReason reason);
    bool dropsKey(const Watched& watched, const QKeyEvent& key);

    std::vector<Handler> m_shows;
    std::vector<Watched> m_watched;
    const QWidget* m_focused = nullptr; // the watched one that has it, also behind another window
    bool m_showing = false;
};

} // namespace vardelin::ui
