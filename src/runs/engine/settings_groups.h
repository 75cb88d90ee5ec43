#pragma once

#include "platform/machine.h"
#include "runs/engine/outcome.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

// What makes up each settings group on this machine.
namespace vardelin::engine {

inline constexpr std::string_view kRegistryGroup = "Registry Settings";
// The groups under the names that profiles, archives and restores use, in the order of the list.
inline constexpr std::array<std::string_view, 4> kSettingsGroups{
    kRegistryGroup, "Desktop Settings", "IE Favorites", "Outlook Settings"};
// The group's own spelling for a name in any case; empty for a name that is none.
std::string_view settingsGroup(std::string_view name);

// The text of the registry: the relative name of the one item of its group.
inline constexpr std::string_view kRegistryDumpName = "registry.reg";

// One file of a group, or the registry's text.
struct SettingsItem {
    std::string sourcePath; // `C:\home\ann\Desktop\a.txt`; empty for a text
    // `C\home\ann\Desktop\a.txt`: the source path without its colon, so that no two items of a
    // group collide and the path can be told from the name.
    std::string relativeName;
    std::string bytes;       // of a text; empty for a file, which is read where it lies
    platform::FileInfo info; // of a file itself, links not followed; unset for a text
};

// The items of a group, each once; none for an unknown group or where this machine has nothing of
// it. Files and symbolic links at and below the group's paths; links are not followed, and folders,
// sockets, pipes and devices are left out. In each folder first what is in its subfolders, then its
// own files, both in the folder's order, so that the files of one folder stand together.
//
// The registry gives one text with all that belongs to the person and the programs, and nothing of
// the drives; its errors are raised. What cannot be listed goes to `missed`, where one is given,
// and the rest is collected all the same.
std::vector<SettingsItem> collectSettings(const platform::Machine& machine, std::string_view group,
                                          std::vector<Gap>* missed = nullptr);

// The path that a relative name came from; empty for the registry's text and for a name that is no
// path below a drive.
std::string settingsSourcePath(std::string_view relativeName);

} // namespace vardelin::engine
