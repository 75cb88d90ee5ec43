#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

// Window procedures that were put in front of others.
namespace vardelin::shell {

using WindowHandle = std::uintptr_t;
using WindowProcedure = std::intptr_t; // an address; 0 is none

// What the window system does for it. For the thread of the user interface.
class WindowSystem {
public:
    WindowSystem() = default;
    WindowSystem(const WindowSystem&) = delete;
    WindowSystem& operator=(const WindowSystem&) = delete;
    virtual ~WindowSystem() = default;

    // Puts a procedure in place and gives the former one; 0 after a failure.
    virtual WindowProcedure setProcedure(WindowHandle window, WindowProcedure procedure) = 0;
    struct Error {
        int number = 0;
        std::string text;
    };
    virtual Error lastError() = 0;
};

// Keeps the former procedure and the owner of each window, as the window properties "OldWndProc"
// and "ObjectPtr". One instance, owned by the application.
class Subclassing {
public:
    explicit Subclassing(WindowSystem& system) : m_system(system) {}

    // False, and nothing done, where the window has one already. Raises 5, with a text that names
    // the window and the system's error, where the window system refuses. `owner` 0 is none.
    bool subclass(WindowHandle window, WindowProcedure procedure, std::uintptr_t owner = 0);
    // Puts the former procedure back; false, and nothing done, where there is none.
    bool unsubclass(WindowHandle window);

    std::optional<WindowProcedure> oldWndProc(WindowHandle window) const;
    std::optional<std::uintptr_t> objectPtr(WindowHandle window) const;

private:
    struct Properties {
        WindowProcedure oldWndProc = 0;
        std::uintptr_t objectPtr = 0;
    };

    WindowSystem& m_system;
    std::map<WindowHandle, Properties> m_windows;
};

} // namespace vardelin::shell
