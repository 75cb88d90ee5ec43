#include "platform/memory/memory_registry.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/registry_path.h"

#include <algorithm>

namespace vardelin::platform {
namespace {

template <typename Items>
auto findNamed(Items& items, std::string_view name)
{
    return std::find_if(items.begin(), items.end(), [name](const auto& item) {
        return base::equalsIgnoringCase(item.name, name);
    });
}

} // namespace

bool MemoryRegistry::keyExists(RegistryRoot root, std::string_view key)
{
    script().enter("registry.keyExists", key);
    return findKey(root, key) != nullptr;
}

void MemoryRegistry::createKey(RegistryRoot root, std::string_view key)
{
    script().enter("registry.createKey", key);
    checkRegistryPath(key);
    needKey(root, key);
}

std::optional<RegistryValue> MemoryRegistry::value(RegistryRoot root, std::string_view key,
                                                   std::string_view name)
{
    script().enter("registry.value", key);
    const Key* found = findKey(root, key);
    if (found == nullptr)
        return std::nullopt;
    const auto hit = findNamed(found->values, name);
    return hit == found->values.end() ? std::nullopt : std::optional(*hit);
}

void MemoryRegistry::setValue(RegistryRoot root, std::string_view key, const RegistryValue& value)
{
    script().enter("registry.setValue", key);
    checkRegistryPath(key);
    checkRegistryValue(value);
    std::vector<RegistryValue>& values = needKey(root, key).values;
    const auto hit = findNamed(values, value.name);
    if (hit == values.end()) {
        values.push_back(value);
        return;
    }
    hit->type = value.type;
    hit->data = value.data;
}

bool MemoryRegistry::deleteValue(RegistryRoot root, std::string_view key, std::string_view name)
{
    script().enter("registry.deleteValue", key);
    Key* found = findKey(root, key);
    if (found == nullptr)
        return false;
    const auto hit = findNamed(found->values, name);
    if (hit == found->values.end())
        return false;
    found->values.erase(hit);
    return true;
}

bool MemoryRegistry::deleteKey(RegistryRoot root, std::string_view key)
{
    script().enter("registry.deleteKey", key);
    checkDeletableKey(key);
    const std::vector<std::string_view> parts = registryPathParts(key);
    const std::vector<std::string> above(parts.begin(), parts.end() - 1);
    Key* parent = findKey(root, base::join(above, "\\"));
    if (parent == nullptr)
        return false;
    const auto hit = findNamed(parent->subKeys, parts.back());
    if (hit == parent->subKeys.end())
        return false;
    parent->subKeys.erase(hit);
    return true;
}

std::vector<std::string> MemoryRegistry::subKeys(RegistryRoot root, std::string_view key)
{
    script().enter("registry.subKeys", key);
    std::vector<std::string> names;
    if (const Key* found = findKey(root, key)) {
        for (const Key& child : found->subKeys)
            names.push_back(child.name);
    }
    return names;
}

std::vector<RegistryValue> MemoryRegistry::values(RegistryRoot root, std::string_view key)
{
    script().enter("registry.values", key);
    const Key* found = findKey(root, key);
    return found != nullptr ? found->values : std::vector<RegistryValue>{};
}

void MemoryRegistry::transaction(const std::function<void()>& changes)
{
    script().enter("registry.transaction", {});
    if (m_inTransaction)
        throw base::RuntimeError(base::error_number::kInvalidCall, {}, "transactions do not nest");
    const Roots before = m_roots;
    m_inTransaction = true;
    try {
        changes();
    } catch (...) {
        m_roots = before;
        m_inTransaction = false;
        throw;
    }
    m_inTransaction = false;
}

MemoryRegistry::Key* MemoryRegistry::findKey(RegistryRoot root, std::string_view path)
{
    Key* key = &m_roots.at(static_cast<std::size_t>(root));
    for (std::string_view part : registryPathParts(path)) {
        const auto hit = findNamed(key->subKeys, part);
        if (hit == key->subKeys.end())
            return nullptr;
        key = &*hit;
    }
    return key;
}

MemoryRegistry::Key& MemoryRegistry::needKey(RegistryRoot root, std::string_view path)
{
    Key* key = &m_roots.at(static_cast<std::size_t>(root));
    for (std::string_view part : registryPathParts(path)) {
        const auto hit = findNamed(key->subKeys, part);
        if (hit == key->subKeys.end())
            key = &key->subKeys.emplace_back(Key{std::string(part), {}, {}});
        else
            key = &*hit;
    }
    return *key;
}

} // namespace vardelin::platform
