#include "runs/restore_dialog.h"

#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::runs {
namespace {

using test::ProfileRig;
using testing::ElementsAre;
using testing::IsEmpty;

class ScriptedWindow final : public RestoreWindow {
public:
    std::function<void()> atLocation = [] {};
    std::function<void()> atDate = [] {};
    std::string folder;
    std::vector<std::string> events;

    void showRestLocation(state::frmRestLocation&) override
    {
        events.emplace_back("location");
        atLocation();
    }
    void showByDate(state::frmByDate&) override
    {
        events.emplace_back("date");
        atDate();
    }
    void setFrameActive(bool active) override { events.emplace_back(active ? "open" : "closed"); }
    std::string browseForFolder(std::string_view title, std::string_view start) override
    {
        events.push_back("browse " + std::string(title) + "|" + std::string(start));
        return folder;
    }
    void setFocus(std::string_view control) override
    {
        events.push_back("focus " + std::string(control));
    }
    void clearClipboard() override { events.emplace_back("clipboard"); }
};

struct Asked {
    std::string folder;
    std::string name;
    std::vector<std::string> entries;
    std::string location;
    std::string date;
};

// A review of C: with files and settings groups, and an engine that keeps what it was asked for.
struct Restore : testing::Test, ProfileRig {
    archive::ReviewState review;
    state::frmVDStorage storage;
    state::frmRestLocation form;
    state::frmByDate byDate;
    RestoreState state;
    ScriptedWindow window;
    RestoreFlags flags;
    std::vector<Asked> asked;
    std::function<void(const std::function<void(double)>&)> during = [](auto&) {};
    RestoreContext restore{profiles,
                           review,
                           storage,
                           form,
                           byDate,
                           state,
                           window,
                           [this](const RestoreRequest& request, const auto& proStatus) {
                               asked.push_back({request.profileFolder, request.profileFileName,
                                                request.clxnRestore.items(),
                                                request.restoreLocation, request.restoreDate});
                               during(proStatus);
                               return flags;
                           }};

    Restore()
    {
        frame.ST_Current_Profile_Path = "C:\\App\\Profiles\\Work.vdp";
        review.bFilesExist = true;
        drives.drives.clear();
        platform::Drive drive;
        drive.letter = 'C';
        drive.type = platform::DriveType::Fixed;
        drives.drives.push_back(drive);
        putFile("C:\\App\\model.txt", "Files And Folders\\C:\\a\\top.txt_000\r\n"
                                      "Files And Folders\\C:\\work\\a.txt_000\r\n"
                                      "Files And Folders\\C:\\work\\a.txt_001\r\n"
                                      "Files And Folders\\C:\\work2\\b.txt_000\r\n"
                                      "Files And Folders\\D:\\z\\c.txt_000\r\n"
                                      "Files And Folders\\E:\\work\\d.txt_000\r\n");
        row("Files And Folders", "Files And Folders");
    }
    state::ReviewRow& row(std::string_view text, std::string_view key, bool selected = false)
    {
        state::ReviewRow& added = storage.lstRestore.emplace_back();
        added.text = text;
        added.key = key;
        added.selected = selected;
        return added;
    }
    std::vector<std::string> entriesOf(std::string_view text, std::string_view key)
    {
        storage.lstRestore.clear();
        row(text, key, true);
        return selectedEntries(restore).clxnRestore.items();
    }
    void toFolder(std::string_view path)
    {
        form.cmbRestLoc.text = "Alternate Location";
        cmbRestLoc_Click(restore);
        form.txtRestLoc.text = path;
        restoreOk_Click(restore);
    }
    std::string newestBox() { return boxes().empty() ? "" : boxes().back().text; }
};

TEST_F(Restore, AFileRowStandsForItsKey)
{
    EXPECT_THAT(entriesOf("a.txt_001", "C:\\work\\a.txt_001"), ElementsAre("C:\\work\\a.txt_001"));
}

// The search is by text: a folder `work` also takes in `work2` where it follows directly, and only
// the first block of lines counts, on whatever drive it lies.
TEST_F(Restore, AFolderRowStandsForTheFirstBlockOfLinesThatHoldItsText)
{
    const auto lines =
        ElementsAre("C:\\work\\a.txt_000", "C:\\work\\a.txt_001", "C:\\work2\\b.txt_000");
    EXPECT_THAT(entriesOf("work", "C:\\work\\"), lines);
    EXPECT_THAT(entriesOf("work", "E:\\work\\"), lines);
    EXPECT_THAT(entriesOf("work2", "C:\\work2\\"), ElementsAre("C:\\work2\\b.txt_000"));
    EXPECT_THAT(entriesOf("Work", "C:\\Work\\"), ElementsAre("C:\\Work\\")); // case counts
    EXPECT_THAT(entriesOf("empty", "C:\\empty\\"), ElementsAre("C:\\empty\\"));
    EXPECT_THAT(entriesOf("C:", "C:\\"),
                ElementsAre("C:\\a\\top.txt_000", "C:\\work\\a.txt_000", "C:\\work\\a.txt_001",
                            "C:\\work2\\b.txt_000"));
}

TEST_F(Restore, AFolderFoundByItsKeyAloneSelectsNoFiles)
{
    row("empty", "C:\\empty\\", true);
    const SelectedEntries entries = selectedEntries(restore);
    EXPECT_FALSE(entries.bFilesSelected);
    EXPECT_FALSE(entries.bSettingsSelected);
}

// Reading ends at the first line that does not belong, even before any has: only a folder at the
// very top of the file contributes.
TEST_F(Restore, AFolderWithADotInItsNameCountsAtTheVeryTopAlone)
{
    putFile("C:\\App\\model.txt", "Files And Folders\\C:\\my.docs\\a_000\r\n"
                                  "Files And Folders\\C:\\my.docs\\b_000\r\n"
                                  "Files And Folders\\C:\\x.y\\c_000\r\n");
    EXPECT_THAT(entriesOf("my.docs", "C:\\my.docs\\"),
                ElementsAre("C:\\my.docs\\a_000", "C:\\my.docs\\b_000"));
    EXPECT_THAT(entriesOf("x.y", "C:\\x.y\\"), IsEmpty());
}

TEST_F(Restore, ARepeatedEntryIsDropped)
{
    row("work2", "C:\\work2\\", true);
    row("b.txt_000", "C:\\work2\\b.txt_000", true);
    EXPECT_THAT(selectedEntries(restore).clxnRestore.items(), ElementsAre("C:\\work2\\b.txt_000"));
}

TEST_F(Restore, PassesTheProfileAndTheLocationToTheEngine)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    disk.createFolders("C:\\out\\put");
    window.atLocation = [&] { toFolder(" C:\\out\\put\\ "); };
    mnuAsOf_Click(restore);

    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].folder, "C:\\App\\Profiles\\");
    EXPECT_EQ(asked[0].name, "Work.vdp");
    EXPECT_EQ(asked[0].location, "C:\\out\\put");
    EXPECT_EQ(asked[0].date, "NULL");
    EXPECT_FALSE(form.loaded);
    EXPECT_EQ(frame.pb.value, 0);
    EXPECT_THAT(messageBoxes.texts(), ElementsAre("File(s) have been successfully restored"));
    EXPECT_EQ(boxes()[0].title, "Vardelin");
}

