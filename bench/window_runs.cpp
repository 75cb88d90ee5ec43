#include "app/application.h"
#include "platform/linux/linux_machine.h"
#include "platform/memory/memory_desktop_types.h"
#include "platform/memory/memory_instance_lock.h"
#include "platform/memory/memory_processes.h"
#include "process_figures.h"
#include "ui/qt_ports.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

// The program's commands about an archive in its window, which nobody sees, on real disks. What it
// asks is answered with Yes or OK.
//
//   window_runs backup APP PROFILE             Backup Now
//   window_runs restore APP PROFILE TARGET     everything on drive C: to another folder
//   window_runs review APP PROFILE DELETED     the review: its first rows, every row down to a
//                                              file, and the deletion of DELETED files there
//
// APP is a laid out application folder, PROFILE the path of a profile in it. A line a step: the
// step, its seconds, those of a processor; at the end the most memory that the process held, MiB.
namespace {

using namespace vardelin;
using bench::cpuSeconds;
using bench::peakMebibytes;
using Clock = std::chrono::steady_clock;

constexpr const char* kRestored = "File(s) have been successfully restored";
constexpr const char* kSaved = "Backup is completed successfully";
constexpr int kDeepest = 60; // rows from the top to a file, at most

void step(std::string_view name, const std::function<void()>& work)
{
    const auto start = Clock::now();
    const double cpuStart = cpuSeconds();
    work();
    const std::chrono::duration<double> seconds = Clock::now() - start;
    fmt::print("{}\t{:.3f}\t{:.3f}\n", name, seconds.count(), cpuSeconds() - cpuStart);
}

// Answers at once and remembers what was said last.
class AgreeingBoxes final : public platform::MessageBoxes {
public:
    platform::Answer show(std::string_view text, std::string_view /*title*/,
                          platform::Buttons buttons, platform::Icon /*icon*/) override
    {
        last = text;
        return buttons == platform::Buttons::Ok ? platform::Answer::Ok : platform::Answer::Yes;
    }
    std::string last;
};

// Every error ends the measurement.
class FailingDialog final : public trace::ErrorDialog {
public:
    void showModal(trace::frmErrLog& form) override
    {
        fmt::print(stderr, "{}: {} {}\n", form.txtProcName.text, form.txtSysErrNo.text,
                   form.txtInf.text);
        std::_Exit(EXIT_FAILURE);
    }
};

// What the program writes for the desktop, such as the documents used last, is not the person's.
platform::DesktopFolders desktopBeside(const std::string& appFolder)
{
    platform::DesktopFolders folders = platform::DesktopFolders::ofThisUser();
    folders.home = appFolder + "/home";
    folders.config = folders.home + "/.config";
    folders.data.front() = folders.home + "/.local/share";
    return folders;
}

class Program {
public:
    Program(const std::string& appFolder, const std::string& profile)
        : m_machine(appFolder, m_boxes, m_loop, desktopBeside(appFolder))
    {
        const platform::Machine real = m_machine.machine();
        m_program = std::make_unique<app::Application>(
            app::Ports{{real.fileSystem, real.drives, real.registry, real.shell, real.facts,
                        m_processes, real.clock, real.messageLoop, real.messageBoxes},
                       m_errors,
                       m_instance,
                       m_desktop,
                       m_machine.appPath()});
        if (!m_program->start(real.fileSystem.fromNative(profile)))
            throw std::runtime_error(m_boxes.last);
        frame::Timer1_Timer(m_program->startUp()); // without the splash's waiting
        frame::Timer1_Timer(m_program->startUp());
        m_program->showRecords();
        QApplication::processEvents();
    }

    bool shows(const std::string& profile) const
    {
        return profile.ends_with("/" + m_program->frame.ST_Current_Profile);
    }

    template <typename Widget>
    Widget& find(const char* name)
    {
        auto* widget = m_program->window().findChild<Widget*>(QLatin1String(name));
        if (widget == nullptr)
            throw std::runtime_error(fmt::format("no widget {}", name));
        return *widget;
    }
    void command(const char* name) { find<QAction>(name).trigger(); }
    void mustHaveSaid(std::string_view text) const
    {
        if (m_boxes.last != text)
            throw std::runtime_error(fmt::format("it said: {}", m_boxes.last));
    }

