#include "ctl/ctl_rig.h"

#include <gtest/gtest.h>

namespace vardelin::test {
namespace {

struct LaidOut : CtlRig {
    LaidOut() { EXPECT_EQ(run({"init", "/app"}), 0); }
};

TEST(ProfileCommands, SaveASmallProfileToTheByte)
{
    LaidOut rig;
    ASSERT_EQ(rig.run({"profile", "new", "Home", "--source", "letters", "letters/a.txt", "--dest",
                       "D:\\backups"}),
              0)
        << rig.err.str();
    EXPECT_EQ(rig.plainProfile("Home.vdp"),
              "[Home.vdp]\r\n"
              "{Source files}\r\nC:\\work\\letters\\\r\nC:\\work\\letters\\a.txt\r\n"
              "{End Of Source files}\r\n"
              "{Excluded options}\r\n{End Of Excluded options}\r\n"
              "{Included options}\r\n{End Of Included options}\r\n"
              "{Other Data}\r\n{End Of Other Data}\r\n"
              "{Include by names}\r\n{End Of Include by names}\r\n"
              "{Exclude by names}\r\n{End Of Exclude by names}\r\n"
              "{Destination path}\r\nD:\\backups\r\n{End Of Destination path}\r\n"
              "{Password}\r\nFalse\r\n{End Of Password}\r\n"
              "{Free Space Warn}\r\nFalse\r\n{End Of Free Space Warn}\r\n"
              "{System Idle}\r\nFalse\r\n{End Of System Idle}\r\n"
              "{Confirm Backup}\r\nFalse\r\n{End Of Confirm Backup}\r\n"
              "{Threshold Queue}\r\nFalse\r\n{End Of Threshold Queue}\r\n"
              "Backup versions =7\r\nCompress = True\r\nEncrypt=False\r\n[End of Home.vdp]\r\n");
}

TEST(ProfileCommands, SaveEveryOptionToTheByte)
{
    LaidOut rig;
    rig.putFile("C:\\work\\password", "open sesame\nsecond line");
    rig.in.str("Rex\n");
    ASSERT_EQ(rig.run({"profile",
                       "new",
                       "Home.vdp",
                       "--source",
                       "/work/letters/",
                       "--dest",
                       "/mnt/d/backups/new",
                       "--include-ext",
                       "doc",
                       "--include-ext",
                       ".odt",
                       "--exclude-ext",
                       ".tmp",
                       "--include-names",
                       "A*.*,B*",
                       "--exclude-names",
                       "core",
                       "--other",
                       "ie favorites",
                       "--retention",
                       "6:12",
                       "--no-compress",
                       "--password-file",
                       "password",
                       "--hint-question",
                       "Favorite Pet's Name?",
                       "--hint-answer-file",
                       "-",
                       "--schedule",
                       "yearly",
                       "--every",
                       "2",
                       "--at",
                       "6:30 PM",
                       "--start",
                       "24/12/2026",
                       "--on",
                       "jan,July,1,15",
                       "--idle",
                       "15",
                       "--queue",
                       "100",
                       "--warn",
                       "10%",
                       "--confirm-size",
                       "500 mb",
                       "--primary"}),
              0)
        << rig.err.str();
    EXPECT_EQ(
        rig.plainProfile("Home.vdp"),
        "[Home.vdp]\r\n"
        "{Source files}\r\nC:\\work\\letters\\\r\n{End Of Source files}\r\n"
        "{Excluded options}\r\n.tmp\r\n{End Of Excluded options}\r\n"
        "{Included options}\r\n.doc\r\n.odt\r\n{End Of Included options}\r\n"
        "{Other Data}\r\nIE Favorites\r\n{End Of Other Data}\r\n"
        "{Include by names}\r\nA*.*,B*\r\n{End Of Include by names}\r\n"
        "{Exclude by names}\r\ncore\r\n{End Of Exclude by names}\r\n"
        "{Destination path}\r\nD:\\backups\\new\r\n{End Of Destination path}\r\n"
        "{Password}\r\nTrue\r\nopen sesame\r\nFavorite Pet's Name?\r\nRex\r\n"
        "{End Of Password}\r\n"
        "{Free Space Warn}\r\nTrue\r\nPercentage = 10%\r\n{End Of Free Space Warn}\r\n"
        "{System Idle}\r\nTrue\r\nTime=15\r\n{End Of System Idle}\r\n"
        "{Confirm Backup}\r\nTrue\r\nSize=500 MB\r\n{End Of Confirm Backup}\r\n"
        "{Threshold Queue}\r\nTrue\r\nCount=100\r\n{End Of Threshold Queue}\r\n"
        "{Scheduling}\r\nStart Date = 24/12/2026\r\nStart Time = 12:00:00 AM\r\n"
        "RecurrencePattern =4\r\nRecur=2\r\nTimeAt=6:30:00 PM\r\nMonths=January,July\r\n"
        "Dates=1,15\r\n{End Of Scheduling}\r\n"
        "Backup versions =6?12\r\nCompress = False\r\nEncrypt=False\r\n[End of Home.vdp]\r\n");
    EXPECT_TRUE(rig.world.fileSystem.folderExists("D:\\backups\\new"));
    EXPECT_NE(rig.out.str().find("Made the folder /mnt/d/backups/new\n"), std::string::npos);
    EXPECT_EQ(rig.world.fileSystem.readAll("C:\\app\\Data\\Other_Dsk.txt"),
              "[Primary Profile]\r\nHome.vdp\r\n[Recent Profile]\r\nHome.vdp\r\n");
}

TEST(ProfileCommands, ChangeOnlyWhatIsMentioned)
{
    LaidOut rig;
    ASSERT_EQ(rig.run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups",
                       "--schedule", "weekly", "--at", "18:30", "--start", "24/12/2026", "--on",
                       "Mon,Thu", "--idle", "15", "--retention", "8:30"}),
              0)
        << rig.err.str();
    const std::string before = rig.plainProfile("Home.vdp");
    ASSERT_EQ(rig.run({"profile", "set", "home", "--exclude-ext", ".tmp"}), 0) << rig.err.str();
    std::string expected = before;
    expected.insert(expected.find("{End Of Excluded options}"), ".tmp\r\n");
    EXPECT_EQ(rig.plainProfile("Home.vdp"), expected);
}

