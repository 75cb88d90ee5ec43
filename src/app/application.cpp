#include "app/application.h"

#include "app/editor_handlers.h"
#include "ui/shown_text.h"

#include <QGuiApplication>
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

class FrameWithoutForms final : public frame::FrameWindow {
public:
    void showRestDialog(state::frmRestDialog&) override {}
    void showOpenProfile(profile::OpeningContext&) override {}
    void showAbout() override {}
    void unloadReview() override {}
    void unloadLogs() override {}
    void showEditor() override {}
    void endApplication() override { endProgram(); }
};

class NoFileChooser final : public profile::FileChooser {
public:
    std::string chooseFile(std::string_view, std::string_view, std::string_view) override
    {
        return {};
    }
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
      m_messageLoop(ports.machine.messageLoop, m_runner, [this] { showProgress(); }),
      m_machine(with(ports.machine, m_messageLoop, m_messageBoxes)),
      m_editorWindow(std::make_unique<EditorWithoutForms>()),
      m_frameWindow(std::make_unique<FrameWithoutForms>()),
      m_fileChooser(std::make_unique<NoFileChooser>()),
      m_schedules({m_machine, trace, frame, editor, store.save}), m_editorLists(trace, editor),
      m_profileFiles({m_machine.fileSystem, trace, frame, listing}),
      m_profiles{m_machine, trace, frame, editor, store, m_schedules, m_editorLists, fileNumbers},
      m_tree{m_machine, trace, frame, editor, store, treeForm, m_icons},
      m_pages{m_machine, trace, frame, editor, store, treeForm, pagesForm, *m_editorWindow},
      m_form{m_tree, m_pages, profileForm, mainFrame, m_editorLists},
      m_opening{m_profiles,     openForm,       profileForm,    listing,
                m_profileFiles, *m_fileChooser, bProfileOpened, lastSelected},
      m_frame{m_profiles, m_opening, m_form, m_schedules, mainFrame, *m_frameWindow},
      m_commands(m_runner, m_messageBoxes, m_frame)
{
    frame.ST_App_Path = ports.appPath;
    frame.BL_Is_NT = m_machine.facts.isNtPlatform();
    m_window = std::make_unique<ui::MainWindow>(mainFrame, frame, m_commands);
    m_profileView = new ui::ProfileForm(editor, profileForm, editorHandlers(m_form, m_runner));
    m_window->addForm(m_profileView);
}

Application::~Application() = default;

void Application::start()
{
    m_runner.run("start", [&] {
        frame.BL_New_Mode = true;
        editor::loadProfileForm(m_form);
        profileForm.visible = true;
        profileForm.caption = "Default Profile";
    });
    // The size of the frame is its own: it keeps the one that it begins with.
    m_window->setFixedSize(m_window->minimumSizeHint()
                               .expandedTo(kFrameSize)
                               .boundedTo(m_window->screen()->availableSize()));
    m_window->show();
}

void Application::showCursor()
{
    const bool busy =
        mainFrame.hourglass || treeForm.mousePointer == editor::MousePointer::Hourglass;
    if (busy == m_busyCursor)
        return;
    m_busyCursor = busy;
    if (busy)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

void Application::showFrame()
{
    if (!m_window)
        return;
    // The editor fills the frame, whose title names it therefore.
    const bool editorShows = profileForm.loaded && profileForm.visible;
    m_window->setWindowTitle(
        editorShows ? QStringLiteral("Vardelin - [%1]").arg(ui::shown(profileForm.caption))
                    : QStringLiteral("Vardelin"));
    m_window->showRecords();
    showCursor();
}

void Application::showProgress()
{
    showFrame();
    if (m_profileView != nullptr)
        m_profileView->showReading();
}

void Application::showRecords()
{
    showFrame();
    if (m_profileView == nullptr)
        return;
    m_profileView->setVisible(profileForm.loaded && profileForm.visible);
    m_profileView->setEnabled(mainFrame.editorEnabled);
    m_profileView->showRecords();
}

} // namespace vardelin::app
