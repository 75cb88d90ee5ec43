#pragma once

#include "archive/review.h"
#include "platform/memory/counting_message_loop.h"
#include "platform/memory/memory_drives.h"
#include "platform/memory/memory_machine_facts.h"
#include "platform/memory/memory_processes.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/memory_shell.h"
#include "platform/memory/scripted_file_system.h"
#include "support/trace_rig.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::test {

// The review of the profile Work.vdp, whose archive is D:\Backup\Work, on a machine in memory with
// the application folder C:\App. The script holds the calls of the review alone, not the trace's.
struct ReviewRig : TraceRig {
    platform::CallScript script;
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
    state::ProfileScalars profile;
    state::frmVDStorage form;
    archive::ReviewState state;
    archive::ReviewContext review{machine, context, frame, profile, form, state};

    ReviewRig()
    {
        disk.createFolders("C:\\App\\Data");
        disk.createFolders("D:\\Backup\\Work");
        frame.ST_App_Path = "C:\\App";
        frame.ST_Current_Profile = "Work.vdp";
        profile.sDestinationPath = "D:\\Backup";
        profile.bCompressFiles = true;
    }

    static std::string inArchive(std::string_view below)
    {
        return "D:\\Backup\\Work\\" + std::string(below);
    }
    // Archive files of three bytes; folders end in a backslash.
    void put(std::initializer_list<std::string_view> names)
    {
        for (const std::string_view name : names) {
            const std::string path = inArchive(name);
            if (path.ends_with('\\')) {
                disk.createFolders(path);
            } else {
                disk.createFolders(platform::parentOf(path));
                putFile(path, "xyz");
            }
        }
    }
    bool inStore(std::string_view below) { return disk.find(inArchive(below)).has_value(); }
    std::string model() { return disk.readAll("C:\\App\\model.txt"); }

    void load() { archive::frmVDStorage_Load(review); }
    std::size_t rowOf(std::string_view key) const
    {
        for (std::size_t i = 0; i < form.lstRestore.size(); ++i) {
            if (form.lstRestore[i].key == key)
                return i + 1;
        }
        throw base::RuntimeError(base::error_number::kElementNotFound, std::string(key));
    }
    state::ReviewRow& row(std::string_view key) { return form.lstRestore[rowOf(key) - 1]; }
    // Opens the rows with these keys, or closes them where they are open.
    void click(std::initializer_list<std::string_view> keys)
    {
        for (const std::string_view key : keys)
            archive::rowButtonClicked(review, rowOf(key));
    }
    void select(std::initializer_list<std::string_view> keys)
    {
        for (state::ReviewRow& each : form.lstRestore)
            each.selected = false;
        for (const std::string_view key : keys)
            row(key).selected = true;
    }
    // Every row as it looks: two blanks a level, `+` or `-`, the text.
    std::vector<std::string> shown() const
    {
        std::vector<std::string> lines;
        for (const state::ReviewRow& each : form.lstRestore) {
            const char button = each.button == state::RowButton::Plus    ? '+'
                                : each.button == state::RowButton::Minus ? '-'
                                                                         : ' ';
            lines.push_back(std::string(2U * each.level, ' ') + button + each.text);
        }
        return lines;
    }
    // Number, procedure and sentence of every error dialog.
    std::vector<std::string> errorsShown() const
    {
        std::vector<std::string> texts;
        for (const auto& each : dialog.shown)
            texts.push_back(each.txtSysErrNo.text + " " + each.txtProcName.text + ": " +
                            each.txtInf.text);
        return texts;
    }
};

} // namespace vardelin::test
