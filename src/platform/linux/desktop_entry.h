#pragma once

#include <string>
#include <string_view>

// The parts of desktop files ("Desktop Entry Specification") that take more than writing them down.
namespace vardelin::platform {

// A text as the value of a key of type string: one line.
std::string entryText(std::string_view text);

// A word of the key Exec, quoted by the key's own rules and its field codes switched off; the line
// of words is a text, for entryText() to write.
std::string execWord(std::string_view word);

// The words that start a program, by its path in the machine's own form.
std::string execStart(std::string_view program);

// The value of Exec that starts a program, by its path in the machine's own form, with one file
// behind it; written as entryText() writes it.
std::string execWithFile(std::string_view program);

// The value of a key in the group `[Desktop Entry]`, as it is written; empty where there is none.
std::string_view entryValue(std::string_view entry, std::string_view key);

// The first word of an Exec value as it is written: the program. Empty where there is none.
std::string execProgram(std::string_view value);

} // namespace vardelin::platform
