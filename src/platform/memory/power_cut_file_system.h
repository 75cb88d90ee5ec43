#pragma once

#include "platform/memory/memory_tree.h"

#include <cstdint>
#include <memory>

namespace vardelin::platform {

// A file system in memory that keeps book of what a power cut could still take, for tests.
//
// What survives for certain: a file's bytes and details once the file was flushed, the names in a
// folder once that folder was flushed, and everything of a disk once its file system was flushed.
// Flushing a file does not keep its name, and flushing a folder keeps neither the folder's own name
// nor any file's bytes, as POSIX has it. Of the rest each cut decides, by its seed:
//
// - Names (creations, renames, removals) survive after one of three orders, one for each cut. As on
//   a journal: of each disk all up to some moment and none behind it. As with a log for each
//   folder: of each folder all up to a moment of its own. As without any order: each name by
//   itself, where the operations on one name keep their order and a rename is one operation. A
//   rename may survive though the bytes of its file did not. What lies in a folder whose own name
//   is lost is lost.
// - Bytes of each file by themselves: all are there, none are, only the writes up to a moment, only
//   a first stretch, zeros in their place, or a mixture in which each 4 KiB of each write is kept,
//   left out, zeroed or garbled. What was flushed and not written again is never touched.
// - Details (times, mode, owner, attributes): each change by itself.
//
// May be used by several threads. A file that is made through a symbolic link is lost at a cut.
class PowerCutFileSystem final : public FileSystem {
public:
    // Works on the tree, which must outlive this and all that it opens; what is in the tree now is
    // on the disk.
    explicit PowerCutFileSystem(MemoryTree& tree);
    ~PowerCutFileSystem() override;

    // Counts all that is in the tree as flushed, also what was done behind this object's back.
    void settle();
    // Cuts the power and brings it back: the tree becomes what the disk holds. What is open from
    // before must not be used any more.
    void cut(std::uint64_t seed);

    std::unique_ptr<Folder> openFolder(std::string_view path) override;
    std::unique_ptr<FolderLock> lockFolder(std::string_view path) override;
    Space space(std::string_view path) override;
    bool isCaseSensitive() const override;
    bool isPseudo(std::string_view path) override;
    std::string toNative(std::string_view path) const override;
    std::string fromNative(std::string_view native) const override;
    std::string canonical(std::string_view path) override;

private:
    class Journal;
    class OpenFile;
    class OpenedFolder;

    MemoryTree& m_tree;
    std::unique_ptr<Journal> m_journal;
};

} // namespace vardelin::platform
