#pragma once

#include "opening_rig.h"
#include "platform/memory/power_cut_file_system.h"

namespace vardelin::test {

// The profile store on a disk that keeps for certain only what was flushed.
struct PowerCutRig {
    platform::MemoryTree tree{true};
    platform::PowerCutFileSystem disk{withDrives(tree)};
    platform::CallScript script;
    platform::ScriptedFileSystem files{disk, script};
    OpeningRig rig; // everything but the disk
    platform::Machine machine{files,     rig.drives,      rig.registry,
                              rig.shell, rig.facts,       rig.processes,
                              rig.clock, rig.messageLoop, rig.messageBoxes};
    profile::ProfileContext profiles{machine,   rig.ownContext, rig.frame, rig.editor,
                                     rig.store, rig.schedules,  rig.lists, rig.fileNumbers};

    static platform::MemoryTree& withDrives(platform::MemoryTree& tree)
    {
        tree.addDrive('C');
        tree.addDrive('D');
        return tree;
    }
};

} // namespace vardelin::test
