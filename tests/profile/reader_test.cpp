#include "profile/profile_reader.h"

#include "profile/profile_writer.h"
#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vardelin::profile {
namespace {

using test::ProfileRig;
using test::selectedOf;
using test::textOf;
using test::textsOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::string_view kFolder = "C:\\App\\Profiles\\";
constexpr std::string_view kCopy = "C:\\App\\Profiles\\UDefault.txt";

using Lines = std::vector<std::string>;

class ReaderTest : public testing::Test {
protected:
    void openText(std::string_view text)
    {
        rig.putFile(kCopy, text);
        ActivateOpenProfile(rig.profiles, "UDefault.txt", kFolder);
    }
    // The lines between the profile's first and last.
    void open(const Lines& lines)
    {
        openText(textOf({"[Default.vdp]"}) + textOf(lines) + textOf({"[End of Default.vdp]"}));
    }
    void openSection(const std::string& words, Lines lines)
    {
        lines.insert(lines.begin(), "{" + words + "}");
        lines.push_back("{End Of " + words + "}");
        open(lines);
    }
    bool copyIsThere() { return rig.fileSystem().fileExists(kCopy); }

    ProfileRig rig;
    state::ProfileEditorState& editor = rig.editor;
    state::ProfileScalars& scalars = rig.store.scalars;
    state::OpenedLists& opened = rig.store.opened;
};

// ---- sources

struct SourcesCase {
    std::string_view name;
    Lines lines;
    Lines list;
    Lines roots;
};

class SourcesTest : public ReaderTest, public testing::WithParamInterface<SourcesCase> {};

TEST_P(SourcesTest, GivePrefixesFilesAndFolderMarks)
{
    openSection("Source files", GetParam().lines);
    EXPECT_EQ(opened.clxnOpenedSources.items(), GetParam().list);
    for (const std::string& item : GetParam().list)
        EXPECT_TRUE(opened.clxnOpenedSources.contains(item)) << "each is its own key";
    Lines roots;
    for (const state::TreeNode* root : editor.tvwDirectory.roots())
        roots.push_back(root->key());
    EXPECT_EQ(roots, GetParam().roots);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Lines, SourcesTest,
    testing::Values(
        SourcesCase{"a_folder_and_a_file_below_it",
                    {"C:\\A\\", "C:\\A\\B\\f.txt"},
                    {"C:\\", "C:\\A\\*", "C:\\A\\", "C:\\A\\B\\", "C:\\A\\B\\f.txt"},
                    {"C:\\"}},
        // A folder that an earlier line brought as a prefix gets no mark: the order tells.
        SourcesCase{"the_same_the_other_way_round",
                    {"C:\\A\\B\\f.txt", "C:\\A\\"},
                    {"C:\\", "C:\\A\\", "C:\\A\\B\\", "C:\\A\\B\\f.txt"},
                    {"C:\\"}},
        SourcesCase{"a_whole_drive_has_no_mark", {"C:\\"}, {"C:\\"}, {"C:\\"}},
        SourcesCase{"a_drive_without_its_backslash", {"C:"}, {"C:"}, {}},
        SourcesCase{"two_drives",
                    {"C:\\a", "D:\\b\\"},
                    {"C:\\", "C:\\a", "D:\\", "D:\\b\\*"},
                    {"C:\\", "D:\\"}},
        SourcesCase{"a_network_path_has_no_root",
                    {"\\\\host\\share\\f.txt"},
                    {"\\", "\\\\", "\\\\host\\", "\\\\host\\share\\", "\\\\host\\share\\f.txt"},
                    {}},
        SourcesCase{"a_repeated_line_is_dropped",
                    {"C:\\a", "C:\\a", "C:\\B\\", "C:\\B\\"},
                    {"C:\\", "C:\\a", "C:\\B\\*"},
                    {"C:\\"}},
        SourcesCase{"names_that_differ_in_case_are_two",
                    {"C:\\Docs\\", "C:\\docs\\"},
                    {"C:\\", "C:\\Docs\\*", "C:\\docs\\*"},
                    {"C:\\"}},
        SourcesCase{"an_empty_line_adds_nothing", {"", "C:\\a"}, {"C:\\", "C:\\a"}, {"C:\\"}},
        SourcesCase{"a_lone_line_feed_is_data",
                    {"C:\\a\nb", "C:\\c\rd"},
                    {"C:\\", "C:\\a\nb", "C:\\c\rd"},
                    {"C:\\"}}),
    [](const auto& each) { return std::string(each.param.name); });

TEST_F(ReaderTest, ADriveBecomesATickedRootWithAnEmptyChild)
{
    editor.tvwDirectory.add(nullptr, {.key = "X:\\", .text = "X:"});
    openSection("Source files", {"C:\\Work\\", "C:\\a.txt"});
    ASSERT_EQ(editor.tvwDirectory.count(), 3U);
    const state::TreeNode& root = editor.tvwDirectory.node(2);
    EXPECT_EQ(root.key(), "C:\\");
    EXPECT_EQ(root.text, "C:");
    EXPECT_EQ(root.image, 1);
    EXPECT_EQ(root.foreColor, 0x808000U);
    EXPECT_EQ(root.children(), 1U);
    const state::TreeNode& child = editor.tvwDirectory.node(3);
    EXPECT_EQ(child.key(), "");
    EXPECT_EQ(child.text, "");
    EXPECT_EQ(child.parent(), &root);
    for (std::size_t i = 1; i <= editor.tvwDirectory.count(); ++i)
        EXPECT_TRUE(editor.tvwDirectory.node(i).checked)
            << "the end of the section ticks all: " << i;
}

TEST_F(ReaderTest, ADriveThatTheTreeHasIsNotAddedAgain)
{
    editor.tvwDirectory.add(nullptr, {.key = "C:\\", .text = "C:"});
    openSection("Source files", {"C:\\a.txt"});
    EXPECT_EQ(editor.tvwDirectory.count(), 1U);
}

TEST_F(ReaderTest, ASourceLineIsToldToTheEditor)
{
    openSection("Source files", {});
    EXPECT_FALSE(scalars.bSourceLineRead);
    openSection("Source files", {"C:\\a"});
    EXPECT_TRUE(scalars.bSourceLineRead);
    EXPECT_TRUE(scalars.SourceChecked);
}

// ---- lists of options

TEST_F(ReaderTest, ExcludedExtensionsGoToTheirListAlone)
{
    editor.lstExclude.addItem("left from before");
    openSection("Excluded options", {".tmp", ".bak", ".TMP"});
    EXPECT_THAT(opened.clxnOpenedExcluded.items(), ElementsAre(".tmp", ".bak"));
    EXPECT_THAT(editor.lstExclude.rows, IsEmpty());
}

TEST_F(ReaderTest, IncludedExtensionsAreTickedRowsWithTypeAndIcon)
{
    editor.lstInclude.addItem("left from before");
    openSection("Included options", {".txt", ".xyz"});
    EXPECT_THAT(opened.clxnOpenedIncluded.items(), ElementsAre(".txt", ".xyz"));
    ASSERT_EQ(editor.lstInclude.rows.size(), 2U);
    EXPECT_EQ(editor.lstInclude.rows[0].text, ".txt");
    EXPECT_EQ(editor.lstInclude.rows[0].sub, "Plain text document");
    EXPECT_EQ(editor.lstInclude.rows[0].icon, "text-x-generic");
    EXPECT_TRUE(editor.lstInclude.rows[0].checked);
    EXPECT_EQ(editor.lstInclude.rows[1].sub, "");
    EXPECT_TRUE(editor.lstInclude.rows[1].checked);
}

TEST_F(ReaderTest, ARepeatedIncludedExtensionIsTwoRowsButOneEntry)
{
    openSection("Included options", {".txt", ".txt"});
    EXPECT_EQ(opened.clxnOpenedIncluded.count(), 1U);
    EXPECT_THAT(textsOf(editor.lstInclude), ElementsAre(".txt", ".txt"));
}

TEST_F(ReaderTest, OtherDataShrinksToTheSavedItemsAllSelected)
{
    openSection("Other Data", {"IE Favorites", "Desktop Settings"});
    EXPECT_THAT(textsOf(editor.lstOtherData), ElementsAre("IE Favorites", "Desktop Settings"));
    EXPECT_THAT(selectedOf(editor.lstOtherData), ElementsAre("IE Favorites", "Desktop Settings"));
    EXPECT_THAT(opened.clxnOpenedOtherData.items(),
                ElementsAre("IE Favorites", "Desktop Settings"));
}

TEST_F(ReaderTest, OtherDataWithoutItsSectionKeepsItsRows)
{
    open({});
    EXPECT_EQ(editor.lstOtherData.rows.size(), 4U);
}

TEST_F(ReaderTest, NamesAreOneLineAndTheLineBehindIsNotLookedAt)
{
    openSection("Include by names", {"A*.*,B*.*"});
    EXPECT_EQ(editor.txtInclNames.text, "A*.*,B*.*");
    // The second line is swallowed as the closing line; the real one is then an unknown line and
    // takes the next two with it.
    open({"{Exclude by names}", "C*.*", "D*.*", "{Include by names}", "E*.*", "x"});
    EXPECT_EQ(editor.txtExclNames.text, "C*.*");
    EXPECT_EQ(editor.txtInclNames.text, "E*.*");
}

TEST_F(ReaderTest, NamesWithNothingTypedAreEmptied)
{
    editor.txtInclNames.text = "old";
    editor.txtExclNames.text = "old";
    openSection("Include by names", {});
    EXPECT_EQ(editor.txtInclNames.text, "");
    EXPECT_EQ(editor.txtExclNames.text, "old") << "a section that is not there changes nothing";
}

// ---- destination

struct DestinationCase {
    std::string line;
    std::string shown;
    std::string drive;
};

TEST_F(ReaderTest, ABareDriveGainsABackslashInTheBoxOnly)
{
    const std::vector<DestinationCase> cases{
        {"D:", "D:\\", "D:"},
        {"D: ", "D: \\", "D: "},
        {"D:\\Safe", "D:\\Safe", "D:"},
        {"D:\\", "D:\\", "D:"},
        {"Safe", "Safe", "Safe"},
        {"\\\\h\\s", "\\\\h\\s", ""},
        {" D:\\Safe ", " D:\\Safe ", " D:"},
    };
    for (const DestinationCase& expected : cases) {
        openSection("Destination path", {expected.line});
        EXPECT_EQ(editor.txtDestLoc.text, expected.shown);
        EXPECT_EQ(scalars.sDestinationPath, expected.line);
        EXPECT_EQ(editor.CmbDestDrives.text, expected.drive);
        EXPECT_FALSE(editor.Frame13.enabled);
    }
}

// ---- the five sections with an option

TEST_F(ReaderTest, APasswordIsReadWithItsHint)
{
    openSection("Password", {"True", "s3cret ", "Favorite Pet's Name?", "Rex"});
    EXPECT_EQ(editor.chkPassword.value, 1);
    EXPECT_EQ(editor.txtPassWord.text, "s3cret ");
    EXPECT_EQ(scalars.sProfilePassword, "s3cret ");
    EXPECT_TRUE(scalars.bProfileHasPassword);
    EXPECT_EQ(editor.cmbHintQues.text, "Favorite Pet's Name?");
    EXPECT_EQ(editor.txtHintAns.text, "Rex");
    EXPECT_FALSE(editor.Frame10.enabled);
    EXPECT_TRUE(scalars.bOptionsLoaded);
}

TEST_F(ReaderTest, NoPasswordEmptiesAndDisablesItsBox)
{
    editor.chkPassword.value = 1;
    editor.txtPassWord.text = "old";
    openSection("Password", {"False"});
    EXPECT_EQ(editor.chkPassword.value, 0);
    EXPECT_EQ(editor.txtPassWord.text, "");
    EXPECT_FALSE(editor.txtPassWord.enabled);
    EXPECT_FALSE(scalars.bOptionsLoaded);
}

TEST_F(ReaderTest, ThePasswordOfAnEarlierProfileIsForgottenInAnyCase)
{
    scalars.sProfilePassword = "earlier";
    scalars.bProfileHasPassword = true;
    open({});
    EXPECT_EQ(scalars.sProfilePassword, "");
    EXPECT_FALSE(scalars.bProfileHasPassword);
}

TEST_F(ReaderTest, ThePercentageKeepsItsSignTrimmed)
{
    openSection("Free Space Warn", {"True", "Percentage =  10% "});
    EXPECT_EQ(editor.chkWarn.value, 1);
    EXPECT_EQ(editor.txtWarn.text, "10%");
    EXPECT_TRUE(scalars.bOptionsLoaded);
    EXPECT_FALSE(editor.chkWarn.enabled);
    EXPECT_FALSE(editor.Label9.enabled);
    EXPECT_FALSE(editor.txtWarn.enabled);
}

TEST_F(ReaderTest, NoWarningIsDisabledAlike)
{
    editor.chkWarn.value = 1;
    editor.txtWarn.text = "10%";
    openSection("Free Space Warn", {"False"});
    EXPECT_EQ(editor.chkWarn.value, 0);
    EXPECT_EQ(editor.txtWarn.text, "");
    EXPECT_FALSE(editor.chkWarn.enabled);
    EXPECT_FALSE(editor.Label9.enabled);
    EXPECT_FALSE(editor.txtWarn.enabled);
    EXPECT_FALSE(scalars.bOptionsLoaded);
}

TEST_F(ReaderTest, TheIdleTimeIsReadUntrimmed)
{
    openSection("System Idle", {"True", "Time= 15 "});
    EXPECT_EQ(editor.chkIdle.value, 1);
    EXPECT_EQ(editor.txtIdleTime.text, " 15 ");
    EXPECT_FALSE(editor.Frame12.enabled);
    EXPECT_TRUE(scalars.bOptionsLoaded);
    editor.Frame12.enabled = true;
    openSection("System Idle", {"False"});
    EXPECT_EQ(editor.chkIdle.value, 0);
    EXPECT_EQ(editor.txtIdleTime.text, "");
    EXPECT_TRUE(editor.Frame12.enabled) << "only an idle time disables the frame";
}

TEST_F(ReaderTest, TheSizeKeepsTheBlankInFrontOfItsUnit)
{
    openSection("Confirm Backup", {"True", "Size=500 MB"});
    EXPECT_EQ(editor.chkSizeOfBkp.value, 1);
    EXPECT_EQ(editor.txtSizeOfBkp.text, "500 ");
    EXPECT_EQ(editor.cmbSizeOfBkp.text, "MB");
    EXPECT_TRUE(scalars.bOptionsLoaded);
    openSection("Confirm Backup", {"False"});
    EXPECT_EQ(editor.chkSizeOfBkp.value, 0);
    EXPECT_EQ(editor.txtSizeOfBkp.text, "500 ") << "switching off leaves the texts";
}

TEST_F(ReaderTest, ASizeTooShortForAUnitLeavesTheNumber)
{
    editor.txtSizeOfBkp.text = "50";
    openSection("Confirm Backup", {"True", "Size=5"});
    EXPECT_EQ(editor.txtSizeOfBkp.text, "50");
    EXPECT_EQ(editor.cmbSizeOfBkp.text, "5");
}

TEST_F(ReaderTest, TheQueueThresholdIsReadUntrimmed)
{
    openSection("Threshold Queue", {"True", "Count= 50"});
    EXPECT_EQ(editor.chkQueueThrld.value, 1);
    EXPECT_EQ(editor.txtQueueThrld.text, " 50");
    EXPECT_TRUE(scalars.bOptionsLoaded);
    openSection("Threshold Queue", {"False"});
    EXPECT_EQ(editor.chkQueueThrld.value, 0);
    EXPECT_EQ(editor.txtQueueThrld.text, "");
}

TEST_F(ReaderTest, TrueAndFalseOfFiveSectionsAreExact)
{
    for (state::CheckBox* const box : {&editor.chkPassword, &editor.chkWarn, &editor.chkIdle,
                                       &editor.chkSizeOfBkp, &editor.chkQueueThrld})
        box->value = 5;
    Lines lines;
    for (const char* const words :
         {"Password", "Free Space Warn", "System Idle", "Confirm Backup", "Threshold Queue"}) {
        lines.push_back("{" + std::string(words) + "}");
        lines.insert(lines.end(), {"TRUE", "false", " True"});
        lines.push_back("{END OF " + base::upperAscii(words) + "}");
    }
    open(lines);
    for (const state::CheckBox* const box : {&editor.chkPassword, &editor.chkWarn, &editor.chkIdle,
                                             &editor.chkSizeOfBkp, &editor.chkQueueThrld})
        EXPECT_EQ(box->value, 5);
    EXPECT_TRUE(editor.chkWarn.enabled);
    EXPECT_FALSE(scalars.bOptionsLoaded);
}

// ---- schedule

struct PatternCase {
    std::string pattern;
    Lines lines;
    int option;
    std::string retention; // E for enabled, - for disabled, options 1 to 8
};

TEST_F(ReaderTest, APatternLeavesItsOwnRetentionOptions)
{
    const std::vector<PatternCase> cases{
        {"1", {"Recur=3", "TimeAt=10:00:00 AM"}, 1, "EE---EEE"},
        {" 2 ", {"Recur=3", "TimeAt=10:00:00 AM", "Days=Sxxxxxx"}, 2, "--E--EE-"},
        {"3", {"Recur=3", "TimeAt=10:00:00 AM", "Dates=1"}, 3, "---E-EE-"},
        {"4", {"Recur=3", "TimeAt=10:00:00 AM", "Months=May", "Dates=1"}, 4, "----EEE-"},
    };
    for (const PatternCase& expected : cases) {
        SCOPED_TRACE(expected.pattern);
        Lines lines{"Start Date = 9/7/2003", "Start Time = 02:30:00 PM",
                    "RecurrencePattern =" + expected.pattern};
        lines.insert(lines.end(), expected.lines.begin(), expected.lines.end());
        openSection("Scheduling", lines);
        EXPECT_EQ(editor.chkAutoSched.value, 1);
        EXPECT_FALSE(editor.Frame4.enabled);
        EXPECT_EQ(editor.dtpStDate.value, (base::DateTime{{2003, 7, 9}, {}}));
        EXPECT_EQ(scalars.dStartDate, (base::Date{2003, 7, 9}));
        EXPECT_EQ(editor.dtpStTime.value.time, (base::TimeOfDay{14, 30, 0}));
        EXPECT_EQ(state::chosen(std::as_const(editor).patternOptions()), expected.option);
        std::string enabled;
        for (const state::OptionButton* const option : editor.retentionOptions())
            enabled += option->enabled ? 'E' : '-';
        EXPECT_EQ(enabled, expected.retention);
        for (const state::OptionButton* const option : editor.patternOptions())
            EXPECT_FALSE(option->enabled);
    }
}

struct EveryCase {
    std::string pattern;
    state::TextBox state::ProfileEditorState::*interval;
    state::TimePicker state::ProfileEditorState::*time;
};

TEST_F(ReaderTest, TheIntervalAndTimeOfThePatternAreReadAndDisabled)
{
    using Editor = state::ProfileEditorState;
    const std::vector<EveryCase> cases{{"1", &Editor::txtDailyRecur, &Editor::dtpDaily},
                                       {"2", &Editor::txtWeeklyRecur, &Editor::dtpWeekly},
                                       {"3", &Editor::txtMonthlyRecur, &Editor::dtpMonthly},
                                       {"4", &Editor::txtYearlyRecur, &Editor::dtpYearly}};
    for (const EveryCase& expected : cases) {
        openSection("Scheduling", {"Start Date = 9/7/2003", "Start Time = 02:30:00 PM",
                                   "RecurrencePattern =" + expected.pattern, "Recur =12",
                                   "TimeAt= 10:00:00 PM", "x=", "y="});
        for (const EveryCase& other : cases) {
            SCOPED_TRACE(expected.pattern + " " + other.pattern);
            const bool own = other.pattern == expected.pattern;
            // The other patterns' pages were brought to life before the section was read.
            EXPECT_EQ((editor.*other.interval).enabled, !own);
            EXPECT_EQ((editor.*other.time).enabled, !own);
        }
        EXPECT_EQ((editor.*expected.interval).text, "12");
        EXPECT_EQ((editor.*expected.time).value.time, (base::TimeOfDay{22, 0, 0}));
    }
}

TEST_F(ReaderTest, TheListsShrinkToTheSavedValues)
{
    const Lines start{"Start Date = 9/7/2003", "Start Time = 02:30:00 PM"};
    const auto with = [&](const Lines& lines) {
        Lines all = start;
        all.insert(all.end(), lines.begin(), lines.end());
        return all;
    };
    openSection("Scheduling",
                with({"RecurrencePattern =2", "Recur=1", "TimeAt=1:00:00 AM", "Days=SxxxxxS"}));
    EXPECT_THAT(textsOf(editor.lstWeekDays), ElementsAre("Sunday", "Saturday"));
    EXPECT_THAT(selectedOf(editor.lstWeekDays), ElementsAre("Sunday", "Saturday"));
    EXPECT_EQ(editor.lstMonthDate.rows.size(), 31U);

    openSection("Scheduling",
                with({"RecurrencePattern =3", "Recur=1", "TimeAt=1:00:00 AM", "Dates=1,15,31"}));
    EXPECT_THAT(textsOf(editor.lstMonthDate), ElementsAre("1", "15", "31"));
    EXPECT_THAT(selectedOf(editor.lstMonthDate), ElementsAre("1", "15", "31"));
    EXPECT_EQ(editor.lstWeekDays.rows.size(), 7U) << "filled anew at the start of each reading";

    openSection("Scheduling", with({"RecurrencePattern =4", "Recur=1", "TimeAt=1:00:00 AM",
                                    "Months=May,June", "Dates=2"}));
    EXPECT_THAT(selectedOf(editor.lstMonth), ElementsAre("May", "June"));
    EXPECT_THAT(selectedOf(editor.lstYearDate), ElementsAre("2"));
    EXPECT_EQ(editor.lstMonth.rows.size(), 2U);
    EXPECT_EQ(editor.lstYearDate.rows.size(), 1U);
}

struct DaysCase {
    std::string letters;
    Lines days;
};

TEST_F(ReaderTest, DaysAreLettersByPosition)
{
    const std::vector<DaysCase> cases{{"SxxxxxS", {"Sunday", "Saturday"}},
                                      {"xS", {"Monday"}},
                                      {"", {}},
                                      {"sXSSyyy", {"Tuesday", "Wednesday"}},
                                      {"xxxxxxxS", {}}};
    for (const DaysCase& expected : cases) {
        openSection("Scheduling",
                    {"Start Date = 9/7/2003", "Start Time = 02:30:00 PM", "RecurrencePattern =2",
                     "Recur=1", "TimeAt=1:00:00 AM", "Days=" + expected.letters});
        EXPECT_EQ(textsOf(editor.lstWeekDays), expected.days) << expected.letters;
    }
}

struct DateCase {
    std::string text;
    base::Date date;
};

// The day comes first, unless the second number can be no month. A default profile's date, written
// with the month first, therefore swaps where both are 12 or below.
TEST_F(ReaderTest, StartDatesReadDayFirstWhereTheyCan)
{
    const std::vector<DateCase> cases{{"9/7/2003", {2003, 7, 9}},
                                      {"31/12/2003", {2003, 12, 31}},
                                      {"07/13/2003", {2003, 7, 13}},
                                      {"07/03/2003", {2003, 3, 7}},
                                      {" 1/2/2003 ", {2003, 2, 1}}};
    for (const DateCase& expected : cases) {
        openSection("Scheduling", {"Start Date = " + expected.text, "Start Time = 02:30:00 PM",
                                   "RecurrencePattern =0"});
        EXPECT_EQ(editor.dtpStDate.value.date, expected.date) << expected.text;
        EXPECT_EQ(scalars.dStartDate, expected.date) << expected.text;
    }
}

TEST_F(ReaderTest, TextsThatAreNoDateAndNoTimeLeaveThePickers)
{
    editor.dtpStDate.value = {{2001, 2, 3}, {}};
    editor.dtpStTime.value = {{}, {4, 5, 6}};
    openSection("Scheduling", {"Start Date = soon", "Start Time = later", "RecurrencePattern =9"});
    EXPECT_EQ(editor.dtpStDate.value.date, (base::Date{2001, 2, 3}));
    EXPECT_EQ(editor.dtpStTime.value.time, (base::TimeOfDay{4, 5, 6}));
    EXPECT_EQ(scalars.dStartDate, (base::Date{2001, 2, 3})) << "the picker's value, whatever it is";
    EXPECT_EQ(editor.chkAutoSched.value, 1);
}

TEST_F(ReaderTest, AnUnknownPatternDisablesThePatternsAndGoesOn)
{
    openSection("Scheduling",
                {"Start Date = 9/7/2003", "Start Time = 02:30:00 PM", "RecurrencePattern =12",
                 "Start Date = 10/7/2003", "Start Time = 03:30:00 PM", "RecurrencePattern =1",
                 "Recur=5", "TimeAt=1:00:00 AM"});
    EXPECT_EQ(editor.dtpStDate.value.date, (base::Date{2003, 7, 10}));
    EXPECT_TRUE(editor.optDaily.value);
    EXPECT_EQ(editor.txtDailyRecur.text, "5");
}

TEST_F(ReaderTest, WithoutAScheduleTheCheckIsOff)
{
    editor.chkAutoSched.value = 1;
    open({});
    EXPECT_EQ(editor.chkAutoSched.value, 0);
    EXPECT_FALSE(editor.chkAutoSched.enabled);
}

// ---- the last lines

struct FlagCase {
    std::string line;
    int value; // 2 is the value from before
    bool flag;
};

TEST_F(ReaderTest, CompressionAndEncryptionAreTrimmedAndOfAnyCase)
{
    const std::vector<FlagCase> cases{
        {"x = True", 1, true},   {"x= TRUE ", 1, true}, {"x=true", 1, true}, {"x=False", 0, false},
        {"x = fALSE", 0, false}, {"x=Yes", 2, false},   {"x=", 2, false},    {"True", 2, false}};
    for (const FlagCase& expected : cases) {
        SCOPED_TRACE(expected.line);
        editor.chkCompress.value = 2;
        editor.chkEncrypt.value = 2;
        scalars.bCompressFiles = true;
        scalars.bEncryptFiles = true;
        open({"Backup versions =7", expected.line, expected.line});
        EXPECT_EQ(editor.chkCompress.value, expected.value);
        EXPECT_EQ(editor.chkEncrypt.value, expected.value);
        EXPECT_EQ(scalars.bCompressFiles, expected.flag);
        EXPECT_EQ(scalars.bEncryptFiles, expected.flag);
        EXPECT_FALSE(editor.Frame10.enabled);
    }
}

struct VersionCase {
    std::string value;
    int option; // 0 sets nothing
    std::string versions;
    std::string days;
    bool loaded;
};

TEST_F(ReaderTest, VersioncheckTakesTheFirstCharacterAndWhatIsBehindTheQuestionMark)
{
    const std::vector<VersionCase> cases{
        {"1", 1, "", "d", false},   {"2", 2, "", "d", false},    {"3", 3, "", "d", false},
        {"4", 4, "", "d", false},   {"5", 5, "", "d", false},    {" 6?7 ", 6, "7", "d", true},
        {"6?", 6, "", "d", true},   {"6", 6, "", "d", true},     {"6? 7?8", 6, " 7?8", "d", true},
        {"7?5", 7, "", "d", false}, {"8?30", 8, "", "30", true}, {"71", 7, "", "d", false},
        {"0", 0, "", "d", false},   {"9", 0, "", "d", false},    {"x6?7", 0, "", "d", false},
        {"", 0, "", "d", false},
    };
    for (const VersionCase& expected : cases) {
        SCOPED_TRACE(expected.value);
        ProfileRig fresh;
        fresh.editor.txtLatestVer.text = "v";
        fresh.editor.txtLatestDaysVer.text = "d";
        state::choose(fresh.editor.retentionOptions(), 2);
        fresh.store.scalars.iRetentionOption = 2;
        Versioncheck(fresh.profiles, expected.value);
        const int option = expected.option == 0 ? 2 : expected.option;
        EXPECT_EQ(state::chosen(std::as_const(fresh.editor).retentionOptions()), option);
        EXPECT_EQ(fresh.store.scalars.iRetentionOption, option);
        EXPECT_EQ(fresh.editor.txtLatestVer.text, expected.versions);
        EXPECT_EQ(fresh.editor.txtLatestDaysVer.text, expected.days);
        EXPECT_EQ(fresh.store.scalars.bOptionsLoaded, expected.loaded);
        EXPECT_FALSE(fresh.editor.Frame2.enabled);
        EXPECT_THAT(fresh.entries(), ElementsAre("Versioncheck End 2"));
    }
}

// ---- the primary mark

struct PrimaryCase {
    std::string list;
    int value;
};

TEST_F(ReaderTest, ThePrimaryProfileIsTickedInAnyCaseAndCannotBeChanged)
{
    rig.putFile("C:\\App\\Profiles\\DEFAULT.VDP", "");
    rig.putFile("C:\\App\\Profiles\\Other.vdp", "");
    for (const PrimaryCase& expected :
         {PrimaryCase{"[Primary Profile]\r\nDEFAULT.VDP\r\n", 1},
          PrimaryCase{"[Primary Profile]\r\nOther.vdp\r\n", 0}, PrimaryCase{"", 0}}) {
        rig.putFile("C:\\App\\Data\\Other_Dsk.txt", expected.list);
        editor.chkPrimary = {.value = 1 - expected.value, .enabled = true};
        open({});
        EXPECT_EQ(editor.chkPrimary.value, expected.value) << expected.list;
        EXPECT_FALSE(editor.chkPrimary.enabled);
    }
}

// ---- the whole file

TEST_F(ReaderTest, LinesOfSectionsAreReadInAnyCase)
{
    openText(
        textOf({"[DEFAULT.VDP]", "{SOURCE FILES}", "C:\\a", "{end of source files}",
                "{destination PATH}", "D:\\x", "{END of Destination Path}", "{EXCLUDED options}",
                ".tmp", "{end of excluded OPTIONS}", "backup VERSIONS =3", "compress=true",
                "encrypt=true", "[end OF default.vdp]", "Backup versions =5"}));
    EXPECT_THAT(opened.clxnOpenedSources.items(), ElementsAre("C:\\", "C:\\a"));
    EXPECT_EQ(editor.txtDestLoc.text, "D:\\x");
    EXPECT_THAT(opened.clxnOpenedExcluded.items(), ElementsAre(".tmp"));
    EXPECT_TRUE(editor.optVer3.value) << "nothing behind the closing line is read";
    EXPECT_TRUE(scalars.bEncryptFiles);
}

TEST_F(ReaderTest, ARenamedProfileLosesItsSourcesToAnUnknownFirstLine)
{
    openText(textOf({"[Former.vdp]", "{Source files}", "C:\\a", "C:\\b", "{End Of Source files}",
                     "{Destination path}", "D:\\x", "{End Of Destination path}",
                     "[End of Former.vdp]"}));
    // The first line counts as the retention line and takes two lines with it; so does what is left
    // of the sources. The rest is read.
    EXPECT_TRUE(opened.clxnOpenedSources.empty());
    EXPECT_THAT(editor.txtDestLoc.text, Not(testing::Eq("C:\\b")));
    EXPECT_TRUE(editor.optVer7.value);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_FALSE(copyIsThere());
}

TEST_F(ReaderTest, AnUnknownLineTakesTheNextTwoWithIt)
{
    open({"", "{Destination path}", "D:\\lost", "{End Of Destination path}", "x", "y",
          "{Destination path}", "D:\\kept", "{End Of Destination path}"});
    EXPECT_EQ(editor.txtDestLoc.text, "D:\\kept") << "a blank line is an unknown line";
}

TEST_F(ReaderTest, AFileThatEndsOutsideASectionIsReadWithoutComplaint)
{
    openText("[Default.vdp]\r\nBackup versions =4");
    EXPECT_TRUE(editor.optVer4.value);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_FALSE(copyIsThere());
}

TEST_F(ReaderTest, AnEmptyFileIsReadWithoutComplaint)
{
    openText("");
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_FALSE(copyIsThere());
    EXPECT_FALSE(editor.chkAutoSched.enabled);
}

struct UnclosedCase {
    std::string_view name;
    Lines lines;
};

class UnclosedTest : public ReaderTest, public testing::WithParamInterface<UnclosedCase> {};

TEST_P(UnclosedTest, SectionEndsWithTheFile)
{
    // Cut behind each line in turn: every one of them has to come to an end.
    Lines lines;
    for (const std::string& line : GetParam().lines) {
        lines.push_back(line);
        openText("[Default.vdp]\r\n" + textOf(lines));
        EXPECT_THAT(rig.dialog.shown, IsEmpty());
        EXPECT_FALSE(copyIsThere());
        EXPECT_FALSE(editor.chkAutoSched.enabled) << "the reading came to its end";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Sections, UnclosedTest,
    testing::Values(UnclosedCase{"excluded", {"{Excluded options}", ".a"}},
                    UnclosedCase{"included", {"{Included options}", ".a"}},
                    UnclosedCase{"other_data", {"{Other Data}", "IE Favorites"}},
                    UnclosedCase{"include_names", {"{Include by names}", "a"}},
                    UnclosedCase{"exclude_names", {"{Exclude by names}", "a"}},
                    UnclosedCase{"destination", {"{Destination path}", "D:\\x"}},
                    UnclosedCase{"password", {"{Password}", "True", "p", "q", "a"}},
                    UnclosedCase{"warn", {"{Free Space Warn}", "True", "Percentage = 10%"}},
                    UnclosedCase{"idle", {"{System Idle}", "True", "Time=5"}},
                    UnclosedCase{"confirm", {"{Confirm Backup}", "True", "Size=5 MB"}},
                    UnclosedCase{"queue", {"{Threshold Queue}", "True", "Count=5"}},
                    UnclosedCase{"schedule",
                                 {"{Scheduling}", "Start Date = 1/2/2003",
                                  "Start Time = 01:00:00 AM", "RecurrencePattern =4", "Recur=1",
                                  "TimeAt=1:00:00 AM", "Months=May", "Dates=1"}},
                    UnclosedCase{"last_lines",
                                 {"Backup versions =1", "Compress = True", "Encrypt=True"}}),
    [](const auto& each) { return std::string(each.param.name); });

TEST_F(ReaderTest, APasswordThatWasCutOffIsNoPassword)
{
    openText("[Default.vdp]\r\n{Password}\r\nTrue\r\n");
    EXPECT_EQ(editor.chkPassword.value, 1);
    EXPECT_FALSE(scalars.bProfileHasPassword);
}

// ---- failures

TEST_F(ReaderTest, AMissingCopyIsReported)
{
    editor.txtDestLoc.text = "as it was";
    editor.chkAutoSched.value = 1;
    ActivateOpenProfile(rig.profiles, "UDefault.txt", kFolder);
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    const trace::frmErrLog& form = rig.dialog.shown.front();
    EXPECT_EQ(form.txtInf.text,
              "The Profile data associated with the currently selected profile was deleted.");
    EXPECT_EQ(form.txtSysErrNo.text, "53");
    EXPECT_EQ(form.txtModName.text, "modPrSaveOpen");
    EXPECT_EQ(form.txtProcName.text, "ActivateOpenProfile");
    EXPECT_EQ(editor.txtDestLoc.text, "as it was");
    EXPECT_EQ(editor.chkAutoSched.value, 0) << "the reset comes before the file";
    EXPECT_TRUE(editor.chkPrimary.enabled) << "nothing behind the failure was done";
    EXPECT_THAT(rig.entries(),
                ElementsAre("ActivateOpenProfile Start 1", "Refreshlist End 2",
                            "ActivateOpenProfile Error 1", "DisplayErrMSgDialog End 2"));
}

TEST_F(ReaderTest, SourcesThatDoNotCloseAreReportedAndTheCopyStays)
{
    rig.frame.pb.value = 50;
    openText("[Default.vdp]\r\n{Source files}\r\nC:\\a\r\n");
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown.front().txtInf.text,
              "Reading the Lines from Profile has been terminated since no lines to read");
    EXPECT_EQ(rig.dialog.shown.front().txtSysErrNo.text, "62");
    EXPECT_EQ(rig.dialog.shown.front().txtProcName.text, "ActivateOpenProfile");
    EXPECT_TRUE(copyIsThere());
    EXPECT_THAT(opened.clxnOpenedSources.items(), ElementsAre("C:\\", "C:\\a"));
    EXPECT_TRUE(editor.chkAutoSched.enabled);
    EXPECT_GT(rig.frame.pb.value, 50) << "the bar stays where it came to";
}

TEST_F(ReaderTest, ACopyThatCannotBeDeletedDoesNotStopTheOpening)
{
    rig.putFile(kCopy, textOf({"[Default.vdp]", "[End of Default.vdp]"}));
    rig.script.failCallsNamed("folder.removeFile", base::error_number::kPermissionDenied,
                              "UDefault.txt");
    ActivateOpenProfile(rig.profiles, "UDefault.txt", kFolder);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_TRUE(copyIsThere());
}

// ---- progress and yielding

TEST_F(ReaderTest, TheBarAdvancesByAnUnroundedStepForEachSourceLine)
{
    // Nine line ends make nine the highest index.
    rig.frame.pb.value = 50;
    std::vector<double> values;
    rig.messageLoop.onYield = [&] { values.push_back(rig.frame.pb.value); };
    openSection("Source files", {"C:\\a", "C:\\b\\", "C:\\b\\", "C:\\c", "C:\\d"});
    const double step = 50.0 / 9.0;
    ASSERT_EQ(values.size(), 5U);
    double expected = 50;
    for (const double value : values) {
        expected += step;
        EXPECT_DOUBLE_EQ(value, expected);
    }
    EXPECT_EQ(rig.frame.pb.value, 0) << "the end empties the bar";
}

TEST_F(ReaderTest, TheBarNeverComesToItsMaximumByAStep)
{
    rig.frame.pb.value = 95;
    std::vector<double> values;
    rig.messageLoop.onYield = [&] { values.push_back(rig.frame.pb.value); };
    // Ten line ends: a step is 5, and 95 and 5 are not below 100.
    openSection("Source files", {"C:\\a", "C:\\b", "C:\\c", "C:\\d", "C:\\e", "C:\\f"});
    EXPECT_THAT(values, testing::Each(95.0));
    EXPECT_EQ(values.size(), 6U);
}

TEST_F(ReaderTest, TheExtensionListsYieldAtEachLine)
{
    open({"{Excluded options}", ".a", ".b", "{End Of Excluded options}", "{Included options}", ".c",
          "{End Of Included options}"});
    EXPECT_EQ(rig.messageLoop.yields, 3U);
}

TEST_F(ReaderTest, AFileOfOneLineLeavesTheStepAtZero)
{
    rig.frame.pb.value = 50;
    double seen = -1;
    rig.messageLoop.onYield = [&] { seen = rig.frame.pb.value; };
    openText("{Source files}");
    EXPECT_EQ(seen, -1);
    EXPECT_EQ(rig.frame.pb.value, 50);
    EXPECT_EQ(rig.dialog.shown.size(), 1U);
}

// ---- there and back

TEST_F(ReaderTest, WhatTheWriterWroteComesBack)
{
    ProfileRig saved;
    for (const std::string_view path : {"C:\\Work\\", "D:\\a.txt"})
        saved.store.save.clxnSources.add(std::string(path), path);
    saved.store.save.clxnExcluded.add(".tmp", ".tmp");
    saved.store.save.clxnIncluded.add(".doc", ".doc");
    saved.store.save.clxnOtherData.add("IE Favorites");
    state::ProfileEditorState& from = saved.editor;
    from.txtInclNames.text = "A*.*";
    from.txtDestLoc.text = "D:\\Safe";
    from.chkPassword.value = 1;
    from.txtPassWord.text = "s3cret";
    from.cmbHintQues.text = "Favorite Pet's Name?";
    from.txtHintAns.text = "Rex";
    from.chkEncrypt.value = 1;
    from.chkWarn.value = 1;
    from.txtWarn.text = "10";
    from.chkIdle.value = 1;
    from.txtIdleTime.text = "15";
    from.chkSizeOfBkp.value = 1;
    from.txtSizeOfBkp.text = "500";
    from.chkQueueThrld.value = 1;
    from.txtQueueThrld.text = "100";
    from.chkAutoSched.value = 1;
    from.dtpStDate.value = {{2030, 12, 31}, {}};
    from.dtpStTime.value.time = {0, 5, 6};
    state::choose(from.patternOptions(), 2);
    from.txtWeeklyRecur.text = "2";
    from.dtpWeekly.value.time = {12, 0, 0};
    test::select(from.lstWeekDays, {"Monday", "Friday"});
    state::choose(from.retentionOptions(), 8);
    from.txtLatestDaysVer.text = "30";
    ASSERT_TRUE(CreatingVdpFile(saved.profiles, "Default.vdp", "C:\\App\\Profiles"));

    openText(saved.fileSystem().readAll("C:\\App\\Profiles\\Default.vdp"));
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_THAT(opened.clxnOpenedSources.items(),
                ElementsAre("C:\\", "C:\\Work\\*", "D:\\", "D:\\a.txt"));
    EXPECT_THAT(opened.clxnOpenedExcluded.items(), ElementsAre(".tmp"));
    EXPECT_THAT(opened.clxnOpenedIncluded.items(), ElementsAre(".doc"));
    EXPECT_THAT(opened.clxnOpenedOtherData.items(), ElementsAre("IE Favorites"));
    EXPECT_EQ(editor.txtInclNames.text, "A*.*");
    EXPECT_EQ(editor.txtDestLoc.text, "D:\\Safe");
    EXPECT_EQ(scalars.sProfilePassword, "s3cret");
    EXPECT_EQ(editor.cmbHintQues.text, "Favorite Pet's Name?");
    EXPECT_EQ(editor.txtHintAns.text, "Rex");
    EXPECT_EQ(editor.chkEncrypt.value, 1);
    EXPECT_TRUE(scalars.bEncryptFiles);
    EXPECT_TRUE(scalars.bCompressFiles);
    EXPECT_EQ(editor.txtWarn.text, "10%");
    EXPECT_EQ(editor.txtIdleTime.text, "15");
    EXPECT_EQ(editor.txtSizeOfBkp.text, "500 ");
    EXPECT_EQ(editor.cmbSizeOfBkp.text, "MB");
    EXPECT_EQ(editor.txtQueueThrld.text, "100");
    EXPECT_EQ(editor.dtpStDate.value.date, (base::Date{2030, 12, 31}));
    EXPECT_EQ(editor.dtpStTime.value.time, (base::TimeOfDay{0, 5, 6}));
    EXPECT_TRUE(editor.optWeekly.value);
    EXPECT_EQ(editor.txtWeeklyRecur.text, "2");
    EXPECT_EQ(editor.dtpWeekly.value.time, (base::TimeOfDay{12, 0, 0}));
    EXPECT_THAT(textsOf(editor.lstWeekDays), ElementsAre("Monday", "Friday"));
    EXPECT_TRUE(editor.optVer8.value);
    EXPECT_EQ(editor.txtLatestDaysVer.text, "30");
    EXPECT_EQ(scalars.iRetentionOption, 8);
}

// Each round of saving and opening adds a blank to the size; a number is still read from it.
TEST_F(ReaderTest, TheSizeGrowsByABlankInEachRound)
{
    editor.chkSizeOfBkp.value = 1;
    editor.txtSizeOfBkp.text = "500";
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(CreatingVdpFile(rig.profiles, "Default.vdp", "C:\\App\\Profiles"));
        openText(rig.fileSystem().readAll("C:\\App\\Profiles\\Default.vdp"));
        EXPECT_EQ(editor.txtSizeOfBkp.text,
                  "500" + std::string(static_cast<std::size_t>(round), ' '));
        EXPECT_EQ(base::val(editor.txtSizeOfBkp.text), 500);
    }
}

