#pragma once

#include "base/dates.h"
#include "state/controls.h"

#include <string>

namespace vardelin::state {

// frmRestDialog where files go back to. `loaded` falls when a handler unloads the form, and the
// view closes it then.
struct frmRestLocation {
    std::string caption = "Restore Location";
    Label Label1{.caption = "&Specify the Restore Location:"};
    ComboBox cmbRestLoc{.text = "Original Location",
                        .items = {"Original Location", "Alternate Location"}};
    TextBox txtRestLoc{.text = "Original Location", .enabled = false};
    Button cmdBrowse{.caption = "&Browse", .enabled = false};
    Button cmdOK{.caption = "&OK"};
    Button cmdCancel{.caption = "&Cancel"};

    bool hourglass = false;
    bool loaded = true;
};

// frmByDate: the day whose state a restore brings back.
struct frmByDate {
    std::string caption = "Restore by Date";
    base::Date mnvResDate;
    Button cmdOk{.caption = "&OK"};
    Button cmdCancel{.caption = "&Cancel"};

    bool loaded = true;
};

} // namespace vardelin::state
