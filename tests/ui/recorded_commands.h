#pragma once

#include "frame/main_frame.h"

#include <string>
#include <vector>

namespace vardelin::ui {

// Commands that do nothing but note their names, as their menu entries have them.
class RecordedCommands : public frame::MainFrameCommands {
public:
    void mnuNew_Click() override { ran.emplace_back("mnuNew"); }
    void mnuOpen_Click() override { ran.emplace_back("mnuOpen"); }
    void mnuEdit_Click() override { ran.emplace_back("mnuEdit"); }
    void mnuSave_Click() override { ran.emplace_back("mnuSave"); }
    void mnuSaveAs_Click() override { ran.emplace_back("mnuSaveAs"); }
    void mnuClose_Click() override { ran.emplace_back("mnuClose"); }
    void mnuExit_Click() override { ran.emplace_back("mnuExit"); }
    void mnuBackup_Click() override { ran.emplace_back("mnuBackup"); }
    void mnuBkpSto_Click() override { ran.emplace_back("mnure"); }
    void mnuExpand_Click() override { ran.emplace_back("mnuExpand"); }
    void mnuCollapse_Click() override { ran.emplace_back("mnuCollapse"); }
    void mnudispQ_Click() override { ran.emplace_back("mnudispQ"); }
    void mnuBackLog_Click() override { ran.emplace_back("mnuBackLog"); }
    void mnuRestLog_Click() override { ran.emplace_back("mnuRestLog"); }
    void mnuOptions_Click() override { ran.emplace_back("mnuOptions"); }
    void mnuProfile_Click() override { ran.emplace_back("mnuProfile"); }
    void mnuContents_Click() override { ran.emplace_back("mnuContents"); }
    void mnuAbout_Click() override { ran.emplace_back("mnuAbout"); }
    void cmdPcBackup_Click() override { ran.emplace_back("cmdPcBackup"); }
    void toolbarClickBegins() override {}
    void toolbarClickEnds() override {}

    std::vector<std::string> ran;
};

} // namespace vardelin::ui
