#include "runs/restore_dialog.h"

#include "archive/paced_loop.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/path_rule.h"
#include "profile/file_details.h"
#include "runs/restore_texts.h"
#include "state/name_tables.h"
#include "trace/error_tail.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace vardelin::runs {
namespace {

using base::PendingError;
using base::trim;
using platform::Answer;
using platform::Buttons;
using platform::Icon;
namespace error_number = base::error_number;
namespace texts = restore_texts;

constexpr std::string_view kTitle = "Vardelin";
constexpr std::string_view kModule = "frmRestDialog";
constexpr std::string_view kNoDate = "NULL";
constexpr int kBackspaceKey = 8;
constexpr int kDeleteKey = 46;
constexpr int kRightButton = 2;

void tell(const RestoreContext& context, std::string_view text)
{
    context.profiles.machine.messageBoxes.show(text, kTitle);
}

bool ask(const RestoreContext& context, std::string_view text, Icon icon = Icon::Question)
{
    return context.profiles.machine.messageBoxes.show(text, kTitle, Buttons::YesNo, icon) ==
           Answer::Yes;
}

bool isOriginal(const state::frmRestLocation& form)
{
    return base::equalsIgnoringCase(trim(form.cmbRestLoc.text), texts::kOriginal);
}

bool isSettingsGroup(std::string_view text)
{
    return std::find(state::kOtherDataNames.begin(), state::kOtherDataNames.end(), text) !=
           state::kOtherDataNames.end();
}

void loadAnew(RestoreContext& context)
{
    context.form = {};
}

void showAnew(RestoreContext& context)
{
    loadAnew(context);
    context.window.showRestLocation(context.form);
}

// On the dialog, and on the review where that is not shown.
void showHourglass(RestoreContext& context, bool shows)
{
    context.form.hourglass = shows;
    context.storage.hourglass = shows;
}

class ClosedFrame {
public:
    explicit ClosedFrame(RestoreWindow& window) : m_window(window)
    {
        m_window.setFrameActive(false);
    }
    ClosedFrame(const ClosedFrame&) = delete;
    ClosedFrame& operator=(const ClosedFrame&) = delete;
    ~ClosedFrame() { m_window.setFrameActive(true); }

private:
    RestoreWindow& m_window;
};

// What stands while a restore goes on, and falls whatever ends it. The review keeps its rows
// meanwhile: those that are selected are what is restored.
class RestoreUnderWay {
public:
    explicit RestoreUnderWay(RestoreContext& context) : m_context(context) { set(true); }
    RestoreUnderWay(const RestoreUnderWay&) = delete;
    RestoreUnderWay& operator=(const RestoreUnderWay&) = delete;
    ~RestoreUnderWay()
    {
        set(false);
        m_context.profiles.frame.pb.value = 0;
    }

private:
    void set(bool underWay)
    {
        m_context.restore.running = underWay;
        m_context.storage.busy = underWay;
        showHourglass(m_context, underWay);
    }

    RestoreContext& m_context;
};

// Settings go back to their places, without a dialog; the frame is closed meanwhile.
void runUnseen(RestoreContext& context)
{
    loadAnew(context);
    context.form.cmbRestLoc.text = texts::kOriginal;
    context.form.txtRestLoc.text = texts::kOriginal;
    const ClosedFrame closed(context.window);
    restoreOk_Click(context);
    context.form.loaded = false;
}

struct SelectedRows {
    int settings = 0;
    int others = 0;
    bool refused = false; // the person does not want the registry overwritten
};

SelectedRows countSelected(RestoreContext& context)
{
    SelectedRows selected;
    for (const state::ReviewRow& row : context.storage.lstRestore) {
        if (!row.selected)
            continue;
        ++(isSettingsGroup(row.text) ? selected.settings : selected.others);
        if (row.text == texts::kRegistrySettings &&
            !ask(context, texts::kOverwriteRegistry, Icon::Exclamation)) {
            selected.refused = true;
            return selected;
        }
    }
    return selected;
}

void callForSelection(RestoreContext& context)
{
    const archive::ReviewState& review = context.review;
    if (review.bFilesExist && !review.bOtherDataExists) {
        showAnew(context);
        return;
    }
    if (!review.bOtherDataExists)
        return;
    const SelectedRows selected = countSelected(context);
    if (selected.refused) {
        context.form.loaded = false;
        return;
    }
    if (review.bFilesExist && selected.others > 0)
        showAnew(context);
    else if (!review.bFilesExist || selected.settings > 0)
        runUnseen(context);
}

// model.txt as a whole: read once a restore and searched for each selected row.
class Model {
public:
    explicit Model(RestoreContext& context) : m_context(context) {}

