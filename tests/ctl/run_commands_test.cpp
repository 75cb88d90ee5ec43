#include "ctl/ctl_rig.h"

#include <gtest/gtest.h>

namespace vardelin::test {
namespace {

struct WithProfile : CtlRig {
    WithProfile()
    {
        EXPECT_EQ(run({"init", "/app"}), 0);
        EXPECT_EQ(run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups"}),
                  0)
            << err.str();
    }
};

TEST(RunCommands, SaveListAndRestore)
{
    WithProfile rig;
    EXPECT_EQ(rig.run({"backup", "Home", "--dry-run"}), 0);
    EXPECT_EQ(rig.run({"backup", "Home"}), 0) << rig.err.str();
    EXPECT_EQ(rig.run({"backup", "Home"}), 4) << rig.out.str();
    rig.putFile("C:\\work\\letters\\a.txt", "changed");
    EXPECT_EQ(rig.run({"backup", "Home"}), 0);

    EXPECT_EQ(rig.run({"list", "Home"}), 0);
    EXPECT_EQ(rig.out.str(), "Files And Folders\\C:\\work\\letters\\a.txt_000\n"
                             "Files And Folders\\C:\\work\\letters\\a.txt_001\n");
    EXPECT_EQ(rig.run({"list", "Home", "*.doc"}), 4);
    EXPECT_EQ(rig.out.str(), "");

    struct Case {
        std::vector<std::string> entries;
        const char* content;
    };
    for (const Case& c : {Case{{"C:\\work\\letters\\a.txt_000"}, "hello"},
                          Case{{"Files And Folders\\C:\\work\\letters\\a.txt_000"}, "hello"},
                          Case{{"C:\\work\\letters\\a.txt_001"}, "changed"},
                          Case{{"letters/a.txt"}, "changed"}, Case{{"letters"}, "changed"},
                          Case{{"C:\\work\\"}, "changed"}, Case{{"--all"}, "changed"}}) {
        std::vector<std::string> arguments{"restore", "Home", "--to", "out"};
        arguments.insert(arguments.end(), c.entries.begin(), c.entries.end());
        EXPECT_EQ(rig.run(arguments), 0) << c.entries.front() << rig.err.str() << rig.out.str();
        EXPECT_EQ(rig.world.fileSystem.readAll("C:\\work\\out\\C\\work\\letters\\a.txt"), c.content)
            << c.entries.front();
    }
    EXPECT_EQ(rig.run({"verify", "Home"}), 0) << rig.out.str();
    EXPECT_EQ(rig.run({"restore", "Home", "letters/none.txt"}), 1);
    EXPECT_EQ(rig.run({"restore", "Home"}), 2);
    EXPECT_EQ(rig.run({"restore", "Home", "--all", "letters"}), 2);
    EXPECT_EQ(rig.run({"restore", "Home", "--all", "--date", "31/2/2026"}), 2);
    EXPECT_EQ(rig.run({"logs", "backup"}), 0);
    EXPECT_EQ(rig.run({"logs", "queue"}), 4);
    EXPECT_NE(rig.out.str().find("The Queue file is not existing in the default path"),
              std::string::npos);
}

TEST(RunCommands, PruneTellsFirstAndRemovesThen)
{
    WithProfile rig;
    EXPECT_EQ(rig.run({"profile", "set", "Home", "--retention", "6:99"}), 0) << rig.err.str();
    for (const char* content : {"one", "two", "three", "four"}) {
        rig.putFile("C:\\work\\letters\\a.txt", content);
        EXPECT_EQ(rig.run({"backup", "Home"}), 0) << rig.err.str();
    }
    EXPECT_EQ(rig.run({"prune", "Home", "--dry-run"}), 4);
    EXPECT_EQ(rig.run({"profile", "set", "Home", "--retention", "6:1"}), 0);
    EXPECT_EQ(rig.run({"prune", "Home", "--dry-run"}), 0);
    EXPECT_NE(rig.out.str().find("a.txt_001"), std::string::npos) << rig.out.str();
    EXPECT_NE(rig.out.str().find("not one of the newest 1"), std::string::npos);
    EXPECT_EQ(rig.out.str().find("a.txt_003"), std::string::npos) << "the newest stays";
    EXPECT_EQ(rig.run({"--json", "prune", "Home", "--dry-run"}), 0);
    EXPECT_NE(rig.out.str().find(R"("type":"pruneDecision")"), std::string::npos);
    EXPECT_EQ(rig.run({"--json", "prune", "Home"}), 0);
    EXPECT_NE(rig.out.str().find(R"("outcome":"complete","code":0,"removed":2)"), std::string::npos)
        << rig.out.str();
    EXPECT_EQ(rig.run({"list", "Home"}), 0);
    EXPECT_EQ(rig.out.str(), "Files And Folders\\C:\\work\\letters\\a.txt_000\n"
                             "Files And Folders\\C:\\work\\letters\\a.txt_003\n");
    EXPECT_EQ(rig.run({"prune", "Home"}), 4);
}

TEST(RunCommands, EndWithTheCodeOfACancelledRun)
{
    WithProfile rig;
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    ctl::Terminal terminal{in, out, err};
    terminal.interrupted = [] { return true; };
    const auto parsed = ctl::parseCommandLine({"backup", "Home"});
    EXPECT_EQ(ctl::runCommand(std::get<ctl::CommandLine>(parsed), rig.world.machine(), terminal,
                              "C:\\app"),
              130);
}

TEST(RunCommands, TellOneOutcomeByCodeAndObject)
{
    WithProfile rig;
    const auto tell = [&](std::vector<std::string> arguments, int code, const char* outcome) {
        arguments.insert(arguments.begin(), "--json");
        EXPECT_EQ(rig.run(arguments), code) << arguments[1];
        const std::string member =
            std::string("\"outcome\":\"") + outcome + "\",\"code\":" + std::to_string(code);
        EXPECT_NE(rig.out.str().find(member), std::string::npos) << rig.out.str();
    };
    tell({"backup", "Home"}, 0, "complete");
    tell({"backup", "Home"}, 4, "nothing");
    tell({"restore", "Home", "--all", "--to", "out"}, 0, "complete");
    tell({"restore", "Home", "C:\\work\\none_000", "--to", "out"}, 1, "gaps");
    tell({"verify", "Home"}, 0, "complete");
    const auto lock = rig.world.fileSystem.lockFolder("D:\\backups\\Home");
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"backup", "Home"},
                                                      {"restore", "Home", "--all", "--to", "out"},
                                                      {"verify", "Home"}}) {
        tell(arguments, 3, "failed");
        EXPECT_NE(rig.out.str().find("\"failure\":{\"number\":70,\"subject\":\"D:\\\\backups"),
                  std::string::npos)
            << rig.out.str();
        EXPECT_NE(rig.err.str().find("Permission denied"), std::string::npos);
    }
}

