#include "logs/run_records.h"

#include "base/runtime_error.h"
#include "platform/memory/memory_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::logs {
namespace {

using base::RuntimeError;
using platform::MemoryFileSystem;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

constexpr std::string_view kApp = "C:\\App";

BackupRecord backupOf(std::string name)
{
    return {std::move(name),
            std::string(kIncrementalRun),
            "2003-07-03 09:05:03",
            12,
            1,
            "C:\\App\\Log\\Missed\\Work_20030703090503.txt"};
}

void put(MemoryFileSystem& files, const std::string& path, std::string_view text)
{
    files.createFolders(platform::parentOf(path));
    files.replaceFile(path, text);
}

std::vector<std::string> pathsOf(const Queue& queue)
{
    std::vector<std::string> paths;
    paths.reserve(queue.files.size());
    for (const QueuedFile& file : queue.files)
        paths.push_back(file.path);
    return paths;
}

TEST(BackupLog, HasSixFieldsJoinedByTwoBars)
{
    EXPECT_EQ(formatBackupLine(backupOf("Work")), "Work||Incremental||2003-07-03 09:05:03||12||1||"
                                                  "C:\\App\\Log\\Missed\\Work_20030703090503.txt");

    BackupRecord clean = backupOf("Work");
    clean.type = kFullRun;
    clean.skippedCount = 0;
    clean.missedReportPath.clear();
    EXPECT_EQ(formatBackupLine(clean), "Work||Full||2003-07-03 09:05:03||12||0||");
}

TEST(RestoreLog, HasFourFieldsJoinedByTwoBars)
{
    EXPECT_EQ(formatRestoreLine({"Work", "D:\\Back", "2003-07-03 09:05:03", 3}),
              "Work||D:\\Back||2003-07-03 09:05:03||3");
}

struct FieldCase {
    std::string_view text;
    std::string_view field;
};

TEST(RunRecords, TakeOutOfATextWhatWouldReadAsASeparator)
{
    const FieldCase cases[] = {{"Work", "Work"},
                               {"", ""},
                               {"a||b", "ab"},
                               {"a|b", "a|b"},
                               {"a|||b", "a|b"},
                               {"a||||b", "ab"},
                               {"|a", "a"},
                               {"a|", "a"},
                               {"|", ""},
                               {"||", ""},
                               {"a\r\nb", "ab"},
                               {"a\nb\r", "ab"},
                               {"a|\r\n|b", "ab"}, // the line end must not hide a separator
                               {" blanks stay ", " blanks stay "}};
    for (const FieldCase& one : cases)
        EXPECT_EQ(fieldText(one.text), one.field) << one.text;
}

TEST(RunRecords, ReadBackWhateverStoodInTheNames)
{
    for (const std::string_view name : {"a||b", "|a|", "a\r\nb", "|||", "\xFF\xFE", ""}) {
        BackupRecord record = backupOf(std::string(name));
        record.missedReportPath = name;
        const BackupLine line = parseBackupLine(formatBackupLine(record));
        EXPECT_EQ(line.profileName, fieldText(name));
        EXPECT_EQ(line.type, "Incremental");
        EXPECT_EQ(line.files, "12");
        EXPECT_EQ(line.skipped, "1");
        EXPECT_EQ(line.missedReport, fieldText(name));
    }
}

TEST(BackupLog, TakesALineWithFiveFieldsAndIgnoresThoseBehindTheSixth)
{
    const BackupLine five{"P", "full", "today", "3", "0", ""};
    EXPECT_EQ(parseBackupLine("P||full||today||3||0"), five);
    EXPECT_EQ(parseBackupLine("P||full||today||3||0||"), five);

    const BackupLine six{"P", "full", "today", "3", "0", "report"};
    EXPECT_EQ(parseBackupLine("P||full||today||3||0||report||more||"), six);
    // The fields' own texts are free.
    EXPECT_EQ(parseBackupLine("||||||||"), BackupLine{});
}

TEST(RunRecords, RaiseASubscriptErrorForALineWithTooFewFields)
{
    const auto numberOf = [](auto parse, std::string_view line) {
        try {
            parse(line);
        } catch (const RuntimeError& error) {
            return error.number();
        }
        return 0;
    };
    EXPECT_EQ(numberOf(parseBackupLine, "P||full||today||3"), 9);
    EXPECT_EQ(numberOf(parseBackupLine, ""), 9);
    EXPECT_EQ(numberOf(parseRestoreLine, "P||there||today"), 9);
    EXPECT_EQ(numberOf(parseRestoreLine, "P||there||today||3"), 0);
}

TEST(BackupLog, IsMadeWithItsFoldersAndGrowsALineARun)
{
    MemoryFileSystem files;

    appendBackupRecord(files, kApp, {"Work", "Full", "2003-07-03 09:05:03", 5, 0, ""});
    appendBackupRecord(files, kApp, {"Work", "Incremental", "2003-07-04 09:05:03", 1, 0, ""});
    appendBackupRecord(files, kApp, {"Home", "Full", "2003-07-04 10:05:03", 2, 0, ""});

    EXPECT_EQ(files.readAll("C:\\App\\Log\\Backup\\Work.txt"),
              "Work||Full||2003-07-03 09:05:03||5||0||\r\n"
              "Work||Incremental||2003-07-04 09:05:03||1||0||\r\n");
    EXPECT_EQ(files.readAll("C:\\App\\Log\\Backup\\Home.txt"),
              "Home||Full||2003-07-04 10:05:03||2||0||\r\n");
}

TEST(RestoreLog, LiesInAFolderOfItsOwn)
{
    MemoryFileSystem files;

    appendRestoreRecord(files, kApp, {"Work", "D:\\Back", "2003-07-03 09:05:03", 3});

    EXPECT_EQ(files.readAll("C:\\App\\Log\\Restore\\Work.txt"),
              "Work||D:\\Back||2003-07-03 09:05:03||3\r\n");
    EXPECT_FALSE(files.folderExists("C:\\App\\Log\\Backup"));
}

TEST(RunRecords, GoToTheLogInOneFlushedWrite)
{
    MemoryFileSystem files;
    files.createFolders("C:\\App\\Log\\Backup");
    files.script().reset();

    appendBackupRecord(files, kApp, backupOf("Work"));

    EXPECT_EQ(files.script().countOf("file.write"), 1U);
    EXPECT_EQ(files.script().countOf("file.flush"), 1U);
}

// A crash can cut the last line anywhere; what it says is kept, and neither it nor the next line
// may end the reading of the file.
TEST(RunRecords, CompleteALineThatWasCutAtAnyByte)
{
    const std::string first = "A||Full||d||1||0||\r\n";
    const std::string second = "B|c||Incremental||e||2||0||C:\\r.txt\r\n";
    for (std::size_t cut = 0; cut <= second.size(); ++cut) {
        MemoryFileSystem files;
        put(files, "C:\\App\\Log\\Backup\\Work.txt", first + second.substr(0, cut));

        appendBackupRecord(files, kApp, {"Work", "Full", "f", 3, 0, ""});

        const auto log = readBackupLog(files, kApp);
        EXPECT_THAT(log.faults, IsEmpty()) << cut;
        ASSERT_EQ(log.lines.size(), cut == 0 ? 2U : 3U) << cut;
        EXPECT_EQ(log.lines.front(), (BackupLine{"A", "Full", "d", "1", "0", ""})) << cut;
        EXPECT_EQ(log.lines.back(), (BackupLine{"Work", "Full", "f", "3", "0", ""})) << cut;
    }
}

// What a power cut leaves of the last append can hold line ends of its own.
TEST(RunRecords, MendShortLinesThatWouldHideTheOnesBehindThem)
{
    const std::string torn = "A||Full||d||1||0||\r\nB||\n\x01\n\r\n";
    for (const std::string& end : {std::string(), std::string("half"), std::string(3, '\0')}) {
        MemoryFileSystem files;
        put(files, "C:\\App\\Log\\Backup\\Work.txt", torn + end);

        appendBackupRecord(files, kApp, {"Work", "Full", "f", 3, 0, ""});

        const auto log = readBackupLog(files, kApp);
        EXPECT_THAT(log.faults, IsEmpty());
        ASSERT_EQ(log.lines.size(), end.empty() ? 4U : 5U);
        EXPECT_EQ(log.lines.front(), (BackupLine{"A", "Full", "d", "1", "0", ""}));
        EXPECT_EQ(log.lines[1].profileName, "B");
        EXPECT_EQ(log.lines[2].profileName, "\x01");
        EXPECT_EQ(log.lines.back(), (BackupLine{"Work", "Full", "f", "3", "0", ""}));
    }
}

// A flushed line is lost all the same where the names that lead to it are not on the disk.
TEST(RunRecords, FlushTheNamesOfANewLogAndItsFolders)
{
    MemoryFileSystem files;
    files.createFolders("C:\\App");
    std::vector<std::string> flushed;
    files.script().onCallsNamed("folder.flush", [&](const platform::CallScript::Call& call) {
        flushed.push_back(call.subject);
    });

    appendBackupRecord(files, kApp, backupOf("Work"));

    EXPECT_THAT(flushed, testing::ElementsAre("C:\\App\\Log", "C:\\App", "C:\\App\\Log\\Backup"));
    appendBackupRecord(files, kApp, backupOf("Work"));
    EXPECT_EQ(flushed.size(), 3U) << "once is enough";
}

TEST(RunRecords, LeaveTheOldLinesWhereAppendingFails)
{
    for (const char* call : {"file.write", "file.flush", "folder.open"}) {
        MemoryFileSystem files;
        appendBackupRecord(files, kApp, {"Work", "Full", "d", 1, 0, ""});
        files.script().failCallsNamed(call, base::error_number::kDiskFull);

        EXPECT_THROW(appendBackupRecord(files, kApp, backupOf("Work")), RuntimeError) << call;

        files.script().reset();
        const std::string text = files.readAll("C:\\App\\Log\\Backup\\Work.txt");
        EXPECT_TRUE(text.starts_with("Work||Full||d||1||0||\r\n")) << call;
    }
}

TEST(BackupLog, IsReadFileByFileInTheFoldersOrder)
{
    MemoryFileSystem files;
    put(files, "C:\\App\\Log\\Backup\\b10.txt", "3||t||d||1||0\r\n");
    put(files, "C:\\App\\Log\\Backup\\B9.log", "1||t||d||1||0\r\n\r\n2||t||d||1||0||\r\n");
    put(files, "C:\\App\\Log\\Backup\\Sub\\c.txt", "not read\r\n");

    const auto log = readBackupLog(files, kApp);

    EXPECT_TRUE(log.folderExists);
    EXPECT_THAT(log.lines, ElementsAre(Field(&BackupLine::profileName, "1"),
                                       Field(&BackupLine::profileName, "2"),
                                       Field(&BackupLine::profileName, "3")));
    EXPECT_THAT(log.faults, IsEmpty());
}

TEST(BackupLog, EndsAFileAtAShortLineNamesItAndGoesOnWithTheNextFile)
{
    MemoryFileSystem files;
    put(files, "C:\\App\\Log\\Backup\\a.txt", "1||t||d||1||0\r\nbroken||line\r\n2||t||d||1||0\r\n");
    put(files, "C:\\App\\Log\\Backup\\b.txt", "3||t||d||1||0\r\n");

    const auto log = readBackupLog(files, kApp);

    EXPECT_THAT(log.lines, ElementsAre(Field(&BackupLine::profileName, "1"),
                                       Field(&BackupLine::profileName, "3")));
    ASSERT_EQ(log.faults.size(), 1U);
    EXPECT_EQ(log.faults[0].path, "C:\\App\\Log\\Backup\\a.txt");
    EXPECT_EQ(log.faults[0].lineNumber, 2U);
    EXPECT_EQ(log.faults[0].reason, "2 of 5 fields");
}

TEST(BackupLog, NamesAFileThatCannotBeRead)
{
    MemoryFileSystem files;
    put(files, "C:\\App\\Log\\Backup\\a.txt", "1||t||d||1||0\r\n");
    put(files, "C:\\App\\Log\\Backup\\b.txt", "2||t||d||1||0\r\n");
    files.script().failCallsNamed("folder.open", base::error_number::kPermissionDenied, "a.txt");

    const auto log = readBackupLog(files, kApp);

    EXPECT_THAT(log.lines, ElementsAre(Field(&BackupLine::profileName, "2")));
    ASSERT_EQ(log.faults.size(), 1U);
    EXPECT_EQ(log.faults[0].path, "C:\\App\\Log\\Backup\\a.txt");
    EXPECT_EQ(log.faults[0].lineNumber, 0U);
}

TEST(RunRecords, TellAMissingFolderFromAnEmptyOne)
{
    MemoryFileSystem files;
    EXPECT_FALSE(readBackupLog(files, kApp).folderExists);
    EXPECT_FALSE(readRestoreLog(files, kApp).folderExists);

    files.createFolders("C:\\App\\Log\\Backup");
    files.createFolders("C:\\App\\Log\\Restore");
    EXPECT_TRUE(readBackupLog(files, kApp).folderExists);
    EXPECT_THAT(readBackupLog(files, kApp).lines, IsEmpty());
    EXPECT_TRUE(readRestoreLog(files, kApp).folderExists);
}

TEST(RestoreLog, IsReadBack)
{
    MemoryFileSystem files;
    appendRestoreRecord(files, kApp, {"Work", "D:\\Back", "2003-07-03 09:05:03", 3});

    EXPECT_THAT(readRestoreLog(files, kApp).lines,
                ElementsAre(RestoreLine{"Work", "D:\\Back", "2003-07-03 09:05:03", "3"}));
}

TEST(Queue, ShowsEachPathOnceAtItsFirstPlace)
{
    MemoryFileSystem files;
    put(files, "C:\\d\\b.txt", "12345");
    put(files, "C:\\d\\a.txt", "");
    put(files, "C:\\App\\Queue\\ChngFilesQueue.txt",
        "C:\\d\\b.txt\r\n\r\n  C:\\d\\a.txt  \r\nC:\\d\\b.txt\r\nC:\\d\\b.txt\r\n");

    const Queue queue = readQueue(files, kApp);

    EXPECT_TRUE(queue.fileExists);
    EXPECT_THAT(pathsOf(queue), ElementsAre("C:\\d\\b.txt", "C:\\d\\a.txt"));
    EXPECT_TRUE(queue.files[0].exists);
    EXPECT_EQ(queue.files[0].sizeBytes, 5U);
    EXPECT_EQ(queue.files[0].modifiedNs, files.find("C:\\d\\b.txt")->modifiedNs);
    EXPECT_EQ(queue.files[1].sizeBytes, 0U);
}

// A queue of vanished files is not an empty one: the view shows no row for it, and no message.
TEST(Queue, KeepsPathsWhoseFilesAreGone)
{
    MemoryFileSystem files;
    files.createFolders("C:\\d\\folder");
    put(files, "C:\\App\\Queue\\ChngFilesQueue.txt", "C:\\d\\gone.txt\r\nC:\\d\\folder\r\n");

    const Queue queue = readQueue(files, kApp);

    EXPECT_THAT(pathsOf(queue), ElementsAre("C:\\d\\gone.txt", "C:\\d\\folder"));
    EXPECT_FALSE(queue.files[0].exists);
    EXPECT_FALSE(queue.files[1].exists);
}

TEST(Queue, TellsPathsThatDifferInCaseApartWhereTheDiskDoes)
{
    MemoryFileSystem files;
    put(files, "C:\\App\\Queue\\ChngFilesQueue.txt", "C:\\a\r\nC:\\A\r\n");

    EXPECT_EQ(readQueue(files, kApp).files.size(), files.isCaseSensitive() ? 2U : 1U);
}

TEST(Queue, MayBeMissingOrEmpty)
{
    MemoryFileSystem files;
    EXPECT_FALSE(readQueue(files, kApp).fileExists);

    put(files, "C:\\App\\Queue\\ChngFilesQueue.txt", "");
    EXPECT_TRUE(readQueue(files, kApp).fileExists);
    EXPECT_THAT(readQueue(files, kApp).files, IsEmpty());
}

} // namespace
} // namespace vardelin::logs
