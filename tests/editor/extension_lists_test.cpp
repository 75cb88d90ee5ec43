#include "editor/extension_lists.h"
#include "editor/include_texts.h"
#include "editor/other_data_form.h"
#include "pages_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::editor {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class ExtensionLists : public testing::Test, public test::PagesRig {
protected:
    state::ListBox& include = record.lstInclude;
    state::ListBox& exclude = record.lstExclude;
    base::TextCollection& included = store.save.clxnIncluded;
    base::TextCollection& excluded = store.save.clxnExcluded;

    ExtensionLists()
    {
        ListInclForFileExt(pages);
        ListExclForFileExt(pages);
    }
    // A tree with one ticked file, so that there is something to exclude from.
    void tickSource()
    {
        state::TreeNode& node = tree.add(nullptr, {"D:\\", "D:", 1});
        node.checked = true;
    }
    void tickInclude(std::string_view extension, bool on = true)
    {
        const std::size_t row = rowOf(include, extension);
        include.rows[row].checked = on;
        lstInclude_ItemCheck(pages, row);
    }
    void tickExclude(std::string_view extension, bool on = true)
    {
        const std::size_t row = rowOf(exclude, extension);
        exclude.rows[row].checked = on;
        lstExclude_ItemCheck(pages, row);
    }
};

// ---- filling

TEST_F(ExtensionLists, HoldTheMachinesExtensionsSortedWithTheirTypesAndIcons)
{
    EXPECT_THAT(rowTexts(include), ElementsAre(".doc", ".jpg", ".txt"));
    EXPECT_THAT(rowTexts(exclude), ElementsAre(".doc", ".jpg", ".txt"));
    EXPECT_EQ(include.rows[2].sub, "Plain text document");
    EXPECT_EQ(include.rows[2].icon, "text-x-generic");
    EXPECT_TRUE(include.rows[0].selected); // the focus
    EXPECT_FALSE(include.rows[1].selected);
    EXPECT_TRUE(pagesForm.lstIncludeSort.Sorted);
}

TEST_F(ExtensionLists, FillingYieldsAndPutsTheMousePointerBack)
{
    const std::size_t before = messageLoop.yields;
    ListInclForFileExt(pages);
    EXPECT_EQ(messageLoop.yields, before + 1);
    EXPECT_EQ(form.mousePointer, MousePointer::Default);
}

TEST_F(ExtensionLists, LeaveOutWhatHasNoType)
{
    shell.types[".odd"] = {"", "x"};
    ListInclForFileExt(pages);
    EXPECT_THAT(rowTexts(include), Not(Contains(".odd")));
}

TEST_F(ExtensionLists, CutAnExtensionAtItsFirstNul)
{
    shell.types[std::string(".a\0b", 4)] = {"Odd type", ""};
    shell.types[".a"] = {"A type", ""};
    ListInclForFileExt(pages);
    EXPECT_EQ(include.rows[0].text, ".a");
    EXPECT_EQ(include.rows[1].text, ".a");
}

TEST_F(ExtensionLists, AMachineWithoutTypesGivesEmptyLists)
{
    shell.types.clear();
    ListInclForFileExt(pages);
    EXPECT_THAT(include.rows, IsEmpty());
}

TEST_F(ExtensionLists, AFailureSaysWhichListAndLeavesThePointer)
{
    shell.script().failCallsNamed("shell.extensions", 57);
    ListInclForFileExt(pages);
    shell.script().failCallsNamed("shell.extensions", 57);
    ListExclForFileExt(pages);
    EXPECT_THAT(
        errorsShown(),
        ElementsAre("LoadFileExtIcons: Error occured in loading the  file extensions icons",
                    "LoadFileExtIcons: Error occured in loading the  file extensions icon"));
    EXPECT_EQ(form.mousePointer, MousePointer::Default);
}

