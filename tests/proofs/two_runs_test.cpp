#include "e2e/program.h"
#include "proofs/disk_world.h"
#include "proofs/seed.h"
#include "proofs/snapshot.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

// Two runs on one archive: one of them works and the other is told so, and what a run that died
// left behind stops nobody.
namespace vardelin::proofs {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBusy = "another program is using this folder";

enum class Operation : std::uint8_t { Backup, Restore, Verify, Prune };
constexpr std::array kOperations{Operation::Backup, Operation::Restore, Operation::Verify,
                                 Operation::Prune};

class HookedEvents final : public engine::EngineEvents {
public:
    explicit HookedEvents(const std::function<void()>& hook) : m_hook(hook) {}
    void ProStatus(double) override { m_hook(); }
    void FileProStatus(std::string_view) override { m_hook(); }

private:
    const std::function<void()>& m_hook;
};

// Three files with three versions each, of which a changed profile keeps one; two files changed.
class Busy : public engine::World {
public:
    Busy()
    {
        for (int version = 1; version <= 3; ++version) {
            for (const char* name : {"a.txt", "b.txt", "sub\\c.txt"})
                write(name, std::string(static_cast<std::size_t>(version), 'x') + name);
            backup();
            ports.clock.advance(std::chrono::hours(24));
        }
        engine::ProfileText text;
        text.retention = 6;
        text.retentionCount = 1;
        setProfile(text);
        write("a.txt", "the fourth");
        write("sub\\c.txt", "the fourth of c");
    }

