#include "runs/restore_dialog.h"

#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <iterator>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
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
        if (folder == "fails")
            throw base::RuntimeError(base::error_number::kPermissionDenied);
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

// On a disk that tells the two apart both must come back.
TEST_F(Restore, EntriesThatDifferByCaseAreTwo)
{
    ASSERT_TRUE(machine.fileSystem.isCaseSensitive());
    row("a.txt_000", "C:\\work\\a.txt_000", true);
    row("A.txt_000", "C:\\work\\A.txt_000", true);
    EXPECT_THAT(selectedEntries(restore).clxnRestore.items(),
                ElementsAre("C:\\work\\a.txt_000", "C:\\work\\A.txt_000"));
}

// What a row stands for, by a model.txt of any shape.
TEST_F(Restore, ARowStandsForWhatItsTextMatches)
{
    struct Row {
        std::string_view model;
        std::string_view text;
        std::string_view key;
        std::vector<std::string> entries;
        bool files;
    };
    const Row rows[] = {
        // without a dot: a backslash and the text, anywhere in the line
        {"Files And Folders\\C:\\w\\a_000\r\n", "w", "C:\\w\\", {"C:\\w\\a_000"}, true},
        {"Files And Folders\\C:\\xw\\a_000\r\n", "w", "C:\\w\\", {"C:\\w\\"}, false},
        {"Files And Folders\\C:\\x\\why_000\r\n", "w", "C:\\w\\", {"C:\\x\\why_000"}, true},
        {"FILES and folders\\C:\\w\\a_000\r\n", "w", "C:\\w\\", {"C:\\w\\a_000"}, true},
        {"C:\\w\\a_000\r\n", "w", "C:\\w\\", {"C:\\w\\a_000"}, true},
        {"Files And FoldersX\\w\\a_000\r\n", "w", "k", {"Files And FoldersX\\w\\a_000"}, true},
        // the block ends at the first other line, and a later block does not count
        {"Files And Folders\\C:\\a\\1_000\r\nFiles And Folders\\C:\\w\\2_000\r\n"
         "Files And Folders\\C:\\w\\3_000\r\nFiles And Folders\\C:\\x\\4_000\r\n"
         "Files And Folders\\D:\\w\\5_000\r\n",
         "w",
         "D:\\w\\",
         {"C:\\w\\2_000", "C:\\w\\3_000"},
         true},
        // no line end behind the last line, an empty file
        {"Files And Folders\\C:\\w\\a_000", "w", "C:\\w\\", {"C:\\w\\a_000"}, true},
        {"", "w", "C:\\w\\", {"C:\\w\\"}, false},
        {"", "a.b", "C:\\a.b\\", {}, false},
        // a folder with a dot: the text alone, at the very top
        {"Files And Folders\\C:\\xa.b\\1_000\r\n", "a.b", "C:\\a.b\\", {"C:\\xa.b\\1_000"}, true},
        {"Files And Folders\\C:\\a.b\\1_000\r\n", "a.b", " C:\\a.b\\ ", {"C:\\a.b\\1_000"}, true},
        {"Files And Folders\\C:\\A.b\\1_000\r\n", "a.b", "C:\\a.b\\", {}, false},
        {"Files And Folders\\C:\\0\\1_000\r\nFiles And Folders\\C:\\a.b\\1_000\r\n",
         "a.b",
         "C:\\a.b\\",
         {},
         false},
        {"Files And Folders\\C:\\a.b\\1_000\r\nFiles And Folders\\C:\\c\\2_000\r\n"
         "Files And Folders\\C:\\d\\a.b\\3_000\r\n",
         "a.b",
         "C:\\a.b\\",
         {"C:\\a.b\\1_000"},
         true},
        // a file with a dot: its key, whatever the file holds
        {"", "a.b_Org", "C:\\a.b_000", {"C:\\a.b_000"}, true},
        // one without: found as a folder would be, or its key
        {"Files And Folders\\C:\\README_000\r\n",
         "README_Org",
         "C:\\README_000",
         {"C:\\README_000"},
         false},
        {"Files And Folders\\C:\\README_001\r\n",
         "README_001",
         "C:\\README_001",
         {"C:\\README_001"},
         true},
    };
    for (const Row& each : rows) {
        putFile("C:\\App\\model.txt", each.model);
        storage.lstRestore.clear();
        row(each.text, each.key, true);
        row("unselected.txt_000", "C:\\unselected.txt_000");
        const SelectedEntries entries = selectedEntries(restore);
        EXPECT_EQ(entries.clxnRestore.items(), each.entries) << each.text << " in " << each.model;
        EXPECT_EQ(entries.bFilesSelected, each.files) << each.text << " in " << each.model;
        EXPECT_FALSE(entries.bSettingsSelected);
    }
}