// A save walks over the rows, so an extension without a row would be gone from the profile.
TEST_F(ExtensionLists, KeepASavedExtensionThatThisMachineDoesNotKnow)
{
    store.opened.clxnOpenedIncluded.add(".cad", ".cad");
    store.opened.clxnOpenedExcluded.add(".iso", ".iso");
    ListInclForFileExt(pages);
    ListExclForFileExt(pages);
    EXPECT_THAT(rowTexts(include), ElementsAre(".cad", ".doc", ".jpg", ".txt"));
    EXPECT_THAT(rowTexts(exclude), ElementsAre(".doc", ".iso", ".jpg", ".txt"));
    frame.BL_Edit_Mode = false;
    frame.BL_New_Mode = true; // what is left of a former profile does not count
    ListInclForFileExt(pages);
    EXPECT_THAT(rowTexts(include), ElementsAre(".doc", ".jpg", ".txt"));
}

TEST_F(ExtensionLists, TheViewShowsTheSavedExclusionsAloneAllTicked)
{
    store.opened.clxnOpenedExcluded.add(".txt", ".txt");
    store.opened.clxnOpenedExcluded.add(".iso", ".iso");
    ExclList(pages, store.opened.clxnOpenedExcluded);
    EXPECT_THAT(rowTexts(exclude), ElementsAre(".txt", ".iso"));
    EXPECT_TRUE(exclude.rows[0].checked && exclude.rows[1].checked);
    EXPECT_EQ(exclude.rows[0].sub, "Plain text document");
}

TEST_F(ExtensionLists, AFailureOfTheViewHasItsOwnSentence)
{
    store.opened.clxnOpenedExcluded.add(".txt", ".txt");
    shell.script().failCallsNamed("shell.typeName", 57);
    ExclList(pages, store.opened.clxnOpenedExcluded);
    EXPECT_THAT(errorsShown(), ElementsAre("ExclList: Error occured in loading the selected file "
                                           "extensions in the open profile mode"));
}

// ---- one list at most

TEST_F(ExtensionLists, ATickMovesAnExtensionOutOfTheOtherListAndAnUntickPutsItAtItsEnd)
{
    tickSource();
    tickExclude(".doc");
    EXPECT_THAT(rowTexts(include), ElementsAre(".jpg", ".txt"));
    EXPECT_THAT(excluded.items(), ElementsAre(".doc"));
    tickExclude(".doc", false);
    EXPECT_THAT(rowTexts(include), ElementsAre(".jpg", ".txt", ".doc"));
    EXPECT_EQ(include.rows.back().sub, "Word document");
    EXPECT_THAT(excluded.items(), IsEmpty());
    lstInclude_ColumnClick(pages, 0);
    EXPECT_THAT(rowTexts(include), ElementsAre(".doc", ".jpg", ".txt"));
}

TEST_F(ExtensionLists, IncludesMirrorThat)
{
    tickInclude(".jpg");
    EXPECT_THAT(rowTexts(exclude), ElementsAre(".doc", ".txt"));
    EXPECT_THAT(included.items(), ElementsAre(".jpg"));
    tickInclude(".jpg", false);
    EXPECT_THAT(rowTexts(exclude), ElementsAre(".doc", ".txt", ".jpg"));
    EXPECT_THAT(included.items(), IsEmpty());
}

TEST_F(ExtensionLists, ATickThatIsThereAlreadyIsNoError)
{
    included.add(".jpg", ".jpg");
    tickInclude(".jpg");
    EXPECT_THAT(included.items(), ElementsAre(".jpg"));
    EXPECT_THAT(errorsShown(), IsEmpty());
}

TEST_F(ExtensionLists, ARowWithoutTextMovesNothing)
{
    include.rows.insert(include.rows.begin(), state::ListRow{});
    include.rows[0].checked = true;
    lstInclude_ItemCheck(pages, 0);
    EXPECT_THAT(included.items(), IsEmpty());
    EXPECT_EQ(exclude.rows.size(), 3U);
}

// The other form's list is filled at the form's first use: ticking must be that use, or the ticked
// extension would come back into the list later.
TEST_F(ExtensionLists, TheFirstTickLoadsTheOtherForm)
{
    unloadOtherdata(pages);
    EXPECT_THAT(exclude.rows, IsEmpty());
    tickInclude(".txt");
    EXPECT_THAT(rowTexts(exclude), ElementsAre(".doc", ".jpg"));
    cmdExclude_Click(pages);
    EXPECT_THAT(rowTexts(exclude), ElementsAre(".doc", ".jpg"));
}

