#pragma once

#include "ctl/options.h"
#include "ctl/terminal.h"

#include <cstdint>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace vardelin::ctl {

using Json = nlohmann::ordered_json;

// Sets `key` to a text of any bytes. One that is no valid UTF-8 has U+FFFD in the places of the bad
// bytes, and `<key>Bytes` holds all of it as lower-case hexadecimal digits.
void putText(Json& object, const std::string& key, std::string_view bytes);
// Sets `key` to an instant as 2003-07-03T09:05:03.123456789Z.
void putInstant(Json& object, const std::string& key, std::int64_t ns);

// What a command prints, for a person or as objects. Results go to the standard output; warnings,
// errors and progress to the standard error stream.
class Output {
public:
    Output(Terminal& terminal, const GlobalOptions& options);

    bool json() const { return m_options.json; }
    bool quiet() const { return m_options.quiet; }

    // A part of what was asked for, as it is; nothing with --json.
    void result(std::string_view text);
    // What goes beyond it, such as a summary, without its line end; nothing with --json or --quiet.
    void note(std::string_view line);
    // Always, behind "vardelinctl: ", made visible.
    void warning(std::string_view line);
    void error(std::string_view line);
    // One object on a line of its own; nothing without --json.
    void object(const Json& object);

private:
    void message(std::string_view line);

    Terminal& m_terminal;
    GlobalOptions m_options;
};

} // namespace vardelin::ctl
