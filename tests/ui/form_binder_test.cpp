#include "ui/form_binder.h"
#include "ui/shown_text.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QRadioButton>
#include <QTest>

namespace vardelin::ui {
namespace {

class Binder : public testing::Test {
protected:
    FormBinder binder;
};

TEST_F(Binder, AClickChangesTheRecordBeforeTheHandlerRuns)
{
    QCheckBox widget;
    state::CheckBox record;
    int seen = -1;
    binder.checkBox(widget, record, [&] { seen = record.value; });
    binder.show();
    QTest::mouseClick(&widget, Qt::LeftButton, {}, {5, widget.height() / 2});
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(record.value, 1);
}

TEST_F(Binder, ShowsWhatTheHandlerMadeOfIt)
{
    QCheckBox widget;
    state::CheckBox record{.value = 1};
    binder.checkBox(widget, record, [&] { record.value = 1; });
    binder.show();
    widget.click();
    EXPECT_TRUE(widget.isChecked()) << "the handler put it back";
}

TEST_F(Binder, ShowingRunsNoHandler)
{
    QCheckBox check;
    QLineEdit text;
    QComboBox combo;
    state::CheckBox checkRecord;
    state::TextBox textRecord;
    state::ComboBox comboRecord;
    int runs = 0;
    const auto count = [&] { ++runs; };
    binder.checkBox(check, checkRecord, count);
    binder.textBox(text, textRecord, {.change = count});
    binder.comboBox(combo, comboRecord, {count});
    checkRecord.value = 1;
    textRecord.text = "15";
    comboRecord.items = {"KB", "MB"};
    comboRecord.text = "MB";
    binder.show();
    EXPECT_EQ(runs, 0);
    EXPECT_TRUE(check.isChecked());
    EXPECT_EQ(text.text(), "15");
    EXPECT_EQ(combo.currentText(), "MB");
}

TEST_F(Binder, AKeyThatTheLogicDropsIsNotTyped)
{
    QLineEdit widget;
    state::TextBox record;
    TextHandlers handlers;
    handlers.keyPress = [](int code) { return code >= '0' && code <= '9' ? code : 0; };
    binder.textBox(widget, record, handlers);
    binder.show();
    QTest::keyClicks(&widget, "1a2");
    EXPECT_EQ(record.text, "12");
    EXPECT_EQ(widget.text(), "12");
}

TEST_F(Binder, BackspaceIsAskedForAndLettersKeepTheirCursor)
{
    QLineEdit widget;
    state::TextBox record{.text = "abc"};
    std::string asked;
    TextHandlers handlers;
    handlers.keyPress = [&](int code) {
        asked += static_cast<char>(code);
        return code;
    };
    binder.textBox(widget, record, handlers);
    binder.show();
    widget.setCursorPosition(1);
    QTest::keyClick(&widget, Qt::Key_Backspace);
    QTest::keyClicks(&widget, "x");
    EXPECT_EQ(asked, "\bx");
    EXPECT_EQ(record.text, "xbc");
    EXPECT_EQ(widget.cursorPosition(), 1);
}

// A box that asks something while the person types must not count as leaving the field: what the
// field held when the focus came is what a refusal puts back.
TEST_F(Binder, AWindowInFrontTakesTheFocusFromNoControl)
{
    QWidget form;
    auto* first = new QLineEdit(&form);
    auto* second = new QLineEdit(&form);
    state::TextBox firstRecord;
    state::TextBox secondRecord;
    std::string heard;
    binder.textBox(*first, firstRecord,
                   {.gotFocus = [&] { heard += "+1"; }, .lostFocus = [&] { heard += "-1"; }});
    binder.textBox(*second, secondRecord, {.gotFocus = [&] { heard += "+2"; }});
    const auto focus = [](QWidget* widget, QEvent::Type type, Qt::FocusReason reason) {
        QFocusEvent event(type, reason);
        QApplication::sendEvent(widget, &event);
    };
    focus(first, QEvent::FocusIn, Qt::TabFocusReason);
    focus(first, QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    focus(first, QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    focus(first, QEvent::FocusOut, Qt::PopupFocusReason);
    focus(first, QEvent::FocusIn, Qt::PopupFocusReason);
    EXPECT_EQ(heard, "+1");
    focus(first, QEvent::FocusOut, Qt::TabFocusReason);
    focus(second, QEvent::FocusIn, Qt::TabFocusReason);
    EXPECT_EQ(heard, "+1-1+2");
}

TEST_F(Binder, TheFocusThatMovedBehindAWindowInFrontIsHeardOfAtItsEnd)
{
    QWidget form;
    auto* first = new QLineEdit(&form);
    auto* second = new QLineEdit(&form);
    state::TextBox record;
    std::string heard;
    binder.textBox(*first, record, {.lostFocus = [&] { heard += "-1"; }});
    binder.textBox(*second, record, {.gotFocus = [&] { heard += "+2"; }});
    const auto focus = [](QWidget* widget, QEvent::Type type, Qt::FocusReason reason) {
        QFocusEvent event(type, reason);
        QApplication::sendEvent(widget, &event);
    };
    focus(first, QEvent::FocusIn, Qt::TabFocusReason);
    focus(first, QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    focus(second, QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    EXPECT_EQ(heard, "-1+2");
}

TEST_F(Binder, AComboAsksAboutKeysAndTellsOfItsFocus)
{
    QComboBox widget;
    state::ComboBox record;
    record.items = {"Local Drives[C:]", "Local Drives[D:]"};
    record.text = record.items[0];
    int focused = 0;
    std::string asked;
    const auto drop = [&](int code) {
        asked += std::to_string(code) + " ";
        return 0;
    };
    binder.comboBox(
        widget, record,
        ComboHandlers{.gotFocus = [&] { ++focused; }, .keyPress = drop, .keyDown = drop});
    binder.show();
    QFocusEvent event(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(&widget, &event);
    QTest::keyClicks(&widget, "L");
    QTest::keyClick(&widget, Qt::Key_Delete);
    EXPECT_EQ(focused, 1);
    EXPECT_EQ(asked, "76 46 ");
    EXPECT_EQ(record.text, "Local Drives[C:]");
    QTest::keyClick(&widget, Qt::Key_Down);
    EXPECT_EQ(record.text, "Local Drives[D:]") << "arrows pick";
}

TEST_F(Binder, ALockedBoxTakesNoTyping)
{
    QLineEdit widget;
    state::TextBox record{.text = "15", .locked = true};
    binder.textBox(widget, record, {});
    binder.show();
    QTest::keyClicks(&widget, "7");
    EXPECT_EQ(record.text, "15");
}

TEST_F(Binder, AGroupMayHaveNoOptionOn)
{
    QRadioButton first;
    QRadioButton second;
    state::OptionButton a{.value = true};
    state::OptionButton b;
    binder.optionButton(first, a, [&] { a.value = true, b.value = false; }, {});
    binder.optionButton(second, b, [&] { a.value = false, b.value = true; }, {});
    binder.show();
    second.click();
    EXPECT_FALSE(first.isChecked());
    EXPECT_TRUE(second.isChecked());
    b.value = false;
    binder.show();
    EXPECT_FALSE(second.isChecked());
}

TEST_F(Binder, ATickInAListReachesItsRow)
{
    QListView widget;
    state::ListBox record;
    record.addItem("Sunday");
    record.addItem("Monday");
    std::size_t row = 99;
    binder.selectList(widget, record, [&](std::size_t at) { row = at; });
    binder.show();
    widget.model()->setData(widget.model()->index(1, 0), Qt::Checked, Qt::CheckStateRole);
    EXPECT_EQ(row, 1U);
    EXPECT_TRUE(record.rows[1].selected);
    EXPECT_FALSE(record.rows[1].checked);
    record.rows.pop_back();
    binder.show();
    EXPECT_EQ(widget.model()->rowCount(), 1);
}

TEST_F(Binder, AComboShowsATextThatIsNotInItsList)
{
    QComboBox widget;
    state::ComboBox record;
    record.items = {"Local Drives[C:]"};
    record.text = "D:";
    binder.comboBox(widget, record, {});
    binder.show();
    EXPECT_EQ(widget.currentIndex(), -1);
    EXPECT_EQ(widget.placeholderText(), "D:");
}

TEST(ShownText, MakesEveryByteVisible)
{
    EXPECT_EQ(shown("gr\xc3\xbc\xc3\x9f"), QStringLiteral("gr\u00fc\u00df"));
    EXPECT_EQ(shown("a\xff"), QStringLiteral("a\ufffd"));
    // A colon of a name on the disk, as paths hold it, and a line feed.
    EXPECT_EQ(shown("12\xef\x80\xba"
                    "30\xef\x80\x8a"),
              QStringLiteral("12:30\u240a"));
    EXPECT_EQ(shown("\t"), QStringLiteral("\u2409"));
    EXPECT_EQ(shownLines("a\r\n\r\nb"), QStringLiteral("a\n\nb"));
}

} // namespace
} // namespace vardelin::ui
