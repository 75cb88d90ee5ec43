#include "editor/life_cycle.h"

#include "editor/options_page.h"
#include "pages_rig.h"
#include "profile/profile_reader.h"
#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vardelin::editor {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

// The form with all that it works on; a profile in it was opened by the reader.
struct LifeCycle : testing::Test, test::PagesRig {
    state::ProfileFormState profileForm;
    state::MainFrameForm main;
    profile::StateEditorLists lists{context, record};
    test::RecordingSchedules schedules;
    profile::FileNumbers fileNumbers;
    profile::ProfileContext profiles{machine, context,   frame, record,
                                     store,   schedules, lists, fileNumbers};
    EditorFormContext life{editing, pages, profileForm, main, lists};

    LifeCycle()
    {
        newMode();
        put({"C:\\App\\Data\\", "C:\\App\\Profiles\\"});
        putFile("C:\\App\\Data\\Other_Dsk.txt", "");
        frame.ST_App_Path = "C:\\App";
    }

    // A profile as it stands in the view, then opened for changes.
    void edit(std::string_view text)
    {
        putFile("C:\\App\\Profiles\\UA.txt",
                "[A.vdp]\r\n" + std::string(text) + "[End of A.vdp]\r\n");
        loadProfileForm(life);
        viewMode();
        record.tvwDirectory.clear();
        store.opened.clxnOpenedSources.clear();
        store.opened.clxnOpenedIncluded.clear();
        store.opened.clxnOpenedExcluded.clear();
        store.opened.clxnOpenedOtherData.clear();
        profile::ActivateOpenProfile(profiles, "UA.txt", "C:\\App\\Profiles\\");
        frame.BL_Edit_Mode = true;
        frame.BL_New_Mode = frame.BL_Open_Mode = false;
        frame.BL_Edit_Changed = frame.BL_New_Changed = false;
        frame.pb.value = 0;
        EditProfileChk(life);
    }
    void editScheduled(std::string_view pattern)
    {
        edit("{Source files}\r\n{End Of Source files}\r\n{Scheduling}\r\nStart Date = 9/7/2003\r\n"
             "Start Time = 02:30:00 PM\r\n" +
             std::string(pattern) + "{End Of Scheduling}\r\n");
    }
    static std::vector<std::string> checkedRows(const state::ListBox& list)
    {
        std::vector<std::string> texts;
        for (const state::ListRow& row : list.rows) {
            if (row.checked)
                texts.push_back(row.text);
        }
        return texts;
    }
    std::vector<std::string> selectedEverywhere()
    {
        std::vector<std::string> all;
        for (const state::ListBox* list :
             {&record.lstWeekDays, &record.lstMonthDate, &record.lstMonth, &record.lstYearDate}) {
            for (const std::string& text : selectedRows(*list))
                all.push_back(text);
        }
        return all;
    }
    void expectFullLists()
    {
        EXPECT_EQ(record.lstWeekDays.rows.size(), 7U);
        EXPECT_EQ(record.lstMonthDate.rows.size(), 31U);
        EXPECT_EQ(record.lstMonth.rows.size(), 12U);
        EXPECT_EQ(record.lstYearDate.rows.size(), 31U);
    }
};

