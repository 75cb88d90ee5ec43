#include "platform/memory/memory_drives.h"

#include <algorithm>

namespace vardelin::platform {

namespace {

std::vector<Drive> firstDrives()
{
    return {{'C', DriveType::Fixed, "System", {}, "/"},
            {'D', DriveType::Fixed, "Data", {}, "/mnt/d"}};
}

} // namespace

MemoryDrives::MemoryDrives() : drives(firstDrives()) {}

std::vector<Drive> MemoryDrives::list()
{
    script().enter("drives.list", {});
    std::vector<Drive> sorted = drives;
    std::sort(sorted.begin(), sorted.end(),
              [](const Drive& a, const Drive& b) { return a.letter < b.letter; });
    return sorted;
}

} // namespace vardelin::platform
