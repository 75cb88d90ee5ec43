#include "window_rig.h"

#include <map>

namespace vardelin::test {
namespace {

class DesktopWindow : public Window {
protected:
    void SetUp() override
    {
        Window::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        int code = 1;
        shell("command -v gio update-mime-database update-desktop-database", &code);
        if (code != 0)
            GTEST_SKIP() << "gio, update-mime-database or update-desktop-database is missing";
        for (const char* name : {"Letters", "My own papers"})
            ASSERT_EQ(
                ctl({"profile", "new", name, "--source", sources, "--dest", folder / "backups"})
                    .code,
                0);
        // The first start is over: that one shows the default profile, whatever it is handed.
        std::ofstream(folder / "mark.reg")
            << "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Vardelin]\r\n\"Started\"=\"1\"\r\n";
        ASSERT_EQ(ctl({"registry", "import", folder / "mark.reg"}).code, 0);
        std::ofstream(app + "/ServiceActive.reg") << "REGEDIT4\r\n";
    }
    std::string profile(const std::string& name) const
    {
        return app + "/Profiles/" + name + ".vdp";
    }

    // `command` comes back at once and leaves the window with the profile behind, which is shown
    // and closed again.
    void expectShown(const std::string& command, const std::string& name)
    {
        constexpr int kStartAndEnd = 2;
        const int before = traced("MDIForm_Load");
        int code = 1;
        // The program that it starts must not keep the pipe to this shell open.
        shell("{ " + command + "; } > " + shellWord(folder / "vardelin.log") + " 2>&1", &code);
        EXPECT_EQ(code, 0) << TempFolder::read(folder / "vardelin.log");
        Screen::waitForTitle("Vardelin - [" + name + " Profile]");
        waitUntil("the end of loading",
                  [&] { return traced("MDIForm_Load") == before + kStartAndEnd; });
        Screen::key("alt+F4");
        Screen::waitForTitle("Vardelin"); // whether to exit really
        Screen::key("alt+y");
        waitUntil("the program's end", [&] { return programs("vardelin").empty(); });
    }
    // When each file of the desktop's own data was written.
    std::map<std::string, fs::file_time_type> writtenFiles() const
    {
        std::map<std::string, fs::file_time_type> times;
        for (const char* part : {"/mime", "/applications", "/icons"}) {
            for (const auto& entry : fs::recursive_directory_iterator(share + part)) {
                if (entry.is_regular_file())
                    times[entry.path().string()] = entry.last_write_time();
            }
        }
        return times;
    }
};

// As a desktop does it that knows the installed type: by the program's entry, with the file's path.
TEST_F(DesktopWindow, OpensTheProfileThatADesktopHandsIt)
{
    int code = 1;
    shell("cmake --install " + shellWord(VARDELIN_BUILD) + " --component desktop --prefix " +
              shellWord(app),
          &code);
    ASSERT_EQ(code, 0);
    for (const std::string name : {"Letters", "My own papers"})
        expectShown("gio launch " + shellWord(app + "/share/applications/vardelin.desktop") + " " +
                        shellWord(profile(name)),
                    name);
}

// One start from anywhere is all that a double click on a profile takes.
TEST_F(DesktopWindow, TellsTheDesktopWhatOpensAProfile)
{
    expectShown("setsid " + shellWord(app + "/vardelin") + " " + shellWord(profile("Letters")) +
                    " < /dev/null & true",
                "Letters");
    for (const char* index : {"/mime/mime.cache", "/applications/mimeinfo.cache"})
        waitUntil(index, [&] { return fs::exists(share + index); });
    const std::string entry = share + "/applications/vardelin.desktop";
    EXPECT_NE(TempFolder::read(entry).find("\nExec=\"" + app + "/vardelin\" %f\n"),
              std::string::npos)
        << TempFolder::read(entry);
    int code = 0;
    const std::string flaws = shell("desktop-file-validate " + shellWord(entry) + " 2>&1", &code);
    EXPECT_EQ(code, 0) << flaws;
    const std::string facts =
        shell("gio info -a standard::content-type,standard::icon " + shellWord(profile("Letters")));
    EXPECT_NE(facts.find("content-type: application/x-vardelin-profile\n"), std::string::npos)
        << facts;
    EXPECT_NE(facts.find("icon: application-x-vardelin-profile,"), std::string::npos) << facts;
    const std::string handlers = shell("gio mime application/x-vardelin-profile");
    EXPECT_NE(handlers.find("vardelin.desktop"), std::string::npos) << handlers;

    const auto before = writtenFiles();
    expectShown("gio open " + shellWord(profile("My own papers")), "My own papers");
    EXPECT_EQ(writtenFiles(), before) << "the second start writes nothing";
}

} // namespace
} // namespace vardelin::test
