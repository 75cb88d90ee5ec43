#include "platform/linux/sqlite_registry.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/registry_path.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace vardelin::platform {
namespace {

namespace number = base::error_number;

constexpr int kBusyMilliseconds = 5000;
// Both stand in the file's header: "VdRg" tells that the file is ours, the version its tables.
constexpr int kApplicationId = 0x56645267;
constexpr int kSchemaVersion = 1;

// `folded` is the whole path below the root (foldedRegistryPath), `parent` the same of the key
// above and null for the root itself. The numbers grow with each row and never come back, so they
// keep the order of the first writing.
constexpr const char* kSchema = R"(
CREATE TABLE registry_key(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    root INTEGER NOT NULL,
    folded TEXT NOT NULL,
    parent TEXT,
    name TEXT NOT NULL,
    UNIQUE(root, folded));
CREATE INDEX registry_key_parent ON registry_key(root, parent, id);
CREATE TABLE registry_value(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    key INTEGER NOT NULL REFERENCES registry_key(id) ON DELETE CASCADE,
    folded TEXT NOT NULL,
    name TEXT NOT NULL,
    type INTEGER NOT NULL,
    data BLOB NOT NULL,
    UNIQUE(key, folded));
)";

[[noreturn]] void raise(sqlite3* database, int code, const std::string& path)
{
    std::string reason =
        database != nullptr ? sqlite3_errmsg(database) : std::string(sqlite3_errstr(code));
    int error = number::kDeviceIo;
    switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        reason = "another process holds the store; waited " +
                 std::to_string(kBusyMilliseconds / 1000) + " seconds";
        error = number::kPermissionDenied;
        break;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        error = number::kPermissionDenied;
        break;
    case SQLITE_FULL:
        error = number::kDiskFull;
        break;
    case SQLITE_CANTOPEN: {
        const int cause = database != nullptr ? sqlite3_system_errno(database) : 0;
        if (cause != 0)
            reason += std::string(": ") + std::strerror(cause); // NOLINT(concurrency-mt-unsafe)
        if (cause == EACCES || cause == EPERM || cause == EROFS)
            error = number::kPermissionDenied;
        break;
    }
    default:
        break;
    }
    throw base::RuntimeError(error, path, reason);
}

int number32(RegistryRoot root)
{
    return static_cast<int>(root);
}

std::string valueFold(std::string_view name)
{
    return base::upperAscii(name);
}

} // namespace

// An open database and its statements' way of running. Nothing here begins a transaction by itself.
class SqliteRegistry::Store {
public:
    // One run of a statement; its bound texts must outlive it.
    class Statement {
    public:
        Statement(Store& store, const char* sql) : m_store(store)
        {
            m_store.check(sqlite3_prepare_v2(m_store.m_database, sql, -1, &m_statement, nullptr));
        }
        Statement(const Statement&) = delete;
        Statement& operator=(const Statement&) = delete;
        ~Statement() { sqlite3_finalize(m_statement); }

        Statement& bind(std::int64_t value)
        {
            m_store.check(sqlite3_bind_int64(m_statement, ++m_bound, value));
            return *this;
        }
        Statement& bind(std::string_view text)
        {
            // A null pointer would bind NULL and not the empty text.
            m_store.check(sqlite3_bind_text64(m_statement, ++m_bound,
                                              text.empty() ? "" : text.data(), text.size(),
                                              SQLITE_STATIC, SQLITE_UTF8));
            return *this;
        }
        Statement& bindBytes(std::string_view bytes)
        {
            m_store.check(sqlite3_bind_blob64(m_statement, ++m_bound,
                                              bytes.empty() ? "" : bytes.data(), bytes.size(),
                                              SQLITE_STATIC));
            return *this;
        }
        Statement& bindNull()
        {
            m_store.check(sqlite3_bind_null(m_statement, ++m_bound));
            return *this;
        }