    // `during` runs inside every event of the operation.
    void run(Operation operation, const std::string& location, const std::function<void()>& during)
    {
        HookedEvents hooked(during);
        engine::Engine engine(machine, engine::kApp, hooked);
        const std::string profile = engine::kProfiles + "Work.vdp";
        const auto each = [&](std::string_view) {
            during();
            return true;
        };
        switch (operation) {
        case Operation::Backup: {
            engine::TruthValue success = engine::kFalse;
            engine.EngineBackup(engine::kProfiles, "Work.vdp", success);
            break;
        }
        case Operation::Restore: {
            base::TextCollection all(base::KeyRule::Exact);
            all.tryAdd("C:\\data\\", "C:\\data\\");
            engine.EngineRestore(engine::kProfiles, "Work.vdp", all, location, "NULL");
            break;
        }
        case Operation::Verify:
            EXPECT_TRUE(engine::verifyArchive(machine, profile, 100, each).damaged.empty());
            break;
        case Operation::Prune:
            engine::pruneArchive(machine, engine::kApp, profile, each);
            break;
        }
    }
    // Everything that a run may write, the logs too.
    std::map<std::string, std::string> everything()
    {
        std::map<std::string, std::string> result;
        for (const char* folder : {"C:\\app", "D:\\store", "C:\\out", "C:\\other"}) {
            if (!ports.fileSystem.find(folder))
                continue;
            for (auto& [path, content] : tree(folder))
                result.emplace(std::string(folder) + "\\" + path, std::move(content));
        }
        return result;
    }
};

TEST(TwoRuns, TheSecondIsRefusedAndTheFirstIsNotTouched)
{
    for (const Operation first : kOperations) {
        Busy undisturbed;
        undisturbed.run(first, "C:\\out", [] {});
        for (const Operation second : kOperations) {
            SCOPED_TRACE(std::to_string(static_cast<int>(first)) + " and " +
                         std::to_string(static_cast<int>(second)));
            Busy world;
            int refused = 0;
            world.run(first, "C:\\out", [&] {
                try {
                    world.run(second, "C:\\other", [] {});
                    ADD_FAILURE() << "it ran";
                } catch (const base::RuntimeError& error) {
                    EXPECT_EQ(error.number(), base::error_number::kPermissionDenied);
                    EXPECT_EQ(error.reason(), kBusy);
                    ++refused;
                }
            });
            EXPECT_GT(refused, 0);
            EXPECT_EQ(world.everything(), undisturbed.everything());
            EXPECT_NO_THROW(world.run(second, "C:\\other", [] {}));
        }
    }
}

// The program as a process that the test can stop, continue and kill.
class Process {
public:
    explicit Process(std::vector<std::string> arguments)
    {
        std::vector<char*> words;
        words.reserve(arguments.size() + 1);
        for (std::string& argument : arguments)
            words.push_back(argument.data());
        words.push_back(nullptr);
        if (::posix_spawn(&m_id, words.front(), nullptr, nullptr, words.data(), environ) != 0)
            throw std::runtime_error("the program does not start");
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process()
    {
        if (m_id != 0) {
            ::kill(m_id, SIGKILL);
            wait();
        }
    }

    pid_t id() const { return m_id; }
    void stop() const
    {
        ::kill(m_id, SIGSTOP);
        siginfo_t info{};
        ::waitid(P_PID, static_cast<id_t>(m_id), &info, WSTOPPED | WEXITED | WNOWAIT);
    }
    void signal(int number) const { ::kill(m_id, number); }
    bool runs() const
    {
        siginfo_t info{};
        return ::waitid(P_PID, static_cast<id_t>(m_id), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               info.si_pid == 0;
    }
    // Its exit code, or 128 and the signal.
    int wait()
    {
        int status = 0;
        ::waitpid(m_id, &status, 0);
        m_id = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    pid_t m_id = 0;
};

class TwoProcesses : public testing::Test {
protected:
    TwoProcesses()
    {
        Random random(7);
        for (const char* name : {"sources/film1.raw", "sources/film2.raw", "sources/sub/film3.raw"})
            world.write(name, random.bytes(8'000'000));
    }

    std::string archive() const { return world.destination + "/Home"; }
    // Of copies; the marker of the run is made through one, too.
    std::size_t temporaries() const
    {
        std::size_t count = 0;
        std::error_code ignored;
        for (fs::recursive_directory_iterator at(archive() + "/C", ignored), end; at != end;
             at.increment(ignored))
            count += at->path().extension() == ".tmp" ? 1U : 0U;
        return count;
    }
    // A backup in its midst: the first copy is being written, and the process stands.
    std::unique_ptr<Process> stoppedBackup() const
    {
        auto process = std::make_unique<Process>(
            std::vector<std::string>{VARDELINCTL, "--app", world.app, "--quiet", "backup", "Home"});
        do {
            process->signal(SIGCONT);
            while (process->runs() && temporaries() == 0)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            process->stop();
        } while (process->runs() && temporaries() == 0);
        EXPECT_TRUE(process->runs());
        EXPECT_GT(temporaries(), 0U);
        EXPECT_TRUE(fs::exists(archive() + "/~run"));
        return process;
    }
    // Restores the newest copy of everything elsewhere and compares.
    void expectRestorable() const
    {
        EXPECT_EQ(world.run({"verify", "Home"}).code, 0);
        const std::string target = world.folder / "target";
        const test::Ran ran = world.run({"restore", "Home", "--all", "--to", target});
        EXPECT_EQ(ran.code, 0) << ran.err;
        int code = -1;
        const std::string sources = test::shellWord(world.sources);
        const std::string restored = test::shellWord(target + "/C" + world.sources);
        EXPECT_EQ(test::shell("diff -r " + sources + " " + restored, &code), "");
        EXPECT_EQ(code, 0);
    }

    test::World world;
};

TEST_F(TwoProcesses, TheSecondIsToldThatTheArchiveIsInUse)
{
    const auto first = stoppedBackup();
    const Snapshot before = snapshotOf(archive());
    const auto expectRefused = [&] {
        for (const std::vector<std::string>& command :
             {std::vector<std::string>{"backup", "Home"},
              {"verify", "Home"},
              {"prune", "Home"},
              {"restore", "Home", "--all", "--to", world.folder / "other"}}) {
            const test::Ran ran = world.run(command);
            EXPECT_EQ(ran.code, 3) << command.front();
            EXPECT_NE(ran.err.find(kBusy), std::string::npos) << ran.err;
            EXPECT_NE(ran.err.find("backups"), std::string::npos) << ran.err;
        }
    };
    expectRefused();
    EXPECT_EQ(differenceOf(before, snapshotOf(archive())), "");
    // What holds the archive is the open folder, not the file that tells of a run.
    fs::remove(archive() + "/~run");
    expectRefused();
    first->signal(SIGCONT);
    EXPECT_EQ(first->wait(), 0);
    EXPECT_EQ(temporaries(), 0U);
    const std::string other = world.folder / "other";
    EXPECT_TRUE(!fs::exists(other) || fs::is_empty(other));
    expectRestorable();
}

TEST_F(TwoProcesses, AKilledRunIsCompletedByTheNext)
{
    auto first = stoppedBackup();
    first->signal(SIGKILL);
    EXPECT_EQ(first->wait(), 128 + SIGKILL);
    EXPECT_GT(temporaries(), 0U);
    const test::Ran next = world.run({"backup", "Home"});
    EXPECT_EQ(next.code, 0) << next.err;
    EXPECT_EQ(temporaries(), 0U);
    EXPECT_FALSE(fs::exists(archive() + "/~run"));
    expectRestorable();
}

// A process id may be given anew, to the very process that asks.
TEST(StaleRunMarker, DoesNotBlockWhateverItHolds)
{
    DiskWorld world;
    world.write("data/a.txt", "a");
    world.backup();
    for (const std::string& left :
         {std::string(), std::to_string(::getpid()), std::string("1"), std::string(5000, '9')}) {
        world.write("store/Work/~run", left);
        world.write("store/Work/C/data/~0123456789abcdef.tmp", "half a copy");
        world.write("data/a.txt", "a" + left);
        EXPECT_EQ(world.backup().outcome,
                  left.empty() ? engine::Outcome::NothingToDo : engine::Outcome::Complete);
        EXPECT_FALSE(fs::exists(world.native("store/Work/~run")));
        EXPECT_FALSE(fs::exists(world.native("store/Work/C/data/~0123456789abcdef.tmp")));
        EXPECT_TRUE(world.verify().damaged.empty());
    }
    const auto held = world.files.lockFolder(kStoreRoot);
    EXPECT_THROW(world.backup(), base::RuntimeError);
}

} // namespace
} // namespace vardelin::proofs
