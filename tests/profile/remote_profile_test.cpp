#include "opening_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kLocal = "C:\\App\\Profiles\\Home.vdp";
constexpr std::string_view kRemote = "D:\\Media\\Home.vdp";
constexpr std::string_view kStash = "C:\\App\\Data\\VdPrTmp.vdp";

class RemoteProfileTest : public testing::Test {
protected:
    RemoteProfileTest() { rig.putProfile(kRemote, "D:\\Remote\\"); }

    static std::string bytesOf(std::string_view source)
    {
        return scrambleText(test::OpeningRig::plainText("Home.vdp", source));
    }
    void putLocal() { rig.putProfile(kLocal, "D:\\Local\\"); }
    void openRemote() { PrCopyFromDest(rig.opening, kRemote, true); }
    std::string flags() const
    {
        std::string text;
        text += rig.frame.BL_Remote_Profile ? 'R' : '-';
        text += rig.frame.BL_Local_Stashed ? 'S' : '-';
        text += rig.bProfileOpened ? 'O' : '-';
        return text;
    }
    std::string content(std::string_view path) { return rig.contentOf(path); }

    test::OpeningRig rig;
    const std::string local = bytesOf("D:\\Local\\");
    const std::string remote = bytesOf("D:\\Remote\\");
};

TEST_F(RemoteProfileTest, OpensAsACopyInProfiles)
{
    rig.frame.BL_Edit_Mode = true;
    PrCopyFromDest(rig.opening, "  " + std::string(kRemote) + " ", true);
    EXPECT_EQ(flags(), "R-O");
    EXPECT_EQ(rig.frame.ST_Remote_Name, "Home.vdp");
    EXPECT_EQ(rig.frame.ST_Remote_Path, kRemote);
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Home.vdp");
    EXPECT_EQ(rig.frame.ST_Last_Saved_Profile, "Home.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, kLocal);
    EXPECT_TRUE(rig.frame.BL_Open_Mode);
    EXPECT_FALSE(rig.frame.BL_Edit_Mode);
    EXPECT_FALSE(rig.form.loaded);
    EXPECT_EQ(content(kLocal), remote);
    EXPECT_EQ(content(kRemote), remote);
    EXPECT_EQ(content(kStash), "absent");
    EXPECT_THAT(rig.sources(), ElementsAre("D:\\", "D:\\Remote\\*"));
}

TEST_F(RemoteProfileTest, MovesTheLocalOneOfItsNameAside)
{
    putLocal();
    openRemote();
    EXPECT_EQ(flags(), "RSO");
    EXPECT_EQ(content(kStash), local);
    EXPECT_EQ(content(kLocal), remote);
    EXPECT_EQ(stashPath(rig.frame), kStash);
}

TEST_F(RemoteProfileTest, FurtherOneOfTheNameOverwritesTheStash)
{
    putLocal();
    openRemote();
    rig.putProfile("D:\\Other\\Home.vdp", "D:\\Third\\");
    PrCopyFromDest(rig.opening, "D:\\Other\\Home.vdp", true);
    EXPECT_EQ(flags(), "RSO");
    EXPECT_EQ(content(kStash), remote);
    EXPECT_EQ(content(kLocal), bytesOf("D:\\Third\\"));
    EXPECT_THAT(rig.messages(), IsEmpty());
}

// A program that died between the stash and the copying back leaves somebody's only copy.
TEST_F(RemoteProfileTest, StashOfAProgramThatDiedIsKept)
{
    putLocal();
    rig.putFile(kStash, "somebody's");
    rig.putFile("C:\\App\\Data\\VdPrTmp1.vdp", "earlier");
    openRemote();
    EXPECT_EQ(flags(), "RSO");
    EXPECT_EQ(content("C:\\App\\Data\\VdPrTmp1.vdp"), "earlier");
    EXPECT_EQ(content("C:\\App\\Data\\VdPrTmp2.vdp"), "somebody's");
    EXPECT_EQ(content(kStash), local);
    EXPECT_THAT(rig.messages(), ElementsAre("A local profile that was put aside before is kept as "
                                            "C:\\App\\Data\\VdPrTmp2.vdp"));
}

TEST_F(RemoteProfileTest, NameThatIsOpenAlreadyOpensAllTheSame)
{
    rig.frame.ST_Last_Saved_Profile = "Home.vdp";
    openRemote();
    EXPECT_EQ(flags(), "R-O");
    EXPECT_THAT(rig.messages(), IsEmpty());
}

// The number of the call that brings the remote file to the local one's name.
std::size_t copyingCall()
{
    test::OpeningRig rig;
    rig.putProfile(kRemote);
    rig.putProfile(kLocal);
    PrCopyFromDest(rig.opening, kRemote, true);
    const auto calls = rig.script.calls();
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].name == "folder.rename" &&
            calls[i].subject.find("Home.vdp") != std::string::npos)
            return i + 1;
    }
    return 0;
}

