#pragma once

#include "base/dates.h"
#include "base/keyed_collection.h"

#include <string>

namespace vardelin::state {

// What a save gathers from the editor just before it writes, and drops just after it. Lists of
// paths compare by the file system's rule, the others without regard to case.
struct SaveLists {
    explicit SaveLists(base::KeyRule pathRule)
        : clxnSources(pathRule), clxnFolderNames(pathRule), clxnExtraSourcesA(pathRule),
          clxnExtraSourcesB(pathRule), clxnDroppedSources(pathRule)
    {
    }

    base::TextCollection clxnSources;     // full paths, folders with a backslash at the end; keyed
    base::TextCollection clxnFolderNames; // keyed; never written to a file
    base::TextCollection clxnExcluded;    // extensions with their dot, keyed by themselves
    base::TextCollection clxnIncluded;    // the same
    base::TextCollection clxnOtherData;   // names of settings groups, no keys
    // The schedule of this save under the keys StDate (D/M/YYYY), StTime, RecOpt (1 to 4), Recur,
    // SetTime, NextRunWDays (seven letters), NextRunMDates, NextRunYMths, NextRunYDates.
    base::TextCollection clxnSchedule;
    // Always empty: the writer's passes over them are part of its order of work.
    base::TextCollection clxnExtraSourcesA;
    base::TextCollection clxnExtraSourcesB;
    base::TextCollection clxnDroppedSources;
};

// What an opened profile held, keyed by its own text, so that a repeated line is dropped.
struct OpenedLists {
    explicit OpenedLists(base::KeyRule pathRule) : clxnOpenedSources(pathRule) {}

    // Every prefix of every source line, whole file lines, and folder marks (`C:\A\*`).
    base::TextCollection clxnOpenedSources;
    base::TextCollection clxnOpenedExcluded;
    base::TextCollection clxnOpenedIncluded;
    base::TextCollection clxnOpenedOtherData;
};

// What other subsystems read of the profile without going through the editor.
struct ProfileScalars {
    std::string sDestinationPath;
    int iRetentionOption = 0; // 1 to 8; 0 where none is chosen
    bool bCompressFiles = false;
    bool bEncryptFiles = false;   // set by the reader alone
    base::Date dStartDate;        // the zero date: no start date was read
    std::string sProfilePassword; // in clear while the program runs
    bool bProfileHasPassword = false;
    bool bOptionsLoaded = false; // the controls are being filled from a file
    bool bSourceLineRead = false;
    bool SourceChecked = false;      // the newest tick, or a profile read, left a node ticked
    bool AllSourceUnchecked = false; // the newest tick left no node ticked
    bool bHaveSources = false;
    bool bHaveOtherData = false;
    bool bHaveIncluded = false;
    bool bHaveDestination = false;
    int iValidationTab = 0; // 1 sources, 2 backup options, 3 schedule; 0 none
    bool bDestinationChanged = false;
    std::string sPreviousDestination; // where the archive lies when it is to be moved
    std::string sBackupPackageFolder; // default destination
};

// The profile in memory beside the editor's working copy. One instance, owned by the application;
// its rule for paths is that of the machine's file system.
struct ProfileStore {
    explicit ProfileStore(base::KeyRule pathRule = base::KeyRule::Exact)
        : save(pathRule), opened(pathRule)
    {
    }

    SaveLists save;
    OpenedLists opened;
    ProfileScalars scalars;
};

} // namespace vardelin::state
