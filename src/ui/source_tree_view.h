#pragma once

#include "editor/editor_context.h"
#include "state/profile_editor_state.h"
#include "ui/form_binder.h"
#include "ui/tree_icons.h"
#include "ui/tree_model.h"

#include <cstdint>
#include <functional>

#include <QTimer>
#include <QTreeView>
#include <QWidget>

class QLabel;
class QProgressBar;
class QStackedLayout;

namespace vardelin::ui {

// What the editor's logic does about the tree, under the names of its handlers, and what the view
// looks at beside the record. Any of it may be missing.
struct SourceTreeHandlers {
    std::function<void(state::TreeNode& node)> tvwDirectory_Expand;
    std::function<void(state::TreeNode& node)> tvwDirectory_NodeCheck;
    Handler tvwDirectory_Click;
    std::function<void(int& KeyCode)> tvwDirectory_KeyDown;
    std::function<void(int& Cancel)> tvwDirectory_BeforeLabelEdit;

    editor::SourceTreeForm* form = nullptr;     // whose `reading` the view shows
    platform::FileSystem* fileSystem = nullptr; // for the size of a file that is pointed at
    platform::Shell* shell = nullptr;           // for the icons of files
};

// The tree's own widget: what Qt would do by itself and a person does not expect of it goes to the
// handlers.
class DirectoryTree final : public QTreeView {
    Q_OBJECT

public:
    explicit DirectoryTree(QWidget* parent = nullptr);

    // Rows that were announced are laid out now rather than at the next turn.
    void layOut() { executeDelayedItemsLayout(); }
    void layOutLater() { scheduleDelayedItemsLayout(); }

signals:
    void clickedAnywhere();
    void keyDown(int& keyCode);
    void beforeLabelEdit(int& cancel);
    void moved(const QModelIndex& current);

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
};

// The source tree with its legend: `tvwDirectory`, bound to the record and its handlers.
//
// A box or an arrow that the person touches is written into the record first, then the handler
// runs. What the record says afterwards is shown without running one.
//
// While a folder is read the window lives: the row "Reading..." stands below the folder, the legend
// gives way to a bar that moves, and all windows of the program refuse mouse, keys and closing.
// Escape gives the reading up, after which the folder is closed and unread as before.
class SourceTreeView final : public QWidget {
    Q_OBJECT

public:
    // `run` runs a handler and shows the form's records after it, this view's among them; without
    // one the view shows its own. All must outlive the view.
    SourceTreeView(state::ProfileEditorState& record, SourceTreeHandlers handlers,
                   std::function<void(const Handler&)> run, QWidget* parent = nullptr);
    ~SourceTreeView() override;

    // Shows the record as it stands; quick where it did not change. While a folder is read it shows
    // that alone.
    void showRecord();

    // For whoever lets waiting events run while a command works on the tree: shows how far a
    // reading is, if there is one. A reading that the person began in the tree needs no such call.
    void showReading();

    DirectoryTree& tree() { return *m_tree; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isReading() const;
    void build();
    void expandedByPerson(const QModelIndex& index);
    void beginReading();
    void endReading();
    void showExpansions(const TreeModel::Changes& changes);
    void showSelected();
    void widen();

    state::ProfileEditorState& m_record;
    SourceTreeHandlers m_handlers;
    std::function<void(const Handler&)> m_run;
    TreeIcons m_icons;
    DirectoryTree* m_tree = nullptr;
    TreeModel* m_model = nullptr;
    QStackedLayout* m_below = nullptr; // the legend, or the reading
    QLabel* m_readingText = nullptr;
    QTimer m_watch;               // while a folder is read
    std::uint64_t m_revision = 0; // of the record, as shown
    bool m_showing = false;
    bool m_blocking = false; // input is refused
    bool m_isShown = false;  // the reading is on show
};

} // namespace vardelin::ui
