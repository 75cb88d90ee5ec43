#include "tree_rig.h"

#include "ui/profile_form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include <QAbstractItemModelTester>
#include <QHelpEvent>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>

namespace vardelin::ui {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::Not;

class SourceTreeViews : public testing::Test, public TreeRig {
protected:
    SourceTreeViews()
    {
        put({"D:\\Docs\\a.txt", "D:\\Docs\\b.txt", "D:\\Docs\\deep\\x", "D:\\Music\\song.ogg",
             "D:\\plain"});
        newMode();
        editor::BuildDriveList(plain);
    }
    void TearDown() override { QApplication::setPalette(QPalette()); }
    void openAll()
    {
        expand("D:\\");
        expand("D:\\Docs\\");
        show();
        ran.clear();
    }
};

TEST_F(SourceTreeViews, ShowsWhatTheRecordHoldsAndRunsNoHandler)
{
    expand("D:\\");
    tick("D:\\Docs\\");
    show();
    EXPECT_THAT(rows(),
                ElementsAre("[-] D:", "  [x] Docs", "  [ ] Music", "  [ ] plain", "[ ] E:"));
    EXPECT_THAT(ran, IsEmpty());
    EXPECT_EQ(widget().objectName(), "tvwDirectory");
    EXPECT_EQ(widget().currentIndex(), indexOf("D:\\"));
}

TEST_F(SourceTreeViews, AFolderThatWasNotReadHasAnArrowAndNoRowBelow)
{
    show();
    const QModelIndex drive = indexOf("D:\\");
    EXPECT_TRUE(model().hasChildren(drive));
    EXPECT_EQ(model().rowCount(drive), 0);
}

TEST_F(SourceTreeViews, TheMouseOpensAndClosesAFolder)
{
    show();
    clickAt(arrowOf("D:\\"));
    EXPECT_TRUE(at("D:\\").expanded);
    EXPECT_THAT(ran, ElementsAre("Expand D:", "Click"));
    EXPECT_THAT(rows(),
                ElementsAre("[ ] D:", "  [ ] Docs", "  [ ] Music", "  [ ] plain", "[ ] E:"));
    ran.clear();
    clickAt(arrowOf("D:\\"));
    EXPECT_FALSE(at("D:\\").expanded);
    EXPECT_THAT(ran, ElementsAre("Click"));
}

TEST_F(SourceTreeViews, KeysOpenCloseAndTick)
{
    show();
    widget().setFocus();
    QTest::keyClick(&widget(), Qt::Key_Right);
    settle();
    EXPECT_TRUE(at("D:\\").expanded);
    EXPECT_THAT(ran, Contains("Expand D:"));
    QTest::keyClick(&widget(), Qt::Key_Down);
    EXPECT_EQ(record.tvwDirectory.selected(), &at("D:\\Docs\\"));
    ran.clear();
    QTest::keyClick(&widget(), Qt::Key_Space);
    EXPECT_THAT(ran, ElementsAre("KeyDown 32", "NodeCheck Docs"));
    EXPECT_EQ(look("D:\\Docs\\"), "+g");
    EXPECT_EQ(look("D:\\"), "+p");
    QTest::keyClick(&widget(), Qt::Key_Left);
    QTest::keyClick(&widget(), Qt::Key_Left);
    EXPECT_FALSE(at("D:\\").expanded);
}

TEST_F(SourceTreeViews, TheStarOfTheNumericPadDoesNothingAndNoStarOpensABranch)
{
    openAll();
    widget().setCurrentIndex(indexOf("D:\\"));
    ran.clear();
    QTest::keyClick(&widget(), Qt::Key_Asterisk, Qt::KeypadModifier);
    EXPECT_THAT(ran, ElementsAre("KeyDown 106"));
    QTest::keyClick(&widget(), Qt::Key_Asterisk);
    settle();
    EXPECT_THAT(ran, Not(Contains("Expand Music")));
    EXPECT_FALSE(at("D:\\Music\\").expanded);
}

TEST_F(SourceTreeViews, ALabelIsNeverEdited)
{
    openAll();
    QTest::keyClick(&widget(), Qt::Key_F2);
    EXPECT_THAT(ran, Contains("BeforeLabelEdit"));
    EXPECT_EQ(widget().findChild<QLineEdit*>(), nullptr);
}

TEST_F(SourceTreeViews, ABoxIsTickedByTheMouseBeforeTheClickRuns)
{
    openAll();
    clickAt(boxOf("D:\\Docs\\b.txt"));
    EXPECT_THAT(ran, ElementsAre("NodeCheck b.txt", "Click"));
    EXPECT_THAT(rows(), ElementsAre("[-] D:", "  [-] Docs", "    [ ] deep", "    [ ] a.txt",
                                    "    [x] b.txt", "  [ ] Music", "  [ ] plain", "[ ] E:"));
    clickAt(boxOf("D:\\Docs\\b.txt"));
    EXPECT_EQ(look("D:\\Docs\\b.txt"), "-0");
}

TEST_F(SourceTreeViews, APartlySelectedFolderLosesItsTick)
{
    openAll();
    tick("D:\\Docs\\b.txt");
    view->showRecord();
    clickAt(boxOf("D:\\Docs\\"));
    EXPECT_EQ(look("D:\\Docs\\"), "-0");
}

TEST_F(SourceTreeViews, InAViewATickThatIsTakenAwayComesBack)
{
    frame.BL_New_Mode = false;
    frame.BL_Open_Mode = true;
    for (const char* line : {"D:\\", "D:\\Docs\\", "D:\\Docs\\a.txt"})
        store.opened.clxnOpenedSources.add(line, line);
    editor::restoreOpenedDrives(plain);
    show();
    clickAt(arrowOf("D:\\"));
    clickAt(arrowOf("D:\\Docs\\"));
    const auto before = rows();
    EXPECT_THAT(before, Contains("    [x] a.txt"));
    clickAt(boxOf("D:\\Docs\\a.txt"));
    EXPECT_EQ(rows(), before);
    EXPECT_TRUE(at("D:\\Docs\\a.txt").checked);
}

TEST_F(SourceTreeViews, AProgrammesExpansionIsShownAndRunsNothing)
{
    show();
    expand("D:\\");
    expand("D:\\Docs\\");
    tick("D:\\Docs\\a.txt");
    record.tvwDirectory.select(&at("D:\\Docs\\a.txt"));
    view->showRecord();
    settle();
    EXPECT_THAT(rows(), Contains("    [x] a.txt"));
    EXPECT_EQ(widget().currentIndex(), indexOf("D:\\Docs\\a.txt"));
    collapse("D:\\Docs\\");
    ++record.revision;
    view->showRecord();
    EXPECT_FALSE(widget().isExpanded(indexOf("D:\\Docs\\")));
    EXPECT_THAT(ran, IsEmpty());
}

TEST_F(SourceTreeViews, ASelectedRowBelowAClosedFolderOpensNothing)
{
    openAll();
    collapse("D:\\");
    record.tvwDirectory.select(&at("D:\\Docs\\a.txt"));
    ++record.revision;
    view->showRecord();
    EXPECT_FALSE(at("D:\\").expanded);
    EXPECT_FALSE(widget().isExpanded(indexOf("D:\\")));
}

TEST_F(SourceTreeViews, ARebuiltTreeIsShownAfresh)
{
    openAll();
    record.tvwDirectory = state::TreeView{};
    view->showRecord();
    EXPECT_THAT(rows(), IsEmpty());
    editor::BuildDriveList(plain);
    view->showRecord();
    EXPECT_THAT(rows(), ElementsAre("[ ] D:", "[ ] E:"));
    EXPECT_EQ(widget().currentIndex(), indexOf("D:\\"));
}

TEST_F(SourceTreeViews, RowsThatComeBelowOneFolderKeepWhatThePersonSees)
{
    put({"D:\\Many\\"});
    for (int i = 100; i < 200; ++i)
        putFile("D:\\Many\\file" + std::to_string(i), "x");
    openAll();
    expand("D:\\Many\\");
    view->showRecord();
    settle();
    const QPersistentModelIndex many = indexOf("D:\\Many\\");
    widget().setCurrentIndex(indexOf("D:\\Many\\file150"));
    settle();
    ASSERT_GT(widget().verticalScrollBar()->value(), 0);
    const QPersistentModelIndex top = widget().indexAt({0, 0});
    int resets = 0;
    QObject::connect(&model(), &QAbstractItemModel::modelReset, [&] { ++resets; });

    expand("D:\\Docs\\deep\\"); // above what is seen
    view->showRecord();
    settle();

    EXPECT_EQ(resets, 0);
    EXPECT_EQ(QModelIndex(many), indexOf("D:\\Many\\"));
    EXPECT_EQ(widget().indexAt({0, 0}), top);
    EXPECT_EQ(widget().currentIndex(), indexOf("D:\\Many\\file150"));
    EXPECT_TRUE(widget().isExpanded(indexOf("D:\\Docs\\deep\\")));
}

TEST_F(SourceTreeViews, AnUnreadableFolderLosesItsArrowAndIsReported)
{
    disk.setUnreadable("D:\\Music");
    expand("D:\\");
    show();
    clickAt(arrowOf("D:\\Music\\"));
    EXPECT_EQ(dialog.shown.size(), 1U);
    EXPECT_FALSE(model().hasChildren(indexOf("D:\\Music\\")));
    disk.removeTree("D:\\Docs");
    clickAt(arrowOf("D:\\Docs\\"));
    EXPECT_EQ(dialog.shown.size(), 2U);
    EXPECT_THAT(rows(),
                ElementsAre("[ ] D:", "  [ ] Docs", "  [ ] Music", "  [ ] plain", "[ ] E:"));
}

TEST_F(SourceTreeViews, NamesShowWhateverBytesTheyHold)
{
    putFile("D:\\bad\xFFname", "x");
    putFile("D:\\what\xEF\x80\xBF", "x"); // U+F03F stands for a question mark
    expand("D:\\");
    show();
    EXPECT_THAT(rows(), Contains("  [ ] bad\xEF\xBF\xBDname"));
    EXPECT_THAT(rows(), Contains("  [ ] what?"));
}

TEST_F(SourceTreeViews, ToldInWordsToWhoCannotSeeIt)
{
    openAll();
    tick("D:\\Docs\\b.txt");
    const auto text = [&](std::string_view key, int role) {
        return indexOf(key).data(role).toString().toStdString();
    };
    EXPECT_EQ(text("D:\\Docs\\", Qt::AccessibleTextRole), "Docs, partly selected");
    EXPECT_EQ(text("D:\\Docs\\b.txt", Qt::AccessibleTextRole), "b.txt, wholly selected");
    EXPECT_EQ(text("D:\\Docs\\a.txt", Qt::AccessibleTextRole), "a.txt, not selected");
    EXPECT_EQ(text("D:\\", Qt::AccessibleDescriptionRole), "Drive D:");
    EXPECT_EQ(text("D:\\Docs\\", Qt::AccessibleDescriptionRole), "Folder D:\\Docs");
    EXPECT_EQ(text("D:\\Docs\\a.txt", Qt::AccessibleDescriptionRole), "File D:\\Docs\\a.txt");
    EXPECT_FALSE(widget().accessibleName().isEmpty());
}

TEST_F(SourceTreeViews, ALongNameIsElidedAndWholeInTheToolTipWithTheSize)
{
    const std::string mapped = "\xEF\x80\xBC"
                               "b\xEF\x80\xBE" +
                               std::string(100, 'n') + ".txt";
    putFile("D:\\" + mapped, std::string(1536, 'x'));
    expand("D:\\");
    show();
    const std::string key = "D:\\" + mapped;
    EXPECT_LE(rowOf(key).right(), widget().viewport()->width());
    const int needed = widget().fontMetrics().horizontalAdvance(indexOf(key).data().toString());
    EXPECT_GT(needed, rowOf(key).width()) << "it does not fit";
    QString tip = indexOf(key).data(Qt::ToolTipRole).toString();
    tip.remove(QChar(0x200B));
    EXPECT_TRUE(tip.contains("&lt;b&gt;" + QString(100, 'n') + ".txt")) << tip.toStdString();
    EXPECT_TRUE(
        tip.contains(QLocale().formattedDataSize(1536, 1, QLocale::DataSizeTraditionalFormat)));
    EXPECT_TRUE(tip.contains("Not selected"));
}

TEST_F(SourceTreeViews, AFilesSizeIsAskedForOnlyWhereItIsPointedAt)
{
    expand("D:\\");
    show();
    disk.script().reset();
    widget().viewport()->repaint();
    EXPECT_EQ(disk.script().callCount(), 0U);
    disk.removeFile("D:\\plain");
    const QString tip = indexOf("D:\\plain").data(Qt::ToolTipRole).toString();
    EXPECT_TRUE(tip.contains("plain"));
    disk.script().reset();
    disk.script().failCall(1, base::error_number::kDeviceIo);
    EXPECT_TRUE(indexOf("D:\\plain").data(Qt::ToolTipRole).toString().contains("plain"));
    EXPECT_EQ(indexOf("D:\\").data(Qt::ToolTipRole).toString().count("<br>"), 1);
}

TEST_F(SourceTreeViews, IconsAreLookedUpOnceAnExtensionAndOnlyWhenPainted)
{
    openAll();
    widget().viewport()->repaint();
    const std::size_t asked = shell.script().countOf("shell.iconName");
    EXPECT_EQ(asked, 1U) << ".txt";
    widget().viewport()->repaint();
    EXPECT_EQ(shell.script().countOf("shell.iconName"), asked);
    expand("D:\\Music\\");
    collapse("D:\\Music\\");
    EXPECT_EQ(shell.script().countOf("shell.iconName"), asked);
    EXPECT_EQ(extensionOf("a.b.TXT"), ".txt");
    EXPECT_EQ(extensionOf(".profile"), "");
    EXPECT_EQ(extensionOf("end."), "");
}

TEST_F(SourceTreeViews, ATreeThatIsClosedTakesNoInput)
{
    openAll();
    record.tvwDirectory.enabled = false;
    view->showRecord();
    clickAt(boxOf("D:\\Docs\\b.txt"));
    clickAt(arrowOf("D:\\Music\\"));
    EXPECT_EQ(look("D:\\Docs\\b.txt"), "-0");
    EXPECT_THAT(ran, IsEmpty());
}

TEST_F(SourceTreeViews, TheModelKeepsTheRulesOfQt)
{
    show();
    const QAbstractItemModelTester tester(&model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    readSlowly([&] { view->showReading(); });
    for (const char* key : {"D:\\", "D:\\Docs\\", "D:\\Music\\"}) {
        expand(key);
        view->showRecord();
        settle();
    }
    for (int i = 0; i < 200; ++i)
        putFile("D:\\Docs\\deep\\" + std::to_string(i), "x");
    widget().expand(indexOf("D:\\Docs\\deep\\"));
    tree.remove(at("D:\\Docs\\a.txt"));
    tree.remove(at("D:\\Music\\"));
    tree.add(&at("D:\\"), {"D:\\late", "late"});
    view->showRecord();
    EXPECT_EQ(model().rowCount(indexOf("D:\\Docs\\deep\\")), 201);
    EXPECT_THAT(rows(), Contains("  [ ] late"));
    EXPECT_THAT(rows(), Not(Contains("  [ ] Music")));
    tree.clear();
    view->showRecord();
    EXPECT_EQ(model().rowCount(), 0);
}

TEST_F(SourceTreeViews, ManyFoldersThatChangeAtOnceAreShownWithTheirExpansion)
{
    for (int i = 100; i < 250; ++i)
        put({"D:\\Docs\\deep\\" + std::to_string(i) + "\\f"});
    openAll();
    tree.select(&at("D:\\Docs\\"));
    editor::mnuExpand_Click(plain);
    view->showRecord();
    settle();
    EXPECT_TRUE(widget().isExpanded(indexOf("D:\\Docs\\deep\\249\\")));
    EXPECT_TRUE(widget().isExpanded(indexOf("D:\\")));
    EXPECT_EQ(widget().currentIndex(), indexOf("D:\\Docs\\"));
    EXPECT_THAT(ran, IsEmpty());
}

// ---- while a folder is read

class Readings : public SourceTreeViews {
protected:
    Readings()
    {
        put({"D:\\Big\\"});
        for (int i = 0; i < 300; ++i)
            putFile("D:\\Big\\file" + std::to_string(i), "x");
        expand("D:\\");
    }
};

TEST_F(Readings, ShowARowABarAndABusyPointer)
{
    show();
    int turns = 0;
    bool good = true;
    readSlowly([&] {
        ++turns;
        const QModelIndex big = indexOf("D:\\Big\\");
        const QModelIndex row = model().index(0, 0, big);
        good = good && model().rowCount(big) == 1 && row.data() == "Reading..." &&
               !row.flags().testFlag(Qt::ItemIsUserCheckable) &&
               !row.data(Qt::CheckStateRole).isValid() &&
               view->findChild<QProgressBar*>("pbReading")->isVisible() &&
               !view->findChild<QWidget*>("treeLegend")->isVisible() &&
               QApplication::overrideCursor() != nullptr;
        if (turns == 5)
            keepPicture(*view, "tree-reading");
    });
    clickAt(arrowOf("D:\\Big\\"));
    EXPECT_GT(turns, 5);
    EXPECT_TRUE(good);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_TRUE(view->findChild<QWidget*>("treeLegend")->isVisible());
    EXPECT_FALSE(view->findChild<QProgressBar*>("pbReading")->isVisible());
    EXPECT_EQ(model().rowCount(indexOf("D:\\Big\\")), 300);
}

TEST_F(Readings, RefuseClicksKeysShortcutsAndClosing)
{
    QPushButton other("other");
    other.show();
    show();
    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    int shortcuts = 0;
    QShortcut save(QKeySequence(Qt::CTRL | Qt::Key_S), view.get());
    QObject::connect(&save, &QShortcut::activated, [&] { ++shortcuts; });
    int clicks = 0;
    QObject::connect(&other, &QPushButton::clicked, [&] { ++clicks; });
    int turns = 0;
    bool stayed = true;
    readSlowly([&] {
        ++turns;
        QTest::mouseClick(widget().viewport(), Qt::LeftButton, {}, boxOf("D:\\Big\\"));
        QTest::mouseClick(widget().viewport(), Qt::LeftButton, {}, arrowOf("D:\\Music\\"));
        QTest::mouseClick(&other, Qt::LeftButton);
        QTest::keyClick(view.get(), Qt::Key_S, Qt::ControlModifier);
        QTest::keyClick(&widget(), Qt::Key_Space);
        stayed = stayed && !view->close();
    });
    clickAt(arrowOf("D:\\Big\\"));
    EXPECT_GT(turns, 0);
    EXPECT_TRUE(stayed);
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(shortcuts, 0);
    EXPECT_EQ(look("D:\\Big\\"), "-0");
    EXPECT_FALSE(at("D:\\Music\\").expanded);
    EXPECT_THAT(ran, ElementsAre("Expand Big", "Click"));
    messageLoop.onYield = nullptr;
    QTest::mouseClick(&other, Qt::LeftButton);
    QTest::keyClick(view.get(), Qt::Key_S, Qt::ControlModifier);
    clickAt(boxOf("D:\\Big\\"));
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(shortcuts, 1);
    EXPECT_EQ(look("D:\\Big\\"), "+g");
}

TEST_F(Readings, EscapeLeavesTheFolderClosedAndUnread)
{
    show();
    const auto before = rows();
    int turns = 0;
    readSlowly([&] {
        if (++turns == 3)
            QTest::keyClick(&widget(), Qt::Key_Escape);
    });
    clickAt(arrowOf("D:\\Big\\"));
    EXPECT_EQ(turns, 3);
    EXPECT_EQ(rows(), before);
    EXPECT_FALSE(widget().isExpanded(indexOf("D:\\Big\\")));
    EXPECT_TRUE(model().hasChildren(indexOf("D:\\Big\\")));
    messageLoop.onYield = nullptr;
    clickAt(arrowOf("D:\\Big\\"));
    EXPECT_EQ(model().rowCount(indexOf("D:\\Big\\")), 300);
}

TEST_F(Readings, ACommandsReadingIsShownWhereItLetsTheWindowLive)
{
    show();
    int turns = 0;
    bool good = true;
    readSlowly([&] {
        ++turns;
        view->showReading();
        view->showRecord(); // somebody else's wish to show it changes nothing
        good = good && view->findChild<QProgressBar*>("pbReading")->isVisible();
        QTest::mouseClick(widget().viewport(), Qt::LeftButton, {}, boxOf("D:\\Docs\\"));
    });
    tree.select(&at("D:\\Big\\"));
    editor::mnuExpand_Click(plain);
    view->showRecord();
    settle();
    EXPECT_GT(turns, 0);
    EXPECT_TRUE(good);
    EXPECT_EQ(look("D:\\Docs\\"), "-0");
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_TRUE(widget().isExpanded(indexOf("D:\\Big\\")));
    EXPECT_EQ(model().rowCount(indexOf("D:\\Big\\")), 300);
}

TEST_F(Readings, SurviveATreeThatIsEmptiedMeanwhile)
{
    show();
    bool first = true;
    readSlowly([&] {
        if (!std::exchange(first, false))
            return;
        record.tvwDirectory = state::TreeView{};
        widget().viewport()->repaint();
        editor::BuildDriveList(plain);
        widget().viewport()->repaint();
    });
    clickAt(arrowOf("D:\\Big\\"));
    EXPECT_THAT(rows(), ElementsAre("[ ] D:", "[ ] E:"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

// ---- in the form

TEST_F(SourceTreeViews, TheFormShowsAllItsRecordsAfterAHandlerOfTheTree)
{
    state::ProfileFormState help;
    ProfileFormHandlers handlers;
    handlers.tree = boundTo(*this, ran);
    handlers.tree.tvwDirectory_NodeCheck = [&](state::TreeNode&) {
        record.txtDestLoc.text = "new";
    };
    ProfileForm window(record, help, handlers);
    window.show();
    auto& directory = window.tree().tree();
    EXPECT_EQ(window.findChild<QTreeView*>("tvwDirectory"), &directory);
    directory.setFocus();
    QTest::keyClick(&directory, Qt::Key_Space);
    EXPECT_EQ(window.findChild<QLineEdit*>("txtDestLoc")->text(), "new");
}

TEST_F(SourceTreeViews, LooksWellInBothPalettesAndSizes)
{
    put({"D:\\Photos of a summer that nobody who was there is going to forget for a long "
         "time.jpeg",
         "D:\\Docs\\deep\\deeper\\deepest\\x.pdf"});
    expand("D:\\");
    expand("D:\\Docs\\");
    expand("D:\\Docs\\deep\\");
    expand("D:\\Docs\\deep\\deeper\\");
    tick("D:\\Docs\\a.txt");
    tick("D:\\Music\\");
    tick("D:\\Docs\\deep\\x");
    record.tvwDirectory.select(&at("D:\\Docs\\deep\\"));
    const QFont usual = QApplication::font();
    for (const bool dark : {false, true}) {
        for (const int points : {9, 14}) {
            QApplication::setPalette(dark ? darkPalette() : QPalette());
            QFont font = usual;
            font.setPointSize(points);
            QApplication::setFont(font);
            show();
            widget().setFocus();
            EXPECT_EQ(clippedIn(*view), "");
            keepPicture(*view, std::string("tree-") + (dark ? "dark-" : "light-") +
                                   std::to_string(points) + "pt");
            view.reset();
        }
    }
    QApplication::setFont(usual);
}

} // namespace
} // namespace vardelin::ui
