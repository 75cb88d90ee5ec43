#pragma once

#include "editor/pages_context.h"

#include <optional>
#include <string>
#include <string_view>

// What must hold before the profile in the editor is saved. The rules run in a fixed order and the
// first that fails ends the check with one message.
namespace vardelin::editor {

// Leaves BL_Save_Blocked as the outcome. A refusal sets iValidationTab to the tab that shows the
// fault, 2 options or 3 schedule, except where names clash with extensions: then the tab stays.
// Makes the destination's folder when the person wants it, and cuts a backslash off the end of its
// path, without a handler. May wait for the network.
void FrmLevelValidation(PagesContext& context);

// Whether no typed name has an extension that the other side's list holds: with `includeSide`
// txtInclNames against clxnExcluded, else txtExclNames against clxnIncluded. A clash is shown.
// Names without a dot never clash.
bool CheckForInclExcl(PagesContext& context, bool includeSide);

// The dotted address of a computer, without a name of this one; `NotExist` where it is not known.
std::string GetHostAddress(PagesContext& context,
                           std::optional<std::string_view> machine = std::nullopt);
std::string GetMachineName(PagesContext& context);
std::string FormatHostAddress(const platform::HostAddress& address);

} // namespace vardelin::editor
