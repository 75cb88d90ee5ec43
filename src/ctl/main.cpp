#include "base/runtime_error.h"
#include "ctl/commands.h"
#include "ctl/options.h"
#include "ctl/paths.h"
#include "ctl/terminal.h"
#include "platform/linux/console_message_boxes.h"
#include "platform/linux/linux_machine.h"
#include "platform/linux/null_message_loop.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <variant>
#include <vector>

// The composition root of vardelinctl on Linux: the machine, the terminal, and the signal by which
// a person cancels. All decisions are the library's.
namespace {

using namespace vardelin;

volatile std::sig_atomic_t interruptCount = 0; // a signal handler reaches nothing else

extern "C" void noteInterrupt(int /*signal*/)
{
    interruptCount = 1;
}

// The first Ctrl+C asks the run to end; the second one finds the system's own handler and kills.
void listenForInterrupt()
{
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;
    action.sa_flags = static_cast<int>(static_cast<unsigned>(SA_RESETHAND) | SA_RESTART);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

int terminalWidth()
{
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// `--app` in the machine's own form; a drive letter other than C: cannot hold the program's folder
// before the drives are known.
std::string applicationFolder(const std::string& typed, const std::string& workingFolder)
{
    if (typed.empty())
        return platform::executableFolder();
    std::string path = typed;
    if (ctl::hasDriveLetter(typed)) {
        const platform::DriveMap map({{'C', "/"}});
        return map.toNative(typed);
    }
    if (!path.starts_with('/'))
        path = workingFolder + "/" + path;
    path = std::filesystem::path(path).lexically_normal().string();
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

int run(int argc, char** argv)
{
    auto parsed = ctl::parseCommandLine(std::vector<std::string>(argv + 1, argv + argc));
    if (const auto* text = std::get_if<ctl::ParserText>(&parsed)) {
        (text->exitCode == ctl::kExitDone ? std::cout : std::cerr) << text->text;
        return text->exitCode;
    }
    const auto& commandLine = std::get<ctl::CommandLine>(parsed);
    ctl::Terminal terminal{std::cin, std::cout, std::cerr};
    terminal.errIsTerminal = isatty(STDERR_FILENO) == 1;
    terminal.width = terminalWidth;
    terminal.interrupted = [] { return interruptCount != 0; };
    terminal.workingFolder = std::filesystem::current_path().string();
    listenForInterrupt();

    platform::ConsoleMessageBoxes messageBoxes;
    platform::NullMessageLoop messageLoop;
    platform::LinuxMachine machine(
        applicationFolder(commandLine.global.app, terminal.workingFolder), messageBoxes,
        messageLoop);
    const int code = ctl::runCommand(commandLine, machine.machine(), terminal, machine.appPath());
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "vardelinctl: the standard output cannot be written\n";
        return code == ctl::kExitDone ? ctl::kExitFailed : code;
    }
    return code;
}

} // namespace

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "vardelinctl: " << error.what() << '\n';
        return vardelin::ctl::kExitFailed;
    }
}
