#pragma once

#include "platform/memory/memory_tree.h"

namespace vardelin::platform {

class MemoryFile final : public File {
public:
    MemoryFile(MemoryTree& tree, MemoryNodePtr node, std::string path, OpenMode mode);
    ~MemoryFile() override;

    std::size_t read(std::span<std::byte> buffer) override;
    std::size_t readAt(std::uint64_t offset, std::span<std::byte> buffer) override;
    void write(std::span<const std::byte> bytes) override;
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void resize(std::uint64_t sizeBytes) override;
    void flush() override;
    FileInfo info() override;
    std::optional<Extent> nextData(std::uint64_t offset) override;
    void appendRange(File& source, std::uint64_t offset, std::uint64_t length) override;
    void setTimes(std::int64_t accessedNs, std::int64_t modifiedNs) override;
    void setMode(std::uint32_t mode) override;
    void setOwner(std::uint32_t ownerId, std::uint32_t groupId) override;
    std::vector<ExtendedAttribute> extendedAttributes() override;
    void setExtendedAttribute(const ExtendedAttribute& attribute) override;
    void close() override;

private:
    MemoryNode& node() const; // raises 57 once closed
    MemoryNode& written() const;
    void grow(MemoryNode& node, std::uint64_t sizeBytes) const;

    MemoryTree& m_tree;
    MemoryNodePtr m_node;
    std::string m_path;
    OpenMode m_mode;
    std::uint64_t m_cursor = 0;
};

class MemoryFolder final : public Folder {
public:
    MemoryFolder(MemoryTree& tree, MemoryNodePtr node, std::string path);
    ~MemoryFolder() override;

    const std::string& path() const override { return m_path; }
    std::vector<FolderEntry> list() override;
    std::vector<FolderEntryInfo> listWithInfo() override;
    std::optional<FileInfo> find(std::string_view name) override;
    FileInfo info() override;
    std::vector<ExtendedAttribute> extendedAttributes() override;
    std::unique_ptr<File> open(std::string_view name, OpenMode mode, Links links) override;
    std::unique_ptr<Folder> openFolder(std::string_view name, Links links) override;
    void createFolder(std::string_view name) override;
    void removeFile(std::string_view name) override;
    void removeFolder(std::string_view name) override;
    void rename(std::string_view from, std::string_view to) override;
    void moveTo(std::string_view from, Folder& folder, std::string_view to) override;
    std::string readLink(std::string_view name) override;
    void createLink(std::string_view name, std::string_view target) override;
    void createHardLink(std::string_view name, Folder& folder, std::string_view existing) override;
    void setTimes(std::string_view name, std::int64_t accessedNs, std::int64_t modifiedNs) override;
    void setMode(std::string_view name, std::uint32_t mode) override;
    void setOwner(std::string_view name, std::uint32_t ownerId, std::uint32_t groupId) override;
    std::vector<ExtendedAttribute> extendedAttributes(std::string_view name) override;
    void setExtendedAttribute(std::string_view name, const ExtendedAttribute& attribute) override;
    void setOwnMode(std::uint32_t mode) override;
    void setOwnTimes(std::int64_t accessedNs, std::int64_t modifiedNs) override;
    void flush() override;
    void flushFileSystem() override;

private:
    [[noreturn]] void raise(int number, std::string_view name, std::string reason) const;
    void checkName(std::string_view name) const;
    // The child, or 53 (76) where there is none; `changed` ones must not be read-only.
    MemoryNodePtr child(std::string_view name, int missing) const;
    MemoryNode& changed(std::string_view name) const;
    void checkWritable(std::string_view name) const; // this folder's names
    void checkFree(std::string_view name) const;     // 58
    std::unique_ptr<File> openIn(const MemoryNodePtr& folder, std::string_view name, OpenMode mode,
                                 Links links, std::string_view shown, int& followed);

    MemoryTree& m_tree;
    MemoryNodePtr m_node;
    std::string m_path;
};

// The details as they are asked for: sizes follow from the data.
FileInfo infoOf(const MemoryNode& node);

} // namespace vardelin::platform
