#pragma once

#include "platform/registry.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Registry contents as the text of a `.reg` file.
//
// The first line with text is `REGEDIT4` or `Windows Registry Editor Version 5.00`; the text is
// bytes either way. Lines end in LF or CR LF; blanks and tabs around a line do not count; a line
// that begins with `;` is a comment. A section `[HKEY_...\key]` makes the key, `[-HKEY_...\key]`
// deletes it; the lines below a section are its values:
//
//   "name"="text"          string             @=...           the key's default value
//   "name"=dword:0000000a  number             "name"=-        deletes the value
//   "name"=hex:01,02       bytes              "name"=hex(2):  string with variables
//   "name"=hex(1):         string             "name"=hex(7):  list of strings
//
// Between quotes `\\` and `\"` stand for `\` and `"`; a backslash before anything else is itself,
// because some writers double nothing. A value ends at the last quote of its line. A hex list goes
// on in the next line where its line ends in `\`. Strings written as hex end in a NUL, which the
// store does not keep.
namespace vardelin::platform {

struct RegistryChange {
    enum class Kind : std::uint8_t { CreateKey, DeleteKey, SetValue, DeleteValue };

    Kind kind = Kind::CreateKey;
    RegistryRoot root = RegistryRoot::LocalMachine;
    std::string key;     // without backslashes at its ends; never empty where kind is DeleteKey
    RegistryValue value; // of DeleteValue only the name
};

// All changes in the order of the text. Raises 5 with "line <n>" as subject and the cause as reason
// for the first line that makes no sense.
std::vector<RegistryChange> parseRegistryText(std::string_view text);

// Makes all changes in one transaction, or, when one raises, none.
void applyRegistryChanges(Registry& registry, const std::vector<RegistryChange>& changes);

enum class RegistryOrder : std::uint8_t {
    Stored, // as the store lists them
    Sorted, // subkeys and values by name, case ignored
};

// A key with all that is below it, each key before its subkeys, lines ending in CR LF, as a text
// that parseRegistryText takes back unchanged. A key that does not exist gives the first line
// alone; the empty key is the whole root.
std::string registryText(Registry& registry, RegistryRoot root, std::string_view key,
                         RegistryOrder order = RegistryOrder::Sorted);

} // namespace vardelin::platform