// The monitors read these keys; an idle time that was given up must not start backups any more.
TEST(ProfileCommands, KeepTheMonitorsRecordsInStep)
{
    constexpr auto kRoot = platform::RegistryRoot::LocalMachine;
    const std::string keys = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\";
    LaidOut rig;
    ASSERT_EQ(rig.run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups",
                       "--schedule", "daily", "--at", "18:30", "--idle", "15"}),
              0);
    EXPECT_EQ(rig.world.registry.stringValue(kRoot, keys + "Vdschld\\Home", "SetTime"),
              "6:30:00 PM");
    EXPECT_EQ(rig.world.registry.stringValue(kRoot, keys + "VdIdle\\15", "Home"), "");
    ASSERT_EQ(rig.run({"profile", "set", "Home", "--no-schedule", "--idle", "20"}), 0);
    EXPECT_FALSE(rig.world.registry.keyExists(kRoot, keys + "Vdschld\\Home"));
    EXPECT_EQ(rig.world.registry.stringValue(kRoot, keys + "VdIdle\\15", "Home"), std::nullopt);
    EXPECT_EQ(rig.world.registry.stringValue(kRoot, keys + "VdIdle\\20", "Home"), "");
    ASSERT_EQ(rig.run({"profile", "delete", "Home"}), 0);
    EXPECT_EQ(rig.world.registry.stringValue(kRoot, keys + "VdIdle\\20", "Home"), std::nullopt);
    EXPECT_FALSE(rig.world.fileSystem.fileExists("C:\\app\\Profiles\\Home.vdp"));
}

