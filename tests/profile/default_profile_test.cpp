#include "profile/default_profile.h"

#include "profile/scramble_text.h"
#include "store_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::profile {
namespace {

using platform::RegistryRoot;
using test::StoreRig;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::string_view kFile = "C:\\App\\Profiles\\Default.vdp";
constexpr std::string_view kSystemKey = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr std::string_view kMailKey =
    "SOFTWARE\\Classes\\CLSID\\{00020D09-0000-0000-C000-000000000046}\\LocalServer32";

// The clock stands at 9:05:03 on 3 July 2003, the person is anna.
constexpr std::string_view kGolden = "[Default.vdp]\r\n"
                                     "{Source files}\r\n"
                                     "C:\\Documents and Settings\\anna\\My Documents\\\r\n"
                                     "{End Of Source files}\r\n"
                                     "{Excluded options}\r\n"
                                     "{End Of Excluded options}\r\n"
                                     "{Included options}\r\n"
                                     "{End Of Included options}\r\n"
                                     "{Other Data}\r\n"
                                     "Desktop Settings\r\n"
                                     "IE Favorites\r\n"
                                     "{End Of Other Data}\r\n"
                                     "{Destination path}\r\n"
                                     "C:\\App\\BackupPackages\r\n"
                                     "{End Of Destination path}\r\n"
                                     "{Password}\r\n"
                                     "False\r\n"
                                     "{End Of Password}\r\n"
                                     "{Free Space Warn}\r\n"
                                     "False\r\n"
                                     "{End Of Free Space Warn}\r\n"
                                     "{System Idle}\r\n"
                                     "False\r\n"
                                     "{End Of System Idle}\r\n"
                                     "{Confirm Backup}\r\n"
                                     "False\r\n"
                                     "{End Of Confirm Backup}\r\n"
                                     "{Threshold Queue}\r\n"
                                     "True\r\n"
                                     "Count=50\r\n"
                                     "{End Of Threshold Queue}\r\n"
                                     "{Scheduling}\r\n"
                                     "Start Date = 07/03/2003\r\n"
                                     "Start Time = 9:06:03 AM\r\n"
                                     "RecurrencePattern = 1\r\n"
                                     "Recur =1\r\n"
                                     "TimeAt= 9:10:03 AM\r\n"
                                     "{End Of Scheduling}\r\n"
                                     "Backup versions = 6?7\r\n"
                                     "Compress = True\r\n"
                                     "Encrypt = False\r\n"
                                     "[End of Default.vdp]\r\n";

class DefaultProfileTest : public testing::Test {
protected:
    DefaultProfileTest() { rig.frame.BL_Is_NT = true; }

    std::string written()
    {
        DefaultProf(rig.quiet);
        return unscrambleText(rig.contentOf(kFile));
    }
    std::string section(std::string_view words)
    {
        const std::string text = written();
        const std::string opening = "{" + std::string(words) + "}\r\n";
        const std::size_t from = text.find(opening) + opening.size();
        return text.substr(from, text.find("{End Of " + std::string(words)) - from);
    }
    void productName(std::string_view name)
    {
        rig.registry.setString(RegistryRoot::LocalMachine, kSystemKey, "ProductName", name);
    }

