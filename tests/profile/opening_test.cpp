#include "opening_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OpeningTest : public testing::Test {
protected:
    // Something of a former profile in every place that an opened one takes.
    void fillEditor()
    {
        rig.editor.tvwDirectory.add(nullptr, {"F:\\", "F:", 1});
        rig.editor.txtExclNames.text = "old*.*";
        rig.editor.txtInclNames.text = "new*.*";
        rig.editor.txtHintAns.text = "secret";
        rig.store.opened.clxnOpenedSources.add("F:\\", "F:\\");
        rig.store.opened.clxnOpenedExcluded.add(".bak", ".bak");
        rig.store.opened.clxnOpenedIncluded.add(".doc", ".doc");
        rig.store.opened.clxnOpenedOtherData.add("IE Favorites", "IE Favorites");
        rig.frame.ST_Current_Profile = "Former.vdp";
        rig.frame.ST_Last_Saved_Profile = "Former.vdp";
        rig.frame.ST_Current_Profile_Path = "C:\\App\\Profiles\\Former.vdp";
        rig.frame.BL_Edit_Mode = true;
    }
    // Names, modes and what the editor shows: the same before and after an opening that failed.
    std::string state() const
    {
        const state::FrameState& f = rig.frame;
        std::string text = f.ST_Current_Profile + "|" + f.ST_Last_Saved_Profile + "|" +
                           f.ST_Current_Profile_Path + "|" + rig.editor.txtExclNames.text + "|" +
                           std::to_string(rig.editor.tvwDirectory.count()) + "|" +
                           std::to_string(rig.sources().size()) + "|";
        for (const bool flag : {f.BL_Open_Mode, f.BL_Edit_Mode, f.BL_Edit_Changed,
                                f.BL_Remote_Profile, f.BL_Local_Stashed, rig.bProfileOpened})
            text += flag ? '1' : '0';
        return text;
    }

    test::OpeningRig rig;
};

TEST_F(OpeningTest, TickedRowOpensForViewing)
{
    rig.putProfile("C:\\App\\Profiles\\Home.work.vdp");
    fillEditor();
    rig.frame.BL_Edit_Changed = true;
    std::string panelWhileReading;
    rig.script.onCallsNamed("folder.open", [&](const platform::CallScript::Call&) {
        panelWhileReading = rig.frame.panel1.text;
    });
    rig.open("Home.work.vdp");
    EXPECT_EQ(panelWhileReading, "Displaying Home.work Details ...");
    EXPECT_TRUE(rig.bProfileOpened);
    EXPECT_FALSE(rig.form.loaded);
    EXPECT_TRUE(rig.frame.BL_Open_Mode);
    EXPECT_FALSE(rig.frame.BL_Edit_Mode);
    EXPECT_FALSE(rig.frame.BL_Edit_Changed);
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Home.work.vdp");
    EXPECT_EQ(rig.frame.ST_Last_Saved_Profile, "Home.work.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Home.work.vdp");
    EXPECT_THAT(rig.sources(), ElementsAre("D:\\", "D:\\Work\\*"));
    EXPECT_THAT(rig.store.opened.clxnOpenedExcluded.items(), IsEmpty());
    EXPECT_THAT(rig.store.opened.clxnOpenedIncluded.items(), IsEmpty());
    EXPECT_THAT(rig.store.opened.clxnOpenedOtherData.items(), IsEmpty());
    EXPECT_EQ(rig.editor.tvwDirectory.find("F:\\"), nullptr);
    EXPECT_EQ(rig.editor.txtDestLoc.text, "E:\\Archive");
    // What this file does not mention is nothing, and not the former profile's.
    EXPECT_EQ(rig.editor.txtExclNames.text, "");
    EXPECT_EQ(rig.editor.txtInclNames.text, "");
    EXPECT_EQ(rig.editor.txtHintAns.text, "");
    EXPECT_THAT(rig.messages(), IsEmpty());
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_EQ(rig.disk.list("C:\\App\\Profiles").size(), 1U); // no plain copy is left
}

TEST_F(OpeningTest, ProfileOfASubfolderOpensFromThere)
{
    rig.putProfile("C:\\App\\Profiles\\Same.vdp", "D:\\Root\\");
    rig.putProfile("C:\\App\\Profiles\\Sub\\Other.vdp", "D:\\Deep\\");
    rig.open("Other.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Sub\\Other.vdp");
    EXPECT_THAT(rig.sources(), ElementsAre("D:\\", "D:\\Deep\\*"));
}

