#pragma once

#include "archive/catalog.h"
#include "base/keyed_collection.h"
#include "profile/profile_context.h"
#include "state/restore_forms.h"
#include "state/review_form.h"

#include <functional>
#include <string>
#include <string_view>

// A restore from the review: what the selected rows mean, where their files go, one run of the
// engine, and one closing message.
namespace vardelin::runs {

// What a restore needs of the window.
class RestoreWindow {
public:
    RestoreWindow() = default;
    RestoreWindow(const RestoreWindow&) = delete;
    RestoreWindow& operator=(const RestoreWindow&) = delete;
    virtual ~RestoreWindow() = default;

    // Show a form modally and come back when it is unloaded, or closed by the person as with its
    // Cancel. The form's own handlers run meanwhile.
    virtual void showRestLocation(state::frmRestLocation& form) = 0;
    virtual void showByDate(state::frmByDate& form) = 0;
    // Closes the main frame's commands, and opens them again.
    virtual void setFrameActive(bool active) = 0;
    // A path with a backslash at its end; empty where the choice was cancelled.
    virtual std::string browseForFolder(std::string_view title, std::string_view start) = 0;
    virtual void setFocus(std::string_view control) = 0;
    virtual void clearClipboard() = 0;
};

struct RestoreRequest {
    std::string profileFolder; // with its backslash
    std::string profileFileName;
    const base::TextCollection& clxnRestore; // entries, folder keys, settings groups
    std::string restoreLocation;             // no backslash at its end; empty: the original places
    std::string restoreDate;                 // "NULL" or D/M/YYYY
};

// The engine's flags after a restore.
struct RestoreFlags {
    bool dateNotMatched = false;
    bool passwordMismatch = false;
    bool backupFilesLost = false;
};

// One run of the engine, with the increments of its progress, which add up to 100. Raises what the
// engine raises.
using RestoreRun = std::function<RestoreFlags(const RestoreRequest&,
                                              const std::function<void(double)>& proStatus)>;

// The engine itself.
RestoreRun engineRestore(const platform::Machine& machine, std::string appPath);

struct RestoreState {
    bool bRestoreByDate = false;
    std::string sRestoreDate = "NULL";
    bool running = false; // a run is under way: a second OK does nothing
};

// Holds references only; the application owns the parts.
struct RestoreContext {
    profile::ProfileContext& profiles; // the current profile is ST_Current_Profile_Path
    archive::ReviewState& review;
    state::frmVDStorage& storage; // the rows
    state::frmRestLocation& form;
    state::frmByDate& byDate;
    RestoreState& restore;
    RestoreWindow& window;
    RestoreRun run;
};

// The two commands of the review's pop-up menu.
void mnuAsOf_Click(RestoreContext& context);
void mnuByDate_Click(RestoreContext& context);

// Looks at the selected rows, asks before the registry is overwritten, and either shows the dialog
// or, where only settings are selected, runs it unseen: settings always go back to their place.
// While a restore runs, this and the two commands above come back at once.
void CallingRestDlg(RestoreContext& context);

// Handlers of frmByDate.
void byDateOk_Click(RestoreContext& context);
void byDateCancel_Click(RestoreContext& context);

// Handlers of frmRestDialog. OK checks the location, makes its folder where the person wants it,
// and restores; the review is busy meanwhile. A failure is reported and ends the run without a
// closing message.
void cmbRestLoc_Click(RestoreContext& context);
int cmbRestLoc_KeyPress(int key);
int cmbRestLoc_KeyDown(int keyCode);
void cmdBrowse_Click(RestoreContext& context);
int txtRestLoc_KeyPress(const RestoreContext& context, int key);
// The right button (2) empties the clipboard.
void txtRestLoc_MouseDown(RestoreContext& context, int button);
void restoreOk_Click(RestoreContext& context);
void restoreCancel_Click(RestoreContext& context);

// So much more of a restore is done.
void objRestore_ProStatus(RestoreContext& context, double increment);

// What the selected rows stand for, as the engine takes it.
struct SelectedEntries {
    base::TextCollection clxnRestore;
    bool bFilesSelected = false; // an entry of a file, or a folder's lines
    bool bSettingsSelected = false;
};

// A row without a dot in its text is a folder: it stands for the first block of adjacent lines of
// model.txt that hold a backslash and its text, wherever they lie, and for its key where there is
// none. A folder with a dot in its name stands only for lines at the very top. Any other row is a
// file's version and stands for its key. Entries that differ by case are two where the file system
// tells them apart. Yields between rows, now and then.
SelectedEntries selectedEntries(RestoreContext& context);

} // namespace vardelin::runs