    // The block of adjacent lines that hold `part`; with `atTopOnly`, one that the file begins
    // with. `each` is given the lines. Whether there was one.
    template <typename Each>
    bool block(const std::string& part, bool atTopOnly, Each&& each)
    {
        const std::string_view text = read();
        const std::size_t hit = text.find(part);
        if (hit == std::string_view::npos)
            return false;
        std::size_t begin = text.rfind('\n', hit);
        begin = begin == std::string_view::npos ? 0 : begin + 1;
        if (atTopOnly && begin != 0)
            return false;
        while (begin < text.size()) {
            std::size_t end = text.find('\n', begin);
            end = end == std::string_view::npos ? text.size() : end;
            std::string_view line = text.substr(begin, end - begin);
            if (line.ends_with('\r'))
                line.remove_suffix(1);
            if (line.find(part) == std::string_view::npos)
                break;
            each(line);
            begin = end + 1;
        }
        return true;
    }

private:
    std::string_view read()
    {
        if (!m_text)
            m_text = m_context.profiles.machine.fileSystem.readAll(
                platform::joinPath(m_context.profiles.frame.ST_App_Path, "model.txt"));
        return *m_text;
    }

    RestoreContext& m_context;
    std::optional<std::string> m_text;
};

std::string withoutGroup(std::string_view line)
{
    const std::string prefix = std::string(archive::kFilesGroup) + "\\";
    return std::string(base::startsWithIgnoringCase(line, prefix) ? line.substr(prefix.size())
                                                                  : line);
}

void addRow(Model& model, const state::ReviewRow& row, SelectedEntries& entries)
{
    const auto add = [&](std::string_view entry) {
        entries.clxnRestore.tryAdd(std::string(entry), entry);
    };
    const auto addLine = [&](std::string_view line) {
        add(withoutGroup(line));
        entries.bFilesSelected = true;
    };
    if (row.text.find('.') == std::string::npos) {
        if (!model.block("\\" + row.text, false, addLine))
            add(row.key);
    } else if (trim(row.key).ends_with('\\')) {
        model.block(row.text, true, addLine);
    } else {
        add(row.key);
        entries.bFilesSelected = true;
    }
}

// Where the files go, checked: without a value the person was told what is wrong.
std::optional<std::string> checkedLocation(RestoreContext& context)
{
    state::frmRestLocation& form = context.form;
    platform::FileSystem& fileSystem = context.profiles.machine.fileSystem;
    const bool original = isOriginal(form);
    std::string location(trim(form.txtRestLoc.text));
    if (trim(form.cmbRestLoc.text).empty() || location.empty()) {
        tell(context, texts::kLocationMissing);
        return std::nullopt;
    }
    if (original) {
        return std::string();
    }
    if (location.find(":\\") == std::string::npos) {
        form.hourglass = false;
        tell(context, texts::kInvalidPath);
        return std::nullopt;
    }
    if (location.ends_with('\\'))
        location.pop_back();
    form.txtRestLoc.text = location;
    const std::string_view drive = base::beforeFirst(location, ":");
    if (drive.size() != 1 || !context.profiles.machine.drives.exists(drive.front())) {
        tell(context, texts::kNoDrive);
        return std::nullopt;
    }
    // A drive's root is a folder that exists, with its backslash.
    if (fileSystem.folderExists(platform::isDriveRoot(location) ? location + "\\" : location))
        return location;
    tell(context, texts::kNoFolder);
    if (!ask(context, texts::kCreateFolder))
        return std::nullopt;
    form.txtRestLoc.text += "\\";
    bool failed = false;
    profile::FolderChk(context.profiles.trace, fileSystem, form.txtRestLoc.text, failed);
    if (failed || !fileSystem.folderExists(location)) {
        tell(context, texts::kNotAccessible);
        form.txtRestLoc.text.clear();
        return std::nullopt;
    }
    return location;
}

std::string_view closingMessage(const SelectedEntries& entries, const RestoreFlags& flags)
{
    if (!entries.bFilesSelected)
        return entries.bSettingsSelected ? texts::kSettingsRestored : std::string_view();
    if (flags.dateNotMatched)
        return texts::kDateNotMatched;
    const texts::Outcomes& outcomes =
        entries.bSettingsSelected ? texts::kFilesAndSettings : texts::kFiles;
    if (flags.passwordMismatch)
        return flags.backupFilesLost ? outcomes.mismatchAndLoss : outcomes.mismatch;
    return flags.backupFilesLost ? outcomes.loss : outcomes.restored;
}

// `gathering` stands while the rows are looked up in model.txt: an error then is that file's.
void restoreTo(RestoreContext& context, const std::string& location, bool& gathering)
{
    profile::ProfileContext& profiles = context.profiles;
    RestoreState& restore = context.restore;
    gathering = true;
    const SelectedEntries entries = selectedEntries(context);
    gathering = false;
    if (isOriginal(context.form))
        context.form.txtRestLoc.text.clear();
    const std::string& path = profiles.frame.ST_Current_Profile_Path;
    const std::size_t slash = path.rfind('\\');
    if (slash == std::string::npos)
        throw base::RuntimeError(error_number::kInvalidCall, path);
    if (!restore.bRestoreByDate)
        restore.sRestoreDate = kNoDate;
    const RestoreFlags flags =
        context.run({path.substr(0, slash + 1), path.substr(slash + 1), entries.clxnRestore,
                     location, restore.sRestoreDate},
                    [&](double increment) { objRestore_ProStatus(context, increment); });
    showHourglass(context, false);
    if (const std::string_view message = closingMessage(entries, flags); !message.empty())
        tell(context, message);
}

} // namespace