TEST_F(Restore, TheOriginalLocationIsNoFolder)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    window.atLocation = [&] { restoreOk_Click(restore); };
    mnuAsOf_Click(restore);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].location, "");
}

TEST_F(Restore, ByDateTakesTheDayWithoutLeadingZeros)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    setLocalTime({{2003, 7, 9}, {}});
    window.atDate = [&] {
        EXPECT_EQ(byDate.mnvResDate, (base::Date{2003, 7, 9}));
        byDate.mnvResDate = {2003, 7, 3};
        byDateOk_Click(restore);
    };
    window.atLocation = [&] { restoreOk_Click(restore); };
    mnuByDate_Click(restore);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].date, "3/7/2003");
    EXPECT_FALSE(byDate.loaded);

    // The next run by name does not inherit the date.
    mnuAsOf_Click(restore);
    EXPECT_EQ(asked[1].date, "NULL");
}

TEST_F(Restore, ACancelledDateRestoresNothing)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    window.atDate = [&] { byDateCancel_Click(restore); };
    mnuByDate_Click(restore);
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_THAT(window.events, ElementsAre("date"));
}

TEST_F(Restore, EachOutcomeOfFilesHasItsMessage)
{
    constexpr std::string_view kNotMatched =
        "File(s) have not been restored successfully because given 'Restore by date' does not "
        "match with any of the files.";
    struct Row {
        RestoreFlags flags; // date, password, lost
        std::string_view files;
        std::string_view both;
    };
    const Row rows[] = {
        {{false, false, false},
         "File(s) have been successfully restored",
         "File(s) and Settings have been successfully restored"},
        {{false, true, true},
         "Some\\All File(s) have not been successfully restored because of password mismatch and "
         "loss of Backup files",
         "Some\\All File(s) and Settings have not been successfully restored because of password "
         "mismatch and loss of Backup files"},
        {{false, true, false},
         "Some\\All File(s) have not been successfully restored because of password mismatch",
         "Some\\All File(s) and Settings have not been successfully restored because of password "
         "mismatch"},
        {{false, false, true},
         "Some\\All File(s) have not been successfully restored because of  loss of Backup files",
         "Some\\All File(s) and Settings have not been successfully restored because of loss of "
         "Backup files"},
        {{true, false, false}, kNotMatched, kNotMatched},
        {{true, true, false}, kNotMatched, kNotMatched},
        {{true, false, true}, kNotMatched, kNotMatched},
        {{true, true, true}, kNotMatched, kNotMatched},
    };
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    row("Desktop Settings", "Desktop Settings", true);
    window.atLocation = [&] { restoreOk_Click(restore); };
    for (const Row& expected : rows) {
        flags = expected.flags;
        review.bOtherDataExists = false;
        mnuAsOf_Click(restore);
        EXPECT_EQ(newestBox(), expected.files);
        review.bOtherDataExists = true;
        mnuAsOf_Click(restore);
        EXPECT_EQ(newestBox(), expected.both);
    }
}

