#pragma once

#include <string>

namespace vardelin::state {

// The window of frmProfile, beside the profile that it edits (ProfileEditorState). One instance,
// owned by the application, on the thread of the user interface.
struct ProfileFormState {
    bool loaded = false;
    bool visible = false; // a loaded form may be hidden while it is filled
    std::string caption;
    int SSTab1 = 0; // the tab on show, from 0; logic that writes it runs no handler

    // The quick help beside the pages.
    std::string Label37;       // what a profile is
    std::string Label35;       // about the page
    int highlightedLabel = 31; // the heading that stands out: 31, 32 or 33
};

} // namespace vardelin::state
