#include "runs/engine/profile_reader.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/memory/memory_file_system.h"
#include "profile/scramble_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string lines(const std::vector<std::string_view>& texts)
{
    std::string result;
    for (const std::string_view text : texts)
        result.append(text).append("\r\n");
    return result;
}

// Everything that a profile can say, as the editor writes it.
std::string wholeProfile()
{
    return lines({"[Work.vdp]",
                  "{Source files}",
                  "C:\\Work\\Letters\\",
                  "C:\\Work\\Notes.txt",
                  "{End Of Source files}",
                  "{Excluded options}",
                  ".tmp",
                  ".bak",
                  "{End Of Excluded options}",
                  "{Included options}",
                  ".doc",
                  "{End Of Included options}",
                  "{Other Data}",
                  "Registry Settings",
                  "IE Favorites",
                  "{End Of Other Data}",
                  "{Include by names}",
                  "Tech*.*, Inf*.*,,",
                  "{End Of Include by names}",
                  "{Exclude by names}",
                  "~$*",
                  "{End Of Exclude by names}",
                  "{Destination path}",
                  "D:\\Backups",
                  "{End Of Destination path}",
                  "{Password}",
                  "True",
                  "secret ",
                  "Your pet?",
                  "Rex",
                  "{End Of Password}",
                  "{Free Space Warn}",
                  "True",
                  "Percentage = 10%",
                  "{End Of Free Space Warn}",
                  "{System Idle}",
                  "True",
                  "Time=15",
                  "{End Of System Idle}",
                  "{Confirm Backup}",
                  "True",
                  "Size=500 MB",
                  "{End Of Confirm Backup}",
                  "{Threshold Queue}",
                  "True",
                  "Count=50",
                  "{End Of Threshold Queue}",
                  "{Scheduling}",
                  "Start Date = 3/7/2003",
                  "Start Time = 09:05:03 AM",
                  "RecurrencePattern =2",
                  "Recur=1",
                  "TimeAt=10:00:00 AM",
                  "Days=xSxSxxx",
                  "{End Of Scheduling}",
                  "Backup versions =6?7",
                  "Compress = True",
                  "Encrypt=False",
                  "[End of Work.vdp]"});
}

// The lines that every sound profile has besides the one section under test.
std::string around(const std::vector<std::string_view>& section)
{
    return "{Source files}\r\nC:\\A\\\r\n{End Of Source files}\r\n" + lines(section) +
           lines({"{Destination path}", "D:\\B", "{End Of Destination path}", "Backup versions =7",
                  "Compress = True", "Encrypt=False"});
}

TEST(ProfileReader, ReadsEverythingThatTheEditorWrites)
{
    const EngineProfile profile = parseProfile(wholeProfile());

    EXPECT_THAT(profile.sources, ElementsAre("C:\\Work\\Letters\\", "C:\\Work\\Notes.txt"));
    EXPECT_THAT(profile.excludedExtensions, ElementsAre(".tmp", ".bak"));
    EXPECT_THAT(profile.includedExtensions, ElementsAre(".doc"));
    EXPECT_THAT(profile.otherData, ElementsAre("Registry Settings", "IE Favorites"));
    EXPECT_THAT(profile.includeNames, ElementsAre("Tech*.*", "Inf*.*"));
    EXPECT_THAT(profile.excludeNames, ElementsAre("~$*"));
    EXPECT_EQ(profile.destination, "D:\\Backups");
    EXPECT_TRUE(profile.hasPassword);
    EXPECT_EQ(profile.password, "secret "); // not trimmed: a blank belongs to it
    EXPECT_EQ(profile.hintQuestion, "Your pet?");
    EXPECT_EQ(profile.hintAnswer, "Rex");
    EXPECT_EQ(profile.warnPercent, "10%");
    EXPECT_EQ(profile.idleMinutes, "15");
    EXPECT_EQ(profile.confirmSize, (ConfirmSize{"500", "MB"}));
    EXPECT_EQ(profile.queueCount, "50");
    ASSERT_TRUE(profile.schedule);
    EXPECT_EQ(*profile.schedule, (ProfileSchedule{"3/7/2003", "09:05:03 AM", 2, "1", "10:00:00 AM",
                                                  "xSxSxxx", "", "", ""}));
    EXPECT_EQ(profile.retentionOption, 6);
    EXPECT_EQ(profile.retentionCount, 7);
    EXPECT_TRUE(profile.compress);
    EXPECT_FALSE(profile.encrypt);
    EXPECT_TRUE(profile.saysEncrypt);
    EXPECT_THAT(profile.problems, IsEmpty());
}