TEST_F(RemoteProfileTest, CopyThatFailsBringsTheLocalOneBackAndOpensIt)
{
    putLocal();
    rig.script.failCall(copyingCall(), base::error_number::kDiskFull);
    openRemote();
    EXPECT_EQ(flags(), "--O");
    EXPECT_EQ(content(kLocal), local);
    EXPECT_EQ(content(kStash), "absent");
    EXPECT_THAT(rig.sources(), ElementsAre("D:\\", "D:\\Local\\*"));
    EXPECT_EQ(rig.newestDialog(), "frmOpenProfile|PrCopyFromDest|61|"
                                  "Error when opening the profile from remote system");
    EXPECT_THAT(rig.messages(), IsEmpty());
}

TEST_F(RemoteProfileTest, LocalOneThatCannotComeBackStaysAsideAndThePersonIsTold)
{
    putLocal();
    rig.script.failCallsNamed("folder.rename", 61, "Home.vdp");
    openRemote();
    EXPECT_EQ(content(kLocal), "absent");
    EXPECT_EQ(content(kStash), local);
    EXPECT_THAT(rig.messages(),
                ElementsAre("The local profile Home.vdp could not be put back. It is kept as "
                            "C:\\App\\Data\\VdPrTmp.vdp"));
    EXPECT_EQ(flags(), "---");
}

TEST_F(RemoteProfileTest, RemoteFileThatCannotBeReadOpensTheLocalOneOfItsName)
{
    putLocal();
    rig.disk.setUnreadable(kRemote);
    openRemote();
    EXPECT_EQ(flags(), "--O");
    EXPECT_THAT(rig.sources(), ElementsAre("D:\\", "D:\\Local\\*"));
    EXPECT_EQ(rig.newestDialog(), "frmOpenProfile|PrCopyFromDest|70|"
                                  "Error when opening the profile from remote system");
    EXPECT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(content(kLocal), local);
    EXPECT_EQ(content(kStash), "absent");
    EXPECT_EQ(rig.frame.ST_Remote_Path, "");
}

TEST_F(RemoteProfileTest, RemoteFileThatIsGoneOpensNothingWithoutALocalOne)
{
    rig.disk.removeFile(kRemote);
    rig.frame.ST_Current_Profile = rig.frame.ST_Last_Saved_Profile = "Former.vdp";
    rig.frame.BL_Edit_Mode = true;
    openRemote();
    EXPECT_EQ(flags(), "---");
    EXPECT_TRUE(rig.form.loaded);
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Former.vdp");
    EXPECT_TRUE(rig.frame.BL_Edit_Mode);
    EXPECT_EQ(rig.newestDialog(), "frmOpenProfile|PrCopyFromDest|53|"
                                  "Error when opening the profile from remote system");
    EXPECT_THAT(rig.disk.list("C:\\App\\Profiles"), IsEmpty());
}

TEST_F(RemoteProfileTest, RemoteFileThatIsNoProfileLeavesTheLocalOne)
{
    putLocal();
    rig.putFile(kRemote, "no profile at all");
    openRemote();
    EXPECT_EQ(flags(), "---");
    EXPECT_EQ(content(kLocal), local);
    EXPECT_EQ(content(kStash), "absent");
    EXPECT_EQ(content(kRemote), "no profile at all");
    EXPECT_THAT(rig.messages(),
                ElementsAre("Selected file, Home.vdp is not a valid Vardelin profile"));
    EXPECT_TRUE(rig.form.loaded);

    rig.disk.removeFile(kLocal);
    openRemote();
    EXPECT_THAT(rig.disk.list("C:\\App\\Profiles"), IsEmpty());
}

// Fails every call in turn, and ends the program at every call in turn: the local profile is at one
// of its two places, whole, and the remote one is untouched.
TEST_F(RemoteProfileTest, NoFailureAndNoDeathLosesAProfile)
{
    for (const bool dies : {false, true}) {
        std::size_t calls = 0;
        for (std::size_t call = 1; call == 1 || call <= calls; ++call) {
            test::OpeningRig own;
            own.putProfile(kRemote, "D:\\Remote\\");
            own.putProfile(kLocal, "D:\\Local\\");
            if (dies)
                own.script.killAtCall(call);
            else
                own.script.failCall(call, base::error_number::kDiskFull);
            try {
                PrCopyFromDest(own.opening, kRemote, true);
            } catch (const platform::Killed&) {
                EXPECT_TRUE(dies);
            }
            calls = own.script.wasKilled() ? call + 1 : own.script.callCount();
            own.script.reset();
            const std::string atHome = own.contentOf(kLocal);
            const std::string aside = own.contentOf(kStash);
            EXPECT_TRUE(atHome == local || aside == local) << dies << call;
            EXPECT_TRUE(atHome == local || atHome == remote || atHome == "absent") << call;
            EXPECT_EQ(own.contentOf(kRemote), remote) << call;
            if (!dies) {
                // The flags tell the truth: a copy-back that trusts them must not write the local
                // profile over the remote one.
                EXPECT_EQ(atHome == remote, own.frame.BL_Remote_Profile) << call;
                EXPECT_EQ(own.frame.BL_Local_Stashed, own.frame.BL_Remote_Profile) << call;
            }
        }
        EXPECT_GT(calls, 20U);
    }
}

