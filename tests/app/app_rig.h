#pragma once

#include "app/application.h"
#include "platform/linux/linux_machine.h"
#include "platform/memory/memory_instance_lock.h"
#include "platform/memory/memory_processes.h"
#include "platform/memory/scripted_message_boxes.h"
#include "support/temp_folder.h"
#include "support/trace_rig.h"
#include "ui/qt_ports.h"

#include <memory>
#include <string>

#include <QApplication>

namespace vardelin::test {

// An application folder of its own on this machine's disk, and the program in it. What the program
// asks is answered by a script.
struct AppRig {
    TempFolder folder;
    platform::ScriptedMessageBoxes messageBoxes;
    ui::QtMessageLoop messageLoop;
    platform::MemoryProcesses processes; // no monitor is started
    platform::MemoryInstanceLock instance;
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
    app::Application& start(std::string_view commandLine = {})
    {
        program.reset();
        platform::DesktopFolders desktop;
        desktop.home = folder / "home";
        desktop.config = folder / "home/.config";
        desktop.data = {folder / "share"};
        machine = std::make_unique<platform::LinuxMachine>(folder / "app", messageBoxes,
                                                           messageLoop, desktop);
        const platform::Machine real = machine->machine();
        program = std::make_unique<app::Application>(
            app::Ports{{real.fileSystem, real.drives, real.registry, real.shell, real.facts,
                        processes, real.clock, real.messageLoop, real.messageBoxes},
                       errorDialog,
                       instance,
                       machine->appPath()});
        if (!program->start(commandLine))
            return *program;
        // The splash's timer, without its waiting: the first tick loads the frame.
        frame::Timer1_Timer(program->startUp());
        frame::Timer1_Timer(program->startUp());
        program->showRecords();
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