TEST_F(ReaderTest, ThePercentSignIsNotDoubledInRounds)
{
    editor.chkWarn.value = 1;
    editor.txtWarn.text = "10";
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(CreatingVdpFile(rig.profiles, "Default.vdp", "C:\\App\\Profiles"));
        openText(rig.fileSystem().readAll("C:\\App\\Profiles\\Default.vdp"));
        EXPECT_EQ(editor.txtWarn.text, "10%");
    }
}

TEST_F(ReaderTest, TheDefaultProfilesSpacingReadsLikeTheWriters)
{
    open({"{Scheduling}", "Start Date = 07/13/2003", "Start Time = 9:06:03 AM",
          "RecurrencePattern = 1", "Recur =1", "TimeAt= 9:10:03 AM", "{End Of Scheduling}",
          "Backup versions = 6?7", "Compress = True", "Encrypt = False"});
    EXPECT_TRUE(editor.optDaily.value);
    EXPECT_EQ(editor.txtDailyRecur.text, "1");
    EXPECT_EQ(editor.dtpDaily.value.time, (base::TimeOfDay{9, 10, 3}));
    EXPECT_EQ(editor.dtpStTime.value.time, (base::TimeOfDay{9, 6, 3}));
    EXPECT_TRUE(editor.optVer6.value);
    EXPECT_EQ(editor.txtLatestVer.text, "7");
    EXPECT_EQ(editor.chkEncrypt.value, 0);
}

TEST_F(ReaderTest, TellsTheViewsThatTheRecordChanged)
{
    const std::uint64_t before = editor.revision;
    open({});
    EXPECT_GT(editor.revision, before);
}

} // namespace
} // namespace vardelin::profile
