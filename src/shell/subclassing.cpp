#include "shell/subclassing.h"

#include "base/runtime_error.h"

#include <fmt/format.h>

namespace vardelin::shell {

bool Subclassing::subclass(WindowHandle window, WindowProcedure procedure, std::uintptr_t owner)
{
    if (m_windows.contains(window))
        return false;
    const WindowProcedure former = m_system.setProcedure(window, procedure);
    if (former == 0) {
        const WindowSystem::Error error = m_system.lastError();
        const std::string text = fmt::format("Error subclassing window &H{:X}\r\nErr# {}: {}",
                                             window, error.number, error.text);
        throw base::RuntimeError(base::error_number::kInvalidCall, text, text);
    }
    m_windows[window] = {former, owner};
    return true;
}

bool Subclassing::unsubclass(WindowHandle window)
{
    const auto found = m_windows.find(window);
    if (found == m_windows.end())
        return false;
    m_system.setProcedure(window, found->second.oldWndProc);
    m_windows.erase(found);
    return true;
}

std::optional<WindowProcedure> Subclassing::oldWndProc(WindowHandle window) const
{
    const auto found = m_windows.find(window);
    return found == m_windows.end() ? std::nullopt : std::optional(found->second.oldWndProc);
}

std::optional<std::uintptr_t> Subclassing::objectPtr(WindowHandle window) const
{
    const auto found = m_windows.find(window);
    if (found == m_windows.end() || found->second.objectPtr == 0)
        return std::nullopt;
    return found->second.objectPtr;
}

} // namespace vardelin::shell
