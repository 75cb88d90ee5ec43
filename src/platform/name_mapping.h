#pragma once

#include <string>
#include <string_view>

namespace vardelin::platform {

// Names on a disk that allows any byte but `/` and NUL, as names that a Windows-style path can
// hold.
//
// Each of `\ : * ? " < > |`, the bytes 1 to 31, and a blank or dot at the very end becomes the
// UTF-8 form of U+F000 plus its code. A name that already holds one of those characters, or U+F0FF,
// gets U+F0FF in front of each, so that the two functions are inverse to each other for every name,
// valid UTF-8 or not. A name without such bytes comes back as it is.
std::string nameFromDisk(std::string_view diskName);
std::string nameToDisk(std::string_view name);

} // namespace vardelin::platform