TEST(ProfileReader, TakesTheDefaultProfilesOwnSpacingAndMissingNamesSections)
{
    const EngineProfile profile = parseProfile(lines({"[Default.vdp]",
                                                      "{Source files}",
                                                      "C:\\My Documents\\",
                                                      "{End Of Source files}",
                                                      "{Destination path}",
                                                      "C:\\App\\BackupPackages",
                                                      "{End Of Destination path}",
                                                      "{Password}",
                                                      "False",
                                                      "{End Of Password}",
                                                      "{Scheduling}",
                                                      "Start Date = 07/03/2003",
                                                      "Start Time = 9:06:03 AM",
                                                      "RecurrencePattern = 1",
                                                      "Recur =1",
                                                      "TimeAt= 9:10:03 AM",
                                                      "{End Of Scheduling}",
                                                      "Backup versions = 6?7",
                                                      "Compress = True",
                                                      "Encrypt = False",
                                                      "[End of Default.vdp]"}));

    ASSERT_TRUE(profile.schedule);
    EXPECT_EQ(profile.schedule->pattern, 1);
    EXPECT_EQ(profile.schedule->recur, "1");
    EXPECT_EQ(profile.schedule->timeAt, "9:10:03 AM");
    EXPECT_EQ(profile.retentionOption, 6);
    EXPECT_EQ(profile.retentionCount, 7);
    EXPECT_FALSE(profile.hasPassword);
    EXPECT_TRUE(profile.saysEncrypt);
    EXPECT_THAT(profile.problems, IsEmpty());
}

TEST(ProfileReader, NeedsNeitherTheFirstNorTheLastLine)
{
    EXPECT_THAT(parseProfile(around({})).problems, IsEmpty());
}

TEST(ProfileReader, TakesSectionsAndKeysInAnyCaseAndSpacing)
{
    const EngineProfile profile =
        parseProfile(lines({"{SOURCE FILES}", "C:\\A\\", "{end of SOURCE files}",
                            " {Destination Path} ", "D:", "{End of destination path}",
                            "BACKUP VERSIONS=  8?3", "compress=TRUE", "  Encrypt  =  true  "}));

    EXPECT_THAT(profile.sources, ElementsAre("C:\\A\\"));
    EXPECT_EQ(profile.destination, "D:\\"); // a bare drive is its root
    EXPECT_EQ(profile.retentionOption, 8);
    EXPECT_EQ(profile.retentionCount, 3);
    EXPECT_TRUE(profile.compress);
    EXPECT_TRUE(profile.encrypt);
    EXPECT_THAT(profile.problems, IsEmpty());
}

TEST(ProfileReader, EndsLinesAtCrLfAloneSinceScramblingMayMakeOneOfTheTwo)
{
    const EngineProfile profile = parseProfile(
        lines({"{Source files}", "C:\\A\nB\\", "C:\\C\rD.txt", "{End Of Source files}"}));

    EXPECT_THAT(profile.sources, ElementsAre("C:\\A\nB\\", "C:\\C\rD.txt"));
}

TEST(ProfileReader, TakesAWholeDriveAndANetworkPathAsSources)
{
    const EngineProfile profile = parseProfile(
        lines({"{Source files}", "C:\\", "\\\\host\\share\\dir\\", "E:", "{End Of Source files}"}));

    EXPECT_THAT(profile.sources, ElementsAre("C:\\", "\\\\host\\share\\dir\\", "E:"));
}

TEST(ProfileReader, KeepsABlankAtTheEndOfASourceSinceItBelongsToTheName)
{
    const EngineProfile profile =
        parseProfile(lines({"{Source files}", "C:\\A\\b ", "{End Of Source files}"}));

    EXPECT_THAT(profile.sources, ElementsAre("C:\\A\\b "));
}

