#include "platform/memory/memory_machine.h"

namespace vardelin::platform {

Machine MemoryMachine::machine()
{
    return {fileSystem, drives, registry,    shell,       facts,
            processes,  clock,  messageLoop, messageBoxes};
}

} // namespace vardelin::platform
