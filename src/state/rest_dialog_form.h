#pragma once

#include "state/controls.h"

#include <string>

namespace vardelin::state {

// frmRestDialog as the dialog that asks for a profile's name. `loaded` falls when a handler unloads
// the form, and the view closes it then.
struct frmRestDialog {
    std::string caption = "Vardelin";
    Label Label2{.caption = "&Enter the Name of  Profile :"};
    Label Label3{.caption = "(This name will be used for the 'Backup Package name' )"};
    TextBox txtProfileName{};
    Button cmdProfileOK{.caption = "&Ok"};
    Button cmdResCancel{.caption = "&Cancel"};

    bool loaded = true;
};

} // namespace vardelin::state
