#include "proofs/disk_world.h"
#include "proofs/snapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

// Every name that the disk can hold makes the way into the archive and back, whatever it looks
// like.
namespace vardelin::proofs {
namespace {

using testing::IsEmpty;

constexpr std::int64_t kFirstTime = 1'700'000'000'123'456'789;

[[noreturn]] void raise(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

class OpenFolder {
public:
    explicit OpenFolder(int fd) : m_fd(fd)
    {
        if (fd < 0)
            raise("folder");
    }
    OpenFolder(OpenFolder&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    OpenFolder& operator=(OpenFolder&& other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;
    ~OpenFolder()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    static OpenFolder at(const std::string& path)
    {
        return OpenFolder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    // Made where it is missing.
    OpenFolder child(const std::string& name) const
    {
        if (::mkdirat(m_fd, name.c_str(), 0755) != 0 && errno != EEXIST)
            raise(name);
        return OpenFolder(
            ::openat(m_fd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }
    void write(const std::string& name, const std::string& bytes, mode_t mode,
               std::int64_t ns) const
    {
        const int fd = ::openat(m_fd, name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (fd < 0)
            raise(name);
        const timespec time{ns / 1'000'000'000, ns % 1'000'000'000};
        const std::array<timespec, 2> times{time, time};
        const bool done =
            ::write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) &&
            ::fchmod(fd, mode) == 0 && ::futimens(fd, times.data()) == 0;
        ::close(fd);
        if (!done)
            raise(name);
    }

private:
    int m_fd;
};

std::string oneByteNames(int code)
{
    return std::string(1, static_cast<char>(code));
}

// Names that a source may have, by what is special in them.
std::vector<std::string> specialNames()
{
    std::vector<std::string> names{
        // not UTF-8: cut, overlong, surrogates, beyond the end, a lone byte behind a good one
        "\xc3", "\xe2\x82", "\xf0\x9f\x98", "\xc0\xaf", "\xc1\x81", "\xe0\x80\xaf", "\xed\xa0\x80",
        "\xed\xbf\xbf", "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80", "\xfe\xff", "ok\x80", "\x80ok",
        // pairs that some file systems hold for one
        "case.txt", "CASE.TXT", "Case.txt", "stra\xc3\x9f\x65", "STRASSE", "\xc3\xa9.txt",
        "e\xcc\x81.txt", "\xc3\x89.txt", "E\xcc\x81.txt", "\xef\xac\x81", "fi",
        "\xe1\xba\x9b\xcc\xa3", "\xe1\xb9\xa9", "\xea\xb0\x80", "\xe1\x84\x80\xe1\x85\xa1",
        // marks of copies, and what lies next to them
        "full", "FULL", "_FULL", "_FULL_", "x_FULL_", "x_FULL.txt", "x_full_.txt", "Ver", "_Ver1",
        "_Ver1_", "x_Ver1_.txt", "x_Ver999_", "x_ver1_", "x_Ver0_", "x_Ver1000_", "x_FULL_Ver1_",
        "x_Ver1__FULL", "x_FULL_.zst", "x_Ver1_.zst", "a_000", "a_001", "a.txt_000", "_000",
        // what an archive holds itself
        "~0123456789abcdef.tmp", "~ffffffffffffffff.tmp", "~0123456789ABCDEF.tmp",
        "~folder_1ed-0-0-0.zst", "~folder_1ed-0-0-0.vda", "~folder_.zst", "x_FULL_1-2-3.zst",
        "x_Ver1_1-2-3.zst", "x_Ver1_1-2-3.vda", "x_Ver1_1-2-3", "x_Ver1_1-2-3_FULL.zst",
        "x_FULL_1-2-3-00112233445566778899aabbccddeeff", "y_FULL_1-2-3.zst_FULL_1-2-3.zst", "~run",
        "~slot", "Work.vdp", "OtherData", "C", "C:", "D:\\x", "ReviewFiles.txt",
        "0123456789abcdef.link",
        // blanks, dots, line ends, devices
        " ", "  ", " a", "a ", "a  ", ".a", "a.", "a..", "...", ". .", " .", ". ", "a .", "a. ",
        "a\nb", "\n", "a\r\nb", "\ta", "a\t", "NUL", "con", "aux.txt", "COM1", "-rf", "--", "*",
        "?", "a:b", "a\\b", "\\", "a|b", "\"", "<>", "%41", "$HOME", "`id`", "~", "#", "a;b", "a,b",
        // the characters that stand for others inside, alone and in rows
        "\xef\x80\xaa", "\xef\x81\x9c", "\xef\x80\xba", "a\xef\x80\xa0", "a\xef\x80\xae",
        "\xef\x80\x8a", "\xef\x83\xbf", "\xef\x83\xbf\xef\x80\xaa", "\xef\x83\xbf\xef\x83\xbf",
        "\xef\x80\x80", "\xef\x80\xaf", "\xef\x83\xbe", "\xef\x84\x80", "\xee\xbf\xbf", "\xef\x80",
        "\xef\x83\xbf*", "*\xef\x80\xaa", "\xe2\x80\xaegpj.exe", "\xe2\x80\x8b",
        "\xf0\x9f\x98\x80"};
    for (const int length : {200, 230, 242, 243})
        names.push_back(std::string(static_cast<std::size_t>(length - 1), 'n') + "m");
    return names;
}

// What a restore gives back: no change times, and of folders no times, since names were added.
Snapshot kept(const std::string& folder)
{
    Snapshot result = snapshotOf(folder);
    for (auto& [path, seen] : result) {
        seen.changedNs = 0;
        if (S_ISDIR(seen.mode)) {
            seen.modifiedNs = 0;
            seen.links = 0;
        }
    }
    return result;
}

class Names : public testing::Test {
protected:
    // Writes every name of a list into each of the folders, a content and a time of its own each.
    void write(const std::vector<std::string>& names, const std::string& content)
    {
        const OpenFolder folder = OpenFolder::at(world.native("data"));
        writeInto(folder, names, content);
    }
    void writeInto(const OpenFolder& folder, const std::vector<std::string>& names,
                   const std::string& content)
    {
        for (const std::string& name : names) {
            ++m_files;
            folder.write(name, content + name, m_files % 3 == 0 ? 0640 : 0604,
                         kFirstTime + 1'000'000'007 * m_files);
        }
    }
    void expectSavedAndRestored(std::size_t copies, const std::string& target)
    {
        const engine::BackupReport saved = world.backup();
        for (const engine::Gap& gap : saved.missed)
            ADD_FAILURE() << "missed " << gap.path << ": " << gap.reason;
        EXPECT_EQ(saved.outcome, engine::Outcome::Complete);
        EXPECT_EQ(saved.copiesWritten, copies);
        expectRestored(target);
        EXPECT_EQ(world.backup().outcome, engine::Outcome::NothingToDo);
    }
    void expectRestored(const std::string& target)
    {
        const engine::VerifyReport verified = world.verify();
        EXPECT_THAT(verified.foreign, IsEmpty());
        for (const engine::Gap& gap : verified.damaged)
            ADD_FAILURE() << "damaged " << gap.path << ": " << gap.reason;
        const DiskWorld::Restored restored = world.restore({"C:\\data\\"}, "C:\\" + target);
        for (const engine::Gap& gap : restored.report.lost)
            ADD_FAILURE() << "lost " << gap.path << ": " << gap.reason;
        for (const engine::Gap& gap : restored.report.failed)
            ADD_FAILURE() << "failed " << gap.path << ": " << gap.reason;
        EXPECT_EQ(differenceOf(kept(world.native("data")), kept(world.native(target + "/C/data"))),
                  "");
    }
    // Each copy by its own entry, as a person picks it, gives the file of that name.
    void expectEachEntryRestores(const std::string& target)
    {
        std::vector<std::string> newest;
        std::map<std::string, std::pair<int, std::string>> bySource;
        engine::listCopies(world.machine, engine::kProfiles + "Work.vdp", [&](const auto& copy) {
            auto& [version, entry] = bySource[copy.sourcePath];
            if (entry.empty() || copy.version > version) {
                version = copy.version;
                entry = copy.entry;
            }
            return true;
        });
        newest.reserve(bySource.size());
        for (const auto& [source, chosen] : bySource)
            newest.push_back(chosen.second);
        EXPECT_EQ(std::set<std::string>(newest.begin(), newest.end()).size(), newest.size());
        const DiskWorld::Restored restored = world.restore(newest, "C:\\" + target);
        EXPECT_EQ(restored.report.filesRestored, newest.size());
        EXPECT_EQ(differenceOf(kept(world.native("data")), kept(world.native(target + "/C/data"))),
                  "");
    }
    void proveThreeRuns(const std::vector<std::string>& names)
    {
        write(names, "first of ");
        expectSavedAndRestored(names.size(), "one");
        write(names, "the second one of ");
        expectSavedAndRestored(names.size(), "two");
        expectEachEntryRestores("three");
    }

    DiskWorld world;

private:
    std::int64_t m_files = 0;
};

TEST_F(Names, EveryByteMakesTheWayBack)
{
    std::vector<std::string> names;
    for (int code = 1; code <= 255; ++code) {
        const std::string byte = oneByteNames(code);
        if (byte == "/")
            continue;
        if (byte != ".")
            names.push_back(byte);
        names.push_back("in" + byte + "side");
    }
    proveThreeRuns(names);
}

TEST_F(Names, EverySpecialNameMakesTheWayBack)
{
    proveThreeRuns(specialNames());
}

TEST_F(Names, CopiesStoredAsTheyAreMakeTheWayBack)
{
    engine::ProfileText text;
    text.destination = "C:\\store";
    text.compress = false;
    world.setProfile(text);
    proveThreeRuns(specialNames());
}

TEST_F(Names, EverySpecialFolderMakesTheWayBack)
{
    const std::vector<std::string> names = specialNames();
    const OpenFolder data = OpenFolder::at(world.native("data"));
    const std::vector<std::string> files{"x_FULL_1-2-3.zst"};
    for (const char* content : {"first of ", "the second one of "}) {
        for (const std::string& name : names)
            writeInto(data.child(name), files, content);
        expectSavedAndRestored(names.size() * files.size(), content);
    }
    expectEachEntryRestores("three");
}

TEST_F(Names, EmptyFoldersOfAnyNameMakeTheWayBack)
{
    const OpenFolder data = OpenFolder::at(world.native("data"));
    for (const std::string& name : specialNames())
        (void)data.child(name);
    EXPECT_THAT(world.backup().missed, IsEmpty());
    expectRestored("one");
}

// The mark and the ending of a copy take 10 bytes at least, of the 255 that a name may have.
TEST_F(Names, OneTooLongForItsMarkIsMissedByNameAndTheRestIsSaved)
{
    const auto nameOf = [](int length) {
        return std::string(static_cast<std::size_t>(length), 'n');
    };
    std::vector<std::string> names{"short"};
    for (int length = 244; length <= 255; ++length)
        names.push_back(nameOf(length));
    for (const char* content : {"first of ", "the second one of "}) {
        write(names, content);
        const engine::BackupReport report = world.backup();
        EXPECT_EQ(report.outcome, engine::Outcome::CompleteWithGaps);
        EXPECT_EQ(report.copiesWritten, 3U); // with those of 244 and 245
        std::set<std::string> missed;
        for (const engine::Gap& gap : report.missed) {
            missed.insert(gap.path);
            EXPECT_EQ(gap.reason, "its name is too long for an archive file");
        }
        std::set<std::string> expected;
        for (int length = 246; length <= 255; ++length)
            expected.insert("C:\\data\\" + nameOf(length));
        EXPECT_EQ(missed, expected);
    }
    EXPECT_EQ(world.restore({"C:\\data\\"}, "C:\\out").report.filesRestored, 3U);
    EXPECT_EQ(world.read("out/C/data/" + nameOf(245)), "the second one of " + nameOf(245));
}

TEST_F(Names, APathBeyondTheKernelsLimitMakesTheWayBack)
{
    constexpr int kDepth = 25; // of 204 bytes each: 5,100 in all
    for (const char* content : {"first of ", "the second one of "}) {
        OpenFolder at = OpenFolder::at(world.native("data"));
        for (int depth = 0; depth < kDepth; ++depth) {
            at = at.child(std::string(200, 'd') + std::to_string(100 + depth));
            writeInto(at, {"file_FULL", "x_Ver1_1-2-3.zst"}, content);
        }
        expectSavedAndRestored(2U * kDepth, content);
    }
    expectEachEntryRestores("three");
}

} // namespace
} // namespace vardelin::proofs
