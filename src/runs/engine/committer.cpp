#include "runs/engine/committer.h"

#include <memory>
#include <string_view>
#include <utility>

namespace vardelin::engine {

Committer::Committer(platform::FileSystem& files) : m_files(files) {}

void Committer::add(PendingCopy copy)
{
    std::vector<PendingCopy> group;
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(std::move(copy));
        if (m_waiting.size() < kGroup)
            return;
        group.swap(m_waiting);
    }
    commit(group);
}

void Committer::finish()
{
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
}

void Committer::commit(const std::vector<PendingCopy>& group)
{
    flush(group);
    std::unique_ptr<platform::Folder> folder;
    std::string_view folderPath;
    for (const PendingCopy& copy : group) {
        if (!folder || copy.folderPath != folderPath) {
            folder = m_files.openFolder(copy.folderPath);
            folderPath = copy.folderPath;
        }
        folder->rename(copy.temporaryName, copy.finalName);
        for (const std::string& old : copy.replaced) {
            if (old != copy.finalName)
                folder->removeFile(old);
        }
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