// By text, in any case, wherever in the text: and only where the archive has settings at all.
TEST_F(Restore, ASettingsGroupIsFoundInTheRowsText)
{
    const std::vector<std::pair<std::string_view, bool>> texts{
        {"Desktop Settings", true},       {"Registry Settings", true},
        {"IE Favorites", true},           {"Outlook Settings", true},
        {"my ie favorites.txt", true},    {"OUTLOOK SETTINGS", true},
        {"Other Data & Settings", false}, {"Desktop", false},
    };
    for (const bool exists : {false, true}) {
        review.bOtherDataExists = exists;
        for (const auto& [text, isGroup] : texts) {
            storage.lstRestore.clear();
            row(text, "key of it", true);
            const SelectedEntries entries = selectedEntries(restore);
            EXPECT_EQ(entries.bSettingsSelected, exists && isGroup) << text;
            EXPECT_EQ(entries.clxnRestore.contains(text), exists && isGroup) << text;
            EXPECT_TRUE(entries.clxnRestore.contains("key of it")) << text;
        }
    }
}

// The review's rows may go where the loop yields: a person closed it.
TEST_F(Restore, RowsThatGoWhileTheyAreGoneThroughAreNotTouched)
{
    for (int i = 0; i < 100; ++i)
        row("f" + std::to_string(i) + ".txt_000", "C:\\f" + std::to_string(i) + ".txt_000", true);
    clock.script().onCallsNamed("clock.steady", [&](const platform::CallScript::Call&) {
        clock.advance(std::chrono::seconds(1));
    });
    int yields = 0;
    messageLoop.onYield = [&] {
        if (++yields == 3)
            std::vector<state::ReviewRow>().swap(storage.lstRestore);
    };
    EXPECT_EQ(selectedEntries(restore).clxnRestore.count(), 3U);
    EXPECT_EQ(yields, 3) << "and each row before yielded";
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

// Every kind of selection by every combination of the engine's flags: the first that fits tells.
TEST_F(Restore, SettingsReadNoFlagAndNeitherKindSaysNothing)
{
    review.bOtherDataExists = true;
    window.atLocation = [&] { restoreOk_Click(restore); };
    for (unsigned bits = 0; bits < 8; ++bits) {
        flags = {(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0};
        clearBoxes();
        storage.lstRestore.clear();
        row("Outlook Settings", "Outlook Settings", true);
        mnuAsOf_Click(restore);
        EXPECT_THAT(messageBoxes.texts(), ElementsAre("Settings have been successfully restored"));
        EXPECT_EQ(boxes()[0].title, "Vardelin");
        EXPECT_EQ(boxes()[0].buttons, platform::Buttons::Ok);

        clearBoxes();
        storage.lstRestore.clear();
        row("Files And Folders", "Files And Folders", true);
        mnuAsOf_Click(restore);
        EXPECT_THAT(messageBoxes.texts(), IsEmpty());
    }
    EXPECT_EQ(asked.size(), 16U);
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

// What the review holds, what of it is selected, and where that leads.
TEST_F(Restore, WhatIsSelectedDecidesWhetherThereIsADialog)
{
    struct Row {
        bool files;
        bool settings;
        std::vector<std::string_view> selected;
        std::vector<platform::Answer> answers;
        std::size_t questions;
        std::vector<std::string> windows;
    };
    using enum platform::Answer;
    const std::vector<std::string> kNone;
    const std::vector<std::string> kDialog{"location"};
    const std::vector<std::string> kUnseen{"closed", "open"};
    const Row rows[] = {
        // files alone: the dialog, whatever is selected, and nobody is asked of the registry
        {true, false, {}, {}, 0, kDialog},
        {true, false, {"a.txt_000"}, {}, 0, kDialog},
        {true, false, {"Registry Settings"}, {}, 0, kDialog},
        // both
        {true, true, {}, {}, 0, kNone},
        {true, true, {"a.txt_000"}, {}, 0, kDialog},
        {true, true, {"Desktop Settings"}, {}, 0, kUnseen},
        {true, true, {"Outlook Settings", "IE Favorites"}, {}, 0, kUnseen},
        {true, true, {"desktop settings"}, {}, 0, kDialog}, // exactly, or it is another row
        {true, true, {"Desktop Settings", "work"}, {}, 0, kDialog},
        {true, true, {"Registry Settings"}, {Yes}, 1, kUnseen},
        {true, true, {"Registry Settings"}, {No}, 1, kNone},
        {true, true, {"Registry Settings", "Desktop Settings"}, {Yes}, 1, kUnseen},
        {true, true, {"work", "Registry Settings"}, {Yes}, 1, kDialog},
        {true, true, {"work", "Registry Settings"}, {No}, 1, kNone},
        // settings alone
        {false, true, {}, {}, 0, kUnseen},
        {false, true, {"Desktop Settings"}, {}, 0, kUnseen},
        {false, true, {"Registry Settings"}, {Yes}, 1, kUnseen},
        {false, true, {"Registry Settings"}, {No}, 1, kNone},
        {false, true, {"Other Data & Settings"}, {}, 0, kUnseen},
        // neither
        {false, false, {"work", "Registry Settings"}, {}, 0, kNone},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const Row& each = rows[i];
        clearBoxes();
        window.events.clear();
        asked.clear();
        review.bFilesExist = each.files;
        review.bOtherDataExists = each.settings;
        storage.lstRestore.clear();
        row("Registry Settings", "Registry Settings"); // not selected: nobody is asked
        for (const std::string_view text : each.selected)
            row(text, text, true);
        messageBoxes.answers.assign(each.answers.begin(), each.answers.end());
        form.cmbRestLoc.text = "left over";
        form.loaded = true;
        mnuAsOf_Click(restore);
        EXPECT_EQ(window.events, each.windows) << "case " << i;
        std::size_t questions = 0;
        for (const test::ShownBox& box : boxes())
            questions += box.buttons == platform::Buttons::YesNo ? 1 : 0;
        EXPECT_EQ(questions, each.questions) << "case " << i;
        EXPECT_EQ(asked.size(), each.windows == kUnseen ? 1U : 0U) << "case " << i;
        if (!asked.empty()) {
            EXPECT_EQ(asked[0].location, "") << "case " << i;
        }
        if (each.windows == kDialog) {
            EXPECT_EQ(form.cmbRestLoc.text, "Original Location") << "a fresh dialog, case " << i;
        }
        if (each.answers == std::vector{No}) {
            EXPECT_FALSE(form.loaded) << "case " << i;
        }
    }
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

// Each is told by a box of its own, with the pointer back to an arrow; the dialog stays.
TEST_F(Restore, EachLocationThatIsNoneHasItsMessage)
{
    constexpr std::string_view kMissing =
        "Restore location must be given to restore the source files";
    constexpr std::string_view kInvalid = "Enter a valid path to restore";
    constexpr std::string_view kDrive = "Enter the Existing Drive name to restore";
    struct Row {
        std::string_view mode;
        std::string_view location;
        std::string_view message; // empty: the run goes on
    };
    const Row rows[] = {
        {"", "C:\\out", kMissing},
        {"  ", "C:\\out", kMissing},
        {"Alternate Location", "", kMissing},
        {"Alternate Location", "   ", kMissing},
        {"Original Location", "", kMissing},
        {"Original Location", " ", kMissing},
        {"Alternate Location", "out", kInvalid},
        {"Alternate Location", "C:out", kInvalid},
        {"Alternate Location", "C:", kInvalid},
        {"Alternate Location", "\\\\server\\share", kInvalid},
        {"Alternate Location", "Original Location", kInvalid},
        {"Alternate Location", "Q:\\out", kDrive},
        {"Alternate Location", "CC:\\out", kDrive},
        {"Alternate Location", ":\\out", kDrive},
        {"original LOCATION ", "anything", ""},
        {"Alternate Location", "c:\\out", ""},
        {"Alternate Location", "C:\\out\\", ""},
    };
    disk.createFolders("C:\\out");
    disk.createFolders("c:\\out");
    messageBoxes.script().onCallsNamed(
        "boxes.show", [&](const platform::CallScript::Call&) { EXPECT_FALSE(form.hourglass); });
    for (const Row& each : rows) {
        clearBoxes();
        asked.clear();
        form = {};
        form.hourglass = each.message == kInvalid; // as a caller may have left it
        form.cmbRestLoc.text = each.mode;
        form.txtRestLoc.text = each.location;
        restoreOk_Click(restore);
        if (each.message.empty()) {
            EXPECT_EQ(asked.size(), 1U) << each.location;
            EXPECT_FALSE(form.loaded);
            continue;
        }
        EXPECT_THAT(messageBoxes.texts(), ElementsAre(each.message)) << each.location;
        EXPECT_EQ(boxes()[0].title, "Vardelin");
        EXPECT_EQ(boxes()[0].buttons, platform::Buttons::Ok);
        EXPECT_TRUE(form.loaded && asked.empty()) << each.location;
    }
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

// A file that is restored may have any name and any error: what is told goes by the step.
TEST_F(Restore, ReportsWhereItFailed)
{
    constexpr std::string_view kNotOpened = "Error while Opening the Profile to be restored";
    constexpr std::string_view kPastEnd =
        "Error Occurred when the  file associated for the VD storage is read after it reaches end "
        "of file";
    constexpr std::string_view kProcess = "Error occurred In the restoring process";
    struct Row {
        bool inModel; // or in the engine
        int number;
        std::string_view subject;
        std::string_view message;
    };
    const Row rows[] = {
        {true, base::error_number::kFileNotFound, "C:\\App\\model.txt", kNotOpened},
        {true, base::error_number::kPermissionDenied, "C:\\App\\model.txt", kNotOpened},
        {true, base::error_number::kPastEnd, "C:\\App\\model.txt", kPastEnd},
        {false, base::error_number::kPermissionDenied, "C:\\x", kProcess},
        {false, base::error_number::kPastEnd, "C:\\x", kProcess},
        {false, base::error_number::kPermissionDenied, "C:\\out\\model.txt", kProcess},
    };
    row("work", "C:\\work\\", true);
    for (const Row& each : rows) {
        const auto fail = [&] { throw base::RuntimeError(each.number, std::string(each.subject)); };
        script.reset();
        dialog.shown.clear();
        if (each.inModel)
            script.onCallsNamed("folder.open", [&](const platform::CallScript::Call&) { fail(); });
        during = [&](const auto&) { fail(); };
        form = {};
        frame.pb.value = 12;
        restoreOk_Click(restore);
        ASSERT_EQ(dialog.shown.size(), 1U) << each.message;
        EXPECT_EQ(dialog.shown[0].txtInf.text, each.message);
        EXPECT_EQ(dialog.shown[0].txtModName.text, "frmRestDialog");
        EXPECT_EQ(dialog.shown[0].txtProcName.text, "cmdOk_Click");
        EXPECT_EQ(dialog.shown[0].txtSysErrNo.text, std::to_string(each.number));
        EXPECT_THAT(messageBoxes.texts(), IsEmpty()) << "no closing message";
        EXPECT_FALSE(state.running || storage.busy || form.hourglass || storage.hourglass);
        EXPECT_TRUE(form.loaded);
        EXPECT_EQ(frame.pb.value, 0);
    }
}

TEST_F(Restore, AProfileWithoutAFolderIsReported)
{
    frame.ST_Current_Profile_Path = "Work.vdp";
    row("a.txt_000", "C:\\a.txt_000", true);
    restoreOk_Click(restore);
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text, "Error occurred In the restoring process");
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(Restore, TheProfilesPathIsSplitAtItsLastBackslash)
{
    row("a.txt_000", "C:\\a.txt_000", true);
    frame.ST_Current_Profile_Path = "D:\\my profiles\\a.b\\Work.now.vdp";
    restoreOk_Click(restore);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].folder, "D:\\my profiles\\a.b\\");
    EXPECT_EQ(asked[0].name, "Work.now.vdp");
}

TEST_F(Restore, IsTracedByItsStartAndItsEnd)
{
    row("a.txt_000", "C:\\a.txt_000", true);
    restoreOk_Click(restore);
    EXPECT_THAT(entries(), testing::Contains(testing::StartsWith("cmdOk_Click End")));
}

// "End" is for a procedure that came to its end: with one there were three entries.
TEST_F(Restore, AFailureIsTracedInPlaceOfTheEnd)
{
    row("a.txt_000", "C:\\a.txt_000", true);
    during = [](const auto&) { throw base::RuntimeError(57); };
    restoreOk_Click(restore);
    EXPECT_THAT(entries(), testing::Contains("cmdOk_Click Error 2"));
}

TEST_F(Restore, AnErrorOfTheCallIsTheMainFrames)
{
    window.atLocation = [] { throw base::RuntimeError(57); };
    mnuAsOf_Click(restore);
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text,
              "Error occured when trying to restore the files\\folders");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "MDIForm");
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "CallingRestDlg");
}

