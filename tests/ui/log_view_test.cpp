#include "ui/log_view.h"

#include "logs/log_texts.h"
#include "ui/log_model.h"
#include "ui/missed_files_view.h"

#include "looks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

namespace vardelin::ui {
namespace {

class Log : public testing::Test {
protected:
    Log()
    {
        form.loaded = form.visible = form.lstBackupLog.visible = true;
        form.lblHelp.caption = logs::texts::kBackupHelp;
        form.lblGeneral.caption = logs::texts::kGeneralHelp;
        addRun("Work", "Full", "2026-11-02 09:05:03", "1204", "0", "");
        addRun("Home", "Incremental", "2026-11-03 09:05:03", "97", "12", "C:\\App\\Log\\m.txt");
        addRun("photos10", "Full", "2026-10-30 21:15:44", "5", "0", "");
        addRun("Photos9", "Full", "2026-11-01 00:00:00", "33", "0", "");
        handlers.lstBackupLog_DblClick = [this](const state::LogRow& row) {
            opened.push_back(row.text);
            return row.report.empty() ? std::string()
                                      : std::string("C:\\a.txt\tPermission denied\r\n"
                                                    "C:\\b <i>.txt\tThe file changed\r\n");
        };
        handlers.Form_Unload = [this] { form.loaded = false; };
    }
    void addRun(const char* name, const char* kind, const char* when, const char* files,
                const char* skipped, const char* report)
    {
        form.lstBackupLog.rows.push_back({name, {kind, when, files, skipped}, report});
        ++form.revision;
    }
    static QTreeView& table(const QWidget& view, const char* name)
    {
        return control<QTreeView>(view, name);
    }
    static std::vector<std::string> column(const QTreeView& list, int at)
    {
        std::vector<std::string> texts;
        for (int i = 0; i < list.model()->rowCount(); ++i)
            texts.push_back(list.model()->index(i, at).data().toString().toStdString());
        return texts;
    }
    static void clickHeading(QTreeView& list, int at)
    {
        QHeaderView& header = *list.header();
        const QPoint place(header.sectionViewportPosition(at) + header.sectionSize(at) / 2,
                           header.height() / 2);
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
    }
    static void doubleClick(QTreeView& list, int row)
    {
        const QPoint at = list.visualRect(list.model()->index(row, 0)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, at);
    }
    static std::vector<std::string> headings(const QTreeView& list)
    {
        std::vector<std::string> texts;
        for (int i = 0; i < list.model()->columnCount(); ++i)
            texts.push_back(list.model()->headerData(i, Qt::Horizontal).toString().toStdString());
        return texts;
    }

