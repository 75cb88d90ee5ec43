#include "frame/archive_commands.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "frame/archive_texts.h"
#include "frame/command.h"
#include "frame/main_frame.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"
#include "runs/space_check.h"

#include <cstddef>
#include <string>

#include <fmt/format.h>

namespace vardelin::frame {
namespace {

using base::PendingError;
namespace texts = archive_texts;

constexpr std::size_t kEditButton = 3;
constexpr std::size_t kSaveButton = 4;
constexpr std::size_t kSaveAsButton = 5;
constexpr std::size_t kBackupButton = 8;
constexpr std::size_t kProfileButton = 11;
constexpr int kFirstTab = 0;

// The saved profile that a run is about; both empty for one that was never saved.
struct SavedProfile {
    std::string folder; // with its backslash
    std::string name;
};

SavedProfile savedProfile(const FrameContext& context)
{
    const state::FrameState& frame = context.profiles.frame;
    const std::string& path = frame.ST_Current_Profile_Path;
    const std::size_t slash = path.rfind('\\');
    if (slash == std::string::npos)
        return {};
    // A profile from backup media runs from its working copy.
    return {frame.BL_Remote_Profile ? profilesFolder(context) + "\\" : path.substr(0, slash + 1),
            path.substr(slash + 1)};
}

void gate(FrameContext& context, bool active)
{
    MainWndActiveInAct(context.main, active);
    context.main.maximizeBox = active;
}

// Whatever ends a run, the frame can be used again behind it and its form is gone.
class FrameOfRun {
public:
    FrameOfRun(FrameContext& context, runs::BackupContext& backup)
        : m_context(context), m_backup(backup)
    {
    }
    FrameOfRun(const FrameOfRun&) = delete;
    FrameOfRun& operator=(const FrameOfRun&) = delete;
    ~FrameOfRun()
    {
        gate(m_context, true);
        runs::unloadCancelForm(m_backup);
    }

private:
    FrameContext& m_context;
    runs::BackupContext& m_backup;
};

// The engine of a run, with the events that it holds on to: neither outlives the command.
class EngineOfRun {
public:
    explicit EngineOfRun(runs::BackupContext& backup) : m_backup(backup), m_events(backup) {}
    EngineOfRun(const EngineOfRun&) = delete;
    EngineOfRun& operator=(const EngineOfRun&) = delete;
    ~EngineOfRun() { release(); }

