#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::platform {

// Stored by number in the registry file: never renumber.
enum class RegistryRoot : std::uint8_t {
    ClassesRoot = 0,
    CurrentUser = 1,
    LocalMachine = 2,
    Users = 3
};
enum class RegistryType : std::uint8_t {
    String = 1,
    ExpandString = 2,
    Binary = 3,
    DWord = 4,
    MultiString = 7
};

struct RegistryValue {
    std::string name; // empty for a key's default value
    RegistryType type = RegistryType::String;
    // A string's bytes without a NUL; a DWord's four bytes, little-endian; of a list of strings
    // each one with a NUL behind it.
    std::string data;
    friend bool operator==(const RegistryValue&, const RegistryValue&) = default;
};

// A store of keys and values, shared with other processes. Key paths use backslashes, with or
// without one at the end; keys and value names compare without regard to case and keep the case of
// their first writing. Keys and values list in the order of their first writing. The empty path is
// the root itself: it always exists, may hold values, and is never deleted (5).
//
// Reading what is not there is an empty result and no error. A store that cannot be read or written
// raises 70 (rights) or 57 with the store's path as subject.
class Registry {
public:
    Registry() = default;
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;
    virtual ~Registry() = default;

    virtual bool keyExists(RegistryRoot root, std::string_view key) = 0;
    // With its parents; an existing key is left as it is.
    virtual void createKey(RegistryRoot root, std::string_view key) = 0;
    virtual std::optional<RegistryValue> value(RegistryRoot root, std::string_view key,
                                               std::string_view name) = 0;
    // Makes the key where it is missing.
    virtual void setValue(RegistryRoot root, std::string_view key, const RegistryValue& value) = 0;
    // Whether there was one.
    virtual bool deleteValue(RegistryRoot root, std::string_view key, std::string_view name) = 0;
    // The key with its values and all its subkeys; whether there was one.
    virtual bool deleteKey(RegistryRoot root, std::string_view key) = 0;
    virtual std::vector<std::string> subKeys(RegistryRoot root, std::string_view key) = 0;
    virtual std::vector<RegistryValue> values(RegistryRoot root, std::string_view key) = 0;
    // Runs the changes as one: all of them stay, or, when one raises, none. Does not nest (5).
    virtual void transaction(const std::function<void()>& changes) = 0;

    // The text of a string value; none where it is missing or no string.
    std::optional<std::string> stringValue(RegistryRoot root, std::string_view key,
                                           std::string_view name);
    void setString(RegistryRoot root, std::string_view key, std::string_view name,
                   std::string_view text);
};

// Its values are the programs to start with the computer (under the machine's root) or with the
// person's session (under the user's), each a command line.
inline constexpr std::string_view kRunKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";

// "HKEY_LOCAL_MACHINE" and its three siblings.
std::string_view rootName(RegistryRoot root);
std::optional<RegistryRoot> rootNamed(std::string_view name); // any case

} // namespace vardelin::platform
