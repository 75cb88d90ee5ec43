#include "editor/source_tree.h"
#include "platform/linux/linux_machine.h"
#include "ui/error_form.h"
#include "ui/qt_ports.h"
#include "ui/source_tree_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <unistd.h>

#include <QApplication>
#include <QMouseEvent>
#include <QTimer>

// How long the source tree takes to open one large folder, and how long the window stands still
// meanwhile.
//
//   tree_speed [ENTRIES]      100000 unless told; a third of them folders in the mixed case
//
// One line a case: the seconds through the record alone, the seconds from the click on the arrow
// until the rows are painted, and the longest gap between two turns of the event loop on the way.
// Behind each stands the processor's time, which tells on a machine that is busy with other work.
namespace {

using namespace vardelin;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

// A stretch of time, by the clock on the wall and by the processor's.
struct Took {
    double seconds = 0;
    double cpuSeconds = 0;
};

class Watch {
public:
    Took took() const
    {
        return {std::chrono::duration<double>(Clock::now() - m_start).count(), cpu() - m_cpu};
    }

private:
    static double cpu()
    {
        timespec now{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
    }

    Clock::time_point m_start = Clock::now();
    double m_cpu = cpu();
};

// Makes the folder, and removes all of it at the end.
class Generated {
public:
    explicit Generated(std::size_t entries)
        : m_root(fs::temp_directory_path() / fmt::format("vardelin-tree-{}", ::getpid()))
    {
        fs::create_directories(m_root / "app");
        make("files", entries, 0);
        make("folders", 0, entries);
        make("mixed", entries - entries / 3, entries / 3);
    }
    Generated(const Generated&) = delete;
    Generated& operator=(const Generated&) = delete;
    ~Generated()
    {
        std::error_code ignored; // what is left lies in the folder for temporary files
        fs::remove_all(m_root, ignored);
    }

    fs::path path(const char* name) const { return m_root / name; }

private:
    void make(const char* name, std::size_t files, std::size_t folders) const
    {
        const fs::path folder = m_root / name;
        fs::create_directory(folder);
        for (std::size_t i = 0; i < files; ++i)
            std::ofstream(folder / fmt::format("document {:06}.txt", i * 7919 % files));
        for (std::size_t i = 0; i < folders; ++i)
            fs::create_directory(folder / fmt::format("Folder {:06}", i));
    }

    fs::path m_root;
};

// A message loop for the record alone.
class NoEvents final : public platform::MessageLoop {
public:
    void yield() override {}
};

// Everything that the tree's handlers work on, with one unread folder in the tree.
struct Editor {
    Editor(const std::string& appFolder, platform::MessageLoop& loop)
        : linux(appFolder, messageBoxes, loop)
    {
        frame.BL_New_Mode = true;
    }

    state::TreeNode& addFolder(const std::string& native)
    {
        state::TreeView& tree = record.tvwDirectory;
        tree.clear();
        const std::string key = machine.fileSystem.fromNative(native) + "\\";
        state::TreeNode& node = tree.add(nullptr, {key, native, editor::kFolderImage});
        tree.add(&node, {});
        tree.select(&node);
        ++record.revision;
        return node;
    }

    ui::QtMessageBoxes messageBoxes;
    ui::WindowErrorDialog dialog;
    platform::LinuxMachine linux;
    platform::Machine machine = linux.machine();
    trace::RunTrace runTrace{machine.fileSystem, machine.clock, messageBoxes, linux.appPath(),
                             "Vardelin"};
    trace::ErrorRecord errors;
    trace::TraceContext trace{runTrace, errors, dialog};
    state::FrameState frame;
    state::ProfileEditorState record;
    state::ProfileStore store;
    editor::SourceTreeForm form;
    editor::PlainFileIcons icons;
    editor::EditorContext context{machine, trace, frame, record, store, form, icons};
};

Took recordAlone(const std::string& appFolder, const std::string& folder, std::size_t entries)
{
    NoEvents loop;
    Editor editor(appFolder, loop);
    state::TreeNode& node = editor.addFolder(folder);
    const Watch watch;
    editor::setExpanded(editor.context, node, true);
    const Took took = watch.took();
    if (node.children() != entries)
        throw std::runtime_error(fmt::format("{} entries were read", node.children()));
    return took;
}

constexpr double kPatience = 60; // seconds until the rows must be there

struct Seen {
    Took whole;
    Took longestGap; // each the longest of its kind
};

Seen throughTheView(const std::string& appFolder, const std::string& folder, std::size_t entries)
{
    ui::QtMessageLoop loop;
    Editor editor(appFolder, loop);
    state::TreeNode& node = editor.addFolder(folder);
    ui::SourceTreeHandlers handlers;
    handlers.tvwDirectory_Expand = [&](state::TreeNode& opened) {
        editor::tvwDirectory_Expand(editor.context, opened);
    };
    handlers.form = &editor.form;
    handlers.fileSystem = &editor.machine.fileSystem;
    handlers.shell = &editor.machine.shell;
    ui::SourceTreeView view(editor.record, handlers, nullptr);
    view.resize(500, 700);
    view.show();
    for (int i = 0; i < 20; ++i)
        QApplication::processEvents();

    Seen seen;
    Watch lastTurn;
    const auto turn = [&] {
        const Took gap = lastTurn.took();
        seen.longestGap = {std::max(seen.longestGap.seconds, gap.seconds),
                           std::max(seen.longestGap.cpuSeconds, gap.cpuSeconds)};
        lastTurn = Watch();
    };
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, turn);
    heart.start(0);
    QApplication::processEvents();
    seen.longestGap = {};

    ui::DirectoryTree& tree = view.tree();
    const QModelIndex row = tree.model()->index(0, 0);
    const QPointF arrow(tree.visualRect(row).left() - tree.indentation() / 2.0,
                        tree.visualRect(row).center().y());
    const Watch watch;
    QMouseEvent press(QEvent::MouseButtonPress, arrow, tree.viewport()->mapToGlobal(arrow),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(tree.viewport(), &press);
    // The rows are laid out and painted in turns of the loop, too.
    while (!tree.indexBelow(row).isValid() && watch.took().seconds < kPatience)
        QApplication::processEvents();
    QApplication::processEvents();
    tree.viewport()->repaint();
    seen.whole = watch.took();
    turn();
    if (!node.expanded || tree.model()->rowCount(row) != static_cast<int>(entries))
        throw std::runtime_error(fmt::format("{} rows are shown", tree.model()->rowCount(row)));
    return seen;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        const QApplication application(argc, argv);
        const std::size_t entries = argc > 1 ? std::stoul(argv[1]) : 100000;
        const Generated generated(entries);
        fmt::print("{:<9}{:>9}{:>12}{:>8}{:>12}{:>8}{:>12}{:>8}\n", "case", "entries", "record s",
                   "cpu", "view s", "cpu", "gap ms", "cpu");
        for (const char* name : {"files", "folders", "mixed"}) {
            const std::string app = generated.path("app").string();
            const std::string folder = generated.path(name).string();
            const Took record = recordAlone(app, folder, entries);
            const Seen seen = throughTheView(app, folder, entries);
            fmt::print("{:<9}{:>9}{:>12.3f}{:>8.3f}{:>12.3f}{:>8.3f}{:>12.1f}{:>8.1f}\n", name,
                       entries, record.seconds, record.cpuSeconds, seen.whole.seconds,
                       seen.whole.cpuSeconds, seen.longestGap.seconds * 1000,
                       seen.longestGap.cpuSeconds * 1000);
        }
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "tree_speed: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