class ChoosingTest : public RemoteProfileTest {
protected:
    void choose(std::string_view path)
    {
        rig.chooser.choice = path;
        cmdSelProfile_Click(rig.opening);
    }
};

TEST_F(ChoosingTest, AsksForAProfileFromTheApplicationsOwnFolder)
{
    choose("");
    EXPECT_THAT(rig.chooser.asked,
                ElementsAre("Selecting Profiles; (*.vdp)|*.vdp|; C:\\App\\Profiles"));
    EXPECT_THAT(rig.messages(), ElementsAre("Select an existing Profile"));
    EXPECT_FALSE(rig.frame.BL_Remote_Profile);
}

TEST_F(ChoosingTest, FileThatDoesNotExistIsRefused)
{
    choose("D:\\Media\\None.vdp");
    choose("D:\\Media");
    EXPECT_THAT(rig.messages(),
                ElementsAre("Select an existing Profile", "Select an existing Profile"));
    EXPECT_EQ(rig.lastSelected, "");
}

TEST_F(ChoosingTest, FileInProfilesOpensInItsPlace)
{
    rig.putProfile("C:\\App\\Profiles\\Sub\\Home.vdp", "D:\\Deep\\");
    rig.frame.BL_Remote_Profile = true;
    choose("C:\\App\\Profiles\\Sub\\Home.vdp");
    EXPECT_EQ(flags(), "--O");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\App\\Profiles\\Sub\\Home.vdp");
    EXPECT_THAT(rig.sources(), ElementsAre("D:\\", "D:\\Deep\\*"));
    EXPECT_EQ(rig.lastSelected, "");
    EXPECT_EQ(content(kLocal), "absent");
}

TEST_F(ChoosingTest, FolderProfilesIsOursInAnyCase)
{
    rig.putProfile("C:\\app\\PROFILES\\Home.vdp");
    choose("C:\\app\\PROFILES\\Home.vdp");
    EXPECT_EQ(flags(), "--O");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "C:\\app\\PROFILES\\Home.vdp");
}

TEST_F(ChoosingTest, FolderProfilesIsOursByAnotherWay)
{
    putLocal();
    rig.disk.openFolder("D:\\Media")->createLink("way", rig.disk.toNative("C:\\App\\Profiles"));
    choose("D:\\Media\\way\\Home.vdp");
    EXPECT_EQ(flags(), "--O");
    EXPECT_EQ(content(kStash), "absent");
}

TEST_F(ChoosingTest, ProfileInProfilesThatIsOpenChangesNothing)
{
    putLocal();
    rig.frame.ST_Last_Saved_Profile = "Home.vdp";
    choose(kLocal);
    EXPECT_THAT(rig.messages(), ElementsAre("This profile is already opened"));
    EXPECT_EQ(flags(), "---");
    EXPECT_TRUE(rig.form.loaded);
}

TEST_F(ChoosingTest, FileFromElsewhereOpensAsARemoteOne)
{
    choose(kRemote);
    EXPECT_EQ(flags(), "R-O");
    EXPECT_EQ(rig.lastSelected, "D:\\Media\\");
}

TEST_F(ChoosingTest, ExtensionIsTheLastThreeLetters)
{
    struct Row {
        const char* name;
        bool opens;
    };
    const Row rows[] = {{"a.VDP", true},
                        {"a.vdp.txt", false},
                        {"avdp", true}, // without a look at the dot
                        {"dp", false}};
    for (const Row& row : rows) {
        rig.clearBoxes();
        rig.chooser.asked.clear();
        rig.bProfileOpened = false;
        rig.frame.BL_Remote_Profile = false;
        const std::string path = std::string("D:\\") + row.name;
        rig.putProfile(path);
        choose(path);
        EXPECT_EQ(rig.bProfileOpened, row.opens) << row.name;
        if (!row.opens) {
            EXPECT_THAT(rig.messages(), ElementsAre("Selected file, " + std::string(row.name) +
                                                    " is not a valid Vardelin profile"));
        }
    }
}

} // namespace
} // namespace vardelin::profile
