#pragma once

#include "platform/file_system.h"
#include "platform/memory/call_script.h"
#include "platform/memory/memory_tree.h"
#include "platform/memory/scripted_file_system.h"

namespace vardelin::platform {

// A file system in memory for tests, with the drives C: and D: from the start. Every primitive goes
// through script() first. It behaves as the machine's own does, down to the error numbers: links
// and hard links, replaced names, open files without a name. Its native paths are those of a
// machine with C: at `/` and every other drive at `/mnt/<letter>`; link targets are such paths.
//
// Must outlive the folders, files and locks that it opened. The functions below, which only arrange
// the test's world, are no calls of the script; they raise 76 where a path does not exist.
class MemoryFileSystem final : public FileSystem {
public:
    explicit MemoryFileSystem(bool caseSensitive = true);

    CallScript& script() { return m_script; }

    void addDrive(char letter);
    void removeDrive(char letter); // with all that is on it
    // What the drive holds at most, in bytes of file data; writing more raises 61 after what fits.
    void setCapacity(char letter, std::uint64_t bytes);
    // Opening the file for reading, or listing the folder, raises 70.
    void setUnreadable(std::string_view path, bool on = true);
    // Every change to it, and to what is below it, raises 70.
    void setReadOnly(std::string_view path, bool on = true);
    void setPseudo(std::string_view path, bool on = true);
    // The time of the next change; each change moves it on by the tick (1 ms at first). Starts at
    // 1 January 2026.
    void setNow(std::int64_t ns);
    void setTick(std::int64_t ns);
    std::int64_t nowNs();
    void setOwnerOfNew(std::uint32_t ownerId, std::uint32_t groupId);

    std::unique_ptr<Folder> openFolder(std::string_view path) override;
    std::unique_ptr<FolderLock> lockFolder(std::string_view path) override;
    Space space(std::string_view path) override;
    bool isCaseSensitive() const override;
    bool isPseudo(std::string_view path) override;
    std::string toNative(std::string_view path) const override;
    std::string fromNative(std::string_view native) const override;
    std::string canonical(std::string_view path) override;

private:
    CallScript m_script;
    MemoryTree m_tree;
    ScriptedFileSystem m_scripted;
};

} // namespace vardelin::platform
