#include "profile/profile_writer.h"

#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vardelin::profile {
namespace {

using test::ProfileRig;
using test::textOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::string_view kFolder = "C:\\App\\Profiles";
constexpr std::string_view kFile = "C:\\App\\Profiles\\Docs.vdp";

class WriterTest : public testing::Test {
protected:
    bool save() { return CreatingVdpFile(rig.profiles, "Docs.vdp", kFolder); }
    std::string written()
    {
        EXPECT_TRUE(save());
        return rig.fileSystem().readAll(kFile);
    }
    // The lines between a section's first and last, each with CR LF; "absent" where there is none.
    std::string section(std::string_view words)
    {
        const std::string text = written();
        const std::string opening = "{" + std::string(words) + "}\r\n";
        const std::size_t from = text.find(opening);
        if (from == std::string::npos)
            return "absent";
        const std::size_t to = text.find("{End Of " + std::string(words) + "}\r\n");
        return text.substr(from + opening.size(), to - from - opening.size());
    }
    // The schedule values under their keys.
    std::string scheduleValue(std::string_view key)
    {
        const std::string* const value = rig.store.save.clxnSchedule.find(key);
        return value == nullptr ? "absent" : *value;
    }
    void addSources(const std::vector<std::string>& paths)
    {
        for (const std::string& path : paths)
            rig.store.save.clxnSources.add(path, path);
    }
    void schedule(int pattern)
    {
        editor.chkAutoSched.value = 1;
        editor.dtpStDate.value = {{2003, 7, 9}, {}};
        editor.dtpStTime.value.time = {14, 30, 0};
        state::choose(editor.patternOptions(), pattern);
        for (state::TimePicker* const picker :
             {&editor.dtpDaily, &editor.dtpWeekly, &editor.dtpMonthly, &editor.dtpYearly})
            picker->value = {{2003, 7, 3}, {9, 5, 3}};
    }

