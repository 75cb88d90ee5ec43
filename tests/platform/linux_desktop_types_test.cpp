#include "platform/linux/linux_desktop_types.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/linux/desktop_entry.h"
#include "platform/linux/linux_processes.h"
#include "platform/memory/memory_file_system.h"
#include "platform/memory/memory_processes.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <unistd.h>
#include <vector>

namespace vardelin::platform {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kEntry = "applications/vardelin.desktop";
constexpr const char* kType = "mime/packages/vardelin.xml";
constexpr const char* kProgramIcon = "icons/vardelin.svg";
constexpr const char* kProfileIcon = "icons/application-x-vardelin-profile.svg";

class DesktopFiles : public testing::Test {
protected:
    test::TempFolder folder;
    std::string own = folder / "home/.local/share";
    std::string shared = folder / "usr/share";
    DesktopFolders folders{folder / "home", folder / "home/.config", {own, shared}};
    std::string program = folder.write("opt/vardelin", "the program");
    MemoryProcesses processes;

    bool tell() { return LinuxDesktopTypes(folders, program, processes).registerProgram(); }
    std::string file(std::string_view name) const { return own + "/" + std::string(name); }
    std::string text(std::string_view name) const { return test::TempFolder::read(file(name)); }
    std::string put(std::string_view name, std::string_view bytes) const
    {
        return folder.write("home/.local/share/" + std::string(name), bytes);
    }
    // All files below the person's folder by their texts.
    std::map<std::string, std::string> all() const
    {
        std::map<std::string, std::string> files;
        std::error_code none;
        for (const auto& entry : fs::recursive_directory_iterator(own, none)) {
            if (entry.is_regular_file())
                files[entry.path().lexically_relative(own).string()] =
                    test::TempFolder::read(entry.path().string());
        }
        return files;
    }
    // As the two tools leave them.
    void makeIndexes() const
    {
        put("mime/mime.cache", "");
        put("applications/mimeinfo.cache", "");
    }
    void installShared(const std::string& exec) const
    {
        folder.write("usr/share/mime/application/x-vardelin-profile.xml", "<mime-type/>");
        folder.write("usr/share/applications/vardelin.desktop",
                     "[Desktop Entry]\nName=Vardelin\nExec=" + exec + "\n");
    }
    std::vector<std::string> started() const
    {
        std::vector<std::string> tools;
        for (const auto& each : processes.started)
            tools.push_back(each.path + " " + each.arguments.at(0));
        return tools;
    }
};

TEST_F(DesktopFiles, HoldTheTypeTheProgramAndTheirIcons)
{
    EXPECT_TRUE(tell());
    const auto files = all();
    ASSERT_EQ(files.size(), 4U);
    EXPECT_EQ(files.at(kEntry),
              "[Desktop Entry]\n"
              "# Written by Vardelin at its start; without this line the file stays as it is.\n"
              "Type=Application\n"
              "Name=Vardelin\n"
              "Comment=Keeps copies and earlier versions of your files\n"
              "TryExec=" +
                  program +
                  "\n"
                  "Exec=\"" +
                  program +
                  "\" %f\n"
                  "Icon=" +
                  own +
                  "/icons/vardelin.svg\n"
                  "Terminal=false\n"
                  "Categories=Utility;Archiving;\n"
                  "MimeType=application/x-vardelin-profile;\n");
    EXPECT_THAT(files.at(kType), HasSubstr("<glob pattern=\"*.vdp\"/>"));
    for (const char* icon : {kProgramIcon, kProfileIcon})
        EXPECT_TRUE(files.at(icon).starts_with("<svg ")) << icon;
    for (const auto& [name, content] : files)
        EXPECT_THAT(content, HasSubstr(std::string(kDesktopMark))) << name;
    EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all) << "a new folder is one's own";
    EXPECT_THAT(started(), ElementsAre("update-mime-database " + own + "/mime",
                                       "update-desktop-database " + own + "/applications"));
}

TEST_F(DesktopFiles, AreNotWrittenASecondTime)
{
    tell();
    makeIndexes();
    processes.started.clear();
    const auto before = all();
    std::map<std::string, fs::file_time_type> times;
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (const auto& entry : fs::recursive_directory_iterator(own)) {
        const bool isIndex = entry.path().extension() == ".cache";
        fs::last_write_time(entry.path(), isIndex ? longAgo + std::chrono::minutes(1) : longAgo);
    }
    for (const auto& entry : fs::recursive_directory_iterator(own))
        times[entry.path().string()] = entry.last_write_time();

    EXPECT_FALSE(tell());
    EXPECT_EQ(all(), before);
    for (const auto& [path, time] : times)
        EXPECT_EQ(fs::last_write_time(path), time) << path;
    EXPECT_THAT(processes.started, IsEmpty());
}

