#include "background/reg_file_importer.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/registry_text.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vardelin::background {
namespace {

using platform::RegistryChange;

std::vector<RegistryChange> parsed(std::string_view text, std::string_view path)
{
    try {
        return platform::parseRegistryText(text);
    } catch (const base::RuntimeError& error) {
        // The person knows the file, and the line only within it.
        throw base::RuntimeError(error.number(), std::string(path),
                                 error.subject() + ": " + error.reason());
    }
}

bool touchesRunKey(const RegistryChange& change)
{
    // A deleted key takes what is below it along.
    return base::equalsIgnoringCase(change.key, platform::kRunKey) ||
           (change.kind == RegistryChange::Kind::DeleteKey &&
            base::startsWithIgnoringCase(platform::kRunKey, change.key + "\\"));
}

} // namespace

void RegFileImporter::WriteToReg(std::string_view path, bool& result)
{
    result = false;
    const std::vector<RegistryChange> changes = parsed(m_machine.fileSystem.readAll(path), path);
    platform::applyRegistryChanges(m_machine.registry, changes);
    result = true;
    if (std::any_of(changes.begin(), changes.end(), touchesRunKey)) {
        base::PendingError
            unmirrored; // the records are in; a desktop that lags behind is no failure
        unmirrored.attempt([&] { m_machine.shell.runKeyChanged(m_machine.registry); });
    }
}

} // namespace vardelin::background