struct RetentionCase {
    std::string_view line;
    int option;
    int count;
    bool isOdd;
};

TEST(ProfileReader, ReadsTheRetentionLine)
{
    const RetentionCase cases[] = {
        {"Backup versions =1", 1, 0, false},
        {"Backup versions =7", 7, 0, false},
        {"Backup versions =7?9", 7, 0, false}, // only 6 and 8 have a count
        {"Backup versions =6?12", 6, 12, false},
        {"Backup versions =8? 30 ", 8, 30, false},
        {"Backup versions =0", 0, 0, false}, // saved with no option on
        {"Backup versions =6?", 6, 0, true},
        {"Backup versions =6", 6, 0, true},
        {"Backup versions =8?-4", 8, 0, true},
        {"Backup versions =8?x", 8, 0, true},
        {"Backup versions =6?99999999999999999999", 6, 1'000'000, false},
        {"Backup versions =9", 0, 0, true},
        {"Backup versions =", 0, 0, true},
        {"Backup versions =old", 0, 0, true},
    };
    for (const RetentionCase& one : cases) {
        const EngineProfile profile = parseProfile(lines(
            {"{Source files}", "C:\\A\\", "{End Of Source files}", "{Destination path}", "D:\\B",
             "{End Of Destination path}", one.line, "Compress = True", "Encrypt=False"}));
        EXPECT_EQ(profile.retentionOption, one.option) << one.line;
        EXPECT_EQ(profile.retentionCount, one.count) << one.line;
        EXPECT_EQ(!profile.problems.empty(), one.isOdd) << one.line;
    }
}

struct PasswordCase {
    std::string_view what;
    std::vector<std::string_view> section;
    bool hasPassword;
    std::string_view password;
    std::string_view question;
    std::string_view answer;
    bool isOdd;
};

TEST(ProfileReader, TakesThePasswordLinesByTheirPlace)
{
    const PasswordCase cases[] = {
        {"no password", {"{Password}", "False", "{End Of Password}"}, false, "", "", "", false},
        {"empty section", {"{Password}", "{End Of Password}"}, false, "", "", "", false},
        {"a password that looks like the closing line",
         {"{Password}", "True", "{End Of Password}", "q", "a", "{End Of Password}"},
         true,
         "{End Of Password}",
         "q",
         "a",
         false},
        {"a password that looks like a section and a hint that looks like a key",
         {"{Password}", "True", "{Scheduling}", "Encrypt=True", "True", "{End Of Password}"},
         true,
         "{Scheduling}",
         "Encrypt=True",
         "True",
         false},
        {"empty texts",
         {"{Password}", "True", "", "", "", "{End Of Password}"},
         true,
         "",
         "",
         "",
         false},
        {"no hint", {"{Password}", "True", "pw", "{End Of Password}"}, true, "pw", "", "", true},
        {"nothing behind True",
         {"{Password}", "True", "{End Of Password}"},
         false,
         "",
         "",
         "",
         true},
        {"another case, which the editor does not take either",
         {"{Password}", "TRUE", "pw", "q", "a", "{End Of Password}"},
         false,
         "",
         "",
         "",
         true},
        {"not closed", {"{Password}", "True", "pw", "q", "a"}, true, "pw", "q", "a", true},
    };
    for (const PasswordCase& one : cases) {
        const EngineProfile profile = parseProfile(around(one.section));
        EXPECT_EQ(profile.hasPassword, one.hasPassword) << one.what;
        EXPECT_EQ(profile.password, one.password) << one.what;
        EXPECT_EQ(profile.hintQuestion, one.question) << one.what;
        EXPECT_EQ(profile.hintAnswer, one.answer) << one.what;
        EXPECT_EQ(!profile.problems.empty(), one.isOdd) << one.what;
        EXPECT_EQ(profile.destination, "D:\\B") << one.what;
    }
}

