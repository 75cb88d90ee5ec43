#include "ui/form_binder.h"

#include "ui/list_model.h"
#include "ui/shown_text.h"

#include <utility>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTimeEdit>

namespace vardelin::ui {
namespace {

constexpr int kFirstTyped = 0x20; // below are keys that move or delete, backspace among them
constexpr int kBackspace = 8;
constexpr int kDeleteKey = 46;
constexpr int kDeleteCharacter = 0x7f; // the text that comes with the Delete key

QDate dateOf(const base::DateTime& value)
{
    return {value.date.year, value.date.month, value.date.day};
}

QTime timeOf(const base::DateTime& value)
{
    return {value.time.hour, value.time.minute, value.time.second};
}

} // namespace

FormBinder::FormBinder(QObject* parent) : QObject(parent) {}

FormBinder::~FormBinder() = default;

void FormBinder::run(const Handler& handler)
{
    if (m_showing)
        return;
    if (handler)
        handler();
    show();
}

void FormBinder::show()
{
    if (m_showing)
        return;
    m_showing = true;
    for (const Handler& one : m_shows)
        one();
    m_showing = false;
}

void FormBinder::also(Handler show)
{
    m_shows.push_back(std::move(show));
}

void FormBinder::button(QAbstractButton& widget, state::Button& record, Handler click)
{
    connect(&widget, &QAbstractButton::clicked, this,
            [this, click = std::move(click)] { run(click); });
    also([&widget, &record] {
        if (!record.caption.empty())
            widget.setText(shown(record.caption));
        widget.setEnabled(record.enabled);
        widget.setVisible(record.visible);
    });
}

void FormBinder::checkBox(QCheckBox& widget, state::CheckBox& record, Handler click)
{
    connect(&widget, &QCheckBox::clicked, this, [this, &record, click = std::move(click)](bool on) {
        record.value = on ? 1 : 0;
        run(click);
    });
    also([&widget, &record] {
        widget.setChecked(record.value != 0);
        widget.setEnabled(record.enabled);
        widget.setVisible(record.visible);
    });
}

void FormBinder::optionButton(QRadioButton& widget, state::OptionButton& record, Handler choose,
                              Handler click)
{
    // The record's group is the one that counts; Qt's own grouping could not show that none is on.
    widget.setAutoExclusive(false);
    connect(&widget, &QRadioButton::clicked, this,
            [this, choose = std::move(choose), click = std::move(click)] {
                choose();
                run(click);
            });
    also([&widget, &record] {
        widget.setChecked(record.value);
        widget.setEnabled(record.enabled);
        widget.setVisible(record.visible);
    });
}

void FormBinder::textBox(QLineEdit& widget, state::TextBox& record, TextHandlers handlers)
{
    connect(&widget, &QLineEdit::textEdited, this,
            [this, &record, change = handlers.change](const QString& text) {
                record.text = typed(text);
                run(change);
            });
    watch({&widget,
           std::move(handlers.gotFocus),
           std::move(handlers.lostFocus),
           std::move(handlers.keyPress),
           {},
           std::move(handlers.rightButton)});
    also([&widget, &record] {
        const QString text = shown(record.text);
        // Writing the same text or limit would move the cursor to the end.
        if (widget.text() != text)
            widget.setText(text);
        constexpr int kUnlimited = 32767;
        const int limit = record.maxLength > 0 ? record.maxLength : kUnlimited;
        if (widget.maxLength() != limit)
            widget.setMaxLength(limit);
        widget.setReadOnly(record.locked);
        widget.setEnabled(record.enabled);
        widget.setVisible(record.visible);
    });
}

void FormBinder::comboBox(QComboBox& widget, state::ComboBox& record, ComboHandlers handlers)
{
    watch({&widget,
           std::move(handlers.gotFocus),
           {},
           std::move(handlers.keyPress),
           std::move(handlers.keyDown),
           {}});
    connect(&widget, &QComboBox::activated, this,
            [this, &record, click = std::move(handlers.click)](int row) {
                if (row < 0 || static_cast<std::size_t>(row) >= record.items.size())
                    return;
                record.text = record.items[static_cast<std::size_t>(row)];
                run(click);
            });
    also([&widget, &record] {
        const QSignalBlocker quiet(widget);
        bool same = static_cast<std::size_t>(widget.count()) == record.items.size();
        for (int i = 0; same && i < widget.count(); ++i)
            same = widget.itemText(i) == shown(record.items[static_cast<std::size_t>(i)]);
        if (!same) {
            widget.clear();
            for (const std::string& item : record.items)
                widget.addItem(shown(item));
        }
        // A text from a profile need not be in the list; it stands as a hint then.
        const QString text = shown(record.text);
        widget.setCurrentIndex(widget.findText(text));
        widget.setPlaceholderText(text);
        widget.setToolTip(plainToolTip(text));
        widget.setEnabled(record.enabled);
        widget.setVisible(record.visible);
    });
}

void FormBinder::checkList(QAbstractItemView& widget, state::ListBox& record, QStringList columns,
                           RowHandler itemCheck)
{
    list(widget, record, &state::ListRow::checked, std::move(columns), std::move(itemCheck));
    // Boxes and the selected row are two things here: the row stays selected when it moves.
    connect(widget.selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this, &record](const QModelIndex& current) {
                if (m_showing || !current.isValid())
                    return;
                for (std::size_t i = 0; i < record.rows.size(); ++i)
                    record.rows[i].selected = i == static_cast<std::size_t>(current.row());
            });
    also([&widget, &record] {
        for (std::size_t i = 0; i < record.rows.size(); ++i) {
            const int row = static_cast<int>(i);
            if (record.rows[i].selected && widget.currentIndex().row() != row)
                widget.setCurrentIndex(widget.model()->index(row, 0));
        }
    });
}

