#include "app_rig.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

// What the program does with an archive, on this machine's disk.
namespace vardelin {
namespace {

using platform::Answer;
using testing::Contains;
using testing::Not;

constexpr const char* kDone = "Backup is completed successfully";

class Archive : public testing::Test {
protected:
    void SetUp() override
    {
        for (int i = 0; i < kFiles; ++i)
            rig.folder.write("home/Documents/letter" + std::to_string(i) + ".txt",
                             std::string(5000, static_cast<char>('a' + i % 26)));
        rig.scripted = true;
        rig.start();
        rig.messageBoxes.shown.clear();
    }
    void run(const char* command) { rig.find<QAction>(command).trigger(); }
    // The window of the run, for as long as that goes on.
    static QWidget* cancelForm()
    {
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (window->objectName() == QLatin1String("frmCancel") && window->isVisible())
                return window;
        }
        return nullptr;
    }
    std::size_t copies() const
    {
        std::size_t found = 0;
        const std::filesystem::path root = rig.folder / "app/BackupPackages/Default";
        if (!std::filesystem::exists(root))
            return 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
            found += entry.path().filename().string().find(".txt_FULL") != std::string::npos;
        return found;
    }

    static constexpr int kFiles = 300;
    test::AppRig rig;
};

TEST_F(Archive, BackupNowSavesTheProfilesFilesBehindAWindowOfItsOwn)
{
    bool seen = false;
    bool gated = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (QWidget* const form = cancelForm()) {
            seen = seen || form->findChild<QLabel*>(QStringLiteral("lblBkpFileNames")) != nullptr;
            gated = gated || !rig.find<QAction>("mnuNew").isEnabled() ||
                    !rig.program->mainFrame.Toolbar1Enabled;
        }
    });
    watch.start(0);
    run("mnuBackup");
    watch.stop();

    EXPECT_TRUE(seen) << "a window tells of the run";
    EXPECT_TRUE(gated) << "and alone can be used";
    EXPECT_THAT(rig.messageBoxes.texts(), Contains(kDone));
    EXPECT_EQ(copies(), static_cast<std::size_t>(kFiles));
    EXPECT_EQ(rig.program->frame.panel1.text, "Backup is completed");
    QApplication::processEvents();
    EXPECT_EQ(cancelForm(), nullptr);
    EXPECT_TRUE(rig.program->mainFrame.Toolbar1Enabled);
}

TEST_F(Archive, ASecondBackupFindsNothingToDo)
{
    run("mnuBackup");
    rig.messageBoxes.shown.clear();
    run("mnuBackup");
    EXPECT_THAT(rig.messageBoxes.texts(), Contains("No files identified to Backup"));
}

TEST_F(Archive, CancelEndsABackupAndKeepsWhatIsSaved)
{
    rig.messageBoxes.answers = {Answer::Yes};
    // The disk gets slow once a few copies are begun: the run is not over before the button is
    // pressed, nor before it has seen that.
    std::atomic<int> begun = 0;
    std::atomic<bool> pressed = false;
    const auto windowsThread = std::this_thread::get_id();
    rig.script.onCallsNamed("folder.open", [&](const platform::CallScript::Call& call) {
        constexpr int kQuick = 20;
        constexpr std::chrono::milliseconds kSlow(5);
        if (std::this_thread::get_id() == windowsThread ||
            call.subject.find("BackupPackages") == std::string::npos || ++begun <= kQuick)
            return;
        do {
            std::this_thread::sleep_for(kSlow);
        } while (!pressed);
    });
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        QWidget* const form = cancelForm();
        if (pressed || form == nullptr)
            return;
        pressed = true;
        form->findChild<QPushButton*>(QStringLiteral("cmdCancel"))->click();
    });
    watch.start(0);
    run("mnuBackup");
    watch.stop();

    EXPECT_THAT(rig.messageBoxes.texts(), Contains("Do you want to cancel the Backup process?"));
    EXPECT_THAT(rig.messageBoxes.texts(), Not(Contains(kDone)));
    EXPECT_LT(copies(), static_cast<std::size_t>(kFiles));

    rig.script.reset();
    run("mnuBackup");
    EXPECT_EQ(copies(), static_cast<std::size_t>(kFiles)) << "the next run completes it";
}

