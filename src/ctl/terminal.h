#pragma once

#include <functional>
#include <iosfwd>
#include <string>

namespace vardelin::ctl {

// The streams of the program and what stands behind them. Outlives every command.
struct Terminal {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    bool errIsTerminal = false;
    std::function<int()> width = [] { return 80; };           // of the terminal, in columns
    std::function<bool()> interrupted = [] { return false; }; // the person pressed Ctrl+C
    std::string workingFolder = "/"; // in the machine's own form; relative paths start here
};

} // namespace vardelin::ctl
