#include "logs/log_view.h"

#include "platform/memory/counting_message_loop.h"
#include "platform/memory/memory_drives.h"
#include "platform/memory/memory_machine_facts.h"
#include "platform/memory/memory_processes.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/memory_shell.h"
#include "support/trace_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::logs {
namespace {

using test::TraceRig;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// frmLog over an application folder in memory that has no logs yet.
struct LogView : testing::Test, TraceRig {
    platform::MemoryDrives drives;
    platform::MemoryRegistry registry;
    platform::MemoryShell shell;
    platform::MemoryMachineFacts facts;
    platform::MemoryProcesses processes;
    platform::CountingMessageLoop messageLoop;
    platform::Machine machine{disk,      drives, registry,    shell,       facts,
                              processes, clock,  messageLoop, messageBoxes};
    state::FrameState frame;
    state::frmLog form;
    LogViewContext view{machine, context, frame, form};

    LogView()
    {
        frame.ST_App_Path = "C:\\App";
        disk.createFolders("C:\\App\\Queue");
    }
    void put(std::string_view path, std::string_view text)
    {
        disk.createFolders(platform::parentOf(path));
        putFile(path, text);
    }
    void queue(std::string_view text) { put("C:\\App\\Queue\\ChngFilesQueue.txt", text); }

    static std::vector<std::string> rowsOf(const state::LogList& list)
    {
        std::vector<std::string> rows;
        rows.reserve(list.rows.size());
        for (const state::LogRow& row : list.rows) {
            std::string text = row.text;
            for (const std::string& sub : row.sub)
                text += "|" + sub;
            rows.push_back(text);
        }
        return rows;
    }
};

TEST_F(LogView, ShowsTheBackupsOfAllFilesInTheFoldersOrder)
{
    put("C:\\App\\Log\\Backup\\b.txt", "B||Full||2003-07-03 09:05:03||12||1||C:\\r.txt\r\n");
    put("C:\\App\\Log\\Backup\\a.txt", "A||Full||d1||1||0||\r\n\r\nA||Incremental||d2||2||0\r\n");

    mnuBackLog_Click(view);

    EXPECT_THAT(rowsOf(form.lstBackupLog), ElementsAre("A|Full|d1|1|0", "A|Incremental|d2|2|0",
                                                       "B|Full|2003-07-03 09:05:03|12|1"));
    EXPECT_EQ(form.lstBackupLog.rows[2].report, "C:\\r.txt");
    EXPECT_TRUE(form.lstBackupLog.visible);
    EXPECT_FALSE(form.lstRestoreLog.visible);
    EXPECT_FALSE(form.lstQLog.visible);
    EXPECT_EQ(frame.panel1.text, "Viewing BackUp Log data... ");
    EXPECT_EQ(form.lblHelp.caption,
              "Backup Log displays the list of Profiles, and the type of backup whether "
              "Full/Incremental and corresponding backup date, count of files Skipped files during "
              "backup process.");
    EXPECT_EQ(form.lblGeneral.caption,
              "Log displays the status of the backup and restore operations you performed whereas "
              "Queue Log displays the recently modified files.");
    EXPECT_TRUE(form.loaded && form.visible);
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
    EXPECT_THAT(entries(), Contains("ReadLogFiles Start 1"));
}

// Each row is traced by its start and its end; one entry tells how often.
TEST_F(LogView, TheRowsOfAFileAreTracedTogether)
{
    put("C:\\App\\Log\\Backup\\a.txt", "A||Full||d1||1||0\r\nA||Full||d2||2||0\r\nshort\r\n");
    mnuBackLog_Click(view);
    EXPECT_THAT(entries(), ElementsAre("ViewBackUpLog Start 1", "ReadLogFiles Start 1",
                                       "LoadBkpLV End 4", "ReadLogFiles Error 1",
                                       "DisplayErrMSgDialog End 2", "ViewBackUpLog End 1"));
}

TEST_F(LogView, ARowCanBeAddedByItself)
{
    LoadBkpLV(view, "A", "Full", "d", "1", "0", "r.txt");
    LoadResLV(view, "A", "D:\\x", "d", "1");
    LoadQLV(view, form.lstQLog, "a", "C:\\", "d", "1B");
    LoadQLV(view, form.lstQLog, "a", "C:\\", "d", "");
    EXPECT_THAT(rowsOf(form.lstBackupLog), ElementsAre("A|Full|d|1|0"));
    EXPECT_EQ(form.lstBackupLog.rows[0].report, "r.txt");
    EXPECT_THAT(rowsOf(form.lstRestoreLog), ElementsAre("A|D:\\x|d|1|"));
    EXPECT_THAT(rowsOf(form.lstQLog), ElementsAre("a|C:\\|d|1B|", "a|C:\\|d||"));
    EXPECT_EQ(form.revision, 4U);
    EXPECT_THAT(entries(), ElementsAre("LoadBkpLV End 2", "LoadResLV End 2", "LoadQLV End 4"));
}

TEST_F(LogView, ShowsTheRestores)
{
    put("C:\\App\\Log\\Restore\\a.txt", "A||Original Location||d1||7\r\nA||D:\\x||d2||8||more\r\n");

    mnuRestLog_Click(view);

    EXPECT_THAT(rowsOf(form.lstRestoreLog),
                ElementsAre("A|Original Location|d1|7|", "A|D:\\x|d2|8|"));
    EXPECT_TRUE(form.lstRestoreLog.visible);
    EXPECT_EQ(frame.panel1.text, "Viewing Restore Log data... ");
    EXPECT_EQ(form.lblHelp.caption, "Restore Log displays the list of profile names,restored path, "
                                    "Last restored date and number of files restored.");
}

TEST_F(LogView, TellsOfAMissingFolderAndOfAnEmptyOne)
{
    mnuBackLog_Click(view);
    mnuRestLog_Click(view);
    disk.createFolders("C:\\App\\Log\\Backup\\only a folder");
    disk.createFolders("C:\\App\\Log\\Restore");
    mnuBackLog_Click(view);
    mnuRestLog_Click(view);

    EXPECT_THAT(messageBoxes.texts(),
                ElementsAre("Backup Log details are not available to be displayed",
                            "Restore Log details are not available to be displayed",
                            "Backup Log Files are not available to be displayed",
                            "Restore Log details are not availabe to be displayed"));
    EXPECT_EQ(boxes()[0].title, "Vardelin");
    EXPECT_TRUE(form.visible);
}

TEST_F(LogView, AShortLineEndsItsFileAndNoOther)
{
    put("C:\\App\\Log\\Backup\\a.txt", "A||Full||d1||1||0\r\nshort||line\r\nA||Full||d3||3||0\r\n");
    put("C:\\App\\Log\\Backup\\b.txt", "B||Full||d||2||0\r\n");

    mnuBackLog_Click(view);

    EXPECT_THAT(rowsOf(form.lstBackupLog), ElementsAre("A|Full|d1|1|0", "B|Full|d|2|0"));
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text, "Error in Creating Log File");
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "ReadLogFiles");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "frmLog");
    EXPECT_EQ(dialog.shown[0].txtSysErrNo.text, "9");
}

