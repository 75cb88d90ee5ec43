#include "app_rig.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QTreeView>

namespace vardelin {
namespace {

class Program : public testing::Test {
protected:
    void TearDown() override { QApplication::setFont(m_font); }

    test::AppRig rig;

private:
    QFont m_font = QApplication::font();
};

TEST_F(Program, ShowsTheEditorWithTheDrivesOfThisMachine)
{
    app::Application& program = rig.start();
    EXPECT_TRUE(program.window().isVisible());
    ASSERT_GE(program.editor.tvwDirectory.count(), 1U);
    EXPECT_EQ(program.editor.tvwDirectory.node(1).text, "C:");
    EXPECT_TRUE(rig.find<QTreeView>("tvwDirectory").isVisible());
    EXPECT_TRUE(rig.errorDialog.shown.empty());
    EXPECT_TRUE(rig.messageBoxes.shown.empty());
}

TEST_F(Program, AControlRunsItsHandlerAndEveryViewShowsWhatCameOfIt)
{
    app::Application& program = rig.start();
    rig.find<QCheckBox>("chkIdle").click();
    EXPECT_EQ(rig.find<QLineEdit>("txtIdleTime").text(), "15");
    EXPECT_TRUE(program.frame.BL_New_Changed);
}

TEST_F(Program, TheFrameFitsASmallScreenAtALargeFontAndKeepsItsSize)
{
    QFont font = QApplication::font();
    font.setPointSize(14);
    QApplication::setFont(font);
    const QWidget& window = rig.start().window();
    EXPECT_LE(window.minimumSizeHint().width(), 1280);
    EXPECT_LE(window.minimumSizeHint().height(), 720);
    const QSize size = window.size();
    rig.program->window().resize(size + QSize(100, 100));
    EXPECT_EQ(window.size(), size);
}

} // namespace
} // namespace vardelin
