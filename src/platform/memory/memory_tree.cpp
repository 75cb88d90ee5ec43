#include "platform/memory/memory_tree.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/memory/memory_folder.h"
#include "platform/name_mapping.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace vardelin::platform {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

constexpr int kMostLinks = 40;

char capital(char letter)
{
    return static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
}

// The names of a path, the first one at the end.
std::vector<std::string> namesOf(std::string_view path, std::string_view separator)
{
    std::vector<std::string> names;
    for (const std::string_view piece : base::split(path, separator)) {
        if (!piece.empty() && piece != ".")
            names.emplace_back(piece);
    }
    std::reverse(names.begin(), names.end());
    return names;
}

class MemoryLock final : public FolderLock {
public:
    MemoryLock(const MemoryTree& tree, MemoryNodePtr node) : m_tree(tree), m_node(std::move(node))
    {
        m_node->locked = true;
    }
    ~MemoryLock() override
    {
        const auto lock = m_tree.lock();
        m_node->locked = false;
        m_node.reset();
    }

private:
    const MemoryTree& m_tree;
    MemoryNodePtr m_node;
};

using Copies = std::map<const MemoryNode*, MemoryNodePtr>; // a file with two names is copied once

MemoryNodePtr copyOf(const MemoryNode& node, const std::shared_ptr<MemoryDisk>& disk,
                     Copies& copies)
{
    MemoryNodePtr& copy = copies[&node];
    if (copy != nullptr)
        return copy;
    copy = std::make_shared<MemoryNode>(disk);
    copy->info = node.info;
    copy->data = node.data;
    copy->attributes = node.attributes;
    copy->name = node.name;
    copy->unreadable = node.unreadable;
    copy->readOnly = node.readOnly;
    copy->pseudo = node.pseudo;
    if (node.info.kind == FileKind::Regular)
        disk->usedBytes += node.data.size();
    MemoryNodePtr result = copy; // the reference does not outlive the next insertion
    for (const auto& [key, child] : node.children) {
        MemoryNodePtr below = copyOf(*child.node, disk, copies);
        if (below->info.kind == FileKind::Folder)
            below->parent = result.get();
        result->children.emplace(key, MemoryChild{child.name, std::move(below)});
    }
    return result;
}

} // namespace

MemoryNode::~MemoryNode()
{
    if (info.kind == FileKind::Regular)
        disk->usedBytes -= data.size();
    // A drive that is taken away leaves its open folders without a parent.
    for (const auto& [key, child] : children) {
        if (child.node->parent == this)
            child.node->parent = nullptr;
    }
}

void MemoryTree::addDrive(char letter)
{
    const auto held = lock();
    letter = capital(letter);
    if (m_roots.contains(letter))
        return;
    auto disk = std::make_shared<MemoryDisk>();
    disk->device = m_nextDevice++;
    auto root = std::make_shared<MemoryNode>(std::move(disk));
    root->info.kind = FileKind::Folder;
    root->info.mode = 0755;
    root->info.device = root->disk->device;
    root->info.inode = m_nextInode++;
    root->info.createdNs = root->info.modifiedNs = root->info.changedNs = root->info.accessedNs =
        stamp();
    root->name = std::string{letter, ':', '\\'};
    m_roots.emplace(letter, std::move(root));

    std::vector<DriveRoot> roots = m_map.roots();
    const auto small = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    roots.push_back({letter, letter == 'C' ? std::string("/") : std::string("/mnt/") + small});
    m_map = DriveMap(std::move(roots));
}

void MemoryTree::removeDrive(char letter)
{
    const auto held = lock();
    m_roots.erase(capital(letter));
    std::vector<DriveRoot> roots = m_map.roots();
    std::erase_if(roots, [&](const DriveRoot& root) { return root.letter == capital(letter); });
    m_map = DriveMap(std::move(roots));
}

void MemoryTree::setCapacity(char letter, std::uint64_t bytes)
{
    const auto held = lock();
    const auto root = m_roots.find(capital(letter));
    if (root == m_roots.end())
        throw RuntimeError(error_number::kPathNotFound, std::string(1, letter), "no such drive");
    root->second->disk->capacityBytes = bytes;
}

void MemoryTree::setFlag(std::string_view path, bool MemoryNode::*flag, bool on)
{
    const auto held = lock();
    const Found found = resolve(path, true);
    if (found.node == nullptr)
        throw RuntimeError(error_number::kPathNotFound, std::string(path), "nothing to mark");
    (*found.node).*flag = on;
}

void MemoryTree::setNow(std::int64_t ns)
{
    const auto held = lock();
    m_now = ns;
}

void MemoryTree::setTick(std::int64_t ns)
{
    const auto held = lock();
    m_tick = ns;
}

std::int64_t MemoryTree::now()
{
    const auto held = lock();
    return m_now;
}

void MemoryTree::setOwnerOfNew(std::uint32_t ownerId, std::uint32_t groupId)
{
    const auto held = lock();
    m_ownerId = ownerId;
    m_groupId = groupId;
}

