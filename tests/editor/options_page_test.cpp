#include "editor/options_page.h"

#include "pages_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OptionsPage : public testing::Test, public test::PagesRig {
protected:
    struct CheckWithBox {
        void (*handler)(PagesContext&);
        state::CheckBox& check;
        state::TextBox& box;
        const char* armed;
        const char* focus;
    };
    std::vector<CheckWithBox> checks()
    {
        return {
            {chkIdle_Click, record.chkIdle, record.txtIdleTime, "15", "focus txtIdleTime"},
            {chkQueueThrld_Click, record.chkQueueThrld, record.txtQueueThrld, "100",
             "focus txtQueueThrld"},
            {chkSizeOfBkp_Click, record.chkSizeOfBkp, record.txtSizeOfBkp, "50",
             "focus txtSizeOfBkp"},
            {chkWarn_Click, record.chkWarn, record.txtWarn, "", "focus txtWarn"},
        };
    }
    void click(const CheckWithBox& each, int value)
    {
        each.check.value = value;
        each.handler(pages);
    }
};

// ---- checks with a box

TEST_F(OptionsPage, ACheckArmsItsBoxWithItsDefaultAndLocksItEmptyAgain)
{
    for (const CheckWithBox& each : checks()) {
        window.calls.clear();
        each.box.locked = true;
        click(each, 1);
        EXPECT_EQ(each.box.text, each.armed);
        EXPECT_FALSE(each.box.locked);
        EXPECT_THAT(window.calls, ElementsAre(each.focus));
        EXPECT_TRUE(changed()) << each.focus;
        click(each, 0);
        EXPECT_EQ(each.box.text, "");
        EXPECT_TRUE(each.box.locked);
        EXPECT_TRUE(changed()) << each.focus;
    }
}

// While the options count as loaded a default would take a saved value's place.
TEST_F(OptionsPage, LoadedOptionsKeepTheirValuesAndTheFocus)
{
    store.scalars.bOptionsLoaded = true;
    record.cmbSizeOfBkp.text = "GB";
    for (const CheckWithBox& each : checks()) {
        each.box.text = "7";
        each.box.locked = true;
        click(each, 1);
        EXPECT_EQ(each.box.text, "7");
        EXPECT_FALSE(each.box.locked);
    }
    EXPECT_EQ(record.cmbSizeOfBkp.text, "GB");
    EXPECT_THAT(window.calls, IsEmpty());
}

TEST_F(OptionsPage, ThePercentageHasNoDefault)
{
    record.txtWarn.text = "12%";
    click(checks()[3], 1);
    EXPECT_EQ(record.txtWarn.text, "12%");
}

TEST_F(OptionsPage, TheSizeComesInMegabytes)
{
    record.cmbSizeOfBkp.text = "GB";
    click(checks()[2], 1);
    EXPECT_EQ(record.cmbSizeOfBkp.text, "MB");
    click(checks()[2], 0);
    EXPECT_EQ(record.cmbSizeOfBkp.text, "MB"); // the box alone is emptied
}

// The records of the schedule still stand under the former minutes.
TEST_F(OptionsPage, SwitchingIdleOffKeepsTheFormerMinutes)
{
    record.txtIdleTime.text = "25";
    click(checks()[0], 0);
    EXPECT_EQ(frame.sOldIdleTime, "25");
    click(checks()[0], 0); // an empty box keeps nothing
    EXPECT_EQ(frame.sOldIdleTime, "25");
}

TEST_F(OptionsPage, EnteringTheIdleBoxKeepsItsFirstValue)
{
    txtIdleTime_GotFocus(pages);
    EXPECT_EQ(frame.sOldIdleTime, "");
    record.txtIdleTime.text = " 20 ";
    txtIdleTime_GotFocus(pages);
    EXPECT_EQ(frame.sOldIdleTime, "20");
    record.txtIdleTime.text = "30";
    txtIdleTime_GotFocus(pages);
    EXPECT_EQ(frame.sOldIdleTime, "20");
}

