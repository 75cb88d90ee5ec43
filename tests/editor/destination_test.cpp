#include "editor/destination.h"

#include "pages_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::editor {
namespace {

using platform::Answer;
using platform::DriveType;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNewLocation = "Changing Backup location leads this profile to refer the new "
                                     "location for Backup and Restore process";
constexpr const char* kChange = "Do you want to change the Backup location?";
constexpr const char* kCopy = "Do you want to copy the existing backup to the new location?";

class Destination : public testing::Test, public test::PagesRig {
protected:
    std::string& box = record.txtDestLoc.text;

    // The profile Work.vdp has an archive under D:\Old.
    void withArchive()
    {
        frame.ST_Current_Profile = "Work.vdp";
        put({"D:\\Old\\Work\\"});
        box = "D:\\Old";
        store.scalars.sDestinationPath = "D:\\Old";
        pagesForm.sOldDestination = "D:\\Old";
    }
    void type(const std::string& text)
    {
        box = text;
        txtDestLoc_Change(pages);
    }
};

// ---- the media

TEST_F(Destination, ListsRemovableDriveAFixedAndNetworkDrives)
{
    drives.drives.clear();
    addDrive('A', DriveType::Removable);
    addDrive('B', DriveType::Removable);
    addDrive('C');
    drives.drives.back().volumeLabel = "system";
    addDrive('D', DriveType::Optical);
    addDrive('E', DriveType::Memory);
    addDrive('F', DriveType::Remote);
    drives.drives.back().shareName = "\\\\nas\\store";
    record.CmbDestDrives.items = {"old"};
    NetworkDriveList(pages);
    EXPECT_THAT(record.CmbDestDrives.items,
                ElementsAre("Removable Drive[A:]", "Local Drives[C:]", "F: [\\\\NAS\\STORE]"));
    EXPECT_EQ(record.CmbDestDrives.text, "Removable Drive[A:]");
    EXPECT_FALSE(changed());
}

TEST_F(Destination, WithoutADriveTheMediaTextStays)
{
    drives.drives.clear();
    record.CmbDestDrives.text = "C:";
    NetworkDriveList(pages);
    EXPECT_EQ(record.CmbDestDrives.text, "C:");
}

TEST_F(Destination, AFailureToListDrivesHasItsSentence)
{
    drives.script().failCallsNamed("drives.list", 57);
    NetworkDriveList(pages);
    EXPECT_THAT(errorsShown(), ElementsAre("NetworkDriveList: Error occrred while selecting  the "
                                           "Network Drives"));
}

TEST_F(Destination, TheMediaTakeNoKeys)
{
    for (const int key : {8, 13, int{'a'}, int{'0'}})
        EXPECT_EQ(CmbDestDrives_KeyPress(key), 0);
    EXPECT_EQ(CmbDestDrives_KeyDown(46), 0);
    EXPECT_EQ(CmbDestDrives_KeyDown(40), 40);
}

TEST_F(Destination, PickingADriveEmptiesTheBoxUnlessItsLetterIsTheSame)
{
    struct Case {
        const char* picked;
        const char* before;
        const char* after;
    };
    const Case cases[] = {
        {"F: [\\\\NAS\\STORE]", "F:\\b", "F:\\b"},
        {"F: [\\\\NAS\\STORE]", "f:\\b", "f:\\b"},
        {"F: [\\\\NAS\\STORE]", "G:\\b", ""},
        {"C:", "C:\\b", "C:\\b"},
        // The entry of a fixed drive begins with words, which are no letter: it empties in any
        // case.
        {"Local Drives[C:]", "C:\\b", ""},
        {"Removable Drive[A:]", "A:\\b", ""},
        {"Local Drives[C:]", "", ""},
    };
    for (const Case& each : cases) {
        box = each.before;
        record.CmbDestDrives.text = each.picked;
        CmbDestDrives_GotFocus(pages);
        CmbDestDrives_Click(pages);
        EXPECT_EQ(box, each.after) << each.picked << " " << each.before;
    }
}

TEST_F(Destination, PickingADriveAsksNothing)
{
    withArchive();
    record.CmbDestDrives.text = "Local Drives[E:]";
    CmbDestDrives_GotFocus(pages);
    EXPECT_TRUE(pagesForm.bDestRevert);
    CmbDestDrives_Click(pages);
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_EQ(box, "");
    EXPECT_TRUE(changed());
}

// ---- Browse

TEST_F(Destination, BrowsingStartsAtTheRootOfTheMedia)
{
    struct Case {
        const char* combo;
        const char* root;
    };
    const Case cases[] = {
        {"Local Drives[C:]", "C:\\"},
        {" Local Drives[D:] ", "D:\\"},
        // The entry's first letter, although no drive has it.
        {"Removable Drive[A:]", "R:\\"},
        {"F: [\\\\NAS\\STORE]", "F:\\"},
        {"c:", "C:\\"},
        {"", ":\\"},
        {"Local", ":\\"},
    };
    for (const Case& each : cases) {
        window.calls.clear();
        record.CmbDestDrives.text = each.combo;
        cmdBrowse_Click(pages);
        EXPECT_THAT(window.calls,
                    ElementsAre(std::string("browse Select Destination Path: ") + each.root));
    }
}

TEST_F(Destination, ABrowsedFolderGoesIntoTheBoxAndItsDriveIntoTheMedia)
{
    record.CmbDestDrives.text = "Local Drives[D:]";
    window.folders = {"E:\\new\\"};
    cmdBrowse_Click(pages);
    EXPECT_EQ(box, "E:\\new\\");
    EXPECT_EQ(record.CmbDestDrives.text, "E:");
    EXPECT_TRUE(store.scalars.bDestinationChanged);
    EXPECT_TRUE(changed());
}

TEST_F(Destination, ACancelledBrowseChangesNothingButItsFlags)
{
    box = "D:\\Old";
    pagesForm.bDestRevert = true;
    record.CmbDestDrives.text = "Local Drives[D:]";
    cmdBrowse_Click(pages);
    EXPECT_EQ(box, "D:\\Old");
    EXPECT_EQ(record.CmbDestDrives.text, "Local Drives[D:]");
    EXPECT_FALSE(pagesForm.bDestRevert);
    EXPECT_EQ(pagesForm.sOldDestination, "D:\\Old");
    EXPECT_TRUE(store.scalars.bDestinationChanged);
    EXPECT_FALSE(changed());
}

// ---- the archive at the former place

TEST_F(Destination, AnAcceptedChangeWithCopyingTellsWhereTheArchiveLies)
{
    withArchive();
    window.folders = {"E:\\new\\"};
    messageBoxes.answers = {Answer::Ok, Answer::Yes, Answer::Yes};
    cmdBrowse_Click(pages);
    EXPECT_THAT(messages(), ElementsAre(kNewLocation, kChange, kCopy));
    EXPECT_EQ(boxes()[0].buttons, platform::Buttons::Ok);
    EXPECT_EQ(boxes()[1].buttons, platform::Buttons::YesNo);
    EXPECT_EQ(boxes()[2].buttons, platform::Buttons::YesNo);
    EXPECT_EQ(box, "E:\\new\\");
    EXPECT_TRUE(frame.BL_Dest_Moved);
    EXPECT_EQ(store.scalars.sPreviousDestination, "D:\\Old");
    EXPECT_TRUE(pagesForm.bDestRevert);
}

TEST_F(Destination, AnAcceptedChangeWithoutCopyingMovesNothing)
{
    withArchive();
    frame.BL_Dest_Moved = true; // of an earlier answer
    window.folders = {"E:\\new\\"};
    messageBoxes.answers = {Answer::Ok, Answer::Yes, Answer::No};
    cmdBrowse_Click(pages);
    EXPECT_EQ(box, "E:\\new\\");
    EXPECT_FALSE(frame.BL_Dest_Moved);
    EXPECT_EQ(store.scalars.sPreviousDestination, "");
}

// The media show the drive that was picked all the same: only the box is saved.
TEST_F(Destination, ARefusedChangePutsTheFormerPathBackWithoutAskingAgain)
{
    withArchive();
    window.folders = {"E:\\new\\"};
    messageBoxes.answers = {Answer::Ok, Answer::No};
    cmdBrowse_Click(pages);
    EXPECT_THAT(messages(), ElementsAre(kNewLocation, kChange));
    EXPECT_EQ(box, "D:\\Old");
    EXPECT_FALSE(pagesForm.bDestRevert);
    EXPECT_FALSE(frame.BL_Dest_Moved);
    EXPECT_EQ(record.CmbDestDrives.text, "E:");
}

TEST_F(Destination, TypingAsksLikeBrowsingInANewForm)
{
    withArchive();
    txtDestLoc_GotFocus(pages);
    messageBoxes.answers = {Answer::Ok, Answer::No};
    type("D:\\Ol");
    EXPECT_THAT(messages(), ElementsAre(kNewLocation, kChange));
    EXPECT_EQ(box, "D:\\Old");
}

// An accepted change is not asked about letter by letter; neither is one typed while a saved
// profile is edited, for its editing begins with bDestRevert up.
TEST_F(Destination, TypingAsksNothingBehindAnAcceptedChange)
{
    withArchive();
    pagesForm.bDestRevert = true;
    type("D:\\Ol");
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_FALSE(frame.BL_Dest_Moved);
    EXPECT_TRUE(changed()); // or the new path would not be saved
}

TEST_F(Destination, WithoutAnArchiveOrANameNothingIsAsked)
{
    withArchive();
    pagesForm.sOldDestination = "D:\\Other";
    type("E:\\a");
    pagesForm.sOldDestination.clear();
    type("E:\\b");
    pagesForm.sOldDestination = "D:\\Old";
    frame.ST_Current_Profile.clear();
    type("E:\\c");
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_TRUE(changed());
}

TEST_F(Destination, AFormerPathMayEndInABackslash)
{
    withArchive();
    put({"D:\\Work\\"});
    pagesForm.sOldDestination = "D:\\";
    type("E:\\");
    EXPECT_EQ(messages().size(), 2U);
}

// ---- the box

TEST_F(Destination, EnteringTheBoxIsNoChangeOfTheProfile)
{
    box = "D:\\x";
    txtDestLoc_GotFocus(pages);
    EXPECT_EQ(pagesForm.sOldDestination, "D:\\x");
    EXPECT_TRUE(store.scalars.bDestinationChanged);
    EXPECT_FALSE(changed());
}

TEST_F(Destination, TheBoxTakesWhatAPathIsMadeOf)
{
    for (const char c : std::string_view("/*?\"<>|,'."))
        EXPECT_EQ(txtDestLoc_KeyPress(pages, c), 0) << c;
    for (const char c : std::string_view("aZ09\\ _-"))
        EXPECT_EQ(txtDestLoc_KeyPress(pages, c), c) << c;
    EXPECT_EQ(txtDestLoc_KeyPress(pages, 8), 8);
    EXPECT_EQ(txtDestLoc_KeyPress(pages, 0xE4), 0xE4);
}

TEST_F(Destination, AColonFollowsTheDriveLetterAlone)
{
    for (const auto& [text, passes] : {std::pair{"", 0}, {"C", ':'}, {" C ", ':'}, {"C:", 0}}) {
        box = text;
        EXPECT_EQ(txtDestLoc_KeyPress(pages, ':'), passes) << text;
    }
}

} // namespace
} // namespace vardelin::editor
