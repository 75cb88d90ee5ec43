#include "base/runtime_error.h"
#include "base/text.h"
#include "editor/source_tree.h"
#include "trace/messages.h"

#include <optional>

namespace vardelin::editor {
namespace {

using base::PendingError;
using base::RuntimeError;
using state::TreeNode;
using state::TreeView;

constexpr std::string_view kModule = "frmProfile";
constexpr std::string_view kNodeCheck = "tvwDirectory_NodeCheck";
constexpr int kObjectNotSet = 91; // a node without a parent where one is needed

// Where a pending error is looked at, and the number of what is said then.
enum class Phase : int {
    Children = 40041,
    NodePath = 40042,
    ParentLevel = 40043,
    SubTreeLevel = 40044,
    Colour = 40046,
};

bool isUnselectedColor(std::uint32_t color)
{
    return color == state::kUnselectedColor || color == state::kWindowTextColor;
}

bool hasDot(std::string_view text)
{
    return text.find('.') != std::string_view::npos;
}

// Counts the backslashes of a path one by one from its end.
int depthOf(const TreeNode& node)
{
    std::string path = node.fullPath();
    int depth = 0;
    while (path.size() > 1) {
        const std::size_t at = path.rfind('\\', path.size() - 2);
        if (at == std::string::npos)
            break;
        path.resize(at);
        ++depth;
    }
    return depth;
}

class NodeCheck {
public:
    NodeCheck(EditorContext& context, TreeNode& node)
        : m_context(context), m_tree(context.editor.tvwDirectory), m_scalars(context.store.scalars),
          m_node(&node)
    {
    }

    void run();

private:
    enum class Ending { Traced, AtOnce };

    Ending body();
    void ticked();
    bool unticked();
    void spreadUp();
    void levelA();
    void levelB();
    void testAt(Phase phase);
    void driveUnticked();

