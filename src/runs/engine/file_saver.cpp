#include "runs/engine/file_saver.h"

#include "base/runtime_error.h"
#include "runs/engine/missed_reason.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>

#include <fmt/format.h>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
using platform::FileInfo;
using platform::FileKind;
using platform::OpenMode;

// zstd's own default: the best ratio at which two cores still keep up with a disk.
constexpr int kCompressionLevel = 3;
constexpr std::uint32_t kOwnerReads = 0400;

// A disk stamps changes with a clock that ticks every 1 to 10 ms.
constexpr std::int64_t kStampTickNs = 12'000'000;

// Leaves room for the path and the fixed fields in the largest header that is read back.
constexpr std::size_t kMostAttributeBytes = kLargestHeader - 1024 * 1024;

// The time of change is the disk's own: it moves with every write, whatever a program says that the
// time of modification were.
bool isSame(const FileInfo& a, const FileInfo& b)
{
    return a.sizeBytes == b.sizeBytes && a.modifiedNs == b.modifiedNs && a.changedNs == b.changedNs;
}

constexpr const char* kTooManyAttributes = "its extended attributes take more than 15 MB";

bool fitHeader(const std::vector<platform::ExtendedAttribute>& attributes)
{
    std::size_t bytes = 0;
    for (const auto& attribute : attributes)
        bytes += attribute.name.size() + attribute.value.size() + 16;
    return bytes <= kMostAttributeBytes;
}

