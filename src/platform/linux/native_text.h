#pragma once

#include <string>
#include <system_error>

namespace vardelin::platform {

// The bytes of a small file, by its path in the machine's own form; empty where it cannot be read.
std::string readNativeFile(const std::string& path);

// Writes the whole file, beside it first: who reads it meanwhile has the old text or the new one. A
// file that has the text already is left alone. Raises 70 or 57 with the path as subject.
void replaceNativeFile(const std::string& path, const std::string& text);

// Raises a failure of the file system library: 70 where rights are missing, else 57.
[[noreturn]] void raiseFileError(const std::error_code& error, const std::string& path);

// The text of an environment variable, empty where it is not set.
std::string environmentText(const char* name);

} // namespace vardelin::platform