// Opens row after row by the keyboard until a file's version is under the cursor.
void openDown(QAbstractItemView& list, const state::frmVDStorage& storage)
{
    constexpr std::size_t kDeepest = 40;
    list.setFocus();
    list.setCurrentIndex(list.model()->index(0, 0));
    for (std::size_t row = 0; row < kDeepest; ++row) {
        ASSERT_LT(row, storage.lstRestore.size());
        if (storage.lstRestore[row].file)
            return;
        QTest::keyClick(&list, Qt::Key_Right);
        QApplication::processEvents();
        QTest::keyClick(&list, Qt::Key_Down);
        QApplication::processEvents();
    }
}

TEST_F(Archive, TheReviewShowsTheCopiesAndARestoreBringsOneBack)
{
    run("mnuBackup");
    run("mnure");
    const state::frmVDStorage& storage = rig.program->archive.storage;
    ASSERT_TRUE(storage.loaded && storage.visible);
    EXPECT_EQ(storage.caption, "Restore - 'Default 'Profile");
    auto& list = rig.find<QAbstractItemView>("lstRestore");
    EXPECT_TRUE(list.isVisibleTo(&rig.program->window()));
    ASSERT_EQ(storage.lstRestore.front().text, "Files And Folders");
    openDown(list, storage);

    std::string key;
    for (const state::ReviewRow& row : storage.lstRestore) {
        if (row.selected)
            key = row.key;
    }
    ASSERT_THAT(key, testing::EndsWith("_000"));
    const std::string name = key.substr(key.rfind('\\') + 1, key.rfind('_') - key.rfind('\\') - 1);
    const std::filesystem::path original = rig.folder / ("home/Documents/" + name);
    ASSERT_TRUE(std::filesystem::exists(original)) << original;
    std::filesystem::remove(original);

    QTimer::singleShot(0, [] {
        QWidget* const form = QApplication::activeModalWidget();
        ASSERT_NE(form, nullptr);
        EXPECT_EQ(form->objectName(), "frmRestDialog");
        form->findChild<QPushButton*>(QStringLiteral("cmdOK"))->click();
    });
    rig.find<QAction>("mnuAsOf").trigger();
    EXPECT_EQ(rig.messageBoxes.shown.back().text, "File(s) have been successfully restored");
    EXPECT_TRUE(std::filesystem::exists(original));

    rig.messageBoxes.answers = {Answer::Yes};
    rig.find<QAction>("mnuDel").trigger();
    EXPECT_EQ(copies(), static_cast<std::size_t>(kFiles) - 1);
}

TEST_F(Archive, TheLogsTellOfTheRuns)
{
    run("mnuBackup");
    run("mnuBackLog");
    const state::frmLog& log = rig.program->archive.logForm;
    ASSERT_EQ(log.lstBackupLog.rows.size(), 1U);
    EXPECT_EQ(log.lstBackupLog.rows[0].text, "Default");
    EXPECT_EQ(log.lstBackupLog.rows[0].sub[0], "Full");
    EXPECT_EQ(log.lstBackupLog.rows[0].sub[2], std::to_string(kFiles));
    EXPECT_TRUE(rig.find<QWidget>("lstBackupLog").isVisibleTo(&rig.program->window()));
    run("mnuProfile");
    EXPECT_FALSE(rig.find<QWidget>("lstBackupLog").isVisibleTo(&rig.program->window()));
    EXPECT_TRUE(rig.find<QWidget>("frmProfile").isVisibleTo(&rig.program->window()));
}

// A backup has the archive to itself: of all windows, only its own can be used.
TEST_F(Archive, TheReviewCannotBeUsedWhileABackupRuns)
{
    run("mnuBackup");
    run("mnure");
    const state::frmVDStorage& storage = rig.program->archive.storage;
    auto& list = rig.find<QAbstractItemView>("lstRestore");
    openDown(list, storage);
    const std::size_t rows = storage.lstRestore.size();
    ASSERT_GT(rows, 1U);
    for (int i = 0; i < kFiles; ++i)
        rig.folder.write("home/Documents/more" + std::to_string(i) + ".txt", "new");
    rig.messageBoxes.shown.clear();
    rig.messageBoxes.defaultAnswer = Answer::Yes;
    int tried = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (cancelForm() == nullptr || tried++ > 0)
            return;
        for (const char* command : {"mnuDel", "mnuAsOf", "mnuByDate"})
            rig.find<QAction>(command).trigger();
        list.setCurrentIndex(list.model()->index(0, 0));
        QTest::keyClick(&list, Qt::Key_Left);
        QTest::keyClick(&list, Qt::Key_Delete);
        rig.find<QWidget>("frmVDStorage").close();
        rig.program->window().close();
    });
    watch.start(0);
    run("mnuBackup");
    watch.stop();

    EXPECT_GT(tried, 0);
    EXPECT_EQ(rig.messageBoxes.texts(), std::vector<std::string>{kDone});
    EXPECT_EQ(copies(), static_cast<std::size_t>(2 * kFiles));
    EXPECT_TRUE(storage.loaded);
    EXPECT_EQ(storage.lstRestore.size(), rows);
    EXPECT_TRUE(rig.find<QWidget>("frmVDStorage").isVisibleTo(&rig.program->window()));
}