TEST_F(LifeCycle, ANewFormIsEmptyAndShowsTheFirstTab)
{
    loadProfileForm(life);
    EXPECT_TRUE(profileForm.loaded);
    EXPECT_FALSE(profileForm.visible);
    EXPECT_EQ(profileForm.SSTab1, 0);
    EXPECT_FALSE(record.Frame3.enabled || record.Frame4.enabled || record.Frame5.enabled);
    EXPECT_TRUE(record.Frame6.visible);
    EXPECT_FALSE(record.Frame7.visible || record.Frame8.visible || record.Frame9.visible);
    EXPECT_EQ(form.imageIndex, 5);
    EXPECT_EQ(record.dtpStDate.value.date, (base::Date{2026, 3, 10}));
    EXPECT_EQ(record.dtpStTime.value.time, (base::TimeOfDay{9, 5, 3}));
    EXPECT_EQ(record.dtpDaily.value.time, (base::TimeOfDay{9, 5, 3}));
    EXPECT_THAT(shown(), ElementsAre("-0 D:", "-0 ", "-0 E:", "-0 "));
    EXPECT_THAT(rowTexts(record.lstInclude), ElementsAre(".doc", ".jpg", ".txt"));
    EXPECT_FALSE(record.CmbDestDrives.items.empty());
    EXPECT_FALSE(store.scalars.SourceChecked);
    EXPECT_THAT(dialog.shown, IsEmpty());
    EXPECT_THAT(entries(), Contains(StartsWith("frm_profile_load Start")));
    EXPECT_FALSE(changed());
}

// The third heading stands out beside the first tab's text until a tab or a heading is clicked.
TEST_F(LifeCycle, AtLoadTheThirdHeadingStandsOut)
{
    loadProfileForm(life);
    EXPECT_EQ(profileForm.highlightedLabel, 31);
    EXPECT_EQ(profileForm.Label37,
              "Profile is a set of selected files/folders and settings\r\nwith which a backup can "
              "be taken.Profile is created with\r\nthe extension .vdp.");
    EXPECT_THAT(profileForm.Label35, StartsWith("Vardelin comes with the Default profile"));
}

TEST_F(LifeCycle, TabsAndHeadingsShowTheirHelp)
{
    loadProfileForm(life);
    struct Row {
        int tab;
        int label;
        std::string_view text;
        void (*click)(EditorFormContext&);
    };
    const Row rows[] = {
        {0, 33,
         "Vardelin comes with the Default profile with Daily Schedule and Threshold Queue of 50 "
         "files which backups MyDocuments , IE Favorites, Desktop Settings & Outlook Settings by "
         "default. You can create new profiles by changing these settings.\r\n\r\nOn checking "
         "Include File[s] by Extensions will include all files from the system with the selected "
         "extensions for backup.\r\n\r\nOn checking Exclude File[s] by Extensions will provide an "
         "option to exclude from the current selections for backup.\r\n\r\nInclude/Exclude by "
         "Names provides an option to type in for filenames which exists in system. "
         "(Ex:abc*.*will include or exclude all the files with this name for backup).",
         &Label33_Click},
        {1, 32,
         "Backup media and location can be selected.\r\n\r\nOptions are provided to compress and "
         "encrypt data(compression is supported by default).\r\n\r\nOptions to enter password "
         ",Hint question and answer to secure the backup data.\r\n\r\nStartup Options will start "
         "backup automatically,\r\n\r\n1.When the system reaches the specified idle time.\r\n\r\n"
         "2.When the profile data exceeds the specified limit.\r\n\r\n3.When the number of files "
         "in Queue reaches the specified limit.\r\n\r\n \r\n\r\nWarns the user when the backup "
         "data exceeds the destination disk space",
         &Label32_Click},
        {2, 31,
         "Vardelin supports scheduled backup to perform the backup at the specified date and "
         "time.\r\n\r\nPatterns for the scheduled backup are daily[by default], weekly,monthly and "
         "yearly.\r\n\r\nBased on the selected pattern,user has to enter/select the mandatory "
         "fields.\r\n\r\nRetention options gives you the facility for automatic deletion of backup "
         "files which is maintained as versions.\r\n\r\nOriginal version of files option is "
         "supported by default which maintains only one level of version.",
         &Label31_Click}};
    for (const Row& row : rows) {
        SSTab1_Click(life, row.tab);
        EXPECT_EQ(profileForm.SSTab1, row.tab);
        EXPECT_EQ(profileForm.highlightedLabel, row.label);
        EXPECT_EQ(profileForm.Label35, row.text);
    }
    SSTab1_Click(life, 1);
    for (const Row& row : rows) {
        row.click(life);
        EXPECT_EQ(profileForm.SSTab1, 1) << "a heading leaves the tab";
        EXPECT_EQ(profileForm.highlightedLabel, row.label);
        EXPECT_EQ(profileForm.Label35, row.text);
    }
}

