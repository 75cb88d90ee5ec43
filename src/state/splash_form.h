#pragma once

#include <string>

namespace vardelin::state {

struct Timer {
    int Interval = 0; // milliseconds from one tick to the next; a new one counts from its setting
    bool Enabled = true;
};

// frmSplash, which is up while the main frame loads. A view ticks Timer1 and hands keys on as long
// as the form is loaded. One instance, owned by the application, on the thread of the user
// interface.
struct frmSplash {
    bool loaded = false;
    Timer Timer1{.Interval = 800};
    std::string Picture1 = "splash.gif"; // an animation, by its name among the program's pictures
};

} // namespace vardelin::state
