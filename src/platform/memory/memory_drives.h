#pragma once

#include "platform/drives.h"
#include "platform/memory/scripted_double.h"

namespace vardelin::platform {

// The drives that the test lists: at first the fixed disks C: and D:, as the in-memory file system
// has them. For one thread.
class MemoryDrives final : public Drives, public ScriptedDouble {
public:
    MemoryDrives();

    std::vector<Drive> drives; // in any order

    std::vector<Drive> list() override;
};

} // namespace vardelin::platform
