#include "window_rig.h"

// The window as a person uses it: the program itself, on a screen, by keyboard and mouse.
namespace vardelin::test {
namespace {

TEST_F(Window, MakesAProfileShowsItAgainAndTheProfileRuns)
{
    // The first start shows the default profile.
    auto program = startShowing("Vardelin - [Default Profile]");

    // A second start says so and leaves the first one alone.
    {
        auto second = startProgram();
        Screen::answer("Vardelin", "Return");
        EXPECT_EQ(second->wait("the second start"), 0);
        Screen::waitForTitle("Vardelin - [Default Profile]");
        EXPECT_TRUE(program->running());
    }

    // New, by the mouse on its button.
    expectRun("mnuNew_Click", [] { Screen::click(25, 55); });
    Screen::waitForTitle("Vardelin - [New Profile]");

    // A folder is ticked in the tree.
    tickFolder(sources);

    // The destination is typed; its folder is not there yet.
    const std::string destination = World::drive(folder / "backups");
    Screen::key("ctrl+Tab");
    Screen::key("alt+l");
    Screen::type(destination);
    Screen::key("ctrl+s");
    Screen::answer("Vardelin", "Return"); // it is not there
    Screen::answer("Vardelin", "alt+y");  // whether to make it
    waitUntil("the destination", [&] { return fs::is_directory(folder / "backups"); });
    Screen::waitForTitle("Vardelin"); // the name
    Screen::type("Papers");
    Screen::key("Return");
    Screen::waitForTitle("Vardelin - [Papers Profile]");
    const Ran shown = ctl({"profile", "show", "Papers"});
    EXPECT_EQ(shown.code, 0) << shown.err;
    EXPECT_NE(shown.out.find(World::drive(sources) + "\\\n"), std::string::npos) << shown.out;
    EXPECT_NE(shown.out.find(destination), std::string::npos) << shown.out;

    // Exit, and the same profile comes back.
    leave(*program);
    program = startShowing("Vardelin - [Papers Profile]");

    // The tree shows the same ticks: what it shows is what the next save writes.
    Screen::key("ctrl+Tab");
    expectRun("chkIdle_Click", [] { Screen::key("alt+i"); });
    expectRun("EditSaveMode", [] { Screen::key("ctrl+s"); });
    const Ran again = ctl({"profile", "show", "Papers"});
    EXPECT_NE(again.out.find(World::drive(sources) + "\\\n"), std::string::npos) << again.out;
    EXPECT_NE(again.out, shown.out) << "the option was saved, too";
    leave(*program);

    // And the profile does what it says.
    const Ran backup = ctl({"backup", "Papers"});
    EXPECT_EQ(backup.code, 0) << backup.out << backup.err;
    EXPECT_EQ(ctl({"restore", "Papers", "--all", "--to", folder / "restored"}).code, 0);
    EXPECT_EQ(TempFolder::read(folder / "restored" + "/C" + sources + "/letters/one.txt"), "one\n");
}

} // namespace
} // namespace vardelin::test
