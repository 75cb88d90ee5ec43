#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The file system as the logic sees it on every machine: drive letters, backslashes, bytes.
//
// Paths are absolute (`C:\dir\name`); `C:\` is a drive's root; a backslash at the end of a folder's
// path makes no difference. Names hold no backslash and none of `/ : * ? " < > |` or bytes 1 to 31:
// an implementation whose disk can hold such names maps them to and fro so that every name on the
// disk makes the round trip (platform/name_mapping.h). Names go through unchanged otherwise,
// whatever their bytes.
//
// Errors are RuntimeError with the path as subject and the system's reason: 53 for a missing file,
// 76 for a missing folder on the way, 70 for missing rights, a read-only file system or a held
// lock, 58 for a name that exists, 61 for a full disk, 75 for a file where a folder is needed, a
// folder where a file is needed, a folder that is not empty, a name too long or another path fault,
// 57 for all else that the device reports.
//
// A FileSystem may be used by several threads at once; a Folder and a File by one thread at a time.
namespace vardelin::platform {

enum class FileKind : std::uint8_t { Regular, Folder, SymbolicLink, Other };

// All times are nanoseconds since 1 January 1970 UTC; a time that these cannot hold, before 1677 or
// after 2262, is the first or last one that they can.
struct FileInfo {
    FileKind kind = FileKind::Regular;
    std::uint64_t sizeBytes = 0;      // of a regular file; 0 for the rest
    std::uint64_t allocatedBytes = 0; // what it takes on the disk: less than the size where sparse
    std::int64_t modifiedNs = 0;
    std::int64_t accessedNs = 0;
    std::int64_t changedNs = 0; // of the entry itself, where the disk keeps it
    std::int64_t createdNs = 0; // birth time, else the smaller of the changed and modified times
    std::uint32_t mode = 0;     // permission bits, 12 bits as POSIX has them
    std::uint32_t ownerId = 0;
    std::uint32_t groupId = 0;
    std::uint64_t device = 0; // device and inode together name one file on this machine
    std::uint64_t inode = 0;
    std::uint64_t linkCount = 1;
};

struct FolderEntry {
    std::string name;
    FileKind kind = FileKind::Regular;
};

struct FolderEntryInfo {
    std::string name;
    FileInfo info;
};

struct ExtendedAttribute {
    std::string name;  // with its namespace, as in `user.comment`
    std::string value; // bytes
    friend bool operator==(const ExtendedAttribute&, const ExtendedAttribute&) = default;
};

// A stretch of a file that holds data; what lies between two stretches is a hole.
struct Extent {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

enum class OpenMode : std::uint8_t {
    Read,             // must exist
    CreateNew,        // write; must not exist (58)
    CreateOrTruncate, // write; made or emptied
    Append,           // write at the end; made if missing
    ReadWrite,        // read and write at any offset; made if missing
    Update,           // read and write; must exist
};

enum class Links : std::uint8_t {
    Follow,
    Refuse, // 70 where the last component is a symbolic link
};

// An open file; closed by the destructor without a word. Call close() where a failing close
// matters.
class File {
public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    virtual ~File() = default;

    // Up to buffer.size() bytes from the cursor or from an offset; 0 only at the end of the file.
    virtual std::size_t read(std::span<std::byte> buffer) = 0;
    virtual std::size_t readAt(std::uint64_t offset, std::span<std::byte> buffer) = 0;
    // All bytes, or an error; after an error the file may hold some of them.
    virtual void write(std::span<const std::byte> bytes) = 0;
    virtual void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    virtual void resize(std::uint64_t sizeBytes) = 0;
    // Comes back when the data is on the disk.
    virtual void flush() = 0;
    virtual FileInfo info() = 0;
    // The first stretch of data at or behind `offset`; none when only a hole or nothing follows. A
    // disk that keeps no holes gives one stretch for the whole rest.
    virtual std::optional<Extent> nextData(std::uint64_t offset) = 0;
    // Appends `length` bytes of `source` at the cursor, sharing blocks where the disk can.
    virtual void appendRange(File& source, std::uint64_t offset, std::uint64_t length) = 0;
    virtual void setTimes(std::int64_t accessedNs, std::int64_t modifiedNs) = 0;
    virtual void setMode(std::uint32_t mode) = 0;
    virtual void setOwner(std::uint32_t ownerId, std::uint32_t groupId) = 0;
    virtual std::vector<ExtendedAttribute> extendedAttributes() = 0;
    virtual void setExtendedAttribute(const ExtendedAttribute& attribute) = 0;
    virtual void close() = 0;
};

// An open folder. Everything is done by the name of a direct child, never by a path, so that
// nothing that is planted on the way (a symbolic link, a renamed parent) can lead elsewhere.
class Folder {
public:
    Folder() = default;
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    virtual ~Folder() = default;

    // The path it was opened by, without a backslash at the end unless it is a drive's root.
    virtual const std::string& path() const = 0;

    // Without `.` and `..`, in no order. The kind costs nothing; the info costs a call an entry,
    // and an entry that vanishes meanwhile is left out.
    virtual std::vector<FolderEntry> list() = 0;
    virtual std::vector<FolderEntryInfo> listWithInfo() = 0;
    // The entries of list() one by one as they come from the disk, for a caller that has something
    // else to do in between. Ends early once `visit` gives false.
    virtual void visit(const std::function<bool(FolderEntry entry)>& visit);

    // Of the entry itself, links not followed. None where there is no such entry.
    virtual std::optional<FileInfo> find(std::string_view name) = 0;
    virtual FileInfo info() = 0;
    virtual std::vector<ExtendedAttribute> extendedAttributes() = 0;