TEST(ProfileCommands, RefuseWhatMakesNoSenseAndSaveNothing)
{
    using Arguments = std::vector<std::string>;
    for (const Arguments& extra : std::vector<Arguments>{
             {"--dest", "D:\\backups"},
             {"--dest", "D:\\backups", "--include-names", "A*"}, // names select nothing
             {"--source", "letters"},
             {"--source", "letters", "--dest", "D:\\backups", "--retention", "9"},
             {"--source", "letters", "--dest", "D:\\backups", "--retention", "6"},
             {"--source", "letters", "--dest", "D:\\backups", "--retention", "7:3"},
             {"--source", "letters", "--dest", "D:\\backups", "--schedule", "hourly"},
             {"--source", "letters", "--dest", "D:\\backups", "--schedule", "daily"},
             {"--source", "letters", "--dest", "D:\\backups", "--schedule", "weekly", "--at",
              "18:30"},
             {"--source", "letters", "--dest", "D:\\backups", "--at", "18:30"},
             {"--source", "letters", "--dest", "D:\\backups", "--idle", "0"},
             {"--source", "letters", "--dest", "D:\\backups", "--warn", "101"},
             {"--source", "letters", "--dest", "D:\\backups", "--confirm-size", "5"},
             {"--source", "letters", "--dest", "D:\\backups", "--other", "Sound"},
             {"--source", "letters", "--dest", "D:\\backups", "--include-ext", "."},
             {"--source", "letters", "--dest", "D:\\backups", "--hint-question", "x"},
             {"--source", "letters", "--dest", "D:\\backups", "--unknown"},
         }) {
        LaidOut rig;
        Arguments arguments{"profile", "new", "Home"};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        EXPECT_EQ(rig.run(arguments), 2) << extra.back();
        EXPECT_NE(rig.err.str(), "") << extra.back();
        EXPECT_FALSE(rig.world.fileSystem.fileExists("C:\\app\\Profiles\\Home.vdp"))
            << extra.back();
    }
}

TEST(ProfileCommands, ShowNoPasswordUnlessThePlainTextIsAskedFor)
{
    LaidOut rig;
    rig.putFile("C:\\work\\password", "open sesame\r\n");
    rig.in.str("Rex");
    ASSERT_EQ(rig.run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups",
                       "--password-file", "password", "--hint-question", "Pet?",
                       "--hint-answer-file", "-"}),
              0);
    ASSERT_EQ(rig.run({"profile", "show", "Home"}), 0);
    EXPECT_EQ(rig.out.str().find("open sesame"), std::string::npos);
    EXPECT_EQ(rig.out.str().find("Rex"), std::string::npos);
    ASSERT_EQ(rig.run({"--json", "profile", "show", "Home"}), 0);
    EXPECT_EQ(rig.out.str().find("open sesame"), std::string::npos);
    ASSERT_EQ(rig.run({"profile", "show", "--plain", "Home"}), 0);
    EXPECT_EQ(rig.out.str(), rig.plainProfile("Home.vdp"));
    EXPECT_NE(rig.out.str().find("open sesame"), std::string::npos);
}

// A profile must not stay behind in plain text, whatever fails in between.
TEST(ProfileCommands, ScrambleTheProfileEvenWhenItsScheduleCannotBeRegistered)
{
    LaidOut rig;
    rig.world.fileSystem.createFolder("C:\\app\\Home_Sched.reg"); // in the way of the file
    EXPECT_EQ(rig.run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups",
                       "--schedule", "daily", "--at", "18:30"}),
              3);
    const std::string file = rig.world.fileSystem.readAll("C:\\app\\Profiles\\Home.vdp");
    EXPECT_EQ(file.find("{Source files}"), std::string::npos);
    EXPECT_EQ(rig.plainProfile("Home.vdp").find("[Home.vdp]\r\n{Source files}"), 0U);
    EXPECT_NE(rig.err.str().find("When importing the Schedule options to the system local "
                                 "registry, Error has identified"),
              std::string::npos);
}

// A window that died in the midst of a save leaves the profile in plain text: nobody but the next
// program that needs it can know.
TEST(ProfileCommands, FinishASaveThatWasCutOff)
{
    LaidOut rig;
    const std::string path = "C:\\app\\Profiles\\Home.vdp";
    const std::vector<std::vector<std::string>> commands{
        {"profile", "list"}, {"profile", "show", "Home"}, {"backup", "Home"}};
    ASSERT_EQ(rig.run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups"}),
              0);
    const std::string scrambled = rig.world.fileSystem.readAll(path);
    for (const auto& command : commands) {
        rig.putFile(path, profile::unscrambleText(scrambled));
        rig.putFile("C:\\app\\Profiles\\~Home.vdp.old", scrambled);
        EXPECT_EQ(rig.run(command), 0) << command[0];
        EXPECT_EQ(rig.err.str(),
                  "vardelinctl: warning: the saving of Home.vdp was cut off and is finished now\n");
        EXPECT_EQ(rig.world.fileSystem.readAll(path), scrambled);
        EXPECT_EQ(rig.world.fileSystem.list("C:\\app\\Profiles").size(), 1U);
    }
}

