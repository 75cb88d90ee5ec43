#include "ui/review_view.h"

#include "archive/deletion.h"
#include "archive/review_rig.h"
#include "archive/review_texts.h"
#include "ui/review_delegate.h"
#include "ui/review_list.h"
#include "ui/review_model.h"

#include "looks.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

namespace vardelin::ui {
namespace {

// The view over the review's real handlers, on an archive in memory.
class Review : public testing::Test, protected test::ReviewRig {
protected:
    Review()
    {
        put({"C\\a.txt_FULL.zst", "C\\work\\report.doc_FULL.zst", "C\\work\\report.doc_Ver7_.zst",
             "C\\work\\deep\\notes.txt_FULL.zst", "D\\b.jpg_FULL.zst"});
        handlers.rowButtonClicked = [this](std::size_t row) {
            did.push_back("button " + std::to_string(row));
            archive::rowButtonClicked(review, row);
        };
        handlers.rowsRightClicked = [this] { return archive::rowsRightClicked(review); };
        handlers.mnuByDate_Click = [this] { did.emplace_back("by date"); };
        handlers.mnuAsOf_Click = [this] { did.emplace_back("as of"); };
        handlers.mnuDel_Click = [this] {
            did.emplace_back("delete");
            archive::mnuDel_Click(review);
        };
        handlers.Form_Unload = [this] {
            did.emplace_back("unload");
            form.loaded = false;
        };
    }

    void present()
    {
        load();
        view = std::make_unique<ReviewView>(form, frame.pb, handlers, &shell);
        view->resize(1000, 460);
        ui::present(*view);
        list().setFocus();
    }
    ReviewList& list() { return control<ReviewList>(*view, "lstRestore"); }
    int rows() { return list().model()->rowCount(); }
    int place(std::string_view key) const { return static_cast<int>(rowOf(key)) - 1; }
    QPoint inCell(std::string_view key, int column = ReviewModel::kName)
    {
        return list().visualRect(list().model()->index(place(key), column)).center();
    }
    QPoint onButton(std::string_view key)
    {
        const QModelIndex index = list().model()->index(place(key), 0);
        return partsOf(list().visualRect(index), row(key).level, list().fontMetrics())
            .button.center();
    }
    void clickRow(std::string_view key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(list().viewport(), Qt::LeftButton, modifiers, inCell(key));
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&list(), static_cast<Qt::Key>(key), modifiers);
    }
    void open(std::initializer_list<std::string_view> keys)
    {
        click(keys);
        view->showRecord();
    }
    std::string current()
    {
        const int at = list().currentIndex().row();
        return at < 0 ? "" : form.lstRestore[static_cast<std::size_t>(at)].key;
    }
    std::vector<std::string> selected() const
    {
        std::vector<std::string> keys;
        for (const state::ReviewRow& each : form.lstRestore) {
            if (each.selected)
                keys.push_back(each.key);
        }
        return keys;
    }
    // What is drawn as selected, which must be what the record says.
    std::vector<std::string> drawn()
    {
        std::vector<std::string> keys;
        for (int i = 0; i < rows(); ++i) {
            if (list().selectionModel()->isRowSelected(i, {}))
                keys.push_back(form.lstRestore[static_cast<std::size_t>(i)].key);
        }
        return keys;
    }
    QMenu& menu() { return control<QMenu>(*view, "mnuStoOptions"); }
    void rightClick(QPoint at)
    {
        QTest::mousePress(list().viewport(), Qt::RightButton, {}, at);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, list().viewport()->mapToGlobal(at));
        QApplication::sendEvent(list().viewport(), &event);
        QTest::mouseRelease(list().viewport(), Qt::RightButton, {}, at);
    }
    void choose(const char* name)
    {
        for (QAction* action : menu().findChildren<QAction*>(QLatin1String(name)))
            action->trigger();
        menu().close();
    }

    ReviewHandlers handlers;
    std::unique_ptr<ReviewView> view;
    std::vector<std::string> did;
};

