#include "logs/missed_report.h"

#include "base/runtime_error.h"
#include "platform/memory/memory_file_system.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vardelin::logs {
namespace {

using platform::MemoryFileSystem;

constexpr base::DateTime kWhen{{2003, 7, 3}, {9, 5, 3}};

TEST(MissedReport, IsNamedByProfileAndTimeAndHoldsALineAFile)
{
    MemoryFileSystem files;
    const std::vector<MissedFile> missed{{"C:\\a b.txt", "in use"},
                                         {"C:\\c\\d", "Permission denied"}};

    const std::string path = writeMissedReport(files, "C:\\App", "Work", kWhen, missed);

    EXPECT_EQ(path, "C:\\App\\Log\\Missed\\Work_20030703090503.txt");
    EXPECT_EQ(files.readAll(path), "C:\\a b.txt\tin use\r\nC:\\c\\d\tPermission denied\r\n");
}

TEST(MissedReport, KeepsTabsAndLineEndsOutOfItsFields)
{
    MemoryFileSystem files;
    const std::vector<MissedFile> missed{{"C:\\a\tb", "first\r\nsecond\tthird"}};

    const std::string path = writeMissedReport(files, "C:\\App", "Work", kWhen, missed);

    EXPECT_EQ(files.readAll(path), "C:\\a b\tfirst  second third\r\n");
}

TEST(MissedReport, NeverReplacesTheReportOfAnotherRunOfTheSameSecond)
{
    MemoryFileSystem files;
    const std::vector<MissedFile> one{{"C:\\1", "r"}};
    const std::vector<MissedFile> two{{"C:\\2", "r"}};

    const std::string first = writeMissedReport(files, "C:\\App", "Work", kWhen, one);
    const std::string second = writeMissedReport(files, "C:\\App", "Work", kWhen, two);
    const std::string third = writeMissedReport(files, "C:\\App", "Work", kWhen, two);

    EXPECT_EQ(second, "C:\\App\\Log\\Missed\\Work_20030703090503_2.txt");
    EXPECT_EQ(third, "C:\\App\\Log\\Missed\\Work_20030703090503_3.txt");
    EXPECT_EQ(files.readAll(first), "C:\\1\tr\r\n");
}

TEST(MissedReport, IsWholeOrNotThereWhicheverCallFails)
{
    const std::vector<MissedFile> missed{{"C:\\a", "r"}};
    bool succeeded = false;
    for (std::size_t n = 1; !succeeded; ++n) {
        MemoryFileSystem files;
        files.createFolders("C:\\App");
        files.script().reset();
        files.script().failCall(n, base::error_number::kDiskFull);
        try {
            writeMissedReport(files, "C:\\App", "Work", kWhen, missed);
        } catch (const base::RuntimeError&) {
        }
        succeeded = files.script().callCount() < n;
        files.script().reset();
        const std::string path = "C:\\App\\Log\\Missed\\Work_20030703090503.txt";
        if (files.fileExists(path)) {
            EXPECT_EQ(files.readAll(path), "C:\\a\tr\r\n") << n;
        }
    }
}

} // namespace
} // namespace vardelin::logs
