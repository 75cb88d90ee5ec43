#include "base/runtime_error.h"
#include "platform/linux/linux_instance_lock.h"
#include "platform/memory/memory_instance_lock.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace vardelin::platform {
namespace {

TEST(InstanceLock, IsHeldByOneAndFreeAfterIt)
{
    const test::TempFolder folder;
    const std::string file = windowLockFile(folder.path());
    EXPECT_EQ(file, folder / ".lock");
    auto first = std::make_unique<LinuxInstanceLock>(file);
    LinuxInstanceLock second(file);
    EXPECT_TRUE(first->acquire());
    EXPECT_TRUE(first->acquire()) << "asked again, the holder still holds";
    EXPECT_FALSE(second.acquire());
    first.reset();
    EXPECT_TRUE(second.acquire());
}

TEST(InstanceLock, IsOneAProgramAndAFolder)
{
    const test::TempFolder folder;
    LinuxInstanceLock window(windowLockFile(folder.path()));
    LinuxInstanceLock monitor(programLockFile(folder.path(), "VDFileMon"));
    LinuxInstanceLock other(programLockFile(folder.path(), "VDIdleMon"));
    EXPECT_TRUE(window.acquire());
    EXPECT_TRUE(monitor.acquire());
    EXPECT_TRUE(other.acquire());
}

// A process that dies by force must not keep the next one out.
TEST(InstanceLock, GoesWithItsProcessHoweverThatEnds)
{
    const test::TempFolder folder;
    const std::string file = windowLockFile(folder.path());
    int ready[2] = {-1, -1};
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        LinuxInstanceLock held(file);
        const char answer = held.acquire() ? '1' : '0';
        if (::write(ready[1], &answer, 1) != 1)
            ::_exit(1);
        for (;;)
            ::pause();
    }
    char answer = 0;
    EXPECT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, '1');
    LinuxInstanceLock lock(file);
    EXPECT_FALSE(lock.acquire());
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(lock.acquire());
    ::close(ready[0]);
    ::close(ready[1]);
}

// What the holder starts lives longer than the holder, and is another program.
TEST(InstanceLock, IsNotInheritedByStartedPrograms)
{
    const test::TempFolder folder;
    const std::string file = windowLockFile(folder.path());
    auto held = std::make_unique<LinuxInstanceLock>(file);
    ASSERT_TRUE(held->acquire());
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl("/bin/sleep", "sleep", "60", static_cast<char*>(nullptr));
        ::_exit(127);
    }
    const std::string exe = "/proc/" + std::to_string(child) + "/cmdline";
    for (int i = 0; i < 500 && !test::TempFolder::read(exe).starts_with("sleep"); ++i)
        ::usleep(10'000);
    held.reset();
    LinuxInstanceLock next(file);
    EXPECT_TRUE(next.acquire());
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

TEST(InstanceLock, NamesTheFileThatCannotBeMade)
{
    const test::TempFolder folder;
    const std::string file = windowLockFile(folder / "missing");
    LinuxInstanceLock lock(file);
    try {
        lock.acquire();
        ADD_FAILURE() << "no error";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), base::error_number::kPathNotFound);
        EXPECT_EQ(error.subject(), file);
    }
}

TEST(MemoryInstanceLock, FollowsTheTest)
{
    MemoryInstanceLock lock;
    lock.heldElsewhere = true;
    EXPECT_FALSE(lock.acquire());
    lock.heldElsewhere = false;
    EXPECT_TRUE(lock.acquire());
    lock.heldElsewhere = true;
    EXPECT_TRUE(lock.acquire()) << "the holder still holds";
}

} // namespace
} // namespace vardelin::platform
