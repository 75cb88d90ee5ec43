#include "editor/source_capture.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "editor/folder_names.h"
#include "editor/reading_turns.h"
#include "editor/source_tree.h"
#include "trace/messages.h"

#include <algorithm>
#include <string>
#include <utility>

namespace vardelin::editor {
namespace {

using base::PendingError;
using base::RuntimeError;
using state::TreeNode;
using state::TreeView;

constexpr std::string_view kModule = "frmProfile";
constexpr int kExpandText = 40040;
constexpr int kCaptureText = 40090;
constexpr int kFirstDots = 3;
constexpr int kMostDots = 6;
constexpr double kCaptureShare = 25; // of the progress bar
constexpr int kStepDigits = 6;

bool isGreen(const TreeNode& node)
{
    return node.foreColor == state::kWhollySelectedColor;
}
bool isPurple(const TreeNode& node)
{
    return node.foreColor == state::kPartlySelectedColor;
}
bool isUnread(const TreeNode& node)
{
    return node.children() == 1 && node.child()->text.empty();
}
bool hasSingleLeaf(const TreeNode& node)
{
    return node.children() == 1 && !node.child()->text.empty() && node.child()->children() == 0;
}

bool isDrivePath(std::string_view path)
{
    return path.size() == 2 && path[1] == ':';
}

class Capture {
public:
    explicit Capture(EditorContext& context)
        : m_context(context), m_tree(context.editor.tvwDirectory),
          m_sources(context.store.save.clxnSources),
          m_folderNames(context.store.save.clxnFolderNames)
    {
    }

    void run();
    void walkBelow(std::size_t index);
    const PendingError& error() const noexcept { return m_error; }

private:
    // A line that is there already stays once, and the error stays for the next fixed point.
    void add(std::string line)
    {
        m_error.attempt([&] {
            std::string key = line;
            m_sources.add(std::move(line), key);
        });
    }
    void addFolderLine(const TreeNode& node) { add(node.fullPath() + "\\"); }
    bool isFolderName(std::string_view text) const { return m_folderNames.contains(text); }
    void showDots();
    void readRestoredDrives();
    void unreadDrive(const TreeNode& drive);
    void firstLevel(TreeNode& node);
    void below(TreeNode& node);
    void unreadFolder(TreeNode& node);
    void advanceBar();