// Not only an error of the file system: a frame that stays closed could not be used any more.
TEST_F(Restore, WhateverEndsARunTheFrameOpensAgain)
{
    review.bFilesExist = false;
    review.bOtherDataExists = true;
    row("IE Favorites", "IE Favorites", true);
    during = [](const auto&) { throw std::bad_alloc(); };
    EXPECT_THROW(mnuAsOf_Click(restore), std::bad_alloc);
    EXPECT_THAT(window.events, ElementsAre("closed", "open"));
    EXPECT_FALSE(state.running || storage.busy || form.hourglass || storage.hourglass);
    EXPECT_EQ(frame.pb.value, 0);
    during = [](const auto&) {};
    mnuAsOf_Click(restore);
    EXPECT_EQ(asked.size(), 2U) << "the next one runs";
}

TEST_F(Restore, NothingElseOfTheReviewRunsDuringARestore)
{
    row("a.txt_001", "C:\\work\\a.txt_001", true);
    state.bRestoreByDate = true;
    state.sRestoreDate = "1/2/2003";
    during = [&](const auto&) {
        EXPECT_TRUE(storage.busy) << "its rows stay and it cannot be closed";
        EXPECT_TRUE(form.hourglass);
        form.cmbRestLoc.text = "as it is";
        byDate.caption = "as it is";
        mnuAsOf_Click(restore);
        mnuByDate_Click(restore);
        CallingRestDlg(restore);
        EXPECT_EQ(form.cmbRestLoc.text, "as it is");
        EXPECT_EQ(byDate.caption, "as it is");
        EXPECT_TRUE(state.bRestoreByDate);
    };
    messageBoxes.script().onCallsNamed("boxes.show", [&](const platform::CallScript::Call&) {
        EXPECT_FALSE(form.hourglass) << "an arrow before the closing message";
        EXPECT_TRUE(form.loaded) << "and the form goes behind it";
        EXPECT_EQ(form.txtRestLoc.text, "") << "emptied in the original mode";
    });
    restoreOk_Click(restore);
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].date, "1/2/2003");
    EXPECT_THAT(window.events, IsEmpty());
    EXPECT_EQ(messageBoxes.texts().size(), 1U);
    EXPECT_FALSE(form.loaded || storage.busy);
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

