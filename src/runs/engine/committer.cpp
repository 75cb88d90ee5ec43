#include "runs/engine/committer.h"

#include <cstddef>
#include <exception>
#include <memory>
#include <string_view>
#include <thread>
#include <utility>

namespace vardelin::engine {

using base::RuntimeError;

namespace {

constexpr std::size_t kWorthSharing = 1000; // renames below that are done before a thread starts

} // namespace

Committer::Committer(platform::FileSystem& files, std::size_t group, Listener listener,
                     Opener opener)
    : m_open(std::move(opener)), m_group(group), m_listener(std::move(listener))
{
    if (!m_open)
        m_open = [&files](const std::string& path) { return files.openFolder(path); };
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
    for (const auto& [device, folder] : m_touched) {
        try {
            m_open(folder)->flushFileSystem();
        } catch (const RuntimeError& error) {
            // The folder was taken away behind the names; what was told as done stays done.
            if (!m_listener.failed || error.number() == base::error_number::kDeviceIo)
                throw;
        }
    }
    m_touched.clear();
    for (const Replaced& old : m_replaced)
        m_open(old.folderPath)->removeFile(old.name);
    m_replaced.clear();
}

void Committer::commit(const std::vector<PendingCopy>& group)
{
    flush(group);
    // Renaming is the file system's work alone, and two hands do it in little more than half
    // the time.
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
        try {
            if (!folder || copy.folderPath != folderPath) {
                folder.reset();
                folder = m_open(copy.folderPath);
                folderPath = copy.folderPath;
            }
            give(*folder, copy);
        } catch (const RuntimeError& error) {
            if (!m_listener.failed)
                throw;
            base::PendingError ignored; // the error that led here is the one to tell
            if (folder)
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
        std::unique_ptr<platform::Folder> folder;
        std::uint64_t device = 0;
        try {
            folder = m_open(copy.folderPath);
            device = folder->info().device;
        } catch (const RuntimeError&) {
            if (!m_listener.failed)
                throw;
            continue; // its renames will fail and tell
        }
        if (devices.emplace(device, copy.folderPath).second)
            folder->flushFileSystem();
    }
    const std::lock_guard lock(m_mutex);
    m_touched.merge(devices);
}

} // namespace vardelin::engine