TEST(ProfileReader, NeverQuotesALineInAProblemSinceItMayBeThePassword)
{
    // The section's first line is damaged, so the password stands outside every section.
    const EngineProfile profile =
        parseProfile(around({"{Pass#ord}", "True", "hunter2", "q", "a", "{End Of Password}"}));

    ASSERT_THAT(profile.problems, Not(IsEmpty()));
    for (const std::string& problem : profile.problems)
        EXPECT_THAT(problem, Not(HasSubstr("hunter2")));
    EXPECT_EQ(profile.problems.front(),
              "line 4: stands outside every section and has no meaning there");
}

TEST(ProfileReader, ReadsOneNamesLineWhateverItSays)
{
    const EngineProfile profile =
        parseProfile(around({"{Include by names}", "{Password}", "{End Of Include by names}",
                             "{Exclude by names}", "{End Of Exclude by names}"}));

    EXPECT_THAT(profile.includeNames, ElementsAre("{Password}"));
    EXPECT_THAT(profile.excludeNames, IsEmpty());
    EXPECT_THAT(profile.problems, IsEmpty());
}

TEST(ProfileReader, TellsWhatStandsInASectionWithoutAMeaning)
{
    const EngineProfile profile = parseProfile(
        around({"{Excluded options}", "doc", ".", "", ".txt", "{End Of Excluded options}",
                "{Other Data}", "desktop settings", "My Settings", "{End Of Other Data}"}));

    EXPECT_THAT(profile.excludedExtensions, ElementsAre(".txt"));
    EXPECT_THAT(profile.otherData, ElementsAre("Desktop Settings"));
    EXPECT_THAT(profile.problems,
                ElementsAre("line 5: has no meaning in the section {Excluded options}",
                            "line 6: has no meaning in the section {Excluded options}",
                            "line 7: has no meaning in the section {Excluded options}",
                            "line 12: has no meaning in the section {Other Data}"));
}

TEST(ProfileReader, ClosesASectionWhereTheNextOneOpens)
{
    const EngineProfile profile = parseProfile(
        lines({"{Source files}", "C:\\A\\", "{Excluded options}", ".tmp", "{Destination path}",
               "D:\\B\\", "Backup versions =7", "Compress = False", "Encrypt=True"}));

    EXPECT_THAT(profile.sources, ElementsAre("C:\\A\\"));
    EXPECT_THAT(profile.excludedExtensions, ElementsAre(".tmp"));
    EXPECT_EQ(profile.destination, "D:\\B");
    EXPECT_TRUE(profile.encrypt);
    EXPECT_THAT(profile.problems,
                ElementsAre("line 3: the section {Source files} is not closed before it",
                            "line 5: the section {Excluded options} is not closed before it",
                            "line 7: the section {Destination path} is not closed before it"));
}

TEST(ProfileReader, ClosesASectionAtTheClosingLineOfAnotherOne)
{
    const EngineProfile profile =
        parseProfile(around({"{Excluded options}", ".tmp", "{End Of Included options}", ".bak"}));

    EXPECT_THAT(profile.excludedExtensions, ElementsAre(".tmp"));
    EXPECT_THAT(profile.problems,
                ElementsAre("line 6: the section {Excluded options} is not closed before it",
                            "line 7: stands outside every section and has no meaning there"));
}

// Cutting a profile anywhere may lose what stood behind the cut, and nothing else.
TEST(ProfileReader, SurvivesACutAtEveryByteAndTellsOfIt)
{
    const std::string whole = wholeProfile();
    const std::size_t sourcesEnd = whole.find("{Excluded");
    const std::size_t lastLine = whole.find("[End of");
    for (std::size_t cut = 0; cut + 2 < lastLine; ++cut) {
        const EngineProfile profile = parseProfile(std::string_view(whole).substr(0, cut));
        // `Encrypt=False` itself may be cut, down to where its key cannot be told.
        EXPECT_THAT(profile.problems, Not(IsEmpty())) << cut;
        EXPECT_FALSE(profile.saysEncrypt) << cut;
        if (cut >= sourcesEnd) {
            EXPECT_EQ(profile.sources.size(), 2U) << cut;
        }
    }
    EXPECT_THAT(parseProfile(std::string_view(whole).substr(0, lastLine)).problems, IsEmpty());
}