// Takes a temporary file away unless its copy came to its end.
class TemporaryFile {
public:
    TemporaryFile(platform::Folder& folder, std::string name)
        : m_folder(folder), m_name(std::move(name)),
          m_file(folder.open(m_name, OpenMode::CreateNew))
    {
    }
    ~TemporaryFile()
    {
        if (m_kept)
            return;
        m_file.reset();
        try {
            m_folder.removeFile(m_name);
        } catch (...) { // NOLINT(bugprone-empty-catch): the next run clears it away
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    platform::File& file() { return *m_file; }

    std::string keep()
    {
        m_file->close();
        m_kept = true;
        return m_name;
    }

private:
    platform::Folder& m_folder;
    std::string m_name;
    std::unique_ptr<platform::File> m_file;
    bool m_kept = false;
};

} // namespace

FileSaver::FileSaver(const SaveOptions& options, std::atomic<std::uint64_t>& serial)
    : m_options(options), m_serial(serial), m_writer(kCompressionLevel, options.key),
      m_reader(options.key.ring)
{
}

SaveResult FileSaver::save(const SaveTask& task, const Progress& progress)
{
    try {
        if (task.kind == FileKind::SymbolicLink)
            return saveLink(task);
        bool changed = false;
        SaveResult result = saveOnce(task, progress, changed);
        if (changed)
            result = saveOnce(task, progress, changed);
        if (changed)
            return Missed{"it changed while it was read, and again when it was read once more"};
        return result;
    } catch (const SourceError& error) {
        return Missed{reasonOf(task, error)};
    }
}

std::string FileSaver::reasonOf(const SaveTask& task, const SourceError& error)
{
    try {
        const auto now = task.source.find(task.name);
        if (now && now->kind != task.kind)
            return replacedReason(now->kind);
    } catch (const RuntimeError&) {
        // The first error says enough.
        return missedFileReason(error);
    }
    return missedFileReason(error);
}

SaveResult FileSaver::saveOnce(const SaveTask& task, const Progress& progress, bool& changed)
{
    changed = false;
    const auto source = onSource([&] { return task.source.open(task.name, OpenMode::Read); });
    FileInfo before = onSource([&] { return source->info(); });
    if (letRest(before))
        before = onSource([&] { return source->info(); });
    if (before.kind != FileKind::Regular)
        return Missed{replacedReason(before.kind)};
    return before.sizeBytes <= kWholeFileBytes
               ? saveSmall(task, *source, before, changed)
               : saveLarge(task, *source, before, progress, changed);
}

// A file that was changed within the present tick could be changed again and keep its times, so
// that neither this run nor a later one would see it. Reading begins when the tick is over.
bool FileSaver::letRest(const FileInfo& info) const
{
    if (m_options.clock == nullptr)
        return false;
    const std::int64_t age = m_options.clock->nowNs() - std::max(info.changedNs, info.modifiedNs);
    if (age < 0 || age >= kStampTickNs)
        return false;
    std::this_thread::sleep_for(std::chrono::nanoseconds(kStampTickNs - age));
    return true;
}

SaveResult FileSaver::saveLink(const SaveTask& task)
{
    const auto info = onSource([&] { return task.source.find(task.name); });
    if (!info)
        return Missed{kVanished};
    if (info->kind != FileKind::SymbolicLink)
        return Missed{replacedReason(info->kind)};
    CopyHeader header = headerFor(task, *info);
    header.kind = ItemKind::SymbolicLink;
    header.linkTarget = onSource([&] { return task.source.readLink(task.name); });
    header.attributes = onSource([&] { return task.source.extendedAttributes(task.name); });
    // The target stands in for the content, so that a touched link is told from a changed one.
    header.contentHash = hashOf(platform::asBytes(header.linkTarget));
    if (auto same = renewed(task, header))
        return *same;
    const auto bytes = m_writer.packEmpty(header);
    return finish(task, header, packedForm(), write(task.archive, bytes), bytes.size());
}

SaveResult FileSaver::saveSmall(const SaveTask& task, platform::File& source,
                                const FileInfo& before, bool& changed)
{
    // A file that grew meanwhile is told by its size afterwards.
    const auto room = static_cast<std::size_t>(before.sizeBytes);
    if (m_content.size() < room)
        m_content.resize(room);
    std::size_t got = 0;
    onSource([&] {
        while (got < room) {
            const std::size_t n = source.read(std::span(m_content).subspan(got, room - got));
            if (n == 0)
                break;
            got += n;
        }
    });
    CopyHeader header = headerFor(task, before);
    header.attributes = onSource([&] { return source.extendedAttributes(); });
    const FileInfo after = onSource([&] { return source.info(); });
    if (got != before.sizeBytes || !isSame(before, after)) {
        changed = true;
        return Stopped{};
    }
    if (!fitHeader(header.attributes))
        return Missed{kTooManyAttributes};
    const auto content = std::span<const std::byte>(m_content).first(got);
    header.sizeBytes = got;
    if (storesPlain(task, before)) {
        header.contentHash = hashOf(content);
        if (auto same = renewed(task, header))
            return *same;
        TemporaryFile target(task.archive, archive::temporaryName(m_serial++));
        target.file().write(content);
        dressPlain(target.file(), header);
        return finish(task, header, archive::Form::Stored, target.keep(), got);
    }
    const auto bytes = m_writer.packWhole(header, content);
    if (auto same = renewed(task, header))
        return *same;
    return finish(task, header, packedForm(), write(task.archive, bytes), bytes.size());
}

SaveResult FileSaver::saveLarge(const SaveTask& task, platform::File& source,
                                const FileInfo& before, const Progress& progress, bool& changed)
{
    CopyHeader header = headerFor(task, before);
    header.attributes = onSource([&] { return source.extendedAttributes(); });
    if (!fitHeader(header.attributes))
        return Missed{kTooManyAttributes};
    TemporaryFile target(task.archive, archive::temporaryName(m_serial++));
    const bool plain = storesPlain(task, before);
    bool complete = false;
    if (plain) {
        complete = m_writer.copyPlain(header, source, target.file(), progress);
    } else {
        std::unique_ptr<platform::File> earlierFile;
        std::optional<BodyOpener> opener;
        std::optional<EarlierBody> earlier;
        openEarlier(task, earlierFile, opener, earlier);
        complete = m_writer.packLarge(header, source, target.file(), earlier ? &*earlier : nullptr,
                                      progress);
    }
    if (!complete)
        return Stopped{};
    const FileInfo after = onSource([&] { return source.info(); });
    if (header.sizeBytes != before.sizeBytes || !isSame(before, after)) {
        changed = true;
        return Stopped{};
    }
    if (auto same = renewed(task, header))
        return *same;
    if (plain)
        dressPlain(target.file(), header);
    const std::uint64_t stored = target.file().info().sizeBytes;
    return finish(task, header, plain ? archive::Form::Stored : packedForm(), target.keep(),
                  stored);
}

// The frames of the newest copy, where it is one of ours with an index. A damaged one is no reason
// to stop: the new copy is then packed from scratch.
void FileSaver::openEarlier(const SaveTask& task, std::unique_ptr<platform::File>& file,
                            std::optional<BodyOpener>& opener, std::optional<EarlierBody>& earlier)
{
    const auto name = archive::parseCopyName(task.earlierName);
    if (!name || name->form == archive::Form::Stored)
        return;
    try {
        file = task.archive.open(task.earlierName, OpenMode::Read);
        const CopyHeader header = m_reader.readHeader(*file);
        const std::uint64_t offset = m_reader.bodyOffset();
        const SecretKey* const fileKey = m_reader.fileKey();
        auto frames = readIndex(*file, header, offset, fileKey);
        if (frames.empty())
            return;
        if (fileKey == nullptr) {
            earlier.emplace(EarlierBody{*file, offset, std::move(frames), nullptr});
        } else {
            opener.emplace(*file, offset, header.bodyBytes, *fileKey);
            earlier.emplace(EarlierBody{*file, 0, std::move(frames), &*opener});
        }
    } catch (const RuntimeError&) {
        earlier.reset();
    }
}

bool FileSaver::storesPlain(const SaveTask& task, const FileInfo& info) const
{
    // A copy that its owner could not read, or whose name cannot hold the checksum, is packed.
    const archive::CopyMeta meta{info.sizeBytes,         info.modifiedNs,   m_options.savedNs,
                                 archive::ContentHash{}, m_options.key.tag, task.serial};
    return !m_options.compress && !m_options.key.encrypt && (info.mode & kOwnerReads) != 0 &&
           archive::copyName(task.name, task.version, meta, archive::Form::Stored).has_value();
}

void FileSaver::dressPlain(platform::File& file, const CopyHeader& header)
{
    // What the archive's file system cannot keep is given up without a word here: owner and
    // attributes take rights that a plain copy need not have. Times come last, since every other
    // change may move them.
    base::PendingError ignored;
    ignored.attempt([&] { file.setOwner(header.ownerId, header.groupId); });
    for (const auto& attribute : header.attributes)
        ignored.attempt([&] { file.setExtendedAttribute(attribute); });
    file.setMode(header.mode);
    file.setTimes(header.accessedNs, header.modifiedNs);
}

archive::Form FileSaver::packedForm() const
{
    return m_options.key.encrypt ? archive::Form::Encrypted : archive::Form::Compressed;
}

CopyHeader FileSaver::headerFor(const SaveTask& task, const FileInfo& info) const
{
    CopyHeader header;
    header.sizeBytes = info.sizeBytes;
    header.sparse = info.allocatedBytes < info.sizeBytes;
    header.modifiedNs = info.modifiedNs;
    header.accessedNs = info.accessedNs;
    header.createdNs = info.createdNs;
    header.savedNs = m_options.savedNs;
    header.mode = info.mode;
    header.ownerId = info.ownerId;
    header.groupId = info.groupId;
    header.version = task.serial != 0 ? task.serial : static_cast<std::uint32_t>(task.version);
    header.path = task.path;
    if (info.linkCount > 1 && info.kind == FileKind::Regular)
        header.linkGroup = fmt::format("{:x}:{:x}", info.device, info.inode);
    return header;
}

SaveResult FileSaver::finish(const SaveTask& task, const CopyHeader& header, archive::Form form,
                             std::string temporary, std::uint64_t bytesStored)
{
    const archive::CopyMeta meta{header.sizeBytes,   header.modifiedNs, header.savedNs,
                                 header.contentHash, m_options.key.tag, task.serial};
    auto finalName = archive::copyName(task.name, task.version, meta, form);
    if (!finalName) {
        base::PendingError ignored; // the next run clears it away
        ignored.attempt([&] { task.archive.removeFile(temporary); });
        return Missed{"its name is too long for an archive file"};
    }
    return Saved{std::move(temporary), std::move(*finalName), header.sizeBytes, bytesStored};
}

std::optional<Renewed> FileSaver::renewed(const SaveTask& task, const CopyHeader& header)
{
    const auto earlier = archive::parseCopyName(task.earlierName);
    if (!earlier || (earlier->meta && earlier->meta->sizeBytes != header.sizeBytes))
        return std::nullopt;
    // A copy of another password, or one that is not encrypted as it should be, stays as it is.
    if (m_options.key.encrypt && earlier->form != archive::Form::Encrypted)
        return std::nullopt;
    if (earlier->meta && earlier->meta->passwordTag != m_options.key.tag)
        return std::nullopt;
    archive::CopyMeta meta{header.sizeBytes, header.modifiedNs, header.savedNs, {}};
    if (earlier->form == archive::Form::Stored) {
        if (header.kind != ItemKind::File || earlier->meta->contentHash != header.contentHash)
            return std::nullopt;
    } else {
        try {
            const auto file = task.archive.open(task.earlierName, OpenMode::Read);
            const CopyHeader old = m_reader.readHeader(*file);
            if (old.kind != header.kind || old.contentHash != header.contentHash ||
                old.sizeBytes != header.sizeBytes)
                return std::nullopt;
        } catch (const RuntimeError&) {
            return std::nullopt; // unreadable: a new version is the safe way
        }
    }
    if (!earlier->meta)
        return std::nullopt; // its header holds the old time and cannot be renewed by a name
    meta.savedNs = earlier->meta->savedNs;
    meta.contentHash = earlier->meta->contentHash;
    meta.passwordTag = earlier->meta->passwordTag;
    meta.serial = earlier->meta->serial;
    auto newName = archive::copyName(earlier->sourceName, earlier->version, meta, earlier->form);
    if (!newName)
        return std::nullopt;
    return Renewed{std::string(task.earlierName), std::move(*newName)};
}

std::string FileSaver::write(platform::Folder& archive, std::span<const std::byte> bytes)
{
    TemporaryFile target(archive, archive::temporaryName(m_serial++));
    target.file().write(bytes);
    return target.keep();
}

Saved FileSaver::saveFolderRecord(platform::Folder& archive, std::string_view path,
                                  const archive::FolderMeta& meta,
                                  const std::vector<platform::ExtendedAttribute>& attributes)
{
    CopyHeader header;
    header.kind = ItemKind::Folder;
    header.path = path;
    header.mode = meta.mode;
    header.ownerId = meta.ownerId;
    header.groupId = meta.groupId;
    header.modifiedNs = meta.modifiedNs;
    header.savedNs = m_options.savedNs;
    header.attributes = attributes;
    const auto bytes = m_writer.packEmpty(header);
    archive::FolderMeta named = meta;
    named.passwordTag = m_options.key.tag;
    named.form = packedForm();
    return {write(archive, bytes), archive::folderRecordName(named), 0, bytes.size()};
}

Saved FileSaver::saveContent(platform::Folder& archive, CopyHeader header,
                             std::span<const std::byte> content, std::string_view name)
{
    header.savedNs = m_options.savedNs;
    const auto bytes = m_writer.packWhole(header, content);
    const archive::CopyMeta meta{
        content.size(), header.modifiedNs, header.savedNs, {}, m_options.key.tag};
    return {write(archive, bytes), archive::copyName(name, 0, meta, packedForm()).value(),
            content.size(), bytes.size()};
}

} // namespace vardelin::engine
