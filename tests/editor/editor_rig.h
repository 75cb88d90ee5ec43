#pragma once

#include "editor/source_capture.h"
#include "editor/source_tree.h"
#include "platform/memory/counting_message_loop.h"
#include "platform/memory/memory_drives.h"
#include "platform/memory/memory_machine_facts.h"
#include "platform/memory/memory_processes.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/memory_shell.h"
#include "support/trace_rig.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::test {

// Counts the files that an icon was asked for, and gives each an index of its own.
class NumberedIcons final : public editor::FileIcons {
public:
    std::vector<std::string> asked;
    int GetIcon(std::string_view path) override
    {
        asked.emplace_back(path);
        return 10 + static_cast<int>(asked.size());
    }
};

// The editor's tree on a machine in memory with the empty disks D: and E:, and C: for the trace.
struct EditorRig : TraceRig {
    platform::MemoryDrives drives;
    platform::MemoryRegistry registry;
    platform::MemoryShell shell;
    platform::MemoryMachineFacts facts;
    platform::MemoryProcesses processes;
    platform::CountingMessageLoop messageLoop;
    platform::Machine machine{disk,      drives, registry,    shell,       facts,
                              processes, clock,  messageLoop, messageBoxes};
    state::FrameState frame;
    state::ProfileEditorState record;
    state::ProfileStore store;
    editor::SourceTreeForm form;
    NumberedIcons icons;
    editor::EditorContext editing{machine, context, frame, record, store, form, icons};
    state::TreeView& tree = record.tvwDirectory;

    EditorRig()
    {
        disk.addDrive('E');
        drives.drives.clear();
        addDrive('D');
        addDrive('E');
    }

    void addDrive(char letter, platform::DriveType type = platform::DriveType::Fixed)
    {
        platform::Drive drive;
        drive.letter = letter;
        drive.type = type;
        drives.drives.push_back(drive);
    }
    // Folders end in a backslash; parents come by themselves.
    void put(std::initializer_list<std::string_view> paths)
    {
        for (const std::string_view path : paths) {
            if (path.ends_with('\\')) {
                disk.createFolders(path);
            } else {
                disk.createFolders(platform::parentOf(path));
                putFile(path, "x");
            }
        }
    }
    void newMode()
    {
        frame.BL_New_Mode = true;
        frame.BL_Edit_Mode = frame.BL_Open_Mode = false;
    }
    // Edit mode with these opened sources, and the tree as it stands when editing starts.
    void edit(std::initializer_list<std::string_view> opened)
    {
        frame.BL_Edit_Mode = true;
        frame.BL_New_Mode = frame.BL_Open_Mode = false;
        for (const std::string_view line : opened)
            store.opened.clxnOpenedSources.add(std::string(line), line);
        editor::BuildDriveList(editing);
        editor::restoreOpenedDrives(editing);
    }
    state::TreeNode& at(std::string_view key)
    {
        state::TreeNode* node = tree.find(key);
        if (node == nullptr)
            throw base::RuntimeError(base::error_number::kElementNotFound, std::string(key));
        return *node;
    }
    void expand(std::string_view key) { editor::setExpanded(editing, at(key), true); }
    void collapse(std::string_view key) { editor::setExpanded(editing, at(key), false); }
    void tick(std::string_view key, bool on = true)
    {
        at(key).checked = on;
        editor::tvwDirectory_NodeCheck(editing, at(key));
    }
    void untick(std::string_view key) { tick(key, false); }
    std::vector<std::string> capture()
    {
        store.save.clxnSources.clear();
        editor::GettingChkedItems(editing);
        return store.save.clxnSources.items();
    }
    // Every node in its order: `+` ticked, `-` not, then the colour (g, p, 0 or w), then the text.
    std::vector<std::string> shown() const
    {
        std::vector<std::string> rows;
        for (std::size_t i = 1; i <= tree.count(); ++i)
            rows.push_back(look(tree.node(i)) + " " + tree.node(i).text);
        return rows;
    }
    std::string look(std::string_view key) { return look(at(key)); }
    static std::string look(const state::TreeNode& node)
    {
        const char colour = node.foreColor == state::kWhollySelectedColor   ? 'g'
                            : node.foreColor == state::kPartlySelectedColor ? 'p'
                            : node.foreColor == state::kWindowTextColor     ? 'w'
                                                                            : '0';
        return std::string(node.checked ? "+" : "-") + colour;
    }
    // Procedure and custom message of every error dialog.
    std::vector<std::string> errorsShown() const
    {
        std::vector<std::string> texts;
        for (const auto& each : dialog.shown)
            texts.push_back(each.txtProcName.text + ": " + each.txtInf.text);
        return texts;
    }
};

} // namespace vardelin::test
