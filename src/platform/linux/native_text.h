#pragma once

#include <string>

namespace vardelin::platform {

// The bytes of a small file, by its path in the machine's own form; empty where it cannot be read.
std::string readNativeFile(const std::string& path);

// The text of an environment variable, empty where it is not set.
std::string environmentText(const char* name);

} // namespace vardelin::platform