void FormBinder::selectList(QAbstractItemView& widget, state::ListBox& record, RowHandler itemCheck)
{
    list(widget, record, &state::ListRow::selected, {QString()}, std::move(itemCheck));
}

void FormBinder::list(QAbstractItemView& widget, state::ListBox& record, bool state::ListRow::*tick,
                      QStringList columns, RowHandler itemCheck)
{
    auto* model = new ListModel(
        record, tick, std::move(columns),
        [this, itemCheck = std::move(itemCheck)](std::size_t row) {
            run([&] {
                if (itemCheck)
                    itemCheck(row);
            });
        },
        &widget);
    widget.setModel(model);
    also([&widget, &record, model] {
        model->refresh();
        widget.setEnabled(record.enabled);
        widget.setVisible(record.visible);
    });
}

void FormBinder::datePicker(QDateEdit& widget, state::DatePicker& record, Handler change)
{
    connect(&widget, &QDateEdit::dateChanged, this,
            [this, &record, change = std::move(change)](QDate date) {
                if (m_showing)
                    return;
                record.value.date = {date.year(), date.month(), date.day()};
                run(change);
            });
    also([&widget, &record] {
        widget.setDate(dateOf(record.value));
        widget.setEnabled(record.enabled);
    });
}

void FormBinder::timePicker(QTimeEdit& widget, state::TimePicker& record, Handler change)
{
    connect(&widget, &QTimeEdit::timeChanged, this,
            [this, &record, change = std::move(change)](QTime time) {
                if (m_showing)
                    return;
                record.value.time = {time.hour(), time.minute(), time.second()};
                run(change);
            });
    also([&widget, &record] {
        widget.setTime(timeOf(record.value));
        widget.setEnabled(record.enabled);
    });
}

void FormBinder::frame(QGroupBox& widget, state::Frame& record)
{
    frame(static_cast<QWidget&>(widget), record);
}

void FormBinder::frame(QWidget& widget, state::Frame& record)
{
    also([&widget, &record] {
        widget.setEnabled(record.enabled);
        widget.setVisible(record.visible);
    });
}

void FormBinder::label(QLabel& widget, state::Label& record)
{
    // A question out of a profile may hold what looks like markup.
    widget.setTextFormat(Qt::PlainText);
    also([&widget, &record] {
        if (!record.caption.empty())
            widget.setText(shown(record.caption));
        widget.setEnabled(record.enabled);
        widget.setVisible(record.visible);
    });
}

void FormBinder::watch(Watched watched)
{
    watched.widget->installEventFilter(this);
    m_watched.push_back(std::move(watched));
}

const FormBinder::Watched* FormBinder::watchedAt(const QObject* widget) const
{
    for (const Watched& watched : m_watched) {
        if (watched.widget == widget)
            return &watched;
    }
    return nullptr;
}

void FormBinder::focusIn(const Watched& watched)
{
    if (m_focused == watched.widget)
        return; // back from a box, a window or a menu that stood in front
    // The focus may have moved on while another window was in front.
    if (const Watched* former = watchedAt(m_focused); former != nullptr)
        focusOut(*former, Qt::OtherFocusReason);
    m_focused = watched.widget;
    if (watched.gotFocus)
        run(watched.gotFocus);
}

void FormBinder::focusOut(const Watched& watched, Qt::FocusReason reason)
{
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
        reason == Qt::MenuBarFocusReason)
        return;
    m_focused = nullptr;
    if (watched.lostFocus)
        run(watched.lostFocus);
}

bool FormBinder::dropsKey(const Watched& watched, const QKeyEvent& key)
{
    int typedCode = 1;
    if (key.key() == Qt::Key_Delete && watched.keyDown)
        run([&] { typedCode = watched.keyDown(kDeleteKey); });
    const QString text = key.text();
    const bool backspace = key.key() == Qt::Key_Backspace;
    const bool types = !text.isEmpty() && text.front().unicode() >= kFirstTyped &&
                       text.front().unicode() != kDeleteCharacter;
    if (watched.keyPress && (backspace || types)) {
        const int code = backspace ? kBackspace : text.front().unicode();
        run([&] { typedCode = watched.keyPress(code); });
    }
    return typedCode == 0;
}

bool FormBinder::eventFilter(QObject* object, QEvent* event)
{
    const Watched* watched = watchedAt(object);
    if (watched == nullptr)
        return QObject::eventFilter(object, event);
    switch (event->type()) {
    case QEvent::FocusIn:
        focusIn(*watched);
        break;
    case QEvent::FocusOut:
        focusOut(*watched, static_cast<QFocusEvent*>(event)->reason());
        break;
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::RightButton && watched->rightButton)
            run(watched->rightButton);
        break;
    case QEvent::KeyPress:
        if (dropsKey(*watched, *static_cast<QKeyEvent*>(event)))
            return true;
        break;
    default:
        break;
    }
    return QObject::eventFilter(object, event);
}

} // namespace vardelin::ui
