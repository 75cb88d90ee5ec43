#include "app/commands.h"

#include "editor/pages_context.h"
#include "frame/archive_commands.h"
#include "frame/profile_commands.h"
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

void Commands::mnuOptions_Click()
{
    notYet("mnuOptions_Click", "Options");
}

void Commands::cmdPcBackup_Click()
{
    notYet("cmdPcBackup_Click", "PC Backup");
}

// ---- the File menu

void Commands::mnuNew_Click()
{
    m_runner.run("mnuNew_Click", [&] { frame::mnuNew_Click(*m_context); });
}

void Commands::mnuOpen_Click()
{
    m_runner.run("mnuOpen_Click", [&] { frame::mnuOpen_Click(*m_context); });
}

void Commands::mnuEdit_Click()
{
    m_runner.run("mnuEdit_Click", [&] { frame::mnuEdit_Click(*m_context); });
}

void Commands::mnuSave_Click()
{
    m_runner.run("mnuSave_Click", [&] { frame::mnuSave_Click(*m_context); });
}

void Commands::mnuSaveAs_Click()
{
    m_runner.run("mnuSaveAs_Click", [&] { frame::mnuSaveAs_Click(*m_context); });
}

void Commands::mnuClose_Click()
{
    m_runner.run("mnuClose_Click", [&] { frame::mnuClose_Click(*m_context); });
}

void Commands::mnuExit_Click()
{
    m_runner.run("mnuExit_Click", [&] { frame::mnuExit_Click(*m_context); });
}

// ---- the archive

void Commands::mnuBackup_Click()
{
    m_runner.run("mnuBackup_Click", [&] { frame::mnuBackup_Click(*m_context, *m_backup); });
}

void Commands::mnuBkpSto_Click()
{
    m_runner.run("mnuBkpSto_Click", [&] { m_archive->mnuBkpSto_Click(); });
}

void Commands::mnudispQ_Click()
{
    m_runner.run("mnudispQ_Click", [&] { m_archive->mnudispQ_Click(); });
}

void Commands::mnuBackLog_Click()
{
    m_runner.run("mnuBackLog_Click", [&] { m_archive->mnuBackLog_Click(); });
}

void Commands::mnuRestLog_Click()
{
    m_runner.run("mnuRestLog_Click", [&] { m_archive->mnuRestLog_Click(); });
}

// ---- the toolbar

void Commands::toolbarClickBegins()
{
    m_runner.run("Toolbar_ButtonClick", [&] {
        m_context->profiles.trace.trace.WriteRunTrace("Toolbar_ButtonClick", "Start", true);
        if (m_context->main.commandRunning)
            return; // a run may have the engine
        m_toolbarEvents.emplace(*m_backup);
        m_backup->backup.objBackUp = m_backup->make(*m_toolbarEvents);
    });
}

void Commands::toolbarClickEnds()
{
    m_runner.run("Toolbar_ButtonClick", [&] {
        if (!m_context->main.commandRunning)
            m_backup->backup.objBackUp.reset();
        m_context->profiles.trace.trace.WriteRunTrace("Toolbar_ButtonClick", "End", true);
    });
}

// ---- the other commands

void Commands::mnuExpand_Click()
{
    m_runner.run("mnuExpand_Click", [&] { frame::mnuExpand_Click(*m_context); });
}

void Commands::mnuCollapse_Click()
{
    m_runner.run("mnuCollapse_Click", [&] { frame::mnuCollapse_Click(*m_context); });
}

void Commands::mnuProfile_Click()
{
    m_runner.run("mnuProfile_Click", [&] { frame::mnuProfile_Click(*m_context); });
}

void Commands::mnuContents_Click()
{
    m_runner.run("mnuContents_Click", [&] { frame::mnuContents_Click(*m_context); });
}

void Commands::mnuAbout_Click()
{
    m_runner.run("mnuAbout_Click", [&] { frame::mnuAbout_Click(*m_context); });
}

} // namespace vardelin::app
