#include "runs/engine/copy_restorer.h"

#include "archive/entry_names.h"
#include "runs/engine/encrypted_copy.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using platform::OpenMode;

constexpr std::size_t kZeroBlock = 4096; // what a hole is made of on the usual file systems

constexpr std::uint32_t kSetUser = 04000;
constexpr std::uint32_t kSetGroup = 02000;
constexpr std::string_view kAccessAcl = "system.posix_acl_access";

bool isZero(std::span<const std::byte> bytes)
{
    static constexpr std::array<std::byte, kZeroBlock> kZeros{};
    return bytes.size() <= kZeros.size() &&
           std::memcmp(bytes.data(), kZeros.data(), bytes.size()) == 0;
}

// An access list of the owner, the group and the others alone, as the system takes it: version 2,
// then tag, rights and number of each entry, little-endian (acl(5), linux/posix_acl_xattr.h).
std::string plainAcl(std::uint32_t mode)
{
    std::string acl{'\2', '\0', '\0', '\0'};
    const auto entry = [&](char tag, std::uint32_t rights) {
        acl += {tag, '\0', static_cast<char>(rights & 7U), '\0'};
        acl.append(4, '\xff');
    };
    entry(0x01, mode >> 6U);
    entry(0x04, mode >> 3U);
    entry(0x20, mode);
    return acl;
}

// Makes something under a temporary name, and under the next one where a name is taken: by what a
// restore that died left behind, or by a person's file that happens to be called so.
template <typename Make>
std::string underFreeName(std::atomic<std::uint64_t>& serial, Make&& make)
{
    constexpr int kAttempts = 1000;
    for (int i = 1;; ++i) {
        std::string name = archive::temporaryName(serial++);
        try {
            onTarget([&] { make(name); });
            return name;
        } catch (const TargetError& error) {
            if (error.number() != base::error_number::kFileExists || i == kAttempts)
                throw;
        }
    }
}

void refuseOutOfOrder(const ChosenCopy& copy)
{
    if (copy.outOfOrder)
        throw RuntimeError(base::error_number::kDeviceIo, {},
                           "its version is out of order: it or another one was renamed");
}

// A temporary file in the target folder that goes away unless it is kept.
class TargetFile {
public:
    TargetFile(platform::Folder& folder, std::atomic<std::uint64_t>& serial) : m_folder(folder)
    {
        m_name = underFreeName(serial, [&](const std::string& name) {
            m_file = folder.open(name, OpenMode::CreateNew);
        });
    }
    ~TargetFile()
    {
        if (m_kept)
            return;
        m_file.reset();
        try {
            m_folder.removeFile(m_name);
        } catch (...) { // NOLINT(bugprone-empty-catch): the error that led here is the one to tell
        }
    }
    TargetFile(const TargetFile&) = delete;
    TargetFile& operator=(const TargetFile&) = delete;

    void append(std::span<const std::byte> piece, bool sparse)
    {
        onTarget([&] {
            if (sparse)
                appendSparse(piece);
            else
                m_file->write(piece);
        });
        m_size += piece.size();
    }

    std::uint64_t inode() const
    {
        return onTarget([&] { return m_file->info().inode; });
    }

    // Puts on what the header says, as far as this user and this disk can.
    void dress(const CopyHeader& header, std::int64_t modifiedNs)
    {
        onTarget([&] {
            if (header.sparse)
                m_file->resize(m_size);
            // Owner first, since changing it takes the set-user bits away; times last, since every
            // other change may move them. Only a privileged user can give a file away.
            base::PendingError ignored;
            m_file->setMode(modeUnder(takeOwner(header), header));
            dropInheritedAcl(header);
            for (const auto& attribute : header.attributes)
                ignored.attempt([&] { m_file->setExtendedAttribute(attribute); });
            m_file->setTimes(header.accessedNs, modifiedNs);
            m_file->close();
        });
    }

    std::string keep()
    {
        m_kept = true;
        return m_name;
    }

private:
    // Gives the file to its owner and group, or to its group alone, as far as this user may; gives
    // what came of it.
    platform::FileInfo takeOwner(const CopyHeader& header)
    {
        base::PendingError ignored;
        if (ignored.attempt([&] { m_file->setOwner(header.ownerId, header.groupId); })) {
            platform::FileInfo info;
            info.ownerId = header.ownerId;
            info.groupId = header.groupId;
            return info;
        }
        const std::uint32_t owner = m_file->info().ownerId;
        ignored.attempt([&] { m_file->setOwner(owner, header.groupId); });
        return m_file->info();
    }

