#pragma once

#include <string_view>

namespace vardelin::monitors {

// The main function of the monitor of this name on Linux: the application folder is that of the
// executable, and SIGTERM, SIGINT and SIGHUP ask it to end. Gives the exit code of the program
// (monitor.h).
int runProgram(std::string_view name);

} // namespace vardelin::monitors
