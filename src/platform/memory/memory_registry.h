#pragma once

#include "platform/memory/scripted_double.h"
#include "platform/registry.h"

#include <array>
#include <string>
#include <vector>

namespace vardelin::platform {

// A registry that lives and dies with the test. A transaction and its changes are calls of their
// own, so that the n-th change can fail. For one thread.
class MemoryRegistry final : public Registry, public ScriptedDouble {
public:
    bool keyExists(RegistryRoot root, std::string_view key) override;
    void createKey(RegistryRoot root, std::string_view key) override;
    std::optional<RegistryValue> value(RegistryRoot root, std::string_view key,
                                       std::string_view name) override;
    void setValue(RegistryRoot root, std::string_view key, const RegistryValue& value) override;
    bool deleteValue(RegistryRoot root, std::string_view key, std::string_view name) override;
    bool deleteKey(RegistryRoot root, std::string_view key) override;
    std::vector<std::string> subKeys(RegistryRoot root, std::string_view key) override;
    std::vector<RegistryValue> values(RegistryRoot root, std::string_view key) override;
    void transaction(const std::function<void()>& changes) override;

private:
    struct Key {
        std::string name;
        std::vector<RegistryValue> values;
        std::vector<Key> subKeys;
    };
    using Roots = std::array<Key, 4>; // by the number of the root

    Key* findKey(RegistryRoot root, std::string_view path);
    Key& needKey(RegistryRoot root, std::string_view path);

    Roots m_roots;
    bool m_inTransaction = false;
};

} // namespace vardelin::platform