using Keys = std::vector<std::string>;

// While a backup names a thousand files a second nobody can look at each row for each of them.
TEST_F(Review, ProgressShowsTheRowsAndLeavesTheSelectionToTheEnd)
{
    present();
    open({"Files And Folders", "C:\\"});
    form.lstRestore[0].selected = true;
    view->showProgress();
    EXPECT_TRUE(drawn().empty());
    form.lstRestore.pop_back();
    ++form.rowsRevision;
    view->showProgress();
    EXPECT_EQ(rows(), static_cast<int>(form.lstRestore.size()));
    view->showRecord();
    EXPECT_EQ(drawn(), std::vector<std::string>{"Files And Folders"});
}

TEST_F(Review, ShowsTheFiveColumnsOfEveryRow)
{
    present();
    open({"Files And Folders", "C:\\", "C:\\work\\"});
    const QAbstractItemModel& model = *list().model();
    ASSERT_EQ(model.columnCount(), 5);
    const char* headings[] = {"Folders And Files", "Version", "Modified", "Size", "Created On"};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(model.headerData(i, Qt::Horizontal).toString(), headings[i]);
    const int file = place("C:\\work\\report.doc_007");
    EXPECT_EQ(model.index(file, 0).data().toString(), "report.doc_007");
    EXPECT_EQ(model.index(file, 1).data().toString(), "Version 007");
    EXPECT_EQ(model.index(file, 2).data().toString(), "True");
    EXPECT_EQ(model.index(file, 3).data().toString(), "3 B");
    EXPECT_FALSE(model.index(file, 4).data().toString().isEmpty());
    const int folder = place("C:\\work\\");
    EXPECT_EQ(model.index(folder, 0).data().toString(), "work");
    for (int i = 1; i < 5; ++i)
        EXPECT_EQ(model.index(folder, i).data().toString(), "");
    EXPECT_EQ(model.index(folder, 0).data(Qt::AccessibleTextRole).toString(),
              "work, open, level 3");
    EXPECT_EQ(control<QLabel>(*view, "Label37").text(),
              QString::fromUtf8(archive::review_texts::kHelp37.data(),
                                qsizetype(archive::review_texts::kHelp37.size())));
}

TEST_F(Review, TheButtonOfARowOpensAndClosesItAndSelectsNothing)
{
    present();
    EXPECT_EQ(rows(), 1);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, onButton("Files And Folders"));
    EXPECT_EQ(rows(), 3);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, onButton("C:\\"));
    EXPECT_EQ(rows(), 5);
    EXPECT_EQ(selected(), Keys{});
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, onButton("Files And Folders"));
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(did, (Keys{"button 1", "button 2", "button 1"}));
}

TEST_F(Review, ADoubleClickBesideTheButtonOpensARowOnce)
{
    present();
    open({"Files And Folders"});
    clickRow("C:\\");
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, inCell("C:\\"));
    EXPECT_EQ(did, Keys{"button 2"});
    EXPECT_EQ(selected(), Keys{"C:\\"});
}

TEST_F(Review, KeysOpenCloseAndWalkTheTree)
{
    present();
    list().setCurrentIndex(list().model()->index(0, 0));
    press(Qt::Key_Right);
    EXPECT_EQ(rows(), 3);
    press(Qt::Key_Right);
    EXPECT_EQ(current(), "C:\\") << "an open row's first child";
    press(Qt::Key_Plus);
    EXPECT_EQ(rows(), 5);
    press(Qt::Key_Plus);
    EXPECT_EQ(rows(), 5) << "it is open";
    press(Qt::Key_End);
    EXPECT_EQ(current(), "D:\\");
    press(Qt::Key_Home);
    EXPECT_EQ(current(), "Files And Folders");
    list().setCurrentIndex(list().model()->index(place("C:\\work\\"), 0));
    press(Qt::Key_Return);
    EXPECT_EQ(row("C:\\work\\").button, state::RowButton::Minus);
    list().setCurrentIndex(list().model()->index(place("C:\\work\\report.doc_007"), 0));
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    EXPECT_EQ(current(), "C:\\work\\report.doc_007") << "there is nothing to open in a file";
    press(Qt::Key_Left);
    EXPECT_EQ(current(), "C:\\work\\");
    press(Qt::Key_Minus);
    EXPECT_EQ(row("C:\\work\\").button, state::RowButton::Plus);
    press(Qt::Key_Left);
    EXPECT_EQ(current(), "C:\\");
    press(Qt::Key_Left);
    EXPECT_EQ(row("C:\\").button, state::RowButton::Plus);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    EXPECT_EQ(current(), "Files And Folders");
    EXPECT_EQ(rows(), 1);
}

