#include "faults/fault_world.h"
#include "support/temp_folder.h"

#include "base/runtime_error.h"
#include "platform/linux/linux_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <fmt/format.h>

// A small file system of the machine's own, filled to the brim again and again.
namespace vardelin::faults {
namespace {

using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr std::uint64_t kFills = 1; // of each kind, where nothing else is asked for
constexpr std::uint64_t kDiskMiB = 160;
constexpr int kFiles = 60;

using Tree = std::map<std::string, std::string>;

// A mounted disk of its own below a folder; unmounted at the end.
class SmallDisk {
public:
    SmallDisk(const std::string& kind, const test::TempFolder& place) : m_path(place / "small disk")
    {
        fs::create_directory(m_path);
        if (kind == "tmpfs") {
            const std::string size = fmt::format("size={}m", kDiskMiB);
            m_mounted = ::mount("tmpfs", m_path.c_str(), "tmpfs", 0, size.c_str()) == 0;
            return;
        }
        const std::string image = place / "image";
        std::ofstream(image).close();
        fs::resize_file(image, kDiskMiB << 20U);
        // Nothing is kept back for root, so that full means full.
        m_mounted = run(fmt::format("mkfs.ext4 -q -F -m 0 '{}'", image)) &&
                    run(fmt::format("mount -o loop '{}' '{}'", image, m_path));
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk()
    {
        if (m_mounted)
            ::umount2(m_path.c_str(), MNT_DETACH);
    }

    bool isMounted() const { return m_mounted; }
    const std::string& path() const { return m_path; }

    std::uint64_t freeBytes() const
    {
        struct statvfs info {};
        if (::statvfs(m_path.c_str(), &info) != 0)
            return 0;
        return std::uint64_t{info.f_bavail} * info.f_frsize;
    }
    // Takes all but `bytes` away with one file.
    void leave(std::uint64_t bytes) const
    {
        std::ofstream filler(m_path + "/filler", std::ios::binary);
        const std::string block(std::size_t{64} << 10U, 'x');
        while (freeBytes() > bytes + block.size() && filler.write(block.data(), 65536).flush())
            ;
        filler.close();
        // What is not on the disk yet has not taken its room yet.
        const int fd = ::open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::syncfs(fd);
        ::close(fd);
    }
    void makeRoom() const { fs::remove(m_path + "/filler"); }

private:
    static bool run(const std::string& command)
    {
        return std::system((command + " >/dev/null 2>&1").c_str()) ==
               0; // NOLINT(concurrency-mt-unsafe,cert-env33-c): one thread, a fixed command
    }

    std::string m_path;
    bool m_mounted = false;
};

// The engine on the machine's own file system: C: is a folder, D: the small disk.
class RealWorld {
public:
    RealWorld(const test::TempFolder& place, const SmallDisk& small)
        : m_place(place),
          m_disk(std::make_shared<const platform::DriveMap>(
              std::vector<platform::DriveRoot>{{'C', place / "c"}, {'D', small.path()}})),
          m_machine{m_disk,        m_ports.drives,      m_ports.registry,
                    m_ports.shell, m_ports.facts,       m_ports.processes,
                    m_ports.clock, m_ports.messageLoop, m_ports.messageBoxes}
    {
        fs::create_directories(place / "c");
        for (const char* folder : {"C:\\app\\Profiles", "C:\\data\\sub", "D:\\store"})
            m_disk.createFolders(folder);
        std::string text = engine::ProfileText{}.plain();
        const std::string key = "Backup versions =";
        text.replace(text.find(key) + key.size(), 1, "0");
        m_disk.replaceFile(kProfiles + "Work.vdp", profile::scrambleText(text));
    }

    // Every second file gets a new content that does not pack.
    void edit(std::mt19937_64& random)
    {
        for (int i = 0; i < kFiles; ++i) {
            if (!m_truth.empty() && random() % 2 == 0)
                continue;
            std::string bytes(random() % 150'000, '\0');
            for (char& byte : bytes)
                byte = static_cast<char>(random() & 0xffU);
            const std::string name = fmt::format("{}f{}", i % 2 == 0 ? "sub/" : "", i);
            m_place.write("c/data/" + name, bytes);
            m_truth[name] = std::move(bytes);
        }
        ++m_day;
        m_ports.clock.setLocal({{2003, 7, m_day}, {9, 0, 0}});
    }

    int backup() // the error that it raises, or 0
    {
        engine::RecordedEvents events;
        engine::Engine engine(m_machine, kApp, events);
        engine::TruthValue success = engine::kFalse;
        try {
            engine.EngineBackup(kProfiles, "Work.vdp", success);
            return 0;
        } catch (const base::RuntimeError& error) {
            return error.number();
        }
    }

    // What a restore gives, as of a day (0: of now).
    Tree restore(int day)
    {
        const std::string place = m_place / "c/back";
        fs::remove_all(place);
        base::TextCollection chosen;
        chosen.add("C:\\data\\", "C:\\data\\");
        engine::RecordedEvents events;
        engine::Engine engine(m_machine, kApp, events);
        engine.EngineRestore(kProfiles, "Work.vdp", chosen, "C:\\back",
                             day == 0 ? "NULL" : fmt::format("{}/7/2003", day));
        EXPECT_EQ(engine.BackupFilesLost(), engine::kFalse);
        Tree result;
        const fs::path root = place + "/C/data";
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            if (entry.is_regular_file())
                result[entry.path().lexically_relative(root)] =
                    test::TempFolder::read(entry.path());
        }
        return result;
    }

    std::vector<engine::Gap> damaged()
    {
        return engine::verifyArchive(m_machine, kProfiles + "Work.vdp", 100,
                                     [](std::string_view) { return true; })
            .damaged;
    }

    const Tree& truth() const { return m_truth; }
    int day() const { return m_day; }

private:
    const test::TempFolder& m_place;
    platform::MemoryMachine m_ports; // all but its file system
    platform::LinuxFileSystem m_disk;
    platform::Machine m_machine;
    Tree m_truth;
    int m_day = 0;
};

class RealFullDisk : public testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(Kinds, RealFullDisk, testing::Values("ext4", "tmpfs"),
                         [](const auto& one) { return one.param; });

TEST_P(RealFullDisk, EndsTheRunAndTheNextOneGoesOnWhereThereIsRoom)
{
    const test::TempFolder place;
    const SmallDisk small(GetParam(), place);
    if (!small.isMounted())
        GTEST_SKIP() << "a " << GetParam() << " of its own cannot be mounted here: that takes root";
    Tally tally("fills of a real disk, " + GetParam());
    std::mt19937_64 random(seed());
    RealWorld world(place, small);
    world.edit(random);
    ASSERT_EQ(world.backup(), 0);
    for (std::uint64_t fill = 1; fill <= setting("VARDELIN_DISK_FILLS", kFills); ++fill) {
        const Tree finished = world.truth();
        const int finishedDay = world.day();
        world.edit(random);
        small.leave(random() % 1'500'000);
        const std::string label = fmt::format("fill {}, {} bytes free", fill, small.freeBytes());
        EXPECT_EQ(world.backup(), base::error_number::kDiskFull) << label;
        EXPECT_THAT(world.damaged(), IsEmpty()) << label;
        EXPECT_EQ(world.restore(finishedDay), finished) << label;
        tally.add();
        small.makeRoom();
        EXPECT_EQ(world.backup(), 0) << label;
        EXPECT_THAT(world.damaged(), IsEmpty()) << label;
        EXPECT_EQ(world.restore(0), world.truth()) << label;
        if (testing::Test::HasFailure())
            return;
    }
}

} // namespace
} // namespace vardelin::faults
