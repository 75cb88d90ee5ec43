#include "ui/open_profile_view.h"

#include "offscreen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

namespace vardelin::ui {
namespace {

// Three profiles, and handlers that let one row be ticked at a time.
class OpenProfile : public testing::Test {
protected:
    OpenProfile()
    {
        addRow("Home.vdp", "C:\\Vardelin\\Profiles\\", "11-02-2026 9:05:03 AM");
        addRow("Work.vdp", "C:\\Vardelin\\Profiles\\old\\", "11-01-2026 8:00:00 PM");
        addRow("gr\xc3\xbc\xc3\x9f"
               "e.vdp",
               "C:\\Vardelin\\Profiles\\", "10-31-2026 7:00:00 AM");
        handlers.lstOpen_ItemCheck = [this](std::size_t row) {
            did.push_back("tick " + std::to_string(row));
            bool other = false;
            for (std::size_t i = 0; i < form.lstOpen.rows.size(); ++i)
                other = other || (i != row && form.lstOpen.rows[i].checked);
            if (other)
                form.lstOpen.rows[row].checked = false;
            form.cmdClose.enabled = form.cmdSelProfile.enabled = !form.lstOpen.rows[row].checked;
        };
        handlers.lstOpen_ColumnClick = [this](std::size_t column) {
            did.push_back("sort " + std::to_string(column));
            form.descending =
                form.sorted && form.SortKey == static_cast<int>(column) && !form.descending;
            form.sorted = true;
            form.SortKey = static_cast<int>(column);
        };
        handlers.cmdOpen_Click = [this] {
            did.emplace_back("open");
            form.loaded = stays;
        };
        handlers.cmdClose_Click = [this] {
            did.emplace_back("close");
            form.loaded = false;
        };
        handlers.cmdSelProfile_Click = [this] { did.emplace_back("select"); };
    }
    void addRow(std::string_view name, std::string_view folder, std::string_view made)
    {
        state::ListRow& row = form.lstOpen.addItem(name);
        row.sub = folder;
        row.third = made;
    }
    static QPoint inRow(QTreeView& list, int row, int column)
    {
        return list.visualRect(list.model()->index(row, column)).center();
    }
    static void doubleClick(QTreeView& list, QPoint at)
    {
        // As a mouse does it: the second press is the double click.
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, at);
    }

    state::frmOpenProfile form;
    OpenProfileHandlers handlers;
    std::vector<std::string> did;
    bool stays = false; // the profile could not be opened
};

TEST_F(OpenProfile, ShowsThreeColumnsOfEveryProfile)
{
    form.Label1.caption = "Select The Profile :";
    OpenProfileView view(form, handlers);
    present(view);
    const auto& list = control<QTreeView>(view, "lstOpen");
    EXPECT_EQ(view.windowTitle(), "Open Profile");
    EXPECT_EQ(control<QLabel>(view, "Label1").text(), "Select The Profile :");
    ASSERT_EQ(list.model()->columnCount(), 3);
    EXPECT_EQ(list.model()->headerData(1, Qt::Horizontal).toString(), "Profile Location");
    EXPECT_EQ(list.model()->index(1, 1).data().toString(), "C:\\Vardelin\\Profiles\\old\\");
    EXPECT_EQ(list.model()->index(0, 2).data().toString(), "11-02-2026 9:05:03 AM");
    EXPECT_EQ(list.model()->index(2, 0).data().toString(), QStringLiteral("gr\u00fc\u00dfe.vdp"));
}

TEST_F(OpenProfile, ATickClosesTheOtherTwoButtonsAndASecondOneBounces)
{
    OpenProfileView view(form, handlers);
    present(view);
    auto& list = control<QTreeView>(view, "lstOpen");
    list.setCurrentIndex(list.model()->index(0, 2));
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_FALSE(control<QPushButton>(view, "cmdClose").isEnabled());
    EXPECT_FALSE(control<QPushButton>(view, "cmdSelProfile").isEnabled());
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(did, (std::vector<std::string>{"tick 0", "tick 1"}));
    EXPECT_EQ(list.model()->index(1, 0).data(Qt::CheckStateRole), Qt::Unchecked);
}

TEST_F(OpenProfile, ADoubleClickOrEnterTicksARowAndOpensItOnce)
{
    for (const bool byKey : {false, true}) {
        did.clear();
        form.loaded = true;
        for (state::ListRow& row : form.lstOpen.rows)
            row.checked = false;
        OpenProfileView view(form, handlers);
        present(view);
        auto& list = control<QTreeView>(view, "lstOpen");
        if (byKey) {
            list.setCurrentIndex(list.model()->index(1, 0));
            QTest::keyClick(&list, Qt::Key_Return);
        } else {
            doubleClick(list, inRow(list, 1, 1));
        }
        EXPECT_EQ(did, (std::vector<std::string>{"tick 1", "open"})) << byKey;
        EXPECT_FALSE(view.isVisible());
    }
}

TEST_F(OpenProfile, EnterOnARowThatCannotBeOpenedTriesItOnce)
{
    stays = true;
    OpenProfileView view(form, handlers);
    present(view);
    auto& list = control<QTreeView>(view, "lstOpen");
    list.setCurrentIndex(list.model()->index(0, 0));
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_EQ(did, (std::vector<std::string>{"tick 0", "open"}));
    EXPECT_TRUE(view.isVisible());
}

TEST_F(OpenProfile, ADoubleClickBesideATickElsewhereOpensNothing)
{
    form.lstOpen.rows[0].checked = true;
    OpenProfileView view(form, handlers);
    present(view);
    auto& list = control<QTreeView>(view, "lstOpen");
    doubleClick(list, inRow(list, 2, 1));
    EXPECT_EQ(did, std::vector<std::string>{"tick 2"});
}

TEST_F(OpenProfile, ADoubleClickOnABoxOnlyTicks)
{
    OpenProfileView view(form, handlers);
    present(view);
    auto& list = control<QTreeView>(view, "lstOpen");
    const QRect row = list.visualRect(list.model()->index(0, 0));
    doubleClick(list, {row.left() + 8, row.center().y()});
    EXPECT_EQ(std::count(did.begin(), did.end(), "open"), 0);
    EXPECT_GT(std::count(did.begin(), did.end(), "tick 0"), 0);
}

TEST_F(OpenProfile, HeadingsSortAndShowHow)
{
    OpenProfileView view(form, handlers);
    present(view);
    auto* header = control<QTreeView>(view, "lstOpen").header();
    EXPECT_FALSE(header->isSortIndicatorShown());
    const QPoint made(header->sectionViewportPosition(2) + 20, 5);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, made);
    EXPECT_TRUE(header->isSortIndicatorShown());
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::AscendingOrder);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, made);
    EXPECT_EQ(header->sortIndicatorSection(), 2);
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(did, (std::vector<std::string>{"sort 2", "sort 2"}));
}

TEST_F(OpenProfile, TheButtonsRunTheirHandlersAndClosingItIsNoAnswer)
{
    stays = true;
    OpenProfileView view(form, handlers);
    present(view);
    control<QPushButton>(view, "cmdSelProfile").click();
    control<QPushButton>(view, "cmdOpen").click();
    EXPECT_EQ(did, (std::vector<std::string>{"select", "open"}));
    EXPECT_TRUE(view.isVisible());
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(form.loaded) << "who asked for the form answers for it";
    present(view);
    control<QPushButton>(view, "cmdClose").click();
    EXPECT_FALSE(view.isVisible());
    EXPECT_FALSE(form.loaded);
}

} // namespace
} // namespace vardelin::ui
