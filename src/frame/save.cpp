#include "base/text.h"
#include "editor/validation.h"
#include "frame/frame_texts.h"
#include "frame/profile_commands.h"
#include "frame/save_file.h"
#include "frame/steps.h"
#include "profile/list_file.h"
#include "profile/scramble_text.h"
#include "runs/space_check.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace vardelin::frame {

using state::FrameState;

namespace {

namespace texts = frame_texts;

constexpr std::string_view kEditSaveMode = "EditSaveMode";
constexpr std::string_view kExtension = ".vdp";

// The pointer's hourglass, down to the end of a save.
class FrameHourglass {
public:
    explicit FrameHourglass(state::MainFrameForm& form) : m_form(form) { m_form.hourglass = true; }
    FrameHourglass(const FrameHourglass&) = delete;
    FrameHourglass& operator=(const FrameHourglass&) = delete;
    ~FrameHourglass() { m_form.hourglass = false; }

private:
    state::MainFrameForm& m_form;
};

// Whether the profile holds sources and a destination, all of them read, and nothing in it is
// wrong.
bool maySave(FrameContext& context)
{
    // Half a folder would go into the file as the whole of it. The reading waits below this very
    // call, so it cannot be waited for.
    if (context.form.tree.form.reading.active) {
        refuse(context, texts::kStillReading);
        context.profiles.frame.BL_Save_Blocked = true;
        return false;
    }
    state::ProfileScalars& scalars = context.profiles.store.scalars;
    // An earlier save that stopped may have left them, and the person unticked everything since.
    scalars.bHaveSources = false;
    scalars.bHaveOtherData = false;
    scalars.bHaveDestination = false;
    editor::FrmLevelValidation(context.form.pages);
    if (context.profiles.frame.BL_Save_Blocked)
        return false;
    profile::ActivateSaveProfile(context.profiles, context.form.window);
    return !context.profiles.frame.BL_Save_Blocked &&
           (scalars.bHaveSources || scalars.bHaveOtherData || scalars.bHaveIncluded) &&
           scalars.bHaveDestination;
}

bool nameIsTaken(FrameContext& context, std::string_view name)
{
    const auto entries = context.profiles.machine.fileSystem.list(profilesFolder(context));
    return std::any_of(entries.begin(), entries.end(), [&](const platform::FolderEntryInfo& entry) {
        return base::equalsIgnoringCase(entry.name, name);
    });
}

// The box lets none of these be typed, but a name may be pasted. A backslash would lead elsewhere.
bool nameIsUsable(std::string_view name)
{
    return std::none_of(name.begin(), name.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos;
    });
}

// A free name with its extension; empty where there is none, because the person cancelled or gave
// no more than an extension.
std::string chooseName(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    for (;;) {
        PrSaveNameIp(context);
        std::string name = std::exchange(frame.ST_Current_Profile_Path, {});
        if (frame.BL_Name_Cancelled || name.empty())
            return {};
        if (base::equalsIgnoringCase(name, kExtension)) {
            refuse(context, texts::kNotApplicable);
            return {};
        }
        if (!base::endsWithIgnoringCase(name, kExtension))
            name += kExtension;
        if (!nameIsUsable(name))
            refuse(context, fmt::format("{}{}{}", texts::kNameStart, name, texts::kNameUnusable));
        else if (nameIsTaken(context, name))
            refuse(context, fmt::format("{}{}{}", texts::kNameStart, name, texts::kNameTaken));
        else
            return name;
    }
}

void enableSaved(state::MainFrameForm& form)
{
    for (const std::size_t button : {4U, 8U, 9U})
        form.Toolbar1(button).enabled = true;
    form.mnuBackup.enabled = true;
    form.mnure.enabled = true;
    form.mnuSave.enabled = true;
}

// The file holds all that the editor holds, but for what the person changed while it was written.
void takeFlagsBack(FrameContext& context, bool hideFrame14, const SavePause& pause)
{
    FrameState& frame = context.profiles.frame;
    if (hideFrame14)
        context.profiles.editor.Frame14.visible = false;
    frame.BL_Edit_Changed = pause.sawChange();
    frame.BL_New_Changed = false;
    frame.BL_First_Run = false;
    context.profiles.store.scalars.bDestinationChanged = false;
    frame.panel1.text = texts::kSaved;
}

// No failure: the profile is saved, and these lines alone are not what they were. By number only,
// for one of them may be the password.
void tellLossyLines(FrameContext& context, const std::vector<std::size_t>& lines)
{
    if (!lines.empty())
        refuse(context, fmt::format("{}{}{}", texts::kLossyStart, profile::lineNumbersText(lines),
                                    texts::kLossyEnd));
}

void makePrimary(FrameContext& context, const std::string& name)
{
    context.profiles.editor.chkPrimary.value = 1;
    profile::SetPrimaryProfile(context.profiles, name);
    // The next save of this profile tells by it whether the person has taken the tick away.
    context.profiles.frame.ST_Primary_Profile = name;
}

void replacePrimary(FrameContext& context, const std::string& name)
{
    profile::RemoveVdpName(context.profiles);
    makePrimary(context, name);
}

bool primaryExists(FrameContext& context)
{
    bool found = false;
    profile::IsPrProFileExists(context.profiles, found);
    return found;
}

void markNewProfile(FrameContext& context, const std::string& name)
{
    const bool ticked = context.profiles.editor.chkPrimary.value == 1;
    if (primaryExists(context)) {
        if (ticked)
            replacePrimary(context, name);
    } else if (ticked || ask(context, texts::kPrimaryQuestion)) {
        makePrimary(context, name);
    }
}