// An inclusion takes files from the whole machine, an exclusion needs something to take them from.
TEST_F(ExtensionLists, WithoutASourceAnExclusionBouncesAndAnInclusionStays)
{
    tickExclude(".doc");
    EXPECT_THAT(messages(), ElementsAre("Select any Files/Folders to Backup"));
    EXPECT_FALSE(exclude.rows[0].checked);
    EXPECT_EQ(include.rows.size(), 3U);
    EXPECT_FALSE(changed());
    tickInclude(".doc");
    EXPECT_EQ(messages().size(), 1U);
    EXPECT_TRUE(include.rows[0].checked);
    EXPECT_TRUE(changed());
}

TEST_F(ExtensionLists, ABouncedExclusionDropsTheCollectedOnes)
{
    excluded.add(".txt", ".txt");
    tickExclude(".doc");
    EXPECT_THAT(excluded.items(), IsEmpty());
    EXPECT_FALSE(store.scalars.SourceChecked);
}

TEST_F(ExtensionLists, ANodeWithoutTextIsNoSource)
{
    tree.add(nullptr, {}).checked = true;
    tickExclude(".doc");
    EXPECT_THAT(messages(), ElementsAre("Select any Files/Folders to Backup"));
}

TEST_F(ExtensionLists, AnUntickAsksForNoSource)
{
    tickExclude(".doc", false);
    EXPECT_THAT(messages(), IsEmpty());
}

// The lists are compared by their lengths alone: a profile that was saved with as many exclusions
// as the list has rows needs no source.
TEST_F(ExtensionLists, AListAsLongAsTheSavedOneNeedsNoSource)
{
    for (const char* const each : {".a", ".b", ".c"})
        store.opened.clxnOpenedExcluded.add(each, each);
    tickExclude(".doc");
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_THAT(excluded.items(), ElementsAre(".doc"));
}

TEST_F(ExtensionLists, AnExclusionMakesTheDefaultProfileThePersonsOwn)
{
    tickSource();
    firstRun();
    tickInclude(".jpg");
    EXPECT_TRUE(frame.BL_First_Run);
    tickExclude(".doc");
    EXPECT_FALSE(frame.BL_First_Run);
    firstRun();
    ExclCheck(pages, 0);
    EXPECT_FALSE(frame.BL_First_Run);
}

TEST_F(ExtensionLists, ARefusedExclusionDoesNot)
{
    firstRun();
    tickExclude(".doc");
    EXPECT_TRUE(frame.BL_First_Run);
}

// ---- change flags and views

TEST_F(ExtensionLists, ATickIsAChangeAndItsReplayIsNone)
{
    tickSource();
    tickInclude(".doc");
    EXPECT_TRUE(changed());
    tickExclude(".jpg");
    EXPECT_TRUE(changed());
    const std::size_t txt = rowOf(include, ".txt");
    include.rows[txt].checked = true;
    InclCheck(pages, txt);
    EXPECT_THAT(included.items(), ElementsAre(".doc", ".txt"));
    exclude.rows[0].checked = true;
    ExclCheck(pages, 0);
    EXPECT_FALSE(changed());
}

TEST_F(ExtensionLists, ANewProfileHasAFlagOfItsOwn)
{
    frame.BL_Edit_Mode = false;
    frame.BL_New_Mode = true;
    tickInclude(".doc");
    EXPECT_TRUE(frame.BL_New_Changed);
    EXPECT_FALSE(frame.BL_Edit_Changed);
}

TEST_F(ExtensionLists, TheReplayGoesByTheNameOfTheTickInTheTrace)
{
    InclCheck(pages, 0);
    EXPECT_THAT(entries(), Contains("lstInclude_ItemCheck End 2"));
    EXPECT_THAT(entries(), Not(Contains(testing::StartsWith("InclCheck"))));
    ExclCheck(pages, 0);
    EXPECT_THAT(entries(), Contains("ExclCheck End 2"));
}

TEST_F(ExtensionLists, InAViewAnInclusionComesBack)
{
    viewMode();
    include.rows[1].checked = true;
    tickInclude(".jpg", false);
    EXPECT_TRUE(include.rows[1].checked);
    EXPECT_THAT(included.items(), IsEmpty());
    EXPECT_EQ(exclude.rows.size(), 3U);
    EXPECT_FALSE(changed());
}

