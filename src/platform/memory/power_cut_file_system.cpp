#include "platform/memory/power_cut_file_system.h"

#include "base/runtime_error.h"
#include "platform/memory/power_cut_journal.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace vardelin::platform {

// The book and the lock that keeps each operation together with its line in it.
class PowerCutFileSystem::Journal {
public:
    std::mutex mutex; // guards the book
    PowerCutJournal book;
};

class PowerCutFileSystem::OpenFile final : public File {
public:
    OpenFile(std::unique_ptr<File> inner, Journal& journal, std::uint64_t inode, bool appends)
        : m_inner(std::move(inner)), m_journal(journal), m_inode(inode), m_appends(appends)
    {
    }

    std::size_t read(std::span<std::byte> buffer) override
    {
        const std::size_t got = m_inner->read(buffer);
        m_cursor += got;
        return got;
    }
    std::size_t readAt(std::uint64_t offset, std::span<std::byte> buffer) override
    {
        return m_inner->readAt(offset, buffer);
    }
    void write(std::span<const std::byte> bytes) override
    {
        const std::lock_guard held(m_journal.mutex);
        const std::uint64_t offset = m_appends ? m_inner->info().sizeBytes : m_cursor;
        base::PendingError failed;
        failed.attempt([&] { m_inner->write(bytes); });
        note(offset, bytes, failed);
        m_cursor = offset + bytes.size();
    }
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override
    {
        const std::lock_guard held(m_journal.mutex);
        base::PendingError failed;
        failed.attempt([&] { m_inner->writeAt(offset, bytes); });
        note(offset, bytes, failed);
    }
    void resize(std::uint64_t sizeBytes) override
    {
        const std::lock_guard held(m_journal.mutex);
        m_inner->resize(sizeBytes);
        m_journal.book.changed(m_inode, {NodeChange::Kind::Resize, sizeBytes, {}, {}});
    }
    void flush() override
    {
        const std::lock_guard held(m_journal.mutex);
        m_inner->flush();
        m_journal.book.flushFile(m_inode);
    }
    FileInfo info() override { return m_inner->info(); }
    std::optional<Extent> nextData(std::uint64_t offset) override
    {
        return m_inner->nextData(offset);
    }
    void appendRange(File& source, std::uint64_t offset, std::uint64_t length) override
    {
        std::vector<std::byte> bytes(static_cast<std::size_t>(length));
        std::size_t have = 0;
        while (have < bytes.size()) {
            const std::size_t got = source.readAt(offset + have, std::span(bytes).subspan(have));
            if (got == 0)
                throw base::RuntimeError(base::error_number::kDeviceIo, {},
                                         "the source ends before the stretch to copy does");
            have += got;
        }
        write(bytes);
    }
    void setTimes(std::int64_t accessedNs, std::int64_t modifiedNs) override
    {
        change([=](File& file) { file.setTimes(accessedNs, modifiedNs); },
               [=](MemoryNode& node) {
                   node.info.accessedNs = accessedNs;
                   node.info.modifiedNs = modifiedNs;
               });
    }
    void setMode(std::uint32_t mode) override
    {
        change([=](File& file) { file.setMode(mode); },
               [=](MemoryNode& node) { node.info.mode = mode & 07777U; });
    }
    void setOwner(std::uint32_t ownerId, std::uint32_t groupId) override
    {
        change([=](File& file) { file.setOwner(ownerId, groupId); },
               [=](MemoryNode& node) {
                   node.info.ownerId = ownerId;
                   node.info.groupId = groupId;
               });
    }
    std::vector<ExtendedAttribute> extendedAttributes() override
    {
        return m_inner->extendedAttributes();
    }
    void setExtendedAttribute(const ExtendedAttribute& attribute) override
    {
        change([&](File& file) { file.setExtendedAttribute(attribute); },
               [=](MemoryNode& node) { node.attributes[attribute.name] = attribute.value; });
    }
    void close() override { m_inner->close(); }

private:
    // Writes down what a write brought to the file, also where the disk was full on the way.
    void note(std::uint64_t offset, std::span<const std::byte> bytes,
              const base::PendingError& failed)
    {
        std::size_t count = bytes.size();
        if (failed) {
            const std::uint64_t size = m_inner->info().sizeBytes;
            count = std::min<std::size_t>(count, size - std::min(size, offset));
        }
        if (count > 0)
            m_journal.book.changed(m_inode,
                                   {NodeChange::Kind::Write,
                                    offset,
                                    std::string(reinterpret_cast<const char*>(bytes.data()), count),
                                    {}});
        if (failed)
            throw base::RuntimeError(failed.number, failed.subject, "No space left on device");
    }

