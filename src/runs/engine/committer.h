#pragma once

#include "platform/file_system.h"

#include <cstddef>
#include <cstdint>
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
    // The port must outlive this.
    explicit Committer(platform::FileSystem& files);

    // From any thread. Commits a group by itself when enough copies wait.
    void add(PendingCopy copy);
    // Commits what is left and flushes the names. Raises what a flush or a rename raises.
    void finish();

private:
    void commit(const std::vector<PendingCopy>& group);
    void rename(std::span<const PendingCopy> group);
    void flush(const std::vector<PendingCopy>& group);

    static constexpr std::size_t kGroup = 20000;

    platform::FileSystem& m_files;
    std::mutex m_mutex; // guards all below
    std::vector<PendingCopy> m_waiting;
    std::map<std::uint64_t, std::string> m_touched; // a folder of each file system renamed in
};

} // namespace vardelin::engine