TEST_F(LifeCycle, AnUnloadedFormForgetsWhatItHeld)
{
    loadProfileForm(life);
    record.txtDestLoc.text = "C:\\Dest";
    record.txtPassWord.text = "secret";
    record.txtInclNames.text = "a*";
    pagesForm.bDestRevert = true;
    store.scalars.bDestinationChanged = true;
    form.clxnDeferredChecks.add("x");
    const auto revision = record.revision;
    const auto structure = record.tvwDirectory.structureRevision();
    unloadProfileForm(life);
    EXPECT_FALSE(profileForm.loaded);

    loadProfileForm(life);
    EXPECT_EQ(record.txtDestLoc.text + record.txtPassWord.text + record.txtInclNames.text, "");
    EXPECT_FALSE(pagesForm.bDestRevert);
    EXPECT_FALSE(store.scalars.bDestinationChanged);
    EXPECT_EQ(form.clxnDeferredChecks.count(), 0U);
    EXPECT_GT(record.revision, revision) << "a view must see that this is another form";
    EXPECT_GT(record.tvwDirectory.structureRevision(), structure);
}

TEST_F(LifeCycle, LoadingALoadedFormLeavesIt)
{
    loadProfileForm(life);
    record.txtDestLoc.text = "C:\\Dest";
    loadProfileForm(life);
    EXPECT_EQ(record.txtDestLoc.text, "C:\\Dest");
}

TEST_F(LifeCycle, AFailingLoadIsReportedUnderTheFormsName)
{
    clock.script().failCallsNamed("clock.toLocal", base::error_number::kDeviceIo);
    loadProfileForm(life);
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text, "Error ocurred While Loading profile form");
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "Form_Load");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "frmProfile");
}

TEST_F(LifeCycle, EditingTicksWhatTheProfileWasSavedWith)
{
    put({"D:\\Data\\", "E:\\a.txt"});
    edit("{Source files}\r\nD:\\Data\\\r\n{End Of Source files}\r\n{Excluded options}\r\n.txt\r\n"
         ".zzz\r\n{End Of Excluded options}\r\n{Included options}\r\n.jpg\r\n"
         "{End Of Included options}\r\n{Other Data}\r\nIE Favorites\r\n{End Of Other Data}\r\n");

    EXPECT_THAT(checkedRows(record.lstInclude), ElementsAre(".jpg"));
    EXPECT_THAT(checkedRows(record.lstExclude), IsSupersetOf({".txt", ".zzz"}));
    EXPECT_THAT(rowTexts(record.lstInclude), ElementsAre(".doc", ".jpg"));
    EXPECT_THAT(store.save.clxnIncluded.items(), ElementsAre(".jpg"));
    EXPECT_EQ(store.save.clxnExcluded.count(), 2U);
    EXPECT_THAT(rowTexts(record.lstOtherData), ElementsAre("Registry Settings", "Desktop Settings",
                                                           "IE Favorites", "Outlook Settings"));
    EXPECT_THAT(selectedRows(record.lstOtherData), ElementsAre("IE Favorites"));
    EXPECT_THAT(shown(), ElementsAre("+p D:", "+p ", "-0 E:", "+p "));
    EXPECT_EQ(frame.pb.value, frame.pb.maximum);
    EXPECT_TRUE(pagesForm.bDestRevert);
    EXPECT_FALSE(store.scalars.bOptionsLoaded);
    EXPECT_THAT(dialog.shown, IsEmpty());
    EXPECT_FALSE(changed()) << "replayed ticks are no changes";
}

