#include "editor/other_data_form.h"

#include "editor/extension_lists.h"
#include "editor/include_texts.h"
#include "pages_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kAllFiles =
    "*.* option is not applicable for Include\\Exclude Files by names";
constexpr const char* kStar = "* option is not applicable for Include\\Exclude Files by names";
constexpr const char* kSame = "The entries should not be same in include/exclude option";
constexpr const char* kNone = "";

class OtherDataForm : public testing::Test, public test::PagesRig {
protected:
    // What "&OK" says to these names; empty where the form was hidden without a word.
    std::string refusal(std::string_view incl, std::string_view excl)
    {
        record.txtInclNames.text = incl;
        record.txtExclNames.text = excl;
        clearBoxes();
        pagesForm.otherdata.visible = true;
        cmdSetOK_Click(pages);
        EXPECT_EQ(pagesForm.otherdata.visible, !boxes().empty());
        EXPECT_LE(boxes().size(), 1U);
        if (boxes().empty())
            return {};
        EXPECT_EQ(boxes()[0].title, "Vardelin");
        EXPECT_EQ(boxes()[0].buttons, platform::Buttons::Ok);
        return boxes()[0].text;
    }
};

// ---- the patterns

TEST_F(OtherDataForm, JudgesPatterns)
{
    struct Case {
        const char* incl;
        const char* excl;
        const char* message;
    };
    const Case cases[] = {
        {"", "", kNone},
        {"A*.*", "", kNone},
        {"Tech*.*,Inf*.*", "", kNone},
        {"A*.*,*.*", "", kAllFiles},
        {"*.*", "", kAllFiles},
        {"", "*.*", kAllFiles},
        {"* . *", "", kAllFiles},
        {"**.**", "", kAllFiles},
        {"a,*.*,b", "", kAllFiles},
        {"", "a,*.*,b", kAllFiles},
        {" *.*,a", "", kAllFiles},
        {"*.*x", "", kAllFiles}, // the start of the text counts, not the element
        {"a,*.*,", "", kAllFiles},
        {"", "a,*.* ", kAllFiles},
        {"*", "", kStar},
        {"", "*", kStar},
        {"***", "", kStar},
        {"*,a", "", kNone}, // a star is refused alone
        {" *", "", kNone},  // and without blanks
        {"a,b", "c,d", kNone},
        {"a,B", "b,c", kSame},
        {"txt*", "TXT*", kSame},
        // Whole texts are compared where one side is no list.
        {"doc*,TXT*", "txt*", kNone},
        {"txt*", "doc*,TXT*", kNone},
        {"", "", kNone},
        {"a, b", "b,c", kNone},     // a blank makes another entry
        {"a,,b", "c,,d", kSame},    // empty entries are entries
        {"*.*", "*.*", kAllFiles},  // before the comparison
        {"*", "*", kSame},          // the comparison comes before the star
        {"A*.*,a, *.*", "", kNone}, // kept blanks hide an entry of all files
    };
    for (const Case& each : cases)
        EXPECT_EQ(refusal(each.incl, each.excl), each.message)
            << '"' << each.incl << "\" \"" << each.excl << '"';
}

TEST_F(OtherDataForm, FoldsStarsAndKeepsBlanksUnlessAllFilesIsLeft)
{
    struct Case {
        const char* typed;
        const char* kept;
    };
    const Case cases[] = {
        {"a** b", "a* b"}, {"***", "*"}, {"* . *", "*.*"}, {"** .*", "*.*"}, {"a * . *", "a * . *"},
    };
    for (const Case& each : cases) {
        refusal(each.typed, "");
        EXPECT_EQ(record.txtInclNames.text, each.kept) << each.typed;
        refusal("", each.typed);
        EXPECT_EQ(record.txtExclNames.text, each.kept) << each.typed;
    }
}

TEST_F(OtherDataForm, RewrittenNamesAreAChangeAndUntouchedOnesNone)
{
    refusal("a*,b", "c");
    EXPECT_FALSE(changed());
    refusal("a**", "");
    EXPECT_TRUE(changed());
}

TEST_F(OtherDataForm, ItsBoxesTakeWhatANameCanHold)
{
    for (const char c : std::string_view("\\/:?\"<>|"))
        EXPECT_EQ(namesKeyPress(c), 0) << c;
    for (const char c : std::string_view("aZ09*.,_- '"))
        EXPECT_EQ(namesKeyPress(c), c) << c;
    EXPECT_EQ(namesKeyPress(kBackspaceKey), kBackspaceKey);
    EXPECT_EQ(namesKeyPress(0xE9), 0xE9);
}

// ---- opening

TEST_F(OtherDataForm, OpensWithOneHalfEnabled)
{
    window.inOtherdata = [&] {
        EXPECT_TRUE(pagesForm.otherdata.visible);
        EXPECT_TRUE(record.fmeExclude.enabled);
        EXPECT_FALSE(record.fmeFilesByNames.enabled);
    };
    cmdExclude_Click(pages);
    window.inOtherdata = [&] {
        EXPECT_FALSE(record.fmeExclude.enabled);
        EXPECT_TRUE(record.fmeFilesByNames.enabled);
    };
    cmdExclInclByNames_Click(pages);
    EXPECT_THAT(window.calls, ElementsAre("showOtherdata", "showOtherdata"));
    EXPECT_FALSE(pagesForm.otherdata.visible);
    EXPECT_TRUE(record.fmeInclude.enabled && record.fmeOtherData.enabled);
}

