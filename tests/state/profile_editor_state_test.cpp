#include "state/profile_editor_state.h"

#include "state/name_tables.h"
#include "state/profile_store.h"

#include <gtest/gtest.h>

namespace vardelin::state {
namespace {

std::vector<std::string> texts(const ListBox& list)
{
    std::vector<std::string> result;
    for (const ListRow& row : list.rows)
        result.push_back(row.text);
    return result;
}

TEST(ProfileEditorState, ANewProfileKeepsTheOriginalVersionAndOffersEveryRetention)
{
    const ProfileEditorState editor;
    EXPECT_EQ(chosen(editor.retentionOptions()), 7);
    for (const OptionButton* const option : editor.retentionOptions())
        EXPECT_TRUE(option->enabled);
}

TEST(ProfileEditorState, ANewProfileHasAUnitSoThatItsFirstSaveIsNotRefused)
{
    const ProfileEditorState editor;
    EXPECT_EQ(editor.cmbSizeOfBkp.text, "MB");
    EXPECT_EQ(editor.cmbSizeOfBkp.items, (std::vector<std::string>{"KB", "MB", "GB"}));
}

TEST(ProfileEditorState, ANewProfileCompressesAndHasNoOtherOption)
{
    const ProfileEditorState editor;
    EXPECT_EQ(editor.chkCompress.value, 1);
    for (const CheckBox* const box :
         {&editor.chkPassword, &editor.chkEncrypt, &editor.chkWarn, &editor.chkIdle,
          &editor.chkSizeOfBkp, &editor.chkQueueThrld, &editor.chkPrimary, &editor.chkAutoSched})
        EXPECT_EQ(box->value, 0);
    EXPECT_EQ(chosen(editor.patternOptions()), 0);
}

TEST(ProfileEditorState, TheScheduleFramesWaitForTheSchedule)
{
    const ProfileEditorState editor;
    EXPECT_FALSE(editor.Frame3.enabled);
    EXPECT_FALSE(editor.Frame4.enabled);
    EXPECT_FALSE(editor.Frame5.enabled);
    EXPECT_TRUE(editor.Frame6.visible);
    EXPECT_FALSE(editor.Frame7.visible);
    EXPECT_FALSE(editor.Frame8.visible);
    EXPECT_FALSE(editor.Frame9.visible);
}

TEST(ProfileEditorState, ListsStandInTheirOrderWithNothingSelected)
{
    const ProfileEditorState editor;
    EXPECT_EQ(texts(editor.lstOtherData),
              (std::vector<std::string>{"Registry Settings", "Desktop Settings", "IE Favorites",
                                        "Outlook Settings"}));
    EXPECT_EQ(texts(editor.lstWeekDays),
              (std::vector<std::string>{"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday",
                                        "Friday", "Saturday"}));
    EXPECT_EQ(
        texts(editor.lstMonth),
        (std::vector<std::string>{"January", "February", "March", "April", "May", "June", "July",
                                  "August", "September", "October", "November", "December"}));
    EXPECT_EQ(editor.cmbHintQues.items,
              (std::vector<std::string>{"Father's Middle Name ?", "Favorite Past-time ?",
                                        "Favorite Pet's Name?", "Favorite Sports Team?"}));
    ASSERT_EQ(editor.lstMonthDate.rows.size(), 31U);
    ASSERT_EQ(editor.lstYearDate.rows.size(), 31U);
    EXPECT_EQ(editor.lstMonthDate.rows.front().text, "1");
    EXPECT_EQ(editor.lstYearDate.rows.back().text, "31");
    for (const ListRow& row : editor.lstMonthDate.rows)
        EXPECT_FALSE(row.selected);
}

TEST(ProfileEditorState, ChoosingAnOptionSwitchesTheOthersOfItsGroupOff)
{
    ProfileEditorState editor;
    choose(editor.retentionOptions(), 3);
    EXPECT_TRUE(editor.optVer3.value);
    EXPECT_FALSE(editor.optVer7.value);
    editor.optVer5.value = true;
    EXPECT_EQ(chosen(std::as_const(editor).retentionOptions()), 3) << "the first one on counts";
    choose(editor.retentionOptions(), 0);
    EXPECT_EQ(chosen(std::as_const(editor).retentionOptions()), 0);
}

TEST(ProfileStore, PathsFollowTheFileSystemAndTheRestIgnoresCase)
{
    ProfileStore exact(base::KeyRule::Exact);
    exact.save.clxnSources.add("C:\\Docs\\", "C:\\Docs\\");
    EXPECT_TRUE(exact.save.clxnSources.tryAdd("C:\\docs\\", "C:\\docs\\"));
    exact.opened.clxnOpenedSources.add("C:\\A", "C:\\A");
    EXPECT_FALSE(exact.opened.clxnOpenedSources.contains("C:\\a"));
    exact.save.clxnExcluded.add(".txt", ".txt");
    EXPECT_FALSE(exact.save.clxnExcluded.tryAdd(".TXT", ".TXT"));

    ProfileStore folded(base::KeyRule::IgnoreCase);
    folded.opened.clxnOpenedSources.add("C:\\A", "C:\\A");
    EXPECT_TRUE(folded.opened.clxnOpenedSources.contains("C:\\a"));
}

} // namespace
} // namespace vardelin::state
