#include "base/runtime_error.h"
#include "platform/linux/console_message_boxes.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_machine.h"
#include "platform/linux/null_message_loop.h"
#include "platform/memory/memory_machine.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <sstream>
#include <string>
#include <unistd.h>

namespace vardelin::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kSecond = 1'000'000'000;

struct Zone {
    explicit Zone(const char* name) { ::setenv("TZ", name, 1); }
    ~Zone()
    {
        ::unsetenv("TZ");
        ::tzset();
    }
};

TEST(LinuxClock, ShowsAndFindsTheSameInstants)
{
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    LinuxClock clock;
    const struct {
        std::int64_t seconds;
        base::DateTime local;
    } rows[] = {
        {0, {{1970, 1, 1}, {1, 0, 0}}},
        {-1, {{1970, 1, 1}, {0, 59, 59}}},
        {1'057'219'503, {{2003, 7, 3}, {10, 5, 3}}},
        {1'711'846'799, {{2024, 3, 31}, {1, 59, 59}}},
        {1'711'846'800, {{2024, 3, 31}, {3, 0, 0}}},
        // 2:30 shows twice in this night; the earlier one counts.
        {1'729'989'000, {{2024, 10, 27}, {2, 30, 0}}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(clock.toLocal(row.seconds * kSecond), row.local) << row.seconds;
        EXPECT_EQ(clock.fromLocal(row.local), row.seconds * kSecond) << row.seconds;
    }
    EXPECT_EQ(clock.toLocal((1'729'989'000 + 3600) * kSecond),
              (base::DateTime{{2024, 10, 27}, {2, 30, 0}}));
    EXPECT_EQ(clock.toLocal(-1), (base::DateTime{{1970, 1, 1}, {0, 59, 59}})) << "cut to the past";
}

TEST(LinuxClock, PutsATimeThatIsSkippedBehindTheGap)
{
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    LinuxClock clock;
    const auto instant = clock.fromLocal({{2024, 3, 31}, {2, 30, 0}});
    EXPECT_EQ(clock.toLocal(instant), (base::DateTime{{2024, 3, 31}, {3, 30, 0}}));
}

TEST(LinuxClock, GoesWithTheSystem)
{
    LinuxClock clock;
    const std::int64_t seconds = clock.nowNs() / kSecond;
    EXPECT_NEAR(static_cast<double>(seconds), static_cast<double>(std::time(nullptr)), 2.0);
    const auto before = clock.steady();
    EXPECT_GE(clock.steady(), before);
}

TEST(MemoryClock, StandsStillUntilItIsMoved)
{
    MemoryClock clock;
    EXPECT_EQ(clock.now(), (base::DateTime{{2003, 7, 3}, {9, 5, 3}}));
    EXPECT_EQ(clock.now(), (base::DateTime{{2003, 7, 3}, {9, 5, 3}}));
    clock.advance(std::chrono::hours(15));
    EXPECT_EQ(clock.now(), (base::DateTime{{2003, 7, 4}, {0, 5, 3}}));
    EXPECT_EQ(clock.steady(), std::chrono::hours(15));
    clock.setZoneOffset(std::chrono::minutes(-330));
    EXPECT_EQ(clock.now(), (base::DateTime{{2003, 7, 3}, {18, 35, 3}}));
    EXPECT_EQ(clock.fromLocal(clock.now()), clock.nowNs());
    EXPECT_EQ(clock.toLocal(-1), (base::DateTime{{1969, 12, 31}, {18, 29, 59}}));
}

TEST(LinuxShell, KnowsTypesByTheMimeDatabase)
{
    test::TempFolder data;
    data.write("own/mime/globs2", "60:text/x-own:*.own\n50:text/plain:*.dup\n");
    data.write("own/mime/text/x-own.xml", "<comment xml:lang=\"de\">Eigenes</comment>"
                                          "<comment>my &lt;own&gt; &amp; text</comment>");
    data.write("shared/mime/globs2", "# comment\n"
                                     "80:text/html:*.html\n"
                                     "50:image/x-low:*.html\n"
                                     "50:image/x-low:*.dup\n"
                                     "50:text/x-c++src:*.C:cs\n"
                                     "50:text/x-c++src:*.C\n"
                                     "50:text/x-csrc:*.c\n"
                                     "50:text/x-makefile:makefile\n"
                                     "50:application/x-tar:*.tar.gz\n"
                                     "60:application/x-sharedlib:*.so.[0-9]*\n"
                                     "garbled\n"
                                     "50:text/plain:*.\n");
    data.write("shared/mime/icons", "text/html:html-icon\n");
    data.write("shared/mime/generic-icons", "text/html:generic\ntext/x-csrc:text-x-script\n");
    data.write("shared/mime/text/html.xml", "<comment>HTML document</comment>");
    MemoryFileSystem fileSystem;
    LinuxShell shell(fileSystem,
                     {"/home/anna", "/home/anna/.config", {data / "own", data / "shared"}});
    EXPECT_THAT(shell.extensions(), ElementsAre(".c", ".dup", ".html", ".own"));
    EXPECT_EQ(shell.typeName(".HTML"), "HTML document");
    EXPECT_EQ(shell.typeName(".own"), "My <own> & text");
    EXPECT_EQ(shell.typeName(".none"), "");
    EXPECT_EQ(shell.iconName(".html"), "html-icon");
    EXPECT_EQ(shell.iconName(".c"), "text-x-script");
    EXPECT_EQ(shell.iconName(".dup"), "text-plain") << "the folder that comes first wins";
    EXPECT_EQ(shell.iconName(".none"), "");
}

TEST(LinuxShell, FindsSettingsThatExist)
{
    test::TempFolder home;
    const std::string config = home / ".config";
    for (const char* file :
         {".config/dconf/user", ".config/gtk-3.0/settings.ini", ".config/kdeglobals",
          ".config/plasmarc", ".config/unrelated", "Desk/note.txt",
          ".mozilla/firefox/a.default/places.sqlite",
          ".mozilla/firefox/a.default/bookmarkbackups/1.jsonlz4",
          ".mozilla/firefox/a.default/cache", ".config/chromium/Default/Bookmarks",
          ".thunderbird/p.default/prefs.js", ".thunderbird/p.default/abook-1.sqlite",
          ".thunderbird/p.default/ImapMail/x", ".config/evolution/sources/s.source"})
        home.write(file, "x");
    home.write(".config/user-dirs.dirs", "# made by a program\nXDG_DESKTOP_DIR=\"$HOME/Desk\"\n"
                                         "XDG_DOCUMENTS_DIR=\"/srv/papers/\"\n");
    MemoryFileSystem fileSystem;
    LinuxShell shell(fileSystem, {home.path(), config, {}});
    const std::string drive = fileSystem.fromNative(home.path());
    EXPECT_THAT(shell.settingsPaths("desktop settings"),
                ElementsAre(drive + "\\Desk", drive + "\\.config\\dconf\\user",
                            drive + "\\.config\\gtk-3.0", drive + "\\.config\\kdeglobals",
                            drive + "\\.config\\plasmarc"));
    EXPECT_THAT(shell.settingsPaths("IE Favorites"),
                ElementsAre(drive + "\\.mozilla\\firefox\\a.default\\bookmarkbackups",
                            drive + "\\.mozilla\\firefox\\a.default\\places.sqlite",
                            drive + "\\.config\\chromium\\Default\\Bookmarks"));
    EXPECT_THAT(shell.settingsPaths("Outlook Settings"),
                ElementsAre(drive + "\\.thunderbird\\p.default\\abook-1.sqlite",
                            drive + "\\.thunderbird\\p.default\\prefs.js",
                            drive + "\\.config\\evolution\\sources"));
    EXPECT_THAT(shell.settingsPaths("Registry Settings"), IsEmpty());
    EXPECT_THAT(shell.defaultDocumentLines(), ElementsAre("C:\\srv\\papers\\"));
}

TEST(LinuxShell, DoesNotTakeTheHomeFolderForTheDesktop)
{
    test::TempFolder home;
    home.write(".config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/\"\n");
    MemoryFileSystem fileSystem;
    LinuxShell shell(fileSystem, {home.path(), home / ".config", {}});
    EXPECT_THAT(shell.settingsPaths("Desktop Settings"), IsEmpty());
    EXPECT_THAT(shell.defaultDocumentLines(),
                ElementsAre(fileSystem.fromNative(home.path()) + "\\Documents\\"));
}

TEST(LinuxProcesses, RunsAProgramToItsEnd)
{
    MemoryFileSystem fileSystem;
    LinuxProcesses processes(fileSystem);
    EXPECT_EQ(processes.run({"printf", "%s|%s", "a b", "$HOME"}), "a b|$HOME");
    EXPECT_EQ(processes
                  .run({"C:\\bin\\sh.exe", "-c",
                        "head -c 300000 /dev/zero; head -c 300000 "
                        "/dev/zero >&2"})
                  .size(),
              300'000U);
    const struct {
        std::vector<std::string> command;
        int number;
        std::string reason;
    } rows[] = {
        {{"no-such-program-here"}, base::error_number::kFileNotFound, "No such file or directory"},
        {{"C:\\no\\such\\program.exe"},
         base::error_number::kFileNotFound,
         "No such file or directory"},
        {{"sh", "-c", "echo why >&2; exit 3"}, base::error_number::kDeviceIo, "exit code 3: why\n"},
        {{"sh", "-c", "kill -9 $$"}, base::error_number::kDeviceIo, "signal 9"},
        {{}, base::error_number::kInvalidCall, "no program is named"},
    };
    for (const auto& row : rows) {
        try {
            processes.run(row.command);
            ADD_FAILURE() << row.reason;
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), row.number);
            EXPECT_EQ(error.reason(), row.reason);
        }
    }
}

TEST(LinuxProcesses, StartsListsAndTerminates)
{
    MemoryFileSystem fileSystem;
    LinuxProcesses processes(fileSystem);
    const auto isListed = [&](std::int64_t id) {
        for (const ProcessInfo& each : processes.list()) {
            if (each.id == id)
                return each.name;
        }
        return std::string();
    };
    EXPECT_NE(isListed(::getpid()), "");
    const std::int64_t id = processes.start("C:\\bin\\sleep.exe", {"60"}, WindowStyle::Normal);
    EXPECT_THAT(isListed(id), testing::AnyOf("sleep", "coreutils", "busybox"));
    EXPECT_TRUE(processes.terminate(id));
    for (int i = 0; i < 200 && !isListed(id).empty(); ++i)
        ::usleep(10'000);
    EXPECT_EQ(isListed(id), "");
    EXPECT_THROW(processes.start("C:\\no\\such.exe", {}, WindowStyle::Normal), base::RuntimeError);
    // Numbers that name groups of processes, or everything that there is.
    for (const std::int64_t group : {0, -1, 1, -2})
        EXPECT_FALSE(processes.terminate(group));
}

// The starter runs for weeks; what it started and what has ended must not stay in the system's
// table until the port is used again.
TEST(LinuxProcesses, LeaveNothingOfAProgramThatEnded)
{
    MemoryFileSystem fileSystem;
    LinuxProcesses processes(fileSystem);
    const std::int64_t id = processes.start("C:\\bin\\true.exe", {}, WindowStyle::Normal);
    const auto isThere = [&] { return ::kill(static_cast<pid_t>(id), 0) == 0; };
    for (int i = 0; i < 500 && isThere(); ++i)
        ::usleep(10'000);
    EXPECT_FALSE(isThere());
}

TEST(LinuxMachineFacts, TellWhoAndWhereThisProgramIs)
{
    MemoryFileSystem fileSystem;
    fileSystem.createFolder("C:\\Here");
    LinuxMachineFacts facts(fileSystem);
    EXPECT_EQ(facts.executableName(), "platform_test");
    EXPECT_TRUE(executableFolder().starts_with('/'));
    EXPECT_FALSE(facts.computerName().empty());
    EXPECT_TRUE(facts.isNtPlatform());
    EXPECT_EQ(facts.longPathName("C:\\Here"), "C:\\Here");
    EXPECT_EQ(facts.longPathName("C:\\Missing"), "");
    EXPECT_EQ(facts.hostAddress("127.0.0.1"), (HostAddress{127, 0, 0, 1}));
    EXPECT_EQ(facts.hostAddress(""), std::nullopt);
    EXPECT_EQ(facts.hostAddress(std::string_view("127.0.0.1\0x", 11)), std::nullopt);
}

TEST(ConsoleMessageBoxes, AskOnlyWhereSomebodyCanAnswer)
{
    const struct {
        bool interactive;
        Buttons buttons;
        const char* input;
        Answer answer;
        const char* shown;
    } rows[] = {
        {true, Buttons::Ok, "", Answer::Ok, "Vardelin: text\n"},
        {true, Buttons::OkCancel, "", Answer::Ok, "Vardelin: text\n"},
        {true, Buttons::YesNo, "y\n", Answer::Yes, "Vardelin: text [y/N] "},
        {true, Buttons::YesNo, " YES \n", Answer::Yes, "Vardelin: text [y/N] "},
        {true, Buttons::YesNo, "\n", Answer::No, "Vardelin: text [y/N] "},
        {true, Buttons::YesNo, "", Answer::No, "Vardelin: text [y/N] "},
        {false, Buttons::YesNo, "y\n", Answer::No, "Vardelin: text [no]\n"},
    };
    for (const auto& row : rows) {
        std::istringstream input(row.input);
        std::ostringstream output;
        ConsoleMessageBoxes boxes(input, output, row.interactive);
        EXPECT_EQ(boxes.show("text", "Vardelin", row.buttons, Icon::None), row.answer) << row.shown;
        EXPECT_EQ(output.str(), row.shown);
    }
}

TEST(ScriptedMessageBoxes, RecordAndAnswerByTheScript)
{
    ScriptedMessageBoxes boxes;
    boxes.answers = {Answer::Yes};
    EXPECT_EQ(boxes.show("one", "t", Buttons::YesNo, Icon::Question), Answer::Yes);
    EXPECT_EQ(boxes.show("two", "t", Buttons::YesNo, Icon::None), Answer::No);
    EXPECT_EQ(boxes.show("three", "t", Buttons::Ok, Icon::Critical), Answer::Ok);
    boxes.defaultAnswer = Answer::Cancel;
    EXPECT_EQ(boxes.show("four", "t", Buttons::OkCancel, Icon::None), Answer::Cancel);
    EXPECT_THAT(boxes.texts(), ElementsAre("one", "two", "three", "four"));
    EXPECT_EQ(boxes.shown[0],
              (ScriptedMessageBoxes::Shown{"one", "t", Buttons::YesNo, Icon::Question}));
}

TEST(MemoryMachine, FailsTheCallsOfThePortThatIsMeant)
{
    MemoryMachine memory;
    const Machine machine = memory.machine();
    memory.processes.script().failCall(2, base::error_number::kPermissionDenied);
    EXPECT_EQ(machine.processes.start("C:\\App\\VDSysTray.exe", {"-x"}), 1000);
    EXPECT_THROW(machine.processes.start("C:\\App\\Other.exe", {}), base::RuntimeError);
    EXPECT_THAT(memory.processes.started,
                ElementsAre(MemoryProcesses::Started{"C:\\App\\VDSysTray.exe", {"-x"}}));
    EXPECT_TRUE(machine.processes.terminate(1000));
    EXPECT_FALSE(machine.processes.terminate(1000));
    memory.messageLoop.onYield = [&] { memory.facts.user = "berta"; };
    machine.messageLoop.yield();
    EXPECT_EQ(memory.messageLoop.yields, 1U);
    EXPECT_EQ(machine.facts.userName(), "berta");
    EXPECT_TRUE(machine.drives.exists('d'));
    EXPECT_EQ(machine.drives.typeOf('X'), DriveType::NoRoot);
}

TEST(LinuxMachine, KeepsItsRegistryInTheApplicationFolder)
{
    test::TempFolder app;
    app.write("Data/x", "");
    std::istringstream input;
    std::ostringstream output;
    ConsoleMessageBoxes boxes(input, output, false);
    NullMessageLoop loop;
    LinuxMachine linuxMachine(app.path(), boxes, loop, {});
    const Machine machine = linuxMachine.machine();
    machine.registry.setString(RegistryRoot::CurrentUser, "K", "v", "1");
    EXPECT_TRUE(std::filesystem::exists(app / "Data/registry.db"));
    EXPECT_EQ(machine.fileSystem.toNative(linuxMachine.appPath()), app.path());
    EXPECT_TRUE(machine.drives.exists('C'));
    EXPECT_TRUE(machine.fileSystem.folderExists(linuxMachine.appPath() + "\\Data"));
}

TEST(LinuxMachine, BeginsWithoutAUsableRegistry)
{
    test::TempFolder app;
    app.write("Data/registry.db", "not a database, by any means at all");
    ConsoleMessageBoxes boxes;
    NullMessageLoop loop;
    LinuxMachine linuxMachine(app.path(), boxes, loop, {});
    EXPECT_TRUE(linuxMachine.machine().drives.exists('C'));
    EXPECT_THROW(linuxMachine.machine().registry.keyExists(RegistryRoot::Users, "K"),
                 base::RuntimeError);
}

} // namespace
} // namespace vardelin::platform