// What a profile says, one text for each of its parts.
std::vector<std::string> partsOf(const EngineProfile& profile)
{
    const auto joined = [](const std::vector<std::string>& list) { return base::join(list, "|"); };
    const ProfileSchedule schedule = profile.schedule.value_or(ProfileSchedule{});
    const ConfirmSize size = profile.confirmSize.value_or(ConfirmSize{});
    return {joined(profile.sources),
            joined(profile.excludedExtensions),
            joined(profile.includedExtensions),
            joined(profile.otherData),
            joined(profile.includeNames),
            joined(profile.excludeNames),
            profile.destination,
            joined({profile.password, profile.hintQuestion, profile.hintAnswer}),
            profile.warnPercent.value_or(""),
            profile.idleMinutes.value_or(""),
            size.size + size.unit,
            profile.queueCount.value_or(""),
            joined({schedule.startDate, schedule.startTime, std::to_string(schedule.pattern),
                    schedule.recur, schedule.timeAt, schedule.days}),
            std::to_string(profile.retentionOption) + "?" + std::to_string(profile.retentionCount),
            std::to_string(static_cast<int>(profile.compress)),
            std::to_string(static_cast<int>(profile.encrypt))};
}

TEST(ProfileReader, LosesAtMostOnePartToADamagedLine)
{
    const std::string whole = wholeProfile();
    const std::vector<std::string> expected = partsOf(parseProfile(whole));
    const std::vector<std::string_view> all = base::split(whole, "\r\n");
    for (std::size_t damaged = 0; damaged + 1 < all.size(); ++damaged) {
        std::vector<std::string_view> copy(all.begin(), all.end() - 1);
        copy[damaged] = "\x02\xFF#";
        const std::vector<std::string> parts = partsOf(parseProfile(lines(copy)));
        std::size_t lost = 0;
        for (std::size_t i = 0; i < parts.size(); ++i)
            lost += parts[i] == expected[i] ? 0U : 1U;
        EXPECT_LE(lost, 1U) << "line " << damaged + 1 << ": " << all[damaged];
    }
}

TEST(ProfileReader, TellsOfEachMissingEssential)
{
    const EngineProfile profile = parseProfile(lines({"{Source files}", "{End Of Source files}"}));

    EXPECT_TRUE(profile.hasSections);
    EXPECT_THAT(
        profile.problems,
        ElementsAre("nothing is selected: no sources, no included extensions or names, no settings",
                    "no destination is set", "the line for the retention is missing",
                    "the line for the compression is missing",
                    "the line for the encryption is missing"));
}

TEST(ProfileReader, AddsARepeatedSectionAndTellsOfIt)
{
    const EngineProfile profile =
        parseProfile(around({"{Source files}", "C:\\B\\", "{End Of Source files}"}));

    EXPECT_THAT(profile.sources, ElementsAre("C:\\A\\", "C:\\B\\"));
    EXPECT_THAT(profile.problems, ElementsAre("line 4: the section {Source files} occurs again"));
}

TEST(ProfileReader, ReadsMonthlyAndYearlySchedules)
{
    const EngineProfile monthly =
        parseProfile(around({"{Scheduling}", "Start Date = 1/2/2004", "Start Time = 01:00:00 PM",
                             "RecurrencePattern =3", "Recur=2", "TimeAt=1:00:00 PM",
                             "Dates=1,15,31", "{End Of Scheduling}"}));
    ASSERT_TRUE(monthly.schedule);
    EXPECT_EQ(monthly.schedule->dates, "1,15,31");
    EXPECT_EQ(monthly.schedule->yearDates, "");

    const EngineProfile yearly =
        parseProfile(around({"{Scheduling}", "RecurrencePattern =4", "Months=January,May",
                             "Dates=", "{End Of Scheduling}"}));
    ASSERT_TRUE(yearly.schedule);
    EXPECT_EQ(yearly.schedule->months, "January,May");
    EXPECT_EQ(yearly.schedule->dates, "");
    EXPECT_THAT(yearly.problems, IsEmpty());

    const EngineProfile odd =
        parseProfile(around({"{Scheduling}", "RecurrencePattern =5", "{End Of Scheduling}"}));
    EXPECT_EQ(odd.schedule->pattern, 0);
    EXPECT_THAT(odd.problems, ElementsAre("line 5: names no schedule pattern"));
}

