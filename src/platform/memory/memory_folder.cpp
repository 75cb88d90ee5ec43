#include "platform/memory/memory_folder.h"

#include "base/runtime_error.h"
#include "platform/name_mapping.h"

#include <utility>

namespace vardelin::platform {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

constexpr std::size_t kLongestNameBytes = 255;

bool isFolder(const MemoryNodePtr& node)
{
    return node->info.kind == FileKind::Folder;
}

} // namespace

MemoryFolder::MemoryFolder(MemoryTree& tree, MemoryNodePtr node, std::string path)
    : m_tree(tree), m_node(std::move(node)), m_path(std::move(path))
{
}

MemoryFolder::~MemoryFolder()
{
    const auto lock = m_tree.lock();
    m_node.reset();
}

void MemoryFolder::raise(int number, std::string_view name, std::string reason) const
{
    throw RuntimeError(number, name.empty() ? m_path : joinPath(m_path, name), std::move(reason));
}

void MemoryFolder::checkName(std::string_view name) const
{
    if (childToDisk(m_path, name).size() > kLongestNameBytes)
        raise(error_number::kPathAccess, name, "File name too long");
}

MemoryNodePtr MemoryFolder::child(std::string_view name, int missing) const
{
    checkName(name);
    auto node = m_tree.childOf(*m_node, name);
    if (node == nullptr)
        raise(missing, name, "No such file or directory");
    return node;
}

MemoryNode& MemoryFolder::changed(std::string_view name) const
{
    const auto node = child(name, error_number::kFileNotFound);
    if (MemoryTree::isReadOnly(*node, m_node.get()))
        raise(error_number::kPermissionDenied, name, "Read-only file system");
    node->info.changedNs = m_tree.stamp();
    return *node; // its name in this folder keeps it
}

void MemoryFolder::checkWritable(std::string_view name) const
{
    checkName(name);
    if (m_node->removed)
        raise(error_number::kPathNotFound, name, "No such file or directory");
    if (MemoryTree::isReadOnly(*m_node, m_node.get()))
        raise(error_number::kPermissionDenied, name, "Read-only file system");
}

void MemoryFolder::checkFree(std::string_view name) const
{
    checkName(name);
    if (m_tree.childOf(*m_node, name) != nullptr)
        raise(error_number::kFileExists, name, "File exists");
    checkWritable(name);
}

std::vector<FolderEntry> MemoryFolder::list()
{
    std::vector<FolderEntry> result;
    for (FolderEntryInfo& entry : listWithInfo())
        result.push_back({std::move(entry.name), entry.info.kind});
    return result;
}

std::vector<FolderEntryInfo> MemoryFolder::listWithInfo()
{
    const auto lock = m_tree.lock();
    if (m_node->unreadable)
        raise(error_number::kPermissionDenied, {}, "Permission denied");
    std::vector<FolderEntryInfo> result;
    // From the end, as a disk that keeps no order might: nobody shall rely on one.
    for (auto entry = m_node->children.rbegin(); entry != m_node->children.rend(); ++entry)
        result.push_back({entry->second.name, infoOf(*entry->second.node)});
    return result;
}

std::optional<FileInfo> MemoryFolder::find(std::string_view name)
{
    const auto lock = m_tree.lock();
    checkName(name);
    const auto node = m_tree.childOf(*m_node, name);
    return node == nullptr ? std::nullopt : std::optional(infoOf(*node));
}

FileInfo MemoryFolder::info()
{
    const auto lock = m_tree.lock();
    return infoOf(*m_node);
}

std::vector<ExtendedAttribute> MemoryFolder::extendedAttributes()
{
    const auto lock = m_tree.lock();
    std::vector<ExtendedAttribute> result;
    for (const auto& [name, value] : m_node->attributes)
        result.push_back({name, value});
    return result;
}

std::unique_ptr<File> MemoryFolder::open(std::string_view name, OpenMode mode, Links links)
{
    const auto lock = m_tree.lock();
    checkName(name);
    int followed = 0;
    return openIn(m_node, name, mode, links, name, followed);
}