TEST_F(LifeCycle, EditingEnablesTheFormAndItsCommands)
{
    edit("{Source files}\r\n{End Of Source files}\r\n");
    for (const state::Frame* each :
         {&record.Frame1, &record.Frame2, &record.Frame10, &record.Frame4, &record.Frame5,
          &record.Frame12, &record.Frame13, &record.fmeExclude, &record.fmeInclude,
          &record.fmeOtherData, &record.fmeFilesByNames})
        EXPECT_TRUE(each->enabled);
    EXPECT_FALSE(record.Frame3.enabled) << "follows the tick of the schedule";
    EXPECT_TRUE(record.chkAutoSched.enabled && record.chkPrimary.enabled);
    EXPECT_TRUE(record.chkWarn.enabled && record.Label9.enabled && record.txtWarn.enabled);
    for (const state::OptionButton* option : record.patternOptions())
        EXPECT_TRUE(option->enabled);
    EXPECT_TRUE(main.Toolbar1(4).enabled && main.Toolbar1(5).enabled);
    EXPECT_FALSE(main.Toolbar1(3).enabled || main.mnuEdit.enabled);
    EXPECT_TRUE(main.mnuSave.enabled && main.mnuSaveAs.enabled);
}

TEST_F(LifeCycle, WeeklyListsAreWholeAgainWithTheSavedDays)
{
    editScheduled("RecurrencePattern =2\r\nRecur=3\r\nTimeAt=1:00:00 AM\r\nDays=SxxxxxS\r\n");
    expectFullLists();
    EXPECT_THAT(selectedEverywhere(), ElementsAre("Sunday", "Saturday"));
    EXPECT_TRUE(record.Frame3.enabled);
    EXPECT_TRUE(record.txtWeeklyRecur.enabled && record.dtpWeekly.enabled);
    EXPECT_EQ(record.txtWeeklyRecur.text, "3");
    EXPECT_FALSE(changed());
}

TEST_F(LifeCycle, MonthlyListsAreWholeAgainWithTheSavedDates)
{
    editScheduled("RecurrencePattern =3\r\nRecur=1\r\nTimeAt=1:00:00 AM\r\nDates=1,15,31\r\n");
    expectFullLists();
    EXPECT_THAT(selectedEverywhere(), ElementsAre("1", "15", "31"));
    EXPECT_THAT(selectedRows(record.lstMonthDate), ElementsAre("1", "15", "31"));
    EXPECT_TRUE(record.txtMonthlyRecur.enabled && record.dtpMonthly.enabled);
}

// The yearly dates are filled anew by every refresh of the lists: without a second tick each edit
// would lose them, and the next save would be refused.
TEST_F(LifeCycle, YearlyListsAreWholeAgainWithTheSavedMonthsAndDates)
{
    editScheduled("RecurrencePattern =4\r\nRecur=1\r\nTimeAt=1:00:00 AM\r\nMonths=May,June\r\n"
                  "Dates=2,30\r\n");
    expectFullLists();
    EXPECT_THAT(selectedRows(record.lstMonth), ElementsAre("May", "June"));
    EXPECT_THAT(selectedRows(record.lstYearDate), ElementsAre("2", "30"));
    EXPECT_THAT(selectedEverywhere(), ElementsAre("May", "June", "2", "30"));
    EXPECT_TRUE(record.txtYearlyRecur.enabled && record.dtpYearly.enabled);
}

TEST_F(LifeCycle, ADailyProfileSelectsNothing)
{
    editScheduled("RecurrencePattern =1\r\nRecur=2\r\nTimeAt=1:00:00 AM\r\n");
    expectFullLists();
    EXPECT_THAT(selectedEverywhere(), IsEmpty());
    EXPECT_TRUE(record.txtDailyRecur.enabled && record.dtpDaily.enabled);
}

TEST_F(LifeCycle, AnEmptyListMakesNoDivision)
{
    shell.types.clear();
    edit("{Source files}\r\n{End Of Source files}\r\n");
    EXPECT_THAT(record.lstInclude.rows, IsEmpty());
    EXPECT_EQ(frame.pb.value, frame.pb.maximum);
    EXPECT_THAT(dialog.shown, IsEmpty());
}

