#include "editor/source_tree.h"

#include "base/text.h"
#include "editor/folder_names.h"
#include "editor/reading_turns.h"
#include "editor/source_capture.h"
#include "trace/messages.h"

#include <algorithm>
#include <utility>

namespace vardelin::editor {
namespace {

using base::PendingError;
using state::TreeNode;
using state::TreeView;

constexpr std::string_view kModule = "frmProfile";
constexpr std::string_view kFrameModule = "MDIForm";
constexpr int kLoadingDrivesText = 40038;
constexpr int kExpandText = 40040;
constexpr int kExpandBranchText = 40016;
constexpr int kCollapseBranchText = 40017;
constexpr int kNumericPadStar = 106;

bool addDrive(TreeView& tree, const std::string& entry, PendingError& error)
{
    const std::string_view trimmed = base::trim(entry);
    const std::string text = base::upperAscii(
        trimmed.size() > 2 ? base::trim(base::beforeFirst(trimmed, "[")) : trimmed);
    return error.attempt([&] {
        TreeNode& drive = tree.add(nullptr, {text + "\\", text, kDriveImage});
        tree.add(&drive, {});
    });
}

bool hasEntry(const base::TextCollection& names, std::string_view text)
{
    for (std::size_t i = 1; i <= names.count(); ++i) {
        const std::string& name = names.item(i);
        if (name.empty())
            return false;
        if (name == text)
            return true;
    }
    return false;
}

void markGreen(TreeNode& node)
{
    node.foreColor = state::kWhollySelectedColor;
    node.checked = true;
}

void setDirFolders(EditorContext& context, const std::string& path)
{
    if (context.form.DirFolders == path)
        return;
    context.form.DirFolders = path;
    DirFolders_Change(context);
}

// The first reading of one folder.
class Loading {
public:
    Loading(EditorContext& context, TreeNode& node, bool inherit)
        : m_context(context), m_tree(context.editor.tvwDirectory), m_node(node), m_key(node.key()),
          m_checkChild(node.checked), m_inherit(inherit),
          m_inheritedBefore(context.form.clxnInheritedNames.count())
    {
        m_restoring = context.frame.BL_Edit_Mode && !context.frame.BL_New_Mode;
    }

    void run()
    {
        ReadingTurns turns(m_context, m_node);
        const auto goOn = [&turns] { return turns.goOn(); };
        PendingError unreadable;
        bool whole = false;
        unreadable.attempt([&] {
            setDirFolders(m_context, m_key);
            const auto names = readFolderNames(m_context.machine.fileSystem, m_key, goOn);
            whole = names && addAll(*names, goOn);
        });
        if (turns.ending() == FolderReading::Ending::Lost)
            return;
        // The empty child stood for what is there now; it stays to the end, so that a reading that
        // was given up leaves the flat order as it was.
        if (whole || unreadable)
            m_tree.remove(*m_node.child());
        else
            putBack(turns);
        if (unreadable)
            throw base::RuntimeError(unreadable.number, unreadable.subject);
    }

private:
    template <typename GoOn>
    bool addAll(const FolderNames& names, const GoOn& goOn)
    {
        for (const std::string& name : names.folders) {
            addFolder(name);
            if (!goOn())
                return false;
        }
        for (const std::string& name : names.files) {
            addFile(name);
            if (!goOn())
                return false;
        }
        return true;
    }

    void putBack(ReadingTurns& turns)
    {
        while (m_node.children() > 1) {
            m_tree.remove(*m_node.lastChild());
            if (!turns.goBack())
                return;
        }
        base::TextCollection& inherited = m_context.form.clxnInheritedNames;
        while (inherited.count() > m_inheritedBefore)
            inherited.remove(inherited.count());
        m_node.expanded = false;
    }

    bool wasSaved(const std::string& key) const
    {
        return m_context.store.opened.clxnOpenedSources.contains(key);
    }
    bool isGreen() const { return m_node.foreColor == state::kWhollySelectedColor; }

    void addFolder(const std::string& name)
    {
        const std::string childKey = m_key + name + "\\";
        bool partChild = false;
        if (m_restoring) {
            m_checkChild = wasSaved(childKey + "*") && m_node.checked;
            m_inherit = m_node.checked && isGreen();
            partChild = wasSaved(childKey) && m_node.checked;
        }
        TreeNode& child = m_tree.add(&m_node, {childKey, name, kFolderImage});
        if (m_checkChild)
            markGreen(child);
        if (m_context.frame.BL_Edit_Mode && partChild && !m_checkChild) {
            child.foreColor = state::kPartlySelectedColor;
            child.checked = true;
        }
        setDirFolders(m_context, childKey);
        if (m_node.checked && m_inherit) {
            m_context.form.clxnInheritedNames.tryAdd(name, name);
            markGreen(child);
        }
        m_tree.add(&child, {});
        child.expandedImage = kOpenFolderImage;
        // Back to the folder itself; its name is recorded already.
        m_context.form.DirFolders = m_key;
    }

