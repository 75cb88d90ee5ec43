#include "archive/deletion.h"
#include "archive/review.h"

#include "proofs/disk_world.h"
#include "support/trace_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Whole stories on archives that the engine made on the machine's disk.
namespace vardelin::archive {
namespace {

namespace fs = std::filesystem;
using proofs::DiskWorld;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

struct Story : DiskWorld {
    trace::RunTrace runTrace{files, ports.clock, ports.messageBoxes, "C:\\app", "Vardelin"};
    trace::ErrorRecord errors;
    test::ScriptedErrorDialog dialog;
    trace::TraceContext traceContext{runTrace, errors, dialog};
    state::FrameState frame;
    state::ProfileScalars profile;
    state::frmVDStorage form;
    ReviewState state;
    ReviewContext review{machine, traceContext, frame, profile, form, state};

    explicit Story(bool compress = true)
    {
        fs::create_directories(native("app/Data"));
        frame.ST_App_Path = "C:\\app";
        frame.ST_Current_Profile = "Work.vdp";
        profile.sDestinationPath = "C:\\store";
        profile.bCompressFiles = compress;
        engine::ProfileText text;
        text.destination = "C:\\store";
        text.compress = compress;
        text.otherData = {"Registry Settings"};
        setProfile(text);
    }

    void backUp()
    {
        backup();
        ports.clock.advance(std::chrono::hours(24));
    }
    std::size_t rowOf(std::string_view key) const
    {
        for (std::size_t i = 0; i < form.lstRestore.size(); ++i) {
            if (form.lstRestore[i].key == key)
                return i + 1;
        }
        ADD_FAILURE() << "no row " << key;
        return 0;
    }
    void click(std::initializer_list<std::string_view> keys)
    {
        for (const std::string_view key : keys)
            rowButtonClicked(review, rowOf(key));
    }
    void erase(std::initializer_list<std::string_view> keys)
    {
        for (state::ReviewRow& row : form.lstRestore)
            row.selected = false;
        for (const std::string_view key : keys)
            form.lstRestore.at(rowOf(key) - 1).selected = true;
        ports.messageBoxes.answers = {platform::Answer::Yes};
        mnuDel_Click(review);
    }
    std::vector<std::string> texts() const
    {
        std::vector<std::string> rows;
        for (const state::ReviewRow& row : form.lstRestore)
            rows.push_back(row.text);
        return rows;
    }
    // Archive files whose names hold this text.
    std::size_t copiesOf(std::string_view part) const
    {
        std::size_t count = 0;
        for (const auto& entry : fs::recursive_directory_iterator(native("store/Work")))
            count += entry.path().filename().string().find(part) != std::string::npos ? 1U : 0U;
        return count;
    }
    std::vector<std::string> entriesOf(std::string_view part)
    {
        std::vector<std::string> entries;
        engine::listCopies(machine, engine::kProfiles + "Work.vdp",
                           [&](const engine::CopyRecord& copy) {
                               if (copy.entry.find(part) != std::string::npos)
                                   entries.push_back(copy.entry);
                               return true;
                           });
        return entries;
    }
};

TEST(ReviewStory, ShowsAndDeletesWhatTheEngineSaved)
{
    Story story;
    story.write("data/letter.txt", "first");
    story.write("data/photos/one.jpg", "a photo");
    story.write("data/photos/old/two.jpg", "an old photo");
    story.write("data/README", "no dot in the name");
    fs::create_directories(story.native("data/empty folder"));
    story.backUp();
    story.write("data/letter.txt", std::string(5000, 'x') + "second");
    story.backUp();
    story.write("data/letter.txt", "third");
    story.backUp();

    frmVDStorage_Load(story.review);
    EXPECT_THAT(story.texts(), ElementsAre("Files And Folders", "Other Data & Settings"));
    story.click(
        {"Other Data & Settings", "Files And Folders", "C:\\", "C:\\data\\", "C:\\data\\photos\\"});
    EXPECT_THAT(story.texts(),
                ElementsAre("Files And Folders", "C:", "data", "README_Org", "letter.txt_Org",
                            "letter.txt_001", "letter.txt_002", "photos", "old", "one.jpg_Org",
                            "Other Data & Settings", "Registry Settings"));
    for (const state::ReviewRow& row : story.form.lstRestore)
        EXPECT_EQ(row.file, !row.size.empty() && !row.createdOn.empty()) << row.text;

    // One version.
    story.erase({"C:\\data\\letter.txt_001"});
    EXPECT_EQ(story.copiesOf("letter.txt_Ver1"), 0U);
    EXPECT_THAT(story.entriesOf("letter"),
                ElementsAre("C:\\data\\letter.txt_000", "C:\\data\\letter.txt_002"));
    EXPECT_EQ(story.form.lstRestore.size(), 11U);

    // A folder with its subfolder, and the settings.
    story.erase({"C:\\data\\photos\\", "Registry Settings"});
    EXPECT_FALSE(fs::exists(story.native("store/Work/C/data/photos")));
    EXPECT_FALSE(fs::exists(story.native("store/Work/OtherData")));
    EXPECT_THAT(story.texts(), ElementsAre("Files And Folders"));
    EXPECT_THAT(story.entriesOf("photos"), IsEmpty());
    EXPECT_THAT(story.dialog.shown, IsEmpty());

    // What is left is whole, comes back, and is backed up on.
    EXPECT_TRUE(story.verify().damaged.empty());
    EXPECT_FALSE(story.restore({"C:\\data\\letter.txt_002"}, "C:\\out").raised);
    EXPECT_EQ(story.read("out/C/data/letter.txt"), "third");
    EXPECT_EQ(story.backup().outcome, engine::Outcome::Complete);
    frmVDStorage_Load(story.review);
    story.click({"Files And Folders", "C:\\", "C:\\data\\", "C:\\data\\photos\\"});
    EXPECT_THAT(story.texts(), Contains("one.jpg_Org")); // the source is still there
}

TEST(ReviewStory, DeletesEverythingAndTheEngineBeginsAnew)
{
    Story story;
    story.write("data/a.txt", "a");
    story.backUp();
    frmVDStorage_Load(story.review);
    story.click({"Files And Folders", "Other Data & Settings"});
    story.erase({"C:\\", "Registry Settings"});
    EXPECT_THAT(story.texts(), IsEmpty());
    EXPECT_THAT(story.entriesOf(""), IsEmpty());

    EXPECT_EQ(story.backup().outcome, engine::Outcome::Complete);
    EXPECT_THAT(story.entriesOf("a.txt"), ElementsAre("C:\\data\\a.txt_000"));
}

TEST(ReviewStory, OfAnArchiveWithoutCompressionShowsTheListOfTheBackupOnce)
{
    Story story(false);
    story.write("data/a.txt", "as it stands");
    story.backUp();
    frmVDStorage_Load(story.review);
    story.click({"Files And Folders", "C:\\", "C:\\data\\"});
    EXPECT_THAT(story.texts(), ElementsAre("Files And Folders", "C:", "data", "a.txt_Org",
                                           "Other Data & Settings"));
    EXPECT_EQ(story.form.lstRestore[3].size, "12 B");
    EXPECT_THAT(story.dialog.shown, IsEmpty());

    frmVDStorage_Load(story.review);
    ASSERT_EQ(story.dialog.shown.size(), 1U);
    EXPECT_EQ(story.dialog.shown[0].txtInf.text,
              "The File Does Not Exist while loading the VDStorage Form");
}

TEST(ReviewStory, OfARunAndADeletionAtOnceRefusesTheSecond)
{
    Story story;
    story.write("data/a.txt", "a");
    story.backUp();
    frmVDStorage_Load(story.review);
    story.click({"Files And Folders", "C:\\", "C:\\data\\"});

    // A deletion while a run is saving.
    story.write("data/a.txt", "changed");
    std::size_t tries = 0;
    story.events.onFile = [&](std::string_view) {
        story.erase({"C:\\data\\a.txt_000"});
        ++tries;
    };
    EXPECT_EQ(story.backup().outcome, engine::Outcome::Complete);
    story.events.onFile = {};
    EXPECT_GT(tries, 0U);
    EXPECT_THAT(story.ports.messageBoxes.texts(),
                Contains(testing::StartsWith("This archive is in use")));
    EXPECT_THAT(story.entriesOf("a.txt"),
                ElementsAre("C:\\data\\a.txt_000", "C:\\data\\a.txt_001"));

    // A run while a deletion is under way.
    bool refused = false;
    story.script.onCallsNamed("folder.removeFile", [&](const platform::CallScript::Call& call) {
        if (call.subject.find("a.txt_FULL") == std::string::npos)
            return;
        EXPECT_THROW(story.backup(), base::RuntimeError);
        refused = true;
    });
    story.erase({"C:\\data\\a.txt_000"});
    EXPECT_TRUE(refused);
    EXPECT_THAT(story.entriesOf("a.txt"), ElementsAre("C:\\data\\a.txt_001"));
}

TEST(ReviewStory, OfForeignFilesAndAFolderThatVanishesTellsWhatIsThere)
{
    Story story;
    story.write("data/a.txt", "a");
    story.write("data/sub/b.txt", "b");
    story.backUp();
    story.write("store/Work/C/data/holiday.jpg", "not ours");
    story.write("store/Work/C/data/odd_Ver12345_", "not ours either");
    frmVDStorage_Load(story.review);
    EXPECT_THAT(story.texts(),
                ElementsAre("Files And Folders", "Files And Folders\\C:\\data\\odd_12345",
                            "Other Data & Settings"));
    story.click({"Files And Folders", "C:\\", "C:\\data\\"});
    EXPECT_THAT(story.texts(), Contains("sub"));

    fs::remove_all(story.native("store/Work/C/data/sub"));
    story.click({"C:\\data\\sub\\"});
    EXPECT_EQ(story.form.lstRestore.at(story.rowOf("C:\\data\\sub\\b.txt_000") - 1).size, "");
    story.erase({"C:\\data\\sub\\b.txt_000", "C:\\data\\a.txt_000"});
    // The foreign files stay, so the folder does.
    EXPECT_TRUE(fs::exists(story.native("store/Work/C/data/holiday.jpg")));
    EXPECT_TRUE(fs::exists(story.native("store/Work/C/data/odd_Ver12345_")));
    EXPECT_EQ(story.copiesOf("a.txt"), 0U);
    EXPECT_THAT(story.dialog.shown, IsEmpty());
}

// Without compression the list is a file that others can write; the disk would follow its dots.
TEST(ReviewStory, OfAListThatSomebodyWroteDeletesNothingOutsideTheArchive)
{
    Story story(false);
    story.write("data/a.txt", "a");
    story.backUp();
    story.write("store/precious/b.txt_FULL_1", "not in this archive");
    story.write("app/Data/ReviewFiles.txt",
                "Files And Folders\\C:\\..\\..\\precious\\b.txt_000\r\n");
    frmVDStorage_Load(story.review);
    story.click(
        {"Files And Folders", "C:\\", "C:\\..\\", "C:\\..\\..\\", "C:\\..\\..\\precious\\"});
    story.erase({"C:\\..\\", "C:\\..\\..\\precious\\", "C:\\..\\..\\precious\\b.txt_000"});
    EXPECT_TRUE(fs::exists(story.native("store/precious/b.txt_FULL_1")));
    EXPECT_EQ(story.copiesOf("a.txt"), 1U);

    // Other names of the archive root and of what is beside it.
    for (const std::string_view key :
         {".:\\", "\\:\\", "C:\\..\\", ".:.\\precious\\", ".:.\\precious\\b.txt_000"}) {
        story.form.lstRestore.back().key = key;
        story.form.lstRestore.back().text = "b.txt_Org";
        story.erase({key});
        EXPECT_TRUE(fs::exists(story.native("store/precious/b.txt_FULL_1"))) << key;
        EXPECT_EQ(story.copiesOf("a.txt"), 1U) << key;
    }
}

} // namespace
} // namespace vardelin::archive
