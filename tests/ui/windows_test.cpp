#include "ui/editor_window.h"
#include "ui/frame_window.h"
#include "ui/main_window.h"

#include "editor/extension_lists.h"
#include "editor/other_data_form.h"
#include "editor/pages_rig.h"
#include "editor/password_page.h"

#include "offscreen.h"
#include "recorded_commands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>
#include <QTreeView>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

// The editor's logic with a real window in the place of the scripted one.
class EditorForms : public testing::Test, protected test::PagesRig {
protected:
    EditorForms()
    {
        auto* layout = new QVBoxLayout(&main);
        box = new QLineEdit;
        box->setObjectName("txtDestLoc");
        other = new QLineEdit;
        layout->addWidget(other);
        layout->addWidget(box);
        real.attach(realPages);
    }

    QWidget main;
    QLineEdit* box = nullptr;
    QLineEdit* other = nullptr;
    int cameBack = 0;
    std::vector<std::string> ran;
    QtEditorWindow real{main, WindowHooks{[this](const char* name, const Handler& body) {
                                              ran.emplace_back(name);
                                              body();
                                          },
                                          [this] { box->setEnabled(record.txtDestLoc.enabled); },
                                          [this] { ++cameBack; }}};
    editor::PagesContext realPages{machine, context, frame, record, store, form, pagesForm, real};
};

TEST_F(EditorForms, TheSecondFormOpensOverTheEditorAndComesBack)
{
    newMode();
    whenShown([&](QDialog& view) {
        EXPECT_EQ(view.objectName(), "frmOtherdata");
        EXPECT_EQ(view.parentWidget(), &main);
        QTest::keyClicks(&control<QLineEdit>(view, "txtExclNames"), "A*");
        control<QPushButton>(view, "cmdSetOK").click();
    });
    editor::cmdExclInclByNames_Click(realPages);
    EXPECT_EQ(record.txtExclNames.text, "A*");
    EXPECT_EQ(cameBack, 1);
    EXPECT_EQ(ran.back(), "cmdSetOK_Click") << "handlers run through the hook";
}

TEST_F(EditorForms, ARefusedPasswordGivesTheFocusBackToTheFirstBox)
{
    store.scalars.sProfilePassword = "secret";
    frame.bPwdChangeMode = true;
    state::frmResPwd passwords;
    editor::Form_Load(passwords, frame);
    QString focused;
    whenShown([&](QDialog& view) {
        QTest::keyClicks(&control<QLineEdit>(view, "txtNewPass"), "secret");
        QTest::keyClicks(&control<QLineEdit>(view, "txtRespwd"), "newer1");
        QTest::keyClicks(&control<QLineEdit>(view, "txtconfirm"), "other1");
        control<QPushButton>(view, "cmdOk").click();
        QTest::qWait(1);
        focused = view.focusWidget()->objectName();
        view.reject();
    });
    real.showResPwd(passwords);
    EXPECT_EQ(messages(), std::vector<std::string>{"Both the new passwords are not same"});
    EXPECT_EQ(focused, "txtRespwd");
    EXPECT_TRUE(passwords.loaded) << "closed by its frame";
}

TEST_F(EditorForms, TheFocusIsSetWhenTheRecordsHaveBeenShown)
{
    present(main);
    other->setFocus();
    box->setEnabled(false);
    real.setFocus("txtDestLoc");
    EXPECT_TRUE(other->hasFocus()) << "the handler is not done";
    QTest::qWait(1);
    EXPECT_TRUE(box->hasFocus());
}

TEST_F(EditorForms, AControlThatCannotTakeTheFocusIsLeftAlone)
{
    present(main);
    other->setFocus();
    record.txtDestLoc.enabled = false;
    real.setFocus("txtDestLoc");
    real.setFocus("txtNowhere");
    QTest::qWait(1);
    EXPECT_TRUE(other->hasFocus());
}

