#pragma once

#include "platform/machine.h"
#include "runs/engine/engine.h"
#include "state/cancel_form.h"
#include "state/frame_state.h"
#include "trace/error_tail.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// A backup under way: the engine's events, the form that shows them, and the wish to end it. What
// leads to it is the main frame's.
namespace vardelin::runs {

// One run of the engine, as the front end sees it. Made anew for each.
class BackupEngine {
public:
    BackupEngine() = default;
    BackupEngine(const BackupEngine&) = delete;
    BackupEngine& operator=(const BackupEngine&) = delete;
    virtual ~BackupEngine() = default;

    // `profileFolder` ends in a backslash. Events come inside the call, on its thread.
    virtual void EngineBackup(std::string_view profileFolder, std::string_view profileFileName,
                              bool& success) = 0;
    virtual int TotalUnits() const = 0;
    virtual bool CancelRequested() const = 0;
    virtual void CancelRequested(bool value) = 0;
    virtual bool NoFilesIdentified() const = 0;
    virtual void NoFilesIdentified(bool value) = 0;
    virtual bool MissedFiles() const = 0;
};
using MakeBackupEngine = std::function<std::unique_ptr<BackupEngine>(engine::EngineEvents& events)>;

// VDBackUp itself.
MakeBackupEngine engineBackup(const platform::Machine& machine, std::string appPath);

struct BackupState {
    bool BL_Cancel_Pressed = false;          // the person confirmed the wish to end the run
    bool BL_Run_Closing = false;             // the program itself closes the form: nobody is asked
    std::unique_ptr<BackupEngine> objBackUp; // lives as long as a run
    std::chrono::nanoseconds started{};      // of the steady clock
};

// Holds references only; the application owns the parts.
struct BackupContext {
    const platform::Machine& machine;
    trace::TraceContext& trace;
    state::FrameState& frame; // ST_App_Path
    state::frmCancel& form;
    BackupState& backup;
    MakeBackupEngine make;
};

// The engine's events for a context; must outlive the engine.
class BackupEvents final : public engine::EngineEvents {
public:
    explicit BackupEvents(BackupContext& context) : m_context(context) {}
    void ProStatus(double increment) override;
    void FileProStatus(std::string_view item) override;

private:
    BackupContext& m_context;
};

// frmCancel with nothing done yet, on show; its animation where the picture is there.
void loadCancelForm(BackupContext& context);
// Closed by the program, without a question.
void unloadCancelForm(BackupContext& context);

// The handlers of the engine's events. A form that the person closed gets nothing any more.
void objBackUp_ProStatus(BackupContext& context, double increment);
void objBackUp_FileProStatus(BackupContext& context, std::string_view item);

// The Cancel button, and the close box: false where the form must stay.
void cmdCancel_Click(BackupContext& context);
bool Form_QueryUnload(BackupContext& context);

} // namespace vardelin::runs
