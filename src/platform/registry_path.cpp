#include "platform/registry_path.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/registry.h"

namespace vardelin::platform {

std::vector<std::string_view> registryPathParts(std::string_view key)
{
    std::vector<std::string_view> parts;
    for (std::string_view part : base::split(key, "\\")) {
        if (!part.empty())
            parts.push_back(part);
    }
    return parts;
}

std::string foldedRegistryPath(std::string_view key)
{
    std::string folded;
    for (std::string_view part : registryPathParts(key)) {
        if (!folded.empty())
            folded += '\\';
        folded += base::upperAscii(part);
    }
    return folded;
}

void checkRegistryValue(const RegistryValue& value)
{
    if (value.type == RegistryType::DWord && value.data.size() != 4)
        throw base::RuntimeError(base::error_number::kInvalidCall, value.name,
                                 "a number's data are four bytes, not " +
                                     std::to_string(value.data.size()));
}

void checkRegistryPath(std::string_view key)
{
    if (registryPathParts(key).size() > kMaxRegistryDepth)
        throw base::RuntimeError(base::error_number::kInvalidCall, std::string(key),
                                 "a key lies at most " + std::to_string(kMaxRegistryDepth) +
                                     " levels deep");
}

void checkDeletableKey(std::string_view key)
{
    if (registryPathParts(key).empty())
        throw base::RuntimeError(base::error_number::kInvalidCall, std::string(key),
                                 "a registry root cannot be deleted");
}

} // namespace vardelin::platform
