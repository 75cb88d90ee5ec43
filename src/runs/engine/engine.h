#pragma once

#include "base/keyed_collection.h"
#include "platform/machine.h"
#include "runs/engine/key_slot.h"
#include "runs/engine/outcome.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// VDBackUp, the component that moves data. It reads a saved profile file, writes the versioned
// archive and restores out of it. It knows no form, shows no box and writes no trace.
namespace vardelin::engine {

// 16-bit truth values, as they cross this interface: 0 is false, -1 is true.
using TruthValue = std::int16_t;
inline constexpr TruthValue kFalse = 0;
inline constexpr TruthValue kTrue = -1;

// What a run tells while it goes on. Called on the thread that called the operation, and inside
// that call, whatever threads work behind it.
class EngineEvents {
public:
    EngineEvents() = default;
    EngineEvents(const EngineEvents&) = delete;
    EngineEvents& operator=(const EngineEvents&) = delete;
    virtual ~EngineEvents() = default;

    // So much more of the run is done: an increment, never a position. The increments of a backup
    // add up to TotalUnits, those of a restore to 100.
    virtual void ProStatus(double increment) = 0;
    // The file now being saved, as a path in drive form. For each file, and every 4 MiB inside one.
    // Not raised by a restore.
    virtual void FileProStatus(std::string_view item) = 0;
};

// One instance serves one run: one operation is called once, then the flags are read. They hold
// their values until the instance goes.
//
// Expected conditions are told by the flags; what keeps a whole run from going on is raised as
// base::RuntimeError: 5 for a profile that is none or asks for what this build cannot do, 53 for a
// missing profile, 61 for a full destination, 70 for missing rights or an archive that another run
// holds, 76 for a missing destination. What was saved until then stays whole.
class Engine {
public:
    // `appPath` is the application folder in drive form; logs and the review list go below it. The
    // machine's ports and the events must outlive the instance.
    Engine(const platform::Machine& machine, std::string appPath, EngineEvents& events);

    // The total that the increments of a backup count towards, 0 while it is not known. At most
    // 30000: with more files an increment is a fraction.
    std::int16_t TotalUnits() const { return m_totalUnits; }
    // Set to end a running backup; tested right after each FileProStatus. What is saved stays.
    TruthValue CancelRequested() const { return m_cancelRequested; }
    void CancelRequested(TruthValue value) { m_cancelRequested = value; }
    // After a restore: an entry was left out since it was saved under another password.
    TruthValue PasswordMismatch() const { return m_passwordMismatch; }
    // After a backup: nothing was new or changed.
    TruthValue NoFilesIdentified() const { return m_noFilesIdentified; }
    void NoFilesIdentified(TruthValue value) { m_noFilesIdentified = value; }
    // After a restore: an entry was left out since its archive file is missing or damaged.
    TruthValue BackupFilesLost() const { return m_backupFilesLost; }
    // After a backup: a file could not be read; names and reasons stand in the report of the run.
    TruthValue MissedFiles() const { return m_missedFiles; }
    // After a restore as of a date: no file entry has a copy of that day or before it.
    TruthValue DateNotMatched() const { return m_dateNotMatched; }

    // The password that a restore uses instead of the profile's, for copies that were saved under
    // an earlier one. To be called before EngineRestore.
    void usePassword(std::string password) { m_password = std::move(password); }
    // What deriving a new password's key costs; the archive keeps it with each copy.
    void useKeyCost(const KeyCost& cost) { m_keyCost = cost; }

    // Runs one backup. `profileFolder` ends in a backslash; `profileFileName` has its extension.
    // `success` is true after a run that came to its end.
    void EngineBackup(std::string_view profileFolder, std::string_view profileFileName,
                      TruthValue& success);

    // Runs one restore. Each entry is a catalog line without its `Files And Folders\` (such as
    // `C:\dir\name.ext_000`), a folder key that ends in a backslash (the newest copy of each file
    // below it), or a settings group's name. `restoreLocation` has no backslash at its end; empty
    // puts every file back to its place, else it goes to `<location>\<letter>\<folders>\<name>`.
    // `restoreDate` is "NULL" or a day as D/M/YYYY: the newest copy of that day or before it
    // counts, whatever the entry's tag.
    void EngineRestore(std::string_view profileFolder, std::string_view profileFileName,
                       const base::TextCollection& clxnRestore, std::string_view restoreLocation,
                       std::string_view restoreDate);

    // More than the flags can tell, for reports and exit codes.
    const BackupReport& backupReport() const { return m_backupReport; }
    const RestoreReport& restoreReport() const { return m_restoreReport; }

private:
    const platform::Machine& m_machine;
    std::string m_appPath;
    EngineEvents& m_events;
    std::int16_t m_totalUnits = 0;
    TruthValue m_cancelRequested = kFalse;
    TruthValue m_passwordMismatch = kFalse;
    TruthValue m_noFilesIdentified = kFalse;
    TruthValue m_backupFilesLost = kFalse;
    TruthValue m_missedFiles = kFalse;
    TruthValue m_dateNotMatched = kFalse;
    std::optional<std::string> m_password;
    KeyCost m_keyCost;
    BackupReport m_backupReport;
    RestoreReport m_restoreReport;
};

// What a backup would do, without writing anything.
BackupPlan planBackup(const platform::Machine& machine, std::string_view appPath,
                      std::string_view profilePath);

// Every copy in a profile's archive, folder by folder, subfolders first, in the folder's order.
// `each` gives false to stop. Raises 76 where the profile has no archive.
void listCopies(const platform::Machine& machine, std::string_view profilePath,
                const std::function<bool(const CopyRecord&)>& each);

// Reads copies and compares every checksum; writes nothing. `samplePercent` from 1 to 100 takes
// that share of the copies, spread evenly. `progress` is called for each copy on the caller's
// thread and gives false to stop.
// Encrypted copies of another password than the profile's, or `password` where one is given, stand
// in `mismatched`; copies that are not encrypted need none.
VerifyReport verifyArchive(const platform::Machine& machine, std::string_view profilePath,
                           int samplePercent,
                           const std::function<bool(std::string_view entry)>& progress,
                           const std::optional<std::string>& password = std::nullopt);

// `<destination>\<profile name without its extension>\` of a saved profile.
std::string archiveRootOf(const platform::Machine& machine, std::string_view profilePath);

// What the profile's retention option makes of every copy in its archive, today; removes nothing.
// `each` gives false to stop. Raises 76 where the profile has no archive.
void planPrune(const platform::Machine& machine, std::string_view profilePath,
               const std::function<bool(const PruneDecision&)>& each);

// Removes the versions that fall out of the kept set, as a backup does at its end, also of files
// whose sources are gone. `proceed` is called with each entry before it goes, on the caller's
// thread, and gives false to stop. What cannot be removed stands in the report. Raises 70 where
// another run holds the archive, 76 where there is none.
PruneReport pruneArchive(const platform::Machine& machine, std::string_view appPath,
                         std::string_view profilePath,
                         const std::function<bool(std::string_view entry)>& proceed);

// Writes `Data\ReviewFiles.txt` from the archive, as a backup without compression does at its end.
void rebuildReviewFiles(const platform::Machine& machine, std::string_view appPath,
                        std::string_view profilePath);

} // namespace vardelin::engine