    template <typename Step>
    void change(const Step& step, std::function<void(MemoryNode&)> onDisk)
    {
        const std::lock_guard held(m_journal.mutex);
        step(*m_inner);
        m_journal.book.changed(m_inode, {NodeChange::Kind::Details, 0, {}, std::move(onDisk)});
    }

    std::unique_ptr<File> m_inner;
    Journal& m_journal;
    std::uint64_t m_inode;
    bool m_appends;
    std::uint64_t m_cursor = 0;
};

class PowerCutFileSystem::OpenedFolder final : public Folder {
public:
    OpenedFolder(std::unique_ptr<Folder> inner, Journal& journal)
        : m_inner(std::move(inner)), m_journal(journal), m_self(m_inner->info())
    {
    }

    const std::string& path() const override { return m_inner->path(); }
    std::vector<FolderEntry> list() override { return m_inner->list(); }
    std::vector<FolderEntryInfo> listWithInfo() override { return m_inner->listWithInfo(); }
    std::optional<FileInfo> find(std::string_view name) override { return m_inner->find(name); }
    FileInfo info() override { return m_inner->info(); }
    std::vector<ExtendedAttribute> extendedAttributes() override
    {
        return m_inner->extendedAttributes();
    }
    std::unique_ptr<File> open(std::string_view name, OpenMode mode, Links links) override
    {
        const std::lock_guard held(m_journal.mutex);
        const auto before = mode == OpenMode::Read ? std::nullopt : m_inner->find(name);
        auto file = m_inner->open(name, mode, links);
        const FileInfo now = file->info();
        if (mode != OpenMode::Read && !before)
            m_journal.book.made(m_self, name, now, {});
        else if (mode == OpenMode::CreateOrTruncate)
            m_journal.book.changed(now.inode, {NodeChange::Kind::Resize, 0, {}, {}});
        return std::make_unique<OpenFile>(std::move(file), m_journal, now.inode,
                                          mode == OpenMode::Append);
    }
    std::unique_ptr<Folder> openFolder(std::string_view name, Links links) override
    {
        return std::make_unique<OpenedFolder>(m_inner->openFolder(name, links), m_journal);
    }
    void createFolder(std::string_view name) override
    {
        const std::lock_guard held(m_journal.mutex);
        m_inner->createFolder(name);
        m_journal.book.made(m_self, name, *m_inner->find(name), {});
    }
    void removeFile(std::string_view name) override
    {
        const std::lock_guard held(m_journal.mutex);
        m_inner->removeFile(name);
        m_journal.book.unlinked(m_self, name);
    }
    void removeFolder(std::string_view name) override
    {
        const std::lock_guard held(m_journal.mutex);
        m_inner->removeFolder(name);
        m_journal.book.unlinked(m_self, name);
    }
    void rename(std::string_view from, std::string_view to) override { moveTo(from, *this, to); }
    void moveTo(std::string_view from, Folder& folder, std::string_view to) override
    {
        const std::lock_guard held(m_journal.mutex);
        auto* const target = dynamic_cast<OpenedFolder*>(&folder);
        if (target == nullptr)
            throw base::RuntimeError(base::error_number::kDeviceIo, path(),
                                     "Invalid cross-device link");
        const auto moving = m_inner->find(from);
        const auto replaced = target->m_inner->find(to);
        m_inner->moveTo(from, *target->m_inner, to);
        // Two names of one file: the disk does nothing then.
        if (!replaced || replaced->inode != moving->inode)
            m_journal.book.moved(m_self, from, target->m_self, to);
    }
    std::string readLink(std::string_view name) override { return m_inner->readLink(name); }
    void createLink(std::string_view name, std::string_view target) override
    {
        const std::lock_guard held(m_journal.mutex);
        m_inner->createLink(name, target);
        m_journal.book.made(m_self, name, *m_inner->find(name), target);
    }
    void createHardLink(std::string_view name, Folder& folder, std::string_view existing) override
    {
        const std::lock_guard held(m_journal.mutex);
        auto* const source = dynamic_cast<OpenedFolder*>(&folder);
        m_inner->createHardLink(name, source == nullptr ? folder : *source->m_inner, existing);
        m_journal.book.linked(m_self, name, m_inner->find(name)->inode);
    }
    void setTimes(std::string_view name, std::int64_t accessedNs, std::int64_t modifiedNs) override
    {
        change([&] { m_inner->setTimes(name, accessedNs, modifiedNs); }, inodeOf(name),
               [=](MemoryNode& node) {
                   node.info.accessedNs = accessedNs;
                   node.info.modifiedNs = modifiedNs;
               });
    }
    void setMode(std::string_view name, std::uint32_t mode) override
    {
        change([&] { m_inner->setMode(name, mode); }, inodeOf(name),
               [=](MemoryNode& node) { node.info.mode = mode & 07777U; });
    }
    void setOwner(std::string_view name, std::uint32_t ownerId, std::uint32_t groupId) override
    {
        change([&] { m_inner->setOwner(name, ownerId, groupId); }, inodeOf(name),
               [=](MemoryNode& node) {
                   node.info.ownerId = ownerId;
                   node.info.groupId = groupId;
               });
    }
    std::vector<ExtendedAttribute> extendedAttributes(std::string_view name) override
    {
        return m_inner->extendedAttributes(name);
    }
    void setExtendedAttribute(std::string_view name, const ExtendedAttribute& attribute) override
    {
        change([&] { m_inner->setExtendedAttribute(name, attribute); }, inodeOf(name),
               [=](MemoryNode& node) { node.attributes[attribute.name] = attribute.value; });
    }
    void setOwnMode(std::uint32_t mode) override
    {
        change([&] { m_inner->setOwnMode(mode); }, m_self.inode,
               [=](MemoryNode& node) { node.info.mode = mode & 07777U; });
    }
    void setOwnTimes(std::int64_t accessedNs, std::int64_t modifiedNs) override
    {
        change([&] { m_inner->setOwnTimes(accessedNs, modifiedNs); }, m_self.inode,
               [=](MemoryNode& node) {
                   node.info.accessedNs = accessedNs;
                   node.info.modifiedNs = modifiedNs;
               });
    }
    void flush() override
    {
        const std::lock_guard held(m_journal.mutex);
        m_inner->flush();
        m_journal.book.flushFolder(m_self.inode);
    }
    void flushFileSystem() override
    {
        const std::lock_guard held(m_journal.mutex);
        m_inner->flushFileSystem();
        m_journal.book.flushDisk(m_self.device);
    }

private:
    std::uint64_t inodeOf(std::string_view name) const
    {
        const auto info = m_inner->find(name);
        return info ? info->inode : 0; // the call itself raises for a missing one
    }

