#include "runs/backup_run.h"

#include "base/runtime_error.h"

#include <algorithm>
#include <utility>

namespace vardelin::runs {
namespace {

constexpr std::string_view kTitle = "Vardelin";
constexpr std::string_view kModule = "frmCancel";
constexpr std::string_view kAskCancel = "Do you want to cancel the Backup process?";
constexpr std::string_view kAnimation = "\\Compress_ani.gif";
constexpr std::uint64_t kLargestAnimation = 4 << 20; // in bytes; what is larger is something else

class RealEngine final : public BackupEngine {
public:
    RealEngine(const platform::Machine& machine, const std::string& appPath,
               engine::EngineEvents& events)
        : m_engine(machine, appPath, events)
    {
    }

    void EngineBackup(std::string_view profileFolder, std::string_view profileFileName,
                      bool& success) override
    {
        engine::TruthValue done = engine::kFalse;
        m_engine.EngineBackup(profileFolder, profileFileName, done);
        success = done != engine::kFalse;
    }
    int TotalUnits() const override { return m_engine.TotalUnits(); }
    bool CancelRequested() const override { return m_engine.CancelRequested() != engine::kFalse; }
    void CancelRequested(bool value) override { m_engine.CancelRequested(truth(value)); }
    bool NoFilesIdentified() const override
    {
        return m_engine.NoFilesIdentified() != engine::kFalse;
    }
    void NoFilesIdentified(bool value) override { m_engine.NoFilesIdentified(truth(value)); }
    bool MissedFiles() const override { return m_engine.MissedFiles() != engine::kFalse; }

private:
    static engine::TruthValue truth(bool value) { return value ? engine::kTrue : engine::kFalse; }

    engine::Engine m_engine;
};

bool askCancel(const BackupContext& context)
{
    return context.machine.messageBoxes.show(kAskCancel, kTitle, platform::Buttons::YesNo,
                                             platform::Icon::Question) == platform::Answer::Yes;
}

// What is left, if the run goes on as it went until now. Files are of very different sizes: out of
// the first few of many, hours are told of a run of minutes.
constexpr double kKnownShare = 0.02;

void tellTime(BackupContext& context)
{
    state::frmCancel& form = context.form;
    const std::chrono::duration<double> elapsed =
        context.machine.clock.steady() - context.backup.started;
    form.elapsedSeconds = elapsed.count();
    const double share = form.pbBkp.maximum > 0 ? form.pbBkp.value / form.pbBkp.maximum : 0;
    const bool known = share >= kKnownShare;
    form.remainingSeconds = known ? form.elapsedSeconds * (1 - share) / share : 0;
}

} // namespace

MakeBackupEngine engineBackup(const platform::Machine& machine, std::string appPath)
{
    return [&machine, appPath = std::move(appPath)](engine::EngineEvents& events) {
        return std::make_unique<RealEngine>(machine, appPath, events);
    };
}

void BackupEvents::ProStatus(double increment)
{
    objBackUp_ProStatus(m_context, increment);
}

void BackupEvents::FileProStatus(std::string_view item)
{
    objBackUp_FileProStatus(m_context, item);
}

void loadCancelForm(BackupContext& context)
{
    context.form = {};
    // A click behind the last file of the former run would end this one.
    context.backup.BL_Cancel_Pressed = false;
    context.backup.started = context.machine.clock.steady();
    const std::string picture = context.frame.ST_App_Path + std::string(kAnimation);
    base::PendingError noPicture;
    noPicture.attempt([&] {
        const auto info = context.machine.fileSystem.find(picture);
        if (info && info->sizeBytes <= kLargestAnimation)
            context.form.animation = context.machine.fileSystem.readAll(picture);
    });
    context.form.pbBkp.value = 0;
    context.form.loaded = true;
    context.form.visible = true;
}

void unloadCancelForm(BackupContext& context)
{
    context.backup.BL_Run_Closing = true;
    context.form.loaded = false;
    context.form.visible = false;
    context.backup.BL_Run_Closing = false;
}

void objBackUp_ProStatus(BackupContext& context, double increment)
{
    if (!context.form.loaded)
        return;
    state::ProgressBar& bar = context.form.pbBkp;
    const int total = context.backup.objBackUp ? context.backup.objBackUp->TotalUnits() : 0;
    if (total != 0) {
        if (bar.maximum != 0 && bar.maximum != total)
            bar.value = 0;
        if (total >= 1)
            bar.maximum = total;
    }
    bar.value = std::min(bar.maximum, bar.value + increment);
    tellTime(context);
}

void objBackUp_FileProStatus(BackupContext& context, std::string_view item)
{
    context.machine.messageLoop.yield();
    if (context.form.loaded) {
        if (context.form.lblBkpFileNames.caption != item)
            ++context.form.files;
        context.form.lblBkpFileNames.caption = item;
        tellTime(context);
    }
    context.machine.messageLoop.yield();
    if (std::exchange(context.backup.BL_Cancel_Pressed, false) && context.backup.objBackUp)
        context.backup.objBackUp->CancelRequested(true);
}

void cmdCancel_Click(BackupContext& context)
{
    trace::runTraced(context.trace, "cmdCancel_Click", kModule, "cmdCancel_Click",
                     [&] { context.backup.BL_Cancel_Pressed = askCancel(context); });
}

bool Form_QueryUnload(BackupContext& context)
{
    if (context.backup.BL_Run_Closing)
        return true;
    bool closes = false;
    trace::runTraced(context.trace, "Form_QueryUnload", kModule, "Form_QueryUnload", [&] {
        closes = askCancel(context);
        context.backup.BL_Cancel_Pressed = closes;
        if (closes)
            context.form.loaded = context.form.visible = false;
    });
    return closes;
}

} // namespace vardelin::runs
