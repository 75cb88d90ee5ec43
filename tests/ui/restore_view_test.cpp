#include "ui/restore_view.h"

#include "looks.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include <QCalendarWidget>
#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTest>

namespace vardelin::ui {
namespace {

class RestoreLocation : public testing::Test {
protected:
    RestoreLocation()
    {
        handlers.cmbRestLoc.click = [this] {
            did.push_back("mode " + form.cmbRestLoc.text);
            const bool original = form.cmbRestLoc.text == "Original Location";
            form.cmdBrowse.enabled = form.txtRestLoc.enabled = !original;
            form.txtRestLoc.text = original ? "Original Location" : "";
        };
        handlers.cmbRestLoc.keyPress = [](int) { return 0; };
        handlers.txtRestLoc.keyPress = [](int key) { return key == '.' ? 0 : key; };
        handlers.txtRestLoc.rightButton = [this] { did.emplace_back("right"); };
        handlers.cmdBrowse_Click = [this] {
            did.emplace_back("browse");
            form.txtRestLoc.text = "D:\\back\\";
        };
        handlers.cmdOK_Click = [this] {
            did.emplace_back("ok");
            if (restore)
                restore();
        };
        handlers.cmdCancel_Click = [this] {
            did.emplace_back("cancel");
            form.loaded = false;
        };
    }

    state::frmRestLocation form;
    RestoreLocationHandlers handlers;
    std::function<void()> restore;
    bool running = false;
    state::ProgressBar bar;
    std::vector<std::string> did;
};

TEST_F(RestoreLocation, AnotherPlaceOpensTheBoxAndTheBrowser)
{
    RestoreLocationView view(form, handlers, {running, bar});
    present(view);
    auto& mode = control<QComboBox>(view, "cmbRestLoc");
    auto& place = control<QLineEdit>(view, "txtRestLoc");
    auto& browse = control<QPushButton>(view, "cmdBrowse");
    EXPECT_EQ(view.objectName(), "frmRestDialog");
    EXPECT_EQ(view.windowTitle(), "Restore Location");
    EXPECT_FALSE(place.isEnabled());
    EXPECT_FALSE(browse.isEnabled());
    mode.setFocus();
    QTest::keyClick(&mode, Qt::Key_Down);
    EXPECT_EQ(form.cmbRestLoc.text, "Alternate Location");
    EXPECT_TRUE(place.isEnabled());
    QTest::keyClicks(&mode, QStringLiteral("o"));
    EXPECT_EQ(mode.currentText(), "Alternate Location") << "letters do not choose";
    QTest::keyClicks(&place, QStringLiteral("D:\\a.b"));
    EXPECT_EQ(form.txtRestLoc.text, "D:\\ab");
    QTest::mouseClick(&place, Qt::RightButton);
    browse.click();
    EXPECT_EQ(place.text(), "D:\\back\\");
    EXPECT_EQ(did, (std::vector<std::string>{"mode Alternate Location", "right", "browse"}));
}

TEST_F(RestoreLocation, EnterRestoresAndEscIsNoAnswer)
{
    RestoreLocationView view(form, handlers, {running, bar});
    present(view);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(did, std::vector<std::string>{"ok"});
    EXPECT_TRUE(view.isVisible()) << "refused, for instance";
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(form.loaded);
    present(view);
    control<QPushButton>(view, "cmdCancel").click();
    EXPECT_FALSE(view.isVisible());
    EXPECT_FALSE(form.loaded);
}

TEST_F(RestoreLocation, ARunShowsHowFarItIsAndCannotBeAnsweredOrClosed)
{
    RestoreLocationView view(form, handlers, {running, bar});
    present(view);
    const auto& shownBar = control<QProgressBar>(view, "pb");
    EXPECT_FALSE(shownBar.isVisible());
    restore = [&] {
        running = form.hourglass = true;
        bar.value = 12.5;
        EXPECT_TRUE(QTest::qWaitFor([&] { return shownBar.isVisible(); }));
        EXPECT_EQ(shownBar.value(), 1250);
        for (const char* name : {"cmbRestLoc", "txtRestLoc", "cmdBrowse", "cmdOK", "cmdCancel"})
            EXPECT_FALSE(control<QWidget>(view, name).isEnabled()) << name;
        EXPECT_EQ(view.cursor().shape(), Qt::WaitCursor);
        view.close();
        QTest::keyClick(&view, Qt::Key_Escape);
        EXPECT_TRUE(view.isVisible());
        keepPicture(view, "frmRestDialog-running");
        running = form.hourglass = false;
    };
    control<QPushButton>(view, "cmdOK").click();
    EXPECT_FALSE(shownBar.isVisible());
    EXPECT_TRUE(control<QPushButton>(view, "cmdCancel").isEnabled());
    EXPECT_FALSE(control<QPushButton>(view, "cmdBrowse").isEnabled()) << "as the record says";
    EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(view.focusWidget() != nullptr && view.focusWidget()->isEnabled());
}

class ByDate : public testing::Test {
protected:
    ByDate()
    {
        form.mnvResDate = {2026, 11, 21};
        handlers.cmdOk_Click = [this] {
            did.push_back("ok " + base::isoDate(form.mnvResDate));
            form.loaded = false;
        };
        handlers.cmdCancel_Click = [this] {
            did.emplace_back("cancel");
            form.loaded = false;
        };
    }

