#include "platform/memory/memory_folder.h"

#include "base/runtime_error.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vardelin::platform {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

constexpr std::size_t kCopyBlockBytes = std::size_t{64} * 1024;

} // namespace

FileInfo infoOf(const MemoryNode& node)
{
    FileInfo info = node.info;
    if (info.kind == FileKind::Regular)
        info.sizeBytes = info.allocatedBytes = node.data.size();
    return info;
}

MemoryFile::MemoryFile(MemoryTree& tree, MemoryNodePtr node, std::string path, OpenMode mode)
    : m_tree(tree), m_node(std::move(node)), m_path(std::move(path)), m_mode(mode)
{
}

MemoryFile::~MemoryFile()
{
    const auto lock = m_tree.lock();
    m_node.reset(); // the last one frees the disk's space
}

MemoryNode& MemoryFile::node() const
{
    if (m_node == nullptr)
        throw RuntimeError(error_number::kDeviceIo, m_path, "Bad file descriptor");
    return *m_node;
}

MemoryNode& MemoryFile::written() const
{
    if (m_mode == OpenMode::Read)
        throw RuntimeError(error_number::kDeviceIo, m_path, "Bad file descriptor");
    return node();
}

// To `sizeBytes` at least, as far as the disk has room.
void MemoryFile::grow(MemoryNode& node, std::uint64_t sizeBytes) const
{
    if (sizeBytes <= node.data.size())
        return;
    MemoryDisk& disk = *node.disk;
    const std::uint64_t room =
        disk.capacityBytes - std::min(disk.capacityBytes, disk.usedBytes) + node.data.size();
    const std::uint64_t reached = std::min(sizeBytes, room);
    disk.usedBytes += reached - node.data.size();
    node.data.resize(reached);
    if (reached < sizeBytes)
        throw RuntimeError(error_number::kDiskFull, m_path, "No space left on device");
}

std::size_t MemoryFile::read(std::span<std::byte> buffer)
{
    const std::size_t got = readAt(m_cursor, buffer);
    m_cursor += got;
    return got;
}

std::size_t MemoryFile::readAt(std::uint64_t offset, std::span<std::byte> buffer)
{
    const auto lock = m_tree.lock();
    const MemoryNode& from = node();
    const bool readable =
        m_mode == OpenMode::Read || m_mode == OpenMode::ReadWrite || m_mode == OpenMode::Update;
    if (!readable)
        throw RuntimeError(error_number::kDeviceIo, m_path, "Bad file descriptor");
    if (offset >= from.data.size())
        return 0;
    const std::size_t count = std::min<std::uint64_t>(buffer.size(), from.data.size() - offset);
    if (count > 0)
        std::memcpy(buffer.data(), from.data.data() + offset, count);
    return count;
}

void MemoryFile::write(std::span<const std::byte> bytes)
{
    writeAt(m_cursor, bytes);
    m_cursor += bytes.size();
}

void MemoryFile::writeAt(std::uint64_t offset, std::span<const std::byte> bytes)
{
    const auto lock = m_tree.lock();
    MemoryNode& to = written();
    if (bytes.empty())
        return;
    if (m_mode == OpenMode::Append)
        offset = to.data.size();
    base::PendingError full;
    full.attempt([&] { grow(to, offset + bytes.size()); });
    if (offset < to.data.size()) {
        const std::size_t fits = std::min<std::uint64_t>(bytes.size(), to.data.size() - offset);
        std::memcpy(to.data.data() + offset, bytes.data(), fits);
    }
    to.info.modifiedNs = to.info.changedNs = m_tree.stamp();
    if (full)
        throw RuntimeError(full.number, m_path, "No space left on device");
}

void MemoryFile::resize(std::uint64_t sizeBytes)
{
    const auto lock = m_tree.lock();
    MemoryNode& to = written();
    grow(to, sizeBytes);
    if (sizeBytes < to.data.size()) {
        to.disk->usedBytes -= to.data.size() - sizeBytes;
        to.data.resize(sizeBytes);
    }
    to.info.modifiedNs = to.info.changedNs = m_tree.stamp();
}

void MemoryFile::flush()
{
    const auto lock = m_tree.lock();
    node();
}

FileInfo MemoryFile::info()
{
    const auto lock = m_tree.lock();
    return infoOf(node());
}

std::optional<Extent> MemoryFile::nextData(std::uint64_t offset)
{
    const auto lock = m_tree.lock();
    const std::uint64_t size = node().data.size();
    if (offset >= size)
        return std::nullopt;
    return Extent{offset, size - offset};
}

void MemoryFile::appendRange(File& source, std::uint64_t offset, std::uint64_t length)
{
    std::vector<std::byte> block(std::min<std::uint64_t>(length, kCopyBlockBytes));
    while (length > 0) {
        const auto part = std::span(block).first(std::min<std::uint64_t>(length, block.size()));
        const std::size_t got = source.readAt(offset, part);
        if (got == 0)
            throw RuntimeError(error_number::kDeviceIo, m_path,
                               "the source ends before the stretch to copy does");
        write(part.first(got));
        offset += got;
        length -= got;
    }
}

void MemoryFile::setTimes(std::int64_t accessedNs, std::int64_t modifiedNs)
{
    const auto lock = m_tree.lock();
    FileInfo& info = node().info;
    info.accessedNs = accessedNs;
    info.modifiedNs = modifiedNs;
    info.changedNs = m_tree.stamp();
}

void MemoryFile::setMode(std::uint32_t mode)
{
    const auto lock = m_tree.lock();
    node().info.mode = mode & 07777U;
    node().info.changedNs = m_tree.stamp();
}

void MemoryFile::setOwner(std::uint32_t ownerId, std::uint32_t groupId)
{
    const auto lock = m_tree.lock();
    node().info.ownerId = ownerId;
    node().info.groupId = groupId;
    node().info.changedNs = m_tree.stamp();
}

std::vector<ExtendedAttribute> MemoryFile::extendedAttributes()
{
    const auto lock = m_tree.lock();
    std::vector<ExtendedAttribute> result;
    for (const auto& [name, value] : node().attributes)
        result.push_back({name, value});
    return result;
}

void MemoryFile::setExtendedAttribute(const ExtendedAttribute& attribute)
{
    const auto lock = m_tree.lock();
    node().attributes[attribute.name] = attribute.value;
    node().info.changedNs = m_tree.stamp();
}

void MemoryFile::close()
{
    const auto lock = m_tree.lock();
    m_node.reset();
}

} // namespace vardelin::platform
