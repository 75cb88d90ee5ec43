#include "app_rig.h"

#include <map>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QTabWidget>
#include <QTest>
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

TEST_F(Program, TheTreeHasTheKeyboardAndOpensADrive)
{
    const app::Application& program = rig.start();
    QWidget* const focus =
        program.editor.tvwDirectory.count() > 0 ? QApplication::focusWidget() : nullptr;
    ASSERT_EQ(focus, &rig.find<QTreeView>("tvwDirectory"));
    QTest::keyClick(focus, Qt::Key_Right);
    EXPECT_TRUE(program.editor.tvwDirectory.node(1).expanded);
    EXPECT_GT(program.editor.tvwDirectory.count(), 3U);
}

TEST_F(Program, AControlRunsItsHandlerAndEveryViewShowsWhatCameOfIt)
{
    app::Application& program = rig.start();
    rig.find<QCheckBox>("chkIdle").click();
    EXPECT_EQ(rig.find<QLineEdit>("txtIdleTime").text(), "15");
    EXPECT_TRUE(program.frame.BL_Edit_Changed);
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

// A key that two controls share runs neither: it only goes from one to the other.
TEST_F(Program, NoTwoControlsOnShowShareAMnemonic)
{
    const app::Application& program = rig.start();
    auto& tabs = rig.find<QTabWidget>("SSTab1");
    for (int tab = 0; tab < tabs.count(); ++tab) {
        tabs.setCurrentIndex(tab);
        std::map<QString, QString> taken;
        std::string clashes;
        const auto take = [&](const QString& text) {
            const QString key = QKeySequence::mnemonic(text).toString();
            if (!key.isEmpty() && !taken.emplace(key, text).second)
                clashes += text.toStdString() + " and " + taken[key].toStdString() + "; ";
        };
        const QMainWindow& window = rig.program->window();
        for (const QAction* menu : window.menuBar()->actions())
            take(menu->text());
        for (const auto* label : window.findChildren<QLabel*>()) {
            if (label->isVisible() && label->buddy() != nullptr)
                take(label->text());
        }
        for (const auto* button : window.findChildren<QAbstractButton*>()) {
            if (button->isVisible())
                take(button->text());
        }
        EXPECT_GE(taken.size(), 7U) << "nothing was looked at";
        EXPECT_EQ(clashes, "") << "page " << tab << " of " << program.profileForm.caption;
    }
}

} // namespace
} // namespace vardelin