    // A program that runs with its owner's rights must not run with those of whoever restored it.
    static std::uint32_t modeUnder(const platform::FileInfo& info, const CopyHeader& header)
    {
        std::uint32_t mode = header.mode;
        if (info.ownerId != header.ownerId)
            mode &= ~kSetUser;
        if (info.groupId != header.groupId)
            mode &= ~kSetGroup;
        return mode;
    }

    // A folder may hand its own access list to whatever is made in it. A list that says no more
    // than the permission bits takes its place, which the system keeps as none.
    void dropInheritedAcl(const CopyHeader& header)
    {
        const auto isAcl = [](const auto& attribute) { return attribute.name == kAccessAcl; };
        if (std::any_of(header.attributes.begin(), header.attributes.end(), isAcl))
            return;
        base::PendingError ignored;
        ignored.attempt([&] {
            const auto inherited = m_file->extendedAttributes();
            if (std::any_of(inherited.begin(), inherited.end(), isAcl))
                m_file->setExtendedAttribute({std::string(kAccessAcl), plainAcl(header.mode)});
        });
    }

    // Blocks of zeros are left out, so that a sparse file stays one; what lies between two of them
    // is written at once.
    void appendSparse(std::span<const std::byte> piece)
    {
        std::uint64_t at = m_size;
        std::size_t data = 0; // bytes at the front of `piece` that wait to be written
        while (data < piece.size()) {
            const std::uint64_t end = at + data;
            const std::size_t n = std::min(piece.size() - data,
                                           kZeroBlock - static_cast<std::size_t>(end % kZeroBlock));
            if (!isZero(piece.subspan(data, n))) {
                data += n;
                continue;
            }
            if (data > 0)
                m_file->writeAt(at, piece.first(data));
            at = end + n;
            piece = piece.subspan(data + n);
            data = 0;
        }
        if (data > 0)
            m_file->writeAt(at, piece);
    }

    platform::Folder& m_folder;
    std::string m_name;
    std::unique_ptr<platform::File> m_file;
    std::uint64_t m_size = 0;
    bool m_kept = false;
};

// Copies of different runs can tell the same number of a file that was two files in between, or
// that has got another content since. Only what was alike may become one file again.
std::string linkGroupOf(const CopyHeader& header, std::int64_t modifiedNs)
{
    if (header.linkGroup.empty())
        return {};
    std::string group = header.linkGroup + '/' + std::to_string(modifiedNs) + '/';
    for (const std::uint8_t byte : header.contentHash)
        group += static_cast<char>(byte);
    return group;
}

} // namespace

CopyRestorer::CopyRestorer(std::atomic<std::uint64_t>& serial, const KeyRing& ring)
    : m_serial(serial), m_ring(ring), m_reader(&ring)
{
}

// Reads a copy's header and makes sure that it is the one that its place and name say. The time in
// the name alone may differ, since a touched file is renamed.
CopyHeader CopyRestorer::checkedHeader(platform::Folder& archive, platform::File& file,
                                       const std::string& sourceFolder, const ChosenCopy& copy)
{
    const auto refuse = [](std::string reason) {
        throw RuntimeError(base::error_number::kDeviceIo, {}, std::move(reason));
    };
    CopyHeader header = m_reader.readHeader(file);
    // A settings text lies right in the folder of its group.
    const bool isSettings = sourceFolder.empty();
    const std::string path =
        isSettings ? std::string(platform::leafOf(archive.path())) + '\\' + copy.sourceName()
                   : sourceFolder + copy.sourceName();
    if (header.path != path)
        refuse("it holds another file: " + header.path);
    if ((header.kind == ItemKind::Settings) != isSettings || header.kind == ItemKind::Folder)
        refuse("it holds something of another kind");
    // A renumbered copy keeps the number that it was saved under in its name.
    const auto name = archive::parseCopyName(copy.fileName);
    const bool renumbered = name && name->meta && name->meta->serial != 0;
    const auto version = renumbered ? name->meta->serial : static_cast<std::uint32_t>(copy.version);
    if (header.version != version)
        refuse("it holds another version");
    if (name && name->meta &&
        (header.savedNs != name->meta->savedNs || header.sizeBytes != name->meta->sizeBytes))
        refuse("it holds a copy of another run");
    return header;
}

