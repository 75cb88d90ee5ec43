#include "platform/registry.h"

#include "base/text.h"

#include <array>
#include <utility>

namespace vardelin::platform {
namespace {

constexpr std::array<std::pair<RegistryRoot, std::string_view>, 4> kRootNames{{
    {RegistryRoot::ClassesRoot, "HKEY_CLASSES_ROOT"},
    {RegistryRoot::CurrentUser, "HKEY_CURRENT_USER"},
    {RegistryRoot::LocalMachine, "HKEY_LOCAL_MACHINE"},
    {RegistryRoot::Users, "HKEY_USERS"},
}};

} // namespace

std::string_view rootName(RegistryRoot root)
{
    for (const auto& [known, name] : kRootNames) {
        if (known == root)
            return name;
    }
    return {};
}

std::optional<RegistryRoot> rootNamed(std::string_view name)
{
    for (const auto& [root, known] : kRootNames) {
        if (base::equalsIgnoringCase(name, known))
            return root;
    }
    return std::nullopt;
}

std::optional<std::string> Registry::stringValue(RegistryRoot root, std::string_view key,
                                                 std::string_view name)
{
    auto found = value(root, key, name);
    if (!found ||
        (found->type != RegistryType::String && found->type != RegistryType::ExpandString))
        return std::nullopt;
    return std::move(found->data);
}

void Registry::setString(RegistryRoot root, std::string_view key, std::string_view name,
                         std::string_view text)
{
    setValue(root, key, {std::string(name), RegistryType::String, std::string(text)});
}

} // namespace vardelin::platform
