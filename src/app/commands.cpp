#include "app/commands.h"

#include "editor/pages_context.h"
#include "frame/window_commands.h"

#include <string>

namespace vardelin::app {

// ---- what is still to come; README.md lists it, too

void Commands::notYet(const char* name, std::string_view part)
{
    m_runner.run(name, [&] {
        m_messageBoxes.show(std::string(part) + " is not available in the window yet.",
                            editor::kTitle);
    });
}

void Commands::mnuNew_Click()
{
    notYet("mnuNew_Click", "New");
}

void Commands::mnuOpen_Click()
{
    notYet("mnuOpen_Click", "Open");
}

void Commands::mnuEdit_Click()
{
    notYet("mnuEdit_Click", "Edit");
}

void Commands::mnuSave_Click()
{
    notYet("mnuSave_Click", "Save");
}

void Commands::mnuSaveAs_Click()
{
    notYet("mnuSaveAs_Click", "SaveAs");
}

void Commands::mnuClose_Click()
{
    notYet("mnuClose_Click", "Close");
}

void Commands::mnuBackup_Click()
{
    notYet("mnuBackup_Click", "Backup Now");
}

void Commands::mnuBkpSto_Click()
{
    notYet("mnuBkpSto_Click", "Review and Restore");
}

void Commands::mnudispQ_Click()
{
    notYet("mnudispQ_Click", "Queue Log");
}

void Commands::mnuBackLog_Click()
{
    notYet("mnuBackLog_Click", "Backup Log");
}

void Commands::mnuRestLog_Click()
{
    notYet("mnuRestLog_Click", "Restore Log");
}

void Commands::mnuOptions_Click()
{
    notYet("mnuOptions_Click", "Options");
}

void Commands::cmdPcBackup_Click()
{
    notYet("cmdPcBackup_Click", "PC Backup");
}

// ---- the other commands

void Commands::mnuExpand_Click()
{
    m_runner.run("mnuExpand_Click", [&] { frame::mnuExpand_Click(m_context); });
}

void Commands::mnuCollapse_Click()
{
    m_runner.run("mnuCollapse_Click", [&] { frame::mnuCollapse_Click(m_context); });
}

void Commands::mnuProfile_Click()
{
    m_runner.run("mnuProfile_Click", [&] { frame::mnuProfile_Click(m_context); });
}

void Commands::mnuContents_Click()
{
    m_runner.run("mnuContents_Click", [&] { frame::mnuContents_Click(m_context); });
}

void Commands::mnuAbout_Click()
{
    m_runner.run("mnuAbout_Click", [&] { frame::mnuAbout_Click(m_context); });
}

void Commands::mnuExit_Click()
{
    m_runner.run("mnuExit_Click", [&] { m_context.window.endApplication(); });
}

} // namespace vardelin::app
