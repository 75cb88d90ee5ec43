#pragma once

#include "editor/editor_context.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The tree in which a person ticks what a profile backs up. Folders are read when they are expanded
// for the first time; until then they hold one child without a text. A tick has three states, the
// third of which is kept in the colour of the text:
//
//   not selected      unticked, 0 or the system's colour for text
//   wholly selected   ticked, 0x808000
//   partly selected   ticked, 0x800080
//
// Links are shown as files and never followed. Folders that only show the running system are left
// out, since no backup takes them.
namespace vardelin::editor {

// The entries of the drive list, as the machine has its drives now.
std::vector<std::string> driveEntries(platform::Drives& drives);

// Empties the tree and adds the fixed and the network drives of `driDrives`, which is read afresh.
// A drive that cannot be added is reported and ends the list. Selects the first node.
void BuildDriveList(EditorContext& context);

// Opens or closes a node as a program does it: opening one that is closed and has children runs
// tvwDirectory_Expand. False where the reading was given up, or another one is under way and
// nothing was done: a walk stops then, and where the ending is Lost the node is gone.
bool setExpanded(EditorContext& context, state::TreeNode& node, bool expanded);

// The node, whose `expanded` is set by now, shows its children: reads them where that was not done
// yet, restores what the opened profile selected, and passes its tick on. A folder that cannot be
// read is reported, keeps what was read of it, and counts as read.
//
// A reading that takes long gives the window its turns (FolderReading). What comes in meanwhile is
// refused: a second expansion leaves its node closed, a tick goes back, the commands on branches do
// nothing. Given up by the person it leaves nothing behind: the folder is closed and unread as
// before, so that no saved selection can get lost in a folder that is half there.
void tvwDirectory_Expand(EditorContext& context, state::TreeNode& node);

// The person ticked or unticked the node; its `checked` tells which. Sets the change flags, spreads
// the state down and up and, when the last tick goes, takes the ticks of the excluded extensions
// away. In a view the tick comes back and nothing else happens.
void tvwDirectory_NodeCheck(EditorContext& context, state::TreeNode& node);

// After any click: a tick that was taken away in a view comes back.
void tvwDirectory_Click(EditorContext& context);

// Labels are never edited; the numeric pad's `*` (106) is swallowed, for the control would expand
// everything.
void tvwDirectory_BeforeLabelEdit(int& Cancel);
void tvwDirectory_KeyDown(int& KeyCode);

// Gives the children of an expanded node its tick, and theirs where they are expanded. The walk
// goes over flat indices, twice the count of children at most, and ends at the first node that
// bears the last sibling's text. One that runs past the last node is reported; since the error's
// number does not fit the dialog's 16 bits, that raises overflow (6).
void ParchildCheck(EditorContext& context, state::TreeNode& node);

// Sets the tick of the node with this index.
void UncheckNode(EditorContext& context, std::size_t Index, bool State);

// The text up to its first NUL.
std::string_view TrimNull(std::string_view text);

// Records a folder's bare name; runs when the path of the hidden folder list changes.
void DirFolders_Change(EditorContext& context);

// The commands on the selected node. Drives C: and D: are opened one level and never walked.
void mnuExpand_Click(EditorContext& context);
void mnuCollapse_Click(EditorContext& context);

// Opens or closes the `count` nodes from flat index `first` on, and what is below each.
void TreeViewExpand(EditorContext& context, std::size_t count, std::size_t first);
void TreeViewCollapse(EditorContext& context, std::size_t count, std::size_t first);

// Two characters, one of them a colon.
bool isDriveText(std::string_view text);

} // namespace vardelin::editor
