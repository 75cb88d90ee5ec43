#include "e2e/program.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

// What a file is beyond its bytes: made on the real disk with the system's own tools, saved,
// changed, restored elsewhere and over the original, and looked at with those tools again.
namespace vardelin::test {
namespace {

bool isRoot()
{
    return ::geteuid() == 0;
}

// Every fact of a tree that is kept, one line each: kind, mode, owner, size, times to the
// nanosecond, link targets, checksums, which names are one file, extended attributes with the
// access lists.
std::string factsOf(const std::string& folder)
{
    return shell(
        "cd " + shellWord(folder) +
        " && export LC_ALL=C"
        " && find . ! -type d -printf '%P %y %m %U:%G %s %T@ %l\\n' | sort"
        " && find . -mindepth 1 -type d -printf '%P d %m %U:%G\\n' | sort"
        " && find . -mindepth 1 -type d -empty -printf '%P %T@\\n' | sort"
        " && find . -type f -links +1 -printf '%i %P\\n' | sort -k2 |"
        " awk '{g[$1] = g[$1] \" \" $2} END {for (i in g) print \"one file:\" g[i]}' | sort"
        " && find . -type f -print0 | sort -z | xargs -0 -r sha256sum"
        " && find . -mindepth 1 -print0 | sort -z | xargs -0 -r getfattr -h -d -m - -e hex");
}

// The lines that stand in one alone, with - or + in front.
std::string difference(const std::string& expected, const std::string& found)
{
    const TempFolder folder;
    const std::string a = folder.write("a", expected);
    const std::string b = folder.write("b", found);
    return shell("diff -a " + shellWord(a) + " " + shellWord(b));
}

// In a new folder "s", the only source.
class Fidelity : public testing::Test {
protected:
    Fidelity() : world(false)
    {
        inSource("true");
        const Ran made =
            world.run({"profile", "new", "Home", "--source", source, "--dest", world.destination});
        EXPECT_EQ(made.code, 0) << made.err;
    }
    // Runs a shell script in the source's folder.
    void inSource(const std::string& script) const
    {
        int code = 0;
        shell("mkdir -p " + shellWord(source) + " && cd " + shellWord(source) + " && set -e; " +
                  script,
              &code);
        ASSERT_EQ(code, 0) << script;
    }
    void backUp(int code = 0) const
    {
        const Ran ran = world.run({"backup", "Home"});
        ASSERT_EQ(ran.code, code) << ran.out << ran.err;
    }
    void restore(const std::vector<std::string>& what) const
    {
        std::vector<std::string> arguments{"restore", "Home"};
        arguments.insert(arguments.end(), what.begin(), what.end());
        const Ran ran = world.run(arguments);
        ASSERT_EQ(ran.code, 0) << ran.out << ran.err;
    }
    std::string restored() const { return world.folder / "out/C" + source; }

    // Saves what the script makes, restores it elsewhere, then over an original that `damage` has
    // changed, and wants the same facts each time. A second run finds nothing new.
    void comesBack(const std::string& make, const std::string& damage)
    {
        inSource(make);
        const std::string facts = factsOf(source);
        ASSERT_FALSE(facts.empty());
        backUp();
        backUp(4);
        restore({"--all", "--to", "out"});
        EXPECT_EQ(difference(facts, factsOf(restored())), "");
        inSource(damage);
        restore({"--all"});
        EXPECT_EQ(difference(facts, factsOf(source)), "") << "over the original";
    }

