#include "app/application.h"

#include "app/editor_handlers.h"
#include "editor/destination.h"
#include "editor/extension_lists.h"
#include "editor/source_tree.h"

#include <QCoreApplication>
#include <QScreen>

namespace vardelin::app {
namespace {

base::KeyRule pathRule(const platform::FileSystem& files)
{
    return files.isCaseSensitive() ? base::KeyRule::Exact : base::KeyRule::IgnoreCase;
}

platform::Machine with(platform::Machine machine, platform::MessageLoop& loop,
                       platform::MessageBoxes& boxes)
{
    return {machine.fileSystem, machine.drives, machine.registry,
            machine.shell,      machine.facts,  machine.processes,
            machine.clock,      loop,           boxes};
}

void endProgram()
{
    QCoreApplication::exit();
}

// Device-independent pixels: all of a page is seen without scrolling, on small screens, too.
constexpr QSize kFrameSize(1180, 680);

// The editor's forms have no views yet: one that is to be shown is closed at once.
class EditorWithoutForms final : public editor::EditorWindow {
public:
    void showOtherdata() override {}
    void showResPwd(state::frmResPwd& form) override { form.loaded = false; }
    std::string browseForFolder(std::string_view, std::string_view) override { return {}; }
    void setFocus(std::string_view) override {}
    void ensureVisible(std::string_view) override {}
    void clearClipboard() override {}
};

} // namespace

Application::Application(const Ports& ports)
    : runTrace(ports.machine.fileSystem, ports.machine.clock, ports.machine.messageBoxes,
               ports.appPath, ports.machine.facts.executableName()),
      trace{runTrace, errors, ports.errorDialog}, store(pathRule(ports.machine.fileSystem)),
      treeForm(pathRule(ports.machine.fileSystem)),
      m_runner(
          trace, [this] { showRecords(); }, endProgram),
      m_messageBoxes(ports.machine.messageBoxes, m_runner),
      m_messageLoop(ports.machine.messageLoop, m_runner, [this] { showFrame(); }),
      m_machine(with(ports.machine, m_messageLoop, m_messageBoxes)),
      m_editorWindow(std::make_unique<EditorWithoutForms>()), m_tree{m_machine, trace, frame,
                                                                     editor,    store, treeForm,
                                                                     m_icons},
      m_pages{m_machine, trace, frame, editor, store, treeForm, pagesForm, *m_editorWindow},
      m_commands({m_runner, m_messageBoxes, m_tree, endProgram})
{
    frame.ST_App_Path = ports.appPath;
    frame.BL_Is_NT = m_machine.facts.isNtPlatform();
    m_window = std::make_unique<ui::MainWindow>(mainFrame, frame, m_commands);
    m_profileView = new ui::ProfileForm(editor, profileForm, editorHandlers(m_pages, m_runner));
    m_window->addForm(m_profileView);
}

Application::~Application() = default;

void Application::start()
{
    m_runner.run("start", [&] {
        frame.BL_New_Mode = true;
        editor::BuildDriveList(m_tree);
        editor::NetworkDriveList(m_pages);
        editor::ListInclForFileExt(m_pages);
    });
    // The size of the frame is its own: it keeps the one that it begins with.
    m_window->setFixedSize(m_window->minimumSizeHint()
                               .expandedTo(kFrameSize)
                               .boundedTo(m_window->screen()->availableSize()));
    m_window->show();
}

void Application::showFrame()
{
    if (m_window)
        m_window->showRecords();
}

void Application::showRecords()
{
    showFrame();
    if (m_profileView != nullptr)
        m_profileView->showRecords();
}

} // namespace vardelin::app
