#include "opening_rig.h"
#include "platform/linux/linux_machine.h"
#include "profile/profile_lists.h"
#include "profile/profile_writer.h"
#include "profile/scrambler.h"
#include "support/temp_folder.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// An application folder on this machine's own disk.
class OpeningStory : public testing::Test {
protected:
    OpeningStory()
    {
        for (const char* name : {"Profiles", "Data"})
            std::filesystem::create_directories(temp / ("app/" + std::string(name)));
        temp.write("app/Data/Other_Dsk.txt", "");
        frame.ST_App_Path = machine.appPath();
    }
    std::string drive(const std::string& native) { return ports.fileSystem.fromNative(native); }
    void put(const std::string& name, std::string_view source)
    {
        const std::string file = name.substr(name.rfind('/') + 1);
        temp.write(name, scrambleText(test::OpeningRig::plainText(file, source)));
    }
    void open(std::string_view name)
    {
        form = {};
        frame.bProfileTicked = false;
        bProfileOpened = false;
        GettingVdpFiles(opening);
        for (std::size_t i = 0; i < form.lstOpen.rows.size(); ++i) {
            if (form.lstOpen.rows[i].text == name) {
                form.lstOpen.rows[i].checked = true;
                lstOpen_ItemCheck(opening, i);
            }
        }
        cmdOpen_Click(opening);
    }

    test::TempFolder temp;
    platform::ScriptedMessageBoxes boxes;
    platform::CountingMessageLoop messageLoop;
    platform::LinuxMachine machine{
        (std::filesystem::create_directories(temp / "app"), temp / "app"), boxes, messageLoop,
        platform::DesktopFolders{temp.path(), {}, {}}};
    platform::Machine ports = machine.machine();
    test::ScriptedErrorDialog dialog;
    trace::RunTrace runTrace{ports.fileSystem, ports.clock, boxes, machine.appPath(), "Vardelin"};
    trace::ErrorRecord errors;
    trace::TraceContext trace{runTrace, errors, dialog};
    state::FrameState frame;
    state::ProfileEditorState editor;
    state::ProfileStore store;
    test::RecordingSchedules schedules;
    StateEditorLists lists{trace, editor};
    FileNumbers fileNumbers;
    ProfileContext profiles{ports, trace, frame, editor, store, schedules, lists, fileNumbers};
    state::frmOpenProfile form;
    state::ProfileFormState window;
    ListingState listing;
    clsFiles found{{ports.fileSystem, trace, frame, listing}};
    test::ScriptedChooser chooser;
    bool bProfileOpened = false;
    std::string lastSelected;
    OpeningContext opening{profiles, form,    window,         listing,
                           found,    chooser, bProfileOpened, lastSelected};
};

TEST_F(OpeningStory, LocalProfilesAndOneFromMediaThatIsEdited)
{
    put("app/Profiles/Home.vdp", "D:\\Home\\");
    put("app/Profiles/Work.vdp", "D:\\Work\\");
    put("app/Profiles/Old/Photos.vdp", "D:\\Photos\\");
    put("media/Home.vdp", "D:\\Media\\");
    const std::string localBytes = test::TempFolder::read(temp / "app/Profiles/Home.vdp");
    const std::string mediaBytes = test::TempFolder::read(temp / "media/Home.vdp");

    GettingVdpFiles(opening);
    EXPECT_THAT(test::textsOf(form.lstOpen),
                UnorderedElementsAre("Home.vdp", "Work.vdp", "Photos.vdp"));
    EXPECT_THAT(form.lstOpen.rows.front().third, testing::HasSubstr("/"));

    open("Photos.vdp");
    EXPECT_TRUE(bProfileOpened);
    EXPECT_EQ(frame.ST_Current_Profile_Path, drive(temp / "app/Profiles/Old/Photos.vdp"));
    EXPECT_THAT(store.opened.clxnOpenedSources.items(), ElementsAre("D:\\", "D:\\Photos\\*"));

    chooser.choice = drive(temp / "media/Home.vdp");
    bProfileOpened = false;
    cmdSelProfile_Click(opening);
    ASSERT_TRUE(bProfileOpened);
    EXPECT_TRUE(frame.BL_Remote_Profile);
    EXPECT_TRUE(frame.BL_Local_Stashed);
    EXPECT_EQ(test::TempFolder::read(temp / "app/Data/VdPrTmp.vdp"), localBytes);
    EXPECT_THAT(store.opened.clxnOpenedSources.items(), ElementsAre("D:\\", "D:\\Media\\*"));

    // The person adds a source and saves.
    ActivateSaveProfile(profiles, window);
    EXPECT_TRUE(store.scalars.bHaveSources && store.scalars.bHaveDestination);
    for (const char* source : {"D:\\Media\\", "D:\\More\\notes.txt"})
        store.save.clxnSources.add(source, source);
    const std::string folder = frame.ST_App_Path + "\\Profiles";
    ASSERT_TRUE(CreatingVdpFile(profiles, "Home.vdp", folder));
    ASSERT_TRUE(PrFileEncrypt(profiles, folder, "Home.vdp").done);
    ClearCollectionsForSave(profiles);

    const std::string saved =
        unscrambleText(test::TempFolder::read(temp / "app/Profiles/Home.vdp"));
    EXPECT_THAT(saved, testing::HasSubstr("{Source files}\r\nD:\\Media\\\r\nD:\\More\\notes.txt\r\n"
                                          "{End Of Source files}\r\n"));
    EXPECT_THAT(saved, testing::HasSubstr("{Destination path}\r\nE:\\Archive\r\n"));
    EXPECT_EQ(test::TempFolder::read(temp / "media/Home.vdp"), mediaBytes); // until the copy-back
    EXPECT_EQ(test::TempFolder::read(temp / "app/Data/VdPrTmp.vdp"), localBytes);

    GettingVdpFiles(opening);
    EXPECT_THAT(test::textsOf(form.lstOpen), UnorderedElementsAre("Work.vdp", "Photos.vdp"));
    EXPECT_THAT(boxes.texts(), IsEmpty());
    EXPECT_THAT(dialog.shown, IsEmpty());
}

} // namespace
} // namespace vardelin::profile
