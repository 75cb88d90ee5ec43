#include "app_rig.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QPushButton>
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
    bool pressed = false;
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

    run("mnuBackup");
    EXPECT_EQ(copies(), static_cast<std::size_t>(kFiles)) << "the next run completes it";
}

} // namespace
} // namespace vardelin
