#pragma once

#include "support/profile_rig.h"

namespace vardelin::test {

// A profile store whose trace goes to a disk of its own, so that every call of `script` is one of
// the procedure under test.
struct StoreRig : ProfileRig {
    platform::MemoryFileSystem traceDisk;
    vardelin::trace::RunTrace ownTrace{traceDisk, clock, messageBoxes, "C:\\App", "Vardelin"};
    vardelin::trace::TraceContext ownContext{ownTrace, errors, dialog};
    profile::ProfileContext quiet{machine, ownContext, frame, editor,
                                  store,   schedules,  lists, fileNumbers};

    StoreRig() { traceDisk.createFolder("C:\\App"); }

    std::vector<std::string> ownEntries()
    {
        return traceEntries(traceDisk.readAll(ownTrace.logFileName()));
    }
    // "absent" where there is no such file.
    std::string contentOf(std::string_view path)
    {
        return disk.fileExists(path) ? disk.readAll(path) : "absent";
    }
    // Module, procedure, number and custom message of the newest error dialog.
    std::string newestDialog() const
    {
        if (dialog.shown.empty())
            return "no dialog";
        const auto& form = dialog.shown.back();
        return form.txtModName.text + "|" + form.txtProcName.text + "|" + form.txtSysErrNo.text +
               "|" + form.txtInf.text;
    }
};

} // namespace vardelin::test
