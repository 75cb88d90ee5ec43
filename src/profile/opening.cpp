#include "profile/opening.h"

#include "base/text.h"
#include "profile/opening_texts.h"
#include "profile/plain_copy.h"
#include "profile/profile_reader.h"
#include "profile/remote_profile.h"
#include "profile/scrambler.h"
#include "trace/messages.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

namespace texts = opening_texts;
using base::PendingError;
using base::RuntimeError;

constexpr std::string_view kModule = "frmOpenProfile";
constexpr std::string_view kCopyName = "PrCopyFromDest";
constexpr std::size_t kExtensionLength = 4;

// A button's handler at work. Reading a profile lets events in, and a second click must not open
// another one in the middle of it.
class CommandRun {
public:
    explicit CommandRun(state::frmOpenProfile& form) : m_form(form) { form.commandRunning = true; }
    CommandRun(const CommandRun&) = delete;
    CommandRun& operator=(const CommandRun&) = delete;
    ~CommandRun() { m_form.commandRunning = false; }

private:
    state::frmOpenProfile& m_form;
};

template <typename Body>
void runCommand(OpeningContext& context, std::string_view name, Body&& body)
{
    if (context.form.commandRunning)
        return;
    const CommandRun run(context.form);
    trace::runTraced(context.profiles.trace, name, kModule, trace::customMessage(name),
                     std::forward<Body>(body));
}

void tell(const OpeningContext& context, std::string_view text)
{
    context.profiles.machine.messageBoxes.show(text, texts::kTitle, platform::Buttons::Ok,
                                               platform::Icon::Exclamation);
}

std::string profilesFolder(const OpeningContext& context)
{
    return context.profiles.frame.ST_App_Path + "\\Profiles\\";
}

void tellNotValid(const OpeningContext& context, std::string_view name)
{
    tell(context, fmt::format("{}{}{}", texts::kNotValidStart, name, texts::kNotValidEnd));
}

// Unscrambling makes a missing file, which would then open as an empty profile.
bool isGone(OpeningContext& context, const std::string& path, std::string_view procedure)
{
    if (context.profiles.machine.fileSystem.find(path))
        return false;
    PendingError gone;
    gone.set(RuntimeError(base::error_number::kFileNotFound, path));
    const std::string text = fmt::format("{}{}", path, trace::message(texts::kProfileGone));
    trace::errorTail(context.profiles.trace, {procedure, procedure, kModule, text}, gone);
    return true;
}

// The timetable of a form that was just loaded. A file mentions the chosen pattern alone, and none
// of them without a schedule; a save looks at the chosen one whether it is scheduled or not.
void resetTimetable(ProfileContext& context)
{
    const state::ProfileEditorState fresh;
    const base::DateTime now = context.machine.clock.now();
    state::ProfileEditorState& editor = context.editor;
    state::choose(editor.patternOptions(), 0);
    state::showPatternPage(editor, 1);
    for (const auto box :
         {&state::ProfileEditorState::txtDailyRecur, &state::ProfileEditorState::txtWeeklyRecur,
          &state::ProfileEditorState::txtMonthlyRecur, &state::ProfileEditorState::txtYearlyRecur})
        (editor.*box).text = (fresh.*box).text;
    for (const auto picker :
         {&state::ProfileEditorState::dtpWeekly, &state::ProfileEditorState::dtpMonthly,
          &state::ProfileEditorState::dtpYearly})
        (editor.*picker).value = (fresh.*picker).value;
    editor.dtpDaily.value = now;
    editor.dtpStDate.value = now;
    editor.dtpStTime.value = now;
    context.store.scalars.dStartDate = {};
}

// What a file need not mention must not be taken over from the profile before.
void dropFormer(ProfileContext& context)
{
    resetTimetable(context);
    state::OpenedLists& opened = context.store.opened;
    opened.clxnOpenedSources.clear();
    opened.clxnOpenedExcluded.clear();
    opened.clxnOpenedIncluded.clear();
    opened.clxnOpenedOtherData.clear();
    state::ProfileEditorState& editor = context.editor;
    editor.tvwDirectory.clear();
    editor.txtInclNames.text.clear();
    editor.txtExclNames.text.clear();
    editor.cmbHintQues.text.clear();
    editor.txtHintAns.text.clear();
}

