#pragma once

#include <string_view>

namespace vardelin::platform {

// How this system shows a program's help.
struct HelpViewer {
    std::string_view program; // for Processes::start, with the file's native path behind it
    std::string_view file;    // below the application folder
};

HelpViewer helpViewer();

} // namespace vardelin::platform
