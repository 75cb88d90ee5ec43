#include "background/activation.h"

#include "background/reg_file_importer.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "trace/messages.h"

#include <array>
#include <fmt/format.h>

namespace vardelin::background {
namespace {

using platform::joinPath;

constexpr std::string_view kRegFile = "ServiceActive.reg";
constexpr std::string_view kServiceInstaller = "instsrv.exe";
constexpr std::string_view kModule = "MDIForm";
constexpr std::size_t kComputerNameBytes = 255; // of the buffer, its closing zero among them

// In the order in which they are started.
constexpr std::array<std::string_view, 3> kMonitors{"VDFileMon.exe", "VDIdleMon.exe",
                                                    "VDScheduleMon.exe"};

// The same on every platform that programs like these run on.
void startMonitors(const platform::Machine& machine, std::string_view appPath)
{
    for (const std::string_view name : kMonitors)
        machine.processes.start(joinPath(appPath, name), {},
                                platform::WindowStyle::MinimizedWithFocus);
}

// Empty where the system does not say, or says more than a caller of it has room for.
std::string computerName(platform::MachineFacts& facts)
{
    std::string name = facts.computerName();
    return name.size() < kComputerNameBytes ? name : std::string();
}

std::string regFileText(std::string_view appPath, bool isNt, std::string_view windowsFolder)
{
    const auto doubled = [](std::string_view path) { return base::replaceAll(path, "\\", "\\\\"); };
    const std::string app = doubled(appPath);
    const std::string system = doubled(windowsFolder) + (isNt ? "\\\\system32" : "\\\\system");
    const std::array<std::string, 10> lines{
        "REGEDIT4",
        "",
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run]",
        fmt::format("\"VDUninstall\"=\"{}\\\\VDUninstall.exe\"", system),
        "",
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\Vardelin]",
        fmt::format("@=\"{}\\\\\"", app),
        "",
        "[HKEY_CLASSES_ROOT\\vdbfile\\Shell\\Open\\Command]",
        fmt::format("@=\"\\\"{}\\\\VDDirectRestore.exe\\\" %1%\"", app),
    };
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

} // namespace

bool isActivated(const ActivationContext& context, std::string_view appPath)
{
    return context.machine.fileSystem.fileExists(joinPath(appPath, kRegFile));
}

void activateMonitors(ActivationContext& context, std::string_view appPath, bool isNt,
                      ServicePlace& place)
{
    const platform::Machine& machine = context.machine;
    place.windowsFolder = machine.facts.windowsFolder();
    place.serviceInstaller = joinPath(appPath, kServiceInstaller);
    place.computerName = computerName(machine.facts);
    startMonitors(machine, appPath);
    DynRegFileCr(context, appPath, isNt, place.windowsFolder);
    base::PendingError unmerged; // the file is what counts, and it stays for a second import
    unmerged.attempt([&] {
        bool imported = false;
        RegFileImporter(machine).WriteToReg(joinPath(appPath, kRegFile), imported);
    });
}

void DynRegFileCr(ActivationContext& context, std::string_view appPath, bool isNt,
                  std::string_view windowsFolder)
{
    constexpr std::string_view kName = "DynRegFileCr";
    trace::runTraced(context.trace, kName, kModule, trace::customMessage(kName), [&] {
        context.machine.fileSystem.replaceFile(joinPath(appPath, kRegFile),
                                               regFileText(appPath, isNt, windowsFolder));
    });
}

} // namespace vardelin::background