// The clicked row is not the one that comes back; nobody sees it, since the frame is disabled then.
TEST_F(ExtensionLists, InAViewItIsTheFirstExclusionThatComesBack)
{
    viewMode();
    store.opened.clxnOpenedExcluded.add(".txt", ".txt");
    store.opened.clxnOpenedExcluded.add(".iso", ".iso");
    ExclList(pages, store.opened.clxnOpenedExcluded);
    exclude.rows[0].checked = false;
    tickExclude(".iso", false);
    EXPECT_TRUE(exclude.rows[0].checked);
    EXPECT_FALSE(exclude.rows[1].checked);
}

TEST_F(ExtensionLists, SettingsGroupsNoteAChangeAndStaySelectedInAView)
{
    record.lstOtherData.rows[1].selected = true;
    lstOtherData_ItemCheck(pages, 1);
    EXPECT_TRUE(changed());
    viewMode();
    record.lstOtherData.rows[1].selected = false;
    lstOtherData_ItemCheck(pages, 1);
    EXPECT_TRUE(record.lstOtherData.rows[1].selected);
    record.lstOtherData.rows[0].text.clear();
    record.lstOtherData.rows[1].selected = false;
    lstOtherData_ItemCheck(pages, 1);
    EXPECT_FALSE(record.lstOtherData.rows[1].selected);
}

TEST_F(ExtensionLists, EachHandlerHasItsSentence)
{
    tickSource();
    for (const auto handler : {lstInclude_ItemCheck, InclCheck, lstExclude_ItemCheck, ExclCheck}) {
        shell.script().failCallsNamed("shell.typeName", 57); // an untick asks for the type
        handler(pages, 0);
    }
    EXPECT_THAT(
        errorsShown(),
        ElementsAre("lstInclude_ItemCheck: Error occured when selecting the Include Option",
                    "lstInclude_ItemCheck: Error occured when selecting the Include Option",
                    "lstExclude_ItemCheck: Error occurred when selecting the exclude option",
                    "ExclCheck: Error occurred when selecting the exclude option"));
    EXPECT_EQ(errors.ST_Err_Type, "Informative");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "frmProfile");
}

// ---- sorting

TEST_F(ExtensionLists, AColumnSortsUpwardsAndThenByTurns)
{
    lstInclude_ColumnClick(pages, 1);
    EXPECT_THAT(rowTexts(include), ElementsAre(".jpg", ".txt", ".doc"));
    EXPECT_EQ(pagesForm.lstIncludeSort.SortKey, 1);
    lstInclude_ColumnClick(pages, 1);
    EXPECT_THAT(rowTexts(include), ElementsAre(".doc", ".txt", ".jpg"));
    lstInclude_ColumnClick(pages, 1);
    EXPECT_THAT(rowTexts(include), ElementsAre(".jpg", ".txt", ".doc"));
    lstInclude_ColumnClick(pages, 0); // has turns of its own
    EXPECT_THAT(rowTexts(include), ElementsAre(".doc", ".jpg", ".txt"));
    EXPECT_THAT(window.calls, Contains("visible lstInclude").Times(4));
}

TEST_F(ExtensionLists, ATagIsReadAsANumberWithoutItsSign)
{
    pagesForm.otherdata.lstExcludeSort.Tag[0] = "-1";
    lstExclude_ColumnClick(pages, 0);
    EXPECT_THAT(rowTexts(exclude), ElementsAre(".txt", ".jpg", ".doc"));
    EXPECT_EQ(pagesForm.otherdata.lstExcludeSort.Tag[0], "0");
    EXPECT_THAT(window.calls, ElementsAre("visible lstExclude"));
}

TEST_F(ExtensionLists, TicksStayWithTheirRowsWhenSorted)
{
    tickInclude(".txt");
    lstInclude_ColumnClick(pages, 1);
    EXPECT_TRUE(include.rows[rowOf(include, ".txt")].checked);
    EXPECT_FALSE(include.rows[0].checked);
}

} // namespace
} // namespace vardelin::editor