// The rows that are restored must not go away under the restore, nor the program.
TEST_F(Archive, NothingClosesTheReviewWhileARestoreRuns)
{
    run("mnuBackup");
    run("mnure");
    const state::frmVDStorage& storage = rig.program->archive.storage;
    rig.find<QAbstractItemView>("lstRestore").selectAll();
    rig.messageBoxes.shown.clear();
    rig.messageBoxes.defaultAnswer = Answer::Yes;
    int tried = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!rig.program->archive.restore.running || tried++ > 0)
            return;
        rig.find<QWidget>("frmVDStorage").close();
        rig.find<QAction>("mnuDel").trigger();
        for (const char* command : {"mnuNew", "mnuClose", "mnuBackup", "mnure", "mnuExit"})
            rig.find<QAction>(command).trigger();
        rig.program->window().close();
        EXPECT_TRUE(storage.loaded && !storage.lstRestore.empty());
    });
    watch.start(0);
    QTimer::singleShot(0, [] {
        QApplication::activeModalWidget()
            ->findChild<QPushButton*>(QStringLiteral("cmdOK"))
            ->click();
    });
    rig.find<QAction>("mnuAsOf").trigger();
    watch.stop();
    EXPECT_GT(tried, 0);
    EXPECT_TRUE(storage.loaded);
    EXPECT_FALSE(storage.busy || rig.program->mainFrame.commandRunning);
    EXPECT_EQ(copies(), static_cast<std::size_t>(kFiles));
    EXPECT_THAT(rig.messageBoxes.texts(), Not(Contains(kDone)));
    rig.find<QWidget>("frmVDStorage").close();
    EXPECT_FALSE(storage.loaded) << "behind it the review closes";
}

// What is on show belongs to the profile that was there.
TEST_F(Archive, ANewProfileClosesTheReviewOfTheFormerOne)
{
    run("mnuBackup");
    run("mnure");
    ASSERT_TRUE(rig.program->archive.reviewIsOpen);
    run("mnuNew");
    EXPECT_FALSE(rig.program->archive.reviewIsOpen || rig.program->archive.storage.loaded);
    EXPECT_FALSE(rig.find<QWidget>("lstRestore").isVisibleTo(&rig.program->window()));
    EXPECT_TRUE(rig.find<QWidget>("frmProfile").isVisibleTo(&rig.program->window()));
}

// The review of a small archive, in front.
class ReviewInFront : public testing::Test {
protected:
    void SetUp() override
    {
        rig.folder.write("home/Documents/letter.txt", "a letter");
        rig.start();
        run("mnuBackup");
        run("mnure");
        rig.messageBoxes.shown.clear();
        ASSERT_TRUE(parts().reviewIsOpen);
        list().setFocus();
        list().setCurrentIndex(list().model()->index(0, 0));
    }
    void run(const char* command) { rig.find<QAction>(command).trigger(); }
    app::ArchiveParts& parts() { return rig.program->archive; }
    QAbstractItemView& list() { return rig.find<QAbstractItemView>("lstRestore"); }
    bool isInFront() { return list().isVisibleTo(&rig.program->window()); }

    test::AppRig rig;
};