std::unique_ptr<File> MemoryFolder::openIn(const MemoryNodePtr& folder, std::string_view name,
                                           OpenMode mode, Links links, std::string_view shown,
                                           int& followed)
{
    const bool writes = mode != OpenMode::Read;
    const bool creates = writes && mode != OpenMode::Update;
    auto node = m_tree.childOf(*folder, name);
    if (node != nullptr && mode == OpenMode::CreateNew)
        raise(error_number::kFileExists, shown, "File exists");
    if (node != nullptr && node->info.kind == FileKind::SymbolicLink) {
        if (links == Links::Refuse)
            raise(error_number::kPermissionDenied, shown, "a symbolic link is not followed here");
        const MemoryTree::Found target = m_tree.followOnce(folder, *node, followed);
        if (target.folder == nullptr)
            raise(creates ? error_number::kPathNotFound : error_number::kFileNotFound, shown,
                  "No such file or directory");
        if (target.node != nullptr && isFolder(target.node))
            raise(error_number::kPathAccess, shown, "Is a directory");
        return openIn(target.folder, target.name, mode, links, shown, followed);
    }
    if (node == nullptr && !creates)
        raise(error_number::kFileNotFound, shown, "No such file or directory");
    if (node == nullptr && folder->removed)
        raise(error_number::kPathNotFound, shown, "No such file or directory");
    if (node != nullptr && isFolder(node))
        raise(error_number::kPathAccess, shown, "Is a directory");
    const bool readOnly = node == nullptr ? MemoryTree::isReadOnly(*folder, folder.get())
                                          : MemoryTree::isReadOnly(*node, folder.get());
    if (writes && readOnly)
        raise(error_number::kPermissionDenied, shown, "Read-only file system");
    const bool reads =
        mode == OpenMode::Read || mode == OpenMode::ReadWrite || mode == OpenMode::Update;
    if (node != nullptr && node->unreadable && reads)
        raise(error_number::kPermissionDenied, shown, "Permission denied");
    if (node == nullptr)
        node = m_tree.makeChild(*folder, name, FileKind::Regular);
    if (mode == OpenMode::CreateOrTruncate && !node->data.empty()) {
        node->disk->usedBytes -= node->data.size();
        node->data.clear();
        node->info.modifiedNs = node->info.changedNs = m_tree.stamp();
    }
    return std::make_unique<MemoryFile>(m_tree, std::move(node), joinPath(m_path, shown), mode);
}

std::unique_ptr<Folder> MemoryFolder::openFolder(std::string_view name, Links links)
{
    const auto lock = m_tree.lock();
    auto node = child(name, error_number::kPathNotFound);
    if (links == Links::Follow)
        node = m_tree.followAll(m_node, node);
    if (node == nullptr)
        raise(error_number::kPathNotFound, name, "No such file or directory");
    if (!isFolder(node))
        raise(error_number::kPathAccess, name, "Not a directory");
    return m_tree.foldered(std::move(node), joinPath(m_path, name));
}

void MemoryFolder::createFolder(std::string_view name)
{
    const auto lock = m_tree.lock();
    checkFree(name);
    m_tree.makeChild(*m_node, name, FileKind::Folder);
}

void MemoryFolder::removeFile(std::string_view name)
{
    const auto lock = m_tree.lock();
    const auto node = child(name, error_number::kFileNotFound);
    if (isFolder(node))
        raise(error_number::kPathAccess, name, "Is a directory");
    checkWritable(name);
    m_tree.eraseChild(*m_node, name);
}

void MemoryFolder::removeFolder(std::string_view name)
{
    const auto lock = m_tree.lock();
    const auto node = child(name, error_number::kPathNotFound);
    if (!isFolder(node))
        raise(error_number::kPathAccess, name, "Not a directory");
    checkWritable(name);
    if (!node->children.empty())
        raise(error_number::kPathAccess, name, "Directory not empty");
    m_tree.eraseChild(*m_node, name);
    node->removed = true;
}

void MemoryFolder::rename(std::string_view from, std::string_view to)
{
    moveTo(from, *this, to);
}

