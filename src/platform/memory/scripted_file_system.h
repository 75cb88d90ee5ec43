#pragma once

#include "platform/file_system.h"
#include "platform/memory/call_script.h"

namespace vardelin::platform {

// Any file system with a script in front of it, so that a test on a real disk can fail, hold up or
// kill at a chosen call. Path texts (toNative, fromNative) and isCaseSensitive are no calls. Both
// arguments must outlive this and all that it opens.
class ScriptedFileSystem final : public FileSystem {
public:
    ScriptedFileSystem(FileSystem& inner, CallScript& script) : m_inner(inner), m_script(script) {}

    std::unique_ptr<Folder> openFolder(std::string_view path) override;
    std::unique_ptr<FolderLock> lockFolder(std::string_view path) override;
    Space space(std::string_view path) override;
    bool isCaseSensitive() const override { return m_inner.isCaseSensitive(); }
    bool isPseudo(std::string_view path) override;
    std::string toNative(std::string_view path) const override { return m_inner.toNative(path); }
    std::string fromNative(std::string_view native) const override
    {
        return m_inner.fromNative(native);
    }
    std::string canonical(std::string_view path) override;

private:
    FileSystem& m_inner;
    CallScript& m_script;
};

} // namespace vardelin::platform
