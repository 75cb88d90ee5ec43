#include "e2e/program.h"
#include "profile/scramble_text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <unistd.h>

namespace vardelin::test {
namespace {

namespace fs = std::filesystem;

void rewriteProfile(const World& world, const std::function<void(std::string&)>& change)
{
    std::string plain = profile::unscrambleText(TempFolder::read(world.profilePath()));
    change(plain);
    std::ofstream(world.profilePath(), std::ios::binary) << profile::scrambleText(plain);
}

TEST(BadInput, NamesAMissingProfile)
{
    const World world;
    const Ran ran = world.run({"backup", "Nobody"});
    EXPECT_EQ(ran.code, 3);
    EXPECT_NE(ran.err.find(world.app + "/Profiles/Nobody.vdp"), std::string::npos) << ran.err;
}

TEST(BadInput, RefusesAProfileThatIsNone)
{
    for (const std::string& bytes : {std::string(), std::string("\r\n"), std::string(5000, '\xFF'),
                                     std::string("just some text\r\n")}) {
        const World world;
        std::ofstream(world.profilePath(), std::ios::binary) << bytes;
        for (const char* command : {"backup", "list", "verify"}) {
            const Ran ran = world.run({command, "Home"});
            EXPECT_EQ(ran.code, 3) << command;
            EXPECT_NE(ran.err.find("Home.vdp"), std::string::npos) << ran.err;
        }
        EXPECT_FALSE(fs::exists(world.destination + "/Home"));
    }
}

// Whatever is cut off, what is still named is saved or refused, and nothing hangs.
TEST(BadInput, EndsWithAnyLengthOfAProfile)
{
    const World world;
    const std::string whole = TempFolder::read(world.profilePath());
    for (std::size_t length = 0; length < whole.size(); length += 37) {
        std::ofstream(world.profilePath(), std::ios::binary) << whole.substr(0, length);
        const int code = world.run({"backup", "Home"}).code;
        EXPECT_TRUE(code == 0 || code == 1 || code == 3 || code == 4) << length << ": " << code;
    }
    EXPECT_EQ(world.read("sources/letter.txt"), "first\n");
}

TEST(BadInput, RunsARenamedProfile)
{
    const World world;
    fs::rename(world.profilePath(), world.app + "/Profiles/Other.vdp");
    EXPECT_EQ(world.run({"backup", "Other"}).code, 0);
    EXPECT_TRUE(fs::exists(world.destination + "/Other/C"));
}

TEST(BadInput, RunsAProfileWithASectionThatNeverCloses)
{
    const World world;
    rewriteProfile(world, [](std::string& text) {
        const std::string line = "{End Of Excluded options}\r\n";
        text.erase(text.find(line), line.size());
    });
    const Ran ran = world.run({"backup", "Home"});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_NE(ran.err.find("warning"), std::string::npos);
}

TEST(BadInput, SavesAProfileWithoutAListFileAndSaysSo)
{
    const World world;
    fs::remove(world.app + "/Data/Other_Dsk.txt");
    EXPECT_EQ(world.run({"profile", "list"}).code, 3);
    const Ran ran = world.run({"profile", "set", "Home", "--no-compress"});
    EXPECT_EQ(ran.code, 3);
    EXPECT_NE(world.run({"profile", "show", "Home"}).out.find("Compress            no"),
              std::string::npos);
}

TEST(BadInput, RepairsAListFileThatEndsInAMarker)
{
    const World world;
    world.write("app/Data/Other_Dsk.txt", "[Primary Profile]\r\nHome.vdp\r\n[Recent Profile]\r\n");
    const Ran ran = world.run({"profile", "list"});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_EQ(ran.out, "Home.vdp  (primary)\n");
    EXPECT_EQ(world.read("app/Data/Other_Dsk.txt"), "[Primary Profile]\r\nHome.vdp\r\n");
}

TEST(BadInput, HasNothingToDoWhereEverySourceIsGone)
{
    const World world;
    ASSERT_EQ(world.run({"backup", "Home"}).code, 0);
    fs::remove_all(world.sources);
    EXPECT_EQ(world.run({"backup", "Home"}).code, 4);
    ASSERT_EQ(world.run({"restore", "Home", "--all"}).code, 0);
    EXPECT_EQ(world.read("sources/letter.txt"), "first\n");
}

TEST(BadInput, MissesOneSourceThatIsGone)
{
    const World world;
    const std::string second = world.write("more/file.txt", "x");
    ASSERT_EQ(world.run({"profile", "set", "Home", "--source", world.sources, second}).code, 0);
    fs::remove(second);
    const Ran ran = world.run({"backup", "Home"});
    EXPECT_EQ(ran.code, 1);
    EXPECT_NE(ran.out.find("file.txt"), std::string::npos) << ran.out;
}

TEST(BadInput, NeverSavesItsOwnArchive)
{
    const World world(false);
    const std::string inside = world.sources + "/backups";
    ASSERT_EQ(
        world.run({"profile", "new", "Home", "--source", world.folder.path(), "--dest", inside})
            .code,
        0);
    ASSERT_EQ(world.run({"backup", "Home"}).code, 0);
    const Ran listed = world.run({"list", "Home"});
    EXPECT_EQ(listed.out.find("_FULL_"), std::string::npos) << listed.out;
    EXPECT_EQ(world.run({"list", "Home", "*.zst"}).code, 4);
}

TEST(BadInput, NamesADestinationThatCannotBeWritten)
{
    if (::geteuid() == 0) {
        // Rights do not stop this user; a file in the way does.
        const World world;
        fs::remove_all(world.destination);
        world.write("backups", "in the way");
        const Ran ran = world.run({"backup", "Home"});
        EXPECT_EQ(ran.code, 3);
        EXPECT_NE(ran.err.find("backups"), std::string::npos) << ran.err;
        return;
    }
    const World world;
    fs::permissions(world.destination, fs::perms::owner_read | fs::perms::owner_exec);
    const Ran ran = world.run({"backup", "Home"});
    EXPECT_EQ(ran.code, 3);
    EXPECT_NE(ran.err.find("backups"), std::string::npos) << ran.err;
}

TEST(BadInput, NamesAMissingDestination)
{
    const World world;
    fs::remove_all(world.destination);
    const Ran ran = world.run({"backup", "Home"});
    EXPECT_EQ(ran.code, 3);
    EXPECT_NE(ran.err.find("backups"), std::string::npos) << ran.err;
    EXPECT_EQ(world
                  .run({"profile", "new", "Far", "--source", world.sources, "--dest",
                        world.folder / "none/none"})
                  .code,
              3);
    EXPECT_FALSE(fs::exists(world.app + "/Profiles/Far.vdp"));
}

TEST(BadInput, PassesOverForeignFilesInTheArchive)
{
    const World world;
    ASSERT_EQ(world.run({"backup", "Home"}).code, 0);
    const std::string folder = "backups/Home/C" + world.sources;
    for (const char* name : {"Version.txt", "notes", "letter.txt_Ver9", "a_FULL"})
        world.write(folder + "/" + name, "foreign");
    world.write("sources/letter.txt", "second\n");
    EXPECT_EQ(world.run({"backup", "Home"}).code, 0);
    EXPECT_EQ(world.run({"verify", "Home"}).code, 0);
    EXPECT_EQ(world.run({"restore", "Home", "--all", "--to", "out"}).code, 0);
    EXPECT_EQ(TempFolder::read(world.folder / "out/C" + world.sources + "/letter.txt"), "second\n");
    EXPECT_FALSE(fs::exists(world.folder / "out/C" + world.sources + "/Version.txt"));
}

TEST(BadInput, MissesANameThatIsTooLongForTheArchive)
{
    const World world;
    world.write("sources/" + std::string(255, 'n'), "x");
    const Ran ran = world.run({"backup", "Home"});
    EXPECT_EQ(ran.code, 1);
    EXPECT_NE(ran.out.find("nnnn"), std::string::npos);
    EXPECT_EQ(world.run({"restore", "Home", "--all", "--to", "out"}).code, 0);
}

TEST(BadInput, TellsWrongUsage)
{
    const World world;
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"nonsense"},
                                               {"backup"},
                                               {"restore", "Home"},
                                               {"verify", "Home", "--sample", "0"},
                                               {"profile", "new", "a/b"}}) {
        const Ran ran = world.run(arguments);
        EXPECT_EQ(ran.code, 2);
        EXPECT_NE(ran.err, "");
        EXPECT_EQ(ran.out, "");
    }
    EXPECT_EQ(world.run({"--help"}).code, 0);
    EXPECT_EQ(world.run({"restore", "--help"}).code, 0);
}

TEST(BadInput, ChangesNothingInTheRegistryByABadText)
{
    const World world;
    const std::string before = world.run({"registry", "export"}).out;
    const std::string file = world.write(
        "bad.reg", "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\A]\r\n\"x\"=\"y\"\r\nnonsense\r\n");
    const Ran ran = world.run({"registry", "import", file});
    EXPECT_EQ(ran.code, 3);
    EXPECT_NE(ran.err.find("line 5"), std::string::npos) << ran.err;
    EXPECT_EQ(world.run({"registry", "export"}).out, before);
}

} // namespace
} // namespace vardelin::test
