#include "ui/name_dialog_view.h"

#include "offscreen.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace vardelin::ui {
namespace {

class NameDialog : public testing::Test {
protected:
    NameDialog()
    {
        handlers.txtProfileName.keyPress = [](int key) { return key == '*' ? 0 : key; };
        handlers.txtProfileName.rightButton = [this] { ++rightButtons; };
        handlers.cmdProfileOK_Click = [this] {
            given.push_back(form.txtProfileName.text);
            form.loaded = form.txtProfileName.text.empty();
        };
        handlers.cmdResCancel_Click = [this] {
            ++cancelled;
            form.loaded = false;
        };
    }

    state::frmRestDialog form;
    NameDialogHandlers handlers;
    std::vector<std::string> given;
    int cancelled = 0;
    int rightButtons = 0;
};

TEST_F(NameDialog, TakesANameByEnter)
{
    NameDialogView view(form, handlers);
    present(view);
    EXPECT_EQ(view.windowTitle(), "Vardelin");
    EXPECT_EQ(control<QLabel>(view, "Label2").text(), "&Enter the Name of  Profile :");
    EXPECT_EQ(control<QLabel>(view, "Label3").text(),
              "(This name will be used for the 'Backup Package name' )");
    auto& box = control<QLineEdit>(view, "txtProfileName");
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_TRUE(view.isVisible()) << "the handler wants a name";
    QTest::keyClicks(&box, "Wo*rk");
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(given, (std::vector<std::string>{"", "Work"}));
    EXPECT_FALSE(view.isVisible());
}

TEST_F(NameDialog, TheFirstLabelLeadsToTheBox)
{
    NameDialogView view(form, handlers);
    present(view);
    EXPECT_EQ(control<QLabel>(view, "Label2").buddy(), &control<QLineEdit>(view, "txtProfileName"));
    EXPECT_EQ(view.focusWidget(), &control<QLineEdit>(view, "txtProfileName"));
}

TEST_F(NameDialog, CancelRunsItsHandlerAndClosingItIsNoAnswer)
{
    NameDialogView view(form, handlers);
    present(view);
    view.close();
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(form.loaded);
    present(view);
    control<QPushButton>(view, "cmdResCancel").click();
    EXPECT_EQ(cancelled, 1);
    EXPECT_FALSE(view.isVisible());
}

TEST_F(NameDialog, TheRightButtonInTheBoxIsTold)
{
    NameDialogView view(form, handlers);
    present(view);
    auto& box = control<QLineEdit>(view, "txtProfileName");
    QTest::mousePress(&box, Qt::RightButton);
    QTest::mousePress(&box, Qt::LeftButton);
    EXPECT_EQ(rightButtons, 1);
}

} // namespace
} // namespace vardelin::ui
