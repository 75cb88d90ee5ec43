#include "engine/engine_world.h"
#include "platform/linux/drive_map.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_file_system.h"
#include "platform/memory/scripted_file_system.h"
#include "runs/engine/copy_reader.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Sources that change while they are read, on the real disk: something happens to a file just
// before a chosen call of the engine.
namespace vardelin::engine {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ChangingSource : public testing::Test {
protected:
    ChangingSource()
    {
        for (const char* path : {"/app/Profiles", "/app/Data", "/data", "/store"})
            std::filesystem::create_directories(folder.path() + path);
        const std::string profile = profile::scrambleText(profileText.plain());
        std::ofstream(folder / "app/Profiles/Work.vdp", std::ios::binary) << profile;
        std::ofstream(folder / "data/other") << "other";
    }

    std::string path(const std::string& name) const { return folder / ("data/" + name); }
    void put(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }
    // Before each call of this name on this file, `change` runs with the number of the call.
    void before(const std::string& call, const std::string& name,
                const std::function<void(int)>& change)
    {
        auto count = std::make_shared<std::atomic<int>>(0);
        script.onCallsNamed(call, [=](const platform::CallScript::Call& made) {
            if (made.subject == "C:\\data\\" + name)
                change(++*count);
        });
    }
    BackupReport backUp()
    {
        platform::MemoryMachine ports;
        const platform::Machine whole = ports.machine();
        platform::Machine machine{files,       whole.drives,      whole.registry,
                                  whole.shell, whole.facts,       whole.processes,
                                  clock,       whole.messageLoop, whole.messageBoxes};
        Engine engine(machine, kApp, events);
        TruthValue success = kFalse;
        engine.EngineBackup(kProfiles, "Work.vdp", success);
        EXPECT_EQ(success, kTrue);
        script.reset();
        return engine.backupReport();
    }
    // What the archive holds of a file; empty where there is no copy.
    std::string saved(const std::string& name)
    {
        std::string content;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder / "store")) {
            if (entry.path().filename().string().starts_with(name + "_FULL"))
                content = packedContent(entry.path());
        }
        return content;
    }
    static std::string packedContent(const std::filesystem::path& archiveFile)
    {
        platform::LinuxFileSystem disk(std::make_shared<const platform::DriveMap>(
            std::vector<platform::DriveRoot>{{'A', archiveFile.parent_path()}}));
        const auto file = disk.openFolder("A:\\")->open(archiveFile.filename().string(),
                                                        platform::OpenMode::Read);
        CopyReader reader;
        std::string content;
        reader.read(*file, [&](std::span<const std::byte> piece) {
            content.append(reinterpret_cast<const char*>(piece.data()), piece.size());
        });
        return content;
    }
    // Nothing but this file was missed, for this reason, and the run went on.
    void missesOnly(const std::string& name, const std::string& reason)
    {
        const BackupReport report = backUp();
        EXPECT_EQ(report.outcome, Outcome::CompleteWithGaps);
        ASSERT_EQ(report.missed.size(), 1U);
        EXPECT_EQ(report.missed[0].path, "C:\\data\\" + name);
        EXPECT_THAT(report.missed[0].reason, HasSubstr(reason));
        EXPECT_EQ(saved(name), "");
        EXPECT_EQ(saved("other"), "other");
    }

    test::TempFolder folder;
    ProfileText profileText;
    platform::LinuxFileSystem disk{std::make_shared<const platform::DriveMap>(
        std::vector<platform::DriveRoot>{{'C', folder.path()}, {'D', folder.path()}})};
    platform::LinuxClock clock; // the one that the disk stamps changes by
    platform::CallScript script;
    platform::ScriptedFileSystem files{disk, script};
    RecordedEvents events;
};

const std::string kLarge(5 * 1024 * 1024, 'L');

TEST_F(ChangingSource, IsReadAgainOnce)
{
    put("small", "first");
    put("large", kLarge);
    for (const char* name : {"small", "large"})
        before("file.extendedAttributes", name, [=, this](int call) {
            if (call == 1)
                put(name, std::string("new content of ") + name);
        });
    EXPECT_THAT(backUp().missed, IsEmpty());
    EXPECT_EQ(saved("small"), "new content of small");
    EXPECT_EQ(saved("large"), "new content of large");
}

TEST_F(ChangingSource, IsMissedWhenItChangesAgain)
{
    struct Row {
        const char* what;
        std::function<void(const std::string& path)> change;
    };
    for (const Row& row : {
             Row{"written", [](const std::string& p) { std::ofstream(p) << "x" << ::rand(); }},
             Row{"grown", [](const std::string& p) { std::ofstream(p, std::ios::app) << "more"; }},
             Row{"cut",
                 [](const std::string& p) {
                     std::filesystem::resize_file(p, std::filesystem::file_size(p) - 1);
                 }},
             // Same size and time: the disk's own time of change tells.
             Row{"written behind its time",
                 [](const std::string& p) {
                     const auto time = std::filesystem::last_write_time(p);
                     std::fstream(p, std::ios::in | std::ios::out)
                         << static_cast<char>('a' + ::rand() % 26);
                     std::filesystem::last_write_time(p, time);
                 }},
         }) {
        for (const std::string& content : {std::string("some content"), kLarge}) {
            SCOPED_TRACE(row.what);
            put("f", content);
            before("file.readAt", "f", [&](int) { row.change(path("f")); });
            before("file.read", "f", [&](int) { row.change(path("f")); });
            missesOnly("f", "it changed while it was read, and again");
        }
    }
}