TEST_F(LogView, AShortLineOfARestoreAndAFileThatCannotBeReadAreReportedEach)
{
    put("C:\\App\\Log\\Restore\\a.txt", "A||D:\\x||d1||7\r\nA||D:\\x||d2\r\nA||D:\\x||d3||9\r\n");
    put("C:\\App\\Log\\Restore\\b.txt", "B||D:\\x||d||1\r\n");
    put("C:\\App\\Log\\Restore\\c.txt", "C||D:\\x||d||2\r\n");
    disk.setUnreadable("C:\\App\\Log\\Restore\\b.txt");

    mnuRestLog_Click(view);

    EXPECT_THAT(rowsOf(form.lstRestoreLog), ElementsAre("A|D:\\x|d1|7|", "C|D:\\x|d|2|"));
    std::vector<std::string> shown;
    for (const auto& each : dialog.shown)
        shown.push_back(each.txtSysErrNo.text + " " + each.txtProcName.text + ": " +
                        each.txtInf.text);
    EXPECT_THAT(shown, ElementsAre("9 ReadResLogFiles: Error in Creating Log File",
                                   "70 ReadResLogFiles: Error in Creating Log File"));
}

// The folder goes between the look at it and the look into it.
TEST_F(LogView, AFolderThatCannotBeListedIsReported)
{
    put("C:\\App\\Log\\Backup\\a.txt", "A||Full||d1||1||0\r\n");
    disk.setUnreadable("C:\\App\\Log\\Backup");
    mnuBackLog_Click(view);
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "ViewBackUpLog");
    EXPECT_EQ(dialog.shown[0].txtInf.text, "Error in Creating Log File");
    EXPECT_TRUE(form.visible);
}