// Reads no flag: settings report success whatever the engine met.
TEST_F(Restore, SettingsAloneGoBackUnseenAndReportSuccess)
{
    review.bOtherDataExists = true;
    row("IE Favorites", "IE Favorites", true);
    flags = {true, true, true};
    mnuAsOf_Click(restore);
    review.bFilesExist = false;
    mnuAsOf_Click(restore);

    ASSERT_EQ(asked.size(), 2U);
    EXPECT_THAT(asked[0].entries, ElementsAre("IE Favorites"));
    EXPECT_EQ(asked[0].location, "");
    EXPECT_THAT(window.events, ElementsAre("closed", "open", "closed", "open"));
    EXPECT_THAT(messageBoxes.texts(), ElementsAre("Settings have been successfully restored",
                                                  "Settings have been successfully restored"));
    EXPECT_FALSE(form.loaded);
}

TEST_F(Restore, ARefusedRegistryEndsEverything)
{
    review.bOtherDataExists = true;
    row("Registry Settings", "Registry Settings", true);
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    messageBoxes.answers = {platform::Answer::No, platform::Answer::No};
    mnuAsOf_Click(restore);
    review.bFilesExist = false;
    mnuAsOf_Click(restore);

    EXPECT_THAT(asked, IsEmpty());
    EXPECT_THAT(window.events, IsEmpty());
    EXPECT_THAT(messageBoxes.texts(),
                ElementsAre("Current system's registry setting will be overwritten with this "
                            "Backup.Do you want to continue?",
                            "Current system's registry setting will be overwritten with this "
                            "Backup.Do you want to continue?"));
}

TEST_F(Restore, FilesBesideSettingsShowTheDialogOnce)
{
    review.bOtherDataExists = true;
    row("Registry Settings", "Registry Settings", true);
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    messageBoxes.answers = {platform::Answer::Yes};
    window.atLocation = [&] { restoreOk_Click(restore); };
    mnuAsOf_Click(restore);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_THAT(asked[0].entries, ElementsAre("Registry Settings", "C:\\work\\a.txt_001"));
    EXPECT_THAT(window.events, ElementsAre("location"));
}

TEST_F(Restore, NothingSelectedAmongBothKindsDoesNothing)
{
    review.bOtherDataExists = true;
    mnuAsOf_Click(restore);
    review.bFilesExist = review.bOtherDataExists = false;
    mnuAsOf_Click(restore);
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_THAT(window.events, IsEmpty());
}

// A group's heading is of neither kind: the run goes ahead with its key and ends without a word.
TEST_F(Restore, AHeadingRunsAndSaysNothing)
{
    storage.lstRestore[0].selected = true;
    window.atLocation = [&] { restoreOk_Click(restore); };
    mnuAsOf_Click(restore);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_THAT(asked[0].entries, ElementsAre("Files And Folders"));
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
}

TEST_F(Restore, RefusesALocationThatIsNone)
{
    toFolder("  ");
    EXPECT_EQ(newestBox(), "Restore location must be given to restore the source files");
    toFolder("out");
    EXPECT_EQ(newestBox(), "Enter a valid path to restore");
    toFolder("Q:\\out");
    EXPECT_EQ(newestBox(), "Enter the Existing Drive name to restore");
    form.cmbRestLoc.text = " ";
    restoreOk_Click(restore);
    EXPECT_EQ(newestBox(), "Restore location must be given to restore the source files");
    EXPECT_TRUE(form.loaded);
    EXPECT_FALSE(form.hourglass);
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(Restore, OffersToMakeTheFolder)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    messageBoxes.answers = {platform::Answer::Ok, platform::Answer::No};
    toFolder("C:\\new\\place\\");
    EXPECT_EQ(form.txtRestLoc.text, "C:\\new\\place");
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_FALSE(disk.folderExists("C:\\new"));

    messageBoxes.answers = {platform::Answer::Ok, platform::Answer::Yes};
    toFolder("C:\\new\\place");
    EXPECT_TRUE(disk.folderExists("C:\\new\\place"));
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].location, "C:\\new\\place");
    EXPECT_THAT(messageBoxes.texts(), ElementsAre("Given Restore path is not existing",
                                                  "Do you want to create the folder?",
                                                  "Given Restore path is not existing",
                                                  "Do you want to create the folder?",
                                                  "File(s) have been successfully restored"));
}

