#include "window_rig.h"

#include <set>

// All that the window does with an archive, by the keyboard alone but for the logs' list.
namespace vardelin::test {
namespace {

class ArchiveWindow : public Window {
protected:
    void SetUp() override
    {
        Window::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        for (const char* name : {"home/Documents/Letters", "home/Documents/Tax", "backups"})
            fs::create_directories(folder / name);
        write(letter, kFirst);
        write(documents + "/Tax/income.csv", "1000;2000\n");
        write(documents + "/notes.txt", "milk\n");
    }

    static void write(const std::string& path, const std::string& bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    // The plain files below a folder.
    static std::vector<fs::path> filesBelow(const std::string& place)
    {
        std::vector<fs::path> found;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(place)) {
            if (entry.is_regular_file())
                found.push_back(entry.path());
        }
        return found;
    }
    // How many copies of a file, a full one ("FULL") or a version ("Ver1"), the archive holds.
    int copies(const std::string& name, const std::string& mark) const
    {
        int count = 0;
        for (const fs::path& file : filesBelow(folder / "backups"))
            count += file.filename().string().starts_with(name + "_" + mark + "_") ? 1 : 0;
        return count;
    }
    std::string logged(const std::string& kind) const
    {
        return TempFolder::read(app + "/Log/" + kind + "/Papers.txt");
    }
    static std::size_t linesOf(const std::string& text)
    {
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    // Runs a command whose messages are closed by Enter, until `procedure` has ended. Messages and
    // the window of a running backup have the same title, so the backup must be over by `begins`,
    // and what was in front until then is no message.
    static int closeMessages(const std::function<bool()>& begins, const std::function<bool()>& ends)
    {
        std::set<std::string> known;
        const auto front = [] { return Screen::xdotool("getactivewindow 2> /dev/null"); };
        waitUntil("the end of the run", [&] {
            const std::string window = front();
            if (begins())
                return true;
            known.insert(window);
            return false;
        });
        int closed = 0;
        waitUntil("the end of the messages", [&] {
            const std::string window = front();
            if (Screen::activeTitle() == "Vardelin" && known.insert(window).second) {
                Screen::key("Return");
                ++closed;
            }
            return ends();
        });
        return closed;
    }
    void backUp()
    {
        const std::size_t runs = linesOf(logged("Backup"));
        const int ended = traced("mnurun_Click");
        Screen::key("alt+a b");
        const int messages = closeMessages([&] { return linesOf(logged("Backup")) > runs; },
                                           [&] { return traced("mnurun_Click") > ended; });
        EXPECT_GE(messages, 1);
    }
    // Waits until a restore is in its log and its messages are closed.
    void awaitRestore(std::size_t before)
    {
        closeMessages([&] { return linesOf(logged("Restore")) > before; },
                      [] { return Screen::activeTitle() == kTitle; });
    }
    // The current row of the review, and then its first child.
    void openRow()
    {
        expectRun("lstRestore_MouseDown", [] { Screen::key("Right"); });
        Screen::key("Right");
    }
    void openReview()
    {
        expectRun("mnuBkpSto_Click", [] { Screen::key("alt+a r"); });
    }
    // From the first row to the folder's, which is opened; its first child is the current row then.
    void openRowsTo(const std::string& path)
    {
        openRow(); // the group
        openRow(); // the drive
        for (auto part = fs::path(path).relative_path(); !part.empty(); part = part.parent_path())
            openRow();
    }

    static constexpr const char* kTitle = "Vardelin - [Papers Profile]";
    // A place in the second row of the list of runs.
    static constexpr int kRowX = 100;
    static constexpr int kSecondRowY = 186;
    static constexpr const char* kGate = "Password to Review Archive";
    static constexpr const char* kFirst = "Dear aunt,\n";
    static constexpr const char* kSecond = "Dear aunt,\nthank you for the book.\n";
    std::string documents = home + "/Documents";
    std::string letter = documents + "/Letters/aunt.txt";
};

TEST_F(ArchiveWindow, BacksUpRestoresDeletesAndShowsTheLogs)
{
    auto program = startShowing("Vardelin - [Default Profile]");
    Screen::key("ctrl+n");
    Screen::waitForTitle("Vardelin - [New Profile]");
    tickFolder(documents);
    Screen::key("ctrl+Tab alt+l");
    Screen::type(World::drive(folder / "backups"));
    Screen::key("ctrl+s");
    Screen::waitForTitle("Vardelin"); // the name
    Screen::type("Papers");
    Screen::key("Return");
    Screen::waitForTitle(kTitle);

    // A first run copies everything, a second one what has changed.
    backUp();
    EXPECT_EQ(copies("aunt.txt", "FULL"), 1);
    EXPECT_EQ(copies("income.csv", "FULL"), 1);
    EXPECT_EQ(copies("aunt.txt", "Ver1"), 0);
    write(letter, kSecond);
    write(documents + "/closed.txt", "nobody reads it\n");
    fs::permissions(documents + "/closed.txt", fs::perms::none);
    backUp();
    EXPECT_EQ(copies("aunt.txt", "Ver1"), 1);
    EXPECT_EQ(copies("income.csv", "Ver1"), 0);

    // The first version goes to another folder, and nowhere else.
    openReview();
    openRowsTo(documents + "/Letters");
    const std::string elsewhere = folder / "elsewhere";
    fs::create_directories(elsewhere);
    std::size_t restores = linesOf(logged("Restore"));
    Screen::key("Menu r Down Return");
    Screen::waitForTitle("Restore Location");
    Screen::key("Down Tab");
    Screen::type(World::drive(elsewhere));
    Screen::key("alt+o");
    awaitRestore(restores);
    const std::vector<fs::path> restored = filesBelow(elsewhere);
    ASSERT_EQ(restored.size(), 1U) << logged("Restore");
    EXPECT_EQ(restored[0].filename(), "aunt.txt");
    EXPECT_EQ(TempFolder::read(restored[0].string()), kFirst);
    EXPECT_EQ(TempFolder::read(letter), kSecond);

    // As of today it is the newest version that comes back, to its own place.
    write(letter, "spoiled");
    restores = linesOf(logged("Restore"));
    Screen::key("Menu r Return");
    Screen::waitForTitle("Restore by Date");
    Screen::key("Return");
    Screen::waitForTitle("Restore Location");
    Screen::key("alt+o");
    awaitRestore(restores);
    EXPECT_EQ(TempFolder::read(letter), kSecond);

    // No leaves a version where it is, Yes deletes it, and the other one stays.
    Screen::key("Down Menu d");
    Screen::answer("Vardelin", "alt+n");
    EXPECT_EQ(copies("aunt.txt", "Ver1"), 1);
    Screen::key("Menu d");
    expectRun("RestoreDel", [] { Screen::answer("Vardelin", "alt+y"); });
    EXPECT_EQ(copies("aunt.txt", "Ver1"), 0);
    EXPECT_EQ(copies("aunt.txt", "FULL"), 1);
    EXPECT_EQ(copies("income.csv", "FULL"), 1);
    EXPECT_EQ(ctl({"verify", "Papers"}).code, 0);

    // The log of the runs tells which files the second one missed; a double click shows it.
    expectRun("ViewBackUpLog", [] { Screen::key("alt+t b"); });
    Screen::click(kRowX, kSecondRowY, 2);
    waitUntil("the missed files",
              [] { return Screen::activeTitle().starts_with("Missed Files - Papers"); });
    Screen::key("Escape");
    Screen::waitForTitle(kTitle);
    expectRun("ViewRestoreLog", [] { Screen::key("alt+t r"); });
    write(app + "/Queue/ChngFilesQueue.txt", World::drive(letter) + "\r\n");
    expectRun("ViewQLog", [] { Screen::key("alt+t Return"); });
    EXPECT_EQ(traced("LoadBkpLV"), traced("LoadQLV") * 2) << "a row for each run, and one file";

    leave(*program);
}

// A password between a person and the archive: a wrong one keeps it shut and is asked for anew.
TEST_F(ArchiveWindow, OpensTheReviewByItsPasswordAlone)
{
    write(folder / "password", "correct horse\n");
    write(folder / "answer", "Rex\n");
    ASSERT_EQ(ctl({"profile", "new", "Papers", "--source", documents, "--dest", folder / "backups",
                   "--encrypt", "--password-file", folder / "password", "--hint-question",
                   "My first dog?", "--hint-answer-file", folder / "answer"})
                  .code,
              0);
    ASSERT_EQ(ctl({"backup", "Papers"}).code, 0);
    const std::string plainCopy = app + "/Profiles/UPapers.txt";

    auto program = startShowing("Vardelin - [Default Profile]");
    Screen::key("ctrl+o");
    Screen::waitForTitle("Open Profile");
    Screen::key("Down space alt+o"); // it is the second one
    Screen::waitForTitle(kTitle);
    Screen::key("alt+a r");
    Screen::waitForTitle(kGate);
    Screen::type("correct");
    Screen::key("Return");
    Screen::answer("Vardelin", "Return");
    Screen::waitForTitle(kGate);
    EXPECT_EQ(traced("frmVDStorage_Load"), 0);
    EXPECT_TRUE(fs::exists(plainCopy));
    EXPECT_EQ(fs::status(plainCopy).permissions(), fs::perms::owner_read | fs::perms::owner_write);

    // The box was emptied.
    Screen::type("correct horse");
    Screen::key("Return");
    waitUntil("the review", [&] { return traced("mnuBkpSto_Click") == 2; });
    Screen::waitForTitle(kTitle);
    EXPECT_EQ(traced("frmVDStorage_Load"), 2);
    EXPECT_FALSE(fs::exists(plainCopy));

    // What it guarded comes back.
    openRowsTo(documents + "/Letters");
    fs::remove(letter);
    const std::size_t restores = linesOf(logged("Restore"));
    Screen::key("Menu r Down Return");
    Screen::waitForTitle("Restore Location");
    Screen::key("alt+o");
    awaitRestore(restores);
    EXPECT_EQ(TempFolder::read(letter), kFirst);
    leave(*program);
}

} // namespace
} // namespace vardelin::test
