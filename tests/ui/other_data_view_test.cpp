#include "ui/other_data_view.h"

#include "editor/extension_lists.h"
#include "editor/other_data_form.h"
#include "editor/pages_rig.h"
#include "ui/editor_form_handlers.h"

#include "offscreen.h"

#include <gtest/gtest.h>

#include <string>

#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

namespace vardelin::ui {
namespace {

// The form over the editor's logic, with a ticked source and four known extensions.
class OtherData : public testing::Test, protected test::PagesRig {
protected:
    OtherData()
    {
        shell.types[".avi"] = {"Video", "video-x-generic"};
        shell.types[".zip"] = {"Archive", "package-x-generic"};
        shell.types.erase(".jpg");
        put({"D:\\a\\one.txt"});
        newMode();
        editor::BuildDriveList(editing);
        tick("D:\\");
        editor::ListInclForFileExt(pages);
    }

    // What a person does while the form is open.
    void whileOpen(const std::function<void(OtherDataView&)>& action, bool byNames = true)
    {
        window.inOtherdata = [&] {
            OtherDataView view(record, pagesForm.otherdata, otherDataHandlers(pages));
            present(view);
            action(view);
            open = view.isVisible();
        };
        if (byNames)
            editor::cmdExclInclByNames_Click(pages);
        else
            editor::cmdExclude_Click(pages);
    }

    static void clickRow(QTreeView& list, int row, int column = 0)
    {
        const QRect box = list.visualRect(list.model()->index(row, column));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                          column == 0 ? QPoint(box.left() + 8, box.center().y()) : box.center());
    }

    bool open = false; // as the person left it
};

TEST_F(OtherData, NamesThatFitCloseItAndStay)
{
    whileOpen([](OtherDataView& view) {
        EXPECT_EQ(view.windowTitle(), "FileOptions");
        EXPECT_TRUE(control<QWidget>(view, "fmeFilesByNames").isEnabled());
        EXPECT_FALSE(control<QWidget>(view, "fmeExclude").isEnabled());
        QTest::keyClicks(&control<QLineEdit>(view, "txtInclNames"), "A*.*,<b?>|");
        QTest::keyClick(&control<QLineEdit>(view, "txtInclNames"), Qt::Key_Return);
    });
    EXPECT_FALSE(open);
    EXPECT_EQ(record.txtInclNames.text, "A*.*,b") << "characters that no name has are not typed";
    EXPECT_TRUE(frame.BL_New_Changed);
}

TEST_F(OtherData, NamesThatDoNotFitKeepItOpenHoweverItIsLeft)
{
    whileOpen([](OtherDataView& view) {
        QTest::keyClicks(&control<QLineEdit>(view, "txtExclNames"), "* . *");
        control<QPushButton>(view, "cmdSetOK").click();
        EXPECT_EQ(control<QLineEdit>(view, "txtExclNames").text(), "*.*");
        QTest::keyClick(&view, Qt::Key_Escape);
        view.close();
    });
    EXPECT_TRUE(open);
    EXPECT_EQ(messages(),
              std::vector<std::string>(
                  3, "*.* option is not applicable for Include\\Exclude Files by names"));
}

TEST_F(OtherData, EscapeClosesItAndClearsNothing)
{
    record.txtInclNames.text = "Tech*.*";
    whileOpen([](OtherDataView& view) { QTest::keyClick(&view, Qt::Key_Escape); });
    EXPECT_FALSE(open);
    EXPECT_EQ(record.txtInclNames.text, "Tech*.*");
}

TEST_F(OtherData, ClearEmptiesTheBoxesAndTakesTheTicksBack)
{
    record.txtInclNames.text = "Tech*.*";
    whileOpen(
        [&](OtherDataView& view) {
            clickRow(control<QTreeView>(view, "lstExclude"), 1);
            EXPECT_EQ(store.save.clxnExcluded.items(), std::vector<std::string>{".doc"});
            control<QPushButton>(view, "cmdCancel").click();
        },
        false);
    EXPECT_FALSE(open);
    EXPECT_EQ(record.txtInclNames.text, "");
    EXPECT_EQ(store.save.clxnExcluded.count(), 0U);
}

TEST_F(OtherData, ATickWithoutASourceBouncesInTheList)
{
    untick("D:\\");
    store.scalars.SourceChecked = false;
    whileOpen(
        [&](OtherDataView& view) {
            auto& list = control<QTreeView>(view, "lstExclude");
            clickRow(list, 2);
            EXPECT_EQ(list.model()->index(2, 0).data(Qt::CheckStateRole), Qt::Unchecked);
        },
        false);
    EXPECT_EQ(messages(), std::vector<std::string>{"Select any Files/Folders to Backup"});
}

TEST_F(OtherData, TheBlankTicksTheRowAndHeadingsSort)
{
    whileOpen(
        [&](OtherDataView& view) {
            auto& list = control<QTreeView>(view, "lstExclude");
            clickRow(list, 3, 1);
            QTest::keyClick(&list, Qt::Key_Space);
            EXPECT_EQ(store.save.clxnExcluded.items(), std::vector<std::string>{".zip"});
            auto* headings = list.header()->viewport();
            const QPoint type(list.header()->sectionViewportPosition(1) + 20, 5);
            QTest::mouseClick(headings, Qt::LeftButton, {}, type);
            EXPECT_EQ(list.model()->index(0, 1).data().toString(), "Archive");
            EXPECT_EQ(list.currentIndex().row(), 0) << "the row stands out where it moved to";
            EXPECT_EQ(list.header()->sortIndicatorSection(), 1);
            EXPECT_EQ(list.header()->sortIndicatorOrder(), Qt::AscendingOrder);
            QTest::mouseClick(headings, Qt::LeftButton, {}, type);
            EXPECT_EQ(list.model()->index(0, 1).data().toString(), "Word document");
            EXPECT_EQ(list.header()->sortIndicatorOrder(), Qt::DescendingOrder);
        },
        false);
}

TEST_F(OtherData, AViewShowsTheSavedExclusionsAndTakesNothing)
{
    viewMode();
    store.opened.clxnOpenedExcluded.add(".zip", ".zip");
    whileOpen([](OtherDataView& view) {
        auto& list = control<QTreeView>(view, "lstExclude");
        EXPECT_EQ(list.model()->rowCount(), 1);
        EXPECT_EQ(list.model()->index(0, 0).data(Qt::CheckStateRole), Qt::Checked);
        EXPECT_FALSE(control<QWidget>(view, "txtInclNames").isEnabled());
        control<QPushButton>(view, "cmdCancel").click();
    });
    EXPECT_FALSE(open);
    EXPECT_FALSE(frame.BL_Edit_Changed);
}

} // namespace
} // namespace vardelin::ui
