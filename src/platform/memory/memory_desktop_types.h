#pragma once

#include "platform/desktop_types.h"
#include "platform/memory/scripted_double.h"

#include <utility>

namespace vardelin::platform {

// A desktop that keeps what it is told until the test takes it away. For one thread.
class MemoryDesktopTypes final : public DesktopTypes, public ScriptedDouble {
public:
    bool known = false;

    bool registerProgram() override
    {
        script().enter("desktop.registerProgram", {});
        return !std::exchange(known, true);
    }
};

} // namespace vardelin::platform