TEST_F(LogView, FillsAListAnewEachTime)
{
    put("C:\\App\\Log\\Backup\\a.txt", "A||Full||d1||1||0\r\n");
    mnuBackLog_Click(view);
    const auto revision = form.revision;
    mnuBackLog_Click(view);
    EXPECT_EQ(form.lstBackupLog.rows.size(), 1U);
    EXPECT_GT(form.revision, revision);
}

TEST_F(LogView, TheQueueShowsEachFileOnceAtItsFirstPlace)
{
    put("C:\\Data\\a.txt", "four");
    put("C:\\Data\\b", std::string(1024, 'x'));
    clock.setLocal({{2003, 7, 3}, {9, 5, 3}});
    disk.openFolder("C:\\Data")->setTimes("a.txt", clock.nowNs(), clock.nowNs());
    queue(" C:\\Data\\a.txt\r\nC:\\Data\\gone\r\n\r\nC:\\Data\\b\r\nC:\\Data\\a.txt \r\n"
          "C:\\Data\\a.txt\r\n");

    mnudispQ_Click(view);

    ASSERT_EQ(form.lstQLog.rows.size(), 2U);
    EXPECT_EQ(rowsOf(form.lstQLog)[0], "a.txt|C:\\Data\\|7/3/2003 9:05:03 AM|4B|");
    EXPECT_EQ(form.lstQLog.rows[1].sub[2], "1KB");
    EXPECT_EQ(frame.panel1.text, "Viewing the details of the Queue");
    EXPECT_EQ(
        form.lblHelp.caption,
        "Queue log displays the file name,file path, file modified date and the size of files "
        "based on the entries made in Queue.");
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
}

// The paths are in the queue, though nothing of them is left to be shown.
TEST_F(LogView, AQueueOfVanishedFilesShowsNothingAndSaysNothing)
{
    queue("C:\\gone\\a\r\nC:\\gone\\b\r\n");
    mnudispQ_Click(view);
    EXPECT_THAT(form.lstQLog.rows, IsEmpty());
    EXPECT_THAT(messageBoxes.texts(), IsEmpty());
}

TEST_F(LogView, TellsOfAMissingQueueAndOfAnEmptyOne)
{
    mnudispQ_Click(view);
    queue("\r\n \r\n");
    mnudispQ_Click(view);
    EXPECT_THAT(messageBoxes.texts(),
                ElementsAre("The Queue file is not existing in the default path",
                            "Queue files are not available to be displayed"));
}

TEST_F(LogView, AQueueThatCannotBeReadIsReported)
{
    queue("C:\\a\r\n");
    disk.setUnreadable("C:\\App\\Queue\\ChngFilesQueue.txt");
    mnudispQ_Click(view);
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtInf.text, "Error in Loading the QFiles to View");
}

TEST_F(LogView, TheReportOfARunIsFoundByItsName)
{
    put("C:\\App\\Log\\Missed\\A_1.txt", "C:\\x\tno rights\r\n");
    state::LogRow row;
    EXPECT_EQ(missedReportText(view, row), "");
    row.report = "E:\\Former\\Log\\Missed\\A_1.txt";
    EXPECT_EQ(missedReportText(view, row), "C:\\x\tno rights\r\n");
    row.report = "C:\\App\\Log\\Missed\\gone.txt";
    EXPECT_EQ(missedReportText(view, row), "");
    EXPECT_EQ(dialog.shown.size(), 1U);
}

TEST(LogFileSize, HasNoBlankBeforeItsUnit)
{
    const std::pair<std::uint64_t, std::string_view> rows[] = {
        {0, "0B"},        {1023, "1023B"},     {1024, "1KB"},         {1152, "1.12KB"},
        {1408, "1.38KB"}, {1536, "1.5KB"},     {1048575, "1024KB"},   {1048576, "1MB"},
        {3145728, "3MB"}, {1181116, "1.13MB"}, {5368709120, "5120MB"}};
    for (const auto& [bytes, text] : rows)
        EXPECT_EQ(fileSizeText(bytes), text) << bytes;
}

TEST_F(LogView, AFileThatCannotBeMeasuredHasNoSize)
{
    put("C:\\Data\\a", "12345");
    EXPECT_EQ(GetFileSize(disk, "C:\\Data\\a"), "5B");
    EXPECT_EQ(GetFileSize(disk, "C:\\Data\\b"), "0B");
    EXPECT_EQ(GetFileSize(disk, "Z:\\b"), "0B");
}

} // namespace
} // namespace vardelin::logs