        bool step()
        {
            const int code = sqlite3_step(m_statement);
            if (code != SQLITE_ROW && code != SQLITE_DONE)
                m_store.fail(code);
            return code == SQLITE_ROW;
        }

        std::int64_t integer(int column) { return sqlite3_column_int64(m_statement, column); }
        std::string bytes(int column)
        {
            const void* start = sqlite3_column_blob(m_statement, column);
            const int length = sqlite3_column_bytes(m_statement, column);
            if (start == nullptr || length <= 0)
                return {};
            return {static_cast<const char*>(start), static_cast<std::size_t>(length)};
        }

    private:
        Store& m_store;
        sqlite3_stmt* m_statement = nullptr;
        int m_bound = 0;
    };

    Store(std::string path, bool create) : m_path(std::move(path))
    {
        try {
            open(create);
        } catch (...) {
            sqlite3_close(m_database);
            throw;
        }
    }
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    ~Store() { sqlite3_close(m_database); }

    void run(const char* sql) { check(sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr)); }
    int changes() { return sqlite3_changes(m_database); }
    bool inTransaction() { return sqlite3_get_autocommit(m_database) == 0; }
    void rollBack() noexcept
    {
        if (inTransaction())
            sqlite3_exec(m_database, "ROLLBACK", nullptr, nullptr, nullptr);
    }

    // The file has no tables: new, or left empty by a process that died while making it.
    bool isEmpty()
    {
        Statement count(*this, "SELECT count(*) FROM sqlite_schema");
        return count.step() && count.integer(0) == 0;
    }
    // Within a transaction, so that two processes make the tables once.
    void makeTables()
    {
        if (!isEmpty())
            return;
        run(kSchema);
        run(("PRAGMA application_id=" + std::to_string(kApplicationId)).c_str());
        run(("PRAGMA user_version=" + std::to_string(kSchemaVersion)).c_str());
    }

    // The key's number, or 0.
    std::int64_t keyId(RegistryRoot root, const std::string& folded)
    {
        Statement find(*this, "SELECT id FROM registry_key WHERE root=? AND folded=?");
        find.bind(number32(root)).bind(folded);
        return find.step() ? find.integer(0) : 0;
    }
    std::int64_t needKey(RegistryRoot root, std::string_view key)
    {
        std::int64_t id = 0;
        std::string folded;
        const std::vector<std::string_view> parts = registryPathParts(key);
        if (parts.empty())
            return addKey(root, folded, nullptr, {});
        for (std::string_view part : parts) {
            const std::string parent = folded;
            folded += (folded.empty() ? "" : "\\") + base::upperAscii(part);
            id = addKey(root, folded, &parent, part);
        }
        return id;
    }

    void check(int code)
    {
        if (code != SQLITE_OK)
            fail(code);
    }
    [[noreturn]] void fail(int code) { raise(m_database, code, m_path); }

