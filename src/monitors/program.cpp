#include "monitors/program.h"

#include "base/runtime_error.h"
#include "monitors/monitor.h"
#include "platform/linux/console_message_boxes.h"
#include "platform/linux/linux_instance_lock.h"
#include "platform/linux/linux_machine.h"
#include "platform/linux/null_message_loop.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <unistd.h>

namespace vardelin::monitors {
namespace {

// Signals that ask for the end. They are blocked from the start on and taken only where the monitor
// waits, so that none can cut a change of the registry.
class StopSignals {
public:
    StopSignals()
    {
        sigemptyset(&m_set);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP})
            sigaddset(&m_set, signal);
        pthread_sigmask(SIG_BLOCK, &m_set, nullptr);
    }

    std::string wait() const
    {
        int signal = 0;
        while (sigwait(&m_set, &signal) != 0) {
        }
        switch (signal) {
        case SIGINT:
            return "SIGINT";
        case SIGHUP:
            return "SIGHUP";
        default:
            return "SIGTERM";
        }
    }

private:
    sigset_t m_set{};
};

} // namespace

int runProgram(std::string_view name)
{
    const StopSignals signals;
    try {
        const std::string folder = platform::executableFolder();
        platform::ConsoleMessageBoxes messageBoxes;
        platform::NullMessageLoop messageLoop;
        platform::LinuxMachine linuxMachine(folder, messageBoxes, messageLoop);
        platform::LinuxInstanceLock lock(platform::programLockFile(folder, std::string(name)));
        const platform::Machine machine = linuxMachine.machine();
        const MonitorContext context{machine.fileSystem,     machine.registry, machine.clock, lock,
                                     linuxMachine.appPath(), ::getpid()};
        return runMonitor(context, name, [&] { return signals.wait(); });
    } catch (const std::exception& error) {
        std::cerr << name << ": " << error.what() << '\n';
        return kNotRegistered;
    }
}

} // namespace vardelin::monitors
