#pragma once

#include "platform/memory/memory_tree.h"

#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The book that PowerCutFileSystem keeps: what the disk holds for certain, and what was done since.
namespace vardelin::platform {

// A change of names that is not flushed yet. Folders and nodes go by their inodes.
struct NameChange {
    enum class Kind : std::uint8_t { Link, Unlink, Move };
    Kind kind = Kind::Link;
    std::uint64_t device = 0;
    std::uint64_t folder = 0;
    std::string name;
    std::uint64_t node = 0;   // of a Link
    std::uint64_t target = 0; // of a Move: the folder and name that it goes to
    std::string targetName;
};

// A change of one file's bytes or details that is not flushed yet.
struct NodeChange {
    enum class Kind : std::uint8_t { Write, Resize, Details };
    Kind kind = Kind::Write;
    std::uint64_t offset = 0; // of a Write; the size of a Resize
    std::string bytes;
    std::function<void(MemoryNode&)> details;
};

// For one thread at a time.
class PowerCutJournal {
public:
    // The tree as it is now is on the disk.
    void settle(const MemoryTree& tree);

    void made(const FileInfo& folder, std::string_view name, const FileInfo& node,
              std::string_view linkTarget);
    void linked(const FileInfo& folder, std::string_view name, std::uint64_t node);
    void unlinked(const FileInfo& folder, std::string_view name);
    void moved(const FileInfo& folder, std::string_view name, const FileInfo& target,
               std::string_view targetName);
    void changed(std::uint64_t node, NodeChange change);

    void flushFile(std::uint64_t node);
    void flushFolder(std::uint64_t folder);
    void flushDisk(std::uint64_t device);

    // Decides by the seed what survives, and makes `tree` that.
    void cut(std::uint64_t seed, MemoryTree& tree);

private:
    using Random = std::mt19937_64;

    std::vector<bool> survivors(Random& random) const;
    std::vector<bool> survivorsOfFolders(Random& random) const;
    std::vector<bool> survivorsOfNames(Random& random) const;
    void apply(const NameChange& change);
    void applyAndForget(const std::vector<bool>& which);
    static void apply(const NodeChange& change, MemoryNode& node);
    void tear(const std::vector<NodeChange>& changes, MemoryNode& node, Random& random) const;
    static void tearWrite(const NodeChange& change, MemoryNode& node, Random& random);

    MemoryTree m_disk{true};
    std::map<std::uint64_t, MemoryNodePtr> m_nodes; // of the disk, those without a name too
    std::vector<NameChange> m_names;
    std::map<std::uint64_t, std::vector<NodeChange>> m_changes;
};

} // namespace vardelin::platform