// What comes back where nothing was opened after all.
class Former {
public:
    Former(state::FrameState& frame, bool openMode)
        : m_frame(frame), m_name(frame.ST_Current_Profile), m_openMode(openMode)
    {
    }
    Former(const Former&) = delete;
    Former& operator=(const Former&) = delete;
    ~Former()
    {
        if (m_dropped)
            return;
        m_frame.ST_Current_Profile = std::move(m_name);
        m_frame.BL_Open_Mode = m_openMode;
        m_frame.panel1.text.clear();
        m_frame.pb.value = 0;
    }
    void drop() { m_dropped = true; }

private:
    state::FrameState& m_frame;
    std::string m_name;
    bool m_openMode;
    bool m_dropped = false;
};

// Makes the plain text of `location` + `name`, and gives its file's name; empty where the person
// was told why there is none.
std::string plainTextOf(OpeningContext& context, const std::string& location,
                        const std::string& name, std::string_view procedure)
{
    if (isGone(context, location + name, procedure))
        return {};
    platform::FileSystem& fileSystem = context.profiles.machine.fileSystem;
    const std::size_t stemLength = name.size() - std::min(name.size(), kExtensionLength);
    std::string plainName = fmt::format("U{}.txt", name.substr(0, stemLength));
    const auto dropCopy = [&] {
        PendingError leftBehind; // it may hold a password
        leftBehind.attempt([&] { fileSystem.removeFile(location + plainName); });
    };
    if (!PrFileDecrypt(context.profiles, location, name)) {
        dropCopy();
        return {};
    }
    try {
        if (adoptPlainCopy(fileSystem, location + plainName, name))
            return plainName;
    } catch (const RuntimeError&) {
        dropCopy();
        throw;
    }
    tellNotValid(context, name);
    return {};
}

// Opens `location` + `name` for viewing. False where it cannot be opened: the person was told why,
// and the editor, the modes and the names are as they were. Raises what the file system raises,
// with the same left behind.
bool openProfile(OpeningContext& context, const std::string& location, const std::string& name,
                 Former& former, std::string_view procedure)
{
    ProfileContext& profiles = context.profiles;
    state::FrameState& frame = profiles.frame;
    frame.bDecryptFileMissing = false;
    frame.ST_Current_Profile = name;
    frame.panel1.text = fmt::format("{}{}{}", texts::kDisplayingStart, base::beforeLast(name, "."),
                                    texts::kDisplayingEnd);
    // Before anything is dropped: a file that cannot be read leaves the editor with what it holds.
    const std::string plainName = plainTextOf(context, location, name, procedure);
    if (plainName.empty())
        return false;

    former.drop();
    context.bProfileOpened = true;
    frame.BL_Open_Mode = true;
    frame.BL_Edit_Mode = false;
    frame.BL_Edit_Changed = false;
    dropFormer(profiles);
    frame.ST_Last_Saved_Profile = name;
    frame.ST_Current_Profile_Path = fmt::format("{}{}", base::trim(location), name);
    ActivateOpenProfile(profiles, plainName, location);
    context.form.loaded = false;
    return true;
}

bool isOpenAlready(const state::FrameState& frame, std::string_view name)
{
    return base::trim(name) == base::trim(frame.ST_Last_Saved_Profile);
}

void tellOpenAlready(OpeningContext& context, std::string_view name)
{
    state::FrameState& frame = context.profiles.frame;
    frame.ST_Current_Profile = name;
    frame.panel1.text = texts::kAlreadyOpenedPanel;
    tell(context, texts::kAlreadyOpened);
    if (frame.BL_Edit_Mode)
        frame.BL_Open_Mode = false;
}

// Also by another way to the same folder: a profile of ours must not become its own copy.
bool liesInProfiles(const OpeningContext& context, const std::string& path)
{
    const std::string folder = profilesFolder(context);
    if (base::startsWithIgnoringCase(path, folder))
        return true;
    platform::FileSystem& fileSystem = context.profiles.machine.fileSystem;
    bool same = false;
    PendingError unknown;
    unknown.attempt([&] {
        same = fileSystem.canonical(platform::parentOf(path)) == fileSystem.canonical(folder);
    });
    return same;
}