TEST_F(OtherDataForm, InAViewBothHalvesAndThePageAreDisabledAndTheSavedExclusionsShow)
{
    viewMode();
    store.opened.clxnOpenedExcluded.add(".iso", ".iso");
    for (const auto click : {cmdExclude_Click, cmdExclInclByNames_Click}) {
        record.fmeExclude = record.fmeFilesByNames = {};
        record.fmeInclude = record.fmeOtherData = {};
        click(pages);
        EXPECT_FALSE(record.fmeExclude.enabled || record.fmeFilesByNames.enabled);
        EXPECT_FALSE(record.fmeInclude.enabled || record.fmeOtherData.enabled);
        EXPECT_THAT(rowTexts(record.lstExclude), ElementsAre(".iso"));
        EXPECT_TRUE(record.lstExclude.rows[0].checked);
    }
}

TEST_F(OtherDataForm, IsLoadedOnceAndKeepsItsTicks)
{
    tree.add(nullptr, {"D:\\", "D:", 1}).checked = true;
    cmdExclude_Click(pages);
    EXPECT_EQ(record.lstExclude.rows.size(), 3U);
    record.lstExclude.rows[0].checked = true;
    cmdExclude_Click(pages);
    EXPECT_TRUE(record.lstExclude.rows[0].checked);
}

// The list as the editing of a profile fills it, before the form was ever opened.
TEST_F(OtherDataForm, OpeningDoesNotFillAgainWhatWasFilledFromOutside)
{
    ListExclForFileExt(pages);
    record.lstExclude.rows[0].checked = true;
    cmdExclude_Click(pages);
    EXPECT_TRUE(record.lstExclude.rows[0].checked);
}

TEST_F(OtherDataForm, UnloadingForgetsWhatBelongedToTheFormerProfile)
{
    cmdExclude_Click(pages);
    record.txtInclNames.text = "a";
    record.txtExclNames.text = "b";
    unloadOtherdata(pages);
    EXPECT_THAT(record.lstExclude.rows, IsEmpty());
    EXPECT_EQ(record.txtInclNames.text + record.txtExclNames.text, "");
    EXPECT_FALSE(pagesForm.otherdata.loaded);
    EXPECT_FALSE(changed());
}

// ---- "&Clear"

TEST_F(OtherDataForm, ClearEmptiesTheNamesAndTakesEveryExclusionBack)
{
    tree.add(nullptr, {"D:\\", "D:", 1}).checked = true;
    ListInclForFileExt(pages);
    ListExclForFileExt(pages);
    for (const std::size_t row : {std::size_t{0}, std::size_t{2}}) {
        record.lstExclude.rows[row].checked = true;
        lstExclude_ItemCheck(pages, row);
    }
    record.txtInclNames.text = "a";
    record.txtExclNames.text = "b";
    pagesForm.otherdata.visible = true;
    changed();
    cmdCancel_Click(pages);
    EXPECT_EQ(record.txtInclNames.text + record.txtExclNames.text, "");
    EXPECT_THAT(store.save.clxnExcluded.items(), IsEmpty());
    EXPECT_THAT(rowTexts(record.lstInclude), ElementsAre(".jpg", ".doc", ".txt"));
    for (const state::ListRow& row : record.lstExclude.rows)
        EXPECT_FALSE(row.checked);
    EXPECT_FALSE(pagesForm.otherdata.visible);
    EXPECT_TRUE(changed());
}

TEST_F(OtherDataForm, ClearOfNamesAloneIsAChangeToo)
{
    record.txtExclNames.text = "b";
    cmdCancel_Click(pages);
    EXPECT_TRUE(changed());
    cmdCancel_Click(pages);
    EXPECT_FALSE(changed());
}

TEST_F(OtherDataForm, InAViewClearOnlyHidesTheForm)
{
    viewMode();
    record.txtInclNames.text = "a";
    store.opened.clxnOpenedExcluded.add(".iso", ".iso");
    ExclList(pages, store.opened.clxnOpenedExcluded);
    pagesForm.otherdata.visible = true;
    cmdCancel_Click(pages);
    EXPECT_EQ(record.txtInclNames.text, "a");
    EXPECT_TRUE(record.lstExclude.rows[0].checked);
    EXPECT_FALSE(pagesForm.otherdata.visible);
}

TEST_F(OtherDataForm, HasTheseCaptions)
{
    EXPECT_EQ(pagesForm.otherdata.caption, "FileOptions");
    EXPECT_EQ(pagesForm.otherdata.cmdSetOK.caption, "&OK");
    EXPECT_EQ(pagesForm.otherdata.cmdCancel.caption, "&Clear");
    EXPECT_EQ(include_texts::kExcludeFrame, "Exclude File(s) by File extensions");
    EXPECT_EQ(include_texts::kNamesFrame, "Include \\ Exclude File(s) by File Names");
    EXPECT_EQ(include_texts::kInclNamesLabel,
              "Give File Names to be included like, Tech*.*,Inf*.*  :");
    EXPECT_EQ(include_texts::kExclNamesLabel,
              "Give File Names to be excluded like, Tech*.*,Inf*.* :");
    EXPECT_EQ(include_texts::kExtensionColumn, "File Extensions");
    EXPECT_EQ(include_texts::kTypeColumn, "Type");
}

} // namespace
} // namespace vardelin::editor