    virtual std::unique_ptr<File> open(std::string_view name, OpenMode mode,
                                       Links links = Links::Refuse) = 0;
    // Raises 75 where the child is no folder; with Links::Refuse a link to a folder is none.
    virtual std::unique_ptr<Folder> openFolder(std::string_view name,
                                               Links links = Links::Refuse) = 0;
    virtual void createFolder(std::string_view name) = 0; // 58 where the name exists
    virtual void removeFile(std::string_view name) = 0;   // a link itself, never its target
    virtual void removeFolder(std::string_view name) = 0; // 75 where it is not empty
    // Within this folder, or from this folder into another one of the same file system; replaces a
    // file of the new name in one step.
    virtual void rename(std::string_view from, std::string_view to) = 0;
    virtual void moveTo(std::string_view from, Folder& folder, std::string_view to) = 0;

    virtual std::string readLink(std::string_view name) = 0; // the target's bytes as they stand
    virtual void createLink(std::string_view name, std::string_view target) = 0;
    // A second name for `existing` of `folder`; 57 where the disk has no hard links.
    virtual void createHardLink(std::string_view name, Folder& folder,
                                std::string_view existing) = 0;

    // Of the entry itself, links not followed.
    virtual void setTimes(std::string_view name, std::int64_t accessedNs,
                          std::int64_t modifiedNs) = 0;
    virtual void setMode(std::string_view name, std::uint32_t mode) = 0;
    virtual void setOwner(std::string_view name, std::uint32_t ownerId, std::uint32_t groupId) = 0;
    virtual std::vector<ExtendedAttribute> extendedAttributes(std::string_view name) = 0;
    virtual void setExtendedAttribute(std::string_view name,
                                      const ExtendedAttribute& attribute) = 0;
    virtual void setOwnMode(std::uint32_t mode) = 0;
    virtual void setOwnTimes(std::int64_t accessedNs, std::int64_t modifiedNs) = 0;

    // Comes back when the names in this folder are on the disk.
    virtual void flush() = 0;
    // Comes back when all that was written to this folder's file system is on the disk.
    virtual void flushFileSystem() = 0;
};

// A held lock; released by the destructor, and by the system when the process dies.
class FolderLock {
public:
    FolderLock() = default;
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    virtual ~FolderLock() = default;
};

struct Space {
    std::uint64_t totalBytes = 0;
    std::uint64_t freeBytes = 0; // free to this user
};

// The file that stands for a folder's lock where the folder itself cannot be locked. It stays there
// when the lock is given up, and says nothing.
inline constexpr const char* kLockFileName = ".vardelin-lock";

// The primitives. The path functions below stand on them and are the same for every machine.
class FileSystem {
public:
    FileSystem() = default;
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;
    virtual ~FileSystem() = default;

    // Links on the way and at the end are followed. 76 where it does not exist, 75 where it is
    // none.
    virtual std::unique_ptr<Folder> openFolder(std::string_view path) = 0;
    // An advisory lock on the folder itself, for one holder among all processes; 70 when held.
    virtual std::unique_ptr<FolderLock> lockFolder(std::string_view path) = 0;
    virtual Space space(std::string_view path) = 0;
    // Whether file names that differ in case are different files.
    virtual bool isCaseSensitive() const = 0;
    // Whether a folder lies on a file system that only shows the running system (processes,
    // devices, run-time state): neither shown nor backed up.
    virtual bool isPseudo(std::string_view path) = 0;

    // A path in the machine's own form, and back. Raises 76 for a path that no drive reaches.
    virtual std::string toNative(std::string_view path) const = 0;
    virtual std::string fromNative(std::string_view native) const = 0;
    // The path with links and `.`/`..` resolved, one text for each file: what two paths to the same
    // file have in common. 53 where it does not exist.
    virtual std::string canonical(std::string_view path) = 0;

    // Link-following look at a path; none where there is no such entry or no way to it.
    std::optional<FileInfo> find(std::string_view path);
    bool fileExists(std::string_view path);   // a regular file
    bool folderExists(std::string_view path); // a folder
    std::unique_ptr<File> open(std::string_view path, OpenMode mode);
    void createFolder(std::string_view path);
    // With its parents; a folder that exists is no error.
    void createFolders(std::string_view path);
    void removeFile(std::string_view path);
    void removeFolder(std::string_view path);
    // With all that is in it; links are removed and not followed.
    void removeTree(std::string_view path);
    void rename(std::string_view from, std::string_view to);
    // Byte copy, replacing the target; the target's data is on the disk before this comes back.
    void copyFile(std::string_view from, std::string_view to);
    // In the folder's order (naturalLess); 76 where it does not exist.
    std::vector<FolderEntryInfo> list(std::string_view path);
    std::string readAll(std::string_view path);
    // Writes a temporary name beside it, flushes, renames and flushes the folder: after a crash the
    // file is the old one or the new one.
    void replaceFile(std::string_view path, std::string_view bytes);
};

// Path texts. `parentOf("C:\a\b")` is `C:\a\`, of `C:\a` is `C:\`, of a drive's root or a bare
// name is empty. `joinPath` puts one backslash between.
std::string_view parentOf(std::string_view path);
std::string_view leafOf(std::string_view path);
std::string joinPath(std::string_view folder, std::string_view name);
// `C:`, `C:\`: a drive itself.
bool isDriveRoot(std::string_view path);
// The same bytes, seen as the port takes them.
std::span<const std::byte> asBytes(std::string_view text);

} // namespace vardelin::platform
