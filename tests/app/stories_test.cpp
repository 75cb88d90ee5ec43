#include "window_story.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>

// Whole stories of a person at the window, from one start of the program to the next.
namespace vardelin {
namespace {

using platform::Answer;

class Stories : public test::WindowStory {
protected:
    void SetUp() override
    {
        for (const char* name : {"sources/letters/one.txt", "sources/photos/two.raw"})
            rig.folder.write(name, "content\n");
        std::filesystem::create_directories(rig.folder / "backups");
    }

    // A new profile of the sources, saved under this name.
    void saveNew(const char* name)
    {
        run("mnuNew");
        tick(rig.folder / "sources");
        showTab(1);
        typeInto("txtDestLoc", test::AppRig::drive(rig.folder / "backups"));
        saveAs("mnuSave", name);
    }
    void saveAs(const char* command, const char* name)
    {
        inForm("frmRestDialog", [name](QWidget& form) {
            QTest::keyClicks(&in<QLineEdit>(form, "txtProfileName"), QLatin1String(name));
            click(form, "cmdProfileOK");
        });
        run(command);
    }
    void exitProgram()
    {
        rig.messageBoxes.answers = {Answer::Yes};
        run("mnuExit");
        EXPECT_EQ(QApplication::exec(), 0) << "the program ends";
        EXPECT_EQ(rig.messageBoxes.texts().back(), "Do you want to really exit the application?");
    }
    std::string caption() const { return rig.program->profileForm.caption; }
    std::string profile(const std::string& name) const
    {
        return test::TempFolder::read(rig.folder / "app/Profiles/" + name);
    }
};

TEST_F(Stories, TheFirstStartShowsTheDefaultProfileAndASavedOneComesBack)
{
    rig.start();
    EXPECT_EQ(caption(), "Default Profile");
    EXPECT_TRUE(rig.find<QCheckBox>("chkPrimary").isChecked());
    saveNew("Papers");
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(caption(), "Papers Profile");
    showTab(1);
    rig.find<QCheckBox>("chkIdle").click();
    run("mnuSave");
    exitProgram();

    rig.start();
    EXPECT_EQ(caption(), "Papers Profile");
    EXPECT_EQ(rig.find<QLineEdit>("txtIdleTime").text(), "15");
    EXPECT_TRUE(isTicked(rig.folder / "sources"));
    EXPECT_TRUE(isTicked(rig.folder / "sources/letters"));
    EXPECT_FALSE(isTicked(rig.folder / "backups"));
    EXPECT_FALSE(rig.program->frame.BL_Edit_Changed);
    EXPECT_EQ(errors(), "");
}

TEST_F(Stories, WhatIsTickedAndSavedIsBackedUpAndNothingElse)
{
    rig.folder.write("beside/three.txt", "not ticked\n");
    rig.start();
    saveNew("Papers");
    rig.messageBoxes.shown.clear();
    run("mnuBackup");
    EXPECT_EQ(lastMessage(), "Backup is completed successfully");
    std::vector<std::string> copies;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(rig.folder / "backups/Papers/C")) {
        const std::string name = entry.path().filename();
        if (const std::size_t mark = name.find("_FULL_"); mark != std::string::npos)
            copies.push_back(name.substr(0, mark));
    }
    EXPECT_THAT(copies, testing::UnorderedElementsAre("one.txt", "two.raw"));
    EXPECT_EQ(errors(), "");
}

TEST_F(Stories, AnOpenedProfileIsForViewingUntilItIsEdited)
{
    rig.start();
    saveNew("Papers");
    run("mnuNew");
    inForm("frmOpenProfile", [](QWidget& form) {
        QAbstractItemModel& rows = *in<QAbstractItemView>(form, "lstOpen").model();
        for (int i = 0; i < rows.rowCount(); ++i) {
            if (rows.index(i, 0).data().toString().startsWith("Papers"))
                rows.setData(rows.index(i, 0), Qt::Checked, Qt::CheckStateRole);
        }
        click(form, "cmdOpen");
    });
    run("mnuOpen");
    ASSERT_TRUE(rig.program->frame.BL_Open_Mode) << errors() << lastMessage();
    EXPECT_EQ(caption(), "Papers Profile");
    EXPECT_FALSE(rig.find<QAction>("mnuSave").isEnabled());
    run("mnuEdit");
    EXPECT_TRUE(rig.find<QAction>("mnuSave").isEnabled());
    const std::string before = profile("Papers.vdp");
    showTab(1);
    rig.find<QCheckBox>("chkIdle").click();
    run("mnuSave");
    EXPECT_NE(profile("Papers.vdp"), before);
    EXPECT_TRUE(isTicked(rig.folder / "sources"));
    EXPECT_EQ(errors(), "");
}

TEST_F(Stories, APasswordGoesOnlyWithTheOldOne)
{
    rig.start();
    run("mnuNew");
    tick(rig.folder / "sources");
    showTab(1);
    typeInto("txtDestLoc", test::AppRig::drive(rig.folder / "backups"));
    rig.find<QCheckBox>("chkPassword").click();
    typeInto("txtPassWord", "correct horse");
    auto& questions = rig.find<QComboBox>("cmbHintQues");
    questions.setFocus();
    QTest::keyClick(&questions, Qt::Key_Down);
    typeInto("txtHintAns", "blue");
    saveAs("mnuSave", "Secret");
    ASSERT_EQ(caption(), "Secret Profile") << lastMessage() << errors();
    exitProgram();

    rig.start();
    showTab(1);
    auto& box = rig.find<QCheckBox>("chkPassword");
    ASSERT_TRUE(box.isChecked());
    rig.messageBoxes.answers = {Answer::No}; // the person would not give the old one
    box.click();
    EXPECT_TRUE(box.isChecked());

    rig.messageBoxes.answers = {Answer::Yes, Answer::Ok};
    inForm("frmResPwd", [](QWidget& form) {
        QTest::keyClicks(&in<QLineEdit>(form, "txtRespwd"), "wrong horse");
        click(form, "cmdOk");
        click(form, "cmdCancel");
    });
    box.click();
    EXPECT_EQ(lastMessage(), "Invalid password");
    EXPECT_TRUE(box.isChecked());

    rig.messageBoxes.answers = {Answer::Yes};
    inForm("frmResPwd", [](QWidget& form) {
        QTest::keyClicks(&in<QLineEdit>(form, "txtRespwd"), "correct horse");
        click(form, "cmdOk");
    });
    box.click();
    EXPECT_FALSE(box.isChecked());
    EXPECT_EQ(errors(), "");
}

// What a person answers when the profile from backup media is left, and what lies where then.
struct CopyBack {
    const char* name;
    bool localOne;               // a profile of its name was there before
    std::vector<Answer> answers; // whether to keep it, whether to replace the local one
    const char* left;            // below Profiles: "media", "local" or "" for none
};

TEST_F(Stories, AProfileFromMediaStaysOrGoesBackAsThePersonSays)
{
    const CopyBack rows[] = {
        {"kept", false, {Answer::Yes}, "media"},
        {"given back", false, {Answer::No}, ""},
        {"kept in place of the local one", true, {Answer::Yes, Answer::Yes}, "media"},
        {"kept, but not in place of the local one", true, {Answer::Yes, Answer::No}, "local"},
        {"given back to a local one", true, {Answer::No}, "local"},
    };
    rig.start();
    saveNew("Papers");
    const std::string media = profile("Papers.vdp");
    const std::string mediaPath = rig.folder.write("media/Papers.vdp", media);
    showTab(1);
    rig.find<QCheckBox>("chkIdle").click();
    run("mnuSave");
    const std::string local = profile("Papers.vdp");
    ASSERT_NE(local, media);
    for (const CopyBack& row : rows) {
        SCOPED_TRACE(row.name);
        rig.messageBoxes.answers.clear();
        run("mnuNew");
        const std::string place = rig.folder / "app/Profiles/Papers.vdp";
        std::filesystem::remove(place);
        if (row.localOne)
            rig.folder.write("app/Profiles/Papers.vdp", local);
        inForm("frmOpenProfile", [&](QWidget& form) {
            inForm("cdSelProfile", [&](QWidget& chooser) {
                in<QLineEdit>(chooser, "fileNameEdit").setText(QString::fromStdString(mediaPath));
                static_cast<QDialog&>(chooser).accept();
            });
            click(form, "cmdSelProfile");
        });
        run("mnuOpen");
        ASSERT_TRUE(rig.program->frame.BL_Remote_Profile) << errors() << lastMessage();
        rig.messageBoxes.answers = {row.answers.begin(), row.answers.end()};
        run("mnuNew");
        const std::string expected = row.left == std::string("media")   ? media
                                     : row.left == std::string("local") ? local
                                                                        : "";
        EXPECT_EQ(profile("Papers.vdp") == expected, true);
        EXPECT_EQ(std::filesystem::exists(place), row.left[0] != '\0');
        EXPECT_EQ(test::TempFolder::read(mediaPath) == media, true) << "the media keep theirs";
        EXPECT_TRUE(rig.messageBoxes.answers.empty()) << "every question was asked";
        EXPECT_EQ(errors(), "");
    }
}

TEST_F(Stories, WithoutItsListOfProfilesTheProgramShowsTheDefaultOneAndWritesTheListAnew)
{
    const std::string list = rig.folder / "app/Data/Other_Dsk.txt";
    rig.start();
    saveNew("Papers");
    exitProgram();
    const std::string papers = profile("Papers.vdp");
    std::filesystem::remove(list);
    rig.start();
    EXPECT_EQ(caption(), "Default Profile");
    EXPECT_NE(test::TempFolder::read(list).find("Default.vdp"), std::string::npos);
    EXPECT_EQ(profile("Papers.vdp") == papers, true);
}

TEST_F(Stories, AGarbledProfileIsToldAndStaysAsItIs)
{
    rig.start();
    saveNew("Papers");
    exitProgram();
    const std::string garbled = profile("Papers.vdp").substr(0, 40);
    rig.folder.write("app/Profiles/Papers.vdp", garbled);
    rig.messageBoxes.shown.clear();
    rig.start();
    EXPECT_NE(errors() + lastMessage(), "");
    EXPECT_EQ(profile("Papers.vdp"), garbled);
    EXPECT_FALSE(rig.program->frame.BL_Edit_Mode && caption() == "Papers Profile")
        << "a save would put less in its place";
}

TEST_F(Stories, ADestinationThatCannotBeMadeIsRefusedOnItsPage)
{
    rig.start();
    run("mnuNew");
    tick(rig.folder / "sources");
    showTab(1);
    typeInto("txtDestLoc", "C:\\proc\\vardelin\\backups");
    showTab(2);
    rig.messageBoxes.answers = {Answer::Ok, Answer::Yes};
    run("mnuSave");
    EXPECT_EQ(lastMessage(), "Enter a Accessible path create Backup location");
    EXPECT_EQ(rig.find<QTabWidget>("SSTab1").currentIndex(), 1);
    EXPECT_TRUE(rig.program->frame.BL_New_Mode);
    EXPECT_EQ(profile("Papers.vdp"), "");
}

} // namespace
} // namespace vardelin