// A run lets events through, and so does a restore: what a person does to the rows meanwhile would
// take them away from under it.
TEST_F(ReviewInFront, TakesNothingWhileACommandRuns)
{
    const std::size_t rows = parts().storage.lstRestore.size();
    parts().storage.lstRestore.back().selected = true;
    rig.program->mainFrame.commandRunning = true;
    bool windows = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (QWidget* const window = QApplication::activeModalWidget())
            windows = window->close();
    });
    watch.start(0);
    QTest::keyClick(&list(), Qt::Key_Right);
    QTest::keyClick(&list(), Qt::Key_Menu);
    for (const char* name : {"mnuDel", "mnuAsOf", "mnuByDate", "mnure", "mnuBackLog"})
        run(name);
    rig.find<QWidget>("frmVDStorage").findChild<QPushButton*>("cmdClose")->click();
    EXPECT_EQ(parts().storage.lstRestore.size(), rows);
    EXPECT_TRUE(rig.messageBoxes.shown.empty());
    QApplication::processEvents();
    EXPECT_FALSE(windows);
    EXPECT_TRUE(parts().reviewIsOpen && parts().storage.loaded && isInFront());

    rig.program->mainFrame.commandRunning = false;
    QTest::keyClick(&list(), Qt::Key_Right);
    EXPECT_GT(parts().storage.lstRestore.size(), rows);
}

// Nor does a command begin while rows are opened or deleted: a new profile would unload them.
TEST_F(ReviewInFront, LetsNoCommandBeginWhileItWorks)
{
    parts().storage.lstRestore.front().selected = true;
    bool tried = false;
    rig.messageBoxes.script().onCallsNamed("boxes.show", [&](const auto&) {
        if (std::exchange(tried, true))
            return;
        run("mnuNew");
        run("mnuClose");
        rig.program->window().close();
    });
    run("mnuDel");
    EXPECT_TRUE(tried);
    EXPECT_THAT(rig.messageBoxes.texts(),
                testing::ElementsAre("Do you want to delete the selected item?"));
    EXPECT_TRUE(parts().reviewIsOpen && isInFront());
    EXPECT_FALSE(rig.program->mainFrame.commandRunning);
}

TEST_F(ReviewInFront, IsClosedWithTheFrameAndKeepsTheKeyboard)
{
    rig.program->mainFrame.editorEnabled = false;
    rig.program->showRecords();
    EXPECT_FALSE(list().isEnabled());
    rig.program->mainFrame.editorEnabled = true;
    rig.program->showRecords();
    EXPECT_TRUE(list().isEnabled());
    EXPECT_EQ(rig.program->window().focusWidget(), &list());
}

// Its list is made anew for it: the last backup may have been another profile's.
TEST_F(ReviewInFront, OfAnUncompressedArchiveShowsItsOwnFiles)
{
    for (int looks = 0; looks < 2; ++looks) {
        rig.find<QWidget>("frmVDStorage").findChild<QPushButton*>("cmdClose")->click();
        ASSERT_FALSE(parts().reviewIsOpen);
        rig.folder.write("app/Data/ReviewFiles.txt", "Files And Folders\\Q:\\other.txt_000\r\n");
        rig.program->store.scalars.bCompressFiles = false;
        run("mnure");
        ASSERT_TRUE(parts().reviewIsOpen);
        list().setCurrentIndex(list().model()->index(0, 0));
        QTest::keyClick(&list(), Qt::Key_Right);
        ASSERT_GT(parts().storage.lstRestore.size(), 1U);
        EXPECT_EQ(parts().storage.lstRestore[1].text, "C:");
    }
    EXPECT_TRUE(rig.errorDialog.shown.empty());
}

TEST_F(ReviewInFront, GoesWithTheLogsWhereTheProfileIsClosed)
{
    run("mnuBackLog");
    ASSERT_TRUE(parts().logForm.loaded);
    run("mnuClose");
    EXPECT_FALSE(parts().logForm.loaded || parts().storage.loaded || parts().reviewIsOpen);
    EXPECT_FALSE(isInFront() ||
                 rig.find<QWidget>("lstBackupLog").isVisibleTo(&rig.program->window()));
}

// The editor may be in front, and what it holds may be refused.
TEST_F(ReviewInFront, StaysBehindTheEditorWhereItsCommandStops)
{
    run("mnuProfile");
    ASSERT_FALSE(isInFront());
    rig.program->frame.ST_Current_Profile_Path.clear();
    run("mnure");
    EXPECT_THAT(rig.messageBoxes.texts(),
                Contains("New Profile (or) Edit Profile hasn't been saved or Backedup to review "
                         "Archive"));
    EXPECT_FALSE(isInFront());
}

} // namespace
} // namespace vardelin
