#pragma once

#include "background/reg_file_importer.h"
#include "platform/machine.h"
#include "profile/schedule_port.h"
#include "state/frame_state.h"
#include "state/profile_editor_state.h"
#include "state/profile_store.h"
#include "trace/error_tail.h"

#include <string>
#include <string_view>

// The registry records by which the separate monitor programs know a profile's schedule and idle
// time. Keys and value names are an interface to those programs and never change:
//
//   HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Vdschld\<base>
//       ReadyToProcess "F", StartAtDate D/M/YYYY, StartAtTime, RecPattern 1 to 4, RecCycle,
//       SetTime, NextRun "", and by the pattern NextRunWDays (2), NextRunMDates (3), NextRunYMths
//       and NextRunYDates (4); all are strings
//   HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\VdIdle\<minutes>
//       one empty value for each profile to run after that time, named by its base
//
// They are written as `<application folder>\<base>_Sched.reg`, which is imported and deleted.
// <base> is the profile's name up to its first dot.
namespace vardelin::background {

// What the records are made of; holds references only.
struct ScheduleContext {
    const platform::Machine& machine;
    trace::TraceContext& trace;
    state::FrameState& frame; // ST_App_Path and the edit flags are read, sOldIdleTime is emptied
    const state::ProfileEditorState& editor; // chkAutoSched, chkIdle, txtIdleTime
    const state::SaveLists& save;            // clxnSchedule
};

class RegistryScheduleRecords final : public profile::ScheduleRecords {
public:
    explicit RegistryScheduleRecords(const ScheduleContext& context);

    // Registers the profile that was just written, out of clxnSchedule and the editor; a schedule
    // starts afresh by it. Values go into the text as they stand. Where the idle time was changed
    // or switched off in this edit, the profile first leaves its former idle time.
    //
    // A file that cannot be written or imported stays on the disk and ends in the error dialog, and
    // so does one that cannot be deleted. The profile is saved either way.
    void WriteSchedReg(std::string_view name);

    // The same for the default profile: daily from today on, in a minute, running in five minutes.
    void WriteDefaultSchedReg(std::string_view name) override;

    // Deletes the schedule key named like `name` up to its last dot, in any case. So the key of a
    // profile with a further dot in its name, which is written up to the first one, stays. False
    // where there are no schedules or the registry cannot be read. Shows nothing, raises nothing.
    bool DeleteSchedKey(std::string_view name) override;

private:
    void importText(std::string_view base, const std::string& text, bool dropOldIdle);
    void dropOldIdleEntry(std::string_view base);
    std::string scheduleText(std::string_view base) const;
    std::string idleText(std::string_view base) const;

    ScheduleContext m_context;
    RegFileImporter m_importer;
};

} // namespace vardelin::background