private:
    void open(bool create)
    {
        const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
        check(sqlite3_open_v2(m_path.c_str(), &m_database, flags, nullptr));
        sqlite3_extended_result_codes(m_database, 1);
        check(sqlite3_busy_timeout(m_database, kBusyMilliseconds));
        // A damaged store is refused as a whole, before a change could spread the damage.
        {
            Statement quick(*this, "PRAGMA quick_check(1)");
            if (quick.step() && quick.bytes(0) != "ok")
                throw base::RuntimeError(number::kDeviceIo, m_path,
                                         "the store is damaged: " + quick.bytes(0));
        }
        if (!isEmpty())
            checkIdentity();
        // EXTRA also flushes the folder when the journal goes, or a power cut could bring back a
        // journal and undo a change that was reported as done.
        run("PRAGMA synchronous=EXTRA");
        run("PRAGMA foreign_keys=ON");
    }

    void checkIdentity()
    {
        const std::int64_t application = pragma("PRAGMA application_id");
        const std::int64_t version = pragma("PRAGMA user_version");
        if (application != kApplicationId)
            throw base::RuntimeError(number::kDeviceIo, m_path,
                                     "the file is a database of another program");
        if (version > kSchemaVersion)
            throw base::RuntimeError(number::kDeviceIo, m_path,
                                     "the store has form " + std::to_string(version) +
                                         ", this program knows form " +
                                         std::to_string(kSchemaVersion));
    }
    std::int64_t pragma(const char* sql)
    {
        Statement statement(*this, sql);
        return statement.step() ? statement.integer(0) : 0;
    }

    std::int64_t addKey(RegistryRoot root, const std::string& folded, const std::string* parent,
                        std::string_view name)
    {
        if (const std::int64_t id = keyId(root, folded); id != 0)
            return id;
        Statement add(*this,
                      "INSERT INTO registry_key(root, folded, parent, name) VALUES(?,?,?,?)");
        add.bind(number32(root)).bind(folded);
        if (parent != nullptr)
            add.bind(*parent);
        else
            add.bindNull();
        add.bind(name).step();
        return sqlite3_last_insert_rowid(m_database);
    }

    std::string m_path;
    sqlite3* m_database = nullptr;
};

SqliteRegistry::SqliteRegistry(std::string nativePath) : m_nativePath(std::move(nativePath)) {}

SqliteRegistry::~SqliteRegistry() = default;

SqliteRegistry::Store* SqliteRegistry::openForReading()
{
    if (!m_store) {
        if (::access(m_nativePath.c_str(), F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR))
            return nullptr;
        m_store = std::make_unique<Store>(m_nativePath, false);
    }
    // The tables may be another process's to make, so this is looked at afresh.
    return m_store->isEmpty() ? nullptr : m_store.get();
}

SqliteRegistry::Store& SqliteRegistry::openForChange()
{
    if (!m_store)
        m_store = std::make_unique<Store>(m_nativePath, true);
    return *m_store;
}

void SqliteRegistry::change(const std::function<void(Store&)>& work)
{
    if (m_inTransaction) {
        // Some failures (a full disk) end SQLite's transaction at once; what followed would stay.
        if (!m_store->inTransaction())
            throw base::RuntimeError(number::kDeviceIo, m_nativePath,
                                     "the transaction was given up after an error");
        work(*m_store);
        return;
    }
    transaction([&] { work(*m_store); });
}

void SqliteRegistry::transaction(const std::function<void()>& changes)
{
    if (m_inTransaction)
        throw base::RuntimeError(number::kInvalidCall, m_nativePath, "transactions do not nest");
    Store& store = openForChange();
    // Immediate: the lock is taken before anything is read, so that two processes wait for each
    // other and neither is refused in the middle.
    store.run("BEGIN IMMEDIATE");
    m_inTransaction = true;
    try {
        store.makeTables();
        changes();
        if (!store.inTransaction())
            throw base::RuntimeError(number::kDeviceIo, m_nativePath,
                                     "the transaction was given up after an error");
        store.run("COMMIT");
    } catch (...) {
        m_inTransaction = false;
        store.rollBack();
        throw;
    }
    m_inTransaction = false;
}

bool SqliteRegistry::keyExists(RegistryRoot root, std::string_view key)
{
    Store* store = openForReading();
    const std::string folded = foldedRegistryPath(key);
    return folded.empty() || (store != nullptr && store->keyId(root, folded) != 0);
}

void SqliteRegistry::createKey(RegistryRoot root, std::string_view key)
{
    checkRegistryPath(key);
    change([&](Store& store) { store.needKey(root, key); });
}