    StoreRig rig;
};

TEST_F(DefaultProfileTest, WritesItsText)
{
    EXPECT_EQ(written(), kGolden);
    EXPECT_EQ(rig.contentOf(kFile), scrambleText(kGolden));
    EXPECT_EQ(rig.disk.list("C:\\App\\Profiles").size(), 1U);
    EXPECT_EQ(rig.store.scalars.dStartDate, (base::Date{2003, 7, 3}));
    EXPECT_THAT(rig.schedules.defaults, ElementsAre("Default.vdp"));
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST_F(DefaultProfileTest, SourceLinesFollowTheSystem)
{
    const std::string documents = "C:\\Documents and Settings\\anna\\My Documents\\\r\n";
    struct Row {
        const char* productName;
        bool isNt;
        std::string lines;
    };
    const Row rows[] = {
        {"Microsoft Windows XP", true,
         documents + "C:\\Documents and Settings\\anna\\My Documents\\My Music\\\r\n"},
        {"Microsoft Windows 2000", true, documents},
        {"Microsoft Windows 95", true, "C:\\My Documents\\\r\n"},
        {"Microsoft Windows 98", true, "C:\\My Documents\\\r\n"},
        {"Microsoft Windows ME", true, "C:\\My Documents\\\r\n"},
        {"Microsoft Windows XP", false, "C:\\My Documents\\\r\n"},
        {"", false, "C:\\My Documents\\\r\n"},
        // A name of another form has a meaningless short name, which is like none.
        {"Windows XP", true, documents},
        {"Another Kind of System", true, documents},
        {"", true, documents},
    };
    for (const Row& row : rows) {
        productName(row.productName);
        rig.frame.BL_Is_NT = row.isNt;
        EXPECT_EQ(section("Source files"), row.lines) << row.productName << row.isNt;
    }
}

TEST_F(DefaultProfileTest, MachineThatKeepsDocumentsElsewhereReplacesTheLines)
{
    rig.shell.documentLines = {"C:\\home\\anna\\Dokumente\\", "D:\\Papers\\"};
    rig.frame.BL_Is_NT = false;
    EXPECT_EQ(section("Source files"), "C:\\home\\anna\\Dokumente\\\r\nD:\\Papers\\\r\n");
}

TEST_F(DefaultProfileTest, MailSettingsOnlyWhereTheMailProgramIs)
{
    EXPECT_EQ(section("Other Data"), "Desktop Settings\r\nIE Favorites\r\n");
    rig.registry.setString(RegistryRoot::LocalMachine, kMailKey, "", "C:\\mail.exe");
    EXPECT_EQ(section("Other Data"), "Desktop Settings\r\nIE Favorites\r\nOutlook Settings\r\n");
    rig.registry.setString(RegistryRoot::LocalMachine, kMailKey, "", "");
    EXPECT_EQ(section("Other Data"), "Desktop Settings\r\nIE Favorites\r\n");
}

TEST_F(DefaultProfileTest, TimesStartAgainAtMidnightAndKeepTheDate)
{
    rig.clock.setLocal({{2003, 12, 31}, {23, 57, 9}});
    EXPECT_EQ(section("Scheduling"), "Start Date = 12/31/2003\r\n"
                                     "Start Time = 11:58:09 PM\r\n"
                                     "RecurrencePattern = 1\r\n"
                                     "Recur =1\r\n"
                                     "TimeAt= 12:02:09 AM\r\n");
}

TEST_F(DefaultProfileTest, SecondCallOverwritesTheFileAndItsSchedule)
{
    written();
    rig.clock.setLocal({{2004, 1, 2}, {10, 0, 0}});
    EXPECT_THAT(written(), HasSubstr("Start Date = 01/02/2004\r\n"));
    EXPECT_THAT(rig.schedules.defaults, ElementsAre("Default.vdp", "Default.vdp"));
}

TEST_F(DefaultProfileTest, FileThatCannotBeOpenedSkipsTheRest)
{
    // The error bears another procedure's name and sentence: people know it by them.
    rig.disk.removeTree("C:\\App\\Profiles");
    DefaultProf(rig.quiet);
    EXPECT_EQ(rig.newestDialog(), "modPrSaveOpen|OpenProf|76|"
                                  "Error occured while expanding the tree view node process");
    EXPECT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_THAT(rig.ownEntries(), testing::Contains("DefaultProf Error 2"));
    EXPECT_THAT(rig.ownEntries(), Not(testing::Contains(HasSubstr("PrFileEncrypt"))));
    EXPECT_THAT(rig.schedules.defaults, IsEmpty());
}

TEST_F(DefaultProfileTest, FailedWriteKeepsTheOldProfileAsItIs)
{
    written();
    const std::string old = rig.contentOf(kFile);
    rig.script.failCallsNamed("file.write", 61);
    DefaultProf(rig.quiet);
    EXPECT_EQ(rig.contentOf(kFile), old); // and not scrambled a second time
    EXPECT_EQ(rig.newestDialog(), "modPrSaveOpen|OpenProf|61|"
                                  "Error occured while expanding the tree view node process");
    EXPECT_EQ(rig.schedules.defaults.size(), 1U);
}

TEST_F(DefaultProfileTest, UserNameEndsAtItsFirstNul)
{
    rig.facts.user = std::string("bob\0rest", 8);
    EXPECT_EQ(GetRegUserName(rig.quiet), "bob");
    rig.facts.user = "";
    EXPECT_EQ(GetRegUserName(rig.quiet), "");
}

} // namespace
} // namespace vardelin::profile