    state::frmLog form;
    LogHandlers handlers;
    std::vector<std::string> opened;
};

using Texts = std::vector<std::string>;

TEST_F(Log, EachListHasItsColumnsAndOneShows)
{
    LogView view(form, handlers);
    present(view);
    EXPECT_EQ(
        headings(table(view, "lstBackupLog")),
        (Texts{"Profile Name", "BackUp Type", "LastRun Date", "Number Of Files", "Skipped Files"}));
    EXPECT_EQ(headings(table(view, "lstRestoreLog")),
              (Texts{"Profile Name", "Destination", "Last Restored Date", "No Of Files"}));
    EXPECT_EQ(headings(table(view, "lstQLog")),
              (Texts{"File Name", "File Path", "File Modified Date", "File Size"}));
    EXPECT_TRUE(table(view, "lstBackupLog").isVisible());
    form.lstBackupLog.visible = false;
    form.lstQLog.visible = true;
    form.lblHelp.caption = logs::texts::kQueueHelp;
    form.lstQLog.rows.push_back({"a.txt", {"C:\\", "7/3/2003 9:05:03 AM", "1KB", ""}, ""});
    ++form.revision;
    view.showRecord();
    EXPECT_FALSE(table(view, "lstBackupLog").isVisible());
    EXPECT_FALSE(table(view, "lstRestoreLog").isVisible());
    EXPECT_TRUE(table(view, "lstQLog").isVisible());
    EXPECT_TRUE(table(view, "lstQLog").hasFocus()) << "the keyboard is in the list that came";
    EXPECT_EQ(column(table(view, "lstQLog"), 1), Texts{"C:\\"});
    EXPECT_TRUE(control<QLabel>(view, "lblHelp").text().startsWith("Queue log displays"));
    EXPECT_TRUE(control<QLabel>(view, "lblGeneral").text().startsWith("Log displays the status"));
}

TEST_F(Log, AHeadingSortsTheViewAloneAndTheThirdClickBringsTheOrderBack)
{
    LogView view(form, handlers);
    view.resize(1000, 500);
    present(view);
    QTreeView& list = table(view, "lstBackupLog");
    const Texts asFound = {"Work", "Home", "photos10", "Photos9"};
    EXPECT_EQ(column(list, 0), asFound);
    clickHeading(list, 0);
    EXPECT_EQ(column(list, 0), (Texts{"Home", "Photos9", "photos10", "Work"}));
    clickHeading(list, 0);
    EXPECT_EQ(column(list, 0), (Texts{"Work", "photos10", "Photos9", "Home"}));
    clickHeading(list, 0);
    EXPECT_EQ(column(list, 0), asFound);
    clickHeading(list, 3);
    EXPECT_EQ(column(list, 3), (Texts{"5", "33", "97", "1204"})) << "as numbers";
    EXPECT_EQ(form.lstBackupLog.rows[0].text, "Work") << "the record stays";
    addRun("Last", "Full", "2026-11-04 00:00:00", "50", "0", "");
    view.showRecord();
    EXPECT_EQ(column(list, 3), (Texts{"5", "33", "50", "97", "1204"})) << "and so does the order";
}

TEST(LogOrder, ComparesSizesAndMomentsForWhatTheyAre)
{
    const struct {
        LogSort sort;
        Texts inOrder;
    } rows[] = {
        {LogSort::Size, {"0B", "999B", "1KB", "1.12KB", "20KB", "1023.99KB", "1MB", "3.5MB", "?"}},
        {LogSort::Moment,
         {"12/30/2025 11:00:00 PM", "2/1/2026 1:00:00 AM", "2/1/2026 12:00:00 PM",
          "2/1/2026 1:00:00 PM", "10/1/2026 9:00:00 AM", "", "unknown"}},
        {LogSort::Text, {"2026-01-02 00:00:00", "2026-01-10 00:00:00", "a2", "A10", "b"}},
    };
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.inOrder.size(); ++i) {
            for (std::size_t j = 0; j < row.inOrder.size(); ++j)
                EXPECT_EQ(logLess(row.inOrder[i], row.inOrder[j], row.sort), i < j)
                    << row.inOrder[i] << " and " << row.inOrder[j];
        }
    }
}

TEST_F(Log, ADoubleClickOrEnterOpensTheReportOfTheRowOnShow)
{
    for (const bool byKey : {false, true}) {
        opened.clear();
        LogView view(form, handlers);
        view.resize(1000, 500);
        present(view);
        QTreeView& list = table(view, "lstBackupLog");
        clickHeading(list, 0); // Home comes first now
        list.setFocus();
        if (byKey) {
            list.setCurrentIndex(list.model()->index(0, 0));
            QTest::keyClick(&list, Qt::Key_Return);
        } else {
            doubleClick(list, 0);
        }
        EXPECT_EQ(opened, Texts{"Home"});
        auto& report = control<MissedFilesView>(view, "frmMissedFiles");
        EXPECT_TRUE(report.isVisible());
        EXPECT_FALSE(report.isModal());
        EXPECT_EQ(report.windowTitle(), "Missed Files - Home, 2026-11-03 09:05:03");
        QTreeView& lines = table(report, "lstMissed");
        EXPECT_EQ(column(lines, 0), (Texts{"C:\\a.txt", "C:\\b <i>.txt"}));
        EXPECT_EQ(column(lines, 1), (Texts{"Permission denied", "The file changed"}));
        EXPECT_EQ(control<QLabel>(report, "lblMissed").text(), "2 files were not saved.");
        QTest::keyClick(&report, Qt::Key_Escape);
        EXPECT_FALSE(report.isVisible());
    }
}

