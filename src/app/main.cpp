#include "app/application.h"
#include "app/guarded_application.h"
#include "platform/linux/linux_desktop_types.h"
#include "platform/linux/linux_instance_lock.h"
#include "platform/linux/linux_machine.h"
#include "ui/error_form.h"
#include "ui/look.h"
#include "ui/qt_ports.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

// The composition root of the window on Linux: the machine, the ports that need a screen, and what
// is left of an error that nothing else caught.
namespace {

using namespace vardelin;

// All arguments as one absolute path in drive form. Empty where there are none, or where no drive
// reaches it.
std::string commandLine(int argc, char** argv, const platform::FileSystem& files)
{
    std::string path;
    for (int i = 1; i < argc; ++i) {
        path += i > 1 ? " " : "";
        path += argv[i];
    }
    const bool hasDrive = path.size() > 2 && path[1] == ':' && path[2] == '\\';
    if (path.empty() || hasDrive)
        return path;
    base::PendingError unreachable;
    unreachable.attempt([&] {
        path = files.fromNative(std::filesystem::absolute(path).lexically_normal().string());
    });
    return unreachable ? std::string() : path;
}

int run(int argc, char** argv)
{
    app::GuardedApplication qt(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vardelin"));
    QApplication::setDesktopFileName(QStringLiteral("vardelin"));
    QApplication::setQuitOnLastWindowClosed(false);
    ui::applyLook(qt);

    ui::QtMessageBoxes messageBoxes;
    ui::QtMessageLoop messageLoop;
    ui::WindowErrorDialog errorDialog;
    const std::string folder = platform::executableFolder();
    platform::LinuxMachine machine(folder, messageBoxes, messageLoop);
    platform::LinuxInstanceLock instance(platform::windowLockFile(folder));
    platform::LinuxDesktopTypes desktop(platform::DesktopFolders::ofThisUser(),
                                        platform::executablePath(), machine.machine().processes);
    app::Application application(
        {machine.machine(), errorDialog, instance, desktop, machine.appPath()});
    messageBoxes.setParent(&application.window());
    errorDialog.setParent(&application.window());
    qt.setRunner(&application.runner());
    const bool goesOn = application.start(commandLine(argc, argv, machine.machine().fileSystem));
    if (goesOn && !application.runner().exitRequested())
        QApplication::exec();
    qt.setRunner(nullptr);
    if (application.runner().exitRequested())
        throw trace::ExitRequested{};
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const trace::ExitRequested&) {
        return EXIT_FAILURE; // the person ended the program out of the error dialog
    } catch (const std::exception& error) {
        std::cerr << "vardelin: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