TEST_F(Review, MouseShiftCtrlAndKeysSelectInTheRecord)
{
    present();
    open({"Files And Folders", "C:\\", "C:\\work\\"});
    clickRow("C:\\work\\");
    EXPECT_EQ(selected(), Keys{"C:\\work\\"});
    clickRow("C:\\work\\report.doc_007", Qt::ControlModifier);
    EXPECT_EQ(selected(), (Keys{"C:\\work\\", "C:\\work\\report.doc_007"}));
    clickRow("C:\\work\\", Qt::ControlModifier);
    EXPECT_EQ(selected(), Keys{"C:\\work\\report.doc_007"});
    clickRow("C:\\");
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selected().size(), 3U);
    EXPECT_EQ(selected(), drawn());
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selected().size(), form.lstRestore.size());
}

TEST_F(Review, ASelectionStaysWithItsRowsWhileOthersComeAndGo)
{
    present();
    open({"Files And Folders", "C:\\"});
    clickRow("C:\\");
    clickRow("D:\\", Qt::ShiftModifier);
    const Keys before = selected();
    EXPECT_EQ(before.size(), 4U);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, onButton("C:\\work\\"));
    EXPECT_GT(rows(), 5);
    EXPECT_EQ(selected(), before) << "what came in between is not selected";
    EXPECT_EQ(drawn(), before);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, onButton("C:\\"));
    EXPECT_EQ(selected(), (Keys{"C:\\", "D:\\"}));
    EXPECT_EQ(drawn(), selected());
}

TEST_F(Review, WhatAHandlerSelectsIsDrawn)
{
    present();
    open({"Files And Folders"});
    select({"D:\\"});
    view->showRecord();
    EXPECT_EQ(drawn(), Keys{"D:\\"});
    EXPECT_TRUE(did.empty());
}

TEST_F(Review, TheFootTellsRowsAndWhatIsSelected)
{
    present();
    const auto& foot = control<QLabel>(*view, "lblSelected");
    EXPECT_TRUE(QTest::qWaitFor([&] { return foot.text() == "1 row"; }));
    open({"Files And Folders", "C:\\", "C:\\work\\"});
    clickRow("C:\\work\\report.doc_007");
    press(Qt::Key_Up, Qt::ShiftModifier);
    const std::string wanted = archive::selectionText(form);
    EXPECT_NE(wanted.find("2 selected"), std::string::npos);
    EXPECT_TRUE(QTest::qWaitFor([&] { return foot.text().toStdString() == wanted; }));
}

TEST_F(Review, ARightClickSelectsTheRowAndOpensTheMenuAtItsEnd)
{
    present();
    open({"Files And Folders", "C:\\"});
    clickRow("D:\\");
    rightClick(inCell("C:\\a.txt_000"));
    EXPECT_EQ(selected(), Keys{"C:\\a.txt_000"});
    ASSERT_TRUE(menu().isVisible());
    const QPoint end = list().viewport()->mapToGlobal(list().endOf(place("C:\\a.txt_000")));
    EXPECT_EQ(menu().pos(), end);
    EXPECT_EQ(menu().actions().at(0)->text(), "&Restore");
    EXPECT_EQ(menu().actions().at(1)->text(), "&Delete");
    const auto& restore = control<QMenu>(*view, "mnuRest");
    EXPECT_EQ(restore.actions().at(0)->text(), "ByDate");
    EXPECT_EQ(restore.actions().at(1)->text(), "By File\\Folder");
    choose("mnuByDate");
    choose("mnuAsOf");
    EXPECT_EQ(did, (Keys{"by date", "as of"}));
}

