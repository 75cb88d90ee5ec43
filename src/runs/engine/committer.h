#pragma once

#include "base/runtime_error.h"
#include "platform/file_system.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace vardelin::engine {

// A finished copy under a temporary name, and the name that makes it count.
struct PendingCopy {
    std::string folderPath; // in drive form, or whatever the committer's opener takes
    std::string temporaryName;
    std::string finalName;
    // Names to take away once the new one is sure to stay: behind the last flush, since a disk need
    // not keep the order of two names.
    std::vector<std::string> replaced;
    // For the caller's counts and messages.
    std::string sourcePath{};
    int version = 0;
    std::string settingsGroup{}; // of a settings group's copy
    std::uint64_t bytesRead = 0;
    std::uint64_t bytesStored = 0;
};

// Brings copies to their final names in groups: each file system is flushed once, then all are
// renamed, so that no name ever stands for data that a power cut could take. A flush a file would
// cost 2 to 6 ms each.
class Committer {
public:
    // Few enough that little is left to wait for when the last copy is packed, and many enough that
    // a flush still serves thousands.
    static constexpr std::size_t kGroup = 4000;

    // Told of each copy, from any thread.
    struct Listener {
        std::function<void(const PendingCopy&)> named; // it has got its final name
        // It could not: its temporary file is taken away where that is possible, and the others go
        // on. Without this the error ends the group.
        std::function<void(const PendingCopy&, const base::RuntimeError&)> failed;
    };
    // Opens a pending copy's folder, for folders that others may change meanwhile.
    using Opener = std::function<std::unique_ptr<platform::Folder>(const std::string& folderPath)>;

    // The port must outlive this. `group` copies are flushed together. Without an opener the port
    // opens the folders.
    explicit Committer(platform::FileSystem& files, std::size_t group = kGroup,
                       Listener listener = {}, Opener opener = {});

    // From any thread. Begins to commit a group when enough copies wait; what that raises is raised
    // by the next such call, or by finish().
    void add(PendingCopy copy);
    // Commits what is left, flushes the names and takes the replaced ones away. Raises what a
    // flush, a rename or a removal raises.
    void finish();

private:
    struct Replaced {
        std::string folderPath;
        std::string name;
    };

    void commit(const std::vector<PendingCopy>& group);
    void rename(std::span<const PendingCopy> group);
    void give(platform::Folder& folder, const PendingCopy& copy);
    void flush(const std::vector<PendingCopy>& group);

    Opener m_open;
    std::size_t m_group;
    Listener m_listener;
    std::mutex m_mutex; // guards the three below
    std::vector<PendingCopy> m_waiting;
    std::map<std::uint64_t, std::string> m_touched; // a folder of each file system renamed in
    std::vector<Replaced> m_replaced;
    std::mutex m_turn;           // guards m_running
    std::future<void> m_running; // last: it uses all above until it ends
};

} // namespace vardelin::engine
