#include "editor/validation.h"

#include "pages_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::editor {
namespace {

using platform::Answer;
using testing::ElementsAre;
using testing::IsEmpty;

class Validation : public testing::Test, public test::PagesRig {
protected:
    Validation()
    {
        frame.BL_Edit_Changed = true;
        store.scalars.bDestinationChanged = true;
        store.scalars.bHaveDestination = true;
    }
    // What is said; empty where all rules pass.
    std::string check()
    {
        clearBoxes();
        store.scalars.iValidationTab = 0;
        FrmLevelValidation(pages);
        if (boxes().empty())
            return {};
        for (const auto& each : boxes())
            EXPECT_EQ(each.title, "Vardelin");
        EXPECT_TRUE(frame.BL_Save_Blocked);
        return boxes().front().text;
    }
    std::string checkWithTab()
    {
        const std::string message = check();
        return message.empty() ? "" : message + "|" + std::to_string(store.scalars.iValidationTab);
    }
    bool passes()
    {
        const std::string message = check();
        return message.empty() && !frame.BL_Save_Blocked && store.scalars.iValidationTab == 0;
    }
    void pattern(int number) { state::choose(record.patternOptions(), number); }
    static void selectOnly(state::ListBox& list, std::initializer_list<std::string_view> texts)
    {
        for (state::ListRow& row : list.rows)
            row.selected = false;
        select(list, texts);
    }
};

TEST_F(Validation, ANewFormPasses)
{
    frame.BL_Save_Blocked = true; // of the last save
    EXPECT_TRUE(passes());
}

// ---- the password

TEST_F(Validation, APasswordNeedsSixCharactersAndItsHint)
{
    struct Case {
        const char* password;
        const char* question;
        const char* answer;
        const char* message;
        const char* left;
    };
    const Case cases[] = {
        {"", "", "", "Enter Password|2", ""},
        {"five5", "Q", "A", "Password should be greater than 6 characters |2", ""},
        {"sixsix", "Q", "A", "", "sixsix"}, // the message says more than six
        {"sixsix", "", "", "Select Hint Question for the Password|2", "sixsix"},
        {"sixsix", "Q", "", "Enter Hint answer for the Question|2", "sixsix"},
        {"      ", "Q", " ", "", "      "}, // blanks are a text
    };
    for (const Case& each : cases) {
        record.chkPassword.value = 1;
        record.txtPassWord.text = each.password;
        record.cmbHintQues.text = each.question;
        record.txtHintAns.text = each.answer;
        EXPECT_EQ(checkWithTab(), each.message) << each.password;
        EXPECT_EQ(record.txtPassWord.text, each.left);
        record.chkPassword.value = 0;
        EXPECT_TRUE(passes());
    }
}

// ---- the destination on a drive

TEST_F(Validation, ADestinationLosesTheBackslashAtItsEnd)
{
    put({"D:\\Backup\\"});
    struct Case {
        const char* before;
        const char* after;
    };
    const Case cases[] = {
        {"D:\\Backup\\", "D:\\Backup"}, {"D:\\", "D:"}, {"D:\\Backup", "D:\\Backup"}};
    for (const bool changedDestination : {true, false}) {
        store.scalars.bDestinationChanged = changedDestination;
        for (const Case& each : cases) {
            record.txtDestLoc.text = each.before;
            EXPECT_TRUE(passes()) << each.before;
            EXPECT_EQ(record.txtDestLoc.text, each.after);
        }
    }
}

TEST_F(Validation, ADriveThatIsNotThereIsRefusedOnceTheDestinationWasChanged)
{
    constexpr const char* kMessage = "Enter the correct Drive name in Backup location|2";
    for (const char* const path : {"Q:\\b", "Q:\\b\\", "Q:", "backup", "\\b", "DD:\\b", "b\\"}) {
        record.txtDestLoc.text = path;
        EXPECT_EQ(checkWithTab(), kMessage) << path;
        EXPECT_EQ(boxes().size(), 1U);
        store.scalars.bDestinationChanged = false;
        record.txtDestLoc.text = path;
        EXPECT_TRUE(passes()) << path;
        store.scalars.bDestinationChanged = true;
    }
}

TEST_F(Validation, OutsideNewAndEditTheDestinationIsNotLookedFor)
{
    record.txtDestLoc.text = "Q:\\b";
    viewMode();
    EXPECT_TRUE(passes());
    frame.BL_New_Mode = true;
    EXPECT_FALSE(passes());
}

TEST_F(Validation, AnEmptyDestinationIsForLater)
{
    record.txtDestLoc.text = "";
    EXPECT_TRUE(passes());
    EXPECT_TRUE(store.scalars.bHaveDestination);
}

TEST_F(Validation, AMissingFolderIsMadeWhenThePersonWantsIt)
{
    record.txtDestLoc.text = " D:\\a\\b ";
    messageBoxes.answers = {Answer::Ok, Answer::Yes};
    FrmLevelValidation(pages);
    EXPECT_THAT(messages(), ElementsAre("Given Backup location is not existing",
                                        "Do you want to create the folder?"));
    EXPECT_EQ(boxes()[0].buttons, platform::Buttons::Ok);
    EXPECT_EQ(boxes()[1].buttons, platform::Buttons::YesNo);
    EXPECT_FALSE(frame.BL_Save_Blocked);
    EXPECT_TRUE(disk.folderExists("D:\\a\\b"));
}

TEST_F(Validation, AFolderThatIsNotWantedEndsTheSaveWithoutAnotherWord)
{
    record.txtDestLoc.text = "D:\\a";
    messageBoxes.answers = {Answer::Ok, Answer::No};
    check();
    EXPECT_EQ(boxes().size(), 2U);
    EXPECT_TRUE(frame.BL_Save_Blocked);
    EXPECT_FALSE(store.scalars.bHaveDestination);
    EXPECT_EQ(store.scalars.iValidationTab, 2);
    EXPECT_FALSE(disk.folderExists("D:\\a"));
}

// Missing rights are told by the folder's maker; a full disk is only seen by the missing folder.
TEST_F(Validation, AFolderThatCannotBeMadeIsRefused)
{
    for (const int error : {base::error_number::kPermissionDenied, base::error_number::kDiskFull}) {
        disk.script().reset();
        disk.script().failCallsNamed("folder.createFolder", error);
        record.txtDestLoc.text = "D:\\a";
        messageBoxes.answers = {Answer::Ok, Answer::Yes};
        check();
        EXPECT_THAT(messages(), ElementsAre("Given Backup location is not existing",
                                            "Do you want to create the folder?",
                                            "Enter a Accessible path create Backup location"));
        EXPECT_TRUE(frame.BL_Save_Blocked);
        EXPECT_FALSE(store.scalars.bHaveDestination);
        EXPECT_EQ(store.scalars.iValidationTab, 2);
    }
}

TEST_F(Validation, CuttingTheBackslashRunsNoHandler)
{
    put({"D:\\Old\\Work\\"});
    frame.ST_Current_Profile = "Work.vdp";
    pagesForm.sOldDestination = "D:\\Old";
    record.txtDestLoc.text = "D:\\Old\\";
    EXPECT_TRUE(passes()); // else it would ask whether the location shall change
}

// ---- the destination on a share

class NetworkDestination : public Validation {
protected:
    NetworkDestination()
    {
        facts.hosts["nas"] = {192, 168, 0, 7};
        addDrive('E', platform::DriveType::Remote);
        drives.drives.erase(drives.drives.begin() + 1); // the fixed one
        drives.drives.back().shareName = "\\\\nas\\store";
        store.scalars.bDestinationChanged = false; // a share is looked for in any case
    }
};

TEST_F(NetworkDestination, AnAccessibleShareAndItsFoldersPass)
{
    put({"E:\\a\\b\\"});
    for (const char* const path : {"\\\\nas", "\\\\nas\\store", "\\\\NAS\\Store\\a",
                                   "\\\\nas\\store\\a\\b", "\\\\nas\\store\\a\\"}) {
        facts.hosts["NAS"] = facts.hosts["nas"];
        record.txtDestLoc.text = path;
        EXPECT_TRUE(passes()) << path;
        EXPECT_EQ(record.txtDestLoc.text, path);
    }
}

TEST_F(NetworkDestination, AnUnknownMachineOrShareIsRefused)
{
    for (const char* const path : {"\\\\host\\share", "\\\\host", "\\\\", "\\\\nas\\other",
                                   "\\\\nas\\storehouse\\a", "\\\\nas\\"}) {
        store.scalars.bHaveDestination = true;
        record.txtDestLoc.text = path;
        EXPECT_EQ(checkWithTab(), "Enter a Accessible path to create Backup location|2") << path;
        EXPECT_EQ(boxes().size(), 1U);
        EXPECT_FALSE(store.scalars.bHaveDestination);
    }
}

// The first Yes makes the whole path, so that the levels below are there when they are met.
TEST_F(NetworkDestination, MissingFoldersAreOfferedOnce)
{
    record.txtDestLoc.text = "\\\\nas\\store\\a\\b\\c";
    messageBoxes.answers = {Answer::Yes};
    FrmLevelValidation(pages);
    EXPECT_THAT(messages(), ElementsAre("Do you want to create the folder?"));
    EXPECT_FALSE(frame.BL_Save_Blocked);
    EXPECT_TRUE(disk.folderExists("E:\\a\\b\\c"));
}

TEST_F(NetworkDestination, AFolderThatIsNotWantedEndsTheSave)
{
    record.txtDestLoc.text = "\\\\nas\\store\\a";
    messageBoxes.answers = {Answer::No};
    EXPECT_EQ(checkWithTab(), "Do you want to create the folder?|2");
    EXPECT_EQ(boxes().size(), 1U);
    EXPECT_FALSE(store.scalars.bHaveDestination);
}

TEST_F(NetworkDestination, AFolderThatCannotBeMadeIsRefused)
{
    disk.script().failCallsNamed("folder.createFolder", base::error_number::kPermissionDenied);
    record.txtDestLoc.text = "\\\\nas\\store\\a";
    messageBoxes.answers = {Answer::Yes};
    check();
    EXPECT_THAT(messages(), ElementsAre("Do you want to create the folder?",
                                        "Access to create the Folder is denied"));
    EXPECT_FALSE(store.scalars.bHaveDestination);
    EXPECT_EQ(store.scalars.iValidationTab, 2);
}

TEST_F(NetworkDestination, AddressesAreDottedAndNoNameMeansThisComputer)
{
    facts.hosts["STUDY"] = {10, 0, 0, 255};
    EXPECT_EQ(GetHostAddress(pages, "nas"), "192.168.0.7");
    EXPECT_EQ(GetHostAddress(pages, "nobody"), "NotExist");
    EXPECT_EQ(GetHostAddress(pages), "10.0.0.255");
    EXPECT_EQ(GetMachineName(pages), "STUDY");
}

// ---- names against extensions

TEST_F(Validation, NamesMustNotHoldAnExtensionOfTheOtherSide)
{
    struct Case {
        bool includeSide;
        const char* names;
        const char* extension; // of the other side's list
        const char* message;   // empty: no clash
    };
    const Case cases[] = {
        {false, "a.doc", ".doc", ".doc is given in both include/exclude options"},
        {true, "a.DOC", ".doc", ".DOC is given in both include/exclude options"},
        {false, "report", ".doc", ""}, // without a dot there is nothing to compare
        {false, "doc", ".doc", ""},
        {false, "a.b.doc", ".doc", ".doc is given in both include/exclude options"},
        {false, "a.doc.b", ".doc", ""},
        {false, "a.doc, b.xls", ".xls", ".xls is given in both include/exclude options"},
        {false, "a.doc ,b.xls", ".doc", ""}, // a blank behind it makes another extension
        {false, "a.doc ", ".doc", ".doc is given in both include/exclude options"},
        {true, "report,b.xls", ".xls", ".xls is given in both include/exclude options"},
        {true, "report,", ".xls", ""},
        {false, "  ", ".doc", ""},
    };
    for (const Case& each : cases) {
        store.save.clxnIncluded.clear();
        store.save.clxnExcluded.clear();
        record.txtInclNames.text = record.txtExclNames.text = "";
        (each.includeSide ? store.save.clxnExcluded : store.save.clxnIncluded)
            .add(each.extension, each.extension);
        (each.includeSide ? record.txtInclNames : record.txtExclNames).text = each.names;
        EXPECT_EQ(check(), each.message) << each.names;
        EXPECT_EQ(store.scalars.iValidationTab, 0); // the tab stays as it was
        EXPECT_EQ(frame.BL_Save_Blocked, *each.message != '\0');
        EXPECT_EQ(CheckForInclExcl(pages, each.includeSide), *each.message == '\0');
    }
}

TEST_F(Validation, OnlyTheOtherSidesListCounts)
{
    store.save.clxnExcluded.add(".doc", ".doc");
    record.txtExclNames.text = "a.doc";
    EXPECT_TRUE(passes());
}

TEST_F(Validation, ExcludedNamesAreLookedAtBeforeIncludedOnes)
{
    store.save.clxnIncluded.add(".doc", ".doc");
    store.save.clxnExcluded.add(".xls", ".xls");
    record.txtExclNames.text = "a.doc";
    record.txtInclNames.text = "a.xls";
    EXPECT_EQ(check(), ".doc is given in both include/exclude options");
    EXPECT_EQ(boxes().size(), 1U);
}

// ---- numbers

TEST_F(Validation, AnOptionWithABoxNeedsANumber)
{
    struct Case {
        state::CheckBox& check;
        state::TextBox& box;
        const char* message;
    };
    const Case cases[] = {
        {record.chkSizeOfBkp, record.txtSizeOfBkp, "Enter the Size of Files|2"},
        {record.chkWarn, record.txtWarn, "Enter the volume in percentage|2"},
        {record.chkIdle, record.txtIdleTime, "Enter the time slab  to invoke the Backup|2"},
        {record.chkQueueThrld, record.txtQueueThrld,
         "Enter the Maximum Number of Files in a Queue|2"},
    };
    for (const Case& each : cases) {
        for (const char* const text : {"", "0", "ab", "00", " "}) {
            each.check.value = 1;
            each.box.text = text;
            EXPECT_EQ(checkWithTab(), each.message) << text;
            each.check.value = 0;
            EXPECT_TRUE(passes());
        }
        each.check.value = 1;
        for (const char* const text : {"5", "12ab", "5%"}) {
            each.box.text = text;
            EXPECT_TRUE(passes()) << text;
        }
        each.check.value = 0;
    }
}

TEST_F(Validation, ASizeWithoutAUnitIsRefusedWhetherOrNotItIsAskedFor)
{
    record.cmbSizeOfBkp.text = "";
    for (const int value : {0, 1}) {
        record.chkSizeOfBkp.value = value;
        record.txtSizeOfBkp.text = "5";
        EXPECT_EQ(checkWithTab(), "The Storage capacity can't be Empty|2");
    }
}

// ---- the schedule

TEST_F(Validation, TheIntervalOfTheChosenPatternIsANumberThatIsNotZero)
{
    struct Case {
        int pattern;
        state::TextBox& box;
        const char* empty;
        const char* zero;
    };
    const Case cases[] = {
        {1, record.txtDailyRecur, "Enter the Recursion values for Days|3",
         "Zero Recursion Values are not allowed for Days|3"},
        {2, record.txtWeeklyRecur, "Enter the Recursion values for Weekly|3",
         "Zero Recursion Values are not allowed for Weekly |3"},
        {3, record.txtMonthlyRecur, "Enter the Recursion values for Month|3",
         "Zero Recursion Values are not allowed for Month|3"},
        {4, record.txtYearlyRecur, "Enter the Recursion values for Year|3",
         "Zero Recursion Values are not allowed for Year|3"},
    };
    select(record.lstWeekDays, {"Monday"});
    select(record.lstMonthDate, {"1"});
    select(record.lstMonth, {"May"});
    select(record.lstYearDate, {"1"});
    for (const int schedule : {0, 1}) { // whether or not it is on
        record.chkAutoSched.value = schedule;
        for (const Case& each : cases) {
            pattern(each.pattern);
            each.box.text = "";
            EXPECT_EQ(checkWithTab(), each.empty);
            for (const char* const zero : {"0", "00"}) {
                each.box.text = zero;
                EXPECT_EQ(checkWithTab(), each.zero) << zero;
            }
            for (const char* const passing : {"000", "1x", " ", "3"}) { // the text is not counted
                each.box.text = passing;
                EXPECT_TRUE(passes()) << passing;
            }
            pattern(0);
            each.box.text = "";
            EXPECT_TRUE(passes()); // of another pattern
            each.box.text = "1";
        }
    }
}

TEST_F(Validation, AStartBeforeTodayIsRefusedUntilSomethingIsChanged)
{
    struct Case {
        int schedule;
        int day; // of March; today is the 10th
        bool edited;
        bool refused;
    };
    const Case cases[] = {{1, 9, false, true},
                          {1, 10, false, false},
                          {1, 11, false, false},
                          {1, 9, true, false},
                          {0, 9, false, false}};
    for (const Case& each : cases) {
        record.chkAutoSched.value = each.schedule;
        record.dtpStDate.value = {{2026, 3, each.day}, {23, 0, 0}};
        frame.BL_Edit_Changed = each.edited;
        EXPECT_EQ(checkWithTab(),
                  each.refused ? "The Effective Date should be greater than the current date |3"
                               : "")
            << each.day;
    }
}

TEST_F(Validation, APatternNeedsItsDays)
{
    pattern(2);
    EXPECT_EQ(checkWithTab(), "Select the Week Days for Weekly Pattern|3");
    select(record.lstWeekDays, {"Monday"});
    EXPECT_TRUE(passes());
    pattern(3);
    EXPECT_EQ(checkWithTab(), "Select the Date of the Month for Monthly Pattern|3");
    select(record.lstMonthDate, {"31"});
    EXPECT_TRUE(passes());
    pattern(4);
    EXPECT_EQ(checkWithTab(), "Select the Month for Yearly Pattern|3");
    select(record.lstMonth, {"May"});
    EXPECT_EQ(checkWithTab(), "Select the  Date of the Month for Yearly Pattern|3");
    select(record.lstYearDate, {"31"});
    EXPECT_TRUE(passes());
    pattern(1);
    EXPECT_TRUE(passes());
}

TEST_F(Validation, YearlyDatesMustStandInAShortMonth)
{
    constexpr const char* kNot = "Selected Date is not valid for the selected month|3";
    constexpr const char* kLeap = "Selected Leap year Date is not valid for the selected month|3";
    struct Case {
        int year; // the present one
        std::initializer_list<std::string_view> months;
        std::initializer_list<std::string_view> dates;
        const char* message;
    };
    const Case cases[] = {
        {2024, {"February"}, {"29"}, ""},
        {2025, {"February"}, {"29"}, kLeap},
        {2100, {"February"}, {"29"}, ""}, // no rule for centuries
        {2024, {"February"}, {"30"}, kNot},
        {2024, {"February"}, {"31"}, kNot},
        {2024, {"February"}, {"29", "30"}, kNot},
        {2025, {"February"}, {"29", "30"}, kLeap}, // in the order of the dates
        {2025, {"February"}, {"28"}, ""},
        {2025, {"February", "January"}, {"31"}, ""}, // one long month is enough
        {2025, {"April"}, {"31"}, kNot},
        {2025, {"June"}, {"31"}, kNot},
        {2025, {"September"}, {"31"}, kNot},
        {2025, {"November"}, {"31"}, kNot},
        {2025, {"April", "June"}, {"30"}, ""},
        {2025, {"February", "April"}, {"31"}, kNot},
        {2025, {"March"}, {"31"}, ""},
        {2025, {"May"}, {"31"}, ""},
        {2025, {"July"}, {"31"}, ""},
        {2025, {"August"}, {"31"}, ""},
        {2025, {"October"}, {"31"}, ""},
        {2025, {"December"}, {"31"}, ""},
    };
    pattern(4);
    for (const Case& each : cases) {
        setLocalTime({{each.year, 6, 1}, {}});
        selectOnly(record.lstMonth, each.months);
        selectOnly(record.lstYearDate, each.dates);
        EXPECT_EQ(checkWithTab(), each.message)
            << each.year << " " << *each.months.begin() << " " << *each.dates.begin();
    }
    pattern(1); // no other pattern looks at them
    selectOnly(record.lstMonth, {"February"});
    selectOnly(record.lstYearDate, {"31"});
    EXPECT_TRUE(passes());
}

TEST_F(Validation, MonthsCompareWithoutRegardToCase)
{
    pattern(4);
    record.lstMonth.clear();
    record.lstMonth.addItem("february").selected = true;
    selectOnly(record.lstYearDate, {"31"});
    EXPECT_FALSE(passes());
    record.lstMonth.addItem("JANUARY").selected = true;
    EXPECT_TRUE(passes());
}

// ---- retention

TEST_F(Validation, ARetentionCountIsNeededUnderItsOption)
{
    state::choose(record.retentionOptions(), 8);
    EXPECT_EQ(checkWithTab(),
              "Enter the Maximum Number of Days to be retained as latest versions|3");
    record.txtLatestDaysVer.text = "3";
    EXPECT_TRUE(passes());
    state::choose(record.retentionOptions(), 6);
    EXPECT_EQ(checkWithTab(),
              "Enter the Maximum Number of  versions  to be retained as latest one|3");
    record.txtLatestVer.text = "3";
    EXPECT_TRUE(passes());
}

// ---- the order

// Everything is wrong at first and mended in the order of the messages.
TEST_F(Validation, TheRulesRunInTheirOrderAndStopAtTheFirstFault)
{
    record.chkPassword.value = 1;
    record.txtDestLoc.text = "Q:\\b";
    store.save.clxnIncluded.add(".doc", ".doc");
    record.txtExclNames.text = "a.doc";
    for (state::CheckBox* const each :
         {&record.chkSizeOfBkp, &record.chkWarn, &record.chkIdle, &record.chkQueueThrld})
        each->value = 1;
    pattern(4);
    record.txtYearlyRecur.text = "0";
    record.chkAutoSched.value = 1;
    record.dtpStDate.value = {{2020, 1, 1}, {}};
    frame.BL_Edit_Changed = false;
    record.cmbSizeOfBkp.text = "";
    state::choose(record.retentionOptions(), 8);
    select(record.lstMonth, {});

    const std::pair<const char*, std::function<void()>> steps[] = {
        {"Enter Password", [&] { record.chkPassword.value = 0; }},
        {"Enter the correct Drive name in Backup location", [&] { record.txtDestLoc.text = ""; }},
        {".doc is given in both include/exclude options", [&] { record.txtExclNames.text = ""; }},
        {"Enter the Size of Files", [&] { record.chkSizeOfBkp.value = 0; }},
        {"Enter the volume in percentage", [&] { record.chkWarn.value = 0; }},
        {"Enter the time slab  to invoke the Backup", [&] { record.chkIdle.value = 0; }},
        {"Enter the Maximum Number of Files in a Queue", [&] { record.chkQueueThrld.value = 0; }},
        {"Zero Recursion Values are not allowed for Year",
         [&] { record.txtYearlyRecur.text = "1"; }},
        {"The Effective Date should be greater than the current date ",
         [&] { record.chkAutoSched.value = 0; }},
        {"The Storage capacity can't be Empty", [&] { record.cmbSizeOfBkp.text = "MB"; }},
        {"Enter the Maximum Number of Days to be retained as latest versions",
         [&] { record.txtLatestDaysVer.text = "1"; }},
        {"Select the Month for Yearly Pattern", [&] { select(record.lstMonth, {"April"}); }},
        {"Select the  Date of the Month for Yearly Pattern",
         [&] { select(record.lstYearDate, {"31"}); }},
        {"Selected Date is not valid for the selected month",
         [&] { select(record.lstMonth, {"May"}); }},
    };
    for (const auto& [message, mend] : steps) {
        EXPECT_EQ(check(), message);
        EXPECT_EQ(boxes().size(), 1U) << message;
        mend();
    }
    EXPECT_TRUE(passes());
}

// Intervals and lists look at the patterns in different orders. A group of options has one on; a
// record with two shows the order all the same.
TEST_F(Validation, IntervalsGoMonthlyBeforeWeeklyAndListsWeeklyBeforeMonthly)
{
    record.optWeekly.value = record.optMonthly.value = true;
    record.txtWeeklyRecur.text = record.txtMonthlyRecur.text = "";
    EXPECT_EQ(check(), "Enter the Recursion values for Month");
    record.txtMonthlyRecur.text = "1";
    EXPECT_EQ(check(), "Enter the Recursion values for Weekly");
    record.txtWeeklyRecur.text = "1";
    EXPECT_EQ(check(), "Select the Week Days for Weekly Pattern");
}

TEST_F(Validation, ARuleThatCannotBeTestedIsToldAndTheOthersStillRun)
{
    record.txtDestLoc.text = "D:\\a";
    drives.script().failCallsNamed("drives.list", 57);
    record.cmbSizeOfBkp.text = "";
    EXPECT_EQ(check(), "The Storage capacity can't be Empty");
    EXPECT_THAT(errorsShown(),
                ElementsAre("FrmLevelValidation: Undefined Error in validating the inputs for the "
                            "ProfileUndefined Error in validating the inputs for the Profile"));
    EXPECT_TRUE(frame.BL_Save_Blocked);
}

} // namespace
} // namespace vardelin::editor