std::optional<RegistryValue> SqliteRegistry::value(RegistryRoot root, std::string_view key,
                                                   std::string_view name)
{
    Store* store = openForReading();
    if (store == nullptr)
        return std::nullopt;
    const std::string foldedKey = foldedRegistryPath(key);
    const std::string foldedName = valueFold(name);
    Store::Statement find(*store, "SELECT v.name, v.type, v.data FROM registry_value v "
                                  "JOIN registry_key k ON k.id=v.key "
                                  "WHERE k.root=? AND k.folded=? AND v.folded=?");
    find.bind(number32(root)).bind(foldedKey).bind(foldedName);
    if (!find.step())
        return std::nullopt;
    return RegistryValue{find.bytes(0), static_cast<RegistryType>(find.integer(1)), find.bytes(2)};
}

void SqliteRegistry::setValue(RegistryRoot root, std::string_view key, const RegistryValue& value)
{
    checkRegistryPath(key);
    checkRegistryValue(value);
    const std::string foldedName = valueFold(value.name);
    change([&](Store& store) {
        // The name of the first writing stays, and with it the row's place in the order.
        Store::Statement set(store, "INSERT INTO registry_value(key, folded, name, type, data) "
                                    "VALUES(?,?,?,?,?) ON CONFLICT(key, folded) "
                                    "DO UPDATE SET type=excluded.type, data=excluded.data");
        set.bind(store.needKey(root, key))
            .bind(foldedName)
            .bind(value.name)
            .bind(static_cast<std::int64_t>(value.type))
            .bindBytes(value.data)
            .step();
    });
}

bool SqliteRegistry::deleteValue(RegistryRoot root, std::string_view key, std::string_view name)
{
    if (openForReading() == nullptr)
        return false;
    const std::string foldedKey = foldedRegistryPath(key);
    const std::string foldedName = valueFold(name);
    bool deleted = false;
    change([&](Store& store) {
        Store::Statement remove(store, "DELETE FROM registry_value WHERE folded=? AND key="
                                       "(SELECT id FROM registry_key WHERE root=? AND folded=?)");
        remove.bind(foldedName).bind(number32(root)).bind(foldedKey).step();
        deleted = store.changes() > 0;
    });
    return deleted;
}

bool SqliteRegistry::deleteKey(RegistryRoot root, std::string_view key)
{
    checkDeletableKey(key);
    if (openForReading() == nullptr)
        return false;
    // Everything that begins with the path and a backslash: `]` is the next byte behind it.
    const std::string folded = foldedRegistryPath(key);
    const std::string first = folded + '\\';
    const std::string behind = folded + ']';
    bool deleted = false;
    change([&](Store& store) {
        Store::Statement remove(store, "DELETE FROM registry_key WHERE root=? AND "
                                       "(folded=? OR (folded>=? AND folded<?))");
        remove.bind(number32(root)).bind(folded).bind(first).bind(behind).step();
        deleted = store.changes() > 0;
    });
    return deleted;
}

std::vector<std::string> SqliteRegistry::subKeys(RegistryRoot root, std::string_view key)
{
    std::vector<std::string> names;
    Store* store = openForReading();
    if (store == nullptr)
        return names;
    const std::string folded = foldedRegistryPath(key);
    Store::Statement list(*store,
                          "SELECT name FROM registry_key WHERE root=? AND parent=? ORDER BY id");
    list.bind(number32(root)).bind(folded);
    while (list.step())
        names.push_back(list.bytes(0));
    return names;
}

std::vector<RegistryValue> SqliteRegistry::values(RegistryRoot root, std::string_view key)
{
    std::vector<RegistryValue> found;
    Store* store = openForReading();
    if (store == nullptr)
        return found;
    const std::string folded = foldedRegistryPath(key);
    Store::Statement list(*store, "SELECT v.name, v.type, v.data FROM registry_value v "
                                  "JOIN registry_key k ON k.id=v.key "
                                  "WHERE k.root=? AND k.folded=? ORDER BY v.id");
    list.bind(number32(root)).bind(folded);
    while (list.step())
        found.push_back({list.bytes(0), static_cast<RegistryType>(list.integer(1)), list.bytes(2)});
    return found;
}

} // namespace vardelin::platform