    World world;
    std::string source = world.folder / "s";
};

TEST_F(Fidelity, KeepsModes)
{
    comesBack(
        "for m in 000 400 644 700 755 777 1644 2755 4755 6777; do echo $m > f$m; chmod $m f$m;"
        " done; for m in 700 755 1777 2775; do mkdir d$m; echo x > d$m/in; chmod $m d$m; done",
        "chmod 600 f*; rm f644; rm -r d700");
}

TEST_F(Fidelity, KeepsEmptyFilesAndFolders)
{
    comesBack("mkdir -p empty deep/er/empty 'with blank'; touch nothing deep/none; chmod 711 empty;"
              " touch -d '2001-02-03 04:05:06.123456789' empty deep/er/empty",
              "rm -r deep nothing empty");
}

TEST_F(Fidelity, KeepsTimesToTheNanosecond)
{
    comesBack("touch -d '2001-02-03 04:05:06.123456789 UTC' a;"
              " touch -d '1969-12-31 23:59:59.999999999 UTC' before;"
              " touch -d '1901-12-14 00:00:00.000000001 UTC' early;"
              " touch -d '2038-01-20 00:00:00.5 UTC' y2038;"
              " touch -d '2107-01-01 00:00:00.25 UTC' y2107; touch -d '@0' zero;"
              " ln -s nowhere link; touch -h -d '1999-01-02 03:04:05.678901234 UTC' link",
              "touch a before y2107; rm a early; touch -h link");
}

TEST_F(Fidelity, TakesTimesThatNanosecondsCannotHoldForTheLastOne)
{
    inSource("touch -d '2400-01-01 UTC' far");
    backUp();
    backUp(4);
    restore({"--all", "--to", "out"});
    const std::string year = shell("date -u -r " + shellWord(restored() + "/far") + " +%Y");
    EXPECT_TRUE(year == "2262\n" || year == "2400\n") << year;
}

TEST_F(Fidelity, PutsFoldersTimesOnBehindTheirFiles)
{
    inSource("mkdir special; echo x > special/f; chmod 700 special;"
             " touch -d '2002-03-04 05:06:07.089 UTC' special");
    backUp();
    restore({"--all", "--to", "out"});
    EXPECT_EQ(shell("stat -c %y " + shellWord(restored() + "/special")),
              shell("stat -c %y " + shellWord(source + "/special")));
}

TEST_F(Fidelity, KeepsSymbolicLinks)
{
    std::string long4000;
    while (long4000.size() < 4000)
        long4000 += "a-long-target/";
    long4000.resize(4000);
    comesBack(
        "mkdir d; echo x > d/f; ln -s d/f relative; ln -s d folder; ln -s /etc/hostname absolute;"
        " ln -s missing dangling; ln -s ../../.. up; ln -s self self; ln -s " +
            long4000 + " long; ln -s 'a b\\c' odd",
        "rm relative folder; ln -s /tmp folder; ln -sfn elsewhere dangling");
}

TEST_F(Fidelity, KeepsHardLinks)
{
    comesBack("mkdir a b; echo one > a/1; ln a/1 a/2; ln a/1 b/3; echo two > x; ln x y;"
              " head -c 6000000 /dev/urandom > large; ln large b/large",
              "rm a/2 b/3; echo other > b/3; rm x");
}

TEST_F(Fidelity, RestoresOneNameOfAHardLinkWhole)
{
    inSource("echo one > 1; ln 1 2; ln 1 3");
    backUp();
    restore({source + "/2", "--to", "out"});
    EXPECT_EQ(TempFolder::read(restored() + "/2"), "one\n");
    restore({source + "/1", source + "/3", "--to", "two"});
    EXPECT_EQ(shell("stat -c %h " + shellWord(world.folder / "two/C" + source + "/1")), "2\n");
}

// What it takes on the disk, in KiB.
long takes(const std::string& path)
{
    return std::stol(shell("du -k --apparent-size=no " + shellWord(path) +
                           " 2>/dev/null || du -k " + shellWord(path)));
}

TEST_F(Fidelity, KeepsSparseFilesSparse)
{
    comesBack("truncate -s 100M huge; printf x | dd of=huge bs=1 seek=40M conv=notrunc status=none;"
              " truncate -s 1M all; truncate -s 20M tail;"
              " head -c 100000 /dev/urandom | dd of=tail conv=notrunc status=none;"
              " head -c 100000 /dev/urandom > middle; truncate -s 5M middle;"
              " head -c 70000 /dev/urandom >> middle; truncate -s 1000 small",
              "rm huge; echo x > all");
    for (const char* name : {"huge", "all", "tail", "middle", "small"}) {
        const long before = takes(source + "/" + name);
        const long after = takes(restored() + "/" + name);
        EXPECT_LE(after, before + 64) << name;
    }
    EXPECT_LT(takes(world.destination), 1024) << "the archive stays small, too";
}

TEST_F(Fidelity, TakesAHugeHoleInAMoment)
{
    inSource("truncate -s 3G huge; printf x | dd of=huge bs=1 seek=2G conv=notrunc status=none");
    backUp();
    EXPECT_LT(takes(world.destination), 256);
    restore({"--all", "--to", "out"});
    const std::string back = restored() + "/huge";
    EXPECT_EQ(shell("stat -c %s " + shellWord(back)), "3221225472\n");
    EXPECT_EQ(shell("dd if=" + shellWord(back) + " bs=1 skip=2G count=2 status=none | xxd -p"),
              "7800\n");
    EXPECT_LT(takes(back), 256);
}

TEST_F(Fidelity, KeepsExtendedAttributes)
{
    std::string many;
    for (int i = 0; i < 40; ++i)
        many +=
            " setfattr -n user.n" + std::to_string(i) + " -v " + std::string(30, 'v') + " many;";
    comesBack("echo x > f; setfattr -n user.text -v hello f;"
              " setfattr -n user.binary -v 0x00ff0a0d00 f; setfattr -n user.empty f; touch many;" +
                  many +
                  " mkdir d; setfattr -n user.of.folder -v folder d; echo y > d/f;"
                  " touch large; setfattr -n user.large -v $(printf '%03500d' 7) large",
              "setfattr -x user.text f; setfattr -n user.binary -v 0x01 f; rm -r d many");
}

TEST_F(Fidelity, KeepsAccessLists)
{
    comesBack(
        "echo x > f; setfacl -m u:1234:r,g:2345:rw f; echo y > plain;"
        " mkdir d; setfacl -m u:1234:rx d; setfacl -d -m u:1234:rwx,g:99:r d; echo z > d/inherits;"
        " setfacl -b d/inherits; mkdir d/sub; echo w > d/sub/f",
        "setfacl -b f; setfacl -m u:77:rwx plain; rm -r d/sub; rm d/inherits");
}

TEST_F(Fidelity, DropsAccessListsThatTheTargetsFolderHandsOn)
{
    inSource("echo x > f; chmod 640 f");
    const std::string facts = factsOf(source);
    backUp();
    inSource("setfacl -d -m u:1234:rwx .; rm f");
    restore({"--all"});
    EXPECT_EQ(difference(facts, factsOf(source)), "");
}

TEST_F(Fidelity, KeepsWhatOnlyRootMaySet)
{
    if (!isRoot())
        GTEST_SKIP() << "takes the rights of root";
    comesBack(
        "echo x > f; chown 1234:2345 f; chmod 4711 f; mkdir d; echo y > d/f; chown -R 55:66 d;"
        " ln -s t l; chown -h 77:88 l; setfattr -h -n trusted.of.link -v v l;"
        " setfattr -n trusted.mine -v 0x0102 f;"
        " cp /bin/true program; setcap cap_net_raw+ep program",
        "chown 0:0 f; chown -h 0:0 l; rm program; chmod 600 f");
}

TEST_F(Fidelity, KeepsReadOnlyFolders)
{
    inSource("mkdir -p ro/deeper; echo x > ro/f; echo y > ro/deeper/f; chmod 555 ro/deeper ro");
    const std::string facts = factsOf(source);
    backUp();
    restore({"--all", "--to", "out"});
    EXPECT_EQ(difference(facts, factsOf(restored())), "");
    inSource("chmod 755 ro; rm ro/f; chmod 555 ro");
    if (!isRoot())
        return; // a folder that forbids changes forbids a restore's, too
    restore({"--all"});
    EXPECT_EQ(difference(facts, factsOf(source)), "") << "over the original";
}

TEST_F(Fidelity, ServesAUserWithoutRights)
{
    if (!isRoot())
        GTEST_SKIP() << "takes root to become somebody else";
    shell("chmod 755 " + shellWord(world.folder.path()) + " && chown -R 1234:1234 " +
          shellWord(world.folder.path()));
    const std::string as = "setpriv --reuid=1234 --regid=1234 --clear-groups -- ";
    const auto run = [&](const std::string& arguments) {
        int code = 0;
        shell("cd " + shellWord(world.folder.path()) + " && " + as + shellWord(VARDELINCTL) +
                  " --app " + shellWord(world.app) + " " + arguments + " > log 2>&1",
              &code);
        return code;
    };
    shell("cd " + shellWord(source) + " && " + as +
          "sh -c 'mkdir -p ro/deep; echo x > ro/f; echo y > ro/deep/g; echo z > unreadable;"
          " chmod 000 unreadable; chmod 555 ro/deep ro; mkdir closed; echo c > closed/in;"
          " chmod 000 closed'");
    shell("cd " + shellWord(source) + " && echo root > theirs && chmod 4755 theirs");
    EXPECT_EQ(run("backup Home"), 1) << world.read("log");
    const std::string log = world.read("log");
    EXPECT_NE(log.find("unreadable: it may not be read (Permission denied)"), std::string::npos)
        << log;
    EXPECT_NE(log.find("closed\\: the folder may not be read (Permission denied)"),
              std::string::npos)
        << log;
    EXPECT_EQ(run("restore Home --all --to out"), 0) << world.read("log");
    EXPECT_EQ(shell("diff -r " + shellWord(source + "/ro") + " " + shellWord(restored() + "/ro")),
              "");
    EXPECT_EQ(shell("stat -c %a " + shellWord(restored() + "/ro/deep")), "555\n");
    EXPECT_EQ(shell("stat -c %a:%u " + shellWord(restored() + "/theirs")), "755:1234\n")
        << "a program of root's must not run with the rights of whoever restored it";
    shell("chmod -R u+rwX " + shellWord(world.folder.path()));
}

TEST_F(Fidelity, PassesOverPipesSocketsAndDevices)
{
    inSource("mkfifo pipe; echo x > f");
    const Ran ran = world.run({"--json", "backup", "Home"});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_NE(ran.out.find("\"skippedSpecial\":1"), std::string::npos) << ran.out;
}

TEST_F(Fidelity, SavesAFileWhoseTimeWentBack)
{
    inSource("echo new > f; touch -d 2020-01-02 f");
    backUp();
    inSource("echo old > f; touch -d 2019-01-02 f");
    backUp();
    restore({"--all", "--to", "out"});
    EXPECT_EQ(TempFolder::read(restored() + "/f"), "old\n");
}

} // namespace
} // namespace vardelin::test