void mnuAsOf_Click(RestoreContext& context)
{
    if (context.restore.running)
        return;
    context.restore.bRestoreByDate = false;
    CallingRestDlg(context);
}

void mnuByDate_Click(RestoreContext& context)
{
    if (context.restore.running)
        return;
    context.byDate = {};
    context.byDate.mnvResDate = context.profiles.machine.clock.now().date;
    context.window.showByDate(context.byDate);
}

void byDateOk_Click(RestoreContext& context)
{
    context.restore.sRestoreDate = base::dayMonthYear(context.byDate.mnvResDate);
    context.restore.bRestoreByDate = true;
    context.byDate.loaded = false;
    CallingRestDlg(context);
}

void byDateCancel_Click(RestoreContext& context)
{
    context.byDate.loaded = false;
}

void CallingRestDlg(RestoreContext& context)
{
    if (context.restore.running)
        return;
    trace::runTraced(context.profiles.trace, "CallingRestDlg", "MDIForm", texts::kCallFailed,
                     [&] { callForSelection(context); });
}

void cmbRestLoc_Click(RestoreContext& context)
{
    state::frmRestLocation& form = context.form;
    const bool original = isOriginal(form);
    form.cmdBrowse.enabled = !original;
    form.txtRestLoc.enabled = !original;
    form.txtRestLoc.text = original ? texts::kOriginal : std::string_view();
}

int cmbRestLoc_KeyPress(int)
{
    return 0;
}

int cmbRestLoc_KeyDown(int keyCode)
{
    return keyCode == kDeleteKey ? 0 : keyCode;
}

void cmdBrowse_Click(RestoreContext& context)
{
    trace::runTraced(context.profiles.trace, "cmdBrowse_Click", kModule, texts::kBrowseFailed, [&] {
        const std::string folder = context.window.browseForFolder(texts::kBrowseTitle, "C:\\");
        if (folder.empty())
            return;
        context.form.txtRestLoc.text = folder;
        context.window.setFocus("cmdOK");
    });
}

int txtRestLoc_KeyPress(const RestoreContext& context, int key)
{
    constexpr std::string_view kRefused = "\"'*,./<>?|";
    if (key == kBackspaceKey || key < 0 || key > 0x7F)
        return key;
    const char typed = static_cast<char>(key);
    if (kRefused.find(typed) != std::string_view::npos)
        return 0;
    if (typed == ':' && context.form.txtRestLoc.text.size() != 1)
        return 0;
    return key;
}

void txtRestLoc_MouseDown(RestoreContext& context, int button)
{
    if (button == kRightButton)
        context.window.clearClipboard();
}

void restoreCancel_Click(RestoreContext& context)
{
    if (!context.restore.running)
        context.form.loaded = false;
}

SelectedEntries selectedEntries(RestoreContext& context)
{
    const platform::Machine& machine = context.profiles.machine;
    SelectedEntries entries{.clxnRestore =
                                base::TextCollection(platform::pathRule(machine.fileSystem))};
    Model model(context);
    archive::PacedLoop loop(machine.messageLoop, machine.clock);
    const auto& rows = context.storage.lstRestore;
    for (std::size_t i = 0; i < rows.size(); ++i) { // by number: the loop yields
        if (!rows[i].selected)
            continue;
        addRow(model, rows[i], entries);
        loop.step();
    }
    if (!context.review.bOtherDataExists)
        return entries;
    for (const state::ReviewRow& row : rows) {
        const bool isGroup =
            row.selected && std::any_of(state::kOtherDataNames.begin(),
                                        state::kOtherDataNames.end(), [&](std::string_view name) {
                                            return base::containsIgnoringCase(row.text, name);
                                        });
        if (isGroup) {
            entries.clxnRestore.tryAdd(row.text, row.text);
            entries.bSettingsSelected = true;
        }
    }
    return entries;
}

void restoreOk_Click(RestoreContext& context)
{
    if (context.restore.running)
        return;
    constexpr std::string_view kName = "cmdOk_Click";
    PendingError failure;
    bool gathering = false;
    failure.attempt([&] {
        const trace::TraceScope scope(context.profiles.trace.trace, kName);
        const auto location = checkedLocation(context);
        if (!location)
            return;
        const RestoreUnderWay underWay(context);
        restoreTo(context, *location, gathering);
        context.form.loaded = false;
    });
    const std::string_view sentence = !gathering ? texts::kRestoreFailed
                                      : failure.number == error_number::kPastEnd
                                          ? texts::kModelPastEnd
                                          : texts::kModelNotOpened;
    trace::errorTail(context.profiles.trace, {kName, kName, kModule, sentence}, failure);
}

void objRestore_ProStatus(RestoreContext& context, double increment)
{
    state::ProgressBar& bar = context.profiles.frame.pb;
    bar.value = std::min(bar.maximum, bar.value + increment);
    context.profiles.machine.messageLoop.yield();
}

} // namespace vardelin::runs
