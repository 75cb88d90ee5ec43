#pragma once

#include "screen.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>

#include <gtest/gtest.h>

// The program itself on a screen that nobody sees, with an application folder of its own.
namespace vardelin::test {

namespace fs = std::filesystem;

// The folder's name begins with a character that nothing beside it does, since a folder of the tree
// is come to by typing how its name begins.
class OddFolder {
public:
    OddFolder()
    {
        const std::string place = fs::temp_directory_path().string();
        for (const char first : std::string("{}~!+=@^_")) {
            if (isFirstLetterFree(place, first)) {
                m_path = place + "/" + first + "window-" + std::to_string(::getpid());
                fs::create_directories(m_path);
                return;
            }
        }
        throw std::runtime_error("no free letter in " + place);
    }
    OddFolder(const OddFolder&) = delete;
    OddFolder& operator=(const OddFolder&) = delete;
    ~OddFolder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    const std::string& path() const { return m_path; }
    std::string operator/(std::string_view name) const { return m_path + "/" + std::string(name); }

private:
    static bool isFirstLetterFree(const std::string& place, char first)
    {
        return std::none_of(fs::directory_iterator(place), fs::directory_iterator(),
                            [&](const fs::directory_entry& entry) {
                                return entry.path().filename().string().front() == first;
                            });
    }

    std::string m_path;
};

class Window : public testing::Test {
protected:
    void SetUp() override
    {
        if (!haveScreens())
            GTEST_SKIP() << "Xvfb, xdotool or openbox is missing";
        fs::create_directories(home);
        fs::permissions(home, fs::perms::owner_all);
        ::setenv("HOME", home.c_str(), 1);
        // The program tells the desktop of itself: not that of who runs the tests.
        ::setenv("XDG_DATA_HOME", share.c_str(), 1);
        ::setenv("XDG_DATA_DIRS", "/usr/local/share:/usr/share", 1);
        ::setenv("XDG_CONFIG_HOME", (home + "/.config").c_str(), 1);
        ::setenv("XDG_CACHE_HOME", (home + "/.cache").c_str(), 1);
        ::setenv("XDG_RUNTIME_DIR", home.c_str(), 1);
        ::setenv("QT_QPA_PLATFORM", "xcb", 1);
        ::setenv("LC_ALL", "C.UTF-8", 1);
        // The keyboard library of the screen's system copies out of a buffer without a zero, within
        // the length that it knows; the strict check is for our own strings.
        const char* const options = std::getenv("ASAN_OPTIONS");
        ::setenv(
            "ASAN_OPTIONS",
            (std::string(options == nullptr ? "" : options) + ":strict_string_checks=0").c_str(),
            1);
        // The desktop's bus library keeps one block to its end.
        std::ofstream(folder / "leaks") << "leak:libdbus-1\n";
        ::setenv("LSAN_OPTIONS",
                 ("print_suppressions=0:suppressions=" + (folder / "leaks")).c_str(), 1);
        screen.emplace(folder.path());
        for (const char* name : {"sources/letters", "sources/photos"})
            fs::create_directories(folder / name);
        std::ofstream(folder / "sources/letters/one.txt") << "one\n";
        std::ofstream(folder / "sources/photos/two.raw") << "two\n";
        ASSERT_EQ(ctl({"init", app}).code, 0);
        // The program's folder is its application folder; a link would lead away from it.
        for (const char* program : {VARDELIN, VDFILEMON, VDIDLEMON, VDSCHEDULEMON}) {
            const fs::path place = fs::path(app) / fs::path(program).filename();
            std::error_code otherDisk;
            fs::create_hard_link(program, place, otherDisk);
            if (otherDisk)
                fs::copy_file(program, place);
        }
    }
    // The monitors go on running when the window ends, so they are ended by their ids.
    void TearDown() override
    {
        if (HasFailure())
            std::cerr << "the program printed:\n" << TempFolder::read(folder / "vardelin.log");
        screen.reset();
        for (const pid_t id : programs())
            ::kill(id, SIGTERM);
    }
    // The processes whose program lies in the application folder and has this name, if one is
    // given.
    std::vector<pid_t> programs(std::string_view name = {}) const
    {
        std::vector<pid_t> ids;
        for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
            std::error_code gone;
            const fs::path program = fs::read_symlink(entry.path() / "exe", gone);
            if (!gone && program.string().starts_with(app + "/") &&
                (name.empty() || program.filename() == name))
                ids.push_back(std::stoi(entry.path().filename().string()));
        }
        return ids;
    }

