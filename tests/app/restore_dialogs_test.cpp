#include "archive_story.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCalendarWidget>
#include <QClipboard>
#include <QDate>
#include <QDialog>

// The dialogs in front of a restore, on the program's own records.
namespace vardelin {
namespace {

using test::treeOf;
using testing::ElementsAre;
using testing::IsEmpty;

class RestoreDialogs : public test::ArchiveStory {
protected:
    void savedAndSelected()
    {
        begin();
        backUp();
        openReview();
        openDown({"letters"});
        select({source("letters\\one.txt_000")});
        rig.messageBoxes.shown.clear();
    }
    void inLocation(std::function<void(QWidget&)> act)
    {
        inForm("frmRestDialog", std::move(act));
        run("mnuAsOf");
    }
    static void chooseAlternate(QWidget& form)
    {
        QTest::keyClick(&in<QComboBox>(form, "cmbRestLoc"), Qt::Key_Down);
    }
};

TEST_F(RestoreDialogs, TheModeSaysWhatCanBeUsed)
{
    savedAndSelected();
    inLocation([](QWidget& form) {
        const auto& mode = in<QComboBox>(form, "cmbRestLoc");
        const auto& place = in<QLineEdit>(form, "txtRestLoc");
        const auto& browse = in<QWidget>(form, "cmdBrowse");
        EXPECT_EQ(mode.currentText(), "Original Location");
        EXPECT_EQ(place.text(), "Original Location");
        EXPECT_FALSE(place.isEnabled() || browse.isEnabled());
        chooseAlternate(form);
        EXPECT_EQ(place.text(), "");
        EXPECT_TRUE(place.isEnabled() && browse.isEnabled());
        QTest::keyClick(&in<QComboBox>(form, "cmbRestLoc"), Qt::Key_Delete);
        QTest::keyClicks(&in<QComboBox>(form, "cmbRestLoc"), "Or");
        EXPECT_EQ(mode.currentText(), "Alternate Location") << "by its list alone";
        QTest::keyClick(&in<QComboBox>(form, "cmbRestLoc"), Qt::Key_Up);
        EXPECT_EQ(place.text(), "Original Location");
        EXPECT_FALSE(place.isEnabled() || browse.isEnabled());
        click(form, "cmdCancel");
    });
    EXPECT_THAT(rig.messageBoxes.texts(), IsEmpty());
    EXPECT_EQ(errors(), "");
}

TEST_F(RestoreDialogs, TheBoxTakesWhatAPathMayHold)
{
    savedAndSelected();
    inLocation([this](QWidget& form) {
        chooseAlternate(form);
        type(form, "txtRestLoc", ":C:\\a:\"b'*,c./<d>?|e");
        EXPECT_EQ(in<QLineEdit>(form, "txtRestLoc").text(), "C:\\abcde");
        QApplication::clipboard()->setText("C:\\some.where");
        QTest::mouseClick(&in<QLineEdit>(form, "txtRestLoc"), Qt::RightButton);
        EXPECT_EQ(QApplication::clipboard()->text(), "") << "nothing to paste by the menu";
        type(form, "txtRestLoc", "   ");
        click(form, "cmdOK");
        EXPECT_EQ(lastMessage(), "Restore location must be given to restore the source files");
        EXPECT_TRUE(form.isVisible());
        click(form, "cmdCancel");
    });
    EXPECT_EQ(errors(), "");
}

TEST_F(RestoreDialogs, AFolderIsBrowsedForOrMade)
{
    savedAndSelected();
    rig.folder.write("with.dot/keep", "");
    inLocation([this](QWidget& form) {
        chooseAlternate(form);
        inForm("BrowseForFolder", [this](QWidget& chooser) {
            in<QLineEdit>(chooser, "fileNameEdit")
                .setText(QString::fromStdString(rig.folder / "with.dot"));
            static_cast<QDialog&>(chooser).accept();
        });
        click(form, "cmdBrowse");
        EXPECT_EQ(in<QLineEdit>(form, "txtRestLoc").text().toStdString(),
                  test::AppRig::drive(rig.folder / "with.dot") + "\\");
        QApplication::processEvents();
        EXPECT_EQ(form.focusWidget(), &in<QWidget>(form, "cmdOK"));
        click(form, "cmdOK");
    });
    EXPECT_EQ(lastMessage(), "File(s) have been successfully restored");
    EXPECT_EQ(treeOf(rig.folder / "with.dot").size(), 2U);

    rig.messageBoxes.shown.clear();
    rig.messageBoxes.answers = {platform::Answer::Ok, platform::Answer::Yes};
    restoreTo(test::AppRig::drive(rig.folder / "elsewhere/new/folders"));
    EXPECT_THAT(rig.messageBoxes.texts(), ElementsAre("Given Restore path is not existing",
                                                      "Do you want to create the folder?",
                                                      "File(s) have been successfully restored"));
    EXPECT_EQ(treeOf(rig.folder / "elsewhere/new/folders").size(), 1U);

    rig.messageBoxes.shown.clear();
    restoreTo(test::AppRig::drive(rig.folder / "elsewhere/refused"));
    EXPECT_EQ(lastMessage(), "Do you want to create the folder?");
    EXPECT_FALSE(std::filesystem::exists(rig.folder / "elsewhere/refused"));
    EXPECT_EQ(errors(), "");
}

TEST_F(RestoreDialogs, CancelOfEitherRestoresNothing)
{
    savedAndSelected();
    std::filesystem::remove_all(rig.folder / "sources");
    inLocation([](QWidget& form) { click(form, "cmdCancel"); });
    inLocation([](QWidget& form) { form.close(); });
    inForm("frmByDate", [](QWidget& form) { click(form, "cmdCancel"); });
    run("mnuByDate");
    inForm("frmByDate", [](QWidget& form) { form.close(); });
    run("mnuByDate");
    EXPECT_FALSE(std::filesystem::exists(rig.folder / "sources"));
    EXPECT_THAT(rig.messageBoxes.texts(), IsEmpty());
    // A day that was looked at does not count for a restore by file.
    inForm("frmByDate", [](QWidget& form) {
        auto& calendar = in<QCalendarWidget>(form, "mnvResDate");
        calendar.setSelectedDate(calendar.selectedDate().addYears(-1));
        click(form, "cmdCancel");
    });
    run("mnuByDate");
    restoreToPlaces();
    EXPECT_EQ(lastMessage(), "File(s) have been successfully restored");
    EXPECT_EQ(test::TempFolder::read(original("letters/one.txt")), "first one\n");
    EXPECT_EQ(errors(), "");
}

// The logs of what was done, and the report of what a run missed.
TEST_F(RestoreDialogs, TheLogsTellOfBackupsRestoresAndMissedFiles)
{
    rig.scripted = true;
    begin();
    rig.script.failCallsNamed("folder.open", 70, "two.txt");
    EXPECT_THAT(backUp(), ElementsAre("Backup is completed successfully, But some files are missed "
                                      "during Backup\r\n"
                                      "This may because of deleting some files\r\n"
                                      "Check the Backup log to get the missed file names"));
    rig.script.reset();
    openReview();
    openDown({"letters"});
    select({source("letters\\one.txt_000")});
    restoreTo(test::AppRig::drive(rig.folder / "elsewhere"));
    run("mnuRestLog");
    const state::frmLog& log = rig.program->archive.logForm;
    ASSERT_EQ(log.lstRestoreLog.rows.size(), 1U);
    EXPECT_EQ(log.lstRestoreLog.rows[0].text, "Work");
    EXPECT_EQ(log.lstRestoreLog.rows[0].sub[0], test::AppRig::drive(rig.folder / "elsewhere"));
    EXPECT_EQ(log.lstRestoreLog.rows[0].sub[2], "1");

    run("mnuBackLog");
    ASSERT_EQ(log.lstBackupLog.rows.size(), 1U);
    EXPECT_EQ(log.lstBackupLog.rows[0].sub[2], "2");
    EXPECT_EQ(log.lstBackupLog.rows[0].sub[3], "1");
    auto& records = rig.find<QAbstractItemView>("lstBackupLog");
    records.setCurrentIndex(records.model()->index(0, 0));
    QTest::keyClick(&records, Qt::Key_Return);
    auto& missed = rig.find<QWidget>("frmMissedFiles");
    const QModelIndex file = in<QAbstractItemView>(missed, "lstMissed").model()->index(0, 0);
    EXPECT_EQ(file.data().toString().toStdString(), source("letters\\two.txt"));
    missed.close();

    run("mnudispQ");
    EXPECT_EQ(lastMessage(), "The Queue file is not existing in the default path");
    rig.folder.write("app/Queue/ChngFilesQueue.txt", source("plans.doc") + "\r\n" +
                                                         source("gone.doc") + "\r\n" +
                                                         source("plans.doc") + "\r\n");
    run("mnudispQ");
    ASSERT_EQ(log.lstQLog.rows.size(), 1U);
    EXPECT_EQ(log.lstQLog.rows[0].text, "plans.doc");
    EXPECT_EQ(log.lstQLog.rows[0].sub[2], "6B");
    EXPECT_EQ(errors(), "");
    rig.program.reset(); // with a list on show
}

} // namespace
} // namespace vardelin