    EditorContext& m_context;
    TreeView& m_tree;
    base::TextCollection& m_sources;
    base::TextCollection& m_folderNames;
    std::vector<const TreeNode*> m_listedDrives; // from the disk, their child nodes with them
    PendingError m_error;
};

// A drive that was not opened since the tree was built knows nothing of the profile's ticks yet.
void Capture::readRestoredDrives()
{
    const std::vector<TreeNode*> roots = m_tree.roots();
    for (TreeNode* drive : roots) {
        if (isDrivePath(drive->text) && !drive->expanded && drive->checked) {
            setExpanded(m_context, *drive, true);
            setExpanded(m_context, *drive, false);
        }
    }
}

void Capture::run()
{
    m_context.frame.panel1.text = "Saving Profile...";
    m_context.form.SaveProgressStep = 4;
    if (m_context.frame.BL_Edit_Mode)
        readRestoredDrives();
    const std::size_t count = m_tree.count();
    // Reading a folder on the way takes its empty child away: the tree may get shorter.
    for (std::size_t i = 1; i <= count && i <= m_tree.count(); ++i) {
        TreeNode& node = m_tree.node(i);
        if (!node.checked || base::trim(node.text).empty())
            continue;
        const std::string fullPath = node.fullPath();
        const std::string_view path = base::trim(fullPath);
        if (isDrivePath(path) && node.children() == 1) {
            unreadDrive(node);
            continue;
        }
        const std::string_view rest = base::afterFirst(path, "\\");
        if (rest.find('\\') != std::string_view::npos)
            continue; // reached from above
        if (std::find(m_listedDrives.begin(), m_listedDrives.end(), node.parent()) !=
            m_listedDrives.end())
            continue; // came with its drive
        if (m_error)
            return;
        firstLevel(node);
    }
    if (!m_error || !m_sources.empty())
        advanceBar();
}

void Capture::unreadDrive(const TreeNode& drive)
{
    if (!isGreen(drive) || drive.expanded)
        return;
    m_error.attempt([&] {
        const FolderNames names = readFolderNames(m_context.machine.fileSystem, drive.key());
        m_listedDrives.push_back(&drive);
        for (const std::string& name : names.folders)
            add(drive.key() + name + "\\");
        for (const std::string& name : names.files)
            add(drive.key() + name);
    });
}

void Capture::firstLevel(TreeNode& node)
{
    if (!isFolderName(base::trim(node.text))) {
        // A file, or a drive; a drive is no line even when nothing is on it.
        if (node.children() == 0 && !isDrivePath(node.text))
            add(node.fullPath());
        return;
    }
    if (node.children() == 0) {
        addFolderLine(node);
    } else if (isUnread(node)) {
        unreadFolder(node);
    } else if (hasSingleLeaf(node)) {
        // The first level lists the leaf itself, even where it is a folder.
        if (node.child()->checked)
            add(node.child()->fullPath());
    } else {
        const trace::TraceScope scope(m_context.trace.trace, "SubLevelFolderChkExpandedNode");
        if (isGreen(node))
            addFolderLine(node);
        else
            walkBelow(m_tree.indexOf(node));
    }
}

void Capture::unreadFolder(TreeNode& node)
{
    if (isGreen(node)) {
        addFolderLine(node);
    } else if (isPurple(node)) {
        setExpanded(m_context, node, true);
        walkBelow(m_tree.indexOf(node));
        setExpanded(m_context, node, false);
    }
}

void Capture::walkBelow(std::size_t index)
{
    showDots();
    const TreeNode& folder = m_tree.node(index);
    if (folder.child() == nullptr)
        return; // it could not be read, or is empty by now
    const std::size_t range = m_tree.indexOf(*folder.lastChild()) - m_tree.indexOf(*folder.child());
    for (std::size_t k = 0; k <= range; ++k) {
        const std::size_t at = m_tree.indexOf(*folder.child()) + k;
        if (at > m_tree.count())
            return;
        TreeNode& node = m_tree.node(at);
        // The range is as long as it was at first, while every folder read in the walk made it
        // shorter by one: what follows belongs to other folders and is listed with them. Listed
        // here too, it would be there twice and end the whole pass.
        if (node.parent() == &folder && !node.text.empty() && node.checked)
            below(node);
    }
}

void Capture::below(TreeNode& node)
{
    if (node.children() == 0) {
        if (isFolderName(node.text))
            addFolderLine(node);
        else
            add(node.fullPath());
    } else if (isUnread(node)) {
        unreadFolder(node);
    } else if (hasSingleLeaf(node)) {
        // Unlike the first level, the folder itself.
        if (node.child()->checked)
            addFolderLine(node);
    } else if (isGreen(node)) {
        addFolderLine(node);
    } else {
        walkBelow(m_tree.indexOf(node));
    }
}

void Capture::showDots()
{
    int& step = m_context.form.SaveProgressStep;
    if (step > kMostDots || step < kFirstDots)
        step = kFirstDots;
    m_context.frame.panel1.text =
        "Saving Profile" + std::string(static_cast<std::size_t>(step), '.');
    ++step;
}

void Capture::advanceBar()
{
    if (m_sources.empty())
        throw RuntimeError(base::error_number::kDivisionByZero);
    const double step =
        base::round(kCaptureShare / static_cast<double>(m_sources.count()), kStepDigits);
    state::ProgressBar& bar = m_context.frame.pb;
    for (std::size_t i = 0; i < m_sources.count(); ++i)
        bar.value = std::min(bar.value + step, bar.maximum);
}

// A folder that is read for the capture is read to its end, whatever the person presses.
class WholeReading {
public:
    explicit WholeReading(EditorContext& context) : m_form(context.form)
    {
        startTurns(context);
        m_form.reading.mayCancel = false;
    }
    WholeReading(const WholeReading&) = delete;
    WholeReading& operator=(const WholeReading&) = delete;
    ~WholeReading() { m_form.reading.mayCancel = true; }

private:
    SourceTreeForm& m_form;
};

// One item of the opened sources, as the view adds what lies below a key.
class ViewLevel {
public:
    ViewLevel(EditorContext& context, std::string_view key)
        : m_context(context), m_tree(context.editor.tvwDirectory), m_key(key),
          m_parent(m_tree.find(key))
    {
    }