void markEditedProfile(FrameContext& context)
{
    const std::string name(currentName(context.profiles.frame));
    const bool ticked = context.profiles.editor.chkPrimary.value == 1;
    if (!ticked && base::equalsIgnoringCase(name, context.profiles.frame.ST_Primary_Profile))
        profile::RemoveVdpName(context.profiles);
    if (primaryExists(context)) {
        if (ticked)
            replacePrimary(context, name);
    } else if (ticked) {
        replacePrimary(context, name);
    } else if (ask(context, texts::kPrimaryQuestion)) {
        makePrimary(context, name);
    }
}

void saveUnderNewName(FrameContext& context, bool& saved)
{
    FrameState& frame = context.profiles.frame;
    if (!maySave(context))
        return;
    context.main.hourglass = false;
    const std::string name = chooseName(context);
    if (name.empty())
        return;

    const FrameHourglass hourglass(context.main);
    SavePause pause(context);
    const WrittenProfile written = writeProfile(context, name, pause);
    if (!written.done) {
        frame.BL_Save_Blocked = true;
        return;
    }
    saved = true;
    enableSaved(context.main);
    frame.ST_Last_Saved_Profile = name;
    takeFlagsBack(context, frame.BL_New_Changed, pause);
    // Or a profile that went back to its media and has no name here.
    if (frame.BL_New_Mode || frame.ST_Current_Profile.empty())
        frame.ST_Current_Profile = name;
    if (frame.BL_New_Mode) {
        frame.BL_New_Mode = false;
        frame.BL_Edit_Mode = true;
    }
    frame.ST_Current_Profile_Path = profilePath(context, name);
    // The new profile has no archive yet that the password or the destination could leave behind.
    frame.bPwdChangeMode = false;
    frame.bPwdConfirmMode = false;
    frame.BL_Dest_Moved = false;
    tellLossyLines(context, written.lossyLines);
    markNewProfile(context, name);
}

void moveArchive(FrameContext& context, const std::string& name)
{
    FrameState& frame = context.profiles.frame;
    if (!frame.BL_Dest_Moved)
        return;
    frame.panel1.text = texts::kCopyingBackup;
    frame.BL_Dest_Moved = false;
    const state::ProfileScalars& scalars = context.profiles.store.scalars;
    const runs::SpaceCheckContext space{context.profiles.machine, context.profiles.trace, frame,
                                        context.profiles.editor};
    runs::CheckspaceFornew(space, stemOf(name), scalars.sPreviousDestination,
                           scalars.sDestinationPath);
}

// The archive holds a copy of the profile, which must not keep a former password or say otherwise
// of the encryption. Before the first backup there is no archive.
void renewArchiveCopy(FrameContext& context, const std::string& name, bool encryptionChanged)
{
    FrameState& frame = context.profiles.frame;
    const state::ProfileScalars& scalars = context.profiles.store.scalars;
    const bool passwordTouched = frame.bPwdChangeMode || frame.bPwdConfirmMode;
    frame.bPwdChangeMode = false;
    frame.bPwdConfirmMode = false;
    if (!passwordTouched && !encryptionChanged)
        return;
    platform::FileSystem& files = context.profiles.machine.fileSystem;
    const std::string root = platform::joinPath(scalars.sDestinationPath, stemOf(name));
    if (!files.folderExists(root))
        return;
    base::PendingError failure;
    failure.attempt([&] {
        files.replaceFile(platform::joinPath(root, name),
                          files.readAll(profilePath(context, name)));
    });
    trace::errorTail(context.profiles.trace,
                     {kEditSaveMode, kEditSaveMode, kModule, trace::customMessage(kEditSaveMode)},
                     failure);
    if (!failure)
        tell(context, texts::kBackUpAgain);
}

void saveEdited(FrameContext& context, const std::string& name, bool& saved)
{
    FrameState& frame = context.profiles.frame;
    if (!maySave(context))
        return;
    const FrameHourglass hourglass(context.main);
    SavePause pause(context);
    const WrittenProfile written = writeProfile(context, name, pause);
    if (!written.done) {
        frame.BL_Save_Blocked = true;
        return;
    }
    saved = true;
    enableSaved(context.main);
    takeFlagsBack(context, frame.BL_Edit_Changed, pause);
    // It may have been opened from a folder below; from now on it is this file.
    frame.ST_Current_Profile_Path = profilePath(context, name);
    tellLossyLines(context, written.lossyLines);
    moveArchive(context, name);
    renewArchiveCopy(context, name, written.encryptionChanged);
    markEditedProfile(context);
}

} // namespace

bool SaveProfile(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    const std::string formerPath = frame.ST_Current_Profile_Path;
    bool saved = false;
    if (!runProcedure(context, "SaveProfile", [&] { saveUnderNewName(context, saved); })) {
        frame.panel1.text.clear();
        frame.pb.value = 0;
    }
    // The name dialog has left its own text there.
    if (!saved)
        frame.ST_Current_Profile_Path = formerPath;
    frame.BL_Name_Cancelled = false;
    if (!saved && frame.BL_Confirm_Save_Running)
        frame.BL_Save_Blocked = true;
    return saved;
}

bool EditSaveMode(FrameContext& context, std::string_view name)
{
    bool saved = false;
    runProcedure(context, kEditSaveMode, [&] { saveEdited(context, std::string(name), saved); });
    if (!saved && context.profiles.frame.BL_Confirm_Save_Running)
        context.profiles.frame.BL_Save_Blocked = true;
    return saved;
}

} // namespace vardelin::frame