    template <typename Step>
    void change(const Step& step, std::uint64_t inode, std::function<void(MemoryNode&)> onDisk)
    {
        const std::lock_guard held(m_journal.mutex);
        step();
        m_journal.book.changed(inode, {NodeChange::Kind::Details, 0, {}, std::move(onDisk)});
    }

    std::unique_ptr<Folder> m_inner;
    Journal& m_journal;
    FileInfo m_self;
};

PowerCutFileSystem::PowerCutFileSystem(MemoryTree& tree)
    : m_tree(tree), m_journal(std::make_unique<Journal>())
{
    settle();
}

PowerCutFileSystem::~PowerCutFileSystem() = default;

void PowerCutFileSystem::settle()
{
    const std::lock_guard held(m_journal->mutex);
    m_journal->book.settle(m_tree);
}

void PowerCutFileSystem::cut(std::uint64_t seed)
{
    const std::lock_guard held(m_journal->mutex);
    m_journal->book.cut(seed, m_tree);
}

std::unique_ptr<Folder> PowerCutFileSystem::openFolder(std::string_view path)
{
    return std::make_unique<OpenedFolder>(m_tree.openFolder(path), *m_journal);
}

std::unique_ptr<FolderLock> PowerCutFileSystem::lockFolder(std::string_view path)
{
    return m_tree.lockFolder(path);
}

Space PowerCutFileSystem::space(std::string_view path)
{
    return m_tree.space(path);
}

bool PowerCutFileSystem::isCaseSensitive() const
{
    return m_tree.isCaseSensitive();
}

bool PowerCutFileSystem::isPseudo(std::string_view path)
{
    return m_tree.isPseudo(path);
}

std::string PowerCutFileSystem::toNative(std::string_view path) const
{
    return m_tree.toNative(path);
}

std::string PowerCutFileSystem::fromNative(std::string_view native) const
{
    return m_tree.fromNative(native);
}

std::string PowerCutFileSystem::canonical(std::string_view path)
{
    return m_tree.canonical(path);
}

} // namespace vardelin::platform
