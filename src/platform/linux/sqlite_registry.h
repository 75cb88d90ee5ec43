#pragma once

#include "platform/registry.h"

#include <memory>
#include <string>

namespace vardelin::platform {

// The registry as a SQLite database in one file, shared by any number of processes.
//
// The file is opened at the first use. Reading a store that does not exist gives nothing and makes
// nothing; the first change makes the file, not its folder. A change is on the disk when its call
// comes back. The store keeps a rollback journal beside the file while a change is under way, and
// nothing at rest, so that the one file can be copied; a process that died in the middle of a
// change is undone by the next one that opens the store.
//
// Another process's change is waited for, at most 5 seconds. Errors carry `nativePath` and SQLite's
// reason: 70 where rights are missing or the store stays busy, 61 for a full disk, 57 for a damaged
// file, a file that is no registry (neither is touched) and all else.
//
// For one thread at a time. A child of fork() that goes on as the same program makes an object of
// its own, and is forked while no change is under way: SQLite counts its locks by process.
class SqliteRegistry final : public Registry {
public:
    explicit SqliteRegistry(std::string nativePath);
    ~SqliteRegistry() override;

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
    class Store;

    // The open store; null where reading finds no file. `change` makes the file where it is
    // missing.
    Store* openForReading();
    Store& openForChange();
    void change(const std::function<void(Store&)>& work);

    std::string m_nativePath;
    std::unique_ptr<Store> m_store;
    bool m_inTransaction = false;
};

} // namespace vardelin::platform