TEST(RunCommands, LeaveOutWhatLaterVersionsBring)
{
    WithProfile rig;
    for (const char* command : {"delete", "package", "pcbackup"})
        EXPECT_EQ(rig.run({command, "Home"}), 2) << command;
}

TEST(RunCommands, SayWhatIsMissing)
{
    CtlRig bare;
    EXPECT_EQ(bare.run({"backup", "Home"}), 3);
    EXPECT_NE(bare.err.str().find("no application folder"), std::string::npos);
    WithProfile rig;
    EXPECT_EQ(rig.run({"backup", "Other"}), 3);
    EXPECT_NE(rig.err.str().find("/app/Profiles/Other.vdp"), std::string::npos);
    EXPECT_EQ(rig.run({"list", "Home"}), 3);
    EXPECT_EQ(rig.run({"backup", "../Home"}), 2);
}

TEST(RunCommands, ThePasswordOfEarlierCopiesComesFromAFile)
{
    WithProfile rig;
    rig.putFile("C:\\work\\old", "old password\n");
    rig.putFile("C:\\work\\new", "new password\r\n");
    rig.putFile("C:\\work\\answer", "blue\n");
    const auto makeProfile = [&](const std::string& passwordFile) {
        rig.run({"profile", "delete", "Home"});
        return rig.run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups",
                        "--encrypt", "--password-file", passwordFile, "--hint-question", "Sky?",
                        "--hint-answer-file", "answer"});
    };
    ASSERT_EQ(makeProfile("old"), 0) << rig.err.str();
    ASSERT_EQ(rig.run({"backup", "Home"}), 0) << rig.err.str();
    ASSERT_EQ(makeProfile("new"), 0) << rig.err.str();
    ASSERT_EQ(rig.run({"backup", "Home"}), 0) << rig.err.str();

    const std::string entry = "C:\\work\\letters\\a.txt_000";
    EXPECT_EQ(rig.run({"restore", "Home", entry, "--to", "D:\\out"}), 1);
    EXPECT_NE(rig.out.str().find("another password"), std::string::npos) << rig.out.str();
    EXPECT_FALSE(rig.world.fileSystem.find("D:\\out\\C\\work\\letters\\a.txt"));
    EXPECT_EQ(rig.run({"restore", "Home", entry, "--to", "D:\\out", "--password-file", "old"}), 0)
        << rig.err.str();
    EXPECT_EQ(rig.world.fileSystem.readAll("D:\\out\\C\\work\\letters\\a.txt"), "hello");

    EXPECT_EQ(rig.run({"verify", "Home"}), 1);
    EXPECT_NE(rig.out.str().find("a.txt_FULL"), std::string::npos);
    EXPECT_EQ(rig.out.str().find("damaged  "), std::string::npos);
    rig.in.str("old password\n");
    EXPECT_EQ(rig.run({"verify", "Home", "--password-file", "-"}), 1);
    EXPECT_NE(rig.out.str().find("a.txt_Ver1"), std::string::npos);
}

TEST(RunCommands, ExportAndImportTheRegistry)
{
    WithProfile rig;
    rig.world.registry.setString(platform::RegistryRoot::LocalMachine, "SOFTWARE\\Mine", "a", "b");
    ASSERT_EQ(rig.run({"registry", "export"}), 0);
    const std::string text = rig.out.str();
    EXPECT_EQ(text.find("REGEDIT4"), 0U);
    EXPECT_EQ(text.find("REGEDIT4", 1), std::string::npos);
    CtlRig other;
    ASSERT_EQ(other.run({"init", "/app"}), 0);
    other.in.str(text);
    ASSERT_EQ(other.run({"registry", "import"}), 0) << other.err.str();
    ASSERT_EQ(other.run({"registry", "export"}), 0);
    EXPECT_EQ(other.out.str(), text);
}

} // namespace
} // namespace vardelin::test
