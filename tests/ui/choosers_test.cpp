#include "ui/choosers.h"

#include "platform/linux/linux_file_system.h"
#include "platform/memory/scripted_message_boxes.h"
#include "support/temp_folder.h"
#include "support/trace_rig.h"

#include "offscreen.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QUrl>

namespace vardelin::ui {
namespace {

// A machine whose one drive, X:, is a folder of its own; nothing else has a letter.
class Choosers : public testing::Test, protected test::TraceRig {
protected:
    Choosers()
    {
        folder.write("photos/2026/a.jpg", "x");
        folder.write("profiles/Work.vdp", "x");
    }

    // The person types a path into the dialog and presses Enter.
    static void chooseIn(QDialog& window, const std::string& native)
    {
        auto& name = control<QLineEdit>(window, "fileNameEdit");
        name.setText(QString::fromStdString(native));
        QTest::keyClick(&name, Qt::Key_Return);
    }
    std::string browse(std::string_view start)
    {
        return BrowseForFolder(choosing, nullptr, "Select the folder", start);
    }

    test::TempFolder folder;
    platform::LinuxFileSystem files{std::make_shared<const platform::DriveMap>(
        std::vector<platform::DriveRoot>{{'X', folder.path()}})};
    ChooserContext choosing{files, messageBoxes, context};
};

TEST_F(Choosers, AFolderComesInDriveFormWithABackslash)
{
    whenShown([&](QDialog& window) {
        EXPECT_EQ(window.objectName(), "BrowseForFolder");
        EXPECT_EQ(window.windowTitle(), "Select the folder");
        chooseIn(window, folder / "photos/2026");
    });
    EXPECT_EQ(browse("X:\\"), "X:\\photos\\2026\\");
    EXPECT_TRUE(messageBoxes.shown.empty());
}

TEST_F(Choosers, ADrivesRootKeepsASingleBackslash)
{
    whenShown([&](QDialog& window) { chooseIn(window, folder.path()); });
    EXPECT_EQ(browse("X:\\photos\\"), "X:\\");
}

TEST_F(Choosers, TheChoiceBeginsAtTheStartOrTheNearestFolderAboveIt)
{
    for (const auto& [start, begun] : {std::pair{"X:\\photos\\2026\\", "photos/2026"},
                                       std::pair{"X:\\photos\\gone\\far", "photos"}}) {
        const std::string native = folder / begun;
        whenShown([&](QDialog& window) {
            auto& picker = dynamic_cast<QFileDialog&>(window);
            EXPECT_EQ(picker.directory().absolutePath().toStdString(), native);
            picker.reject();
        });
        EXPECT_EQ(browse(start), "") << "cancelled";
    }
    whenShown([&](QDialog& window) {
        EXPECT_EQ(dynamic_cast<QFileDialog&>(window).directory(), QDir::home());
        window.reject();
    });
    browse("Q:\\no\\such\\drive");
}

TEST_F(Choosers, AFolderThatNoDriveReachesIsRefusedAndTheChoiceGoesOn)
{
    whenShown([&](QDialog& window) {
        whenShown([&](QDialog& again) { chooseIn(again, folder / "photos"); });
        chooseIn(window, "/usr");
    });
    EXPECT_EQ(browse("X:\\"), "X:\\photos\\");
    ASSERT_EQ(messageBoxes.shown.size(), 1U);
    EXPECT_EQ(messageBoxes.shown[0].text, "This Drive\\Folder selection is not acceptable one");
    EXPECT_EQ(messageBoxes.shown[0].title, "Vardelin");
}

TEST_F(Choosers, AFolderThatCannotBeReadIsNotUsable)
{
    EXPECT_EQ(usableFolder(files, folder / "photos"), "X:\\photos\\");
    EXPECT_EQ(usableFolder(files, folder / "gone"), "");
    EXPECT_EQ(usableFolder(files, folder / "profiles/Work.vdp"), "") << "no folder";
    disk.createFolders("C:\\photos");
    const std::string native = disk.toNative("C:\\photos");
    EXPECT_EQ(usableFolder(disk, native), "C:\\photos\\");
    platform::CallScript script;
    script.failCallsNamed("folder.list", base::error_number::kPermissionDenied);
    platform::ScriptedFileSystem unreadable(disk, script);
    EXPECT_EQ(usableFolder(unreadable, native), "");
}

TEST_F(Choosers, AFileComesInDriveForm)
{
    QtFileChooser chooser(choosing);
    whenShown([&](QDialog& window) {
        auto& picker = dynamic_cast<QFileDialog&>(window);
        EXPECT_EQ(picker.windowTitle(), "Selecting Profiles");
        EXPECT_EQ(picker.nameFilters(), QStringList{"(*.vdp)"});
        EXPECT_EQ(picker.directory().absolutePath().toStdString(), folder / "profiles");
        EXPECT_EQ(control<QLineEdit>(window, "fileNameEdit").text(), "");
        chooseIn(window, folder / "profiles/Work.vdp");
    });
    EXPECT_EQ(chooser.chooseFile("Selecting Profiles", "(*.vdp)|*.vdp|", "X:\\profiles"),
              "X:\\profiles\\Work.vdp");
}

TEST_F(Choosers, ANameThatDoesNotExistIsTheCallersToAnswer)
{
    QtFileChooser chooser(choosing);
    whenShown([&](QDialog& window) { chooseIn(window, folder / "profiles/None"); });
    EXPECT_EQ(chooser.chooseFile("Selecting Profiles", "(*.vdp)|*.vdp|", "X:\\profiles"),
              "X:\\profiles\\None.vdp");
    whenShown([](QDialog& window) { window.reject(); });
    EXPECT_EQ(chooser.chooseFile("Selecting Profiles", "(*.vdp)|*.vdp|", "X:\\profiles"), "");
    whenShown([](QDialog& window) { chooseIn(window, "/etc/None"); });
    EXPECT_EQ(chooser.chooseFile("Selecting Profiles", "(*.vdp)|*.vdp|", "X:\\profiles"), "");
    EXPECT_EQ(messageBoxes.shown.size(), 1U) << "no drive reaches it";
}

} // namespace
} // namespace vardelin::ui
