#include "ui/main_window.h"
#include "ui/profile_form.h"

#include "offscreen.h"
#include "recorded_commands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QToolBar>

namespace vardelin::ui {
namespace {

class Window : public testing::Test {
protected:
    void TearDown() override { QApplication::setPalette(QPalette()); }

    state::MainFrameForm form;
    state::FrameState frame;
    RecordedCommands commands;
    state::ProfileEditorState record;
    state::ProfileFormState help;
};

TEST_F(Window, EveryMenuEntryRunsTheCommandOfItsName)
{
    MainWindow window(form, frame, commands);
    std::vector<std::string> names;
    for (const QMenu* menu : window.findChildren<QMenu*>()) {
        for (QAction* action : menu->actions()) {
            if (!action->objectName().startsWith("mnu"))
                continue;
            names.push_back(action->objectName().toStdString());
            action->trigger();
        }
    }
    EXPECT_EQ(names.size(), 18U);
    EXPECT_EQ(commands.ran, names);
}

TEST_F(Window, TheLogButtonsListOpensThreeLogs)
{
    MainWindow window(form, frame, commands);
    const auto* toolbar = window.findChild<QToolBar*>("Toolbar1");
    const auto* menu =
        toolbar->widgetForAction(toolbar->actions().constLast())->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    std::vector<std::string> tips;
    for (QAction* action : menu->actions()) {
        action->trigger();
        tips.push_back(action->toolTip().toStdString());
    }
    // The two tool texts are spelt so on purpose.
    EXPECT_EQ(tips, (std::vector<std::string>{"Backup Logg", "Restore Logg", "Queue Log"}));
    EXPECT_EQ(commands.ran, (std::vector<std::string>{"mnuBackLog", "mnuRestLog", "mnudispQ"}));
}

TEST_F(Window, ShowsWhatTheRecordsSay)
{
    MainWindow window(form, frame, commands);
    frame::DisAbleMenu(form);
    frame.panel1.text = "Displaying Default Profile...";
    frame.pb.maximum = 40;
    frame.pb.value = 10;
    window.resize(1000, 700);
    window.show();
    window.showRecords();
    EXPECT_FALSE(window.findChild<QAction*>("mnuSave")->isEnabled());
    EXPECT_FALSE(window.findChild<QAction*>("Toolbar1_4")->isEnabled());
    EXPECT_TRUE(window.findChild<QAction*>("mnuNew")->isEnabled());
    EXPECT_EQ(window.findChild<QLabel*>("panel1")->text(), "Displaying Default Profile...");
    const auto* bar = window.findChild<QProgressBar*>("pb");
    EXPECT_EQ(bar->value() * 4, bar->maximum());
}

TEST_F(Window, AButtonTellsWhatItsCommandHasMadeOfItsToolTip)
{
    MainWindow window(form, frame, commands);
    window.showRecords();
    const auto* button = window.findChild<QAction*>("Toolbar1_8");
    EXPECT_EQ(button->toolTip(), "Backup Now");
    form.Toolbar1(8).toolTip = "BackupNow";
    window.showRecords();
    EXPECT_EQ(button->toolTip(), "BackupNow");
}

// Opening a profile for changes leaves its bar full, and nothing empties it.
TEST_F(Window, AFullBarStandsOnlyWhileACommandRuns)
{
    MainWindow window(form, frame, commands);
    const auto* bar = window.findChild<QProgressBar*>("pb");
    frame.pb.maximum = frame.pb.value = 100;
    form.commandRunning = true;
    window.showRecords();
    EXPECT_EQ(bar->value(), bar->maximum());
    form.commandRunning = false;
    window.showRecords();
    EXPECT_EQ(bar->value(), 0);
}

// Empty it would look like a box to write in.
TEST_F(Window, TheBarIsSeenOnlyWhileThereIsSomethingToTell)
{
    MainWindow window(form, frame, commands);
    const auto* bar = window.findChild<QProgressBar*>("pb");
    frame.pb.maximum = 100;
    window.showRecords();
    EXPECT_FALSE(bar->isVisibleTo(&window));
    frame.pb.value = 40;
    window.showRecords();
    EXPECT_TRUE(bar->isVisibleTo(&window));
    frame.pb.value = 100;
    window.showRecords();
    EXPECT_FALSE(bar->isVisibleTo(&window));
    form.commandRunning = true;
    window.showRecords();
    EXPECT_TRUE(bar->isVisibleTo(&window));
}

TEST_F(Window, ClosingItAsksTheExitCommand)
{
    MainWindow window(form, frame, commands);
    window.show();
    EXPECT_FALSE(window.close()) << "the command decides";
    EXPECT_EQ(commands.ran, std::vector<std::string>{"mnuExit"});
    EXPECT_TRUE(window.isVisible());
}

// A profile with something on every page.
void fill(state::ProfileEditorState& record, state::ProfileFormState& help)
{
    for (const char* extension : {".avi", ".bmp", ".cpp", ".doc", ".gif", ".html", ".jpg"})
        record.lstInclude.addItem(extension).sub = "Document";
    record.lstInclude.rows[3].checked = true;
    record.lstOtherData.rows[1].selected = true;
    record.CmbDestDrives.items = {"Local Drives[C:]", "Local Drives[D:]"};
    record.CmbDestDrives.text = "Local Drives[D:]";
    record.txtDestLoc.text = "D:\\BackupPackages";
    record.chkIdle.value = 1;
    record.txtIdleTime.text = "15";
    record.chkAutoSched.value = 1;
    for (state::Frame* frame : {&record.Frame3, &record.Frame4, &record.Frame5})
        frame->enabled = true;
    record.Frame6.visible = false;
    record.Frame7.visible = true;
    record.optWeekly.value = true;
    record.lstWeekDays.clear();
    state::fillDayNames(record.lstWeekDays);
    record.lstWeekDays.rows[2].selected = true;
    record.txtWeeklyRecur.text = "1";
    record.dtpStDate.value = {{2026, 11, 21}, {9, 5, 3}};
    record.dtpStTime.value = record.dtpStDate.value;
    record.dtpWeekly.value = record.dtpStDate.value;
    help.highlightedLabel = 33;
    help.Label37 = "Profile is a set of selected files/folders and settings\r\nwith which a "
                   "backup can be taken.Profile is created with\r\nthe extension .vdp.";
    help.Label35 = "Backup media and location can be selected.\r\n\r\nOptions are provided to "
                   "compress and encrypt data(compression is supported by default).";
}

TEST_F(Window, NothingIsClippedInEitherPaletteAtEitherSize)
{
    fill(record, help);
    for (const bool dark : {false, true}) {
        for (const int points : {9, 14}) {
            QApplication::setPalette(dark ? darkPalette() : QPalette());
            QFont font = QApplication::font();
            font.setPointSize(points);
            QApplication::setFont(font);
            MainWindow window(form, frame, commands);
            auto* profile = new ProfileForm(record, help, {});
            window.addForm(profile);
            window.show();
            window.resize(window.minimumSizeHint().expandedTo({1020, 740}));
            for (int tab = 0; tab < 3; ++tab) {
                profile->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(tab);
                window.showRecords();
                keepPicture(window, std::string(dark ? "dark" : "light") + "-" +
                                        std::to_string(points) + "pt-page" + std::to_string(tab));
                EXPECT_EQ(clippedIn(window), "") << "page " << tab << ", " << points << " points";
            }
        }
    }
}

} // namespace
} // namespace vardelin::ui
