#pragma once

#include "state/controls.h"

#include <cstdint>
#include <string>

namespace vardelin::state {

// frmCancel: a backup under way. `loaded` falls when the program or the person closes the form.
struct frmCancel {
    std::string caption = "Vardelin";
    Label lblBkpFileNames; // the file being saved, a path in drive form
    ProgressBar pbBkp;
    Button cmdCancel{.caption = "&Cancel"};
    std::string animation; // the GIF that VDGIFANI1 plays, its bytes; empty where there is none

    // What the view tells beside the bar.
    std::uint64_t files = 0;     // names that have been shown
    double elapsedSeconds = 0;   // since the run began
    double remainingSeconds = 0; // as the bar goes on; 0 while nothing can be said

    bool loaded = false;
    bool visible = false;
};

} // namespace vardelin::state