TEST_F(Restore, AFolderThatCannotBeMadeEmptiesTheBox)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    script.failCallsNamed("folder.createFolder", base::error_number::kPermissionDenied);
    messageBoxes.answers = {platform::Answer::Ok, platform::Answer::Yes};
    toFolder("C:\\new");
    EXPECT_EQ(newestBox(), "Enter a Accessible path to restore");
    EXPECT_EQ(form.txtRestLoc.text, "");
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(Restore, ADriveIsALocation)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    toFolder("C:\\");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].location, "C:");
}

TEST_F(Restore, ReportsWhereItFailed)
{
    row("work", "C:\\work\\", true);
    disk.removeFile("C:\\App\\model.txt");
    restoreOk_Click(restore);
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text, "Error while Opening the Profile to be restored");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "frmRestDialog");

    storage.lstRestore.back().selected = false;
    during = [](const auto&) {
        throw base::RuntimeError(base::error_number::kPermissionDenied, "C:\\x");
    };
    restoreOk_Click(restore);
    ASSERT_EQ(dialog.shown.size(), 2U);
    EXPECT_EQ(dialog.shown[1].txtInf.text, "Error occurred In the restoring process");
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
    EXPECT_FALSE(state.running);
    EXPECT_FALSE(form.hourglass);
    EXPECT_EQ(frame.pb.value, 0);
}

TEST_F(Restore, TheBarFollowsTheEngineAndASecondOkDoesNothing)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    during = [&](const auto& proStatus) {
        proStatus(40);
        EXPECT_EQ(frame.pb.value, 40);
        restoreOk_Click(restore);
        restoreCancel_Click(restore);
        EXPECT_TRUE(form.loaded);
        proStatus(80);
        EXPECT_EQ(frame.pb.value, frame.pb.maximum);
    };
    restoreOk_Click(restore);
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(frame.pb.value, 0);
}

TEST_F(Restore, TheComboChoosesWhatMayBeEntered)
{
    form.cmbRestLoc.text = "Alternate Location";
    cmbRestLoc_Click(restore);
    EXPECT_TRUE(form.cmdBrowse.enabled && form.txtRestLoc.enabled);
    EXPECT_EQ(form.txtRestLoc.text, "");
    window.folder = "C:\\out\\";
    cmdBrowse_Click(restore);
    EXPECT_EQ(form.txtRestLoc.text, "C:\\out\\");
    window.folder.clear();
    cmdBrowse_Click(restore);
    EXPECT_EQ(form.txtRestLoc.text, "C:\\out\\");
    EXPECT_THAT(window.events,
                ElementsAre("browse Select Alternate Destination Location|C:\\", "focus cmdOK",
                            "browse Select Alternate Destination Location|C:\\"));
    form.cmbRestLoc.text = " original location";
    cmbRestLoc_Click(restore);
    EXPECT_FALSE(form.cmdBrowse.enabled || form.txtRestLoc.enabled);
    EXPECT_EQ(form.txtRestLoc.text, "Original Location");
}

TEST_F(Restore, TheBoxTakesNoDotAndTheComboNoKey)
{
    for (const char refused : std::string_view("\"'*,./<>?|"))
        EXPECT_EQ(txtRestLoc_KeyPress(restore, refused), 0) << refused;
    form.txtRestLoc.text = "C";
    EXPECT_EQ(txtRestLoc_KeyPress(restore, ':'), ':');
    form.txtRestLoc.text = "C:";
    EXPECT_EQ(txtRestLoc_KeyPress(restore, ':'), 0);
    EXPECT_EQ(txtRestLoc_KeyPress(restore, '\\'), '\\');
    EXPECT_EQ(txtRestLoc_KeyPress(restore, 8), 8);
    EXPECT_EQ(txtRestLoc_KeyPress(restore, 0xE4), 0xE4);
    EXPECT_EQ(cmbRestLoc_KeyPress('x'), 0);
    EXPECT_EQ(cmbRestLoc_KeyDown(46), 0);
    EXPECT_EQ(cmbRestLoc_KeyDown(40), 40);
    txtRestLoc_MouseDown(restore, 1);
    txtRestLoc_MouseDown(restore, 2);
    EXPECT_THAT(window.events, ElementsAre("clipboard"));
}

} // namespace
} // namespace vardelin::runs
