#pragma once

#include "editor/pages_context.h"
#include "editor/window_ports.h"
#include "ui/form_binder.h"

#include <string>
#include <string_view>

#include <QObject>

class QWidget;

namespace vardelin::ui {

// How the windows work together with whoever composes the program.
struct WindowHooks {
    HandlerRun run;      // every handler of a form
    Handler showRecords; // all windows show their records
    // Called where a modal window has closed, before its caller goes on. May raise what shall end
    // the caller: no toolkit stands between.
    Handler cameBack;
};

// The window as the editor's handlers see it. A focus that they set, and the row that they want to
// be seen, come about when the handler is done and the records have been shown: only then is a box
// that the handler opened ready for it.
class QtEditorWindow final : public editor::EditorWindow {
public:
    // `window` is the main one. It and what `hooks` refers to must outlive this.
    QtEditorWindow(QWidget& window, WindowHooks hooks);

    // Before anything of the editor is shown; the context must outlive this.
    void attach(editor::PagesContext& context) { m_context = &context; }

    void showOtherdata() override;
    void showResPwd(state::frmResPwd& form) override;
    std::string browseForFolder(std::string_view title, std::string_view start) override;
    void setFocus(std::string_view control) override;
    void ensureVisible(std::string_view list) override;
    void clearClipboard() override;

private:
    void later(std::string_view control, std::function<void(QWidget&)> action);

    QWidget& m_window;
    WindowHooks m_hooks;
    editor::PagesContext* m_context = nullptr;
    QObject m_later; // what waits goes with it
};

} // namespace vardelin::ui
