#pragma once

#include "platform/file_system.h"

#include <cstddef>
#include <cstdint>
#include <future>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace vardelin::engine {

// A finished copy under a temporary name, and the name that makes it count.
struct PendingCopy {
    std::string folderPath; // in drive form
    std::string temporaryName;
    std::string finalName;
    std::vector<std::string> replaced; // names to take away once the new one counts
};

// Brings copies to their final names in groups: each file system is flushed once, then all are
// renamed, so that no name ever stands for data that a power cut could take. A flush a file would
// cost 2 to 6 ms each.
class Committer {
public:
    static constexpr std::size_t kGroup = 20000;

    // The port must outlive this. `group` copies are flushed together.
    explicit Committer(platform::FileSystem& files, std::size_t group = kGroup);

    // From any thread. Begins to commit a group when enough copies wait; what that raises is raised
    // by the next such call, or by finish().
    void add(PendingCopy copy);
    // Commits what is left and flushes the names. Raises what a flush or a rename raises.
    void finish();

private:
    void commit(const std::vector<PendingCopy>& group);
    void rename(std::span<const PendingCopy> group);
    void flush(const std::vector<PendingCopy>& group);

    platform::FileSystem& m_files;
    std::size_t m_group;
    std::mutex m_mutex; // guards the two below
    std::vector<PendingCopy> m_waiting;
    std::map<std::uint64_t, std::string> m_touched; // a folder of each file system renamed in
    std::mutex m_turn;                              // guards m_running
    std::future<void> m_running;                    // last: it uses all above until it ends
};

} // namespace vardelin::engine
