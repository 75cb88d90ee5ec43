#include "monitors/monitor.h"
#include "platform/linux/linux_file_system.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/sqlite_registry.h"
#include "program.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

// The programs in the background, as processes in an application folder of their own.
namespace vardelin::test {
namespace {

constexpr std::string_view kMonitors[] = {"VDFileMon", "VDIdleMon", "VDScheduleMon"};

// Each test waits for what another process does, this long at most.
constexpr int kTries = 3000;
constexpr useconds_t kPause = 10'000;

template <typename Condition>
bool comesTrue(const Condition& condition)
{
    for (int i = 0; i < kTries; ++i) {
        if (condition())
            return true;
        ::usleep(kPause);
    }
    return false;
}

struct MonitorWorld {
    World world{false};

    MonitorWorld()
    {
        // A link would be followed to the folder of the build.
        for (const std::string_view name : kMonitors)
            std::filesystem::copy_file(std::string(VARDELIN_MONITORS) + "/" + std::string(name),
                                       program(name));
    }
    ~MonitorWorld()
    {
        for (const std::string_view name : kMonitors) {
            if (const auto id = registered(name))
                ::kill(static_cast<pid_t>(*id), SIGKILL);
        }
    }
    MonitorWorld(const MonitorWorld&) = delete;
    MonitorWorld& operator=(const MonitorWorld&) = delete;

    std::string program(std::string_view name) const { return world.app + "/" + std::string(name); }
    std::optional<std::int64_t> registered(std::string_view name) const
    {
        platform::SqliteRegistry registry(world.app + "/Data/registry.db");
        return monitors::registeredProcess(registry, name);
    }
    bool isRegistered(std::string_view name, pid_t id) const
    {
        return comesTrue([&] { return registered(name) == id; });
    }
    std::string log(std::string_view name) const
    {
        return world.read("app/Log/" + std::string(name) + ".log");
    }
    pid_t start(std::string_view name) const
    {
        const std::string path = program(name);
        const pid_t id = ::fork();
        if (id == 0) {
            ::execl(path.c_str(), path.c_str(), static_cast<char*>(nullptr));
            ::_exit(127);
        }
        return id;
    }
    static int exitCode(pid_t id)
    {
        int status = 0;
        ::waitpid(id, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
};

TEST(Monitors, RunOnceRegisterAndEndCleanlyAtASignal)
{
    const struct {
        std::string_view name;
        int signal;
        std::string_view reason;
    } rows[] = {{"VDFileMon", SIGTERM, "SIGTERM"},
                {"VDIdleMon", SIGINT, "SIGINT"},
                {"VDScheduleMon", SIGHUP, "SIGHUP"}};
    const MonitorWorld monitors;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const pid_t first = monitors.start(row.name);
        ASSERT_TRUE(monitors.isRegistered(row.name, first));

        EXPECT_EQ(MonitorWorld::exitCode(monitors.start(row.name)), 0) << "a second one ends";
        EXPECT_EQ(monitors.registered(row.name), first) << "and leaves the first one's entry";

        ::kill(first, row.signal);
        EXPECT_EQ(MonitorWorld::exitCode(first), 0);
        EXPECT_EQ(monitors.registered(row.name), std::nullopt);
        const std::string log = monitors.log(row.name);
        EXPECT_NE(log.find(" started, process " + std::to_string(first) + "\r\n"),
                  std::string::npos)
            << log;
        EXPECT_TRUE(log.ends_with(" ended by " + std::string(row.reason) + "\r\n")) << log;
    }
}

TEST(Monitors, StartAgainAfterADeathByForce)
{
    const MonitorWorld monitors;
    const pid_t first = monitors.start("VDIdleMon");
    ASSERT_TRUE(monitors.isRegistered("VDIdleMon", first));
    ::kill(first, SIGKILL);
    MonitorWorld::exitCode(first);
    EXPECT_EQ(monitors.registered("VDIdleMon"), first) << "nobody took the entry away";
    const pid_t second = monitors.start("VDIdleMon");
    EXPECT_TRUE(monitors.isRegistered("VDIdleMon", second));
    ::kill(second, SIGTERM);
    EXPECT_EQ(MonitorWorld::exitCode(second), 0);
}

// The window starts them and ends long before they do.
TEST(Monitors, OutliveTheirStarter)
{
    const MonitorWorld monitors;
    const pid_t starter = ::fork();
    if (starter == 0) {
        platform::LinuxFileSystem fileSystem(std::make_shared<const platform::DriveMap>(
            std::vector<platform::DriveRoot>{{'C', "/"}}));
        platform::LinuxProcesses processes(fileSystem);
        processes.start(World::drive(monitors.program("VDFileMon")) + ".exe", {},
                        platform::WindowStyle::MinimizedWithFocus);
        ::_exit(0);
    }
    EXPECT_EQ(MonitorWorld::exitCode(starter), 0);
    ASSERT_TRUE(comesTrue([&] { return monitors.registered("VDFileMon").has_value(); }));
    const auto id = static_cast<pid_t>(monitors.registered("VDFileMon").value_or(0));
    EXPECT_EQ(::kill(id, 0), 0);
    EXPECT_EQ(::getsid(id), id) << "no terminal's end is its own";
    ::kill(id, SIGTERM);
    EXPECT_TRUE(comesTrue([&] { return !monitors.registered("VDFileMon").has_value(); }));
}

// In a folder where none of this was laid out there is no registry to register in.
TEST(Monitors, SayWhyTheyCannotRun)
{
    const TempFolder folder;
    const std::string path = folder / "VDFileMon";
    std::filesystem::copy_file(std::string(VARDELIN_MONITORS) + "/VDFileMon", path);
    std::filesystem::create_directories(folder / "Log");
    int code = -1;
    shell(shellWord(path) + " 2> " + shellWord(folder / "stderr"), &code);
    EXPECT_EQ(code, 1);
    EXPECT_NE(TempFolder::read(folder / "Log/VDFileMon.log").find(" cannot run: "),
              std::string::npos);
}

} // namespace
} // namespace vardelin::test
