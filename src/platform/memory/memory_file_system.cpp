#include "platform/memory/memory_file_system.h"

namespace vardelin::platform {

MemoryFileSystem::MemoryFileSystem(bool caseSensitive)
    : m_tree(caseSensitive), m_scripted(m_tree, m_script)
{
    addDrive('C');
    addDrive('D');
}

void MemoryFileSystem::addDrive(char letter)
{
    m_tree.addDrive(letter);
}

void MemoryFileSystem::removeDrive(char letter)
{
    m_tree.removeDrive(letter);
}

void MemoryFileSystem::setCapacity(char letter, std::uint64_t bytes)
{
    m_tree.setCapacity(letter, bytes);
}

void MemoryFileSystem::setUnreadable(std::string_view path, bool on)
{
    m_tree.setFlag(path, &MemoryNode::unreadable, on);
}

void MemoryFileSystem::setReadOnly(std::string_view path, bool on)
{
    m_tree.setFlag(path, &MemoryNode::readOnly, on);
}

void MemoryFileSystem::setPseudo(std::string_view path, bool on)
{
    m_tree.setFlag(path, &MemoryNode::pseudo, on);
}

void MemoryFileSystem::setNow(std::int64_t ns)
{
    m_tree.setNow(ns);
}

void MemoryFileSystem::setTick(std::int64_t ns)
{
    m_tree.setTick(ns);
}

std::int64_t MemoryFileSystem::nowNs()
{
    return m_tree.now();
}

void MemoryFileSystem::setOwnerOfNew(std::uint32_t ownerId, std::uint32_t groupId)
{
    m_tree.setOwnerOfNew(ownerId, groupId);
}

std::unique_ptr<Folder> MemoryFileSystem::openFolder(std::string_view path)
{
    return m_scripted.openFolder(path);
}

std::unique_ptr<FolderLock> MemoryFileSystem::lockFolder(std::string_view path)
{
    return m_scripted.lockFolder(path);
}

Space MemoryFileSystem::space(std::string_view path)
{
    return m_scripted.space(path);
}

bool MemoryFileSystem::isCaseSensitive() const
{
    return m_tree.isCaseSensitive();
}

bool MemoryFileSystem::isPseudo(std::string_view path)
{
    return m_scripted.isPseudo(path);
}

std::string MemoryFileSystem::toNative(std::string_view path) const
{
    return m_tree.toNative(path);
}

std::string MemoryFileSystem::fromNative(std::string_view native) const
{
    return m_tree.fromNative(native);
}

std::string MemoryFileSystem::canonical(std::string_view path)
{
    return m_scripted.canonical(path);
}

} // namespace vardelin::platform