    state::frmByDate form;
    ByDateHandlers handlers;
    std::vector<std::string> did;
};

TEST_F(ByDate, TheKeyboardChoosesADayAndEnterTakesIt)
{
    ByDateView view(form, handlers);
    present(view);
    auto& calendar = control<QCalendarWidget>(view, "mnvResDate");
    EXPECT_EQ(calendar.selectedDate(), QDate(2026, 11, 21));
    auto* days = calendar.findChild<QTableView*>();
    ASSERT_NE(days, nullptr);
    QTest::keyClick(days, Qt::Key_Left);
    QTest::keyClick(days, Qt::Key_Up);
    EXPECT_EQ(form.mnvResDate, (base::Date{2026, 11, 13}));
    QTest::keyClick(days, Qt::Key_Return);
    EXPECT_EQ(did, std::vector<std::string>{"ok 2026-11-13"});
    EXPECT_FALSE(view.isVisible());
}

TEST_F(ByDate, TheWindowIsGoneWhileTheRestoreThatItsOkLeadsToGoesOn)
{
    const QWidget* window = nullptr;
    bool isGone = false;
    handlers.cmdOk_Click = [&] {
        form.loaded = false;
        isGone = QTest::qWaitFor([&] { return window->isHidden(); });
    };
    ByDateView view(form, handlers);
    window = &view;
    present(view);
    control<QPushButton>(view, "cmdOk").click();
    EXPECT_TRUE(isGone);
}

TEST_F(ByDate, TheButtonsAnswerAndEscIsNoAnswer)
{
    ByDateView view(form, handlers);
    present(view);
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(form.loaded);
    present(view);
    control<QPushButton>(view, "cmdCancel").click();
    form.loaded = true;
    present(view);
    EXPECT_TRUE(control<QPushButton>(view, "cmdOk").isDefault());
    control<QPushButton>(view, "cmdOk").click();
    EXPECT_EQ(did, (std::vector<std::string>{"cancel", "ok 2026-11-21"}));
}

TEST(Looks, NothingIsClippedWhereARestoreIsAsked)
{
    state::frmRestLocation original;
    state::frmRestLocation other;
    other.cmbRestLoc.text = "Alternate Location";
    other.txtRestLoc = {.text = "D:\\home\\anna\\what was lost\\", .enabled = true};
    other.cmdBrowse.enabled = true;
    bool running = false;
    const state::ProgressBar bar{.value = 40};
    state::frmByDate byDate;
    byDate.mnvResDate = {2026, 11, 21};
    inEveryLook([&](const std::string& name) {
        running = false;
        RestoreLocationView first(original, {}, {running, bar});
        expectGoodLooks(first, "frmRestDialog-" + name + "-original");
        EXPECT_EQ(reached(first), (std::vector<std::string>{"cmbRestLoc", "cmdOK", "cmdCancel"}));
        EXPECT_TRUE(control<QPushButton>(first, "cmdOK").isDefault());
        RestoreLocationView second(other, {}, {running, bar});
        expectGoodLooks(second, "frmRestDialog-" + name + "-other");
        EXPECT_EQ(reached(second), (std::vector<std::string>{"cmbRestLoc", "txtRestLoc",
                                                             "cmdBrowse", "cmdOK", "cmdCancel"}));
        running = true;
        RestoreLocationView third(other, {}, {running, bar});
        expectGoodLooks(third, "frmRestDialog-" + name + "-running");
        ByDateView day(byDate, {});
        expectGoodLooks(day, "frmByDate-" + name);
    });
}

} // namespace
} // namespace vardelin::ui