void MemoryTree::copyFrom(const MemoryTree& other)
{
    const std::scoped_lock held(m_mutex, other.m_mutex);
    std::map<char, MemoryNodePtr> roots;
    Copies copies;
    for (const auto& [letter, root] : other.m_roots) {
        auto disk = std::make_shared<MemoryDisk>();
        disk->device = root->disk->device;
        disk->capacityBytes = root->disk->capacityBytes;
        roots.emplace(letter, copyOf(*root, disk, copies));
    }
    m_roots = std::move(roots);
    m_map = other.m_map;
    m_nextInode = std::max(m_nextInode, other.m_nextInode);
    m_nextDevice = std::max(m_nextDevice, other.m_nextDevice);
    m_now = std::max(m_now, other.m_now);
    m_tick = other.m_tick;
    m_ownerId = other.m_ownerId;
    m_groupId = other.m_groupId;
}

std::map<std::uint64_t, MemoryNodePtr> MemoryTree::nodes() const
{
    const auto held = lock();
    std::map<std::uint64_t, MemoryNodePtr> result;
    std::vector<MemoryNodePtr> waiting;
    for (const auto& [letter, root] : m_roots)
        waiting.push_back(root);
    while (!waiting.empty()) {
        const MemoryNodePtr node = std::move(waiting.back());
        waiting.pop_back();
        result.emplace(node->info.inode, node);
        for (const auto& [key, child] : node->children)
            waiting.push_back(child.node);
    }
    return result;
}

std::unique_ptr<Folder> MemoryTree::foldered(MemoryNodePtr node, std::string path)
{
    return std::make_unique<MemoryFolder>(*this, std::move(node), std::move(path));
}

std::unique_ptr<Folder> MemoryTree::openFolder(std::string_view path)
{
    const auto held = lock();
    auto node = folderAt(path);
    std::string_view shown = path;
    while (shown.size() > 3 && shown.back() == '\\')
        shown.remove_suffix(1);
    return foldered(std::move(node),
                    shown.size() == 2 ? std::string(shown) + '\\' : std::string(shown));
}

std::unique_ptr<FolderLock> MemoryTree::lockFolder(std::string_view path)
{
    const auto held = lock();
    auto node = folderAt(path);
    if (node->locked)
        throw RuntimeError(error_number::kPermissionDenied, std::string(path),
                           "another program is using this folder");
    return std::make_unique<MemoryLock>(*this, std::move(node));
}

Space MemoryTree::space(std::string_view path)
{
    const auto held = lock();
    const Found found = resolve(path, true);
    if (found.node == nullptr)
        throw RuntimeError(error_number::kPathNotFound, std::string(path));
    const MemoryDisk& disk = *found.node->disk;
    return {disk.capacityBytes, disk.capacityBytes - std::min(disk.capacityBytes, disk.usedBytes)};
}

bool MemoryTree::isPseudo(std::string_view path)
{
    const auto held = lock();
    const Found found = resolve(path, true);
    if (found.node == nullptr)
        throw RuntimeError(error_number::kPathNotFound, std::string(path));
    if (found.node->pseudo)
        return true;
    for (const MemoryNode* node = found.folder.get(); node != nullptr; node = node->parent) {
        if (node->pseudo)
            return true;
    }
    return false;
}

std::string MemoryTree::toNative(std::string_view path) const
{
    const auto held = lock();
    return m_map.toNative(path);
}

std::string MemoryTree::fromNative(std::string_view native) const
{
    const auto held = lock();
    return m_map.fromNative(native);
}

std::string MemoryTree::canonical(std::string_view path)
{
    const auto held = lock();
    const Found found = resolve(path, true);
    if (found.node == nullptr)
        throw RuntimeError(error_number::kFileNotFound, std::string(path));
    if (found.node->info.kind == FileKind::Folder && found.node->parent == nullptr)
        return found.node->name;
    std::string result = found.name;
    const MemoryNode* folder = found.folder.get();
    for (; folder->parent != nullptr; folder = folder->parent)
        result = joinPath(folder->name, result);
    return joinPath(folder->name, result);
}

std::int64_t MemoryTree::stamp()
{
    return std::exchange(m_now, m_now + m_tick);
}

std::string MemoryTree::fold(std::string_view name) const
{
    return m_caseSensitive ? std::string(name) : base::upperAscii(name);
}

MemoryNodePtr MemoryTree::childOf(const MemoryNode& folder, std::string_view name) const
{
    const auto hit = folder.children.find(fold(name));
    return hit == folder.children.end() ? nullptr : hit->second.node;
}

