#include "platform/linux/linux_processes.h"

#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace vardelin::platform {
namespace {

namespace number = base::error_number;

[[noreturn]] void raise(int error, const std::string& program)
{
    int code = number::kDeviceIo;
    if (error == ENOENT || error == ENOTDIR)
        code = number::kFileNotFound;
    else if (error == EACCES || error == EPERM || error == ENOEXEC)
        code = number::kPermissionDenied;
    throw base::RuntimeError(code, program, std::strerror(error)); // NOLINT(concurrency-mt-unsafe)
}

// What posix_spawn needs, undone at the end of the scope.
class SpawnSetup {
public:
    explicit SpawnSetup(short flags)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawnattr_init(&m_attributes);
        sigset_t none;
        sigemptyset(&none);
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setflags(&m_attributes, static_cast<short>(flags | POSIX_SPAWN_SETSIGMASK |
                                                                   POSIX_SPAWN_SETSIGDEF));
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;
    ~SpawnSetup()
    {
        posix_spawnattr_destroy(&m_attributes);
        posix_spawn_file_actions_destroy(&m_actions);
    }

    void openNull(int descriptor)
    {
        posix_spawn_file_actions_addopen(&m_actions, descriptor, "/dev/null", O_RDWR, 0);
    }
    void duplicate(int from, int to) { posix_spawn_file_actions_adddup2(&m_actions, from, to); }

    pid_t spawn(const std::string& program, const std::vector<std::string>& arguments)
    {
        std::vector<std::string> texts{program};
        texts.insert(texts.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        pointers.reserve(texts.size() + 1);
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        pid_t id = 0;
        const int error =
            posix_spawnp(&id, program.c_str(), &m_actions, &m_attributes, pointers.data(), environ);
        if (error != 0)
            raise(error, program);
        return id;
    }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

class Pipe {
public:
    explicit Pipe(const std::string& program)
    {
        if (::pipe2(m_ends.data(), O_CLOEXEC) != 0)
            raise(errno, program);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe()
    {
        closeEnd(0);
        closeEnd(1);
    }
    int readEnd() const { return m_ends[0]; }
    int writeEnd() const { return m_ends[1]; }
    void closeEnd(std::size_t end)
    {
        if (m_ends.at(end) >= 0)
            ::close(m_ends.at(end));
        m_ends.at(end) = -1;
    }

private:
    std::array<int, 2> m_ends{-1, -1};
};

// Both streams to their ends, at once: a program that fills one pipe while the other is read first
// would wait for ever.
void readBoth(Pipe& first, std::string& firstText, Pipe& second, std::string& secondText)
{
    std::array<pollfd, 2> waits{{{first.readEnd(), POLLIN, 0}, {second.readEnd(), POLLIN, 0}}};
    const std::array<std::string*, 2> texts{&firstText, &secondText};
    std::array<char, 65536> buffer;
    while (waits[0].fd >= 0 || waits[1].fd >= 0) {
        if (::poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR)
            return;
        for (std::size_t i = 0; i < waits.size(); ++i) {
            if (waits.at(i).fd < 0 || waits.at(i).revents == 0)
                continue;
            const ssize_t length = ::read(waits.at(i).fd, buffer.data(), buffer.size());
            if (length > 0)
                texts.at(i)->append(buffer.data(), static_cast<std::size_t>(length));
            else if (length == 0 || errno != EINTR)
                waits.at(i).fd = -1;
        }
    }
}

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The program's own file where it may be seen, else the first word of its command line; the short
// name that the kernel keeps is cut at 15 bytes and serves last.
std::string programName(const std::string& folder)
{
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink((folder + "/exe").c_str(), target.data(), target.size());
    if (length > 0) {
        const std::string_view path(target.data(), static_cast<std::size_t>(length));
        return std::string(base::afterLast(base::beforeFirst(path, " (deleted)"), "/"));
    }
    const std::string command = readFile(folder + "/cmdline");
    if (const std::string first = command.c_str(); !first.empty())
        return std::string(base::afterLast(first, "/"));
    std::string name = readFile(folder + "/comm");
    while (!name.empty() && name.back() == '\n')
        name.pop_back();
    return name;
}

// A program that ends is waited for at once, by a thread that does nothing else: the starter may
// run for weeks, and until then the ended one would stay in the system's table. Where there can be
// no thread, it stays until this process ends.
void awaitEnd(pid_t id)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before); // signals are the starter's own business
    try {
        std::thread([id] {
            while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
            }
        }).detach();
    } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch): said above
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

// The letter behind the name in brackets, which may hold anything itself.
bool isEnded(const std::string& folder)
{
    const std::string line = readFile(folder + "/stat");
    const std::string_view behind = base::afterLast(line, ") ");
    return behind.starts_with('Z') || behind.starts_with('X');
}

} // namespace

