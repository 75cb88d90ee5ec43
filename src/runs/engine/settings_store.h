#pragma once

#include "platform/machine.h"
#include "runs/engine/archive_header.h"
#include "runs/engine/archive_place.h"
#include "runs/engine/source_scan.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Settings groups in the archive. The files of a group lie below `OtherData\<group>\` under the
// same names as other copies, the newest of each alone; what is no file (the registry) is one file
// made of its text. Nothing of it is in the catalog.
namespace vardelin::engine {

// A settings text that differs from its newest copy.
struct PlannedDump {
    std::string group;
    std::string archivePath; // ends in a backslash
    std::string name;        // in front of the mark
    std::vector<std::string> oldFiles;
    CopyHeader header;
    std::string content;
};

// Adds the changed files of the profile's groups to the plan and gives the changed texts. What a
// group names and cannot be looked at goes to `missed`.
std::vector<PlannedDump> planSettings(const platform::Machine& machine, const ArchivePlace& place,
                                      RunKeys& keys, ScanPlan& plan, std::vector<Gap>& missed);

// The name of a group by the number that planned files carry.
std::string settingsGroupName(std::int8_t group);
// `<root>OtherData\<group>\`.
std::string settingsFolder(std::string_view archiveRoot, std::string_view group);

} // namespace vardelin::engine
