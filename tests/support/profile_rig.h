#pragma once

#include "platform/memory/counting_message_loop.h"
#include "platform/memory/memory_drives.h"
#include "platform/memory/memory_machine_facts.h"
#include "platform/memory/memory_processes.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/memory_shell.h"
#include "profile/profile_context.h"
#include "support/trace_rig.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// A profile store on a machine in memory.
namespace vardelin::test {

class RecordingSchedules final : public profile::ScheduleRecords {
public:
    std::vector<std::string> deleted;
    std::vector<std::string> defaults;
    int raises = 0; // an error number

    bool DeleteSchedKey(std::string_view name) override
    {
        deleted.emplace_back(name);
        if (raises != 0)
            throw base::RuntimeError(raises);
        return true;
    }
    void WriteDefaultSchedReg(std::string_view name) override { defaults.emplace_back(name); }
};

// Each line with CR LF behind it.
inline std::string textOf(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

inline std::vector<std::string> textsOf(const state::ListBox& list)
{
    std::vector<std::string> texts;
    for (const state::ListRow& row : list.rows)
        texts.push_back(row.text);
    return texts;
}

inline std::vector<std::string> selectedOf(const state::ListBox& list)
{
    std::vector<std::string> texts;
    for (const state::ListRow& row : list.rows) {
        if (row.selected)
            texts.push_back(row.text);
    }
    return texts;
}

inline void select(state::ListBox& list, std::initializer_list<std::string_view> texts)
{
    for (state::ListRow& row : list.rows) {
        for (const std::string_view text : texts)
            row.selected = row.selected || row.text == text;
    }
}

// Folders \Profiles and \Data stand; the list of recent and primary profiles is there and empty.
struct ProfileRig : TraceRig {
    platform::CallScript script; // of the calls that reach the disk, the trace's left out
    platform::ScriptedFileSystem files{disk, script};
    platform::MemoryDrives drives;
    platform::MemoryRegistry registry;
    platform::MemoryShell shell;
    platform::MemoryMachineFacts facts;
    platform::MemoryProcesses processes;
    platform::CountingMessageLoop messageLoop;
    platform::Machine machine{files,     drives, registry,    shell,       facts,
                              processes, clock,  messageLoop, messageBoxes};
    state::FrameState frame;
    state::ProfileEditorState editor;
    state::ProfileStore store;
    RecordingSchedules schedules;
    profile::StateEditorLists lists{context, editor};
    profile::FileNumbers fileNumbers;
    profile::ProfileContext profiles{machine, context,   frame, editor,
                                     store,   schedules, lists, fileNumbers};

    ProfileRig()
    {
        disk.createFolder("C:\\App\\Profiles");
        disk.createFolder("C:\\App\\Data");
        putFile("C:\\App\\Data\\Other_Dsk.txt", "");
        frame.ST_App_Path = "C:\\App";
        frame.ST_Current_Profile = "Default.vdp";
    }
};

} // namespace vardelin::test
