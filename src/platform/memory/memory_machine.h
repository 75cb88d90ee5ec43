#pragma once

#include "platform/machine.h"
#include "platform/memory/counting_message_loop.h"
#include "platform/memory/memory_clock.h"
#include "platform/memory/memory_drives.h"
#include "platform/memory/memory_file_system.h"
#include "platform/memory/memory_machine_facts.h"
#include "platform/memory/memory_processes.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/memory_shell.h"
#include "platform/memory/scripted_message_boxes.h"

namespace vardelin::platform {

// A whole machine in memory, for tests: two empty fixed disks C: and D:, an empty registry, a clock
// that stands still. Every port has a script of its own, so a test fails the calls of the port that
// it means. The doubles' own headers tell what they know at first.
class MemoryMachine {
public:
    MemoryFileSystem fileSystem;
    MemoryDrives drives;
    MemoryRegistry registry;
    MemoryShell shell;
    MemoryMachineFacts facts;
    MemoryProcesses processes;
    MemoryClock clock;
    CountingMessageLoop messageLoop;
    ScriptedMessageBoxes messageBoxes;

    // Refers to this object's ports and lives no longer than it does.
    Machine machine();
};

} // namespace vardelin::platform
