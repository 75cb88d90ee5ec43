#pragma once

#include "app/application.h"
#include "platform/linux/linux_machine.h"
#include "platform/memory/memory_desktop_types.h"
#include "platform/memory/memory_instance_lock.h"
#include "platform/memory/memory_processes.h"
#include "platform/memory/scripted_file_system.h"
#include "platform/memory/scripted_message_boxes.h"
#include "support/temp_folder.h"
#include "support/trace_rig.h"
#include "ui/qt_ports.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <QApplication>

namespace vardelin::test {

// This machine's clock, set on or back.
class MovedClock final : public platform::Clock {
public:
    platform::Clock* inner = nullptr;
    std::chrono::hours ahead{0};

    std::int64_t nowNs() override
    {
        return inner->nowNs() + std::chrono::duration_cast<std::chrono::nanoseconds>(ahead).count();
    }
    std::chrono::nanoseconds steady() override { return inner->steady(); }
    base::DateTime toLocal(std::int64_t ns) override { return inner->toLocal(ns); }
    std::int64_t fromLocal(const base::DateTime& local) override { return inner->fromLocal(local); }
};

// An application folder of its own on this machine's disk, and the program in it. What the program
// asks is answered by a script.
struct AppRig {
    TempFolder folder;
    platform::ScriptedMessageBoxes messageBoxes;
    ui::QtMessageLoop messageLoop;
    platform::MemoryProcesses processes; // no monitor is started
    platform::MemoryInstanceLock instance;
    platform::MemoryDesktopTypes desktopTypes; // the desktop of who runs the tests is not told
    ScriptedErrorDialog errorDialog;
    std::unique_ptr<platform::LinuxMachine> machine;
    MovedClock clock;
    // In front of the disk, where a test has put it there before the start.
    platform::CallScript script;
    bool scripted = false;
    std::optional<platform::ScriptedFileSystem> scriptedFiles;
    std::unique_ptr<app::Application> program;

    AppRig()
    {
        for (const char* name :
             {"Profiles", "Data", "Log/Backup", "Log/Restore", "Queue", "BackupPackages", "Help"})
            std::filesystem::create_directories(folder / "app" + "/" + name);
        folder.write("app/Data/Other_Dsk.txt", "");
        folder.write("share/mime/globs2", "50:text/plain:*.txt\n50:image/png:*.png\n");
    }

    // The machine as the next start finds it; no program runs meanwhile.
    platform::Machine makeMachine()
    {
        program.reset();
        platform::DesktopFolders desktop;
        desktop.home = folder / "home";
        desktop.config = folder / "home/.config";
        desktop.data = {folder / "share"};
        machine = std::make_unique<platform::LinuxMachine>(folder / "app", messageBoxes,
                                                           messageLoop, desktop);
        return machine->machine();
    }

    // Starts the program; one that ran before is gone by then.
    app::Application& start(std::string_view commandLine = {})
    {
        const platform::Machine real = makeMachine();
        clock.inner = &real.clock;
        scriptedFiles.emplace(real.fileSystem, script);
        program = std::make_unique<app::Application>(app::Ports{
            {scripted ? *scriptedFiles : real.fileSystem, real.drives, real.registry, real.shell,
             real.facts, processes, clock, real.messageLoop, real.messageBoxes},
            errorDialog,
            instance,
            desktopTypes,
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