TEST_F(OpeningTest, NoTickedRowOpensNothing)
{
    rig.putProfile("C:\\App\\Profiles\\A.vdp");
    rig.frame.ST_Last_Saved_Profile = ""; // like the name that nothing gives
    rig.frame.ST_Current_Profile = "";
    rig.list();
    cmdOpen_Click(rig.opening);
    EXPECT_THAT(rig.messages(), ElementsAre("Please Select any one of the Profile"));
    EXPECT_FALSE(rig.bProfileOpened);
    EXPECT_TRUE(rig.form.loaded);
}

TEST_F(OpeningTest, ProfileThatIsOpenChangesNothing)
{
    rig.putProfile("C:\\App\\Profiles\\Former.vdp");
    for (const bool editing : {true, false}) {
        rig.clearBoxes();
        rig.editor.tvwDirectory.clear();
        rig.store = state::ProfileStore();
        fillEditor();
        rig.frame.BL_Edit_Mode = editing;
        rig.frame.BL_Open_Mode = !editing;
        rig.frame.ST_Last_Saved_Profile = " Former.vdp ";
        const std::string before = state();
        rig.frame.bProfileTicked = false;
        rig.open("Former.vdp");
        EXPECT_THAT(rig.messages(), ElementsAre("This profile is already opened"));
        EXPECT_EQ(rig.frame.panel1.text, "Profile is already opened");
        EXPECT_EQ(state(), before);
        EXPECT_TRUE(rig.form.loaded);
    }
}

TEST_F(OpeningTest, AlreadyOpenGoesByTheNameAloneInAnyFolder)
{
    rig.putProfile("C:\\App\\Profiles\\Sub\\Former.vdp");
    fillEditor();
    rig.open("Former.vdp");
    EXPECT_THAT(rig.messages(), ElementsAre("This profile is already opened"));
    EXPECT_FALSE(rig.bProfileOpened);
}

TEST_F(OpeningTest, FileThatCannotBeReadLeavesTheEditorAsItWas)
{
    rig.putProfile("C:\\App\\Profiles\\A.vdp");
    rig.disk.setUnreadable("C:\\App\\Profiles\\A.vdp");
    fillEditor();
    const std::string before = state();
    rig.open("A.vdp");
    EXPECT_EQ(state(), before);
    EXPECT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.newestDialog(),
              "ModProfileEncDec|PrFileDecrypt|70|Error Occurred in the Decrypting process");
    EXPECT_TRUE(rig.form.loaded); // another one may be chosen
    EXPECT_EQ(rig.frame.panel1.text, "");
}

TEST_F(OpeningTest, FileThatWentMeanwhileIsToldAndNotMadeAnew)
{
    rig.putProfile("C:\\App\\Profiles\\A.vdp");
    rig.list();
    rig.tick("A.vdp");
    rig.disk.removeFile("C:\\App\\Profiles\\A.vdp");
    fillEditor();
    const std::string before = state();
    cmdOpen_Click(rig.opening);
    EXPECT_EQ(state(), before);
    EXPECT_EQ(rig.newestDialog(), "frmOpenProfile|cmdOpen_Click|53|C:\\App\\Profiles\\A.vdp"
                                  "The file Does Not Exist while trying to decrypt the File");
    EXPECT_THAT(rig.disk.list("C:\\App\\Profiles"), IsEmpty());
}

TEST_F(OpeningTest, TextThatIsNoProfileIsRefusedAndStaysOnTheDisk)
{
    const std::string plain = test::OpeningRig::plainText("A.vdp");
    const std::string texts[] = {
        "", "no profile at all", plain.substr(0, plain.size() - 1), // not scrambled, and cut
        scrambleText("[A.vdp]\r\n[End of A.vdp]\r\n"), std::string(5000, '\0'),
        // Cut inside its sources: the next save would lose the lines behind the cut.
        scrambleText("[A.vdp]\r\n{Source files}\r\nD:\\Work\\\r\nD:\\Da")};
    fillEditor();
    const std::string before = state();
    for (const std::string& text : texts) {
        rig.clearBoxes();
        rig.putFile("C:\\App\\Profiles\\A.vdp", text);
        rig.frame.bProfileTicked = false;
        rig.open("A.vdp");
        EXPECT_EQ(state(), before);
        EXPECT_THAT(rig.messages(),
                    ElementsAre("Selected file, A.vdp is not a valid Vardelin profile"));
        EXPECT_EQ(rig.contentOf("C:\\App\\Profiles\\A.vdp"), text);
        EXPECT_EQ(rig.disk.list("C:\\App\\Profiles").size(), 1U);
    }
}

