#pragma once

#include "platform/linux/linux_file_system.h"
#include "platform/memory/memory_file_system.h"
#include "platform/memory/power_cut_file_system.h"
#include "platform/memory/scripted_file_system.h"

#include "base/runtime_error.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace vardelin::platform::test {

// A fresh folder on the real disk, removed at the end.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vardelin-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        m_path = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// One implementation with its drive T:, empty, and nothing else to be relied on.
class World {
public:
    World() = default;
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    virtual ~World() = default;
    virtual FileSystem& fileSystem() = 0;
};

class LinuxWorld final : public World {
public:
    FileSystem& fileSystem() override { return m_files; }
    const std::string& nativeRoot() const { return m_folder.path(); }

private:
    TemporaryFolder m_folder;
    LinuxFileSystem m_files{std::make_shared<const DriveMap>(
        std::vector<DriveRoot>{{'C', "/"}, {'T', m_folder.path()}})};
};

class MemoryWorld final : public World {
public:
    MemoryWorld() { m_files.addDrive('T'); }
    FileSystem& fileSystem() override { return m_files; }

private:
    MemoryFileSystem m_files;
};

class ScriptedWorld final : public World {
public:
    ScriptedWorld() { m_memory.addDrive('T'); }
    FileSystem& fileSystem() override { return m_files; }

private:
    MemoryFileSystem m_memory;
    CallScript m_script;
    ScriptedFileSystem m_files{m_memory, m_script};
};

class PowerCutWorld final : public World {
public:
    PowerCutWorld() { m_files.settle(); }
    FileSystem& fileSystem() override { return m_files; }

private:
    static MemoryTree& withDrives(MemoryTree& tree)
    {
        tree.addDrive('C');
        tree.addDrive('T');
        return tree;
    }

    MemoryTree m_tree{true};
    PowerCutFileSystem m_files{withDrives(m_tree)};
};

// The number that the step raises; 0 where it raises nothing.
template <typename Step>
int errorOf(Step&& step)
{
    try {
        step();
        return 0;
    } catch (const base::RuntimeError& error) {
        return error.number();
    }
}

} // namespace vardelin::platform::test
