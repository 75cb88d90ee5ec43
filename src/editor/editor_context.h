#pragma once

#include "base/keyed_collection.h"
#include "platform/machine.h"
#include "state/frame_state.h"
#include "state/profile_editor_state.h"
#include "state/profile_store.h"
#include "trace/error_tail.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What the handlers of the profile editor work on. All of it belongs to the thread of the user
// interface.
namespace vardelin::editor {

// Images of the tree, by their place in its list, from 1.
inline constexpr int kDriveImage = 1;
inline constexpr int kFolderImage = 4;
inline constexpr int kOpenFolderImage = 5;
inline constexpr int kPlainFileImage = 6;

// Finds the small icon of a file by its path. Called once a file while a folder is read, so it must
// neither touch the disk nor wait; a view that draws icons later by the name needs no other one.
class FileIcons {
public:
    FileIcons() = default;
    FileIcons(const FileIcons&) = delete;
    FileIcons& operator=(const FileIcons&) = delete;
    virtual ~FileIcons() = default;

    // The index of the image in the tree's list.
    virtual int GetIcon(std::string_view path) = 0;
};

class PlainFileIcons final : public FileIcons {
public:
    int GetIcon(std::string_view) override { return kPlainFileImage; }
};

// Reading a folder gives the window its turns, so that a large one does not freeze it. Handlers of
// the tree that come in meanwhile refuse, and so must every command that needs the tree whole.
struct FolderReading {
    enum class Ending {
        Whole,     // all of it is in the tree, or an error was reported
        Cancelled, // nothing of it is in the tree: the folder is unread and closed as before
        Lost       // the tree was emptied or replaced meanwhile; the node is gone
    };

    bool active = false;
    bool mayCancel = true;         // not while a profile is captured, which would lose lines
    bool cancelled = false;        // the person gave up; the reading looks at it at its next turn
    std::size_t names = 0;         // read so far
    std::uint64_t serial = 0;      // of the node
    Ending ending = Ending::Whole; // of the last one
    std::chrono::nanoseconds lastTurn{0}; // steady, when the window last had its turn
};

enum class MousePointer { Default = 0, Hourglass = 11 };

// What the editor's form keeps beside the tree itself. The lists of names are bare names: a
// folder's name counts wherever in the tree it stands.
struct SourceTreeForm {
    explicit SourceTreeForm(base::KeyRule pathRule = base::KeyRule::Exact)
        : clxnDeferredChecks(pathRule), clxnInheritedNames(pathRule)
    {
    }

    std::size_t ViewClickIndex = 0; // of the node whose tick was last refused in a view; 0 for none
    bool ExpandAllActive = false;   // a whole branch is being expanded
    base::TextCollection clxnDeferredChecks; // folders ticked before they were read; no keys
    base::TextCollection clxnInheritedNames; // folders that took over their parent's tick
    int imageIndex = 0;                      // of the file icon found last
    int SaveProgressStep = 0;                // dots of the status text, 3 to 6
    MousePointer mousePointer = MousePointer::Default;

    std::vector<std::string> driDrives; // `c:`, `c: [label]` or `f: [\\server\share]`
    std::string DirFolders;             // the path of the hidden list of folders
    FolderReading reading;
};

// The hourglass stands while something is read, whatever the reading meets.
class Hourglass {
public:
    explicit Hourglass(SourceTreeForm& form) : m_form(form)
    {
        m_form.mousePointer = MousePointer::Hourglass;
    }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;
    ~Hourglass() { m_form.mousePointer = MousePointer::Default; }

private:
    SourceTreeForm& m_form;
};

// Holds references only; the application owns the parts and keeps them longer than every handler.
struct EditorContext {
    platform::Machine& machine;
    trace::TraceContext& trace;
    state::FrameState& frame;
    state::ProfileEditorState& editor;
    state::ProfileStore& store;
    SourceTreeForm& form;
    FileIcons& icons;
};

} // namespace vardelin::editor