TEST_F(Review, ARightClickOnOneOfSeveralRowsKeepsThemSelected)
{
    present();
    open({"Files And Folders"});
    clickRow("C:\\");
    clickRow("D:\\", Qt::ShiftModifier);
    rightClick(inCell("C:\\"));
    EXPECT_EQ(selected(), (Keys{"C:\\", "D:\\"}));
    EXPECT_TRUE(menu().isVisible());
    menu().close();
}

TEST_F(Review, TheMenuOpensOnlyWhereTheHandlerAllowsIt)
{
    present();
    rightClick(inCell("Files And Folders"));
    EXPECT_FALSE(menu().isVisible());
    press(Qt::Key_Menu);
    EXPECT_FALSE(menu().isVisible());
    press(Qt::Key_Delete);
    EXPECT_EQ(messageBoxes.texts(),
              std::vector<std::string>(3, std::string(archive::review_texts::kSelectSomething)));
    EXPECT_TRUE(did.empty());
    form.enabled = false;
    open({"Files And Folders"});
    clickRow("C:\\");
    press(Qt::Key_Menu);
    EXPECT_FALSE(menu().isVisible()) << "its commands are shut";
    form.enabled = true;
    press(Qt::Key_Menu);
    EXPECT_TRUE(menu().isVisible());
    menu().close();
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(menu().isVisible());
    menu().close();
}

TEST_F(Review, DeleteAsksAndTakesTheRowsAway)
{
    present();
    open({"Files And Folders", "C:\\", "C:\\work\\"});
    messageBoxes.answers = {platform::Answer::Yes};
    clickRow("C:\\work\\report.doc_007");
    press(Qt::Key_Delete);
    EXPECT_EQ(did, Keys{"delete"});
    EXPECT_FALSE(inStore("C\\work\\report.doc_Ver7_.zst"));
    EXPECT_EQ(rows(), static_cast<int>(form.lstRestore.size()));
    EXPECT_EQ(drawn(), selected());
    EXPECT_TRUE(list().currentIndex().isValid()) << "the keyboard goes on about there";
}