    EditorContext& m_context;
    TreeView& m_tree;
    state::ProfileScalars& m_scalars;
    TreeNode* m_node; // moves up with the walk
    PendingError m_error;
    std::optional<Phase> m_failed;
};

void NodeCheck::run()
{
    trace::RunTrace& trace = m_context.trace.trace;
    trace.WriteRunTrace(kNodeCheck, "Start", true);
    ++m_context.editor.revision;
    const Ending ending = body();
    if (m_failed) {
        errorTail(m_context.trace,
                  {kNodeCheck, kNodeCheck, kModule, trace::message(static_cast<int>(*m_failed))},
                  m_error);
    } else if (ending == Ending::Traced) {
        trace.WriteRunTrace(kNodeCheck, "End", true);
    }
}

void NodeCheck::testAt(Phase phase)
{
    if (m_error && !m_failed)
        m_failed = phase;
}

NodeCheck::Ending NodeCheck::body()
{
    state::FrameState& frame = m_context.frame;
    if (frame.BL_Edit_Mode)
        frame.BL_Edit_Changed = true;
    if (frame.BL_New_Mode)
        frame.BL_New_Changed = true;
    if (frame.BL_Open_Mode) {
        m_context.form.ViewClickIndex = m_tree.indexOf(*m_node);
        m_node->checked = true;
        return Ending::Traced;
    }
    m_scalars.SourceChecked = m_node->checked;
    if (m_node->checked)
        ticked();
    else if (!unticked())
        return Ending::AtOnce;
    if (!m_failed && !isDriveText(m_node->text))
        spreadUp();
    if (!m_failed && !m_node->checked)
        driveUnticked();
    return Ending::Traced;
}

void NodeCheck::ticked()
{
    m_scalars.SourceChecked = true;
    m_node->foreColor = state::kWhollySelectedColor;
    const std::string path = m_node->fullPath();
    const std::size_t first = path.find('\\');
    const bool isFirstLevel =
        first != std::string::npos && path.find('\\', first + 1) == std::string::npos;
    if (isFirstLevel && m_node->children() > 0 && m_node->child()->text.empty())
        m_context.form.clxnDeferredChecks.add(m_node->text);
    if (m_node->children() > 0 && m_node->expanded) {
        m_error.attempt([&] {
            const trace::TraceScope scope(m_context.trace.trace, "ParchildCheck");
            ParchildCheck(m_context, *m_node);
        });
    }
    testAt(Phase::Children);
}

// False when the walk ran past the last node, which ends the whole handler.
bool NodeCheck::unticked()
{
    m_node->foreColor = state::kUnselectedColor;
    m_error.attempt([&] { ParchildCheck(m_context, *m_node); });
    // A folder with a dot in its name is taken for a file.
    if (m_node->children() == 0 || hasDot(m_node->text))
        return true;
    const std::size_t first = m_tree.indexOf(*m_node->child());
    const auto isInTree = [&](std::size_t index) { return index <= m_tree.count(); };
    std::size_t extra = 0; // stands for the empty children behind folders that were not read
    for (std::size_t i = 0; i < m_node->children(); ++i) {
        if (!isInTree(first + i))
            return false;
        const std::string& text = m_tree.node(first + i).text;
        if (!text.empty() && !hasDot(text))
            ++extra;
    }
    for (std::size_t i = 0; i < m_node->children() + extra; ++i) {
        if (!isInTree(first + i))
            return false;
        TreeNode& each = m_tree.node(first + i);
        if (each.foreColor == state::kWhollySelectedColor) {
            each.checked = false;
            each.foreColor = state::kUnselectedColor;
        }
    }
    return true;
}

// The first sibling, not the node itself, decides how the parents are judged.
void NodeCheck::spreadUp()
{
    const int depth = depthOf(*m_node);
    if (m_node->parent() == nullptr) {
        m_error.set(RuntimeError(kObjectNotSet, m_node->key()));
        testAt(Phase::Colour);
        return;
    }
    const bool isBranchA = m_node->parent()->child()->checked;
    testAt(isBranchA ? Phase::NodePath : Phase::ParentLevel);
    for (int level = 0; level < depth && !m_failed; ++level) {
        if (m_node->parent() == nullptr) {
            m_error.set(RuntimeError(kObjectNotSet, m_node->key()));
        } else {
            if (isBranchA)
                levelA();
            else
                levelB();
            m_node = m_node->parent();
        }
        testAt(isBranchA ? Phase::ParentLevel : Phase::SubTreeLevel);
    }
    testAt(Phase::Colour);
}

void NodeCheck::levelA()
{
    TreeNode& parent = *m_node->parent();
    const std::size_t first = m_tree.indexOf(*parent.child());
    const std::size_t last = m_tree.indexOf(*parent.lastChild());
    std::size_t full = 0;
    parent.checked = true;
    for (std::size_t i = first; i <= last; ++i) {
        const TreeNode& each = m_tree.node(i);
        const bool isGreen = each.foreColor == state::kWhollySelectedColor;
        if (!isGreen && !each.text.empty()) {
            parent.foreColor = state::kPartlySelectedColor;
        } else if (isGreen || isUnselectedColor(each.foreColor)) {
            if (++full == last - first + 1)
                parent.foreColor = state::kWhollySelectedColor;
        }
    }
}

void NodeCheck::levelB()
{
    TreeNode& parent = *m_node->parent();
    const std::size_t first = m_tree.indexOf(*parent.child());
    const std::size_t last = m_tree.indexOf(*parent.lastChild());
    std::size_t full = 0;
    for (std::size_t i = first; i <= last; ++i) {
        const TreeNode& each = m_tree.node(i);
        const bool isGreen = each.foreColor == state::kWhollySelectedColor;
        if ((isGreen && !each.text.empty()) || each.foreColor == state::kPartlySelectedColor) {
            parent.checked = true;
            parent.foreColor = state::kPartlySelectedColor;
        } else if (isUnselectedColor(each.foreColor)) {
            if (++full == last - first + 1) {
                parent.checked = false;
                parent.foreColor = state::kUnselectedColor;
            }
        }
    }
}

void NodeCheck::driveUnticked()
{
    if (m_node->text.find(':') != std::string::npos) {
        for (std::size_t i = m_tree.indexOf(*m_node); i <= m_tree.count(); ++i) {
            TreeNode& each = m_tree.node(i);
            if (each.text.find(':') == std::string::npos &&
                each.key().find(m_node->text) != std::string::npos)
                each.checked = false;
        }
    }
    std::size_t off = 0;
    for (std::size_t i = 1; i <= m_tree.count(); ++i) {
        TreeNode& each = m_tree.node(i);
        if (each.text.empty())
            each.checked = false;
        if (each.checked)
            m_scalars.SourceChecked = true;
        else
            ++off;
    }
    m_scalars.AllSourceUnchecked = off == m_tree.count();
    if (m_scalars.AllSourceUnchecked) {
        for (state::ListRow& row : m_context.editor.lstExclude.rows)
            row.checked = false;
        m_context.store.save.clxnExcluded.clear();
        m_scalars.SourceChecked = false;
    }
}

void spreadDown(EditorContext& context, const TreeNode& node)
{
    if (context.form.ExpandAllActive || !node.expanded || node.child() == nullptr)
        return;
    TreeView& tree = context.editor.tvwDirectory;
    const bool checked = node.checked;
    const std::size_t first = tree.indexOf(*node.child());
    const std::size_t bound = node.children() * 2; // a folder is followed by its empty child
    for (std::size_t n = 0; n < bound; ++n) {
        TreeNode& each = tree.node(first + n);
        const bool isLast = each.text == node.lastChild()->text;
        each.checked = checked;
        each.foreColor = checked ? state::kWhollySelectedColor : state::kUnselectedColor;
        if (each.expanded)
            ParchildCheck(context, each);
        if (isLast)
            break;
    }
}

} // namespace

void tvwDirectory_NodeCheck(EditorContext& context, TreeNode& node)
{
    if (context.form.reading.active) {
        node.checked = !node.checked;
        ++context.editor.revision;
        return;
    }
    NodeCheck(context, node).run();
}

void ParchildCheck(EditorContext& context, TreeNode& node)
{
    constexpr std::string_view kName = "ParChildCheck";
    PendingError error;
    error.attempt([&] { spreadDown(context, node); });
    errorTail(context.trace, {kName, kName, kModule, "Problem occured while loading the view"},
              error);
}

} // namespace vardelin::editor