TEST_F(DesktopFiles, NameTheProgramWhereItIsNow)
{
    tell();
    makeIndexes();
    program = folder.write("elsewhere/vardelin", "the program");
    EXPECT_TRUE(tell());
    EXPECT_EQ(entryValue(text(kEntry), "Exec"), "\"" + program + "\" %f");
}

// An index that was never made, or not since, would leave the desktop ignorant for ever.
TEST_F(DesktopFiles, AreIndexedAnewWhereTheIndexIsMissingOrOlder)
{
    tell();
    makeIndexes();
    processes.started.clear();
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    fs::last_write_time(file("mime/mime.cache"), longAgo);
    EXPECT_FALSE(tell());
    EXPECT_THAT(started(), ElementsAre("update-mime-database " + own + "/mime"));
    processes.started.clear();
    makeIndexes();
    fs::remove(file("applications/mimeinfo.cache"));
    EXPECT_FALSE(tell());
    EXPECT_THAT(started(), ElementsAre("update-desktop-database " + own + "/applications"));
}

TEST_F(DesktopFiles, DoWithoutToolsThatAreNotInstalled)
{
    processes.missing = {"update-mime-database", "update-desktop-database"};
    EXPECT_TRUE(tell());
    EXPECT_EQ(all().size(), 4U);
}

TEST_F(DesktopFiles, SayWhichToolMayNotRun)
{
    processes.script().failCallsNamed("processes.start", base::error_number::kPermissionDenied);
    try {
        tell();
        FAIL() << "no error";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), base::error_number::kPermissionDenied);
    }
    EXPECT_EQ(processes.script().countOf("processes.start"), 2U) << "the other one is tried, too";
    EXPECT_EQ(all().size(), 4U);
}

TEST_F(DesktopFiles, OfSomebodyElseStayAsTheyAre)
{
    const std::string theirs = "[Desktop Entry]\nName=Mine\nExec=other\n";
    for (const char* name : {kEntry, kType, kProgramIcon, kProfileIcon}) {
        fs::remove_all(own);
        put(name, theirs);
        EXPECT_TRUE(tell()) << name;
        EXPECT_EQ(text(name), theirs) << name;
        EXPECT_EQ(all().size(), 4U) << name;
    }
    // A person who takes the line out keeps the file.
    fs::remove_all(own);
    tell();
    const std::string kept = base::replaceAll(text(kEntry), std::string(kDesktopMark), "Edited");
    put(kEntry, kept);
    program = folder.write("elsewhere/vardelin", "the program");
    EXPECT_FALSE(tell());
    EXPECT_EQ(text(kEntry), kept);
}

TEST_F(DesktopFiles, LeaveLinksAndFoldersInTheirPlace)
{
    const std::string target = folder.write("dotfiles/vardelin.desktop", std::string(kDesktopMark));
    fs::create_directories(file("applications"));
    fs::create_symlink(target, file(kEntry));
    fs::create_directories(file(kType));
    fs::create_directories(file("icons"));
    fs::create_symlink(folder / "nowhere", file(kProgramIcon));
    EXPECT_TRUE(tell()) << "one icon is left to write";
    EXPECT_TRUE(fs::is_symlink(file(kEntry)));
    EXPECT_EQ(test::TempFolder::read(target), kDesktopMark);
    EXPECT_TRUE(fs::is_directory(file(kType)));
    EXPECT_FALSE(fs::exists(folder / "nowhere"));
    EXPECT_THAT(processes.started, IsEmpty()) << "what is not ours is not ours to index";
}

TEST_F(DesktopFiles, AreNotNeededWhereASharedFolderHasThem)
{
    for (const std::string& exec : {"\"" + program + "\" %f", program + " %F"}) {
        installShared(exec);
        EXPECT_FALSE(tell());
        EXPECT_FALSE(fs::exists(own));
    }
    // By another name of the same file.
    fs::create_symlink(program, folder / "link");
    installShared((folder / "link") + " %f");
    EXPECT_FALSE(tell());
    EXPECT_FALSE(fs::exists(own));
    EXPECT_THAT(processes.started, IsEmpty());
}