    ProfileRig rig;
    state::ProfileEditorState& editor = rig.editor;
    state::ProfileScalars& scalars = rig.store.scalars;
};

TEST_F(WriterTest, WritesEverySectionOfAProfileWithNothingSet)
{
    EXPECT_EQ(written(), textOf({"[Docs.vdp]",
                                 "{Source files}",
                                 "{End Of Source files}",
                                 "{Excluded options}",
                                 "{End Of Excluded options}",
                                 "{Included options}",
                                 "{End Of Included options}",
                                 "{Other Data}",
                                 "{End Of Other Data}",
                                 "{Include by names}",
                                 "{End Of Include by names}",
                                 "{Exclude by names}",
                                 "{End Of Exclude by names}",
                                 "{Destination path}",
                                 "",
                                 "{End Of Destination path}",
                                 "{Password}",
                                 "False",
                                 "{End Of Password}",
                                 "{Free Space Warn}",
                                 "False",
                                 "{End Of Free Space Warn}",
                                 "{System Idle}",
                                 "False",
                                 "{End Of System Idle}",
                                 "{Confirm Backup}",
                                 "False",
                                 "{End Of Confirm Backup}",
                                 "{Threshold Queue}",
                                 "False",
                                 "{End Of Threshold Queue}",
                                 "Backup versions =7",
                                 "Compress = True",
                                 "Encrypt=False",
                                 "[End of Docs.vdp]"}));
    EXPECT_THAT(rig.entries(), ElementsAre("CreatingVdpFile End 2"));
}

TEST_F(WriterTest, WritesEveryOptionOfAWholeProfile)
{
    addSources({"C:\\Work\\Letters\\", "C:\\Work\\Notes.txt"});
    rig.store.save.clxnExcluded.add(".tmp", ".tmp");
    rig.store.save.clxnExcluded.add(".bak", ".bak");
    rig.store.save.clxnIncluded.add(".doc", ".doc");
    rig.store.save.clxnOtherData.add("Desktop Settings");
    rig.store.save.clxnOtherData.add("IE Favorites");
    editor.txtInclNames.text = " A*.*,B*.* ";
    editor.txtExclNames.text = "C*.*";
    editor.txtDestLoc.text = "D:\\Safe ";
    editor.chkPassword.value = 1;
    editor.txtPassWord.text = "s3cret ";
    editor.cmbHintQues.text = "Favorite Pet's Name?";
    editor.txtHintAns.text = "Rex";
    editor.chkEncrypt.value = 1;
    editor.chkCompress.value = 0;
    editor.chkWarn.value = 1;
    editor.txtWarn.text = "10";
    editor.chkIdle.value = 1;
    editor.txtIdleTime.text = "15";
    editor.chkSizeOfBkp.value = 1;
    editor.txtSizeOfBkp.text = "500";
    editor.chkQueueThrld.value = 1;
    editor.txtQueueThrld.text = "100";
    schedule(4);
    editor.txtYearlyRecur.text = "2";
    test::select(editor.lstMonth, {"January", "July"});
    test::select(editor.lstYearDate, {"1", "15"});
    state::choose(editor.retentionOptions(), 6);
    editor.txtLatestVer.text = " 12 ";

    EXPECT_EQ(written(), textOf({"[Docs.vdp]",
                                 "{Source files}",
                                 "C:\\Work\\Letters\\",
                                 "C:\\Work\\Notes.txt",
                                 "{End Of Source files}",
                                 "{Excluded options}",
                                 ".tmp",
                                 ".bak",
                                 "{End Of Excluded options}",
                                 "{Included options}",
                                 ".doc",
                                 "{End Of Included options}",
                                 "{Other Data}",
                                 "Desktop Settings",
                                 "IE Favorites",
                                 "{End Of Other Data}",
                                 "{Include by names}",
                                 "A*.*,B*.*",
                                 "{End Of Include by names}",
                                 "{Exclude by names}",
                                 "C*.*",
                                 "{End Of Exclude by names}",
                                 "{Destination path}",
                                 "D:\\Safe ",
                                 "{End Of Destination path}",
                                 "{Password}",
                                 "True",
                                 "s3cret ",
                                 "Favorite Pet's Name?",
                                 "Rex",
                                 "{End Of Password}",
                                 "{Free Space Warn}",
                                 "True",
                                 "Percentage = 10%",
                                 "{End Of Free Space Warn}",
                                 "{System Idle}",
                                 "True",
                                 "Time=15",
                                 "{End Of System Idle}",
                                 "{Confirm Backup}",
                                 "True",
                                 "Size=500 MB",
                                 "{End Of Confirm Backup}",
                                 "{Threshold Queue}",
                                 "True",
                                 "Count=100",
                                 "{End Of Threshold Queue}",
                                 "{Scheduling}",
                                 "Start Date = 9/7/2003",
                                 "Start Time = 02:30:00 PM",
                                 "RecurrencePattern =4",
                                 "Recur=2",
                                 "TimeAt=9:05:03 AM",
                                 "Months=January,July",
                                 "Dates=1,15",
                                 "{End Of Scheduling}",
                                 "Backup versions =6?12",
                                 "Compress = False",
                                 "Encrypt=True",
                                 "[End of Docs.vdp]"}));
}

TEST_F(WriterTest, OverwritesALongerFileWhole)
{
    rig.putFile(kFile, std::string(100'000, '~'));
    EXPECT_THAT(written(), Not(HasSubstr("~")));
}

// What the pattern adds behind the start, and what the schedule record gets of it.
struct PatternCase {
    int pattern;
    std::vector<std::string> lines;
    std::string weekDays = "absent";
    std::string monthDates = "absent";
    std::string yearMonths = "absent";
    std::string yearDates = "absent";
};

TEST_F(WriterTest, EachPatternHasItsOwnLinesAndScheduleValues)
{
    const std::vector<PatternCase> cases{
        {.pattern = 1, .lines = {"RecurrencePattern =1", "Recur=1", "TimeAt=9:05:03 AM"}},
        {.pattern = 2,
         .lines = {"RecurrencePattern =2", "Recur= 2 ", "TimeAt=9:05:03 AM", "Days=xSxSxxx"},
         .weekDays = "xSxSxxx"},
        {.pattern = 3,
         .lines = {"RecurrencePattern =3", "Recur=3", "TimeAt=9:05:03 AM", "Dates=1,31"},
         .monthDates = "1,31"},
        {.pattern = 4,
         .lines = {"RecurrencePattern =4", "Recur=4", "TimeAt=9:05:03 AM", "Months=May",
                   "Dates=2,3,4"},
         .yearMonths = "May",
         .yearDates = "2,3,4"},
    };
    editor.txtWeeklyRecur.text = " 2 ";
    editor.txtMonthlyRecur.text = "3";
    editor.txtYearlyRecur.text = "4";
    test::select(editor.lstWeekDays, {"Monday", "Wednesday"});
    test::select(editor.lstMonthDate, {"1", "31"});
    test::select(editor.lstMonth, {"May"});
    test::select(editor.lstYearDate, {"2", "3", "4"});

    for (const PatternCase& expected : cases) {
        SCOPED_TRACE(expected.pattern);
        rig.store.save.clxnSchedule.clear();
        schedule(expected.pattern);
        EXPECT_EQ(section("Scheduling"),
                  textOf({"Start Date = 9/7/2003", "Start Time = 02:30:00 PM"}) +
                      textOf(expected.lines));
        EXPECT_EQ(scheduleValue("StDate"), "9/7/2003");
        EXPECT_EQ(scheduleValue("StTime"), "2:30:00 PM");
        EXPECT_EQ(scheduleValue("RecOpt"), std::to_string(expected.pattern));
        EXPECT_EQ(scheduleValue("Recur"), std::to_string(expected.pattern));
        EXPECT_EQ(scheduleValue("SetTime"), "9:05:03 AM");
        EXPECT_EQ(scheduleValue("NextRunWDays"), expected.weekDays);
        EXPECT_EQ(scheduleValue("NextRunMDates"), expected.monthDates);
        EXPECT_EQ(scheduleValue("NextRunYMths"), expected.yearMonths);
        EXPECT_EQ(scheduleValue("NextRunYDates"), expected.yearDates);
    }
}

TEST_F(WriterTest, AScheduleWithoutAPatternClosesBehindIt)
{
    schedule(0);
    EXPECT_EQ(section("Scheduling"), textOf({"Start Date = 9/7/2003", "Start Time = 02:30:00 PM",
                                             "RecurrencePattern =0"}));
    EXPECT_EQ(scheduleValue("RecOpt"), "0");
    EXPECT_EQ(scheduleValue("Recur"), "absent");
}

TEST_F(WriterTest, AListWithNothingSelectedLeavesItsKeyAlone)
{
    schedule(3);
    EXPECT_THAT(section("Scheduling"), HasSubstr("Dates=\r\n"));
    EXPECT_EQ(scheduleValue("NextRunMDates"), "");
    schedule(2);
    EXPECT_THAT(section("Scheduling"), HasSubstr("Days=xxxxxxx\r\n"));
}

TEST_F(WriterTest, AValueOfASaveBeforeStaysUntilTheListIsEmptied)
{
    schedule(1);
    rig.store.save.clxnSchedule.add("old", "Recur");
    written();
    EXPECT_EQ(scheduleValue("Recur"), "old");
    EXPECT_EQ(scheduleValue("SetTime"), "9:05:03 AM");
}

struct StartCase {
    base::DateTime start;
    base::DateTime now;
    std::string line;
};

// Both times compare as the text "HH:MM:SS AMPM", character by character, and only on the day
// itself.
TEST_F(WriterTest, AStartThatReadsAsPassedTodayBecomesThePresentTime)
{
    const std::vector<StartCase> cases{
        {{{2003, 7, 9}, {9, 0, 0}}, {{2003, 7, 9}, {10, 30, 15}}, "10:30:15 AM"},
        {{{2003, 7, 9}, {11, 0, 0}}, {{2003, 7, 9}, {10, 30, 15}}, "11:00:00 AM"},
        {{{2003, 7, 9}, {10, 30, 15}}, {{2003, 7, 9}, {10, 30, 15}}, "10:30:15 AM"},
        {{{2003, 7, 10}, {9, 0, 0}}, {{2003, 7, 9}, {10, 30, 15}}, "09:00:00 AM"},
        {{{2003, 7, 8}, {9, 0, 0}}, {{2003, 7, 9}, {10, 30, 15}}, "09:00:00 AM"},
        // One in the afternoon reads below eleven in the morning, and ten in the morning above two
        // in the afternoon: known and kept.
        {{{2003, 7, 9}, {13, 0, 0}}, {{2003, 7, 9}, {11, 0, 0}}, "11:00:00 AM"},
        {{{2003, 7, 9}, {10, 0, 0}}, {{2003, 7, 9}, {14, 0, 0}}, "10:00:00 AM"},
    };
    for (const StartCase& expected : cases) {
        SCOPED_TRACE(expected.line);
        schedule(1);
        editor.dtpStDate.value = {expected.start.date, {}};
        editor.dtpStTime.value = {{2001, 1, 1}, expected.start.time};
        rig.setLocalTime(expected.now);
        EXPECT_THAT(section("Scheduling"), HasSubstr("Start Time = " + expected.line + "\r\n"));
        EXPECT_EQ(base::timeText2(editor.dtpStTime.value.time), expected.line);
        EXPECT_EQ(editor.dtpStTime.value.date, (base::Date{2001, 1, 1})) << "only the time moves";
    }
}

TEST_F(WriterTest, WithoutAScheduleTheSectionIsAbsentAndTheRecordIsDropped)
{
    EXPECT_EQ(section("Scheduling"), "absent");
    EXPECT_THAT(rig.schedules.deleted, ElementsAre("Docs.vdp"));
    EXPECT_TRUE(rig.store.save.clxnSchedule.empty());
}

TEST_F(WriterTest, WithAScheduleTheRecordStays)
{
    schedule(1);
    written();
    EXPECT_THAT(rig.schedules.deleted, IsEmpty());
}

TEST_F(WriterTest, AThirdValueOfTheScheduleCheckWritesNothingAndDropsNothing)
{
    editor.chkAutoSched.value = 2;
    EXPECT_EQ(section("Scheduling"), "absent");
    EXPECT_THAT(rig.schedules.deleted, IsEmpty());
}

TEST_F(WriterTest, ARecordThatCannotBeDroppedDoesNotStopTheSave)
{
    rig.schedules.raises = base::error_number::kPermissionDenied;
    EXPECT_THAT(written(), HasSubstr("[End of Docs.vdp]"));
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

struct RetentionCase {
    int option;
    std::string line;
};

TEST_F(WriterTest, TheRetentionLineHasACountForOptionsSixAndEight)
{
    editor.txtLatestVer.text = " 7 ";
    editor.txtLatestDaysVer.text = " 30 ";
    const std::vector<RetentionCase> cases{
        {1, "Backup versions =1"}, {2, "Backup versions =2"},    {3, "Backup versions =3"},
        {4, "Backup versions =4"}, {5, "Backup versions =5"},    {6, "Backup versions =6?7"},
        {7, "Backup versions =7"}, {8, "Backup versions =8?30"}, {0, "Backup versions =0"},
    };
    for (const RetentionCase& expected : cases) {
        state::choose(editor.retentionOptions(), expected.option);
        EXPECT_THAT(written(), HasSubstr("}\r\n" + expected.line + "\r\nCompress"));
        EXPECT_EQ(scalars.iRetentionOption, expected.option);
    }
}

struct WarnCase {
    std::string text;
    std::string line;
};

TEST_F(WriterTest, ThePercentSignIsAddedUnlessItIsThere)
{
    editor.chkWarn.value = 1;
    const std::vector<WarnCase> cases{{"10", "Percentage = 10%"},
                                      {"10%", "Percentage = 10%"},
                                      {"10% ", "Percentage = 10% "},
                                      {"10 ", "Percentage = 10 %"},
                                      {"", "Percentage = %"}};
    for (const WarnCase& expected : cases) {
        editor.txtWarn.text = expected.text;
        EXPECT_EQ(section("Free Space Warn"), textOf({"True", expected.line}));
    }
}

TEST_F(WriterTest, NamesOfBlanksAloneGiveNoLine)
{
    editor.txtInclNames.text = "   ";
    EXPECT_EQ(section("Include by names"), "");
}

TEST_F(WriterTest, TheDestinationIsWrittenAsItStandsAndKeptTrimmed)
{
    editor.txtDestLoc.text = " D:\\Safe ";
    EXPECT_EQ(section("Destination path"), textOf({" D:\\Safe "}));
    EXPECT_EQ(scalars.sDestinationPath, "D:\\Safe");
}

TEST_F(WriterTest, AFirstPasswordIsTakenFromTheBox)
{
    editor.chkPassword.value = 1;
    editor.txtPassWord.text = "first";
    EXPECT_EQ(section("Password"), textOf({"True", "first", "", ""}));
    EXPECT_EQ(scalars.sProfilePassword, "first");
    EXPECT_TRUE(scalars.bProfileHasPassword);
}

TEST_F(WriterTest, APasswordThatTheProfileHasIsWrittenWhateverTheBoxSays)
{
    editor.chkPassword.value = 1;
    editor.txtPassWord.text = "typed over";
    scalars.bProfileHasPassword = true;
    scalars.sProfilePassword = "first";
    EXPECT_EQ(section("Password"), textOf({"True", "first", "", ""}));
    EXPECT_EQ(scalars.sProfilePassword, "first");
}

TEST_F(WriterTest, APasswordThatIsSwitchedOffLeavesItsTextBehind)
{
    scalars.bProfileHasPassword = true;
    scalars.sProfilePassword = "first";
    EXPECT_EQ(section("Password"), textOf({"False"}));
    EXPECT_FALSE(scalars.bProfileHasPassword);
    EXPECT_EQ(scalars.sProfilePassword, "first");
}

TEST_F(WriterTest, CompressionIsKeptForOthersAndEncryptionIsLeftAsItIs)
{
    editor.chkCompress.value = 0;
    editor.chkEncrypt.value = 1;
    scalars.bCompressFiles = true;
    written();
    EXPECT_FALSE(scalars.bCompressFiles);
    EXPECT_FALSE(scalars.bEncryptFiles) << "only reading a profile sets it";
    editor.chkCompress.value = 1;
    written();
    EXPECT_TRUE(scalars.bCompressFiles);
}

TEST_F(WriterTest, ExtraSourcesFollowTheSourcesLessWhatIsThereAlready)
{
    addSources({"C:\\a", "C:\\b", "C:\\c"});
    state::SaveLists& save = rig.store.save;
    for (const std::string_view path : {"C:\\b", "C:\\e", "C:\\d"})
        save.clxnExtraSourcesA.add(std::string(path), path);
    for (const std::string_view path : {"C:\\e", "C:\\a", "C:\\f", "C:\\g"})
        save.clxnExtraSourcesB.add(std::string(path), path);
    for (const std::string_view path : {"C:\\g", "C:\\c"})
        save.clxnDroppedSources.add(std::string(path), path);
    EXPECT_EQ(section("Source files"), textOf({"C:\\a", "C:\\b", "C:\\d", "C:\\e", "C:\\f"}));
}

struct ProgressCase {
    std::size_t sources;
    double before;
    double after;
};

// A step is 25 divided by the number of sources, to six places; it is taken once below 75 for each
// source that is looked at and once below 99 for each that is printed.
TEST_F(WriterTest, TheBarAdvancesByRoundedSteps)
{
    const std::vector<ProgressCase> cases{
        {0, 3, 3},
        {3, 0, 6 * 8.333333},
        {3, 50, 50 + 5 * 8.333333}, // the third look would pass 75
        {1, 50, 75},                // 75 is not below 75; the print takes its step
        {4, 75, 75 + 3 * 6.25},     // no look; the fourth print would reach 100
        {7, 98, 98},
    };
    for (const ProgressCase& expected : cases) {
        SCOPED_TRACE(expected.before);
        rig.store.save.clxnSources.clear();
        for (std::size_t i = 0; i < expected.sources; ++i)
            addSources({"C:\\f" + std::to_string(i)});
        rig.frame.pb.value = expected.before;
        written();
        EXPECT_DOUBLE_EQ(rig.frame.pb.value, expected.after);
    }
}

TEST_F(WriterTest, AMissingFolderIsReportedAndNothingElseHappens)
{
    addSources({"C:\\a"});
    editor.txtDestLoc.text = "D:\\Safe";
    EXPECT_FALSE(CreatingVdpFile(rig.profiles, "Docs.vdp", "C:\\App\\Gone"));

    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    const trace::frmErrLog& form = rig.dialog.shown.front();
    EXPECT_EQ(form.txtInf.text, "The Path to save the Profile is not available");
    EXPECT_EQ(form.txtSysErrNo.text, "76");
    EXPECT_EQ(form.txtModName.text, "modPrSaveOpen");
    EXPECT_EQ(form.txtProcName.text, "CreatingVdpFile");
    EXPECT_THAT(rig.entries(), ElementsAre("CreatingVdpFile Error 2", "DisplayErrMSgDialog End 2"));
    EXPECT_EQ(rig.frame.pb.value, 0);
    EXPECT_EQ(scalars.sDestinationPath, "");
    EXPECT_THAT(rig.schedules.deleted, IsEmpty());
}

TEST_F(WriterTest, AFolderOfTheProfilesNameIsReported)
{
    rig.fileSystem().createFolder(kFile);
    EXPECT_FALSE(save());
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown.front().txtSysErrNo.text, "75");
}

TEST_F(WriterTest, AFailureAtAnyCallLeavesTheOldFileAndIsReported)
{
    rig.putFile(kFile, "the old profile");
    rig.trace.WriteRunTrace("before", "Start", true);
    // Names of calls that a save makes on the way to its file.
    for (const std::string_view call : {"folder.find", "folder.open", "file.write", "file.flush",
                                        "file.close", "folder.rename"}) {
        SCOPED_TRACE(call);
        rig.dialog.shown.clear();
        rig.script.reset();
        rig.script.failCallsNamed(std::string(call), base::error_number::kDiskFull, "Docs.vdp");
        EXPECT_FALSE(save());
        rig.script.reset();
        EXPECT_EQ(rig.fileSystem().readAll(kFile), "the old profile");
        EXPECT_FALSE(rig.fileSystem().fileExists("C:\\App\\Profiles\\~Docs.vdp.tmp"));
        ASSERT_EQ(rig.dialog.shown.size(), 1U);
        EXPECT_EQ(rig.dialog.shown.front().txtSysErrNo.text, "61");
        EXPECT_THAT(rig.dialog.shown.front().txtSysErrMsg.text, testing::StartsWith("Disk full"));
    }
    EXPECT_TRUE(save());
}

TEST_F(WriterTest, AProcessThatDiesAtAnyCallLeavesTheOldFileOrTheNewOne)
{
    const std::string fresh = written();
    std::size_t died = 0;
    for (bool alive = false; !alive;) {
        rig.putFile(kFile, "the old profile");
        rig.script.reset();
        rig.script.killAtCall(++died);
        try {
            alive = save();
        } catch (const platform::Killed&) {
        }
        rig.script.reset();
        const std::string left = rig.fileSystem().readAll(kFile);
        EXPECT_TRUE(left == "the old profile" || left == fresh) << "died at call " << died;
        ASSERT_LT(died, 100U);
    }
    EXPECT_GT(died, 6U);
}

} // namespace
} // namespace vardelin::profile
