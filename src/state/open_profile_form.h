#pragma once

#include "base/dates.h"
#include "state/controls.h"

#include <string>
#include <vector>

namespace vardelin::state {

// frmOpenProfile: the list of profiles, one of which a person ticks and opens. `loaded` falls when
// a handler unloads the form, and the view closes it then.
struct frmOpenProfile {
    std::string caption = "Open Profile";
    Label Label1{.caption = "Select The Profile:"};
    ListBox lstOpen; // text: file name; sub: its folder with a backslash; third: when it was made
    Button cmdOpen{.caption = "&Open"};
    Button cmdClose{.caption = "&Close"};
    Button cmdSelProfile{.caption = "&Select Profile..."};

    // When the file of each row was made, by which the last column sorts; row by row beside
    // lstOpen.
    std::vector<base::DateTime> created;

    int SortKey = 0; // column, from 0, that the rows were sorted by last
    bool sorted = false;
    bool descending = false;
    bool commandRunning = false; // a button's handler is at work; another one that comes in returns
    bool loaded = true;
};

} // namespace vardelin::state
