#include "app/commands.h"

#include "editor/pages_context.h"
#include "editor/source_tree.h"

#include <string>
#include <utility>

namespace vardelin::app {

Commands::Commands(Parts parts) : m_parts(std::move(parts)) {}

template <typename Body>
void Commands::run(const char* name, Body&& body)
{
    if (m_running)
        return;
    m_running = true;
    m_parts.runner.run(name, std::forward<Body>(body));
    m_running = false;
}

// ---- what is still to come; README.md lists it, too

void Commands::notYet(const char* name, std::string_view part)
{
    run(name, [&] {
        m_parts.messageBoxes.show(std::string(part) + " is not available in the window yet.",
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
void Commands::mnuProfile_Click()
{
    notYet("mnuProfile_Click", "Profile Manager");
}
void Commands::mnuContents_Click()
{
    notYet("mnuContents_Click", "Contents");
}
void Commands::mnuAbout_Click()
{
    notYet("mnuAbout_Click", "About Vardelin");
}
void Commands::cmdPcBackup_Click()
{
    notYet("cmdPcBackup_Click", "PC Backup");
}

// ---- the tree

void Commands::mnuExpand_Click()
{
    run("mnuExpand_Click", [&] { editor::mnuExpand_Click(m_parts.tree); });
}

void Commands::mnuCollapse_Click()
{
    run("mnuCollapse_Click", [&] { editor::mnuCollapse_Click(m_parts.tree); });
}

// ---- the end

void Commands::mnuExit_Click()
{
    run("mnuExit_Click", [&] { m_parts.endProgram(); });
}

} // namespace vardelin::app
