#include "ui/archive_form_handlers.h"

#include "archive/review_rig.h"

#include "offscreen.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QPushButton>
#include <QTreeView>

namespace vardelin::ui {
namespace {

using test::ReviewRig;

struct ArchiveForms : ReviewRig, testing::Test {
    // Every handler comes by this way.
    HandlerRun noted()
    {
        return [this](const char* name, const Handler& body) {
            ran.emplace_back(name);
            body();
        };
    }

    std::vector<std::string> ran;
};

TEST_F(ArchiveForms, TheCloseBoxOfABackupAsksAndANoKeepsTheWindow)
{
    state::frmCancel cancelForm;
    runs::BackupState backup;
    runs::BackupContext run{machine, context, frame, cancelForm, backup, {}};
    runs::loadCancelForm(run);
    CancelView view(cancelForm, cancelHandlers(run, noted()));
    ui::present(view);
    messageBoxes.answers = {platform::Answer::No, platform::Answer::Yes};
    EXPECT_FALSE(view.close());
    EXPECT_FALSE(backup.BL_Cancel_Pressed);
    EXPECT_TRUE(view.close());
    EXPECT_TRUE(backup.BL_Cancel_Pressed);
    EXPECT_FALSE(view.isVisible());
    EXPECT_EQ(ran, (std::vector<std::string>{"Form_QueryUnload", "Form_QueryUnload"}));
    EXPECT_EQ(messageBoxes.texts(),
              std::vector<std::string>(2, "Do you want to cancel the Backup process?"));
}

TEST_F(ArchiveForms, TheCancelOfABackupAsksToo)
{
    state::frmCancel cancelForm;
    runs::BackupState backup;
    runs::BackupContext run{machine, context, frame, cancelForm, backup, {}};
    runs::loadCancelForm(run);
    CancelView view(cancelForm, cancelHandlers(run, noted()));
    ui::present(view);
    messageBoxes.answers = {platform::Answer::Yes};
    control<QPushButton>(view, "cmdCancel").click();
    EXPECT_TRUE(backup.BL_Cancel_Pressed);
    EXPECT_TRUE(view.isVisible()) << "until the engine has ended";
    EXPECT_EQ(ran, std::vector<std::string>{"cmdCancel_Click"});
}

TEST_F(ArchiveForms, ABackupsRowOpensTheReportOnTheDisk)
{
    disk.createFolders("C:\\App\\Log\\Missed");
    putFile("C:\\App\\Log\\Missed\\Work_1.txt", "C:\\a.txt\tPermission denied\r\n");
    state::frmLog logForm;
    logs::LogViewContext log{machine, context, frame, logForm};
    const LogHandlers handlers = logHandlers(log, noted());
    state::LogRow row;
    row.text = "Work";
    EXPECT_EQ(handlers.lstBackupLog_DblClick(row), "");
    row.report = "D:\\Elsewhere\\Log\\Missed\\Work_1.txt";
    EXPECT_NE(handlers.lstBackupLog_DblClick(row).find("C:\\a.txt\tPermission denied"),
              std::string::npos);
    EXPECT_EQ(ran, (std::vector<std::string>{"lstBackupLog_DblClick", "lstBackupLog_DblClick"}));
}

} // namespace
} // namespace vardelin::ui
