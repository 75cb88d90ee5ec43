#pragma once

#include "app/archive_parts.h"
#include "app/handler_runner.h"
#include "frame/frame_context.h"
#include "frame/main_frame.h"
#include "platform/machine.h"
#include "runs/backup_run.h"

#include <optional>
#include <string_view>

namespace vardelin::app {

// The commands of the main frame, each the function of its name.
class Commands final : public frame::MainFrameCommands {
public:
    // Both outlive this object.
    Commands(HandlerRunner& runner, platform::MessageBoxes& messageBoxes)
        : m_runner(runner), m_messageBoxes(messageBoxes)
    {
    }

    // Before the first command; the contexts outlive this object.
    void attach(frame::FrameContext& context, runs::BackupContext& backup, ArchiveParts& archive)
    {
        m_context = &context;
        m_backup = &backup;
        m_archive = &archive;
    }

    void mnuNew_Click() override;
    void mnuOpen_Click() override;
    void mnuEdit_Click() override;
    void mnuSave_Click() override;
    void mnuSaveAs_Click() override;
    void mnuClose_Click() override;
    void mnuExit_Click() override;
    void mnuBackup_Click() override;
    void mnuBkpSto_Click() override;
    void mnuExpand_Click() override;
    void mnuCollapse_Click() override;
    void mnudispQ_Click() override;
    void mnuBackLog_Click() override;
    void mnuRestLog_Click() override;
    void mnuOptions_Click() override;
    void mnuProfile_Click() override;
    void mnuContents_Click() override;
    void mnuAbout_Click() override;
    void cmdPcBackup_Click() override;
    void toolbarClickBegins() override;
    void toolbarClickEnds() override;

private:
    // Says that a part of the program is still to come.
    void notYet(const char* name, std::string_view part);

    HandlerRunner& m_runner;
    platform::MessageBoxes& m_messageBoxes;
    frame::FrameContext* m_context = nullptr;
    runs::BackupContext* m_backup = nullptr;
    ArchiveParts* m_archive = nullptr;
    // Of the engine that stands ready while a button's command runs.
    std::optional<runs::BackupEvents> m_toolbarEvents;
};

} // namespace vardelin::app
