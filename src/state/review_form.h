#pragma once

#include "state/controls.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vardelin::state {

enum class RowButton : std::uint8_t { None, Plus, Minus };

// A row of lstRestore. An archive may have a million of them on show, so what can be told from the
// others is not kept: the columns "Version" and "Modified" are empty but for file rows.
struct ReviewRow {
    std::string text; // "Folders And Files"
    std::string key;  // `C:\work\` of a folder, `C:\work\report.doc_007` of a file's version
    std::string size; // "Size" and "Created On" of a file row's archive file; empty without one
    std::string createdOn;
    std::uint64_t sizeBytes = 0; // of the archive file; what `size` says in KB
    std::uint16_t level = 0;     // of indentation
    RowButton button = RowButton::None;
    bool file = false; // a version of a file
    bool selected = false;
};

// frmVDStorage: what an archive holds, as a tree drawn in a list. `loaded` falls when a handler
// unloads the form, and the view closes it then.
struct frmVDStorage {
    std::string caption = "Vardelin Storage";
    std::vector<ReviewRow> lstRestore;
    // Grows with every row that comes or goes; whoever changes `selected` alone leaves it.
    std::uint64_t rowsRevision = 0;
    // Rows, from 0, that the list is to bring into view, the second one first; used up by the view.
    bool bringIntoView = false;
    std::size_t firstInView = 0;
    std::size_t lastInView = 0;

    Label Label33;
    Label Label34;
    Label Label35;
    Label Label36;
    Label Label37;

    bool enabled = true; // the pop-up menu's commands
    bool hourglass = false;
    // Rows are being made, deleted or restored. Paint and input go on meanwhile: clicks on rows
    // come back at once, and the view refuses to close until it is over.
    bool busy = false;
    bool loaded = false;
    bool visible = false;
};

} // namespace vardelin::state
