#include "frame/main_frame.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vardelin::frame {
namespace {

using state::FrameState;
using state::MainFrameForm;

class RecordedCommands : public MainFrameCommands {
public:
    void mnuNew_Click() override { ran.emplace_back("mnuNew_Click"); }
    void mnuOpen_Click() override { ran.emplace_back("mnuOpen_Click"); }
    void mnuEdit_Click() override { ran.emplace_back("mnuEdit_Click"); }
    void mnuSave_Click() override { ran.emplace_back("mnuSave_Click"); }
    void mnuSaveAs_Click() override { ran.emplace_back("mnuSaveAs_Click"); }
    void mnuClose_Click() override { ran.emplace_back("mnuClose_Click"); }
    void mnuExit_Click() override { ran.emplace_back("mnuExit_Click"); }
    void mnuBackup_Click() override { ran.emplace_back("mnuBackup_Click"); }
    void mnuBkpSto_Click() override { ran.emplace_back("mnuBkpSto_Click"); }
    void mnuExpand_Click() override { ran.emplace_back("mnuExpand_Click"); }
    void mnuCollapse_Click() override { ran.emplace_back("mnuCollapse_Click"); }
    void mnudispQ_Click() override { ran.emplace_back("mnudispQ_Click"); }
    void mnuBackLog_Click() override { ran.emplace_back("mnuBackLog_Click"); }
    void mnuRestLog_Click() override { ran.emplace_back("mnuRestLog_Click"); }
    void mnuOptions_Click() override { ran.emplace_back("mnuOptions_Click"); }
    void mnuProfile_Click() override { ran.emplace_back("mnuProfile_Click"); }
    void mnuContents_Click() override { ran.emplace_back("mnuContents_Click"); }
    void mnuAbout_Click() override { ran.emplace_back("mnuAbout_Click"); }
    void cmdPcBackup_Click() override { ran.emplace_back("cmdPcBackup_Click"); }
    void toolbarClickBegins() override { ran.emplace_back("begins"); }
    void toolbarClickEnds() override { ran.emplace_back("ends"); }

    std::vector<std::string> ran;
};

// Buttons 3, 4, 5, 8, 9, then mnuEdit, mnuSave, mnuSaveAs, mnuBackup, mnure, as 1 and 0.
std::string stateOf(const MainFrameForm& form)
{
    std::string text;
    for (const std::size_t button : {3U, 4U, 5U, 8U, 9U})
        text += form.Toolbar1(button).enabled ? '1' : '0';
    text += ' ';
    for (const state::MenuEntry& entry :
         {form.mnuEdit, form.mnuSave, form.mnuSaveAs, form.mnuBackup, form.mnure})
        text += entry.enabled ? '1' : '0';
    return text;
}

TEST(MainFrame, OpensTheCommandsOfTheMode)
{
    struct Row {
        bool firstRun;
        bool isNew;
        bool isEdit;
        bool isOpen;
        const char* commands;
    };
    const std::vector<Row> rows{
        {false, false, true, false, "01111 01111"}, {true, false, false, false, "01111 01111"},
        {true, false, true, false, "01111 01111"},  {false, true, false, false, "01100 01100"},
        {true, true, true, false, "01100 01100"},   {false, false, false, true, "10011 10011"},
        {true, false, true, true, "10011 10011"},
    };
    for (const Row& row : rows) {
        FrameState frame;
        frame.BL_First_Run = row.firstRun;
        frame.BL_New_Mode = row.isNew;
        frame.BL_Edit_Mode = row.isEdit;
        frame.BL_Open_Mode = row.isOpen;
        MainFrameForm form;
        DisAbleMenu(form);
        form.Toolbar1(6).enabled = false;
        form.mnuClose.enabled = false;
        enableByMode(form, frame);
        EXPECT_EQ(stateOf(form), row.commands);
        EXPECT_TRUE(form.mnuExpand.enabled);
        EXPECT_TRUE(form.mnuCollapse.enabled);
        EXPECT_TRUE(form.Toolbar1(6).enabled);
        EXPECT_TRUE(form.mnuClose.enabled);
    }
}

TEST(MainFrame, WithoutAModeOnlyCloseComesBack)
{
    MainFrameForm form;
    DisAbleMenu(form);
    enableByMode(form, {});
    EXPECT_EQ(stateOf(form), "00000 00000");
    EXPECT_FALSE(form.mnuExpand.enabled);
    EXPECT_TRUE(form.mnuClose.enabled);
}

TEST(MainFrame, AfterCloseNewAndOpenStayPossible)
{
    MainFrameForm form;
    DisAbleMenu(form);
    EXPECT_EQ(stateOf(form), "00000 00000");
    EXPECT_FALSE(form.mnuExpand.enabled);
    EXPECT_FALSE(form.mnuCollapse.enabled);
    EXPECT_TRUE(form.mnuNew.enabled);
    EXPECT_TRUE(form.mnuOpen.enabled);
    EXPECT_TRUE(form.Toolbar1(1).enabled);
    EXPECT_TRUE(form.Toolbar1(2).enabled);
}

TEST(MainFrame, ALongRunClosesTheWholeFrame)
{
    MainFrameForm form;
    for (const bool active : {false, true}) {
        MainWndActiveInAct(form, active);
        for (const state::MenuEntry& menu :
             {form.mnuFile, form.mnuActions, form.mnuTools, form.mnuWindow, form.mnuHelp})
            EXPECT_EQ(menu.enabled, active);
        EXPECT_EQ(form.editorEnabled, active);
        EXPECT_EQ(form.Toolbar1Enabled, active);
    }
}

TEST(MainFrame, EveryButtonRunsItsCommand)
{
    const std::vector<std::string> expected{"mnuNew_Click",
                                            "mnuOpen_Click",
                                            "mnuEdit_Click",
                                            "mnuSave_Click",
                                            "mnuSaveAs_Click",
                                            "mnuClose_Click",
                                            "",
                                            "mnuBackup_Click",
                                            "mnuBkpSto_Click",
                                            "",
                                            "mnuProfile_Click",
                                            ""};
    for (std::size_t index = 1; index <= MainFrameForm::kToolbarButtons; ++index) {
        RecordedCommands commands;
        Toolbar_ButtonClick(commands, index);
        // Separators and the button with the drop-down do nothing.
        const std::string& name = expected[index - 1];
        EXPECT_EQ(commands.ran, name.empty() ? (std::vector<std::string>{"begins", "ends"})
                                             : (std::vector<std::string>{"begins", name, "ends"}))
            << index;
    }
}

TEST(MainFrame, AChangeCountsInTheModesThatCanSave)
{
    struct Row {
        bool isNew;
        bool isEdit;
        bool isOpen;
        bool asks;
    };
    for (const Row& row : {Row{true, false, false, true}, Row{false, true, false, true},
                           Row{false, false, true, false}, Row{false, false, false, false}}) {
        FrameState frame;
        frame.BL_New_Mode = row.isNew;
        frame.BL_Edit_Mode = row.isEdit;
        frame.BL_Open_Mode = row.isOpen;
        EXPECT_FALSE(needsSave(frame));
        markChanged(frame);
        EXPECT_EQ(needsSave(frame), row.asks);
    }
}

TEST(MainFrame, AChangeOfAnotherModeAsksForNothing)
{
    FrameState frame;
    frame.BL_Edit_Mode = true;
    frame.BL_New_Changed = true;
    EXPECT_FALSE(needsSave(frame));
}

} // namespace
} // namespace vardelin::frame