// Without its scrambling the old profile is worth more than the new one.
TEST(ProfileCommands, KeepTheOldProfileWhereTheNewOneCannotBeScrambled)
{
    LaidOut rig;
    ASSERT_EQ(rig.run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups"}),
              0);
    const std::string before = rig.world.fileSystem.readAll("C:\\app\\Profiles\\Home.vdp");
    rig.world.fileSystem.script().failCallsNamed("folder.open", base::error_number::kDiskFull,
                                                 "UHome.vdp");
    EXPECT_EQ(rig.run({"profile", "set", "Home", "--include-ext", ".doc"}), 3);
    rig.world.fileSystem.script().reset();
    EXPECT_EQ(rig.world.fileSystem.readAll("C:\\app\\Profiles\\Home.vdp"), before);
    EXPECT_EQ(rig.world.fileSystem.list("C:\\app\\Profiles").size(), 1U);
}

TEST(ProfileCommands, WarnOfALineThatScramblingCannotKeep)
{
    LaidOut rig;
    // A line of 169 bytes is shifted by 9: its lead byte 0xF8 would come to 257.
    const std::string name = std::string(159, 'x') + "\xF8" + "y";
    rig.putFile("C:\\work\\" + name, "x");
    const int code =
        rig.run({"profile", "new", "Home", "--source", "/work/" + name, "--dest", "D:\\backups"});
    const std::size_t length = std::string("C:\\work\\").size() + name.size();
    ASSERT_GT(0xF8 + profile::lineShift(length), 255U);
    EXPECT_EQ(code, 1);
    EXPECT_NE(rig.err.str().find("line 3 of the profile cannot be kept as it is"),
              std::string::npos);
    EXPECT_NE(rig.err.str().find("\\xF8y"), std::string::npos);
}

TEST(ProfileCommands, WarnOfEncryptionWithoutAPassword)
{
    LaidOut rig;
    EXPECT_EQ(rig.run({"profile", "new", "Home", "--source", "letters", "--dest", "D:\\backups",
                       "--encrypt"}),
              0);
    EXPECT_NE(rig.err.str().find("guards against casual reading only"), std::string::npos);
    EXPECT_NE(rig.plainProfile("Home.vdp").find("Encrypt=True\r\n"), std::string::npos);
    EXPECT_EQ(rig.run({"profile", "show", "Home"}), 0);
    EXPECT_NE(rig.out.str().find("guards against casual reading only"), std::string::npos);
    rig.putFile("C:\\work\\pw", "secret12\n");
    rig.putFile("C:\\work\\answer", "blue\n");
    EXPECT_EQ(rig.run({"profile", "set", "Home", "--password-file", "pw", "--hint-question", "Sky?",
                       "--hint-answer-file", "answer"}),
              0);
    EXPECT_EQ(rig.err.str().find("casual"), std::string::npos);
    EXPECT_EQ(rig.run({"profile", "show", "Home"}), 0);
    EXPECT_EQ(rig.out.str().find("casual"), std::string::npos);
}

TEST(ProfileCommands, NameTheFailureOfAMissingListFile)
{
    LaidOut rig;
    rig.world.fileSystem.removeFile("C:\\app\\Data\\Other_Dsk.txt");
    EXPECT_EQ(rig.run({"profile", "list"}), 3);
    EXPECT_NE(rig.err.str().find("Error in Checking the existence of the Recent Profile"),
              std::string::npos);
}

TEST(ProfileCommands, ListProfilesWithTheirMarks)
{
    LaidOut rig;
    for (const char* name : {"B", "A"})
        ASSERT_EQ(rig.run({"profile", "new", name, "--source", "letters", "--dest", "D:\\backups",
                           "--primary"}),
                  0);
    ASSERT_EQ(rig.run({"profile", "list"}), 0);
    EXPECT_EQ(rig.out.str(), "A.vdp  (primary)  (recent)\nB.vdp\n");
}

TEST(ProfileCommands, ScrambleAndUnscrambleToTheStandardOutput)
{
    LaidOut rig;
    rig.putFile("C:\\work\\plain", "ab\r\n");
    ASSERT_EQ(rig.run({"profile", "scramble", "plain"}), 0);
    EXPECT_EQ(rig.out.str(), "dc\r\n");
    rig.putFile("C:\\work\\scrambled", "dc\r\n");
    ASSERT_EQ(rig.run({"profile", "unscramble", "scrambled"}), 0);
    EXPECT_EQ(rig.out.str(), "ab\r\n");
}

} // namespace
} // namespace vardelin::test