// Its lines will be gone at the next save, since they are taken from the drives that are there.
TEST_F(LifeCycle, ADriveThatIsGoneLeavesAWordInTheTrace)
{
    const std::string log = trace.logFileName();
    edit("{Source files}\r\nD:\\Data\\\r\n{End Of Source files}\r\n");
    EXPECT_THAT(disk.readAll(log), Not(HasSubstr("Drive is gone")));
    edit("{Source files}\r\nQ:\\Data\\\r\n{End Of Source files}\r\n");
    EXPECT_THAT(disk.readAll(log), HasSubstr("Drive is gone: Q:\\ "));
    EXPECT_THAT(dialog.shown, IsEmpty());
}

// Each list moves the bar by its share alone, and the last step waits where it would pass the
// bound: a third of fifty, rounded to six places, is a little too much three times.
TEST_F(LifeCycle, TheBarStaysWithinTheSharesOfTheLists)
{
    struct Row {
        int extraTypes;
        std::string_view lastIncluded; // their replay is the moment to look at the bar
        std::string_view lastExcluded;
        double afterIncluded; // at the last row, before its own step
        double afterExcluded;
    };
    // Whatever is included is missing in the second list: 2 rows of 25, 199 of 0.251256.
    const Row rows[] = {{0, ".txt", ".jpg", 33.333334, 58.333334},
                        {197, ".x99", ".x98", 49.75, 99.498688}};
    for (const Row& row : rows) {
        for (int i = 0; i < row.extraTypes; ++i)
            shell.types[".x" + std::to_string(i)] = {"type", ""};
        std::vector<double> seen;
        clock.script().onCallsNamed("clock.toLocal", [&](const platform::CallScript::Call&) {
            if (seen.empty() || seen.back() != frame.pb.value)
                seen.push_back(frame.pb.value);
        });
        edit("{Source files}\r\n{End Of Source files}\r\n{Excluded options}\r\n" +
             std::string(row.lastExcluded) +
             "\r\n{End Of Excluded options}\r\n{Included options}\r\n" +
             std::string(row.lastIncluded) + "\r\n{End Of Included options}\r\n");
        clock.script().reset();
        ASSERT_GE(seen.size(), 3U);
        EXPECT_NEAR(seen[seen.size() - 3], row.afterIncluded, 0.0001);
        EXPECT_NEAR(seen[seen.size() - 2], row.afterExcluded, 0.0001);
        EXPECT_EQ(frame.pb.value, frame.pb.maximum);
        for (const double value : seen)
            EXPECT_LE(value, frame.pb.maximum);
    }
}

// A save hides the password's boxes; a profile that is edited again shows them, and so does the
// tick that asks for a password.
TEST_F(LifeCycle, ThePasswordsBoxesComeBack)
{
    record.Frame14.visible = false;
    edit("{Source files}\r\n{End Of Source files}\r\n");
    EXPECT_TRUE(record.Frame14.visible);
    EXPECT_FALSE(record.Frame14.enabled);
    edit("{Source files}\r\n{End Of Source files}\r\n{Password}\r\nTrue\r\nsecret\r\nq\r\na\r\n"
         "{End Of Password}\r\n");
    EXPECT_TRUE(record.Frame14.enabled);
}

// The reader runs no handler, and the page of another pattern would hide what was saved.
TEST_F(LifeCycle, AnOpenedProfileShowsThePageOfItsPattern)
{
    const std::string_view values[] = {"", "Days=SxxxxxS\r\n", "Dates=1\r\n",
                                       "Months=May\r\nDates=2\r\n"};
    for (std::size_t i = 0; i < std::size(values); ++i) {
        editScheduled("RecurrencePattern =" + std::to_string(i + 1) +
                      "\r\nRecur=1\r\nTimeAt=1:00:00 AM\r\n" + std::string(values[i]));
        const auto shownPages = record.patternPages();
        for (std::size_t page = 0; page < shownPages.size(); ++page)
            EXPECT_EQ(shownPages.at(page)->visible, page == i) << "pattern " << i + 1;
    }
    edit("{Source files}\r\n{End Of Source files}\r\n");
    EXPECT_TRUE(record.Frame6.visible);
    EXPECT_FALSE(record.Frame9.visible);
}

