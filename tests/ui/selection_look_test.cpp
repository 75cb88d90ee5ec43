#include "ui/selection_look.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <QColor>

namespace vardelin::ui {
namespace {

constexpr double kReadable = 4.5;

TEST(SelectionLook, ATickCountsInItsTwoColoursOnly)
{
    struct Row {
        bool checked;
        std::uint32_t color;
        Selection selection;
        Qt::CheckState box;
    };
    for (const Row& row : {Row{true, 0x808000, Selection::Wholly, Qt::Checked},
                           Row{true, 0x800080, Selection::Partly, Qt::PartiallyChecked},
                           Row{true, 0, Selection::None, Qt::Unchecked},
                           Row{true, 0x80000008, Selection::None, Qt::Unchecked},
                           Row{false, 0x808000, Selection::None, Qt::Unchecked},
                           Row{false, 0x800080, Selection::None, Qt::Unchecked}}) {
        state::TreeView tree;
        state::TreeNode& node = tree.add(nullptr, {"a", "a"});
        node.checked = row.checked;
        node.foreColor = row.color;
        EXPECT_EQ(selectionOf(node), row.selection) << row.checked << " " << row.color;
        EXPECT_EQ(boxOf(row.selection), row.box);
    }
}

TEST(SelectionLook, ColoursAreOfRecordsAndNotOfRgb)
{
    EXPECT_EQ(textColorOf(Selection::Wholly, Qt::white, Qt::black), QColor(0, 0x80, 0x80));
    EXPECT_EQ(textColorOf(Selection::Partly, Qt::white, Qt::black), QColor(0x80, 0, 0x80));
    EXPECT_EQ(textColorOf(Selection::None, Qt::white, Qt::black), QColor(Qt::black));
}

TEST(SelectionLook, ContrastIsThatOfTheGuidelines)
{
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21.0, 0.01);
    EXPECT_NEAR(contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.01);
    EXPECT_NEAR(contrast(Qt::red, Qt::red), 1.0, 0.001);
}

TEST(SelectionLook, EveryColourIsReadableOnEveryBackgroundAndKeepsItsHue)
{
    for (int red = 0; red <= 255; red += 51) {
        for (int green = 0; green <= 255; green += 51) {
            for (int blue = 0; blue <= 255; blue += 51) {
                const QColor background(red, green, blue);
                for (const Selection selection : {Selection::Wholly, Selection::Partly}) {
                    const QColor color = textColorOf(selection, background, Qt::black);
                    ASSERT_GE(contrast(color, background), kReadable)
                        << background.name().toStdString();
                    const int hue = selection == Selection::Wholly ? 180 : 300;
                    // Next to black and white there is no hue left to keep.
                    if (color.lightness() > 10 && color.lightness() < 245) {
                        ASSERT_LE(std::abs(color.hslHue() - hue), 3)
                            << background.name().toStdString();
                    }
                }
            }
        }
    }
}

} // namespace
} // namespace vardelin::ui
