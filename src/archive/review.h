#pragma once

#include "archive/catalog.h"
#include "platform/machine.h"
#include "state/frame_state.h"
#include "state/profile_store.h"
#include "state/review_form.h"
#include "trace/error_tail.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The review of an archive: its catalog as a tree drawn in the list lstRestore, whose rows open and
// close. All of it runs on the thread of the user interface. Rows have numbers from 1 here; row 0
// stands for the list as a whole.
//
//   row             text                        key                       level
//   group           `Files And Folders`         the text                  0
//   settings group  `IE Favorites`              the text                  1
//   drive           `C:`                        `C:\`                     1
//   folder          `work`                      `C:\work\`                of its parent + 1
//   file's version  `report.doc_007`, `..._Org` `C:\work\report.doc_007`  of its folder + 1
//
// While rows are made the message loop runs at times: `busy` of the form stands then, and what a
// person does to the rows meanwhile comes back at once.
namespace vardelin::archive {

// What the review works on. Holds references only; the application owns the parts and keeps them
// for as long as the form is loaded and a procedure runs.
struct ReviewContext {
    const platform::Machine& machine;
    trace::TraceContext& trace;
    state::FrameState& frame;             // names the profile and holds the progress bar
    const state::ProfileScalars& profile; // destination, and whether files are compressed
    state::frmVDStorage& form;
    ReviewState& review;
};

// Fills the form for the profile in the editor: walks the archive into Data\ReviewFiles.txt, sorts
// its lines into model.txt by their bytes, deletes the first file and adds the group rows, all of
// them closed. With compression off the walk is left out: the file is taken as the last backup left
// it, and without it the load fails (53). A second look at such an archive needs a new backup.
//
// `loaded` of the form is false where there is no archive, which a message has told; an archive
// folder with nothing in it is deleted, unless a run holds it. Lines whose tag is not of three
// digits get a row of their own that cannot be opened; a third such line ends the load in the error
// tail, with no rows.
void frmVDStorage_Load(ReviewContext& context);

// A click on a row's state icon: opens a closed row, closes an open one, and does nothing on a row
// without the icon. A row that cannot be read is reported and stays closed. The keys that open and
// close rows call this, too.
void rowButtonClicked(ReviewContext& context, std::size_t row);

// What arrow keys move between: the row that this one stands under; 0 for a group.
std::size_t parentRow(const state::frmVDStorage& form, std::size_t row);

// A right click on the list: whether the pop-up menu may open. It opens for no group row (nor for
// any row whose text holds a group's name), and a message says so; the same where nothing is
// selected.
bool rowsRightClicked(ReviewContext& context);

// Adds `count` rows below row `index` (0: groups, at the end of nothing) behind row `insertAfter`,
// which is the last row added afterwards. Their names are the comma-separated `names`, or with
// `fromCollection` the items of `collection`, in step with clxnChildKeys. Raises the frame's
// progress bar row by row and asks for row and last child to be brought into view. Size and date of
// files come from one look at their archive folder, and stay empty where it does not hold the file.
void AddChildItems(ReviewContext& context, std::size_t& index, std::size_t& insertAfter,
                   std::size_t count, bool fromCollection, std::string_view names,
                   const base::TextCollection& collection);

// Removes the rows of a deeper level behind row `index`, up to the next row of its level or behind
// row `last`. The state icon is the caller's.
void RemoveChildItems(ReviewContext& context, std::size_t index, std::size_t last);

// A file's length as the list shows it: whole KB from 1,024 bytes upwards, cut and not rounded,
// however large; bytes below. "0B" where it cannot be had, which is reported.
std::string GetFileSize(ReviewContext& context, std::string_view path);
std::string sizeText(std::uint64_t bytes); // the same of a length that is known

// The columns that need not be kept: "Version 007" or "Version Org", and "True"; empty but for
// files.
std::string versionText(const state::ReviewRow& row);
std::string_view modifiedText(const state::ReviewRow& row);

// What is selected, for the status bar. Sizes are those of the archive files of file rows; what a
// folder holds is not in it.
struct SelectionTotals {
    std::size_t rows = 0;
    std::size_t files = 0;
    std::uint64_t bytes = 0;
};
SelectionTotals selectionTotals(const state::frmVDStorage& form);
// "120 rows", "120 rows, 3 selected, 4.5 MB".
std::string selectionText(const state::frmVDStorage& form);

} // namespace vardelin::archive