    void backup()
    {
        step("backup", [&] { command("mnuBackup"); });
        mustHaveSaid(kSaved);
    }

    void restore(const std::string& target)
    {
        step("review", [&] { command("mnure"); });
        press(Qt::Key_Right); // opens the drives
        press(Qt::Key_Down);
        QTimer::singleShot(0, [&] { chooseTarget(target); });
        step("restore", [&] { command("mnuAsOf"); });
        mustHaveSaid(kRestored);
    }

    void review(int deleted)
    {
        step("first rows", [&] { command("mnure"); });
        for (int i = 0; !current().file; ++i) {
            if (i == kDeepest)
                throw std::runtime_error("no file in the first rows");
            step("open " + current().key, [&] { press(Qt::Key_Right); });
            press(Qt::Key_Down);
        }
        step(fmt::format("select {} rows", deleted), [&] {
            for (int i = 1; i < deleted; ++i)
                QTest::keyClick(&list(), Qt::Key_Down, Qt::ShiftModifier);
            QApplication::processEvents();
        });
        step(fmt::format("delete {} rows", deleted), [&] {
            command("mnuDel");
            QApplication::processEvents();
        });
    }

private:
    QAbstractItemView& list() { return find<QAbstractItemView>("lstRestore"); }
    void press(Qt::Key key)
    {
        if (!list().currentIndex().isValid())
            list().setCurrentIndex(list().model()->index(0, 0));
        QTest::keyClick(&list(), key);
        QApplication::processEvents();
    }
    const state::ReviewRow& current()
    {
        if (!list().currentIndex().isValid())
            list().setCurrentIndex(list().model()->index(0, 0));
        return m_program->archive.storage.lstRestore.at(
            static_cast<std::size_t>(list().currentIndex().row()));
    }
    void chooseTarget(const std::string& target)
    {
        QWidget* const form = QApplication::activeModalWidget();
        QTest::keyClick(form->findChild<QComboBox*>(QStringLiteral("cmbRestLoc")), Qt::Key_Down);
        QTest::keyClicks(form->findChild<QLineEdit*>(QStringLiteral("txtRestLoc")),
                         QString::fromStdString(m_machine.machine().fileSystem.fromNative(target)));
        form->findChild<QPushButton*>(QStringLiteral("cmdOK"))->click();
    }

    AgreeingBoxes m_boxes;
    ui::QtMessageLoop m_loop;
    platform::MemoryProcesses m_processes; // no monitor is started
    platform::MemoryInstanceLock m_instance;
    platform::MemoryDesktopTypes m_desktop;
    FailingDialog m_errors;
    platform::LinuxMachine m_machine;
    std::unique_ptr<app::Application> m_program;
};

int number(std::string_view text)
{
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        throw std::runtime_error(fmt::format("not a number: {}", text));
    return value;
}

bool run(const std::vector<std::string>& words)
{
    if (words.size() < 3)
        return false;
    // The first start in a folder shows the default profile, whatever it is asked for.
    {
        const Program first(words[1], words[2]);
    }
    Program program(words[1], words[2]);
    if (!program.shows(words[2]))
        throw std::runtime_error("the profile does not open: " + words[2]);
    if (words.size() == 3 && words[0] == "backup")
        program.backup();
    else if (words.size() == 4 && words[0] == "restore")
        program.restore(words[3]);
    else if (words.size() == 4 && words[0] == "review")
        program.review(number(words[3]));
    else
        return false;
    fmt::print("peak\t{}\n", peakMebibytes());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        QApplication::setStyle(QStringLiteral("Fusion"));
        const QApplication application(argc, argv);
        if (run({argv + 1, argv + argc}))
            return EXIT_SUCCESS;
        std::cerr << "usage: window_runs backup|restore|review APP PROFILE [TARGET|DELETED]\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "window_runs: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