MemoryNodePtr MemoryTree::makeChild(MemoryNode& folder, std::string_view name, FileKind kind)
{
    auto node = std::make_shared<MemoryNode>(folder.disk);
    node->info.kind = kind;
    node->info.mode = kind == FileKind::Folder         ? 0755
                      : kind == FileKind::SymbolicLink ? 0777
                                                       : 0644;
    node->info.ownerId = m_ownerId;
    node->info.groupId = m_groupId;
    node->info.device = folder.disk->device;
    node->info.inode = m_nextInode++;
    node->info.createdNs = node->info.modifiedNs = node->info.changedNs = node->info.accessedNs =
        stamp();
    node->info.linkCount = 0;
    insertChild(folder, name, node);
    return node;
}

void MemoryTree::insertChild(MemoryNode& folder, std::string_view name, MemoryNodePtr node)
{
    ++node->info.linkCount;
    if (node->info.kind == FileKind::Folder) {
        node->parent = &folder;
        node->name = name;
    }
    folder.children.insert_or_assign(fold(name), MemoryChild{std::string(name), std::move(node)});
    folder.info.modifiedNs = folder.info.changedNs = stamp();
}

void MemoryTree::eraseChild(MemoryNode& folder, std::string_view name)
{
    const auto hit = folder.children.find(fold(name));
    const MemoryNodePtr node = hit->second.node;
    folder.children.erase(hit);
    --node->info.linkCount;
    if (node->info.kind == FileKind::Folder)
        node->parent = nullptr;
    node->info.changedNs = folder.info.modifiedNs = folder.info.changedNs = stamp();
}

MemoryTree::Found MemoryTree::followOnce(const MemoryNodePtr& folder, const MemoryNode& link,
                                         int& links) const
{
    if (++links > kMostLinks)
        throw RuntimeError(error_number::kPathAccess, link.data, "too many symbolic links");
    if (link.data.starts_with('/')) {
        const std::string path = m_map.fromNative(link.data);
        const auto root = m_roots.find(path[0]);
        return walk(root->second, namesOf(path.substr(2), "\\"), false, links);
    }
    Names names = namesOf(link.data, "/");
    for (std::string& name : names)
        name = name == ".." ? name : nameFromDisk(name);
    return walk(folder, std::move(names), false, links);
}

MemoryNodePtr MemoryTree::followAll(const MemoryNodePtr& folder, const MemoryNodePtr& node) const
{
    Found found{folder, {}, node};
    int links = 0;
    while (found.node != nullptr && found.node->info.kind == FileKind::SymbolicLink)
        found = followOnce(found.folder, *found.node, links);
    return found.node;
}

bool MemoryTree::isReadOnly(const MemoryNode& node, const MemoryNode* folder)
{
    bool readOnly = node.readOnly;
    for (; folder != nullptr; folder = folder->parent)
        readOnly = readOnly || folder->readOnly;
    return readOnly;
}

// A missing last name leaves the node empty; a missing folder on the way empties the folder, too.
MemoryTree::Found MemoryTree::walk(const MemoryNodePtr& start, Names names, bool followLast,
                                   int& links) const
{
    Found found{start, start->name, start};
    while (!names.empty()) {
        const std::string name = std::move(names.back());
        names.pop_back();
        if (found.node == nullptr)
            return {};
        if (found.node->info.kind != FileKind::Folder)
            throw RuntimeError(error_number::kPathAccess, found.name, "not a folder");
        if (name == "..") {
            // A root is its own parent.
            MemoryNode* const up = found.node->parent;
            if (up != nullptr) {
                MemoryNodePtr parent;
                if (up->parent != nullptr)
                    parent = childOf(*up->parent, up->name);
                else
                    parent = m_roots.at(up->name[0]);
                found = {parent, parent->name, parent};
            }
            continue;
        }
        const auto hit = found.node->children.find(fold(name));
        if (hit == found.node->children.end()) {
            found = {found.node, name, nullptr};
            continue;
        }
        Found next{found.node, hit->second.name, hit->second.node};
        while ((followLast || !names.empty()) && next.node != nullptr &&
               next.node->info.kind == FileKind::SymbolicLink)
            next = followOnce(next.folder, *next.node, links);
        found = std::move(next);
    }
    // A folder reached through `..` or as a start still has its own parent.
    if (found.node != nullptr && found.node == found.folder && found.node->parent != nullptr) {
        MemoryNode* const up = found.node->parent;
        found.folder =
            up->parent != nullptr ? childOf(*up->parent, up->name) : m_roots.at(up->name[0]);
    }
    return found;
}

MemoryTree::Found MemoryTree::resolve(std::string_view path, bool followLast) const
{
    m_map.toNative(path); // raises for what is no path at all
    int links = 0;
    return walk(m_roots.at(capital(path[0])), namesOf(path.substr(2), "\\"), followLast, links);
}

MemoryNodePtr MemoryTree::folderAt(std::string_view path) const
{
    const Found found = resolve(path, true);
    if (found.node == nullptr)
        throw RuntimeError(error_number::kPathNotFound, std::string(path),
                           "No such file or directory");
    if (found.node->info.kind != FileKind::Folder)
        throw RuntimeError(error_number::kPathAccess, std::string(path), "Not a directory");
    return found.node;
}

} // namespace vardelin::platform
