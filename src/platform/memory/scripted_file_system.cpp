#include "platform/memory/scripted_file_system.h"

#include <utility>

namespace vardelin::platform {
namespace {

class ScriptedFile final : public File {
public:
    ScriptedFile(std::unique_ptr<File> inner, CallScript& script, std::string path)
        : m_inner(std::move(inner)), m_script(script), m_path(std::move(path))
    {
    }

    std::size_t read(std::span<std::byte> buffer) override
    {
        return pass("file.read").read(buffer);
    }
    std::size_t readAt(std::uint64_t offset, std::span<std::byte> buffer) override
    {
        return pass("file.readAt").readAt(offset, buffer);
    }
    void write(std::span<const std::byte> bytes) override { pass("file.write").write(bytes); }
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override
    {
        pass("file.writeAt").writeAt(offset, bytes);
    }
    void resize(std::uint64_t sizeBytes) override { pass("file.resize").resize(sizeBytes); }
    void flush() override { pass("file.flush").flush(); }
    FileInfo info() override { return pass("file.info").info(); }
    std::optional<Extent> nextData(std::uint64_t offset) override
    {
        return pass("file.nextData").nextData(offset);
    }
    void appendRange(File& source, std::uint64_t offset, std::uint64_t length) override
    {
        auto* const scripted = dynamic_cast<ScriptedFile*>(&source);
        File& inner = scripted == nullptr ? source : *scripted->m_inner;
        pass("file.appendRange").appendRange(inner, offset, length);
    }
    void setTimes(std::int64_t accessedNs, std::int64_t modifiedNs) override
    {
        pass("file.setTimes").setTimes(accessedNs, modifiedNs);
    }
    void setMode(std::uint32_t mode) override { pass("file.setMode").setMode(mode); }
    void setOwner(std::uint32_t ownerId, std::uint32_t groupId) override
    {
        pass("file.setOwner").setOwner(ownerId, groupId);
    }
    std::vector<ExtendedAttribute> extendedAttributes() override
    {
        return pass("file.extendedAttributes").extendedAttributes();
    }
    void setExtendedAttribute(const ExtendedAttribute& attribute) override
    {
        pass("file.setExtendedAttribute").setExtendedAttribute(attribute);
    }
    void close() override { pass("file.close").close(); }

private:
    File& pass(std::string_view call)
    {
        m_script.enter(call, m_path);
        return *m_inner;
    }

    std::unique_ptr<File> m_inner;
    CallScript& m_script;
    std::string m_path;
};

class ScriptedFolder final : public Folder {
public:
    ScriptedFolder(std::unique_ptr<Folder> inner, CallScript& script)
        : m_inner(std::move(inner)), m_script(script)
    {
    }

    const std::string& path() const override { return m_inner->path(); }
    std::vector<FolderEntry> list() override { return pass("folder.list").list(); }
    std::vector<FolderEntryInfo> listWithInfo() override
    {
        return pass("folder.listWithInfo").listWithInfo();
    }
    std::optional<FileInfo> find(std::string_view name) override
    {
        return pass("folder.find", name).find(name);
    }
    FileInfo info() override { return pass("folder.info").info(); }
    std::vector<ExtendedAttribute> extendedAttributes() override
    {
        return pass("folder.extendedAttributes").extendedAttributes();
    }
    std::unique_ptr<File> open(std::string_view name, OpenMode mode, Links links) override
    {
        return std::make_unique<ScriptedFile>(pass("folder.open", name).open(name, mode, links),
                                              m_script, joinPath(path(), name));
    }
    std::unique_ptr<Folder> openFolder(std::string_view name, Links links) override
    {
        return std::make_unique<ScriptedFolder>(
            pass("folder.openFolder", name).openFolder(name, links), m_script);
    }
    void createFolder(std::string_view name) override
    {
        pass("folder.createFolder", name).createFolder(name);
    }
    void removeFile(std::string_view name) override
    {
        pass("folder.removeFile", name).removeFile(name);
    }
    void removeFolder(std::string_view name) override
    {
        pass("folder.removeFolder", name).removeFolder(name);
    }
    void rename(std::string_view from, std::string_view to) override
    {
        pass("folder.rename", from).rename(from, to);
    }
    void moveTo(std::string_view from, Folder& folder, std::string_view to) override
    {
        pass("folder.moveTo", from).moveTo(from, innerOf(folder), to);
    }
    std::string readLink(std::string_view name) override
    {
        return pass("folder.readLink", name).readLink(name);
    }
    void createLink(std::string_view name, std::string_view target) override
    {
        pass("folder.createLink", name).createLink(name, target);
    }
    void createHardLink(std::string_view name, Folder& folder, std::string_view existing) override
    {
        pass("folder.createHardLink", name).createHardLink(name, innerOf(folder), existing);
    }
    void setTimes(std::string_view name, std::int64_t accessedNs, std::int64_t modifiedNs) override
    {
        pass("folder.setTimes", name).setTimes(name, accessedNs, modifiedNs);
    }
    void setMode(std::string_view name, std::uint32_t mode) override
    {
        pass("folder.setMode", name).setMode(name, mode);
    }
    void setOwner(std::string_view name, std::uint32_t ownerId, std::uint32_t groupId) override
    {
        pass("folder.setOwner", name).setOwner(name, ownerId, groupId);
    }
    std::vector<ExtendedAttribute> extendedAttributes(std::string_view name) override
    {
        return pass("folder.extendedAttributes", name).extendedAttributes(name);
    }
    void setExtendedAttribute(std::string_view name, const ExtendedAttribute& attribute) override
    {
        pass("folder.setExtendedAttribute", name).setExtendedAttribute(name, attribute);
    }
    void setOwnMode(std::uint32_t mode) override { pass("folder.setOwnMode").setOwnMode(mode); }
    void setOwnTimes(std::int64_t accessedNs, std::int64_t modifiedNs) override
    {
        pass("folder.setOwnTimes").setOwnTimes(accessedNs, modifiedNs);
    }
    void flush() override { pass("folder.flush").flush(); }
    void flushFileSystem() override { pass("folder.flushFileSystem").flushFileSystem(); }

private:
    Folder& pass(std::string_view call, std::string_view name = {})
    {
        m_script.enter(call, name.empty() ? path() : joinPath(path(), name));
        return *m_inner;
    }

    static Folder& innerOf(Folder& folder)
    {
        auto* const scripted = dynamic_cast<ScriptedFolder*>(&folder);
        return scripted == nullptr ? folder : *scripted->m_inner;
    }

    std::unique_ptr<Folder> m_inner;
    CallScript& m_script;
};

} // namespace

std::unique_ptr<Folder> ScriptedFileSystem::openFolder(std::string_view path)
{
    m_script.enter("fs.openFolder", path);
    return std::make_unique<ScriptedFolder>(m_inner.openFolder(path), m_script);
}

std::unique_ptr<FolderLock> ScriptedFileSystem::lockFolder(std::string_view path)
{
    m_script.enter("fs.lockFolder", path);
    return m_inner.lockFolder(path);
}

Space ScriptedFileSystem::space(std::string_view path)
{
    m_script.enter("fs.space", path);
    return m_inner.space(path);
}

bool ScriptedFileSystem::isPseudo(std::string_view path)
{
    m_script.enter("fs.isPseudo", path);
    return m_inner.isPseudo(path);
}

std::string ScriptedFileSystem::canonical(std::string_view path)
{
    m_script.enter("fs.canonical", path);
    return m_inner.canonical(path);
}

} // namespace vardelin::platform
