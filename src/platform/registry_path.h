#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// What all registries have in common about the texts of key paths and values.
namespace vardelin::platform {

struct RegistryValue;

// Deep enough for every real key, and shallow enough for those who walk the keys by recursion.
inline constexpr std::size_t kMaxRegistryDepth = 512;

// The names along a key path, from the root down: `\A\\B\` gives A and B. The views live as long as
// `key` does. The empty path is the root itself.
std::vector<std::string_view> registryPathParts(std::string_view key);
// What two texts of one key path have in common: ASCII upper case, single backslashes between the
// names and none at the ends.
std::string foldedRegistryPath(std::string_view key);
// Raises 5 for a number whose data are not four bytes: every later reader would stumble over it.
void checkRegistryValue(const RegistryValue& value);
// Raises 5 for a path of more than kMaxRegistryDepth names.
void checkRegistryPath(std::string_view key);
// Raises 5 for the root itself, which one careless line of text must not be able to empty.
void checkDeletableKey(std::string_view key);

} // namespace vardelin::platform