TEST_F(OpeningTest, RenamedFileOpensWithAllItsLines)
{
    // Its first and last line bear the name that it was saved under.
    rig.putFile("C:\\App\\Profiles\\Copy.vdp",
                scrambleText(test::OpeningRig::plainText("Home.vdp")));
    rig.editor.chkCompress.value = 0;
    rig.open("Copy.vdp");
    EXPECT_TRUE(rig.bProfileOpened);
    EXPECT_THAT(rig.sources(), ElementsAre("D:\\", "D:\\Work\\*"));
    EXPECT_EQ(rig.editor.chkCompress.value, 1);
    EXPECT_TRUE(rig.store.scalars.bCompressFiles);
    EXPECT_EQ(rig.editor.txtLatestVer.text, "7");
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_EQ(rig.contentOf("C:\\App\\Profiles\\Copy.vdp"),
              scrambleText(test::OpeningRig::plainText("Home.vdp")));
}

// Fails every call of an opening in turn: nothing happens to the profile, and the editor holds the
// former profile or the new one, never an empty one under a name.
TEST_F(OpeningTest, FailingCallLeavesTheFormerProfileOrOpensTheNewOne)
{
    const std::string bytes = scrambleText(test::OpeningRig::plainText("A.vdp"));
    fillEditor();
    const std::string before = state();
    std::size_t refused = 0;
    for (std::size_t call = 1;; ++call) {
        rig.putFile("C:\\App\\Profiles\\A.vdp", bytes);
        rig.list();
        rig.frame.bProfileTicked = false;
        rig.tick("A.vdp");
        rig.dialog.shown.clear();
        rig.script.reset();
        rig.script.failCall(call, base::error_number::kDeviceIo);
        cmdOpen_Click(rig.opening);
        const bool done = rig.script.callCount() < call;
        rig.script.reset();
        EXPECT_EQ(rig.contentOf("C:\\App\\Profiles\\A.vdp"), bytes) << call;
        if (!rig.bProfileOpened) {
            ++refused;
            EXPECT_EQ(state(), before) << call;
            EXPECT_THAT(rig.dialog.shown, testing::SizeIs(1)) << call;
            EXPECT_FALSE(rig.disk.fileExists("C:\\App\\Profiles\\UA.txt")) << call;
            continue;
        }
        if (rig.dialog.shown.empty()) {
            EXPECT_THAT(rig.sources(), ElementsAre("D:\\", "D:\\Work\\*")) << call;
        }
        if (done)
            break;
        rig.store = state::ProfileStore();
        rig.editor.tvwDirectory.clear();
        rig.bProfileOpened = rig.frame.BL_Open_Mode = false;
        fillEditor();
    }
    EXPECT_GT(refused, 5U);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST_F(OpeningTest, CommandThatComesInWhileAnotherRunsDoesNothing)
{
    rig.putProfile("C:\\App\\Profiles\\A.vdp");
    rig.messageLoop.onYield = [&] {
        cmdClose_Click(rig.opening);
        cmdOpen_Click(rig.opening);
        cmdSelProfile_Click(rig.opening);
        EXPECT_TRUE(rig.form.loaded);
    };
    rig.open("A.vdp");
    EXPECT_GT(rig.messageLoop.yields, 0U);
    EXPECT_TRUE(rig.bProfileOpened);
    EXPECT_THAT(rig.chooser.asked, IsEmpty());
    EXPECT_FALSE(rig.frame.BL_Confirm_Save_Running);
    EXPECT_FALSE(rig.form.commandRunning);
}

TEST_F(OpeningTest, CloseUnloadsAndMakesTheNextRefusedSaveABlockedOne)
{
    rig.frame.panel1.text = "Listing the profiles...";
    rig.frame.pb.value = 30;
    rig.frame.bProfileTicked = true;
    rig.frame.BL_Open_Mode = true;
    cmdClose_Click(rig.opening);
    EXPECT_EQ(rig.frame.panel1.text, "");
    EXPECT_EQ(rig.frame.pb.value, 0);
    EXPECT_TRUE(rig.frame.BL_Confirm_Save_Running);
    EXPECT_FALSE(rig.form.loaded);
    EXPECT_TRUE(rig.frame.bProfileTicked); // no row is ticked
    EXPECT_TRUE(rig.frame.BL_Open_Mode);

    rig.putProfile("C:\\App\\Profiles\\A.vdp");
    rig.frame.bProfileTicked = false;
    rig.list();
    rig.tick("A.vdp");
    cmdClose_Click(rig.opening);
    EXPECT_FALSE(rig.frame.bProfileTicked);
    EXPECT_FALSE(rig.frame.BL_Open_Mode);
}

} // namespace
} // namespace vardelin::profile