// The threshold of the default profile is that profile's own value.
TEST_F(OptionsPage, TheQueuesThresholdAloneIsNoChangeInTheFirstRun)
{
    firstRun();
    for (const CheckWithBox& each : checks()) {
        const bool isQueue = &each.check == &record.chkQueueThrld;
        click(each, 1);
        EXPECT_EQ(changed(), !isQueue) << each.focus;
        click(each, 0);
        EXPECT_EQ(changed(), !isQueue) << each.focus;
    }
    txtQueueThrld_Change(pages);
    EXPECT_FALSE(changed());
    frame.BL_First_Run = false;
    txtQueueThrld_Change(pages);
    EXPECT_TRUE(changed());
}

TEST_F(OptionsPage, EachCheckHasItsSentence)
{
    class NoFocus final : public EditorWindow {
    public:
        void showOtherdata() override {}
        void showResPwd(state::frmResPwd&) override {}
        std::string browseForFolder(std::string_view, std::string_view) override { return {}; }
        void setFocus(std::string_view) override { throw base::RuntimeError(5); }
        void ensureVisible(std::string_view) override {}
        void clearClipboard() override {}
    };
    NoFocus window2;
    PagesContext broken{machine, context, frame, record, store, form, pagesForm, window2};
    for (const CheckWithBox& each : checks()) {
        each.check.value = 1;
        each.handler(broken);
    }
    EXPECT_THAT(errorsShown(),
                ElementsAre("chkIdle_Click: Idle Time processing Error",
                            "chkQueueThrld_Click: Error Occured in Queuing process",
                            "chkSizeOfBkp_Click: Error occured while processing the size of "
                            "backupfile",
                            "chkWarn_Click: Error occured at  process"));
}

// ---- keys

TEST_F(OptionsPage, CountsTakeNoLeadingZeroAndNoZero)
{
    struct Case {
        const char* text;
        int key;
        int passes;
        const char* left;
    };
    const Case cases[] = {
        {"", '0', 0, ""},     {"  ", '0', 0, ""}, {"0", '0', 0, ""},    {"00", '0', 0, ""},
        {"1", '0', '0', "1"}, {"", '7', '7', ""}, {"0", '7', '7', "0"}, {"5", 8, 8, "5"},
        {"5", 'a', 0, "5"},   {"5", '.', 0, "5"}, {"5", '-', 0, "5"},   {" 10", '0', '0', " 10"},
    };
    for (const Case& each : cases) {
        state::TextBox box{.text = each.text};
        EXPECT_EQ(countKeyPress(box, each.key), each.passes) << each.text;
        EXPECT_EQ(box.text, each.left);
    }
}

TEST_F(OptionsPage, ThePercentageTakesDigitsAndMayBeginWithZero)
{
    EXPECT_EQ(txtWarn_KeyPress('0'), '0');
    EXPECT_EQ(txtWarn_KeyPress('9'), '9');
    EXPECT_EQ(txtWarn_KeyPress(8), 8);
    EXPECT_EQ(txtWarn_KeyPress('%'), 0);
    EXPECT_EQ(txtWarn_KeyPress('a'), 0);
}

TEST_F(OptionsPage, ThePercentageIsTwoCharactersLongAndGetsItsSignOnLeaving)
{
    txtWarn_GotFocus(pages);
    EXPECT_EQ(record.txtWarn.maxLength, 2);
    txtWarn_LostFocus(pages);
    EXPECT_EQ(record.txtWarn.text, "");
    record.txtWarn.text = "15";
    txtWarn_LostFocus(pages);
    EXPECT_EQ(record.txtWarn.text, "15%");
    changed();
    txtWarn_LostFocus(pages);
    EXPECT_EQ(record.txtWarn.text, "15%");
    EXPECT_FALSE(changed());
}

// ---- plain checks

TEST_F(OptionsPage, CompressionIsAlwaysOn)
{
    record.chkCompress.value = 0;
    chkCompress_Click(pages);
    EXPECT_EQ(record.chkCompress.value, 1);
}