TEST_F(DesktopFiles, AreNeededBesideASharedProgramOfAnotherPlace)
{
    installShared(folder.write("other/vardelin", "another program") + " %f");
    EXPECT_TRUE(tell());
    EXPECT_EQ(all().size(), 4U);
}

TEST_F(DesktopFiles, AreNeededWhereASharedFolderHasHalfOfThem)
{
    installShared(program + " %f");
    fs::remove_all(shared + "/mime");
    EXPECT_TRUE(tell());
    EXPECT_EQ(all().size(), 4U);
}

TEST_F(DesktopFiles, TakeTheFirstOfTheSharedEntries)
{
    folders.data.push_back(folder / "late");
    installShared(folder.write("other/vardelin", "another program") + " %f");
    folder.write("late/applications/vardelin.desktop", "[Desktop Entry]\nExec=" + program + "\n");
    EXPECT_TRUE(tell());
    EXPECT_EQ(all().size(), 4U);
}

// It would hide the shared entry, and with it the program.
TEST_F(DesktopFiles, KeepAnEntryOfOursTrueBesideTheSharedOne)
{
    put(kEntry, "[Desktop Entry]\n# " + std::string(kDesktopMark) + "\nExec=/gone %f\n");
    installShared(program + " %f");
    EXPECT_TRUE(tell());
    EXPECT_EQ(entryValue(text(kEntry), "Exec"), "\"" + program + "\" %f");
}

TEST_F(DesktopFiles, AreWrittenAsFarAsTheFolderLets)
{
    put("applications", "a file in the way");
    try {
        tell();
        FAIL() << "no error";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), base::error_number::kDeviceIo);
        EXPECT_EQ(error.subject(), file("applications"));
    }
    EXPECT_THAT(text(kType), HasSubstr("x-vardelin-profile"));
    EXPECT_THAT(started(), ElementsAre("update-mime-database " + own + "/mime"));
}

TEST_F(DesktopFiles, AreNotWrittenWithoutAHomeOrAnAbsoluteFolder)
{
    folders.home.clear();
    EXPECT_FALSE(tell());
    folders.home = folder / "home";
    folders.data = {"relative/share"};
    EXPECT_FALSE(tell());
    folders.data.clear();
    EXPECT_FALSE(tell());
    EXPECT_FALSE(fs::exists(own));
    EXPECT_FALSE(fs::exists("relative"));
}

TEST_F(DesktopFiles, AreNotWrittenByRootIntoAnotherPersonsHome)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "takes root";
    constexpr uid_t kSomebody = 12345;
    fs::create_directories(folder / "home");
    ASSERT_EQ(::chown((folder / "home").c_str(), kSomebody, kSomebody), 0);
    EXPECT_FALSE(tell());
    EXPECT_FALSE(fs::exists(folder / "home/.local"));
}

// What desktops make of the entry, by the library that most of them share.
TEST_F(DesktopFiles, StartTheProgramFromAnyFolder)
{
    MemoryFileSystem files;
    LinuxProcesses real(files);
    try {
        real.run({"gio", "version"});
    } catch (const base::RuntimeError&) {
        GTEST_SKIP() << "gio is missing";
    }
    const std::string document = folder.write("My $HOME `id` 50%.vdp", "a profile");
    for (const char* name : {"plain", "two words", "a\"b'c", "$HOME `id` \\back\\\\slash",
                             "50%f %%", "a=b", "\xC3\xA9t\xC3\xA9 ;&|<>*?#()!~"}) {
        const std::string place = std::string("odd/") + name + "/";
        const std::string out = folder / (place + "arguments");
        program =
            folder.write(place + "vardelin", "#!/bin/sh\n"
                                             "printf '%s\\n' \"$#\" \"$1\" > \"${0%/*}/new\"\n"
                                             "mv \"${0%/*}/new\" \"${0%/*}/arguments\"\n");
        fs::permissions(program, fs::perms::owner_all);
        ASSERT_TRUE(tell()) << name;
        real.run({"gio", "launch", file(kEntry), document});
        for (int i = 0; i < 1000 && !fs::exists(out); ++i)
            ::usleep(10'000);
        EXPECT_EQ(test::TempFolder::read(out), "1\n" + document + "\n") << name;
    }
}

} // namespace
} // namespace vardelin::platform