TEST_F(Log, ARunWithoutAReportOpensNoWindow)
{
    LogView view(form, handlers);
    present(view);
    doubleClick(table(view, "lstBackupLog"), 0);
    EXPECT_EQ(opened, Texts{"Work"});
    EXPECT_EQ(view.findChild<MissedFilesView*>(), nullptr);
}

TEST_F(Log, TheHintShowsWhereARunHasAReport)
{
    LogView view(form, handlers);
    present(view);
    EXPECT_TRUE(control<QLabel>(view, "lblHint").isVisible());
    form.lstBackupLog.rows[1].report.clear();
    ++form.revision;
    view.showRecord();
    EXPECT_FALSE(control<QLabel>(view, "lblHint").isVisible());
}

TEST_F(Log, ClosingItIsTheHandlersMatter)
{
    LogView view(form, handlers);
    present(view);
    control<QPushButton>(view, "cmdClose").click();
    EXPECT_FALSE(form.loaded);
    EXPECT_FALSE(view.isVisible());
}

TEST(MissedFiles, TheSelectedLinesAreCopiedAsTheyStandInTheReport)
{
    MissedFilesView view(QStringLiteral("Missed Files"), "C:\\a\tone\nC:\\b\ttwo\nC:\\c\n");
    present(view);
    auto& list = control<QTreeView>(view, "lstMissed");
    EXPECT_EQ(list.model()->rowCount(), 3);
    list.selectAll();
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "C:\\a\tone\nC:\\b\ttwo\nC:\\c\t");
}

class LogLooks : public Log {};

TEST_F(LogLooks, NothingIsClippedInTheLogs)
{
    state::frmLog queue = form;
    queue.lstBackupLog.visible = false;
    queue.lstQLog.visible = true;
    queue.lblHelp.caption = logs::texts::kQueueHelp;
    queue.lstQLog.rows = {
        {"a.txt", {"C:\\home\\anna\\work\\", "12/31/2026 12:59:59 PM", "1023.99KB", ""}, ""},
        {"a long name of a picture that was changed.jpeg",
         {"C:\\home\\anna\\Pictures\\Holidays in the mountains\\of last year and of this\\",
          "1/1/2026 9:05:03 AM", "3MB", ""},
         ""}};
    state::frmLog restores = form;
    restores.lstBackupLog.visible = false;
    restores.lstRestoreLog.visible = true;
    restores.lblHelp.caption = logs::texts::kRestoreHelp;
    restores.lstRestoreLog.rows = {
        {"Work", {"Original Location", "2026-11-02 09:05:03", "12", ""}, ""}};
    inEveryLook([&](const std::string& name) {
        const auto look = [&](state::frmLog& record, const std::string& which) {
            LogView view(record, {});
            const QFontMetrics metrics = view.fontMetrics();
            view.resize(metrics.averageCharWidth() * 150, metrics.lineSpacing() * 30);
            expectGoodLooks(view, "frmLog-" + name + which);
        };
        look(form, "-backup");
        look(queue, "-queue");
        look(restores, "-restore");
        MissedFilesView report(QStringLiteral("Missed Files - Home, 2026-11-03 09:05:03"),
                               handlers.lstBackupLog_DblClick(form.lstBackupLog.rows[1]));
        expectGoodLooks(report, "frmMissedFiles-" + name);
    });
}

} // namespace
} // namespace vardelin::ui