TEST_F(OptionsPage, EncryptionAndPrimaryAreChangesAndNothingElse)
{
    for (const auto handler : {chkEncrypt_Click, chkPrimary_Click}) {
        handler(pages);
        EXPECT_TRUE(changed());
    }
    viewMode();
    chkEncrypt_Click(pages);
    EXPECT_FALSE(changed());
}

// ---- retention

TEST_F(OptionsPage, ARetentionOptionEmptiesTheBoxesThatAreNotItsOwn)
{
    struct Case {
        void (*handler)(PagesContext&);
        const char* versions;
        const char* days;
    };
    const Case cases[] = {
        {optVer1_Click, "", ""},  {optVer2_Click, "", ""},  {optVer3_Click, "", "8"},
        {optVer4_Click, "", "8"}, {optVer5_Click, "", "8"}, {optVer6_Click, "6", ""},
        {optVer7_Click, "", ""},  {optVer8_Click, "", "8"},
    };
    int number = 0;
    for (const Case& each : cases) {
        ++number;
        record.txtLatestVer.text = "6";
        record.txtLatestDaysVer.text = "8";
        each.handler(pages);
        EXPECT_EQ(record.txtLatestVer.text, each.versions) << number;
        EXPECT_EQ(record.txtLatestDaysVer.text, each.days) << number;
        EXPECT_TRUE(changed()) << number;
    }
}

TEST_F(OptionsPage, RetainLastVersionsUnlocksItsBox)
{
    record.txtLatestVer.locked = true;
    optVer6_Click(pages);
    EXPECT_FALSE(record.txtLatestVer.locked);
    EXPECT_THAT(window.calls, ElementsAre("focus txtLatestVer"));
    record.txtLatestVer.enabled = false;
    optVer6_Click(pages);
    EXPECT_EQ(window.calls.size(), 1U);
}

TEST_F(OptionsPage, RetainLastDaysEnablesAndUnlocksItsBox)
{
    record.txtLatestDaysVer.locked = true;
    record.txtLatestDaysVer.enabled = false;
    record.Label4.enabled = false;
    optVer8_Click(pages);
    EXPECT_FALSE(record.txtLatestDaysVer.locked);
    EXPECT_TRUE(record.txtLatestDaysVer.enabled && record.Label4.enabled);
    EXPECT_THAT(window.calls, ElementsAre("focus txtLatestDaysVer"));
}

TEST_F(OptionsPage, LoadedRetentionIsLeftAlone)
{
    store.scalars.bOptionsLoaded = true;
    record.txtLatestVer.text = "6";
    record.txtLatestDaysVer.text = "8";
    record.txtLatestVer.locked = record.txtLatestDaysVer.locked = true;
    optVer6_Click(pages);
    optVer8_Click(pages);
    EXPECT_EQ(record.txtLatestVer.text + record.txtLatestDaysVer.text, "68");
    EXPECT_TRUE(record.txtLatestVer.locked && record.txtLatestDaysVer.locked);
    EXPECT_THAT(window.calls, IsEmpty());
}

TEST_F(OptionsPage, ACountIsTypedUnderItsOptionAlone)
{
    struct Case {
        void (*enter)(PagesContext&);
        void (*leave)(PagesContext&);
        state::TextBox& box;
        state::OptionButton& option;
    };
    const Case cases[] = {
        {txtLatestVer_GotFocus, txtLatestVer_LostFocus, record.txtLatestVer, record.optVer6},
        {txtLatestDaysVer_GotFocus, txtLatestDaysVer_LostFocus, record.txtLatestDaysVer,
         record.optVer8}};
    for (const Case& each : cases) {
        each.box.locked = true;
        each.option.value = false;
        each.enter(pages);
        EXPECT_TRUE(each.box.locked);
        each.option.value = true;
        each.enter(pages);
        EXPECT_FALSE(each.box.locked);
        each.leave(pages);
        EXPECT_TRUE(each.box.locked);
    }
}

} // namespace
} // namespace vardelin::editor