    void addFile(const std::string& name)
    {
        std::string key = m_key + name;
        m_context.form.imageIndex = m_context.icons.GetIcon(key);
        if (m_restoring)
            m_checkChild = (wasSaved(key) && m_node.checked) || isGreen();
        TreeNode& child = m_tree.add(&m_node, {std::move(key), name, m_context.form.imageIndex});
        if (m_checkChild)
            markGreen(child);
    }

    EditorContext& m_context;
    TreeView& m_tree;
    TreeNode& m_node;
    const std::string m_key;
    bool m_checkChild;
    bool m_inherit;
    bool m_restoring; // a saved profile is being edited
    const std::size_t m_inheritedBefore;
};

// A folder that was read before passes on what it is now; the partly selected one passes on
// nothing.
void loadAgain(EditorContext& context, TreeNode& node)
{
    TreeView& tree = context.editor.tvwDirectory;
    const bool isGreen = node.checked && node.foreColor == state::kWhollySelectedColor;
    const bool isOff = !node.checked && node.foreColor == state::kUnselectedColor;
    if (!isGreen && !isOff)
        return;
    const std::size_t last = tree.indexOf(*node.lastChild());
    for (std::size_t i = tree.indexOf(*node.child()); i <= last; ++i) {
        tree.node(i).checked = node.checked;
        tree.node(i).foreColor = node.foreColor;
    }
    // Once for the whole range: a second pass would write the same again.
    PendingError passed;
    passed.attempt([&] { ParchildCheck(context, node); });
}

bool isNeverWalked(std::string_view text)
{
    return base::equalsIgnoringCase(text, "C:") || base::equalsIgnoringCase(text, "D:");
}

// Each selected node; there is one at most, so the bound is taken once.
template <typename Visit>
void forSelected(TreeView& tree, Visit visit)
{
    const std::size_t count = tree.count();
    for (std::size_t i = 1; i <= count && i <= tree.count(); ++i) {
        TreeNode& node = tree.node(i);
        if (&node == tree.selected())
            visit(node);
    }
}

} // namespace

std::vector<std::string> driveEntries(platform::Drives& drives)
{
    std::vector<std::string> entries;
    for (const platform::Drive& drive : drives.list()) {
        std::string entry = base::lowerAscii(std::string(1, drive.letter)) + ":";
        const std::string& name = drive.shareName.empty() ? drive.volumeLabel : drive.shareName;
        if (!name.empty())
            entry += " [" + name + "]";
        entries.push_back(std::move(entry));
    }
    return entries;
}

void BuildDriveList(EditorContext& context)
{
    runTraced(context.trace, "BuildDriveList", kModule, trace::message(kLoadingDrivesText), [&] {
        TreeView& tree = context.editor.tvwDirectory;
        tree.clear();
        ++context.editor.revision;
        context.form.driDrives = driveEntries(context.machine.drives);
        PendingError error;
        for (const std::string& entry : context.form.driDrives) {
            const auto type = context.machine.drives.typeOf(entry.front());
            if (type != platform::DriveType::Fixed && type != platform::DriveType::Remote)
                continue;
            if (!addDrive(tree, entry, error))
                throw base::RuntimeError(error.number, error.subject);
        }
        if (tree.count() > 0)
            tree.select(&tree.node(1));
    });
}

bool setExpanded(EditorContext& context, TreeNode& node, bool expanded)
{
    if (context.form.reading.active)
        return false;
    const bool opens = expanded && !node.expanded && node.children() > 0;
    node.expanded = expanded;
    context.form.reading.ending = FolderReading::Ending::Whole;
    if (opens)
        tvwDirectory_Expand(context, node);
    return context.form.reading.ending == FolderReading::Ending::Whole;
}

void tvwDirectory_Expand(EditorContext& context, TreeNode& node)
{
    ++context.editor.revision;
    if (context.form.reading.active) {
        node.expanded = false;
        return;
    }
    if (node.child() == nullptr)
        return; // nothing to show
    // A walk over many folders has its turns between them, too.
    if (!context.form.ExpandAllActive && context.form.reading.mayCancel)
        startTurns(context);
    runTraced(context.trace, "tvwDirectory_Expand", kModule, trace::message(kExpandText), [&] {
        const state::FrameState& frame = context.frame;
        const bool isUnread = node.child()->text.empty();
        if (isUnread && frame.BL_Open_Mode) {
            context.editor.tvwDirectory.remove(*node.child());
            OpenProf(context, node.key());
            return;
        }
        if (frame.BL_Open_Mode && !frame.BL_New_Mode)
            return;
        const Hourglass waiting(context.form);
        const bool inherit = hasEntry(context.form.clxnDeferredChecks, node.text) ||
                             hasEntry(context.form.clxnInheritedNames, node.text);
        if (isUnread)
            Loading(context, node, inherit).run();
        else
            loadAgain(context, node);
    });
}

void tvwDirectory_Click(EditorContext& context)
{
    TreeView& tree = context.editor.tvwDirectory;
    const trace::TraceScope scope(context.trace.trace, "tvwDirectory_Click");
    const std::size_t index = context.form.ViewClickIndex;
    if (context.frame.BL_Open_Mode && index != 0 && index <= tree.count()) {
        tree.node(index).checked = true;
        ++context.editor.revision;
    }
}

void tvwDirectory_BeforeLabelEdit(int& Cancel)
{
    Cancel = 1;
}

void tvwDirectory_KeyDown(int& KeyCode)
{
    if (KeyCode == kNumericPadStar)
        KeyCode = 0;
}

void UncheckNode(EditorContext& context, std::size_t Index, bool State)
{
    runTraced(context.trace, "UncheckNode", kModule, "Check the unchecked node",
              [&] { context.editor.tvwDirectory.node(Index).checked = State; });
}

std::string_view TrimNull(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

// No entry in the trace: it runs for every folder that is met, and the trace is written to disk.
void DirFolders_Change(EditorContext& context)
{
    std::string_view path = context.form.DirFolders;
    if (path.ends_with('\\'))
        path.remove_suffix(1);
    const std::string name(base::afterLast(path, "\\"));
    if (!isDriveText(name))
        context.store.save.clxnFolderNames.tryAdd(name, name);
}

void mnuExpand_Click(EditorContext& context)
{
    if (context.form.reading.active)
        return;
    context.frame.panel1.text = "Expanding a Node...";
    runTraced(context.trace, "mnuExpand_Click", kFrameModule, trace::message(kExpandBranchText),
              [&] {
                  TreeView& tree = context.editor.tvwDirectory;
                  forSelected(tree, [&](TreeNode& node) {
                      if (node.children() > 0 && !isNeverWalked(node.text)) {
                          if (!setExpanded(context, node, true))
                              return;
                          context.form.ExpandAllActive = true;
                          if (node.child() != nullptr)
                              TreeViewExpand(context, node.children(), tree.indexOf(*node.child()));
                      } else if (isNeverWalked(node.text)) {
                          setExpanded(context, node, true);
                      }
                  });
              });
    context.form.ExpandAllActive = false;
    ++context.editor.revision;
    context.frame.panel1.text = "Displaying Profile details";
}

void mnuCollapse_Click(EditorContext& context)
{
    if (context.form.reading.active)
        return;
    context.frame.panel1.text = "Collapsing a Node...";
    runTraced(context.trace, "mnuCollapse_Click", kFrameModule, trace::message(kCollapseBranchText),
              [&] {
                  TreeView& tree = context.editor.tvwDirectory;
                  forSelected(tree, [&](TreeNode& node) {
                      const bool walks = node.children() > 0 && !isNeverWalked(node.text);
                      if (!walks && !isNeverWalked(node.text))
                          return;
                      setExpanded(context, node, false);
                      if (walks)
                          TreeViewCollapse(context, node.children(), tree.indexOf(*node.child()));
                  });
              });
    ++context.editor.revision;
    context.frame.panel1.text = "Displaying Profile details";
}

void TreeViewExpand(EditorContext& context, std::size_t count, std::size_t first)
{
    TreeView& tree = context.editor.tvwDirectory;
    // Expanding takes the empty child behind each folder away, so the next sibling moves up to it.
    for (std::size_t i = 0; i < count && first + i <= tree.count(); ++i) {
        TreeNode& node = tree.node(first + i);
        if (!setExpanded(context, node, true))
            return;
        if (node.child() != nullptr)
            TreeViewExpand(context, node.children(), tree.indexOf(*node.child()));
        if (context.form.reading.ending != FolderReading::Ending::Whole)
            return; // given up further below
    }
}

void TreeViewCollapse(EditorContext& context, std::size_t count, std::size_t first)
{
    TreeView& tree = context.editor.tvwDirectory;
    for (std::size_t i = 0; i < count && first + i <= tree.count(); ++i) {
        TreeNode& node = tree.node(first + i);
        setExpanded(context, node, false);
        if (node.child() != nullptr)
            TreeViewCollapse(context, node.children(), tree.indexOf(*node.child()));
    }
}

bool isDriveText(std::string_view text)
{
    return text.size() == 2 && text.find(':') != std::string_view::npos;
}

} // namespace vardelin::editor
