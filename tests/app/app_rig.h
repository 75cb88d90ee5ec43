#pragma once

#include "app/application.h"
#include "platform/linux/linux_machine.h"
#include "platform/memory/counting_message_loop.h"
#include "platform/memory/scripted_message_boxes.h"
#include "support/temp_folder.h"
#include "support/trace_rig.h"

#include <memory>
#include <string>

#include <QApplication>

namespace vardelin::test {

// An application folder of its own on this machine's disk, and the program in it. What the program
// asks is answered by a script.
struct AppRig {
    TempFolder folder;
    platform::ScriptedMessageBoxes messageBoxes;
    platform::CountingMessageLoop messageLoop;
    ScriptedErrorDialog errorDialog;
    std::unique_ptr<platform::LinuxMachine> machine;
    std::unique_ptr<app::Application> program;

    AppRig()
    {
        for (const char* name :
             {"Profiles", "Data", "Log/Backup", "Log/Restore", "Queue", "BackupPackages", "Help"})
            std::filesystem::create_directories(folder / "app" + "/" + name);
        folder.write("app/Data/Other_Dsk.txt", "");
        folder.write("share/mime/globs2", "50:text/plain:*.txt\n50:image/png:*.png\n");
    }

    // Starts the program; one that ran before is gone by then.
    app::Application& start()
    {
        program.reset();
        platform::DesktopFolders desktop;
        desktop.home = folder / "home";
        desktop.config = folder / "home/.config";
        desktop.data = {folder / "share"};
        machine = std::make_unique<platform::LinuxMachine>(folder / "app", messageBoxes,
                                                           messageLoop, desktop);
        program = std::make_unique<app::Application>(
            app::Ports{machine->machine(), errorDialog, machine->appPath()});
        program->start();
        QApplication::processEvents();
        return *program;
    }

    // A widget of the program by its control's name; the test ends where there is none.
    template <typename Widget>
    Widget& find(const char* name)
    {
        auto* widget = program->window().findChild<Widget*>(QLatin1String(name));
        if (widget == nullptr)
            throw std::runtime_error(std::string("no widget ") + name);
        return *widget;
    }

    // A path of this machine as profiles name it.
    static std::string drive(const std::string& native)
    {
        std::string path = "C:" + native;
        for (char& c : path)
            c = c == '/' ? '\\' : c;
        return path;
    }
};

} // namespace vardelin::test
