#pragma once

#include "platform/file_system.h"
#include "platform/linux/unique_fd.h"

namespace vardelin::platform {

// A folder by its descriptor. A folder that may be passed but not read is opened for passing alone:
// its children are reached by name, listing it raises 70.
class LinuxFolder final : public Folder {
public:
    LinuxFolder(UniqueFd fd, bool readable, std::string path);

    const std::string& path() const override { return m_path; }
    std::vector<FolderEntry> list() override;
    void visit(const std::function<bool(FolderEntry entry)>& visit) override;
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
    // 57 for a symbolic link, which has no mode of its own here.
    void setMode(std::string_view name, std::uint32_t mode) override;
    void setOwner(std::string_view name, std::uint32_t ownerId, std::uint32_t groupId) override;
    std::vector<ExtendedAttribute> extendedAttributes(std::string_view name) override;
    void setExtendedAttribute(std::string_view name, const ExtendedAttribute& attribute) override;
    void setOwnMode(std::uint32_t mode) override;
    void setOwnTimes(std::int64_t accessedNs, std::int64_t modifiedNs) override;
    void flush() override;
    void flushFileSystem() override;

private:
    std::string disk(std::string_view name) const;
    // The way to a child for the calls that take no descriptor of its folder.
    std::string procPath(std::string_view name) const;
    [[noreturn]] void fail(int systemError, std::string_view name, bool folder = false) const;
    // Calls `use(entry)` for each entry but `.` and `..`; the entry lives until it comes back.
    template <typename Use>
    void eachEntry(Use&& use); // until `use` gives false

    UniqueFd m_fd;
    bool m_readable;
    std::string m_path;
};

// The descriptor of a folder: readable, or for passing alone where reading is refused. Empty, with
// errno set, on failure. `flags` are added.
struct OpenedFolder {
    UniqueFd fd;
    bool readable = true;
};
OpenedFolder openFolderAt(int at, const char* diskName, int flags);

} // namespace vardelin::platform
