#include "window_rig.h"

namespace vardelin::test {
namespace {

// As a desktop does it that knows the installed type: by the program's entry, with the file's path.
TEST_F(Window, OpensTheProfileThatADesktopHandsIt)
{
    int code = 1;
    shell("command -v gio", &code);
    if (code != 0)
        GTEST_SKIP() << "gio is missing";
    shell("cmake --install " + shellWord(VARDELIN_BUILD) + " --component desktop --prefix " +
              shellWord(app),
          &code);
    ASSERT_EQ(code, 0);
    for (const char* name : {"Letters", "My own papers"})
        ASSERT_EQ(
            ctl({"profile", "new", name, "--source", sources, "--dest", folder / "backups"}).code,
            0);
    // The first start is over: that one shows the default profile, whatever it is handed.
    std::ofstream(folder / "mark.reg")
        << "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vardelin]\r\n\"Started\"=\"1\"\r\n";
    ASSERT_EQ(ctl({"registry", "import", folder / "mark.reg"}).code, 0);
    std::ofstream(app + "/ServiceActive.reg") << "REGEDIT4\r\n";

    int loads = 0; // begun and ended
    for (const std::string name : {"Letters", "My own papers"}) {
        // The program that it starts must not keep the pipe to this shell open.
        shell("gio launch " + shellWord(app + "/share/applications/vardelin.desktop") + " " +
                  shellWord(app + "/Profiles/" + name + ".vdp") + " > " +
                  shellWord(folder / "vardelin.log") + " 2>&1",
              &code);
        EXPECT_EQ(code, 0);
        Screen::waitForTitle("Vardelin - [" + name + " Profile]");
        loads += 2;
        waitUntil("the end of loading", [&] { return traced("MDIForm_Load") == loads; });
        Screen::key("alt+F4");
        Screen::waitForTitle("Vardelin"); // whether to exit really
        Screen::key("alt+y");
        waitUntil("the program's end", [&] { return programs("vardelin").empty(); });
    }
}

} // namespace
} // namespace vardelin::test