TEST_F(Restore, ABrowserThatFailsHasItsSentence)
{
    window.folder = "fails";
    cmdBrowse_Click(restore);
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text,
              "Error Occurred while Browsing the  Folder for Destination Location");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "frmRestDialog");
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "cmdBrowse_Click");
    EXPECT_EQ(form.txtRestLoc.text, "Original Location");
}

TEST_F(Restore, TheFormsAreAsTheyAreDrawn)
{
    EXPECT_EQ(form.caption, "Restore Location");
    EXPECT_EQ(form.Label1.caption, "&Specify the Restore Location:");
    EXPECT_THAT(form.cmbRestLoc.items, ElementsAre("Original Location", "Alternate Location"));
    EXPECT_EQ(form.cmbRestLoc.text, "Original Location");
    EXPECT_EQ(form.txtRestLoc.text, "Original Location");
    EXPECT_FALSE(form.txtRestLoc.enabled || form.cmdBrowse.enabled);
    EXPECT_EQ(form.cmdBrowse.caption + form.cmdOK.caption + form.cmdCancel.caption,
              "&Browse&OK&Cancel");
    EXPECT_EQ(byDate.caption, "Restore by Date");
    EXPECT_EQ(byDate.cmdOk.caption + byDate.cmdCancel.caption, "&OK&Cancel");
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
    // Every other character passes.
    for (int key = 1; key < 256; ++key) {
        if (key != ':' && std::string_view("\"'*,./<>?|").find(static_cast<char>(key)) ==
                              std::string_view::npos) {
            EXPECT_EQ(txtRestLoc_KeyPress(restore, key), key);
        }
        EXPECT_EQ(cmbRestLoc_KeyPress(key), 0);
        EXPECT_EQ(cmbRestLoc_KeyDown(key), key == 46 ? 0 : key);
    }
    form.txtRestLoc.text = "";
    EXPECT_EQ(txtRestLoc_KeyPress(restore, ':'), 0);
    txtRestLoc_MouseDown(restore, 1);
    txtRestLoc_MouseDown(restore, 2);
    EXPECT_THAT(window.events, ElementsAre("clipboard"));
}

} // namespace
} // namespace vardelin::runs