// The form is the same for the next profile that is opened in it.
TEST_F(LifeCycle, AProfileWithoutATimetableHasNothingOfTheOneBefore)
{
    editScheduled("RecurrencePattern =2\r\nRecur=3\r\nTimeAt=1:00:00 AM\r\nDays=SxxxxxS\r\n");
    ASSERT_FALSE(record.optVer8.enabled);
    ASSERT_FALSE(record.txtLatestDaysVer.enabled || record.Label4.enabled)
        << "a weekly profile retains no days";

    edit("{Source files}\r\n{End Of Source files}\r\nRetention=8?5\r\n");
    EXPECT_EQ(record.chkAutoSched.value, 0);
    EXPECT_EQ(state::chosen(std::as_const(record).patternOptions()), 0);
    expectFullLists();
    EXPECT_THAT(selectedEverywhere(), IsEmpty());
    for (const state::OptionButton* option : record.retentionOptions())
        EXPECT_TRUE(option->enabled);
    EXPECT_TRUE(record.optVer8.value);
    EXPECT_EQ(record.txtLatestDaysVer.text, "5");
    EXPECT_TRUE(record.txtLatestDaysVer.enabled && record.Label4.enabled);
}

TEST_F(LifeCycle, ABoxIsWrittenInWhereItsTickStands)
{
    const auto locked = [&] {
        std::vector<bool> each;
        for (const state::TextBox* box :
             {&record.txtIdleTime, &record.txtQueueThrld, &record.txtSizeOfBkp, &record.txtWarn,
              &record.txtPassWord, &record.txtHintAns})
            each.push_back(box->locked);
        return each;
    };
    const std::string off = "{Source files}\r\n{End Of Source files}\r\n"
                            "{Password}\r\nFalse\r\n{End Of Password}\r\n"
                            "{Free Space Warn}\r\nFalse\r\n{End Of Free Space Warn}\r\n"
                            "{System Idle}\r\nFalse\r\n{End Of System Idle}\r\n"
                            "{Confirm Backup}\r\nFalse\r\n{End Of Confirm Backup}\r\n"
                            "{Threshold Queue}\r\nFalse\r\n{End Of Threshold Queue}\r\n";
    const std::string on = "{Source files}\r\n{End Of Source files}\r\n"
                           "{Password}\r\nTrue\r\nsecret\r\nq\r\na\r\n{End Of Password}\r\n"
                           "{Free Space Warn}\r\nTrue\r\nWarn=10%\r\n{End Of Free Space Warn}\r\n"
                           "{System Idle}\r\nTrue\r\nIdle=25\r\n{End Of System Idle}\r\n"
                           "{Confirm Backup}\r\nTrue\r\nSize=70GB\r\n{End Of Confirm Backup}\r\n"
                           "{Threshold Queue}\r\nTrue\r\nFiles=300\r\n{End Of Threshold Queue}\r\n";
    loadProfileForm(life);
    EXPECT_THAT(locked(), testing::Each(true));
    edit(on);
    EXPECT_THAT(locked(), testing::Each(false));
    EXPECT_EQ(record.txtPassWord.text + record.txtWarn.text + record.txtIdleTime.text +
                  record.txtSizeOfBkp.text + record.txtQueueThrld.text,
              "secret10%2570300");
    edit(off);
    EXPECT_THAT(locked(), testing::Each(true));
    EXPECT_EQ(record.txtSizeOfBkp.text, "") << "the reader leaves it standing";
    edit(on);
    EXPECT_THAT(locked(), testing::Each(false));
    EXPECT_TRUE(record.txtPassWord.enabled) << "the profile before had no password";
}

} // namespace
} // namespace vardelin::editor
