#pragma once

#include "app/handler_runner.h"
#include "editor/editor_context.h"
#include "frame/main_frame.h"
#include "platform/machine.h"

#include <functional>
#include <string_view>

namespace vardelin::app {

// The commands of the main frame, each the function of its name. One command runs at a time: what
// comes in through the message loop meanwhile returns at once.
class Commands final : public frame::MainFrameCommands {
public:
    // References outlive this object.
    struct Parts {
        HandlerRunner& runner;
        platform::MessageBoxes& messageBoxes;
        editor::EditorContext& tree;
        std::function<void()> endProgram;
    };
    explicit Commands(Parts parts);

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

private:
    template <typename Body>
    void run(const char* name, Body&& body);
    // Says that a part of the program is still to come.
    void notYet(const char* name, std::string_view part);

    Parts m_parts;
    bool m_running = false;
};

} // namespace vardelin::app
