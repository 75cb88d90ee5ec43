#pragma once

#include "platform/file_system.h"
#include "platform/linux/drive_map.h"

#include <map>
#include <mutex>

// What MemoryFileSystem is made of, without the script in front.
namespace vardelin::platform {

struct MemoryDisk {
    std::uint64_t device = 0;
    std::uint64_t capacityBytes = std::uint64_t{1} << 40;
    std::uint64_t usedBytes = 0;
};

struct MemoryNode;
using MemoryNodePtr = std::shared_ptr<MemoryNode>;

struct MemoryChild {
    std::string name; // as it was first written, where the case of names does not matter
    MemoryNodePtr node;
};

// A file, folder or link. Lives as long as it has a name or is open.
struct MemoryNode {
    explicit MemoryNode(std::shared_ptr<MemoryDisk> home) : disk(std::move(home)) {}
    MemoryNode(const MemoryNode&) = delete;
    MemoryNode& operator=(const MemoryNode&) = delete;
    ~MemoryNode();

    FileInfo info;
    std::shared_ptr<MemoryDisk> disk;
    std::string data;                                         // a file's bytes, a link's target
    std::map<std::string, MemoryChild, std::less<>> children; // of a folder, by folded name
    std::map<std::string, std::string> attributes;
    MemoryNode* parent = nullptr; // of a folder; none for a root or a removed folder
    std::string name;             // of a folder; `C:\` for a root
    bool removed = false;
    bool locked = false;
    bool unreadable = false;
    bool readOnly = false;
    bool pseudo = false;
};

class MemoryTree final : public FileSystem {
public:
    explicit MemoryTree(bool caseSensitive) : m_caseSensitive(caseSensitive) {}

    void addDrive(char letter);
    void removeDrive(char letter);
    void setCapacity(char letter, std::uint64_t bytes);
    void setFlag(std::string_view path, bool MemoryNode::*flag, bool on);
    void setNow(std::int64_t ns);
    void setTick(std::int64_t ns);
    std::int64_t now();
    void setOwnerOfNew(std::uint32_t ownerId, std::uint32_t groupId);

    // Becomes a copy of another tree: drives, names, data, inodes and marks; no folder is locked.
    // What is open keeps the nodes from before. Time and inode numbers never go back.
    void copyFrom(const MemoryTree& other);
    // Everything that has a name, by its inode.
    std::map<std::uint64_t, MemoryNodePtr> nodes() const;

    std::unique_ptr<Folder> openFolder(std::string_view path) override;
    std::unique_ptr<FolderLock> lockFolder(std::string_view path) override;
    Space space(std::string_view path) override;
    bool isCaseSensitive() const override { return m_caseSensitive; }
    bool isPseudo(std::string_view path) override;
    std::string toNative(std::string_view path) const override;
    std::string fromNative(std::string_view native) const override;
    std::string canonical(std::string_view path) override;

    // For the open folders and files, which hold the lock around everything that follows.
    struct Found {
        MemoryNodePtr folder; // in which the name stands; the node itself for a root
        std::string name;
        MemoryNodePtr node; // none where nothing has the name
    };
    std::unique_lock<std::mutex> lock() const { return std::unique_lock(m_mutex); }
    std::int64_t stamp(); // the time of a change
    std::string fold(std::string_view name) const;
    MemoryNodePtr childOf(const MemoryNode& folder, std::string_view name) const;
    MemoryNodePtr makeChild(MemoryNode& folder, std::string_view name, FileKind kind);
    void insertChild(MemoryNode& folder, std::string_view name, MemoryNodePtr node);
    void eraseChild(MemoryNode& folder, std::string_view name);
    // Follows the link's target to where it leads, the last name's own link not followed.
    Found followOnce(const MemoryNodePtr& folder, const MemoryNode& link, int& links) const;
    // Follows to the end, starting in `folder`.
    MemoryNodePtr followAll(const MemoryNodePtr& folder, const MemoryNodePtr& node) const;
    static bool isReadOnly(const MemoryNode& node, const MemoryNode* folder);
    // The open folder without a word to the lock.
    std::unique_ptr<Folder> foldered(MemoryNodePtr node, std::string path);

private:
    using Names = std::vector<std::string>; // the next one is at the end
    Found walk(const MemoryNodePtr& start, Names names, bool followLast, int& links) const;
    Found resolve(std::string_view path, bool followLast) const;
    MemoryNodePtr folderAt(std::string_view path) const;
    const DriveMap& map() const { return m_map; }

    mutable std::mutex m_mutex; // for all that follows and all nodes
    bool m_caseSensitive;
    std::map<char, MemoryNodePtr> m_roots;
    DriveMap m_map{std::vector<DriveRoot>{}};
    std::uint64_t m_nextInode = 2;
    std::uint64_t m_nextDevice = 1;
    std::int64_t m_now = 1'767'225'600'000'000'000; // 1 January 2026
    std::int64_t m_tick = 1'000'000;
    std::uint32_t m_ownerId = 1000;
    std::uint32_t m_groupId = 1000;
};

} // namespace vardelin::platform