TEST_F(ChangingSource, IsMissedByNameWhateverItTurnsInto)
{
    struct Row {
        const char* reason;
        std::function<void(const std::string& path)> change;
    };
    for (const Row& row : {
             Row{"it vanished during the run", [](const std::string&) {}},
             Row{"it turned into a folder during the run",
                 [](const std::string& p) { std::filesystem::create_directory(p); }},
             Row{"it turned into a symbolic link during the run",
                 [](const std::string& p) { std::filesystem::create_symlink("/etc/passwd", p); }},
             Row{"it turned into a pipe, socket or device during the run",
                 [](const std::string& p) { ASSERT_EQ(::mkfifo(p.c_str(), 0600), 0); }},
         }) {
        SCOPED_TRACE(row.reason);
        std::filesystem::remove_all(path("f"));
        put("f", "content");
        before("folder.open", "f", [&](int) {
            std::filesystem::remove_all(path("f"));
            row.change(path("f"));
        });
        missesOnly("f", row.reason);
    }
}

TEST_F(ChangingSource, IsMissedWhenItsRightsGo)
{
    if (::geteuid() == 0)
        script.failCallsNamed("folder.open", base::error_number::kPermissionDenied, "data\\f");
    put("f", "content");
    if (::geteuid() != 0)
        before("folder.open", "f", [&](int) { ::chmod(path("f").c_str(), 0); });
    missesOnly("f", "it may not be read (");
}

TEST_F(ChangingSource, IsMissedWhenTheDiskFails)
{
    put("f", "content");
    script.failCallsNamed("file.read", base::error_number::kDeviceIo, "data\\f");
    missesOnly("f", "it cannot be read (");
}

TEST_F(ChangingSource, ThatGrowsWithoutEndIsLeft)
{
    put("f", kLarge);
    // More comes with each read than the read takes away.
    int reads = 0;
    before("file.readAt", "f", [&](int call) {
        reads = call;
        if (call < 100)
            std::ofstream(path("f"), std::ios::app | std::ios::binary) << kLarge << kLarge;
    });
    missesOnly("f", "it changed while it was read, and again");
    EXPECT_LT(reads, 20) << "reading stops behind the end that the file had";
    EXPECT_THAT(backUp().missed, IsEmpty()) << "when it has come to rest it is saved";
}

TEST_F(ChangingSource, FolderThatBecomesALinkLeadsNowhere)
{
    std::filesystem::create_directories(folder / "data/d");
    std::filesystem::create_directories(folder / "secret");
    std::ofstream(folder / "data/d/in") << "in";
    std::ofstream(folder / "secret/in") << "secret";
    bool done = false;
    script.onCallsNamed("fs.openFolder", [&](const platform::CallScript::Call& made) {
        if (done || made.subject.find("C:\\data\\d") != 0)
            return;
        done = true;
        std::filesystem::rename(folder / "data/d", folder / "elsewhere");
        std::filesystem::create_directory_symlink(folder / "secret", folder / "data/d");
    });
    const BackupReport report = backUp();
    ASSERT_EQ(report.missed.size(), 1U);
    EXPECT_EQ(report.missed[0].path, "C:\\data\\d\\");
    EXPECT_THAT(report.missed[0].reason, HasSubstr("replaced by another one"));
    EXPECT_EQ(saved("in"), "");
}

TEST_F(ChangingSource, FolderThatVanishesIsNamed)
{
    std::filesystem::create_directories(folder / "data/d");
    std::ofstream(folder / "data/d/in") << "in";
    script.onCallsNamed("fs.openFolder", [&](const platform::CallScript::Call& made) {
        if (made.subject.find("C:\\data\\d") == 0)
            std::filesystem::remove_all(folder / "data/d");
    });
    const BackupReport report = backUp();
    ASSERT_EQ(report.missed.size(), 1U);
    EXPECT_EQ(report.missed[0].reason, "the folder vanished during the run");
    EXPECT_EQ(saved("other"), "other");
}

TEST_F(ChangingSource, FolderThatBecomesALinkBehindTheScanLeadsNowhere)
{
    std::filesystem::create_directories(folder / "data/d");
    std::filesystem::create_directories(folder / "secret");
    std::ofstream(folder / "data/d/in") << "in";
    std::ofstream(folder / "secret/in") << "secret";
    std::atomic<int> opened = 0;
    script.onCallsNamed("fs.openFolder", [&](const platform::CallScript::Call& made) {
        if (made.subject.find("C:\\data\\d") != 0 || ++opened != 2)
            return;
        std::filesystem::rename(folder / "data/d", folder / "elsewhere");
        std::filesystem::create_directory_symlink(folder / "secret", folder / "data/d");
    });
    const BackupReport report = backUp();
    ASSERT_GE(opened, 2);
    ASSERT_EQ(report.missed.size(), 1U);
    EXPECT_EQ(report.missed[0].path, "C:\\data\\d\\in");
    EXPECT_THAT(report.missed[0].reason, HasSubstr("replaced by another one"));
    EXPECT_EQ(saved("in"), "");
}

} // namespace
} // namespace vardelin::engine