TEST_F(EditorForms, ASortedListShowsItsSelectedRow)
{
    for (int i = 0; i < 400; ++i)
        shell.types["." + std::to_string(1000 + i)] = {"Type " + std::to_string(i), ""};
    newMode();
    whenShown([&](QDialog& view) {
        auto& list = control<QTreeView>(view, "lstExclude");
        const auto isSeen = [&] {
            return list.viewport()->rect().contains(list.visualRect(list.currentIndex()).center());
        };
        list.setCurrentIndex(list.model()->index(0, 0));
        list.scrollToBottom();
        EXPECT_FALSE(isSeen());
        real.ensureVisible("lstExclude");
        QTest::qWait(1);
        EXPECT_TRUE(isSeen());
        // Sorted the other way round, the selected row is the last one.
        auto* const headings = list.header()->viewport();
        QTest::mouseClick(headings, Qt::LeftButton, {}, {20, 5});
        QTest::mouseClick(headings, Qt::LeftButton, {}, {20, 5});
        QTest::qWait(1);
        EXPECT_EQ(list.currentIndex().row(), list.model()->rowCount() - 1);
        EXPECT_TRUE(isSeen());
        view.reject();
    });
    editor::cmdExclude_Click(realPages);
}

TEST_F(EditorForms, TheClipboardIsEmptied)
{
    QGuiApplication::clipboard()->setText("from elsewhere");
    real.clearClipboard();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "");
}

class FrameWindows : public testing::Test {
protected:
    FrameWindows()
    {
        main.addForm(profile);
        FrameForms forms;
        forms.nameDialog = [](state::frmRestDialog& asked) {
            NameDialogHandlers handlers;
            handlers.cmdProfileOK_Click = [&asked] { asked.loaded = false; };
            return handlers;
        };
        forms.unloadLogs = [this] { ++unloaded; };
        window.attach(std::move(forms));
    }

    state::MainFrameForm form;
    state::FrameState frame;
    state::ProfileFormState editorForm;
    editor::SourceTreeForm tree;
    RecordedCommands commands;
    MainWindow main{form, frame, commands};
    QWidget* profile = new QWidget;
    int cameBack = 0;
    int unloaded = 0;
    QtFrameWindow window{{main, *profile, editorForm, form, tree},
                         {{}, {}, [this] { ++cameBack; }}};
};

TEST_F(FrameWindows, ANameIsAskedForInFrontOfTheWindow)
{
    state::frmRestDialog names;
    whenShown([&](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &main);
        QTest::keyClicks(&control<QLineEdit>(dialog, "txtProfileName"), "Work");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    window.showRestDialog(names);
    EXPECT_EQ(names.txtProfileName.text, "Work");
    EXPECT_FALSE(names.loaded);
    EXPECT_EQ(cameBack, 1);
}

TEST_F(FrameWindows, TheTitleAndTheEditorFollowTheirRecord)
{
    present(main);
    main.showRecords();
    EXPECT_FALSE(profile->isVisible());
    EXPECT_EQ(main.windowTitle(), "Vardelin");
    editorForm.visible = true;
    editorForm.caption = "Work Profile";
    main.showRecords();
    EXPECT_TRUE(profile->isVisible());
    EXPECT_EQ(main.windowTitle(), "Vardelin - [Work Profile]");
    auto* log = new QWidget;
    main.addForm(log);
    main.showRecords();
    EXPECT_FALSE(profile->isVisible()) << "the log stands in front";
    window.showEditor();
    main.showRecords();
    EXPECT_TRUE(profile->isVisible());
    EXPECT_FALSE(log->isVisible());
}

TEST_F(FrameWindows, TheHourglassFollowsTheRecordsAndMakesWayForQuestions)
{
    present(main);
    form.hourglass = true;
    main.showRecords();
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    whenShown([](QDialog& dialog) {
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        dialog.reject();
    });
    window.showAbout();
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr) << "the work goes on";
    form.hourglass = false;
    tree.mousePointer = editor::MousePointer::Hourglass;
    main.showRecords();
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    tree.mousePointer = editor::MousePointer::Default;
    main.showRecords();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(FrameWindows, TheProgramEndsBehindTheHandlerAndAsksNobody)
{
    present(main);
    bool handlerDone = false;
    QTimer::singleShot(0, [&] {
        window.endApplication();
        QCoreApplication::processEvents();
        handlerDone = true;
    });
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, [] { QCoreApplication::exit(7); });
    guard.start(20000);
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(handlerDone);
    EXPECT_TRUE(main.isVisible());
    EXPECT_EQ(commands.ran, std::vector<std::string>{}) << "the exit command is not run again";
}

TEST_F(FrameWindows, WindowsThatAreNotThereNeedNoUnloading)
{
    window.unloadReview();
    window.unloadLogs();
    EXPECT_EQ(unloaded, 1);
}

} // namespace
} // namespace vardelin::ui
