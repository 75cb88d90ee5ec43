#pragma once

#include <string_view>

// The files of assets that a desktop is given, in the program itself: it may be started from a
// folder that has nothing else.
namespace vardelin::platform {

extern const std::string_view kProfileTypeXml; // a package of the shared MIME database
extern const std::string_view kProgramIconSvg;
extern const std::string_view kProfileIconSvg;

} // namespace vardelin::platform
