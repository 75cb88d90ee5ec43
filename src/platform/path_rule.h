#pragma once

#include "base/keyed_collection.h"
#include "platform/file_system.h"

namespace vardelin::platform {

// How keyed collections compare paths of this machine: as its file systems do, so that two names
// that are two files there are two keys here.
inline base::KeyRule pathRule(const FileSystem& files)
{
    return files.isCaseSensitive() ? base::KeyRule::Exact : base::KeyRule::IgnoreCase;
}

} // namespace vardelin::platform
