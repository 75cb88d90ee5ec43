#pragma once

#include "base/runtime_error.h"
#include "platform/file_system.h"

#include <string>

// Why a file or folder was left out of a backup, as one clause that a person reads behind its path.
namespace vardelin::engine {

// `error` came up when the file was opened or read.
std::string missedFileReason(const base::RuntimeError& error);
// The folder could not be opened or listed, so nothing below it was saved.
std::string missedFolderReason(const base::RuntimeError& error);
// What stands at the name now is of another kind than when the folder was listed.
std::string replacedReason(platform::FileKind now);

inline constexpr const char* kVanished = "it vanished during the run";
inline constexpr const char* kFolderReplaced =
    "the folder was replaced by another one during the run";

} // namespace vardelin::engine
