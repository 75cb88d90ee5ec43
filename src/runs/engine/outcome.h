#pragma once

#include "archive/entry_names.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::base {
class RuntimeError;
}

// What runs report beyond their flags.
namespace vardelin::engine {

// How a run ended. One definition for flags, log records, exit codes and machine-readable output.
enum class Outcome : std::uint8_t {
    Complete,         // all that was asked for is done
    CompleteWithGaps, // done, but some files were missed, lost, refused or damaged
    NothingToDo,      // nothing was new or changed; nothing was asked for
    Cancelled,        // stopped by the person; what was done until then stays
    Failed,           // an error was raised; what was done until then stays
};

// What happened in a run, as far as its outcome depends on it.
struct RunFacts {
    bool failed = false;    // the run raises an error
    bool cancelled = false; // the person stopped it
    bool gaps = false;      // something was missed, lost, refused or damaged
    bool anything = false;  // something was done, or was asked for
};

// The one rule: the first fact that holds decides, in the order of their places above; without any
// of them there was nothing to do.
Outcome outcomeOf(const RunFacts& facts);

// `complete`, `gaps`, `nothing`, `cancelled`, `failed`: as machine-readable output names it. These
// never change.
std::string_view outcomeName(Outcome outcome);

// Neither cancelled nor failed: what `success` of a backup tells.
bool cameToItsEnd(Outcome outcome);

// Whether a run leaves a line in the log. One that had nothing to do leaves none, and a failed one
// leaves one only where it saved or restored something: its line counts what was done until then.
bool leavesLogRecord(Outcome outcome, bool didAnything);

// The error that ended a failed run.
struct RunFailure {
    int number = 0;
    std::string subject; // the thing concerned, a path as a rule; may be empty
    std::string reason;  // the system's own or a sentence; may be empty
};
RunFailure failureOf(const base::RuntimeError& error);

// A file or entry that was left out, and why.
struct Gap {
    std::string path; // in drive form, or the entry as it was asked for
    std::string reason;
};

struct BackupReport {
    Outcome outcome = Outcome::Failed; // until a run has come to another end
    std::optional<RunFailure> failure; // of a failed run
    bool full = false;                 // the archive was empty before
    std::uint64_t filesScanned = 0;    // selected by the profile, changed or not
    std::uint64_t copiesWritten = 0;   // full copies and versions
    std::uint64_t fullCopies = 0;
    std::uint64_t versions = 0;
    std::uint64_t renewed = 0;        // touched without a change of content
    std::uint64_t pruned = 0;         // versions that fell out of the kept set
    std::uint64_t prunedBytes = 0;    // of their archive files
    std::uint64_t skippedSpecial = 0; // sockets, pipes and devices
    std::uint64_t bytesRead = 0;      // of the copies written
    std::uint64_t bytesStored = 0;    // what they take in the archive
    std::uint64_t keyDerivations = 0; // from the password
    std::vector<Gap> missed;
    std::vector<std::string> settingsSaved; // names of the groups that were written
    // Empty where nothing was missed and the run did not fail after it had saved something.
    std::string missedReportPath;
    std::string archiveRoot;
    std::vector<std::string> warnings; // of the profile, such as a section that never closes
};

struct PruneReport {
    Outcome outcome = Outcome::Failed; // until a run has come to another end
    std::optional<RunFailure> failure; // of a failed run
    std::uint64_t removed = 0;         // copies
    std::uint64_t removedBytes = 0;    // of archive files
    std::vector<Gap> failed;           // archive files that could not be removed
};

struct RestoreReport {
    Outcome outcome = Outcome::Failed; // until a run has come to another end
    std::optional<RunFailure> failure; // of a failed run
    std::uint64_t filesRestored = 0;
    std::uint64_t bytesRestored = 0;
    std::uint64_t keyDerivations = 0;    // from the password
    std::vector<Gap> lost;               // missing or damaged archive files
    std::vector<Gap> mismatched;         // saved under another password
    std::vector<Gap> failed;             // could not be written
    std::vector<std::string> notMatched; // entries without a copy for the date
    std::vector<std::string> settingsRestored;
};

struct PlannedCopy {
    std::string path; // source in drive form
    int version = 0;  // 0 is the full copy
    std::uint64_t sizeBytes = 0;
};

struct BackupPlan {
    std::uint64_t filesScanned = 0;
    std::vector<PlannedCopy> copies;
    std::vector<Gap> missed;
    std::vector<std::string> warnings;
};

struct CopyRecord {
    std::string entry;       // `C:\dir\name.ext_007`
    std::string sourcePath;  // `C:\dir\name.ext`
    std::string archivePath; // in drive form
    int version = 0;
    archive::Form form = archive::Form::Compressed;
    std::uint64_t sizeBytes = 0;   // of the source
    std::uint64_t storedBytes = 0; // of the archive file
    std::int64_t modifiedNs = 0;   // of the source
    std::int64_t savedNs = 0;      // time of the run
};

// What the retention option makes of one copy.
struct PruneDecision {
    CopyRecord copy;
    bool keep = true;
    std::string reason;
};

struct VerifyReport {
    Outcome outcome = Outcome::Failed;
    std::optional<RunFailure> failure; // of a failed check
    std::uint64_t copiesChecked = 0;
    std::uint64_t bytesChecked = 0; // of the sources
    std::vector<Gap> damaged;
    std::vector<Gap> mismatched;      // encrypted under another password, so not checked
    std::vector<std::string> foreign; // files in the archive that are no copies
};

} // namespace vardelin::engine
