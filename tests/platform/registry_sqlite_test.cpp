#include "base/runtime_error.h"
#include "platform/linux/sqlite_registry.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// What only the store in a file has to answer for: other processes, crashes and damage.
namespace vardelin::platform {
namespace {

constexpr auto kMachine = RegistryRoot::LocalMachine;

class SqliteRegistryTest : public testing::Test {
protected:
    test::TempFolder folder;
    std::string path = folder / "registry.db";
};

// Runs `work` in another process, which ends without a word to this one's objects.
pid_t startOtherProcess(const std::function<int()>& work)
{
    const pid_t child = ::fork();
    if (child == 0) {
        int code = 99;
        try {
            code = work();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s\n", error.what());
            code = 98;
        }
        ::_exit(code);
    }
    return child;
}

// Its exit code, or the negative number of the signal that ended it.
int waitFor(pid_t child)
{
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

int inOtherProcess(const std::function<int()>& work)
{
    return waitFor(startOtherProcess(work));
}

base::RuntimeError errorOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const base::RuntimeError& error) {
        return error;
    }
    return base::RuntimeError(0);
}

void runSql(const std::string& path, const char* sql)
{
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
}

TEST_F(SqliteRegistryTest, MakesNoFileByReading)
{
    SqliteRegistry registry(path);
    EXPECT_FALSE(registry.keyExists(kMachine, "K"));
    EXPECT_FALSE(registry.deleteKey(kMachine, "K"));
    EXPECT_FALSE(registry.deleteValue(kMachine, "K", "v"));
    EXPECT_FALSE(std::filesystem::exists(path));
    registry.createKey(kMachine, "K");
    EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(SqliteRegistryTest, KeepsEverythingFromOneStartToTheNext)
{
    {
        SqliteRegistry registry(path);
        registry.setString(kMachine, "Software\\K", "Name", "text");
    }
    SqliteRegistry registry(path);
    EXPECT_EQ(registry.stringValue(kMachine, "SOFTWARE\\k", "NAME"), "text");
    EXPECT_THAT(registry.subKeys(kMachine, ""), testing::ElementsAre("Software"));
}

TEST_F(SqliteRegistryTest, LeavesOneFileAtRest)
{
    SqliteRegistry registry(path);
    registry.setString(kMachine, "K", "v", "1");
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, testing::ElementsAre("registry.db"));
}

TEST_F(SqliteRegistryTest, SeesWhatAnotherProcessWrites)
{
    SqliteRegistry registry(path);
    registry.setString(kMachine, "K", "mine", "1");
    EXPECT_EQ(inOtherProcess([&] {
                  SqliteRegistry other(path);
                  other.setString(kMachine, "K", "theirs", "2");
                  return other.stringValue(kMachine, "K", "mine") == "1" ? 0 : 1;
              }),
              0);
    EXPECT_EQ(registry.stringValue(kMachine, "K", "theirs"), "2");
}

TEST_F(SqliteRegistryTest, SeesAFileThatAnotherProcessMakesLater)
{
    SqliteRegistry registry(path);
    EXPECT_FALSE(registry.keyExists(kMachine, "K"));
    EXPECT_EQ(inOtherProcess([&] {
                  SqliteRegistry(path).createKey(kMachine, "K");
                  return 0;
              }),
              0);
    EXPECT_TRUE(registry.keyExists(kMachine, "K"));
}

TEST_F(SqliteRegistryTest, LosesNoChangeWhenTwoProcessesCountUpOneValue)
{
    constexpr int kEach = 40;
    const auto countUp = [&] {
        SqliteRegistry registry(path);
        for (int i = 0; i < kEach; ++i) {
            registry.transaction([&] {
                const auto text = registry.stringValue(kMachine, "Shared", "count");
                const int next = std::stoi(text.value_or("0")) + 1;
                registry.setString(kMachine, "Shared", "count", std::to_string(next));
            });
        }
        return 0;
    };
    // Neither has made the file, so that making it is part of the race.
    const pid_t other = startOtherProcess(countUp);
    countUp();
    EXPECT_EQ(waitFor(other), 0);
    EXPECT_EQ(SqliteRegistry(path).stringValue(kMachine, "Shared", "count"),
              std::to_string(2 * kEach));
}

TEST_F(SqliteRegistryTest, UndoesTheTransactionOfAProcessThatDied)
{
    SqliteRegistry registry(path);
    registry.setString(kMachine, "K", "v", "before");
    EXPECT_EQ(inOtherProcess([&] {
                  SqliteRegistry other(path);
                  other.transaction([&] {
                      other.setString(kMachine, "K", "v", "half");
                      // Enough that pages go to the file before the end of the transaction.
                      for (int i = 0; i < 400; ++i)
                          other.setString(kMachine, "Big\\" + std::to_string(i), "v",
                                          std::string(20'000, 'x'));
                      ::raise(SIGKILL);
                  });
                  return 0;
              }),
              -SIGKILL);
    EXPECT_EQ(registry.stringValue(kMachine, "K", "v"), "before");
    EXPECT_FALSE(registry.keyExists(kMachine, "Big"));
    registry.setString(kMachine, "K", "v", "after");
    EXPECT_EQ(SqliteRegistry(path).stringValue(kMachine, "K", "v"), "after");
}

TEST_F(SqliteRegistryTest, MakesTheTablesInAFileLeftEmpty)
{
    // A process may die between making the file and making the tables.
    folder.write("registry.db", "");
    SqliteRegistry registry(path);
    EXPECT_FALSE(registry.keyExists(kMachine, "K"));
    registry.createKey(kMachine, "K");
    EXPECT_TRUE(registry.keyExists(kMachine, "K"));
}

TEST_F(SqliteRegistryTest, NamesADamagedFileAndDoesNotTouchIt)
{
    const std::string bytes = "this is no database, but a person's text\n" + std::string(4096, '#');
    folder.write("registry.db", bytes);
    SqliteRegistry registry(path);
    for (const auto& call : std::vector<std::function<void()>>{
             [&] { registry.keyExists(kMachine, "K"); }, [&] { registry.createKey(kMachine, "K"); },
             [&] { registry.transaction([] {}); }}) {
        const base::RuntimeError error = errorOf(call);
        EXPECT_EQ(error.number(), base::error_number::kDeviceIo);
        EXPECT_EQ(error.subject(), path);
        EXPECT_EQ(error.reason(), "file is not a database");
    }
    EXPECT_EQ(test::TempFolder::read(path), bytes);
}

TEST_F(SqliteRegistryTest, RefusesAStoreWithDamagedPagesAsAWhole)
{
    {
        SqliteRegistry registry(path);
        for (int i = 0; i < 200; ++i)
            registry.setString(kMachine, "K\\" + std::to_string(i), "v", std::string(500, 'x'));
    }
    std::string bytes = test::TempFolder::read(path);
    ASSERT_GT(bytes.size(), 8 * 4096U);
    for (std::size_t page = 2; page < 6; ++page)
        bytes.replace(page * 4096, 64, 64, '\xA5');
    folder.write("registry.db", bytes);
    SqliteRegistry registry(path);
    const base::RuntimeError error =
        errorOf([&] { registry.setString(kMachine, "New", "v", "1"); });
    EXPECT_EQ(error.number(), base::error_number::kDeviceIo);
    EXPECT_EQ(error.subject(), path);
    EXPECT_FALSE(error.reason().empty());
    EXPECT_EQ(test::TempFolder::read(path), bytes);
}

TEST_F(SqliteRegistryTest, RefusesTheDatabaseOfAnotherProgram)
{
    runSql(path, "CREATE TABLE theirs(x); INSERT INTO theirs VALUES(1)");
    const std::string bytes = test::TempFolder::read(path);
    SqliteRegistry registry(path);
    const base::RuntimeError error = errorOf([&] { registry.createKey(kMachine, "K"); });
    EXPECT_EQ(error.number(), base::error_number::kDeviceIo);
    EXPECT_EQ(error.reason(), "the file is a database of another program");
    EXPECT_EQ(test::TempFolder::read(path), bytes);
}

TEST_F(SqliteRegistryTest, RefusesAStoreOfALaterForm)
{
    SqliteRegistry(path).createKey(kMachine, "K");
    runSql(path, "PRAGMA user_version=2");
    SqliteRegistry registry(path);
    const base::RuntimeError error = errorOf([&] { registry.keyExists(kMachine, "K"); });
    EXPECT_EQ(error.number(), base::error_number::kDeviceIo);
    EXPECT_EQ(error.reason(), "the store has form 2, this program knows form 1");
}

TEST_F(SqliteRegistryTest, NamesTheMissingFolderOfANewStore)
{
    const std::string inside = folder / "missing/registry.db";
    SqliteRegistry registry(inside);
    EXPECT_FALSE(registry.keyExists(kMachine, "K"));
    const base::RuntimeError error = errorOf([&] { registry.createKey(kMachine, "K"); });
    EXPECT_EQ(error.number(), base::error_number::kDeviceIo);
    EXPECT_EQ(error.subject(), inside);
    EXPECT_THAT(error.reason(), testing::HasSubstr("No such file or directory"));
}

TEST_F(SqliteRegistryTest, RaisesPermissionDeniedWhereTheFileMayOnlyBeRead)
{
    SqliteRegistry(path).setString(kMachine, "K", "v", "1");
    // Another user's rights, so that the test means the same when the superuser runs it.
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    EXPECT_EQ(inOtherProcess([&] {
                  if (::geteuid() == 0 && ::setuid(65534) != 0)
                      return 1;
                  SqliteRegistry registry(path);
                  if (registry.stringValue(kMachine, "K", "v") != "1")
                      return 2;
                  const auto error = errorOf([&] { registry.setString(kMachine, "K", "v", "2"); });
                  return error.number() == base::error_number::kPermissionDenied ? 0 : 3;
              }),
              0);
    EXPECT_EQ(SqliteRegistry(path).stringValue(kMachine, "K", "v"), "1");
}

TEST_F(SqliteRegistryTest, GivesUpAfterFiveSecondsWhileAnotherHoldsTheStore)
{
    SqliteRegistry holder(path);
    SqliteRegistry registry(path);
    registry.createKey(kMachine, "K");
    holder.transaction([&] {
        holder.createKey(kMachine, "Held");
        const auto start = std::chrono::steady_clock::now();
        const auto error = errorOf([&] { registry.createKey(kMachine, "L"); });
        const auto waited = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(error.number(), base::error_number::kPermissionDenied);
        EXPECT_EQ(error.reason(), "another process holds the store; waited 5 seconds");
        EXPECT_GE(waited, std::chrono::milliseconds(4900));
        EXPECT_LT(waited, std::chrono::seconds(10));
    });
    EXPECT_FALSE(registry.keyExists(kMachine, "L"));
    EXPECT_TRUE(registry.keyExists(kMachine, "Held"));
}

} // namespace
} // namespace vardelin::platform
