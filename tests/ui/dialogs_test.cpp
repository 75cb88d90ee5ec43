#include "ui/error_form.h"
#include "ui/qt_ports.h"

#include "offscreen.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

namespace vardelin::ui {
namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

TEST(ErrorForm, ShowsEveryBoxAndAnswersByItsButtons)
{
    WindowErrorDialog dialog;
    trace::frmErrLog form;
    form.txtModName.text = "MDIForm";
    form.txtProcName.text = "mnuSave_Click";
    form.txtSysErrNo.text = "70";
    form.txtSysErrMsg.text = "Permission denied: C:\\data\\report.doc";
    form.txtErrType.text = "Informative";
    form.txtInf.text = "Error in saving the profile";
    whenShown([&](QDialog& window) {
        EXPECT_EQ(window.windowTitle(), "Vardelin Error Dialog");
        EXPECT_EQ(window.findChild<QPlainTextEdit*>("txtSysErrNo")->toPlainText(), "70");
        EXPECT_EQ(window.findChild<QPlainTextEdit*>("txtInf")->toPlainText(),
                  "Error in saving the profile");
        EXPECT_EQ(window.findChild<QPlainTextEdit*>("txtCusErrMsg")->toPlainText(), "");
        EXPECT_TRUE(window.findChild<QPlainTextEdit*>("txtModName")->isReadOnly());
        EXPECT_EQ(clippedIn(window), "");
        keepPicture(window, "frmErrLog");
        window.findChild<QPushButton*>("cmdOk")->click();
    });
    dialog.showModal(form);
    EXPECT_EQ(form.answer, trace::ErrorAnswer::Exit);

    trace::frmErrLog again;
    whenShown([](QDialog& window) { window.findChild<QPushButton*>("cmdCancel")->click(); });
    dialog.showModal(again);
    EXPECT_EQ(again.answer, trace::ErrorAnswer::Continue);
}

TEST(ErrorForm, ClosedOtherwiseItIsNotAnswered)
{
    WindowErrorDialog dialog;
    trace::frmErrLog form;
    whenShown([](QDialog& window) { window.reject(); });
    dialog.showModal(form);
    EXPECT_NE(form.answer, trace::ErrorAnswer::Exit);
}

TEST(MessageBoxes, GiveThePersonsAnswer)
{
    struct Row {
        Buttons buttons;
        QMessageBox::StandardButton pressed;
        Answer answer;
    };
    for (const Row& row : {Row{Buttons::Ok, QMessageBox::Ok, Answer::Ok},
                           Row{Buttons::OkCancel, QMessageBox::Ok, Answer::Ok},
                           Row{Buttons::OkCancel, QMessageBox::Cancel, Answer::Cancel},
                           Row{Buttons::YesNo, QMessageBox::Yes, Answer::Yes},
                           Row{Buttons::YesNo, QMessageBox::No, Answer::No}}) {
        QtMessageBoxes boxes;
        whenShown([&](QDialog& window) {
            auto& box = dynamic_cast<QMessageBox&>(window);
            EXPECT_EQ(box.text(), "Delete <b>this</b>?");
            EXPECT_EQ(box.windowTitle(), "Vardelin");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            box.button(row.pressed)->click();
        });
        EXPECT_EQ(boxes.show("Delete <b>this</b>?", "Vardelin", row.buttons, Icon::Question),
                  row.answer);
    }
}

TEST(MessageBoxes, AShortTextHasRoomAndNoForeignPictures)
{
    QtMessageBoxes boxes;
    whenShown([](QDialog& window) {
        EXPECT_GE(window.width(), window.fontMetrics().averageCharWidth() * 50);
        for (const QPushButton* button : window.findChildren<QPushButton*>())
            EXPECT_TRUE(button->icon().isNull()) << button->text().toStdString();
        keepPicture(window, "message");
        window.done(0);
    });
    boxes.show("Invalid Password", "Vardelin", Buttons::Ok, Icon::None);
}

TEST(MessageBoxes, OnlyAWarningIsNotAgreedToByEnter)
{
    for (const Icon icon : {Icon::Question, Icon::Exclamation}) {
        QtMessageBoxes boxes;
        whenShown([](QDialog& window) { QTest::keyClick(&window, Qt::Key_Return); });
        EXPECT_EQ(boxes.show("Really?", "Vardelin", Buttons::YesNo, icon),
                  icon == Icon::Question ? Answer::Yes : Answer::No);
    }
}

TEST(MessageBoxes, AClosedQuestionIsNotAgreedTo)
{
    QtMessageBoxes boxes;
    whenShown([](QDialog& window) { window.done(0); });
    EXPECT_EQ(boxes.show("Really?", "Vardelin", Buttons::YesNo, Icon::Question), Answer::No);
}

TEST(MessageLoop, LetsWaitingWorkRun)
{
    QtMessageLoop loop;
    bool ran = false;
    QTimer::singleShot(0, [&] { ran = true; });
    EXPECT_FALSE(ran);
    loop.yield();
    EXPECT_TRUE(ran);
}

} // namespace
} // namespace vardelin::ui