TEST_F(Review, WhileItIsBusyItTakesNoInputAndStays)
{
    present();
    open({"Files And Folders", "C:\\"});
    auto& bar = control<QProgressBar>(*view, "pbReview");
    EXPECT_FALSE(bar.isVisible());
    handlers.rowButtonClicked = nullptr;
    form.busy = form.hourglass = true;
    frame.pb = {.value = 3, .maximum = 12};
    view->showRecord();
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(bar.value(), bar.maximum() / 4);
    EXPECT_EQ(view->cursor().shape(), Qt::WaitCursor);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, onButton("C:\\work\\"));
    clickRow("C:\\a.txt_000");
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, inCell("C:\\"));
    for (const int key : {Qt::Key_Return, Qt::Key_Down, Qt::Key_Delete, Qt::Key_Menu})
        press(key);
    rightClick(inCell("C:\\a.txt_000"));
    EXPECT_FALSE(menu().isVisible());
    EXPECT_FALSE(view->close());
    EXPECT_TRUE(did.empty());
    EXPECT_EQ(selected(), Keys{});
    form.busy = form.hourglass = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return !bar.isVisible(); })) << "it looks by itself";
    EXPECT_EQ(view->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(Review, ClosingItIsTheHandlersMatter)
{
    present();
    control<QPushButton>(*view, "cmdClose").click();
    EXPECT_EQ(did, Keys{"unload"});
    EXPECT_FALSE(view->isVisible());
}

TEST_F(Review, RowsThatWereAddedComeIntoViewWithTheOneThatWasOpened)
{
    for (int i = 0; i < 60; ++i)
        put({"C\\many\\f" + std::to_string(i) + ".txt_FULL.zst"});
    present();
    open({"Files And Folders", "C:\\"});
    list().setCurrentIndex(list().model()->index(place("C:\\many\\"), 0));
    press(Qt::Key_Right);
    EXPECT_FALSE(form.bringIntoView);
    const QModelIndex folder = list().model()->index(place("C:\\many\\"), 0);
    EXPECT_TRUE(list().viewport()->rect().contains(list().visualRect(folder)))
        << "the row itself, as its last child does not fit beside it";
}

TEST_F(Review, IconsAreLookedUpByTheNameWithoutItsTagAndOnlyForRowsInSight)
{
    constexpr int kRows = 20000;
    form.loaded = true;
    form.lstRestore.resize(kRows);
    for (int i = 0; i < kRows; ++i) {
        state::ReviewRow& each = form.lstRestore[static_cast<std::size_t>(i)];
        each.text = "f.x" + std::to_string(i) + "_Org";
        each.key = "C:\\" + each.text;
        each.level = 2;
        each.file = true;
    }
    std::vector<std::string> asked;
    shell.script().onCallsNamed("shell.iconName",
                                [&](const auto& call) { asked.push_back(call.subject); });
    view = std::make_unique<ReviewView>(form, frame.pb, handlers, &shell);
    view->resize(900, 400);
    ui::present(*view);
    view->grab();
    EXPECT_GT(asked.size(), 5U);
    EXPECT_LT(asked.size(), 60U) << "rows outside the list's window are not touched";
    const std::size_t once = asked.size();
    view->grab();
    EXPECT_EQ(asked.size(), once);
    EXPECT_EQ(asked.front(), ".x0");
}

TEST_F(Review, AmongManyRowsOnlyThoseBelowTheOpenedOneComeAndGo)
{
    // Of as many rows as the speed is promised for where VARDELIN_ROWS says so.
    const char* wanted = std::getenv("VARDELIN_ROWS");
    const std::size_t count = wanted != nullptr ? std::stoul(wanted) : 5000;
    constexpr std::size_t kBelow = 100;
    form.loaded = true;
    const auto addFile = [](state::ReviewRow& each, std::uint16_t level) {
        each.text = "f.txt_Org";
        each.key = "C:\\f.txt_000";
        each.level = level;
        each.file = true;
    };
    form.lstRestore.resize(count);
    for (state::ReviewRow& each : form.lstRestore)
        addFile(each, 2);
    const std::size_t folder = count / 2;
    form.lstRestore[folder].file = false;
    form.lstRestore[folder].button = state::RowButton::Plus;
    handlers.rowButtonClicked = [&](std::size_t) {
        auto& rows = form.lstRestore;
        const auto below = rows.begin() + static_cast<std::ptrdiff_t>(folder) + 1;
        const bool opens = rows[folder].button == state::RowButton::Plus;
        rows[folder].button = opens ? state::RowButton::Minus : state::RowButton::Plus;
        if (opens) {
            state::ReviewRow child;
            addFile(child, 3);
            rows.insert(below, kBelow, child);
        } else {
            rows.erase(below, below + kBelow);
        }
        ++form.rowsRevision;
    };
    view = std::make_unique<ReviewView>(form, frame.pb, handlers, &shell);
    view->resize(900, 400);
    ui::present(*view);
    const auto at = static_cast<int>(folder);
    list().setCurrentIndex(list().model()->index(at, 0));
    int resets = 0;
    QObject::connect(list().model(), &QAbstractItemModel::modelReset, [&] { ++resets; });
    std::vector<std::pair<int, int>> came;
    std::vector<std::pair<int, int>> went;
    QObject::connect(
        list().model(), &QAbstractItemModel::rowsInserted,
        [&](const QModelIndex&, int first, int last) { came.emplace_back(first, last); });
    QObject::connect(
        list().model(), &QAbstractItemModel::rowsRemoved,
        [&](const QModelIndex&, int first, int last) { went.emplace_back(first, last); });
    QElapsedTimer timer;
    const auto report = [&](const char* what) {
        if (wanted != nullptr)
            std::cout << what << ": " << timer.elapsed() << " ms\n";
        timer.restart();
    };
    timer.start();
    press(Qt::Key_Right);
    view->grab();
    report("opened");
    press(Qt::Key_Left);
    view->grab();
    report("closed");
    press(Qt::Key_A, Qt::ControlModifier);
    view->grab();
    report("all selected");
    press(Qt::Key_Down);
    view->grab();
    report("one selected");
    press(Qt::Key_End, Qt::ShiftModifier);
    view->grab();
    report("half selected");
    QCoreApplication::processEvents();
    report("counted");
    view->showRecord();
    report("shown again");
    EXPECT_EQ(resets, 0);
    const std::vector<std::pair<int, int>> below = {{at + 1, at + static_cast<int>(kBelow)}};
    EXPECT_EQ(came, below);
    EXPECT_EQ(went, below);
    EXPECT_EQ(selected().size(), count - folder - 1);
}

TEST(ReviewParts, DeepRowsKeepRoomForTheirNames)
{
    const QFontMetrics metrics{QApplication::font()};
    const QRect cell(0, 0, metrics.averageCharWidth() * 60, 24);
    const ReviewParts top = partsOf(cell, 0, metrics);
    const ReviewParts third = partsOf(cell, 2, metrics);
    const ReviewParts deepest = partsOf(cell, 500, metrics);
    EXPECT_LT(top.text.left(), third.text.left());
    EXPECT_LT(third.text.left(), deepest.text.left());
    EXPECT_GE(deepest.text.width(), metrics.averageCharWidth() * 13);
    EXPECT_TRUE(cell.contains(deepest.text));
    // In a narrow column, too, a row is seen to stand in another.
    const QRect narrow(0, 0, metrics.averageCharWidth() * 30, 25);
    for (int level = 0; level < 11; ++level)
        EXPECT_GT(partsOf(narrow, level + 1, metrics).button.left(),
                  partsOf(narrow, level, metrics).button.left() + 3)
            << level;
}

class ReviewLooks : public Review {};

TEST_F(ReviewLooks, NothingIsClippedInTheReview)
{
    put({"OtherData\\IE Favorites\\x_FULL.zst",
         "C\\work\\a name that is so long that it does not fit into the column of names at all, "
         "whatever is done.txt_FULL.zst"});
    load();
    form.caption = "Restore - 'Work' Profile";
    click({"Files And Folders", "C:\\", "C:\\work\\", "C:\\work\\deep\\", "Other Data & Settings"});
    row("C:\\work\\report.doc_000").selected = true;
    row("C:\\work\\report.doc_007").selected = true;
    row("C:\\work\\report.doc_007").size = "1234567 KB";
    row("C:\\work\\report.doc_007").sizeBytes = 1264197000;
    row("C:\\work\\report.doc_007").createdOn = "12/31/2026 12:59:59 PM";
    inEveryLook([&](const std::string& name) {
        ReviewView shownView(form, frame.pb, {}, &shell);
        shownView.resize(shownView.minimumSizeHint().expandedTo(
            {shownView.fontMetrics().averageCharWidth() * 150,
             shownView.fontMetrics().lineSpacing() * 32}));
        shownView.list().setFocus();
        expectGoodLooks(shownView, "frmVDStorage-" + name);
        EXPECT_EQ(reached(shownView), (std::vector<std::string>{"lstRestore", "cmdClose"}));
    });
}

} // namespace
} // namespace vardelin::ui