    void take(const std::string& item)
    {
        const std::size_t at = item.find(m_key);
        if (at == std::string::npos)
            return;
        const std::string rest = item.substr(at + m_key.size());
        const std::size_t slash = rest.find('\\');
        if (slash != std::string::npos) {
            if (m_last.empty() || item.find(m_last) == std::string::npos)
                addFolder(item, rest.substr(0, slash + 1));
        } else if (!rest.empty() && rest.back() != '*') {
            addFile(rest);
        }
    }

private:
    void addFolder(const std::string& item, const std::string& name)
    {
        m_last = name;
        TreeNode& folder =
            m_tree.add(m_parent, {m_key + name, name.substr(0, name.size() - 1), kFolderImage});
        if (item.find('*') != std::string::npos)
            folder.foreColor = state::kWhollySelectedColor;
        else
            m_tree.add(&folder, {}).foreColor = state::kPartlySelectedColor;
    }

    void addFile(const std::string& name)
    {
        PendingError taken; // one file twice is no error here
        taken.attempt([&] {
            m_context.form.imageIndex = m_context.icons.GetIcon(m_key + name);
            m_tree.add(m_parent, {m_key + name, name, m_context.form.imageIndex}).foreColor =
                state::kWhollySelectedColor;
        });
    }

    EditorContext& m_context;
    TreeView& m_tree;
    const std::string m_key;
    TreeNode* m_parent;
    std::string m_last; // the folder added last, with its backslash
};

} // namespace

void GettingChkedItems(EditorContext& context)
{
    runTraced(context.trace, "GettingChkedItems", kModule, trace::message(kCaptureText), [&] {
        const WholeReading toTheEnd(context);
        Capture capture(context);
        capture.run();
        if (capture.error())
            throw RuntimeError(capture.error().number, capture.error().subject);
    });
}

void SubLevelFolderChkUnExpandedNode(EditorContext& context, std::string_view /*Path*/,
                                     std::size_t Index)
{
    runTraced(context.trace, "SubLevelFolderChkUnExpandedNode", kModule,
              trace::message(kCaptureText), [&] {
                  const WholeReading toTheEnd(context);
                  Capture capture(context);
                  capture.walkBelow(Index);
                  if (capture.error())
                      throw RuntimeError(capture.error().number, capture.error().subject);
              });
}

void OpenProf(EditorContext& context, std::string_view Key)
{
    runTraced(context.trace, "OpenProf", kModule, trace::message(kExpandText), [&] {
        const base::TextCollection& opened = context.store.opened.clxnOpenedSources;
        ViewLevel level(context, Key);
        for (std::size_t i = 1; i <= opened.count() && !opened.item(i).empty(); ++i)
            level.take(opened.item(i));
        TreeView& tree = context.editor.tvwDirectory;
        for (std::size_t i = 1; i <= tree.count(); ++i)
            tree.node(i).checked = true;
        ++context.editor.revision;
    });
}

void restoreOpenedDrives(EditorContext& context)
{
    TreeView& tree = context.editor.tvwDirectory;
    for (std::size_t i = 1; i <= tree.count(); ++i) {
        TreeNode& node = tree.node(i);
        const bool isHit =
            node.text.empty() || context.store.opened.clxnOpenedSources.contains(node.key());
        node.checked = isHit;
        node.foreColor = isHit ? state::kPartlySelectedColor : state::kUnselectedColor;
    }
    ++context.editor.revision;
}

} // namespace vardelin::editor
