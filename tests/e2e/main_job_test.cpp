#include "e2e/program.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <fstream>

namespace vardelin::test {
namespace {

std::string day(int daysFromNow)
{
    const std::time_t time = std::time(nullptr) + daysFromNow * 86'400;
    std::tm local{};
    ::localtime_r(&time, &local);
    return std::to_string(local.tm_mday) + "/" + std::to_string(local.tm_mon + 1) + "/" +
           std::to_string(local.tm_year + 1900);
}

TEST(MainJob, SavesVersionsAndBringsBackEachOfThem)
{
    const World world;
    ASSERT_EQ(world.run({"backup", "Home"}).code, 0);
    EXPECT_EQ(world.run({"backup", "Home"}).code, 4);
    world.write("sources/letter.txt", "second version\n");
    ASSERT_EQ(world.run({"backup", "home.vdp"}).code, 0);

    const std::string letter = World::drive(world.sources + "/letter.txt");
    const Ran listed = world.run({"list", "Home", "*letter*"});
    EXPECT_EQ(listed.out,
              "Files And Folders\\" + letter + "_000\nFiles And Folders\\" + letter + "_001\n");

    ASSERT_EQ(world.run({"restore", "Home", letter + "_000"}).code, 0);
    EXPECT_EQ(world.read("sources/letter.txt"), "first\n");
    ASSERT_EQ(world.run({"restore", "Home", "sources/letter.txt"}).code, 0);
    EXPECT_EQ(world.read("sources/letter.txt"), "second version\n");
    ASSERT_EQ(world.run({"restore", "Home", "--all", "--to", "out", "--date", day(0)}).code, 0);
    EXPECT_EQ(shell("diff -r " + shellWord(world.sources) + " " +
                    shellWord(world.folder / "out/C" + world.sources)),
              "");
    EXPECT_EQ(world.run({"restore", "Home", "--all", "--to", "none", "--date", day(-2)}).code, 1);
    EXPECT_EQ(world.run({"verify", "Home"}).code, 0);
    EXPECT_EQ(world.run({"logs", "backup"}).code, 0);
    EXPECT_EQ(world.run({"logs", "restore"}).code, 0);
}

TEST(MainJob, EncryptsUnderThePasswordAndOpensEarlierCopiesWithTheirs)
{
    const World world;
    world.write("old", "old password\n");
    world.write("new", "new password\n");
    world.write("answer", "blue\n");
    const auto makeProfile = [&](const std::string& passwordFile) {
        return world
            .run({"profile", "new", "Secret", "--source", "sources", "--dest", "store", "--encrypt",
                  "--password-file", passwordFile, "--hint-question", "Sky?", "--hint-answer-file",
                  "answer"})
            .code;
    };
    std::filesystem::create_directory(world.folder / "store");
    ASSERT_EQ(makeProfile("old"), 0);
    ASSERT_EQ(world.run({"backup", "Secret"}).code, 0);
    EXPECT_EQ(world.run({"backup", "Secret"}).code, 4);
    EXPECT_EQ(shell("grep -rl first " + shellWord(world.folder / "store")), "");
    ASSERT_EQ(world.run({"profile", "delete", "Secret"}).code, 0);
    ASSERT_EQ(makeProfile("new"), 0);
    ASSERT_EQ(world.run({"backup", "Secret"}).code, 0);

    const std::string letter = World::drive(world.sources + "/letter.txt");
    EXPECT_EQ(world.run({"restore", "Secret", letter + "_000", "--to", "none"}).code, 1);
    EXPECT_EQ(world
                  .run({"restore", "Secret", letter + "_000", "--to", "rescued", "--password-file",
                        "old"})
                  .code,
              0);
    EXPECT_EQ(world.read("rescued/C" + world.sources + "/letter.txt"), "first\n");
    EXPECT_EQ(world.run({"restore", "Secret", "--all", "--to", "out"}).code, 0);
    EXPECT_EQ(shell("diff -r " + shellWord(world.sources) + " " +
                    shellWord(world.folder / "out/C" + world.sources)),
              "");
    EXPECT_EQ(world.run({"verify", "Secret"}).code, 1) << "the copies of the earlier password";
}

TEST(MainJob, KeepsCopiesThatZstdAloneCanRead)
{
    const World world;
    ASSERT_EQ(world.run({"backup", "Home"}).code, 0);
    const std::string copy =
        shell("find " + shellWord(world.destination) + " -name 'photo.raw_FULL_*.zst'");
    ASSERT_NE(copy, "");
    int code = -1;
    const std::string content =
        shell("zstd -dc " + shellWord(copy.substr(0, copy.size() - 1)), &code);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(content, std::string(100'000, 'p'));
}

TEST(MainJob, FindsDamageInTheArchive)
{
    const World world;
    ASSERT_EQ(world.run({"backup", "Home"}).code, 0);
    const std::string listed =
        shell("find " + shellWord(world.destination) + " -name 'letter.txt_FULL_*'");
    const std::string copy = listed.substr(0, listed.size() - 1);
    std::string bytes = TempFolder::read(copy);
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    std::ofstream(copy, std::ios::binary) << bytes;
    const Ran verified = world.run({"verify", "Home"});
    EXPECT_EQ(verified.code, 1);
    EXPECT_NE(verified.out.find("letter.txt"), std::string::npos);
    EXPECT_EQ(world.run({"restore", "Home", "--all", "--to", "out"}).code, 1);
    EXPECT_TRUE(
        std::filesystem::exists(world.folder / "out/C" + world.sources + "/deep/photo.raw"));
    EXPECT_FALSE(std::filesystem::exists(world.folder / "out/C" + world.sources + "/letter.txt"));
}

TEST(MainJob, SavesNamesOfAllBytes)
{
    const World world;
    for (const char* name :
         {"back\\slash", "colon: *?", "\"<>|", "new\nline", " in front", "behind ", "dot.", "-rf",
          "caf\xC3\xA9", "not utf8 \xE9", "carefully full", "x_Ver1_y", "[x]"})
        world.write(std::string("sources/") + name, name);
    const Ran ran = world.run({"backup", "Home"});
    EXPECT_EQ(ran.code, 0) << ran.out << ran.err;
    EXPECT_EQ(world.run({"backup", "Home"}).code, 4);
    ASSERT_EQ(world.run({"restore", "Home", "--all", "--to", "out"}).code, 0);
    EXPECT_EQ(shell("diff -r " + shellWord(world.sources) + " " +
                    shellWord(world.folder / "out/C" + world.sources)),
              "");
    ASSERT_EQ(world.run({"restore", "Home", "sources/not utf8 \xE9", "--to", "one"}).code, 0);
    EXPECT_EQ(TempFolder::read(world.folder / "one/C" + world.sources + "/not utf8 \xE9"),
              "not utf8 \xE9");
    ASSERT_EQ(world.run({"restore", "Home", "sources/dot.", "--to", "one"}).code, 0);
    EXPECT_EQ(TempFolder::read(world.folder / "one/C" + world.sources + "/dot."), "dot.");
    const Ran objects = world.run({"--json", "list", "Home", "*utf8*"});
    EXPECT_NE(objects.out.find("pathBytes"), std::string::npos);
}

TEST(MainJob, EndsWithTheCodeForCancelledOnCtrlC)
{
    const World world;
    // Large enough to be under way when the archive's folder is there.
    shell("head -c 300000000 /dev/urandom > " + shellWord(world.sources + "/large"));
    const std::string code = shell(
        shellWord(VARDELINCTL) + " --app " + shellWord(world.app) +
        " --quiet backup Home & run=$!; while [ ! -d " + shellWord(world.destination + "/Home") +
        " ] && kill -0 $run; do sleep 0.01; done; kill -INT $run; wait $run; echo $?");
    EXPECT_EQ(code, "130\n");
    EXPECT_EQ(shell("find " + shellWord(world.destination) + " -name 'large_*'"), "");
    EXPECT_EQ(world.run({"backup", "Home"}).code, 0);
    ASSERT_EQ(world.run({"restore", "Home", "--all", "--to", "out"}).code, 0);
    EXPECT_EQ(shell("diff -r " + shellWord(world.sources) + " " +
                    shellWord(world.folder / "out/C" + world.sources)),
              "");
}

} // namespace
} // namespace vardelin::test