TEST(ProfileReader, LeavesOptionsOutThatAreOff)
{
    const EngineProfile profile = parseProfile(
        around({"{Free Space Warn}", "False", "{End Of Free Space Warn}", "{System Idle}", "False",
                "{End Of System Idle}", "{Confirm Backup}", "False", "{End Of Confirm Backup}",
                "{Threshold Queue}", "False", "{End Of Threshold Queue}"}));

    EXPECT_FALSE(profile.warnPercent || profile.idleMinutes || profile.confirmSize ||
                 profile.queueCount || profile.schedule);
    EXPECT_THAT(profile.problems, IsEmpty());
}

TEST(ProfileReader, TakesASizeOfAnyShape)
{
    const auto sizeOf = [](std::string_view line) {
        return *parseProfile(around({"{Confirm Backup}", "True", line, "{End Of Confirm Backup}"}))
                    .confirmSize;
    };
    // The text grows by a blank with each saving in the window.
    EXPECT_EQ(sizeOf("Size=500   MB"), (ConfirmSize{"500", "MB"}));
    EXPECT_EQ(sizeOf("Size=7GB"), (ConfirmSize{"7", "GB"}));
    EXPECT_EQ(sizeOf("Size=5"), (ConfirmSize{"", "5"}));
    EXPECT_EQ(sizeOf("Size="), (ConfirmSize{"", ""}));
}

TEST(ProfileReader, KnowsATextThatIsNoProfile)
{
    for (const std::string_view text : {"", "\r\n", "hello\r\nworld", "{Unknown}\r\n{End}"}) {
        const EngineProfile profile = parseProfile(text);
        EXPECT_FALSE(profile.hasSections) << text;
        EXPECT_EQ(profile.problems.back(), "no known section is there") << text;
    }
}

struct FileCase {
    std::string_view what;
    std::string bytes;
    std::string_view reason;
};

TEST(ProfileFile, IsReadFromItsScrambledForm)
{
    platform::MemoryFileSystem files;
    files.replaceFile("C:\\Work.vdp", profile::scrambleText(wholeProfile()));

    const EngineProfile profile = readProfile(files, "C:\\Work.vdp");

    EXPECT_THAT(profile.sources, ElementsAre("C:\\Work\\Letters\\", "C:\\Work\\Notes.txt"));
    EXPECT_EQ(profile.password, "secret ");
    EXPECT_THAT(profile.problems, IsEmpty());
}

TEST(ProfileFile, RaisesFileNotFoundWhereItOrItsFolderIsMissing)
{
    platform::MemoryFileSystem files;
    for (const std::string_view path : {"C:\\None.vdp", "C:\\No folder\\None.vdp"}) {
        try {
            readProfile(files, path);
            FAIL() << path;
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), 53);
            EXPECT_EQ(error.subject(), path);
        }
    }
}

TEST(ProfileFile, SaysWhyAFileIsNoProfile)
{
    const FileCase cases[] = {
        {"empty", "", "not a profile: the file is empty"},
        {"another file", "hello\r\nworld\r\n", "not a profile: no section can be read from it"},
        {"left plain", wholeProfile(),
         "the profile is plain text: its saving was broken off, save it again"},
        {"scrambled twice", profile::scrambleText(profile::scrambleText(wholeProfile())),
         "not a profile: no section can be read from it"},
    };
    for (const FileCase& one : cases) {
        platform::MemoryFileSystem files;
        files.replaceFile("C:\\Work.vdp", one.bytes);
        try {
            readProfile(files, "C:\\Work.vdp");
            FAIL() << one.what;
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), 5) << one.what;
            EXPECT_EQ(error.subject(), "C:\\Work.vdp") << one.what;
            EXPECT_EQ(error.reason(), one.reason) << one.what;
        }
    }
}

TEST(ProfileFile, PassesOnWhatTheDiskRaises)
{
    platform::MemoryFileSystem files;
    files.replaceFile("C:\\Work.vdp", profile::scrambleText(wholeProfile()));
    files.setUnreadable("C:\\Work.vdp");
    try {
        readProfile(files, "C:\\Work.vdp");
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 70);
    }
}

} // namespace
} // namespace vardelin::engine
