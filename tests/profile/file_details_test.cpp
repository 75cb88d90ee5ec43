#include "profile/file_details.h"

#include "store_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <limits>

namespace vardelin::profile {
namespace {

using base::DateTime;
using test::StoreRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kSecondNs = 1'000'000'000;
constexpr DateTime kFirstInstant{{1601, 1, 1}, {0, 0, 0}};

TEST(FileDetails, SFilenameBuildsThePartsInAFixedOrder)
{
    struct Row {
        const char* path;
        int parts;
        const char* result;
    };
    const Row rows[] = {
        {"C:\\dir\\a.txt", 3, "a.txt"},
        {"C:\\dir\\a.txt", 2, "txt"},
        {"C:\\dir\\a.txt", 1, "a"},
        {"C:\\dir\\a.txt", 4, "C:\\dir\\"},
        {"C:\\dir\\a.txt", 5, "C:\\dir\\a"},
        {"C:\\dir\\a.txt", 6, "C:\\dir\\.txt"},
        {"C:\\dir\\a.txt", 7, "C:\\dir\\a.txt"},
        {"C:\\dir\\a.txt", 0, ""},
        {"C:\\dir\\a.tar.gz", 1, "a.tar"},
        {"C:\\dir\\a.tar.gz", 2, "gz"},
        // The last dot lies before the last backslash.
        {"C:\\a.b\\file", 2, ""},
        {"C:\\a.b\\file", 1, "file"},
        {"C:\\a.b\\.hidden", 2, "hidden"},
        {"C:\\a.b\\.hidden", 1, ""},
        // Flag 2 brings its dot wherever text stands before it, extension or none: listings compare
        // names with it.
        {"C:\\dir\\file", 3, "file."},
        {"C:\\dir\\file", 7, "C:\\dir\\file."},
        {"C:\\dir\\", 3, ""},
        {"file.x", 4, ""},
        {"", 7, ""},
    };
    StoreRig rig;
    for (const Row& row : rows)
        EXPECT_EQ(sFilename(rig.ownContext, row.path, row.parts), row.result)
            << row.path << " " << row.parts;
}

TEST(FileDetails, SAppendAddsATailThatIsNotThere)
{
    StoreRig rig;
    EXPECT_EQ(sAppend(rig.ownContext, "C:\\Work\\", "\\"), "C:\\Work\\");
    EXPECT_EQ(sAppend(rig.ownContext, "C:\\Work", "\\"), "C:\\Work\\");
    EXPECT_EQ(sAppend(rig.ownContext, "", "\\"), "\\");
    EXPECT_EQ(sAppend(rig.ownContext, "ab", ""), "ab");
}

TEST(FileDetails, SNTCutsAtTheFirstNul)
{
    StoreRig rig;
    EXPECT_EQ(sNT(rig.ownContext, std::string_view("ab\0cd\0", 6)), "ab");
    EXPECT_EQ(sNT(rig.ownContext, std::string_view("\0ab", 3)), "");
    EXPECT_EQ(sNT(rig.ownContext, "abc"), "abc");
}

TEST(FileDetails, TracesUnderTheNamesOfTheLog)
{
    StoreRig rig;
    sNT(rig.ownContext, "");
    sAppend(rig.ownContext, "", "");
    sFilename(rig.ownContext, "", 7);
    TimeFileToDate(rig.ownContext, {});
    FileTimeToDate(rig.ownContext, {});
    EXPECT_THAT(rig.ownEntries(), ElementsAre("sNT End 2", "sAppend End 2", "sFilename End 2",
                                              "timeFileToDate Start 1", "timeSysToDate End 2",
                                              "timeFileToDate End 1", "FileTimeToDate End 2"));
}

TEST(FileDetails, FileTimeZeroIsTheFirstDayOf1601)
{
    StoreRig rig;
    EXPECT_EQ(FileTimeToDate(rig.ownContext, {0, 0}), kFirstInstant);
    EXPECT_EQ(TimeFileToDate(rig.ownContext, {0, 0}), kFirstInstant);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST(FileDetails, BothWaysFromAFileTimeAgree)
{
    StoreRig rig;
    struct Row {
        std::int64_t secondsSince1970;
        DateTime date;
    };
    const Row rows[] = {
        {0, {{1970, 1, 1}, {0, 0, 0}}},
        {1'000'000'000, {{2001, 9, 9}, {1, 46, 40}}},
        {1'057'224'303, {{2003, 7, 3}, {9, 25, 3}}},
        {951'868'799, {{2000, 2, 29}, {23, 59, 59}}},
        {-11'644'473'599, {{1601, 1, 1}, {0, 0, 1}}},
        // The hours round up here, so that the seconds behind them are negative.
        {1800, {{1970, 1, 1}, {0, 30, 0}}},
        {1801, {{1970, 1, 1}, {0, 30, 1}}},
        {5400, {{1970, 1, 1}, {1, 30, 0}}},
    };
    for (const Row& row : rows) {
        const std::int64_t ns =
            row.secondsSince1970 < -9'000'000'000 ? 0 : row.secondsSince1970 * kSecondNs;
        FileTime time = fileTimeOf(ns);
        if (row.secondsSince1970 < -9'000'000'000)
            time = {10'000'000, 0}; // a second behind the first instant
        EXPECT_EQ(FileTimeToDate(rig.ownContext, time), row.date) << row.secondsSince1970;
        EXPECT_EQ(TimeFileToDate(rig.ownContext, time), row.date) << row.secondsSince1970;
    }
}

TEST(FileDetails, HalvesOfAFileTimeAreUnsigned)
{
    // 2001-09-09 01:46:40 has its low half at or above 2 to the 31st.
    const FileTime time = fileTimeOf(1'000'000'000 * kSecondNs);
    const auto steps = std::uint64_t{126444736} * 1'000'000'000U + 0;
    EXPECT_EQ(static_cast<std::uint32_t>(time.high), steps >> 32U);
    EXPECT_EQ(static_cast<std::uint32_t>(time.low), steps & 0xFFFFFFFFU);
    StoreRig rig;
    // 2 to the 31st steps are 214.7483648 seconds.
    const FileTime negative{-2147483647 - 1, 0};
    EXPECT_EQ(FileTimeToDate(rig.ownContext, negative), (DateTime{{1601, 1, 1}, {0, 3, 35}}));
    EXPECT_EQ(TimeFileToDate(rig.ownContext, negative), (DateTime{{1601, 1, 1}, {0, 3, 34}}));
}

TEST(FileDetails, InstantsBefore1601AreTheFirstFileTime)
{
    EXPECT_EQ(fileTimeOf(std::numeric_limits<std::int64_t>::min() + 1).high < 0, false);
    // Nanoseconds reach back to 1677 only, so nothing that a disk tells is cut.
    EXPECT_GT(fileTimeOf(std::numeric_limits<std::int64_t>::min() + 1).high, 0);
}

TEST(FileDetails, DateThatNoCalendarHasIsReported)
{
    struct Row {
        std::function<DateTime(trace::TraceContext&)> run;
        const char* dialog;
        const char* entry;
    };
    const Row rows[] = {
        {[](auto& trace) {
             return TimeSysToDate(trace, {2003, 2, 30, 0, 0, 0});
         },
         "ModFileDet|timeSysToDate|13|Error occurred while coverting the system time to date",
         "timeSysToDate Error 2"},
        {[](auto& trace) {
             return TimeSysToDate(trace, {2003, 2, 3, 24, 0, 0});
         },
         "ModFileDet|timeSysToDate|13|Error occurred while coverting the system time to date",
         "timeSysToDate Error 2"},
        // The system gives no system time for this one.
        {[](auto& trace) {
             return TimeFileToDate(trace, {0, -1});
         },
         "ModFileDet|timeSysToDate|13|Error occurred while coverting the system time to date",
         "timeSysToDate Error 2"},
        {[](auto& trace) {
             return FileTimeToDate(trace, {0, 0x7FFFFFFF});
         },
         "ModFileDet|FileTimeToDate|5|Error occurred while getting the Created date",
         "FileTimeToDate Error 2"},
    };
    for (const Row& row : rows) {
        StoreRig rig;
        EXPECT_EQ(row.run(rig.ownContext), DateTime{});
        EXPECT_EQ(rig.newestDialog(), row.dialog);
        EXPECT_THAT(rig.ownEntries(), testing::Contains(row.entry));
    }
}

TEST(FileDetails, FileInformationIsTheSystemsRecord)
{
    StoreRig rig;
    rig.disk.setNow(1'057'224'303 * kSecondNs);
    rig.putFile("C:\\App\\a.txt", "hello");
    const FileInformation info = fileInformation(rig.ownContext, rig.files, "C:\\App\\a.txt");
    EXPECT_EQ(info.attributes, 0U);
    EXPECT_EQ(info.sizeBytes, 5U);
    EXPECT_EQ(info.links, 1U);
    EXPECT_NE(info.index, 0U);
    EXPECT_EQ(TimeFileToDate(rig.ownContext, info.created), (DateTime{{2003, 7, 3}, {9, 25, 3}}));
}

TEST(FileDetails, FileThatCannotBeOpenedHasAnAllZeroRecordAndNoError)
{
    StoreRig rig;
    const FileInformation info = fileInformation(rig.ownContext, rig.files, "C:\\App\\none");
    EXPECT_EQ(info.created, FileTime{});
    EXPECT_EQ(info.sizeBytes, 0U);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST(FileDetails, FailingLookAtAnOpenFileIsReported)
{
    StoreRig rig;
    rig.putFile("C:\\App\\a.txt", "hello");
    rig.script.failCallsNamed("file.info", 57);
    EXPECT_EQ(fileInformation(rig.ownContext, rig.files, "C:\\App\\a.txt").sizeBytes, 0U);
    EXPECT_EQ(rig.newestDialog(), "ModFileDet|fileInformation|57|"
                                  "Error Occurred while getting the handle for File Information");
    DateTime created;
    DateTime other;
    EXPECT_FALSE(
        GetFileTimes(rig.ownContext, rig.machine, "C:\\App\\a.txt", created, other, other, false));
    EXPECT_EQ(rig.newestDialog(), "ModFileDet|GetFileTimes|57|GetFileTimes");
}

TEST(FileDetails, GetFileTimesSetsTheCreationTimeAlone)
{
    StoreRig rig;
    rig.disk.setNow(1'057'224'303 * kSecondNs);
    rig.putFile("C:\\App\\a.txt", "hello");
    rig.clock.setZoneOffset(std::chrono::minutes(120));
    DateTime created;
    DateTime accessed{{2000, 1, 2}, {3, 4, 5}};
    DateTime written{{2000, 2, 3}, {4, 5, 6}};
    EXPECT_TRUE(GetFileTimes(rig.ownContext, rig.machine, "C:\\App\\a.txt", created, accessed,
                             written, false));
    EXPECT_EQ(created, (DateTime{{2003, 7, 3}, {9, 25, 3}}));
    EXPECT_TRUE(GetFileTimes(rig.ownContext, rig.machine, "C:\\App\\a.txt", created, accessed,
                             written, true));
    EXPECT_EQ(created, (DateTime{{2003, 7, 3}, {11, 25, 3}}));
    EXPECT_EQ(accessed, (DateTime{{2000, 1, 2}, {3, 4, 5}}));
    EXPECT_EQ(written, (DateTime{{2000, 2, 3}, {4, 5, 6}}));
}

TEST(FileDetails, GetFileTimesOfAMissingFileIsFalseAndChangesNothing)
{
    StoreRig rig;
    DateTime created{{2000, 1, 2}, {3, 4, 5}};
    DateTime other;
    EXPECT_FALSE(
        GetFileTimes(rig.ownContext, rig.machine, "C:\\App\\none", created, other, other, true));
    EXPECT_EQ(created, (DateTime{{2000, 1, 2}, {3, 4, 5}}));
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST(FolderChk, MakesAFolderWithItsParents)
{
    for (const std::string_view path : {"C:\\App\\x\\y\\z", "C:\\App\\x\\y\\z\\"}) {
        StoreRig rig;
        bool failed = true;
        FolderChk(rig.ownContext, rig.files, path, failed);
        EXPECT_FALSE(failed);
        EXPECT_TRUE(rig.disk.folderExists("C:\\App\\x\\y\\z"));
        EXPECT_THAT(rig.ownEntries(), ElementsAre("FolderChk End 6"));
    }
}

TEST(FolderChk, FolderThatExistsIsNoFailure)
{
    StoreRig rig;
    bool failed = true;
    FolderChk(rig.ownContext, rig.files, "C:\\App", failed);
    EXPECT_FALSE(failed);
}

TEST(FolderChk, MissingRightsAreTheOnlyFailure)
{
    // Other errors show up where the folder is used.
    for (const int number : {70, 57, 58, 61, 75}) {
        StoreRig rig;
        rig.script.failCallsNamed("folder.createFolder", number);
        bool failed = false;
        FolderChk(rig.ownContext, rig.files, "C:\\App\\x", failed);
        EXPECT_EQ(failed, number == 70) << number;
        EXPECT_THAT(rig.dialog.shown, IsEmpty());
    }
}

TEST(FolderChk, MissingRightsForAParentAreAFailure)
{
    StoreRig rig;
    rig.disk.setReadOnly("C:\\App");
    bool failed = false;
    FolderChk(rig.ownContext, rig.files, "C:\\App\\x\\y", failed);
    EXPECT_TRUE(failed);
}

TEST(FolderChk, EndsAtAMissingDrive)
{
    StoreRig rig;
    for (const std::string_view path : {"Q:\\a\\b\\c", "Q:\\", "Q:", "nothing", ""}) {
        bool failed = true;
        FolderChk(rig.ownContext, rig.files, path, failed);
        EXPECT_FALSE(failed) << path;
    }
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

} // namespace
} // namespace vardelin::profile
