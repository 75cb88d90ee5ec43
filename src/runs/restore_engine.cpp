#include "runs/engine/engine.h"
#include "runs/restore_dialog.h"

#include <utility>

namespace vardelin::runs {
namespace {

class ProgressOf final : public engine::EngineEvents {
public:
    explicit ProgressOf(const std::function<void(double)>& proStatus) : m_proStatus(proStatus) {}

    void ProStatus(double increment) override { m_proStatus(increment); }
    void FileProStatus(std::string_view) override {} // a restore raises none

private:
    const std::function<void(double)>& m_proStatus;
};

} // namespace

RestoreRun engineRestore(const platform::Machine& machine, std::string appPath)
{
    return [&machine, appPath = std::move(appPath)](const RestoreRequest& request,
                                                    const std::function<void(double)>& proStatus) {
        ProgressOf events(proStatus);
        engine::Engine objRestore(machine, appPath, events);
        objRestore.EngineRestore(request.profileFolder, request.profileFileName,
                                 request.clxnRestore, request.restoreLocation, request.restoreDate);
        return RestoreFlags{objRestore.DateNotMatched() != engine::kFalse,
                            objRestore.PasswordMismatch() != engine::kFalse,
                            objRestore.BackupFilesLost() != engine::kFalse};
    };
}

} // namespace vardelin::runs