void openLocal(OpeningContext& context, const std::string& folder, const std::string& name)
{
    state::FrameState& frame = context.profiles.frame;
    frame.BL_Remote_Profile = false;
    if (isOpenAlready(frame, name)) {
        tellOpenAlready(context, name);
        return;
    }
    Former former(frame, frame.BL_Open_Mode);
    openProfile(context, folder, name, former, kCopyName);
}

void openRemote(OpeningContext& context, const std::string& path, const std::string& name)
{
    ProfileContext& profiles = context.profiles;
    state::FrameState& frame = profiles.frame;
    frame.ST_Remote_Name = name;
    frame.ST_Remote_Path = path;
    const std::string folder = profilesFolder(context);
    PendingError error;
    const bool fetched = error.attempt([&] { fetchRemoteProfile(profiles, path, name); });
    // A local profile that could not make way is the one that opens; the error comes behind it.
    bool opened = false;
    if (fetched || profiles.machine.fileSystem.fileExists(folder + name)) {
        Former former(frame, frame.BL_Open_Mode);
        error.attempt([&] { opened = openProfile(context, folder, name, former, kCopyName); });
    }
    if (fetched && !opened)
        dropRemoteProfile(profiles, name);
    if (!frame.BL_Remote_Profile) {
        frame.ST_Remote_Name.clear();
        frame.ST_Remote_Path.clear();
    }
    trace::errorTail(profiles.trace,
                     {kCopyName, kCopyName, kModule, trace::customMessage(kCopyName)}, error);
}

} // namespace

void cmdOpen_Click(OpeningContext& context)
{
    runCommand(context, "cmdOpen_Click", [&] {
        state::FrameState& frame = context.profiles.frame;
        Former former(frame, std::exchange(frame.BL_Open_Mode, true));
        const auto& rows = context.form.lstOpen.rows;
        const auto row = std::ranges::find_if(rows, &state::ListRow::checked);
        if (row == rows.end()) {
            former.drop();
            tell(context, texts::kSelectOne);
        } else if (isOpenAlready(frame, row->text)) {
            former.drop();
            tellOpenAlready(context, row->text);
        } else {
            // Copies: a click on a column head while the profile is read moves the rows.
            openProfile(context, std::string(row->sub), std::string(row->text), former,
                        "cmdOpen_Click");
        }
    });
}

void cmdSelProfile_Click(OpeningContext& context)
{
    runCommand(context, "cmdSelProfile_Click", [&] {
        const std::string path =
            context.chooser.chooseFile(texts::kChooserTitle, texts::kChooserFilter,
                                       context.profiles.frame.ST_App_Path + "\\Profiles");
        const std::string_view tail =
            std::string_view(path).substr(path.size() - std::min<std::size_t>(path.size(), 3));
        if (!context.profiles.machine.fileSystem.fileExists(path)) {
            tell(context, texts::kSelectExisting);
        } else if (liesInProfiles(context, path)) {
            PrCopyFromDest(context, path, false);
        } else if (!base::equalsIgnoringCase(tail, texts::kExtension)) {
            tellNotValid(context, platform::leafOf(path));
        } else {
            PrCopyFromDest(context, path, true);
            context.lastSelected = platform::parentOf(path);
        }
    });
}

void cmdClose_Click(OpeningContext& context)
{
    runCommand(context, "cmdClose_Click", [&] {
        state::FrameState& frame = context.profiles.frame;
        frame.panel1.text.clear();
        frame.pb.value = 0;
        // It stays until the next confirmation is over: a plain save that is refused until then
        // counts as blocked.
        frame.BL_Confirm_Save_Running = true;
        // A ticked row disables the button, so a view gets here only by the frame's close box.
        if (std::ranges::any_of(context.form.lstOpen.rows, &state::ListRow::checked)) {
            frame.bProfileTicked = false;
            frame.BL_Open_Mode = false;
        }
        context.form.loaded = false;
    });
}

void PrCopyFromDest(OpeningContext& context, std::string_view path, bool outside)
{
    trace::runTraced(context.profiles.trace, kCopyName, kModule, trace::customMessage(kCopyName),
                     [&] {
                         const std::string trimmed(base::trim(path));
                         const std::size_t nameAt = trimmed.rfind('\\') + 1;
                         const std::string name = trimmed.substr(nameAt);
                         if (outside)
                             openRemote(context, trimmed, name);
                         else
                             openLocal(context, trimmed.substr(0, nameAt), name);
                     });
}

} // namespace vardelin::profile