LinuxProcesses::LinuxProcesses(FileSystem& fileSystem) : m_fileSystem(fileSystem) {}

std::vector<ProcessInfo> LinuxProcesses::list()
{
    std::vector<ProcessInfo> result;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        std::uint64_t id = 0;
        const std::string folder = entry.path().string();
        if (!base::parseUnsigned(base::afterLast(folder, "/"), id) || isEnded(folder))
            continue;
        // A process that ended meanwhile has no name any more.
        if (std::string name = programName(folder); !name.empty())
            result.push_back({static_cast<std::int64_t>(id), std::move(name)});
    }
    std::sort(result.begin(), result.end(),
              [](const ProcessInfo& a, const ProcessInfo& b) { return a.id < b.id; });
    return result;
}

std::int64_t LinuxProcesses::start(std::string_view path, const std::vector<std::string>& arguments,
                                   WindowStyle /*style*/)
{
    const std::string program = nativeProgram(path);
    SpawnSetup setup(POSIX_SPAWN_SETSID);
    // Left open, a caller's pipe would never reach its end while the program runs.
    setup.openNull(STDIN_FILENO);
    setup.openNull(STDOUT_FILENO);
    setup.openNull(STDERR_FILENO);
    const pid_t id = setup.spawn(program, arguments);
    awaitEnd(id);
    return id;
}

bool LinuxProcesses::terminate(std::int64_t id)
{
    // 0 and the negative numbers name groups of processes, 1 the machine's first one.
    if (id <= 1 || id > INT_MAX)
        return false;
    return ::kill(static_cast<pid_t>(id), SIGKILL) == 0;
}

std::string LinuxProcesses::run(const std::vector<std::string>& command)
{
    if (command.empty())
        throw base::RuntimeError(number::kInvalidCall, {}, "no program is named");
    const std::string program = nativeProgram(command.front());
    Pipe output(program);
    Pipe errors(program);
    SpawnSetup setup(0);
    setup.openNull(STDIN_FILENO);
    setup.duplicate(output.writeEnd(), STDOUT_FILENO);
    setup.duplicate(errors.writeEnd(), STDERR_FILENO);
    const pid_t id = setup.spawn(program, {command.begin() + 1, command.end()});
    output.closeEnd(1);
    errors.closeEnd(1);
    std::string text;
    std::string reason;
    readBoth(output, text, errors, reason);
    int status = 0;
    while (::waitpid(id, &status, 0) < 0) {
        if (errno != EINTR)
            raise(errno, program);
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        const std::string how = WIFEXITED(status)
                                    ? "exit code " + std::to_string(WEXITSTATUS(status))
                                    : "signal " + std::to_string(WTERMSIG(status));
        throw base::RuntimeError(number::kDeviceIo, program,
                                 reason.empty() ? how : how + ": " + reason);
    }
    return text;
}

std::string LinuxProcesses::nativeProgram(std::string_view path) const
{
    if (base::endsWithIgnoringCase(path, ".exe"))
        path.remove_suffix(4);
    if (path.find('\\') == std::string_view::npos)
        return std::string(path);
    return m_fileSystem.toNative(path);
}

} // namespace vardelin::platform
