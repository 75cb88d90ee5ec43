#include "runs/engine/committer.h"

#include <cstddef>
#include <exception>
#include <memory>
#include <string_view>
#include <thread>
#include <utility>

namespace vardelin::engine {
namespace {

constexpr std::size_t kWorthSharing = 1000; // renames below that are done before a thread starts

} // namespace

Committer::Committer(platform::FileSystem& files, std::size_t group, Listener listener)
    : m_files(files), m_group(group), m_listener(std::move(listener))
{
}

void Committer::add(PendingCopy copy)
{
    std::vector<PendingCopy> group;
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(std::move(copy));
        if (m_waiting.size() < m_group)
            return;
        group.swap(m_waiting);
    }
    // Beside the workers, who go on packing while the disk takes the group in; one at a time.
    const std::lock_guard turn(m_turn);
    if (m_running.valid())
        m_running.get();
    m_running =
        std::async(std::launch::async, [this, copies = std::move(group)] { commit(copies); });
}

void Committer::finish()
{
    {
        const std::lock_guard turn(m_turn);
        if (m_running.valid())
            m_running.get();
    }
    std::vector<PendingCopy> group;
    {
        const std::lock_guard lock(m_mutex);
        group.swap(m_waiting);
    }
    commit(group);
    const std::lock_guard lock(m_mutex);
    for (const auto& [device, folder] : m_touched)
        m_files.openFolder(folder)->flushFileSystem();
    m_touched.clear();
    for (const Replaced& old : m_replaced)
        m_files.openFolder(old.folderPath)->removeFile(old.name);
    m_replaced.clear();
}

void Committer::commit(const std::vector<PendingCopy>& group)
{
    flush(group);
    // Renaming is the file system's work alone, and two hands do it in little more than half the
    // time.
    if (group.size() < kWorthSharing) {
        rename(group);
        return;
    }
    std::size_t middle = group.size() / 2;
    while (middle < group.size() && group[middle].folderPath == group[middle - 1].folderPath)
        ++middle;
    const std::span<const PendingCopy> all(group);
    std::exception_ptr failure;
    std::thread other([&] {
        try {
            rename(all.subspan(middle));
        } catch (...) {
            failure = std::current_exception();
        }
    });
    try {
        rename(all.first(middle));
    } catch (...) {
        other.join();
        throw;
    }
    other.join();
    if (failure)
        std::rethrow_exception(failure);
}

void Committer::rename(std::span<const PendingCopy> group)
{
    std::unique_ptr<platform::Folder> folder;
    std::string_view folderPath;
    for (const PendingCopy& copy : group) {
        if (!folder || copy.folderPath != folderPath) {
            folder = m_files.openFolder(copy.folderPath);
            folderPath = copy.folderPath;
        }
        if (!m_listener.failed) {
            give(*folder, copy);
            continue;
        }
        try {
            give(*folder, copy);
        } catch (const base::RuntimeError& error) {
            base::PendingError ignored; // the error that led here is the one to tell
            ignored.attempt([&] { folder->removeFile(copy.temporaryName); });
            m_listener.failed(copy, error);
        }
    }
}

void Committer::give(platform::Folder& folder, const PendingCopy& copy)
{
    folder.rename(copy.temporaryName, copy.finalName);
    if (m_listener.named)
        m_listener.named(copy);
    for (const std::string& old : copy.replaced) {
        if (old == copy.finalName)
            continue;
        const std::lock_guard lock(m_mutex);
        m_replaced.push_back({copy.folderPath, old});
    }
}

void Committer::flush(const std::vector<PendingCopy>& group)
{
    std::map<std::uint64_t, std::string> devices;
    std::string_view folderPath;
    for (const PendingCopy& copy : group) {
        if (copy.folderPath == folderPath)
            continue;
        folderPath = copy.folderPath;
        const auto folder = m_files.openFolder(copy.folderPath);
        if (devices.emplace(folder->info().device, copy.folderPath).second)
            folder->flushFileSystem();
    }
    const std::lock_guard lock(m_mutex);
    m_touched.merge(devices);
}

} // namespace vardelin::engine
