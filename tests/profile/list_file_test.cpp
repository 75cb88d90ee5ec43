#include "profile/list_file.h"

#include "store_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace vardelin::profile {
namespace {

using test::StoreRig;
using test::textOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kList = "C:\\App\\Data\\Other_Dsk.txt";
constexpr std::string_view kScratch = "C:\\App\\Data\\UpOther_Dsk.txt";

std::string list(const std::vector<std::string>& lines)
{
    return textOf(lines);
}

class ListFileTest : public testing::Test {
protected:
    ListFileTest()
    {
        rig.putFile("C:\\App\\Profiles\\A.vdp", "");
        rig.putFile("C:\\App\\Profiles\\B.vdp", "");
    }
    bool recent()
    {
        bool found = true;
        IsRecentProfile(rig.quiet, found);
        return found;
    }
    bool primary()
    {
        bool found = true;
        IsPrProFileExists(rig.quiet, found);
        return found;
    }
    void put(const std::string& text) { rig.putFile(kList, text); }
    std::string now() { return rig.contentOf(kList); }

    StoreRig rig;
};

TEST_F(ListFileTest, FindsEachKindWhereverItStands)
{
    put(list({"[Primary Profile]", "A.vdp", "[Recent Profile]", "B.vdp"}));
    EXPECT_TRUE(recent());
    EXPECT_EQ(rig.frame.ST_Recent_Profile, "B.vdp");
    EXPECT_TRUE(primary());
    EXPECT_EQ(rig.frame.ST_Primary_Profile, "A.vdp");
    EXPECT_THAT(rig.ownEntries(), ElementsAre("IsRecentProfile End 2", "IsPrProFileExists End 2"));
}

TEST_F(ListFileTest, NoMarkerIsNotFoundAndChangesNothing)
{
    put(list({"A.vdp", "B.vdp"}));
    rig.frame.ST_Recent_Profile = "kept";
    EXPECT_FALSE(recent());
    EXPECT_FALSE(primary());
    EXPECT_EQ(rig.frame.ST_Recent_Profile, "kept");
    EXPECT_EQ(now(), list({"A.vdp", "B.vdp"}));
}

TEST_F(ListFileTest, OfTwoRecentPairsTheFirstIsReadAndBothAreRemoved)
{
    put(list(
        {"[Recent Profile]", "A.vdp", "[Primary Profile]", "B.vdp", "[Recent Profile]", "B.vdp"}));
    EXPECT_TRUE(recent());
    EXPECT_EQ(rig.frame.ST_Recent_Profile, "A.vdp");
    RemoveRecVdpName(rig.quiet);
    EXPECT_EQ(now(), list({"[Primary Profile]", "B.vdp"}));
    EXPECT_EQ(rig.contentOf(kScratch), "absent");
}

TEST_F(ListFileTest, RemovingThePrimaryCutsTheListThere)
{
    // Recent pairs behind it go, too: who removes a primary entry sets anew what is to stay.
    put(list({"[Primary Profile]", "A.vdp", "[Recent Profile]", "B.vdp"}));
    RemoveVdpName(rig.quiet);
    EXPECT_EQ(now(), "");
    put(list(
        {"[Recent Profile]", "B.vdp", "[Primary Profile]", "A.vdp", "[Primary Profile]", "B.vdp"}));
    RemoveVdpName(rig.quiet);
    EXPECT_EQ(now(), list({"[Recent Profile]", "B.vdp"}));
    EXPECT_EQ(rig.contentOf(kScratch), "absent");
}

TEST_F(ListFileTest, EntryOfAMissingProfileIsRemovedAtTheFirstLook)
{
    put(list({"[Recent Profile]", "Gone.vdp", "[Primary Profile]", "A.vdp"}));
    EXPECT_FALSE(recent());
    EXPECT_EQ(now(), list({"[Primary Profile]", "A.vdp"}));
    put(list({"[Recent Profile]", "B.vdp", "[Primary Profile]", "Gone.vdp", "x"}));
    EXPECT_FALSE(primary());
    EXPECT_EQ(now(), list({"[Recent Profile]", "B.vdp"}));
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST_F(ListFileTest, MarkerOnTheLastLineHasAnEmptyValueAndIsRemoved)
{
    for (const std::string end : {"", "\r\n"}) {
        put("x\r\n[Recent Profile]" + end);
        EXPECT_FALSE(recent());
        EXPECT_EQ(now(), "x\r\n");
        put("x\r\n[Primary Profile]" + end);
        EXPECT_FALSE(primary());
        EXPECT_EQ(now(), "x\r\n");
    }
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST_F(ListFileTest, OnlyAFileDirectlyInProfilesCounts)
{
    rig.disk.createFolder("C:\\App\\Profiles\\Sub");
    rig.putFile("C:\\App\\Profiles\\Sub\\C.vdp", "");
    for (const std::string value : {"Sub", "Sub\\C.vdp", "..\\Profiles\\A.vdp", ""}) {
        put(list({"[Recent Profile]", value}));
        EXPECT_FALSE(recent()) << value;
        EXPECT_EQ(now(), "") << value;
    }
}

TEST_F(ListFileTest, MarkerOfAnotherCaseOrWithBlanksIsNone)
{
    for (const std::string marker :
         {"[recent profile]", "[Recent Profile] ", " [Recent Profile]"}) {
        put(list({marker, "A.vdp"}));
        EXPECT_FALSE(recent()) << marker;
        RemoveRecVdpName(rig.quiet);
        EXPECT_EQ(now(), list({marker, "A.vdp"})) << marker;
    }
    put(list({"[PRIMARY PROFILE]", "A.vdp"}));
    EXPECT_FALSE(primary());
    RemoveVdpName(rig.quiet);
    EXPECT_EQ(now(), list({"[PRIMARY PROFILE]", "A.vdp"}));
}

TEST_F(ListFileTest, RecentNameGetsItsExtensionAndThePrimaryStaysBare)
{
    SetRecentProfile(rig.quiet, "A");
    SetRecentProfile(rig.quiet, "B.VDP");
    SetRecentProfile(rig.quiet, "a.vdp.old");
    SetPrimaryProfile(rig.quiet, "A");
    EXPECT_EQ(now(), list({"[Recent Profile]", "A.vdp", "[Recent Profile]", "B.VDP",
                           "[Recent Profile]", "a.vdp.old", "[Primary Profile]", "A"}));
    EXPECT_FALSE(rig.traceDisk.fileExists(rig.ownTrace.logFileName()));
}

TEST_F(ListFileTest, MarkerIsNotAppendedToACutLine)
{
    put("[Primary Profile]\r\nA.vdp");
    SetRecentProfile(rig.quiet, "B.vdp");
    EXPECT_EQ(now(), list({"[Primary Profile]", "A.vdp", "[Recent Profile]", "B.vdp"}));
}

TEST_F(ListFileTest, SettersRaiseWhereTheFolderIsMissing)
{
    rig.disk.removeTree("C:\\App\\Data");
    for (const auto set : {SetRecentProfile, SetPrimaryProfile}) {
        try {
            set(rig.quiet, "A.vdp");
            FAIL();
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), 76);
        }
    }
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST_F(ListFileTest, SetterMakesAMissingList)
{
    rig.disk.removeFile(kList);
    SetPrimaryProfile(rig.quiet, "A.vdp");
    EXPECT_EQ(now(), list({"[Primary Profile]", "A.vdp"}));
}

TEST_F(ListFileTest, MissingListShowsTheErrorOfEachProcedure)
{
    rig.disk.removeFile(kList);
    struct Row {
        std::function<void()> run;
        const char* dialog;
        const char* start;
        const char* error;
    };
    // The removals report under names of other procedures, which people know them by.
    const Row rows[] = {
        {[this] { EXPECT_FALSE(recent()); },
         "MDIForm|IsRecentProfile|53|Error in Checking the existence of the Recent Profile",
         "IsRecentProfile", "IsRecentProfile Error 2"},
        {[this] { EXPECT_FALSE(primary()); },
         "MDIForm|IsPrProFileExists|53|Error in Checking the existence of the Primary Profile",
         "IsPrProFileExists", "IsPrProFileExists Error 2"},
        {[this] { RemoveRecVdpName(rig.quiet); },
         "MDIForm|RemoveRecVdp|53|Error occured in Removing the existent Recent Profile",
         "RemoveVdpName", "RemoveRecVdpName Error 1"},
        {[this] { RemoveVdpName(rig.quiet); },
         "MDIForm|IsPrProFileExists|53|Error occured in Removing the existence Primary name",
         "RemoveVdpName", "RemoveVdpName Error 2"},
    };
    for (const Row& row : rows) {
        rig.traceDisk.removeTree("C:\\App");
        rig.traceDisk.createFolder("C:\\App");
        row.run();
        EXPECT_EQ(rig.newestDialog(), row.dialog);
        const auto entries = rig.ownEntries();
        EXPECT_THAT(entries.front(), testing::StartsWith(row.start));
        EXPECT_THAT(entries, testing::Contains(row.error));
        EXPECT_EQ(rig.contentOf(kList), "absent");
        EXPECT_EQ(rig.contentOf(kScratch), "absent");
    }
    EXPECT_EQ(rig.dialog.shown.size(), 4U);
}

TEST_F(ListFileTest, EveryFailureAndDeathLeavesTheOldOrTheNewList)
{
    const std::string old = list({"[Recent Profile]", "A.vdp", "[Primary Profile]", "B.vdp"});
    const struct {
        void (*remove)(ProfileContext&);
        std::string after;
    } rows[] = {{RemoveRecVdpName, list({"[Primary Profile]", "B.vdp"})},
                {RemoveVdpName, list({"[Recent Profile]", "A.vdp"})}};
    for (const auto& row : rows) {
        for (const bool kill : {false, true}) {
            bool untouched = false;
            for (std::size_t call = 1; !untouched; ++call) {
                ASSERT_LT(call, 100U);
                put(old);
                if (kill)
                    rig.script.killAtCall(call);
                else
                    rig.script.failCall(call, 57);
                try {
                    row.remove(rig.quiet);
                } catch (const platform::Killed&) {
                    EXPECT_TRUE(kill);
                }
                untouched = rig.script.callCount() < call;
                rig.script.reset();
                EXPECT_THAT(now(), testing::AnyOf(old, row.after)) << call;
                if (untouched) {
                    EXPECT_EQ(now(), row.after);
                }
            }
        }
    }
}

} // namespace
} // namespace vardelin::profile
