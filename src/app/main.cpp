#include "app/application.h"
#include "app/guarded_application.h"
#include "platform/linux/linux_machine.h"
#include "ui/error_form.h"
#include "ui/qt_ports.h"

#include <cstdlib>
#include <exception>
#include <iostream>

// The composition root of the window on Linux: the machine, the ports that need a screen, and what
// is left of an error that nothing else caught.
namespace {

using namespace vardelin;

int run(int argc, char** argv)
{
    app::GuardedApplication qt(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vardelin"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vardelin"));
    QApplication::setQuitOnLastWindowClosed(false);

    ui::QtMessageBoxes messageBoxes;
    ui::QtMessageLoop messageLoop;
    ui::WindowErrorDialog errorDialog;
    platform::LinuxMachine machine(platform::executableFolder(), messageBoxes, messageLoop);
    app::Application application({machine.machine(), errorDialog, machine.appPath()});
    messageBoxes.setParent(&application.window());
    errorDialog.setParent(&application.window());
    qt.setRunner(&application.runner());
    application.start();
    if (!application.runner().exitRequested())
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