    Ran ctl(const std::vector<std::string>& arguments)
    {
        std::string command = shellWord(VARDELINCTL) + " --app " + shellWord(app);
        for (const std::string& argument : arguments)
            command += " " + shellWord(argument);
        Ran ran;
        ran.out = shell(command + " 2> " + shellWord(folder / "stderr"), &ran.code);
        ran.err = TempFolder::read(folder / "stderr");
        return ran;
    }
    std::unique_ptr<Process> startProgram()
    {
        std::vector<std::string> command{app + "/vardelin"};
        // A person may not read everything, as root may.
        if (::geteuid() == 0)
            command.insert(command.begin(),
                           {"setpriv", "--bounding-set", "-dac_override,-dac_read_search"});
        return std::make_unique<Process>(command, folder / "vardelin.log");
    }
    // How often a procedure began or ended, as the program's run log counts it.
    int traced(std::string_view procedure) const
    {
        constexpr std::size_t kRecord = 128;
        const std::string log = TempFolder::read(app + "/vardelin_Log_File.txt");
        int count = 0;
        for (std::size_t at = kRecord; at + kRecord <= log.size(); at += kRecord) {
            const std::string name = log.substr(at + 8, 40);
            if (name.substr(0, name.find_last_not_of(' ') + 1) == procedure)
                count += std::atoi(log.substr(at + 96, 10).c_str());
        }
        return count;
    }
    // Runs `act`, and waits until `procedure` has begun and ended once more.
    void expectRun(const std::string& procedure, const std::function<void()>& act)
    {
        constexpr int kStartAndEnd = 2;
        const int before = traced(procedure);
        act();
        waitUntil(procedure, [&] { return traced(procedure) >= before + kStartAndEnd; });
    }
    // In the tree: from the open folder's row to the one in it of this name, by its first letter.
    static void goTo(const std::string& parent, const std::string& name)
    {
        const auto lower = [](char c) {
            return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        };
        int before = 0; // rows above it that begin likewise
        for (const fs::directory_entry& entry : fs::directory_iterator(parent)) {
            const std::string other = entry.path().filename().string();
            if (entry.is_directory() && lower(other.front()) == lower(name.front()) &&
                std::lexicographical_compare(other.begin(), other.end(), name.begin(), name.end(),
                                             [&](char a, char b) { return lower(a) < lower(b); }))
                ++before;
        }
        // What is typed within this time continues the name that was typed last.
        constexpr auto kSearchEnds = std::chrono::milliseconds(500);
        std::this_thread::sleep_for(kSearchEnds);
        for (int i = 0; i <= before; ++i)
            Screen::type(name.substr(0, 1));
    }
    void openFolder()
    {
        expectRun("tvwDirectory_Expand", [] { Screen::key("Right"); });
    }
    // From the drive's row, which has the keyboard.
    void tickFolder(const std::string& path)
    {
        std::string at = "/";
        openFolder();
        for (const fs::path& part : fs::path(path).relative_path()) {
            goTo(at, part.string());
            at = (fs::path(at) / part).string();
            if (at != path)
                openFolder();
        }
        expectRun("tvwDirectory_NodeCheck", [] { Screen::key("space"); });
    }
    // Starts it, and waits until it shows the profile of this title.
    std::unique_ptr<Process> startShowing(const std::string& title)
    {
        constexpr int kStartAndEnd = 2;
        const int before = traced("MDIForm_Load");
        auto program = startProgram();
        Screen::waitForTitle(title);
        waitUntil("the end of loading",
                  [&] { return traced("MDIForm_Load") == before + kStartAndEnd; });
        return program;
    }
    void leave(Process& program)
    {
        Screen::key("alt+F4");
        Screen::answer("Vardelin", "alt+y"); // whether to exit really
        EXPECT_EQ(program.wait("the program"), 0) << TempFolder::read(folder / "vardelin.log");
    }

    OddFolder folder;
    std::string app = folder / "app";
    std::string home = folder / "home";
    std::string share = folder / "home/.local/share"; // the desktop's own data
    std::string sources = folder / "sources";
    std::optional<Screen> screen;
};

} // namespace vardelin::test