    void make() { m_backup.backup.objBackUp = m_backup.make(m_events); }
    void release() { m_backup.backup.objBackUp.reset(); }

private:
    runs::BackupContext& m_backup;
    runs::BackupEvents m_events;
};

void reportRun(FrameContext& context, const PendingError& failure)
{
    constexpr std::string_view kName = "mnuRun_Click";
    trace::errorTail(context.profiles.trace, {kName, kName, kModule, trace::customMessage(kName)},
                     failure);
}

void tellOutcome(FrameContext& context, runs::BackupContext& backup)
{
    runs::BackupEngine& engine = *backup.backup.objBackUp;
    std::string& panel = context.profiles.frame.panel1.text;
    if (!backup.backup.BL_Cancel_Pressed && !engine.CancelRequested()) {
        backup.form.pbBkp.value = backup.form.pbBkp.maximum;
        panel = texts::kCompletedPanel;
        tell(context, engine.MissedFiles() ? texts::kCompletedWithGaps : texts::kCompleted);
    } else {
        panel.clear();
    }
    if (engine.NoFilesIdentified()) {
        panel = texts::kNothingToDo;
        tell(context, texts::kNothingToDo);
        engine.NoFilesIdentified(false);
        panel.clear();
    }
}

void runEngine(FrameContext& context, runs::BackupContext& backup, const SavedProfile& profile)
{
    PendingError failure;
    failure.attempt([&] {
        const FrameOfRun reopened(context, backup);
        runs::loadCancelForm(backup);
        context.profiles.frame.panel1.text = texts::kGoingOn;
        gate(context, false);
        bool success = false;
        backup.backup.objBackUp->EngineBackup(profile.folder, profile.name, success);
    });
    if (!failure) {
        tellOutcome(context, backup);
        return;
    }
    context.profiles.frame.panel1.text.clear();
    reportRun(context, failure);
}

// Whether the save that was due went through.
bool saved(FrameContext& context)
{
    if (context.profiles.frame.BL_Edit_Changed)
        ConfirmSave(context);
    return !context.profiles.frame.BL_Save_Blocked;
}

void backUp(FrameContext& context, runs::BackupContext& backup)
{
    context.main.Toolbar1(kBackupButton).toolTip = texts::kBackupTip;
    const SavedProfile profile = savedProfile(context);
    if (profile.folder.empty() || profile.name.empty()) {
        refuse(context, texts::kNotSaved);
        return;
    }
    runs::Checkspace({context.profiles.machine, context.profiles.trace, context.profiles.frame,
                      context.profiles.editor});
    runEngine(context, backup, profile);
}

std::string reviewCaption(std::string_view profileName)
{
    if (profileName.empty())
        return std::string(texts::kReviewCaption);
    return fmt::format("{} - '{} 'Profile", texts::kReviewCaption, stemOf(profileName));
}

// A restore goes by the profile, a deletion by the archive on show: they must be the same.
bool showsArchiveOf(const FrameContext& context, const ReviewCommandContext& review)
{
    return review.reviewIsOpen && review.storage.loaded &&
           review.review.sStoreRoot ==
               archive::archiveRoot(context.profiles.store.scalars.sDestinationPath,
                                    context.profiles.frame.ST_Current_Profile);
}

// The commands that save have nothing to save there: what is on show is the archive.
void showReview(FrameContext& context, ReviewCommandContext& review)
{
    review.storage.visible = true;
    for (const std::size_t button : {kEditButton, kSaveButton, kSaveAsButton})
        context.main.Toolbar1(button).enabled = false;
    for (state::MenuEntry* const entry :
         {&context.main.mnuEdit, &context.main.mnuSave, &context.main.mnuSaveAs})
        entry->enabled = false;
    context.main.Toolbar1(kProfileButton).enabled = true;
    context.main.mnuProfile.enabled = true;
    review.showReview();
}

void openReview(FrameContext& context, ReviewCommandContext& review, const SavedProfile& profile)
{
    std::string& panel = context.profiles.frame.panel1.text;
    bool found = false;
    const std::string path = profile.folder + profile.name;
    runs::PasswordGateContext gateContext{context.profiles, review.passwords, path};
    runs::PwdCheck(gateContext, found);
    if (!context.profiles.frame.bPwdPassed) {
        panel.clear();
        return;
    }
    panel = texts::kReviewingData;
    MainWndActiveInAct(context.main, false);
    PendingError unseen; // the load has shown its own
    unseen.attempt([&] { review.frmVDStorage_Load(); });
    MainWndActiveInAct(context.main, true);
    if (unseen || !review.storage.loaded) {
        review.storage.loaded = false;
        panel.clear();
        return;
    }
    review.storage.caption = reviewCaption(profile.name);
    review.storage.enabled = true;
    review.reviewIsOpen = true;
    showReview(context, review);
}

} // namespace

// Its trace begins and ends under two names, which people know from their logs.
void mnuBackup_Click(FrameContext& context, runs::BackupContext& backup)
{
    runAlone(context, [&] {
        trace::RunTrace& log = context.profiles.trace.trace;
        log.WriteRunTrace("mnuBackup_Click", "Start", true);
        PendingError failure;
        EngineOfRun engine(backup);
        failure.attempt([&] {
            engine.make();
            if (saved(context))
                backUp(context, backup);
        });
        reportRun(context, failure);
        engine.release();
        context.main.hourglass = false;
        if (!context.profiles.frame.BL_Save_Blocked)
            context.form.window.SSTab1 = kFirstTab;
        else
            showRefusedTab(context);
        context.profiles.frame.BL_Save_Blocked = false;
        log.WriteRunTrace("mnurun_Click", "End", true);
    });
}

void mnuBkpSto_Click(FrameContext& context, ReviewCommandContext& review)
{
    runCommand(context, "mnuBkpSto_Click", [&] {
        if (!confirmed(context))
            return;
        context.profiles.frame.panel1.text = texts::kReviewing;
        const SavedProfile profile = savedProfile(context);
        if (profile.folder.empty() || profile.name.empty()) {
            refuse(context, texts::kNotSavedForReview);
            context.profiles.frame.panel1.text.clear();
            return;
        }
        if (showsArchiveOf(context, review)) {
            showReview(context, review);
            return;
        }
        context.window.unloadReview();
        openReview(context, review, profile);
    });
}

} // namespace vardelin::frame