void MemoryFolder::moveTo(std::string_view from, Folder& folder, std::string_view to)
{
    const auto lock = m_tree.lock();
    auto* const target = dynamic_cast<MemoryFolder*>(&folder);
    if (target == nullptr || target->m_node->disk != m_node->disk)
        raise(error_number::kDeviceIo, from, "Invalid cross-device link");
    target->checkName(to);
    const auto node = child(from, error_number::kFileNotFound);
    checkWritable(from);
    target->checkWritable(to);
    for (const MemoryNode* up = target->m_node.get(); up != nullptr; up = up->parent) {
        if (up == node.get())
            raise(error_number::kDeviceIo, from, "a folder cannot move into itself");
    }
    const auto replaced = m_tree.childOf(*target->m_node, to);
    const bool sameName = target->m_node == m_node && m_tree.fold(from) == m_tree.fold(to);
    if (replaced == node && !sameName)
        return; // two names of one file: nothing to do, as on the disk
    if (replaced != nullptr && !sameName) {
        if (isFolder(node) != isFolder(replaced))
            raise(error_number::kPathAccess, from,
                  isFolder(node) ? "Not a directory" : "Is a directory");
        if (!replaced->children.empty())
            raise(error_number::kPathAccess, from, "Directory not empty");
        m_tree.eraseChild(*target->m_node, to);
        replaced->removed = true;
    }
    m_tree.eraseChild(*m_node, from);
    m_tree.insertChild(*target->m_node, to, node);
}

std::string MemoryFolder::readLink(std::string_view name)
{
    const auto lock = m_tree.lock();
    const auto node = child(name, error_number::kFileNotFound);
    if (node->info.kind != FileKind::SymbolicLink)
        raise(error_number::kPathAccess, name, "not a symbolic link");
    return node->data;
}

void MemoryFolder::createLink(std::string_view name, std::string_view target)
{
    const auto lock = m_tree.lock();
    checkFree(name);
    m_tree.makeChild(*m_node, name, FileKind::SymbolicLink)->data = target;
}

void MemoryFolder::createHardLink(std::string_view name, Folder& folder, std::string_view existing)
{
    const auto lock = m_tree.lock();
    auto* const source = dynamic_cast<MemoryFolder*>(&folder);
    if (source == nullptr)
        raise(error_number::kDeviceIo, name, "Invalid cross-device link");
    const auto node = source->child(existing, error_number::kFileNotFound);
    checkFree(name);
    if (isFolder(node))
        source->raise(error_number::kPathAccess, existing, "a folder has one name only");
    if (node->disk != m_node->disk)
        raise(error_number::kDeviceIo, name, "Invalid cross-device link");
    node->info.changedNs = m_tree.stamp();
    m_tree.insertChild(*m_node, name, node);
}

void MemoryFolder::setTimes(std::string_view name, std::int64_t accessedNs, std::int64_t modifiedNs)
{
    const auto lock = m_tree.lock();
    FileInfo& info = changed(name).info;
    info.accessedNs = accessedNs;
    info.modifiedNs = modifiedNs;
}

void MemoryFolder::setMode(std::string_view name, std::uint32_t mode)
{
    const auto lock = m_tree.lock();
    FileInfo& info = changed(name).info;
    if (info.kind == FileKind::SymbolicLink)
        raise(error_number::kDeviceIo, name, "Operation not supported");
    info.mode = mode & 07777U;
}

void MemoryFolder::setOwner(std::string_view name, std::uint32_t ownerId, std::uint32_t groupId)
{
    const auto lock = m_tree.lock();
    FileInfo& info = changed(name).info;
    info.ownerId = ownerId;
    info.groupId = groupId;
}

std::vector<ExtendedAttribute> MemoryFolder::extendedAttributes(std::string_view name)
{
    const auto lock = m_tree.lock();
    std::vector<ExtendedAttribute> result;
    for (const auto& [key, value] : child(name, error_number::kFileNotFound)->attributes)
        result.push_back({key, value});
    return result;
}

void MemoryFolder::setExtendedAttribute(std::string_view name, const ExtendedAttribute& attribute)
{
    const auto lock = m_tree.lock();
    changed(name).attributes[attribute.name] = attribute.value;
}

void MemoryFolder::setOwnMode(std::uint32_t mode)
{
    const auto lock = m_tree.lock();
    m_node->info.mode = mode & 07777U;
    m_node->info.changedNs = m_tree.stamp();
}

void MemoryFolder::setOwnTimes(std::int64_t accessedNs, std::int64_t modifiedNs)
{
    const auto lock = m_tree.lock();
    m_node->info.accessedNs = accessedNs;
    m_node->info.modifiedNs = modifiedNs;
    m_node->info.changedNs = m_tree.stamp();
}

void MemoryFolder::flush() {}

void MemoryFolder::flushFileSystem() {}

} // namespace vardelin::platform