RestoredCopy CopyRestorer::restore(platform::Folder& archive, const std::string& sourceFolder,
                                   const ChosenCopy& copy, platform::Folder& target)
{
    refuseOutOfOrder(copy);
    const auto file = archive.open(copy.fileName, OpenMode::Read);
    if (copy.form == archive::Form::Stored) {
        const platform::FileInfo info = file->info();
        CopyHeader header;
        header.sparse = info.allocatedBytes < info.sizeBytes;
        header.mode = info.mode;
        header.ownerId = info.ownerId;
        header.groupId = info.groupId;
        header.accessedNs = info.accessedNs;
        header.attributes = file->extendedAttributes();
        TargetFile result(target, m_serial);
        const archive::CopyMeta expected{copy.sizeBytes, copy.modifiedNs, 0, copy.contentHash};
        m_reader.readPlain(*file, expected, [&](std::span<const std::byte> piece) {
            result.append(piece, header.sparse);
        });
        result.dress(header, copy.modifiedNs);
        return {result.keep(), copy.sizeBytes, {}, 0};
    }
    const CopyHeader header = checkedHeader(archive, *file, sourceFolder, copy);
    if (!m_ring.opens(header.slot))
        throw PasswordError();
    if (header.kind == ItemKind::SymbolicLink) {
        m_reader.readContent(*file, header, [](std::span<const std::byte>) {});
        return restoreLink(header, copy, target);
    }
    if (header.kind != ItemKind::File)
        throw RuntimeError(base::error_number::kDeviceIo, {}, "it holds no file");
    TargetFile result(target, m_serial);
    m_reader.readContent(*file, header, [&](std::span<const std::byte> piece) {
        result.append(piece, header.sparse);
    });
    const std::int64_t modifiedNs = copy.modifiedNs != 0 ? copy.modifiedNs : header.modifiedNs;
    std::string group = linkGroupOf(header, modifiedNs);
    const std::uint64_t inode = group.empty() ? 0 : result.inode();
    result.dress(header, modifiedNs);
    return {result.keep(), header.sizeBytes, std::move(group), inode};
}

RestoredCopy CopyRestorer::restoreLink(const CopyHeader& header, const ChosenCopy& copy,
                                       platform::Folder& target)
{
    std::string name = underFreeName(
        m_serial, [&](const std::string& free) { target.createLink(free, header.linkTarget); });
    // A link's own owner, times and attributes are a nicety that not every disk has.
    base::PendingError ignored;
    ignored.attempt([&] { target.setOwner(name, header.ownerId, header.groupId); });
    for (const auto& attribute : header.attributes)
        ignored.attempt([&] { target.setExtendedAttribute(name, attribute); });
    ignored.attempt([&] {
        target.setTimes(name, header.accessedNs,
                        copy.modifiedNs != 0 ? copy.modifiedNs : header.modifiedNs);
    });
    return {std::move(name), 0, {}, 0};
}

std::string CopyRestorer::readText(platform::Folder& archive, const ChosenCopy& copy)
{
    const auto file = archive.open(copy.fileName, OpenMode::Read);
    const CopyHeader header = checkedHeader(archive, *file, {}, copy);
    if (!m_ring.opens(header.slot))
        throw PasswordError();
    std::string text;
    m_reader.readContent(*file, header, [&](std::span<const std::byte> piece) {
        text.append(reinterpret_cast<const char*>(piece.data()), piece.size());
    });
    return text;
}

std::uint64_t CopyRestorer::check(platform::Folder& archive, const std::string& sourceFolder,
                                  const ChosenCopy& copy)
{
    refuseOutOfOrder(copy);
    const auto file = archive.open(copy.fileName, OpenMode::Read);
    const auto nowhere = [](std::span<const std::byte>) {};
    if (copy.form == archive::Form::Stored) {
        m_reader.readPlain(*file, {copy.sizeBytes, copy.modifiedNs, 0, copy.contentHash}, nowhere);
        return copy.sizeBytes;
    }
    const CopyHeader header = checkedHeader(archive, *file, sourceFolder, copy);
    m_reader.readContent(*file, header, nowhere);
    return header.sizeBytes;
}

void joinHardLinks(TargetFolders& targets, const HardLinks& links,
                   std::atomic<std::uint64_t>& serial)
{
    const auto isStill = [](platform::Folder& folder, const LinkedName& place) {
        const auto info = folder.find(place.name);
        return info && info->inode == place.inode;
    };
    for (const auto& link : links) {
        const std::vector<LinkedName>& places = link.second;
        // A disk without hard links keeps the files apart, each with its whole content, and so does
        // a target that somebody changed meanwhile.
        base::PendingError ignored;
        ignored.attempt([&] {
            const LinkedName& first = places.front();
            const auto from = targets.reopen(first.sourceFolder);
            if (!isStill(*from, first))
                return;
            for (std::size_t i = 1; i < places.size(); ++i) {
                const auto folder = targets.reopen(places[i].sourceFolder);
                if (!isStill(*folder, places[i]))
                    continue;
                const std::string name = underFreeName(serial, [&](const std::string& free) {
                    folder->createHardLink(free, *from, first.name);
                });
                if (!ignored.attempt([&] { folder->rename(name, places[i].name); }))
                    ignored.attempt([&] { folder->removeFile(name); });
            }
        });
    }
}

} // namespace vardelin::engine
